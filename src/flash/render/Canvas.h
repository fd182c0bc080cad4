#pragma once

#include "flash/render/RenderCache.h"
#include "flash/render/Surface.h"
#include "flash/swf/Movie.h"

#include <memory>
#include <optional>
#include <span>

namespace flash::render
{

/// Low draws without edge smoothing. Medium counts four samples of a pixel for its edges, High sixteen, as
/// the genuine player does. All of them smooth the bitmaps that ask for it, as recordings show even where
/// edges are not smoothed. Best knows exactly how much of a pixel is covered, and smooths all bitmaps that
/// are scaled. Letters are exact in all but Low.
enum class Quality { Low, Medium, High, Best };

enum class Smoothing { Off, On };

/// Opaque: whatever is drawn covers, however transparent its paint (the usual mask of a clip). Alpha: the
/// alpha of what is drawn counts (mask and masked clip both cached as bitmaps).
enum class MaskKind { Opaque, Alpha };

class Recording;

/// One glyph of a run: its outline and where it goes.
struct GlyphPlacement {
    std::shared_ptr<const swf::Shape> outline;
    swf::Matrix toDevice; ///< outline units to device pixels
};

/// Draws onto a surface, back to front.
///
/// Every `toDevice` matrix maps its space to device pixels, translation included; (0, 0) is the upper left
/// corner of the upper left pixel. For a stage shown at its own size a shape's matrix is its concatenated
/// matrix in twips scaled by 1 / 20 (see twipsToPixels()). A matrix with infinities or NaN draws nothing.
///
/// Masks and layers nest like brackets:
///     beginMask(); ...draw the mask... endMask();  ...draw what is masked...  popMask();
///     beginLayer(bounds); ...draw... endLayer(blend, color, filters);
/// A mask applies to a layer as a whole. Masks opened within a layer must be popped before it ends.
class Canvas
{
public:
    /// @param target borrowed, as is the cache; both must outlive the canvas
    Canvas(SurfaceView target, Quality quality, RenderCache& cache);
    ~Canvas();
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    /// What is drawn between these two is a frame: the cache may divide it between two threads if such frames
    /// take long, see RenderCache::setSecondThread(). Then all calls between are kept and nothing is drawn
    /// before the end, so that bitmaps must stay as they are until then; those given by reference are copied.
    /// Without an end the frame is lost.
    void beginFrame();
    void endFrame();

    /// Device pixels to a pixel of the stage, 1 at first. Strokes that do not scale with their object still
    /// scale with this.
    void setPixelScale(double scale);

    /// Only pixels inside are changed by anything below; at first the whole surface. Not to be called between
    /// a begin and its end.
    void setClip(const IntRect& clip);
    /// What can be reached at the moment: the clip, narrowed by masks and layers. For skipping what is
    /// outside.
    [[nodiscard]] IntRect clip() const;

    /// Sets the pixels within the clip, without blending. After an opaque colour the surface counts as a
    /// stage, which stays opaque: BlendMode::Alpha and Erase only act within layers from then on.
    void clear(swf::Rgba color);
    /// The same where what is drawn next covers all of the clip: the pixels are left as they are.
    void clearUnseen(swf::Rgba color);

    /// The flattened outlines are kept in the cache as long as the shape lives; for shapes drawn repeatedly.
    void drawShape(const std::shared_ptr<const swf::Shape>& shape, const swf::Matrix& toDevice,
                   const swf::ColorTransform& color = {});
    /// Nothing is kept; for shapes made for this frame, such as a morph between two ratios.
    void drawShape(const swf::Shape& shape, const swf::Matrix& toDevice,
                   const swf::ColorTransform& color = {});

    /// Fills the outlines, whatever their own fills are, with one colour (already transformed).
    void drawGlyphs(std::span<const GlyphPlacement> glyphs, swf::Rgba color);

    /// @param toDevice bitmap pixels to device pixels
    void drawBitmap(const swf::Bitmap& bitmap, const swf::Matrix& toDevice,
                    const swf::ColorTransform& color = {}, Smoothing smoothing = Smoothing::Off);

