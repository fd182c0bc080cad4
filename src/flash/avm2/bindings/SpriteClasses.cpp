#include "flash/avm2/bindings/Conversions.h"
#include "flash/avm2/bindings/Display.h"
#include "flash/avm2/bindings/Graphics.h"
#include "flash/avm2/bindings/Interactive.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/bindings/Player.h"
#include "flash/stage/Graphics.h"

// What can be drawn on, and what can be pointed at.
namespace flash::avm2
{

using Kind = NativeMember::Kind;

namespace
{

DisplayObject& self(Call& call) { return displaySelf(call); }

/// What draws belongs to the object for good.
Value graphics(Call& call)
{
    auto& object = self(call);
    if (object.graphics.isUndefined()) object.graphics = newGraphics(call.vm, object);
    return object.graphics;
}
Value hitArea(Call& call) { return Value(self(call).hitArea); }
Value setHitArea(Call& call)
{
    auto& object = self(call);
    object.hitArea = as<DisplayObject>(Value(optionalArg(call, 0, "flash.display::Sprite")));
    if (object.clip() != nullptr)
        object.clip()->setHitArea(object.hitArea != nullptr ? &object.hitArea->node() : nullptr);
    return {};
}

/// There is no touch to drag by, and no keyboard on the screen.
Value doNothing(Call&) { return {}; }
Value isFalse(Call&) { return false; }

Value staticText(Call& call)
{
    stage::Node& node = self(call).node();
    if (node.kind() != stage::NodeKind::StaticText) return Value(call.vm.common().empty.string());
    return Value(call.vm.string(std::string_view(static_cast<stage::StaticTextNode&>(node).text())));
}
constexpr NativeMember kStaticText[] = {{"text", Kind::Getter, &staticText, 0, 0, nullptr, "String"}};
constexpr NativeMember kSprite[] = {
    {"startTouchDrag", Kind::Method, &doNothing, 1, 3},
    {"stopTouchDrag", Kind::Method, &doNothing, 1, 1},
    {"graphics", Kind::Getter, &graphics},
    {"startDrag", Kind::Method, &interactive::startDrag, 0, 2},
    {"stopDrag", Kind::Method, &interactive::stopDrag, 0, 0},
    {"dropTarget", Kind::Getter, &interactive::dropTarget, 0, 0, nullptr, "flash.display::DisplayObject"},
    {"soundTransform", Kind::Getter, &interactive::ownerTransform, 0, 0, &interactive::setOwnerTransform,
     "flash.media::SoundTransform"},
    {"hitArea", Kind::Getter, &hitArea, 0, 0, &setHitArea, "flash.display::Sprite"},
};
constexpr NativeMember kInteractive[] = {
    {"tabEnabled", Kind::Getter, &interactive::tabEnabled, 0, 0, &interactive::setTabEnabled, "Boolean"},
    {"tabIndex", Kind::Getter, &interactive::tabIndex, 0, 0, &interactive::setTabIndex, "int"},
    {"requestSoftKeyboard", Kind::Method, &isFalse, 0, 0},
    {"focusRect", Kind::Getter, &interactive::focusRect, 0, 0, &interactive::setFocusRect, "Object"},
};
constexpr NativeMember kShape[] = {{"graphics", Kind::Getter, &graphics}};
constexpr std::string_view kInteractiveSlots =
    "mouseEnabled:Boolean=true doubleClickEnabled:Boolean "
    "contextMenu:* needsSoftKeyboard:Boolean softKeyboardInputAreaOfInterest:* "
    "accessibilityImplementation:*";

constexpr NativeClass kClasses[] = {
    {.package = "flash.display",
     .name = "InteractiveObject",
     .base = "flash.display::DisplayObject",
     .flags = NativeClass::Sealed | NativeClass::Abstract,
     .constructor = &refuseDisplayConstruction,
     .minArguments = 0,
     .maxArguments = 0,
     .members = kInteractive,
     .slots = kInteractiveSlots},
    {.package = "flash.display",
     .name = "Sprite",
     .base = "flash.display::DisplayObjectContainer",
     .flags = NativeClass::Sealed,
     .constructor = &constructDisplay,
     .minArguments = 0,
     .maxArguments = 0,
     .members = kSprite,
     .slots = "buttonMode:Boolean useHandCursor:Boolean=true"},
    {.package = "flash.display",
     .name = "Shape",
     .base = "flash.display::DisplayObject",
     .flags = NativeClass::Sealed,
     .constructor = &constructDisplay,
     .minArguments = 0,
     .maxArguments = 0,
     .members = kShape},
    {.package = "flash.display",
     .name = "MorphShape",
     .base = "flash.display::DisplayObject",
     .flags = NativeClass::Sealed,
     .constructor = &refuseDisplayConstruction},
    {.package = "flash.text",
     .name = "StaticText",
     .base = "flash.display::DisplayObject",
     .flags = NativeClass::Sealed,
     .constructor = &refuseDisplayConstruction,
     .members = kStaticText},
};

} // namespace

std::span<const NativeClass> spriteClasses() { return kClasses; }

} // namespace flash::avm2
