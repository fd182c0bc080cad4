#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace swfc::output
{

/// Appends bits, most significant first, and little-endian numbers, which start at a whole byte.
class BitWriter
{
public:
    void bits(std::uint32_t value, int count)
    {
        for (int i = count - 1; i >= 0; --i) {
            if (m_free == 0) {
                m_bytes.push_back(0);
                m_free = 8;
            }
            --m_free;
            m_bytes.back() = static_cast<std::uint8_t>(m_bytes.back() | (((value >> i) & 1U) << m_free));
        }
    }
    void signedBits(std::int32_t value, int count) { bits(static_cast<std::uint32_t>(value), count); }
    void align() { m_free = 0; }

    void u8(std::uint32_t value)
    {
        align();
        m_bytes.push_back(static_cast<std::uint8_t>(value));
    }
    void u16(std::uint32_t value)
    {
        u8(value);
        u8(value >> 8);
    }
    void u32(std::uint32_t value)
    {
        u16(value);
        u16(value >> 16);
    }
    void append(std::span<const std::uint8_t> bytes)
    {
        align();
        m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end());
    }
    /// With a zero byte at the end.
    void text(std::string_view text)
    {
        align();
        m_bytes.insert(m_bytes.end(), text.begin(), text.end());
        m_bytes.push_back(0);
    }
    void float32(double value);
    void fixed16(double value) { u32(static_cast<std::uint32_t>(static_cast<std::int32_t>(value * 65536))); }
    void fixed8(double value) { u16(static_cast<std::uint32_t>(static_cast<std::int32_t>(value * 256))); }

    [[nodiscard]] std::size_t size() const { return m_bytes.size(); }
    [[nodiscard]] std::vector<std::uint8_t>& bytes() { return m_bytes; }
    [[nodiscard]] const std::vector<std::uint8_t>& bytes() const { return m_bytes; }

private:
    std::vector<std::uint8_t> m_bytes;
    int m_free = 0; // bits of the last byte not used yet
};

/// @returns how many bits hold the value with its sign.
int bitsForSigned(std::int32_t value);
int bitsForUnsigned(std::uint32_t value);

} // namespace swfc::output
