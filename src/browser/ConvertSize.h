#pragma once

#include <QString>

namespace browser
{

/// A number of bytes for the user: up to 1536 in bytes, below 1536 x 1024 in Кб, from there on in Мб, with
/// two decimals at most. The two limits are not alike on purpose: 1536 itself is shown in bytes, 1572864 in
/// Мб.
QString ConvertSize(double bytes);

/// @returns the number, rounded to that many decimals (halves to even), without closing zeros and with the
/// locale's decimal separator
QString roundedText(double number, int decimals);

} // namespace browser
