#include "flash/stage/Pointer.h"

#include "flash/stage/Button.h"
#include "flash/stage/Stage.h"
#include "flash/stage/TextField.h"

#include <algorithm>
#include <utility>

namespace flash::stage
{

namespace
{

/// The key code under which scripts ask for a button of the mouse.
int keyOf(MouseButton button)
{
    switch (button) {
    case MouseButton::Left: return 1;
    case MouseButton::Right: return 2;
    case MouseButton::Middle: return 4;
    }
    return 1;
}

TextField* asField(const NodePtr& node)
{
    return node && node->kind() == NodeKind::TextField ? static_cast<TextField*>(node.get()) : nullptr;
}

} // namespace

NodePtr Pointer::targetAt(swf::Point stagePoint)
{
    const auto& levels = m_stage.displayList().levels();
    for (auto level = levels.rbegin(); level != levels.rend(); ++level)
        if (NodePtr found = level->second->pointerTarget(stagePoint)) return found;
    return nullptr;
}

Node* Pointer::topNodeAt(swf::Point stagePoint, const Node* except)
{
    const auto& levels = m_stage.displayList().levels();
    for (auto level = levels.rbegin(); level != levels.rend(); ++level)
        if (Node* found = level->second->topNodeAt(stagePoint, except)) return found;
    return nullptr;
}

void Pointer::tell(Node& node, Event event)
{
    // Text fields have no handlers for the pointer.
    if (!node.hearsInput() || !m_stage.script().isEnabled(node)) return;
    node.answerPointer(event);
    m_stage.queue().addEvent(node, event);
}

void Pointer::forget(const Node& node)
{
    if (m_dragged.get() == &node) m_dragged.reset();
    if (m_dropTarget == &node) m_dropTarget = nullptr;
    if (m_dropNode == &node) m_dropNode = nullptr;
    if (m_lastDragged == &node) m_lastDragged = nullptr;
    if (m_over.get() == &node || m_pressed.get() == &node) noteLost(node);
    if (m_over.get() == &node) m_over.reset();
    if (m_pressed.get() == &node) m_pressed.reset();
}

void Pointer::forgetAll()
{
    m_over.reset();
    m_pressed.reset();
    m_lost.reset();
    m_dragged.reset();
    m_dropTarget = nullptr;
    m_dropNode = nullptr;
    m_lastDragged = nullptr;
}

void Pointer::noteLost(const Node& node)
{
    if (node.kind() != NodeKind::Button) return;
    m_lost = Lost{&static_cast<const Button&>(node).definition(), node.depth(), m_over.get() == &node,
                  m_pressed.get() == &node};
}

// A timeline that goes back makes its buttons anew. To the user and to scripts they are what they were.
void Pointer::adoptLike(const NodePtr& target)
{
    if (!m_lost) return;
    const Lost lost = *m_lost;
    Button* button =
        target && target->kind() == NodeKind::Button ? static_cast<Button*>(target.get()) : nullptr;
    const bool alike = button && &button->definition() == lost.definition && button->depth() == lost.depth;
    m_lost.reset();
    const bool pressed = lost.pressed && !m_pressed && m_isDown;
    if (!alike) {
        // What was pressed may be come back to while the button is held.
        if (pressed) m_lost = Lost{lost.definition, lost.depth, false, true};
        if (pressed) m_pressedOutside = true;
        return;
    }
    if (lost.over && !m_over) m_over = target;
    if (pressed) m_pressed = target;
    button->setState(pressed && !m_pressedOutside ? Button::State::Down : Button::State::Over);
}

// A link of a text that the pointer has left looks as before.
void Pointer::noteOver(const NodePtr& target)
{
    TextField* field = asField(m_over);
    if (field && m_over != target) field->hover(0, false);
    m_over = target;
}

void Pointer::update()
{
    // What the focus is on stays rolled over until the pointer moves.
    if (m_overByFocus && m_over) return;
    m_overByFocus = false;
    const NodePtr target = m_isInside ? targetAt(m_position) : nullptr;
    adoptLike(target);
    if (m_isDown) {
        if (m_pressed) {
            const bool menu = m_pressed->tracksAsMenu();
            if (target == m_pressed) {
                if (m_pressedOutside) {
                    m_pressedOutside = false;
                    tell(*m_pressed, Event::DragOver);
                }
            } else if (!m_pressedOutside) {
                m_pressedOutside = true;
                tell(*m_pressed, Event::DragOut);
            }
            if (menu && target && target != m_pressed && target->tracksAsMenu()) {
                m_pressed = target;
                m_pressedOutside = false;
                tell(*target, Event::DragOver);
            }
        } else if (target && target->tracksAsMenu() && target != m_over) {
            m_pressed = target;
            m_pressedOutside = false;
            tell(*target, Event::DragOver);
        }
        noteOver(target);
    } else if (target != m_over) {
        const NodePtr before = m_over;
        noteOver(target);
        if (before && !before->isRemoved()) tell(*before, Event::RollOut);
        if (target) tell(*target, Event::RollOver);
    }
    updateCursor();
    m_stage.queue().run();
}

TextField* Pointer::markedField()
{
    Node* focus = m_stage.focus().node();
    return focus != nullptr ? asField(focus->shared_from_this()) : nullptr;
}

void Pointer::frameEnded()
{
    // Held beyond the edge of a text, the pointer goes on scrolling it.
    if (TextField* field = m_isDown ? markedField() : nullptr) {
        const NodePtr keep = field->shared_from_this();
        field->dragOn(m_position);
        m_stage.queue().run();
    }
    if (m_isInside && !m_stage.script().keepsClips()) update();
}

void Pointer::updateCursor()
{
    const NodePtr& node = m_isDown && m_pressed ? m_pressed : m_over;
    m_cursor = node ? node->cursorAt(m_position) : Cursor::Arrow;
    if (!m_visible) m_cursor = Cursor::Hidden;
}

void Pointer::setVisible(bool visible)
{
    m_visible = visible;
    m_stage.services().host.cursorVisible(visible);
    updateCursor();
}

void Pointer::rollOutOfFocus()
{
    const NodePtr over = std::exchange(m_over, nullptr);
    m_overByFocus = false;
    if (over && !over->isRemoved()) tell(*over, Event::RollOut);
}

void Pointer::rollOverFocus(const NodePtr& node)
{
    m_over = node;
    m_overByFocus = true;
    tell(*node, Event::RollOver);
}

void Pointer::move(double x, double y)
{
    const swf::Matrix view = m_stage.view().matrix();
    const swf::Point before = m_position;
    m_position = view.inverted().map(x, y);
    m_isInside = true;
    if (m_position != before) m_overByFocus = false;
    if (m_stage.focus().hidesAtEveryMove()) m_stage.focus().show(false);
    if (m_dragged) moveDragged();
    if (m_stage.script().keepsClips()) {
        m_stage.script().pointerMoved();
        m_stage.queue().run();
        return;
    }
    m_stage.queue().addEventEverywhere(Event::MouseMove);
    m_stage.queue().run();
    m_stage.script().broadcastMouse(Event::MouseMove);
    m_stage.queue().run();
    if (TextField* field = asField(m_pressed); field && m_isDown && !m_pressedLink) field->drag(m_position);
    update();
}

void Pointer::press(double x, double y, MouseButton button, int clicks)
{
    const Stage::InputScope scope(m_stage);
    const swf::Point point = m_stage.view().matrix().inverted().map(x, y);
    if (point != m_position || !m_isInside) move(x, y);
    if (button == MouseButton::Left || (button == MouseButton::Right && m_stage.focus().hidesAtEveryMove()))
        m_stage.focus().show(false);
    m_stage.keyboard().noteDown(keyOf(button));
    if (TextField* field = markedField()) field->endDrag();
    if (m_stage.script().keepsClips()) {
        m_isDown = m_isDown || button == MouseButton::Left;
        m_stage.script().pointerPressed(button, clicks);
        m_stage.queue().run();
        return;
    }
    if (button != MouseButton::Left) return;
    m_overByFocus = false;
    m_isDown = true;
    m_stage.queue().addEventEverywhere(Event::MouseDown);
    m_stage.queue().run();
    m_stage.script().broadcastMouse(Event::MouseDown);
    m_stage.queue().run();
    const NodePtr target = targetAt(m_position);
    m_pressed = target;
    m_pressedOutside = false;
    m_pressedLink.reset();
    if (TextField* field = asField(target)) pressField(*field, clicks);
    const Node* focus = m_stage.focus().node();
    const bool leavesField = focus && focus->kind() == NodeKind::TextField && !asField(target);
    if (leavesField) m_stage.focus().move(nullptr, Focus::By::User);
    if (target && !target->isRemoved()) tell(*target, Event::Press);
    // What takes the pointer from a field is rolled out of as if the focus had moved from it.
    if (leavesField) rollOutOfFocus();
    updateCursor();
    m_stage.queue().run();
}

void Pointer::pressField(TextField& field, int clicks)
{
    const bool hadFocus = m_stage.focus().node() == &field;
    if (field.selectable || field.isInput()) m_stage.focus().set(&field);
    if (const TextFormat* link = field.linkAt(m_position)) {
        m_pressedLink = *link;
        // A link is there to be clicked: pressing it selects nothing, as the coming focus would.
        if (!hadFocus) field.select(0, 0);
    } else {
        field.press(m_position, clicks);
    }
}

void Pointer::release(double x, double y, MouseButton button)
{
    const Stage::InputScope scope(m_stage);
    const swf::Point point = m_stage.view().matrix().inverted().map(x, y);
    if (point != m_position) move(x, y);
    if (button != MouseButton::Middle && m_stage.focus().hidesAtEveryMove()) m_stage.focus().show(false);
    m_stage.keyboard().noteUp(keyOf(button));
    if (m_stage.script().keepsClips()) {
        m_isDown = m_isDown && button != MouseButton::Left;
        m_stage.script().pointerReleased(button);
        m_stage.queue().run();
        return;
    }
    if (button != MouseButton::Left) return;
    m_stage.queue().addEventEverywhere(Event::MouseUp);
    m_stage.queue().run();
    m_stage.script().broadcastMouse(Event::MouseUp);
    m_stage.queue().run();
    m_isDown = false;
    const NodePtr pressed = m_pressed;
    m_pressed.reset();
    if (pressed && !pressed->isRemoved()) {
        const NodePtr target = targetAt(m_position);
        if (target == pressed) {
            m_over = pressed;
            tell(*pressed, Event::Release);
            if (TextField* field = asField(pressed); field && m_pressedLink) followPressedLink(*field);
        } else {
            if (!pressed->tracksAsMenu()) tell(*pressed, Event::ReleaseOutside);
            m_over.reset();
        }
    }
    m_pressedLink.reset();
    m_stage.queue().run();
    update();
}

void Pointer::followPressedLink(TextField& field)
{
    const TextFormat* link = field.linkAt(m_position);
    const bool same = link && link->url == m_pressedLink->url && link->target == m_pressedLink->target;
    if (!same) return;
    // After the scripts that hear of the click itself.
    const auto holder = std::static_pointer_cast<TextField>(field.shared_from_this());
    m_stage.queue().addRequest([this, holder, url = link->url, window = link->target] {
        if (!holder->isRemoved()) m_stage.script().followLink(*holder, url, window);
    });
}

void Pointer::wheel(int lines)
{
    if (m_stage.script().keepsClips()) {
        m_stage.script().wheelTurned(lines);
        m_stage.queue().run();
        return;
    }
    m_stage.script().broadcastWheel(lines, topNodeAt(m_position));
    m_stage.queue().run();
    const NodePtr target = targetAt(m_position);
    if (TextField* field = asField(target)) field->wheel(lines);
    m_stage.queue().run();
}

void Pointer::leave()
{
    m_isInside = false;
    if (m_stage.script().keepsClips()) {
        m_stage.script().pointerLeft();
        m_stage.queue().run();
        return;
    }
    update();
}

std::vector<MenuItem> Pointer::openMenu(double x, double y)
{
    const Stage::InputScope scope(m_stage);
    const swf::Point point = m_stage.view().matrix().inverted().map(x, y);
    if (point != m_position || !m_isInside) move(x, y);
    return openMenu(MenuAt::Pointer);
}

std::vector<MenuItem> Pointer::openMenu(MenuAt at)
{
    const Stage::InputScope scope(m_stage);
    auto items = m_stage.script().openMenu(at);
    m_stage.queue().run();
    return items;
}

void Pointer::chooseMenuItem(std::size_t item)
{
    const Stage::InputScope scope(m_stage);
    m_stage.script().chooseMenuItem(item);
    m_stage.queue().run();
}

void Pointer::startDrag(Clip& clip, bool lockCenter, std::optional<DragLimits> limits)
{
    m_dragged = std::static_pointer_cast<Clip>(clip.shared_from_this());
    m_dragLimits = limits;
    m_dragOffset = {};
    if (!lockCenter) {
        const swf::Matrix parent = clip.parent() ? clip.parent()->toStage() : swf::Matrix{};
        const swf::Point pointer = parent.inverted().map(m_position);
        m_dragOffset = {clip.matrix().tx - pointer.x, clip.matrix().ty - pointer.y};
    }
    if (lockCenter || limits) moveDragged();
}

void Pointer::stopDrag()
{
    if (m_dragged) moveDragged();
    m_dragged.reset();
}

void Pointer::moveDragged()
{
    Clip& clip = *m_dragged;
    const swf::Matrix parent = clip.parent() ? clip.parent()->toStage() : swf::Matrix{};
    const swf::Point pointer = parent.inverted().map(m_position);
    double x = (pointer.x + m_dragOffset.x) / swf::kTwipsPerPixel;
    double y = (pointer.y + m_dragOffset.y) / swf::kTwipsPerPixel;
    if (m_dragLimits) {
        const auto [left, top, right, bottom] = *m_dragLimits;
        x = std::clamp(x, std::min(left, right), std::max(left, right));
        y = std::clamp(y, std::min(top, bottom), std::max(top, bottom));
    }
    clip.setScriptTransformed();
    clip.setX(x);
    clip.setY(y);
    Node* below = topNodeAt(m_position, &clip);
    m_dropNode = below;
    m_lastDragged = &clip;
    m_dropTarget = below ? (asClip(below) ? asClip(below) : below->parentClip()) : nullptr;
}

} // namespace flash::stage
