#include "flash/swf/ShapeRecords.h"

#include <algorithm>

namespace flash::swf
{
namespace
{

constexpr std::uint8_t kLongCountMarker = 0xFF;

base::Result<Gradient> readGradient(BodyReader& body, bool withAlpha, bool focal)
{
    body.alignToByte();
    Gradient gradient;
    gradient.spread = spreadFromBits(body.bits(2));
    gradient.interpolation = interpolationFromBits(body.bits(2));
    gradient.stops.resize(body.bits(4));
    for (Gradient::Stop& stop : gradient.stops) {
        stop.ratio = body.u8();
        stop.color = body.color(withAlpha);
    }
    if (focal) gradient.focalPoint = std::clamp(body.fixed8(), -1.0, 1.0);
    CHECK_RESULT(body.check());
    return gradient;
}

base::Result<FillStyle> readFill(BodyReader& body, StyleForm form)
{
    FillStyle fill;
    const std::uint8_t type = body.u8();
    switch (type) {
    case 0x00: fill.color = body.color(form.hasAlpha()); break;
    case 0x10:
    case 0x12:
    case 0x13:
        fill.kind = type == 0x10   ? FillStyle::Kind::LinearGradient
                    : type == 0x12 ? FillStyle::Kind::RadialGradient
                                   : FillStyle::Kind::FocalGradient;
        fill.matrix = body.matrix();
        fill.gradient = TRY_RESULT(readGradient(body, form.hasAlpha(), type == 0x13));
        break;
    case 0x40:
    case 0x41:
    case 0x42:
    case 0x43:
        fill.kind = FillStyle::Kind::Bitmap;
        fill.repeat = (type & 1U) == 0;
        fill.smooth = (type & 2U) == 0;
        fill.bitmapId = body.u16();
        fill.matrix = body.matrix();
        break;
    default:
        return base::fail(base::ErrorCode::Malformed, "fill style of unknown kind " + std::to_string(type),
                          body.offset());
    }
    CHECK_RESULT(body.check());
    return fill;
}

base::Result<LineStyle> readLine(BodyReader& body, StyleForm form)
{
    LineStyle line;
    line.width = body.u16();
    bool hasFill = false;
    if (form.hasFullLines()) readLineFlags(body, line, hasFill);
    if (hasFill)
        line.fill = TRY_RESULT(readFill(body, form));
    else
        line.color = body.color(form.hasAlpha());
    CHECK_RESULT(body.check());
    return line;
}

std::size_t readCount(BodyReader& body, bool longCounts)
{
    const std::uint8_t count = body.u8();
    return count == kLongCountMarker && longCounts ? body.u16() : count;
}

} // namespace

Gradient::Spread spreadFromBits(std::uint32_t bits)
{
    return bits == 1   ? Gradient::Spread::Reflect
           : bits == 2 ? Gradient::Spread::Repeat
                       : Gradient::Spread::Pad;
}

Gradient::Interpolation interpolationFromBits(std::uint32_t bits)
{
    return bits == 1 ? Gradient::Interpolation::Linear : Gradient::Interpolation::Normal;
}

void readLineFlags(BodyReader& body, LineStyle& line, bool& hasFill)
{
    const auto cap = [](std::uint32_t bits) {
        return bits == 1 ? LineStyle::Cap::None : bits == 2 ? LineStyle::Cap::Square : LineStyle::Cap::Round;
    };
    const auto join = [](std::uint32_t bits) {
        return bits == 1   ? LineStyle::Join::Bevel
               : bits == 2 ? LineStyle::Join::Miter
                           : LineStyle::Join::Round;
    };
    body.alignToByte();
    line.startCap = cap(body.bits(2));
    line.join = join(body.bits(2));
    hasFill = body.flag();
    line.noHorizontalScale = body.flag();
    line.noVerticalScale = body.flag();
    line.pixelHinting = body.flag();
    body.bits(5);
    line.noClose = body.flag();
    line.endCap = cap(body.bits(2));
    if (line.join == LineStyle::Join::Miter) line.miterLimit = body.u16() / 256.0;
}

base::Result<ShapeLayer> readStyles(BodyReader& body, StyleForm form, Budget& budget)
{
    const auto refused = [] {
        return base::fail(base::ErrorCode::LimitReached, "no memory is left for the styles");
    };
    body.alignToByte();
    ShapeLayer layer;
    for (std::size_t left = readCount(body, form.hasLongCounts()); left > 0; --left) {
        if (!budget.take(sizeof(FillStyle))) return refused();
        layer.fills.push_back(TRY_RESULT(readFill(body, form)));
    }
    for (std::size_t left = readCount(body, form.hasLongCounts()); left > 0; --left) {
        if (!budget.take(sizeof(LineStyle))) return refused();
        layer.lines.push_back(TRY_RESULT(readLine(body, form)));
    }
    CHECK_RESULT(body.check());
    return layer;
}

ShapeRecord ShapeRecordReader::next()
{
    // Six bits start a record of either kind: 0 and five flags, or 1, straight or not, and a width.
    enum : std::uint32_t {
        kIsEdge = 0x20,
        kIsStraight = 0x10,
        kWidth = 0x0F,
        kNewStyles = 0x10,
        kLine = 0x08,
        kFill1 = 0x04,
        kFill0 = 0x02,
        kMove = 0x01
    };
    BodyReader& body = m_body;
    ShapeRecord record;
    const std::uint32_t head = body.bits(6);
    if ((head & kIsEdge) != 0) {
        record.kind = ShapeRecord::Kind::Edge;
        Edge& edge = record.edge;
        edge.curved = (head & kIsStraight) == 0;
        const unsigned width = (head & kWidth) + 2;
        if (edge.curved) {
            edge.controlX = body.signedBits(width);
            edge.controlY = body.signedBits(width);
            edge.anchorX = body.signedBits(width);
            edge.anchorY = body.signedBits(width);
        } else if (body.flag()) {
            edge.anchorX = body.signedBits(width);
            edge.anchorY = body.signedBits(width);
        } else if (body.flag()) {
            edge.anchorY = body.signedBits(width);
        } else {
            edge.anchorX = body.signedBits(width);
        }
    } else if (head != 0) {
        record.kind = ShapeRecord::Kind::Change;
        record.hasNewStyles = (head & kNewStyles) != 0;
        record.hasLine = (head & kLine) != 0;
        record.hasFill1 = (head & kFill1) != 0;
        record.hasFill0 = (head & kFill0) != 0;
        record.moves = (head & kMove) != 0;
        if (record.moves) {
            const unsigned width = body.bits(5);
            record.x = body.signedBits(width);
            record.y = body.signedBits(width);
        }
        if (record.hasFill0) record.fill0 = static_cast<std::uint16_t>(body.bits(m_fillBits));
        if (record.hasFill1) record.fill1 = static_cast<std::uint16_t>(body.bits(m_fillBits));
        if (record.hasLine) record.line = static_cast<std::uint16_t>(body.bits(m_lineBits));
    }
    if (body.overrun()) record = {};
    return record;
}

Edge Pen::draw(const Edge& relative)
{
    // Edges are at most 17 bits long, so sums with a clamped pen stay inside 32 bits.
    Edge edge;
    edge.curved = relative.curved;
    if (edge.curved) {
        edge.controlX = clampCoordinate(m_x + relative.controlX);
        edge.controlY = clampCoordinate(m_y + relative.controlY);
        moveTo(edge.controlX + relative.anchorX, edge.controlY + relative.anchorY);
    } else {
        moveTo(m_x + relative.anchorX, m_y + relative.anchorY);
    }
    edge.anchorX = m_x;
    edge.anchorY = m_y;
    return edge;
}

base::Result<void> readShapeRecords(BodyReader& body, const StyleForm* form, Shape& shape, Budget& budget)
{
    ShapeRecordReader reader(body);
    reader.readIndexWidths();
    Pen pen;
    EdgeRun run;
    ShapeLayer* layer = &shape.layers.back();
    const auto endRun = [&] {
        if (!run.edges.empty()) {
            budget.take(sizeof(EdgeRun) + run.edges.size() * sizeof(Edge));
            layer->runs.push_back(std::move(run));
            run.edges = {};
        }
    };
    while (!budget.isExhausted()) {
        const ShapeRecord record = reader.next();
        if (record.kind == ShapeRecord::Kind::End) break;
        if (record.kind == ShapeRecord::Kind::Edge) {
            if (run.edges.empty()) {
                run.startX = pen.x();
                run.startY = pen.y();
            }
            run.edges.push_back(pen.draw(record.edge));
            continue;
        }
        endRun();
        if (record.moves) pen.moveTo(record.x, record.y);
        if (record.hasNewStyles && form) {
            // The indices of the same record are those of the new styles.
            auto styles = readStyles(body, *form, budget);
            if (!styles) return tl::make_unexpected(std::move(styles).error());
            shape.layers.push_back(std::move(*styles));
            layer = &shape.layers.back();
            reader.readIndexWidths();
            run.fill0 = run.fill1 = run.line = 0;
        }
        if (record.hasFill0) run.fill0 = record.fill0;
        if (record.hasFill1) run.fill1 = record.fill1;
        if (record.hasLine) run.line = record.line;
    }
    endRun();
    return {};
}

Rect edgeBounds(const Shape& shape)
{
    Rect bounds;
    const auto include = [&](std::int32_t x, std::int32_t y) { bounds = unite(bounds, Rect{x, x, y, y}); };
    for (const ShapeLayer& layer : shape.layers) {
        for (const EdgeRun& run : layer.runs) {
            include(run.startX, run.startY);
            for (const Edge& edge : run.edges) {
                if (edge.curved) include(edge.controlX, edge.controlY);
                include(edge.anchorX, edge.anchorY);
            }
        }
    }
    return bounds;
}

} // namespace flash::swf
