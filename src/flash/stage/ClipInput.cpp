#include "flash/stage/Clip.h"
#include "flash/stage/Drawing.h"
#include "flash/stage/Graphics.h"
#include "flash/stage/Stage.h"

#include <algorithm>

// What a clip is to the pointer, the keys and the focus.
namespace flash::stage
{

bool Clip::isButtonLike()
{
    constexpr Event kButtonEvents[] = {Event::Press,    Event::Release, Event::ReleaseOutside,
                                       Event::RollOver, Event::RollOut, Event::DragOver,
                                       Event::DragOut};
    for (const Event event : kButtonEvents)
        if (hasClipEvent(event)) return true;
    for (const Event event : kButtonEvents)
        if (m_stage.script().namesHandler(*this, event)) return true;
    return false;
}

NodePtr Clip::ownPointerTarget(swf::Point stagePoint)
{
    if (isButtonLike() && answersPointer()) {
        Node* area = hitArea();
        return (area ? area : this)->hitsShape(stagePoint) ? shared_from_this() : nullptr;
    }
    if (scrollRect() && !rectContains(*this, bounds(Extent::WithStrokes), stagePoint)) return nullptr;
    const std::span<const NodePtr> children = m_children;
    for (std::size_t i = children.size(); i-- > 0;) {
        Node& child = *children[i];
        if (child.clipDepth()) continue;
        NodePtr found = child.pointerTarget(stagePoint);
        if (!found) continue;
        const bool masked = std::any_of(
            children.begin(), children.begin() + static_cast<std::ptrdiff_t>(i), [&](const NodePtr& below) {
                return below->clipDepth() && *below->clipDepth() >= child.depth() &&
                       !below->hitsShape(stagePoint);
            });
        if (!masked) return found;
    }
    return nullptr;
}

Node* Clip::topNodeAt(swf::Point stagePoint, const Node* except)
{
    if (this == except || !isVisible() || maskee()) return nullptr;
    for (std::size_t i = m_children.size(); i-- > 0;) {
        if (m_children[i]->clipDepth()) continue;
        if (Node* found = m_children[i]->topNodeAt(stagePoint, except)) return found;
    }
    const bool drawn = m_drawing && hitsShape(stagePoint);
    return drawn ? this : nullptr;
}

Cursor Clip::cursorAt(swf::Point) { return useHandCursor ? Cursor::Hand : Cursor::Arrow; }

bool Clip::takeKeyPress(int keyPressCode)
{
    for (const swf::ClipAction& action : m_clipActions) {
        if ((action.events & clipEventBit(Event::KeyPress)) == 0 || action.keyCode != keyPressCode) continue;
        m_stage.queue().addEvent(*this, Event::KeyPress, keyPressCode);
        return true;
    }
    return std::any_of(m_children.begin(), m_children.end(),
                       [&](const NodePtr& child) { return child->takeKeyPress(keyPressCode); });
}

bool Clip::listensToKeys() const
{
    for (const Event event : {Event::KeyDown, Event::KeyUp, Event::KeyPress})
        if (hasClipEvent(event)) return true;
    return std::any_of(m_children.begin(), m_children.end(),
                       [](const NodePtr& child) { return child->listensToKeys(); });
}

bool Clip::canTakeFocus() { return (isButtonLike() || focusEnabled.value_or(false)) && m_parent; }

bool Clip::isTabStop()
{
    return m_parent &&
           tabEnabled.value_or(tabIndex.has_value() || isButtonLike() || focusEnabled.value_or(false));
}

} // namespace flash::stage
