#include "flash/avm1/interpreter/Object.h"

#include "flash/avm1/interpreter/ArrayNative.h"
#include "flash/avm1/interpreter/Vm.h"

#include <algorithm>

namespace flash::avm1
{

namespace
{

constexpr std::string_view kChainTooLong = "256 levels of prototypes were exceeded in one look-up.";

} // namespace

void Accessor::trace(Tracer& tracer)
{
    tracer(getter);
    tracer(setter);
    tracer(value);
}

void NameCollector::add(Name name, std::uint16_t flags)
{
    const Atom* key = m_vm.isCaseSensitive() ? name.cell() : name.folded().cell();
    if (!m_seen.insert(key).second) return;
    // Names hidden from the version are listed all the same.
    if ((flags & kDontEnum) == 0) m_names.push_back(name);
}

bool Native::getOwn(Vm& vm, Object& self, Name name, Value receiver, Value& result)
{
    return self.getPlain(vm, name, receiver, result);
}
void Native::putOwn(Vm& vm, Object& self, Name name, Value value) { self.putPlain(vm, name, value); }
bool Native::hasOwn(Vm& vm, Object& self, Name name) { return self.hasPlain(vm, name); }
bool Native::deleteOwn(Vm& vm, Object& self, Name name) { return self.deletePlain(vm, name); }
void Native::enumerateOwn(Vm& vm, Object& self, NameCollector& names) { self.enumeratePlain(vm, names); }

Object::Object(Vm& vm, Object* prototype) : m_shape(vm.emptyShape())
{
    if (prototype != nullptr) {
        m_proto = prototype;
        prototype->m_isPrototype = true;
    } else {
        m_protoIsSet = false;
    }
}

// ---- the whole protocol ----------------------------------------------------------------------------------

Value Object::get(Vm& vm, Name name) { return get(vm, name, this); }

Value Object::get(Vm& vm, Name name, Value receiver)
{
    Value result;
    if (find(vm, name, result, receiver)) return result;
    return resolve(vm, name, receiver);
}

Value Object::resolve(Vm& vm, Name name, Value receiver)
{
    // Names that the engine itself asks for are not resolved; a resolver that misses does not recurse.
    Value resolver;
    if (name == vm.common().resolve || !findResolver(vm, resolver)) return {};
    return vm.call(resolver, receiver, {Value(name.string())});
}

bool Object::find(Vm& vm, Name name, Value& result, Value receiver)
{
    Object* object = this;
    for (int depth = 0; object != nullptr && depth <= kMaxPrototypeChain; ++depth) {
        const bool found = object->hasHooks() ? object->m_native->getOwn(vm, *object, name, receiver, result)
                                              : object->getPlain(vm, name, receiver, result);
        if (found) return true;
        if (depth == kMaxPrototypeChain) vm.abortScript(kChainTooLong);
        object = object->prototype(vm);
    }
    return false;
}

bool Object::hasHidden(const Vm& vm, Name name) const
{
    return m_shape->find(name, vm.isCaseSensitive()) != Shape::kMissing ||
           (m_protoIsSet && name.matches(vm.common().proto, vm.isCaseSensitive()));
}

bool Object::findResolver(Vm& vm, Value& result) const
{
    const Object* object = this;
    for (int depth = 0; object != nullptr && depth <= kMaxPrototypeChain; ++depth) {
        const std::uint32_t at = object->m_shape->find(vm.common().resolve, vm.isCaseSensitive());
        if (at != Shape::kMissing) {
            const Shape::Property& property = object->m_shape->properties()[at];
            result = object->m_slots[property.slot];
            if ((property.flags & kAccessor) != 0)
                result = reinterpret_cast<Accessor*>(result.object())->value;
            // From version 7 on, what is no object does not stand in the way of a resolver further up.
            if (result.isObject() || vm.version() < 7) return result.isObject();
        }
        if (depth == kMaxPrototypeChain) vm.abortScript(kChainTooLong);
        object = object->prototype(vm);
    }
    return false;
}

Accessor* Object::inheritedAccessor(Vm& vm, Name name, Object*& holder)
{
    Object* object = prototype(vm);
    for (int depth = 1; object != nullptr && depth <= kMaxPrototypeChain; ++depth) {
        const std::uint32_t at = object->findVisible(vm, name);
        if (at != Shape::kMissing) {
            const Shape::Property& property = object->m_shape->properties()[at];
            if ((property.flags & kAccessor) == 0) return nullptr;
            holder = object;
            return reinterpret_cast<Accessor*>(object->m_slots[property.slot].object());
        }
        object = object->prototype(vm);
    }
    if (object != nullptr) vm.abortScript(kChainTooLong);
    return nullptr;
}

void Object::put(Vm& vm, Name name, Value value)
{
    // Scripts cannot make a property without a name.
    if (name.view().empty()) return;
    if (hasWatches() && !callWatch(vm, name, value)) return;
    // A prototype with a `__proto__` of its own making has no say in that of others.
    if (!hasOwn(vm, name) && !name.matches(vm.common().proto, vm.isCaseSensitive())) {
        Object* holder = nullptr;
        if (Accessor* accessor = inheritedAccessor(vm, name, holder)) {
            Object* setter = accessor->setter;
            accessor->value = value;
            if (setter != nullptr) vm.callAccessor(setter, this, {&value, 1}, holder);
            return;
        }
    }
    if (hasHooks())
        m_native->putOwn(vm, *this, name, value);
    else
        putPlain(vm, name, value);
}

bool Object::has(Vm& vm, Name name)
{
    Object* object = this;
    for (int depth = 0; object != nullptr && depth <= kMaxPrototypeChain; ++depth) {
        if (object->hasOwn(vm, name)) return true;
        object = object->prototype(vm);
    }
    return false;
}

bool Object::hasOwn(Vm& vm, Name name)
{
    return hasHooks() ? m_native->hasOwn(vm, *this, name) : hasPlain(vm, name);
}

bool Object::remove(Vm& vm, Name name)
{
    return hasHooks() ? m_native->deleteOwn(vm, *this, name) : deletePlain(vm, name);
}

Object::Found Object::find(Vm& vm, Name name, Caching& caching)
{
    constexpr int kMaxChain = 16; // longer ones are not worth remembering
    caching = {true, true, true};
    Object* holder = this;
    for (int depth = 0; holder != nullptr && depth < kMaxChain; ++depth) {
        Caching own{true, true, true};
        if (holder->hasHooks()) {
            own = holder->m_native->caching(vm, name);
            if (depth == 0) caching = own;
        }
        const Shape* shape = holder->m_shape;
        if (!shape->isCacheable()) return {};
        const std::uint32_t at = holder->findVisible(vm, name);
        if (at == Shape::kMissing) {
            // __proto__ is none of the own properties.
            if (!own.miss || name.matches(vm.common().proto, vm.isCaseSensitive())) return {};
            shape->noteCachedMiss();
            Object* next = holder->prototype(vm);
            if (next == nullptr && holder->m_proto.isObject()) return {};
            holder = next;
            continue;
        }
        const Shape::Property& property = shape->properties()[at];
        if (!own.get || (property.flags & kAccessor) != 0) return {};
        shape->noteCachedSlot();
        return {Found::Where::Slot, holder, property.slot, property.flags};
    }
    if (holder != nullptr) return {};
    return {Found::Where::Nowhere, nullptr, 0, 0};
}

Value Object::getIndex(Vm& vm, std::uint32_t index)
{
    if (m_exotic == Exotic::Array) {
        if (const Value* element = static_cast<ArrayNative*>(m_native)->elementAt(index)) return *element;
    }
    return get(vm, vm.names().fromIndex(index));
}

void Object::putIndex(Vm& vm, std::uint32_t index, Value value)
{
    // Without setters for such names, prototypes have no say.
    if (m_exotic == Exotic::Array && !hasWatches() && !vm.hasIndexedAccessors() &&
        static_cast<ArrayNative*>(m_native)->putElement(vm, *this, index, value))
        return;
    put(vm, vm.names().fromIndex(index), value);
}

// ---- own properties --------------------------------------------------------------------------------------

std::uint32_t Object::findVisible(const Vm& vm, Name name) const
{
    const std::uint32_t at = m_shape->find(name, vm.isCaseSensitive());
    if (at == Shape::kMissing || isVisible(m_shape->properties()[at].flags, vm.version())) return at;
    return Shape::kMissing;
}

bool Object::isProtoVisible(const Vm& vm) const
{
    return m_protoIsSet && isVisible(m_protoFlags, vm.version());
}

bool Object::getPlain(Vm& vm, Name name, Value receiver, Value& result)
{
    const std::uint32_t at = findVisible(vm, name);
    if (at != Shape::kMissing) {
        const Shape::Property& property = m_shape->properties()[at];
        result = m_slots[property.slot];
        if ((property.flags & kAccessor) != 0) {
            Object* getter = reinterpret_cast<Accessor*>(result.object())->getter;
            result = getter == nullptr ? Value() : vm.callAccessor(getter, receiver, {}, this);
        }
        return true;
    }
    if (isProtoVisible(vm) && name.matches(vm.common().proto, vm.isCaseSensitive())) {
        result = m_proto;
        return true;
    }
    return false;
}

Value Object::ownData(Vm& vm, Name name)
{
    Value result;
    const std::uint32_t at = findVisible(vm, name);
    if (at == Shape::kMissing || (m_shape->properties()[at].flags & kAccessor) == 0) {
        if (hasHooks()) return m_native->getOwn(vm, *this, name, this, result) ? result : Value();
        return getPlain(vm, name, this, result) ? result : Value();
    }
    return reinterpret_cast<Accessor*>(m_slots[m_shape->properties()[at].slot].object())->value;
}

Value Object::ownHiddenData(Vm& vm, Name name)
{
    const std::uint32_t at = m_shape->find(name, vm.isCaseSensitive());
    if (at == Shape::kMissing) return ownData(vm, name);
    const Shape::Property& property = m_shape->properties()[at];
    const Value held = m_slots[property.slot];
    return (property.flags & kAccessor) != 0 ? reinterpret_cast<Accessor*>(held.object())->value : held;
}

bool Object::hasPlain(Vm& vm, Name name) const
{
    return findVisible(vm, name) != Shape::kMissing ||
           (isProtoVisible(vm) && name.matches(vm.common().proto, vm.isCaseSensitive()));
}

void Object::putPlain(Vm& vm, Name name, Value value)
{
    const std::uint32_t at = m_shape->find(name, vm.isCaseSensitive());
    if (at == Shape::kMissing && name.matches(vm.common().proto, vm.isCaseSensitive())) {
        if ((m_protoFlags & kReadOnly) == 0) setProto(vm, value);
        return;
    }
    if (at == Shape::kMissing) return addProperty(vm, name, value, 0);
    const Shape::Property& property = m_shape->properties()[at];
    if (!isVisible(property.flags, vm.version())) {
        // The value is taken and the marks that hide it go, so that it shows; but version 6 leaves the mark
        // for version 7 on.
        const std::uint32_t slot = property.slot;
        const std::uint16_t stays = vm.version() == 6 ? kFrom7 : 0;
        changeFlagsAt(vm, at,
                      static_cast<std::uint16_t>(property.flags & (~(kVersionMask | kAccessor) | stays)));
        m_slots[slot] = value;
        return;
    }
    if ((property.flags & kAccessor) != 0) {
        auto* accessor = reinterpret_cast<Accessor*>(m_slots[property.slot].object());
        Object* setter = accessor->setter;
        if (setter == nullptr || (property.flags & kReadOnly) != 0) return;
        accessor->value = value;
        vm.callAccessor(setter, this, {&value, 1}, this);
        return;
    }
    if ((property.flags & kReadOnly) == 0) m_slots[property.slot] = value;
}

bool Object::deletePlain(Vm& vm, Name name)
{
    // What the movie's version cannot see it can take away.
    const std::uint32_t at = m_shape->find(name, vm.isCaseSensitive());
    if (at == Shape::kMissing) {
        if (!isProtoVisible(vm) || !name.matches(vm.common().proto, vm.isCaseSensitive())) return false;
        if ((m_protoFlags & kDontDelete) != 0) return false;
        // From version 7 on only the property goes; look-ups still find what it named.
        if (vm.version() < 7) setProto(vm, {});
        m_protoIsSet = false;
        return true;
    }
    if ((m_shape->properties()[at].flags & kDontDelete) != 0) return false;
    becomeUnshared(vm);
    m_slots[m_shape->properties()[at].slot] = Value();
    m_shape->remove(at);
    noteShapeChange(vm, Shape::Change::Altered);
    return true;
}

void Object::addProperty(Vm& vm, Name name, Value value, std::uint16_t flags)
{
    if (m_shape->isShared() && m_shape->properties().size() >= Shape::kMaxShared) becomeUnshared(vm);
    m_shape = m_shape->withAdded(vm.heap(), name, flags);
    const std::uint32_t slot = m_shape->properties().back().slot;
    reserveSlots();
    if (slot >= m_slots.size()) m_slots.resize(slot + 1);
    m_slots[slot] = value;
    vm.heap().noteExternalBytes(sizeof(Value));
    noteShapeChange(vm, Shape::Change::Added);
}

void Object::becomeUnshared(Vm& vm)
{
    if (m_shape->isShared()) m_shape = m_shape->ownCopy(vm.heap());
}

void Object::noteShapeChange(Vm& vm, Shape::Change change)
{
    if (m_shape->outdates(change) || m_isPrototype) vm.bumpEpoch();
}

// ---- prototype -------------------------------------------------------------------------------------------

void Object::setProto(Vm& vm, Value proto)
{
    m_proto = proto;
    m_protoIsSet = true;
    if (Object* object = proto.asObject()) object->m_isPrototype = true;
    noteProtoChange(vm);
}

void Object::setProtoFlags(Vm& vm, std::uint16_t flags)
{
    m_protoFlags = flags;
    noteProtoChange(vm);
}

void Object::noteProtoChange(Vm& vm)
{
    const Object* object = m_proto.asObject();
    const bool isClip =
        object != nullptr && object->m_native != nullptr && object->m_native->typeOf() == "movieclip";
    m_followsProto = (m_protoFlags & kVersionMask) == 0 && !isClip;
    // Caches do not look at flags.
    if (!m_followsProto || m_isPrototype) vm.bumpEpoch();
}

Object* Object::visiblePrototype(const Vm& vm) const
{
    Object* object = m_proto.asObject();
    if (object->m_native != nullptr && object->m_native->typeOf() == "movieclip") return nullptr;
    // From version 7 on no mark keeps look-ups from going on; for-in loops have rules of their own.
    const std::uint16_t hides = vm.version() <= 5   ? kFrom6 | kFrom7 | kFrom8 | kFrom9
                                : vm.version() == 6 ? kFrom7
                                                    : 0;
    return (m_protoFlags & hides) == 0 ? object : nullptr;
}

Object* Object::listedPrototype(const Vm& vm) const
{
    // Look-ups go on past a __proto__ that was deleted; these do not.
    if (!m_protoIsSet) return nullptr;
    Object* object = prototype(vm);
    const std::uint16_t hides = vm.version() == 7   ? kFrom8
                                : vm.version() == 8 ? kFrom9
                                : vm.version() > 8  ? kFrom10
                                                    : 0;
    return (m_protoFlags & hides) == 0 ? object : nullptr;
}

bool Object::isInstance(Vm& vm, Object* prototype) const
{
    // Of an object's prototypes, the interfaces of each, and what those extend in turn. Scripts can make a
    // circle of them.
    int left = kMaxPrototypeChain * 4;
    const auto reaches = [&](const auto& self, const Object* from, bool isInterface) -> bool {
        const Object* object = isInterface ? from : from->listedPrototype(vm);
        for (int depth = 0; object != nullptr && depth <= kMaxPrototypeChain && left-- > 0; ++depth) {
            if (object == prototype) return true;
            if (object->m_extras != nullptr) {
                for (const Object* interface : object->m_extras->interfaces)
                    if (self(self, interface, true)) return true;
            }
            object = object->listedPrototype(vm);
        }
        return false;
    };
    return reaches(reaches, this, false);
}

void Object::attach(Native* native)
{
    if (m_native != nullptr) m_native->detached();
    m_native = native;
    m_exotic = m_native == nullptr ? Exotic::None : m_native->exotic();
}

std::string_view Object::typeOf() const
{
    if (m_native != nullptr) return m_native->typeOf();
    return m_isFunction ? "function" : "object";
}

void Object::trace(Tracer& tracer)
{
    tracer(m_shape);
    for (const Value value : m_slots) tracer(value);
    tracer.outside(m_slots.capacity() * sizeof(Value));
    tracer(m_proto);
    tracer(m_native);
    if (m_extras == nullptr) return;
    for (const Watch& watch : m_extras->watches) {
        tracer(watch.name.cell());
        tracer(watch.callback);
        tracer(watch.userData);
    }
    for (const Object* interface : m_extras->interfaces) tracer(interface);
}

} // namespace flash::avm1
