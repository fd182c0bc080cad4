#pragma once

#include "base/ByteReader.h"

#include <array>
#include <string>

namespace media
{

inline constexpr std::size_t kFileHeaderBytes = 8;
/// What a header copy holds of the body: enough for frame rectangle, rate, count and background colour of
/// movies up to 3276 pixels.
inline constexpr std::size_t kHeaderBodyBytes = 18;
/// The same for the widest rectangle that the format can say.
inline constexpr std::size_t kLongestHeaderBodyBytes = 26;

/// The first 8 bytes of a movie; of any other file as well, to see that it is none.
struct FileHeader {
    std::array<char, 3> signature{};
    std::uint8_t version = 0;
    std::uint32_t fileLength = 0; ///< bytes of the whole uncompressed movie, these 8 included

    [[nodiscard]] bool is(std::string_view wanted) const
    {
        return std::string_view(signature.data(), wanted.size()) == wanted;
    }
    /// The same header as bytes, under another signature.
    [[nodiscard]] std::array<std::uint8_t, kFileHeaderBytes> withSignature(std::string_view wanted) const;
};

/// @errors Truncated when there are fewer than 8 bytes
base::Result<FileHeader> readFileHeader(base::Bytes file);

struct FrameHeader {
    int width = 0;  ///< pixels
    int height = 0; ///< pixels
    int frameRate = 0;
    int frameCount = 0;
    std::string background;     ///< "RRGGBB"
    bool hasBackground = false; ///< what stands there is the tag of the background colour
};

/// @returns whether a header copy is too short for the movie whose body begins like this
[[nodiscard]] bool needsLongHeader(base::Bytes body);

/// Reads the frame header at the start of a movie's uncompressed body. Width and height are the rectangle's
/// maxima in twentieths, read as unsigned and rounded with halves to even; its minima are ignored. The colour
/// is what stands in the first tag, of whatever kind that is; what lies behind the bytes given reads as zero.
/// @errors Truncated when the body ends before the frame count
base::Result<FrameHeader> readFrameHeader(base::Bytes body);

} // namespace media
