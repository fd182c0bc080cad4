#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace flash::vm
{

/// Formats as trace() and string conversion print: 15 significant digits, exponents outside 1e-5 .. 1e15.
/// @param radix 2 to 36; other bases than 10 show the integer part only.
std::u16string formatNumber(double number, int radix = 10);

/// Reads a whole text as a number by the rules of a movie version: trailing garbage is ignored by version 4
/// only.
/// @returns not-a-number when the text is no number.
double parseNumber(std::u16string_view text, int version);

/// The functions parseFloat and parseInt. @param radix 0: decided by the prefix.
double parseFloatPrefix(std::u16string_view text);
double parseIntPrefix(std::u16string_view text, int radix);

/// Modulo 2^32; not-a-number and infinities are 0.
std::int32_t toInt32(double number);
std::uint32_t toUint32(double number);

} // namespace flash::vm
