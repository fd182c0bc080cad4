#pragma once

#include "flash/avm1/interpreter/Vm.h"

#include <optional>
#include <string>
#include <string_view>

namespace flash::avm1
{

constexpr int kLoadTable = 301; ///< number of the natives that objects load with

/// Puts on a prototype what LoadVars and XML have in common: load, send, sendAndLoad, addRequestHeader,
/// getBytesLoaded, getBytesTotal. What arrives goes to the object's onData as a text, or undefined.
/// @param flags of the properties
void addLoading(Vm& vm, Object* prototype, std::uint16_t flags);

/// @returns whether loaded texts are in the 8-bit code: those of version 5, and where scripts want it.
bool readsCodepage(Vm& vm);
/// The text of a file that begins with the mark of UTF-8 or UTF-16, of either byte order; none without one.
std::optional<std::u16string> markedText(std::string_view bytes);
/// The text of a loaded file. Files with a mark are UTF-16 or UTF-8. Others are in the 8-bit code when a
/// movie of version 5 or before loads them or System.useCodepage says so; else UTF-8, if they can be.
std::u16string textFromBytes(Vm& vm, std::string_view bytes);

} // namespace flash::avm1
