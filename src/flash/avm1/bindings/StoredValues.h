#pragma once

#include "base/Result.h"
#include "flash/avm1/Vm.h"

#include <vector>

namespace flash::avm1
{

/// Writes the own visible properties of an object as the body of a local shared object's file: numbers,
/// texts, truth values, null, undefined, dates, documents, arrays and plain objects, each object once.
/// Functions and what is on the stage are left out, as is what is nested deeper than 64 levels.
/// @source Action Message Format 0
std::vector<std::uint8_t> encodeStored(Vm& vm, Object* data, std::string_view name);

/// Reads what encodeStored() wrote, or another player of the same format, as properties of `data`. What comes
/// before a damaged place is kept.
/// @errors Malformed for what is no such file, Truncated, Unsupported for kinds of values that no script made
base::Result<void> decodeStored(Vm& vm, Object* data, base::Bytes bytes);

} // namespace flash::avm1
