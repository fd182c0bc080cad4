#pragma once

#include "flash/avm2/bindings/Events.h"
#include "flash/avm2/interpreter/Vm.h"
#include "flash/stage/Services.h"

#include <optional>
#include <span>

namespace flash::avm2
{

/// The text of a loaded file: UTF-16 where a mark says so, otherwise UTF-8, or in the system's code when
/// System.useCodePage says so.
std::u16string loadedText(Vm& vm, std::span<const std::uint8_t> bytes);

/// The dynamic properties of an object as a query: `name=value&name=value`.
std::string encodedVariables(Vm& vm, Object* object);

/// What a URLRequest asks for; none for null. @throws 1034 for another object, 2007 without an address
std::optional<stage::LoadRequest> requestArg(Call& call, std::uint32_t i);
/// Its address with what it sends along as a query.
std::string addressOf(const stage::LoadRequest& request);
/// The host asks the user, after the scripts that run now.
void askToOpen(Vm& vm, const std::string& url, const std::string& window);

void fireHttpStatus(Vm& vm, DispatcherObject& target);
void fireProgress(Vm& vm, DispatcherObject& target, double loaded, double total);

/// A new byte array.
Value bytesValue(Vm& vm, std::span<const std::uint8_t> bytes);

using Answered = void (*)(Vm&, DispatcherObject&, const base::Result<stage::LoadAnswer>&);
/// Fetches, and lets `answered` tell the object what came, unless it was asked for something else since.
/// @param current a part of the object that counts what it is asked for
void fetchFor(Call& call, DispatcherObject& object, const std::uint32_t& current, stage::LoadRequest request,
              Answered answered);

} // namespace flash::avm2
