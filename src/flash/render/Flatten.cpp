#include "flash/render/Flatten.h"

#include <algorithm>
#include <cmath>

namespace flash::render
{
namespace
{

// How far a line may be from its curve, in device pixels. The ends of the lines lie on the curve.
constexpr double kTolerance = 0.1;
// A curve is cut into that many lines at most, and a shape into that many altogether: what a hostile movie
// asks for beyond is drawn with corners.
constexpr std::size_t kMaxCurveLines = 512;
constexpr std::size_t kMaxShapeLines = std::size_t{1} << 22;
constexpr int kLowestStep = -16, kMaxStep = 32;

std::size_t countEdges(const swf::Shape& shape)
{
    std::size_t count = 1;
    for (const swf::ShapeLayer& layer : shape.layers)
        for (const swf::EdgeRun& run : layer.runs) count += run.edges.size();
    return count;
}

// A quadratic curve as the piece of the parabola y = x x that it is when turned, moved and scaled. Lines
// along it are equally far from it when the integral of its fourth root of curvature grows evenly from one to
// the next; both that integral and its inverse have good closed approximations.
class Parabola
{
public:
    Parabola(swf::Point from, swf::Point control, swf::Point to)
    {
        const double bendX = 2 * control.x - from.x - to.x, bendY = 2 * control.y - from.y - to.y;
        const double cross = (to.x - from.x) * bendY - (to.y - from.y) * bendX;
        const double bend = std::hypot(bendX, bendY);
        const double x0 = ((control.x - from.x) * bendX + (control.y - from.y) * bendY) / cross;
        const double x1 = ((to.x - control.x) * bendX + (to.y - control.y) * bendY) / cross;
        const double scale = std::abs(cross) / (bend * std::abs(x1 - x0));
        // Straight, or there and back on one line.
        if (!std::isfinite(x0) || !std::isfinite(x1) || !std::isfinite(scale)) return;
        m_first = integral(x0);
        m_last = integral(x1);
        m_start = inverse(m_first);
        m_span = inverse(m_last) - m_start;
        m_lines = 0.5 * std::abs(m_last - m_first) * std::sqrt(scale);
    }
    [[nodiscard]] double linesWithin(double tolerance) const { return m_lines / std::sqrt(tolerance); }
    /// @param part 0..1 of the lines
    [[nodiscard]] double parameterAt(double part) const
    {
        return (inverse(m_first + (m_last - m_first) * part) - m_start) / m_span;
    }

private:
    static double integral(double x)
    {
        constexpr double d = 0.67;
        return x / (1 - d + std::sqrt(std::sqrt(d * d * d * d + 0.25 * x * x)));
    }
    static double inverse(double x)
    {
        constexpr double b = 0.39;
        return x * (1 - b + std::sqrt(b * b + 0.25 * x * x));
    }
    double m_first = 0, m_last = 0, m_start = 0, m_span = 1, m_lines = 0;
};

// A curve that nowhere bulges more than that from the line between its ends, nor reaches beyond them. The
// count of lines above is an estimate, which makes two of some curves that one line is near enough to.
bool isNearlyStraight(swf::Point from, swf::Point control, swf::Point to, double tolerance)
{
    const double chordX = to.x - from.x, chordY = to.y - from.y;
    const double controlX = control.x - from.x, controlY = control.y - from.y;
    const double square = chordX * chordX + chordY * chordY;
    const double along = controlX * chordX + controlY * chordY;
    if (!(along >= 0 && along <= square)) return false;
    // At its middle the curve is half as far away as its control point.
    return std::abs(controlX * chordY - controlY * chordX) <= 2 * tolerance * std::sqrt(square);
}

class Flattener
{
public:
    Flattener(double scale, std::size_t mostLines) : m_scale(scale), m_mostLines(mostLines) {}

