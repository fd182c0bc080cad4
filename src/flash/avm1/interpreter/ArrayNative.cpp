#include "flash/avm1/interpreter/ArrayNative.h"

#include "flash/avm1/interpreter/Vm.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace flash::avm1
{

namespace
{

/// @returns the index that a name of digits stands for, which may have a sign and wraps around in 32 bits
std::optional<std::int32_t> wrappedIndex(std::u16string_view name)
{
    const bool negative = !name.empty() && name[0] == u'-';
    if (negative) name.remove_prefix(1);
    if (name.empty()) return {};
    std::uint32_t index = 0;
    for (const char16_t unit : name) {
        if (unit < u'0' || unit > u'9') return {};
        index = index * 10 + (unit - u'0');
    }
    return static_cast<std::int32_t>(negative ? 0U - index : index);
}

} // namespace

void ArrayNative::trace(Tracer& tracer)
{
    for (const Value element : m_elements) tracer(element);
    tracer(m_lengthValue);
    for (const Created& created : m_order)
        if (created.name != nullptr) tracer(created.name);
    tracer.outside(m_elements.capacity() * sizeof(Value));
}

bool ArrayNative::getOwn(Vm& vm, Object& self, Name name, Value receiver, Value& result)
{
    const std::uint32_t index = name.arrayIndex();
    if (index < m_elements.size() && !m_elements[index].isHole()) {
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
    if (index < m_elements.size() && !m_elements[index].isHole()) {
        if (index >= m_flagged) m_elements[index] = value;
        return index >= m_flagged;
    }
    // Only one element after the other is as simple as that.
    if (index != m_elements.size() || index >= kMaxDense || !m_order.empty() || self.shape()->hasIndexNames())
        return false;
    m_elements.push_back(value);
    vm.heap().noteExternalBytes(sizeof(Value));
    if (index >= m_length) m_lengthValue = Value(m_length = static_cast<double>(index) + 1);
    return true;
}

bool ArrayNative::popElement(Vm& vm, const Object& self, Value& value)
{
    const std::size_t size = m_elements.size();
    if (size == 0 || m_length != static_cast<double>(size) || signedLength() != m_length ||
        m_elements.back().isHole() || m_flagged >= size || !m_order.empty() || self.hasWatches() ||
        self.shape()->hasIndexNames() || self.hasPlain(vm, vm.common().length))
        return false;
    value = m_elements.back();
    m_elements.pop_back();
    m_lengthValue = Value(m_length = static_cast<double>(size - 1));
    return true;
}

Value ArrayNative::takeElement(Name name)
{
    Value* element = elementAt(name.arrayIndex());
    return element == nullptr ? Value() : std::exchange(*element, Value::hole());
}

bool ArrayNative::hasOwn(Vm& vm, Object& self, Name name)
{
    const std::uint32_t index = name.arrayIndex();
    if (index < m_elements.size() && !m_elements[index].isHole()) return true;
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
            if (!self.hasPlain(vm, name)) noteCreated({Atom::kNotIndex, name.cell()});
            self.putPlain(vm, name, value);
            // Other spellings of an index name plain properties, but move the length all the same.
            if (const std::optional<std::int32_t> wrapped = wrappedIndex(name.view()))
                extend(vm, self, *wrapped);
        }
        return;
    }
    if (index < m_elements.size() && !(m_elements[index].isHole() && self.hasPlain(vm, name))) {
        const bool isNew = m_elements[index].isHole();
        if (isNew) noteCreated({index, nullptr});
        if (!isNew && hasFlag(index, kReadOnly)) return;
        m_elements[index] = value;
        // What was deleted comes back without its flags.
        if (isNew && index < m_flagged) moveToProperties(vm, self, index, 0);
    } else if (index < kMaxDense && index - m_elements.size() <= kMaxGap && !self.hasPlain(vm, name)) {
        if (index != m_elements.size() || !m_order.empty()) noteCreated({index, nullptr});
        m_elements.resize(index, Value::hole());
        m_elements.push_back(value);
        vm.heap().noteExternalBytes(sizeof(Value));
    } else {
        if (!self.hasPlain(vm, name)) noteCreated({Atom::kNotIndex, name.cell()});
        self.putPlain(vm, name, value);
    }
    extend(vm, self, static_cast<std::int32_t>(index));
}

void ArrayNative::extend(Vm& vm, Object& self, std::int32_t index)
{
    if (index < signedLength()) return;
    const auto length = static_cast<std::int32_t>(static_cast<std::uint32_t>(index) + 1);
    // Behind the last index of all comes the first.
    if (length < m_length) setLength(vm, self, length);
    m_length = std::max(length, 0);
    m_lengthValue = Value(length);
}

