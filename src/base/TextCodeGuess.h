#pragma once

#include <string_view>

namespace base
{

/// Which 8-bit code texts were most likely written in, by their bytes alone: how those above ASCII stand
/// together, and which letters of a language are common.
/// @param texts all there is, parted by line feeds or NUL bytes
/// @returns a name that TextCode::named() takes; empty when nothing speaks for any
std::string_view guessTextCode(std::string_view texts);

} // namespace base
