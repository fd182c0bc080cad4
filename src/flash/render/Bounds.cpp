#include "flash/render/Bounds.h"

#include "flash/render/Canvas.h"
#include "flash/render/Stroker.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>

namespace flash::render
{
namespace
{

int saturate(double value)
{
    constexpr double kFar = 1 << 30;
    return static_cast<int>(std::clamp(value, -kFar, kFar));
}

IntRect grownBy(const IntRect& rect, double pixels)
{
    if (rect.isEmpty()) return {};
    const double by = std::ceil(pixels);
    return {saturate(rect.left - by), saturate(rect.top - by), saturate(rect.right + by),
            saturate(rect.bottom + by)};
}

} // namespace

bool isUsable(const swf::Matrix& m)
{
    constexpr double kMax = 1e15;
    return std::ranges::all_of(std::initializer_list<double>{m.a, m.b, m.c, m.d, m.tx, m.ty},
                               [](double v) { return std::abs(v) < kMax; });
}

IntRect boundsOf(const swf::Matrix& m, double xMin, double yMin, double xMax, double yMax)
{
    const swf::Point corners[] = {m.map(xMin, yMin), m.map(xMax, yMin), m.map(xMin, yMax), m.map(xMax, yMax)};
    double left = corners[0].x, right = left, top = corners[0].y, bottom = top;
    for (const swf::Point& p : corners) {
        if (!std::isfinite(p.x) || !std::isfinite(p.y)) return {};
        left = std::min(left, p.x);
        right = std::max(right, p.x);
        top = std::min(top, p.y);
        bottom = std::max(bottom, p.y);
    }
    return {saturate(std::floor(left)), saturate(std::floor(top)), saturate(std::ceil(right)),
            saturate(std::ceil(bottom))};
}

IntRect deviceBounds(const swf::Rect& twips, const swf::Matrix& toDevice)
{
    if (twips.isEmpty() || !isUsable(toDevice)) return {};
    return grownBy(boundsOf(toDevice, twips.xMin, twips.yMin, twips.xMax, twips.yMax), 1);
}

IntRect deviceBounds(const swf::Shape& shape, const swf::Matrix& toDevice, double pixelScale)
{
    const IntRect stated = deviceBounds(shape.bounds, toDevice);
    const IntRect edges = deviceBounds(shape.edgeBounds, toDevice);
    double reach = 0;
    for (const swf::ShapeLayer& layer : shape.layers)
        for (const swf::LineStyle& line : layer.lines) {
            const double half = strokeWidth(line, toDevice, pixelScale) / 2;
            const double pointed =
                line.join == swf::LineStyle::Join::Miter ? std::max(line.miterLimit, 1.5) : 1.5;
            reach = std::max(reach, half * pointed);
        }
    // Stated bounds hold the strokes at the shape's own scale; stretched unevenly they may reach further.
    return unite(stated, grownBy(edges, std::min(reach, 1e9)));
}

} // namespace flash::render
