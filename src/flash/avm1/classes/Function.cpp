#include "flash/avm1/interpreter/Function.h"

#include "flash/avm1/classes/Classes.h"
#include "flash/avm1/interpreter/ArrayNative.h"
#include "flash/avm1/interpreter/Interpreter.h"

namespace flash::avm1::classes
{

namespace
{

Value construct(Call& call) { return call.count() > 0 ? call.arg(0) : Value(call.vm.newObject(nullptr)); }

/// `this` of call and apply: primitives are wrapped; nothing becomes the global object.
Value selfFrom(Call& call)
{
    Object* self = toObject(call.vm, call.arg(0));
    return self != nullptr ? self : call.vm.global();
}

Value callFunction(Call& call)
{
    const std::span<const Value> rest = call.args.empty() ? call.args : call.args.subspan(1);
    return call.vm.call(call.self, selfFrom(call), rest);
}

Value apply(Call& call)
{
    constexpr double kMaxArguments = 65535;
    RootedValues args(call.vm.heap());
    if (Object* list = call.arg(1).asObject()) {
        const double length =
            std::min(toNumber(call.vm, list->get(call.vm, call.vm.common().length)), kMaxArguments);
        for (double i = 0; i < length && !call.vm.isUnwinding(); ++i)
            args->push_back(list->get(call.vm, call.vm.names().fromIndex(static_cast<std::uint32_t>(i))));
    }
    return call.vm.call(call.self, selfFrom(call), *args);
}

// clang-format off
constexpr MemberInfo kMembers[] = {
    // name   min    flags   function
    {"call",  0,     kFrom6, &callFunction},
    {"apply", 0,     kFrom6, &apply},
};
// clang-format on

} // namespace

void installFunction(Vm& vm)
{
    Function* constructor = vm.newFunction(&construct);
    Object* prototype = vm.builtIns().function;
    vm.builtIns().functionConstructor = constructor;
    constructor->define(vm, vm.common().constructor, constructor, kBuiltIn);
    prototype->define(vm, vm.common().constructor, constructor, kBuiltIn);
    constructor->define(vm, vm.common().prototype, prototype, kBuiltIn);
    vm.addMembers(prototype, kMembers);
    vm.global()->define(vm, "Function", constructor, kDontEnum | kFrom6);
}

} // namespace flash::avm1::classes
