#include "flash/avm2/bindings/Fields.h"
#include "flash/avm2/bindings/Input.h"
#include "flash/avm2/bindings/Interactive.h"
#include "flash/avm2/bindings/Player.h"
#include "flash/avm2/bindings/Sounds.h"
#include "flash/stage/TextField.h"

#include <cmath>

// What objects of the display list say about the user's input and their sound.
namespace flash::avm2::interactive
{

namespace
{

[[noreturn]] void refuseOnStage(Call& call)
{
    call.vm.throwError(ErrorClass::IllegalOperation, 2071,
                       "The Stage class does not implement this property or method.");
}

bool isOf(Call& call, const char* cls)
{
    return displaySelf(call).traits()->isA(call.vm.nativeClass(cls)->instances);
}

} // namespace

// ---- the Tab key ----

Value tabEnabled(Call& call)
{
    DisplayObject& object = displaySelf(call);
    if (object.node().tabEnabled) return *object.node().tabEnabled;
    if (object.node().kind() == stage::NodeKind::TextField)
        return static_cast<stage::TextField&>(object.node()).isInput();
    if (isOf(call, "flash.display::SimpleButton")) return true;
    if (!isOf(call, "flash.display::Sprite")) return false;
    const Binding* mode =
        call.vm.nativeClass("flash.display::Sprite")->instances->find(call.vm.publicName("buttonMode"));
    return mode != nullptr && call.vm.toBoolean(call.vm.getBinding(call.self, *mode));
}
Value setTabEnabled(Call& call)
{
    const bool value = call.vm.toBoolean(call.arg(0));
    DisplayObject& object = displaySelf(call);
    if (object.isStage) refuseOnStage(call);
    const Value before = tabEnabled(call);
    object.node().tabEnabled = value;
    if (before.boolean() != value) fire(call.vm, object, "tabEnabledChange", true);
    return {};
}
Value tabIndex(Call& call) { return displaySelf(call).node().tabIndex.value_or(-1); }
Value setTabIndex(Call& call)
{
    const int value = call.vm.toInt(call.arg(0));
    if (displaySelf(call).isStage) refuseOnStage(call);
    if (value < -1)
        call.vm.throwError(ErrorClass::Range, 2027,
                           u"Parameter tabIndex must be a non-negative number; got " + numberText(value) +
                               u".");
    DisplayObject& object = displaySelf(call);
    const int before = object.node().tabIndex.value_or(-1);
    object.node().tabIndex = value;
    if (before != value) fire(call.vm, object, "tabIndexChange", true);
    return {};
}
Value focusRect(Call& call)
{
    const auto& rect = displaySelf(call).node().focusRect;
    return rect ? Value(*rect) : Value::null();
}
Value setFocusRect(Call& call)
{
    std::optional<bool> value;
    if (!call.arg(0).isNullish()) {
        if (!call.arg(0).isBoolean())
            call.vm.throwError(ErrorClass::Type, 2005,
                               "Parameter 0 is of the incorrect type. Should be type Boolean.");
        value = call.arg(0).boolean();
    }
    displaySelf(call).node().focusRect = value;
    return {};
}

// ---- dragging ----

Value startDrag(Call& call)
{
    DisplayObject& object = displaySelf(call);
    const bool lockCenter = call.has(0) && call.vm.toBoolean(call.arg(0));
    Object* bounds = call.has(1) ? objectArg(call, 1, "flash.geom::Rectangle") : nullptr;
    std::optional<stage::Pointer::DragLimits> limits;
    if (bounds != nullptr) {
        const auto number = [&](const char* name) {
            const double value = call.vm.toNumber(call.vm.getPublic(Value(bounds), name));
            return std::isnan(value) ? 0 : value;
        };
        const double x = number("x"), y = number("y");
        limits = stage::Pointer::DragLimits{x, y, x + number("width"), y + number("height")};
    }
    if (object.clip() == nullptr) return {};
    Player::of(call.vm).stage().pointer().startDrag(*object.clip(), lockCenter, limits);
    object.noteTransformed();
    return {};
}
Value stopDrag(Call& call)
{
    Player::of(call.vm).stage().pointer().stopDrag();
    return {};
}
Value dropTarget(Call& call)
{
    DisplayObject& object = displaySelf(call);
    stage::Pointer& pointer = Player::of(call.vm).stage().pointer();
    if (object.clip() == nullptr || pointer.lastDragged() != object.clip()) return Value::null();
    for (const stage::Node* at = pointer.dropNode(); at != nullptr; at = at->parent()) {
        if (DisplayObject* found = DisplayObject::of(at)) return Value(found);
    }
    return Value::null();
}

// ---- sound ----

Value ownerTransform(Call& call)
{
    return makeSoundTransform(call.vm,
                              Player::of(call.vm).services().sound.transform(&displaySelf(call).node()));
}
Value setOwnerTransform(Call& call)
{
    Object* given = objectArg(call, 0, "flash.media::SoundTransform");
    if (given == nullptr) throwNullParameter(call.vm, "soundTransform");
    Player::of(call.vm).services().sound.setTransform(&displaySelf(call).node(),
                                                      soundTransformOf(call.vm, Value(given)));
    return {};
}

// ---- events of the mouse ----

namespace
{

/// Where the event's place in its target is on the stage now.
swf::Point stagePoint(Call& call, const char* x = "localX", const char* y = "localY")
{
    const auto number = [&](const char* name) {
        return call.vm.toNumber(call.vm.getPublic(call.self, name));
    };
    const swf::Point local{number(x), number(y)};
    auto* event = as<EventObject>(call.self);
    auto* target = event != nullptr ? as<DisplayObject>(event->target) : nullptr;
    if (std::isnan(local.x) || std::isnan(local.y)) return local;
    if (target == nullptr) return {0, 0};
    if (target->isStage) return local;
    constexpr double kTwips = swf::kTwipsPerPixel;
    const swf::Point place = target->node().toStage().map(local.x * kTwips, local.y * kTwips);
    return {place.x / kTwips, place.y / kTwips};
}

} // namespace

Value stageX(Call& call) { return stagePoint(call).x; }
Value stageY(Call& call) { return stagePoint(call).y; }
Value tapStageX(Call& call) { return stagePoint(call, "tapLocalX", "tapLocalY").x; }
Value tapStageY(Call& call) { return stagePoint(call, "tapLocalX", "tapLocalY").y; }
/// The next drawing shows what listeners changed, as it does anyway.
Value updateAfterEvent(Call&) { return {}; }

// ---- the stage ----

Value stageTabChildren(Call&) { return true; }
/// What is said to the stage is meant for the main timeline.
Value setStageTabChildren(Call& call)
{
    const bool value = call.vm.toBoolean(call.arg(0));
    if (DisplayObject* root = Player::of(call.vm).root())
        call.vm.setPublic(Value(root), "tabChildren", Value(value));
    return {};
}

Value stageFocus(Call& call)
{
    DisplayObject* focus = Player::of(call.vm).input().focus();
    return focus != nullptr ? Value(focus) : Value::null();
}
Value setStageFocus(Call& call)
{
    auto* object = as<DisplayObject>(Value(objectArg(call, 0, "flash.display::InteractiveObject")));
    Player::of(call.vm).input().setFocus(object);
    return {};
}

} // namespace flash::avm2::interactive
