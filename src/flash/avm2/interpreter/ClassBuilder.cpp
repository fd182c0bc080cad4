#include "flash/avm2/interpreter/Code.h"
#include "flash/avm2/interpreter/Vm.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace flash::avm2
{

namespace
{

Object* allocatePlain(Vm& vm, ClassObject& cls)
{
    return vm.heap().make<Object>(cls.instances, cls.prototype);
}

/// What a slot holds before anything was put into it.
Value initialOf(Vm& vm, Unit& unit, const abc::Trait& trait)
{
    if (trait.value.kind != 0) return unit.constant(vm, trait.value);
    if (trait.type == 0) return {};
    const Multiname& type = unit.multiname(trait.type);
    if (type.name.isNull()) return Value::null();
    const auto text = type.name.view();
    if (type.hasPublic()) {
        if (text == u"int" || text == u"uint") return 0;
        if (text == u"Number") return std::nan("");
        if (text == u"Boolean") return false;
    }
    return Value::null();
}

/// Whether two types, each named by a block of its own, are the same one as far as their names tell.
bool isSameType(const Unit& a, std::uint32_t first, const Unit& b, std::uint32_t second)
{
    if (first == 0 || second == 0) return first == second;
    const abc::MultinameInfo& one = a.abc().multinames[first];
    const abc::MultinameInfo& other = b.abc().multinames[second];
    const bool isGeneric = one.kind == abc::MultinameKind::TypeName;
    if (isGeneric != (other.kind == abc::MultinameKind::TypeName)) return false;
    // Generics of generics go as deep as the file says: their bases are enough.
    if (isGeneric) return isSameType(a, one.name, b, other.name);
    const Multiname& left = a.multiname(first);
    const Multiname& right = b.multiname(second);
    if (left.name != right.name) return false;
    for (std::uint32_t i = 0; i < left.size(); ++i) {
        if (right.contains(left.at(i))) return true;
    }
    return left.anyNamespace || right.anyNamespace;
}

bool hasSameSignature(const MethodEnv& own, const MethodEnv& inherited)
{
    const abc::MethodInfo& a = own.info();
    const abc::MethodInfo& b = inherited.info();
    if (a.parameterTypes.size() != b.parameterTypes.size() || a.optionals.size() != b.optionals.size() ||
        !isSameType(*own.unit, a.returnType, *inherited.unit, b.returnType))
        return false;
    for (std::size_t i = 0; i < a.parameterTypes.size(); ++i) {
        if (!isSameType(*own.unit, a.parameterTypes[i], *inherited.unit, b.parameterTypes[i])) return false;
    }
    return true;
}

/// Whether a method may take the place of what its class inherits under the name. Only classes of movies are
/// judged: what the player's own have does not always have the form of a movie's.
bool mayOverride(const Traits& traits, const Traits::Entry& known, const abc::Trait& trait,
                 const MethodEnv& own)
{
    const bool isMethod = trait.kind == abc::Trait::Kind::Method;
    if (known.source == nullptr || known.declaredBy == &traits) return true;
    if (known.binding.kind != (isMethod ? Binding::Kind::Method : Binding::Kind::Accessor)) return false;
    const std::int32_t id = trait.kind == abc::Trait::Kind::Setter ? known.binding.setter : known.binding.id;
    if (id < 0) return true; // the other half of a pair
    const MethodEnv& inherited = *traits.methods[static_cast<std::size_t>(id)];
    if (inherited.unit == nullptr || inherited.owner == &traits) return true;
    if ((trait.attributes & abc::Trait::Override) == 0) return false;
    for (const abc::Trait* source : {known.source, known.setterSource}) {
        if (source != nullptr && source->kind == trait.kind && (source->attributes & abc::Trait::Final) != 0)
            return false;
    }
    return hasSameSignature(own, inherited);
}

} // namespace

Object* Vm::newObject()
{
    return m_heap.make<Object>(m_classes.object->instances, m_classes.object->prototype);
}

Object* Vm::instantiate(ClassObject* cls)
{
    Object* made = cls->allocate != nullptr ? cls->allocate(*this, *cls) : allocatePlain(*this, *cls);
    return made;
}

FunctionObject* Vm::newFunction(NativeFunction function, std::string_view functionName, int minArguments,
                                int maxArguments)
{
    return m_heap.make<FunctionObject>(
        *this, m_heap.make<MethodEnv>(function, functionName, minArguments, maxArguments));
}

void Vm::fillTraits(Traits& traits, Unit* unit, const std::vector<abc::Trait>& list, ScopeChain* scope)
{
    const auto firstSlot = static_cast<std::uint32_t>(traits.slotTypes.size());
    // Slots that say their number get it; the others take what is left.
    std::uint32_t count = 0, highest = 0;
    for (const abc::Trait& trait : list) {
        const bool isSlot = trait.kind == abc::Trait::Kind::Slot || trait.kind == abc::Trait::Kind::Const ||
                            trait.kind == abc::Trait::Kind::Class || trait.kind == abc::Trait::Kind::Function;
        if (!isSlot) continue;
        ++count;
        if (trait.id <= list.size() * 2) highest = std::max(highest, trait.id);
    }
    std::vector<bool> taken(std::max(count, highest) + count + 1);
    for (const abc::Trait& trait : list) {
        const bool isSlot = trait.kind == abc::Trait::Kind::Slot || trait.kind == abc::Trait::Kind::Const ||
                            trait.kind == abc::Trait::Kind::Class || trait.kind == abc::Trait::Kind::Function;
        if (isSlot && trait.id > 0 && trait.id < taken.size()) taken[trait.id - 1] = true;
    }
    std::uint32_t free = 0;
    for (const abc::Trait& trait : list) {
        const Multiname& name = unit->multiname(trait.name);
        if (name.name.isNull() || name.single == nullptr) continue;
        Binding binding;
        switch (trait.kind) {
        case abc::Trait::Kind::Slot:
        case abc::Trait::Kind::Const:
        case abc::Trait::Kind::Class:
        case abc::Trait::Kind::Function: {
            std::uint32_t place = trait.id;
            if (place == 0 || place > taken.size()) {
                while (taken[free]) ++free;
                taken[free] = true;
                place = free + 1;
            }
            const std::uint32_t slot = firstSlot + place - 1;
            while (traits.slotTypes.size() <= slot) traits.addSlot({}, Value());
            binding.kind = trait.kind == abc::Trait::Kind::Slot ? Binding::Kind::Slot : Binding::Kind::Const;
            binding.id = static_cast<std::int32_t>(slot);
            if (trait.kind == abc::Trait::Kind::Slot || trait.kind == abc::Trait::Kind::Const) {
                if (trait.type != 0) traits.slotTypes[slot] = {unit, trait.type, nullptr};
                traits.slotInitials[slot] = initialOf(*this, *unit, trait);
            } else if (trait.kind == abc::Trait::Kind::Function) {
                traits.slotInitials[slot] =
                    Value(m_heap.make<FunctionObject>(*this, unit->method(*this, trait.index, scope)));
            } else {
                traits.slotInitials[slot] = Value::null();
            }
            break;
        }
        case abc::Trait::Kind::Method:
        case abc::Trait::Kind::Getter:
        case abc::Trait::Kind::Setter: {
            MethodEnv* env = unit->method(*this, trait.index, scope);
            env->owner = &traits;
            env->name = name.name;
            env->ns = name.single;
            env->role = trait.kind == abc::Trait::Kind::Method   ? MethodEnv::Role::Method
                        : trait.kind == abc::Trait::Kind::Getter ? MethodEnv::Role::Getter
                                                                 : MethodEnv::Role::Setter;
            if (const Traits::Entry* known = traits.entry(name.name, name.single);
                known != nullptr && !traits.isInterface && !mayOverride(traits, *known, trait, *env))
                throwError(ErrorClass::Verify, 1053,
                           u"Illegal override of " + std::u16string(name.name.view()) + u" in " +
                               traits.qualifiedName() + u".");
            traits.bindMethod(name.name, name.single,
                              trait.kind == abc::Trait::Kind::Method   ? Traits::MethodKind::Method
                              : trait.kind == abc::Trait::Kind::Getter ? Traits::MethodKind::Getter
                                                                       : Traits::MethodKind::Setter,
                              env);
            break;
        }
        }
        // An override may stand in the derived class's own protected namespace or in that of its base.
        if (binding.kind != Binding::Kind::None) traits.bind(name.name, name.single, binding);
        Traits::Entry* entry = traits.entry(name.name, name.single);
        const bool isSetter = trait.kind == abc::Trait::Kind::Setter;
        if (isSetter) {
            entry->setterSource = &trait;
            entry->setterUnit = unit;
        }
        // A pair is known by its getter.
        if (!isSetter || entry->source == nullptr || entry->source->kind == abc::Trait::Kind::Setter) {
            entry->source = &trait;
            entry->unit = unit;
        }
        if (traits.base != nullptr && name.single->kind == Namespace::Kind::Protected) {
            for (Traits* at = traits.base; at != nullptr; at = at->base) {
                if (at->protectedNs != nullptr && traits.entry(name.name, at->protectedNs) != nullptr)
                    traits.bind(name.name, at->protectedNs, traits.entry(name.name, name.single)->binding);
            }
        }
    }
}

ClassObject* Vm::newClass(Unit* unit, std::uint32_t index, ClassObject* base, ScopeChain* scope)
{
    const abc::InstanceInfo& info = unit->abc().instances[index];
    const abc::ClassInfo& statics = unit->abc().classes[index];
    const Multiname& name = unit->multiname(info.name);
    if (base != nullptr && base->instances->isFinal)
        throwError(ErrorClass::Verify, 1103,
                   u"Class " + nameText(name) + u" cannot extend final base class.");
    // The base that code hands over has to be the one that the class was declared with.
    if (base != nullptr && base->instances->isInterface)
        throwError(ErrorClass::Verify, 1110,
                   u"Class " + nameText(name) + u" cannot extend " + base->instances->qualifiedName() + u".");
    if (base != nullptr && unit->abc().multinames[info.superName].kind != abc::MultinameKind::TypeName &&
        info.superName != 0 && unit->multiname(info.superName).name != base->instances->name)
        throwError(ErrorClass::Verify, 1108,
                   u"The OP_newclass opcode was used with the incorrect base class.");
    Namespace* space = name.single != nullptr ? name.single : m_public;
    auto* classTraits = m_heap.make<Traits>(name.name, space, m_classes.cls->instances);
    Traits* instanceTraits = unit->takeInstanceTraits(*this, index);
    instanceTraits->derive(base != nullptr ? base->instances : nullptr);
    instanceTraits->isInterface = (info.flags & abc::InstanceInfo::Interface) != 0;
    instanceTraits->isSealed = (info.flags & abc::InstanceInfo::Sealed) != 0;
    instanceTraits->isFinal = (info.flags & abc::InstanceInfo::Final) != 0;
    if ((info.flags & abc::InstanceInfo::ProtectedNs) != 0) {
        instanceTraits->protectedNs = unit->ns(info.protectedNs);
        for (Traits* at = instanceTraits->base; at != nullptr; at = at->base) {
            if (at->protectedNs != nullptr)
                instanceTraits->alias(at->protectedNs, instanceTraits->protectedNs);
        }
    }
    for (const std::uint32_t interface : info.interfaces) {
        Traits* type = unit->type(*this, interface);
        if (type == nullptr) continue;
        if (!type->isInterface)
            throwError(ErrorClass::Verify, 1111,
                       nameText(name) + u" cannot implement " + type->qualifiedName() + u".");
        instanceTraits->implement(*this, type);
    }
    classTraits->protectedNs = instanceTraits->protectedNs;
    const bool isAbstract = base != nullptr && base->isAbstract;

    // Static members are filled in before the object, whose slots come from them; its scope has itself on
    // top.
    auto* inner = m_heap.make<ScopeChain>(scope != nullptr ? scope->global : nullptr);
    if (scope != nullptr) inner->scopes = scope->scopes;
    fillTraits(*classTraits, unit, statics.traits, inner);
    auto* cls = m_heap.make<ClassObject>(*this, classTraits, instanceTraits, base);
    cls->isAbstract = isAbstract;
    inner->scopes.push_back({cls, false});
    fillTraits(*instanceTraits, unit, info.traits, inner);
    if (!instanceTraits->isInterface) {
        // What interfaces ask for is found under their namespaces.
        for (Traits* interface : instanceTraits->interfaces) {
            for (const Traits::Entry& entry : interface->entries()) {
                const Traits::Entry* own = instanceTraits->entry(entry.name, m_public);
                if (entry.ns != m_public && own != nullptr)
                    instanceTraits->bind(entry.name, entry.ns, own->binding);
            }
        }
        cls->prototype =
            m_heap.make<Object>(m_classes.object->instances, base != nullptr ? base->prototype : nullptr);
        cls->prototype->table().set(m_common.constructor, Value(cls));
        cls->prototype->table().setHidden(m_common.constructor, true);
        MethodEnv* constructor = unit->method(*this, info.initializer, inner);
        constructor->owner = instanceTraits;
        constructor->role = MethodEnv::Role::Constructor;
        cls->constructor = constructor;
    }
    MethodEnv* initializer = unit->method(*this, statics.initializer, inner);
    initializer->owner = classTraits;
    initializer->role = MethodEnv::Role::StaticInit;
    // What runs now already finds the class by its name: a class may keep objects of its own.
    if (scope != nullptr && scope->global != nullptr) {
        const Binding* place = scope->global->traits()->find(name);
        const bool isSlot = place != nullptr && place->kind == Binding::Kind::Const;
        if (isSlot && scope->global->slot(static_cast<std::uint32_t>(place->id)).isNull())
            scope->global->setSlot(static_cast<std::uint32_t>(place->id), Value(cls));
    }
    invoke(*initializer, Value(cls), {});
    return cls;
}

Object* Vm::newGlobal(Unit* unit, std::uint32_t script)
{
    auto* traits = m_heap.make<Traits>(name("global"), m_public, m_classes.object->instances);
    auto* chain = m_heap.make<ScopeChain>(nullptr);
    fillTraits(*traits, unit, unit->abc().scripts[script].traits, chain);
    auto* global = m_heap.make<Object>(traits, m_classes.object->prototype);
    chain->global = global;
    chain->scopes.push_back({global, false});
    return global;
}

void Vm::makeActivation(Code& code, ScopeChain* scope)
{
    auto* traits = m_heap.make<Traits>(m_common.empty, m_public, nullptr);
    traits->isSealed = true;
    fillTraits(*traits, code.unit, code.unit->abc().bodies[code.body].traits, scope);
    code.activation = traits;
}

Object* Vm::newActivation(MethodEnv& env)
{
    if (env.code->activation == nullptr) makeActivation(*env.code, env.scope);
    return m_heap.make<Object>(env.code->activation, nullptr);
}

Object* Vm::newCatchScope(Code& code, std::uint32_t index)
{
    if (code.catches[index] == nullptr) {
        auto* traits = m_heap.make<Traits>(m_common.empty, m_public, nullptr);
        traits->isSealed = true;
        const abc::ExceptionInfo& info = code.unit->abc().bodies[code.body].exceptions[index];
        TypeRef type;
        if (info.type != 0) type = {code.unit, info.type, nullptr};
        const std::int32_t slot = traits->addSlot(type, Value());
        const Multiname& name = code.unit->multiname(info.name);
        if (info.name != 0 && !name.name.isNull())
            traits->bind(name.name, name.single != nullptr ? name.single : m_public,
                         {Binding::Kind::Slot, slot, -1});
        code.catches[index] = traits;
    }
    return m_heap.make<Object>(code.catches[index], nullptr);
}

} // namespace flash::avm2
