#include "base/PercentCode.h"

#include "base/Ascii.h"

namespace base
{

std::string percentDecoded(std::string_view text, Plus plus)
{
    std::string decoded;
    decoded.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const int high = text[i] == '%' && i + 2 < text.size() ? hexDigit(text[i + 1]) : -1;
        const int low = high >= 0 ? hexDigit(text[i + 2]) : -1;
        if (low >= 0) {
            decoded += static_cast<char>(high * 16 + low);
            i += 2;
        } else {
            decoded += text[i] == '+' && plus == Plus::Space ? ' ' : text[i];
        }
    }
    return decoded;
}

std::string percentEncoded(std::string_view bytes, std::string_view kept)
{
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string result;
    for (const char c : bytes) {
        if (isAsciiLetterOrDigit(c) || kept.find(c) != std::string_view::npos) {
            result += c;
            continue;
        }
        const auto byte = static_cast<unsigned char>(c);
        result += '%';
        result += kDigits[byte >> 4U];
        result += kDigits[byte & 15U];
    }
    return result;
}

} // namespace base
