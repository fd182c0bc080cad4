#pragma once

#include "flash/avm2/classes/ClassState.h"

// `objectEncoding` of those that write objects, and `defaultObjectEncoding` of their classes.
namespace flash::avm2::classes
{

/// What new objects of a class begin with.
struct DefaultEncoding {
    int value = 3;
};

/// @returns the first argument, 0 or 3. @throws ArgumentError 2008 for anything else
inline int encodingArg(Call& call)
{
    const std::uint32_t wanted = call.vm.toUint(call.arg(0));
    if (wanted != 0 && wanted != 3)
        call.vm.throwError(ErrorClass::Argument, 2008,
                           "Parameter objectEncoding must be one of the accepted values.");
    return static_cast<int>(wanted);
}

/// Of the class that `self` is, or is an object of.
inline DefaultEncoding& defaultEncodingOf(Object& self)
{
    const auto* cls = as<ClassObject>(&self);
    return *stateOf<DefaultEncoding>(cls != nullptr ? *cls : *self.traits()->cls);
}
inline Value defaultObjectEncoding(Call& call)
{
    Object* self = call.self.asObject();
    return self != nullptr ? defaultEncodingOf(*self).value : DefaultEncoding().value;
}
inline Value setDefaultObjectEncoding(Call& call)
{
    const int wanted = encodingArg(call);
    if (Object* self = call.self.asObject()) defaultEncodingOf(*self).value = wanted;
    return {};
}

} // namespace flash::avm2::classes
