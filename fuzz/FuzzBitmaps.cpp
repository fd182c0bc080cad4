#include "OneTagMovie.h"

#include "flash/swf/Movie.h"

#include <array>

// A bitmap in each of the forms that movies hold, and a rectangle filled with it, drawn; and the same bytes
// as a picture file. The first byte chooses the form; the rest is the tag's body without its number.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 2) return 0;
    constexpr std::array<unsigned, 6> kTags = {6, 20, 21, 35, 36, 90};
    const base::Bytes body(data + 1, size - 1);
    fuzz::OneTagMovie movie(8);
    movie.define(kTags[data[0] % kTags.size()], 1, body);
    // A square of 100 pixels, filled with the bitmap again and again.
    constexpr std::uint8_t kShape[] = {0x60, 0x00, 0x3E, 0x80, 0x00, 0x3E, 0x80, 0x01, 0x41, 0x01, 0x00,
                                       0xD9, 0x40, 0x00, 0x05, 0x00, 0x00, 0x00, 0x00, 0x10, 0x14, 0x27,
                                       0xA1, 0xF4, 0x3A, 0x5F, 0x43, 0xA2, 0x0C, 0x3A, 0x60, 0xC0, 0x00};
    movie.define(2, 2, kShape);
    movie.place(2, 1);
    movie.play();
    const flash::swf::ParseLimits limits{
        .inflatedBytes = 4U << 20U, .bitmapBytes = 4U << 20U, .definitionBytes = 16U << 20U};
    (void)flash::swf::decodePicture(body, limits);
    return 0;
}
