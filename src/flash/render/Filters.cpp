#include "flash/render/Filters.h"

namespace flash::render
{
Growth filterGrowth(const swf::Filter&, double) { return {}; }
Growth filterGrowth(std::span<const swf::Filter>, double) { return {}; }
IntRect grown(const IntRect& r, const Growth& g)
{
    return {r.left - g.left, r.top - g.top, r.right + g.right, r.bottom + g.bottom};
}
void applyFilters(std::span<const swf::Filter>, SurfaceView, double) {}
} // namespace flash::render
