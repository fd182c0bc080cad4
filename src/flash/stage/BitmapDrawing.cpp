#include "flash/stage/BitmapDrawing.h"

#include "flash/render/BitmapOps.h"
#include "flash/stage/Renderer.h"

namespace flash::stage
{
namespace
{

/// Calls draw(canvas) within the clip and the blend mode.
template <class Draw>
void drawOn(swf::Bitmap& target, const BitmapDrawing& how, Draw draw)
{
    render::RenderCache cache;
    render::Canvas canvas({target.pixels.data(), target.width, target.height, target.width}, how.quality,
                          cache);
    const render::IntRect bounds = render::boundsOf(target);
    if (how.clip) canvas.setClip(render::intersect(*how.clip, bounds));
    const bool isLayered = how.blend != swf::BlendMode::Normal;
    if (isLayered) canvas.beginLayer(bounds);
    draw(canvas);
    if (isLayered) canvas.endLayer(how.blend);
    constexpr std::uint32_t kOpaque = 0xFF000000;
    if (target.opaque)
        for (std::uint32_t& pixel : target.pixels) pixel |= kOpaque;
}

} // namespace

void drawOnBitmap(swf::Bitmap& target, const swf::Bitmap& picture, const BitmapDrawing& how)
{
    std::optional<swf::Bitmap> snapshot;
    if (&picture == &target) snapshot = picture;
    drawOn(target, how, [&](render::Canvas& canvas) {
        canvas.drawBitmap(snapshot ? *snapshot : picture, how.matrix, how.transform,
                          how.isSmooth ? render::Smoothing::On : render::Smoothing::Off);
    });
}

void drawOnBitmap(swf::Bitmap& target, Node& node, const BitmapDrawing& how)
{
    const swf::Matrix toDevice = how.matrix * render::twipsToPixels(swf::Matrix{});
    drawOn(target, how, [&](render::Canvas& canvas) {
        Renderer(canvas, toDevice).drawForPicture(node, toDevice, how.transform);
    });
}

} // namespace flash::stage