    void drawBitmap(const std::shared_ptr<const swf::Bitmap>& bitmap, const swf::Matrix& toDevice,
                    const swf::ColorTransform& color = {}, Smoothing smoothing = Smoothing::Off);

    void fillRect(const swf::Rect& twips, const swf::Matrix& toDevice, swf::Rgba color);
    /// Like fillRect(), snapped to whole pixels as long as the rectangle stays upright: the ground of a text
    /// field.
    void fillBox(const swf::Rect& twips, const swf::Matrix& toDevice, swf::Rgba color);
    /// What becomes of the lower right corner of a border: closed, left out, as the end of a line is that
    /// goes round pixel by pixel, or covered in part, as the joint of a drawn line is.
    enum class LastCorner { Closed, Open, InPart };
    /// One device pixel wide and snapped like fillBox(), around it to the right and below: the border of a
    /// text field.
    void strokeRect(const swf::Rect& twips, const swf::Matrix& toDevice, swf::Rgba color,
                    LastCorner corner = LastCorner::Closed);
    /// The border of an upright rectangle in device pixels, `width` of them wide and within it, filling it
    /// when there is no room: the mark of what has the focus.
    void strokeInside(swf::Point min, swf::Point max, double width, swf::Rgba color);
    /// Inverts the colours below: the caret.
    void invertRect(const swf::Rect& twips, const swf::Matrix& toDevice);

    void beginMask(MaskKind kind = MaskKind::Opaque);
    /// What was drawn since beginMask(), cut by the masks around it, limits what is drawn until popMask().
    void endMask();
    void popMask();

    /// Draws go to a transparent surface of their own.
    /// @param deviceBounds what the content may cover; pixels outside are lost. It is cut to what the clip
    /// and
    ///        the filters' reach leave of it. Bounds of more than kMaxLayerPixels draw nothing.
    /// @param filters those that endLayer() will get: content outside the clip matters when they reach in
    void beginLayer(const IntRect& deviceBounds, std::span<const swf::Filter> filters = {});
    /// Applies the filters (see setPixelScale), then the colour transform, and blends the layer onto what is
    /// below. BlendMode::Alpha and Erase act on the enclosing layer's alpha, or on
    /// that of a surface that may be transparent.
    void endLayer(swf::BlendMode blend = swf::BlendMode::Layer, const swf::ColorTransform& color = {},
                  std::span<const swf::Filter> filters = {});

    /// One that draws elsewhere in the same quality, between two calls of this one.
    [[nodiscard]] std::unique_ptr<Canvas> companion(SurfaceView target) const;

    /// Whether what is drawn becomes a mask.
    [[nodiscard]] bool buildsMask() const;

    static constexpr long long kMaxLayerPixels = 16LL << 20;

private:
    void drawKept();

    class Impl;
    std::unique_ptr<Impl> m_impl;
    std::unique_ptr<Recording> m_recording; ///< of a frame that two threads will draw
    std::optional<FrameStart> m_frameStart; ///< of a frame that is drawn at once
};

/// The device pixels that a rectangle in twips can touch, with one pixel more all around for edge smoothing
/// and hairlines. Saturated; empty for an empty rectangle or a matrix that is not finite.
IntRect deviceBounds(const swf::Rect& twips, const swf::Matrix& toDevice);

/// The same of a whole shape: strokes that do not scale with the object may reach beyond its stated bounds.
IntRect deviceBounds(const swf::Shape& shape, const swf::Matrix& toDevice, double pixelScale = 1);

/// A matrix whose target is twips becomes one whose target is device pixels.
inline swf::Matrix twipsToPixels(const swf::Matrix& matrix, double pixelScale = 1)
{
    const double f = pixelScale / swf::kTwipsPerPixel;
    return {matrix.a * f, matrix.b * f, matrix.c * f, matrix.d * f, matrix.tx * f, matrix.ty * f};
}

} // namespace flash::render
