#pragma once

#include "flash/swf/Geometry.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace flash::swf
{

struct Gradient {
    enum class Spread : std::uint8_t { Pad, Reflect, Repeat };
    enum class Interpolation : std::uint8_t { Normal, Linear }; ///< Linear: in linear-light RGB
    struct Stop {
        std::uint8_t ratio = 0; ///< 0..255 along the gradient
        Rgba color;
        friend bool operator==(const Stop&, const Stop&) = default;
    };
    Spread spread = Spread::Pad;
    Interpolation interpolation = Interpolation::Normal;
    std::vector<Stop> stops;
    double focalPoint = 0; ///< -1..1, focal gradients only
};

struct Bitmap;

struct FillStyle {
    enum class Kind : std::uint8_t { Solid, LinearGradient, RadialGradient, FocalGradient, Bitmap };
    Kind kind = Kind::Solid;
    Rgba color;        ///< Solid
    Gradient gradient; ///< the gradient kinds; the gradient square is -16384..16384 in both axes
    Matrix matrix;     ///< gradient square or bitmap (20 twips to the pixel) to shape space
    std::uint16_t bitmapId = 0xFFFF;
    std::shared_ptr<const Bitmap> bitmap; ///< null when the movie has no such bitmap: paints nothing
    bool repeat = false;                  ///< Bitmap: tiled, else its edge pixels go on for ever
    bool smooth = true;                   ///< Bitmap: interpolated when scaled
};

struct LineStyle {
    enum class Cap : std::uint8_t { Round, None, Square };
    enum class Join : std::uint8_t { Round, Bevel, Miter };
    std::uint16_t width = 0; ///< twips; 0 is a hairline: one device pixel at any scale
    Rgba color;
    std::optional<FillStyle> fill; ///< instead of the colour
    Cap startCap = Cap::Round, endCap = Cap::Round;
    Join join = Join::Round;
    double miterLimit = 3;
    bool noHorizontalScale = false, noVerticalScale = false;
    bool pixelHinting = false;
    bool noClose = false;
};

/// A straight line to `anchor`, or a quadratic curve to it over `control`. Shape space, twips; the parser
/// keeps every coordinate within 2^29 of the origin, so that differences stay inside 32 bits.
struct Edge {
    bool curved = false;
    std::int32_t controlX = 0, controlY = 0;
    std::int32_t anchorX = 0, anchorY = 0;
};

/// A chain of edges that share their styles.
struct EdgeRun {
    std::int32_t startX = 0, startY = 0;
    // Indices into the layer's arrays, from 1; 0 is none. fill0 lies on the left of the direction of travel
    // in a system whose y axis points down, fill1 on the right.
    std::uint16_t fill0 = 0, fill1 = 0, line = 0;
    std::vector<Edge> edges;
};

/// What one set of styles draws. A later layer lies over an earlier one; within a layer all fills are painted
/// first, then all lines.
struct ShapeLayer {
    std::vector<FillStyle> fills;
    std::vector<LineStyle> lines;
    std::vector<EdgeRun> runs;
    bool nonZeroWinding = false; ///< what the runs go around twice in one direction is filled, too
};

struct Shape {
    Rect bounds;     ///< with strokes, as stated in the file
    Rect edgeBounds; ///< without strokes; equals bounds before DefineShape4
    std::vector<ShapeLayer> layers;
};

/// Two shapes with the same edges, styles and layers in the same order; what differs is numbers.
struct MorphShape {
    Shape start, end;
};

/// @param ratio 0 (start) to 65535 (end)
Shape interpolate(const MorphShape& morph, std::uint16_t ratio);

/// Pixels, decoded while the movie is parsed; premultiplied 0xAARRGGBB, rows from the top, no padding. No
/// channel exceeds its alpha.
struct Bitmap {
    int width = 0, height = 0;
    bool opaque = true;
    std::vector<std::uint32_t> pixels;
};

} // namespace flash::swf
