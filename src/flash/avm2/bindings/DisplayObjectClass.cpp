#include "flash/avm2/bindings/Display.h"

#include "flash/avm2/bindings/Conversions.h"
#include "flash/avm2/bindings/DisplayEffects.h"
#include "flash/avm2/bindings/DisplaySpace.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/bindings/Player.h"
#include "flash/avm2/bindings/Transform.h"
#include "flash/stage/Space.h"

#include <algorithm>
#include <cmath>
#include <limits>

// Place and look of what is on the display list.
namespace flash::avm2
{

using Kind = NativeMember::Kind;

namespace
{

constexpr double kTwips = swf::kTwipsPerPixel;
DisplayObject& self(Call& call) { return displaySelf(call); }

double finite(Call& call)
{
    const double value = call.vm.toNumber(call.arg(0));
    return std::isnan(value) ? 0 : value;
}

// ---- place ----
Value x(Call& call) { return self(call).node().x(); }
Value y(Call& call) { return self(call).node().y(); }
/// Places are kept in whole twips.
template <bool isX>
Value setPlace(Call& call)
{
    const double twips = std::clamp(std::trunc(finite(call) * kTwips), -2147483648.0, 2147483647.0);
    auto& object = self(call);
    object.noteTransformed();
    if (object.node().spacePlace() != nullptr) {
        space::moveTo(object, isX ? 0 : 1, twips / kTwips);
        return {};
    }
    if (object.node().kind() == stage::NodeKind::TextField) {
        isX ? object.node().setX(twips / kTwips) : object.node().setY(twips / kTwips);
        return {};
    }
    swf::Matrix matrix = object.node().matrix();
    (isX ? matrix.tx : matrix.ty) = twips;
    object.node().setMatrixOnly(matrix);
    return {};
}
Value scaleX(Call& call) { return self(call).node().scaleX() / 100; }
Value scaleY(Call& call) { return self(call).node().scaleY() / 100; }
Value rotation(Call& call) { return self(call).node().rotation(); }
template <void (stage::Node::*set)(double)>
Value setScale(Call& call)
{
    const double value = finite(call);
    (self(call).node().*set)(value * 100);
    space::keepScale(self(call));
    self(call).noteTransformed();
    return {};
}
Value setRotation(Call& call)
{
    // What is no angle is kept as one, and turns nothing.
    const double value = call.vm.toNumber(call.arg(0));
    if (self(call).node().spacePlace() != nullptr) return space::setTurn<2>(call);
    self(call).node().setRotation(std::isfinite(value) ? value : std::numeric_limits<double>::infinity());
    self(call).noteTransformed();
    return {};
}
Value width(Call& call) { return self(call).node().width(); }
Value height(Call& call) { return self(call).node().height(); }
template <void (stage::Node::*set)(double)>
Value setSize(Call& call)
{
    const double value = call.vm.toNumber(call.arg(0));
    if (!(value >= 0)) return {};
    (self(call).node().*set)(value);
    space::keepScale(self(call));
    self(call).noteTransformed();
    return {};
}
Value alpha(Call& call) { return self(call).node().alpha() / 100; }
Value setAlpha(Call& call)
{
    auto& object = self(call);
    constexpr double kOne = 256;
    swf::ColorTransform color = object.node().color();
    color.alphaMul =
        static_cast<std::int16_t>(std::clamp(std::trunc(finite(call) * kOne), -32768.0, 32767.0));
    object.node().setColor(color);
    object.noteTransformed();
    return {};
}
Value visible(Call& call) { return self(call).node().isVisible(); }
Value setVisible(Call& call)
{
    self(call).node().setVisible(call.vm.toBoolean(call.arg(0)));
    return {};
}

// ---- the tree ----
/// What a button shows has none.
Value parent(Call& call) { return self(call).isInButton() ? Value::null() : Value(self(call).parent); }
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

/// From what it shows, as it has scrolled that, to the stage.
/// @param seenAt where on the stage it is to be right for what has left the plane
swf::Matrix spaceOf(DisplayObject& object, const swf::Point& seenAt)
{
    swf::Matrix matrix = object.node().toStageAt(seenAt);
    if (const auto& rect = object.node().scrollRect()) {
        matrix = matrix *
                 swf::Matrix{1, 0, 0, 1, -static_cast<double>(rect->xMin), -static_cast<double>(rect->yMin)};
    }
    return matrix;
}
swf::Point toLocal(DisplayObject& object, swf::Point stagePoint)
{
    const swf::Matrix toStage = spaceOf(object, stagePoint);
    return toStage.isInvertible() ? toStage.inverted().map(stagePoint) : swf::Point{};
}
template <bool isX>
Value mouse(Call& call)
{
    const swf::Point at = toLocal(self(call), Player::of(call.vm).stage().pointer().position());
    return std::trunc(isX ? at.x : at.y) / kTwips;
}
/// Results are whole twips.
template <bool toGlobal>
Value convertPoint(Call& call)
{
    const swf::Point given = pointOf(objectArg(call, 0, "flash.geom::Point", "point"));
    const swf::Point twips{std::round(given.x * kTwips), std::round(given.y * kTwips)};
    auto& object = self(call);
    if (toGlobal && object.node().isInSpace()) return space::seenFrom(call.vm, object, given);
    if (const swf::Matrix space = spaceOf(object, twips); !toGlobal && space.isInvertible()) {
        // The way back moves by whole twips, too.
        const swf::Matrix back = space.inverted();
        const auto shifted = [](double turned, double moved) {
            return (std::round(turned) + std::round(moved)) / kTwips;
        };
        return newPoint(call.vm, shifted(back.a * twips.x + back.c * twips.y, back.tx),
                        shifted(back.b * twips.x + back.d * twips.y, back.ty));
    }
    const swf::Point at = toGlobal ? spaceOf(object, twips).map(twips) : toLocal(object, twips);
    constexpr double kSlack = 1e-6; // of a twip, for what products leave
    const auto cut = [](double value) { return std::trunc(value + std::copysign(kSlack, value)) / kTwips; };
    return newPoint(call.vm, cut(at.x), cut(at.y));
}
template <stage::Node::Extent extent>
Value getBounds(Call& call)
{
    auto& object = self(call);
    auto* target = as<DisplayObject>(Value(optionalArg(call, 0, "flash.display::DisplayObject")));
    if (target == nullptr) target = &object;
    swf::Matrix through;
    if (target != &object && (object.node().isInSpace() || target->node().isInSpace()))
        return newRectangle(call.vm, space::boundsIn(object, *target, extent));
    if (target != &object) {
        const swf::Matrix toStage = target->node().toStage();
        if (!toStage.isInvertible()) return newRectangle(call.vm, 0, 0, 0, 0);
        through = toStage.inverted() * object.node().toStage();
    }
    swf::Rect bounds = object.node().boundsThrough(through, extent);
    // What has nothing to show lies as far away as it can.
    constexpr double kNowhere = 6710886.35;
    if (bounds.isEmpty() && target != &object && !object.node().bounds(extent).isEmpty()) return {};
    if (bounds.isEmpty() && object.isStage) return newRectangle(call.vm, kNowhere, kNowhere, 0, 0);
    return newRectangle(call.vm, bounds);
}
Value hitTestObject(Call& call)
{
    auto& other = displayArg(call, 0, "obj");
    auto& object = self(call);
    const swf::Rect a = space::boundsOnStage(object), b = space::boundsOnStage(other);
    if (a.isEmpty() || b.isEmpty()) return false;
    return a.xMin <= b.xMax && b.xMin <= a.xMax && a.yMin <= b.yMax && b.yMin <= a.yMax;
}
/// A movie that moves its main timeline moves the points of its hit tests along.
swf::Point onStage(const DisplayObject& object, swf::Point ofRoot)
{
    const DisplayObject* at = &object;
    while (at != nullptr && !at->isRoot) at = at->parent;
    return at != nullptr ? at->node().toStage().map(ofRoot) : ofRoot;
}
Value hitTestPoint(Call& call)
{
    auto& object = self(call);
    const double x = call.vm.toNumber(call.arg(0)), y = call.vm.toNumber(call.arg(1));
    const swf::Point at = onStage(object, {x * kTwips, y * kTwips});
    // The shape of what is not on the stage is hit by nothing.
    if (call.vm.toBoolean(call.arg(2)))
        return Player::of(call.vm).isOnStage(object) && object.node().hitsShape(at);
    const swf::Rect box = space::boundsOnStage(object);
    return !box.isEmpty() && at.x >= box.xMin && at.x < box.xMax && at.y >= box.yMin && at.y < box.yMax;
}

// ---- look ----
Value mask(Call& call)
{
    auto& object = self(call);
    return object.mask != nullptr && object.node().mask() == &object.mask->node() ? Value(object.mask)
                                                                                  : Value::null();
}
Value setMask(Call& call)
{
    auto& object = self(call);
    auto* mask = as<DisplayObject>(Value(optionalArg(call, 0, "flash.display::DisplayObject")));
    object.mask = mask;
    object.node().setMask(mask != nullptr && mask != &object ? &mask->node() : nullptr);
    return {};
}
Value cacheAsBitmap(Call& call)
{
    return self(call).node().cacheAsBitmap() || !self(call).node().filters().empty();
}
Value setCacheAsBitmap(Call& call)
{
    self(call).node().setCacheAsBitmap(call.vm.toBoolean(call.arg(0)));
    return {};
}
Value opaqueBackground(Call& call)
{
    const auto& color = self(call).node().opaqueBackground();
    if (!color) return Value::null();
    return static_cast<double>(color->r << 16U | color->g << 8U | color->b);
}
Value setOpaqueBackground(Call& call)
{
    std::optional<swf::Rgba> color;
    if (!call.arg(0).isNullish()) {
        const std::uint32_t rgb = call.vm.toUint(call.arg(0));
        color = swf::Rgba{static_cast<std::uint8_t>(rgb >> 16U), static_cast<std::uint8_t>(rgb >> 8U),
                          static_cast<std::uint8_t>(rgb), 255};
    }
    self(call).node().setOpaqueBackground(color);
    return {};
}
Value scrollRect(Call& call)
{
    const auto& rect = self(call).scrollRect;
    return rect ? newRectangle(call.vm, *rect) : Value::null();
}
/// Counts from the next drawing on.
Value setScrollRect(Call& call)
{
    auto& object = self(call);
    Object* rect = optionalArg(call, 0, "flash.geom::Rectangle");
    object.scrollRect.reset();
    if (rect != nullptr) {
        // Its sides lie on whole pixels.
        const auto side = [](double pixels) {
            constexpr double kFar = 1 << 24;
            return static_cast<std::int32_t>(
                std::nearbyint(std::clamp(std::isnan(pixels) ? 0 : pixels, -kFar, kFar)) * kTwips);
        };
        const double left = slotNumber(*rect, 0), top = slotNumber(*rect, 1);
        object.scrollRect = swf::Rect{side(left), side(left + slotNumber(*rect, 2)), side(top),
                                      side(top + slotNumber(*rect, 3))};
    }
    Player& player = Player::of(call.vm);
    const std::weak_ptr<stage::Node> node = object.nodePtr();
    player.later([node, wanted = object.scrollRect] {
        if (const auto shown = node.lock()) shown->setScrollRect(wanted);
    });
    return {};
}
Value scale9Grid(Call& call)
{
    const auto& grid = self(call).node().scalingGrid();
    return grid ? newRectangle(call.vm, *grid) : Value::null();
}
Value setScale9Grid(Call& call)
{
    auto& object = self(call);
    Object* rect = optionalArg(call, 0, "flash.geom::Rectangle");
    std::optional<swf::Rect> grid;
    if (rect != nullptr) {
        grid = twipsOf(*rect);
        const swf::Rect bounds = object.node().bounds();
        if (grid->isEmpty() || grid->xMin < bounds.xMin || grid->xMax > bounds.xMax ||
            grid->yMin < bounds.yMin || grid->yMax > bounds.yMax)
            call.vm.throwError(ErrorClass::Argument, 2004, "One of the parameters is invalid.");
    }
    object.node().setScalingGrid(grid);
    return {};
}
Value transform(Call& call) { return newTransform(call.vm, self(call)); }
Value setTransform(Call& call)
{
    auto* other = as<TransformObject>(&objectArg(call, 0, "flash.geom::Transform", "transform"));
    if (other == nullptr || other->target == nullptr) return {};
    auto& object = self(call);
    object.node().clearSpacePlace();
    object.node().setMatrix(other->target->node().matrix());
    if (const stage::SpacePlace* place = other->target->node().spacePlace())
        object.node().setSpacePlace(*place);
    object.node().setColor(other->target->node().color());
    object.noteTransformed();
    return {};
}

Value addListener(Call& call)
{
    auto& object = self(call);
    const auto type = call.vm.text(call.arg(0));
    if (type == u"enterFrame" || type == u"exitFrame" || type == u"frameConstructed" || type == u"render")
        Player::of(call.vm).noteListening(object, type);
    const Binding* general = call.vm.nativeClass("flash.events::EventDispatcher")
                                 ->instances->find(call.vm.publicName("addEventListener"));
    return call.vm.invoke(*call.vm.nativeClass("flash.events::EventDispatcher")
                               ->instances->methods[static_cast<std::size_t>(general->id)],
                          call.self, call.rest(0));
}

Value loaderInfo(Call& call)
{
    DisplayObject* at = &self(call);
    if (!at->loaderInfo.isUndefined()) return at->loaderInfo;
    for (; at != nullptr; at = at->parent) {
        if (at->isRoot) return at->loaderInfo.isUndefined() ? Value::null() : at->loaderInfo;
    }
    return Value::null();
}
constexpr NativeMember kDisplay[] = {
    {"addEventListener", Kind::Method, &addListener, 2, 5},
    {"x", Kind::Getter, &x, 0, 0, &setPlace<true>, "Number"},
    {"y", Kind::Getter, &y, 0, 0, &setPlace<false>, "Number"},
    {"scaleX", Kind::Getter, &scaleX, 0, 0, &setScale<&stage::Node::setScaleX>, "Number"},
    {"scaleY", Kind::Getter, &scaleY, 0, 0, &setScale<&stage::Node::setScaleY>, "Number"},
    {"rotation", Kind::Getter, &rotation, 0, 0, &setRotation, "Number"},
    {"width", Kind::Getter, &width, 0, 0, &setSize<&stage::Node::setWidth>, "Number"},
    {"height", Kind::Getter, &height, 0, 0, &setSize<&stage::Node::setHeight>, "Number"},
    {"alpha", Kind::Getter, &alpha, 0, 0, &setAlpha, "Number"},
    {"visible", Kind::Getter, &visible, 0, 0, &setVisible, "Boolean"},
    {"parent", Kind::Getter, &parent, 0, 0, nullptr, "flash.display::DisplayObjectContainer"},
    {"root", Kind::Getter, &rootOf, 0, 0, nullptr, "flash.display::DisplayObject"},
    {"stage", Kind::Getter, &stageOf, 0, 0, nullptr, "flash.display::Stage"},
    {"name", Kind::Getter, &name, 0, 0, &setName, "String"},
    {"mouseX", Kind::Getter, &mouse<true>, 0, 0, nullptr, "Number"},
    {"mouseY", Kind::Getter, &mouse<false>, 0, 0, nullptr, "Number"},
    {"loaderInfo", Kind::Getter, &loaderInfo, 0, 0, nullptr, "flash.display::LoaderInfo"},
    {"mask", Kind::Getter, &mask, 0, 0, &setMask, "flash.display::DisplayObject"},
    {"blendMode", Kind::Getter, &effects::blendMode, 0, 0, &effects::setBlendMode, "String"},
    {"blendShader", Kind::Getter, nullptr, 0, 0, &effects::setBlendShader, "flash.display::Shader"},
    {"filters", Kind::Getter, &effects::filters, 0, 0, &effects::setFilters, "Array"},
    {"cacheAsBitmap", Kind::Getter, &cacheAsBitmap, 0, 0, &setCacheAsBitmap, "Boolean"},
    {"opaqueBackground", Kind::Getter, &opaqueBackground, 0, 0, &setOpaqueBackground, "Object"},
    {"scrollRect", Kind::Getter, &scrollRect, 0, 0, &setScrollRect, "flash.geom::Rectangle"},
    {"scale9Grid", Kind::Getter, &scale9Grid, 0, 0, &setScale9Grid, "flash.geom::Rectangle"},
    {"transform", Kind::Getter, &transform, 0, 0, &setTransform, "flash.geom::Transform"},
    {"getBounds", Kind::Method, &getBounds<stage::Node::Extent::WithStrokes>, 1, 1},
    {"getRect", Kind::Method, &getBounds<stage::Node::Extent::WithoutStrokes>, 1, 1},
    {"globalToLocal", Kind::Method, &convertPoint<false>, 1, 1},
    {"localToGlobal", Kind::Method, &convertPoint<true>, 1, 1},
    {"z", Kind::Getter, &space::depth, 0, 0, &space::setDepth, "Number"},
    {"scaleZ", Kind::Getter, &space::depthScale, 0, 0, &space::setDepthScale, "Number"},
    {"rotationX", Kind::Getter, &space::turn<0>, 0, 0, &space::setTurn<0>, "Number"},
    {"rotationY", Kind::Getter, &space::turn<1>, 0, 0, &space::setTurn<1>, "Number"},
    {"rotationZ", Kind::Getter, &rotation, 0, 0, &space::setTurn<2>, "Number"},
    {"globalToLocal3D", Kind::Method, &space::globalToLocal, 1, 1, nullptr, "flash.geom::Vector3D"},
    {"local3DToGlobal", Kind::Method, &space::localToGlobal, 1, 1, nullptr, "flash.geom::Point"},
    {"hitTestObject", Kind::Method, &hitTestObject, 1, 1},
    {"hitTestPoint", Kind::Method, &hitTestPoint, 2, 3},
};
/// What nothing here acts on.
constexpr std::string_view kDisplaySlots = "accessibilityProperties:* metaData:Object";
constexpr NativeClass kClasses[] = {
    {.package = "flash.display",
     .name = "DisplayObject",
     .base = "flash.events::EventDispatcher",
     .flags = NativeClass::Sealed | NativeClass::Abstract,
     .constructor = &refuseDisplayConstruction,
     .minArguments = 0,
     .maxArguments = 0,
     .allocate = &allocateDisplay,
     .members = kDisplay,
     .interfaces = "flash.display::IBitmapDrawable",
     .slots = kDisplaySlots},
};

} // namespace

std::span<const NativeClass> displayClasses() { return kClasses; }

} // namespace flash::avm2
