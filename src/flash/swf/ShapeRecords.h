#pragma once

#include "flash/swf/BodyReader.h"
#include "flash/swf/MovieBuilder.h"
#include "flash/swf/Shape.h"

namespace flash::swf
{

/// Which of the shape tags the styles are written for: 1 to 4, as in DefineShape to DefineShape4.
struct StyleForm {
    int number = 1;
    [[nodiscard]] bool hasAlpha() const { return number >= 3; }
    [[nodiscard]] bool hasLongCounts() const { return number >= 2; }
    [[nodiscard]] bool hasFullLines() const { return number >= 4; }
};

/// What is kept of a line style's flags; shared by plain and morphing lines.
void readLineFlags(BodyReader& body, LineStyle& line, bool& hasFill);
Gradient::Spread spreadFromBits(std::uint32_t bits);
Gradient::Interpolation interpolationFromBits(std::uint32_t bits);

/// Fills and lines of one layer.
/// @errors Malformed for a kind of fill that the format does not know; Truncated; LimitReached.
base::Result<ShapeLayer> readStyles(BodyReader& body, StyleForm form, Budget& budget);

/// One record of a shape: a change of styles or place, or an edge.
struct ShapeRecord {
    enum class Kind : std::uint8_t { End, Change, Edge };
    Kind kind = Kind::End;
    bool moves = false, hasFill0 = false, hasFill1 = false, hasLine = false, hasNewStyles = false;
    std::int32_t x = 0, y = 0; ///< of a move: from the shape's origin
    std::uint16_t fill0 = 0, fill1 = 0, line = 0;
    Edge edge; ///< relative: control to the pen, anchor to the control (or, straight, to the pen)
};

/// Reads the records of a shape one by one. After a change with new styles the caller reads them and then
/// calls readIndexWidths().
class ShapeRecordReader
{
public:
    explicit ShapeRecordReader(BodyReader& body) : m_body(body) {}
    void readIndexWidths()
    {
        m_body.alignToByte();
        m_fillBits = m_body.bits(4);
        m_lineBits = m_body.bits(4);
    }
    /// A record cut short by the end of the bytes counts as the end of the shape.
    ShapeRecord next();

private:
    BodyReader& m_body; // outlives the reader, which is a local of one decoder
    unsigned m_fillBits = 0, m_lineBits = 0;
};

/// Follows relative edges, turning them into absolute ones.
class Pen
{
public:
    void moveTo(std::int32_t x, std::int32_t y)
    {
        m_x = clampCoordinate(x);
        m_y = clampCoordinate(y);
    }
    Edge draw(const Edge& relative);
    [[nodiscard]] std::int32_t x() const { return m_x; }
    [[nodiscard]] std::int32_t y() const { return m_y; }

private:
    std::int32_t m_x = 0, m_y = 0;
};

/// Reads the index widths and all records. Layers are added to `shape`, whose first layer holds the first
/// styles already.
/// @param form null: a glyph, whose records can bring no styles of their own.
/// @errors of the styles only; edges before the end of the bytes are kept.
base::Result<void> readShapeRecords(BodyReader& body, const StyleForm* form, Shape& shape, Budget& budget);

/// The smallest rectangle around all anchors and control points; empty without edges.
Rect edgeBounds(const Shape& shape);

} // namespace flash::swf
