#include "flash/avm2/bindings/Fields.h"
#include "flash/avm2/bindings/Input.h"
#include "flash/avm2/bindings/Player.h"
#include "flash/stage/FocusSteps.h"
#include "flash/stage/TextField.h"

#include <algorithm>
#include <memory>

// The keys, and which object they go to.
namespace flash::avm2
{

namespace
{

constexpr std::string_view kInteractive = "flash.display::InteractiveObject",
                           kContainer = "flash.display::DisplayObjectContainer";
constexpr int kMaxDepth = 1000; // of nested objects that are looked at
// Key codes.
constexpr int kShift = 16, kControl = 17, kAlternate = 18, kTab = 9, kEnter = 13, kSpace = 32;
constexpr int kLeft = 37, kUp = 38, kRight = 39, kDown = 40;

bool isInputField(DisplayObject& object)
{
    return object.node().kind() == stage::NodeKind::TextField &&
           static_cast<stage::TextField&>(object.node()).isInput();
}

std::optional<stage::Direction> directionOf(int keyCode)
{
    switch (keyCode) {
    case kLeft: return stage::Direction::Left;
    case kUp: return stage::Direction::Up;
    case kRight: return stage::Direction::Right;
    case kDown: return stage::Direction::Down;
    default: return {};
    }
}

/// Of the stage; what shows nothing is where it stands.
swf::Rect boxOf(DisplayObject* object)
{
    const swf::Matrix toStage = object->node().toStage();
    const swf::Rect bounds = object->node().bounds();
    swf::Rect rect = swf::mapBounds(toStage, bounds);
    if (bounds.isEmpty()) {
        rect.xMin = rect.xMax = static_cast<std::int32_t>(toStage.tx);
        rect.yMin = rect.yMax = static_cast<std::int32_t>(toStage.ty);
    }
    return rect;
}

} // namespace

DisplayObject* Input::focus() { return DisplayObject::of(m_player.stage().focus().node()); }

void Input::setFocus(DisplayObject* object)
{
    if (object == focus()) return;
    m_player.stage().focus().move(object != nullptr ? &object->node() : nullptr, stage::Focus::By::Script);
}

void Input::focusChanged(stage::Node* before, stage::Node* now)
{
    Vm& vm = m_player.vm();
    Root<DisplayObject> left(vm.heap(), DisplayObject::of(before)), come(vm.heap(), DisplayObject::of(now));
    const auto tell = [&](std::string_view type, Root<DisplayObject>& target, Root<DisplayObject>& other) {
        if (!target) return;
        vm.guarded([&] {
            fireWith(vm, *target, "flash.events::FocusEvent", type,
                     {other ? Value(other.get()) : Value::null(), Value(false), Value(0)}, true);
        });
    };
    // Where nothing has been selected when the frame is over, what is typed comes after the text.
    if (come && isInputField(*come)) {
        auto held = std::make_shared<Root<DisplayObject>>(vm.heap(), come.get());
        m_player.later([this, held] {
            DisplayObject* object = held->get();
            if (object != focus() || !isInputField(*object)) return;
            auto& field = static_cast<stage::TextField&>(object->node());
            if (field.selectionBegin() == 0 && field.selectionEnd() == 0)
                field.select(field.length(), field.length());
        });
    }
    tell("focusOut", left, come);
    tell("focusIn", come, left);
}

bool Input::asksFocusChange(std::string_view type, DisplayObject* to, int keyCode)
{
    Vm& vm = m_player.vm();
    DisplayObject* at = focus();
    if (at == nullptr) at = m_player.stageObject();
    Root<DisplayObject> keep(vm.heap(), at), next(vm.heap(), to);
    bool mayGo = true;
    vm.guarded([&] {
        mayGo = fireWith(vm, *at, "flash.events::FocusEvent", type,
                         {to != nullptr ? Value(to) : Value::null(), Value(keyCode != 0 && isDown(kShift)),
                          Value(keyCode)},
                         true, true);
    });
    return mayGo;
}

bool Input::isMouseFocusable(DisplayObject& object)
{
    if (object.isStage) return false;
    if (object.node().kind() == stage::NodeKind::TextField) return true;
    return isTabStop(object);
}

/// It is asked about what was clicked, be it only to take the focus away.
void Input::focusByMouse(DisplayObject& target)
{
    Vm& vm = m_player.vm();
    DisplayObject* clicked = target.isStage ? nullptr : &target;
    if (clicked == focus()) return;
    if (!asksFocusChange("mouseFocusChange", clicked, 0)) return;
    bool isTaken = false;
    vm.guarded([&] { isTaken = clicked != nullptr && isMouseFocusable(*clicked); });
    if ((isTaken ? clicked : nullptr) == focus()) return;
    m_player.stage().focus().move(isTaken ? &clicked->node() : nullptr, stage::Focus::By::User);
}

// ---- the Tab key ----

bool Input::isTabStop(DisplayObject& object)
{
    if (!isKind(object, kInteractive) || object.isStage || object.isRoot) return false;
    // Texts that only show themselves are passed over, whatever they say.
    if (object.node().kind() == stage::NodeKind::TextField && !isInputField(object)) return false;
    return flag(object, kInteractive, "tabEnabled");
}

void Input::collectTabStops(DisplayObject& object, RootedList<DisplayObject*>& stops, int depth)
{
    if (depth > kMaxDepth || (!object.isStage && !object.node().isVisible())) return;
    if (isTabStop(object)) stops.push_back(&object);
    if (!isKind(object, kContainer) || !flag(object, kContainer, "tabChildren")) return;
    RootedList<DisplayObject*> children(m_player.vm().heap(), object.children.begin(), object.children.end());
    for (std::size_t i = 0; i < children.size(); ++i) collectTabStops(*children[i], stops, depth + 1);
}

void Input::focusByTab(bool backwards)
{
    Vm& vm = m_player.vm();
    RootedList<DisplayObject*> stops(vm.heap());
    DisplayObject* now = focus();
    std::ptrdiff_t at = -1;
    const bool isDone = vm.guarded([&] {
        if (m_player.stageObject() == nullptr) return;
        collectTabStops(*m_player.stageObject(), stops, 0);
        const Binding* index = vm.nativeClass(kInteractive)->instances->find(vm.publicName("tabIndex"));
        const auto indexOf = [&](DisplayObject* object) {
            return vm.toInt(vm.getBinding(Value(object), *index));
        };
        if (std::ranges::any_of(*stops, [&](DisplayObject* object) { return indexOf(object) >= 0; })) {
            // Once there is an order of the movie's own, only what is in it counts.
            std::erase_if(*stops, [&](DisplayObject* object) { return indexOf(object) < 0; });
            std::stable_sort(stops->begin(), stops->end(),
                             [&](DisplayObject* a, DisplayObject* b) { return indexOf(a) < indexOf(b); });
        } else {
            // Reading order: from the upper left to the lower right. Of those in one place the first counts.
            const auto placeOf = [](DisplayObject* object) {
                const swf::Rect rect = boxOf(object);
                return rect.xMin + 6LL * rect.yMin;
            };
            std::stable_sort(stops->begin(), stops->end(),
                             [&](DisplayObject* a, DisplayObject* b) { return placeOf(a) < placeOf(b); });
            const auto end =
                std::unique(stops->begin(), stops->end(),
                            [&](DisplayObject* a, DisplayObject* b) { return placeOf(a) == placeOf(b); });
            stops->erase(end, stops->end());
        }
        const auto found = std::ranges::find(*stops, now);
        if (found != stops->end()) at = found - stops->begin();
    });
    if (!isDone || stops.size() == 0) return;
    const auto size = static_cast<std::ptrdiff_t>(stops.size());
    const std::ptrdiff_t next =
        at < 0 ? (backwards ? size - 1 : 0) : (at + (backwards ? size - 1 : 1)) % size;
    DisplayObject* to = stops[static_cast<std::size_t>(next)];
    focusByKey(*to, kTab);
}

/// From what has the focus to what lies that way; fields keep the arrows for their caret.
void Input::focusByArrow(int keyCode)
{
    const auto direction = directionOf(keyCode);
    DisplayObject* now = focus();
    if (!direction || now == nullptr || now->isStage) return;
    if (now->node().kind() == stage::NodeKind::TextField) return;
    Vm& vm = m_player.vm();
    Root<DisplayObject> from(vm.heap(), now);
    RootedList<DisplayObject*> stops(vm.heap());
    vm.guarded([&] {
        if (m_player.stageObject() != nullptr) collectTabStops(*m_player.stageObject(), stops, 0);
    });
    // The scripts that were asked may have taken it away.
    if (focus() != from.get()) return;
    std::erase(*stops, from.get());
    std::vector<swf::Rect> boxes;
    for (std::size_t i = 0; i < stops.size(); ++i) boxes.push_back(boxOf(stops[i]));
    if (const auto found = stage::nextInDirection(boxOf(from.get()), boxes, *direction))
        focusByKey(*stops[*found], keyCode);
}

void Input::focusByKey(DisplayObject& to, int keyCode)
{
    Root<DisplayObject> keep(m_player.vm().heap(), &to);
    if (!asksFocusChange("keyFocusChange", &to, keyCode)) return;
    if (&to == focus()) return;
    m_player.stage().focus().show(true);
    m_player.stage().focus().move(&to.node(), stage::Focus::By::User);
    // A field that is tabbed into is selected as a whole.
    if (isInputField(to)) {
        auto& field = static_cast<stage::TextField&>(to.node());
        field.select(0, field.length());
    }
}

// ---- keys ----

void Input::fireKey(std::string_view type, int keyCode, char32_t charCode)
{
    Vm& vm = m_player.vm();
    DisplayObject* at = focus();
    if (at == nullptr) at = m_player.stageObject();
    if (at == nullptr) return;
    Root<DisplayObject> keep(vm.heap(), at);
    vm.guarded([&] {
        fireWith(vm, *at, "flash.events::KeyboardEvent", type,
                 {Value(static_cast<double>(charCode)), Value(keyCode), Value(0), Value(isDown(kControl)),
                  Value(isDown(kAlternate)), Value(isDown(kShift))},
                 true, true);
    });
}

void Input::keyPressed(int keyCode, char32_t charCode)
{
    fireKey("keyDown", keyCode, charCode);
    if (keyCode == kTab)
        focusByTab(isDown(kShift));
    else if (keyCode == kEnter || keyCode == kSpace)
        clickFocus();
    else
        focusByArrow(keyCode);
}

// What had the focus when the key came down may have lost it to a listener.
void Input::clickFocus()
{
    DisplayObject* at = focus();
    if (at == nullptr) return;
    Root<DisplayObject> keep(m_player.vm().heap(), at);
    bool isClicked = false;
    m_player.vm().guarded([&] {
        isClicked =
            (isKind(*at, "flash.display::Sprite") && flag(*at, "flash.display::Sprite", "buttonMode")) ||
            (isKind(*at, "flash.display::SimpleButton") &&
             flag(*at, "flash.display::SimpleButton", "enabled"));
    });
    if (isClicked) fireMouse("click", *at);
}

void Input::keyReleased(int keyCode, char32_t charCode) { fireKey("keyUp", keyCode, charCode); }

// ---- the player's end of it ----

void Player::pointerLeft() { m_input->left(); }
void Player::focusChanged(stage::Node* before, stage::Node* now) { m_input->focusChanged(before, now); }

void Player::textChanged(stage::TextField& field)
{
    if (DisplayObject* object = DisplayObject::of(&field))
        m_vm->guarded([&] { fire(*m_vm, *object, "change", true); });
}
void Player::textScrolled(stage::TextField& field)
{
    if (DisplayObject* object = DisplayObject::of(&field))
        m_vm->guarded([&] { fire(*m_vm, *object, "scroll"); });
}
bool Player::takesText(stage::TextField& field, std::u16string_view text)
{
    DisplayObject* object = DisplayObject::of(&field);
    bool isTaken = true;
    if (object == nullptr) return isTaken;
    const std::u16string copy(text == u"\r" ? u"\n" : text);
    m_vm->guarded([&] {
        isTaken = fireWith(*m_vm, *object, "flash.events::TextEvent", "textInput",
                           {Value(m_vm->string(copy))}, true, true);
    });
    return isTaken;
}

} // namespace flash::avm2
