#include "flash/render/Canvas.h"

#include "flash/render/BlendModes.h"
#include "flash/render/Bounds.h"
#include "flash/render/Compose.h"
#include "flash/render/Filters.h"
#include "flash/render/OutlineDrawer.h"
#include "flash/render/Paint.h"
#include "flash/render/Pixel.h"
#include "flash/render/RenderCacheImpl.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cmath>
#include <optional>
#include <vector>

namespace flash::render
{
namespace
{

// What has been begun and not yet ended.
struct Frame {
    enum class Kind {
        Layer,     // draws go to `surface`
        Mask,      // draws go to `mask`
        AlphaMask, // draws go to `surface`, whose alpha becomes a mask
        Ignored,   // a layer within a mask: its content counts, its blending does not
    };
    Kind kind = Kind::Layer;
    IntRect bounds; // device pixels of surface or mask
    Surface surface;
    Mask mask;
    IntRect clipBefore;
    std::size_t firstMaskBefore = 0;
};

Coverage coverageOf(Quality quality)
{
    switch (quality) {
    case Quality::Low: return Coverage::Sampled;
    case Quality::Medium: return Coverage::Grid2;
    case Quality::High: return Coverage::Grid4;
    case Quality::Best: return Coverage::Exact;
    }
    return Coverage::Exact;
}

FillRule fillRuleOf(const swf::Shape& shape)
{
    return shape.nonZeroWinding ? FillRule::NonZero : FillRule::EvenOdd;
}

swf::Matrix withoutTranslation(swf::Matrix m)
{
    m.tx = m.ty = 0;
    return m;
}

bool hasHintedLines(const swf::Shape& shape)
{
    return std::ranges::any_of(shape.layers, [](const swf::ShapeLayer& layer) {
        return std::ranges::any_of(layer.lines, &swf::LineStyle::pixelHinting);
    });
}

bool hasLines(const FlatShape& flat)
{
    return std::ranges::any_of(flat.layers, [](const FlatLayer& layer) { return !layer.strokes.empty(); });
}

// @param toDevice its translation may be missing, unless lines are hinted
StrokedShape outlineStrokes(const swf::Shape& shape, const FlatShape& flat, const swf::Matrix& toDevice,
                            double pixelScale)
{
    StrokedShape result;
    std::vector<StrokePoint> path;
    for (std::size_t i = 0; i < flat.layers.size(); ++i) {
        const FlatLayer& layer = flat.layers[i];
        for (const FlatStroke& stroke : layer.strokes) {
            const swf::LineStyle& style = shape.layers[i].lines[stroke.line - 1U];
            if (result.lines.empty() || result.lines.back().layer != i ||
                result.lines.back().line != stroke.line)
                result.lines.push_back({i, stroke.line, {}});
            double width = strokeWidth(style, toDevice, pixelScale);
            path.assign(layer.strokePoints.begin() + stroke.first,
                        layer.strokePoints.begin() + stroke.first + stroke.count);
            for (StrokePoint& point : path) {
                const swf::Point at = toDevice.map(point.at.x, point.at.y);
                point.at = {static_cast<float>(at.x), static_cast<float>(at.y)};
            }
            if (style.pixelHinting) {
                width = std::max(std::round(width), 1.0);
                hintStroke(path, width);
            }
            addStroke(result.lines.back().outline, path, style, width);
        }
    }
    return result;
}

} // namespace

class Canvas::Impl
{
public:
    Impl(SurfaceView target, Quality quality, RenderCache& cache)
        : m_target{target, 0, 0}, m_quality(quality), m_cache(cache), m_clip(target.bounds()),
          m_drawer(cache.impl().drawer())
    {
    }

    [[nodiscard]] IntRect clip() const
    {
        const Mask* mask = currentMask();
        return mask == nullptr ? m_clip : intersect(m_clip, mask->bounds);
    }

