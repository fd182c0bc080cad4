#include "flash/stage/Focus.h"

#include "flash/render/Canvas.h"
#include "flash/stage/Stage.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace flash::stage
{

// Since version 9 only a press of the left button does.
bool Focus::hidesAtEveryMove() const { return m_stage.movie() && m_stage.movie()->header.version < 9; }

void Focus::show(bool on)
{
    if (on == m_shown) return;
    m_shown = on;
    if (m_node) m_node->invalidate();
}

namespace
{
// Asked when the focus comes: a script that says otherwise later changes nothing before it comes again.
bool wantsFocusRect(const Node& node)
{
    const Node* root = &node;
    while (root->parent()) root = root->parent();
    return node.focusRect.value_or(root->focusRect.value_or(true));
}
} // namespace

void Focus::set(Node* node, By by)
{
    if (by == By::Script) show(true);
    const bool moves = m_node.get() != node;
    // A script that sets the focus where it is says so once more.
    if (!moves && (by == By::User || !node)) return;
    const NodePtr now = node ? node->shared_from_this() : nullptr;
    m_stage.pointer().rollOutOfFocus();
    if (now && !now->isRemoved() && now->hearsInput()) m_stage.pointer().rollOverFocus(now);
    if (moves) move(node, by);
}

void Focus::move(Node* node, By by)
{
    const NodePtr before = m_node;
    m_node = node ? node->shared_from_this() : nullptr;
    if (before) before->invalidate();
    const NodePtr now = m_node;
    if (now) {
        now->invalidate();
        m_framed = wantsFocusRect(*now);
    }
    // A script that sets the focus goes on before that is told.
    if (by == By::User) m_stage.queue().run();
    if (m_node != now) return;
    if (before) before->focusLost();
    m_stage.script().focusChanged(before.get(), now.get());
    // Whoever was told may have moved it on.
    if (now && m_node == now) now->focusGained();
    if (by == By::User) m_stage.queue().run();
}

void Focus::forget(const Node& node)
{
    if (m_node.get() == &node) m_node.reset();
}

void Focus::dropWithin(const Node& node)
{
    for (const Node* at = m_node.get(); at; at = at->parent()) {
        if (at != &node) continue;
        set(nullptr);
        return;
    }
}

void Focus::next(bool backwards)
{
    std::vector<std::pair<int, Node*>> stops;
    const auto visit = [&](auto&& self, Node& node) -> void {
        if (!node.isVisible() || node.isUnloading()) return;
        if (node.isTabStop() && node.tabEnabled.value_or(true))
            stops.emplace_back(node.tabIndex.value_or(0), &node);
        if (Clip* clip = asClip(&node); clip && clip->tabChildren.value_or(true))
            for (const NodePtr& child : node.children()) self(self, *child);
    };
    for (const auto& [number, root] : m_stage.displayList().levels()) visit(visit, *root);
    // An index of -1 is none.
    const auto hasIndex = [](const auto& s) { return s.second->tabIndex.value_or(-1) != -1; };
    const bool custom = std::any_of(stops.begin(), stops.end(), hasIndex);
    if (custom) {
        std::erase_if(stops, [&](const auto& s) { return !hasIndex(s); });
        std::stable_sort(stops.begin(), stops.end(),
                         [](const auto& a, const auto& b) { return a.first < b.first; });
    } else {
        // Reading order: from the upper left to the lower right. Of those in one place the first counts.
        const auto placeOf = [](const auto& s) {
            const swf::Rect rect = swf::mapBounds(s.second->toStage(), s.second->bounds());
            return rect.xMin + 6LL * rect.yMin;
        };
        std::stable_sort(stops.begin(), stops.end(),
                         [&](const auto& a, const auto& b) { return placeOf(a) < placeOf(b); });
        const auto end = std::unique(stops.begin(), stops.end(),
                                     [&](const auto& a, const auto& b) { return placeOf(a) == placeOf(b); });
        stops.erase(end, stops.end());
    }
    if (stops.empty()) return;
    const auto now =
        std::find_if(stops.begin(), stops.end(), [&](const auto& s) { return s.second == m_node.get(); });
    std::size_t index = 0;
    if (now == stops.end())
        index = backwards ? stops.size() - 1 : 0;
    else
        index = (static_cast<std::size_t>(now - stops.begin()) + (backwards ? stops.size() - 1 : 1)) %
                stops.size();
    show(true);
    set(stops[index].second);
}

// Around what takes the pointer of a button. Fields show theirs by the caret.
std::optional<std::array<swf::Point, 2>> Focus::frame(const swf::Matrix& view) const
{
    if (!isFramed() || !m_node || m_node->isRemoved() || !m_node->hearsInput()) return {};
    for (const Node* root = m_node.get(); root->parent(); root = root->parent())
        if (!root->isVisible()) return {};
    const swf::Rect own = m_stage.script().pointerBounds(*m_node).value_or(m_node->pointerBounds());
    if (own.isEmpty()) return {};
    // Not rounded to twips: a turned clip's corners lie anywhere.
    const swf::Matrix toDevice = view * m_node->toStage();
    const std::array corners{toDevice.map(own.xMin, own.yMin), toDevice.map(own.xMax, own.yMin),
                             toDevice.map(own.xMin, own.yMax), toDevice.map(own.xMax, own.yMax)};
    const auto [left, right] = std::ranges::minmax(corners, {}, &swf::Point::x);
    const auto [top, bottom] = std::ranges::minmax(corners, {}, &swf::Point::y);
    return std::array{swf::Point{left.x, top.y}, swf::Point{right.x, bottom.y}};
}

// Three pixels wide and within the bounds of what has the focus, above everything.
void Focus::draw(render::Canvas& canvas, const swf::Matrix& view)
{
    const auto corners = frame(view);
    if (!corners) return;
    // On a stage that is shown larger or smaller it keeps its width.
    canvas.strokeInside((*corners)[0], (*corners)[1], 3 * m_stage.view().deviceScale(), {255, 255, 0, 255});
}

} // namespace flash::stage
