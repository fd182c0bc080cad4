#include "flash/avm2/bindings/Transform.h"

#include "flash/avm2/bindings/Conversions.h"
#include "flash/avm2/bindings/Player.h"
#include "flash/avm2/classes/Library.h"

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

Value matrix(Call& call) { return newMatrix(call.vm, target(call).node().matrix()); }
Value setMatrix(Call& call)
{
    auto& object = target(call);
    Object* matrix = optionalArg(call, 0, "flash.geom::Matrix");
    if (matrix == nullptr) return {};
    swf::Matrix wanted = matrixOf(*matrix);
    wanted.tx = std::trunc(wanted.tx);
    wanted.ty = std::trunc(wanted.ty);
    object.node().setMatrix(wanted);
    object.noteTransformed();
    return {};
}

/// The player multiplies single-precision numbers, and has the stage in twips on the way.
Value concatenatedMatrix(Call& call)
{
    swf::Matrix matrix = target(call).node().toStage();
    const auto passed = [](double value) {
        constexpr float kDown = 0.05F, kUp = 20;
        const float down = static_cast<float>(value) * kDown;
        return static_cast<double>(down * kUp);
    };
    matrix.a = passed(matrix.a);
    matrix.b = passed(matrix.b);
    matrix.c = passed(matrix.c);
    matrix.d = passed(matrix.d);
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
     .constructor = &constructTransform,
     .minArguments = 1,
     .maxArguments = 1,
     .allocate = &classes::allocateNative<TransformObject>,
     .members = kTransform,
     .slots = "matrix3D:* perspectiveProjection:*"},
};

} // namespace

Value newTransform(Vm& vm, DisplayObject& target)
{
    auto* made = as<TransformObject>(Value(vm.instantiate(vm.nativeClass("flash.geom::Transform"))));
    made->setSlot(0, Value::null());
    made->setSlot(1, Value::null());
    made->target = &target;
    return Value(made);
}

std::span<const NativeClass> transformClasses() { return kClasses; }

} // namespace flash::avm2
