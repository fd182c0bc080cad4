#pragma once

#include "flash/avm1/interpreter/Object.h"

#include <string>

// Conversions between types. Each depends on the version of the movie whose script runs (Vm::version), and
// those that meet objects may call script: valueOf and toString.
namespace flash::avm1
{

enum class Hint { None, Number, String };

/// @returns the value itself, or what valueOf (toString with Hint::String) of the object yields.
Value toPrimitive(Vm& vm, Value value, Hint hint = Hint::None);
double toNumber(Vm& vm, Value value);
/// Modulo 2^32; not-a-number and infinities are 0.
std::int32_t toInt32(Vm& vm, Value value);
using vm::toInt32;
using vm::toUint32;
bool toBoolean(Vm& vm, Value value);
String* toString(Vm& vm, Value value);
/// @returns the text; a copy, safe across calls to script.
std::u16string toText(Vm& vm, Value value);
Name toName(Vm& vm, Value value);
/// @returns an object: the value itself, or a wrapper of the primitive; null for undefined and null.
Object* toObject(Vm& vm, Value value);

bool looselyEqual(Vm& vm, Value a, Value b);
bool strictlyEqual(Value a, Value b);
/// @returns whether both are instances of the stage and lead to the same one: they are known by their paths
bool isSameInstance(Vm& vm, Value a, Value b);
/// The abstract comparison a < b. @returns a boolean, or undefined where a side is not a number.
Value lessThan(Vm& vm, Value a, Value b);
Value add(Vm& vm, Value a, Value b);
/// The two texts one after the other; empty, and the scripts end, when no text may be so long.
String* concatenated(Vm& vm, String* first, String* second);
std::string_view typeOf(Vm& vm, Value value);

} // namespace flash::avm1
