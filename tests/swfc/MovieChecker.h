#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// Takes a movie file apart by its own reading of the format, apart from the code that wrote it, and says
/// what is wrong: lengths, end tags, frame counts, action boundaries, branch targets and block lengths.
/// @returns one line for each fault
std::vector<std::string> checkMovie(const std::vector<std::uint8_t>& file);
