#include "flash/avm2/bindings/Input.h"

#include "flash/avm2/bindings/Fields.h"
#include "flash/avm2/bindings/Player.h"
#include "flash/avm2/bindings/TextEngine.h"
#include "flash/stage/TextField.h"

#include <algorithm>
#include <utility>

namespace flash::avm2
{

namespace
{

constexpr std::string_view kInteractive = "flash.display::InteractiveObject",
                           kContainer = "flash.display::DisplayObjectContainer",
                           kSprite = "flash.display::Sprite", kButton = "flash.display::SimpleButton";
constexpr int kMaxDepth = 1000; // of nested objects that are looked at
// Key codes.
constexpr int kShift = 16, kControl = 17, kAlternate = 18;

bool isWithin(const swf::Rect& rect, swf::Point point)
{
    return point.x >= rect.xMin && point.x < rect.xMax && point.y >= rect.yMin && point.y < rect.yMax;
}

stage::TextField* fieldOf(DisplayObject* object)
{
    const bool is = object != nullptr && object->node().kind() == stage::NodeKind::TextField;
    return is ? static_cast<stage::TextField*>(&object->node()) : nullptr;
}
/// The field that an object is, or among whose letters it stands; null when there is none.
DisplayObject* textOf(DisplayObject* object)
{
    while (object != nullptr && fieldOf(object) == nullptr) object = object->parent;
    return object;
}
/// The field whose link lies at a point of an object: what stands in a link may hold texts of its own.
DisplayObject* linkOf(DisplayObject* object, swf::Point point)
{
    object = textOf(object);
    while (object != nullptr && fieldOf(object)->linkAt(point) == nullptr) object = textOf(object->parent);
    return object;
}

struct ButtonNames {
    std::string_view down, up, click;
};
/// By MouseButton.
constexpr ButtonNames kButtonNames[] = {{"mouseDown", "mouseUp", "click"},
                                        {"middleMouseDown", "middleMouseUp", "middleClick"},
                                        {"rightMouseDown", "rightMouseUp", "rightClick"}};

} // namespace

bool Input::isKind(DisplayObject& object, std::string_view cls)
{
    ClassObject* wanted = m_player.vm().nativeClass(cls);
    return wanted != nullptr && object.traits()->isA(wanted->instances);
}

bool Input::flag(DisplayObject& object, std::string_view cls, std::string_view name)
{
    Vm& vm = m_player.vm();
    ClassObject* owner = vm.nativeClass(cls);
    const Binding* binding = owner->instances->find(vm.publicName(name));
    return binding != nullptr && vm.toBoolean(vm.getBinding(Value(&object), *binding));
}

bool Input::isDown(int keyCode) { return m_player.stage().keyboard().isDown(keyCode); }

// ---- what is under the pointer ----

namespace
{

/// Whether a mask lets a point through. What of it is not shown masks as well.
bool letsThrough(stage::Node& mask, swf::Point point, int depth = 0)
{
    constexpr int kDeepest = 64;
    if (mask.hitsShape(point)) return true;
    return depth < kDeepest && std::ranges::any_of(mask.children(), [&](const stage::NodePtr& child) {
               return letsThrough(*child, point, depth + 1);
           });
}

} // namespace

/// The topmost object that wants the mouse at a point. What does not want it, or is none of its business (a
/// shape), lets those below have it, and is a part of its parent when none does.
Input::Hit Input::pick(DisplayObject& object, swf::Point point, DisplayObject*& target, int depth)
{
    stage::Node& node = object.node();
    if (depth > kMaxDepth || (!object.isStage && !node.isVisible()) || node.maskee() != nullptr)
        return Hit::None;
    if (node.mask() != nullptr && !letsThrough(*node.mask(), point)) return Hit::None;
    if (!isKind(object, kInteractive)) return node.hitsShape(point) ? Hit::Parent : Hit::None;
    const bool wants = flag(object, kInteractive, "mouseEnabled");
    const auto take = [&] {
        target = &object;
        return Hit::Target;
    };
    if (isKind(object, kButton)) {
        DisplayObject* area = object.states[static_cast<std::size_t>(DisplayObject::State::Hit)];
        if (area == nullptr || !wants) return Hit::None;
        // It lies on no list, and is where the button is.
        const swf::Point local = node.toStageAt(point).inverted().map(point);
        const bool isHit =
            area->node().parent() != nullptr ? area->node().hitsShape(point) : area->node().hitsShape(local);
        return isHit ? take() : Hit::None;
    }
    if (!isKind(object, kContainer)) {
        const bool isField = node.kind() == stage::NodeKind::TextField;
        if (isField ? !isWithin(node.bounds(), node.toStageAt(point).inverted().map(point))
                    : !node.hitsShape(point))
            return Hit::None;
        RootedList<DisplayObject*> pictures(m_player.vm().heap(), object.children.begin(),
                                            object.children.end());
        for (std::size_t i = pictures.size(); i-- > 0;)
            if (pick(*pictures[i], point, target, depth + 1) == Hit::Target) return Hit::Target;
        // Static text that was saved as a field stays a part of what it lies on, unless it can be marked.
        const auto* field = isField ? static_cast<const stage::TextField*>(&node) : nullptr;
        if (field != nullptr && field->definition().wasStatic && !field->selectable) return Hit::Parent;
        return wants ? take() : Hit::Parent;
    }
    if (node.scrollRect() && !object.isStage) {
        if (!isWithin(*node.scrollRect(), node.toStageAt(point).inverted().map(point))) return Hit::None;
    }
    // One that keeps the mouse from its children is one thing.
    if (!flag(object, kContainer, "mouseChildren")) {
        if (!(object.hitArea != nullptr ? object.hitArea->node() : node).hitsShape(point)) return Hit::None;
        return wants ? take() : Hit::Parent;
    }
    bool isShown = false; // by a child that does not take it
    RootedList<DisplayObject*> children(m_player.vm().heap(), object.children.begin(), object.children.end());
    for (std::size_t i = children.size(); i-- > 0;) {
        DisplayObject& child = *children[i];
        if (child.node().clipDepth()) continue;
        const bool isClipped = std::any_of(
            children->begin(), children->begin() + static_cast<std::ptrdiff_t>(i), [&](DisplayObject* below) {
                return below->node().clipDepth() && *below->node().clipDepth() >= child.node().depth() &&
                       !below->node().hitsShape(point);
            });
        if (isClipped) continue;
        const Hit hit = pick(child, point, target, depth + 1);
        if (hit == Hit::Target) return hit;
        isShown = isShown || hit == Hit::Parent;
    }
    if (object.isStage) return Hit::None;
    if (wants && object.hitArea != nullptr)
        return object.hitArea->node().hitsShape(point) ? take() : Hit::None;
    const bool isDrawn = object.clip() != nullptr && object.clip()->drawingHits(point);
    if (!isDrawn && !isShown) return Hit::None;
    // The main timeline of a movie does not stand for what lies on it, whatever it draws below; a loader
    // does.
    return wants && !(isShown && object.isRoot) ? take() : Hit::Parent;
}

DisplayObject* Input::targetAt(swf::Point point)
{
    DisplayObject* stage = m_player.stageObject();
    if (stage == nullptr) return nullptr;
    DisplayObject* target = nullptr;
    m_player.vm().guarded([&] {
        if (pick(*stage, point, target, 0) != Hit::Target) target = nullptr;
    });
    return target != nullptr ? target : stage;
}

// ---- the mouse ----

void Input::fireMouse(std::string_view type, DisplayObject& target, DisplayObject* related, bool bubbles,
                      int delta)
{
    Vm& vm = m_player.vm();
    const swf::Point point = m_player.stage().pointer().position();
    const swf::Point local = target.isStage ? point : target.node().toStageAt(point).inverted().map(point);
    constexpr double kTwips = swf::kTwipsPerPixel;
    constexpr std::uint32_t kMovementX = 9; // of the event's slots
    Root<DisplayObject> keep(vm.heap(), &target);
    const auto tell = [&](DispatcherObject& hearer) {
        EventObject* event = newEventWith(
            vm, "flash.events::MouseEvent", type,
            {Value(local.x / kTwips), Value(local.y / kTwips),
             related != nullptr ? Value(related) : Value::null(), Value(isDown(kControl)),
             Value(isDown(kAlternate)), Value(isDown(kShift)),
             Value(m_player.stage().pointer().isDown() || type.ends_with("MouseDown")), Value(delta)},
            bubbles);
        if (type == "mouseMove") {
            event->setSlot(kMovementX, Value(m_movement.x / kTwips));
            event->setSlot(kMovementX + 1, Value(m_movement.y / kTwips));
        }
        hearer.dispatch(vm, *event);
    };
    vm.guarded([&] { tell(target); });
    // What shows a part of a text may have somebody who hears of it as well.
    Root<DispatcherObject> mirror(vm.heap(), bubbles ? textengine::mirrorAt(target, local) : nullptr);
    if (mirror) vm.guarded([&] { tell(*mirror); });
}

void Input::showButton(DisplayObject* object, DisplayObject::State state)
{
    if (object != nullptr && isKind(*object, kButton))
        m_player.vm().guarded([&] { m_player.showButtonState(*object, state); });
}

/// Leaving is told before coming: of what is over the pointer itself, and of all that hold the one thing and
/// not the other.
void Input::roll(DisplayObject* to)
{
    Heap& heap = m_player.vm().heap();
    Root<DisplayObject> before(heap, m_over.get()), now(heap, to);
    if (before.get() == now.get()) return;
    m_over = now.get();
    const auto chain = [&](DisplayObject* from, DisplayObject* other, RootedList<DisplayObject*>& list) {
        for (; from != nullptr && !from->isStage; from = from->parent) {
            if (other == nullptr || !from->contains(*other)) list.push_back(from);
        }
    };
    if (before) {
        showButton(before.get(), DisplayObject::State::Up);
        RootedList<DisplayObject*> gone(heap);
        chain(before.get(), now.get(), gone);
        fireMouse("mouseOut", *before, now.get());
        for (std::size_t i = 0; i < gone.size(); ++i) fireMouse("rollOut", *gone[i], now.get(), false);
    }
    if (now) {
        const bool isHeld = m_player.stage().pointer().isDown();
        showButton(now.get(), isHeld && m_pressed[0].get() == now.get() ? DisplayObject::State::Down
                                                                        : DisplayObject::State::Over);
        RootedList<DisplayObject*> come(heap);
        chain(now.get(), before.get(), come);
        for (std::size_t i = 0; i < come.size(); ++i) fireMouse("rollOver", *come[i], before.get(), false);
        fireMouse("mouseOver", *now, before.get());
    }
}

void Input::chooseCursor()
{
    DisplayObject* over = m_over.get();
    stage::Cursor cursor = stage::Cursor::Arrow;
    if (m_cursor) {
        cursor = *m_cursor;
    } else if (over != nullptr) {
        m_player.vm().guarded([&] {
            const swf::Point point = m_player.stage().pointer().position();
            DisplayObject* link = linkOf(over, point);
            if (stage::TextField* field = fieldOf(link != nullptr ? link : over))
                cursor = field->cursorAt(point);
            else if (isKind(*over, kButton))
                cursor = flag(*over, kButton, "enabled") && flag(*over, kButton, "useHandCursor")
                             ? stage::Cursor::Hand
                             : stage::Cursor::Arrow;
            else if (isKind(*over, kSprite) && flag(*over, kSprite, "buttonMode") &&
                     flag(*over, kSprite, "useHandCursor"))
                cursor = stage::Cursor::Hand;
        });
    }
    m_player.stage().pointer().setCursor(cursor);
}

void Input::moved()
{
    stage::Pointer& pointer = m_player.stage().pointer();
    const swf::Point before = std::exchange(m_movedTo, pointer.position());
    m_movement = {m_movedTo.x - before.x, m_movedTo.y - before.y};
    DisplayObject* target = targetAt(pointer.position());
    if (target == nullptr) return;
    Root<DisplayObject> keep(m_player.vm().heap(), target);
    roll(target->isStage ? nullptr : target);
    if (stage::TextField* field = fieldOf(m_pressed[0].get());
        field != nullptr && pointer.isDown() && !m_hasLink)
        field->drag(pointer.position());
    fireMouse("mouseMove", *target);
    chooseCursor();
}

void Input::pressed(stage::MouseButton button, int clicks)
{
    const swf::Point point = m_player.stage().pointer().position();
    DisplayObject* target = targetAt(point);
    if (target == nullptr) return;
    Root<DisplayObject> keep(m_player.vm().heap(), target);
    roll(target->isStage ? nullptr : target);
    const auto index = static_cast<std::size_t>(button);
    m_pressed[index] = target;
    if (button == stage::MouseButton::Left) {
        m_clicks = clicks;
        m_hasLink = false;
        focusByMouse(*target);
        showButton(target, DisplayObject::State::Down);
        if (stage::TextField* field = fieldOf(linkOf(target, point))) {
            const stage::TextFormat* link = field->linkAt(point);
            m_hasLink = true;
            m_link = link->url;
            m_linkTarget = link->target;
        } else if (stage::TextField* pressed = fieldOf(target)) {
            pressed->press(point, clicks);
        }
    }
    fireMouse(kButtonNames[index].down, *target);
}

void Input::released(stage::MouseButton button)
{
    Heap& heap = m_player.vm().heap();
    const swf::Point point = m_player.stage().pointer().position();
    DisplayObject* target = targetAt(point);
    if (target == nullptr) return;
    const auto index = static_cast<std::size_t>(button);
    Root<DisplayObject> keep(heap, target), pressed(heap, m_pressed[index].get());
    m_pressed[index] = nullptr;
    const bool isLeft = button == stage::MouseButton::Left;
    if (isLeft && pressed.get() == target) showButton(target, DisplayObject::State::Over);
    fireMouse(kButtonNames[index].up, *target);
    if (pressed.get() != target) {
        if (isLeft && pressed && !pressed->isStage) {
            showButton(pressed.get(), DisplayObject::State::Up);
            fireMouse("releaseOutside", *pressed);
        }
        return;
    }
    const bool isDouble = isLeft && m_clicks == 2 && !target->isStage && isKind(*target, kInteractive) &&
                          flag(*target, kInteractive, "doubleClickEnabled");
    fireMouse(isDouble ? "doubleClick" : kButtonNames[index].click, *target);
    if (!isLeft || !m_hasLink) return;
    m_hasLink = false;
    const Root<DisplayObject> text(heap, linkOf(target, point));
    stage::TextField* field = fieldOf(text.get());
    const stage::TextFormat* link = field != nullptr ? field->linkAt(point) : nullptr;
    if (link == nullptr || link->url != m_link) return;
    constexpr std::u16string_view kEvent = u"event:";
    Vm& vm = m_player.vm();
    if (m_link.starts_with(kEvent)) {
        vm.guarded([&] {
            fireWith(vm, *text, "flash.events::TextEvent", "link",
                     {Value(vm.string(m_link.substr(kEvent.size())))}, true);
        });
    } else {
        stage::Stage& stage = m_player.stage();
        stage.queue().addRequest([&host = stage.services().host, url = toUtf8(m_link),
                                  window = toUtf8(m_linkTarget)] { host.openUrl(url, window); });
    }
}

void Input::wheel(int lines)
{
    DisplayObject* target = targetAt(m_player.stage().pointer().position());
    if (target == nullptr) return;
    Root<DisplayObject> keep(m_player.vm().heap(), target);
    fireMouse("mouseWheel", *target, nullptr, true, lines);
    if (stage::TextField* field = fieldOf(textOf(target))) field->wheel(lines);
}

void Input::left()
{
    roll(nullptr);
    if (DisplayObject* stage = m_player.stageObject())
        m_player.vm().guarded([&] { fire(m_player.vm(), *stage, "mouseLeave"); });
}

} // namespace flash::avm2
