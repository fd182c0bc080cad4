#include "flash/avm2/bindings/Transform.h"

#include "flash/avm2/bindings/Conversions.h"
#include "flash/avm2/bindings/Matrix3D.h"
#include "flash/avm2/bindings/Player.h"
#include "flash/avm2/classes/Library.h"

#include <vector>

namespace flash::avm2
{

using Kind = NativeMember::Kind;

namespace
{

TransformObject& self(Call& call) { return classes::selfAs<TransformObject>(call, "flash.geom.Transform"); }

DisplayObject& target(Call& call)
{
    DisplayObject* found = self(call).target;
    if (found == nullptr)
        call.vm.throwError(ErrorClass::Type, 1009,
                           "Cannot access a property or method of a null object reference.");
    return *found;
}

Value constructTransform(Call& call)
{
    self(call).target = &displayArg(call, 0, "displayObject");
    return {};
}

Value matrix(Call& call)
{
    const stage::Node& node = target(call).node();
    return node.spacePlace() != nullptr ? Value::null() : newMatrix(call.vm, node.matrix());
}
Value setMatrix(Call& call)
{
    auto& object = target(call);
    Object* matrix = optionalArg(call, 0, "flash.geom::Matrix");
    if (matrix == nullptr) return {};
    swf::Matrix wanted = matrixOf(*matrix);
    wanted.tx = std::trunc(wanted.tx);
    wanted.ty = std::trunc(wanted.ty);
    object.node().clearSpacePlace();
    object.node().setMatrix(wanted);
    object.noteTransformed();
    return {};
}

// ---- space ----
Value matrix3D(Call& call)
{
    DisplayObject& object = target(call);
    const stage::SpacePlace* place = object.node().spacePlace();
    return place == nullptr ? Value::null()
                            : space::newMatrix3D(call.vm, space::rawOf(place->matrix), &object);
}
/// None lays the object flat. The matrix goes on placing it when it is changed later.
Value setMatrix3D(Call& call)
{
    DisplayObject& object = target(call);
    auto* matrix = as<space::Matrix3DObject>(Value(optionalArg(call, 0, space::kMatrix3D)));
    object.noteTransformed();
    if (matrix == nullptr) {
        object.node().clearSpacePlace();
        return {};
    }
    matrix->refresh();
    if (matrix->target != nullptr && matrix->target != &object)
        call.vm.throwError(ErrorClass::Argument, 2189,
                           "A Matrix3D can not be assigned to more than one DisplayObject.");
    matrix->target = &object;
    matrix->commit();
    return {};
}
/// From one object's space to another's, without what the eye does.
Value relativeMatrix3D(Call& call)
{
    const auto outwards = [](DisplayObject& object) {
        swf::Matrix3D matrix;
        for (DisplayObject* at = &object; at != nullptr && !at->isStage; at = at->parent)
            matrix = at->node().matrix3D() * matrix;
        return matrix;
    };
    DisplayObject& object = target(call);
    const auto back = space::inverse(outwards(displayArg(call, 0, "relativeTo")));
    if (!back) return Value::null();
    return space::newMatrix3D(call.vm, space::rawOf(*back * outwards(object)));
}

/// The player multiplies single-precision numbers, and has the stage in twips on the way.
Value concatenatedMatrix(Call& call)
{
    DisplayObject& object = target(call);
    if (Player& player = Player::of(call.vm); object.isStage || !player.isOnStage(object)) {
        // What nothing places is told in the parts that the renderer has a pixel in, in twips.
        const stage::Quality quality = player.stage().view().quality();
        const std::u16string_view chosen = player.chosenQuality;
        const double samples = quality == stage::Quality::Low      ? 1
                               : quality == stage::Quality::Medium ? 2
                               : chosen.starts_with(u"16x16")      ? 16
                               : chosen.starts_with(u"8x8")        ? 8
                                                                   : 4;
        const double scale = swf::kTwipsPerPixel / samples;
        swf::Matrix own = object.isStage ? swf::Matrix() : object.node().matrix();
        own.a *= scale;
        own.b *= scale;
        own.c *= scale;
        own.d *= scale;
        own.tx = std::round(own.tx * scale);
        own.ty = std::round(own.ty * scale);
        return newMatrix(call.vm, own);
    }
    swf::Matrix matrix = object.node().toStage();
    constexpr float kDown = 0.05F, kUp = 20;
    std::vector<swf::Matrix> levels;
    for (DisplayObject* at = &object; at != nullptr && !at->isStage; at = at->parent)
        levels.push_back(at->node().matrix());
    float a = kDown, b = 0, c = 0, d = kDown;
    for (std::size_t i = levels.size(); i-- > 0;) {
        const auto la = static_cast<float>(levels[i].a), lb = static_cast<float>(levels[i].b),
                   lc = static_cast<float>(levels[i].c), ld = static_cast<float>(levels[i].d);
        const float outer[] = {a, b, c, d};
        a = la * outer[0] + lb * outer[2];
        b = la * outer[1] + lb * outer[3];
        c = lc * outer[0] + ld * outer[2];
        d = lc * outer[1] + ld * outer[3];
    }
    matrix.a = static_cast<double>(a * kUp);
    matrix.b = static_cast<double>(b * kUp);
    matrix.c = static_cast<double>(c * kUp);
    matrix.d = static_cast<double>(d * kUp);
    matrix.tx = std::round(matrix.tx);
    matrix.ty = std::round(matrix.ty);
    return newMatrix(call.vm, matrix);
}
Value colorTransform(Call& call) { return newColorTransform(call.vm, target(call).node().color()); }
Value setColorTransform(Call& call)
{
    auto& object = target(call);
    object.node().setColor(
        colorTransformOf(objectArg(call, 0, "flash.geom::ColorTransform", "colorTransform")));
    object.noteTransformed();
    return {};
}
Value concatenatedColorTransform(Call& call)
{
    DisplayObject* at = &target(call);
    swf::ColorTransform color = at->node().color();
    for (at = at->parent; at != nullptr; at = at->parent) color = at->node().color() * color;
    return newColorTransform(call.vm, color);
}
Value pixelBounds(Call& call)
{
    auto& node = target(call).node();
    return newRectangle(call.vm, node.boundsThrough(node.toStage()));
}

constexpr NativeMember kTransform[] = {
    {"matrix3D", Kind::Getter, &matrix3D, 0, 0, &setMatrix3D, "flash.geom::Matrix3D"},
    {"perspectiveProjection", Kind::Getter, &transformPerspective, 0, 0, &setTransformPerspective,
     "flash.geom::PerspectiveProjection"},
    {"getRelativeMatrix3D", Kind::Method, &relativeMatrix3D, 1, 1, nullptr, "flash.geom::Matrix3D"},
    {"matrix", Kind::Getter, &matrix, 0, 0, &setMatrix, "flash.geom::Matrix"},
    {"concatenatedMatrix", Kind::Getter, &concatenatedMatrix, 0, 0, nullptr, "flash.geom::Matrix"},
    {"colorTransform", Kind::Getter, &colorTransform, 0, 0, &setColorTransform, "flash.geom::ColorTransform"},
    {"concatenatedColorTransform", Kind::Getter, &concatenatedColorTransform, 0, 0, nullptr,
     "flash.geom::ColorTransform"},
    {"pixelBounds", Kind::Getter, &pixelBounds, 0, 0, nullptr, "flash.geom::Rectangle"},
};
constexpr NativeClass kClasses[] = {
    {.package = "flash.geom",
     .name = "Transform",
     .base = {},
     .flags = NativeClass::Sealed,
     .constructor = &constructTransform,
     .minArguments = 1,
     .maxArguments = 1,
     .allocate = &classes::allocateNative<TransformObject>,
     .members = kTransform},
};

} // namespace

DisplayObject& transformTarget(Call& call) { return target(call); }

Value newTransform(Vm& vm, DisplayObject& target)
{
    auto* made = as<TransformObject>(Value(vm.instantiate(vm.nativeClass("flash.geom::Transform"))));
    made->target = &target;
    return Value(made);
}

std::span<const NativeClass> transformClasses() { return kClasses; }

} // namespace flash::avm2
