#include "flash/avm2/bindings/Graphics.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/bindings/Matrix3D.h"
#include "flash/avm2/bindings/Player.h"
#include "flash/avm2/bindings/Transform.h"
#include "flash/avm2/classes/Library.h"

#include <cmath>
#include <numbers>

// How space is seen on the stage, and what becomes of its points there.
namespace flash::avm2
{

using Kind = NativeMember::Kind;
using space::kMatrix3D;
using space::kVector;
using space::Raw;

namespace
{

constexpr std::string_view kPerspective = "flash.geom::PerspectiveProjection";
constexpr double kOwnWidth = 500; ///< of the view that one is made for that belongs to no stage, pixels

double focalLengthOf(double fieldOfView, double width)
{
    return width / 2 / std::tan(fieldOfView * std::numbers::pi / 360);
}
double fieldOfViewOf(double focalLength, double width)
{
    return std::atan(width / 2 / focalLength) * 360 / std::numbers::pi;
}

/// Of an object's, as long as it is that object's; else a record of its own.
class PerspectiveObject final : public Object
{
public:
    AVM2_NATIVE(Object)
    PerspectiveObject(Traits* traits, Object* proto) : Object(traits, proto)
    {
        own.focalLength = focalLengthOf(own.fieldOfView, kOwnWidth);
        own.centerX = own.centerY = kOwnWidth / 2;
    }
    void trace(Tracer& tracer) override
    {
        Object::trace(tracer);
        tracer(target);
    }
    [[nodiscard]] swf::Perspective value() const
    {
        if (target == nullptr) return own;
        const stage::Space* held = target->node().space();
        if (held != nullptr && held->perspective) return *held->perspective;
        return target->node().stage().view().defaultPerspective();
    }
    void setValue(const swf::Perspective& wanted)
    {
        own = wanted;
        if (target != nullptr) target->node().setPerspective(wanted);
    }
    [[nodiscard]] double width() const
    {
        return target != nullptr ? target->node().stage().view().defaultPerspective().centerX * 2 : kOwnWidth;
    }
    swf::Perspective own;
    DisplayObject* target = nullptr;
};

PerspectiveObject& self(Call& call)
{
    return classes::selfAs<PerspectiveObject>(call, "flash.geom.PerspectiveProjection");
}

Value fieldOfView(Call& call) { return self(call).value().fieldOfView; }
Value setFieldOfView(Call& call)
{
    const double degrees = call.vm.toNumber(call.arg(0));
    if (!(degrees > 0 && degrees < 180))
        call.vm.throwError(ErrorClass::Argument, 2182,
                           "Invalid fieldOfView value.  The value must be greater than 0 and less than 180.");
    swf::Perspective value = self(call).value();
    value.fieldOfView = degrees;
    value.focalLength = focalLengthOf(degrees, self(call).width());
    self(call).setValue(value);
    return {};
}
Value focalLength(Call& call) { return self(call).value().focalLength; }
Value setFocalLength(Call& call)
{
    const double pixels = call.vm.toNumber(call.arg(0));
    if (!(pixels > 0) || std::isinf(pixels))
        call.vm.throwError(ErrorClass::Argument, 2186,
                           "Invalid focalLength value.  The value must be greater than 0.");
    swf::Perspective value = self(call).value();
    value.focalLength = pixels;
    value.fieldOfView = fieldOfViewOf(pixels, self(call).width());
    self(call).setValue(value);
    return {};
}
Value projectionCenter(Call& call)
{
    const swf::Perspective value = self(call).value();
    return newPoint(call.vm, value.centerX, value.centerY);
}
Value setProjectionCenter(Call& call)
{
    const swf::Point at = pointOf(objectArg(call, 0, "flash.geom::Point", "value"));
    swf::Perspective value = self(call).value();
    if (!std::isfinite(at.x) || !std::isfinite(at.y)) return {};
    value.centerX = at.x;
    value.centerY = at.y;
    self(call).setValue(value);
    return {};
}
/// Without its centre: what is divided by the fourth number is seen from straight ahead.
Value toMatrix3D(Call& call)
{
    const auto focal = static_cast<float>(self(call).value().focalLength);
    const Raw raw = {focal, 0, 0, 0, 0, focal, 0, 0, 0, 0, 1, 1, 0, 0, 0, 0};
    return space::newMatrix3D(call.vm, raw);
}

// ---- Utils3D ----
swf::Matrix3D numbersOfMatrix(Call& call, std::uint32_t i, const char* name)
{
    const Raw& raw = space::matrixArg(call, i, name).raw;
    swf::Matrix3D matrix;
    for (std::size_t k = 0; k < raw.size(); ++k) matrix.m[k] = raw[k];
    return matrix;
}
Value projectVector(Call& call)
{
    const swf::Matrix3D m = numbersOfMatrix(call, 0, "m");
    Object& v = objectArg(call, 1, kVector, "v");
    const auto [x, y, z, w] = m.map(slotNumber(v, 0), slotNumber(v, 1), slotNumber(v, 2));
    return space::newVector(call.vm, x / w, y / w, z / w, w);
}
/// The third of each three numbers for a picture's places is what drawTriangles() wants of depth.
Value projectVectors(Call& call)
{
    Vm& vm = call.vm;
    const swf::Matrix3D m = numbersOfMatrix(call, 0, "m");
    for (const std::uint32_t i : {1U, 2U, 3U}) {
        constexpr const char* kNames[] = {"", "verts", "projectedVerts", "uvts"};
        if (call.arg(i).isNullish())
            vm.throwError(ErrorClass::Type, 2007,
                          std::string("Parameter ") + kNames[i] + " must be non-null.");
    }
    const auto in = numbersOf(vm, call.arg(1));
    const std::size_t count = in.size() / 3;
    auto* out = as<VectorObject>(call.arg(2));
    auto* places = as<VectorObject>(call.arg(3));
    if (out == nullptr || places == nullptr) return {};
    const auto need = [&vm](Value list, const VectorObject& items, std::size_t length) {
        if (items.items.size() < length) vm.setPublic(list, "length", Value(static_cast<double>(length)));
    };
    need(call.arg(2), *out, 2 * count);
    for (std::size_t i = 0; i < count; ++i) {
        const auto [x, y, z, w] = m.map(in[3 * i], in[3 * i + 1], in[3 * i + 2]);
        if (2 * i + 1 < out->items.size()) {
            out->items[2 * i] = Value(x / w);
            out->items[2 * i + 1] = Value(y / w);
        }
        if (3 * i + 2 < places->items.size()) places->items[3 * i + 2] = Value(1 / w);
    }
    return {};
}
/// A matrix turned towards a place as far as the share says.
Value pointTowards(Call& call)
{
    Vm& vm = call.vm;
    const double share = vm.toNumber(call.arg(0));
    const Raw from = space::matrixArg(call, 1, "mat").raw;
    const Value aimed = space::newMatrix3D(vm, from);
    Call inner{vm, aimed, call.args + 2, call.count - 2};
    space::pointAt(inner);
    const Value whole = space::newMatrix3D(vm, from);
    const Value between[] = {aimed, Value(share)};
    Call step{vm, whole, between, 2};
    space::interpolateTo(step);
    return whole;
}

constexpr NativeMember kPerspectiveMembers[] = {
    {"fieldOfView", Kind::Getter, &fieldOfView, 0, 0, &setFieldOfView, "Number"},
    {"focalLength", Kind::Getter, &focalLength, 0, 0, &setFocalLength, "Number"},
    {"projectionCenter", Kind::Getter, &projectionCenter, 0, 0, &setProjectionCenter, "flash.geom::Point"},
    {"toMatrix3D", Kind::Method, &toMatrix3D, 0, 0, nullptr, "flash.geom::Matrix3D"},
};
constexpr NativeMember kUtils[] = {
    {"projectVector", Kind::Static, &projectVector, 2, 2, nullptr, "flash.geom::Vector3D"},
    {"projectVectors", Kind::Static, &projectVectors, 4, 4, nullptr, "void"},
    {"pointTowards", Kind::Static, &pointTowards, 3, 5, nullptr, "flash.geom::Matrix3D"},
};
constexpr NativeClass kClasses[] = {
    {.package = "flash.geom",
     .name = "PerspectiveProjection",
     .base = {},
     .minArguments = 0,
     .maxArguments = 0,
     .allocate = &classes::allocateNative<PerspectiveObject>,
     .members = kPerspectiveMembers},
    {.package = "flash.geom", .name = "Utils3D", .base = {}, .members = kUtils},
};

} // namespace

/// The root always has one; others have what a script gives them.
Value transformPerspective(Call& call)
{
    DisplayObject& object = transformTarget(call);
    const stage::Space* held = object.node().space();
    if (!object.isRoot && (held == nullptr || !held->perspective)) return Value::null();
    auto* made = as<PerspectiveObject>(Value(call.vm.instantiate(call.vm.nativeClass(kPerspective))));
    made->target = &object;
    return Value(made);
}
/// The record is the object's from then on, and changes with it.
Value setTransformPerspective(Call& call)
{
    DisplayObject& object = transformTarget(call);
    auto* given = as<PerspectiveObject>(Value(optionalArg(call, 0, kPerspective)));
    if (given == nullptr) {
        object.node().setPerspective({});
        return {};
    }
    const swf::Perspective value = given->value();
    given->target = &object;
    given->setValue(value);
    return {};
}

std::span<const NativeClass> perspectiveClasses() { return kClasses; }

} // namespace flash::avm2
