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

} // namespace base
