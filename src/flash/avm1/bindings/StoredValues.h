#pragma once

#include "base/Result.h"
#include "flash/avm1/interpreter/Vm.h"

#include <vector>

namespace flash::avm1
{

/// Writes the properties of an object (see AmfValueWriter::properties()) as a local shared object's file.
std::vector<std::uint8_t> encodeStored(Vm& vm, Object* data, std::string_view name);

/// Reads what encodeStored() wrote, or another player of the same format, as properties of `data`. What comes
/// before a damaged place is kept.
/// @errors Malformed for what is no such file, Truncated, Unsupported for kinds of values that no script made
base::Result<void> decodeStored(Vm& vm, Object* data, base::Bytes bytes);

} // namespace flash::avm1
