#include "flash/swf/ShapeRecords.h"
#include "flash/swf/Tags.h"

#include <algorithm>

namespace flash::swf
{
namespace
{

struct FillPair {
    FillStyle start, end;
};

base::Result<FillPair> readMorphFill(BodyReader& body)
{
    FillPair fill;
    const std::uint8_t type = body.u8();
    switch (type) {
    case 0x00:
        fill.start.color = body.rgba();
        fill.end.color = body.rgba();
        break;
    case 0x10:
    case 0x12:
    case 0x13: {
        fill.start.kind = type == 0x10   ? FillStyle::Kind::LinearGradient
                          : type == 0x12 ? FillStyle::Kind::RadialGradient
                                         : FillStyle::Kind::FocalGradient;
        fill.start.matrix = body.matrix();
        fill.end.matrix = body.matrix();
        body.alignToByte();
        Gradient& start = fill.start.gradient;
        Gradient& end = fill.end.gradient;
        start.spread = end.spread = spreadFromBits(body.bits(2));
        start.interpolation = end.interpolation = interpolationFromBits(body.bits(2));
        const std::uint32_t count = body.bits(4);
        start.stops.resize(count);
        end.stops.resize(count);
        for (std::uint32_t i = 0; i < count; ++i) {
            start.stops[i].ratio = body.u8();
            start.stops[i].color = body.rgba();
            end.stops[i].ratio = body.u8();
            end.stops[i].color = body.rgba();
        }
        if (type == 0x13) {
            start.focalPoint = std::clamp(body.fixed8(), -1.0, 1.0);
            end.focalPoint = std::clamp(body.fixed8(), -1.0, 1.0);
        }
        break;
    }
    case 0x40:
    case 0x41:
    case 0x42:
    case 0x43:
        fill.start.kind = FillStyle::Kind::Bitmap;
        fill.start.repeat = (type & 1U) == 0;
        fill.start.smooth = (type & 2U) == 0;
        fill.start.bitmapId = body.u16();
        fill.end = fill.start;
        fill.start.matrix = body.matrix();
        fill.end.matrix = body.matrix();
        break;
    default:
        return base::fail(base::ErrorCode::Malformed, "fill style of unknown kind " + std::to_string(type),
                          body.offset());
    }
    fill.end.kind = fill.start.kind;
    CHECK_RESULT(body.check());
    return fill;
}

struct LinePair {
    LineStyle start, end;
};

base::Result<LinePair> readMorphLine(BodyReader& body, bool full)
{
    LinePair line;
    line.start.width = body.u16();
    const std::uint16_t endWidth = body.u16();
    bool hasFill = false;
    if (full) readLineFlags(body, line.start, hasFill);
    line.end = line.start;
    line.end.width = endWidth;
    if (hasFill) {
        FillPair fill = TRY_RESULT(readMorphFill(body));
        line.start.fill = std::move(fill.start);
        line.end.fill = std::move(fill.end);
    } else {
        line.start.color = body.rgba();
        line.end.color = body.rgba();
    }
    CHECK_RESULT(body.check());
    return line;
}

std::size_t readCount(BodyReader& body)
{
    const std::uint8_t count = body.u8();
    return count == 0xFF ? body.u16() : count;
}

base::Result<void> readMorphStyles(BodyReader& body, bool fullLines, MorphShape& morph, Budget& budget)
{
    ShapeLayer& start = morph.start.layers.emplace_back();
    ShapeLayer& end = morph.end.layers.emplace_back();
    const auto refused = [] {
        return base::fail(base::ErrorCode::LimitReached, "no memory is left for the styles");
    };
    for (std::size_t left = readCount(body); left > 0; --left) {
        if (!budget.take(sizeof(FillPair))) return refused();
        FillPair fill = TRY_RESULT(readMorphFill(body));
        start.fills.push_back(std::move(fill.start));
        end.fills.push_back(std::move(fill.end));
    }
    for (std::size_t left = readCount(body); left > 0; --left) {
        if (!budget.take(sizeof(LinePair))) return refused();
        LinePair line = TRY_RESULT(readMorphLine(body, fullLines));
        start.lines.push_back(std::move(line.start));
        end.lines.push_back(std::move(line.end));
    }
    return body.check();
}

// A straight edge that pairs with a curve is drawn as a curve whose control point lies half-way.
void matchKinds(Edge& a, const Pen& penBefore, const Edge& b)
{
    if (a.curved || !b.curved) return;
    a.curved = true;
    a.controlX = (penBefore.x() + a.anchorX) / 2;
    a.controlY = (penBefore.y() + a.anchorY) / 2;
}

// Both lists describe the same chains of edges; only the start's carries styles, and either may break a chain
// where the other does not.
void pairEdges(BodyReader& startBody, BodyReader& endBody, MorphShape& morph, Budget& budget)
{
    ShapeRecordReader startReader(startBody), endReader(endBody);
    startReader.readIndexWidths();
    endReader.readIndexWidths();
    const std::size_t fillCount = morph.start.layers[0].fills.size();
    const std::size_t lineCount = morph.start.layers[0].lines.size();
    std::vector<EdgeRun>& startRuns = morph.start.layers[0].runs;
    std::vector<EdgeRun>& endRuns = morph.end.layers[0].runs;
    Pen startPen, endPen;
    EdgeRun startRun, endRun;
    const auto breakChain = [&] {
        if (startRun.edges.empty()) return;
        budget.take(2 * (sizeof(EdgeRun) + startRun.edges.size() * sizeof(Edge)));
        startRuns.push_back(std::move(startRun));
        endRun.fill0 = startRuns.back().fill0;
        endRun.fill1 = startRuns.back().fill1;
        endRun.line = startRuns.back().line;
        endRuns.push_back(std::move(endRun));
        startRun.edges = {};
        endRun.edges = {};
    };
    ShapeRecord start = startReader.next();
    ShapeRecord end = endReader.next();
    while (!budget.isExhausted()) {
        if (start.kind == ShapeRecord::Kind::Change) {
            breakChain();
            if (start.moves) startPen.moveTo(start.x, start.y);
            if (start.hasFill0) startRun.fill0 = start.fill0 <= fillCount ? start.fill0 : std::uint16_t{0};
            if (start.hasFill1) startRun.fill1 = start.fill1 <= fillCount ? start.fill1 : std::uint16_t{0};
            if (start.hasLine) startRun.line = start.line <= lineCount ? start.line : std::uint16_t{0};
            start = startReader.next();
        } else if (end.kind == ShapeRecord::Kind::Change) {
            breakChain();
            if (end.moves) endPen.moveTo(end.x, end.y);
            end = endReader.next();
        } else if (start.kind == ShapeRecord::Kind::End || end.kind == ShapeRecord::Kind::End) {
            break;
        } else {
            if (startRun.edges.empty()) {
                startRun.startX = startPen.x();
                startRun.startY = startPen.y();
                endRun.startX = endPen.x();
                endRun.startY = endPen.y();
            }
            const Pen startBefore = startPen, endBefore = endPen;
            Edge startEdge = startPen.draw(start.edge);
            Edge endEdge = endPen.draw(end.edge);
            matchKinds(startEdge, startBefore, endEdge);
            matchKinds(endEdge, endBefore, startEdge);
            startRun.edges.push_back(startEdge);
            endRun.edges.push_back(endEdge);
            start = startReader.next();
            end = endReader.next();
        }
    }
    breakChain();
}

} // namespace

} // namespace flash::swf

