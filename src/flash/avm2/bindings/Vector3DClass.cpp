#include "flash/avm2/bindings/Conversions.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/classes/Library.h"

#include <algorithm>
#include <cmath>
#include <numbers>

// Points of space: x, y, z, and w, which most members leave alone.
namespace flash::avm2
{

using Kind = NativeMember::Kind;

namespace
{

constexpr std::string_view kVector = "flash.geom::Vector3D";

double at(Object& object, std::uint32_t slot) { return slotNumber(object, slot); }
Object& self(Call& call) { return objectArg(call, 0, kVector, "vector"); }
Object& thisVector(Call& call)
{
    Call inner{call.vm, call.self, &call.self, 1};
    return self(inner);
}
Object& other(Call& call, std::uint32_t i = 0) { return objectArg(call, i, kVector, "a"); }

Value make(Vm& vm, double x, double y, double z, double w = 0)
{
    Object* made = vm.instantiate(vm.nativeClass(kVector));
    const double values[] = {x, y, z, w};
    for (std::uint32_t i = 0; i < 4; ++i) made->setSlot(i, values[i]);
    return Value(made);
}

Value assign(Call& call)
{
    Object& vector = thisVector(call);
    for (std::uint32_t i = 0; i < call.count && i < 4; ++i) vector.setSlot(i, call.vm.toNumber(call.args[i]));
    return {};
}
double dot(Object& a, Object& b) { return at(a, 0) * at(b, 0) + at(a, 1) * at(b, 1) + at(a, 2) * at(b, 2); }
double lengthOf(Object& a) { return std::sqrt(dot(a, a)); }

template <int sign>
Value sum(Call& call)
{
    Object &a = thisVector(call), &b = other(call);
    return make(call.vm, at(a, 0) + sign * at(b, 0), at(a, 1) + sign * at(b, 1), at(a, 2) + sign * at(b, 2));
}
template <int sign>
Value increase(Call& call)
{
    Object &a = thisVector(call), &b = other(call);
    for (std::uint32_t i = 0; i < 3; ++i) a.setSlot(i, at(a, i) + sign * at(b, i));
    return {};
}
void scale(Object& a, double factor)
{
    for (std::uint32_t i = 0; i < 3; ++i) a.setSlot(i, at(a, i) * factor);
}
Value scaleBy(Call& call)
{
    scale(thisVector(call), call.vm.toNumber(call.arg(0)));
    return {};
}
Value negate(Call& call)
{
    Object& a = thisVector(call);
    for (std::uint32_t i = 0; i < 3; ++i) a.setSlot(i, 0 - at(a, i));
    return {};
}
Value normalize(Call& call)
{
    Object& a = thisVector(call);
    const double length = lengthOf(a);
    for (std::uint32_t i = 0; i < 3; ++i) a.setSlot(i, length != 0 ? at(a, i) / length : 0);
    return length;
}
Value project(Call& call)
{
    Object& a = thisVector(call);
    const double w = at(a, 3);
    for (std::uint32_t i = 0; i < 3; ++i) a.setSlot(i, at(a, i) / w);
    return {};
}
Value length(Call& call) { return lengthOf(thisVector(call)); }
Value lengthSquared(Call& call) { return dot(thisVector(call), thisVector(call)); }
Value dotProduct(Call& call) { return dot(thisVector(call), other(call)); }
Value crossProduct(Call& call)
{
    Object &a = thisVector(call), &b = other(call);
    return make(call.vm, at(a, 1) * at(b, 2) - at(a, 2) * at(b, 1), at(a, 2) * at(b, 0) - at(a, 0) * at(b, 2),
                at(a, 0) * at(b, 1) - at(a, 1) * at(b, 0), 1);
}
Value equals(Call& call)
{
    Object &a = thisVector(call), &b = other(call);
    const std::uint32_t count = call.vm.toBoolean(call.arg(1)) ? 4 : 3;
    for (std::uint32_t i = 0; i < count; ++i) {
        if (at(a, i) != at(b, i)) return false;
    }
    return true;
}
Value nearEquals(Call& call)
{
    Object &a = thisVector(call), &b = other(call);
    const double tolerance = call.vm.toNumber(call.arg(1));
    for (std::uint32_t i = 0; i < 3; ++i) {
        if (!(std::abs(at(a, i) - at(b, i)) < tolerance)) return false;
    }
    // Of the fourth numbers the player looks only at the other's.
    return !call.vm.toBoolean(call.arg(2)) || std::abs(at(b, 3)) < tolerance;
}
Value clone(Call& call)
{
    Object& a = thisVector(call);
    return make(call.vm, at(a, 0), at(a, 1), at(a, 2), at(a, 3));
}
Value copyFrom(Call& call)
{
    Object &a = thisVector(call), &b = other(call);
    for (std::uint32_t i = 0; i < 3; ++i) a.setSlot(i, at(b, i));
    return {};
}
Value toString(Call& call)
{
    Object& a = thisVector(call);
    return call.vm.string(u"Vector3D(" + numberText(at(a, 0)) + u", " + numberText(at(a, 1)) + u", " +
                          numberText(at(a, 2)) + u")");
}
Value distance(Call& call)
{
    Object &a = other(call), &b = other(call, 1);
    return std::sqrt(std::pow(at(a, 0) - at(b, 0), 2) + std::pow(at(a, 1) - at(b, 1), 2) +
                     std::pow(at(a, 2) - at(b, 2), 2));
}
Value angleBetween(Call& call)
{
    Object &a = other(call), &b = other(call, 1);
    return std::acos(dot(a, b) / (lengthOf(a) * lengthOf(b)));
}
template <int axis>
Value unit(Call& call)
{
    return make(call.vm, axis == 0, axis == 1, axis == 2);
}

constexpr NativeMember kMembers[] = {
    {"length", Kind::Getter, &length, 0, 0, nullptr, "Number"},
    {"lengthSquared", Kind::Getter, &lengthSquared, 0, 0, nullptr, "Number"},
    {"add", Kind::Method, &sum<1>, 1, 1},
    {"subtract", Kind::Method, &sum<-1>, 1, 1},
    {"incrementBy", Kind::Method, &increase<1>, 1, 1},
    {"decrementBy", Kind::Method, &increase<-1>, 1, 1},
    {"scaleBy", Kind::Method, &scaleBy, 1, 1},
    {"negate", Kind::Method, &negate, 0, 0},
    {"normalize", Kind::Method, &normalize, 0, 0},
    {"project", Kind::Method, &project, 0, 0},
    {"dotProduct", Kind::Method, &dotProduct, 1, 1},
    {"crossProduct", Kind::Method, &crossProduct, 1, 1},
    {"equals", Kind::Method, &equals, 1, 2},
    {"nearEquals", Kind::Method, &nearEquals, 2, 3},
    {"clone", Kind::Method, &clone, 0, 0},
    {"copyFrom", Kind::Method, &copyFrom, 1, 1},
    {"setTo", Kind::Method, &assign, 3, 3},
    {"toString", Kind::Method, &toString, 0, 0},
    {"distance", Kind::Static, &distance, 2, 2},
    {"angleBetween", Kind::Static, &angleBetween, 2, 2},
    {"X_AXIS", Kind::StaticGetter, &unit<0>},
    {"Y_AXIS", Kind::StaticGetter, &unit<1>},
    {"Z_AXIS", Kind::StaticGetter, &unit<2>},
};
constexpr NativeConstant kOrientation[] = {
    {"AXIS_ANGLE", 0, "axisAngle"}, {"EULER_ANGLES", 0, "eulerAngles"}, {"QUATERNION", 0, "quaternion"}};
constexpr NativeClass kClasses[] = {
    {.package = "flash.geom",
     .name = "Vector3D",
     .base = {},
     .flags = NativeClass::Sealed,
     .constructor = &assign,
     .minArguments = 0,
     .maxArguments = 4,
     .members = kMembers,
     .slots = "x:Number y:Number z:Number w:Number"},
    {.package = "flash.geom",
     .name = "Orientation3D",
     .base = {},
     .flags = NativeClass::Sealed | NativeClass::Final,
     .constants = kOrientation},
};

} // namespace

std::span<const NativeClass> vector3DClasses() { return kClasses; }

} // namespace flash::avm2
