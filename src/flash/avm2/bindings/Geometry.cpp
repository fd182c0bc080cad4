#include "flash/avm2/bindings/GeometryMembers.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/classes/Library.h"

#include <algorithm>
#include <array>

namespace flash::avm2
{

using Kind = NativeMember::Kind;

namespace geometry
{

/// What classes of plain numbers are made of: their slots, in the order of the tables below.
double at(Object& object, std::uint32_t slot)
{
    return object.slot(slot).isNumber() ? object.slot(slot).number() : 0;
}

Object& selfObject(Call& call)
{
    Object* object = call.self.asObject();
    if (object == nullptr)
        call.vm.throwError(ErrorClass::Type, 1009,
                           "Cannot access a property or method of a null object reference.");
    return *object;
}

Object& objectArg(Call& call, std::uint32_t i, std::string_view cls)
{
    const Value value = call.vm.coerce(call.arg(i), call.vm.nativeClass(cls)->instances);
    if (value.isNull())
        call.vm.throwError(ErrorClass::Type, 1009,
                           "Cannot access a property or method of a null object reference.");
    return *value.object();
}

Value make(Vm& vm, std::string_view cls, std::initializer_list<double> values)
{
    Object* made = vm.instantiate(vm.nativeClass(cls));
    std::uint32_t slot = 0;
    for (const double value : values) made->setSlot(slot++, value);
    return Value(made);
}

Value assign(Call& call)
{
    Object& self = selfObject(call);
    for (std::uint32_t i = 0; i < call.count && i < self.slotCount(); ++i)
        call.vm.setSlotTyped(self, i, call.args[i]);
    return {};
}

Value shown(Call& call, std::initializer_list<const char*> names)
{
    Object& self = selfObject(call);
    std::u16string text = u"(";
    std::uint32_t slot = 0;
    for (const char* name : names) {
        if (slot > 0) text += u", ";
        text += fromUtf8(name) + u"=" + std::u16string(call.vm.text(self.slot(slot++)));
    }
    return call.vm.string(text + u")");
}

Value cloned(Call& call)
{
    Object& self = selfObject(call);
    ClassObject* cls = self.traits()->cls;
    while (cls->constructor != nullptr && cls->constructor->native == nullptr && cls->base != nullptr)
        cls = cls->base;
    Object* made = call.vm.instantiate(cls);
    for (std::uint32_t i = 0; i < made->slotCount() && i < self.slotCount(); ++i)
        made->setSlot(i, self.slot(i));
    return Value(made);
}

bool sameSlots(Object& a, Object& b, std::uint32_t count)
{
    for (std::uint32_t i = 0; i < count; ++i) {
        if (at(a, i) != at(b, i)) return false;
    }
    return true;
}

} // namespace geometry

using namespace geometry;

namespace
{

// ---- points ----

Value pointToString(Call& call) { return shown(call, {"x", "y"}); }
Value pointLength(Call& call) { return std::hypot(at(selfObject(call), 0), at(selfObject(call), 1)); }
template <int sign>
Value pointSum(Call& call)
{
    Object& self = selfObject(call);
    Object& other = objectArg(call, 0, kPoint);
    return make(call.vm, kPoint, {at(self, 0) + sign * at(other, 0), at(self, 1) + sign * at(other, 1)});
}
Value pointEquals(Call& call) { return sameSlots(selfObject(call), objectArg(call, 0, kPoint), 2); }
Value pointOffset(Call& call)
{
    Object& self = selfObject(call);
    self.setSlot(0, at(self, 0) + call.vm.toNumber(call.arg(0)));
    self.setSlot(1, at(self, 1) + call.vm.toNumber(call.arg(1)));
    return {};
}
Value pointNormalize(Call& call)
{
    Object& self = selfObject(call);
    const double length = std::hypot(at(self, 0), at(self, 1)), wanted = call.vm.toNumber(call.arg(0));
    if (length <= 0) return {};
    if (std::isnan(length)) {
        // Only what is no number itself is lost.
        return {};
    }
    self.setSlot(0, at(self, 0) * wanted / length);
    self.setSlot(1, at(self, 1) * wanted / length);
    return {};
}
Value pointDistance(Call& call)
{
    Object& a = objectArg(call, 0, kPoint);
    Object& b = objectArg(call, 1, kPoint);
    return std::hypot(at(b, 0) - at(a, 0), at(b, 1) - at(a, 1));
}
Value pointInterpolate(Call& call)
{
    Object& a = objectArg(call, 0, kPoint);
    Object& b = objectArg(call, 1, kPoint);
    const double f = call.vm.toNumber(call.arg(2));
    return make(call.vm, kPoint,
                {at(b, 0) + f * (at(a, 0) - at(b, 0)), at(b, 1) + f * (at(a, 1) - at(b, 1))});
}
Value pointPolar(Call& call)
{
    const double length = call.vm.toNumber(call.arg(0)), angle = call.vm.toNumber(call.arg(1));
    return make(call.vm, kPoint, {length * std::cos(angle), length * std::sin(angle)});
}

// ---- rectangles: x, y, width, height ----

Value rectToString(Call& call)
{
    Object& self = selfObject(call);
    return call.vm.string(u"(x=" + numberText(at(self, 0)) + u", y=" + numberText(at(self, 1)) + u", w=" +
                          numberText(at(self, 2)) + u", h=" + numberText(at(self, 3)) + u")");
}
/// left and top move an edge; right and bottom set a size.
template <int axis, bool isFar>
Value edge(Call& call)
{
    Object& self = selfObject(call);
    return at(self, axis) + (isFar ? at(self, axis + 2) : 0);
}
template <int axis, bool isFar>
Value setEdge(Call& call)
{
    Object& self = selfObject(call);
    const double value = call.vm.toNumber(call.arg(0));
    if (isFar) {
        self.setSlot(axis + 2, value - at(self, axis));
    } else {
        self.setSlot(axis + 2, at(self, axis + 2) + at(self, axis) - value);
        self.setSlot(axis, value);
    }
    return {};
}
bool isEmptyRect(Object& rect) { return at(rect, 2) <= 0 || at(rect, 3) <= 0; }
Value rectIsEmpty(Call& call) { return isEmptyRect(selfObject(call)); }
Value rectSetEmpty(Call& call)
{
    for (std::uint32_t i = 0; i < 4; ++i) selfObject(call).setSlot(i, 0);
    return {};
}
Value rectSetTo(Call& call) { return assign(call); }
bool holdsPoint(Object& rect, double x, double y)
{
    return x >= at(rect, 0) && x < at(rect, 0) + at(rect, 2) && y >= at(rect, 1) &&
           y < at(rect, 1) + at(rect, 3);
}
Value rectContains(Call& call)
{
    return holdsPoint(selfObject(call), call.vm.toNumber(call.arg(0)), call.vm.toNumber(call.arg(1)));
}
Value rectContainsPoint(Call& call)
{
    Object& point = objectArg(call, 0, kPoint);
    return holdsPoint(selfObject(call), at(point, 0), at(point, 1));
}
Value rectContainsRect(Call& call)
{
    Object& self = selfObject(call);
    Object& other = objectArg(call, 0, kRectangle);
    const double right = at(other, 0) + at(other, 2), bottom = at(other, 1) + at(other, 3);
    const double ownRight = at(self, 0) + at(self, 2), ownBottom = at(self, 1) + at(self, 3);
    return at(other, 0) >= at(self, 0) && at(other, 1) >= at(self, 1) && at(other, 0) < ownRight &&
           at(other, 1) < ownBottom && right > at(self, 0) && bottom > at(self, 1) && right <= ownRight &&
           bottom <= ownBottom;
}
Value rectEquals(Call& call) { return sameSlots(selfObject(call), objectArg(call, 0, kRectangle), 4); }
Value rectInflate(Call& call)
{
    Object& self = selfObject(call);
    const double dx = call.vm.toNumber(call.arg(0)), dy = call.vm.toNumber(call.arg(1));
    self.setSlot(0, at(self, 0) - dx);
    self.setSlot(1, at(self, 1) - dy);
    self.setSlot(2, at(self, 2) + 2 * dx);
    self.setSlot(3, at(self, 3) + 2 * dy);
    return {};
}
Value rectOffset(Call& call) { return pointOffset(call); }
Value rectOffsetPoint(Call& call)
{
    Object& self = selfObject(call);
    Object& point = objectArg(call, 0, kPoint);
    self.setSlot(0, at(self, 0) + at(point, 0));
    self.setSlot(1, at(self, 1) + at(point, 1));
    return {};
}
Value rectIntersection(Call& call)
{
    Object& self = selfObject(call);
    Object& other = objectArg(call, 0, kRectangle);
    if (isEmptyRect(self) || isEmptyRect(other)) return make(call.vm, kRectangle, {0, 0, 0, 0});
    const double left = std::max(at(self, 0), at(other, 0)), top = std::max(at(self, 1), at(other, 1));
    const double right = std::min(at(self, 0) + at(self, 2), at(other, 0) + at(other, 2)),
                 bottom = std::min(at(self, 1) + at(self, 3), at(other, 1) + at(other, 3));
    if (right <= left || bottom <= top) return make(call.vm, kRectangle, {0, 0, 0, 0});
    return make(call.vm, kRectangle, {left, top, right - left, bottom - top});
}
Value rectIntersects(Call& call)
{
    const Value common = rectIntersection(call);
    return !isEmptyRect(*common.object());
}
/// What is no number spreads.
double lower(double a, double b) { return std::isnan(a + b) ? std::nan("") : std::min(a, b); }
double upper(double a, double b) { return std::isnan(a + b) ? std::nan("") : std::max(a, b); }
Value rectUnion(Call& call)
{
    Object& self = selfObject(call);
    Object& other = objectArg(call, 0, kRectangle);
    if (isEmptyRect(self))
        return make(call.vm, kRectangle, {at(other, 0), at(other, 1), at(other, 2), at(other, 3)});
    if (isEmptyRect(other))
        return make(call.vm, kRectangle, {at(self, 0), at(self, 1), at(self, 2), at(self, 3)});
    const double left = lower(at(self, 0), at(other, 0)), top = lower(at(self, 1), at(other, 1));
    const double right = upper(at(self, 0) + at(self, 2), at(other, 0) + at(other, 2)),
                 bottom = upper(at(self, 1) + at(self, 3), at(other, 1) + at(other, 3));
    return make(call.vm, kRectangle, {left, top, right - left, bottom - top});
}
template <int first, bool isFar>
Value corner(Call& call)
{
    Object& self = selfObject(call);
    return make(
        call.vm, kPoint,
        {at(self, first) + (isFar ? at(self, 2) : 0), at(self, first + 1) + (isFar ? at(self, 3) : 0)});
}

/// Moves two edges, each to where the point's number says; the far ones stay.
Value setTopLeft(Call& call)
{
    Object& self = selfObject(call);
    Object& point = objectArg(call, 0, kPoint);
    for (std::uint32_t i = 0; i < 2; ++i) {
        self.setSlot(2 + i, at(self, 2 + i) + at(self, i) - at(point, i));
        self.setSlot(i, at(point, i));
    }
    return {};
}
Value setBottomRight(Call& call)
{
    Object& self = selfObject(call);
    Object& point = objectArg(call, 0, kPoint);
    for (std::uint32_t i = 0; i < 2; ++i) self.setSlot(2 + i, at(point, i) - at(self, i));
    return {};
}
Value setRectSize(Call& call)
{
    Object& self = selfObject(call);
    Object& point = objectArg(call, 0, kPoint);
    for (std::uint32_t i = 0; i < 2; ++i) self.setSlot(2 + i, at(point, i));
    return {};
}
Value rectInflatePoint(Call& call)
{
    Object& self = selfObject(call);
    Object& point = objectArg(call, 0, kPoint);
    for (std::uint32_t i = 0; i < 2; ++i) {
        self.setSlot(i, at(self, i) - at(point, i));
        self.setSlot(2 + i, at(self, 2 + i) + 2 * at(point, i));
    }
    return {};
}
constexpr NativeMember kPointMembers[] = {
    {"length", Kind::Getter, &pointLength, 0, 0, nullptr, "Number"},
    {"add", Kind::Method, &pointSum<1>, 1, 1},
    {"subtract", Kind::Method, &pointSum<-1>, 1, 1},
    {"clone", Kind::Method, &cloned, 0, 0},
    {"equals", Kind::Method, &pointEquals, 1, 1},
    {"offset", Kind::Method, &pointOffset, 2, 2},
    {"normalize", Kind::Method, &pointNormalize, 1, 1},
    {"setTo", Kind::Method, &assign, 2, 2},
    {"copyFrom", Kind::Method, &copyFrom<2>, 1, 1},
    {"toString", Kind::Method, &pointToString, 0, 0},
    {"distance", Kind::Static, &pointDistance, 2, 2},
    {"interpolate", Kind::Static, &pointInterpolate, 3, 3},
    {"polar", Kind::Static, &pointPolar, 2, 2},
};
constexpr NativeMember kRectangleMembers[] = {
    {"left", Kind::Getter, &edge<0, false>, 0, 0, &setEdge<0, false>},
    {"top", Kind::Getter, &edge<1, false>, 0, 0, &setEdge<1, false>},
    {"right", Kind::Getter, &edge<0, true>, 0, 0, &setEdge<0, true>},
    {"bottom", Kind::Getter, &edge<1, true>, 0, 0, &setEdge<1, true>},
    {"topLeft", Kind::Getter, &corner<0, false>, 0, 0, &setTopLeft, "flash.geom::Point"},
    {"bottomRight", Kind::Getter, &corner<0, true>, 0, 0, &setBottomRight, "flash.geom::Point"},
    {"size", Kind::Getter, &corner<2, false>, 0, 0, &setRectSize, "flash.geom::Point"},
    {"inflatePoint", Kind::Method, &rectInflatePoint, 1, 1},
    {"copyFrom", Kind::Method, &copyFrom<4>, 1, 1},
    {"isEmpty", Kind::Method, &rectIsEmpty, 0, 0},
    {"setEmpty", Kind::Method, &rectSetEmpty, 0, 0},
    {"setTo", Kind::Method, &rectSetTo, 4, 4},
    {"contains", Kind::Method, &rectContains, 2, 2},
    {"containsPoint", Kind::Method, &rectContainsPoint, 1, 1},
    {"containsRect", Kind::Method, &rectContainsRect, 1, 1},
    {"equals", Kind::Method, &rectEquals, 1, 1},
    {"inflate", Kind::Method, &rectInflate, 2, 2},
    {"offset", Kind::Method, &rectOffset, 2, 2},
    {"offsetPoint", Kind::Method, &rectOffsetPoint, 1, 1},
    {"intersection", Kind::Method, &rectIntersection, 1, 1},
    {"intersects", Kind::Method, &rectIntersects, 1, 1},
    {"union", Kind::Method, &rectUnion, 1, 1},
    {"clone", Kind::Method, &cloned, 0, 0},
    {"toString", Kind::Method, &rectToString, 0, 0},
};
constexpr NativeClass kClasses[] = {
    {.package = "flash.geom",
     .name = "Point",
     .base = {},
     .flags = NativeClass::Sealed,
     .constructor = &assign,
     .minArguments = 0,
     .maxArguments = 2,
     .members = kPointMembers,
     .slots = "x:Number y:Number"},
    {.package = "flash.geom",
     .name = "Rectangle",
     .base = {},
     .flags = NativeClass::Sealed,
     .constructor = &assign,
     .minArguments = 0,
     .maxArguments = 4,
     .members = kRectangleMembers,
     .slots = "x:Number y:Number width:Number height:Number"},
};

} // namespace

std::span<const NativeClass> geometryClasses() { return kClasses; }

} // namespace flash::avm2
