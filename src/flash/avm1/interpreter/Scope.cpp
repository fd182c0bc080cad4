#include "flash/avm1/interpreter/ArrayNative.h"
#include "flash/avm1/interpreter/Interpreter.h"

#include <algorithm>

// Members and variables: where a name leads to, and the caches that remember it.
namespace flash::avm1
{

void Scope::trace(Tracer& tracer)
{
    tracer(object);
    tracer(outer);
}

bool Interpreter::lookup(Vm& vm, Object* object, Name name, Value receiver, Value& result, Object*& holder)
{
    for (int depth = 0; object != nullptr && depth <= Object::kMaxPrototypeChain; ++depth) {
        const bool found = object->hasHooks()
                               ? object->nativeBase()->getOwn(vm, *object, name, receiver, result)
                               : object->getPlain(vm, name, receiver, result);
        if (found) {
            holder = object;
            return true;
        }
        object = object->prototype(vm);
    }
    if (object != nullptr) abort(vm, "256 levels of prototypes were exceeded in one look-up.");
    return false;
}

namespace
{

/// A movie may put a class of its own in the place of a built-in one; primitives are then wrapped in that.
Object* scriptedWrapper(Vm& vm, Value primitive, Name className)
{
    Value constructor;
    vm.global()->getPlain(vm, className, vm.global(), constructor);
    const Value wrapped = Interpreter::construct(vm, constructor, {&primitive, 1});
    return wrapped.isObject() ? wrapped.object() : vm.newObject(nullptr);
}

/// As of the object that would be made around the value, which is not made for it.
Value memberOfPrimitive(Vm& vm, Object* prototype, Name name, Value primitive)
{
    const bool sensitive = vm.isCaseSensitive();
    if (name.matches(vm.common().proto, sensitive)) return prototype;
    if (vm.version() >= 6 && name.matches(vm.common().constructorInternal, sensitive))
        return prototype->get(vm, vm.common().constructor);
    return prototype->get(vm, name, primitive);
}

} // namespace

Value Interpreter::getMember(Vm& vm, Value base, Name name)
{
    switch (base.type()) {
    case Value::Type::Object: return base.object()->get(vm, name);
    case Value::Type::String:
        if (!vm.isBuiltInString()) return scriptedWrapper(vm, base, vm.common().string)->get(vm, name);
        if (!vm.builtIns().string->hasOwn(vm, name) && name.matches(vm.common().length, vm.isCaseSensitive()))
            return Value(static_cast<double>(base.string()->length()));
        return memberOfPrimitive(vm, vm.builtIns().string, name, base);
    case Value::Type::Number: return memberOfPrimitive(vm, vm.builtIns().number, name, base);
    case Value::Type::Boolean: return memberOfPrimitive(vm, vm.builtIns().boolean, name, base);
    case Value::Type::Undefined:
    case Value::Type::Null: break;
    }
    return {};
}

Value Interpreter::getVariable(Frame& frame, Name name, Object** thisOfCall)
{
    if (name.isPath()) return getPath(frame, name, thisOfCall);
    return getPlainVariable(frame, name, thisOfCall);
}

bool Interpreter::getOwnOfCall(Frame& frame, Name name, Value& result)
{
    const bool sensitive = frame.isCaseSensitive();
    const AtomTable::Common& common = frame.vm.common();
    const std::uint16_t suppressed = frame.callee->code()->head.flags;
    if ((suppressed & FunctionHead::SuppressThis) == 0 && name.matches(common.self, sensitive))
        result = frame.self;
    else if ((suppressed & FunctionHead::SuppressArguments) == 0 && name.matches(common.arguments, sensitive))
        result = argumentsObject(frame);
    else if ((suppressed & FunctionHead::SuppressSuper) == 0 && name.matches(common.super, sensitive))
        result = superObject(frame);
    else
        return false;
    return true;
}

Value Interpreter::getPlainVariable(Frame& frame, Name name, Object** thisOfCall)
{
    Vm& vm = frame.vm;
    const bool sensitive = frame.isCaseSensitive();
    const AtomTable::Common& common = vm.common();
    // The running function's own variables that need no slot come after those that have one.
    bool own = frame.callee != nullptr;
    Value ownValue;
    if (own && frame.activation == nullptr) {
        own = false;
        if (getOwnOfCall(frame, name, ownValue)) return ownValue;
    }
    for (Scope* scope = frame.scope; scope != nullptr; scope = scope->outer) {
        Object* object = scope->kind == Scope::Kind::Target ? frame.variableTarget() : scope->object;
        if (object != nullptr) {
            Value result;
            const Value receiver(object);
            const bool found = object->find(vm, name, result, receiver);
            if (found) {
                if (thisOfCall != nullptr) *thisOfCall = object;
                return result;
            }
        }
        if (scope->kind == Scope::Kind::Activation && own) {
            own = false;
            if (getOwnOfCall(frame, name, ownValue)) return ownValue;
        }
        if (vm.isUnwinding()) return {};
    }
    if (name.matches(common.self, sensitive)) {
        // A function that does without `this` sees that of its clip.
        return frame.callee == nullptr ? frame.self : Value(frame.baseTarget);
    }
    // Version 4 knows no global object.
    if (frame.version < 5) return {};
    if (frame.version > 5 && name.matches(common.global, sensitive)) return vm.global();
    Value result;
    if (vm.global()->find(vm, name, result, vm.global())) {
        if (thisOfCall != nullptr) *thisOfCall = nullptr;
        return result;
    }
    // A resolver on a `with` object or on the target may still know the name.
    for (Scope* scope = frame.scope; scope != nullptr; scope = scope->outer) {
        Object* object = scope->kind == Scope::Kind::Target ? frame.variableTarget() : scope->object;
        if (object == nullptr || scope->kind == Scope::Kind::Activation) continue;
        result = object->get(vm, name);
        if (!result.isUndefined()) {
            if (thisOfCall != nullptr) *thisOfCall = object;
            return result;
        }
    }
    return {};
}

void Interpreter::setVariable(Frame& frame, Name name, Value value)
{
    Vm& vm = frame.vm;
    if (name.isPath()) return setPath(frame, name, value);
    for (Scope* scope = frame.scope; scope != nullptr; scope = scope->outer) {
        if (scope->kind == Scope::Kind::Target) break;
        if (!scope->object->has(vm, name)) continue;
        scope->object->put(vm, name, value);
        return;
    }
    if (Object* target = frame.variableTarget()) target->put(vm, name, value);
}

bool Interpreter::deleteVariable(Frame& frame, Name name)
{
    Vm& vm = frame.vm;
    for (Scope* scope = frame.scope; scope != nullptr; scope = scope->outer) {
        Object* object = scope->kind == Scope::Kind::Target ? frame.variableTarget() : scope->object;
        if (object != nullptr && object->hasOwn(vm, name)) return object->remove(vm, name);
    }
    return vm.global()->remove(vm, name);
}

// ---- paths ----------------------------------------------------------------------------------------------

namespace
{

struct SplitPath {
    std::u16string_view base, name;
    bool hasBase;
};

/// "/a/b:c", "a.b.c" and "a/b.c" name the variable c of something; "a/b" is a whole.
SplitPath splitVariable(std::u16string_view path)
{
    const std::size_t at = path.find_last_of(u".:");
    if (at == std::u16string_view::npos) return {{}, path, false};
    return {path.substr(0, at), path.substr(at + 1), true};
}

} // namespace

Value Interpreter::getPath(Frame& frame, Name name, Object** thisOfCall)
{
    Vm& vm = frame.vm;
    const std::u16string_view path = name.view();
    const SplitPath split = splitVariable(path);
    if (split.hasBase) {
        Object* base = resolve(frame, split.base);
        if (base == nullptr || split.name.empty()) return {};
        if (thisOfCall != nullptr) *thisOfCall = base;
        return base->get(vm, vm.name(split.name));
    }
    // Slashes alone: a clip, a variable of that very name, or a variable in a clip. Version 5 looks for the
    // variable first.
    Object* target = frame.variableTarget();
    if (target == nullptr) return {};
    Value result;
    if (frame.version == 5 && target->getPlain(vm, name, target, result)) return result;
    if (Object* clip = vm.resolveTarget(target, path)) return clip;
    if (target->getPlain(vm, name, target, result)) return result;
    const std::size_t slash = path.rfind(u'/');
    Object* base = vm.resolveTarget(target, path.substr(0, std::max<std::size_t>(slash, slash == 0 ? 1 : 0)));
    if (base == nullptr || slash + 1 == path.size()) return {};
    if (thisOfCall != nullptr) *thisOfCall = base;
    return base->get(vm, vm.name(path.substr(slash + 1)));
}

void Interpreter::setPath(Frame& frame, Name name, Value value)
{
    Vm& vm = frame.vm;
    const SplitPath split = splitVariable(name.view());
    if (!split.hasBase) {
        if (Object* target = frame.variableTarget()) target->put(vm, name, value);
        return;
    }
    Object* base = resolve(frame, split.base);
    if (base != nullptr && !split.name.empty()) base->put(vm, vm.name(split.name), value);
}

Object* Interpreter::resolve(Frame& frame, std::u16string_view path)
{
    Vm& vm = frame.vm;
    Object* const target = frame.variableTarget();
    if (path.empty()) return nullptr;
    if (path[0] == u'/' || path[0] == u'.')
        return target == nullptr ? nullptr : vm.resolveTarget(target, path);
    if (path[0] == u':') path.remove_prefix(1);
    // The first step is looked for in everything in scope; clips prefer their children to their variables.
    const std::size_t end = std::min(path.find_first_of(u"/.:"), path.size());
    const Name first = vm.name(path.substr(0, end));
    Object* object = nullptr;
    for (Scope* scope = frame.scope; scope != nullptr && object == nullptr; scope = scope->outer) {
        Object* candidate = scope->kind == Scope::Kind::Target ? target : scope->object;
        if (candidate == nullptr) continue;
        if (vm.host().isClip(candidate))
            object = vm.host().child(candidate, first.view(), frame.isCaseSensitive());
        Value member;
        if (object == nullptr && candidate->find(vm, first, member, candidate)) object = member.asObject();
    }
    if (object == nullptr) object = getPlainVariable(frame, first, nullptr).asObject();
    if (object == nullptr || end >= path.size()) return object;
    return vm.resolveTarget(object, path.substr(end + 1));
}

} // namespace flash::avm1
