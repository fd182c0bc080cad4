#pragma once

#include "flash/avm2/interpreter/Unit.h"

namespace flash::avm2::classes
{

/// A domain as scripts hold it.
Object* domainValue(Vm& vm, Domain* domain);
/// @returns null for what is no domain
Domain* domainOf(Value value);

} // namespace flash::avm2::classes
