#pragma once

#include "flash/avm2/interpreter/Vm.h"

namespace flash::avm2::classes
{

/// What a class keeps for all its objects: it stands in the object that they inherit from, and lives as long
/// as the machine.
template <class State>
class ClassState final : public Object
{
public:
    AVM2_NATIVE(Object)
    ClassState(Traits* traits, Object* proto) : Object(traits, proto) {}
    void trace(Tracer& tracer) override
    {
        Object::trace(tracer);
        if constexpr (requires { state.trace(tracer); }) state.trace(tracer);
    }
    State state;
};

/// To be called once, in the class's setUp.
template <class State>
State& addState(Vm& vm, ClassObject& cls)
{
    auto* made = vm.heap().make<ClassState<State>>(cls.prototype->traits(), cls.prototype->proto());
    if (PropertyTable* const members = cls.prototype->tableIfAny()) made->table() = std::move(*members);
    cls.prototype = made;
    return made->state;
}

/// Of the class that has it, or of one derived from that; null for others.
template <class State>
State* stateOf(const ClassObject& cls)
{
    for (const ClassObject* at = &cls; at != nullptr; at = at->base) {
        if (auto* holder = as<ClassState<State>>(at->prototype)) return &holder->state;
    }
    return nullptr;
}

} // namespace flash::avm2::classes
