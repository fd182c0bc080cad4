#pragma once

#include "flash/avm2/classes/ByteArray.h"

// Values as they stand in byte arrays, messages and shared objects.
namespace flash::avm2::classes
{

/// @param encoding 0 or 3: the version of the format
void writeAmf(Vm& vm, ByteArrayObject& out, Value value, int encoding);
/// @throws EOFError 2030 for what ends too early or makes no sense
Value readAmf(Vm& vm, ByteArrayObject& in, int encoding);

/// The members of `data` that loops see, as a shared object's file. @param encoding 0 or 3
std::vector<std::uint8_t> writeSharedObject(Vm& vm, std::string_view name, Object& data, int encoding);
/// Reads what either machine has written as members of `data`. @returns its encoding, 0 or 3
/// @throws EOFError 2030 for what is no such file, or damaged: what came before stays
int readSharedObject(Vm& vm, Value data, std::span<const std::uint8_t> file);

} // namespace flash::avm2::classes
