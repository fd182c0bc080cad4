#pragma once

#include "flash/swf/Movie.h"

#include <string>

namespace flash::swf
{

/// The texts of a movie as they stand in the file: of fields, labels and scripts, a line feed after each.
/// What they show of the code that they are written in, where the movie is older than version 6.
std::string textsOf(const Movie& movie);

} // namespace flash::swf
