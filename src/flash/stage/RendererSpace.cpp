#include "flash/guard/Guard.h"
#include "flash/render/Filters.h"
#include "flash/render/Projection.h"
#include "flash/stage/Renderer.h"
#include "flash/stage/Space.h"
#include "flash/stage/Stage.h"

#include <algorithm>
#include <cmath>

// What has left the plane: drawn flat, as a picture, and that seen from aside. What contains others in space
// is taken apart for that, so that all of them share one space; they cover each other in the order of the
// display list, whatever their depth.
namespace flash::stage
{

namespace
{

bool isKept(const Node& node)
{
    return node.blend() != swf::BlendMode::Normal || !node.filters().empty() || node.cacheAsBitmap() ||
           node.scrollRect();
}

} // namespace

void Renderer::drawOutOfPlane(Node& node, const swf::Matrix& parentToDevice, const swf::ColorTransform& color)
{
    drawInSpace(node, swf::Matrix3D(parentToDevice) * node.perspectiveAround() * node.matrix3D(), color);
}

/// @param toDevice not yet divided; what its depth becomes does not count
void Renderer::drawInSpace(Node& node, const swf::Matrix3D& toDevice, const swf::ColorTransform& color)
{
    constexpr int kMaxDepth = 256;
    if (m_depth >= kMaxDepth) return;
    guard::check(4);
    ++m_depth;
    if (node.mask()) {
        m_canvas.beginMask(render::MaskKind::Alpha);
        drawAsMask(*node.mask(), m_view * node.mask()->toStage());
        m_canvas.endMask();
    }
    if (isKept(node) || !node.holdsSpace()) {
        drawProjected(node, toDevice, color, Part::Whole);
    } else {
        drawProjected(node, toDevice, color, Part::Own);
        const Space* space = node.space();
        const bool seesAnew = space != nullptr && space->perspective && !node.spacePlace();
        drawChildrenInSpace(node, seesAnew ? toDevice * space->perspective->matrix() : toDevice, color);
    }
    if (node.mask()) m_canvas.popMask();
    --m_depth;
}

void Renderer::drawChildrenInSpace(Node& node, const swf::Matrix3D& toDevice,
                                   const swf::ColorTransform& color)
{
    std::vector<int> open;
    for (const NodePtr& child : node.children()) {
        while (!open.empty() && child->depth() > open.back()) {
            m_canvas.popMask();
            open.pop_back();
        }
        const swf::Matrix3D placed = toDevice * child->matrix3D();
        if (child->clipDepth()) {
            for (int& lastDepth : open) lastDepth = std::max(lastDepth, *child->clipDepth());
            open.push_back(*child->clipDepth());
            m_canvas.beginMask(render::MaskKind::Alpha);
            drawProjected(*child, placed, {}, Part::Whole);
            m_canvas.endMask();
            continue;
        }
        if (child->isVisible() && !child->maskee()) drawInSpace(*child, placed, color * child->color());
    }
    for (std::size_t i = 0; i < open.size(); ++i) m_canvas.popMask();
}

void Renderer::drawProjected(Node& node, const swf::Matrix3D& toDevice, const swf::ColorTransform& color,
                             Part part)
{
    const auto seen = swf::Homography::ofPlane(toDevice);
    // What its filters add lies around it.
    const double viewScale = std::sqrt(std::abs(m_view.a * m_view.d)) * swf::kTwipsPerPixel;
    const swf::Rect reach = node.reach();
    if (reach.isEmpty() || !seen.inverted()) {
        if (!m_pictureRoot) node.noteDrawn({});
        return;
    }
    const render::Stretch stretch = render::stretchAt(render::seenCorners(reach, seen), seen);
    // As fine as it is seen where it is closest, as far as memory goes.
    constexpr double kMaxPixels = 4 << 20, kMaxSide = 4096;
    double scaleX = stretch.x, scaleY = stretch.y;
    if (!(scaleX > 0) || !(scaleY > 0) || !std::isfinite(scaleX) || !std::isfinite(scaleY)) return;
    scaleX = std::min(scaleX, kMaxSide / std::max(1, reach.width()));
    scaleY = std::min(scaleY, kMaxSide / std::max(1, reach.height()));
    const double pixels = scaleX * reach.width() * scaleY * reach.height();
    if (pixels > kMaxPixels) {
        const double smaller = std::sqrt(kMaxPixels / pixels);
        scaleX *= smaller;
        scaleY *= smaller;
    }
    const double ownScale = std::sqrt(scaleX * scaleY) * swf::kTwipsPerPixel;
    const render::Growth growth = render::filterGrowth(node.filters(), viewScale > 0 ? ownScale : 1);
    const int width = static_cast<int>(std::ceil(reach.width() * scaleX)) + 4 + growth.left + growth.right,
              height = static_cast<int>(std::ceil(reach.height() * scaleY)) + 4 + growth.top + growth.bottom;
    const swf::Matrix toPicture{
        scaleX, 0, 0, scaleY, 2 + growth.left - reach.xMin * scaleX, 2 + growth.top - reach.yMin * scaleY};
    // The part of the plane that the picture is of, with all around the node itself.
    const auto side = [](double twips) { return static_cast<std::int32_t>(std::clamp(twips, -1e9, 1e9)); };
    const swf::Rect whole{side(-toPicture.tx / scaleX), side((width - toPicture.tx) / scaleX),
                          side(-toPicture.ty / scaleY), side((height - toPicture.ty) / scaleY)};
    const auto corners = render::seenCorners(whole, seen);
    const render::IntRect bounds = render::projectedBounds(corners, seen);
    if (!m_pictureRoot) node.noteDrawn(m_noteAs ? *m_noteAs : bounds);
    const render::IntRect area = render::intersect(bounds, m_canvas.clip());
    if (area.isEmpty()) return;
    constexpr int kPixelsPerStep = 256;
    guard::check(static_cast<std::uint32_t>(1 + width * height / kPixelsPerStep));

    render::Surface picture(width, height);
    {
        const std::unique_ptr<render::Canvas> canvas = m_canvas.companion(picture.view());
        canvas->setPixelScale(ownScale);
        Renderer flat(*canvas, toPicture * node.toStage().inverted());
        flat.m_depth = m_depth;
        flat.m_pictureRoot = m_pictureRoot;
        flat.m_noteAs = m_noteAs ? *m_noteAs : bounds;
        if (part == Part::Own) {
            flat.drawOwn(node, toPicture, {});
        } else if (!node.filters().empty()) {
            const render::IntRect content = render::deviceBounds(reach, toPicture);
            canvas->beginLayer(content, node.filters());
            flat.drawContent(node, toPicture, {});
            canvas->endLayer(swf::BlendMode::Layer, {}, node.filters());
        } else {
            flat.drawContent(node, toPicture, {});
        }
    }
    const swf::Homography fromPicture = seen * swf::Homography{{1 / scaleX, 0, -toPicture.tx / scaleX, 0,
                                                                1 / scaleY, -toPicture.ty / scaleY, 0, 0, 1}};
    const auto toPicturePixels = fromPicture.inverted();
    if (!toPicturePixels) return;
    swf::Bitmap shown{area.width(), area.height(), false, {}};
    shown.pixels.resize(static_cast<std::size_t>(area.width()) * static_cast<std::size_t>(area.height()));
    render::project(picture, *toPicturePixels, area,
                    {shown.pixels.data(), area.width(), area.height(), area.width()});
    const swf::Matrix place{1, 0, 0, 1, static_cast<double>(area.left), static_cast<double>(area.top)};
    const bool blends = part == Part::Whole && node.blend() != swf::BlendMode::Normal;
    if (blends) m_canvas.beginLayer(area);
    m_canvas.drawBitmap(shown, place, color);
    if (blends) m_canvas.endLayer(node.blend());
}

} // namespace flash::stage
