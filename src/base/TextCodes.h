#pragma once

#include <string>
#include <string_view>

namespace base
{

// The one place that knows text encodings. The system's ANSI code page is windows-1251.

/// @returns UTF-8; the one undefined code (0x98) becomes U+FFFD.
std::string utf8FromAnsi(std::string_view ansi);

/// @param replacement stands for each character that windows-1251 lacks; '\0' drops such characters.
std::string ansiFromUtf8(std::string_view utf8, char replacement = '?');

/// @returns UTF-16; malformed sequences become U+FFFD, one for each offending byte.
std::u16string utf16FromUtf8(std::string_view utf8);

/// As utf16FromUtf8, by the rules of players that knew no malformed text: the first byte alone says how many
/// belong together. What does not then make a character is one U+FFFD; what the text is too short for ends
/// it; a byte that only continues stands for the character of its own number.
std::u16string utf16FromLooseUtf8(std::string_view utf8);

/// As utf16FromLooseUtf8, by players that did not look at the bytes that follow the first at all: each adds
/// what it is above 0x80, which may be less than nothing.
std::u16string utf16FromCarelessUtf8(std::string_view utf8);

/// @returns UTF-8. A lone surrogate is written by itself, as three bytes, so that no text is lost.
std::string utf8FromUtf16(std::u16string_view utf16);

std::u16string utf16FromAnsi(std::string_view ansi);
std::string ansiFromUtf16(std::u16string_view utf16, char replacement = '?');

/// @returns whether the bytes are well-formed UTF-8 (lone surrogates are not).
bool isUtf8(std::string_view bytes);

} // namespace base
