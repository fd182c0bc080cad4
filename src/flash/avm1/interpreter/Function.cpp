#include "flash/avm1/interpreter/Function.h"

#include "flash/avm1/interpreter/Code.h"
#include "flash/avm1/interpreter/Vm.h"

namespace flash::avm1
{

Function::Function(Vm& vm, NativeFunction native, int minArguments)
    : Object(vm, vm.builtIns().function), m_native(native), m_minArguments(minArguments)
{
    becomeFunction(vm);
}

Function::Function(Vm& vm, FunctionCode& code, Code* owner, const TracedList<Value>* pool, Scope* scope,
                   Object* definingTarget)
    : Object(vm, vm.builtIns().function), m_code(&code), m_pool(pool), m_owner(owner), m_scope(scope),
      m_target(definingTarget)
{
    becomeFunction(vm);
}

void Function::becomeFunction(Vm& vm)
{
    m_isFunction = true;
    // Version 5 knows no Function.prototype.
    setProtoFlags(vm, kBuiltIn | kFrom6);
    if (vm.builtIns().functionConstructor != nullptr)
        define(vm, vm.common().constructor, vm.builtIns().functionConstructor, kBuiltIn);
}

void Function::trace(Tracer& tracer)
{
    Object::trace(tracer);
    tracer(m_owner);
    tracer(m_scope);
    tracer(m_target);
}

} // namespace flash::avm1
