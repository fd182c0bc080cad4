#include "flash/stage/Renderer.h"

#include "flash/guard/Guard.h"
#include "flash/render/Filters.h"
#include "flash/stage/Clip.h"
#include "flash/stage/SeenBounds.h"
#include "flash/stage/Stage.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <variant>

namespace flash::stage
{

void Renderer::drawNode(Node& node, const swf::Matrix& parentToDevice, const swf::ColorTransform& parentColor)
{
    // A mask lets through by what it is made of, shown or not.
    if ((!node.isVisible() && !m_canvas.buildsMask()) || node.maskee()) return;
    if (node.spacePlace()) {
        drawOutOfPlane(node, parentToDevice, parentColor * node.color());
        return;
    }
    drawPlaced(node, onWholeTwips(parentToDevice * node.matrix(), m_view, m_toStage),
               parentColor * node.color());
}

swf::Matrix onWholeTwips(swf::Matrix placed, const swf::Matrix& view, const swf::Matrix& toStage)
{
    const swf::Point at = toStage.map(placed.tx, placed.ty);
    const swf::Point whole{std::nearbyint(at.x), std::nearbyint(at.y)};
    constexpr double kSame = 1e-6, kFar = 1e8;
    const double away = std::abs(at.x - whole.x) + std::abs(at.y - whole.y);
    if (!(away > kSame && std::abs(at.x) < kFar && std::abs(at.y) < kFar)) return placed;
    const swf::Point moved = view.map(whole.x, whole.y);
    placed.tx = moved.x;
    placed.ty = moved.y;
    return placed;
}

void Renderer::drawPlaced(Node& node, const swf::Matrix& placed, const swf::ColorTransform& color)
{
    guard::check(4);
    const double scale = std::sqrt(std::abs(m_view.a * m_view.d)) * swf::kTwipsPerPixel;
    // What is kept as a bitmap, and what filters make one of, lies on whole pixels.
    const bool kept = node.cacheAsBitmap() || !node.filters().empty();
    const swf::Matrix toDevice = kept ? snapped(placed, node.reach()) : placed;
    render::IntRect content =
        isLayered(node) ? pictureBounds(node, toDevice, scale) : render::deviceBounds(node.reach(), toDevice);
    // A colour matrix can give a colour to what is empty, so that the size of the picture shows: it begins
    // with the first pixel that would hold something, were it not moved to whole ones, and behind the last
    // one there is one more.
    const bool sizeShows = std::ranges::any_of(node.filters(), [](const swf::Filter& filter) {
        return std::holds_alternative<swf::ColorMatrixFilter>(filter);
    });
    if (sizeShows && !content.isEmpty()) {
        content = render::deviceBounds(node.reach(), placed);
        ++content.left;
        ++content.top;
    }
    // Where pixels are moved about by a map, the map begins with the first pixel.
    if (render::needsWhole(node.filters()) && !content.isEmpty()) {
        content = render::deviceBounds(node.reach(), toDevice);
        content = render::IntRect{content.left + 1, content.top + 1, content.right - 1, content.bottom - 1};
    }
    const bool blends = node.blend() != swf::BlendMode::Normal;
    render::IntRect reach = content;
    if (m_canvas.buildsMask())
        reach = render::unite(content, seenBounds(node, toDevice, scale, DrawnAs::Mask));
    else if (!node.filters().empty())
        reach = isCut(node) ? render::grown(content, render::filterGrowth(node.filters(), scale))
                            : render::unite(content, seenBounds(node, toDevice, scale));
    else if (!isLayered(node) && node.stage().view().hasOutgrowth())
        reach = seenBounds(node, toDevice, scale);
    else if (!isLayered(node) && leavesItsBounds(node, toDevice, scale)) {
        // What contains it may have been drawn in part for its smaller bounds: all of it once more.
        node.stage().view().noteOutgrowth();
        node.stage().view().invalidateAll();
        reach = seenBounds(node, toDevice, scale);
    }
    // What has left the plane may be seen far from where it would lie in it.
    const bool reachesOut = node.stage().view().hasSpaces() && node.holdsSpace();
    if (reachesOut) content = reach = m_canvas.clip();
    if (!m_pictureRoot) {
        node.noteDrawn(m_noteAs ? *m_noteAs : reach);
        if (!m_noteAs && (followsContent(node) || node.mask() != nullptr))
            node.stage().view().drawnPictures().note(node, reach, m_view);
    }
    if (!reach.intersects(m_canvas.clip())) return;

    // Filters work on the part of the picture that the mask lets through. Where there is none, the player has
    // nothing to make a bitmap of, and shows the node as if it had neither filters nor mask.
    Node* mask = node.mask();
    static const std::vector<swf::Filter> kNoFilters;
    const bool isMissed = mask && maskMisses(node, content, m_view);
    const std::vector<swf::Filter>& filters = isMissed ? kNoFilters : node.filters();
    if (isMissed) mask = nullptr;
    const bool alphaMask = mask && node.cacheAsBitmap() && mask->cacheAsBitmap();
    if (mask) {
        m_canvas.beginMask(alphaMask ? render::MaskKind::Alpha : render::MaskKind::Opaque);
        drawAsMask(*mask, m_view * mask->toStage());
        m_canvas.endMask();
    }
    const bool layered = m_ground == nullptr && (blends || !filters.empty() || node.cacheAsBitmap());
    if (layered) {
        constexpr long long kPixelsPerStep = 256;
        const render::IntRect area = render::intersect(content, m_canvas.clip());
        guard::check(static_cast<std::uint32_t>(1 + 1LL * area.width() * area.height() / kPixelsPerStep));
        m_canvas.beginLayer(content, filters);
        drawContent(node, toDevice, {});
        m_canvas.endLayer(blends ? node.blend() : swf::BlendMode::Layer, color, filters);
    } else {
        drawContent(node, toDevice, color);
    }
    if (mask) m_canvas.popMask();
}

// A bitmap's pixels begin with the upper left corner of what it shows; halves go to the right and down.
swf::Matrix Renderer::snapped(swf::Matrix matrix, const swf::Rect& rect)
{
    if (rect.isEmpty()) return matrix;
    const auto least = [&](double x, double y) {
        return std::min(x * rect.xMin, x * rect.xMax) + std::min(y * rect.yMin, y * rect.yMax);
    };
    const double left = least(matrix.a, matrix.c) + matrix.tx, top = least(matrix.b, matrix.d) + matrix.ty;
    constexpr double kFar = 1e8;
    if (!(std::abs(left) < kFar && std::abs(top) < kFar)) return matrix;
    matrix.tx += std::floor(left + 0.5) - left;
    matrix.ty += std::floor(top + 0.5) - top;
    return matrix;
}

void Renderer::drawForPicture(Node& node, const swf::Matrix& toDevice, const swf::ColorTransform& color)
{
    if (node.maskee()) return;
    m_pictureRoot = &node;
    if (node.mask()) {
        m_canvas.beginMask();
        drawAsMask(*node.mask(), toDevice * node.toStage().inverted() * node.mask()->toStage());
        m_canvas.endMask();
    }
    drawContent(node, toDevice, color);
    if (node.mask()) m_canvas.popMask();
    m_pictureRoot = nullptr;
}

void Renderer::drawContent(Node& node, const swf::Matrix& toDevice, const swf::ColorTransform& color)
{
    if (node.opaqueBackground() && m_ground == nullptr) {
        swf::Rgba background = *node.opaqueBackground();
        background.a = 255;
        m_canvas.fillRect(node.bounds(), toDevice, background);
    }
    if (!node.scrollRect()) {
        drawOwn(node, toDevice, color);
        drawChildren(node, toDevice, color);
        return;
    }
    // A mask is not cut itself.
    const bool cut = !m_canvas.buildsMask();
    if (cut) {
        m_canvas.beginMask();
        m_canvas.fillRect(node.bounds(), toDevice, {});
        m_canvas.endMask();
    }
    const swf::Matrix scrolled = toDevice * scrolledBy(*node.scrollRect());
    drawOwn(node, scrolled, color);
    drawChildren(node, scrolled, color);
    if (cut) m_canvas.popMask();
}

void Renderer::drawOwn(Node& node, const swf::Matrix& toDevice, const swf::ColorTransform& color)
{
    if (m_ground == &node) m_ground = nullptr;
    if (m_ground != nullptr) return;
    // A picture's root has no scale there.
    if (const auto sliced = node.sliced(); sliced && sliced->holder != m_pictureRoot) {
        if (sliced->holder != &node && !node.matrix().isInvertible()) return;
        const swf::Matrix holder = sliced->holder == &node ? toDevice : toDevice * node.matrix().inverted();
        m_canvas.drawShape(sliced->shape, holder * sliced->toHolder, color);
        return;
    }
    node.draw(m_canvas, toDevice, color);
}

void Renderer::drawChildren(Node& node, const swf::Matrix& toDevice, const swf::ColorTransform& color)
{
    // The bound on nesting keeps a hostile movie from using up the machine's stack.
    constexpr int kMaxDepth = 256;
    if (m_depth >= kMaxDepth) return;
    ++m_depth;
    // The pictures of a text end with its box.
    const bool boxed =
        node.kind() == NodeKind::TextField && !node.children().empty() && !m_canvas.buildsMask();
    if (boxed) {
        m_canvas.beginMask();
        m_canvas.fillRect(node.bounds(), toDevice, {0, 0, 0, 255});
        m_canvas.endMask();
    }
    std::vector<int> open; // the last depths of the clip layers, outermost first
    for (const NodePtr& child : node.children()) {
        while (!open.empty() && child->depth() > open.back()) {
            m_canvas.popMask();
            open.pop_back();
        }
        if (child->clipDepth()) {
            // Nor is a mask cut by the clip layers that it holds: all of what they would cut lets through.
            if (m_canvas.buildsMask()) continue;
            // A clip layer within another is cut by it for good, also where it reaches further: the outer one
            // goes on.
            for (int& lastDepth : open) lastDepth = std::max(lastDepth, *child->clipDepth());
            open.push_back(*child->clipDepth());
            m_canvas.beginMask();
            drawAsMask(*child, onWholeTwips(toDevice * child->matrix(), m_view, m_toStage));
            m_canvas.endMask();
            continue;
        }
        drawNode(*child, toDevice, color);
    }
    for (std::size_t i = 0; i < open.size(); ++i) m_canvas.popMask();
    if (boxed) m_canvas.popMask();
    --m_depth;
}

void Renderer::drawAsMask(Node& mask, const swf::Matrix& toDevice)
{
    const Node* const ground = std::exchange(m_ground, nullptr);
    drawPlaced(mask, toDevice, {});
    m_ground = ground;
}

} // namespace flash::stage
