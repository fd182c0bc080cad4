#include "flash/avm1/ArrayNative.h"
#include "flash/avm1/Interpreter.h"

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
    for (int depth = 0; object != nullptr && depth <= Object::kLongestPrototypeChain; ++depth) {
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
/// @returns null when it has not.
Object* scriptedWrapper(Vm& vm, Value primitive, std::string_view className, Object* builtInPrototype)
{
    Value constructor;
    vm.global()->getPlain(vm, vm.name(className), vm.global(), constructor);
    Object* function = constructor.asObject();
    if (function != nullptr && vm.prototypeOf(function) == builtInPrototype) return nullptr;
    const Value wrapped = Interpreter::construct(vm, constructor, {&primitive, 1});
    return wrapped.isObject() ? wrapped.object() : vm.newObject(nullptr);
}

} // namespace

Value Interpreter::getMember(Vm& vm, Value base, Name name)
{
    switch (base.type()) {
    case Value::Type::Object: return base.object()->get(vm, name);
    case Value::Type::String:
        if (Object* object = scriptedWrapper(vm, base, "String", vm.builtIns().string))
            return object->get(vm, name);
        if (!vm.builtIns().string->hasOwn(vm, name) && name.matches(vm.common().length, vm.isCaseSensitive()))
            return Value(static_cast<double>(base.string()->length()));
        return vm.builtIns().string->get(vm, name, base);
    case Value::Type::Number: return vm.builtIns().number->get(vm, name, base);
    case Value::Type::Boolean: return vm.builtIns().boolean->get(vm, name, base);
    case Value::Type::Undefined:
    case Value::Type::Null: break;
    }
    return {};
}

namespace
{

bool isHit(const InlineCache& cache, const Object* object, const NameText* name, std::uint32_t epoch)
{
    return cache.epoch == epoch && cache.layout == object->layout() && cache.name == name &&
           (cache.holder == nullptr || cache.protoBits == object->protoValue().bits());
}

/// Remembers where a look-up ends, when that is a plain property that can be remembered.
bool fill(InlineCache& cache, const Frame& frame, Object* object, Name name)
{
    if (object->hasHooks() || !object->layout()->isShared()) return false;
    Object* holder = object;
    for (int depth = 0; holder != nullptr && depth < 8; ++depth) {
        if (holder->hasHooks()) return false;
        const Layout* layout = holder->layout();
        const std::uint32_t at = layout->find(name, frame.isCaseSensitive());
        if (at == Layout::kMissing) {
            holder = holder->prototype(frame.vm);
            continue;
        }
        const Layout::Property& property = layout->properties()[at];
        if ((property.flags & (kAccessor | kVersionMask)) != 0) return false;
        cache.layout = object->layout();
        cache.protoBits = object->protoValue().bits();
        cache.name = name.cell();
        cache.holder = holder == object ? nullptr : holder;
        cache.slot = property.slot;
        cache.epoch = frame.vm.epoch();
        return true;
    }
    return false;
}

} // namespace

Value Interpreter::getMemberCached(Frame& frame, Value base, Value key, std::uint32_t cacheIndex)
{
    Vm& vm = frame.vm;
    Object* object = base.asObject();
    if (object != nullptr && key.isString()) {
        const Name name = vm.names().intern(key.string());
        InlineCache& cache = frame.code->cache(cacheIndex);
        if (isHit(cache, object, name.cell(), vm.epoch()) || fill(cache, frame, object, name))
            return (cache.holder == nullptr ? object : cache.holder)->slot(cache.slot);
        return object->get(vm, name);
    }
    if (object != nullptr && key.isNumber()) {
        if (ArrayNative* array = object->native<ArrayNative>()) {
            if (const Value* element = array->elementAt(key.number())) return *element;
        }
    }
    return getMember(vm, base, avm1::toName(vm, key));
}

Value Interpreter::getMethodCached(Frame& frame, Value base, Name name, Object*& holder,
                                   std::uint32_t cacheIndex)
{
    Vm& vm = frame.vm;
    Object* object = base.asObject();
    if (object == nullptr) return getMember(vm, base, name);
    InlineCache& cache = frame.code->cache(cacheIndex);
    if (isHit(cache, object, name.cell(), vm.epoch()) || fill(cache, frame, object, name)) {
        holder = cache.holder == nullptr ? object : cache.holder;
        return holder->slot(cache.slot);
    }
    Value result;
    if (lookup(vm, object, name, base, result, holder)) return result;
    return object->get(vm, name);
}

void Interpreter::setMemberCached(Frame& frame, Value base, Value key, Value value, std::uint32_t cacheIndex)
{
    Vm& vm = frame.vm;
    Object* object = base.asObject();
    if (object == nullptr) {
        // Scripts name clips by their paths now and then.
        return;
    }
    if (key.isString()) {
        const Name name = vm.names().intern(key.string());
        InlineCache& cache = frame.code->cache(cacheIndex);
        if (!object->hasWatches()) {
            if (isHit(cache, object, name.cell(), vm.epoch()) && cache.holder == nullptr) {
                object->setSlot(cache.slot, value);
                return;
            }
            const std::uint32_t at = object->hasHooks() || !object->layout()->isShared()
                                         ? Layout::kMissing
                                         : object->layout()->find(name, frame.isCaseSensitive());
            if (at != Layout::kMissing &&
                (object->layout()->properties()[at].flags & (kAccessor | kReadOnly | kVersionMask)) == 0 &&
                fill(cache, frame, object, name)) {
                object->setSlot(cache.slot, value);
                return;
            }
        }
        object->put(vm, name, value);
        return;
    }
    if (key.isNumber() && !object->hasWatches()) {
        if (ArrayNative* array = object->native<ArrayNative>()) {
            if (Value* element = array->elementAt(key.number())) {
                *element = value;
                return;
            }
        }
    }
    object->put(vm, avm1::toName(vm, key), value);
}

Value Interpreter::getVariableCached(Frame& frame, Value key, std::uint32_t cacheIndex)
{
    Vm& vm = frame.vm;
    const Name name = avm1::toName(vm, key);
    Object* first = frame.scope->object;
    if (frame.scope->kind == Scope::Kind::Activation) {
        InlineCache& cache = frame.code->cache(cacheIndex);
        if (isHit(cache, first, name.cell(), vm.epoch()) ||
            (!name.isPath() && fill(cache, frame, first, name)))
            return (cache.holder == nullptr ? first : cache.holder)->slot(cache.slot);
    }
    return getVariable(frame, name);
}

Value Interpreter::getVariable(Frame& frame, Name name, Object** thisOfCall)
{
    if (name.isPath()) return getPath(frame, name, thisOfCall);
    return getPlainVariable(frame, name, thisOfCall);
}

Value Interpreter::getPlainVariable(Frame& frame, Name name, Object** thisOfCall)
{
    Vm& vm = frame.vm;
    const bool sensitive = frame.isCaseSensitive();
    const Names::Common& common = vm.common();
    const std::uint16_t suppressed = frame.callee != nullptr ? frame.callee->code()->head.flags : 0;
    bool own = frame.callee != nullptr;
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
            // The running function's own variables that need no slot.
            own = false;
            if ((suppressed & FunctionHead::SuppressThis) == 0 && name.matches(common.self, sensitive))
                return frame.self;
            if ((suppressed & FunctionHead::SuppressArguments) == 0 &&
                name.matches(common.arguments, sensitive))
                return argumentsObject(frame);
            if ((suppressed & FunctionHead::SuppressSuper) == 0 && name.matches(common.super, sensitive))
                return superObject(frame);
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
