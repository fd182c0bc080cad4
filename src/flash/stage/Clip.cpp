#include "flash/stage/Clip.h"

#include "base/Ascii.h"
#include "flash/guard/Guard.h"
#include "flash/render/Canvas.h"
#include "flash/render/HitTest.h"
#include "flash/stage/Button.h"
#include "flash/stage/Drawing.h"
#include "flash/stage/Graphics.h"
#include "flash/stage/SeenBounds.h"
#include "flash/stage/Stage.h"
#include "flash/stage/TextField.h"

#include <algorithm>

namespace flash::stage
{

namespace
{

/// What scripts are told of a drawing's bounds leaves out how far joints and square ends reach.
bool hasPointedLines(const swf::Shape& shape)
{
    using Line = swf::LineStyle;
    return std::ranges::any_of(shape.layers, [](const swf::ShapeLayer& layer) {
        return std::ranges::any_of(layer.lines, [](const Line& line) {
            return line.join == Line::Join::Miter || line.startCap == Line::Cap::Square ||
                   line.endCap == Line::Cap::Square;
        });
    });
}

/// Whether, where scripts have brought the depths out of order, what stands there ends a clip layer before
/// others that it would clip.
bool endsLayersEarly(const std::vector<NodePtr>& siblings, std::vector<NodePtr>::const_iterator at)
{
    const auto next = std::next(at);
    return next != siblings.end() && (*next)->depth() < (*at)->depth() &&
           std::ranges::any_of(siblings, [](const NodePtr& node) { return node->clipDepth().has_value(); });
}

bool equalNames(std::string_view a, std::string_view b, Clip::Case sensitivity)
{
    if (sensitivity == Clip::Case::Sensitive) return a == b;
    return base::equalIgnoringAsciiCase(a, b);
}

} // namespace

Clip::Clip(Stage& stage, MoviePtr movie, std::shared_ptr<const swf::Timeline> timeline)
    : Node(stage, NodeKind::Clip), m_timeline(std::move(timeline))
{
    m_movie = std::move(movie);
}

// Children that something else holds on to outlive it.
Clip::~Clip()
{
    for (const NodePtr& child : m_children)
        if (child->m_parent == this) child->m_parent = nullptr;
}

Node* Clip::childAt(int depth) const
{
    const auto found = std::lower_bound(m_children.begin(), m_children.end(), depth,
                                        [](const NodePtr& child, int d) { return child->depth() < d; });
    return found != m_children.end() && (*found)->depth() == depth ? found->get() : nullptr;
}

Node* Clip::childByName(std::string_view name, Case sensitivity) const
{
    if (name.empty()) return nullptr;
    constexpr std::size_t kComparedPerStep = 64;
    guard::check(static_cast<std::uint32_t>(1 + m_children.size() / kComparedPerStep));
    for (const NodePtr& child : m_children)
        if (equalNames(child->name(), name, sensitivity)) return child.get();
    return nullptr;
}

int Clip::nextHighestDepth() const
{
    return m_children.empty() ? 0 : std::max(0, m_children.back()->depth() + 1);
}

void Clip::list(NodePtr node, int depth)
{
    node->m_parent = this;
    node->m_depth = depth;
    node->m_nesting = m_nesting + 1;
    // Should the depth be taken, what comes later lies below.
    const auto at = std::lower_bound(m_children.begin(), m_children.end(), depth,
                                     [](const NodePtr& child, int d) { return child->depth() < d; });
    m_children.insert(at, std::move(node));
    forgetBounds();
}

void Clip::insert(NodePtr node, int depth)
{
    Node& inserted = *node;
    list(std::move(node), depth);
    inserted.invalidate();
    if (inserted.clipDepth()) invalidateClipped(inserted, *inserted.clipDepth());
}

void Clip::take(Node& node)
{
    const auto isIt = [&](const NodePtr& child) { return child.get() == &node; };
    // In depth order, but several may be unloading at one depth.
    auto found =
        std::find_if(std::lower_bound(m_children.begin(), m_children.end(), node.m_depth,
                                      [](const NodePtr& child, int depth) { return child->depth() < depth; }),
                     m_children.end(), isIt);
    if (found == m_children.end()) found = std::find_if(m_children.begin(), m_children.end(), isIt);
    if (found == m_children.end()) return;
    m_stage.view().noteRemoved(node, node.m_drawnBounds);
    // What it masked may be seen whole from now on.
    if (Node* masked = node.maskee()) masked->invalidate();
    if (node.clipDepth()) invalidateClipped(node, *node.clipDepth());
    if (endsLayersEarly(m_children, found)) invalidate();
    m_children.erase(found);
    forgetBounds();
}

void Clip::insertAt(NodePtr node, std::size_t index, int depth)
{
    node->m_parent = this;
    node->m_depth = depth;
    node->m_nesting = m_nesting + 1;
    Node& inserted = *node;
    index = std::min(index, m_children.size());
    const auto at =
        m_children.insert(m_children.begin() + static_cast<std::ptrdiff_t>(index), std::move(node));
    forgetBounds();
    inserted.invalidate();
    if (inserted.clipDepth()) invalidateClipped(inserted, *inserted.clipDepth());
    if (endsLayersEarly(m_children, at)) invalidate();
}

void Clip::detach(Node& child)
{
    if (child.m_parent != this) return;
    const NodePtr keep = child.shared_from_this();
    child.noteGone();
    take(child);
    child.m_parent = nullptr;
}

NodePtr Clip::instantiate(const MoviePtr& movie, std::uint16_t characterId, int depth, bool isPlacement)
{
    if (!m_stage.displayList().hasRoomIn(*this)) return nullptr;
    NodePtr node = m_stage.displayList().makeNode(movie, characterId);
    if (!node) return nullptr;
    if (isPlacement && DisplayList::wouldContainItself(*node, *this)) return nullptr;
    if (Clip* clip = asClip(node.get()); clip && m_inert) clip->m_inert = true;
    insert(node, depth);
    return node;
}

NodePtr Clip::attach(const MoviePtr& movie, std::uint16_t characterId, int depth, std::string name,
                     const std::function<void(Node&)>& before)
{
    if (!movie || !movie->character(characterId)) return nullptr;
    if (Node* old = childAt(depth)) removeChild(*old);
    NodePtr node = instantiate(movie, characterId, depth);
    if (!node) return nullptr;
    node->setName(std::move(name));
    node->m_scriptTransformed = true;
    if (before) before(*node);
    m_stage.displayList().begin(*node);
    return node;
}

std::shared_ptr<Clip> Clip::attachEmpty(int depth, std::string name)
{
    if (Node* old = childAt(depth)) removeChild(*old);
    if (!m_stage.displayList().hasRoomIn(*this)) return nullptr;
    auto clip = std::make_shared<Clip>(m_stage, m_movie, m_stage.displayList().emptyTimeline());
    clip->setName(std::move(name));
    clip->m_url = m_url;
    clip->m_content = Content::Made;
    clip->m_scriptTransformed = true;
    insert(clip, depth);
    m_stage.displayList().enlist(clip);
    clip->m_begun = true;
    clip->m_frame = 0;
    return clip;
}

NodePtr Clip::attachTextField(int depth, std::string name, const swf::Rect& boundsTwips)
{
    if (Node* old = childAt(depth)) removeChild(*old);
    if (!m_stage.displayList().hasRoomIn(*this)) return nullptr;
    NodePtr field = TextField::makeDynamic(m_stage, m_movie, boundsTwips);
    field->setName(std::move(name));
    field->m_scriptTransformed = true;
    insert(field, depth);
    return field;
}

NodePtr Clip::attachBitmap(std::shared_ptr<const swf::Bitmap> bitmap, int depth, bool smooth)
{
    if (Node* old = childAt(depth)) removeChild(*old);
    if (!m_stage.displayList().hasRoomIn(*this)) return nullptr;
    auto node = std::make_shared<BitmapNode>(m_stage, std::move(bitmap), smooth);
    node->m_movie = m_movie;
    insert(node, depth);
    return node;
}

NodePtr Clip::duplicate(Node& source, int depth, std::string name, const std::function<void(Node&)>& before)
{
    Clip* original = asClip(&source);
    NodePtr copy;
    if (Node* old = childAt(depth)) {
        if (old == &source) return nullptr;
        removeChild(*old);
    }
    if (!m_stage.displayList().hasRoomIn(*this)) return nullptr;
    if (original) {
        auto clip = std::make_shared<Clip>(m_stage, original->m_movie, original->m_timeline);
        clip->m_characterId = original->m_characterId;
        clip->m_clipActions = original->m_clipActions;
        clip->m_url = original->m_url;
        clip->m_content = original->m_content;
        if (original->m_drawing) clip->m_drawing = std::make_unique<Drawing>(*original->m_drawing);
        insert(clip, depth);
        m_stage.displayList().enlist(clip);
        copy = clip;
    } else {
        copy = instantiate(source.movie(), source.characterId(), depth);
    }
    if (!copy) return nullptr;
    copy->setName(std::move(name));
    copy->m_matrix = source.m_matrix;
    copy->m_color = source.m_color;
    copy->m_ratio = source.m_ratio;
    copy->m_clipDepth = source.m_clipDepth;
    copy->m_scriptTransformed = true;
    if (before) before(*copy);
    m_stage.displayList().begin(*copy);
    return copy;
}

void Clip::removeChild(Node& child)
{
    if (child.m_parent != this) return;
    // What goes with an unloading clip cannot go before it.
    for (const Node* node = &child; node; node = node->m_parent)
        if (node->m_unloading) return;
    const NodePtr keep = child.shared_from_this();
    // Whoever loses the focus hears of it while it still has a place.
    m_stage.focus().dropWithin(child);
    if (child.m_parent != this || child.m_unloading) return;
    if (m_stage.displayList().queueUnload(child)) {
        // Its scripts still run once; meanwhile it is drawn, and its depth is free for others.
        child.m_unloading = true;
        take(child);
        insert(keep, kUnloadDepthBase - child.m_depth);
        return;
    }
    take(child);
    m_stage.displayList().retire(child);
}

void Clip::leave()
{
    stopStream();
    m_children.clear();
    forgetBounds();
}

void Clip::removeAllChildren()
{
    const std::vector<NodePtr> children = m_children;
    for (const NodePtr& child : children) removeChild(*child);
}

void Clip::swapDepths(Node& child, int depth)
{
    if (child.m_parent != this || child.m_depth == depth) return;
    const int before = child.m_depth;
    const NodePtr first = child.shared_from_this();
    Node* other = childAt(depth);
    const NodePtr second = other ? other->shared_from_this() : nullptr;
    take(child);
    if (second) {
        take(*second);
        insert(second, before);
        second->m_scriptTransformed = true;
    }
    insert(first, depth);
    child.m_scriptTransformed = true;
}

Drawing& Clip::drawing()
{
    if (!m_drawing) m_drawing = std::make_unique<Drawing>();
    const bool wide = m_movie && m_movie->header.version < 8;
    m_drawing->setReach(wide ? Drawing::Reach::Width : Drawing::Reach::HalfWidth);
    return *m_drawing;
}

bool Clip::hasClipEvent(Event event) const
{
    const std::uint32_t bit = clipEventBit(event);
    return std::any_of(m_clipActions.begin(), m_clipActions.end(),
                       [bit](const swf::ClipAction& action) { return (action.events & bit) != 0; });
}

Node* Clip::hitArea() const
{
    const std::shared_ptr<Node> area = m_hitArea.lock();
    return area && !area->isRemoved() ? area.get() : nullptr;
}

void Clip::setHitArea(Node* node)
{
    m_hitArea = node ? std::weak_ptr<Node>(node->shared_from_this()) : std::weak_ptr<Node>();
}

std::string Clip::linkageName() const { return m_stage.linkage().linkageName(m_movie, m_characterId); }

void Clip::forgetBounds()
{
    if (!m_boundsKnown[0] && !m_boundsKnown[1]) return;
    m_boundsKnown[0] = m_boundsKnown[1] = false;
    Node::forgetBounds();
}

swf::Rect Clip::bounds(Extent extent)
{
    if (m_scrollRect) return {0, m_scrollRect->width(), 0, m_scrollRect->height()};
    const auto slot = static_cast<std::size_t>(extent);
    if (m_boundsKnown[slot]) return m_bounds[slot];
    guard::check();
    swf::Rect all;
    if (m_drawing && !m_drawing->isEmpty()) {
        const swf::Shape& shape = *m_drawing->shape();
        all = extent == Extent::WithStrokes ? shape.bounds : shape.edgeBounds;
        if (hasPointedLines(shape) || hasUnscaledLines(shape)) m_stage.view().noteOutgrowth();
    }
    for (const NodePtr& child : m_children)
        all = swf::unite(all, swf::mapBounds(child->matrix(), child->bounds(extent)));
    m_bounds[slot] = all;
    m_boundsKnown[slot] = true;
    return all;
}

bool Clip::hitsShape(swf::Point stagePoint)
{
    guard::check();
    // Quick refusal, with room for hairlines.
    const swf::Matrix toStageSpace = toStageAt(stagePoint);
    if (!toStageSpace.isInvertible()) return false;
    const swf::Point own = toStageSpace.inverted().map(stagePoint);
    const swf::Rect extent = bounds(Extent::WithStrokes);
    constexpr double kRoom = 2 * swf::kTwipsPerPixel;
    if (extent.isEmpty() || own.x < extent.xMin - kRoom || own.x > extent.xMax + kRoom ||
        own.y < extent.yMin - kRoom || own.y > extent.yMax + kRoom)
        return false;
    if (m_scrollRect && !rectContains(*this, extent, stagePoint)) return false;
    // Several clip layers may be open at once, each to a depth of its own.
    std::vector<std::pair<int, bool>> masks;
    for (const NodePtr& child : m_children) {
        std::erase_if(masks, [&](const auto& mask) { return child->depth() > mask.first; });
        if (child->clipDepth()) {
            masks.emplace_back(*child->clipDepth(), child->hitsShape(stagePoint));
            continue;
        }
        const bool open =
            std::all_of(masks.begin(), masks.end(), [](const auto& mask) { return mask.second; });
        if (!open || !child->isVisible() || child->maskee()) continue;
        if (child->mask() && !child->mask()->hitsShape(stagePoint)) continue;
        if (child->hitsShape(stagePoint)) return true;
    }
    return drawingHits(stagePoint);
}

bool Clip::drawingHits(swf::Point stagePoint)
{
    return m_drawing && !m_drawing->isEmpty() && shapeHit(*this, *m_drawing->shape(), stagePoint);
}

std::shared_ptr<const swf::Shape> Clip::outline()
{
    return m_drawing && !m_drawing->isEmpty() ? m_drawing->shape() : nullptr;
}

void Clip::draw(render::Canvas& canvas, const swf::Matrix& toDevice, const swf::ColorTransform& color)
{
    if (m_drawing && !m_drawing->isEmpty()) canvas.drawShape(m_drawing->shape(), toDevice, color);
}

} // namespace flash::stage
