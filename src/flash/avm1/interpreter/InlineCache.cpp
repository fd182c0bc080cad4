#include "flash/avm1/interpreter/CacheHits.h"

// Members and variables through the inline caches: what a place of the code found last time is found again
// without a look-up, as long as the objects look the same and nothing that others look through has changed
// (Vm::epoch).
namespace flash::avm1
{

namespace
{

using Where = Object::Found::Where;

/// Several objects that nothing can be remembered of, one after the other: the place stops trying for a
/// while.
constexpr std::uint8_t kMaxFailures = 16;

/// @returns whether it is worth looking what can be remembered; the cache is empty then.
bool startFilling(InlineCache& cache, const Vm& vm)
{
    if (cache.epoch != vm.epoch()) cache.failures = 0;
    if (cache.failures >= kMaxFailures) return false;
    cache.epoch = vm.epoch();
    cache.count = 0;
    cache.name = nullptr;
    cache.holder = nullptr;
    cache.next = nullptr;
    cache.inGlobal = false;
    return true;
}

bool failed(InlineCache& cache)
{
    cache.count = 0;
    ++cache.failures;
    return false;
}

bool succeeded(InlineCache& cache, Name name, const Object* last, const Object::Found& found)
{
    cache.name = name.cell();
    cache.holder = found.holder == last ? nullptr : found.holder;
    cache.slot = found.slot;
    cache.failures = 0;
    return true;
}

bool fillRead(InlineCache& cache, Vm& vm, Object* object, Name name)
{
    if (!startFilling(cache, vm)) return false;
    Caching caching;
    const Object::Found found = object->find(vm, name, caching);
    if (found.where != Where::Slot) return failed(cache);
    cache.guards[0] = InlineCache::Guard::of(*object);
    cache.count = 1;
    return succeeded(cache, name, object, found);
}

/// @returns whether assigning means no more than writing a slot of the object's own.
bool isPlainSlot(const Object* object, const Object::Found& found, const Caching& caching)
{
    return found.where == Where::Slot && found.holder == object && caching.put &&
           (found.flags & kReadOnly) == 0;
}

/// Assigns, and remembers how: to a property that is there, or one that this adds.
void putAndFill(InlineCache& cache, Vm& vm, Object* object, Name name, Value value)
{
    if (object->hasWatches() || !startFilling(cache, vm)) return object->put(vm, name, value);
    Caching caching;
    const Object::Found found = object->find(vm, name, caching);
    const InlineCache::Guard guard = InlineCache::Guard::of(*object);
    if (isPlainSlot(object, found, caching)) {
        cache.guards[0] = guard;
        cache.count = 1;
        succeeded(cache, name, object, found);
        object->setSlot(found.slot, value);
        return;
    }
    const Shape* before = object->sharedShape();
    const bool adds = found.where != Where::Ask && found.holder != object && before != nullptr &&
                      object->exotic() == Exotic::None && !object->isPrototype();
    object->put(vm, name, value);
    Shape* after = object->sharedShape();
    if (!adds || after == nullptr || after == before || cache.epoch != vm.epoch() ||
        after->slotCount() != before->slotCount() + 1 || after->properties().back().name != name ||
        after->properties().back().flags != 0) {
        failed(cache);
        return;
    }
    cache.guards[0] = guard;
    cache.count = 1;
    cache.next = after;
    succeeded(cache, name, object, {Where::Slot, object, before->slotCount(), 0});
}

/// @returns the object that has the variable; null when that cannot be remembered.
Object* fillVariable(InlineCache& cache, Frame& frame, Name name)
{
    Vm& vm = frame.vm;
    if (name.isPath() || !startFilling(cache, vm)) return nullptr;
    const AtomTable::Common& common = vm.common();
    const auto give = [&cache] {
        failed(cache);
        return nullptr;
    };
    for (const Name own : {common.self, common.arguments, common.super, common.global})
        if (name.matches(own, false)) return give();
    for (const Scope* scope = frame.scope;; scope = scope->outer) {
        Object* object = scope == nullptr ? vm.global() : objectOf(frame, *scope);
        if (object == nullptr || cache.count == InlineCache::kMaxGuards ||
            (scope == nullptr && frame.version < 5))
            return give();
        Caching caching;
        const Object::Found found = object->find(vm, name, caching);
        if (found.where == Where::Ask || (found.where == Where::Nowhere && scope == nullptr)) return give();
        cache.guards[cache.count++] = InlineCache::Guard::of(*object);
        if (found.where == Where::Nowhere) continue;
        cache.inGlobal = scope == nullptr;
        succeeded(cache, name, object, found);
        return object;
    }
}

/// As fillVariable, for assignments: to the first scope that has the variable, or to the target, which must
/// have it.
Object* fillAssignedVariable(InlineCache& cache, Frame& frame, Name name)
{
    Vm& vm = frame.vm;
    if (name.isPath() || !startFilling(cache, vm)) return nullptr;
    for (const Scope* scope = frame.scope; scope != nullptr && cache.count < InlineCache::kMaxGuards;
         scope = scope->outer) {
        Object* object = objectOf(frame, *scope);
        if (object == nullptr) break;
        Caching caching;
        const Object::Found found = object->find(vm, name, caching);
        cache.guards[cache.count++] = InlineCache::Guard::of(*object);
        if (isPlainSlot(object, found, caching)) {
            succeeded(cache, name, object, found);
            return object;
        }
        if (found.where != Where::Nowhere || scope->kind == Scope::Kind::Target) break;
    }
    failed(cache);
    return nullptr;
}

/// @returns whether a number spells an array index.
bool isIndex(double number, std::uint32_t& index)
{
    constexpr double kMaxIndex = 1e9; // more digits than names are read for
    if (!(number >= 0 && number < kMaxIndex)) return false;
    index = static_cast<std::uint32_t>(number);
    return static_cast<double>(index) == number;
}

} // namespace

Value Interpreter::getMemberCached(Frame& frame, Value base, Value key, std::uint32_t cacheIndex)
{
    Vm& vm = frame.vm;
    if (Object* object = base.asObject()) {
        if (key.isString()) {
            const Name name = vm.names().intern(key.string());
            InlineCache& cache = frame.code->cache(cacheIndex);
            if (cache.admits(*object, name.cell(), vm.epoch()) || fillRead(cache, vm, object, name))
                return cache.holderOr(object)->slot(cache.slot);
            return object->get(vm, name);
        }
        std::uint32_t index = 0;
        if (key.isNumber() && isIndex(key.number(), index)) return object->getIndex(vm, index);
    }
    return getMember(vm, base, avm1::toName(vm, key));
}

Value Interpreter::getMethodCached(Frame& frame, Value base, Name name, Object*& holder,
                                   std::uint32_t cacheIndex)
{
    Vm& vm = frame.vm;
    Object* object = base.asObject();
    if (object == nullptr) {
        if (!base.isString() || !vm.isBuiltInString()) return getMember(vm, base, name);
        // Texts have the methods of their class.
        object = vm.builtIns().string;
    }
    InlineCache& cache = frame.code->cache(cacheIndex);
    if (cache.admits(*object, name.cell(), vm.epoch()) || fillRead(cache, vm, object, name)) {
        holder = cache.holderOr(object);
        const Value method = holder->slot(cache.slot);
        return method.isUndefined() && base.isObject() ? object->resolve(vm, name, base) : method;
    }
    if (!base.isObject()) return getMember(vm, base, name);
    Value result;
    if (lookup(vm, object, name, base, result, holder)) return result;
    return object->get(vm, name);
}

void Interpreter::setMemberCached(Frame& frame, Value base, Value key, Value value, std::uint32_t cacheIndex)
{
    Vm& vm = frame.vm;
    Object* object = base.asObject();
    if (object == nullptr) {
        // The name is made text of all the same, which a script may see.
        if (key.isObject()) (void)avm1::toName(vm, key);
        return;
    }
    if (key.isString()) {
        const Name name = vm.names().intern(key.string());
        InlineCache& cache = frame.code->cache(cacheIndex);
        if (!cache.admits(*object, name.cell(), vm.epoch()) || object->hasWatches())
            return putAndFill(cache, vm, object, name, value);
        if (cache.next == nullptr) return object->setSlot(cache.slot, value);
        if (object->isPrototype()) return object->put(vm, name, value);
        vm.heap().noteExternalBytes(sizeof(Value));
        return object->addSlot(cache.next, value);
    }
    std::uint32_t index = 0;
    if (key.isNumber() && isIndex(key.number(), index)) return object->putIndex(vm, index, value);
    object->put(vm, avm1::toName(vm, key), value);
}

Value Interpreter::getVariableCached(Frame& frame, Name name, std::uint32_t cacheIndex, Object** thisOfCall)
{
    InlineCache& cache = frame.code->cache(cacheIndex);
    Object* object = cachedVariable(cache, frame, name.cell());
    if (object == nullptr) object = fillVariable(cache, frame, name);
    if (object == nullptr) return getVariable(frame, name, thisOfCall);
    if (thisOfCall != nullptr) *thisOfCall = cache.inGlobal ? nullptr : object;
    return cache.holderOr(object)->slot(cache.slot);
}

void Interpreter::setVariableCached(Frame& frame, Name name, Value value, std::uint32_t cacheIndex)
{
    // A function's own `this` has no slot.
    if (frame.callee != nullptr && name == frame.vm.common().self) return setVariable(frame, name, value);
    InlineCache& cache = frame.code->cache(cacheIndex);
    Object* object = cachedVariable(cache, frame, name.cell());
    if (object == nullptr) object = fillAssignedVariable(cache, frame, name);
    if (object == nullptr || object->hasWatches()) return setVariable(frame, name, value);
    object->setSlot(cache.slot, value);
}

} // namespace flash::avm1
