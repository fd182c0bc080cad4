#include "flash/stage/ScalingGrid.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <vector>

namespace flash::stage
{

namespace
{

std::int32_t toTwips(double value)
{
    constexpr double kLimit = 1 << 29;
    return static_cast<std::int32_t>(std::lround(std::clamp(value, -kLimit, kLimit)));
}

swf::Point between(swf::Point a, swf::Point b, double t)
{
    return {a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t};
}

/// The points that were included, as long as there are any.
struct Extent {
    double xMin = std::numeric_limits<double>::infinity(), xMax = -xMin, yMin = xMin, yMax = -xMin;
    void include(swf::Point p)
    {
        xMin = std::min(xMin, p.x);
        xMax = std::max(xMax, p.x);
        yMin = std::min(yMin, p.y);
        yMax = std::max(yMax, p.y);
    }
};

/// Stretches one extent over another; a line is only moved.
swf::Matrix stretch(const Extent& from, const Extent& to)
{
    if (!(from.xMin <= from.xMax)) return {};
    const auto factor = [](double before, double after) { return before > 0 ? after / before : 1; };
    const double a = factor(from.xMax - from.xMin, to.xMax - to.xMin);
    const double d = factor(from.yMax - from.yMin, to.yMax - to.yMin);
    return {a, 0, 0, d, to.xMin - a * from.xMin, to.yMin - d * from.yMin};
}

/// A straight line has no control point.
struct Segment {
    swf::Point start, control, end;
    bool curved = false;
    [[nodiscard]] swf::Point at(double t) const
    {
        if (!curved) return between(start, end, t);
        return between(between(start, control, t), between(control, end, t), t);
    }
    [[nodiscard]] Segment part(double from, double to) const
    {
        Segment cut{at(from), {}, at(to), curved};
        // The blossom of the curve at both ends of the part.
        if (curved) cut.control = between(between(start, control, from), between(control, end, from), to);
        return cut;
    }
};

/// Adds where start + ... reaches `cut` strictly within the segment.
void addCrossings(std::vector<double>& at, double p0, double p1, double p2, bool curved, double cut)
{
    const auto add = [&](double t) {
        constexpr double kEnd = 1e-6;
        if (t > kEnd && t < 1 - kEnd) at.push_back(t);
    };
    if (!curved) {
        if (p2 != p0) add((cut - p0) / (p2 - p0));
        return;
    }
    const double a = p0 - 2 * p1 + p2, b = 2 * (p1 - p0), c = p0 - cut;
    if (std::abs(a) < 1e-9) {
        if (b != 0) add(-c / b);
        return;
    }
    const double root = b * b - 4 * a * c;
    if (root < 0) return;
    add((-b + std::sqrt(root)) / (2 * a));
    add((-b - std::sqrt(root)) / (2 * a));
}

} // namespace

ScalingGrid::Axis::Axis(double outerMin, double gridMin, double gridMax, double outerMax, double scale)
{
    gridMin = std::clamp(gridMin, outerMin, outerMax);
    gridMax = std::clamp(gridMax, gridMin, outerMax);
    cuts[0] = gridMin;
    cuts[1] = gridMax;
    const double left = gridMin - outerMin, middle = gridMax - gridMin, right = outerMax - gridMax;
    const double total = (outerMax - outerMin) * scale, fixed = left + right;
    // Without room for the fixed parts these share what there is; without a middle they share all.
    const double fixedFactor = fixed > 0 && (fixed > total || middle <= 0) ? total / fixed : 1;
    const double middleFactor = middle > 0 ? std::max(total - fixed, 0.0) / middle : 1;
    const double start = outerMin * scale;
    factors[0] = factors[2] = fixedFactor;
    factors[1] = middleFactor;
    offsets[0] = start - outerMin * fixedFactor;
    const double gridStart = start + left * fixedFactor;
    offsets[1] = gridStart - gridMin * middleFactor;
    const double gridEnd = gridStart + middle * middleFactor;
    offsets[2] = gridEnd - gridMax * fixedFactor;
}

ScalingGrid::ScalingGrid(const swf::Rect& grid, const swf::Rect& bounds, double scaleX, double scaleY)
    : m_x(bounds.xMin, grid.xMin, grid.xMax, bounds.xMax, std::abs(scaleX)),
      m_y(bounds.yMin, grid.yMin, grid.yMax, bounds.yMax, std::abs(scaleY))
{
}

swf::Point ScalingGrid::map(swf::Point point) const
{
    return {m_x.map(point.x, m_x.part(point.x)), m_y.map(point.y, m_y.part(point.y))};
}

/// Cuts the edges of a shape where they cross the grid and moves the pieces.
class Slicer
{
public:
    Slicer(const ScalingGrid& grid, const swf::Shape& shape, const swf::Matrix& toClip)
        : m_grid(grid), m_shape(shape), m_toClip(toClip),
          m_strokeScale(std::sqrt(std::abs(toClip.determinant())))
    {
    }

    swf::Shape run()
    {
        for (const swf::ShapeLayer& layer : m_shape.layers) addLayer(layer);
        m_result.bounds = rectOf(m_bounds);
        m_result.edgeBounds = rectOf(m_edgeBounds);
        return std::move(m_result);
    }

private:
    /// What a style covers, before and after.
    struct Area {
        Extent before, after;
    };

