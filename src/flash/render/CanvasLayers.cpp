#include "flash/render/BlendModes.h"
#include "flash/render/Bounds.h"
#include "flash/render/CanvasImpl.h"
#include "flash/render/Compose.h"
#include "flash/render/Filters.h"
#include "flash/render/Pixel.h"
#include "flash/render/Recording.h"
#include "flash/render/ShaderRun.h"

#include <algorithm>
#include <cassert>

// Masks and layers: what is open, and what becomes of it when it ends.
namespace flash::render
{
namespace
{

// What was opaque stays so.
void replaceRow(std::uint32_t* to, const std::uint32_t* from, const std::uint8_t* mask, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t opaque = alphaOf(to[i]) == 255 ? 0xFF000000U : 0;
        const std::uint32_t share = mask == nullptr ? 255 : mask[i];
        std::uint32_t mixed = 0;
        for (unsigned shift = 0; shift < 32; shift += 8)
            mixed |= ((from[i] >> shift & 255U) * share + (to[i] >> shift & 255U) * (255 - share) + 127) / 255
                     << shift;
        to[i] = mixed | opaque;
    }
}

} // namespace

Canvas::Impl::Impl(SurfaceView target, Quality quality, RenderCache& cache)
    : m_target{target, 0, 0}, m_quality(quality), m_cache(cache), m_clip(target.bounds()), m_whole(m_clip),
      m_drawer(cache.impl().drawer())
{
}

void Canvas::Impl::setClip(const IntRect& clip)
{
    m_whole = intersect(clip, m_target.bounds());
    m_clip = inBand(m_whole);
}

void Canvas::Impl::setBand(int top, int bottom)
{
    m_bandTop = top;
    m_bandBottom = bottom;
    m_clip = inBand(m_whole);
}

void Canvas::Impl::pushFrame(Frame::Kind kind, const IntRect& bounds, const IntRect& whole)
{
    Frame frame;
    frame.kind = kind;
    frame.bounds = bounds;
    frame.clipBefore = m_clip;
    frame.wholeBefore = m_whole;
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
    m_whole = whole;
    m_firstMask = m_masks.size();
}

CanvasFrame Canvas::Impl::popFrame()
{
    Frame frame = std::move(m_frames.back());
    m_frames.pop_back();
    assert(frame.kind == Frame::Kind::Ignored || m_masks.size() == m_firstMask);
    m_clip = frame.clipBefore;
    m_whole = frame.wholeBefore;
    m_firstMask = frame.firstMaskBefore;
    return frame;
}

void Canvas::Impl::beginMask(MaskKind kind)
{
    // Whole in any band: what a mask is like depends on all of it.
    const IntRect all = wholeClip();
    pushFrame(kind == MaskKind::Alpha ? Frame::Kind::AlphaMask : Frame::Kind::Mask, all, all);
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
        pushFrame(Frame::Kind::Ignored, {}, {});
        return;
    }
    IntRect whole = layerBounds(deviceBounds, wholeClip(), filters, m_pixelScale);
    if (1LL * whole.width() * whole.height() > kMaxLayerPixels) whole = {};
    // A band leaves out rows, no columns.
    const IntRect part =
        clip() == wholeClip() ? whole : layerBounds(deviceBounds, clip(), filters, m_pixelScale);
    pushFrame(Frame::Kind::Layer, intersect(whole, {whole.left, part.top, whole.right, part.bottom}), whole);
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
    const auto count = static_cast<std::size_t>(area.width());
    const auto layerRow = [&](int y) {
        return frame.surface.row(y - frame.bounds.top) + (area.left - frame.bounds.left);
    };
    if (const ShaderBinding* shader = blendShaderOf(filters)) {
        Surface below(frame.bounds.width(), frame.bounds.height());
        for (int y = area.top; y < area.bottom; ++y) {
            if (!color.isIdentity()) transformPixels(layerRow(y), count, color);
            std::copy_n(to.target.at(area.left, y), count,
                        below.row(y - frame.bounds.top) + (area.left - frame.bounds.left));
        }
        blendByShader(*shader, frame.surface.view(), below.view(), m_pixelScale);
        for (int y = area.top; y < area.bottom; ++y)
            replaceRow(to.target.at(area.left, y), layerRow(y),
                       to.mask == nullptr ? nullptr : to.mask->at(area.left, y), count);
        return;
    }
    for (int y = area.top; y < area.bottom; ++y) {
        std::uint32_t* from = layerRow(y);
        if (!color.isIdentity()) transformPixels(from, count, color);
        blendRow(blend, to.target.at(area.left, y), from,
                 to.mask == nullptr ? nullptr : to.mask->at(area.left, y), count);
    }
}

} // namespace flash::render
