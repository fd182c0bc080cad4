#include "flash/avm1/interpreter/ArrayNative.h"
#include "flash/avm1/interpreter/Interpreter.h"

#include <algorithm>
#include <utility>

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
    // What a register holds is no variable.
    using Head = FunctionHead;
    const std::uint16_t flags = frame.callee->code()->head.flags;
    if ((flags & (Head::SuppressThis | Head::PreloadThis)) == 0 && name.matches(common.self, sensitive))
        result = frame.self;
    else if ((flags & (Head::SuppressArguments | Head::PreloadArguments)) == 0 &&
             name.matches(common.arguments, sensitive))
        result = argumentsObject(frame);
    else if ((flags & (Head::SuppressSuper | Head::PreloadSuper)) == 0 &&
             name.matches(common.super, sensitive))
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
            const bool lost = frame.targetIsLost && scope->kind == Scope::Kind::Target;
            const bool found = lost ? object->getPlain(vm, name, receiver, result)
                                    : object->find(vm, name, result, receiver);
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
    bool own = frame.callee != nullptr;
    const auto isThis = [&] {
        return (frame.callee->code()->head.flags & FunctionHead::SuppressThis) == 0 &&
               name.matches(vm.common().self, frame.isCaseSensitive());
    };
    if (own && frame.activation == nullptr && isThis()) {
        frame.self = value;
        return;
    }
    for (Scope* scope = frame.scope; scope != nullptr; scope = scope->outer) {
        if (scope->kind == Scope::Kind::Target) break;
        if (!scope->object->has(vm, name)) {
            if (scope->kind != Scope::Kind::Activation || !std::exchange(own, false)) continue;
            // To a function `this` is one of its variables.
            if (!isThis()) continue;
            frame.self = value;
            return;
        }
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

/// "/a/b:c", "a.b.c" and "a/b.c" name the variable c of something: the last dot or colon divides them. "a/b"
/// is a whole.
struct SplitPath {
    std::u16string_view base, name;
    bool hasBase;
};

SplitPath splitVariable(std::u16string_view path)
{
    const std::size_t at = path.find_last_of(u".:");
    if (at == std::u16string_view::npos) return {{}, path, false};
    return {path.substr(0, at), path.substr(at + 1), true};
}

/// One name of a path: children of clips go before variables.
Object* step(Vm& vm, Object* object, std::u16string_view name)
{
    if (name == u"this") return object;
    // Levels have names that no child takes from them.
    if (name[0] != u'_' && vm.host().isStageObject(object)) {
        if (Object* child = vm.host().child(object, name, vm.isCaseSensitive())) return child;
    }
    Value member;
    object->find(vm, vm.name(name), member, object);
    return member.asObject();
}

bool isRooted(std::u16string_view path) { return !path.empty() && path[0] == u'/'; }

/// Goes through the objects that a name may start from: what is in scope from the inside out, then the global
/// object. @param visit returns true to end the walk
template <class Visit>
void forEachStart(Frame& frame, std::u16string_view path, Visit visit)
{
    Object* const target = frame.variableTarget();
    if (isRooted(path)) {
        if (target != nullptr) visit(target);
        return;
    }
    const std::size_t end = path.find_first_of(u"/.:");
    if (path.substr(0, end) == u"this") {
        const Value self =
            Interpreter::getPlainVariable(frame, frame.vm.name(std::string_view("this")), nullptr);
        if (self.isObject()) visit(self.object());
        return;
    }
    for (Scope* scope = frame.scope; scope != nullptr; scope = scope->outer) {
        Object* object = scope->kind == Scope::Kind::Target ? target : scope->object;
        if (object != nullptr && visit(object)) return;
        if (frame.vm.isUnwinding()) return;
    }
    if (frame.version > 4) visit(frame.vm.global());
}

} // namespace

