#pragma once

#include "flash/avm1/interpreter/Vm.h"

namespace flash::avm1
{

constexpr int kLoadTable = 301; ///< number of the natives that objects load with

/// Puts on a prototype what LoadVars and XML have in common: load, send, sendAndLoad, addRequestHeader,
/// getBytesLoaded, getBytesTotal. What arrives goes to the object's onData as a text, or undefined.
/// @param flags of the properties
void addLoading(Vm& vm, Object* prototype, std::uint16_t flags);

} // namespace flash::avm1
