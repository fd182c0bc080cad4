#include "flash/stage/SeenBounds.h"

#include "flash/guard/Guard.h"
#include "flash/render/Canvas.h"
#include "flash/render/Filters.h"
#include "flash/stage/Damage.h"
#include "flash/stage/Stage.h"

#include <algorithm>
#include <vector>

namespace flash::stage
{

bool isLayered(const Node& node)
{
    return node.blend() != swf::BlendMode::Normal || !node.filters().empty() || node.cacheAsBitmap();
}

bool followsContent(const Node& node)
{
    return isLayered(node) || node.scalingGrid() || node.opaqueBackground();
}

render::IntRect seenBounds(Node& node, const swf::Matrix& toDevice, double scale)
{
    guard::check();
    const render::IntRect own = render::deviceBounds(node.reach(), toDevice);
    if (!node.stage().view().hasOutgrowth()) return own;
    render::IntRect all = own;
    if (const auto outline = node.outline())
        all = render::unite(all, render::deviceBounds(*outline, toDevice, scale));
    if (!node.scrollRect()) {
        for (const NodePtr& child : node.children()) {
            // A clip layer lies where its reach is, too: what it lets through is within.
            if (child->isVisible() && !child->maskee())
                all = render::unite(all, seenBounds(*child, toDevice * child->matrix(), scale));
        }
    }
    // What is drawn as a picture is cut where its own bounds are.
    if (isLayered(node) || node.scrollRect()) all = own;
    // What is kept as a bitmap, or made one of by filters, is moved to whole pixels.
    if (node.cacheAsBitmap() || !node.filters().empty()) all = render::grown(all, {1, 1, 1, 1});
    return node.filters().empty() ? all : render::grown(all, render::filterGrowth(node.filters(), scale));
}

namespace
{

bool isMissed(Node& node, const swf::Matrix& view)
{
    return node.mask() != nullptr &&
           maskMisses(node, render::deviceBounds(node.reach(), view * node.toStage()), view);
}

} // namespace

render::IntRect grownByFiltersAround(const Node& node, render::IntRect bounds, double scale)
{
    for (const Node* at = node.parent(); at != nullptr; at = at->parent()) {
        if (at->filters().empty()) continue;
        // As far as results look for their source, sources show in results on the other side.
        const render::Growth reach = render::filterReach(at->filters(), scale);
        bounds = render::grown(bounds, {reach.right, reach.bottom, reach.left, reach.top});
    }
    return bounds;
}

bool canShow(const Node& node)
{
    bool isHidden = false;
    for (const Node* at = &node; at != nullptr; at = at->parent()) {
        if (at->maskee() != nullptr || at->clipDepth()) return true;
        isHidden = isHidden || !at->isVisible();
    }
    return !isHidden;
}

bool maskMisses(Node& node, const render::IntRect& content, const swf::Matrix& view)
{
    Node* mask = node.mask();
    return mask != nullptr && !node.filters().empty() && !mask->reach().isEmpty() &&
           !render::deviceBounds(mask->reach(), view * mask->toStage()).intersects(content);
}

void DrawnPictures::note(Node& node, const render::IntRect& seen, const swf::Matrix& view)
{
    m_notes[&node] = {node.weak_from_this(), node.reach(), seen, isMissed(node, view)};
}

void DrawnPictures::collect(Damage& damage, const swf::Matrix& view, double scale)
{
    for (auto at = m_notes.begin(); at != m_notes.end();) {
        const NodePtr node = at->second.node.lock();
        if (!node || node->isRemoved() || !followsContent(*node)) {
            at = m_notes.erase(at);
            continue;
        }
        const Note& note = at->second;
        ++at;
        const bool changes = note.reach != node->reach() || note.maskMisses != isMissed(*node, view);
        // What may look at any pixel of its picture shows a change anywhere.
        const bool isMoved = render::needsWhole(node->filters()) &&
                             std::ranges::any_of(damage.boxes(), [&](const render::IntRect& box) {
                                 return box.intersects(note.seen);
                             });
        if (!changes && !isMoved) continue;
        damage.add(grownByFiltersAround(*node, note.seen, scale));
        if (changes)
            damage.add(grownByFiltersAround(*node, seenBounds(*node, view * node->toStage(), scale), scale));
    }
}

} // namespace flash::stage
