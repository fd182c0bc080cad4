#include "flash/avm2/classes/ArrayLike.h"

#include <algorithm>

namespace flash::avm2::classes
{

Multiname ArrayLike::nameOf(std::uint32_t index)
{
    return m_vm.runtimeName(Multiname::of(Name(), m_vm.publicNs()), Value(static_cast<double>(index)));
}

std::uint32_t ArrayLike::length()
{
    return m_array != nullptr ? m_array->length() : m_vm.toUint(m_vm.getPublic(m_self, "length"));
}

Value ArrayLike::at(std::uint32_t index)
{
    if (m_array != nullptr) return m_array->at(m_vm, index);
    const Multiname name = nameOf(index);
    return m_vm.has(m_self, name) ? m_vm.get(m_self, name) : Value();
}

bool ArrayLike::holds(std::uint32_t index)
{
    return m_array != nullptr ? m_array->holds(m_vm, index) : m_vm.has(m_self, nameOf(index));
}

void ArrayLike::put(std::uint32_t index, Value value)
{
    if (m_array != nullptr)
        m_array->put(m_vm, index, value);
    else
        m_vm.set(m_self, nameOf(index), value);
}

void ArrayLike::erase(std::uint32_t index)
{
    if (m_array != nullptr)
        m_array->erase(m_vm, index);
    else if (m_vm.has(m_self, nameOf(index)))
        m_vm.remove(m_self, nameOf(index));
}

void ArrayLike::setLength(std::uint32_t length)
{
    if (m_array != nullptr)
        m_array->setLength(length);
    else
        m_vm.setPublic(m_self, "length", static_cast<double>(length));
}

bool canWalk(Call& call)
{
    if (call.arg(0).isNullish()) return false;
    if (!isFunction(call.arg(0))) call.vm.coerce(call.arg(0), call.vm.classes().function->instances);
    const auto* function = as<FunctionObject>(call.arg(0));
    if (function != nullptr && function->isBound() && !call.arg(1).isNullish())
        call.vm.throwError(
            ErrorClass::Type, 1510,
            "When the callback argument is a method of a class, the optional this argument must be null.");
    return true;
}

Value onElements(Call& call, NativeFunction change)
{
    ArrayLike list(call);
    auto* copy = static_cast<ArrayObject*>(call.vm.newArray());
    const std::uint32_t before = list.length();
    for (std::uint32_t i = 0; i < before; ++i) {
        call.vm.check();
        if (list.holds(i)) copy->put(call.vm, i, list.at(i));
    }
    copy->setLength(before);
    Call inner{call.vm, Value(copy), call.args, call.count, call.callee};
    const Value result = change(inner);
    const std::uint32_t after = copy->length();
    for (std::uint32_t i = 0; i < std::max(before, after); ++i) {
        call.vm.check();
        if (i < after && copy->holds(call.vm, i))
            list.put(i, copy->at(call.vm, i));
        else
            list.erase(i);
    }
    list.setLength(after);
    return result.asObject() == copy ? call.self : result;
}

} // namespace flash::avm2::classes
