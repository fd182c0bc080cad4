#include "flash/stage/Node.h"

#include "flash/guard/Guard.h"
#include "flash/stage/Clip.h"
#include "flash/stage/ScalingGrid.h"
#include "flash/stage/SeenBounds.h"
#include "flash/stage/Space.h"
#include "flash/stage/Stage.h"
#include "flash/swf/LevelName.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace flash::stage
{

Clip* Node::parentClip() const
{
    for (Node* node = m_parent; node; node = node->m_parent)
        if (node->m_kind == NodeKind::Clip) return static_cast<Clip*>(node);
    return nullptr;
}

bool Node::isLeaving() const
{
    for (const Node* node = this; node; node = node->m_parent)
        if (node->m_unloading) return true;
    return false;
}

Clip* Node::levelRoot()
{
    Node* node = this;
    while (node->m_parent) node = node->m_parent;
    return node->m_kind == NodeKind::Clip ? static_cast<Clip*>(node) : nullptr;
}

namespace
{
std::string path(const Node& node, char separator, std::string (*rootName)(int))
{
    std::vector<const Node*> chain;
    const Node* at = &node;
    guard::check();
    for (; at->parent(); at = at->parent()) chain.push_back(at);
    const int level = at->kind() == NodeKind::Clip ? static_cast<const Clip*>(at)->levelNumber() : 0;
    std::string text = rootName(level);
    for (auto step = chain.rbegin(); step != chain.rend(); ++step) {
        text += separator;
        text += (*step)->name();
    }
    return text;
}
} // namespace

std::string Node::slashPath()
{
    if (!m_parent && m_kind == NodeKind::Clip && static_cast<Clip*>(this)->levelNumber() == 0) return "/";
    return path(*this, '/', [](int level) { return level == 0 ? std::string() : swf::levelName(level); });
}

std::string Node::dotPath()
{
    return path(*this, '.', [](int level) { return swf::levelName(std::max(level, 0)); });
}

void Node::setColor(const swf::ColorTransform& color)
{
    if (color == m_color) return;
    m_color = color;
    invalidate();
}

double Node::alpha() const { return m_color.alphaMul * 100 / 256.0; }

void Node::setAlpha(double percent)
{
    if (std::isnan(percent)) return;
    swf::ColorTransform color = m_color;
    const double value = std::trunc(percent * 256 / 100);
    color.alphaMul = static_cast<std::int16_t>(std::clamp<double>(
        value, std::numeric_limits<std::int16_t>::min(), std::numeric_limits<std::int16_t>::max()));
    setColor(color);
}

void Node::setVisible(bool visible)
{
    if (visible == m_visible) return;
    m_visible = visible;
    invalidate();
}

void Node::setBlend(swf::BlendMode mode)
{
    if (mode == m_blend) return;
    m_blend = mode;
    invalidate();
}

void Node::setFilters(std::vector<swf::Filter> filters)
{
    if (filters.empty() && m_filters.empty()) return;
    invalidate();
    m_filters = std::move(filters);
    m_stage.view().noteOutgrowth();
    invalidate();
}

void Node::setCacheAsBitmap(bool on)
{
    if (on == m_cacheAsBitmap) return;
    m_cacheAsBitmap = on;
    invalidate();
}

void Node::setOpaqueBackground(std::optional<swf::Rgba> color)
{
    m_opaqueBackground = color;
    invalidate();
}

void Node::setScrollRect(std::optional<swf::Rect> rect)
{
    invalidate();
    m_scrollRect = rect;
    contentChanged();
    // What it reaches as long as it scrolls is not what it remembers as its bounds.
    if (m_parent) m_parent->forgetBounds();
}

void Node::setScalingGrid(std::optional<swf::Rect> grid)
{
    m_scalingGrid = grid;
    invalidate();
}

struct Node::SliceCache {
    ScalingGrid grid;
    swf::Matrix inner;
    std::shared_ptr<const swf::Shape> source, result;
};

Node::Node(Stage& stage, NodeKind kind)
    : m_stage(stage), m_kind(kind), m_listed(stage.displayList().instanceCount())
{
    ++*m_listed;
}

Node::~Node()
{
    if (m_mask) m_mask->m_maskee = nullptr;
    if (m_maskee) m_maskee->m_mask = nullptr;
    unlist();
}

void Node::unlist()
{
    if (!m_listed) return;
    --*m_listed;
    m_listed.reset();
}

void Node::noteGone()
{
    guard::check();
    m_stage.view().noteRemoved(*this, takeChange());
    if (m_maskee) m_maskee->invalidate();
    m_stage.focus().forget(*this);
    m_stage.pointer().forget(*this);
    for (const NodePtr& child : children()) child->noteGone();
}

void Node::setName(std::string name)
{
    m_name = std::move(name);
    m_stage.script().nodeNamed(m_name);
}

std::optional<Node::Sliced> Node::sliced()
{
    Node* holder = m_kind == NodeKind::Clip ? this : m_parent;
    if (!holder || !holder->m_scalingGrid) return {};
    const swf::Matrix& placed = holder->m_matrix;
    // The sine of an angle too small to see; half a turn leaves less.
    constexpr double kUpright = 1e-6;
    if (std::abs(placed.b) > kUpright || std::abs(placed.c) > kUpright || placed.a == 0 || placed.d == 0)
        return {};
    std::shared_ptr<const swf::Shape> source = outline();
    const swf::Rect bounds = holder->bounds();
    if (!source || bounds.isEmpty()) return {};
    const ScalingGrid grid(*holder->m_scalingGrid, bounds, placed.a, placed.d);
    const swf::Matrix inner = holder == this ? swf::Matrix() : m_matrix;
    if (!m_sliceCache || m_sliceCache->source != source || m_sliceCache->inner != inner ||
        m_sliceCache->grid != grid) {
        auto result = std::make_shared<const swf::Shape>(grid.apply(*source, inner));
        m_sliceCache =
            std::make_unique<SliceCache>(SliceCache{grid, inner, std::move(source), std::move(result)});
    }
    return Sliced{m_sliceCache->result, holder,
                  swf::Matrix{1 / std::abs(placed.a), 0, 0, 1 / std::abs(placed.d), 0, 0}};
}

swf::Rect Node::reach()
{
    const auto slices = sliced();
    if (!slices || slices->holder == this || !m_matrix.isInvertible()) return bounds();
    return swf::mapBounds(m_matrix.inverted(), slices->holder->bounds());
}

void Node::setRatio(std::uint16_t ratio) { m_ratio = ratio; }

void Node::setClipDepth(std::optional<int> depth)
{
    if (depth == m_clipDepth) return;
    const int last = std::max(m_clipDepth.value_or(m_depth), depth.value_or(m_depth));
    m_clipDepth = depth;
    invalidate();
    invalidateClipped(*this, last);
}

void Node::setMask(Node* mask)
{
    if (mask == m_mask) return;
    if (m_mask) {
        m_mask->m_maskee = nullptr;
        m_mask->invalidate();
    }
    if (mask) {
        if (mask->m_maskee) mask->m_maskee->setMask(nullptr);
        // A pair that masks each other would never be drawn; the later relation wins.
        if (mask->m_mask == this) mask->setMask(nullptr);
        mask->m_maskee = this;
        // What a script masks, or masks with, is no clip layer any more.
        setClipDepth({});
        mask->setClipDepth({});
        mask->invalidate();
    }
    m_mask = mask;
    invalidate();
}

swf::Matrix Node::toStage() const
{
    swf::Matrix matrix = m_matrix;
    for (const Node* node = m_parent; node; node = node->m_parent) {
        if (node->m_scrollRect) {
            const swf::Matrix scroll{1,
                                     0,
                                     0,
                                     1,
                                     -static_cast<double>(node->m_scrollRect->xMin),
                                     -static_cast<double>(node->m_scrollRect->yMin)};
            matrix = scroll * matrix;
        }
        matrix = node->m_matrix * matrix;
    }
    return matrix;
}

void Node::invalidate()
{
    m_onlyMoved = false;
    if (m_changed || m_removed) return;
    m_changed = true;
    m_stage.view().noteChanged(*this);
}

void Node::contentChanged()
{
    invalidate();
    // The sides of a grid move with the bounds of all.
    if (m_parent && m_parent->m_scalingGrid) m_parent->invalidate();
    forgetBounds();
}

void Node::forgetBounds()
{
    if (m_parent) m_parent->forgetBounds();
}

bool Node::cameBack()
{
    if (!m_changed || !m_onlyMoved || m_matrix != m_matrixBefore) return false;
    m_changed = false;
    return true;
}

render::IntRect Node::takeChange()
{
    m_changed = false;
    return std::exchange(m_drawnBounds, {});
}

std::vector<NodePtr> Node::held() const { return {children().begin(), children().end()}; }

NodePtr Node::pointerTarget(swf::Point stagePoint)
{
    if (!m_visible || m_maskee || m_unloading) return nullptr;
    if (m_mask && !m_mask->hitsShape(stagePoint)) return nullptr;
    return ownPointerTarget(stagePoint);
}

bool Node::answersPointer() { return m_stage.pointer().over() == this || m_stage.script().isEnabled(*this); }

Node* Node::topNodeAt(swf::Point stagePoint, const Node* except)
{
    if (this == except || !m_visible || m_maskee) return nullptr;
    return hitsShape(stagePoint) ? this : nullptr;
}

Cursor Node::cursorAt(swf::Point) { return Cursor::Arrow; }

} // namespace flash::stage
