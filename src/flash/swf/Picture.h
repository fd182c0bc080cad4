#pragma once

#include "flash/swf/MovieBuilder.h"

namespace flash::swf
{

/// More than the genuine player shows, and what one decoder may be asked to allocate.
constexpr std::uint64_t kMaxPicturePixels = 1U << 26U;

/// Takes the memory for a picture's pixels.
/// @errors Malformed for a picture without pixels; LimitReached.
base::Result<void> takePixels(Budget& budget, std::uint64_t width, std::uint64_t height);

/// Decodes JPEG data of any of the forms that movies hold: with the tables in a stream of their own before
/// the picture, with those given apart, with stray end and start markers in front. A picture that is damaged
/// part-way keeps the rows before the damage.
/// @param tables a stream with tables only; may be empty.
base::Result<Bitmap> decodeJpeg(base::Bytes tables, base::Bytes data, Budget& budget);

/// JPEG, or the PNG and GIF files that version 8 allows in its place.
base::Result<Bitmap> decodeImage(base::Bytes tables, base::Bytes data, Budget& budget);

bool isPngOrGif(base::Bytes data);

} // namespace flash::swf
