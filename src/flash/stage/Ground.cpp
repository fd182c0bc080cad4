#include "flash/stage/Ground.h"

#include "flash/guard/Guard.h"
#include "flash/render/Canvas.h"
#include "flash/render/Occlusion.h"
#include "flash/stage/Renderer.h"
#include "flash/stage/SeenBounds.h"
#include "flash/stage/Stage.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>

namespace flash::stage
{

namespace
{

constexpr int kDeepest = 32;

bool isClipLayer(const NodePtr& node) { return node->clipDepth().has_value(); }

/// The last of the list's depths that a clip layer before it may cut; what lies there is left alone.
int lastClippedDepth(std::span<const NodePtr> children)
{
    int last = std::numeric_limits<int>::min();
    for (const NodePtr& child : children)
        if (isClipLayer(child)) last = std::max(last, *child->clipDepth());
    return last;
}

class Search
{
public:
    Search(const swf::Matrix& view, const render::IntRect& box)
        : m_view(view), m_toStage(view.isInvertible() ? view.inverted() : swf::Matrix{}), m_box(box)
    {
    }

    Node* groundIn(Node& node, const swf::Matrix& parentToDevice, const swf::ColorTransform& parentColor,
                   int depth) const
    {
        guard::check();
        if (!isLargeEnough(node, parentToDevice)) return nullptr;
        const bool isPlain = node.isVisible() && node.maskee() == nullptr && node.mask() == nullptr &&
                             !node.clipDepth() && !isLayered(node) && !node.scrollRect();
        if (!isPlain || depth > kDeepest) return nullptr;
        const swf::Matrix toDevice = onWholeTwips(parentToDevice * node.matrix(), m_view, m_toStage);
        if (!render::deviceBounds(node.reach(), toDevice).contains(m_box)) return nullptr;
        const swf::ColorTransform color = parentColor * node.color();
        const std::span<const NodePtr> children = node.children();
        // Those of a text lie in its box.
        if (!children.empty() && node.kind() != NodeKind::TextField) {
            const int clipped = lastClippedDepth(children);
            for (auto child = children.rbegin(); child != children.rend(); ++child) {
                if ((*child)->depth() <= clipped) continue;
                if (Node* ground = groundIn(**child, toDevice, color, depth + 1)) return ground;
            }
        }
        const auto outline = node.outline();
        const bool hides = outline && !node.sliced() && render::hidesBox(*outline, toDevice, color, m_box);
        return hides ? &node : nullptr;
    }

private:
    // Most things are smaller than most boxes.
    [[nodiscard]] bool isLargeEnough(Node& node, const swf::Matrix& to) const
    {
        const swf::Rect reach = node.reach();
        const swf::Matrix& m = node.matrix();
        const double width = reach.xMax - static_cast<double>(reach.xMin),
                     height = reach.yMax - static_cast<double>(reach.yMin);
        const double across = std::abs(m.a) * width + std::abs(m.c) * height,
                     down = std::abs(m.b) * width + std::abs(m.d) * height;
        return std::abs(to.a) * across + std::abs(to.c) * down + kRounding >= m_box.width() &&
               std::abs(to.b) * across + std::abs(to.d) * down + kRounding >= m_box.height();
    }
    static constexpr double kRounding = 1;

    swf::Matrix m_view, m_toStage; ///< and back
    render::IntRect m_box;
};

} // namespace

Node* groundOf(Stage& stage, const swf::Matrix& view, const render::IntRect& box)
{
    if (stage.view().hasSpaces()) return nullptr;
    const Search search(view, box);
    const auto& levels = stage.displayList().levels();
    for (auto level = levels.rbegin(); level != levels.rend(); ++level)
        if (Node* ground = search.groundIn(*level->second, view, {}, 0)) return ground;
    return nullptr;
}

} // namespace flash::stage
