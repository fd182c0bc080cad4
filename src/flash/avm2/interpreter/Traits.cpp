#include "flash/avm2/interpreter/Traits.h"

#include "flash/avm2/interpreter/Object.h"

#include <algorithm>

namespace flash::avm2
{

void Traits::trace(Tracer& tracer)
{
    tracer(name);
    tracer(ns);
    tracer(base);
    tracer(cls);
    tracer(protectedNs);
    tracer(element);
    for (const TypeRef& type : slotTypes) {
        tracer(type.unit);
        tracer(type.resolved);
    }
    for (const Value value : slotInitials) tracer(value);
    for (const MethodEnv* method : methods) tracer(method);
    for (const Traits* interface : interfaces) tracer(interface);
    for (const Entry& entry : m_entries) {
        tracer(entry.name);
        tracer(entry.ns);
        tracer(entry.unit);
        tracer(entry.setterUnit);
        tracer(entry.declaredBy);
    }
}

void Traits::inherit()
{
    m_first = base->m_first;
    m_entries = base->m_entries;
    slotTypes = base->slotTypes;
    slotInitials = base->slotInitials;
    methods = base->methods;
    interfaces = base->interfaces;
}

const Binding* Traits::find(const Multiname& multiname) const
{
    if (multiname.name.isNull()) return nullptr;
    const auto found = m_first.find(multiname.name.cell());
    if (found == m_first.end()) return nullptr;
    for (std::int32_t at = found->second; at >= 0; at = m_entries[static_cast<std::size_t>(at)].next) {
        const Entry& entry = m_entries[static_cast<std::size_t>(at)];
        if (multiname.contains(entry.ns)) return &entry.binding;
    }
    return nullptr;
}

const Binding* Traits::find(Name wanted, Namespace* space) const
{
    return find(Multiname::of(wanted, space));
}

Traits::Entry* Traits::entry(Name wanted, Namespace* space)
{
    const auto found = m_first.find(wanted.cell());
    if (found == m_first.end()) return nullptr;
    for (std::int32_t at = found->second; at >= 0; at = m_entries[static_cast<std::size_t>(at)].next) {
        Entry& entry = m_entries[static_cast<std::size_t>(at)];
        if (entry.ns == space) return &entry;
    }
    return nullptr;
}

void Traits::bind(Name wanted, Namespace* space, Binding binding)
{
    if (Entry* known = entry(wanted, space)) {
        // One half of a pair leaves the other as it was inherited.
        if (known->binding.kind == Binding::Kind::Accessor && binding.kind == Binding::Kind::Accessor) {
            if (binding.id < 0) binding.id = known->binding.id;
            if (binding.setter < 0) binding.setter = known->binding.setter;
        }
        known->binding = binding;
        known->declaredBy = this;
        return;
    }
    const auto at = static_cast<std::int32_t>(m_entries.size());
    auto [found, isNew] = m_first.try_emplace(wanted.cell(), -1);
    m_entries.push_back({wanted, space, binding, found->second, nullptr, nullptr, this, nullptr, nullptr});
    found->second = at;
}

std::int32_t Traits::addSlot(TypeRef type, Value initial)
{
    slotTypes.push_back(type);
    slotInitials.push_back(initial);
    return static_cast<std::int32_t>(slotTypes.size()) - 1;
}

std::int32_t Traits::addMethod(MethodEnv* method)
{
    methods.push_back(method);
    return static_cast<std::int32_t>(methods.size()) - 1;
}

void Traits::bindMethod(Name wanted, Namespace* space, MethodKind kind, MethodEnv* method)
{
    const Binding::Kind bound = kind == MethodKind::Method ? Binding::Kind::Method : Binding::Kind::Accessor;
    std::int32_t id = -1;
    if (const Entry* known = entry(wanted, space); known != nullptr && known->binding.kind == bound)
        id = kind == MethodKind::Setter ? known->binding.setter : known->binding.id;
    if (id >= 0 && static_cast<std::size_t>(id) < methods.size())
        methods[static_cast<std::size_t>(id)] = method;
    else
        id = addMethod(method);
    if (kind == MethodKind::Setter)
        bind(wanted, space, {bound, -1, id});
    else
        bind(wanted, space, {bound, id, -1});
}

void Traits::alias(Namespace* from, Namespace* to)
{
    const std::size_t count = m_entries.size();
    for (std::size_t i = 0; i < count; ++i) {
        const Entry entry = m_entries[i];
        if (entry.ns != from || this->entry(entry.name, to) != nullptr) continue;
        bind(entry.name, to, entry.binding);
    }
}

void Traits::implement(Vm& vm, Traits* interface)
{
    if (std::ranges::find(interfaces, interface) != interfaces.end()) return;
    interfaces.push_back(interface);
    for (Traits* inner : interface->interfaces) implement(vm, inner);
    if (isInterface) {
        for (const Entry& entry : interface->m_entries) {
            if (this->entry(entry.name, entry.ns) == nullptr) bind(entry.name, entry.ns, entry.binding);
        }
    }
}

bool Traits::isA(const Traits* other) const
{
    for (const Traits* at = this; at != nullptr; at = at->base) {
        if (at == other) return true;
    }
    return other->isInterface && std::ranges::find(interfaces, other) != interfaces.end();
}

} // namespace flash::avm2
