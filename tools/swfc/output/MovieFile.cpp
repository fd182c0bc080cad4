#include "swfc/output/MovieFile.h"

#include "swfc/output/Records.h"

#include <zlib.h>

#include <cmath>

namespace swfc::output
{

void TagList::add(std::uint16_t code, std::span<const std::uint8_t> body)
{
    constexpr std::size_t kLongLength = 63;
    // Readers look for the long form in tags whose data is wide even when it is short; it is never wrong.
    if (body.size() < kLongLength) {
        m_out.u16(static_cast<std::uint32_t>((code << 6) | body.size()));
    } else {
        m_out.u16(static_cast<std::uint32_t>((code << 6) | kLongLength));
        m_out.u32(static_cast<std::uint32_t>(body.size()));
    }
    m_out.append(body);
}

std::vector<std::uint8_t> deflated(std::span<const std::uint8_t> bytes)
{
    uLongf size = compressBound(static_cast<uLong>(bytes.size()));
    std::vector<std::uint8_t> out(size);
    compress2(out.data(), &size, bytes.data(), static_cast<uLong>(bytes.size()), Z_BEST_COMPRESSION);
    out.resize(size);
    return out;
}

void TagList::insert(std::size_t at, const TagList& tags)
{
    auto& bytes = m_out.bytes();
    bytes.insert(bytes.begin() + static_cast<std::ptrdiff_t>(at), tags.bytes().begin(), tags.bytes().end());
}

std::vector<std::uint8_t> assembleMovie(const MovieHeader& header, const TagList& tags)
{
    BitWriter body;
    writeBounds(body, {0, header.width, 0, header.height});
    body.u16(static_cast<std::uint32_t>(std::lround(header.frameRate * 256)));
    body.u16(header.frameCount);
    body.append(tags.bytes());
    body.u16(0); // the end tag
    constexpr std::size_t kPlainBytes = 8;
    BitWriter file;
    file.u8(header.compressed ? 'C' : 'F');
    file.u8('W');
    file.u8('S');
    file.u8(static_cast<std::uint32_t>(header.version));
    file.u32(static_cast<std::uint32_t>(body.size() + kPlainBytes));
    if (header.compressed)
        file.append(deflated(body.bytes()));
    else
        file.append(body.bytes());
    return std::move(file.bytes());
}

} // namespace swfc::output