    void drawShape(const swf::Shape& shape, const std::shared_ptr<const swf::Shape>* owner,
                   const swf::Matrix& toDevice, const swf::ColorTransform& color);
    void drawGlyphs(std::span<const GlyphPlacement> glyphs, swf::Rgba color);
    void drawPixels(const PixelSource& source, const swf::Matrix& toDevice, const swf::ColorTransform& color,
                    Smoothing smoothing);
    void fillPolygon(std::span<const swf::Point> corners, swf::Rgba color);
    void strokeRect(const swf::Rect& twips, const swf::Matrix& toDevice, swf::Rgba color, LastCorner corner);
    void invertRect(const IntRect& rect);
    void fillDeviceRect(const IntRect& rect, swf::Rgba color);
    /// Nothing unless the rectangle is upright on the device.
    [[nodiscard]] static std::optional<IntRect> snappedBox(const swf::Rect& twips, const swf::Matrix& m);
    [[nodiscard]] bool buildsMask()
    {
        const Frame* frame = receiver();
        return frame != nullptr && frame->kind == Frame::Kind::Mask;
    }

    void beginMask(MaskKind kind);
    void endMask();
    void popMask();
    void beginLayer(const IntRect& deviceBounds, std::span<const swf::Filter> filters);
    void endLayer(swf::BlendMode blend, const swf::ColorTransform& color,
                  std::span<const swf::Filter> filters);

    Target m_target;
    Quality m_quality;
    RenderCache& m_cache;
    IntRect m_clip;
    double m_pixelScale = 1;
    bool m_isStage = false; // see Canvas::clear()

private:
    [[nodiscard]] const Mask* currentMask() const
    {
        return m_masks.size() > m_firstMask ? &m_masks.back() : nullptr;
    }
    // The innermost frame that takes what is drawn; null for the surface itself.
    [[nodiscard]] Frame* receiver()
    {
        for (auto frame = m_frames.rbegin(); frame != m_frames.rend(); ++frame)
            if (frame->kind != Frame::Kind::Ignored) return &*frame;
        return nullptr;
    }
    Destination destination();
    StylePaint stylePaint(const swf::FillStyle& fill, const swf::Matrix& toDevice,
                          const swf::ColorTransform& color) const;
    [[nodiscard]] Smoothing smoothingOf(bool wanted) const;
    void drawStrokes(const Destination& to, const swf::Shape& shape, const StrokedShape& strokes,
                     std::size_t layer, swf::Point offset, const swf::Matrix& toDevice,
                     const swf::ColorTransform& color);
    bool layLetter(const Destination& to, const GlyphPlacement& glyph, std::uint32_t pixel);
    void setSingleStyle(StylePaint paint);
    void pushFrame(Frame::Kind kind, const IntRect& bounds);
    Frame popFrame();
    void finishMask(Mask mask);

