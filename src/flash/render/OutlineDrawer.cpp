#include "flash/render/OutlineDrawer.h"

#include "flash/render/Bounds.h"
#include "flash/render/Compose.h"

#include <cmath>

namespace flash::render
{
namespace
{

int toSubpixels(double pixels) { return static_cast<int>(std::lrint(pixels * kSubpixels)); }

// A point on the grid, in its steps from the upper left corner of an area.
struct GridPoint {
    int x = 0, y = 0;
};

// Enough for any term of a point that is near the surface after all.
constexpr double kFarTerm = 1e17;

std::int64_t toTerm(double value) { return std::lrint(std::clamp(value, -kFarTerm, kFarTerm)); }

int toSteps(std::int64_t value)
{
    constexpr std::int64_t kFar = 1 << 28;
    return static_cast<int>(std::clamp(value, -kFar, kFar));
}
int toSteps(double value) { return toSteps(toTerm(value)); }

// Maps points onto a grid as the genuine player does: what each term of the matrix adds is rounded by itself.
class GridMap
{
public:
    GridMap(const swf::Matrix& m, const IntRect& area, int steps)
        : m_a(m.a * steps), m_b(m.b * steps), m_c(m.c * steps), m_d(m.d * steps), m_x(toTerm(m.tx * steps)),
          m_y(toTerm(m.ty * steps)), m_left(area.left * steps), m_top(area.top * steps)
    {
    }
    [[nodiscard]] GridPoint operator()(FlatPoint p) const
    {
        return {toSteps(toTerm(m_a * p.x) + toTerm(m_c * p.y) + m_x) - m_left,
                toSteps(toTerm(m_b * p.x) + toTerm(m_d * p.y) + m_y) - m_top};
    }

private:
    double m_a, m_b, m_c, m_d;
    std::int64_t m_x, m_y;
    int m_left, m_top; // taken off last: what is too far to be told lies in the same place for any area
};

// Points that are rounded may come to lie a little outside.
IntRect roundedOn(Coverage coverage, const IntRect& bounds)
{
    if (gridSteps(coverage) == 0 || bounds.isEmpty()) return bounds;
    return {bounds.left - 1, bounds.top - 1, bounds.right + 1, bounds.bottom + 1};
}

void uniteInto(Mask& building, const Mask& part)
{
    if (part.isRectangle() && part.bounds.isEmpty()) return;
    for (int y = part.bounds.top; y < part.bounds.bottom; ++y)
        uniteCoverage(building.at(part.bounds.left, y), part.at(part.bounds.left, y),
                      static_cast<std::size_t>(part.bounds.width()));
}

// Lets rows of a band through.
class BandSink final : public SpanSink
{
public:
    BandSink(SpanSink& to, int top, int bottom) : m_to(to), m_top(top), m_bottom(bottom) {}
    void row(int y, std::span<const StyleSpan> spans) override
    {
        if (y >= m_top && y < m_bottom) m_to.row(y, spans);
    }

private:
    SpanSink& m_to;
    int m_top, m_bottom;
};

} // namespace

// A layer so rich that its cells do not fit is converted in parts, from above.
// @param wholeHeight of what the area is a band of
template <class Feed>
void OutlineDrawer::convertPart(const Destination& to, const IntRect& area, int wholeHeight, FillRule rule,
                                const Feed& feed, SpanSink& sink)
{
    m_converter.begin(area, to.coverage, static_cast<std::uint32_t>(styles().size()), wholeHeight);
    feed(area);
    if (m_converter.isOverfull() && area.height() > 1) {
        const int middle = area.top + area.height() / 2;
        convertPart(to, {area.left, area.top, area.right, middle}, middle - area.top, rule, feed, sink);
        convertPart(to, {area.left, middle, area.right, area.bottom}, area.bottom - middle, rule, feed, sink);
        return;
    }
    m_converter.sweep(rule, sink);
}

template <class Feed>
void OutlineDrawer::convert(const Destination& to, const IntRect& bounds, FillRule rule, const Feed& feed)
{
    const IntRect area = intersect(to.clip, bounds);
    if (area.isEmpty()) return;
    if (to.stamp != nullptr) {
        convertPart(to, area, area.height(), rule, feed, *to.stamp);
        return;
    }
    if (to.building == nullptr) {
        m_painter.setTarget(to.target, to.mask);
        const IntRect whole = intersect(to.whole, bounds);
        // Where lines are cut matters a little to those that lie anywhere.
        if (to.coverage == Coverage::Exact && whole != area) {
            BandSink sink(m_painter, area.top, area.bottom);
            convertPart(to, whole, whole.height(), rule, feed, sink);
        } else {
            convertPart(to, area, whole.height(), rule, feed, m_painter);
        }
        return;
    }
    if (to.mask == nullptr) {
        MaskSink sink(*to.building);
        convertPart(to, area, area.height(), rule, feed, sink);
        return;
    }
    Mask part = emptyMask(area);
    MaskSink sink(part);
    convertPart(to, area, area.height(), rule, feed, sink);
    intersectMask(part, *to.mask);
    uniteInto(*to.building, part);
}

IntRect OutlineDrawer::reach(Coverage coverage, const FlatLayer& layer, const swf::Matrix& m)
{
    if (layer.points.empty()) return {};
    swf::Matrix placed = m;
    // As points are placed on it: where within a step a shape lies makes no difference then.
    if (const int steps = gridSteps(coverage); steps != 0) {
        placed.tx = std::nearbyint(m.tx * steps) / steps;
        placed.ty = std::nearbyint(m.ty * steps) / steps;
    }
    return roundedOn(coverage, boundsOf(placed, layer.min.x, layer.min.y, layer.max.x, layer.max.y));
}

IntRect OutlineDrawer::reach(Coverage coverage, const StrokeOutline& outline, swf::Point offset)
{
    if (outline.points.empty()) return {};
    return roundedOn(coverage, boundsOf({1, 0, 0, 1, offset.x, offset.y}, outline.min.x, outline.min.y,
                                        outline.max.x, outline.max.y));
}

void OutlineDrawer::stamp(const Destination& to, const Stamp& stamp, int dx, int dy)
{
    m_painter.setTarget(to.target, to.mask);
    stamp.paint(m_painter, to.target, to.clip, dx, dy);
}

void OutlineDrawer::drawLayer(const Destination& to, const FlatLayer& layer, const swf::Matrix& m,
                              FillRule rule, Numbers numbers)
{
    if (layer.points.empty()) return;
    const IntRect bounds = reach(to.coverage, layer, m);
    convert(to, bounds, rule, [&](const IntRect& area) {
        const bool inside = to.coverage == Coverage::Exact && area.contains(bounds);
        // Relative to the area, in subpixels.
        const double f = kSubpixels;
        const swf::Matrix fixed{
            m.a * f, m.b * f, m.c * f, m.d * f, (m.tx - area.left) * f, (m.ty - area.top) * f};
        // Numbers of fills that a damaged shape does not have stand for none.
        const std::size_t fillCount = styles().size();
        const auto known = [fillCount](std::uint16_t fill) -> std::uint32_t {
            return fill <= fillCount ? fill : 0;
        };
        for (const FlatRun& run : layer.runs) {
            if (numbers == Numbers::AsTheyAre)
                m_converter.setStyles(known(run.fill0), known(run.fill1));
            else
                m_converter.setStyles(run.fill0 != 0 ? 1 : 0, run.fill1 != 0 ? 1 : 0);
            const std::span<const FlatPoint> points(layer.points.data() + run.first, run.count);
            if (const int steps = gridSteps(to.coverage); steps != 0) {
                const GridMap map(m, area, steps);
                GridPoint from = map(points[0]);
                for (const FlatPoint& point : points.subspan(1)) {
                    const GridPoint next = map(point);
                    m_converter.lineOnGrid(from.x, from.y, next.x, next.y);
                    from = next;
                }
                continue;
            }
            if (inside) {
                const swf::Point start = fixed.map(points[0].x, points[0].y);
                int x = static_cast<int>(std::lrint(start.x)), y = static_cast<int>(std::lrint(start.y));
                for (const FlatPoint& point : points.subspan(1)) {
                    const swf::Point next = fixed.map(point.x, point.y);
                    const int nextX = static_cast<int>(std::lrint(next.x));
                    const int nextY = static_cast<int>(std::lrint(next.y));
                    m_converter.lineInside(x, y, nextX, nextY);
                    x = nextX;
                    y = nextY;
                }
                continue;
            }
            swf::Point from = m.map(points[0].x, points[0].y);
            for (const FlatPoint& point : points.subspan(1)) {
                const swf::Point next = m.map(point.x, point.y);
                m_converter.line(from.x, from.y, next.x, next.y);
                from = next;
            }
        }
    });
}

void OutlineDrawer::fills(const Destination& to, const FlatLayer& layer, const swf::Matrix& toDevice,
                          FillRule rule)
{
    drawLayer(to, layer, toDevice, rule, Numbers::AsTheyAre);
}

void OutlineDrawer::silhouette(const Destination& to, const FlatLayer& layer, const swf::Matrix& toDevice,
                               FillRule rule)
{
    drawLayer(to, layer, toDevice, rule, Numbers::AllOne);
}

void OutlineDrawer::stroke(const Destination& to, const StrokeOutline& outline, swf::Point offset)
{
    if (outline.points.empty()) return;
    const IntRect bounds = reach(to.coverage, outline, offset);
    convert(to, bounds, FillRule::NonZero, [&](const IntRect& area) {
        const bool inside = to.coverage == Coverage::Exact && area.contains(bounds);
        m_converter.setStyles(0, 1);
        std::uint32_t first = 0;
        if (const int steps = gridSteps(to.coverage); steps != 0) {
            const auto map = [&](FlatPoint p) {
                return GridPoint{toSteps((p.x + offset.x) * steps) - area.left * steps,
                                 toSteps((p.y + offset.y) * steps) - area.top * steps};
            };
            for (const std::uint32_t end : outline.contourEnds) {
                GridPoint from = map(outline.points[end - 1]);
                for (; first < end; ++first) {
                    const GridPoint next = map(outline.points[first]);
                    m_converter.lineOnGrid(from.x, from.y, next.x, next.y);
                    from = next;
                }
            }
            return;
        }
        for (const std::uint32_t end : outline.contourEnds) {
            FlatPoint from = outline.points[end - 1];
            for (std::uint32_t i = first; i < end; ++i) {
                const FlatPoint next = outline.points[i];
                if (inside)
                    m_converter.lineInside(toSubpixels(from.x + offset.x - area.left),
                                           toSubpixels(from.y + offset.y - area.top),
                                           toSubpixels(next.x + offset.x - area.left),
                                           toSubpixels(next.y + offset.y - area.top));
                else
                    m_converter.line(from.x + offset.x, from.y + offset.y, next.x + offset.x,
                                     next.y + offset.y);
                from = next;
            }
            first = end;
        }
    });
}

void OutlineDrawer::polygon(const Destination& to, std::span<const swf::Point> corners)
{
    if (corners.empty()) return;
    swf::Point min = corners[0], max = corners[0];
    for (const swf::Point& p : corners) {
        min = {std::min(min.x, p.x), std::min(min.y, p.y)};
        max = {std::max(max.x, p.x), std::max(max.y, p.y)};
    }
    const IntRect bounds = roundedOn(to.coverage, boundsOf({}, min.x, min.y, max.x, max.y));
    convert(to, bounds, FillRule::EvenOdd, [&](const IntRect& area) {
        m_converter.setStyles(0, 1);
        if (const int steps = gridSteps(to.coverage); steps != 0) {
            const auto map = [&](swf::Point p) {
                return GridPoint{toSteps(p.x * steps) - area.left * steps,
                                 toSteps(p.y * steps) - area.top * steps};
            };
            GridPoint from = map(corners.back());
            for (const swf::Point& corner : corners) {
                const GridPoint next = map(corner);
                m_converter.lineOnGrid(from.x, from.y, next.x, next.y);
                from = next;
            }
            return;
        }
        swf::Point from = corners.back();
        for (const swf::Point& next : corners) {
            m_converter.line(from.x, from.y, next.x, next.y);
            from = next;
        }
    });
}

} // namespace flash::render
