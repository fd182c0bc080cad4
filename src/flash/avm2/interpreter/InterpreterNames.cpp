#include "flash/avm2/interpreter/Interpreter.h"

#include "flash/avm2/interpreter/Unit.h"
// Names: where they are found, and what was found the last time.
namespace flash::avm2
{

Multiname Interpreter::multiname(const Ins& ins, Value*& sp)
{
    const Multiname& base = m_frame->unit->multiname(static_cast<std::uint32_t>(ins.a));
    if (ins.parts == 0) return base;
    Multiname name = base;
    const Value text = (ins.parts & 1U) != 0 ? *--sp : Value();
    if ((ins.parts & 2U) != 0) {
        const Value ns = *--sp;
        name.list = nullptr;
        name.count = 0;
        Object* object = ns.asObject();
        name.single = object != nullptr ? object->namespaceCell() : nullptr;
        if (name.single == nullptr)
            m_vm.throwError(ErrorClass::Type, 1034,
                            u"Type Coercion failed: cannot convert " + std::u16string(m_vm.text(ns)) +
                                u" to Namespace.");
    }
    if ((ins.parts & 1U) != 0) return m_vm.runtimeName(name, text);
    return name;
}

Value Interpreter::find(const Multiname& name, const Ins& ins, bool strict)
{
    Frame& f = *m_frame;
    const bool isPublic = name.hasPublic();
    SiteCache* const site = ins.cache >= 0 ? &f.code->caches[static_cast<std::size_t>(ins.cache)] : nullptr;
    for (std::uint32_t i = f.scopeCount; i-- > 0;) {
        const Value scope = f.scopes[i];
        if ((f.withMask >> i & 1U) != 0) {
            if (m_vm.has(scope, name)) return scope;
            continue;
        }
        Object* object = scope.asObject();
        if (object == nullptr) continue;
        const bool isKept = site != nullptr && i < SiteCache::kInnerScopes;
        if (!isKept || site->passed[i] != object->traits()) {
            if (object->traits()->find(name) != nullptr) return scope;
            if (isKept) f.code->caches[static_cast<std::size_t>(ins.cache)].passed[i] = object->traits();
        }
        const bool isOutermost = i == 0 && (f.env->scope == nullptr || f.env->scope->scopes.empty());
        if (!isOutermost && isPublic && object->isDynamic() && object->tableIfAny() != nullptr &&
            !name.name.isNull() && object->tableIfAny()->find(name.name) != PropertyTable::kMissing)
            return scope;
    }
    if (site != nullptr && site->holder != nullptr && site->chain == f.env->scope &&
        site->epoch == m_vm.scopeEpoch)
        return site->holder;
    bool cacheable = site != nullptr;
    Object* holder = nullptr;
    if (f.env->scope != nullptr) {
        const auto& scopes = f.env->scope->scopes;
        for (std::size_t i = scopes.size(); i-- > 0 && holder == nullptr;) {
            Object* object = scopes[i].object;
            if (scopes[i].isWith) {
                cacheable = false;
                if (m_vm.has(Value(object), name)) holder = object;
            } else if (object->traits()->find(name) != nullptr) {
                holder = object;
            } else if (isPublic && object->isDynamic() && !name.name.isNull() && i > 0) {
                // Additions to these cannot be seen coming.
                if (object->traits()->cls != nullptr) cacheable = false;
                if (object->tableIfAny() != nullptr &&
                    object->tableIfAny()->find(name.name) != PropertyTable::kMissing) {
                    cacheable = false;
                    holder = object;
                }
            }
        }
    }
    if (holder == nullptr) holder = f.unit->domain()->find(m_vm, name);
    if (holder == nullptr && f.env->scope != nullptr) {
        // What was added to the outermost is found after all that is defined anywhere.
        const auto& scopes = f.env->scope->scopes;
        Object* outer = f.env->scope->global;
        if (!scopes.empty() && !scopes.front().isWith) outer = scopes.front().object;
        for (Object* global : {outer, f.env->scope->global}) {
            if (holder == nullptr && global != nullptr && m_vm.hasOwn(Value(global), name)) holder = global;
        }
        cacheable = false;
    }
    if (holder == nullptr) {
        if (strict)
            m_vm.throwError(ErrorClass::Reference, 1065,
                            u"Variable " + m_vm.nameText(name) + u" is not defined.");
        return globalScope();
    }
    if (cacheable) {
        SiteCache& again = f.code->caches[static_cast<std::size_t>(ins.cache)];
        again.chain = f.env->scope;
        again.holder = holder;
        again.epoch = m_vm.scopeEpoch;
    }
    return holder;
}

Value Interpreter::getCached(Value base, const Ins& ins)
{
    const Multiname& name = m_frame->unit->multiname(static_cast<std::uint32_t>(ins.a));
    Object* object = base.asObject();
    SiteCache& cache = m_frame->code->caches[static_cast<std::size_t>(ins.cache)];
    if (base.isString()) return getOfString(base, name, cache);
    if (object == nullptr || object->exotic() == Exotic::First) return m_vm.get(base, name);
    if (cache.traits == object->traits()) {
        switch (cache.binding.kind) {
        case Binding::Kind::Slot:
        case Binding::Kind::Const: return object->slot(static_cast<std::uint32_t>(cache.binding.id));
        case Binding::Kind::Accessor:
        case Binding::Kind::Method: return m_vm.getBinding(base, cache.binding);
        case Binding::Kind::None:
            if (object->tableIfAny() != nullptr && object->tableIfAny()->holds(cache.position, name.name))
                return object->tableIfAny()->at(cache.position).value;
        }
    }
    if (const Binding* found = object->traits()->find(name)) {
        // Write-only names tell so each time.
        if (found->kind != Binding::Kind::Accessor || found->id >= 0) {
            cache.traits = object->traits();
            cache.binding = *found;
            return m_vm.getBinding(base, *found);
        }
    } else if (object->exotic() == Exotic::None && object->isDynamic() && object->tableIfAny() != nullptr &&
               !name.name.isNull() && !name.attribute && name.hasPublic()) {
        const std::uint32_t position = object->tableIfAny()->find(name.name);
        if (position != PropertyTable::kMissing) {
            cache.traits = object->traits();
            cache.binding = {};
            cache.position = position;
            cache.name = name.name;
            return object->tableIfAny()->at(position).value;
        }
    }
    return m_vm.get(base, name);
}

/// Mostly it is the length.
Value Interpreter::getOfString(Value text, const Multiname& name, SiteCache& cache)
{
    Traits* const traits = m_vm.classes().string->instances;
    if (cache.traits != traits) {
        const Binding* found = name.attribute ? nullptr : traits->find(name);
        if (found == nullptr || found->kind != Binding::Kind::Accessor || found->id < 0)
            return m_vm.get(text, name);
        cache.traits = traits;
        cache.binding = *found;
    }
    const MethodEnv& getter = *traits->methods[static_cast<std::size_t>(cache.binding.id)];
    const Value result = getter.quickArguments == 0 ? getter.quick(m_vm, text, nullptr) : Value::hole();
    return result.isHole() ? m_vm.get(text, name) : result;
}

void Interpreter::setCached(Value base, const Ins& ins, Value value)
{
    const Multiname& name = m_frame->unit->multiname(static_cast<std::uint32_t>(ins.a));
    const bool isInit = ins.parts != 0;
    Object* object = base.asObject();
    if (object == nullptr || object->exotic() != Exotic::None) {
        if (isInit)
            m_vm.initialize(base, name, value);
        else
            m_vm.set(base, name, value);
        return;
    }
    SiteCache& cache = m_frame->code->caches[static_cast<std::size_t>(ins.cache)];
    if (cache.traits == object->traits()) {
        if (cache.binding.kind == Binding::Kind::Slot) {
            m_vm.setSlotTyped(*object, static_cast<std::uint32_t>(cache.binding.id), value);
            return;
        }
        if (cache.binding.kind == Binding::Kind::None && object->tableIfAny() != nullptr &&
            object->tableIfAny()->holds(cache.position, name.name)) {
            object->tableIfAny()->at(cache.position).value = value;
            return;
        }
    }
    if (const Binding* found = object->traits()->find(name)) {
        if (found->kind == Binding::Kind::Slot) {
            cache.traits = object->traits();
            cache.binding = *found;
        }
    } else if (object->isDynamic() && object->tableIfAny() != nullptr && !name.name.isNull() &&
               !name.attribute && name.hasPublic()) {
        const std::uint32_t position = object->tableIfAny()->find(name.name);
        if (position != PropertyTable::kMissing) {
            cache.traits = object->traits();
            cache.binding = {};
            cache.position = position;
            cache.name = name.name;
        }
    }
    if (isInit)
        m_vm.initialize(base, name, value);
    else
        m_vm.set(base, name, value);
}

MethodEnv* Interpreter::cacheMethod(const Ins& ins, Value receiver)
{
    const Object* object = receiver.asObject();
    if (object == nullptr ? !receiver.isString() : object->exotic() == Exotic::First) return nullptr;
    SiteCache& cache = m_frame->code->caches[static_cast<std::size_t>(ins.cache)];
    Traits* const traits = object != nullptr ? object->traits() : m_vm.classes().string->instances;
    if (cache.traits != traits || cache.binding.kind != Binding::Kind::Method) {
        const Multiname& name = m_frame->unit->multiname(static_cast<std::uint32_t>(ins.a));
        const Binding* found = name.attribute ? nullptr : traits->find(name);
        if (found == nullptr || found->kind != Binding::Kind::Method) return nullptr;
        cache.traits = traits;
        cache.binding = *found;
    }
    return traits->methods[static_cast<std::size_t>(cache.binding.id)];
}

/// Of what is no method.
Value Interpreter::callCached(const Ins& ins, Value* window, std::uint32_t count)
{
    const Multiname& name = m_frame->unit->multiname(static_cast<std::uint32_t>(ins.a));
    const bool isLex = ins.op == RegisterOp::callproplex;
    const Object* object = window->asObject();
    if (object == nullptr || object->exotic() == Exotic::First)
        return m_vm.callProperty(*window, name, {window + 1, count}, isLex);
    SiteCache& cache = m_frame->code->caches[static_cast<std::size_t>(ins.cache)];
    const auto isVariable = [](const Binding& binding) {
        return binding.kind == Binding::Kind::Slot || binding.kind == Binding::Kind::Const;
    };
    if (cache.traits != object->traits() || !isVariable(cache.binding)) {
        const Binding* found = object->traits()->find(name);
        if (found == nullptr || !isVariable(*found))
            return m_vm.callProperty(*window, name, {window + 1, count}, isLex);
        cache.traits = object->traits();
        cache.binding = *found;
    }
    const Value function = object->slot(static_cast<std::uint32_t>(cache.binding.id));
    if (!isFunction(function)) return m_vm.callProperty(*window, name, {window + 1, count}, isLex);
    if (isLex) *window = Value::null();
    return m_vm.callInPlace(function, window, count);
}

Value Interpreter::constructCached(const Ins& ins, Value constructor, Value* window)
{
    const auto count = static_cast<std::uint32_t>(ins.b);
    if (!isFunction(constructor))
        return m_vm.constructProperty(*window, m_frame->unit->multiname(static_cast<std::uint32_t>(ins.a)),
                                      {window + 1, count});
    return m_vm.constructInPlace(constructor, window, count);
}

} // namespace flash::avm2
