#pragma once

#include "swfc/Diagnostics.h"
#include "swfc/SourceFiles.h"

#include <cstdint>
#include <string>
#include <vector>

namespace swfc::source
{

/// Compiles a movie description (.xml), or a script alone (.as) as the only frame of an empty stage. The
/// first line of such a script may set the stage: // movie: version="7" rate="25" width="100" height="100"
/// @returns the whole movie file; empty when anything was reported
std::vector<std::uint8_t> compileMovie(const std::string& path, SourceFiles& files, Diagnostics& diagnostics);

} // namespace swfc::source