    static swf::Rect rectOf(const Extent& extent)
    {
        if (!(extent.xMin <= extent.xMax)) return {};
        return {toTwips(std::floor(extent.xMin)), toTwips(std::ceil(extent.xMax)),
                toTwips(std::floor(extent.yMin)), toTwips(std::ceil(extent.yMax))};
    }

    void addLayer(const swf::ShapeLayer& layer)
    {
        m_fills.assign(layer.fills.size() + 1, {});
        m_lines.assign(layer.lines.size() + 1, {});
        swf::ShapeLayer& sliced = m_result.layers.emplace_back();
        sliced.fills = layer.fills;
        sliced.lines = layer.lines;
        sliced.nonZeroWinding = layer.nonZeroWinding;
        for (const swf::EdgeRun& run : layer.runs) sliced.runs.push_back(addRun(run));
        for (std::size_t i = 0; i < sliced.fills.size(); ++i) restyle(sliced.fills[i], m_fills[i + 1]);
        for (std::size_t i = 0; i < sliced.lines.size(); ++i) {
            swf::LineStyle& line = sliced.lines[i];
            constexpr double kWidest = 0xFFFF;
            line.width = static_cast<std::uint16_t>(
                std::clamp(std::round(line.width * m_strokeScale), line.width > 0 ? 1.0 : 0.0, kWidest));
            if (line.fill) restyle(*line.fill, m_lines[i + 1]);
            const double reach = line.width / 2.0;
            const Extent& lines = m_lines[i + 1].after;
            if (!(lines.xMin <= lines.xMax)) continue;
            m_bounds.include({lines.xMin - reach, lines.yMin - reach});
            m_bounds.include({lines.xMax + reach, lines.yMax + reach});
        }
    }

    void restyle(swf::FillStyle& fill, const Area& area) const
    {
        fill.matrix = stretch(area.before, area.after) * m_toClip * fill.matrix;
    }

    swf::EdgeRun addRun(const swf::EdgeRun& run)
    {
        swf::EdgeRun sliced;
        sliced.fill0 = run.fill0;
        sliced.fill1 = run.fill1;
        sliced.line = run.line;
        swf::Point pen = m_toClip.map(run.startX, run.startY);
        const swf::Point start = m_grid.map(pen);
        sliced.startX = toTwips(start.x);
        sliced.startY = toTwips(start.y);
        note(run, pen, start);
        for (const swf::Edge& edge : run.edges) {
            const Segment segment{pen, m_toClip.map(edge.controlX, edge.controlY),
                                  m_toClip.map(edge.anchorX, edge.anchorY), edge.curved};
            addSegment(run, sliced, segment);
            pen = segment.end;
        }
        return sliced;
    }

    void addSegment(const swf::EdgeRun& run, swf::EdgeRun& sliced, const Segment& segment)
    {
        m_cuts.assign({0.0});
        for (const double cut : m_grid.m_x.cuts)
            addCrossings(m_cuts, segment.start.x, segment.control.x, segment.end.x, segment.curved, cut);
        for (const double cut : m_grid.m_y.cuts)
            addCrossings(m_cuts, segment.start.y, segment.control.y, segment.end.y, segment.curved, cut);
        m_cuts.push_back(1);
        std::sort(m_cuts.begin(), m_cuts.end());
        for (std::size_t i = 0; i + 1 < m_cuts.size(); ++i) {
            const Segment piece = segment.part(m_cuts[i], m_cuts[i + 1]);
            // All of a piece lies in one cell, but for its control point.
            const swf::Point middle = piece.at(0.5);
            const std::size_t column = m_grid.m_x.part(middle.x), row = m_grid.m_y.part(middle.y);
            const auto moved = [&](swf::Point p) {
                return swf::Point{m_grid.m_x.map(p.x, column), m_grid.m_y.map(p.y, row)};
            };
            swf::Edge edge;
            edge.curved = piece.curved;
            const swf::Point end = moved(piece.end);
            edge.anchorX = toTwips(end.x);
            edge.anchorY = toTwips(end.y);
            if (piece.curved) {
                const swf::Point control = moved(piece.control);
                edge.controlX = toTwips(control.x);
                edge.controlY = toTwips(control.y);
                note(run, middle, moved(middle));
            }
            note(run, piece.end, end);
            sliced.edges.push_back(edge);
        }
    }

    void note(const swf::EdgeRun& run, swf::Point before, swf::Point after)
    {
        m_bounds.include(after);
        m_edgeBounds.include(after);
        const auto noteIn = [&](std::vector<Area>& areas, std::uint16_t style) {
            if (style == 0 || style >= areas.size()) return;
            areas[style].before.include(before);
            areas[style].after.include(after);
        };
        noteIn(m_fills, run.fill0);
        noteIn(m_fills, run.fill1);
        noteIn(m_lines, run.line);
    }

    const ScalingGrid& m_grid;
    const swf::Shape& m_shape;
    swf::Matrix m_toClip;
    double m_strokeScale;
    swf::Shape m_result;
    Extent m_bounds, m_edgeBounds;
    std::vector<Area> m_fills, m_lines; ///< of the layer at hand, by the numbers of its styles
    std::vector<double> m_cuts;
};

swf::Shape ScalingGrid::apply(const swf::Shape& shape, const swf::Matrix& toClip) const
{
    return Slicer(*this, shape, toClip).run();
}

} // namespace flash::stage
