#pragma once

#include "flash/avm2/interpreter/Vm.h"
#include "flash/stage/Services.h"

#include <optional>
#include <span>

namespace flash::avm2
{

/// The text of a loaded file: UTF-16 where a mark says so, otherwise UTF-8.
std::u16string loadedText(std::span<const std::uint8_t> bytes);

/// The dynamic properties of an object as a query: `name=value&name=value`.
std::string encodedVariables(Vm& vm, Object* object);

/// What a URLRequest asks for; none for null. @throws 1034 for another object, 2007 without an address
std::optional<stage::LoadRequest> requestArg(Call& call, std::uint32_t i);

} // namespace flash::avm2
