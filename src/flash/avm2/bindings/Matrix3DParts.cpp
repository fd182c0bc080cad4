#include "flash/avm2/bindings/Matrix3D.h"

#include "flash/avm2/bindings/Graphics.h"
#include "flash/avm2/interpreter/Collections.h"

#include <algorithm>
#include <cmath>
#include <numbers>

// What a matrix of space does: where it puts things, how it turns and how it scales them.
namespace flash::avm2::space
{

namespace
{

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

} // namespace

stage::SpacePlace placeOf(const Raw& raw)
{
    constexpr double kDegrees = 180 / std::numbers::pi;
    const Parts parts(raw);
    stage::SpacePlace place;
    place.place = parts.place;
    place.scale = parts.scale;
    const auto& [x, y, z] = parts.axes;
    place.turn = {std::atan2(y[2], z[2]) * kDegrees, std::asin(std::clamp(-x[2], -1.0, 1.0)) * kDegrees,
                  std::atan2(x[1], x[0]) * kDegrees};
    place.matrix = twipsOf(raw);
    return place;
}

/// Turns `at` of its own space towards a place, and `up` of it as far upwards as that leaves.
Value pointAt(Call& call)
{
    const auto vectorArg = [&](std::uint32_t i, const Vector& otherwise) -> Vector {
        Object* vector = optionalArg(call, i, kVector);
        if (vector == nullptr) return otherwise;
        return {slotNumber(*vector, 0), slotNumber(*vector, 1), slotNumber(*vector, 2)};
    };
    const auto cross = [](const Vector& a, const Vector& b) -> Vector {
        return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
    };
    // Three directions, the third along `ahead`.
    const auto frame = [&](Vector ahead, Vector up) -> std::array<Vector, 3> {
        normalize(ahead);
        up = less(up, ahead, dot(up, ahead));
        if (normalize(up) == 0) {
            up = std::abs(ahead[1]) < 0.5 ? Vector{0, -1, 0} : Vector{0, 0, 1};
            up = less(up, ahead, dot(up, ahead));
            normalize(up);
        }
        return {cross(up, ahead), up, ahead};
    };
    objectArg(call, 0, kVector, "pos");
    const Vector aim = vectorArg(0, {}), at = vectorArg(1, {0, 0, -1}), up = vectorArg(2, {0, -1, 0});
    const Parts parts(self(call).raw);
    const Vector ahead = less(aim, parts.place, 1);
    if (dot(ahead, ahead) == 0 || dot(at, at) == 0) return {};
    const auto own = frame(at, up), outer = frame(ahead, up);
    std::array<Vector, 3> axes{};
    for (std::size_t column = 0; column < 3; ++column)
        for (std::size_t row = 0; row < 3; ++row)
            for (std::size_t i = 0; i < 3; ++i) axes[column][row] += outer[i][row] * own[i][column];
    self(call).raw = assembled(parts.place, axes, parts.scale);
    return {};
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

} // namespace flash::avm2::space
