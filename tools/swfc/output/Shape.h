#pragma once

#include "swfc/output/Outline.h"

#include <optional>

namespace swfc::output
{

struct Gradient {
    enum class Kind : std::uint8_t { Linear, Radial, Focal };
    enum class Spread : std::uint8_t { Pad, Reflect, Repeat };
    struct Stop {
        std::uint8_t ratio = 0;
        Rgba color;
    };
    Kind kind = Kind::Linear;
    Spread spread = Spread::Pad;
    bool linearRgb = false;
    double focalPoint = 0;
    std::vector<Stop> stops;
};

struct Fill {
    enum class Kind : std::uint8_t { Solid, Gradient, Bitmap };
    Kind kind = Kind::Solid;
    Rgba color;
    Gradient gradient;
    Matrix matrix; ///< gradient square (-819.2 to 819.2 pixels) or bitmap (in pixels) to the shape
    std::uint16_t bitmapId = 0xFFFF;
    bool repeat = false, smooth = true;
};

struct Line {
    enum class Cap : std::uint8_t { Round, None, Square };
    enum class Join : std::uint8_t { Round, Bevel, Miter };
    double width = 1;
    Rgba color;
    std::optional<Fill> fill;
    Cap startCap = Cap::Round, endCap = Cap::Round;
    Join join = Join::Round;
    double miterLimit = 3;
    bool noHorizontalScale = false, noVerticalScale = false, pixelHinting = false, noClose = false;
    /// Whether only the fourth kind of shape tag can say this.
    [[nodiscard]] bool isExtended() const;
};

/// Style numbers count from 1 within the layer; 0 is none. For a plain path the inside is on the right.
struct StyledOutline {
    Outline outline;
    std::size_t leftFill = 0, rightFill = 0, line = 0;
};

struct ShapeLayer {
    std::vector<Fill> fills;
    std::vector<Line> lines;
    std::vector<StyledOutline> outlines;
};

struct Shape {
    std::vector<ShapeLayer> layers; ///< each lies over the one before
    bool nonZeroWinding = false;
    [[nodiscard]] Bounds bounds(bool withLines) const;
};

struct MorphStyle {
    Fill start, end;
};
struct MorphLine {
    Line start, end; ///< caps and joins of `start` count
};
struct MorphOutline {
    Outline start, end; ///< same numbers of contours and edges
    std::size_t fill = 0, line = 0;
};
struct MorphShape {
    std::vector<MorphStyle> fills;
    std::vector<MorphLine> lines;
    std::vector<MorphOutline> outlines;
};

struct DefinitionTag {
    std::uint16_t code = 0;
    std::vector<std::uint8_t> body;
};

/// The oldest tag that can hold the shape. @returns also which version of movie it needs.
DefinitionTag encodeShape(std::uint16_t id, const Shape& shape);
DefinitionTag encodeMorph(std::uint16_t id, const MorphShape& morph);

/// A glyph: a shape record without styles of its own.
void writeGlyph(BitWriter& out, const Outline& outline);

} // namespace swfc::output
