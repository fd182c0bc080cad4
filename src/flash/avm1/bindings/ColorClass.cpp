#include "flash/avm1/bindings/Classes.h"

#include <cmath>

namespace flash::avm1
{

namespace
{

stage::Node* targetOf(Call& call)
{
    Object* self = call.self.asObject();
    if (!self) return nullptr;
    const Value target = self->get(call.vm, call.vm.name(std::string_view("target")));
    if (target.isUndefined()) return nullptr;
    Object* object = target.asObject();
    if (!object) object = call.vm.resolveTarget(call.vm.target(), toText(call.vm, target));
    return StageBinding::of(call).nodeOf(object);
}

Value construct(Call& call)
{
    if (Object* self = call.self.asObject()) {
        self->define(call.vm, "target", call.arg(0), 0);
        // The whole object becomes constant, what `new` put there before included.
        self->changeFlags(call.vm, Name(), kBuiltIn | kReadOnly, 0);
    }
    return {};
}

Value setRgb(Call& call)
{
    stage::Node* node = targetOf(call);
    if (!node) return {};
    const int rgb = intArg(call, 0);
    swf::ColorTransform color = node->color();
    color.redMul = color.greenMul = color.blueMul = 0;
    color.redAdd = static_cast<std::int16_t>((rgb >> 16) & 255);
    color.greenAdd = static_cast<std::int16_t>((rgb >> 8) & 255);
    color.blueAdd = static_cast<std::int16_t>(rgb & 255);
    node->setScriptTransformed();
    node->setColor(color);
    return {};
}

Value getRgb(Call& call)
{
    stage::Node* node = targetOf(call);
    if (!node) return {};
    const swf::ColorTransform& color = node->color();
    return Value((color.redAdd << 16) | (color.greenAdd << 8) | color.blueAdd);
}

struct Channel {
    const char* multiplier;
    const char* addend;
    std::int16_t swf::ColorTransform::*mul;
    std::int16_t swf::ColorTransform::*add;
};
constexpr Channel kChannels[] = {
    {"ra", "rb", &swf::ColorTransform::redMul, &swf::ColorTransform::redAdd},
    {"ga", "gb", &swf::ColorTransform::greenMul, &swf::ColorTransform::greenAdd},
    {"ba", "bb", &swf::ColorTransform::blueMul, &swf::ColorTransform::blueAdd},
    {"aa", "ab", &swf::ColorTransform::alphaMul, &swf::ColorTransform::alphaAdd},
};

Value setTransform(Call& call)
{
    stage::Node* node = targetOf(call);
    Object* transform = call.arg(0).asObject();
    if (!node || !transform) return {};
    Vm& vm = call.vm;
    swf::ColorTransform color = node->color();
    for (const Channel& channel : kChannels) {
        Value value;
        if (transform->find(vm, vm.name(std::string_view(channel.multiplier)), value, Value(transform)))
            color.*channel.mul = static_cast<std::int16_t>(toInt32(toNumber(vm, value) * 256 / 100));
        if (transform->find(vm, vm.name(std::string_view(channel.addend)), value, Value(transform)))
            color.*channel.add = static_cast<std::int16_t>(toInt32(toNumber(vm, value)));
    }
    node->setScriptTransformed();
    node->setColor(color);
    return {};
}

Value getTransform(Call& call)
{
    stage::Node* node = targetOf(call);
    if (!node) return {};
    Object* result = call.vm.newObject();
    const swf::ColorTransform& color = node->color();
    // For-in loops show the last one first.
    for (const Channel& channel : kChannels) {
        result->define(call.vm, channel.addend, Value(static_cast<int>(color.*channel.add)));
        result->define(call.vm, channel.multiplier, Value(color.*channel.mul * 100 / 256.0));
    }
    return result;
}

// clang-format off
constexpr MemberInfo kMembers[] = {
    {"setRGB",       1, kReadOnly, &setRgb, 0},
    {"setTransform", 1, kReadOnly, &setTransform, 1},
    {"getRGB",       0, kReadOnly, &getRgb, 2},
    {"getTransform", 0, kReadOnly, &getTransform, 3},
};
// clang-format on

} // namespace

void installColor(StageBinding& binding)
{
    constexpr int kNativeTable = 700;
    Vm& vm = binding.vm();
    vm.prototypeOf(vm.defineClass("Color", &construct, kMembers, 0, kNativeTable))
        ->changeFlags(vm, Name(), kReadOnly, 0);
}

} // namespace flash::avm1
