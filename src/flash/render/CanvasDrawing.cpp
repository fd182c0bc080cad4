#include "flash/guard/Guard.h"
#include "flash/render/Bounds.h"
#include "flash/render/CanvasImpl.h"
#include "flash/render/Compose.h"
#include "flash/render/Pixel.h"
#include "flash/render/ShaderRun.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

// What is drawn, onto whatever is open at the moment.
namespace flash::render
{
namespace
{

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

bool isGradient(swf::FillStyle::Kind kind)
{
    return kind != swf::FillStyle::Kind::Solid && kind != swf::FillStyle::Kind::Bitmap;
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
// @param isHinted whether lines that ask for it are moved to whole pixels
StrokedShape outlineStrokes(const swf::Shape& shape, const FlatShape& flat, const swf::Matrix& toDevice,
                            double pixelScale, const Arcs& arcs, bool isHinted)
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
            if (style.pixelHinting && isHinted) {
                width = std::max(std::round(width), 1.0);
                hintStroke(path, width);
            }
            addStroke(result.lines.back().outline, path, style, width, arcs);
        }
    }
    return result;
}

// Without smoothed edges arcs are cut for the shape's own size, as its curves are.
Arcs arcsFor(Coverage coverage, const swf::Matrix& toDevice, double pixelScale)
{
    if (coverage != Coverage::Sampled) return {};
    constexpr double kToleranceInShape = 0.1; // its pixels
    const double scale = std::hypot(toDevice.a + toDevice.c, toDevice.b + toDevice.d) / std::numbers::sqrt2;
    return {kToleranceInShape * scale * swf::kTwipsPerPixel / std::max(pixelScale, 1.0), true};
}

} // namespace

Destination Canvas::Impl::destination()
{
    Destination to;
    to.coverage = coverageOf(m_quality);
    to.clip = clip();
    to.whole = wholeClip();
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
    case Quality::Medium:
    case Quality::High: return wanted ? Smoothing::On : Smoothing::Off;
    case Quality::Best: return Smoothing::On;
    }
    return Smoothing::Off;
}

