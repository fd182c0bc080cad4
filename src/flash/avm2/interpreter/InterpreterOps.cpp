#include "flash/avm2/interpreter/Interpreter.h"

#include "flash/avm2/interpreter/Collections.h"

namespace flash::avm2
{

Value Interpreter::getSlotOr(const Ins& ins, Value base)
{
    if (ins.a == 0) return getSlot(base, static_cast<std::uint32_t>(ins.c) + 1);
    return m_vm.get(base, m_frame->unit->multiname(static_cast<std::uint32_t>(ins.a)));
}

void Interpreter::setSlotOr(const Ins& ins, Value base, Value value, bool isTyped)
{
    const auto slot = static_cast<std::uint32_t>(ins.c);
    if (Object* object = base.asObject(); isTyped && object != nullptr && slot < object->slotCount())
        m_vm.setSlotTyped(*object, slot, value);
    else
        m_vm.set(base, m_frame->unit->multiname(static_cast<std::uint32_t>(ins.cache)), value);
}

Value Interpreter::elementSlow(const Ins& ins, Value base, Value index)
{
    return m_vm.get(base,
                    m_vm.runtimeName(m_frame->unit->multiname(static_cast<std::uint32_t>(ins.a)), index));
}

void Interpreter::setElementSlow(const Ins& ins, Value base, Value index, Value value)
{
    m_vm.set(base, m_vm.runtimeName(m_frame->unit->multiname(static_cast<std::uint32_t>(ins.cache)), index),
             value);
}

bool Interpreter::setElementFast(Object& object, std::uint32_t index, Value value)
{
    if (object.elements() == Object::Elements::Array) {
        auto& array = static_cast<ArrayObject&>(object);
        if (index < array.items.size()) {
            array.items[index] = value;
            return true;
        }
        if (index != array.items.size() || index != array.length() || index > 0x0FFF'FFFF) return false;
        array.put(m_vm, index, value);
        return true;
    }
    if (object.elements() != Object::Elements::Vector) return false;
    auto& vector = static_cast<VectorObject&>(object);
    if (index >= vector.items.size()) return false;
    const Traits* type = vector.elementType();
    const bool fits = type == nullptr || (type->special == Traits::Special::Int && value.isInt()) ||
                      (type->special == Traits::Special::Number && value.isNumber()) ||
                      (value.isObject() && value.object()->traits() == type);
    if (fits) vector.items[index] = value;
    return fits;
}

bool Interpreter::getElement(Value* sp)
{
    const Value index = sp[-1];
    Object* object = sp[-2].asObject();
    if (!index.isNumber() || object == nullptr || object->exotic() != Exotic::Elements) return false;
    const double number = index.number();
    if (!(number >= 0 && number < 4294967295.0)) return false;
    const auto at = static_cast<std::uint32_t>(number);
    if (static_cast<double>(at) != number) return false;
    return object->element(at, sp[-2]);
}

Value Interpreter::pushNamespace(std::uint32_t index) { return m_vm.newNamespace(m_frame->unit->ns(index)); }

void Interpreter::pushScope(Value value, bool isWith)
{
    Frame& f = *m_frame;
    m_vm.traitsOf(value); // null and undefined are no scopes
    f.scopes[f.scopeCount] = value;
    const std::uint64_t bit = std::uint64_t{1} << f.scopeCount;
    f.withMask = isWith ? f.withMask | bit : f.withMask & ~bit;
    ++f.scopeCount;
    f.chain = nullptr;
}

ScopeChain* Interpreter::captured()
{
    Frame& f = *m_frame;
    if (f.chain != nullptr) return f.chain;
    auto* chain = m_vm.heap().make<ScopeChain>(f.env->scope != nullptr ? f.env->scope->global : nullptr);
    if (f.env->scope != nullptr) chain->scopes = f.env->scope->scopes;
    for (std::uint32_t i = 0; i < f.scopeCount; ++i) {
        if (Object* object = f.scopes[i].asObject())
            chain->scopes.push_back({object, (f.withMask >> i & 1U) != 0});
    }
    f.chain = chain;
    return chain;
}

Value Interpreter::outerScope(std::uint32_t index)
{
    const ScopeChain* chain = m_frame->env->scope;
    if (chain == nullptr || index >= chain->scopes.size())
        m_vm.throwError(ErrorClass::Verify, 1019, "Getscopeobject  is out of bounds.");
    return chain->scopes[index].object;
}

Value Interpreter::globalScope()
{
    const ScopeChain* chain = m_frame->env->scope;
    if (chain != nullptr && !chain->scopes.empty()) return chain->scopes.front().object;
    if (m_frame->scopeCount > 0) return m_frame->scopes[0];
    return chain != nullptr ? Value(chain->global) : Value::null();
}

Value Interpreter::getSlot(Value base, std::uint32_t id)
{
    m_vm.traitsOf(base);
    Object* object = base.asObject();
    if (object == nullptr || id == 0 || id > object->slotCount())
        m_vm.throwError(ErrorClass::Verify, 1026, "Slot exceeds slotCount.");
    return object->slot(id - 1);
}

void Interpreter::setSlot(Value base, std::uint32_t id, Value value)
{
    m_vm.traitsOf(base);
    Object* object = base.asObject();
    if (object == nullptr || id == 0 || id > object->slotCount())
        m_vm.throwError(ErrorClass::Verify, 1026, "Slot exceeds slotCount.");
    m_vm.setSlotTyped(*object, id - 1, value);
}

Value Interpreter::newClass(std::uint32_t index, Value base)
{
    auto* cls = as<ClassObject>(base);
    if (cls == nullptr && !base.isNull()) m_vm.throwError(ErrorClass::Verify, 1103, "Class cannot extend.");
    return m_vm.newClass(m_frame->unit, index, cls, captured());
}

Value Interpreter::newObject(std::span<const Value> pairs)
{
    Object* made = m_vm.newObject();
    // The last of equal names wins.
    for (std::size_t i = 0; i + 1 < pairs.size(); i += 2)
        made->table().set(m_vm.names().intern(m_vm.toString(pairs[i])), pairs[i + 1]);
    return made;
}

Value Interpreter::applyType(Value generic, std::span<const Value> types)
{
    auto* cls = as<ClassObject>(generic);
    if (cls == nullptr || cls != m_vm.classes().vector || types.size() != 1)
        m_vm.throwError(ErrorClass::Type, 1127, "Type application attempted on a non-parameterized type.");
    if (types[0].isNull()) return m_vm.vectorOf(nullptr);
    return m_vm.vectorOf(lateType(types[0]));
}

Value Interpreter::callMethod(Value self, std::uint32_t id, std::span<const Value> args)
{
    Traits* traits = m_vm.traitsOf(self);
    if (id == 0 || id > traits->methods.size())
        m_vm.throwError(ErrorClass::Verify, 1027, "Method_id exceeds method_count.");
    return m_vm.invoke(*traits->methods[id - 1], self, args);
}

Traits* Interpreter::superTraits()
{
    Traits* owner = m_frame->env->owner;
    if (owner == nullptr || owner->base == nullptr)
        m_vm.throwError(ErrorClass::Verify, 1035, "Illegal super expression found in method.");
    return owner->base;
}

void Interpreter::constructSuper(Value self, std::span<const Value> args)
{
    Traits* owner = m_frame->env->owner;
    Object* object = self.asObject();
    if (owner == nullptr || object == nullptr) m_vm.traitsOf(self);
    if (owner == nullptr || owner->base == nullptr || owner->base->cls == nullptr || object == nullptr)
        return;
    if (!object->traits()->isA(owner->base))
        m_vm.throwError(ErrorClass::Verify, 1035, "Illegal super expression found in method.");
    // That of all objects does nothing.
    if (owner->base->cls == m_vm.classes().object && args.empty()) return;
    m_vm.constructSuper(*owner->base->cls, *object, args);
}

Traits* Interpreter::lateType(Value type)
{
    auto* cls = as<ClassObject>(type);
    if (cls == nullptr) {
        // What is no object at all is taken for the lack of one.
        if (!type.isObject()) m_vm.traitsOf(type.isUndefined() ? type : Value::null());
        m_vm.throwError(ErrorClass::Type, 1041, "The right-hand side of operator must be a class.");
    }
    return cls->instances;
}

bool Interpreter::isIn(Value name, Value object)
{
    return m_vm.has(object, m_vm.runtimeName(Multiname::of({}, m_vm.publicNs()), name));
}

Value Interpreter::escape(Value value, bool attribute)
{
    String* text = m_vm.toString(value);
    if (m_vm.xml.escape == nullptr) return text;
    if (value.isObject() && value.object()->isXml() && !attribute)
        return m_vm.toString(m_vm.callPublic(value, "toXMLString"));
    return m_vm.string(m_vm.xml.escape(text->view(), attribute));
}

void Interpreter::setDefaultNamespace(Value value)
{
    Object* object = value.asObject();
    Namespace* ns = object != nullptr ? object->namespaceCell() : nullptr;
    m_vm.defaultXmlNs =
        ns != nullptr ? ns : m_vm.ns(Namespace::Kind::Public, m_vm.names().intern(m_vm.toString(value)));
}

bool Interpreter::hasNext(Value& object, Value& index)
{
    std::uint32_t after = m_vm.toUint(index);
    // Once an object's own are through, those of its prototypes follow.
    while (object.isObject()) {
        const std::uint32_t next = object.object()->nextIndex(m_vm, after);
        if (next != 0) {
            index = next;
            return true;
        }
        object = object.object()->proto() != nullptr ? Value(object.object()->proto()) : Value::null();
        after = 0;
    }
    object = Value::null();
    index = 0;
    return false;
}

std::uint8_t* Interpreter::memory(Value address, std::size_t size)
{
    const std::uint32_t at = m_vm.toUint(address);
    Object* memory = m_frame->unit->domain()->memory;
    const auto bytes = memory != nullptr ? memory->bytes() : m_frame->unit->domain()->spareMemory();
    if (bytes.size() < size || at > bytes.size() - size)
        m_vm.throwError(ErrorClass::Range, 1506, "The specified range is invalid.");
    return bytes.data() + at;
}

} // namespace flash::avm2
