#pragma once

#include <algorithm>
#include <string_view>

// Letters and digits of ASCII; every other byte stays what it is.
namespace base
{

constexpr char asciiLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

inline bool equalIgnoringAsciiCase(std::string_view a, std::string_view b)
{
    return std::ranges::equal(a, b, {}, asciiLower, asciiLower);
}

/// @returns the value of a hexadecimal digit; -1 for what is none.
constexpr int hexDigit(char c)
{
    if (c >= '0' && c <= '9') return c - '0';
    const char lower = asciiLower(c);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

} // namespace base
