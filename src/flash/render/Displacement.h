#pragma once

#include "flash/render/Surface.h"
#include "flash/swf/Movie.h"

namespace flash::render
{

/// Each pixel becomes the one that stands, as the map tells, beside it: `scale * (channel - 128) / 256`
/// pixels away, between pixels by their mean. Where the map does not reach nothing moves.
/// @param surface the whole of what is filtered: its edges are those that the filter's mode is about
/// @param scale device pixels to a pixel of the stage, and of the map
void displace(const swf::DisplacementMapFilter& filter, SurfaceView surface, double scale);

} // namespace flash::render