namespace flash::swf::tags
{

base::Result<void> defineMorphShape(TagContext& tag)
{
    BodyReader& body = tag.body;
    auto morph = std::make_shared<MorphShape>();
    const std::uint16_t id = body.u16();
    morph->start.bounds = morph->start.edgeBounds = body.rect();
    morph->end.bounds = morph->end.edgeBounds = body.rect();
    const bool full = tag.info.form >= 2;
    if (full) {
        morph->start.edgeBounds = body.rect();
        morph->end.edgeBounds = body.rect();
        body.u8(); // which kinds of stroke are used
    }
    const std::uint32_t endOffset = body.u32();
    CHECK_RESULT(body.check());
    // Without an offset there are no end edges, and nothing is drawn.
    BodyReader endBody = body;
    endBody.seek(endOffset == 0 ? body.position() + body.remaining() : body.position() + endOffset);
    Budget& budget = tag.builder.definitions();
    CHECK_RESULT(readMorphStyles(body, full, *morph, budget));
    pairEdges(body, endBody, *morph, budget);
    if (endOffset != 0 && (body.overrun() || endBody.overrun()))
        tag.warn("ends within its edges; those before the end are used");
    tag.builder.defineMorph(id, std::move(morph));
    return {};
}

} // namespace flash::swf::tags
