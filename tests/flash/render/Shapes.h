#pragma once

#include "flash/render/Canvas.h"
#include "flash/swf/Shape.h"

#include <initializer_list>
#include <memory>
#include <vector>

// Small shapes and surfaces that the tests draw. Coordinates are pixels unless a name says otherwise.
namespace flash::render::test
{

constexpr std::uint32_t kWhite = 0xFFFFFFFF, kBlack = 0xFF000000, kRed = 0xFFFF0000, kGreen = 0xFF00FF00,
                        kBlue = 0xFF0000FF;

inline int twips(double pixels) { return static_cast<int>(std::lround(pixels * swf::kTwipsPerPixel)); }

inline swf::Edge lineTo(double x, double y) { return {false, 0, 0, twips(x), twips(y)}; }
inline swf::Edge curveTo(double cx, double cy, double x, double y)
{
    return {true, twips(cx), twips(cy), twips(x), twips(y)};
}

inline swf::FillStyle solid(std::uint8_t r, std::uint8_t g, std::uint8_t b, std::uint8_t a = 255)
{
    swf::FillStyle fill;
    fill.color = {r, g, b, a};
    return fill;
}

struct Corner {
    double x, y;
};

/// A run along straight lines; closed if the last corner equals the first.
inline swf::EdgeRun run(std::initializer_list<Corner> corners, std::uint16_t fill0, std::uint16_t fill1,
                        std::uint16_t line = 0)
{
    swf::EdgeRun result;
    result.startX = twips(corners.begin()->x);
    result.startY = twips(corners.begin()->y);
    result.fill0 = fill0;
    result.fill1 = fill1;
    result.line = line;
    for (const Corner* c = corners.begin() + 1; c != corners.end(); ++c)
        result.edges.push_back(lineTo(c->x, c->y));
    return result;
}

inline swf::EdgeRun rectRun(double x0, double y0, double x1, double y1, std::uint16_t fill1,
                            std::uint16_t line = 0)
{
    return run({{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}, {x0, y0}}, 0, fill1, line);
}

inline std::shared_ptr<const swf::Shape> shapeOf(swf::ShapeLayer layer)
{
    auto shape = std::make_shared<swf::Shape>();
    for (const swf::EdgeRun& run : layer.runs) {
        shape->edgeBounds = unite(shape->edgeBounds, {run.startX, run.startX, run.startY, run.startY});
        for (const swf::Edge& edge : run.edges) {
            shape->edgeBounds =
                unite(shape->edgeBounds, {edge.anchorX, edge.anchorX, edge.anchorY, edge.anchorY});
            if (edge.curved)
                shape->edgeBounds =
                    unite(shape->edgeBounds, {edge.controlX, edge.controlX, edge.controlY, edge.controlY});
        }
    }
    shape->bounds = shape->edgeBounds;
    shape->layers.push_back(std::move(layer));
    return shape;
}

inline std::shared_ptr<const swf::Shape> rectShape(double x0, double y0, double x1, double y1,
                                                   swf::FillStyle fill)
{
    return shapeOf({{std::move(fill)}, {}, {rectRun(x0, y0, x1, y1, 1)}});
}

/// A surface with a canvas on it.
struct Picture {
    Picture(int width, int height, swf::Rgba background = {255, 255, 255, 255},
            Quality quality = Quality::High)
        : surface(width, height), canvas(surface.view(), quality, cache)
    {
        canvas.clear(background);
    }
    [[nodiscard]] std::uint32_t at(int x, int y) const { return surface.pixel(x, y); }

    RenderCache cache;
    Surface surface;
    Canvas canvas;
};

const swf::Matrix kStage = twipsToPixels({});

} // namespace flash::render::test
