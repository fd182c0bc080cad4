#pragma once

#include "flash/swf/Movie.h"

#include <string>

namespace flash::swf
{

/// The actions of a block, one to a line: byte offset, name, and what its payload says. Bodies of functions
/// are indented. Damaged payloads show as far as they reach.
/// @param version of the movie: texts of versions before 6 are in the ANSI code page
std::string disassemble(ActionBlock block, int version);

/// All scripts of a movie, each with a heading that says where it stands.
std::string disassemble(const Movie& movie);

} // namespace flash::swf
