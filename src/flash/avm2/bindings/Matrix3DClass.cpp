#include "flash/avm2/bindings/Conversions.h"
#include "flash/avm2/bindings/Graphics.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/classes/Library.h"
#include "flash/avm2/interpreter/Collections.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

// Matrices of space: sixteen numbers of single precision, column by column; a vector is a column.
namespace flash::avm2
{

using Kind = NativeMember::Kind;

namespace
{

using Raw = std::array<float, 16>;
constexpr Raw kIdentity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
constexpr std::string_view kVector = "flash.geom::Vector3D", kMatrix3D = "flash.geom::Matrix3D";

class Matrix3DObject final : public Object
{
public:
    AVM2_NATIVE(Object)
    Matrix3DObject(Traits* traits, Object* proto) : Object(traits, proto) {}
    Raw raw = kIdentity;
};

Matrix3DObject& self(Call& call) { return classes::selfAs<Matrix3DObject>(call, "flash.geom.Matrix3D"); }
Matrix3DObject& matrixArg(Call& call, std::uint32_t i, const char* name)
{
    return *as<Matrix3DObject>(&objectArg(call, i, kMatrix3D, name));
}
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
Value newVector(Vm& vm, double x, double y, double z, double w)
{
    Object* made = vm.instantiate(vm.nativeClass(kVector));
    const double values[] = {x, y, z, w};
    for (std::uint32_t i = 0; i < 4; ++i) made->setSlot(i, values[i]);
    return Value(made);
}
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

double minor3(const Raw& m, std::size_t row, std::size_t column)
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
double determinantOf(const Raw& m)
{
    double sum = 0;
    for (std::size_t c = 0; c < 4; ++c) sum += (c % 2 == 0 ? 1 : -1) * m[4 * c] * minor3(m, 0, c);
    return sum;
}
Value determinant(Call& call)
{
    return static_cast<double>(static_cast<float>(determinantOf(self(call).raw)));
}
Value invert(Call& call)
{
    const Raw m = self(call).raw;
    const double whole = determinantOf(m);
    constexpr double kMinDeterminant = 1e-11;
    if (!(std::abs(whole) > kMinDeterminant)) return false;
    for (std::size_t c = 0; c < 4; ++c) {
        for (std::size_t r = 0; r < 4; ++r)
            self(call).raw[4 * c + r] =
                static_cast<float>(((c + r) % 2 == 0 ? 1 : -1) * minor3(m, c, r) / whole);
    }
    return true;
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
    matrixArg(call, 0, "dest").raw = self(call).raw;
    return {};
}
Value clone(Call& call)
{
    auto* made = as<Matrix3DObject>(Value(call.vm.instantiate(call.vm.nativeClass(kMatrix3D))));
    made->raw = self(call).raw;
    return Value(made);
}

// ---- parts ----

enum class Orientation : std::uint8_t { EulerAngles, AxisAngle, Quaternion };

Orientation orientationArg(Call& call, std::uint32_t i)
{
    const std::u16string_view style = call.has(i) ? call.vm.text(call.arg(i)) : u"eulerAngles";
    if (style == u"eulerAngles") return Orientation::EulerAngles;
    if (style == u"axisAngle") return Orientation::AxisAngle;
    if (style == u"quaternion") return Orientation::Quaternion;
    call.vm.throwError(ErrorClass::Error, 2187,
                       u"Invalid orientation style " + std::u16string(style) +
                           u".  Value must be one of 'Orientation3D.EULER_ANGLES', "
                           u"'Orientation3D.AXIS_ANGLE', or 'Orientation3D.QUATERNION'.");
}

using Vector = std::array<double, 3>;
double dot(const Vector& a, const Vector& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }
Vector less(const Vector& a, const Vector& b, double times)
{
    return {a[0] - times * b[0], a[1] - times * b[1], a[2] - times * b[2]};
}
double normalize(Vector& v)
{
    const double length = std::sqrt(dot(v, v));
    if (length != 0) v = {v[0] / length, v[1] / length, v[2] / length};
    return length;
}

/// A place, a turn and scales; what is skewed in a matrix is straightened, column after column.
struct Parts {
    Vector place{}, scale{1, 1, 1};
    std::array<Vector, 3> axes{}; ///< the columns of the turn
    explicit Parts(const Raw& m)
    {
        for (std::size_t i = 0; i < 3; ++i) {
            place[i] = m[12 + i];
            axes[i] = {m[4 * i], m[4 * i + 1], m[4 * i + 2]};
            for (std::size_t k = 0; k < i; ++k) axes[i] = less(axes[i], axes[k], dot(axes[i], axes[k]));
            scale[i] = normalize(axes[i]);
        }
        const Vector& a = axes[0];
        const Vector& b = axes[1];
        const Vector across = {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2],
                               a[0] * b[1] - a[1] * b[0]};
        if (dot(across, axes[2]) >= 0) return;
        scale[2] = -scale[2];
        axes[2] = {-axes[2][0], -axes[2][1], -axes[2][2]};
    }
};

using Quaternion = std::array<double, 4>; ///< x, y, z, w
Quaternion quaternionOf(const std::array<Vector, 3>& axes)
{
    const auto at = [&](std::size_t row, std::size_t column) { return axes[column][row]; };
    const double trace = at(0, 0) + at(1, 1) + at(2, 2);
    if (trace > 0) {
        const double s = 2 * std::sqrt(trace + 1);
        return {(at(2, 1) - at(1, 2)) / s, (at(0, 2) - at(2, 0)) / s, (at(1, 0) - at(0, 1)) / s, s / 4};
    }
    // By the largest of the diagonal, so that nothing small is divided by.
    const std::size_t i = at(0, 0) > at(1, 1) && at(0, 0) > at(2, 2) ? 0 : at(1, 1) > at(2, 2) ? 1 : 2;
    const std::size_t j = (i + 1) % 3, k = (i + 2) % 3;
    const double s = 2 * std::sqrt(std::max(1e-30, 1 + at(i, i) - at(j, j) - at(k, k)));
    Quaternion q{};
    q[i] = s / 4;
    q[j] = (at(j, i) + at(i, j)) / s;
    q[k] = (at(k, i) + at(i, k)) / s;
    q[3] = (at(k, j) - at(j, k)) / s;
    return q;
}
std::array<Vector, 3> axesOf(const Quaternion& q)
{
    const auto [x, y, z, w] = q;
    return {Vector{1 - 2 * (y * y + z * z), 2 * (x * y + w * z), 2 * (x * z - w * y)},
            Vector{2 * (x * y - w * z), 1 - 2 * (x * x + z * z), 2 * (y * z + w * x)},
            Vector{2 * (x * z + w * y), 2 * (y * z - w * x), 1 - 2 * (x * x + y * y)}};
}
std::array<Vector, 3> axesOf(const std::array<double, 4>& turn, Orientation style)
{
    const auto [x, y, z, w] = turn;
    if (style == Orientation::Quaternion) return axesOf(turn);
    const double s = std::sin(w), c = std::cos(w), t = 1 - c;
    if (style == Orientation::AxisAngle)
        return {Vector{t * x * x + c, t * x * y + s * z, t * x * z - s * y},
                Vector{t * x * y - s * z, t * y * y + c, t * y * z + s * x},
                Vector{t * x * z + s * y, t * y * z - s * x, t * z * z + c}};
    const double sx = std::sin(x), cx = std::cos(x), sy = std::sin(y), cy = std::cos(y), sz = std::sin(z),
                 cz = std::cos(z);
    return {Vector{cy * cz, cy * sz, -sy}, Vector{sx * sy * cz - cx * sz, sx * sy * sz + cx * cz, sx * cy},
            Vector{cx * sy * cz + sx * sz, cx * sy * sz - sx * cz, cx * cy}};
}
Raw assembled(const Vector& place, const std::array<Vector, 3>& axes, const Vector& scale)
{
    Raw raw = kIdentity;
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t k = 0; k < 3; ++k) raw[4 * i + k] = static_cast<float>(axes[i][k] * scale[i]);
        raw[12 + i] = static_cast<float>(place[i]);
    }
    return raw;
}