StylePaint Canvas::Impl::stylePaint(const swf::FillStyle& fill, const swf::Matrix& toDevice,
                                    const swf::ColorTransform& color,
                                    std::shared_ptr<const GradientRamp> known) const
{
    StylePaint style;
    switch (fill.kind) {
    case swf::FillStyle::Kind::Solid: style.color = premultiply(apply(color, fill.color)); break;
    case swf::FillStyle::Kind::LinearGradient:
    case swf::FillStyle::Kind::RadialGradient:
    case swf::FillStyle::Kind::FocalGradient: {
        if (known == nullptr) known = std::make_shared<const GradientRamp>(makeRamp(fill.gradient, color));
        const std::uint32_t last = known->colors.back();
        style.paint =
            makeGradientPaint(fill.kind, fill.gradient, std::move(known), toDevice * fill.matrix,
                              m_quality == Quality::Low ? GradientSample::Centre : GradientSample::Corner);
        // Squeezed to nothing, all that is seen lies beyond the end.
        if (style.paint == nullptr) style.color = last;
        break;
    }
    case swf::FillStyle::Kind::Bitmap:
        if (fill.bitmap == nullptr) break;
        if (const ShaderBinding* shader = shaderOf(fill.bitmap)) {
            style.paint = makeShaderPaint(*shader, toDevice * fill.matrix, color);
            break;
        }
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

// Without smoothed edges the genuine player flattens a shape or a letter once, for its own size, however
// large the movie shows it. A larger window is not the movie's doing.
int Canvas::Impl::flatteningStep(Coverage coverage, const swf::Matrix& toDevice) const
{
    if (coverage != Coverage::Sampled) return scaleStep(toDevice);
    const double scale = std::max(m_pixelScale, 1.0) / swf::kTwipsPerPixel;
    return scaleStep({scale, 0, 0, scale, 0, 0});
}

void Canvas::Impl::drawShape(const swf::Shape& shape, const std::shared_ptr<const swf::Shape>* owner,
                             const swf::Matrix& toDevice, const swf::ColorTransform& color)
{
    if (!isUsable(toDevice)) return;
    const Destination to = destination();
    if (to.clip.isEmpty()) return;
    const int step = flatteningStep(to.coverage, toDevice);
    const std::shared_ptr<const FlatShape> flat =
        owner != nullptr ? m_cache.impl().flatShape(*owner, step)
                         : std::make_shared<const FlatShape>(flatten(shape, step));

    constexpr int kRowsPerStep = 16; // a script's drawing may have any number of layers, each as large as all
    // Lines do not count in masks.
    std::shared_ptr<const StrokedShape> strokes;
    swf::Point offset;
    bool mayComeAgain = owner != nullptr && to.building == nullptr;
    if (to.building == nullptr && hasLines(*flat)) {
        // Without smoothed edges lines cover whole pixels anyway, and the genuine player moves none.
        const bool isHinted = to.coverage != Coverage::Sampled && hasHintedLines(shape);
        const bool keep = owner != nullptr && !isHinted;
        mayComeAgain = keep;
        const swf::Matrix matrix = keep ? withoutTranslation(toDevice) : toDevice;
        const StrokeScale scale{m_pixelScale, step};
        if (keep) {
            offset = {toDevice.tx, toDevice.ty};
            strokes = m_cache.impl().findStrokes(*owner, matrix, scale);
        }
        if (strokes == nullptr) {
            strokes = std::make_shared<const StrokedShape>(outlineStrokes(
                shape, *flat, matrix, m_pixelScale, arcsFor(to.coverage, toDevice, m_pixelScale), isHinted));
            if (keep) m_cache.impl().keepStrokes(*owner, matrix, scale, strokes);
        }
    }

    std::shared_ptr<const StampedShape> stamps;
    NextStamp next;
    if (const int steps = gridSteps(to.coverage); mayComeAgain && steps != 0) {
        const WholePixels whole = wholePixels(toDevice, steps);
        stamps = stampsOf(*owner, *flat, strokes.get(), to, toDevice, whole);
        if (stamps != nullptr) next = {stamps->parts.data(), whole.dx, whole.dy};
    }
    for (std::size_t i = 0; i < flat->layers.size(); ++i) {
        guard::check(static_cast<std::uint32_t>(1 + to.clip.height() / kRowsPerStep));
        const swf::ShapeLayer& layer = shape.layers[i];
        const Stamp* stamp = next.stamp;
        if (stamp != nullptr && !flat->layers[i].runs.empty()) ++next.stamp;
        if (OutlineDrawer::reach(to.coverage, flat->layers[i], toDevice).intersects(to.clip)) {
            std::vector<StylePaint>& styles = m_drawer.styles();
            styles.clear();
            for (std::size_t n = 0; n < layer.fills.size(); ++n) {
                if (to.building != nullptr) {
                    styles.emplace_back();
                    continue;
                }
                std::shared_ptr<const GradientRamp> ramp;
                if (owner != nullptr && isGradient(layer.fills[n].kind))
                    ramp = m_cache.impl().ramp(*owner, i, n, color);
                styles.push_back(stylePaint(layer.fills[n], toDevice, color, std::move(ramp)));
            }
            if (stamp != nullptr)
                m_drawer.stamp(to, *stamp, next.dx, next.dy);
            else
                m_drawer.fills(to, flat->layers[i], toDevice, fillRuleOf(layer));
        }
        if (strokes != nullptr) drawStrokes(to, shape, *strokes, i, offset, toDevice, color, next);
    }
}

void Canvas::Impl::drawStrokes(const Destination& to, const swf::Shape& shape, const StrokedShape& strokes,
                               std::size_t layer, swf::Point offset, const swf::Matrix& toDevice,
                               const swf::ColorTransform& color, NextStamp& next)
{
    for (const StrokedLine& line : strokes.lines) {
        if (line.layer != layer) continue;
        const swf::LineStyle& style = shape.layers[layer].lines[line.line - 1U];
        setSingleStyle(style.fill ? stylePaint(*style.fill, toDevice, color)
                                  : StylePaint{premultiply(apply(color, style.color)), nullptr});
        if (next.stamp != nullptr)
            m_drawer.stamp(to, *next.stamp++, next.dx, next.dy);
        else
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
        const auto flat =
            m_cache.impl().flatShape(glyph.outline, flatteningStep(to.coverage, glyph.toDevice));
        for (std::size_t i = 0; i < flat->layers.size(); ++i)
            m_drawer.silhouette(to, flat->layers[i], glyph.toDevice, fillRuleOf(glyph.outline->layers[i]));
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
    const Mask* letter = m_cache.impl().findLetter(glyph.outline, near);
    std::shared_ptr<const Mask> fresh;
    if (letter == nullptr) {
        constexpr int kMax = 64;
        const auto flat = m_cache.impl().flatShape(glyph.outline, scaleStep(near));
        IntRect bounds;
        for (const FlatLayer& layer : flat->layers)
            if (!layer.points.empty())
                bounds = unite(bounds, boundsOf(near, layer.min.x, layer.min.y, layer.max.x, layer.max.y));
        if (bounds.width() > kMax || bounds.height() > kMax) return false;
        Mask made = emptyMask(bounds);
        Destination into;
        into.clip = into.whole = bounds;
        into.building = &made;
        for (std::size_t i = 0; i < flat->layers.size(); ++i)
            m_drawer.silhouette(into, flat->layers[i], near, fillRuleOf(glyph.outline->layers[i]));
        fresh = std::make_shared<const Mask>(std::move(made));
        letter = fresh.get();
        m_cache.impl().keepLetter(glyph.outline, near, fresh);
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

} // namespace flash::render
