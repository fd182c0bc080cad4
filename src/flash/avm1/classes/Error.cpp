#include "flash/avm1/classes/ClassTable.h"
#include "flash/avm1/classes/Classes.h"

namespace flash::avm1::classes
{

namespace
{

Value construct(Call& call)
{
    Object* self = call.self.asObject();
    if (self != nullptr && call.count() > 0 && !call.arg(0).isUndefined())
        self->put(call.vm, call.vm.common().message, call.arg(0));
    return {};
}

Value toString(Call& call)
{
    Object* self = call.self.asObject();
    return self == nullptr ? Value() : self->get(call.vm, call.vm.common().message);
}

constexpr LibraryFunction kMembers[] = {{"toString", Written::Script, 0, &toString}};

} // namespace

void installError(Vm& vm)
{
    Function* constructor = vm.defineClass("Error", &construct);
    Object* prototype = vm.prototypeOf(constructor);
    prototype->define(vm, vm.common().name, vm.string("Error"), 0);
    prototype->define(vm, vm.common().message, vm.string("Error"), 0);
    defineFunctions(vm, prototype, kMembers);
    vm.builtIns().error = prototype;
}

} // namespace flash::avm1::classes
