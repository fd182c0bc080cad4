#pragma once

#include "flash/swf/Movie.h"

namespace flash::swf
{

/// A summary to read: header fields, what the movie defines, a table of its tags, its warnings. UTF-8, lines
/// end in a line feed.
std::string describe(const Movie& movie);

} // namespace flash::swf
