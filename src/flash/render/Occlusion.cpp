#include "flash/render/Occlusion.h"

#include "flash/render/Bounds.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <initializer_list>
#include <ranges>

namespace flash::render
{
namespace
{

// Beyond these a ground is not worth the look.
constexpr std::size_t kMostEdges = 64, kMostFills = 8;

bool isOpaque(const swf::FillStyle& fill, const swf::ColorTransform& color)
{
    const auto opaque = [&](swf::Rgba stop) { return swf::apply(color, stop).a == 255; };
    switch (fill.kind) {
    case swf::FillStyle::Kind::Solid: return opaque(fill.color);
    case swf::FillStyle::Kind::LinearGradient:
    case swf::FillStyle::Kind::RadialGradient:
    case swf::FillStyle::Kind::FocalGradient:
        return !fill.gradient.stops.empty() &&
               std::ranges::all_of(fill.gradient.stops,
                                   [&](const swf::Gradient::Stop& stop) { return opaque(stop.color); });
    case swf::FillStyle::Kind::Bitmap: break; // one may be empty, or shaded
    }
    return false;
}

// How often each fill of a layer goes around a point: what lies to the left of the point, and across its
// whole height, where outlines that are closed come to nothing.
class Windings
{
public:
    void add(std::uint16_t fill, int turn, bool isLeft)
    {
        if (fill == 0 || fill > kMostFills) return;
        m_all[fill - 1U] += turn;
        if (isLeft) m_left[fill - 1U] += turn;
    }
    /// @returns the number of the only fill that the point lies in, from 1; 0 when there is none or several
    [[nodiscard]] std::size_t only() const
    {
        std::size_t found = 0;
        for (std::size_t i = 0; i < kMostFills; ++i) {
            if (m_all[i] != 0 || std::abs(m_left[i]) > 1) return 0;
            if (m_left[i] == 0) continue;
            if (found != 0) return 0;
            found = i + 1;
        }
        return found;
    }

private:
    std::array<int, kMostFills> m_left{}, m_all{};
};

/// Where a point may come to lie, at any quality: as it is, and with each term of the matrix rounded to a
/// step of a grid, which is coarsest at medium quality.
struct Reach {
    double minX, maxX, minY, maxY;
};
Reach reachOf(const swf::Matrix& m, double x, double y)
{
    const swf::Point at = m.map(x, y);
    Reach reach{at.x, at.x, at.y, at.y};
    for (const double steps : {2.0, 4.0}) {
        const auto rounded = [steps](double term) { return std::nearbyint(term * steps); };
        const double onX = (rounded(m.a * x) + rounded(m.c * y) + rounded(m.tx)) / steps;
        const double onY = (rounded(m.b * x) + rounded(m.d * y) + rounded(m.ty)) / steps;
        reach = {std::min(reach.minX, onX), std::max(reach.maxX, onX), std::min(reach.minY, onY),
                 std::max(reach.maxY, onY)};
    }
    return reach;
}
Reach unite(const Reach& a, const Reach& b)
{
    return {std::min(a.minX, b.minX), std::max(a.maxX, b.maxX), std::min(a.minY, b.minY),
            std::max(a.maxY, b.maxY)};
}

/// The number of the fill that covers the box, from 1; 0 when several may, or none.
std::size_t fillAcross(const swf::ShapeLayer& layer, const swf::Matrix& m, const IntRect& box)
{
    if (layer.fills.size() > kMostFills) return 0;
    // What the arithmetic misses by.
    constexpr double kHair = 1e-6;
    const double left = box.left + kHair, right = box.right - kHair;
    const double top = box.top + kHair, bottom = box.bottom - kHair;
    const double middleX = (left + right) / 2, middleY = (top + bottom) / 2;
    Windings windings;
    for (const swf::EdgeRun& run : layer.runs) {
        if (run.fill0 == 0 && run.fill1 == 0) continue;
        swf::Point from = m.map(run.startX, run.startY);
        Reach fromReach = reachOf(m, run.startX, run.startY);
        for (const swf::Edge& edge : run.edges) {
            const swf::Point to = m.map(edge.anchorX, edge.anchorY);
            const Reach toReach = reachOf(m, edge.anchorX, edge.anchorY);
            // Around a point outside the triangle of a curve it goes as its chord does.
            Reach all = unite(fromReach, toReach);
            if (edge.curved) all = unite(all, reachOf(m, edge.controlX, edge.controlY));
            if (all.maxX >= left && all.minX <= right && all.maxY >= top && all.minY <= bottom) return 0;
            if ((from.y <= middleY) != (to.y <= middleY)) {
                const int turn = from.y <= middleY ? 1 : -1;
                const double at = from.x + (to.x - from.x) * ((middleY - from.y) / (to.y - from.y));
                windings.add(run.fill0, -turn, at < middleX);
                windings.add(run.fill1, turn, at < middleX);
            }
            from = to;
            fromReach = toReach;
        }
    }
    const std::size_t fill = windings.only();
    return fill <= layer.fills.size() ? fill : 0;
}

} // namespace

bool hidesBox(const swf::Shape& shape, const swf::Matrix& toDevice, const swf::ColorTransform& color,
              const IntRect& box)
{
    if (!isUsable(toDevice)) return false;
    std::size_t edges = 0;
    for (const swf::ShapeLayer& layer : shape.layers)
        for (const swf::EdgeRun& run : layer.runs) edges += run.edges.size();
    if (edges > kMostEdges) return false;
    return std::ranges::any_of(shape.layers, [&](const swf::ShapeLayer& layer) {
        const std::size_t fill = fillAcross(layer, toDevice, box);
        return fill != 0 && isOpaque(layer.fills[fill - 1], color);
    });
}

} // namespace flash::render
