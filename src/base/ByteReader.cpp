#include "base/ByteReader.h"

namespace base
{

Result<std::string_view> ByteReader::cString()
{
    const Bytes ahead = rest();
    if (!ahead.empty()) {
        if (const void* end = std::memchr(ahead.data(), 0, ahead.size())) {
            const auto length =
                static_cast<std::size_t>(static_cast<const std::uint8_t*>(end) - ahead.data());
            m_position += length + 1;
            return std::string_view(reinterpret_cast<const char*>(ahead.data()), length);
        }
    }
    return fail(ErrorCode::Truncated, "text without its closing NUL byte", m_position);
}

tl::unexpected<Error> ByteReader::tooShort(std::size_t need) const
{
    return fail(ErrorCode::Truncated,
                "needs " + std::to_string(need) + " bytes, " + std::to_string(remaining()) + " left",
                m_position);
}

} // namespace base
