#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/classes/Library.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <numbers>

namespace flash::avm2
{

using Kind = NativeMember::Kind;

namespace
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

/// A copy by its slots.
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

constexpr std::string_view kPoint = "flash.geom::Point", kRectangle = "flash.geom::Rectangle",
                           kMatrix = "flash.geom::Matrix";

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
bool isEmptyRect(Object& rect) { return !(at(rect, 2) > 0) || !(at(rect, 3) > 0); }
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
Value rectUnion(Call& call)
{
    Object& self = selfObject(call);
    Object& other = objectArg(call, 0, kRectangle);
    if (isEmptyRect(self))
        return make(call.vm, kRectangle, {at(other, 0), at(other, 1), at(other, 2), at(other, 3)});
    if (isEmptyRect(other))
        return make(call.vm, kRectangle, {at(self, 0), at(self, 1), at(self, 2), at(self, 3)});
    const double left = std::min(at(self, 0), at(other, 0)), top = std::min(at(self, 1), at(other, 1));
    const double right = std::max(at(self, 0) + at(self, 2), at(other, 0) + at(other, 2)),
                 bottom = std::max(at(self, 1) + at(self, 3), at(other, 1) + at(other, 3));
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
/// From another of the class.
template <std::uint32_t count>
Value copyFrom(Call& call)
{
    Object& self = selfObject(call);
    Object& other = objectArg(call, 0, count == 2 ? kPoint : count == 4 ? kRectangle : kMatrix);
    for (std::uint32_t i = 0; i < count; ++i) self.setSlot(i, at(other, i));
    return {};
}

// ---- matrices: a, b, c, d, tx, ty ----

double numberOr(Call& call, std::uint32_t i, double missing)
{
    return call.has(i) ? call.vm.toNumber(call.arg(i)) : missing;
}
void setBox(Object& self, double scaleX, double scaleY, double angle, double tx, double ty)
{
    const double c = std::cos(angle), s = std::sin(angle);
    const double values[] = {c * scaleX, s * scaleY, -s * scaleX, c * scaleY, tx, ty};
    for (std::uint32_t i = 0; i < 6; ++i) self.setSlot(i, values[i]);
}
Value createBox(Call& call)
{
    setBox(selfObject(call), call.vm.toNumber(call.arg(0)), call.vm.toNumber(call.arg(1)),
           numberOr(call, 2, 0), numberOr(call, 3, 0), numberOr(call, 4, 0));
    return {};
}
Value createGradientBox(Call& call)
{
    constexpr double kSquare = 1638.4; // pixels of what a gradient fills
    const double width = call.vm.toNumber(call.arg(0)), height = call.vm.toNumber(call.arg(1));
    setBox(selfObject(call), width / kSquare, height / kSquare, numberOr(call, 2, 0),
           numberOr(call, 3, 0) + width / 2, numberOr(call, 4, 0) + height / 2);
    return {};
}
Object& vector3DArg(Call& call, std::uint32_t i) { return objectArg(call, i, "flash.geom::Vector3D"); }
/// A column is two numbers, and a third that nothing depends on.
template <bool isTo>
Value copyColumn(Call& call)
{
    Object& self = selfObject(call);
    const std::uint32_t column = call.vm.toUint(call.arg(0));
    Object& vector = vector3DArg(call, 1);
    if (column > 3) return {};
    const std::uint32_t x = std::min(column, 2U) * 2;
    if (isTo) {
        vector.setSlot(0, self.slot(x));
        vector.setSlot(1, self.slot(x + 1));
        vector.setSlot(2, column >= 2 ? 1 : 0);
    } else {
        self.setSlot(x, at(vector, 0));
        self.setSlot(x + 1, at(vector, 1));
    }
    return {};
}
template <bool isTo>
Value copyRow(Call& call)
{
    Object& self = selfObject(call);
    const std::uint32_t row = call.vm.toUint(call.arg(0));
    Object& vector = vector3DArg(call, 1);
    if (isTo && row >= 2) {
        const double last[] = {0, 0, 1};
        for (std::uint32_t i = 0; i < 3; ++i) vector.setSlot(i, last[i]);
        return {};
    }
    if (row >= 2) return {};
    for (std::uint32_t i = 0; i < 3; ++i) {
        if (isTo)
            vector.setSlot(i, self.slot(2 * i + row));
        else
            self.setSlot(2 * i + row, at(vector, i));
    }
    return {};
}

Value matrixToString(Call& call) { return shown(call, {"a", "b", "c", "d", "tx", "ty"}); }
void concatenate(Object& self, const std::array<double, 6>& m)
{
    const double a = at(self, 0), b = at(self, 1), c = at(self, 2), d = at(self, 3), tx = at(self, 4),
                 ty = at(self, 5);
    const double result[] = {a * m[0] + b * m[2], a * m[1] + b * m[3],          c * m[0] + d * m[2],
                             c * m[1] + d * m[3], tx * m[0] + ty * m[2] + m[4], tx * m[1] + ty * m[3] + m[5]};
    for (std::uint32_t i = 0; i < 6; ++i) self.setSlot(i, result[i]);
}
Value matrixConcat(Call& call)
{
    Object& other = objectArg(call, 0, kMatrix);
    concatenate(selfObject(call),
                {at(other, 0), at(other, 1), at(other, 2), at(other, 3), at(other, 4), at(other, 5)});
    return {};
}
Value matrixIdentity(Call& call)
{
    const double identity[] = {1, 0, 0, 1, 0, 0};
    for (std::uint32_t i = 0; i < 6; ++i) selfObject(call).setSlot(i, identity[i]);
    return {};
}
Value matrixRotate(Call& call)
{
    const double angle = call.vm.toNumber(call.arg(0)), c = std::cos(angle), s = std::sin(angle);
    concatenate(selfObject(call), {c, s, -s, c, 0, 0});
    return {};
}
Value matrixScale(Call& call)
{
    const double x = call.vm.toNumber(call.arg(0)), y = call.vm.toNumber(call.arg(1));
    concatenate(selfObject(call), {x, 0, 0, y, 0, 0});
    return {};
}
Value matrixTranslate(Call& call)
{
    const double x = call.vm.toNumber(call.arg(0)), y = call.vm.toNumber(call.arg(1));
    concatenate(selfObject(call), {1, 0, 0, 1, x, y});
    return {};
}
Value matrixInvert(Call& call)
{
    Object& self = selfObject(call);
    const double a = at(self, 0), b = at(self, 1), c = at(self, 2), d = at(self, 3), tx = at(self, 4),
                 ty = at(self, 5);
    const double determinant = a * d - b * c;
    if (determinant == 0) return matrixIdentity(call);
    const double result[] = {d / determinant,
                             -b / determinant,
                             -c / determinant,
                             a / determinant,
                             (c * ty - d * tx) / determinant,
                             (b * tx - a * ty) / determinant};
    for (std::uint32_t i = 0; i < 6; ++i) self.setSlot(i, result[i]);
    return {};
}
template <bool isDelta>
Value transformPoint(Call& call)
{
    Object& self = selfObject(call);
    Object& point = objectArg(call, 0, kPoint);
    const double x = at(point, 0), y = at(point, 1);
    return make(call.vm, kPoint,
                {x * at(self, 0) + y * at(self, 2) + (isDelta ? 0 : at(self, 4)),
                 x * at(self, 1) + y * at(self, 3) + (isDelta ? 0 : at(self, 5))});
}

Value colorToString(Call& call)
{
    return shown(call, {"redMultiplier", "greenMultiplier", "blueMultiplier", "alphaMultiplier", "redOffset",
                        "greenOffset", "blueOffset", "alphaOffset"});
}
Value color(Call& call)
{
    Object& self = selfObject(call);
    const auto part = [&](std::uint32_t slot) {
        return static_cast<std::uint32_t>(static_cast<std::int64_t>(at(self, slot)) & 0xFF);
    };
    return part(4) << 16U | part(5) << 8U | part(6);
}
Value setColor(Call& call)
{
    Object& self = selfObject(call);
    const std::uint32_t value = call.vm.toUint(call.arg(0));
    for (std::uint32_t i = 0; i < 3; ++i) {
        self.setSlot(i, 0);
        self.setSlot(4 + i, static_cast<double>(value >> (16 - 8 * i) & 0xFFU));
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
constexpr NativeMember kMatrixMembers[] = {
    {"concat", Kind::Method, &matrixConcat, 1, 1},
    {"createBox", Kind::Method, &createBox, 2, 5},
    {"createGradientBox", Kind::Method, &createGradientBox, 2, 5},
    {"copyFrom", Kind::Method, &copyFrom<6>, 1, 1},
    {"copyColumnFrom", Kind::Method, &copyColumn<false>, 2, 2},
    {"copyColumnTo", Kind::Method, &copyColumn<true>, 2, 2},
    {"copyRowFrom", Kind::Method, &copyRow<false>, 2, 2},
    {"copyRowTo", Kind::Method, &copyRow<true>, 2, 2},
    {"identity", Kind::Method, &matrixIdentity, 0, 0},
    {"rotate", Kind::Method, &matrixRotate, 1, 1},
    {"scale", Kind::Method, &matrixScale, 2, 2},
    {"translate", Kind::Method, &matrixTranslate, 2, 2},
    {"invert", Kind::Method, &matrixInvert, 0, 0},
    {"transformPoint", Kind::Method, &transformPoint<false>, 1, 1},
    {"deltaTransformPoint", Kind::Method, &transformPoint<true>, 1, 1},
    {"clone", Kind::Method, &cloned, 0, 0},
    {"setTo", Kind::Method, &assign, 6, 6},
    {"toString", Kind::Method, &matrixToString, 0, 0},
};
Value concatColor(Call& call)
{
    Object& self = selfObject(call);
    Object& second = objectArg(call, 0, "flash.geom::ColorTransform");
    for (std::uint32_t i = 0; i < 4; ++i) {
        self.setSlot(4 + i, at(self, 4 + i) + at(self, i) * at(second, 4 + i));
        self.setSlot(i, at(self, i) * at(second, i));
    }
    return {};
}

constexpr NativeMember kColorMembers[] = {
    {"concat", Kind::Method, &concatColor, 1, 1},
    {"color", Kind::Getter, &color, 0, 0, &setColor, "uint"},
    {"toString", Kind::Method, &colorToString, 0, 0},
};
constexpr NativeClass kClasses[] = {
    {.package = "flash.geom",
     .name = "Point",
     .base = {},
     .constructor = &assign,
     .minArguments = 0,
     .maxArguments = 2,
     .members = kPointMembers,
     .slots = "x:Number y:Number"},
    {.package = "flash.geom",
     .name = "Rectangle",
     .base = {},
     .constructor = &assign,
     .minArguments = 0,
     .maxArguments = 4,
     .members = kRectangleMembers,
     .slots = "x:Number y:Number width:Number height:Number"},
    {.package = "flash.geom",
     .name = "Matrix",
     .base = {},
     .constructor = &assign,
     .minArguments = 0,
     .maxArguments = 6,
     .members = kMatrixMembers,
     .slots = "a:Number=1 b:Number c:Number d:Number=1 tx:Number ty:Number"},
    {.package = "flash.geom",
     .name = "ColorTransform",
     .base = {},
     .constructor = &assign,
     .minArguments = 0,
     .maxArguments = 8,
     .members = kColorMembers,
     .slots =
         "redMultiplier:Number=1 greenMultiplier:Number=1 blueMultiplier:Number=1 alphaMultiplier:Number=1 "
         "redOffset:Number greenOffset:Number blueOffset:Number alphaOffset:Number"},
};

} // namespace

std::span<const NativeClass> geometryClasses() { return kClasses; }

} // namespace flash::avm2
