#include "swfc/output/Shape.h"

#include "swfc/output/ShapeEdges.h"

#include <algorithm>

namespace swfc::output
{
namespace
{

enum Tag : std::uint16_t {
    kDefineShape = 2,
    kDefineShape2 = 22,
    kDefineShape3 = 32,
    kDefineMorphShape = 46,
    kDefineShape4 = 83,
    kDefineMorphShape2 = 84,
};

constexpr std::size_t kLongCount = 0xFF;
constexpr std::size_t kMaxStopsBefore8 = 8;

bool isExtended(const Fill& fill)
{
    if (fill.kind != Fill::Kind::Gradient) return false;
    return fill.gradient.kind == Gradient::Kind::Focal || fill.gradient.spread != Gradient::Spread::Pad ||
           fill.gradient.linearRgb || fill.gradient.stops.size() > kMaxStopsBefore8;
}

bool hasAlpha(const Fill& fill)
{
    if (fill.kind == Fill::Kind::Solid) return fill.color.a != 255;
    return std::any_of(fill.gradient.stops.begin(), fill.gradient.stops.end(),
                       [](const Gradient::Stop& stop) { return stop.color.a != 255; });
}

int fillType(const Fill& fill)
{
    switch (fill.kind) {
    case Fill::Kind::Solid: return 0x00;
    case Fill::Kind::Gradient:
        return fill.gradient.kind == Gradient::Kind::Linear   ? 0x10
               : fill.gradient.kind == Gradient::Kind::Radial ? 0x12
                                                              : 0x13;
    case Fill::Kind::Bitmap: return (fill.smooth ? 0x40 : 0x42) + (fill.repeat ? 0 : 1);
    }
    return 0;
}

/// Bitmap pixels count as twips in a fill's matrix, so one pixel of the bitmap is scaled by 20.
Matrix fillMatrix(const Fill& fill)
{
    Matrix matrix = fill.matrix;
    if (fill.kind == Fill::Kind::Bitmap) {
        matrix.a *= kTwipsPerPixel;
        matrix.b *= kTwipsPerPixel;
        matrix.c *= kTwipsPerPixel;
        matrix.d *= kTwipsPerPixel;
    }
    return matrix;
}

void writeCount(BitWriter& out, std::size_t count, bool mayBeLong)
{
    if (mayBeLong && count >= kLongCount) {
        out.u8(kLongCount);
        out.u16(static_cast<std::uint32_t>(count));
    } else {
        out.u8(static_cast<std::uint32_t>(count));
    }
}

int gradientHeader(const Gradient& gradient)
{
    return (static_cast<int>(gradient.spread) << 6) | (gradient.linearRgb ? 0x10 : 0) |
           static_cast<int>(gradient.stops.size());
}

void writeFill(BitWriter& out, const Fill& fill, bool alpha)
{
    const auto color = [&](Rgba c) { alpha ? writeRgba(out, c) : writeRgb(out, c); };
    out.u8(static_cast<std::uint32_t>(fillType(fill)));
    if (fill.kind == Fill::Kind::Solid) {
        color(fill.color);
        return;
    }
    if (fill.kind == Fill::Kind::Bitmap) out.u16(fill.bitmapId);
    writeMatrix(out, fillMatrix(fill));
    if (fill.kind == Fill::Kind::Bitmap) return;
    out.u8(static_cast<std::uint32_t>(gradientHeader(fill.gradient)));
    for (const Gradient::Stop& stop : fill.gradient.stops) {
        out.u8(stop.ratio);
        color(stop.color);
    }
    if (fill.gradient.kind == Gradient::Kind::Focal) out.fixed8(fill.gradient.focalPoint);
}

void writeLineFlags(BitWriter& out, const Line& line)
{
    out.align();
    out.bits(static_cast<std::uint32_t>(line.startCap), 2);
    out.bits(static_cast<std::uint32_t>(line.join), 2);
    out.bits(line.fill ? 1 : 0, 1);
    out.bits(line.noHorizontalScale ? 1 : 0, 1);
    out.bits(line.noVerticalScale ? 1 : 0, 1);
    out.bits(line.pixelHinting ? 1 : 0, 1);
    out.bits(0, 5);
    out.bits(line.noClose ? 1 : 0, 1);
    out.bits(static_cast<std::uint32_t>(line.endCap), 2);
    out.align();
    if (line.join == Line::Join::Miter) out.fixed8(line.miterLimit);
}

void writeLine(BitWriter& out, const Line& line, int tag)
{
    out.u16(static_cast<std::uint32_t>(std::clamp(toTwips(line.width), 0, 65535)));
    if (tag != kDefineShape4) {
        tag == kDefineShape3 ? writeRgba(out, line.color) : writeRgb(out, line.color);
        return;
    }
    writeLineFlags(out, line);
    if (line.fill)
        writeFill(out, *line.fill, true);
    else
        writeRgba(out, line.color);
}

void writeStyles(BitWriter& out, const ShapeLayer& layer, int tag)
{
    writeCount(out, layer.fills.size(), tag != kDefineShape);
    for (const Fill& fill : layer.fills) writeFill(out, fill, tag >= kDefineShape3);
    writeCount(out, layer.lines.size(), tag != kDefineShape);
    for (const Line& line : layer.lines) writeLine(out, line, tag);
}

int oldestTag(const Shape& shape)
{
    bool alpha = false, extended = shape.nonZeroWinding, many = shape.layers.size() > 1;
    for (const ShapeLayer& layer : shape.layers) {
        many = many || layer.fills.size() >= kLongCount || layer.lines.size() >= kLongCount;
        for (const Fill& fill : layer.fills) {
            alpha = alpha || hasAlpha(fill);
            extended = extended || isExtended(fill);
        }
        for (const Line& line : layer.lines) {
            alpha = alpha || line.color.a != 255;
            extended = extended || line.isExtended();
        }
    }
    return extended ? kDefineShape4 : alpha ? kDefineShape3 : many ? kDefineShape2 : kDefineShape;
}

double lineReach(const Line& line)
{
    const double half = line.width / 2;
    return line.join == Line::Join::Miter ? half * std::max(1.0, line.miterLimit) : half * 1.42;
}

} // namespace

bool Line::isExtended() const
{
    return fill || startCap != Cap::Round || endCap != Cap::Round || join != Join::Round ||
           noHorizontalScale || noVerticalScale || pixelHinting || noClose;
}

Bounds Shape::bounds(bool withLines) const
{
    Bounds bounds;
    for (const ShapeLayer& layer : layers) {
        for (const StyledOutline& styled : layer.outlines) {
            Bounds one = boundsOf(styled.outline);
            if (withLines && styled.line != 0) one.expand(lineReach(layer.lines[styled.line - 1]));
            bounds.include(one);
        }
    }
    return bounds;
}

DefinitionTag encodeShape(std::uint16_t id, const Shape& shape)
{
    const int tag = oldestTag(shape);
    BitWriter out;
    out.u16(id);
    writeBounds(out, shape.bounds(true));
    if (tag == kDefineShape4) {
        bool scaling = false, fixed = false;
        for (const ShapeLayer& layer : shape.layers) {
            for (const Line& line : layer.lines) {
                (line.noHorizontalScale || line.noVerticalScale ? fixed : scaling) = true;
            }
        }
        writeBounds(out, shape.bounds(false));
        out.u8((shape.nonZeroWinding ? 4U : 0U) | (fixed ? 2U : 0U) | (scaling ? 1U : 0U));
    }
    // The same widths in all layers: some readers take those of the first for later ones too.
    std::size_t mostFills = 0, mostLines = 0;
    for (const ShapeLayer& layer : shape.layers) {
        mostFills = std::max(mostFills, layer.fills.size());
        mostLines = std::max(mostLines, layer.lines.size());
    }
    const int fillBits = bitsForUnsigned(static_cast<std::uint32_t>(mostFills));
    const int lineBits = bitsForUnsigned(static_cast<std::uint32_t>(mostLines));
    const ShapeLayer none;
    EdgeWriter edges(out, fillBits, lineBits);
    for (std::size_t i = 0; i == 0 || i < shape.layers.size(); ++i) {
        const ShapeLayer& layer = i < shape.layers.size() ? shape.layers[i] : none;
        if (i > 0) edges.beginNewStyles();
        writeStyles(out, layer, tag);
        out.align();
        out.bits(static_cast<std::uint32_t>(fillBits), 4);
        out.bits(static_cast<std::uint32_t>(lineBits), 4);
        edges.setStyleBits(fillBits, lineBits);
        for (const StyledOutline& styled : layer.outlines) {
            for (const Contour& contour : styled.outline) {
                edges.styles(styled.leftFill, styled.rightFill, styled.line);
                edges.contour(contour);
            }
        }
    }
    edges.end();
    return {static_cast<std::uint16_t>(tag), std::move(out.bytes())};
}

namespace
{

void writeMorphFill(BitWriter& out, const MorphStyle& style)
{
    const Fill &start = style.start, &end = style.end;
    out.u8(static_cast<std::uint32_t>(fillType(start)));
    if (start.kind == Fill::Kind::Solid) {
        writeRgba(out, start.color);
        writeRgba(out, end.color);
        return;
    }
    if (start.kind == Fill::Kind::Bitmap) out.u16(start.bitmapId);
    writeMatrix(out, fillMatrix(start));
    writeMatrix(out, fillMatrix(end));
    if (start.kind == Fill::Kind::Bitmap) return;
    const std::size_t count = std::min(start.gradient.stops.size(), end.gradient.stops.size());
    out.u8(static_cast<std::uint32_t>((gradientHeader(start.gradient) & 0xF0) | static_cast<int>(count)));
    for (std::size_t i = 0; i < count; ++i) {
        for (const Gradient::Stop& stop : {start.gradient.stops[i], end.gradient.stops[i]}) {
            out.u8(stop.ratio);
            writeRgba(out, stop.color);
        }
    }
    if (start.gradient.kind == Gradient::Kind::Focal) {
        out.fixed8(start.gradient.focalPoint);
        out.fixed8(end.gradient.focalPoint);
    }
}

Bounds morphBounds(const MorphShape& morph, bool end, bool withLines)
{
    Bounds bounds;
    for (const MorphOutline& outline : morph.outlines) {
        Bounds one = boundsOf(end ? outline.end : outline.start);
        if (withLines && outline.line != 0) {
            const MorphLine& line = morph.lines[outline.line - 1];
            Line reach = line.start;
            reach.width = end ? line.end.width : line.start.width;
            one.expand(lineReach(reach));
        }
        bounds.include(one);
    }
    return bounds;
}

} // namespace

DefinitionTag encodeMorph(std::uint16_t id, const MorphShape& morph)
{
    bool extended = false, fixed = false, scaling = false;
    for (const MorphStyle& fill : morph.fills)
        extended = extended || isExtended(fill.start) || isExtended(fill.end);
    for (const MorphLine& line : morph.lines) {
        extended = extended || line.start.isExtended();
        (line.start.noHorizontalScale || line.start.noVerticalScale ? fixed : scaling) = true;
    }
    BitWriter out;
    out.u16(id);
    writeBounds(out, morphBounds(morph, false, true));
    writeBounds(out, morphBounds(morph, true, true));
    if (extended) {
        writeBounds(out, morphBounds(morph, false, false));
        writeBounds(out, morphBounds(morph, true, false));
        out.u8((fixed ? 2U : 0U) | (scaling ? 1U : 0U));
    }
    BitWriter body; // styles and start edges: what the offset to the end edges spans
    writeCount(body, morph.fills.size(), true);
    for (const MorphStyle& fill : morph.fills) writeMorphFill(body, fill);
    writeCount(body, morph.lines.size(), true);
    for (const MorphLine& line : morph.lines) {
        for (const double width : {line.start.width, line.end.width}) {
            body.u16(static_cast<std::uint32_t>(std::clamp(toTwips(width), 0, 65535)));
        }
        if (extended) writeLineFlags(body, line.start);
        if (extended && line.start.fill && line.end.fill) {
            writeMorphFill(body, {*line.start.fill, *line.end.fill});
        } else {
            writeRgba(body, line.start.color);
            writeRgba(body, line.end.color);
        }
    }
    const int fillBits = bitsForUnsigned(static_cast<std::uint32_t>(morph.fills.size()));
    const int lineBits = bitsForUnsigned(static_cast<std::uint32_t>(morph.lines.size()));
    body.bits(static_cast<std::uint32_t>(fillBits), 4);
    body.bits(static_cast<std::uint32_t>(lineBits), 4);
    EdgeWriter start(body, fillBits, lineBits);
    for (const MorphOutline& outline : morph.outlines) {
        start.styles(0, outline.fill, outline.line);
        for (const Contour& contour : outline.start) start.plainContour(contour);
    }
    start.end();
    out.u32(static_cast<std::uint32_t>(body.size()));
    BitWriter tail;
    tail.bits(0, 8); // the end edges have no styles
    EdgeWriter end(tail, 0, 0);
    for (const MorphOutline& outline : morph.outlines) {
        for (const Contour& contour : outline.end) end.plainContour(contour);
    }
    end.end();
    out.append(body.bytes());
    out.append(tail.bytes());
    return {extended ? kDefineMorphShape2 : kDefineMorphShape, std::move(out.bytes())};
}

void writeGlyph(BitWriter& out, const Outline& outline)
{
    out.align();
    out.bits(1, 4);
    out.bits(0, 4);
    EdgeWriter edges(out, 1, 0);
    for (const Contour& contour : outline) {
        edges.styles(0, 1, 0);
        edges.contour(contour);
    }
    edges.end();
}

} // namespace swfc::output
