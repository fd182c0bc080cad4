#include "flash/stage/Node.h"

#include "flash/guard/Guard.h"
#include "flash/stage/Clip.h"
#include "flash/stage/ScalingGrid.h"
#include "flash/stage/Stage.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace flash::stage
{

namespace
{

constexpr double kDegreesPerRadian = 180 / std::numbers::pi;

/// Positions are whole twips; what does not fit 32 bits wraps to the lowest value, as a conversion by the
/// processor would have it.
double twipsFromPixels(double pixels)
{
    const double twips = std::trunc(pixels * swf::kTwipsPerPixel);
    constexpr double kLowest = std::numeric_limits<std::int32_t>::min();
    return std::abs(twips) < -kLowest ? twips : kLowest;
}

double normalizedDegrees(double degrees)
{
    double result = std::fmod(degrees, 360.0);
    if (result > 180) result -= 360;
    if (result < -180) result += 360;
    return result;
}

} // namespace

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
    return path(*this, '/',
                [](int level) { return level == 0 ? std::string() : "_level" + std::to_string(level); });
}

std::string Node::dotPath()
{
    return path(*this, '.', [](int level) { return "_level" + std::to_string(std::max(level, 0)); });
}

void Node::setMatrix(const swf::Matrix& matrix)
{
    m_scaleCached = false;
    if (matrix == m_matrix) return;
    invalidate();
    m_matrix = matrix;
    invalidate();
    if (m_parent) m_parent->forgetBounds();
}

void Node::setMatrixOnly(const swf::Matrix& matrix)
{
    cacheScale();
    setMatrix(matrix);
    m_scaleCached = true;
}

void Node::setX(double pixels)
{
    if (!std::isfinite(pixels)) return;
    const bool cached = m_scaleCached;
    swf::Matrix matrix = m_matrix;
    matrix.tx = twipsFromPixels(pixels);
    setMatrix(matrix);
    m_scaleCached = cached;
}

void Node::setY(double pixels)
{
    if (!std::isfinite(pixels)) return;
    const bool cached = m_scaleCached;
    swf::Matrix matrix = m_matrix;
    matrix.ty = twipsFromPixels(pixels);
    setMatrix(matrix);
    m_scaleCached = cached;
}

// The vertical axis keeps its own angle: `m_skew` is how far it is ahead of the horizontal one.
void Node::cacheScale()
{
    if (m_scaleCached) return;
    m_scaleCached = true;
    m_scaleX = std::hypot(m_matrix.a, m_matrix.b) * 100;
    m_scaleY = std::hypot(m_matrix.c, m_matrix.d) * 100;
    m_rotation = std::atan2(m_matrix.b, m_matrix.a) * kDegreesPerRadian;
    m_skew = std::atan2(-m_matrix.c, m_matrix.d) * kDegreesPerRadian - m_rotation;
}

double Node::scaleX()
{
    cacheScale();
    return m_scaleX;
}
double Node::scaleY()
{
    cacheScale();
    return m_scaleY;
}
double Node::rotation()
{
    cacheScale();
    return normalizedDegrees(m_rotation);
}

void Node::setScaleX(double percent)
{
    if (std::isnan(percent)) return;
    cacheScale();
    m_scaleX = percent;
    swf::Matrix matrix = m_matrix;
    const double angle = m_rotation / kDegreesPerRadian;
    matrix.a = std::cos(angle) * percent / 100;
    matrix.b = std::sin(angle) * percent / 100;
    setMatrix(matrix);
    m_scaleCached = true;
}

void Node::setScaleY(double percent)
{
    if (std::isnan(percent)) return;
    cacheScale();
    m_scaleY = percent;
    swf::Matrix matrix = m_matrix;
    const double angle = (m_rotation + m_skew) / kDegreesPerRadian;
    matrix.c = -std::sin(angle) * percent / 100;
    matrix.d = std::cos(angle) * percent / 100;
    setMatrix(matrix);
    m_scaleCached = true;
}

