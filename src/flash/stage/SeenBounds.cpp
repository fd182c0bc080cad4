#include "flash/stage/SeenBounds.h"

#include "flash/guard/Guard.h"
#include "flash/render/Canvas.h"
#include "flash/render/Filters.h"
#include "flash/stage/Damage.h"
#include "flash/stage/Stage.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace flash::stage
{

namespace
{

bool isInMask(const Node& node)
{
    for (const Node* at = &node; at != nullptr; at = at->parent())
        if (at->maskee() != nullptr || at->clipDepth()) return true;
    return false;
}

} // namespace

bool isLayered(const Node& node)
{
    return node.blend() != swf::BlendMode::Normal || !node.filters().empty() || node.cacheAsBitmap();
}

bool isCut(const Node& node)
{
    if (node.blend() != swf::BlendMode::Normal || node.cacheAsBitmap()) return true;
    return !node.filters().empty() && node.mask() == nullptr;
}

bool followsContent(const Node& node)
{
    return isLayered(node) || node.scalingGrid() || node.opaqueBackground();
}

bool leavesItsBounds(Node& node, const swf::Matrix& toDevice, double scale)
{
    const double across = toDevice.a * toDevice.a + toDevice.b * toDevice.b,
                 down = toDevice.c * toDevice.c + toDevice.d * toDevice.d,
                 skew = toDevice.a * toDevice.c + toDevice.b * toDevice.d;
    constexpr double kEven = 1e-3;
    if (std::abs(across - down) + std::abs(skew) <= kEven * (across + down)) return false;
    const std::shared_ptr<const swf::Shape> outline = node.outline();
    return outline && !render::deviceBounds(node.reach(), toDevice)
                           .contains(render::deviceBounds(*outline, toDevice, scale));
}

swf::Matrix scrolledBy(const swf::Rect& rect)
{
    return {1, 0, 0, 1, -static_cast<double>(rect.xMin), -static_cast<double>(rect.yMin)};
}

render::IntRect seenBounds(Node& node, const swf::Matrix& toDevice, double scale, DrawnAs as)
{
    guard::check();
    const bool asMask = as == DrawnAs::Mask;
    const render::IntRect own = render::deviceBounds(node.reach(), toDevice);
    if (!asMask && !node.stage().view().hasOutgrowth()) return own;
    render::IntRect all = own;
    if (asMask || !node.scrollRect()) {
        const swf::Matrix around = node.scrollRect() ? toDevice * scrolledBy(*node.scrollRect()) : toDevice;
        if (const auto outline = node.outline())
            all = render::unite(all, render::deviceBounds(*outline, around, scale));
        for (const NodePtr& child : node.children()) {
            // A clip layer lies where its reach is, too: what it lets through is within.
            if ((asMask || child->isVisible()) && !child->maskee())
                all = render::unite(all, seenBounds(*child, around * child->matrix(), scale, as));
        }
    }
    // What is drawn as a picture is cut where its own bounds are.
    if (!asMask && (isCut(node) || node.scrollRect())) all = pictureBounds(node, toDevice, scale);
    // What is kept as a bitmap, or made one of by filters, is moved to whole pixels.
    if (node.cacheAsBitmap() || !node.filters().empty()) all = render::grown(all, {1, 1, 1, 1});
    return node.filters().empty() ? all : render::grown(all, render::filterGrowth(node.filters(), scale));
}

render::IntRect pictureBounds(Node& node, const swf::Matrix& toDevice, double scale)
{
    guard::check();
    render::IntRect all = render::deviceBounds(node.reach(), toDevice);
    if (node.scrollRect()) return all;
    for (const NodePtr& child : node.children()) {
        if (!child->isVisible() || child->maskee() != nullptr || child->clipDepth()) continue;
        const render::IntRect part = pictureBounds(*child, toDevice * child->matrix(), scale);
        all = render::unite(all, child->filters().empty()
                                     ? part
                                     : render::grown(part, render::filterGrowth(child->filters(), scale)));
    }
    return all;
}

render::IntRect seenOnStage(Node& node, const swf::Matrix& view, double scale)
{
    return seenBounds(node, view * node.toStage(), scale, isInMask(node) ? DrawnAs::Mask : DrawnAs::Picture);
}

namespace
{

bool isMissed(Node& node, const swf::Matrix& view)
{
    if (node.mask() == nullptr) return false;
    const swf::Matrix toDevice = view * node.toStage();
    const double scale = std::sqrt(std::abs(view.a * view.d)) * swf::kTwipsPerPixel;
    return maskMisses(node,
                      isLayered(node) ? pictureBounds(node, toDevice, scale)
                                      : render::deviceBounds(node.reach(), toDevice),
                      view);
}

} // namespace

namespace
{

// As far as results look for their source, sources show in results on the other side.
render::IntRect grownBySources(const std::vector<swf::Filter>& filters, const render::IntRect& bounds,
                               double scale)
{
    const render::Growth reach = render::filterReach(filters, scale);
    return render::grown(bounds, {reach.right, reach.bottom, reach.left, reach.top});
}

/// @param masks how many masks of masks are looked at; they may go round in a ring
render::IntRect grownAround(const Node& node, render::IntRect bounds, double scale, int masks)
{
    render::IntRect all;
    for (const Node* at = &node; at != nullptr; at = at->parent()) {
        if (at != &node) {
            // What is moved to whole pixels takes along what it holds.
            if (at->cacheAsBitmap() || !at->filters().empty()) bounds = render::grown(bounds, {1, 1, 1, 1});
            if (!at->filters().empty()) bounds = grownBySources(at->filters(), bounds, scale);
        }
        // A mask cuts before filters are at work.
        if (const Node* masked = at->maskee(); masked != nullptr && masks > 0) {
            const render::IntRect cut =
                masked->filters().empty() ? bounds : grownBySources(masked->filters(), bounds, scale);
            all = render::unite(all, grownAround(*masked, cut, scale, masks - 1));
        }
    }
    return render::unite(all, bounds);
}

} // namespace

render::IntRect grownByFiltersAround(const Node& node, const render::IntRect& bounds, double scale)
{
    constexpr int kMasks = 4;
    return grownAround(node, bounds, scale, kMasks);
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

void invalidateClipped(const Node& layer, int lastDepth)
{
    if (layer.parent() == nullptr) return;
    bool isAbove = false;
    guard::check();
    for (const NodePtr& sibling : layer.parent()->children()) {
        if (sibling.get() == &layer) {
            isAbove = true;
        } else if (isAbove) {
            if (sibling->depth() > lastDepth) return;
            // One within another makes the other reach as far as itself.
            if (sibling->clipDepth()) lastDepth = std::max(lastDepth, *sibling->clipDepth());
            sibling->invalidate();
        }
    }
}

void DrawnPictures::note(Node& node, const render::IntRect& seen, const swf::Matrix& view)
{
    Note& note = m_notes[&node];
    note = {node.weak_from_this(), node.reach(), seen, isMissed(node, view), {}, {}};
    if (Node* mask = node.mask()) {
        note.maskPlace = mask->toStage();
        note.maskReach = mask->reach();
    }
}

void DrawnPictures::collect(Damage& damage, const swf::Matrix& view, double scale)
{
    for (auto at = m_notes.begin(); at != m_notes.end();) {
        const NodePtr node = at->second.node.lock();
        if (!node || node->isRemoved() || !(followsContent(*node) || node->mask() != nullptr)) {
            at = m_notes.erase(at);
            continue;
        }
        const Note& note = at->second;
        ++at;
        // The mask's own place may change with whatever it is in, elsewhere.
        Node* const mask = node->mask();
        const bool maskMoved =
            mask != nullptr && (mask->toStage() != note.maskPlace || mask->reach() != note.maskReach);
        const bool changes =
            maskMoved || (followsContent(*node) &&
                          (note.reach != node->reach() || note.maskMisses != isMissed(*node, view)));
        // What may look at any pixel of its picture shows a change anywhere.
        const bool isMoved = render::needsWhole(node->filters()) &&
                             std::ranges::any_of(damage.boxes(), [&](const render::IntRect& box) {
                                 return box.intersects(note.seen);
                             });
        if (!changes && !isMoved) continue;
        damage.add(grownByFiltersAround(*node, note.seen, scale));
        if (changes) damage.add(grownByFiltersAround(*node, seenOnStage(*node, view, scale), scale));
    }
}

} // namespace flash::stage
