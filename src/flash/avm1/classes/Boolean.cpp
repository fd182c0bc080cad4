#include "flash/avm1/classes/Classes.h"
#include "flash/avm1/interpreter/Boxed.h"

namespace flash::avm1::classes
{

namespace
{

Value construct(Call& call)
{
    if (!call.isConstruct) return call.count() == 0 ? Value() : Value(toBoolean(call.vm, call.arg(0)));
    const bool flag = call.count() > 0 && toBoolean(call.vm, call.arg(0));
    if (Object* self = call.self.asObject()) self->attachNew<Boxed>(Value(flag));
    return {};
}

Value inner(const Call& call)
{
    if (call.self.isBoolean()) return call.self;
    const Boxed* boxed = call.native<Boxed>();
    return boxed != nullptr && boxed->value.isBoolean() ? boxed->value : Value();
}

Value valueOf(Call& call) { return inner(call); }

Value toString(Call& call)
{
    const Value flag = inner(call);
    return flag.isUndefined() ? Value() : call.vm.string(flag.boolean() ? "true" : "false");
}

// clang-format off
constexpr MemberInfo kMembers[] = {
    // name      min    flags  function    native
    {"valueOf",  0,     0,     &valueOf,   0},
    {"toString", 0,     0,     &toString,  1},
};
// clang-format on
constexpr int kNativeTable = 107;

} // namespace

void installBoolean(Vm& vm)
{
    Function* constructor = vm.defineClass("Boolean", &construct, kMembers, 0, kNativeTable);
    vm.registerNative(kNativeTable, 2, &construct);
    vm.builtIns().boolean = vm.prototypeOf(constructor);
}

} // namespace flash::avm1::classes
