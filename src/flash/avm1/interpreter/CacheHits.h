#pragma once

#include "flash/avm1/interpreter/Interpreter.h"

// The short ways of what scripts do most: what an inline cache knows, and keys that are texts already.
// Anything else is left to Interpreter's functions of the same purpose.
namespace flash::avm1
{

/// As toName().
inline Name nameOfKey(Vm& vm, Value key)
{
    return key.isString() ? vm.names().intern(key.string()) : avm1::toName(vm, key);
}

/// @returns the object that a scope is; null past the last one, and where there is none.
inline Object* objectOf(const Frame& frame, const Scope& scope)
{
    return scope.kind == Scope::Kind::Target ? frame.variableTarget() : scope.object;
}

/// @returns the object that has the variable, or null when the cache does not know.
inline Object* cachedVariable(const InlineCache& cache, Frame& frame, const Atom* name)
{
    Vm& vm = frame.vm;
    if (cache.epoch != vm.epoch() || cache.name != name) return nullptr;
    const Scope* scope = frame.scope;
    Object* object = nullptr;
    for (std::size_t i = 0; i < cache.count; ++i) {
        const bool isGlobal = cache.inGlobal && i + 1U == cache.count;
        if (isGlobal != (scope == nullptr)) return nullptr;
        object = isGlobal ? vm.global() : objectOf(frame, *scope);
        if (object == nullptr || !cache.guards[i].admits(*object)) return nullptr;
        if (scope != nullptr) scope = scope->outer;
    }
    return object;
}

/// @returns the object whose slot `cache.slot` is the value's member, or null when the cache does not know.
inline Object* cachedMember(const InlineCache& cache, const Vm& vm, Value base, Value key)
{
    if (!base.isObject() || !key.isString()) return nullptr;
    Object* object = base.object();
    return cache.admits(*object, key.string()->atom(), vm.epoch()) ? cache.holderOr(object) : nullptr;
}

/// @returns the object whose slot `cache.slot` an assignment to the value's member writes, and no more; or
/// null.
inline Object* cachedAssignment(const InlineCache& cache, const Vm& vm, Value base, Value key)
{
    if (!base.isObject() || !key.isString()) return nullptr;
    Object* object = base.object();
    const bool isPlain = cache.admits(*object, key.string()->atom(), vm.epoch()) && cache.next == nullptr;
    return isPlain && !object->hasWatches() ? object : nullptr;
}

} // namespace flash::avm1
