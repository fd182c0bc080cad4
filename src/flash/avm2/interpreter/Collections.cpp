#include "flash/avm2/interpreter/Collections.h"

#include <algorithm>
#include <cmath>

namespace flash::avm2
{

void ArrayObject::trace(Tracer& tracer)
{
    Object::trace(tracer);
    for (const Value value : items) tracer(value);
    tracer.outside(items.capacity() * sizeof(Value));
}

bool ArrayObject::indexOf(const Multiname& name, std::uint32_t& index)
{
    if (name.attribute) return false;
    index = name.index;
    if (index == Atom::kNotIndex && !name.name.isNull() && name.hasPublic()) index = name.name.arrayIndex();
    return index != Atom::kNotIndex;
}

Value ArrayObject::at(Vm& vm, std::uint32_t index)
{
    if (index < items.size() && !items[index].isHole()) return items[index];
    const auto* parent = as<ArrayObject>(m_proto);
    if (!m_table && m_proto->tableIfAny() == nullptr && (parent == nullptr || parent->items.empty()))
        return {};
    // What an array does not have its prototypes may; the first of them is an array, too.
    const Name name = vm.names().fromIndex(index);
    int left = 64;
    for (Object* from = this; from != nullptr && --left > 0; from = from->proto()) {
        if (auto* array = as<ArrayObject>(from);
            array != nullptr && index < array->items.size() && !array->items[index].isHole())
            return array->items[index];
        if (from->tableIfAny() == nullptr) continue;
        const std::uint32_t position = from->tableIfAny()->find(name);
        if (position != PropertyTable::kMissing) return from->tableIfAny()->at(position).value;
    }
    return {};
}

bool ArrayObject::holds(Vm& vm, std::uint32_t index)
{
    if (index < items.size()) return !items[index].isHole();
    return m_table && m_table->find(vm.names().fromIndex(index)) != PropertyTable::kMissing;
}

void ArrayObject::put(Vm& vm, std::uint32_t index, Value value)
{
    if (index < items.size()) {
        items[index] = value;
    } else if (index - items.size() <= kWidestGap) {
        const std::size_t before = items.capacity();
        items.resize(index, Value::hole());
        items.push_back(value);
        if (items.capacity() != before)
            vm.heap().noteExternalBytes((items.capacity() - before) * sizeof(Value));
    } else {
        table().set(vm.names().fromIndex(index), value);
    }
    if (index >= m_length && index != Atom::kNotIndex) m_length = index + 1;
}

bool ArrayObject::erase(Vm& vm, std::uint32_t index)
{
    if (index < items.size()) {
        items[index] = Value::hole();
        return true;
    }
    if (m_table) m_table->remove(vm.names().fromIndex(index));
    return true;
}

void ArrayObject::setLength(std::uint32_t length)
{
    if (length < items.size()) items.resize(length);
    if (length < m_length && m_table) {
        for (std::uint32_t i = 0; i < m_table->size(); ++i) {
            const Name name = m_table->at(i).name;
            if (!name.isNull() && name.arrayIndex() != Atom::kNotIndex && name.arrayIndex() >= length)
                m_table->remove(name);
        }
    }
    m_length = length;
}

void ArrayObject::makeDense(Vm& vm)
{
    constexpr std::uint32_t kMax = 1 << 23;
    if (m_length > kMax) return;
    if (m_table) {
        for (std::uint32_t i = 0; i < m_table->size(); ++i) {
            const PropertyTable::Entry entry = m_table->at(i);
            if (entry.name.isNull() || entry.name.arrayIndex() >= m_length) continue;
            const std::uint32_t index = entry.name.arrayIndex();
            if (index >= items.size()) items.resize(index + 1, Value::hole());
            items[index] = entry.value;
            m_table->remove(entry.name);
        }
    }
    if (items.size() < m_length) items.resize(m_length, Value::hole());
    vm.check();
}

bool ArrayObject::getExotic(Vm& vm, const Multiname& name, Value& result)
{
    std::uint32_t index = 0;
    if (!indexOf(name, index) || !holds(vm, index)) return false;
    result = at(vm, index);
    return true;
}

bool ArrayObject::setExotic(Vm& vm, const Multiname& name, Value value)
{
    std::uint32_t index = 0;
    if (!indexOf(name, index)) return false;
    put(vm, index, value);
    return true;
}

bool ArrayObject::hasExotic(Vm& vm, const Multiname& name)
{
    std::uint32_t index = 0;
    return indexOf(name, index) && holds(vm, index);
}

bool ArrayObject::deleteExotic(Vm& vm, const Multiname& name, bool& deleted)
{
    std::uint32_t index = 0;
    if (!indexOf(name, index)) return false;
    deleted = erase(vm, index);
    return true;
}

std::uint32_t ArrayObject::nextIndex(Vm& vm, std::uint32_t after)
{
    for (std::uint32_t i = after; i < items.size(); ++i) {
        if (!items[i].isHole()) return i + 1;
    }
    const auto dense = static_cast<std::uint32_t>(items.size());
    const std::uint32_t next = Object::nextIndex(vm, after > dense ? after - dense : 0);
    return next == 0 ? 0 : next + dense;
}

Value ArrayObject::nextName(Vm& vm, std::uint32_t index)
{
    const auto dense = static_cast<std::uint32_t>(items.size());
    return index <= dense ? Value(index == 0 ? 0 : index - 1) : Object::nextName(vm, index - dense);
}

Value ArrayObject::nextValue(Vm& vm, std::uint32_t index)
{
    const auto dense = static_cast<std::uint32_t>(items.size());
    if (index == 0) return {};
    return index <= dense ? at(vm, index - 1) : Object::nextValue(vm, index - dense);
}

void VectorObject::trace(Tracer& tracer)
{
    Object::trace(tracer);
    for (const Value value : items) tracer(value);
    tracer.outside(items.capacity() * sizeof(Value));
}

Value VectorObject::initial() const
{
    if (elementType() == nullptr) return {};
    switch (elementType()->special) {
    case Traits::Special::Int:
    case Traits::Special::Uint:
    case Traits::Special::Number: return 0;
    default: return Value::null();
    }
}

void VectorObject::outOfRange(Vm& vm, double index) const
{
    vm.throwError(ErrorClass::Range, 1125,
                  u"The index " + numberText(index) + u" is out of range " +
                      numberText(static_cast<double>(items.size())) + u".");
}

void VectorObject::resize(Vm& vm, double length)
{
    constexpr double kMax = 1 << 24;
    if (length > kMax) vm.throwError(ErrorClass::Error, 1000, "The system is out of memory.");
    vm.heap().noteExternalBytes(static_cast<std::size_t>(length) * sizeof(Value));
    items.resize(static_cast<std::size_t>(length), initial());
}

void VectorObject::push(Vm& vm, Value value)
{
    if (isFixed) vm.throwError(ErrorClass::Range, 1126, "Cannot change the length of a fixed Vector.");
    const Value kept = vm.coerce(value, elementType());
    items.push_back(kept);
    vm.heap().noteExternalBytes(sizeof(Value));
}

namespace
{

/// What a name means to a vector: an index, a number that is none, or nothing of the kind.
bool vectorIndex(Vm& vm, const Multiname& name, double& index)
{
    static_cast<void>(vm);
    if (name.attribute) return false;
    if (name.index != Atom::kNotIndex) {
        index = name.index;
        return true;
    }
    if (name.name.isNull()) return false;
    if (name.name.arrayIndex() != Atom::kNotIndex) {
        index = name.name.arrayIndex();
        return true;
    }
    if (!name.runtime || name.name.view().empty()) return false;
    const char16_t first = name.name.view()[0];
    if (first != u'-' && first != u'.' && (first < u'0' || first > u'9')) return false;
    index = textNumber(name.name.view());
    return !std::isnan(index);
}

} // namespace

bool VectorObject::getExotic(Vm& vm, const Multiname& name, Value& result)
{
    double index = 0;
    if (!vectorIndex(vm, name, index)) return false;
    if (!(index >= 0 && index < static_cast<double>(items.size())) || index != std::floor(index))
        outOfRange(vm, index);
    result = items[static_cast<std::size_t>(index)];
    return true;
}

bool VectorObject::setExotic(Vm& vm, const Multiname& name, Value value)
{
    double index = 0;
    if (!vectorIndex(vm, name, index)) return false;
    const auto size = static_cast<double>(items.size());
    if (!(index >= 0 && index < size + (isFixed ? 0 : 1)) || index != std::floor(index))
        outOfRange(vm, index);
    const Value kept = vm.coerce(value, elementType());
    const auto at = static_cast<std::size_t>(index);
    if (at < items.size())
        items[at] = kept;
    else if (at == items.size())
        push(vm, kept);
    return true;
}

bool VectorObject::hasExotic(Vm& vm, const Multiname& name)
{
    double index = 0;
    return vectorIndex(vm, name, index) && index >= 0 && index < static_cast<double>(items.size());
}

bool VectorObject::deleteExotic(Vm& vm, const Multiname& name, bool& deleted)
{
    double index = 0;
    if (!vectorIndex(vm, name, index)) return false;
    // Elements stay, but nobody is told.
    deleted = true;
    return true;
}

std::uint32_t VectorObject::nextIndex(Vm&, std::uint32_t after)
{
    return after < items.size() ? after + 1 : 0;
}
Value VectorObject::nextName(Vm&, std::uint32_t index) { return index == 0 ? Value() : Value(index - 1); }
Value VectorObject::nextValue(Vm&, std::uint32_t index)
{
    return index == 0 || index > items.size() ? Value() : items[index - 1];
}

Value NamespaceObject::nextName(Vm& vm, std::uint32_t index)
{
    return vm.name(index == 1 ? "uri" : "prefix").string();
}
Value NamespaceObject::nextValue(Vm&, std::uint32_t index)
{
    return index == 1 ? Value(ns->uri.string()) : prefix;
}
Value QNameObject::nextName(Vm& vm, std::uint32_t index)
{
    return vm.name(index == 1 ? "uri" : "localName").string();
}
Value QNameObject::nextValue(Vm& vm, std::uint32_t index)
{
    if (index == 1) return ns != nullptr ? Value(ns->uri.string()) : Value::null();
    return name.isNull() ? Value(vm.name("*").string()) : Value(name.string());
}

bool QNameObject::qualifiedName(Multiname& multiname) const
{
    multiname.name = name;
    multiname.index = Atom::kNotIndex;
    multiname.list = nullptr;
    multiname.count = 0;
    multiname.single = ns;
    multiname.anyNamespace = ns == nullptr;
    multiname.attribute = multiname.attribute || attribute;
    return true;
}

QNameObject* newQName(Vm& vm, Namespace* ns, Name name)
{
    ClassObject* cls = vm.classes().qname;
    auto* made = vm.heap().make<QNameObject>(cls->instances, cls->prototype);
    made->ns = ns;
    made->name = name;
    return made;
}

Object* Vm::newNamespace(Namespace* ns)
{
    auto* made = m_heap.make<NamespaceObject>(m_classes.nameSpace->instances, m_classes.nameSpace->prototype);
    made->ns = ns;
    return made;
}

Object* Vm::newArray(std::span<const Value> elements)
{
    auto* made = m_heap.make<ArrayObject>(m_classes.array->instances, m_classes.array->prototype);
    made->items.assign(elements.begin(), elements.end());
    made->setLength(static_cast<std::uint32_t>(elements.size()));
    m_heap.noteExternalBytes(elements.size_bytes());
    return made;
}

ClassObject* Vm::vectorOf(Traits* element)
{
    if (const auto known = m_vectors.find(element); known != m_vectors.end()) return known->second;
    ClassObject* generic = m_classes.vector;
    const std::u16string text =
        u"Vector.<" + (element != nullptr ? element->qualifiedName() : std::u16string(u"*")) + u">";
    // All that hold objects are kinds of the one that holds anything.
    const bool isPlain = element == nullptr || element->special == Traits::Special::Int ||
                         element->special == Traits::Special::Uint ||
                         element->special == Traits::Special::Number;
    ClassObject* base = isPlain ? generic : vectorOf(nullptr);
    auto* instances = m_heap.make<Traits>(name(text), generic->instances->ns, base->instances);
    instances->isVector = true;
    instances->isSealed = false;
    instances->element = element;
    auto* cls = m_heap.make<ClassObject>(
        *this, m_heap.make<Traits>(name(text), generic->instances->ns, m_classes.cls->instances), instances,
        generic);
    cls->prototype = generic->prototype;
    cls->constructor = generic->constructor;
    cls->conversion = generic->conversion;
    cls->generic = generic;
    m_vectors[element] = cls;
    return cls;
}

} // namespace flash::avm2
