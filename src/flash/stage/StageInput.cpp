#include "flash/stage/Button.h"
#include "flash/stage/Graphics.h"
#include "flash/stage/Stage.h"
#include "flash/stage/TextField.h"

#include <algorithm>
#include <utility>

namespace flash::stage
{

namespace
{

// The key numbers that button conditions use for keys that type nothing.
struct SpecialKey {
    int keyCode;
    int pressCode;
};
constexpr SpecialKey kSpecialKeys[] = {
    {37, 1},  {39, 2},  {36, 3},  {35, 4},  {45, 5},  {46, 6}, {8, 8},
    {13, 13}, {38, 14}, {40, 15}, {33, 16}, {34, 17}, {9, 18}, {27, 19},
};

int pressCodeOf(int keyCode, char32_t charCode)
{
    for (const SpecialKey& key : kSpecialKeys)
        if (key.keyCode == keyCode) return key.pressCode;
    return charCode >= 32 && charCode < 127 ? static_cast<int>(charCode) : 0;
}

bool tracksAsMenu(Node& node)
{
    if (node.kind() == NodeKind::Button) return static_cast<Button&>(node).tracksAsMenu();
    Clip* clip = asClip(&node);
    return clip && clip->trackAsMenu;
}

unsigned conditionOf(Event event, bool menu)
{
    using Condition = swf::ButtonAction::Condition;
    switch (event) {
    case Event::RollOver: return Condition::IdleToOverUp;
    case Event::RollOut: return Condition::OverUpToIdle;
    case Event::Press: return Condition::OverUpToOverDown;
    case Event::Release: return Condition::OverDownToOverUp;
    case Event::ReleaseOutside: return Condition::OutDownToIdle;
    case Event::DragOver: return menu ? Condition::IdleToOverDown : Condition::OutDownToOverDown;
    case Event::DragOut: return menu ? Condition::OverDownToIdle : Condition::OverDownToOutDown;
    default: return 0;
    }
}

Button::State stateAfter(Event event, bool menu)
{
    switch (event) {
    case Event::RollOver:
    case Event::Release: return Button::State::Over;
    case Event::Press:
    case Event::DragOver: return Button::State::Down;
    case Event::DragOut: return menu ? Button::State::Up : Button::State::Over;
    default: return Button::State::Up;
    }
}

/// Index into the sounds of a button; -1 when the event has none.
int cueOf(Event event)
{
    switch (event) {
    case Event::RollOut: return 0;
    case Event::RollOver: return 1;
    case Event::Press: return 2;
    case Event::Release: return 3;
    default: return -1;
    }
}

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

/// Counts what is under way.
class InputScope
{
public:
    explicit InputScope(int& depth) : m_depth(depth) { ++m_depth; }
    ~InputScope() { --m_depth; }
    InputScope(const InputScope&) = delete;
    InputScope& operator=(const InputScope&) = delete;

private:
    int& m_depth;
};

} // namespace

NodePtr Stage::pointerTarget(swf::Point stagePoint)
{
    for (auto level = m_levels.rbegin(); level != m_levels.rend(); ++level)
        if (NodePtr found = pointerTargetIn(*level->second, stagePoint)) return found;
    return nullptr;
}

NodePtr Stage::pointerTargetIn(Node& node, swf::Point stagePoint)
{
    // What is disabled under the pointer keeps it, and hears nothing, until the pointer leaves.
    const auto answers = [&](Node& entry) { return &entry == m_over.get() || m_script->isEnabled(entry); };
    if (!node.isVisible() || node.maskee() || node.isUnloading()) return nullptr;
    if (node.mask() && !node.mask()->hitsShape(stagePoint)) return nullptr;
    if (node.kind() == NodeKind::Button) {
        auto& button = static_cast<Button&>(node);
        const bool taken = answers(node) && button.takesPointer(stagePoint);
        return taken ? node.shared_from_this() : nullptr;
    }
    if (node.kind() == NodeKind::TextField) {
        auto& field = static_cast<TextField&>(node);
        const bool taken = field.selectable || field.isInput() ? field.hitsShape(stagePoint)
                                                               : field.linkAt(stagePoint) != nullptr;
        return taken ? node.shared_from_this() : nullptr;
    }
    Clip* clip = asClip(&node);
    if (!clip) return nullptr;
    if (clip->isButtonLike() && answers(node)) {
        Node* area = clip->hitArea();
        return (area ? area : clip)->hitsShape(stagePoint) ? node.shared_from_this() : nullptr;
    }
    if (clip->scrollRect() && !rectContains(*clip, clip->bounds(Node::Extent::WithStrokes), stagePoint))
        return nullptr;
    const std::span<const NodePtr> children = clip->children();
    for (std::size_t i = children.size(); i-- > 0;) {
        Node& child = *children[i];
        if (child.clipDepth()) continue;
        NodePtr found = pointerTargetIn(child, stagePoint);
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

Node* Stage::topNodeAt(swf::Point stagePoint, const Node* except)
{
    const auto within = [&](auto&& self, Node& node) -> Node* {
        if (&node == except || !node.isVisible() || node.maskee()) return nullptr;
        if (node.kind() != NodeKind::Clip) return node.hitsShape(stagePoint) ? &node : nullptr;
        const std::span<const NodePtr> children = node.children();
        for (std::size_t i = children.size(); i-- > 0;) {
            if (children[i]->clipDepth()) continue;
            if (Node* found = self(self, *children[i])) return found;
        }
        Clip& clip = static_cast<Clip&>(node);
        const bool drawn = clip.drawingIfAny() && clip.hitsShape(stagePoint);
        return drawn ? &node : nullptr;
    };
    for (auto level = m_levels.rbegin(); level != m_levels.rend(); ++level)
        if (Node* found = within(within, *level->second)) return found;
    return nullptr;
}

void Stage::pointerEvent(Node& node, Event event)
{
    // Text fields have no handlers for the pointer.
    if (node.kind() == NodeKind::TextField || !m_script->isEnabled(node)) return;
    const bool menu = tracksAsMenu(node);
    if (node.kind() == NodeKind::Button) {
        auto& button = static_cast<Button&>(node);
        const int cue = cueOf(event);
        if (cue >= 0) {
            const swf::Button::Cue& sound = button.definition().sounds[static_cast<std::size_t>(cue)];
            const swf::Character* character = button.movie()->character(sound.soundId);
            if (const auto* data = character ? std::get_if<swf::Sound>(&character->data) : nullptr)
                m_services.sound.startEvent(button.movie(), sound.soundId, *data, sound.info);
        }
        button.setState(stateAfter(event, menu));
        runButtonActions(button, conditionOf(event, menu));
    }
    queueEvent(node, event);
}

void Stage::runButtonActions(Button& button, unsigned condition)
{
    Clip* target = button.parentClip();
    if (!target) return;
    for (const swf::ButtonAction& action : button.definition().actions)
        if (action.conditions & condition) queueBlock(*target, button.movie(), action.actions);
}

void Stage::noteLost(const Node& node)
{
    if (node.kind() != NodeKind::Button) return;
    m_lost = Lost{&static_cast<const Button&>(node).definition(), node.depth(), m_over.get() == &node,
                  m_pressed.get() == &node};
}

// A timeline that goes back makes its buttons anew. To the user and to scripts they are what they were.
void Stage::adoptLike(const NodePtr& target)
{
    if (!m_lost) return;
    const Lost lost = *m_lost;
    Button* button =
        target && target->kind() == NodeKind::Button ? static_cast<Button*>(target.get()) : nullptr;
    const bool alike = button && &button->definition() == lost.definition && button->depth() == lost.depth;
    m_lost.reset();
    const bool pressed = lost.pressed && !m_pressed && m_mouseIsDown;
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

void Stage::updatePointer()
{
    // What the focus is on stays rolled over until the pointer moves.
    if (m_overByFocus && m_over) return;
    m_overByFocus = false;
    const NodePtr target = m_mouseInside ? pointerTarget(m_mouse) : nullptr;
    adoptLike(target);
    if (m_mouseIsDown) {
        if (m_pressed) {
            const bool menu = tracksAsMenu(*m_pressed);
            if (target == m_pressed) {
                if (m_pressedOutside) {
                    m_pressedOutside = false;
                    pointerEvent(*m_pressed, Event::DragOver);
                }
            } else if (!m_pressedOutside) {
                m_pressedOutside = true;
                pointerEvent(*m_pressed, Event::DragOut);
            }
            if (menu && target && target != m_pressed && tracksAsMenu(*target)) {
                m_pressed = target;
                m_pressedOutside = false;
                pointerEvent(*target, Event::DragOver);
            }
        } else if (target && tracksAsMenu(*target) && target != m_over) {
            m_pressed = target;
            m_pressedOutside = false;
            pointerEvent(*target, Event::DragOver);
        }
        m_over = target;
    } else if (target != m_over) {
        const NodePtr before = m_over;
        m_over = target;
        if (before && !before->isRemoved()) pointerEvent(*before, Event::RollOut);
        if (target) pointerEvent(*target, Event::RollOver);
    }
    updateCursor();
    runQueue();
}

void Stage::updateCursor()
{
    const NodePtr& node = m_mouseIsDown && m_pressed ? m_pressed : m_over;
    m_cursor = Cursor::Arrow;
    if (!m_mouseVisible)
        m_cursor = Cursor::Hidden;
    else if (node && node->kind() == NodeKind::TextField)
        m_cursor = static_cast<TextField&>(*node).linkAt(m_mouse) ? Cursor::Hand : Cursor::Text;
    else if (node && node->kind() == NodeKind::Button)
        m_cursor = static_cast<Button&>(*node).useHandCursor ? Cursor::Hand : Cursor::Arrow;
    else if (Clip* clip = asClip(node.get()))
        m_cursor = clip->useHandCursor ? Cursor::Hand : Cursor::Arrow;
}

void Stage::clipEventEverywhere(Event event)
{
    for (std::size_t i = m_clips.size(); i-- > 0;)
        if (!m_clips[i]->isRemoved()) queueEvent(*m_clips[i], event);
}

void Stage::mouseMove(double x, double y)
{
    const swf::Matrix view = viewMatrix();
    const swf::Point before = m_mouse;
    m_mouse = view.inverted().map(x, y);
    m_mouseInside = true;
    if (m_mouse != before) m_overByFocus = false;
    if (focusHidesAtEveryMove()) showFocus(false);
    if (m_dragged) moveDragged();
    clipEventEverywhere(Event::MouseMove);
    runQueue();
    m_script->broadcastMouse(Event::MouseMove);
    runQueue();
    if (m_mouseIsDown && m_pressed && m_pressed->kind() == NodeKind::TextField && !m_pressedLink)
        static_cast<TextField&>(*m_pressed).drag(m_mouse);
    updatePointer();
}

void Stage::mouseDown(double x, double y, MouseButton button, int clicks)
{
    const InputScope scope(m_inputDepth);
    const swf::Point point = viewMatrix().inverted().map(x, y);
    if (point != m_mouse || !m_mouseInside) mouseMove(x, y);
    if (button == MouseButton::Left || (button == MouseButton::Right && focusHidesAtEveryMove()))
        showFocus(false);
    noteKeyDown(keyOf(button));
    if (button != MouseButton::Left) return;
    m_overByFocus = false;
    m_mouseIsDown = true;
    clipEventEverywhere(Event::MouseDown);
    runQueue();
    m_script->broadcastMouse(Event::MouseDown);
    runQueue();
    const NodePtr target = pointerTarget(m_mouse);
    m_pressed = target;
    m_pressedOutside = false;
    m_pressedLink.reset();
    if (target && target->kind() == NodeKind::TextField) {
        auto& field = static_cast<TextField&>(*target);
        if (field.selectable || field.isInput()) setFocus(target.get());
        // A link is there to be clicked: pressing it selects nothing.
        if (const TextFormat* link = field.linkAt(m_mouse))
            m_pressedLink = *link;
        else
            field.press(m_mouse, clicks);
    }
    const auto isField = [](const NodePtr& node) { return node && node->kind() == NodeKind::TextField; };
    const bool leavesField = isField(m_focus) && !isField(target);
    if (leavesField) moveFocus(nullptr, By::User);
    if (target && !target->isRemoved()) pointerEvent(*target, Event::Press);
    // What takes the pointer from a field is rolled out of as if the focus had moved from it.
    if (leavesField) rollOutOfFocus();
    updateCursor();
    runQueue();
}

void Stage::mouseUp(double x, double y, MouseButton button)
{
    const InputScope scope(m_inputDepth);
    const swf::Point point = viewMatrix().inverted().map(x, y);
    if (point != m_mouse) mouseMove(x, y);
    if (button != MouseButton::Middle && focusHidesAtEveryMove()) showFocus(false);
    m_keysDown.erase(keyOf(button));
    if (button != MouseButton::Left) return;
    clipEventEverywhere(Event::MouseUp);
    runQueue();
    m_script->broadcastMouse(Event::MouseUp);
    runQueue();
    m_mouseIsDown = false;
    const NodePtr pressed = m_pressed;
    m_pressed.reset();
    if (pressed && !pressed->isRemoved()) {
        const NodePtr target = pointerTarget(m_mouse);
        if (target == pressed) {
            m_over = pressed;
            pointerEvent(*pressed, Event::Release);
            if (m_pressedLink) followPressedLink(static_cast<TextField&>(*pressed));
        } else {
            if (!tracksAsMenu(*pressed)) pointerEvent(*pressed, Event::ReleaseOutside);
            m_over.reset();
        }
    }
    m_pressedLink.reset();
    runQueue();
    updatePointer();
}

void Stage::followPressedLink(TextField& field)
{
    const TextFormat* link = field.linkAt(m_mouse);
    const bool same = link && link->url == m_pressedLink->url && link->target == m_pressedLink->target;
    if (!same) return;
    // After the scripts that hear of the click itself.
    const auto holder = std::static_pointer_cast<TextField>(field.shared_from_this());
    queueRequest([this, holder, url = link->url, window = link->target] {
        if (!holder->isRemoved()) m_script->followLink(*holder, url, window);
    });
}

void Stage::mouseWheel(int lines)
{
    m_script->broadcastWheel(lines, topNodeAt(m_mouse));
    runQueue();
    const NodePtr target = pointerTarget(m_mouse);
    if (target && target->kind() == NodeKind::TextField) static_cast<TextField&>(*target).wheel(lines);
    runQueue();
}

void Stage::mouseLeave()
{
    m_mouseInside = false;
    updatePointer();
}

bool Stage::keyPressEverywhere(int keyPressCode)
{
    if (keyPressCode == 0) return false;
    // The first that wants the key has it alone.
    const auto visit = [&](auto&& self, Node& node) -> bool {
        if (node.kind() == NodeKind::Button) {
            auto& button = static_cast<Button&>(node);
            Clip* target = button.parentClip();
            if (!target || !node.isVisible() || !m_script->isEnabled(node)) return false;
            bool any = false;
            for (const swf::ButtonAction& action : button.definition().actions) {
                if (action.keyCode != keyPressCode) continue;
                queueBlock(*target, button.movie(), action.actions);
                any = true;
            }
            return any;
        }
        Clip* clip = asClip(&node);
        if (!clip) return false;
        for (const swf::ClipAction& action : clip->clipActions()) {
            if ((action.events & clipEventBit(Event::KeyPress)) == 0 || action.keyCode != keyPressCode)
                continue;
            queueEvent(*clip, Event::KeyPress, keyPressCode);
            return true;
        }
        for (const NodePtr& child : clip->children())
            if (self(self, *child)) return true;
        return false;
    };
    for (const auto& [number, root] : m_levels)
        if (visit(visit, *root)) return true;
    return false;
}

bool Stage::listensToKeys()
{
    if (m_keysAsked || m_script->hasKeyListeners()) return true;
    if (m_focus) {
        const bool types =
            m_focus->kind() == NodeKind::TextField && static_cast<TextField&>(*m_focus).isInput();
        if (types || m_focus->kind() == NodeKind::Button || m_focus->kind() == NodeKind::Clip) return true;
    }
    const auto hears = [](auto&& self, Node& node) -> bool {
        if (node.kind() == NodeKind::Button) {
            const auto& actions = static_cast<Button&>(node).definition().actions;
            return std::any_of(actions.begin(), actions.end(),
                               [](const swf::ButtonAction& action) { return action.keyCode != 0; });
        }
        Clip* clip = asClip(&node);
        if (!clip) return false;
        for (const Event event : {Event::KeyDown, Event::KeyUp, Event::KeyPress})
            if (clip->hasClipEvent(event)) return true;
        const auto& children = clip->children();
        return std::any_of(children.begin(), children.end(),
                           [&self](const NodePtr& child) { return self(self, *child); });
    };
    return std::any_of(m_levels.begin(), m_levels.end(),
                       [&hears](const auto& level) { return hears(hears, *level.second); });
}

// The file's handlers hear of every key, a script's onKeyDown and onKeyUp only while the instance has the
// focus, and not once the mouse has taken over.
void Stage::keyEvent(Event event)
{
    for (std::size_t i = m_clips.size(); i-- > 0;)
        if (!m_clips[i]->isRemoved() && m_clips[i]->hasClipEvent(event)) queueEvent(*m_clips[i], event);
    if (m_focus && m_focusShown && m_focus->kind() != NodeKind::TextField &&
        m_script->hasHandler(*m_focus, event)) {
        const Clip* clip = asClip(m_focus.get());
        if (!clip || !clip->hasClipEvent(event)) queueEvent(*m_focus, event);
    }
    runQueue();
    m_script->broadcastKey(event);
    runQueue();
}

void Stage::noteKeyDown(int keyCode)
{
    // Held down it repeats, and is not pressed again.
    if (!m_keysDown.insert(keyCode).second) return;
    if (!m_keysToggled.erase(keyCode)) m_keysToggled.insert(keyCode);
}

void Stage::keyDown(int keyCode, char32_t charCode)
{
    const InputScope scope(m_inputDepth);
    m_lastKeyCode = keyCode;
    m_lastCharCode = static_cast<int>(charCode);
    noteKeyDown(keyCode);
    keyEvent(Event::KeyDown);
    constexpr int kTab = 9, kEnter = 13, kShift = 16, kSpace = 32;
    // Whoever waits for the key takes it from the field that is typed into, and from what has the focus.
    m_keyTaken = keyPressEverywhere(pressCodeOf(keyCode, charCode));
    runQueue();
    if (!m_keyTaken && keyCode == kTab) focusNext(isKeyDown(kShift));
    const bool presses =
        m_focus && (m_focus->kind() == NodeKind::Button || m_focus->kind() == NodeKind::Clip);
    if (!m_keyTaken && presses && isFocusFramed() && (keyCode == kEnter || keyCode == kSpace)) {
        // The keyboard's click: down and up at once.
        const NodePtr focus = m_focus;
        for (const Event event : {Event::Press, Event::Release}) {
            if (focus->kind() == NodeKind::Button)
                runButtonActions(static_cast<Button&>(*focus), conditionOf(event, false));
            queueEvent(*focus, event);
        }
    }
    runQueue();
}

void Stage::keyUp(int keyCode, char32_t charCode)
{
    const InputScope scope(m_inputDepth);
    m_lastKeyCode = keyCode;
    m_lastCharCode = static_cast<int>(charCode);
    m_keysDown.erase(keyCode);
    keyEvent(Event::KeyUp);
}

bool Stage::isKeyDown(int keyCode) const { return m_keysDown.contains(keyCode); }
bool Stage::isKeyToggled(int keyCode) const { return m_keysToggled.contains(keyCode); }

void Stage::textInput(char32_t character)
{
    const InputScope scope(m_inputDepth);
    if (!m_focus || m_focus->kind() != NodeKind::TextField || m_keyTaken) return;
    static_cast<TextField&>(*m_focus).input(character);
    runQueue();
}

void Stage::textCommand(TextCommand command)
{
    const InputScope scope(m_inputDepth);
    if (!m_focus || m_focus->kind() != NodeKind::TextField) return;
    static_cast<TextField&>(*m_focus).command(command);
    runQueue();
}

void Stage::focusGained() {}

void Stage::focusLost()
{
    m_keysDown.clear();
    setFocus(nullptr);
}

// Since version 9 only a press of the left button does.
bool Stage::focusHidesAtEveryMove() const { return m_movie && m_movie->header.version < 9; }

void Stage::showFocus(bool on)
{
    if (on == m_focusShown) return;
    m_focusShown = on;
    if (m_focus) m_focus->invalidate();
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

// What has the focus looks and is told as if the pointer were on it, whatever the pointer was on before.
void Stage::rollOutOfFocus()
{
    const NodePtr over = std::exchange(m_over, nullptr);
    m_overByFocus = false;
    if (over && !over->isRemoved()) pointerEvent(*over, Event::RollOut);
}

void Stage::setFocus(Node* node, By by)
{
    if (by == By::Script) showFocus(true);
    const bool moves = m_focus.get() != node;
    // A script that sets the focus where it is says so once more.
    if (!moves && (by == By::User || !node)) return;
    const NodePtr now = node ? node->shared_from_this() : nullptr;
    rollOutOfFocus();
    if (now && !now->isRemoved() && now->kind() != NodeKind::TextField) {
        m_over = now;
        m_overByFocus = true;
        pointerEvent(*now, Event::RollOver);
    }
    if (moves) moveFocus(node, by);
}

void Stage::moveFocus(Node* node, By by)
{
    const NodePtr before = m_focus;
    m_focus = node ? node->shared_from_this() : nullptr;
    if (before) before->invalidate();
    const NodePtr now = m_focus;
    if (now) {
        now->invalidate();
        m_focusFramed = wantsFocusRect(*now);
    }
    const auto asField = [](const NodePtr& entry) {
        const bool is = entry && entry->kind() == NodeKind::TextField;
        return is ? static_cast<TextField*>(entry.get()) : nullptr;
    };
    // A script that sets the focus goes on before that is told.
    if (by == By::User) runQueue();
    if (m_focus != now) return;
    if (TextField* field = asField(before)) field->focusLost();
    m_script->focusChanged(before.get(), now.get());
    // Whoever was told may have moved it on.
    if (m_focus == now)
        if (TextField* field = asField(now)) field->focusGained();
    if (by == By::User) runQueue();
}

void Stage::dropFocusWithin(const Node& node)
{
    for (const Node* at = m_focus.get(); at; at = at->parent()) {
        if (at != &node) continue;
        setFocus(nullptr);
        return;
    }
}

bool Stage::canTakeFocus(Node& node)
{
    switch (node.kind()) {
    case NodeKind::Button: return true;
    case NodeKind::TextField: return true;
    case NodeKind::Clip: {
        auto& clip = static_cast<Clip&>(node);
        return (clip.isButtonLike() || clip.focusEnabled.value_or(false)) && clip.parent();
    }
    default: return false;
    }
}

void Stage::setShowsMenu(bool full)
{
    m_showsMenu = full;
    m_services.host.showMenu(full);
}

void Stage::focusNext(bool backwards)
{
    std::vector<std::pair<int, Node*>> stops;
    const auto visit = [&](auto&& self, Node& node) -> void {
        if (!node.isVisible() || node.isUnloading()) return;
        bool stop = false;
        if (node.kind() == NodeKind::Button) stop = m_script->isEnabled(node);
        if (node.kind() == NodeKind::TextField) stop = static_cast<TextField&>(node).isInput();
        if (Clip* clip = asClip(&node); clip && clip->parent())
            stop = clip->tabEnabled.value_or(clip->tabIndex.has_value() || clip->isButtonLike() ||
                                             clip->focusEnabled.value_or(false));
        if (stop && node.tabEnabled.value_or(true)) stops.emplace_back(node.tabIndex.value_or(0), &node);
        if (Clip* clip = asClip(&node); clip && clip->tabChildren.value_or(true))
            for (const NodePtr& child : node.children()) self(self, *child);
    };
    for (const auto& [number, root] : m_levels) visit(visit, *root);
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
        std::find_if(stops.begin(), stops.end(), [&](const auto& s) { return s.second == m_focus.get(); });
    std::size_t index = 0;
    if (now == stops.end())
        index = backwards ? stops.size() - 1 : 0;
    else
        index = (static_cast<std::size_t>(now - stops.begin()) + (backwards ? stops.size() - 1 : 1)) %
                stops.size();
    showFocus(true);
    setFocus(stops[index].second);
}

void Stage::startDrag(Clip& clip, bool lockCenter, std::optional<DragLimits> limits)
{
    m_dragged = std::static_pointer_cast<Clip>(clip.shared_from_this());
    m_dragLimits = limits;
    m_dragOffset = {};
    if (!lockCenter) {
        const swf::Matrix parent = clip.parent() ? clip.parent()->toStage() : swf::Matrix{};
        const swf::Point pointer = parent.inverted().map(m_mouse);
        m_dragOffset = {clip.matrix().tx - pointer.x, clip.matrix().ty - pointer.y};
    }
    if (lockCenter || limits) moveDragged();
}

void Stage::stopDrag()
{
    if (m_dragged) moveDragged();
    m_dragged.reset();
}

Clip* Stage::dragged() const { return m_dragged.get(); }

void Stage::moveDragged()
{
    Clip& clip = *m_dragged;
    const swf::Matrix parent = clip.parent() ? clip.parent()->toStage() : swf::Matrix{};
    const swf::Point pointer = parent.inverted().map(m_mouse);
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
    Node* below = topNodeAt(m_mouse, &clip);
    m_dropTarget = below ? (asClip(below) ? asClip(below) : below->parentClip()) : nullptr;
}

} // namespace flash::stage
