#include "flash/avm2/bindings/GeometryMembers.h"
#include "flash/avm2/bindings/Library.h"

#include <algorithm>
#include <array>
#include <cmath>

// Matrices of the plane, and transforms of colours.
namespace flash::avm2
{

using namespace geometry;
using Kind = NativeMember::Kind;

namespace
{

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
constexpr NativeMember kColorMembers[] = {
    {"concat", Kind::Method, &concatColor, 1, 1},
    {"color", Kind::Getter, &color, 0, 0, &setColor, "uint"},
    {"toString", Kind::Method, &colorToString, 0, 0},
};
constexpr NativeClass kClasses[] = {
    {.package = "flash.geom",
     .name = "Matrix",
     .base = {},
     .flags = NativeClass::Sealed,
     .constructor = &assign,
     .minArguments = 0,
     .maxArguments = 6,
     .members = kMatrixMembers,
     .slots = "a:Number=1 b:Number c:Number d:Number=1 tx:Number ty:Number"},
    {.package = "flash.geom",
     .name = "ColorTransform",
     .base = {},
     .flags = NativeClass::Sealed,
     .constructor = &assign,
     .minArguments = 0,
     .maxArguments = 8,
     .members = kColorMembers,
     .slots =
         "redMultiplier:Number=1 greenMultiplier:Number=1 blueMultiplier:Number=1 alphaMultiplier:Number=1 "
         "redOffset:Number greenOffset:Number blueOffset:Number alphaOffset:Number"},
};

} // namespace

std::span<const NativeClass> matrixClasses() { return kClasses; }

} // namespace flash::avm2
