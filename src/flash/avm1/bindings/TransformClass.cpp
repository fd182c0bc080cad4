#include "flash/avm1/bindings/Classes.h"
#include "flash/avm1/classes/GeomValues.h"

// flash.geom.Transform: place and colours of an instance, alone and together with all that contains it.
namespace flash::avm1
{

namespace
{

class TransformNative final : public Native
{
public:
    static constexpr char kTag = 0;
    explicit TransformNative(Object* target) : target(target) {}
    [[nodiscard]] const void* tag() const override { return &kTag; }
    void trace(Tracer& tracer) override { tracer(target); }
    Object* target;
};

stage::Node* targetOf(Call& call)
{
    const auto* native = call.native<TransformNative>();
    return native ? StageBinding::of(call).nodeOf(native->target) : nullptr;
}

/// Matrices of scripts are in pixels, ours move by twips.
swf::Matrix inPixels(swf::Matrix matrix)
{
    matrix.tx /= swf::kTwipsPerPixel;
    matrix.ty /= swf::kTwipsPerPixel;
    return matrix;
}

Value getMatrix(Call& call)
{
    const stage::Node* node = targetOf(call);
    return node ? newMatrix(call.vm, inPixels(node->matrix())) : Value();
}
Value setMatrix(Call& call)
{
    stage::Node* node = targetOf(call);
    auto matrix = matrixFromValue(call.vm, call.arg(0));
    if (!node || !matrix) return {};
    matrix->tx = std::trunc(matrix->tx * swf::kTwipsPerPixel);
    matrix->ty = std::trunc(matrix->ty * swf::kTwipsPerPixel);
    node->setMatrixOnly(*matrix);
    node->setScriptTransformed();
    return {};
}
Value getConcatenatedMatrix(Call& call)
{
    const stage::Node* node = targetOf(call);
    return node ? newMatrix(call.vm, inPixels(node->toStage())) : Value();
}

Value getColorTransform(Call& call)
{
    const stage::Node* node = targetOf(call);
    return node ? newColorTransform(call.vm, node->color()) : Value();
}
Value setColorTransform(Call& call)
{
    stage::Node* node = targetOf(call);
    const auto color = colorTransformFromValue(call.vm, call.arg(0));
    if (!node || !color) return {};
    node->setColor(*color);
    node->setScriptTransformed();
    return {};
}
Value getConcatenatedColorTransform(Call& call)
{
    const stage::Node* node = targetOf(call);
    if (!node) return {};
    swf::ColorTransform color = node->color();
    while ((node = node->parent()) != nullptr) color = node->color() * color;
    return newColorTransform(call.vm, color);
}

Value getPixelBounds(Call& call)
{
    stage::Node* node = targetOf(call);
    if (!node) return {};
    const swf::Rect bounds = node->boundsThrough(node->toStage());
    if (bounds.isEmpty()) return newRectangle(call.vm, 0, 0, 0, 0);
    const auto pixels = [](std::int32_t twips) { return std::floor(twips / 20.0); };
    return newRectangle(call.vm, pixels(bounds.xMin), pixels(bounds.yMin),
                        std::ceil(bounds.xMax / 20.0) - pixels(bounds.xMin),
                        std::ceil(bounds.yMax / 20.0) - pixels(bounds.yMin));
}

Value construct(Call& call)
{
    Object* self = call.self.asObject();
    Object* target = call.arg(0).asObject();
    if (!self || !call.isConstruct) return {};
    // Later players give no object at all where nothing is given to transform.
    if (call.count() == 0 && StageBinding::of(call).host().isOfLaterPlayers()) return Value::null();
    if (!StageBinding::of(call).nodeOf(target)) return {};
    self->attachNew<TransformNative>(target);
    return {};
}

/// A new object at each access.
Value getTransform(Call& call)
{
    Vm& vm = call.vm;
    if (!selfNode(call)) return {};
    Object* package = vm.global();
    for (const char* name : {"flash", "geom"}) {
        package = package->get(vm, vm.name(std::string_view(name))).asObject();
        if (!package) return {};
    }
    return vm.construct(package->get(vm, vm.name(std::string_view("Transform"))), {&call.self, 1});
}
Value setTransform(Call& call)
{
    Object* given = call.arg(0).asObject();
    const auto* native = given ? given->native<TransformNative>() : nullptr;
    stage::Node* node = selfNode(call);
    const stage::Node* from = native ? StageBinding::of(call).nodeOf(native->target) : nullptr;
    if (!node || !from) return {};
    node->setMatrixOnly(from->matrix());
    node->setColor(from->color());
    node->setScriptTransformed();
    return {};
}

// clang-format off
constexpr AccessorInfo kAccessors[] = {
    {"matrix",                     kFrom8, &getMatrix,                     &setMatrix},
    {"concatenatedMatrix",         kFrom8, &getConcatenatedMatrix,         nullptr},
    {"colorTransform",             kFrom8, &getColorTransform,             &setColorTransform},
    {"concatenatedColorTransform", kFrom8, &getConcatenatedColorTransform, nullptr},
    {"pixelBounds",                kFrom8, &getPixelBounds,                nullptr},
};
constexpr AccessorInfo kTransform[] = {{"transform", kFrom8, &getTransform, &setTransform}};
// clang-format on

} // namespace

void installTransform(StageBinding& binding, Object* package)
{
    Vm& vm = binding.vm();
    Function* constructor = vm.newFunction(&construct);
    Object* prototype = vm.newObject();
    prototype->define(vm, vm.common().constructor, constructor, kBuiltIn);
    constructor->define(vm, vm.common().prototype, prototype, kBuiltIn);
    vm.addAccessors(prototype, kAccessors, 0);
    package->define(vm, "Transform", Value(constructor));
    for (const char* name : {"MovieClip", "TextField", "Video"}) {
        Object* owner = vm.global()->get(vm, vm.name(std::string_view(name))).asObject();
        if (owner) vm.addAccessors(vm.prototypeOf(owner), kTransform);
    }
}

} // namespace flash::avm1
