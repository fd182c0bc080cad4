#include "flash/swf/Shape.h"

#include <algorithm>
#include <cmath>

namespace flash::swf
{
namespace
{

/// Between the two ends; 0 is the start, 1 the end.
class Mixer
{
public:
    explicit Mixer(double position) : m_position(position) {}

    [[nodiscard]] double operator()(double a, double b) const { return a + (b - a) * m_position; }
    [[nodiscard]] std::int32_t operator()(std::int32_t a, std::int32_t b) const
    {
        return static_cast<std::int32_t>(std::lround(a + (static_cast<double>(b) - a) * m_position));
    }
    [[nodiscard]] std::uint16_t operator()(std::uint16_t a, std::uint16_t b) const
    {
        return static_cast<std::uint16_t>((*this)(std::int32_t{a}, std::int32_t{b}));
    }
    [[nodiscard]] std::uint8_t operator()(std::uint8_t a, std::uint8_t b) const
    {
        return static_cast<std::uint8_t>((*this)(std::int32_t{a}, std::int32_t{b}));
    }
    [[nodiscard]] Rgba operator()(Rgba a, Rgba b) const
    {
        return {part(a.r, b.r), part(a.g, b.g), part(a.b, b.b), part(a.a, b.a)};
    }
    [[nodiscard]] Matrix operator()(const Matrix& a, const Matrix& b) const
    {
        return {(*this)(a.a, b.a), (*this)(a.b, b.b),   (*this)(a.c, b.c),
                (*this)(a.d, b.d), (*this)(a.tx, b.tx), (*this)(a.ty, b.ty)};
    }
    [[nodiscard]] Rect operator()(const Rect& a, const Rect& b) const
    {
        return {(*this)(a.xMin, b.xMin), (*this)(a.xMax, b.xMax), (*this)(a.yMin, b.yMin),
                (*this)(a.yMax, b.yMax)};
    }

private:
    // Colours are cut off, not rounded.
    [[nodiscard]] std::uint8_t part(std::uint8_t a, std::uint8_t b) const
    {
        return static_cast<std::uint8_t>(a + (b - a) * m_position);
    }
    double m_position;
};

void mixFill(FillStyle& fill, const FillStyle& end, const Mixer& mix)
{
    fill.color = mix(fill.color, end.color);
    fill.matrix = mix(fill.matrix, end.matrix);
    fill.gradient.focalPoint = mix(fill.gradient.focalPoint, end.gradient.focalPoint);
    const std::size_t stops = std::min(fill.gradient.stops.size(), end.gradient.stops.size());
    for (std::size_t i = 0; i < stops; ++i) {
        Gradient::Stop& stop = fill.gradient.stops[i];
        stop.ratio = mix(stop.ratio, end.gradient.stops[i].ratio);
        stop.color = mix(stop.color, end.gradient.stops[i].color);
    }
}

void mixLayer(ShapeLayer& layer, const ShapeLayer& end, const Mixer& mix)
{
    for (std::size_t i = 0; i < std::min(layer.fills.size(), end.fills.size()); ++i)
        mixFill(layer.fills[i], end.fills[i], mix);
    for (std::size_t i = 0; i < std::min(layer.lines.size(), end.lines.size()); ++i) {
        LineStyle& line = layer.lines[i];
        line.width = mix(line.width, end.lines[i].width);
        line.color = mix(line.color, end.lines[i].color);
        if (line.fill && end.lines[i].fill) mixFill(*line.fill, *end.lines[i].fill, mix);
    }
    for (std::size_t i = 0; i < std::min(layer.runs.size(), end.runs.size()); ++i) {
        EdgeRun& run = layer.runs[i];
        const EdgeRun& target = end.runs[i];
        run.startX = mix(run.startX, target.startX);
        run.startY = mix(run.startY, target.startY);
        for (std::size_t k = 0; k < std::min(run.edges.size(), target.edges.size()); ++k) {
            Edge& edge = run.edges[k];
            edge.controlX = mix(edge.controlX, target.edges[k].controlX);
            edge.controlY = mix(edge.controlY, target.edges[k].controlY);
            edge.anchorX = mix(edge.anchorX, target.edges[k].anchorX);
            edge.anchorY = mix(edge.anchorY, target.edges[k].anchorY);
        }
    }
}

} // namespace

Shape interpolate(const MorphShape& morph, std::uint16_t ratio)
{
    const Mixer mix(ratio / 65535.0);
    Shape shape = morph.start;
    shape.bounds = mix(shape.bounds, morph.end.bounds);
    shape.edgeBounds = mix(shape.edgeBounds, morph.end.edgeBounds);
    for (std::size_t i = 0; i < std::min(shape.layers.size(), morph.end.layers.size()); ++i)
        mixLayer(shape.layers[i], morph.end.layers[i], mix);
    return shape;
}

} // namespace flash::swf
