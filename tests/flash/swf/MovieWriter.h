#pragma once

#include "flash/swf/Geometry.h"
#include "flash/swf/Movie.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string_view>
#include <vector>

namespace flash::swf
{

using ByteList = std::vector<std::uint8_t>;

/// Writes what the reader reads: bit fields from the most significant bit on, numbers little-endian on whole
/// bytes. Calls are chained in the order of the file.
class BodyWriter
{
public:
    BodyWriter& bits(std::uint32_t value, unsigned count)
    {
        while (count-- > 0) {
            if (m_used == 0) m_bytes.push_back(0);
            m_bytes.back() |= static_cast<std::uint8_t>((value >> count & 1U) << (7 - m_used));
            m_used = (m_used + 1) % 8;
        }
        return *this;
    }
    BodyWriter& signedBits(std::int32_t value, unsigned count)
    {
        return bits(static_cast<std::uint32_t>(value), count);
    }
    BodyWriter& align()
    {
        m_used = 0;
        return *this;
    }
    BodyWriter& number(std::uint64_t value, unsigned bytes)
    {
        align();
        for (unsigned i = 0; i < bytes; ++i) m_bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
        return *this;
    }
    BodyWriter& u8(std::uint32_t value) { return number(value, 1); }
    BodyWriter& u16(std::uint32_t value) { return number(value, 2); }
    BodyWriter& u32(std::uint32_t value) { return number(value, 4); }
    BodyWriter& i16(std::int32_t value) { return number(static_cast<std::uint32_t>(value), 2); }
    BodyWriter& text(std::string_view text) { return raw({text.begin(), text.end()}).u8(0); }
    BodyWriter& raw(const ByteList& bytes)
    {
        align();
        m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end());
        return *this;
    }
    BodyWriter& rect(std::int32_t xMin, std::int32_t xMax, std::int32_t yMin, std::int32_t yMax)
    {
        align().bits(20, 5);
        return signedBits(xMin, 20).signedBits(xMax, 20).signedBits(yMin, 20).signedBits(yMax, 20);
    }
    BodyWriter& translation(std::int32_t x, std::int32_t y)
    {
        return align().bits(0, 2).bits(20, 5).signedBits(x, 20).signedBits(y, 20);
    }
    BodyWriter& rgb(Rgba c) { return u8(c.r).u8(c.g).u8(c.b); }
    BodyWriter& rgba(Rgba c) { return rgb(c).u8(c.a); }

    // Shape records.
    BodyWriter& indexWidths(unsigned fillBits, unsigned lineBits)
    {
        m_fillBits = fillBits;
        m_lineBits = lineBits;
        return align().bits(fillBits, 4).bits(lineBits, 4);
    }
    BodyWriter& moveTo(std::int32_t x, std::int32_t y)
    {
        return bits(1, 6).bits(20, 5).signedBits(x, 20).signedBits(y, 20);
    }
    BodyWriter& fill1(unsigned index) { return bits(0b000100, 6).bits(index, m_fillBits); }
    BodyWriter& fill0(unsigned index) { return bits(0b000010, 6).bits(index, m_fillBits); }
    BodyWriter& line(unsigned index) { return bits(0b001000, 6).bits(index, m_lineBits); }
    BodyWriter& lineTo(std::int32_t dx, std::int32_t dy)
    {
        return bits(0b11, 2).bits(14, 4).bits(1, 1).signedBits(dx, 16).signedBits(dy, 16);
    }
    BodyWriter& curveTo(std::int32_t cx, std::int32_t cy, std::int32_t ax, std::int32_t ay)
    {
        bits(0b10, 2).bits(14, 4);
        return signedBits(cx, 16).signedBits(cy, 16).signedBits(ax, 16).signedBits(ay, 16);
    }
    BodyWriter& endShape() { return bits(0, 6).align(); }

    [[nodiscard]] const ByteList& bytes() const { return m_bytes; }

private:
    ByteList m_bytes;
    unsigned m_used = 0; // bits of the last byte
    unsigned m_fillBits = 0, m_lineBits = 0;
};

inline ByteList tag(unsigned code, const BodyWriter& body = {})
{
    return BodyWriter()
        .u16(code << 6U | 63U)
        .u32(static_cast<std::uint32_t>(body.bytes().size()))
        .raw(body.bytes())
        .bytes();
}
inline const ByteList kShowFrame = {0x40, 0x00};
inline const ByteList kEnd = {0x00, 0x00};

/// A plain movie of 100 x 80 pixels and 12.5 frames a second; an end tag is added.
inline ByteList movieBytes(int version, const std::vector<ByteList>& tags, unsigned frameCount = 1)
{
    BodyWriter out;
    out.raw({'F', 'W', 'S'}).u8(static_cast<std::uint32_t>(version)).u32(0);
    out.rect(0, 2000, 0, 1600).u16(0x0C80).u16(frameCount);
    for (const ByteList& one : tags) out.raw(one);
    ByteList bytes = out.raw(kEnd).bytes();
    for (unsigned i = 0; i < 4; ++i) bytes[4 + i] = static_cast<std::uint8_t>(bytes.size() >> (8 * i));
    return bytes;
}

/// Parses and hands over the movie; an empty one where that fails, with a failed expectation.
inline std::shared_ptr<const Movie> parsed(const ByteList& file, const ParseLimits& limits = {})
{
    auto movie = parseMovie(file, limits);
    EXPECT_TRUE(movie) << movie.error().what;
    return movie ? *movie : std::make_shared<const Movie>();
}

/// The definition with the id, or null with a failed expectation when it is missing or of another kind.
template <class T>
const T* definition(const Movie& movie, std::uint16_t id)
{
    const Character* character = movie.character(id);
    const T* found = character ? std::get_if<T>(&character->data) : nullptr;
    EXPECT_NE(found, nullptr) << "no such character: " << id;
    return found;
}

/// The control tag at the place, or null with a failed expectation.
template <class T>
const T* control(const Timeline& timeline, std::size_t frame, std::size_t index)
{
    const T* found = nullptr;
    if (frame < timeline.frames.size() && index < timeline.frames[frame].tags.size())
        found = std::get_if<T>(&timeline.frames[frame].tags[index]);
    EXPECT_NE(found, nullptr) << "frame " << frame << ", tag " << index;
    return found;
}

/// A movie with at least one of every kind of tag that defines or controls something.
ByteList sampleMovie();
ByteList deflated(const ByteList& plain);
ByteList compressedMovie(const ByteList& plain);

} // namespace flash::swf
