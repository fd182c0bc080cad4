#pragma once

#include "flash/avm2/interpreter/Collections.h"
#include "flash/avm2/interpreter/Native.h"
#include "flash/avm2/interpreter/Vm.h"

#include <map>

namespace flash::avm2
{

class EventObject final : public Object
{
public:
    AVM2_NATIVE(Object)
    EventObject(Traits* traits, Object* proto) : Object(traits, proto) {}
    void trace(Tracer& tracer) override;
    Value type, target, currentTarget;
    bool bubbles = false, cancelable = false, isPrevented = false, isStopped = false, isStoppedAtOnce = false;
    int phase = 2; ///< 1 capture, 2 target, 3 bubbling
    bool isDispatched = false;
};

/// Has listeners. Everything on the display list is one.
class DispatcherObject : public Object
{
public:
    AVM2_NATIVE(Object)
    DispatcherObject(Traits* traits, Object* proto) : Object(traits, proto) {}
    void trace(Tracer& tracer) override;
    struct Listener {
        Value function; ///< a weak one's is not kept alive; of a weak bound one null, it is made when called
        std::int32_t priority = 0;
        bool isCapture = false, isWeak = false;
        /// A method of an object that is heard weakly lives as long as the object does, whoever holds it.
        MethodEnv* method = nullptr;
        Value self;
        [[nodiscard]] bool calls(Vm& vm, Value other) const;
    };
    using List = std::vector<Listener, vm::TracedAllocator<Listener>>;
    enum class Hold : std::uint8_t { Strong, Weak };
    void listen(Vm& vm, Name type, Value function, bool capture, std::int32_t priority,
                Hold hold = Hold::Strong);
    void unlisten(Vm& vm, Name type, Value function, bool capture);
    [[nodiscard]] bool hasListener(Name type) const;
    /// The heap has been marked: lets go of weak listeners that nothing else holds.
    /// @returns whether there are others
    bool dropGoneListeners();
    /// The dispatcher that an event bubbles to next; null at the top.
    [[nodiscard]] virtual DispatcherObject* eventParent() const { return nullptr; }
    /// @returns false when a listener prevented what comes by default
    bool dispatch(Vm& vm, EventObject& event);
    /// What the event names as its target, when it is not this.
    Value standIn;

private:
    void callListeners(Vm& vm, EventObject& event, Name type, Value current, int phase);
    std::map<const Atom*, List> m_listeners;
    TracedList<Name> m_types; ///< keeps the keys alive
};

std::span<const NativeClass> eventClasses();
EventObject* newEvent(Vm& vm, std::string_view cls, std::string_view type, bool bubbles = false,
                      bool cancelable = false);
inline bool fire(Vm& vm, DispatcherObject& target, std::string_view type, bool bubbles = false)
{
    return target.dispatch(vm, *newEvent(vm, "flash.events::Event", type, bubbles));
}

} // namespace flash::avm2
