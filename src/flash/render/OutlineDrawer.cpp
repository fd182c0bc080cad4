#include "flash/render/OutlineDrawer.h"

#include "flash/render/Bounds.h"
#include "flash/render/Compose.h"

#include <cmath>

namespace flash::render
{
namespace
{

int toSubpixels(double pixels) { return static_cast<int>(std::lrint(pixels * kSubpixels)); }

void uniteInto(Mask& building, const Mask& part)
{
    if (part.isRectangle() && part.bounds.isEmpty()) return;
    for (int y = part.bounds.top; y < part.bounds.bottom; ++y)
        uniteCoverage(building.at(part.bounds.left, y), part.at(part.bounds.left, y),
                      static_cast<std::size_t>(part.bounds.width()));
}

} // namespace

// A layer so rich that its cells do not fit is converted in parts, from above.
template <class Feed>
void OutlineDrawer::convertPart(const Destination& to, const IntRect& area, FillRule rule, const Feed& feed,
                                SpanSink& sink)
{
    m_converter.begin(area, to.coverage, static_cast<std::uint32_t>(styles().size()));
    feed(area);
    if (m_converter.isOverfull() && area.height() > 1) {
        const int middle = area.top + area.height() / 2;
        convertPart(to, {area.left, area.top, area.right, middle}, rule, feed, sink);
        convertPart(to, {area.left, middle, area.right, area.bottom}, rule, feed, sink);
        return;
    }
    m_converter.sweep(rule, sink);
}

template <class Feed>
void OutlineDrawer::convert(const Destination& to, const IntRect& bounds, FillRule rule, const Feed& feed)
{
    const IntRect area = intersect(to.clip, bounds);
    if (area.isEmpty()) return;
    if (to.building == nullptr) {
        m_painter.setTarget(to.target, to.mask);
        convertPart(to, area, rule, feed, m_painter);
        return;
    }
    if (to.mask == nullptr) {
        MaskSink sink(*to.building);
        convertPart(to, area, rule, feed, sink);
        return;
    }
    Mask part = emptyMask(area);
    MaskSink sink(part);
    convertPart(to, area, rule, feed, sink);
    intersectMask(part, *to.mask);
    uniteInto(*to.building, part);
}

void OutlineDrawer::drawLayer(const Destination& to, const FlatLayer& layer, const swf::Matrix& m,
                              FillRule rule, Numbers numbers)
{
    if (layer.points.empty()) return;
    const IntRect bounds = boundsOf(m, layer.least.x, layer.least.y, layer.greatest.x, layer.greatest.y);
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
    const IntRect bounds = boundsOf({1, 0, 0, 1, offset.x, offset.y}, outline.least.x, outline.least.y,
                                    outline.greatest.x, outline.greatest.y);
    convert(to, bounds, FillRule::NonZero, [&](const IntRect& area) {
        const bool inside = to.coverage == Coverage::Exact && area.contains(bounds);
        m_converter.setStyles(0, 1);
        std::uint32_t first = 0;
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
    swf::Point least = corners[0], greatest = corners[0];
    for (const swf::Point& p : corners) {
        least = {std::min(least.x, p.x), std::min(least.y, p.y)};
        greatest = {std::max(greatest.x, p.x), std::max(greatest.y, p.y)};
    }
    convert(to, boundsOf({}, least.x, least.y, greatest.x, greatest.y), FillRule::EvenOdd,
            [&](const IntRect&) {
                m_converter.setStyles(0, 1);
                swf::Point from = corners.back();
                for (const swf::Point& next : corners) {
                    m_converter.line(from.x, from.y, next.x, next.y);
                    from = next;
                }
            });
}

} // namespace flash::render
