#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace base
{

// The program's texts are UTF-8, and so are the names of nearly all files. Old archives and discs brought
// some whose names are windows-1251 bytes: they are shown as what they were meant to be, and found again by
// that.

/// @returns the path as UTF-8: each name in it that is none is taken as windows-1251, which reads any byte.
std::string textOfPath(std::string_view bytes);

/// @returns the file that a text names: that of the very bytes when there is one, else that which
/// textOfPath()
///          shows so; the very bytes when there is neither. Looks at the disk when a name is not plain ASCII.
std::filesystem::path pathNamed(std::string_view text);

} // namespace base
