#pragma once

#include <string>
#include <string_view>

namespace script::vbscript
{

// Letter case for the alphabets that scripts use: Latin, Greek and Cyrillic. The C library's functions follow
// the process's locale, which a library must not depend on.

char16_t lowerCase(char16_t character);
char16_t upperCase(char16_t character);

/// @returns the form under which names are looked up.
std::u16string folded(std::u16string_view text);

/// Whether two texts are the same but for case.
bool sameText(std::u16string_view left, std::u16string_view right);

/// @returns negative, 0 or positive; by code unit, or by folded code unit for text comparison.
int compareText(std::u16string_view left, std::u16string_view right, bool ignoreCase);

/// @returns the position of `what` at or after `from`, or npos. Takes time in proportion to the text,
/// whatever the two hold.
std::size_t findText(std::u16string_view text, std::u16string_view what, std::size_t from, bool ignoreCase);

/// The last one that ends within the text.
std::size_t findLastText(std::u16string_view text, std::u16string_view what, bool ignoreCase);
std::size_t findBytes(std::string_view text, std::string_view what, std::size_t from);

bool isSpace(char16_t character);
std::u16string_view trimmed(std::u16string_view text);
inline bool isDigit(char16_t character) { return character >= u'0' && character <= u'9'; }
/// @returns 0 to 15, or -1
int hexDigit(char16_t character);

/// Widens a text of plain ASCII characters.
std::u16string widened(std::string_view ascii);

} // namespace script::vbscript