std::int32_t ArrayNative::signedLength() const
{
    return m_lengthValue.isNumber() ? vm::toInt32(m_lengthValue.number())
                                    : static_cast<std::int32_t>(m_length);
}

void ArrayNative::noteCreated(Created created)
{
    if (m_order.empty()) noteElements();
    m_order.push_back(created);
}

void ArrayNative::noteElements()
{
    for (std::size_t i = 0; i < m_elements.size(); ++i)
        if (!m_elements[i].isHole()) m_order.push_back({static_cast<std::uint32_t>(i), nullptr});
}

bool ArrayNative::deleteOwn(Vm& vm, Object& self, Name name)
{
    const std::uint32_t index = name.arrayIndex();
    if (index < m_elements.size() && !m_elements[index].isHole()) {
        if (hasFlag(index, kDontDelete)) return false;
        m_elements[index] = Value::hole();
        return true;
    }
    return self.deletePlain(vm, name);
}

void ArrayNative::enumerateOwn(Vm& vm, Object& self, NameCollector& names)
{
    // The latest comes first. What was deleted and made again is found by its last entry.
    for (std::size_t i = m_order.size(); i-- > 0;) {
        const Created& created = m_order[i];
        if (created.name == nullptr) {
            if (elementAt(created.index) != nullptr)
                names.add(vm.names().fromIndex(created.index), flagsAt(created.index));
        } else if (const std::uint32_t at = self.shape()->find(Name(created.name), true);
                   at != Shape::kMissing) {
            names.add(Name(created.name), self.shape()->properties()[at].flags);
        }
    }
    if (m_order.empty()) {
        for (std::size_t i = m_elements.size(); i-- > 0;) {
            const auto index = static_cast<std::uint32_t>(i);
            if (!m_elements[i].isHole()) names.add(vm.names().fromIndex(index), flagsAt(index));
        }
    }
    names.add(vm.common().length, m_lengthFlags);
    self.enumeratePlain(vm, names);
}

void ArrayNative::changeFlags(Vm& vm, Name name, std::uint16_t set, std::uint16_t clear)
{
    if (name.isNull() || name.matches(vm.common().length, vm.isCaseSensitive()))
        m_lengthFlags = static_cast<std::uint16_t>((m_lengthFlags & ~clear) | set);
}

void ArrayNative::moveToProperties(Vm& vm, Object& self, std::uint32_t index, std::uint16_t flags)
{
    if (m_order.empty()) noteElements();
    const Name name = vm.names().fromIndex(index);
    for (Created& created : m_order)
        if (created.name == nullptr && created.index == index) created = {Atom::kNotIndex, name.cell()};
    const Value value = std::exchange(m_elements[index], Value::hole());
    self.define(vm, name, value, flags);
}

void ArrayNative::flagElements(Vm& vm, Object& self, Name name, std::uint16_t set, std::uint16_t clear)
{
    const auto changed = [&](std::uint16_t flags) {
        return static_cast<std::uint16_t>((flags & ~clear) | set);
    };
    const auto size = static_cast<std::uint32_t>(m_elements.size());
    m_flagged = std::min(m_flagged, size);
    if (!name.isNull()) {
        const std::uint32_t index = name.arrayIndex();
        if (elementAt(index) != nullptr && changed(flagsAt(index)) != flagsAt(index))
            moveToProperties(vm, self, index, changed(flagsAt(index)));
        return;
    }
    // All alike takes no room; marks that hide from versions are kept with the properties.
    const std::uint16_t before = m_flagged == 0 ? 0 : m_elementFlags;
    const std::uint16_t after = changed(before);
    if ((after & kVersionMask) == 0 && (changed(0) == after || m_flagged == size)) {
        m_elementFlags = after;
        m_flagged = after == 0 ? 0 : size;
        return;
    }
    for (std::uint32_t index = 0; index < size; ++index)
        if (!m_elements[index].isHole()) moveToProperties(vm, self, index, changed(flagsAt(index)));
    m_flagged = 0;
}

void ArrayNative::setLength(Vm& vm, Object& self, double length)
{
    length = std::max(length, 0.0);
    if (length < static_cast<double>(m_elements.size())) m_elements.resize(static_cast<std::size_t>(length));
    m_flagged = std::min(m_flagged, static_cast<std::uint32_t>(m_elements.size()));
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
    m_flagged = 0;
    std::erase_if(m_order, [](const Created& created) { return created.name == nullptr; });
    if (!m_order.empty()) {
        for (std::size_t i = 0; i < m_elements.size(); ++i)
            m_order.push_back({static_cast<std::uint32_t>(i), nullptr});
    }
    m_length = static_cast<double>(m_elements.size());
    m_lengthValue = Value(m_length);
}

} // namespace flash::avm1