void Node::setRotation(double degrees)
{
    if (std::isnan(degrees)) return;
    cacheScale();
    if (std::isinf(degrees)) {
        // Shown to scripts as it is; the picture stays.
        m_rotation = std::nan("");
        return;
    }
    if (std::isnan(m_rotation)) m_rotation = m_skew = 0;
    m_rotation = normalizedDegrees(degrees);
    swf::Matrix matrix = m_matrix;
    const double horizontal = m_rotation / kDegreesPerRadian;
    const double vertical = (m_rotation + m_skew) / kDegreesPerRadian;
    matrix.a = std::cos(horizontal) * m_scaleX / 100;
    matrix.b = std::sin(horizontal) * m_scaleX / 100;
    matrix.c = -std::sin(vertical) * m_scaleY / 100;
    matrix.d = std::cos(vertical) * m_scaleY / 100;
    setMatrix(matrix);
    m_scaleCached = true;
}

swf::Rect Node::boundsThrough(const swf::Matrix& matrix, Extent extent)
{
    const swf::Rect own = bounds(extent);
    if (own.isEmpty()) return own;
    const swf::Point corners[] = {matrix.map(own.xMin, own.yMin), matrix.map(own.xMax, own.yMin),
                                  matrix.map(own.xMin, own.yMax), matrix.map(own.xMax, own.yMax)};
    swf::Rect mapped;
    for (const swf::Point corner : corners) {
        constexpr double kLargest = 0x7FFF'FFFF;
        const auto x = static_cast<std::int32_t>(std::round(std::clamp(corner.x, -kLargest, kLargest)));
        const auto y = static_cast<std::int32_t>(std::round(std::clamp(corner.y, -kLargest, kLargest)));
        mapped = swf::unite(mapped, {x, x, y, y});
    }
    return mapped;
}

// What is flat in one direction has no extent in the other either.
double Node::width()
{
    const swf::Rect rect = boundsThrough(m_matrix);
    return rect.height() == 0 ? 0 : static_cast<double>(rect.width()) / swf::kTwipsPerPixel;
}
double Node::height()
{
    const swf::Rect rect = boundsThrough(m_matrix);
    return rect.width() == 0 ? 0 : static_cast<double>(rect.height()) / swf::kTwipsPerPixel;
}

void Node::setWidth(double pixels)
{
    if (!std::isfinite(pixels)) return;
    const double now = width();
    const double own = bounds().width() / static_cast<double>(swf::kTwipsPerPixel);
    // What has no extent has none in either way from then on.
    if (own <= 0) {
        setScaleX(0);
        setScaleY(0);
        return;
    }
    cacheScale();
    const bool upright = m_matrix.b == 0 && m_matrix.c == 0;
    if (upright || now <= 0)
        setScaleX(pixels / own * 100);
    else
        setScaleX(m_scaleX * pixels / now);
}

void Node::setHeight(double pixels)
{
    if (!std::isfinite(pixels)) return;
    const double now = height();
    const double own = bounds().height() / static_cast<double>(swf::kTwipsPerPixel);
    if (own <= 0) {
        setScaleX(0);
        setScaleY(0);
        return;
    }
    cacheScale();
    const bool upright = m_matrix.b == 0 && m_matrix.c == 0;
    if (upright || now <= 0)
        setScaleY(pixels / own * 100);
    else
        setScaleY(m_scaleY * pixels / now);
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

Node::Node(Stage& stage, NodeKind kind) : m_stage(stage), m_kind(kind), m_listed(stage.m_instances)
{
    ++*m_listed;
}

Node::~Node() { unlist(); }

void Node::unlist()
{
    if (!m_listed) return;
    --*m_listed;
    m_listed.reset();
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
    m_clipDepth = depth;
    // What it covered and what it covers from now on are siblings.
    if (m_parent) m_parent->invalidate();
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
    if (m_changed || m_removed) return;
    m_changed = true;
    m_stage.noteChanged(*this);
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

} // namespace flash::stage
