#pragma once

#include <algorithm>
#include <string>
#include <string_view>

// Letters and digits of ASCII; every other byte stays what it is.
namespace base
{

constexpr char asciiLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }
constexpr char16_t asciiLower(char16_t c)
{
    return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c - u'A' + u'a') : c;
}

inline std::u16string asciiLowered(std::u16string_view text)
{
    std::u16string lowered(text);
    for (char16_t& c : lowered) c = asciiLower(c);
    return lowered;
}

constexpr bool isAsciiLetterOrDigit(char c)
{
    const char lower = asciiLower(c);
    return (lower >= 'a' && lower <= 'z') || (c >= '0' && c <= '9');
}

inline bool equalIgnoringAsciiCase(std::string_view a, std::string_view b)
{
    const auto lower = [](char c) { return asciiLower(c); };
    return std::ranges::equal(a, b, {}, lower, lower);
}

/// @returns the value of a hexadecimal digit; -1 for what is none.
template <class Character>
constexpr int hexDigit(Character c)
{
    if (c >= '0' && c <= '9') return c - '0';
    const Character lower = asciiLower(c);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

} // namespace base
