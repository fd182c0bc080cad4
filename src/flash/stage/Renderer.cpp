#include "flash/stage/Renderer.h"

#include "flash/guard/Guard.h"
#include "flash/render/Filters.h"
#include "flash/stage/Clip.h"

#include <algorithm>
#include <cmath>

namespace flash::stage
{

namespace
{

/// Masks that are open among siblings: each counts up to a depth of its own.
struct OpenMask {
    Node* node;
    int lastDepth;
};

} // namespace

void Renderer::drawNode(Node& node, const swf::Matrix& parentToDevice, const swf::ColorTransform& parentColor)
{
    if (!node.isVisible() || node.maskee()) return;
    drawPlaced(node, parentToDevice * node.matrix(), parentColor * node.color());
}

void Renderer::drawPlaced(Node& node, const swf::Matrix& toDevice, const swf::ColorTransform& color)
{
    guard::check(4);
    const double scale = std::sqrt(std::abs(m_view.a * m_view.d)) * swf::kTwipsPerPixel;
    const render::IntRect content = render::deviceBounds(node.reach(), toDevice);
    render::IntRect reach = content;
    if (!node.filters().empty()) reach = render::grown(content, render::filterGrowth(node.filters(), scale));
    if (!m_pictureRoot) node.m_drawnBounds = reach;
    if (!reach.intersects(m_canvas.clip())) return;

    const bool alphaMask = node.mask() && node.cacheAsBitmap() && node.mask()->cacheAsBitmap();
    if (node.mask()) {
        m_canvas.beginMask(alphaMask ? render::MaskKind::Alpha : render::MaskKind::Opaque);
        drawAsMask(*node.mask(), m_view * node.mask()->toStage());
        m_canvas.endMask();
    }
    const bool blends = node.blend() != swf::BlendMode::Normal;
    const bool layered = blends || !node.filters().empty() || node.cacheAsBitmap();
    if (layered) {
        constexpr long long kPixelsPerStep = 256;
        const render::IntRect area = render::intersect(content, m_canvas.clip());
        guard::check(static_cast<std::uint32_t>(1 + 1LL * area.width() * area.height() / kPixelsPerStep));
        m_canvas.beginLayer(content, node.filters());
        drawContent(node, toDevice, {});
        m_canvas.endLayer(blends ? node.blend() : swf::BlendMode::Layer, color, node.filters());
    } else {
        drawContent(node, toDevice, color);
    }
    if (node.mask()) m_canvas.popMask();
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
    if (node.opaqueBackground()) {
        swf::Rgba background = *node.opaqueBackground();
        background.a = 255;
        m_canvas.fillRect(node.bounds(), toDevice, background);
    }
    if (!node.scrollRect()) {
        drawOwn(node, toDevice, color);
        drawChildren(node, toDevice, color);
        return;
    }
    m_canvas.beginMask();
    m_canvas.fillRect(node.bounds(), toDevice, {});
    m_canvas.endMask();
    const swf::Matrix scrolled = toDevice * swf::Matrix{1,
                                                        0,
                                                        0,
                                                        1,
                                                        -static_cast<double>(node.scrollRect()->xMin),
                                                        -static_cast<double>(node.scrollRect()->yMin)};
    drawOwn(node, scrolled, color);
    drawChildren(node, scrolled, color);
    m_canvas.popMask();
}

void Renderer::drawOwn(Node& node, const swf::Matrix& toDevice, const swf::ColorTransform& color)
{
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
    std::vector<OpenMask> open;
    const auto begin = [&](const OpenMask& mask) {
        m_canvas.beginMask();
        drawAsMask(*mask.node, toDevice * mask.node->matrix());
        m_canvas.endMask();
    };
    for (const NodePtr& child : node.children()) {
        const auto firstEnded = std::find_if(
            open.begin(), open.end(), [&](const OpenMask& mask) { return child->depth() > mask.lastDepth; });
        if (firstEnded != open.end()) {
            // Brackets nest, clip layers may overlap: those that go on are opened again.
            for (auto mask = firstEnded; mask != open.end(); ++mask) m_canvas.popMask();
            std::vector<OpenMask> rest(firstEnded, open.end());
            open.erase(firstEnded, open.end());
            for (const OpenMask& mask : rest) {
                if (child->depth() > mask.lastDepth) continue;
                begin(mask);
                open.push_back(mask);
            }
        }
        if (child->clipDepth()) {
            open.push_back({child.get(), *child->clipDepth()});
            begin(open.back());
            continue;
        }
        drawNode(*child, toDevice, color);
    }
    for (std::size_t i = 0; i < open.size(); ++i) m_canvas.popMask();
    --m_depth;
}

void Renderer::drawAsMask(Node& mask, const swf::Matrix& toDevice) { drawPlaced(mask, toDevice, {}); }

} // namespace flash::stage
