#include "flash/render/HitTest.h"

#include "flash/render/Flatten.h"
#include "flash/render/RenderCacheImpl.h"
#include "flash/render/Stroker.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>
#include <unordered_map>

namespace flash::render
{
namespace
{

// Windings are counted along a ray to the left. What lies on the left or the upper edge is outside.
int crossing(FlatPoint from, FlatPoint to, swf::Point p)
{
    if ((from.y < p.y) == (to.y < p.y)) return 0;
    const double t = (p.y - from.y) / (static_cast<double>(to.y) - from.y);
    if (from.x + t * (static_cast<double>(to.x) - from.x) >= p.x) return 0;
    return to.y > from.y ? 1 : -1;
}

// Of a chain of lines. Most of a large outline lies above or below the point: whole groups of lines are
// passed over that do.
int crossings(std::span<const FlatPoint> points, swf::Point p)
{
    // A coordinate is less than p.y exactly when it is less than this, which takes no conversion.
    auto level = static_cast<float>(p.y);
    if (static_cast<double>(level) < p.y)
        level = std::nextafter(level, std::numeric_limits<float>::infinity());
    constexpr std::size_t kGroup = 16;
    int sum = 0;
    for (std::size_t first = 1; first < points.size(); first += kGroup) {
        const std::size_t end = std::min(first + kGroup, points.size());
        unsigned above = 0;
        for (std::size_t i = first - 1; i < end; ++i) above += points[i].y < level ? 1U : 0U;
        if (above == 0 || above == end - first + 1) continue;
        for (std::size_t i = first; i < end; ++i) sum += crossing(points[i - 1], points[i], p);
    }
    return sum;
}

bool fillsContain(const swf::ShapeLayer& styles, const FlatLayer& layer, swf::Point p)
{
    if (layer.points.empty() || p.x < layer.min.x || p.x > layer.max.x || p.y < layer.min.y ||
        p.y > layer.max.y)
        return false;
    std::unordered_map<std::uint16_t, int> windings;
    for (const FlatRun& run : layer.runs) {
        const int sum = crossings({layer.points.data() + run.first, run.count}, p);
        if (sum == 0) continue;
        windings[run.fill0] -= sum;
        windings[run.fill1] += sum;
    }
    return std::ranges::any_of(windings, [&](const auto& winding) {
        const auto [fill, count] = winding;
        return fill != 0 && fill <= styles.fills.size() &&
               (styles.nonZeroWinding ? count != 0 : count % 2 != 0);
    });
}

bool strokeContains(const swf::LineStyle& style, double width, std::span<const StrokePoint> path,
                    swf::Point p)
{
    StrokeOutline outline;
    addStroke(outline, path, style, width);
    int sum = 0;
    std::uint32_t first = 0;
    for (const std::uint32_t end : outline.contourEnds) {
        FlatPoint from = outline.points[end - 1];
        for (std::uint32_t i = first; i < end; ++i) {
            sum += crossing(from, outline.points[i], p);
            from = outline.points[i];
        }
        first = end;
    }
    return sum != 0;
}

// Twips are taken for pixels here, which is twenty times finer than anything that is drawn.
int finestStep() { return scaleStep({}); }

bool isFinite(swf::Point point) { return std::isfinite(point.x) && std::isfinite(point.y); }

bool linesContain(const swf::Shape& shape, const FlatShape& flat, swf::Point point, double hairlineTwips)
{
    for (std::size_t i = 0; i < flat.layers.size(); ++i) {
        const FlatLayer& layer = flat.layers[i];
        if (fillsContain(shape.layers[i], layer, point)) return true;
        for (const FlatStroke& stroke : layer.strokes) {
            const swf::LineStyle& style = shape.layers[i].lines[stroke.line - 1U];
            const double width = std::max<double>(style.width, hairlineTwips);
            if (strokeContains(style, width, {layer.strokePoints.data() + stroke.first, stroke.count}, point))
                return true;
        }
    }
    return false;
}

} // namespace

bool shapeContains(const swf::Shape& shape, swf::Point point, double hairlineTwips)
{
    return isFinite(point) && linesContain(shape, flatten(shape, finestStep()), point, hairlineTwips);
}

bool shapeContains(const std::shared_ptr<const swf::Shape>& shape, swf::Point point, RenderCache& cache,
                   double hairlineTwips)
{
    return isFinite(point) &&
           linesContain(*shape, *cache.impl().flatShape(shape, finestStep()), point, hairlineTwips);
}

} // namespace flash::render
