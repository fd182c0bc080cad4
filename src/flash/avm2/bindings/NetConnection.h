#pragma once

#include "flash/avm2/bindings/Events.h"

namespace flash::avm2
{

class NetConnectionObject final : public DispatcherObject
{
public:
    AVM2_NATIVE(DispatcherObject)
    NetConnectionObject(Traits* traits, Object* proto) : DispatcherObject(traits, proto) {}
    void trace(Tracer& tracer) override
    {
        DispatcherObject::trace(tracer);
        tracer(client);
        tracer(uri);
    }
    enum class State : std::uint8_t { None, Local, Remote };
    State state = State::None;
    Value client, uri = Value::null();
    int encoding = 3;
};

/// Does something with an object once the scripts at hand are done.
void runLater(Vm& vm, Object& object, void (*work)(Vm&, Object&));

} // namespace flash::avm2
