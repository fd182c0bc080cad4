#include "flash/avm1/interpreter/Object.h"

#include "flash/avm1/interpreter/ArrayNative.h"
#include "flash/avm1/interpreter/Vm.h"

#include <algorithm>

// Watches and the interfaces that a class states.
namespace flash::avm1
{

Object::Extras& Object::extras()
{
    if (m_extras == nullptr) m_extras = std::make_unique<Extras>();
    return *m_extras;
}

void Object::watch(Name name, Object* callback, Value userData)
{
    for (Watch& watch : extras().watches) {
        if (watch.name == name) {
            watch.callback = callback;
            watch.userData = userData;
            return;
        }
    }
    extras().watches.push_back({name, callback, userData, 0});
}

bool Object::unwatch(Vm& vm, Name name)
{
    if (m_extras == nullptr) return false;
    // A property with a getter keeps its watch for good.
    const std::uint32_t at = m_shape->find(name, vm.isCaseSensitive());
    if (at != Shape::kMissing && (m_shape->properties()[at].flags & kAccessor) != 0) return false;
    return std::erase_if(m_extras->watches, [&](const Watch& watch) {
               return watch.name.matches(name, vm.isCaseSensitive());
           }) > 0;
}

bool Object::callWatch(Vm& vm, Name name, Value& value)
{
    const auto find = [&]() -> Watch* {
        for (Watch& watch : m_extras->watches) {
            if (watch.name.matches(name, vm.isCaseSensitive())) return &watch;
        }
        return nullptr;
    };
    Watch* watch = find();
    // From version 7 on a callback that sets what it watches is called again, as deep as setters may nest.
    if (watch == nullptr || (watch->running && vm.version() < 7)) return true;
    // The old value is what was last put there: a getter is not asked.
    Value old;
    Object* holder = nullptr;
    const std::uint32_t at = findVisible(vm, name);
    bool isOwn = at != Shape::kMissing;
    if (isOwn) {
        const Shape::Property& property = m_shape->properties()[at];
        old = m_slots[property.slot];
        if ((property.flags & kAccessor) != 0) old = reinterpret_cast<Accessor*>(old.object())->value;
    } else if (const Accessor* accessor = inheritedAccessor(vm, name, holder)) {
        old = accessor->value;
    } else if (Object* above = prototype(vm);
               above != nullptr && above->find(vm, name, old, this) && !vm.isUnwinding()) {
        // Data further up counts as the old value.
    } else if (!hasHooks() && !name.matches(vm.common().proto, vm.isCaseSensitive())) {
        addProperty(vm, name, {}, 0);
        isOwn = true;
    }
    if (watch->running >= Vm::kMaxNestedAccessors) {
        value = Value();
        return !isOwn || hasPlain(vm, name);
    }
    ++watch->running;
    const Value args[] = {Value(name.string()), old, value, watch->userData};
    value = vm.callWatcher(watch->callback, this, args, this);
    // The callback may have added or removed watches, and taken the property away.
    if (Watch* still = find(); still != nullptr && still->running > 0) --still->running;
    return !isOwn || hasPlain(vm, name);
}

void Object::addInterface(Object* prototype) { extras().interfaces.push_back(prototype); }

} // namespace flash::avm1
