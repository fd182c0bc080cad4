#include "OneTagMovie.h"

#include <array>

// A font or a text, and an input field and a static text that use it, drawn. The first byte chooses which
// kind of tag the rest is the body of, without its number.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 2) return 0;
    constexpr std::array<unsigned, 9> kTags = {10, 48, 75, 13, 62, 88, 11, 33, 37};
    const unsigned code = kTags[data[0] % kTags.size()];
    const base::Bytes body(data + 1, size - 1);
    fuzz::OneTagMovie movie(static_cast<std::uint8_t>(5 + data[0] / kTags.size() % 4));
    // Information and names belong to a font that is there: one of two empty glyphs.
    constexpr std::uint8_t kFont[] = {4, 0, 6, 0, 0x10, 0, 0x10, 0};
    const bool isFont = code == 10 || code == 48 || code == 75;
    if (!isFont) movie.define(10, 1, kFont);
    const bool isText = code == 11 || code == 33 || code == 37;
    movie.define(code, isText ? 2 : 1, body);
    if (isText) {
        movie.place(2, 1);
    } else {
        // A field of font 1 with outlines: "ABab".
        constexpr std::uint8_t kField[] = {0x60, 0x00, 0x3E, 0x80, 0x00, 0x19, 0x00, 0x89, 0x01, 0x01,
                                           0x00, 0xF0, 0x00, 0x00, 0x41, 0x42, 0x61, 0x62, 0x00};
        // Glyphs 0 and 1 of font 1, 12 pixels high.
        constexpr std::uint8_t kText[] = {0x58, 0x00, 0x52, 0x40, 0x00, 0x8B, 0x80, 0x00, 0x01, 0x09,
                                          0x8F, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xDF, 0x00,
                                          0xF0, 0x00, 0x04, 0x29, 0x2A, 0x5A, 0x90, 0xA5, 0x00};
        movie.define(37, 2, kField);
        movie.define(11, 3, kText);
        movie.place(2, 1);
        movie.place(3, 2);
    }
    movie.play();
    return 0;
}
