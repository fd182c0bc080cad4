#include "flash/stage/Drawing.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace flash::stage
{

namespace
{
std::int32_t toTwips(double value)
{
    // Far beyond any stage, and far enough from the limits of 32 bits that sums of two do not overflow.
    constexpr double kLimit = 1 << 29;
    if (!std::isfinite(value)) return 0;
    return static_cast<std::int32_t>(std::lround(std::clamp(value, -kLimit, kLimit)));
}
} // namespace

// Each fill is a layer of its own: a later one covers an earlier one together with its lines.
void Drawing::beginFill(swf::FillStyle fill)
{
    closePath();
    m_work.layers.emplace_back();
    m_work.layers.back().fills.push_back(std::move(fill));
    m_layerOpen = true;
    m_filling = true;
    m_runOpen = false;
    m_lineIndex = 0;
    m_pathStart = m_pen;
}

void Drawing::endFill()
{
    closePath();
    m_filling = false;
    m_runOpen = false;
    m_layerOpen = false;
}

void Drawing::lineStyle(std::optional<swf::LineStyle> style)
{
    m_line = std::move(style);
    m_lineIndex = 0;
    m_runOpen = false;
}

void Drawing::moveTo(swf::Point to)
{
    closePath();
    m_pen = m_pathStart = to;
    m_runOpen = false;
}

void Drawing::lineTo(swf::Point to)
{
    if (!m_filling && !m_line) {
        m_pen = to;
        return;
    }
    swf::Edge edge;
    edge.anchorX = toTwips(to.x);
    edge.anchorY = toTwips(to.y);
    append(edge);
    include(to);
    m_pen = to;
}

void Drawing::curveTo(swf::Point control, swf::Point to)
{
    if (!m_filling && !m_line) {
        m_pen = to;
        return;
    }
    const swf::Point from = m_pen;
    swf::Edge edge;
    edge.curved = true;
    edge.controlX = toTwips(control.x);
    edge.controlY = toTwips(control.y);
    edge.anchorX = toTwips(to.x);
    edge.anchorY = toTwips(to.y);
    append(edge);
    // The curve's extremes, not its control point, count for the bounds.
    const auto extreme = [](double p0, double p1, double p2) -> std::optional<double> {
        const double denominator = p0 - 2 * p1 + p2;
        if (denominator == 0) return {};
        const double t = (p0 - p1) / denominator;
        if (t <= 0 || t >= 1) return {};
        return (1 - t) * (1 - t) * p0 + 2 * (1 - t) * t * p1 + t * t * p2;
    };
    if (const auto x = extreme(from.x, control.x, to.x)) include({*x, to.y});
    if (const auto y = extreme(from.y, control.y, to.y)) include({to.x, *y});
    include(to);
    m_pen = to;
}

void Drawing::setWinding(Winding winding) { m_winding = winding; }

/// Paths of one fill that differ in their rule lie in layers of their own.
void Drawing::splitByWinding()
{
    if (!m_filling || !m_layerOpen || m_runOpen || m_pen != m_pathStart) return;
    const bool nonZero = m_winding == Winding::NonZero;
    if (m_work.layers.back().nonZeroWinding == nonZero) return;
    if (!m_work.layers.back().runs.empty()) {
        swf::ShapeLayer next;
        next.fills = m_work.layers.back().fills;
        m_work.layers.push_back(std::move(next));
        m_lineIndex = 0;
    }
    m_work.layers.back().nonZeroWinding = nonZero;
}

void Drawing::clear() { *this = Drawing(); }

bool Drawing::isEmpty() const { return m_work.layers.empty(); }

swf::EdgeRun& Drawing::run()
{
    if (!m_layerOpen) {
        m_work.layers.emplace_back();
        m_layerOpen = true;
        m_lineIndex = 0;
        m_runOpen = false;
    }
    splitByWinding();
    swf::ShapeLayer& layer = m_work.layers.back();
    if (m_line && m_lineIndex == 0 && layer.lines.size() < 0xFFFF) {
        layer.lines.push_back(*m_line);
        m_lineIndex = static_cast<std::uint16_t>(layer.lines.size());
        m_runOpen = false;
    }
    if (!m_runOpen) {
        swf::EdgeRun run;
        run.startX = toTwips(m_pen.x);
        run.startY = toTwips(m_pen.y);
        run.fill1 = m_filling ? 1 : 0;
        run.line = m_line ? m_lineIndex : 0;
        layer.runs.push_back(std::move(run));
        m_runOpen = true;
        include(m_pen);
    }
    return layer.runs.back();
}

void Drawing::append(const swf::Edge& edge)
{
    m_built.reset();
    run().edges.push_back(edge);
}

// The closing line is stroked like the others.
void Drawing::closePath()
{
    m_built.reset();
    if (!m_filling || m_pen == m_pathStart) return;
    lineTo(m_pathStart);
}

void Drawing::include(swf::Point point)
{
    const std::int32_t x = toTwips(point.x), y = toTwips(point.y);
    const swf::Rect spot{x, x, y, y};
    m_work.edgeBounds = swf::unite(m_work.edgeBounds, spot);
    // Miters can reach further than half the width; the usual limit is three times that.
    const std::int32_t reach = !m_line                   ? 0
                               : m_reach == Reach::Width ? m_line->width
                                                         : (m_line->width + 1) / 2;
    m_work.bounds = swf::unite(m_work.bounds, swf::Rect{x - reach, x + reach, y - reach, y + reach});
}

const std::shared_ptr<const swf::Shape>& Drawing::shape() const
{
    if (m_built) return m_built;
    auto built = std::make_shared<swf::Shape>(m_work);
    if (m_filling && m_pen != m_pathStart && !built->layers.empty() && !built->layers.back().runs.empty()) {
        // The fill is still open: closed for the picture only.
        swf::EdgeRun closing;
        closing.line = m_line ? m_lineIndex : 0;
        closing.startX = toTwips(m_pen.x);
        closing.startY = toTwips(m_pen.y);
        closing.fill1 = 1;
        swf::Edge edge;
        edge.anchorX = toTwips(m_pathStart.x);
        edge.anchorY = toTwips(m_pathStart.y);
        closing.edges.push_back(edge);
        built->layers.back().runs.push_back(std::move(closing));
    }
    m_built = std::move(built);
    return m_built;
}

} // namespace flash::stage
