#include "media/MovieHeader.h"

#include <algorithm>
#include <cstdio>

namespace media
{
namespace
{

constexpr unsigned kWidthFieldBits = 5;
constexpr unsigned kBackgroundTag = 9;
constexpr unsigned kColourBytes = 3;

using HeaderBody = std::array<std::uint8_t, kLongestHeaderBodyBytes>;

std::size_t rectangleBytes(unsigned fieldBits) { return (kWidthFieldBits + 4 * fieldBits + 7) / 8; }

/// @returns `count` bits from bit position `first` on, most significant first
std::uint32_t bitsOf(const HeaderBody& body, unsigned first, unsigned count)
{
    std::uint32_t value = 0;
    for (unsigned bit = first; bit < first + count; ++bit)
        value = value << 1 | (body[bit / 8] >> (7 - bit % 8) & 1U);
    return value;
}

/// Twentieths of a pixel to whole pixels, halves to even.
int pixelsFromTwips(std::uint32_t twips)
{
    constexpr std::uint32_t kTwips = 20;
    const std::uint32_t whole = twips / kTwips;
    const std::uint32_t rest = twips % kTwips;
    const bool up = rest > kTwips / 2 || (rest == kTwips / 2 && whole % 2 == 1);
    return static_cast<int>(whole + (up ? 1 : 0)); // at most 2^31 / 20
}

} // namespace

std::array<std::uint8_t, kFileHeaderBytes> FileHeader::withSignature(std::string_view wanted) const
{
    std::array<std::uint8_t, kFileHeaderBytes> bytes{};
    std::copy_n(wanted.begin(), signature.size(), bytes.begin());
    bytes[3] = version;
    std::memcpy(&bytes[4], &fileLength, sizeof fileLength);
    return bytes;
}

base::Result<FileHeader> readFileHeader(base::Bytes file)
{
    base::ByteReader reader(file);
    FileHeader header;
    const base::Bytes signature = TRY_RESULT(reader.bytes(header.signature.size()));
    std::copy(signature.begin(), signature.end(), header.signature.begin());
    header.version = TRY_RESULT(reader.u8());
    header.fileLength = TRY_RESULT(reader.u32());
    return header;
}

bool needsLongHeader(base::Bytes body)
{
    constexpr std::size_t kBehindRectangle = 4 + 2 + kColourBytes; // rate and count, a tag's head, the colour
    return !body.empty() && rectangleBytes(body[0] >> 3U) + kBehindRectangle > kHeaderBodyBytes;
}

base::Result<FrameHeader> readFrameHeader(base::Bytes body)
{
    HeaderBody known{};
    std::copy_n(body.begin(), std::min(body.size(), known.size()), known.begin());

    const unsigned fieldBits = bitsOf(known, 0, kWidthFieldBits);
    const std::size_t rate = rectangleBytes(fieldBits);
    const std::size_t need = rate + 4;
    if (body.size() < need)
        return base::fail(base::ErrorCode::Truncated,
                          "movie header: needs " + std::to_string(need) + " bytes, " +
                              std::to_string(body.size()) + " left",
                          kFileHeaderBytes);

    FrameHeader header;
    header.width = pixelsFromTwips(bitsOf(known, kWidthFieldBits + fieldBits, fieldBits));
    header.height = pixelsFromTwips(bitsOf(known, kWidthFieldBits + 3 * fieldBits, fieldBits));
    // 8.8 fixed point with the fraction byte first; the fraction is dropped.
    header.frameRate = known[rate + 1];
    header.frameCount = known[rate + 2] | known[rate + 3] << 8;
    const std::size_t tag = rate + 4;
    header.hasBackground = (known[tag] | known[tag + 1] << 8) == (kBackgroundTag << 6 | kColourBytes);
    char text[8];
    std::snprintf(text, sizeof text, "%02X%02X%02X", known[tag + 2], known[tag + 3], known[tag + 4]);
    header.background = text;
    return header;
}

} // namespace media
