#pragma once

#include "flash/render/Canvas.h"
#include "flash/render/Mask.h"
#include "flash/render/OutlineDrawer.h"
#include "flash/render/Paint.h"
#include "flash/render/RenderCacheImpl.h"

#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace flash::render
{

// What has been begun and not yet ended.
struct CanvasFrame {
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
    IntRect clipBefore, wholeBefore;
    std::size_t firstMaskBefore = 0;
};

inline FillRule fillRuleOf(const swf::ShapeLayer& layer)
{
    return layer.nonZeroWinding ? FillRule::NonZero : FillRule::EvenOdd;
}

/// What a canvas is made of: what it draws with, and the masks and layers that are open.
class Canvas::Impl
{
public:
    using Frame = CanvasFrame;

    Impl(SurfaceView target, Quality quality, RenderCache& cache);

    [[nodiscard]] IntRect clip() const
    {
        const Mask* mask = currentMask();
        return mask == nullptr ? m_clip : intersect(m_clip, mask->bounds);
    }

    void setClip(const IntRect& clip);
    /// Only these rows are drawn, as if there were all. Bottom is outside.
    void setBand(int top, int bottom);

    void drawShape(const swf::Shape& shape, const std::shared_ptr<const swf::Shape>* owner,
                   const swf::Matrix& toDevice, const swf::ColorTransform& color);
    void drawGlyphs(std::span<const GlyphPlacement> glyphs, swf::Rgba color);
    void drawPixels(const PixelSource& source, const swf::Matrix& toDevice, const swf::ColorTransform& color,
                    Smoothing smoothing);
    void fillPolygon(std::span<const swf::Point> corners, swf::Rgba color);
    void strokeRect(const swf::Rect& twips, const swf::Matrix& toDevice, swf::Rgba color, LastCorner corner);
    void invertRect(const IntRect& rect);
    void fillDeviceRect(const IntRect& rect, swf::Rgba color);
    /// Rectangles stay upright on the device.
    [[nodiscard]] static bool isSquare(const swf::Matrix& m);
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
    IntRect m_clip, m_whole; ///< the second as it would be if there was no band; the same columns
    double m_pixelScale = 1;
    bool m_isStage = false; // see Canvas::clear()

private:
    [[nodiscard]] const Mask* currentMask() const
    {
        return m_masks.size() > m_firstMask ? &m_masks.back() : nullptr;
    }
    [[nodiscard]] IntRect wholeClip() const
    {
        const Mask* mask = currentMask();
        return mask == nullptr ? m_whole : intersect(m_whole, mask->bounds);
    }
    [[nodiscard]] IntRect inBand(const IntRect& rect) const
    {
        return intersect(rect, {rect.left, m_bandTop, rect.right, m_bandBottom});
    }
    // The innermost frame that takes what is drawn; null for the surface itself.
    [[nodiscard]] Frame* receiver()
    {
        for (auto frame = m_frames.rbegin(); frame != m_frames.rend(); ++frame)
            if (frame->kind != Frame::Kind::Ignored) return &*frame;
        return nullptr;
    }
    Destination destination();
    /// @param known the fill's ramp when it was made before
    StylePaint stylePaint(const swf::FillStyle& fill, const swf::Matrix& toDevice,
                          const swf::ColorTransform& color,
                          std::shared_ptr<const GradientRamp> known = nullptr) const;
    [[nodiscard]] Smoothing smoothingOf(bool wanted) const;
    [[nodiscard]] int flatteningStep(Coverage coverage, const swf::Matrix& toDevice) const;
    struct NextStamp {
        const Stamp* stamp = nullptr; ///< null where there are none
        int dx = 0, dy = 0;
    };
    void drawStrokes(const Destination& to, const swf::Shape& shape, const StrokedShape& strokes,
                     std::size_t layer, swf::Point offset, const swf::Matrix& toDevice,
                     const swf::ColorTransform& color, NextStamp& next);
    // A translation apart from what is left of it within a pixel, in steps of a grid.
    struct WholePixels {
        int dx = 0, dy = 0;
        int stepsX = 0, stepsY = 0;
        bool isNear = false; ///< else the rest says nothing
    };
    static WholePixels wholePixels(const swf::Matrix& toDevice, int steps);
    /// What was converted before for the shape in the same place but for whole pixels, or is now to be kept.
    /// Null when it is not worth it, or parts of it are outside the clip.
    std::shared_ptr<const StampedShape> stampsOf(const std::shared_ptr<const swf::Shape>& shape,
                                                 const FlatShape& flat, const StrokedShape* strokes,
                                                 const Destination& to, const swf::Matrix& toDevice,
                                                 const WholePixels& whole);
    bool layLetter(const Destination& to, const GlyphPlacement& glyph, std::uint32_t pixel);
    void setSingleStyle(StylePaint paint);
    void pushFrame(Frame::Kind kind, const IntRect& bounds, const IntRect& whole);
    Frame popFrame();

    OutlineDrawer& m_drawer;
    int m_bandTop = std::numeric_limits<int>::min(), m_bandBottom = std::numeric_limits<int>::max();
    std::vector<Frame> m_frames;
    std::vector<Mask> m_masks; // each already cut by those before it
    std::vector<std::uint8_t> m_letterRow;
    std::vector<IntRect> m_reaches; ///< of what a shape's stamps are made of
    std::size_t m_firstMask = 0;    // masks before this one apply to the layer as a whole
};

} // namespace flash::render
