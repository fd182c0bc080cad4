#pragma once

#include "flash/render/Flatten.h"
#include "flash/swf/Geometry.h"
#include "flash/swf/Shape.h"

#include <cstdint>
#include <span>
#include <vector>

namespace flash::render
{

/// Closed contours whose non-zero winding is the stroke.
struct StrokeOutline {
    std::vector<FlatPoint> points;
    std::vector<std::uint32_t> contourEnds; ///< index past the last point of each
    FlatPoint min, max;                     ///< around all points
};

/// The width of a line on the screen: strokes are equally wide in all directions, however the shape is
/// stretched, and never thinner than a device pixel.
/// @param toDevice   shape space to device pixels
/// @param pixelScale device pixels to a pixel of the stage
double strokeWidth(const swf::LineStyle& style, const swf::Matrix& toDevice, double pixelScale);

/// How the arcs of round joints and ends become lines.
struct Arcs {
    double tolerance = 0.05; ///< how far a line may be from its arc, device pixels
    bool halved = false;     ///< arcs are halved until they are near enough, those of ends from a quarter on
    friend bool operator==(const Arcs&, const Arcs&) = default;
};

/// Adds the outline of one path.
/// @param path in device pixels
void addStroke(StrokeOutline& outline, std::span<const StrokePoint> path, const swf::LineStyle& style,
               double width, const Arcs& arcs = {});

/// Moves corner points so that straight lines of this width cover whole pixels.
void hintStroke(std::span<StrokePoint> path, double width);

} // namespace flash::render
