#include "flash/stage/ShownBitmaps.h"

#include "flash/guard/Guard.h"
#include "flash/render/ShaderRun.h"
#include "flash/stage/Clip.h"
#include "flash/stage/Graphics.h"
#include "flash/stage/Stage.h"

#include <algorithm>
#include <variant>

namespace flash::stage
{

namespace
{

class Search
{
public:
    explicit Search(std::span<const swf::Bitmap* const> pictures) : m_pictures(pictures) {}

    /// Of a node with all below it.
    void invalidateIn(Node& node)
    {
        guard::check();
        if (shows(node)) node.invalidate();
        // A mask that is on no list is drawn all the same. Masks of masks may go round in a ring.
        Node* const mask = node.mask();
        if (mask != nullptr && !m_isInMask && !isOnList(*mask)) {
            m_isInMask = true;
            invalidateIn(*mask);
            m_isInMask = false;
        }
        for (const NodePtr& child : node.children()) invalidateIn(*child);
    }

private:
    static bool isOnList(const Node& node)
    {
        const Node* top = &node;
        while (top->parent() != nullptr) top = top->parent();
        return top->kind() == NodeKind::Clip && static_cast<const Clip*>(top)->levelNumber() >= 0;
    }

    bool isOne(const std::shared_ptr<const swf::Bitmap>& picture) const
    {
        if (!picture) return false;
        if (std::ranges::find(m_pictures, picture.get()) != m_pictures.end()) return true;
        const render::ShaderBinding* kernel = render::shaderOf(picture);
        return kernel != nullptr &&
               std::ranges::any_of(kernel->images,
                                   [this](const render::ShaderImage& image) { return isOne(image.bitmap); });
    }

    bool shows(Node& node) const
    {
        if (node.kind() == NodeKind::Bitmap && isOne(static_cast<BitmapNode&>(node).bitmap())) return true;
        const auto looksAtIt = [this](const swf::Filter& filter) {
            const auto* displacement = std::get_if<swf::DisplacementMapFilter>(&filter);
            return displacement != nullptr && isOne(displacement->map);
        };
        if (std::ranges::any_of(node.filters(), looksAtIt)) return true;
        const std::shared_ptr<const swf::Shape> outline = node.outline();
        if (!outline) return false;
        return std::ranges::any_of(outline->layers, [this](const swf::ShapeLayer& layer) {
            return std::ranges::any_of(layer.fills,
                                       [this](const auto& fill) { return isOne(fill.bitmap); }) ||
                   std::ranges::any_of(layer.lines, [this](const auto& line) {
                       return line.fill && isOne(line.fill->bitmap);
                   });
        });
    }

    std::span<const swf::Bitmap* const> m_pictures;
    bool m_isInMask = false; ///< in one that is on no list
};

} // namespace

void invalidateShowing(Stage& stage, std::span<const swf::Bitmap* const> pictures)
{
    Search search(pictures);
    for (const auto& [number, root] : stage.displayList().levels()) search.invalidateIn(*root);
}

} // namespace flash::stage
