#pragma once

#include "flash/avm2/classes/Library.h"

namespace flash::avm2::classes
{

/// The receiver of a function of arrays. As scripts find them in the prototype, these work on anything that
/// has a length and elements by number. Asking another object than an array may run script.
class ArrayLike
{
public:
    explicit ArrayLike(Call& call) : m_vm(call.vm), m_self(call.self), m_array(as<ArrayObject>(call.self)) {}
    [[nodiscard]] Value self() const { return m_self; }
    [[nodiscard]] std::uint32_t length();
    [[nodiscard]] Value at(std::uint32_t index);
    [[nodiscard]] bool holds(std::uint32_t index);
    void put(std::uint32_t index, Value value);
    void erase(std::uint32_t index);
    void setLength(std::uint32_t length);

private:
    [[nodiscard]] Multiname nameOf(std::uint32_t index);
    Vm& m_vm;
    Value m_self;
    ArrayObject* m_array; ///< null for everything else
};

/// Runs a function that changes an array on one with the elements of another object, and gives that what
/// became of them. @returns what the function does; the object itself in place of the array
Value onElements(Call& call, NativeFunction change);

template <NativeFunction change>
Value onAnyList(Call& call)
{
    return as<ArrayObject>(call.self) != nullptr ? change(call) : onElements(call, change);
}

} // namespace flash::avm2::classes
