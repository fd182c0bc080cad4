#include "flash/stage/Graphics.h"

#include "base/TextCodes.h"
#include "flash/render/Canvas.h"
#include "flash/render/HitTest.h"
#include "flash/stage/Stage.h"

#include <algorithm>
#include <cmath>

namespace flash::stage
{

namespace
{

swf::Rect extentOf(const swf::Shape& shape, Node::Extent extent)
{
    return extent == Node::Extent::WithStrokes ? shape.bounds : shape.edgeBounds;
}

swf::Rect pixelRect(int width, int height)
{
    return {0, width * swf::kTwipsPerPixel, 0, height * swf::kTwipsPerPixel};
}

swf::Matrix scaledBy(const swf::Matrix& m, double factor)
{
    return {m.a * factor, m.b * factor, m.c * factor, m.d * factor, m.tx, m.ty};
}

} // namespace

bool hasUnscaledLines(const swf::Shape& shape)
{
    return std::ranges::any_of(shape.layers, [](const swf::ShapeLayer& layer) {
        return std::ranges::any_of(layer.lines, [](const swf::LineStyle& line) {
            return line.noHorizontalScale || line.noVerticalScale;
        });
    });
}

namespace
{

// @param contains(point) the shape itself, in its space
template <class Contains>
bool isHit(Node& node, swf::Point stagePoint, Contains&& contains)
{
    const auto sliced = node.sliced();
    const swf::Matrix toStage =
        sliced ? sliced->holder->toStageAt(stagePoint) * sliced->toHolder : node.toStageAt(stagePoint);
    if (!toStage.isInvertible()) return false;
    const swf::Point point = toStage.inverted().map(stagePoint);
    return sliced ? render::shapeContains(*sliced->shape, point) : contains(point);
}

bool keptShapeHit(Node& node, const std::shared_ptr<const swf::Shape>& shape, swf::Point stagePoint)
{
    return isHit(node, stagePoint, [&](swf::Point point) {
        return render::shapeContains(shape, point, node.stage().view().renderCache());
    });
}

} // namespace

bool shapeHit(Node& node, const swf::Shape& shape, swf::Point stagePoint)
{
    return isHit(node, stagePoint, [&](swf::Point point) { return render::shapeContains(shape, point); });
}

bool rectContains(const Node& node, const swf::Rect& rect, swf::Point stagePoint)
{
    const swf::Matrix toStage = node.toStageAt(stagePoint);
    if (rect.isEmpty() || !toStage.isInvertible()) return false;
    const swf::Point p = toStage.inverted().map(stagePoint);
    return p.x >= rect.xMin && p.x < rect.xMax && p.y >= rect.yMin && p.y < rect.yMax;
}

ShapeNode::ShapeNode(Stage& stage, std::shared_ptr<const swf::Shape> shape)
    : Node(stage, NodeKind::Shape), m_shape(std::move(shape))
{
    if (hasUnscaledLines(*m_shape)) stage.view().noteOutgrowth();
}

swf::Rect ShapeNode::bounds(Extent extent) { return extentOf(*m_shape, extent); }
bool ShapeNode::hitsShape(swf::Point stagePoint) { return keptShapeHit(*this, m_shape, stagePoint); }
void ShapeNode::draw(render::Canvas& canvas, const swf::Matrix& toDevice, const swf::ColorTransform& color)
{
    canvas.drawShape(m_shape, toDevice, color);
}

void MorphNode::setRatio(std::uint16_t ratio)
{
    if (ratio == m_ratio && m_shape) return;
    invalidate();
    m_ratio = ratio;
    m_shape.reset();
    contentChanged();
}
const std::shared_ptr<const swf::Shape>& MorphNode::shape()
{
    if (!m_shape) {
        m_shape = std::make_shared<swf::Shape>(swf::interpolate(*m_morph, m_ratio));
        if (hasUnscaledLines(*m_shape)) m_stage.view().noteOutgrowth();
    }
    return m_shape;
}
swf::Rect MorphNode::bounds(Extent extent) { return extentOf(*shape(), extent); }
bool MorphNode::hitsShape(swf::Point stagePoint) { return shapeHit(*this, *shape(), stagePoint); }
void MorphNode::draw(render::Canvas& canvas, const swf::Matrix& toDevice, const swf::ColorTransform& color)
{
    canvas.drawShape(shape(), toDevice, color);
}

namespace
{
constexpr double kUsualAscent = 0.8; // of the em, in fonts that do not say
}

StaticTextNode::StaticTextNode(Stage& stage, MoviePtr movie, const swf::StaticText& text)
    : Node(stage, NodeKind::StaticText), m_text(text)
{
    m_movie = std::move(movie);
    for (const swf::StaticText::Record& record : text.records) {
        const swf::Character* character = m_movie->character(record.fontId);
        const swf::Font* font = character ? std::get_if<swf::Font>(&character->data) : nullptr;
        if (!font) continue;
        Run run{record.color,
                {},
                font->name.substr(0, font->name.find('\0')),
                static_cast<double>(record.height),
                font->ascent > 0 ? font->ascent : font->unitsPerEm * kUsualAscent,
                font->descent > 0 ? font->descent : font->unitsPerEm * (1 - kUsualAscent)};
        const double scale = static_cast<double>(record.height) / font->unitsPerEm;
        double x = record.x;
        for (const swf::StaticText::GlyphEntry& entry : record.glyphs) {
            if (entry.index < font->glyphs.size()) {
                const swf::Font::Glyph& glyph = font->glyphs[entry.index];
                const swf::Matrix place{scale, 0, 0, scale, x, static_cast<double>(record.y)};
                const double advance = scale > 0 ? entry.advance / scale : 0;
                run.glyphs.push_back({glyph.outline, text.matrix * place, glyph.code, advance});
            }
            x += entry.advance;
        }
        m_runs.push_back(std::move(run));
    }
}

// Stated in the node's space: the text's own matrix has no say in them.
swf::Rect StaticTextNode::bounds(Extent) { return m_text.bounds; }

bool StaticTextNode::hitsShape(swf::Point stagePoint)
{
    const swf::Matrix nodeToStage = toStageAt(stagePoint);
    for (const Run& run : m_runs) {
        for (const Glyph& glyph : run.glyphs) {
            const swf::Matrix toStageSpace = nodeToStage * glyph.toNode;
            if (!glyph.outline || !toStageSpace.isInvertible()) continue;
            const swf::Point point = toStageSpace.inverted().map(stagePoint);
            if (render::shapeContains(glyph.outline, point, stage().view().renderCache())) return true;
        }
    }
    return false;
}

void StaticTextNode::draw(render::Canvas& canvas, const swf::Matrix& toDevice,
                          const swf::ColorTransform& color)
{
    if (!m_selected.empty()) drawSelection(canvas, toDevice, color);
    std::vector<render::GlyphPlacement> placements;
    for (const Run& run : m_runs) {
        placements.clear();
        placements.reserve(run.glyphs.size());
        for (const Glyph& glyph : run.glyphs)
            if (glyph.outline) placements.push_back({glyph.outline, toDevice * glyph.toNode});
        canvas.drawGlyphs(placements, swf::apply(color, run.color));
    }
}

void StaticTextNode::select(std::size_t index, bool isSelected, swf::Rgba color)
{
    const std::size_t count = glyphCount();
    if (index >= count) return;
    if (m_selected.empty()) {
        if (!isSelected) return;
        m_selected.resize(count);
    }
    m_selected[index] = isSelected;
    m_selectColor = color;
    contentChanged();
}

void StaticTextNode::drawSelection(render::Canvas& canvas, const swf::Matrix& toDevice,
                                   const swf::ColorTransform& color)
{
    const swf::Rgba ground = swf::apply(color, m_selectColor);
    std::size_t index = 0;
    for (const Run& run : m_runs) {
        for (const Glyph& glyph : run.glyphs) {
            if (!m_selected[index++]) continue;
            const auto whole = [](double units) { return static_cast<std::int32_t>(std::lround(units)); };
            const swf::Rect box{0, whole(glyph.advance), -whole(run.ascent), whole(run.descent)};
            canvas.fillRect(box, toDevice * glyph.toNode, ground);
        }
    }
}

std::size_t StaticTextNode::glyphCount() const
{
    std::size_t count = 0;
    for (const Run& run : m_runs) count += run.glyphs.size();
    return count;
}

StaticTextNode::GlyphInfo StaticTextNode::glyph(std::size_t index) const
{
    for (const Run& run : m_runs) {
        if (index >= run.glyphs.size()) {
            index -= run.glyphs.size();
            continue;
        }
        const Glyph& glyph = run.glyphs[index];
        return {glyph.code,   glyph.outline ? glyph.outline->bounds : swf::Rect{},
                glyph.toNode, run.font,
                run.height,   run.color};
    }
    return {};
}

std::string StaticTextNode::text() const
{
    std::u16string units;
    for (const Run& run : m_runs)
        for (const Glyph& glyph : run.glyphs) units += static_cast<char16_t>(glyph.code);
    return base::utf8FromUtf16(units);
}

void BitmapNode::setBitmap(std::shared_ptr<const swf::Bitmap> bitmap)
{
    m_bitmap = std::move(bitmap);
    noteSize();
    contentChanged();
}
void BitmapNode::setSmooth(bool smooth)
{
    m_smooth = smooth;
    invalidate();
}
namespace
{
bool keepsSize(const swf::Matrix& pixelsToDevice)
{
    constexpr double kTolerance = 0.001;
    return std::abs(pixelsToDevice.a - 1) < kTolerance && std::abs(pixelsToDevice.d - 1) < kTolerance &&
           std::abs(pixelsToDevice.b) < kTolerance && std::abs(pixelsToDevice.c) < kTolerance;
}
} // namespace
void BitmapNode::setSnapping(PixelSnapping snapping)
{
    m_snapping = snapping;
    invalidate();
}
swf::Rect BitmapNode::bounds(Extent) { return m_width > 0 ? pixelRect(m_width, m_height) : swf::Rect{}; }
bool BitmapNode::hitsShape(swf::Point stagePoint)
{
    return rectContains(*this, bounds(Extent::WithStrokes), stagePoint);
}
void BitmapNode::draw(render::Canvas& canvas, const swf::Matrix& toDevice, const swf::ColorTransform& color)
{
    if (!m_bitmap || m_bitmap->width == 0) return;
    swf::Matrix pixelsToDevice = scaledBy(toDevice, swf::kTwipsPerPixel);
    if (m_snapping == PixelSnapping::Always ||
        (m_snapping == PixelSnapping::Auto && keepsSize(pixelsToDevice))) {
        pixelsToDevice.tx = std::floor(pixelsToDevice.tx + 0.5);
        pixelsToDevice.ty = std::floor(pixelsToDevice.ty + 0.5);
    }
    canvas.drawBitmap(m_bitmap, pixelsToDevice, color,
                      m_smooth ? render::Smoothing::On : render::Smoothing::Off);
}

VideoNode::VideoNode(Stage& stage, const swf::VideoStream& stream)
    : Node(stage, NodeKind::Video), m_stream(stream), m_embedded(stream), m_smoothing(stream.smoothing)
{
    setDeblocking(stream.deblocking);
}
void VideoNode::setDeblocking(int number)
{
    m_deblocking = number;
    m_embedded.setDeblocking(video::deblockingOf(number));
}
void VideoNode::setPicture(std::shared_ptr<const swf::Bitmap> picture)
{
    m_attached = true;
    m_picture = std::move(picture);
    invalidate();
}
void VideoNode::setRatio(std::uint16_t ratio)
{
    if (ratio == m_ratio) return;
    m_ratio = ratio;
    m_stale = true;
    invalidate();
}
void VideoNode::setSmoothing(bool on)
{
    if (on == m_smoothing) return;
    m_smoothing = on;
    invalidate();
}
swf::Rect VideoNode::bounds(Extent) { return pixelRect(m_stream.width, m_stream.height); }
bool VideoNode::hitsShape(swf::Point stagePoint)
{
    return rectContains(*this, bounds(Extent::WithStrokes), stagePoint);
}
void VideoNode::draw(render::Canvas& canvas, const swf::Matrix& toDevice, const swf::ColorTransform& color)
{
    if (!m_attached && m_stale) {
        // Decoded when it is drawn: what is passed over unseen costs no picture.
        m_picture = m_embedded.at(m_ratio);
        m_stale = false;
    }
    if (!m_picture || m_picture->width == 0 || m_picture->height == 0) return;
    const swf::Matrix fit{static_cast<double>(m_stream.width) / m_picture->width,   0, 0,
                          static_cast<double>(m_stream.height) / m_picture->height, 0, 0};
    canvas.drawBitmap(m_picture, scaledBy(toDevice, swf::kTwipsPerPixel) * fit, color,
                      m_smoothing ? render::Smoothing::On : render::Smoothing::Off);
}

} // namespace flash::stage
