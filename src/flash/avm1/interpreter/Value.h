#pragma once

#include "flash/vm/AtomTable.h"
#include "flash/vm/Heap.h"
#include "flash/vm/Numbers.h"
#include "flash/vm/Shape.h"
#include "flash/vm/String.h"
#include "flash/vm/Value.h"

namespace flash::avm1
{

class Object;

// What every script machine is built of goes by its own name here.
using vm::Atom;
using vm::AtomTable;
using vm::Cell;
using vm::formatNumber;
using vm::Heap;
using vm::Name;
using vm::parseFloatPrefix;
using vm::parseIntPrefix;
using vm::parseNumber;
using vm::Root;
using vm::RootBase;
using vm::RootedList;
using vm::Shape;
using vm::String;
using vm::TracedAllocator;
using vm::TracedList;
using vm::Tracer;

/// A value of this machine: its objects are Objects.
class Value : public vm::Value
{
public:
    using vm::Value::Value;
    constexpr Value() = default;
    constexpr Value(vm::Value value) : vm::Value(value) {}
    /// A null pointer becomes undefined, which is what scripts see of things that are gone.
    Value(Object* object) : vm::Value(ofObject(object)) {}

    static constexpr Value undefined() { return {}; }
    static constexpr Value null() { return vm::Value::null(); }
    static constexpr Value hole() { return vm::Value::hole(); }
    static Value fromBits(std::uint64_t bits) { return vm::Value::fromBits(bits); }

    /// To be asked only of an object.
    [[nodiscard]] Object* object() const { return reinterpret_cast<Object*>(cell()); }
    /// @returns the object, or null when the value is something else.
    [[nodiscard]] Object* asObject() const { return isObject() ? object() : nullptr; }
};

static_assert(sizeof(Value) == sizeof(vm::Value));

} // namespace flash::avm1

// As in vm/Value.h: RootedLists and TracedLists are what the collector sees.
template <>
class std::allocator<flash::avm1::Value>;
template <>
class std::allocator<flash::avm1::Object*>;
