#pragma once

#include "base/ByteReader.h"
#include "flash/swf/Geometry.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <string>

namespace flash::swf
{

/// Reads the body of one tag: bit fields (most significant bit first) and little-endian bytes, mixed as the
/// format mixes them. A byte read starts at the next whole byte.
///
/// Reads past the end yield zero and are remembered in overrun(), from where on every read yields zero. So a
/// decoder reads a group of fields and asks once; loops over counts from the file ask in every round.
class BodyReader
{
public:
    BodyReader() = default;
    /// @param offset of the body's first byte in the movie, for messages.
    BodyReader(base::Bytes bytes, std::size_t offset) : m_bytes(bytes), m_offset(offset) {}

    [[nodiscard]] bool overrun() const { return m_overrun; }
    [[nodiscard]] base::Result<void> check() const;
    /// Whole bytes behind the position.
    [[nodiscard]] std::size_t remaining() const { return m_bytes.size() - position(); }
    [[nodiscard]] bool atEnd() const { return remaining() == 0; }
    /// Bytes from the start of the body, the byte in progress counted as read.
    [[nodiscard]] std::size_t position() const { return (m_bit + 7) >> 3U; }
    /// Bytes from the start of the movie.
    [[nodiscard]] std::size_t offset() const { return m_offset + position(); }

    void alignToByte() { m_bit = position() << 3U; }
    /// Past the end is an overrun.
    void seek(std::size_t position);
    void skip(std::size_t count) { (void)bytes(count); }

    /// @param count 0..32
    std::uint32_t bits(unsigned count)
    {
        if (count == 0) return 0;
        if (m_overrun || count > m_bytes.size() * 8 - m_bit) return fail();
        std::uint64_t word = 0;
        const std::size_t byte = m_bit >> 3U;
        if (byte + sizeof(word) <= m_bytes.size()) {
            std::memcpy(&word, m_bytes.data() + byte, sizeof(word));
            word = __builtin_bswap64(word);
        } else {
            for (std::size_t i = 0; i < sizeof(word); ++i)
                word = word << 8U | (byte + i < m_bytes.size() ? m_bytes[byte + i] : 0U);
        }
        word <<= m_bit & 7U;
        m_bit += count;
        return static_cast<std::uint32_t>(word >> (64 - count));
    }
    bool flag() { return bits(1) != 0; }
    /// Two's complement. @param count 0..32
    std::int32_t signedBits(unsigned count)
    {
        if (count == 0) return 0;
        const unsigned unused = 32 - count;
        return static_cast<std::int32_t>(bits(count) << unused) >> unused;
    }
    /// 16.16 fixed point.
    double fixedBits(unsigned count) { return signedBits(count) / 65536.0; }

    std::uint8_t u8() { return number<std::uint8_t>(); }
    std::uint16_t u16() { return number<std::uint16_t>(); }
    std::uint32_t u32() { return number<std::uint32_t>(); }
    std::int16_t i16() { return number<std::int16_t>(); }
    double fixed8() { return i16() / 256.0; }
    double fixed16() { return number<std::int32_t>() / 65536.0; }
    /// Not-a-number and infinities, which nothing downstream could use, become 0.
    double f32();
    /// Lives as long as the movie; empty after an overrun.
    base::Bytes bytes(std::size_t count);
    base::Bytes rest() { return bytes(remaining()); }
    /// Up to a NUL byte; one that is missing at the very end is forgiven.
    std::string string();

    Rgba rgb();
    Rgba rgba();
    Rgba color(bool withAlpha) { return withAlpha ? rgba() : rgb(); }
    Rect rect();
    Matrix matrix();
    ColorTransform colorTransform(bool withAlpha);

private:
    template <class T>
    T number()
    {
        static_assert(std::endian::native == std::endian::little);
        if (m_overrun || sizeof(T) > remaining()) return static_cast<T>(fail());
        T value;
        std::memcpy(&value, m_bytes.data() + position(), sizeof(T));
        m_bit = (position() + sizeof(T)) << 3U;
        return value;
    }
    std::uint32_t fail()
    {
        m_overrun = true;
        m_bit = m_bytes.size() << 3U;
        return 0;
    }

    base::Bytes m_bytes; // kept alive by the movie
    std::size_t m_offset = 0;
    std::size_t m_bit = 0;
    bool m_overrun = false;
};

/// Coordinates are kept within this many twips of the origin (half a million pixels), so that sums and
/// differences of any two of them stay inside 32 bits.
constexpr std::int32_t kMaxCoordinate = 1 << 29;
inline std::int32_t clampCoordinate(std::int64_t twips)
{
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(twips, -kMaxCoordinate, kMaxCoordinate));
}

} // namespace flash::swf
