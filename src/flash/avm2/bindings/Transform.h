#pragma once

#include "flash/avm2/bindings/Display.h"

namespace flash::avm2
{

/// The place and colours of an object of the display list, as one value.
class TransformObject final : public Object
{
public:
    AVM2_NATIVE(Object)
    TransformObject(Traits* traits, Object* proto) : Object(traits, proto) {}
    void trace(Tracer& tracer) override
    {
        Object::trace(tracer);
        tracer(target);
    }
    DisplayObject* target = nullptr;
};

Value newTransform(Vm& vm, DisplayObject& target);
/// The object that a Transform is of.
DisplayObject& transformTarget(Call& call);
// In which what it contains is seen.
Value transformPerspective(Call& call);
Value setTransformPerspective(Call& call);
std::span<const NativeClass> transformClasses();

} // namespace flash::avm2