/// The grammar, the same for variables, targets and addresses of clips:
/// - a leading slash starts at the root; a leading colon is passed over, if anything follows;
/// - names are parted by dots, slashes and colons; behind a part more colons may follow, if a name does;
/// - from the first slash or `..` on, a dot is a letter like others;
/// - `..` is the parent; it does not follow a dot, and only a slash or a colon follows it;
/// - one separator may end the path.
Object* Vm::resolveTarget(Object* base, std::u16string_view path)
{
    Object* object = base;
    std::size_t at = 0;
    bool slashed = false;
    if (isRooted(path)) {
        if (base == nullptr) return nullptr;
        object = m_host.root(base);
        at = 1;
        slashed = true;
    } else if (!path.empty() && path[0] == u':') {
        if (path.size() == 1) return nullptr;
        at = 1;
    }
    while (at < path.size() && object != nullptr) {
        while (at < path.size() && path[at] == u':') ++at;
        if (at == path.size()) return nullptr;
        std::size_t end = 0;
        if (path.compare(at, 2, u"..") == 0) {
            end = at + 2;
            if (at > 0 && path[at - 1] == u'.') return nullptr;
            if (end < path.size() && path[end] != u'/' && path[end] != u':') return nullptr;
            slashed = true;
            object = m_host.parent(object);
        } else {
            end = std::min(path.find_first_of(slashed ? u"/:" : u"/:.", at), path.size());
            if (end == at) return nullptr;
            object = step(*this, object, path.substr(at, end - at));
        }
        if (end < path.size() && path[end] == u'/') slashed = true;
        at = end + 1;
    }
    return object;
}

Value Interpreter::getPath(Frame& frame, Name name, Object** thisOfCall)
{
    Vm& vm = frame.vm;
    const std::u16string_view path = name.view();
    const SplitPath split = splitVariable(path);
    if (split.hasBase) {
        if (split.base.empty() || split.name.empty()) return {};
        const Name member = vm.name(split.name);
        Object* first = nullptr;
        Object* holder = nullptr;
        Value result;
        // A start whose object lacks the variable does not end the search.
        forEachStart(frame, split.base, [&](Object* start) {
            Object* object = vm.resolveTarget(start, split.base);
            if (object == nullptr) return false;
            if (first == nullptr) first = object;
            if (!object->find(vm, member, result, object)) return false;
            holder = object;
            return true;
        });
        if (vm.isUnwinding()) return {};
        if (holder == nullptr && first != nullptr) {
            holder = first;
            result = first->get(vm, member);
        }
        if (thisOfCall != nullptr && holder != nullptr) *thisOfCall = holder;
        return result;
    }
    // Slashes alone: a clip, or a variable of that very name.
    Object* target = frame.variableTarget();
    if (target == nullptr) return {};
    const bool isPath = frame.version < 10 || !path.starts_with(u"this/");
    if (Object* clip = isPath ? vm.resolveTarget(target, path) : nullptr;
        clip != nullptr && vm.host().isStageObject(clip))
        return clip;
    Value result;
    target->getPlain(vm, name, target, result);
    return result;
}

void Interpreter::setPath(Frame& frame, Name name, Value value)
{
    Vm& vm = frame.vm;
    const SplitPath split = splitVariable(name.view());
    if (!split.hasBase) {
        if (Object* target = frame.variableTarget()) target->put(vm, name, value);
        return;
    }
    if (split.base.empty() || split.name.empty()) return;
    Object* base = resolve(frame, split.base);
    if (base != nullptr) base->put(vm, vm.name(split.name), value);
}

Object* Interpreter::resolve(Frame& frame, std::u16string_view path)
{
    Object* found = nullptr;
    if (path.empty() || path[0] == u'.') {
        // `..` is of the clip, whatever is in scope.
        Object* const target = frame.variableTarget();
        return path.empty() || target == nullptr ? nullptr : frame.vm.resolveTarget(target, path);
    }
    forEachStart(frame, path, [&](Object* start) {
        found = frame.vm.resolveTarget(start, path);
        return found != nullptr;
    });
    return found;
}

} // namespace flash::avm1