    OutlineDrawer& m_drawer;
    std::vector<Frame> m_frames;
    std::vector<Mask> m_masks; // each already cut by those before it
    std::vector<std::uint8_t> m_letterRow;
    std::size_t m_firstMask = 0; // masks before this one apply to the layer as a whole
};

Destination Canvas::Impl::destination()
{
    Destination to;
    to.coverage = coverageOf(m_quality);
    to.clip = clip();
    const Mask* mask = currentMask();
    if (mask != nullptr && !mask->isRectangle()) to.mask = mask;
    to.target = m_target;
    if (Frame* frame = receiver()) {
        if (frame->kind == Frame::Kind::Mask)
            to.building = &frame->mask;
        else
            to.target = {frame->surface.view(), frame->bounds.left, frame->bounds.top};
    }
    return to;
}

Smoothing Canvas::Impl::smoothingOf(bool wanted) const
{
    switch (m_quality) {
    case Quality::Low:
    case Quality::Medium: return Smoothing::Off;
    case Quality::High: return wanted ? Smoothing::On : Smoothing::Off;
    case Quality::Best: return Smoothing::On;
    }
    return Smoothing::Off;
}

StylePaint Canvas::Impl::stylePaint(const swf::FillStyle& fill, const swf::Matrix& toDevice,
                                    const swf::ColorTransform& color) const
{
    StylePaint style;
    switch (fill.kind) {
    case swf::FillStyle::Kind::Solid: style.color = premultiply(apply(color, fill.color)); break;
    case swf::FillStyle::Kind::LinearGradient:
    case swf::FillStyle::Kind::RadialGradient:
    case swf::FillStyle::Kind::FocalGradient: {
        const GradientRamp ramp = makeRamp(fill.gradient, color);
        style.paint =
            makeGradientPaint(fill.kind, fill.gradient, ramp, toDevice * fill.matrix,
                              m_quality == Quality::Low ? GradientSample::Centre : GradientSample::Corner);
        // Squeezed to nothing, all that is seen lies beyond the end.
        if (style.paint == nullptr) style.color = ramp.back();
        break;
    }
    case swf::FillStyle::Kind::Bitmap:
        if (fill.bitmap == nullptr) break;
        style.paint =
            makeBitmapPaint(pixelSource(*fill.bitmap), toDevice * fill.matrix,
                            fill.repeat ? Edges::Repeat : Edges::Clamp, smoothingOf(fill.smooth), color);
        break;
    }
    return style;
}

void Canvas::Impl::setSingleStyle(StylePaint paint)
{
    m_drawer.styles().clear();
    m_drawer.styles().push_back(std::move(paint));
}

void Canvas::Impl::drawShape(const swf::Shape& shape, const std::shared_ptr<const swf::Shape>* owner,
                             const swf::Matrix& toDevice, const swf::ColorTransform& color)
{
    if (!isUsable(toDevice)) return;
    const Destination to = destination();
    if (to.clip.isEmpty()) return;
    const int step = scaleStep(toDevice);
    const std::shared_ptr<const FlatShape> flat =
        owner != nullptr ? m_cache.impl().flatShape(*owner, step)
                         : std::make_shared<const FlatShape>(flatten(shape, step));

    // Lines do not count in masks.
    std::shared_ptr<const StrokedShape> strokes;
    swf::Point offset;
    if (to.building == nullptr && hasLines(*flat)) {
        const bool keep = owner != nullptr && !hasHintedLines(shape);
        const swf::Matrix matrix = keep ? withoutTranslation(toDevice) : toDevice;
        if (keep) {
            offset = {toDevice.tx, toDevice.ty};
            strokes = m_cache.impl().findStrokes(*owner, matrix, m_pixelScale);
        }
        if (strokes == nullptr) {
            strokes =
                std::make_shared<const StrokedShape>(outlineStrokes(shape, *flat, matrix, m_pixelScale));
            if (keep) m_cache.impl().keepStrokes(*owner, matrix, m_pixelScale, strokes);
        }
    }

    for (std::size_t i = 0; i < flat->layers.size(); ++i) {
        const swf::ShapeLayer& layer = shape.layers[i];
        if (!flat->layers[i].runs.empty()) {
            std::vector<StylePaint>& styles = m_drawer.styles();
            styles.clear();
            for (const swf::FillStyle& fill : layer.fills)
                styles.push_back(to.building != nullptr ? StylePaint{} : stylePaint(fill, toDevice, color));
            m_drawer.fills(to, flat->layers[i], toDevice, fillRuleOf(shape));
        }
        if (strokes != nullptr) drawStrokes(to, shape, *strokes, i, offset, toDevice, color);
    }
}

void Canvas::Impl::drawStrokes(const Destination& to, const swf::Shape& shape, const StrokedShape& strokes,
                               std::size_t layer, swf::Point offset, const swf::Matrix& toDevice,
                               const swf::ColorTransform& color)
{
    for (const StrokedLine& line : strokes.lines) {
        if (line.layer != layer) continue;
        const swf::LineStyle& style = shape.layers[layer].lines[line.line - 1U];
        setSingleStyle(style.fill ? stylePaint(*style.fill, toDevice, color)
                                  : StylePaint{premultiply(apply(color, style.color)), nullptr});
        m_drawer.stroke(to, line.outline, offset);
    }
}

void Canvas::Impl::drawGlyphs(std::span<const GlyphPlacement> glyphs, swf::Rgba color)
{
    Destination to = destination();
    // The details of letters are finer than any grid.
    if (to.coverage != Coverage::Sampled) to.coverage = Coverage::Exact;
    const std::uint32_t pixel = premultiply(color);
    setSingleStyle({pixel, nullptr});
    for (const GlyphPlacement& glyph : glyphs) {
        if (glyph.outline == nullptr || !isUsable(glyph.toDevice)) continue;
        if (to.coverage == Coverage::Exact && to.building == nullptr && layLetter(to, glyph, pixel)) continue;
        const auto flat = m_cache.impl().flatShape(glyph.outline, scaleStep(glyph.toDevice));
        for (const FlatLayer& layer : flat->layers)
            m_drawer.silhouette(to, layer, glyph.toDevice, fillRuleOf(*glyph.outline));
    }
}

// Letters come again and again: the coverage of those of usual size is kept for each place within a pixel.
bool Canvas::Impl::layLetter(const Destination& to, const GlyphPlacement& glyph, std::uint32_t pixel)
{
    constexpr double kFar = 1e6;
    swf::Matrix near = glyph.toDevice;
    if (!(std::abs(near.tx) < kFar && std::abs(near.ty) < kFar)) return false;
    const auto split = [](double& v) {
        const double steps = std::nearbyint(v * kSubpixels), whole = std::floor(steps / kSubpixels);
        v = steps / kSubpixels - whole;
        return static_cast<int>(whole);
    };
    const int x = split(near.tx), y = split(near.ty);
    std::shared_ptr<const Mask> letter = m_cache.impl().findLetter(glyph.outline, near);
    if (letter == nullptr) {
        constexpr int kLargest = 64;
        const auto flat = m_cache.impl().flatShape(glyph.outline, scaleStep(near));
        IntRect bounds;
        for (const FlatLayer& layer : flat->layers)
            if (!layer.points.empty())
                bounds = unite(
                    bounds, boundsOf(near, layer.least.x, layer.least.y, layer.greatest.x, layer.greatest.y));
        if (bounds.width() > kLargest || bounds.height() > kLargest) return false;
        Mask made = emptyMask(bounds);
        Destination into;
        into.clip = bounds;
        into.building = &made;
        for (const FlatLayer& layer : flat->layers)
            m_drawer.silhouette(into, layer, near, fillRuleOf(*glyph.outline));
        letter = std::make_shared<const Mask>(std::move(made));
        m_cache.impl().keepLetter(glyph.outline, near, letter);
    }
    const IntRect& at = letter->bounds;
    const IntRect area = intersect(to.clip, {at.left + x, at.top + y, at.right + x, at.bottom + y});
    const auto count = static_cast<std::size_t>(area.width());
    for (int row = area.top; row < area.bottom; ++row) {
        const std::uint8_t* coverage = letter->at(area.left - x, row - y);
        if (to.mask != nullptr) {
            m_letterRow.assign(coverage, coverage + count);
            scaleCoverage(m_letterRow.data(), to.mask->at(area.left, row), count);
            coverage = m_letterRow.data();
        }
        composeSolid(to.target.at(area.left, row), coverage, count, pixel);
    }
    return true;
}

void Canvas::Impl::drawPixels(const PixelSource& source, const swf::Matrix& toDevice,
                              const swf::ColorTransform& color, Smoothing smoothing)
{
    if (source.pixels == nullptr || !isUsable(toDevice)) return;
    std::unique_ptr<Paint> paint =
        makeBitmapPaint(source, toDevice, Edges::Clamp, smoothingOf(smoothing == Smoothing::On), color);
    if (paint == nullptr) return;
    setSingleStyle({0, std::move(paint)});
    const double w = source.width, h = source.height;
    const std::array corners{toDevice.map(0, 0), toDevice.map(w, 0), toDevice.map(w, h), toDevice.map(0, h)};
    m_drawer.polygon(destination(), corners);
}

void Canvas::Impl::fillPolygon(std::span<const swf::Point> corners, swf::Rgba color)
{
    setSingleStyle({premultiply(color), nullptr});
    m_drawer.polygon(destination(), corners);
}

std::optional<IntRect> Canvas::Impl::snappedBox(const swf::Rect& twips, const swf::Matrix& m)
{
    // What sines and cosines leave of right angles.
    constexpr double kNothing = 1e-6;
    const bool straight = std::abs(m.b) < kNothing && std::abs(m.c) < kNothing;
    const bool turned = std::abs(m.a) < kNothing && std::abs(m.d) < kNothing;
    if (!straight && !turned) return {};
    const swf::Point a = m.map(twips.xMin, twips.yMin), b = m.map(twips.xMax, twips.yMax);
    // Place and size are rounded each by itself, so that a field keeps its size wherever it stands; halves go
    // to the even number.
    const auto rounded = [](double v) {
        constexpr double kFar = 1e8;
        return static_cast<int>(std::nearbyint(std::clamp(v, -kFar, kFar)));
    };
    const int left = rounded(std::min(a.x, b.x)), top = rounded(std::min(a.y, b.y));
    return IntRect{left, top, left + rounded(std::abs(b.x - a.x)), top + rounded(std::abs(b.y - a.y))};
}

void Canvas::Impl::fillDeviceRect(const IntRect& rect, swf::Rgba color)
{
    if (rect.isEmpty()) return;
    const double left = rect.left, top = rect.top, right = rect.right, bottom = rect.bottom;
    const std::array<swf::Point, 4> corners{
        swf::Point{left, top}, {right, top}, {right, bottom}, {left, bottom}};
    fillPolygon(corners, color);
}

void Canvas::Impl::strokeRect(const swf::Rect& twips, const swf::Matrix& toDevice, swf::Rgba color,
                              LastCorner corner)
{
    if (twips.isEmpty() || !isUsable(toDevice)) return;
    if (const auto box = snappedBox(twips, toDevice)) {
        fillDeviceRect({box->left, box->top, box->right + 1, box->top + 1}, color);
        fillDeviceRect({box->left, box->top + 1, box->left + 1, box->bottom + 1}, color);
        fillDeviceRect({box->right, box->top + 1, box->right + 1, box->bottom}, color);
        fillDeviceRect({box->left + 1, box->bottom, box->right, box->bottom + 1}, color);
        if (corner == LastCorner::Closed) {
            constexpr std::uint32_t kCovered = 10, kSamples = 16;
            color.a = static_cast<std::uint8_t>(color.a * kCovered / kSamples);
            fillDeviceRect({box->right, box->bottom, box->right + 1, box->bottom + 1}, color);
        }
        return;
    }
    std::array<StrokePoint, 5> path;
    const std::array corners{toDevice.map(twips.xMin, twips.yMin), toDevice.map(twips.xMax, twips.yMin),
                             toDevice.map(twips.xMax, twips.yMax), toDevice.map(twips.xMin, twips.yMax)};
    for (std::size_t i = 0; i < path.size(); ++i) {
        const swf::Point& corner = corners[i % corners.size()];
        path[i].at = {static_cast<float>(corner.x), static_cast<float>(corner.y)};
    }
    swf::LineStyle style;
    style.join = swf::LineStyle::Join::Miter;
    StrokeOutline outline;
    addStroke(outline, path, style, 1);
    setSingleStyle({premultiply(color), nullptr});
    m_drawer.stroke(destination(), outline, {});
}

void Canvas::Impl::invertRect(const IntRect& rect)
{
    const Destination to = destination();
    if (to.building != nullptr) return;
    const IntRect area = intersect(to.clip, rect);
    const std::vector<std::uint32_t> white(static_cast<std::size_t>(area.width()), 0xFFFFFFFF);
    for (int y = area.top; y < area.bottom; ++y)
        blendRow(swf::BlendMode::Invert, to.target.at(area.left, y), white.data(),
                 to.mask == nullptr ? nullptr : to.mask->at(area.left, y), white.size());
}

// ---- masks and layers -------------------------------------------------------------------------------------

void Canvas::Impl::pushFrame(Frame::Kind kind, const IntRect& bounds)
{
    Frame frame;
    frame.kind = kind;
    frame.bounds = bounds;
    frame.clipBefore = m_clip;
    frame.firstMaskBefore = m_firstMask;
    switch (kind) {
    case Frame::Kind::Layer:
    case Frame::Kind::AlphaMask: frame.surface = Surface(bounds.width(), bounds.height()); break;
    case Frame::Kind::Mask: frame.mask = emptyMask(bounds); break;
    case Frame::Kind::Ignored: break;
    }
    m_frames.push_back(std::move(frame));
    if (kind == Frame::Kind::Ignored) return;
    m_clip = bounds;
    m_firstMask = m_masks.size();
}

Frame Canvas::Impl::popFrame()
{
    Frame frame = std::move(m_frames.back());
    m_frames.pop_back();
    assert(frame.kind == Frame::Kind::Ignored || m_masks.size() == m_firstMask);
    m_clip = frame.clipBefore;
    m_firstMask = frame.firstMaskBefore;
    return frame;
}

void Canvas::Impl::beginMask(MaskKind kind)
{
    pushFrame(kind == MaskKind::Alpha ? Frame::Kind::AlphaMask : Frame::Kind::Mask, clip());
}

void Canvas::Impl::endMask()
{
    assert(!m_frames.empty());
    Frame frame = popFrame();
    if (frame.kind == Frame::Kind::AlphaMask) {
        frame.mask = emptyMask(frame.bounds);
        for (int y = frame.bounds.top; y < frame.bounds.bottom; ++y) {
            const std::uint32_t* from = frame.surface.row(y - frame.bounds.top);
            std::transform(from, from + frame.bounds.width(), frame.mask.at(frame.bounds.left, y),
                           [](std::uint32_t pixel) { return static_cast<std::uint8_t>(alphaOf(pixel)); });
        }
    }
    simplifyMask(frame.mask);
    if (const Mask* outer = currentMask()) intersectMask(frame.mask, *outer);
    m_masks.push_back(std::move(frame.mask));
}

void Canvas::Impl::popMask()
{
    assert(m_masks.size() > m_firstMask);
    m_masks.pop_back();
}

void Canvas::Impl::beginLayer(const IntRect& deviceBounds, std::span<const swf::Filter> filters)
{
    if (const Frame* frame = receiver(); frame != nullptr && frame->kind == Frame::Kind::Mask) {
        pushFrame(Frame::Kind::Ignored, {});
        return;
    }
    const Growth growth = filterGrowth(filters, m_pixelScale);
    // What lies outside the clip is needed as far as the filters carry it inside.
    const Growth reach{growth.right, growth.bottom, growth.left, growth.top};
    IntRect bounds = intersect(grown(deviceBounds, growth), grown(grown(clip(), reach), growth));
    if (1LL * bounds.width() * bounds.height() > kMaxLayerPixels) bounds = {};
    pushFrame(Frame::Kind::Layer, bounds);
}

void Canvas::Impl::endLayer(swf::BlendMode blend, const swf::ColorTransform& color,
                            std::span<const swf::Filter> filters)
{
    assert(!m_frames.empty());
    Frame frame = popFrame();
    if (frame.kind != Frame::Kind::Layer || frame.bounds.isEmpty()) return;
    const bool actsOnAlpha = blend == swf::BlendMode::Alpha || blend == swf::BlendMode::Erase;
    if (actsOnAlpha && m_isStage && receiver() == nullptr) return;
    applyFilters(filters, frame.surface.view(), m_pixelScale);
    const Destination to = destination();
    const IntRect area = intersect(to.clip, frame.bounds);
    for (int y = area.top; y < area.bottom; ++y) {
        std::uint32_t* from = frame.surface.row(y - frame.bounds.top) + (area.left - frame.bounds.left);
        const auto count = static_cast<std::size_t>(area.width());
        if (!color.isIdentity()) transformPixels(from, count, color);
        blendRow(blend, to.target.at(area.left, y), from,
                 to.mask == nullptr ? nullptr : to.mask->at(area.left, y), count);
    }
}

// ---- the canvas itself ------------------------------------------------------------------------------------

Canvas::Canvas(SurfaceView target, Quality quality, RenderCache& cache)
    : m_impl(std::make_unique<Impl>(target, quality, cache))
{
}

Canvas::~Canvas() = default;

void Canvas::setPixelScale(double scale) { m_impl->m_pixelScale = scale; }

void Canvas::setClip(const IntRect& clip) { m_impl->m_clip = intersect(clip, m_impl->m_target.bounds()); }

IntRect Canvas::clip() const { return m_impl->clip(); }

void Canvas::clear(swf::Rgba color)
{
    const IntRect area = clip();
    m_impl->m_isStage = color.a == 255;
    for (int y = area.top; y < area.bottom; ++y)
        std::fill_n(m_impl->m_target.at(area.left, y), area.width(), premultiply(color));
}

void Canvas::drawShape(const std::shared_ptr<const swf::Shape>& shape, const swf::Matrix& toDevice,
                       const swf::ColorTransform& color)
{
    if (shape != nullptr) m_impl->drawShape(*shape, &shape, toDevice, color);
}

void Canvas::drawShape(const swf::Shape& shape, const swf::Matrix& toDevice, const swf::ColorTransform& color)
{
    m_impl->drawShape(shape, nullptr, toDevice, color);
}

void Canvas::drawGlyphs(std::span<const GlyphPlacement> glyphs, swf::Rgba color)
{
    m_impl->drawGlyphs(glyphs, color);
}

void Canvas::drawBitmap(const swf::Bitmap& bitmap, const swf::Matrix& toDevice,
                        const swf::ColorTransform& color, Smoothing smoothing)
{
    m_impl->drawPixels(pixelSource(bitmap), toDevice, color, smoothing);
}

void Canvas::drawSurface(const Surface& source, const swf::Matrix& toDevice, const swf::ColorTransform& color,
                         Smoothing smoothing)
{
    m_impl->drawPixels(pixelSource(source), toDevice, color, smoothing);
}

void Canvas::fillRect(const swf::Rect& twips, const swf::Matrix& toDevice, swf::Rgba color)
{
    if (twips.isEmpty() || !isUsable(toDevice)) return;
    const std::array corners{toDevice.map(twips.xMin, twips.yMin), toDevice.map(twips.xMax, twips.yMin),
                             toDevice.map(twips.xMax, twips.yMax), toDevice.map(twips.xMin, twips.yMax)};
    m_impl->fillPolygon(corners, color);
}

void Canvas::fillBox(const swf::Rect& twips, const swf::Matrix& toDevice, swf::Rgba color)
{
    if (twips.isEmpty() || !isUsable(toDevice)) return;
    if (const auto box = Impl::snappedBox(twips, toDevice))
        m_impl->fillDeviceRect(*box, color);
    else
        fillRect(twips, toDevice, color);
}

bool Canvas::buildsMask() const { return m_impl->buildsMask(); }

void Canvas::strokeRect(const swf::Rect& twips, const swf::Matrix& toDevice, swf::Rgba color,
                        LastCorner corner)
{
    m_impl->strokeRect(twips, toDevice, color, corner);
}

void Canvas::strokeInside(swf::Point least, swf::Point greatest, double width, swf::Rgba color)
{
    if (!(least.x < greatest.x && least.y < greatest.y)) return;
    const double across = std::min({width, (greatest.x - least.x) / 2, (greatest.y - least.y) / 2});
    const double left = least.x + across, right = greatest.x - across;
    const double top = least.y + across, bottom = greatest.y - across;
    // Around the outside, across to the inside and around it the other way, and back.
    const std::array corners{least,
                             swf::Point{greatest.x, least.y},
                             greatest,
                             swf::Point{least.x, greatest.y},
                             least,
                             swf::Point{left, top},
                             swf::Point{left, bottom},
                             swf::Point{right, bottom},
                             swf::Point{right, top},
                             swf::Point{left, top}};
    m_impl->fillPolygon(corners, color);
}

void Canvas::invertRect(const swf::Rect& twips, const swf::Matrix& toDevice)
{
    if (twips.isEmpty() || !isUsable(toDevice)) return;
    const swf::Point a = toDevice.map(twips.xMin, twips.yMin), b = toDevice.map(twips.xMax, twips.yMax);
    // At least a pixel wide, so that a thin caret does not vanish between two.
    const auto left = static_cast<int>(std::lround(std::clamp(std::min(a.x, b.x), -1e8, 1e8)));
    const auto top = static_cast<int>(std::lround(std::clamp(std::min(a.y, b.y), -1e8, 1e8)));
    const auto right = static_cast<int>(std::lround(std::clamp(std::max(a.x, b.x), -1e8, 1e8)));
    const auto bottom = static_cast<int>(std::lround(std::clamp(std::max(a.y, b.y), -1e8, 1e8)));
    m_impl->invertRect({left, top, std::max(right, left + 1), std::max(bottom, top + 1)});
}

void Canvas::beginMask(MaskKind kind) { m_impl->beginMask(kind); }
void Canvas::endMask() { m_impl->endMask(); }
void Canvas::popMask() { m_impl->popMask(); }

void Canvas::beginLayer(const IntRect& deviceBounds, std::span<const swf::Filter> filters)
{
    m_impl->beginLayer(deviceBounds, filters);
}

void Canvas::endLayer(swf::BlendMode blend, const swf::ColorTransform& color,
                      std::span<const swf::Filter> filters)
{
    m_impl->endLayer(blend, color, filters);
}

} // namespace flash::render
