#include "flash/render/Flatten.h"

#include <algorithm>
#include <cmath>

namespace flash::render
{
namespace
{

// How far a line may be from its curve where only one line stands for it, and where there are more: these are
// moved outwards so that they lie partly on either side of the curve. On average that is as near as the
// first, with a third fewer lines, and it does not make round shapes smaller.
constexpr double kSingleTolerance = 0.05, kTolerance = 0.12;
constexpr double kOutwards = 0.6; ///< of the distance
// A curve is cut into that many lines at most, and a shape into that many altogether: what a hostile movie
// asks for beyond is drawn with corners.
constexpr std::size_t kMostLinesOfCurve = 512;
constexpr std::size_t kMostLinesOfShape = std::size_t{1} << 22;
constexpr int kLowestStep = -24, kHighestStep = 24;

std::size_t countEdges(const swf::Shape& shape)
{
    std::size_t count = 1;
    for (const swf::ShapeLayer& layer : shape.layers)
        for (const swf::EdgeRun& run : layer.runs) count += run.edges.size();
    return count;
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
            const double bendX = fromX - 2 * cx + toX, bendY = fromY - 2 * cy + toY;
            // Cut evenly into n lines, a curve is bend / (4 n n) away from the middle of each.
            const double deviation = std::hypot(bendX, bendY) * m_scale / 4;
            const double wanted = deviation <= kSingleTolerance
                                      ? 1
                                      : std::max(std::ceil(std::sqrt(deviation / kTolerance)), 2.0);
            const auto lines =
                static_cast<std::size_t>(std::clamp(wanted, 1.0, static_cast<double>(m_mostLines)));
            const double outwards = -kOutwards / (4.0 * static_cast<double>(lines * lines));
            const double slopeX = 2 * (cx - fromX), slopeY = 2 * (cy - fromY);
            for (std::size_t i = 1; i < lines; ++i) {
                const double t = static_cast<double>(i) / static_cast<double>(lines);
                add(fromX + t * (slopeX + t * bendX) + outwards * bendX,
                    fromY + t * (slopeY + t * bendY) + outwards * bendY, false);
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
    flat.least = flat.greatest = flat.points.front();
    for (const FlatPoint& p : flat.points) {
        flat.least = {std::min(flat.least.x, p.x), std::min(flat.least.y, p.y)};
        flat.greatest = {std::max(flat.greatest.x, p.x), std::max(flat.greatest.y, p.y)};
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
    // log2 of the square is twice that of the scale: steps of the square root of two.
    return static_cast<int>(
        std::ceil(std::clamp(std::log2(square), double{kLowestStep}, double{kHighestStep})));
}

FlatShape flatten(const swf::Shape& shape, int step)
{
    const std::size_t mostLines =
        std::clamp(kMostLinesOfShape / countEdges(shape), std::size_t{1}, kMostLinesOfCurve);
    const Flattener flattener(std::exp2(step / 2.0), mostLines);
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
