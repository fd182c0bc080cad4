#pragma once

#include "script/Dispatch.h"
#include "script/vbscript/Locale.h"

namespace script::vbscript
{

// Conversions between variants, with the engine's rules: halves round to the even neighbour, Empty is 0 or
// "", Null is an error (94), objects and arrays do not convert (13; an object's default value is asked for
// before).

Result<double> toDouble(const Value& value, const Locale& locale);
/// @errors Overflow outside 32 bits
Result<std::int32_t> toLong(const Value& value, const Locale& locale);
Result<std::int16_t> toInteger(const Value& value, const Locale& locale);
Result<std::uint8_t> toByte(const Value& value, const Locale& locale);
Result<float> toSingle(const Value& value, const Locale& locale);
/// @returns ten-thousandths
Result<std::int64_t> toCurrency(const Value& value, const Locale& locale);
Result<bool> toBoolean(const Value& value, const Locale& locale);
/// What CBool makes of the texts True, False, #TRUE# and #FALSE# in any case; nothing of others.
std::optional<bool> booleanWord(std::u16string_view text);
Result<double> toDate(const Value& value, const Locale& locale);
Result<std::u16string> toText(const Value& value, const Locale& locale);
/// The same without a copy when the value is a string already.
Result<Value> toStringValue(const Value& value, const Locale& locale);

/// Reads a number as a user of the locale writes it: blanks around, a sign before or behind, parentheses,
/// thousands separators, a currency sign, an exponent, &H and &O.
std::optional<double> parseNumber(std::u16string_view text, const Locale& locale);

/// Whether IsNumeric and IsDate say yes.
bool isNumericText(std::u16string_view text, const Locale& locale);

/// A number as CStr writes it, with at most 15 (7 for Single) significant digits.
std::u16string formatReal(double number, int significantDigits, const Locale& locale);

/// Rounds halves to the even neighbour.
double roundHalfEven(double number);

/// What VarType names; "Nothing" and class names for objects.
std::u16string typeNameOf(const Value& value);

/// "Type mismatch: '[string: "abc"]'": how values are shown in error texts.
Failed mismatch(const Value& value);
std::u16string quoted(const Value& value);

} // namespace script::vbscript
