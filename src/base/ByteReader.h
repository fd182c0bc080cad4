#pragma once

#include "base/Result.h"

#include <bit>
#include <cstdint>
#include <cstring>
#include <span>

namespace base
{

using Bytes = std::span<const std::uint8_t>;

/// Reads little-endian values from a span it does not own. Every read is checked; a failed read leaves the
/// position where it was. Cheap to copy, which is how callers look ahead.
class ByteReader
{
public:
    ByteReader() = default;
    explicit ByteReader(Bytes bytes) : m_bytes(bytes) {}

    [[nodiscard]] std::size_t position() const { return m_position; }
    [[nodiscard]] std::size_t remaining() const { return m_bytes.size() - m_position; }
    [[nodiscard]] bool atEnd() const { return m_position == m_bytes.size(); }
    [[nodiscard]] Bytes rest() const { return m_bytes.subspan(m_position); }

    Result<std::uint8_t> u8() { return number<std::uint8_t>(); }
    Result<std::uint16_t> u16() { return number<std::uint16_t>(); }
    Result<std::uint32_t> u32() { return number<std::uint32_t>(); }
    Result<std::int16_t> i16() { return number<std::int16_t>(); }
    Result<std::int32_t> i32() { return number<std::int32_t>(); }
    Result<float> f32() { return number<float>(); }

    /// @returns the next `count` bytes, which live as long as the reader's input.
    Result<Bytes> bytes(std::size_t count)
    {
        if (count > remaining()) return tooShort(count);
        const Bytes found = m_bytes.subspan(m_position, count);
        m_position += count;
        return found;
    }

    Result<void> skip(std::size_t count)
    {
        if (count > remaining()) return tooShort(count);
        m_position += count;
        return {};
    }

    /// Reads up to a NUL byte and moves past it.
    /// @errors Truncated when there is no NUL byte before the end.
    Result<std::string_view> cString();

private:
    template <class T>
    Result<T> number()
    {
        static_assert(std::endian::native == std::endian::little);
        if (sizeof(T) > remaining()) return tooShort(sizeof(T));
        T value;
        std::memcpy(&value, m_bytes.data() + m_position, sizeof(T));
        m_position += sizeof(T);
        return value;
    }
    [[nodiscard]] tl::unexpected<Error> tooShort(std::size_t need) const;

    Bytes m_bytes; // kept alive by whoever made the reader
    std::size_t m_position = 0;
};

} // namespace base