    // Calls add(x, y, corner) for the end of each line that stands for the edge.
    template <class Add>
    void edge(double fromX, double fromY, const swf::Edge& edge, Add add) const
    {
        const double toX = edge.anchorX, toY = edge.anchorY;
        if (edge.curved) {
            const double cx = edge.controlX, cy = edge.controlY;
            const double tolerance = kTolerance / m_scale;
            const swf::Point from{fromX, fromY}, control{cx, cy}, to{toX, toY};
            if (isNearlyStraight(from, control, to, tolerance)) return add(toX, toY, true);
            const Parabola curve(from, control, to);
            const double wanted = std::ceil(curve.linesWithin(tolerance));
            const auto lines =
                static_cast<std::size_t>(std::clamp(wanted, 1.0, static_cast<double>(m_mostLines)));
            const double slopeX = 2 * (cx - fromX), slopeY = 2 * (cy - fromY);
            const double bendX = fromX - 2 * cx + toX, bendY = fromY - 2 * cy + toY;
            for (std::size_t i = 1; i < lines; ++i) {
                const double t = curve.parameterAt(static_cast<double>(i) / static_cast<double>(lines));
                add(fromX + t * (slopeX + t * bendX), fromY + t * (slopeY + t * bendY), false);
            }
        }
        add(toX, toY, true);
    }

private:
    double m_scale;
    std::size_t m_mostLines;
};

FlatPoint toPoint(double x, double y) { return {static_cast<float>(x), static_cast<float>(y)}; }

void flattenFills(const swf::ShapeLayer& layer, const Flattener& flattener, FlatLayer& flat)
{
    for (const swf::EdgeRun& run : layer.runs) {
        // With the same fill on both sides a line bounds nothing.
        if (run.fill0 == run.fill1 || run.edges.empty()) continue;
        const std::size_t first = flat.points.size();
        double x = run.startX, y = run.startY;
        flat.points.push_back(toPoint(x, y));
        for (const swf::Edge& edge : run.edges) {
            flattener.edge(x, y, edge,
                           [&](double px, double py, bool) { flat.points.push_back(toPoint(px, py)); });
            x = edge.anchorX;
            y = edge.anchorY;
        }
        flat.runs.push_back({static_cast<std::uint32_t>(first),
                             static_cast<std::uint32_t>(flat.points.size() - first), run.fill0, run.fill1});
    }
}

void measure(FlatLayer& flat)
{
    if (flat.points.empty()) return;
    flat.min = flat.max = flat.points.front();
    for (const FlatPoint& p : flat.points) {
        flat.min = {std::min(flat.min.x, p.x), std::min(flat.min.y, p.y)};
        flat.max = {std::max(flat.max.x, p.x), std::max(flat.max.y, p.y)};
    }
}

void flattenStrokes(const swf::ShapeLayer& layer, const Flattener& flattener, FlatLayer& flat)
{
    const swf::EdgeRun* previous = nullptr;
    for (const swf::EdgeRun& run : layer.runs) {
        if (run.line == 0 || run.line > layer.lines.size() || run.edges.empty()) continue;
        const bool continues = previous != nullptr && previous->line == run.line &&
                               previous->edges.back().anchorX == run.startX &&
                               previous->edges.back().anchorY == run.startY;
        if (!continues) {
            flat.strokes.push_back({run.line, static_cast<std::uint32_t>(flat.strokePoints.size()), 0});
            flat.strokePoints.push_back({toPoint(run.startX, run.startY), true});
        }
        double x = run.startX, y = run.startY;
        for (const swf::Edge& edge : run.edges) {
            flattener.edge(x, y, edge, [&](double px, double py, bool corner) {
                flat.strokePoints.push_back({toPoint(px, py), corner});
            });
            x = edge.anchorX;
            y = edge.anchorY;
        }
        FlatStroke& stroke = flat.strokes.back();
        stroke.count = static_cast<std::uint32_t>(flat.strokePoints.size() - stroke.first);
        previous = &run;
    }
    std::ranges::stable_sort(flat.strokes, {}, &FlatStroke::line);
}

} // namespace

std::size_t FlatShape::bytes() const
{
    std::size_t sum = sizeof(FlatShape);
    for (const FlatLayer& layer : layers)
        sum += sizeof(FlatLayer) + layer.points.capacity() * sizeof(FlatPoint) +
               layer.runs.capacity() * sizeof(FlatRun) + layer.strokePoints.capacity() * sizeof(StrokePoint) +
               layer.strokes.capacity() * sizeof(FlatStroke);
    return sum;
}

int scaleStep(const swf::Matrix& m)
{
    const double square = std::max(m.a * m.a + m.b * m.b, m.c * m.c + m.d * m.d);
    if (!(square > 0)) return kLowestStep;
    // Counted from shapes in twips shown at their own size. log2 of the square is twice that of the scale:
    // steps of the square root of two. A hair is left for what products of matrices leave of whole numbers.
    const double step = std::log2(square * swf::kTwipsPerPixel * swf::kTwipsPerPixel) - 1e-6;
    return static_cast<int>(std::ceil(std::clamp(step, double{kLowestStep}, double{kMaxStep})));
}

FlatShape flatten(const swf::Shape& shape, int step)
{
    const std::size_t mostLines =
        std::clamp(kMaxShapeLines / countEdges(shape), std::size_t{1}, kMaxCurveLines);
    const Flattener flattener(std::exp2(step / 2.0) / swf::kTwipsPerPixel, mostLines);
    FlatShape flat;
    flat.layers.resize(shape.layers.size());
    for (std::size_t i = 0; i < shape.layers.size(); ++i) {
        flattenFills(shape.layers[i], flattener, flat.layers[i]);
        measure(flat.layers[i]);
        flattenStrokes(shape.layers[i], flattener, flat.layers[i]);
    }
    return flat;
}

} // namespace flash::render
