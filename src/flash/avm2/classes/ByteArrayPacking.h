#pragma once

#include "flash/avm2/classes/ByteArray.h"

// What ByteArray.compress and uncompress do.
namespace flash::avm2::classes
{

enum class Packing : std::uint8_t { Zlib, Deflate, Lzma };

/// The content becomes its packed form, and the position its end.
void packBytes(Vm& vm, ByteArrayObject& array, Packing packing);
/// The content becomes what it is the packed form of, and the position 0. Nothing happens to an empty one.
/// @throws IOError 2058 when it is none; the content stays then
void unpackBytes(Vm& vm, ByteArrayObject& array, Packing packing);

} // namespace flash::avm2::classes
