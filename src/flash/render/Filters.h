#pragma once

#include "flash/render/Surface.h"
#include "flash/swf/Movie.h"

#include <span>

namespace flash::render
{

/// How far a filter's result may reach beyond its source, in device pixels, each at least 0.
struct Growth {
    int left = 0, top = 0, right = 0, bottom = 0;
    friend bool operator==(const Growth&, const Growth&) = default;
};

/// @param scale device pixels to a pixel of the stage: filter distances are in pixels of the stage
Growth filterGrowth(const swf::Filter& filter, double scale = 1);
/// Of a whole chain: the sum.
Growth filterGrowth(std::span<const swf::Filter> filters, double scale = 1);
/// How far from a pixel the source may lie that decides about it, in the chain as a whole: filters that only
/// act within what they filter look beyond it, too.
Growth filterReach(std::span<const swf::Filter> filters, double scale = 1);
IntRect grown(const IntRect& rect, const Growth& growth);

/// Applies a filter in place. The surface must already have room for the result: pixels that would fall
/// outside are lost, and everything outside counts as transparent.
void applyFilter(const swf::Filter& filter, SurfaceView surface, double scale = 1);
/// @param surface holds what is filtered with filterGrowth() of the chain around it, on each side
void applyFilters(std::span<const swf::Filter> filters, SurfaceView surface, double scale = 1);

/// Whether a chain asks where what it filters begins and ends, and may look anywhere in it: it is never to be
/// given a part.
[[nodiscard]] bool needsWhole(std::span<const swf::Filter> filters);

} // namespace flash::render
