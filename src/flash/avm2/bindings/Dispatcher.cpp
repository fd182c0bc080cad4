#include "flash/avm2/bindings/Events.h"

#include "flash/avm2/bindings/Player.h"

#include <algorithm>

// Who listens to what, and the way of an event through the display list.
namespace flash::avm2
{

void DispatcherObject::trace(Tracer& tracer)
{
    Object::trace(tracer);
    for (const auto& [type, list] : m_listeners) {
        for (const Listener& listener : list) {
            if (!listener.isWeak) tracer(listener.function);
            tracer(listener.method);
        }
    }
    for (const Name type : m_types) tracer(type);
    tracer(standIn);
}

bool DispatcherObject::Listener::calls(Vm& vm, Value other) const
{
    if (method == nullptr) return vm.strictEquals(function, other);
    const auto* bound = as<FunctionObject>(other);
    return bound != nullptr && bound->isBound() && bound->env() == method &&
           bound->boundTo().bits() == self.bits();
}

bool DispatcherObject::dropGoneListeners()
{
    bool hasWeak = false;
    for (auto& [type, list] : m_listeners) {
        std::erase_if(list, [&](const Listener& listener) {
            if (!listener.isWeak) return false;
            const Value held = listener.method != nullptr ? listener.self : listener.function;
            hasWeak = hasWeak || Heap::isMarked(held.cell());
            return !Heap::isMarked(held.cell());
        });
    }
    return hasWeak;
}

void DispatcherObject::listen(Vm& vm, Name type, Value function, bool capture, std::int32_t priority,
                              Hold hold)
{
    if (const auto found = m_listeners.find(type.cell()); found != m_listeners.end()) {
        const auto known = std::ranges::find_if(found->second, [&](const Listener& other) {
            return other.isCapture == capture && other.calls(vm, function);
        });
        if (known != found->second.end()) {
            // It keeps its place, whatever the priority is now; what is asked for as held is held.
            if (hold == Hold::Strong && known->isWeak)
                *known = {function, known->priority, capture, false, nullptr, {}};
            return;
        }
    }
    if (!m_listeners.contains(type.cell())) m_types.push_back(type);
    List& list = m_listeners[type.cell()];
    const auto place =
        std::ranges::find_if(list, [&](const Listener& other) { return other.priority < priority; });
    Listener listener{function, priority, capture, hold == Hold::Weak && function.isObject(), nullptr, {}};
    const auto* bound = as<FunctionObject>(function);
    if (listener.isWeak && bound != nullptr && bound->isBound() && bound->boundTo().isObject()) {
        listener.function = Value::null();
        listener.method = bound->env();
        listener.self = bound->boundTo();
    }
    list.insert(place, listener);
    if (listener.isWeak) Player::of(vm).noteWeakListener(*this);
}

void DispatcherObject::unlisten(Vm& vm, Name type, Value function, bool capture)
{
    const auto found = m_listeners.find(type.cell());
    if (found == m_listeners.end()) return;
    std::erase_if(found->second, [&](const Listener& listener) {
        return listener.isCapture == capture && listener.calls(vm, function);
    });
}

bool DispatcherObject::hasListener(Name type) const
{
    const auto found = m_listeners.find(type.cell());
    return found != m_listeners.end() && !found->second.empty();
}

void DispatcherObject::callListeners(Vm& vm, EventObject& event, Name type, Value current, int phase)
{
    const auto found = m_listeners.find(type.cell());
    if (found == m_listeners.end()) return;
    // As they are now: what listeners add or take away counts from the next event on.
    RootedList<Value> functions(vm.heap());
    for (const Listener& listener : found->second) {
        if (listener.isCapture != (phase == 1)) continue;
        functions.push_back(listener.method == nullptr
                                ? listener.function
                                : Value(vm.heap().make<FunctionObject>(vm, listener.method, listener.self)));
    }
    if (functions.empty()) return;
    event.phase = phase;
    event.currentTarget = current;
    event.isDispatched = true;
    for (std::size_t i = 0; i < functions.size() && !event.isStoppedAtOnce; ++i) {
        vm.guarded([&] { vm.call(functions[i], Value(vm.nativeGlobal()), {Value(&event)}); });
    }
}

bool DispatcherObject::dispatch(Vm& vm, EventObject& event)
{
    event.target = standIn.isUndefined() ? Value(this) : standIn;
    const Name type = vm.names().intern(vm.toString(event.type));
    RootedList<Object*> path(vm.heap());
    const auto* spokenFor = as<DispatcherObject>(standIn);
    for (DispatcherObject* at = spokenFor != nullptr ? spokenFor->eventParent() : eventParent();
         at != nullptr; at = at->eventParent())
        path.push_back(at);
    const auto visit = [&](std::size_t i, int phase) {
        auto* at = static_cast<DispatcherObject*>(path[i]);
        at->callListeners(vm, event, type, Value(at), phase);
    };
    for (std::size_t i = path.size(); i-- > 0 && !event.isStopped;) visit(i, 1);
    if (!event.isStopped) callListeners(vm, event, type, event.target, 2);
    if (event.bubbles) {
        for (std::size_t i = 0; i < path.size() && !event.isStopped; ++i) visit(i, 3);
    }
    event.currentTarget = Value::null();
    return !event.isPrevented;
}

} // namespace flash::avm2
