#pragma once

#include "flash/vm/AtomTable.h"
#include "flash/vm/Heap.h"
#include "flash/vm/Numbers.h"
#include "flash/vm/String.h"
#include "flash/vm/Value.h"

namespace flash::avm2
{

class Object;

using vm::Atom;
using vm::AtomTable;
using vm::Cell;
using vm::Heap;
using vm::Name;
using vm::Root;
using vm::RootBase;
using vm::RootedList;
using vm::String;
using vm::TracedList;
using vm::Tracer;

/// A value of this machine. Numbers of all three types are doubles: an int is a number that is one.
class Value : public vm::Value
{
public:
    using vm::Value::Value;
    constexpr Value() = default;
    constexpr Value(vm::Value value) : vm::Value(value) {}
    /// A null pointer becomes null, as everywhere in this language.
    Value(Object* object) : vm::Value(object == nullptr ? vm::Value::null() : vm::Value(ofObject(object))) {}

    static constexpr Value undefined() { return {}; }
    static constexpr Value null() { return vm::Value::null(); }
    static constexpr Value hole() { return vm::Value::hole(); }

    /// To be asked only of an object.
    [[nodiscard]] Object* object() const { return reinterpret_cast<Object*>(cell()); }
    /// @returns the object, or null when the value is something else.
    [[nodiscard]] Object* asObject() const { return isObject() ? object() : nullptr; }
    /// @returns whether this is a number that an int can hold.
    [[nodiscard]] bool isInt() const
    {
        if (!isNumber()) return false;
        const double value = number();
        return value >= -2147483648.0 && value <= 2147483647.0 &&
               value == static_cast<double>(static_cast<std::int32_t>(value));
    }
};

static_assert(sizeof(Value) == sizeof(vm::Value));

} // namespace flash::avm2

template <>
class std::allocator<flash::avm2::Value>;
template <>
class std::allocator<flash::avm2::Object*>;
