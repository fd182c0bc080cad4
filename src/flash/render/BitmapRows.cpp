#include "flash/render/BitmapRows.h"

namespace flash::render
{
namespace
{

// Each channel: from + (to - from) * part / 256.
std::uint32_t blend256(std::uint32_t from, std::uint32_t to, std::uint32_t part)
{
    const std::uint32_t rest = 256 - part;
    const std::uint32_t low = ((from & 0x00FF00FF) * rest + (to & 0x00FF00FF) * part + 0x00800080) >> 8;
    const std::uint32_t high = (from >> 8 & 0x00FF00FF) * rest + (to >> 8 & 0x00FF00FF) * part + 0x00800080;
    return (low & 0x00FF00FF) | (high & 0xFF00FF00);
}

void nearestRow(const PixelSource& source, Edges edges, const BitmapRow& row, std::size_t count,
                std::uint32_t* to)
{
    std::int64_t u = row.u, v = row.v;
    for (std::size_t i = 0; i < count; ++i, u += row.stepU, v += row.stepV)
        to[i] = source.row(placeWithin(v >> kPlaceBits, source.height,
                                       edges))[placeWithin(u >> kPlaceBits, source.width, edges)];
}

void smoothRow(const PixelSource& source, Edges edges, const BitmapRow& row, std::size_t count,
               std::uint32_t* to)
{
    std::int64_t u = row.u, v = row.v;
    const int width = source.width, height = source.height;
    for (std::size_t i = 0; i < count; ++i, u += row.stepU, v += row.stepV) {
        const std::int64_t column = u >> kPlaceBits, line = v >> kPlaceBits;
        const auto partX = static_cast<std::uint32_t>(u >> (kPlaceBits - 8) & 0xFF);
        const auto partY = static_cast<std::uint32_t>(v >> (kPlaceBits - 8) & 0xFF);
        const std::uint32_t* upper = source.row(placeWithin(line, height, edges));
        const std::uint32_t* lower = source.row(placeWithin(line + 1, height, edges));
        const int left = placeWithin(column, width, edges), right = placeWithin(column + 1, width, edges);
        to[i] = blend256(blend256(upper[left], upper[right], partX),
                         blend256(lower[left], lower[right], partX), partY);
    }
}

} // namespace

BitmapLoops plainBitmapLoops() { return {nearestRow, smoothRow}; }

BitmapLoops bitmapLoops()
{
    const BitmapLoops wide = wideBitmapLoops();
    return wide.nearest != nullptr ? wide : plainBitmapLoops();
}

} // namespace flash::render
