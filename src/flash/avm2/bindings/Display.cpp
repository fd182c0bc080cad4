#include "flash/avm2/bindings/Display.h"

#include "flash/avm2/bindings/Player.h"
#include "flash/avm2/classes/Library.h"

#include <algorithm>

namespace flash::avm2
{

using classes::allocateNative;
using classes::selfAs;
using Kind = NativeMember::Kind;

void DisplayObject::trace(Tracer& tracer)
{
    DispatcherObject::trace(tracer);
    tracer(parent);
    for (const DisplayObject* child : children) tracer(child);
    tracer(name);
    for (const auto& [frame, function] : frameScripts) tracer(function);
}

DisplayObject& displaySelf(Call& call) { return selfAs<DisplayObject>(call, "flash.display.DisplayObject"); }

namespace
{

DisplayObject& self(Call& call) { return displaySelf(call); }

DisplayObject& childArg(Call& call, std::uint32_t i, const char* what = "child")
{
    auto* child = as<DisplayObject>(call.arg(i));
    if (child == nullptr) {
        if (!call.arg(i).isNullish())
            call.vm.coerce(call.arg(i), call.vm.nativeClass("flash.display::DisplayObject")->instances);
        call.vm.throwError(ErrorClass::Type, 2007, std::string("Parameter ") + what + " must be non-null.");
    }
    return *child;
}

/// What timelines have placed within is made when the constructors of the player run, before those of scripts
/// go on.
Value construct(Call& call)
{
    auto& made = self(call);
    Player& player = Player::of(call.vm);
    made.isConstructed = true;
    if (made.name.isNull() && !made.isStage) made.name = Value(call.vm.string(player.nextInstanceName()));
    if (made.characterId == 0 && !made.isRoot) {
        stage::MoviePtr movie;
        if (const std::uint16_t id = player.characterOf(made.traits()->cls, movie))
            player.showCharacter(made, movie, id);
    }
    player.constructChildren(made);
    return {};
}

Value refuseConstruction(Call& call)
{
    if (Traits* traits = call.vm.traitsOf(call.self);
        !self(call).isConstructed && traits->ns->uri.view().starts_with(u"flash."))
        call.vm.throwError(ErrorClass::Argument, 2012,
                           std::u16string(traits->name.view()) + u"$ class cannot be instantiated.");
    return construct(call);
}

template <double DisplayObject::*field>
Value getNumber(Call& call)
{
    return self(call).*field;
}
template <double DisplayObject::*field>
Value setNumber(Call& call)
{
    const double value = call.vm.toNumber(call.arg(0));
    auto& object = self(call);
    object.*field = std::isnan(value) ? 0 : value;
    object.isTransformed = true;
    return {};
}
/// Places are kept in whole twips.
template <double DisplayObject::*field>
Value setPlace(Call& call)
{
    const double value = call.vm.toNumber(call.arg(0));
    auto& object = self(call);
    constexpr double kTwips = 20;
    object.*field =
        std::isnan(value) ? 0 : std::clamp(std::trunc(value * kTwips), -2147483648.0, 2147483647.0) / kTwips;
    object.isTransformed = true;
    return {};
}
Value setRotation(Call& call)
{
    double value = std::fmod(call.vm.toNumber(call.arg(0)), 360);
    if (value > 180) value -= 360;
    if (value < -180) value += 360;
    self(call).rotation = std::isnan(value) ? 0 : value;
    self(call).isTransformed = true;
    return {};
}
Value parent(Call& call) { return self(call).parent != nullptr ? Value(self(call).parent) : Value::null(); }
Value name(Call& call) { return self(call).name; }
Value setName(Call& call)
{
    auto& object = self(call);
    if (object.depth > 0)
        call.vm.throwError(ErrorClass::IllegalOperation, 2078,
                           "The name property of a Timeline-placed object cannot be modified.");
    if (call.arg(0).isNull()) call.vm.throwError(ErrorClass::Type, 2007, "Parameter name must be non-null.");
    object.name = Value(call.vm.toString(call.arg(0)));
    return {};
}
Value stageOf(Call& call)
{
    DisplayObject* top = self(call).top();
    return top->isStage ? Value(top) : Value::null();
}
Value rootOf(Call& call)
{
    DisplayObject* at = &self(call);
    if (at->isStage) return Value(at);
    for (; at != nullptr; at = at->parent) {
        if (at->isRoot) return Value(at);
        if (at->parent != nullptr && at->parent->isStage) return Value(at->parent);
    }
    return Value::null();
}
swf::Rect boundsOf(DisplayObject& object)
{
    const auto node = object.node.lock();
    return node != nullptr ? node->bounds() : swf::Rect{};
}
Value width(Call& call)
{
    auto& object = self(call);
    return boundsOf(object).width() / swf::kTwipsPerPixel * object.scaleX;
}
Value height(Call& call)
{
    auto& object = self(call);
    return boundsOf(object).height() / swf::kTwipsPerPixel * object.scaleY;
}
Value setWidth(Call& call)
{
    auto& object = self(call);
    const double own = boundsOf(object).width() / swf::kTwipsPerPixel;
    if (own > 0) object.scaleX = call.vm.toNumber(call.arg(0)) / own;
    object.isTransformed = true;
    return {};
}
Value setHeight(Call& call)
{
    auto& object = self(call);
    const double own = boundsOf(object).height() / swf::kTwipsPerPixel;
    if (own > 0) object.scaleY = call.vm.toNumber(call.arg(0)) / own;
    object.isTransformed = true;
    return {};
}
Value mouseX(Call& call) { return Player::of(call.vm).stage().pointer().position().x / swf::kTwipsPerPixel; }
Value mouseY(Call& call) { return Player::of(call.vm).stage().pointer().position().y / swf::kTwipsPerPixel; }
Value nothing(Call&) { return Value::null(); }
Value ignore(Call&) { return {}; }
Value asFalse(Call&) { return false; }

Value addListener(Call& call)
{
    auto& object = self(call);
    const auto type = call.vm.text(call.arg(0));
    if (type == u"enterFrame" || type == u"exitFrame" || type == u"frameConstructed" || type == u"render")
        Player::of(call.vm).noteListening(object);
    const Binding* general = call.vm.nativeClass("flash.events::EventDispatcher")
                                 ->instances->find(call.vm.publicName("addEventListener"));
    return call.vm.invoke(*call.vm.nativeClass("flash.events::EventDispatcher")
                               ->instances->methods[static_cast<std::size_t>(general->id)],
                          call.self, call.rest(0));
}

// ---- containers ----

[[noreturn]] void outOfBounds(Call& call)
{
    call.vm.throwError(ErrorClass::Range, 2006, "The supplied index is out of bounds.");
}

void checkNesting(Call& call, DisplayObject& parent, DisplayObject& child)
{
    if (&child == &parent)
        call.vm.throwError(ErrorClass::Argument, 2024, "An object cannot be added as a child of itself.");
    if (child.contains(parent))
        call.vm.throwError(
            ErrorClass::Argument, 2150,
            "An object cannot be added as a child to one of it's children (or children's children, etc.).");
    if (child.isStage)
        call.vm.throwError(ErrorClass::Argument, 2175,
                           "One or more items on the render list could not be added.");
}

void checkChild(Call& call, DisplayObject& parent, const DisplayObject& child)
{
    if (child.parent != &parent)
        call.vm.throwError(ErrorClass::Argument, 2025,
                           "The supplied DisplayObject must be a child of the caller.");
}

std::size_t indexArg(Call& call, std::uint32_t i, std::size_t size)
{
    const std::int32_t index = call.vm.toInt(call.arg(i));
    if (index < 0 || static_cast<std::size_t>(index) >= size) outOfBounds(call);
    return static_cast<std::size_t>(index);
}

Value addChild(Call& call)
{
    auto& parent = self(call);
    auto& child = childArg(call, 0);
    checkNesting(call, parent, child);
    const std::size_t size = parent.children.size();
    Player::of(call.vm).insert(parent, child, child.parent == &parent ? size - 1 : size, true);
    return Value(&child);
}
Value addChildAt(Call& call)
{
    auto& parent = self(call);
    auto& child = childArg(call, 0);
    const std::int32_t index = call.vm.toInt(call.arg(1));
    if (index < 0 || static_cast<std::size_t>(index) > parent.children.size()) outOfBounds(call);
    checkNesting(call, parent, child);
    Player::of(call.vm).insert(parent, child, static_cast<std::size_t>(index), true);
    return Value(&child);
}
Value removeChild(Call& call)
{
    auto& child = childArg(call, 0);
    checkChild(call, self(call), child);
    Player::of(call.vm).removeChild(self(call), child);
    return Value(&child);
}
Value removeChildAt(Call& call)
{
    auto& parent = self(call);
    DisplayObject* child = parent.children[indexArg(call, 0, parent.children.size())];
    Player::of(call.vm).removeChild(parent, *child);
    return Value(child);
}
Value removeChildren(Call& call)
{
    auto& parent = self(call);
    const auto size = static_cast<std::int32_t>(parent.children.size());
    const std::int32_t from = call.vm.toInt(call.arg(0));
    std::int32_t to = call.has(1) ? call.vm.toInt(call.arg(1)) : 0x7FFF'FFFF;
    if (!call.has(0) && size == 0) return {};
    if (to == 0x7FFF'FFFF) to = size - 1;
    if (from < 0 || to < 0 || from > to || from >= size || to >= size) outOfBounds(call);
    RootedList<DisplayObject*> gone(call.vm.heap(), parent.children.begin() + from,
                                    parent.children.begin() + to + 1);
    for (std::size_t i = 0; i < gone.size(); ++i) Player::of(call.vm).removeChild(parent, *gone[i]);
    return {};
}
Value contains(Call& call) { return self(call).contains(childArg(call, 0)); }
Value getChildAt(Call& call)
{
    return Value(self(call).children[indexArg(call, 0, self(call).children.size())]);
}
Value getChildByName(Call& call)
{
    if (call.arg(0).isNullish()) return Value::null();
    for (DisplayObject* child : self(call).children) {
        if (call.vm.strictEquals(child->name, call.arg(0))) return Value(child);
    }
    return Value::null();
}
Value getChildIndex(Call& call)
{
    auto& parent = self(call);
    auto& child = childArg(call, 0);
    checkChild(call, parent, child);
    return static_cast<double>(std::ranges::find(parent.children, &child) - parent.children.begin());
}
Value setChildIndex(Call& call)
{
    auto& parent = self(call);
    auto& child = childArg(call, 0);
    checkChild(call, parent, child);
    const std::size_t index = indexArg(call, 1, parent.children.size());
    std::erase(parent.children, &child);
    parent.children.insert(parent.children.begin() + static_cast<std::ptrdiff_t>(index), &child);
    return {};
}
Value swapChildren(Call& call)
{
    auto& parent = self(call);
    auto& a = childArg(call, 0, "child1");
    auto& b = childArg(call, 1, "child2");
    checkChild(call, parent, a);
    checkChild(call, parent, b);
    std::iter_swap(std::ranges::find(parent.children, &a), std::ranges::find(parent.children, &b));
    return {};
}
Value swapChildrenAt(Call& call)
{
    auto& parent = self(call);
    const std::size_t a = indexArg(call, 0, parent.children.size()),
                      b = indexArg(call, 1, parent.children.size());
    std::swap(parent.children[a], parent.children[b]);
    return {};
}
Value numChildren(Call& call) { return static_cast<double>(self(call).children.size()); }
Value stopAllClips(Call& call)
{
    RootedList<DisplayObject*> all(call.vm.heap());
    all.push_back(&self(call));
    for (std::size_t i = 0; i < all.size(); ++i) {
        all[i]->isPlaying = false;
        for (DisplayObject* child : all[i]->children) all.push_back(child);
    }
    return {};
}
/// A thing that takes every call and every property: what draws does not show yet.
Value graphics(Call& call) { return call.vm.instantiate(call.vm.nativeClass("flash.display::Graphics")); }

Value stageWidth(Call& call) { return Player::of(call.vm).stage().view().stageWidth(); }
Value stageHeight(Call& call) { return Player::of(call.vm).stage().view().stageHeight(); }
Value frameRate(Call& call) { return Player::of(call.vm).stage().frameRate(); }
Value loaderInfo(Call& call) { return call.vm.instantiate(call.vm.nativeClass("flash.display::LoaderInfo")); }
Value parameters(Call& call) { return call.vm.newObject(); }
Value url(Call& call) { return call.vm.string(std::string_view(Player::of(call.vm).stage().url())); }
Value swfVersion(Call& call) { return call.vm.version; }

constexpr NativeMember kDisplay[] = {
    {"addEventListener", Kind::Method, &addListener, 2, 5},
    {"x", Kind::Getter, &getNumber<&DisplayObject::x>, 0, 0, &setPlace<&DisplayObject::x>, "Number"},
    {"y", Kind::Getter, &getNumber<&DisplayObject::y>, 0, 0, &setPlace<&DisplayObject::y>, "Number"},
    {"scaleX", Kind::Getter, &getNumber<&DisplayObject::scaleX>, 0, 0, &setNumber<&DisplayObject::scaleX>,
     "Number"},
    {"scaleY", Kind::Getter, &getNumber<&DisplayObject::scaleY>, 0, 0, &setNumber<&DisplayObject::scaleY>,
     "Number"},
    {"rotation", Kind::Getter, &getNumber<&DisplayObject::rotation>, 0, 0, &setRotation, "Number"},
    {"width", Kind::Getter, &width, 0, 0, &setWidth, "Number"},
    {"height", Kind::Getter, &height, 0, 0, &setHeight, "Number"},
    {"parent", Kind::Getter, &parent},
    {"root", Kind::Getter, &rootOf},
    {"stage", Kind::Getter, &stageOf},
    {"name", Kind::Getter, &name, 0, 0, &setName, "String"},
    {"mouseX", Kind::Getter, &mouseX, 0, 0, nullptr, "Number"},
    {"mouseY", Kind::Getter, &mouseY, 0, 0, nullptr, "Number"},
    {"loaderInfo", Kind::Getter, &loaderInfo},
};
constexpr NativeMember kContainer[] = {
    {"addChild", Kind::Method, &addChild, 1, 1},
    {"addChildAt", Kind::Method, &addChildAt, 2, 2},
    {"removeChild", Kind::Method, &removeChild, 1, 1},
    {"removeChildAt", Kind::Method, &removeChildAt, 1, 1},
    {"removeChildren", Kind::Method, &removeChildren, 0, 2},
    {"contains", Kind::Method, &contains, 1, 1},
    {"getChildAt", Kind::Method, &getChildAt, 1, 1},
    {"getChildByName", Kind::Method, &getChildByName, 1, 1},
    {"getChildIndex", Kind::Method, &getChildIndex, 1, 1},
    {"setChildIndex", Kind::Method, &setChildIndex, 2, 2},
    {"swapChildren", Kind::Method, &swapChildren, 2, 2},
    {"swapChildrenAt", Kind::Method, &swapChildrenAt, 2, 2},
    {"stopAllMovieClips", Kind::Method, &stopAllClips, 0, 0},
    {"areInaccessibleObjectsUnderPoint", Kind::Method, &asFalse, 1, 1},
    {"numChildren", Kind::Getter, &numChildren, 0, 0, nullptr, "int"},
};
constexpr NativeMember kSprite[] = {
    {"graphics", Kind::Getter, &graphics},
    {"startDrag", Kind::Method, &ignore, 0, 2},
    {"stopDrag", Kind::Method, &ignore, 0, 0},
    {"dropTarget", Kind::Getter, &nothing},
};
constexpr NativeMember kShape[] = {{"graphics", Kind::Getter, &graphics}};
constexpr NativeMember kStage[] = {
    {"stageWidth", Kind::Getter, &stageWidth, 0, 0, &ignore},
    {"stageHeight", Kind::Getter, &stageHeight, 0, 0, &ignore},
    {"frameRate", Kind::Getter, &frameRate, 0, 0, &ignore},
    {"invalidate", Kind::Method, &ignore, 0, 0},
};
constexpr NativeMember kLoaderInfo[] = {
    {"parameters", Kind::Getter, &parameters},
    {"url", Kind::Getter, &url},
    {"loaderURL", Kind::Getter, &url},
    {"swfVersion", Kind::Getter, &swfVersion},
};
constexpr NativeMember kGraphics[] = {
    {"clear", Kind::Method, &ignore},           {"beginFill", Kind::Method, &ignore},
    {"endFill", Kind::Method, &ignore},         {"lineStyle", Kind::Method, &ignore},
    {"moveTo", Kind::Method, &ignore},          {"lineTo", Kind::Method, &ignore},
    {"curveTo", Kind::Method, &ignore},         {"drawRect", Kind::Method, &ignore},
    {"drawCircle", Kind::Method, &ignore},      {"drawEllipse", Kind::Method, &ignore},
    {"drawRoundRect", Kind::Method, &ignore},   {"beginGradientFill", Kind::Method, &ignore},
    {"beginBitmapFill", Kind::Method, &ignore},
};

constexpr std::string_view kDisplaySlots =
    "alpha:Number=1 visible:Boolean=true mask:* blendMode:String=normal filters:* cacheAsBitmap:Boolean "
    "scrollRect:* opaqueBackground:* "
    "scale9Grid:* accessibilityProperties:* transform:*";
constexpr std::string_view kInteractiveSlots = "mouseEnabled:Boolean=true doubleClickEnabled:Boolean "
                                               "tabEnabled:Boolean tabIndex:int=-1 focusRect:* contextMenu:*";

constexpr NativeClass kClasses[] = {
    {.package = "flash.display",
     .name = "DisplayObject",
     .base = "flash.events::EventDispatcher",
     .flags = NativeClass::Sealed | NativeClass::Abstract,
     .constructor = &refuseConstruction,
     .minArguments = 0,
     .maxArguments = 0,
     .allocate = &allocateNative<DisplayObject>,
     .members = kDisplay,
     .slots = kDisplaySlots},
    {.package = "flash.display",
     .name = "InteractiveObject",
     .base = "flash.display::DisplayObject",
     .flags = NativeClass::Sealed | NativeClass::Abstract,
     .constructor = &refuseConstruction,
     .minArguments = 0,
     .maxArguments = 0,
     .slots = kInteractiveSlots},
    {.package = "flash.display",
     .name = "DisplayObjectContainer",
     .base = "flash.display::InteractiveObject",
     .flags = NativeClass::Sealed | NativeClass::Abstract,
     .constructor = &refuseConstruction,
     .minArguments = 0,
     .maxArguments = 0,
     .members = kContainer,
     .slots = "mouseChildren:Boolean=true tabChildren:Boolean=true"},
    {.package = "flash.display",
     .name = "Sprite",
     .base = "flash.display::DisplayObjectContainer",
     .flags = NativeClass::Sealed,
     .constructor = &construct,
     .minArguments = 0,
     .maxArguments = 0,
     .members = kSprite,
     .slots = "buttonMode:Boolean hitArea:* useHandCursor:Boolean=true soundTransform:*"},
    {.package = "flash.display",
     .name = "Shape",
     .base = "flash.display::DisplayObject",
     .flags = NativeClass::Sealed,
     .constructor = &construct,
     .minArguments = 0,
     .maxArguments = 0,
     .members = kShape},
    {.package = "flash.display",
     .name = "MorphShape",
     .base = "flash.display::DisplayObject",
     .flags = NativeClass::Sealed,
     .constructor = &refuseConstruction},
    {.package = "flash.display",
     .name = "Bitmap",
     .base = "flash.display::DisplayObject",
     .flags = NativeClass::Sealed,
     .constructor = &construct,
     .minArguments = 0,
     .maxArguments = 3,
     .slots = "bitmapData:* pixelSnapping:String=auto smoothing:Boolean"},
    {.package = "flash.display",
     .name = "SimpleButton",
     .base = "flash.display::InteractiveObject",
     .flags = NativeClass::Sealed,
     .constructor = &construct,
     .minArguments = 0,
     .maxArguments = 4,
     .slots = "upState:* overState:* downState:* hitTestState:* enabled:Boolean=true "
              "useHandCursor:Boolean=true trackAsMenu:Boolean soundTransform:*"},
    {.package = "flash.display",
     .name = "Loader",
     .base = "flash.display::DisplayObjectContainer",
     .flags = NativeClass::Sealed,
     .constructor = &construct,
     .minArguments = 0,
     .maxArguments = 0,
     .slots = "content:*"},
    {.package = "flash.text",
     .name = "StaticText",
     .base = "flash.display::DisplayObject",
     .flags = NativeClass::Sealed,
     .constructor = &refuseConstruction},
    {.package = "flash.text",
     .name = "TextField",
     .base = "flash.display::InteractiveObject",
     .flags = NativeClass::Sealed,
     .constructor = &construct,
     .minArguments = 0,
     .maxArguments = 0,
     .slots = "text:String= htmlText:String= textColor:uint multiline:Boolean wordWrap:Boolean "
              "selectable:Boolean=true border:Boolean background:Boolean "
              "autoSize:String=none type:String=dynamic defaultTextFormat:* embedFonts:Boolean maxChars:int "
              "displayAsPassword:Boolean"},
    {.package = "flash.media",
     .name = "Video",
     .base = "flash.display::DisplayObject",
     .flags = NativeClass::Sealed,
     .constructor = &construct,
     .minArguments = 0,
     .maxArguments = 2},
    {.package = "flash.display",
     .name = "Stage",
     .base = "flash.display::DisplayObjectContainer",
     .flags = NativeClass::Sealed,
     .constructor = &refuseConstruction,
     .members = kStage,
     .slots = "align:String= scaleMode:String=showAll quality:String=HIGH displayState:String=normal focus:* "
              "stageFocusRect:Boolean=true showDefaultContextMenu:Boolean=true color:uint=16777215"},
    {.package = "flash.display",
     .name = "LoaderInfo",
     .base = "flash.events::EventDispatcher",
     .flags = NativeClass::Sealed,
     .members = kLoaderInfo},
    {.package = "flash.display",
     .name = "Graphics",
     .base = {},
     .flags = NativeClass::Sealed | NativeClass::Final,
     .members = kGraphics},
};

} // namespace

std::span<const NativeClass> displayClasses() { return kClasses; }

} // namespace flash::avm2
