#include "flash/avm1/interpreter/ArrayNative.h"

#include "flash/avm1/interpreter/Vm.h"

#include <cmath>

namespace flash::avm1
{

namespace
{

/// @returns the number that a name like "-17" spells; 0 for other names
double negativeIndex(std::u16string_view name)
{
    if (name.size() < 2 || name.size() > 10 || name[0] != u'-' || name[1] == u'0') return 0;
    double index = 0;
    for (const char16_t unit : name.substr(1)) {
        if (unit < u'0' || unit > u'9') return 0;
        index = index * 10 + (unit - u'0');
    }
    return -index;
}

} // namespace

void ArrayNative::trace(Tracer& tracer)
{
    for (const Value element : m_elements) tracer(element);
    tracer(m_lengthValue);
    tracer.outside(m_elements.capacity() * sizeof(Value));
}

bool ArrayNative::getOwn(Vm& vm, Object& self, Name name, Value receiver, Value& result)
{
    const std::uint32_t index = name.arrayIndex();
    if (index < m_elements.size()) {
        if (m_elements[index].isHole()) return false;
        result = m_elements[index];
        return true;
    }
    if (name.matches(vm.common().length, vm.isCaseSensitive()) && !self.hasPlain(vm, name)) {
        result = m_lengthValue;
        return true;
    }
    return self.getPlain(vm, name, receiver, result);
}

Caching ArrayNative::caching(Vm& vm, Name name) const
{
    const bool plain = name.arrayIndex() == Atom::kNotIndex && !name.matches(vm.common().length, false);
    return {plain, plain, plain};
}

bool ArrayNative::putElement(Vm& vm, const Object& self, std::uint32_t index, Value value)
{
    if (index < m_elements.size()) {
        m_elements[index] = value;
        return true;
    }
    if (index - m_elements.size() > kMaxGap || self.shape()->hasIndexNames()) return false;
    m_elements.resize(index, Value::hole());
    m_elements.push_back(value);
    vm.heap().noteExternalBytes(sizeof(Value));
    if (index >= m_length) m_lengthValue = Value(m_length = static_cast<double>(index) + 1);
    return true;
}

bool ArrayNative::hasOwn(Vm& vm, Object& self, Name name)
{
    const std::uint32_t index = name.arrayIndex();
    if (index < m_elements.size()) return !m_elements[index].isHole();
    return name.matches(vm.common().length, vm.isCaseSensitive()) || self.hasPlain(vm, name);
}

void ArrayNative::putOwn(Vm& vm, Object& self, Name name, Value value)
{
    const std::uint32_t index = name.arrayIndex();
    if (index == Atom::kNotIndex) {
        if (name.matches(vm.common().length, vm.isCaseSensitive()) && !self.hasPlain(vm, name)) {
            setLength(vm, self, toInt32(vm, value));
            m_lengthValue = value;
        } else {
            self.putPlain(vm, name, value);
            // An index below 0 is a plain property, but moves a length that is below it.
            const double negative = negativeIndex(name.view());
            if (negative < 0 && m_lengthValue.isNumber() && negative >= m_lengthValue.number())
                m_lengthValue = Value(negative + 1);
        }
        return;
    }
    if (index < m_elements.size()) {
        m_elements[index] = value;
    } else if (index - m_elements.size() <= kMaxGap && !self.hasPlain(vm, name)) {
        m_elements.resize(index, Value::hole());
        m_elements.push_back(value);
        vm.heap().noteExternalBytes(sizeof(Value));
    } else {
        self.putPlain(vm, name, value);
    }
    if (index >= m_length) m_lengthValue = Value(m_length = static_cast<double>(index) + 1);
}

bool ArrayNative::deleteOwn(Vm& vm, Object& self, Name name)
{
    const std::uint32_t index = name.arrayIndex();
    if (index < m_elements.size()) {
        if (m_elements[index].isHole()) return false;
        m_elements[index] = Value::hole();
        return true;
    }
    return self.deletePlain(vm, name);
}

void ArrayNative::enumerateOwn(Vm& vm, Object& self, NameCollector& names)
{
    for (std::size_t i = m_elements.size(); i-- > 0;) {
        if (!m_elements[i].isHole()) names.add(vm.names().fromIndex(static_cast<std::uint32_t>(i)));
    }
    names.add(vm.common().length, m_lengthFlags);
    self.enumeratePlain(vm, names);
}

void ArrayNative::changeFlags(Vm& vm, Name name, std::uint16_t set, std::uint16_t clear)
{
    if (name.isNull() || name.matches(vm.common().length, vm.isCaseSensitive()))
        m_lengthFlags = static_cast<std::uint16_t>((m_lengthFlags & ~clear) | set);
}

void ArrayNative::setLength(Vm& vm, Object& self, double length)
{
    length = std::max(length, 0.0);
    if (length < static_cast<double>(m_elements.size())) m_elements.resize(static_cast<std::size_t>(length));
    if (length < m_length) {
        RootedNames beyond(vm.heap());
        for (const Shape::Property& property : self.shape()->properties()) {
            if (!property.name.isNull() && property.name.arrayIndex() != Atom::kNotIndex &&
                property.name.arrayIndex() >= length)
                beyond.push_back(property.name);
        }
        for (const Name name : beyond) self.deletePlain(vm, name);
    }
    m_length = length;
    m_lengthValue = Value(length);
}

void ArrayNative::assign(std::span<const Value> elements)
{
    m_elements.assign(elements.begin(), elements.end());
    m_length = static_cast<double>(m_elements.size());
    m_lengthValue = Value(m_length);
}

} // namespace flash::avm1