Value decompose(Call& call)
{
    const Orientation style = orientationArg(call, 0);
    const Parts parts(self(call).raw);
    Quaternion turn{};
    if (style == Orientation::EulerAngles) {
        const auto& [x, y, z] = parts.axes;
        turn = {std::atan2(y[2], z[2]), std::asin(std::clamp(-x[2], -1.0, 1.0)), std::atan2(x[1], x[0]), 0};
    } else {
        turn = quaternionOf(parts.axes);
        const double length = std::sqrt(std::max(0.0, 1 - turn[3] * turn[3]));
        if (style == Orientation::AxisAngle) {
            if (length > 0)
                for (std::size_t i = 0; i < 3; ++i) turn[i] /= length;
            turn[3] = 2 * std::acos(std::clamp(turn[3], -1.0, 1.0));
        }
    }
    Vm& vm = call.vm;
    const Value list = vm.construct(Value(vm.vectorOf(vm.nativeClass(kVector)->instances)), {});
    const auto add = [&](double x, double y, double z, double w) {
        const auto rounded = [](double value) { return static_cast<double>(static_cast<float>(value)); };
        vm.callPublic(list, "push", {newVector(vm, rounded(x), rounded(y), rounded(z), rounded(w))});
    };
    add(parts.place[0], parts.place[1], parts.place[2], 0);
    add(turn[0], turn[1], turn[2], turn[3]);
    add(parts.scale[0], parts.scale[1], parts.scale[2], 0);
    return list;
}

