#pragma once

#include "MovieWriter.h"

namespace flash::swf
{

/// An 8 x 8 picture of one grey, 0x80, as a complete JPEG stream.
const ByteList& testJpeg();
/// Its tables as a stream of their own, and the picture without them: how movies with shared tables keep it.
ByteList jpegTablesOf(const ByteList& jpeg);
ByteList jpegPictureOf(const ByteList& jpeg);
/// 2 x 1 pixels: red with an alpha of 128, opaque blue.
/// @param sizeByte the second byte of width and height, for a file that claims more than it holds.
ByteList testPng(std::uint8_t sizeByte = 0);
/// 1 x 1 pixel: opaque green.
ByteList testGif();

} // namespace flash::swf
