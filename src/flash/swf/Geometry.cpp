#include "flash/swf/Geometry.h"

#include <algorithm>
#include <limits>

namespace flash::swf
{
namespace
{

std::int16_t wrap16(int value) { return static_cast<std::int16_t>(static_cast<std::uint16_t>(value)); }

// The genuine player keeps multipliers in 8.8 fixed point and drops the fraction of a product.
std::int16_t multiply(std::int16_t a, std::int16_t b) { return wrap16((a * b) >> 8); }

std::int16_t addend(std::int16_t outerMul, std::int16_t outerAdd, std::int16_t innerAdd)
{
    return wrap16(((outerMul * innerAdd) >> 8) + outerAdd);
}

std::uint8_t channel(std::uint8_t value, std::int16_t mul, std::int16_t add)
{
    return static_cast<std::uint8_t>(std::clamp(((value * mul) >> 8) + add, 0, 255));
}

std::int32_t saturate(double value)
{
    if (std::isnan(value)) return 0;
    constexpr double kLow = std::numeric_limits<std::int32_t>::min();
    constexpr double kHigh = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::clamp(value, kLow, kHigh));
}

} // namespace

ColorTransform operator*(const ColorTransform& outer, const ColorTransform& inner)
{
    return {multiply(outer.redMul, inner.redMul),
            multiply(outer.greenMul, inner.greenMul),
            multiply(outer.blueMul, inner.blueMul),
            multiply(outer.alphaMul, inner.alphaMul),
            addend(outer.redMul, outer.redAdd, inner.redAdd),
            addend(outer.greenMul, outer.greenAdd, inner.greenAdd),
            addend(outer.blueMul, outer.blueAdd, inner.blueAdd),
            addend(outer.alphaMul, outer.alphaAdd, inner.alphaAdd)};
}

Rgba apply(const ColorTransform& t, Rgba c)
{
    return {channel(c.r, t.redMul, t.redAdd), channel(c.g, t.greenMul, t.greenAdd),
            channel(c.b, t.blueMul, t.blueAdd), channel(c.a, t.alphaMul, t.alphaAdd)};
}

Rect mapBounds(const Matrix& matrix, const Rect& rect)
{
    if (rect.isEmpty()) return rect;
    const Point corners[] = {matrix.map(rect.xMin, rect.yMin), matrix.map(rect.xMax, rect.yMin),
                             matrix.map(rect.xMin, rect.yMax), matrix.map(rect.xMax, rect.yMax)};
    double left = corners[0].x, right = left, top = corners[0].y, bottom = top;
    for (const Point& p : corners) {
        left = std::min(left, p.x);
        right = std::max(right, p.x);
        top = std::min(top, p.y);
        bottom = std::max(bottom, p.y);
    }
    return {saturate(std::floor(left)), saturate(std::ceil(right)), saturate(std::floor(top)),
            saturate(std::ceil(bottom))};
}

Rect unite(const Rect& a, const Rect& b)
{
    if (a.isEmpty()) return b;
    if (b.isEmpty()) return a;
    return {std::min(a.xMin, b.xMin), std::max(a.xMax, b.xMax), std::min(a.yMin, b.yMin),
            std::max(a.yMax, b.yMax)};
}

Rect intersect(const Rect& a, const Rect& b)
{
    if (a.isEmpty() || b.isEmpty()) return {};
    return {std::max(a.xMin, b.xMin), std::min(a.xMax, b.xMax), std::max(a.yMin, b.yMin),
            std::min(a.yMax, b.yMax)};
}

} // namespace flash::swf
