#include "flash/avm2/bindings/Matrix3D.h"

#include "flash/avm2/bindings/Graphics.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/interpreter/Collections.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace flash::avm2::space
{

using Kind = NativeMember::Kind;

namespace
{

[[noreturn]] void invalid(Vm& vm)
{
    vm.throwError(ErrorClass::Argument, 2004, "One of the parameters is invalid.");
}

/// First `right`, then `left`.
Raw product(const Raw& left, const Raw& right)
{
    Raw result{};
    for (std::size_t column = 0; column < 4; ++column) {
        for (std::size_t row = 0; row < 4; ++row) {
            float sum = 0;
            for (std::size_t i = 0; i < 4; ++i) sum += left[4 * i + row] * right[4 * column + i];
            result[4 * column + row] = sum;
        }
    }
    return result;
}
template <bool append>
Value combine(Matrix3DObject& matrix, const Raw& with)
{
    matrix.raw = append ? product(with, matrix.raw) : product(matrix.raw, with);
    return {};
}

float number(Call& call, std::uint32_t i) { return static_cast<float>(call.vm.toNumber(call.arg(i))); }
Value newNumbers(Vm& vm, std::span<const float> numbers)
{
    const Value list = vm.construct(Value(vm.vectorOf(vm.classes().number->instances)), {});
    for (const float value : numbers) vm.callPublic(list, "push", {Value(static_cast<double>(value))});
    return list;
}

void put(Vm& vm, Value list, std::size_t index, double value)
{
    if (auto* vector = as<VectorObject>(list); vector != nullptr && index < vector->items.size())
        vector->items[index] = Value(value);
    else
        vm.set(list, vm.publicName(vm.name(numberText(static_cast<double>(index)))), Value(value));
}

Value construct(Call& call)
{
    const auto numbers = numbersOf(call.vm, call.arg(0));
    if (numbers.size() == kIdentity.size())
        for (std::size_t i = 0; i < numbers.size(); ++i) self(call).raw[i] = static_cast<float>(numbers[i]);
    return {};
}
Value rawData(Call& call) { return newNumbers(call.vm, self(call).raw); }
Value identity(Call& call)
{
    self(call).raw = kIdentity;
    return {};
}
template <bool append>
Value multiply(Call& call)
{
    return combine<append>(self(call), matrixArg(call, 0, append ? "lhs" : "rhs").raw);
}
template <bool append>
Value translate(Call& call)
{
    Raw with = kIdentity;
    for (std::uint32_t i = 0; i < 3; ++i) with[12 + i] = number(call, i);
    return combine<append>(self(call), with);
}
template <bool append>
Value scale(Call& call)
{
    Raw with = kIdentity;
    for (std::uint32_t i = 0; i < 3; ++i) with[5 * i] = number(call, i);
    return combine<append>(self(call), with);
}
template <bool append>
Value rotate(Call& call)
{
    const double angle = call.vm.toNumber(call.arg(0)) * std::numbers::pi / 180;
    Object& axis = objectArg(call, 1, kVector, "axis");
    double x = slotNumber(axis, 0), y = slotNumber(axis, 1), z = slotNumber(axis, 2);
    const double length = std::sqrt(x * x + y * y + z * z);
    if (length != 0) {
        x /= length;
        y /= length;
        z /= length;
    }
    const double c = std::cos(angle), s = std::sin(angle), t = 1 - c;
    const auto f = [](double value) { return static_cast<float>(value); };
    const Raw turn = {f(t * x * x + c),
                      f(t * x * y + s * z),
                      f(t * x * z - s * y),
                      0,
                      f(t * x * y - s * z),
                      f(t * y * y + c),
                      f(t * y * z + s * x),
                      0,
                      f(t * x * z + s * y),
                      f(t * y * z - s * x),
                      f(t * z * z + c),
                      0,
                      0,
                      0,
                      0,
                      1};
    Object* pivot = optionalArg(call, 2, kVector);
    if (pivot == nullptr) return combine<append>(self(call), turn);
    Raw there = kIdentity, back = kIdentity;
    for (std::uint32_t i = 0; i < 3; ++i) {
        there[12 + i] = f(slotNumber(*pivot, i));
        back[12 + i] = f(-slotNumber(*pivot, i));
    }
    return combine<append>(self(call), product(there, product(turn, back)));
}

template <class Numbers>
double minor3(const Numbers& m, std::size_t row, std::size_t column)
{
    std::array<double, 9> n{};
    std::size_t next = 0;
    for (std::size_t c = 0; c < 4; ++c) {
        for (std::size_t r = 0; r < 4; ++r) {
            if (c != column && r != row) n[next++] = m[4 * c + r];
        }
    }
    return n[0] * (n[4] * n[8] - n[5] * n[7]) - n[3] * (n[1] * n[8] - n[2] * n[7]) +
           n[6] * (n[1] * n[5] - n[2] * n[4]);
}
template <class Numbers>
double determinantOf(const Numbers& m)
{
    double sum = 0;
    for (std::size_t c = 0; c < 4; ++c) sum += (c % 2 == 0 ? 1 : -1) * m[4 * c] * minor3(m, 0, c);
    return sum;
}
Value determinant(Call& call)
{
    return static_cast<double>(static_cast<float>(determinantOf(self(call).raw)));
}
/// Nothing for one that has none.
template <class Numbers>
std::optional<Numbers> inverseOf(const Numbers& m)
{
    const double whole = determinantOf(m);
    constexpr double kMinDeterminant = 1e-11;
    if (!(std::abs(whole) > kMinDeterminant)) return {};
    Numbers result{};
    for (std::size_t c = 0; c < 4; ++c) {
        for (std::size_t r = 0; r < 4; ++r)
            result[4 * c + r] = static_cast<typename Numbers::value_type>(((c + r) % 2 == 0 ? 1 : -1) *
                                                                          minor3(m, c, r) / whole);
    }
    return result;
}
Value invert(Call& call)
{
    const auto inverted = inverseOf(self(call).raw);
    if (inverted) self(call).raw = *inverted;
    return inverted.has_value();
}
Value transpose(Call& call)
{
    Raw& m = self(call).raw;
    for (std::size_t c = 0; c < 4; ++c) {
        for (std::size_t r = 0; r < c; ++r) std::swap(m[4 * c + r], m[4 * r + c]);
    }
    return {};
}

std::array<double, 4> mapped(const Raw& m, double x, double y, double z, double one)
{
    std::array<double, 4> result{};
    for (std::size_t r = 0; r < 4; ++r) result[r] = x * m[r] + y * m[4 + r] + z * m[8 + r] + one * m[12 + r];
    return result;
}
template <int one>
Value transformVector(Call& call)
{
    Object& v = objectArg(call, 0, kVector, "v");
    const auto r = mapped(self(call).raw, slotNumber(v, 0), slotNumber(v, 1), slotNumber(v, 2), one);
    return newVector(call.vm, r[0], r[1], r[2], r[3]);
}
Value transformVectors(Call& call)
{
    Vm& vm = call.vm;
    if (call.arg(0).isNullish()) vm.throwError(ErrorClass::Type, 2007, "Parameter vin must be non-null.");
    if (call.arg(1).isNullish()) vm.throwError(ErrorClass::Type, 2007, "Parameter vout must be non-null.");
    const auto in = numbersOf(vm, call.arg(0));
    const std::size_t count = in.size() / 3 * 3;
    if (vm.toUint(vm.getPublic(call.arg(1), "length")) < count)
        vm.setPublic(call.arg(1), "length", Value(static_cast<double>(count)));
    for (std::size_t i = 0; i < count; i += 3) {
        const auto r = mapped(self(call).raw, in[i], in[i + 1], in[i + 2], 1);
        for (std::size_t k = 0; k < 3; ++k) put(vm, call.arg(1), i + k, r[k]);
    }
    return {};
}

Value position(Call& call)
{
    const Raw& m = self(call).raw;
    return newVector(call.vm, m[12], m[13], m[14], 0);
}
Value setPosition(Call& call)
{
    Object& v = objectArg(call, 0, kVector, "value");
    for (std::uint32_t i = 0; i < 3; ++i) self(call).raw[12 + i] = static_cast<float>(slotNumber(v, i));
    return {};
}
/// @returns where the numbers of a column, or of a row, lie
std::array<std::size_t, 4> line(Call& call, bool isRow)
{
    const std::uint32_t index = call.vm.toUint(call.arg(0));
    if (index > 3) invalid(call.vm);
    std::array<std::size_t, 4> places{};
    for (std::size_t i = 0; i < 4; ++i) places[i] = isRow ? 4 * i + index : 4 * index + i;
    return places;
}
template <bool isRow, bool isTo>
Value copyLine(Call& call)
{
    Object& vector = objectArg(call, 1, kVector, "vector3D");
    const auto places = line(call, isRow);
    for (std::uint32_t i = 0; i < 4; ++i) {
        if (isTo)
            vector.setSlot(i, static_cast<double>(self(call).raw[places[i]]));
        else
            self(call).raw[places[i]] = static_cast<float>(slotNumber(vector, i));
    }
    return {};
}
Value copyRawFrom(Call& call)
{
    const auto numbers = numbersOf(call.vm, call.arg(0));
    const std::size_t from = call.vm.toUint(call.arg(1));
    Raw raw = self(call).raw;
    for (std::size_t i = 0; i < raw.size(); ++i) {
        if (from + i >= numbers.size()) invalid(call.vm);
        raw[i] = static_cast<float>(numbers[from + i]);
    }
    self(call).raw = raw;
    if (call.vm.toBoolean(call.arg(2))) return transpose(call);
    return {};
}
Value copyRawTo(Call& call)
{
    Vm& vm = call.vm;
    const std::size_t from = vm.toUint(call.arg(1));
    const bool turned = vm.toBoolean(call.arg(2));
    const std::size_t wanted = from + kIdentity.size();
    if (vm.toUint(vm.getPublic(call.arg(0), "length")) < wanted)
        vm.setPublic(call.arg(0), "length", Value(static_cast<double>(wanted)));
    for (std::size_t i = 0; i < kIdentity.size(); ++i) {
        const float value = self(call).raw[turned ? i % 4 * 4 + i / 4 : i];
        put(vm, call.arg(0), from + i, static_cast<double>(value));
    }
    return {};
}
Value copyFrom(Call& call)
{
    self(call).raw = matrixArg(call, 0, "sourceMatrix3D").raw;
    return {};
}
Value copyTo(Call& call)
{
    Matrix3DObject& to = matrixArg(call, 0, "dest");
    to.raw = self(call).raw;
    to.commit();
    return {};
}
Value clone(Call& call)
{
    auto* made = as<Matrix3DObject>(Value(call.vm.instantiate(call.vm.nativeClass(kMatrix3D))));
    made->raw = self(call).raw;
    return Value(made);
}

/// What a matrix places moves with it.
template <NativeFunction function>
Value linked(Call& call)
{
    Matrix3DObject& matrix = self(call);
    matrix.refresh();
    const Raw before = matrix.raw;
    const Value result = function(call);
    if (matrix.raw != before) matrix.commit();
    return result;
}

constexpr NativeMember kMembers[] = {
    {"decompose", Kind::Method, &linked<&decompose>, 0, 1},
    {"recompose", Kind::Method, &linked<&recompose>, 1, 2},
    {"interpolate", Kind::Static, &interpolate, 3, 3},
    {"interpolateTo", Kind::Method, &linked<&interpolateTo>, 2, 2},
    {"rawData", Kind::Getter, &linked<&rawData>, 0, 0, &linked<&construct>, "__AS3__.vec::Vector.<Number>"},
    {"position", Kind::Getter, &linked<&position>, 0, 0, &linked<&setPosition>, "flash.geom::Vector3D"},
    {"determinant", Kind::Getter, &linked<&determinant>, 0, 0, nullptr, "Number"},
    {"pointAt", Kind::Method, &linked<&pointAt>, 1, 3},
    {"identity", Kind::Method, &linked<&identity>, 0, 0},
    {"append", Kind::Method, &linked<&multiply<true>>, 1, 1},
    {"prepend", Kind::Method, &linked<&multiply<false>>, 1, 1},
    {"appendTranslation", Kind::Method, &linked<&translate<true>>, 3, 3},
    {"prependTranslation", Kind::Method, &linked<&translate<false>>, 3, 3},
    {"appendScale", Kind::Method, &linked<&scale<true>>, 3, 3},
    {"prependScale", Kind::Method, &linked<&scale<false>>, 3, 3},
    {"appendRotation", Kind::Method, &linked<&rotate<true>>, 2, 3},
    {"prependRotation", Kind::Method, &linked<&rotate<false>>, 2, 3},
    {"invert", Kind::Method, &linked<&invert>, 0, 0},
    {"transpose", Kind::Method, &linked<&transpose>, 0, 0},
    {"transformVector", Kind::Method, &linked<&transformVector<1>>, 1, 1},
    {"deltaTransformVector", Kind::Method, &linked<&transformVector<0>>, 1, 1},
    {"transformVectors", Kind::Method, &linked<&transformVectors>, 2, 2},
    {"copyColumnFrom", Kind::Method, &linked<&copyLine<false, false>>, 2, 2},
    {"copyColumnTo", Kind::Method, &linked<&copyLine<false, true>>, 2, 2},
    {"copyRowFrom", Kind::Method, &linked<&copyLine<true, false>>, 2, 2},
    {"copyRowTo", Kind::Method, &linked<&copyLine<true, true>>, 2, 2},
    {"copyRawDataFrom", Kind::Method, &linked<&copyRawFrom>, 1, 3},
    {"copyRawDataTo", Kind::Method, &linked<&copyRawTo>, 1, 3},
    {"copyFrom", Kind::Method, &linked<&copyFrom>, 1, 1},
    {"copyToMatrix3D", Kind::Method, &linked<&copyTo>, 1, 1},
    {"clone", Kind::Method, &linked<&clone>, 0, 0},
};
constexpr NativeClass kClasses[] = {
    {.package = "flash.geom",
     .name = "Matrix3D",
     .base = {},
     .constructor = &construct,
     .minArguments = 0,
     .maxArguments = 1,
     .allocate = &classes::allocateNative<Matrix3DObject>,
     .members = kMembers},
};

} // namespace

Value newVector(Vm& vm, double x, double y, double z, double w)
{
    Object* made = vm.instantiate(vm.nativeClass(kVector));
    const double values[] = {x, y, z, w};
    for (std::uint32_t i = 0; i < 4; ++i) made->setSlot(i, values[i]);
    return Value(made);
}

std::optional<swf::Matrix3D> inverse(const swf::Matrix3D& matrix)
{
    const auto found = inverseOf(matrix.m);
    if (!found) return {};
    return swf::Matrix3D(*found);
}

Value newMatrix3D(Vm& vm, const Raw& raw, DisplayObject* target)
{
    auto* made = as<Matrix3DObject>(Value(vm.instantiate(vm.nativeClass(kMatrix3D))));
    made->raw = raw;
    made->target = target;
    return Value(made);
}

void Matrix3DObject::refresh()
{
    if (target == nullptr) return;
    if (const stage::SpacePlace* place = target->node().spacePlace())
        raw = rawOf(place->matrix);
    else
        target = nullptr;
}
void Matrix3DObject::commit()
{
    if (target != nullptr) target->node().setSpacePlace(placeOf(raw));
}

Raw rawOf(const swf::Matrix3D& matrix)
{
    Raw raw{};
    for (std::size_t i = 0; i < raw.size(); ++i) raw[i] = static_cast<float>(matrix.m[i]);
    for (std::size_t i = 0; i < 3; ++i) {
        raw[12 + i] = static_cast<float>(matrix.m[12 + i] / swf::kTwipsPerPixel);
        raw[4 * i + 3] = static_cast<float>(matrix.m[4 * i + 3] * swf::kTwipsPerPixel);
    }
    return raw;
}
swf::Matrix3D twipsOf(const Raw& raw)
{
    swf::Matrix3D matrix;
    for (std::size_t i = 0; i < raw.size(); ++i) matrix.m[i] = raw[i];
    for (std::size_t i = 0; i < 3; ++i) {
        matrix.m[12 + i] *= swf::kTwipsPerPixel;
        matrix.m[4 * i + 3] /= swf::kTwipsPerPixel;
    }
    return matrix;
}

} // namespace flash::avm2::space

namespace flash::avm2
{

std::span<const NativeClass> matrix3DClasses() { return space::kClasses; }

} // namespace flash::avm2