/// @returns false when there are too few vectors, or a scale is nothing
Value recompose(Call& call)
{
    const Orientation style = orientationArg(call, 1);
    if (call.arg(0).isNullish())
        call.vm.throwError(ErrorClass::Type, 2007, "Parameter components must be non-null.");
    const auto* list = as<VectorObject>(call.arg(0));
    if (list == nullptr || list->items.size() < 3) return false;
    std::array<std::array<double, 4>, 3> given{};
    for (std::size_t i = 0; i < 3; ++i) {
        Object* vector = list->items[i].asObject();
        if (vector == nullptr || vector->slotCount() < 4) return false;
        for (std::uint32_t k = 0; k < 4; ++k) given[i][k] = slotNumber(*vector, k);
    }
    const auto& [place, turn, scale] = given;
    self(call).raw =
        assembled({place[0], place[1], place[2]}, axesOf(turn, style), {scale[0], scale[1], scale[2]});
    return scale[0] != 0 && scale[1] != 0 && scale[2] != 0;
}

/// Turns the shorter way, evenly; place and scale go straight.
Raw between(const Raw& from, const Raw& to, double share)
{
    const Parts a(from), b(to);
    Quaternion p = quaternionOf(a.axes);
    const Quaternion q = quaternionOf(b.axes);
    double cosine = p[0] * q[0] + p[1] * q[1] + p[2] * q[2] + p[3] * q[3];
    if (cosine < 0) {
        cosine = -cosine;
        for (double& part : p) part = -part;
    }
    const double angle = std::acos(std::min(1.0, cosine));
    constexpr double kSmall = 1e-6;
    const double first = angle < kSmall ? 1 - share : std::sin((1 - share) * angle) / std::sin(angle);
    const double second = angle < kSmall ? share : std::sin(share * angle) / std::sin(angle);
    Quaternion turn{};
    for (std::size_t i = 0; i < 4; ++i) turn[i] = first * p[i] + second * q[i];
    Vector place{}, scale{};
    for (std::size_t i = 0; i < 3; ++i) {
        place[i] = std::lerp(a.place[i], b.place[i], share);
        scale[i] = std::lerp(a.scale[i], b.scale[i], share);
    }
    return assembled(place, axesOf(turn), scale);
}
Value interpolate(Call& call)
{
    auto* made = as<Matrix3DObject>(Value(call.vm.instantiate(call.vm.nativeClass(kMatrix3D))));
    made->raw = between(matrixArg(call, 0, "thisMat").raw, matrixArg(call, 1, "toMat").raw,
                        call.vm.toNumber(call.arg(2)));
    return Value(made);
}
Value interpolateTo(Call& call)
{
    self(call).raw = between(self(call).raw, matrixArg(call, 0, "toMat").raw, call.vm.toNumber(call.arg(1)));
    return {};
}

constexpr NativeMember kMembers[] = {
    {"decompose", Kind::Method, &decompose, 0, 1},
    {"recompose", Kind::Method, &recompose, 1, 2},
    {"interpolate", Kind::Static, &interpolate, 3, 3},
    {"interpolateTo", Kind::Method, &interpolateTo, 2, 2},
    {"rawData", Kind::Getter, &rawData, 0, 0, &construct, "__AS3__.vec::Vector.<Number>"},
    {"position", Kind::Getter, &position, 0, 0, &setPosition, "flash.geom::Vector3D"},
    {"determinant", Kind::Getter, &determinant, 0, 0, nullptr, "Number"},
    {"identity", Kind::Method, &identity, 0, 0},
    {"append", Kind::Method, &multiply<true>, 1, 1},
    {"prepend", Kind::Method, &multiply<false>, 1, 1},
    {"appendTranslation", Kind::Method, &translate<true>, 3, 3},
    {"prependTranslation", Kind::Method, &translate<false>, 3, 3},
    {"appendScale", Kind::Method, &scale<true>, 3, 3},
    {"prependScale", Kind::Method, &scale<false>, 3, 3},
    {"appendRotation", Kind::Method, &rotate<true>, 2, 3},
    {"prependRotation", Kind::Method, &rotate<false>, 2, 3},
    {"invert", Kind::Method, &invert, 0, 0},
    {"transpose", Kind::Method, &transpose, 0, 0},
    {"transformVector", Kind::Method, &transformVector<1>, 1, 1},
    {"deltaTransformVector", Kind::Method, &transformVector<0>, 1, 1},
    {"transformVectors", Kind::Method, &transformVectors, 2, 2},
    {"copyColumnFrom", Kind::Method, &copyLine<false, false>, 2, 2},
    {"copyColumnTo", Kind::Method, &copyLine<false, true>, 2, 2},
    {"copyRowFrom", Kind::Method, &copyLine<true, false>, 2, 2},
    {"copyRowTo", Kind::Method, &copyLine<true, true>, 2, 2},
    {"copyRawDataFrom", Kind::Method, &copyRawFrom, 1, 3},
    {"copyRawDataTo", Kind::Method, &copyRawTo, 1, 3},
    {"copyFrom", Kind::Method, &copyFrom, 1, 1},
    {"copyToMatrix3D", Kind::Method, &copyTo, 1, 1},
    {"clone", Kind::Method, &clone, 0, 0},
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

std::span<const NativeClass> matrix3DClasses() { return kClasses; }

} // namespace flash::avm2
