#include "flash/avm1/interpreter/Object.h"

#include "flash/avm1/interpreter/ArrayNative.h"
#include "flash/avm1/interpreter/Vm.h"

#include <algorithm>

// Defining properties, their flags, and listing them.
namespace flash::avm1
{

RootedNames Object::enumerate(Vm& vm)
{
    // The furthest prototype's names come first, the object's own last; but a name counts where it is met
    // first on the way up.
    RootedNames names(vm.heap());
    std::vector<std::size_t> ends;
    NameCollector collector(vm, names);
    Object* object = this;
    for (int depth = 0; object != nullptr && depth <= kMaxPrototypeChain; ++depth) {
        if (object->hasHooks())
            object->m_native->enumerateOwn(vm, *object, collector);
        else
            object->enumeratePlain(vm, collector);
        ends.push_back(names.size());
        object = object->listedPrototype(vm);
    }
    RootedNames ordered(vm.heap());
    ordered->reserve(names.size());
    for (std::size_t level = ends.size(); level-- > 0;) {
        const std::size_t start = level == 0 ? 0 : ends[level - 1];
        for (std::size_t i = start; i < ends[level]; ++i) ordered.push_back(names[i]);
    }
    return ordered;
}

void Object::enumeratePlain(Vm& vm, NameCollector& names) const
{
    // The latest comes first.
    const std::vector<Shape::Property>& properties = m_shape->properties();
    for (std::size_t i = properties.size(); i-- > 0;) {
        if (!properties[i].name.isNull()) names.add(properties[i].name, properties[i].flags);
    }
    if (m_protoIsSet) names.add(vm.common().proto, m_protoFlags);
}

void Object::define(Vm& vm, Name name, Value value, std::uint16_t flags)
{
    const std::uint32_t at = m_shape->find(name, vm.isCaseSensitive());
    if (at == Shape::kMissing) {
        if (name == vm.common().proto) {
            setProto(vm, value);
            setProtoFlags(vm, flags);
            return;
        }
        return addProperty(vm, name, value, flags);
    }
    if (m_shape->properties()[at].flags != flags) changeFlagsAt(vm, at, flags);
    m_slots[m_shape->properties()[at].slot] = value;
}

void Object::define(Vm& vm, std::string_view name, Value value, std::uint16_t flags)
{
    define(vm, vm.name(name), value, flags);
}

void Object::defineAccessor(Vm& vm, Name name, Object* getter, Object* setter, std::uint16_t flags)
{
    if (name.arrayIndex() != Atom::kNotIndex) vm.noteIndexedAccessor();
    Value before;
    // An element with a getter is an element no longer.
    if (m_exotic == Exotic::Array) before = static_cast<ArrayNative*>(m_native)->takeElement(name);
    if (const std::uint32_t at = m_shape->find(name, vm.isCaseSensitive()); at != Shape::kMissing) {
        before = m_slots[m_shape->properties()[at].slot];
        if ((m_shape->properties()[at].flags & kAccessor) != 0)
            before = reinterpret_cast<Accessor*>(before.object())->value;
    }
    auto* accessor = vm.heap().make<Accessor>(getter, setter, before);
    // Boxed as an object so that tracing finds it; the flag keeps scripts from ever seeing it.
    const Value boxed(reinterpret_cast<Object*>(static_cast<Cell*>(accessor)));
    const auto all = static_cast<std::uint16_t>(flags | kAccessor);
    // A `__proto__` with a getter is a property like others, beside the real one.
    if (name == vm.common().proto && m_shape->find(name, vm.isCaseSensitive()) == Shape::kMissing)
        return addProperty(vm, name, boxed, all);
    define(vm, name, boxed, all);
}

std::uint16_t Object::flagsOf(const Vm& vm, Name name) const
{
    const std::uint32_t at = m_shape->find(name, vm.isCaseSensitive());
    return at == Shape::kMissing ? 0
                                 : static_cast<std::uint16_t>(m_shape->properties()[at].flags & ~kAccessor);
}

void Object::changeFlagsAt(Vm& vm, std::uint32_t at, std::uint16_t flags)
{
    becomeUnshared(vm);
    m_shape->setFlags(at, flags);
    noteShapeChange(vm, Shape::Change::Altered);
}

void Object::changeFlags(Vm& vm, Name name, std::uint16_t set, std::uint16_t clear)
{
    const auto changed = [&](std::uint16_t flags) {
        return static_cast<std::uint16_t>((flags & ~clear) | set | (flags & kAccessor));
    };
    // Before the plain ones, which elements with flags of their own then belong to.
    if (m_exotic == Exotic::Array && !name.isNull()) {
        auto& array = static_cast<ArrayNative&>(*m_native);
        if (array.elementAt(name.arrayIndex()) != nullptr)
            return array.flagElements(vm, *this, name, set, clear);
    }
    for (std::uint32_t at = 0; at < m_shape->properties().size(); ++at) {
        const Shape::Property property = m_shape->properties()[at];
        if (property.name.isNull()) continue;
        if (!name.isNull() && !property.name.matches(name, vm.isCaseSensitive())) continue;
        if (changed(property.flags) != property.flags) changeFlagsAt(vm, at, changed(property.flags));
    }
    if (name.isNull() || name.matches(vm.common().proto, vm.isCaseSensitive()))
        setProtoFlags(vm, changed(m_protoFlags));
    if (hasHooks()) m_native->changeFlags(vm, name, set, clear);
    if (m_exotic == Exotic::Array && name.isNull())
        static_cast<ArrayNative*>(m_native)->flagElements(vm, *this, name, set, clear);
}

} // namespace flash::avm1
