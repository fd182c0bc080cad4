#include "flash/avm2/interpreter/Vm.h"

namespace flash::avm2
{

namespace
{

/// In messages names are written with dots.
std::u16string dotted(std::u16string text)
{
    if (const auto at = text.find(u"::"); at != std::u16string::npos) text.replace(at, 2, u".");
    return text;
}

std::u16string typeName(Vm& vm, Value value)
{
    if (auto* cls = as<ClassObject>(value)) return dotted(cls->instances->qualifiedName()) + u"$";
    return dotted(vm.traitsOf(value)->qualifiedName());
}

} // namespace

std::u16string Vm::nameText(const Multiname& name)
{
    if (name.index != Atom::kNotIndex) return numberText(name.index);
    const std::u16string mark(name.attribute ? u"@" : u"");
    if (name.size() == 1) return mark + qualified(name.at(0), name.name);
    return mark + (name.name.isNull() ? u"*" : std::u16string(name.name.view()));
}

void Vm::throwNull(Value base)
{
    if (base.isNull())
        throwError(ErrorClass::Type, 1009, "Cannot access a property or method of a null object reference.");
    throwError(ErrorClass::Type, 1010, "A term is undefined and has no properties.");
}

Traits* Vm::traitsOf(Value value)
{
    switch (value.type()) {
    case Value::Type::Object: return value.object()->traits();
    case Value::Type::Number: return (value.isInt() ? m_classes.integer : m_classes.number)->instances;
    case Value::Type::Boolean: return m_classes.boolean->instances;
    case Value::Type::String: return m_classes.string->instances;
    default: throwNull(value);
    }
}

Multiname Vm::runtimeName(const Multiname& base, Value value)
{
    Multiname name = base;
    name.runtime = true;
    if (value.isNumber()) {
        const double number = value.number();
        if (number >= 0 && number < 4294967295.0 &&
            number == static_cast<double>(static_cast<std::uint32_t>(number))) {
            name.index = static_cast<std::uint32_t>(number);
            name.name = {};
            return name;
        }
    } else if (Object* object = value.asObject()) {
        if (object->qualifiedName(name)) return name;
        name.key = value;
    }
    String* text = toString(value);
    name.name = m_names.intern(text);
    if (name.attribute || text->view().empty() || text->view()[0] != u'@') return name;
    // A text may say that it means an attribute.
    if (text->view().size() > 1) {
        name.attribute = true;
        name.name = m_names.intern(text->view().substr(1));
        if (name.name.view() == u"*") name.name = {};
    }
    return name;
}

namespace
{

/// Gives a name that was a number its text.
Multiname spelled(Vm& vm, Multiname name)
{
    if (name.index != Atom::kNotIndex && name.name.isNull()) name.name = vm.names().fromIndex(name.index);
    return name;
}

} // namespace

Value Vm::getBinding(Value base, const Binding& binding)
{
    switch (binding.kind) {
    case Binding::Kind::Slot:
    case Binding::Kind::Const: return base.object()->slot(static_cast<std::uint32_t>(binding.id));
    case Binding::Kind::Method:
        return m_heap.make<FunctionObject>(
            *this, traitsOf(base)->methods[static_cast<std::size_t>(binding.id)], base);
    case Binding::Kind::Accessor:
        return invoke(*traitsOf(base)->methods[static_cast<std::size_t>(binding.id)], base, {});
    case Binding::Kind::None: break;
    }
    return {};
}

bool Vm::getFromPrototypes(Object* from, const Multiname& name, Value& result)
{
    int left = 256;
    for (Object* at = from; at != nullptr && --left > 0; at = at->proto()) {
        if (at->tableIfAny() != nullptr) {
            const std::uint32_t position = at->tableIfAny()->find(name.name);
            if (position != PropertyTable::kMissing) {
                result = at->tableIfAny()->at(position).value;
                return true;
            }
        }
        if (at->exotic() != Exotic::None && at != from && at->getExotic(*this, name, result)) return true;
    }
    return false;
}

Value Vm::get(Value base, const Multiname& given)
{
    Traits* traits = traitsOf(base);
    Object* object = base.asObject();
    Value result;
    if (object != nullptr && object->exotic() != Exotic::None) {
        if (object->exotic() == Exotic::First || (object->exotic() == Exotic::Elements && given.runtime)) {
            if (object->getExotic(*this, given, result)) return result;
        }
    }
    const Multiname name = spelled(*this, given);
    if (!name.attribute) {
        if (const Binding* binding = traits->find(name)) {
            if (binding->kind == Binding::Kind::Accessor && binding->id < 0)
                throwError(ErrorClass::Reference, 1077,
                           u"Illegal read of write-only property " + nameText(name) + u" on " +
                               typeName(*this, base) + u".");
            return getBinding(base, *binding);
        }
    }
    if (object != nullptr && object->exotic() == Exotic::Last && object->getExotic(*this, name, result))
        return result;
    if (name.name.isNull()) return {};
    if (!name.attribute && name.hasPublic()) {
        Object* from = object != nullptr && object->isDynamic() ? object
                       : object != nullptr                      ? object->proto()
                                                                : traits->cls->prototype;
        if (getFromPrototypes(from, name, result)) return result;
        if (object != nullptr && object->isDynamic()) return {};
        if (object == nullptr) {
            throwError(ErrorClass::Reference, 1069,
                       u"Property " + nameText(name) + u" not found on " + typeName(*this, base) +
                           u" and there is no default value.");
        }
    }
    throwError(ErrorClass::Reference, 1069,
               u"Property " +
                   (name.hasPublic() && !name.attribute ? std::u16string(name.name.view()) : nameText(name)) +
                   u" not found on " + typeName(*this, base) + u" and there is no default value.");
}

void Vm::setSlotTyped(Object& object, std::uint32_t slot, Value value)
{
    const TypeRef type = object.traits()->slotTypes[slot];
    if (!type.isFinal()) {
        Traits* resolved =
            type.unit != nullptr ? type.unit->type(*this, type.name) : signatureTraits(type.native->type);
        object.traits()->slotTypes[slot] = {nullptr, 0, resolved, nullptr};
    }
    Traits* wanted = object.traits()->slotTypes[slot].resolved;
    object.setSlot(slot, wanted != nullptr ? coerce(value, wanted) : value);
}

void Vm::setBinding(Value base, Traits& traits, const Binding& binding, Value value, const Multiname& name,
                    bool isInit)
{
    switch (binding.kind) {
    case Binding::Kind::Const:
        if (!isInit)
            throwError(ErrorClass::Reference, 1074,
                       u"Illegal write to read-only property " + nameText(name) + u" on " +
                           typeName(*this, base) + u".");
        [[fallthrough]];
    case Binding::Kind::Slot:
        setSlotTyped(*base.object(), static_cast<std::uint32_t>(binding.id), value);
        return;
    case Binding::Kind::Method:
        throwError(ErrorClass::Reference, 1037,
                   u"Cannot assign to a method " + std::u16string(name.name.view()) + u" on " +
                       typeName(*this, base) + u".");
    case Binding::Kind::Accessor:
        if (binding.setter < 0)
            throwError(ErrorClass::Reference, 1074,
                       u"Illegal write to read-only property " + std::u16string(name.name.view()) + u" on " +
                           typeName(*this, base) + u".");
        invoke(*traits.methods[static_cast<std::size_t>(binding.setter)], base, {&value, 1});
        return;
    case Binding::Kind::None: return;
    }
}

void Vm::set(Value base, const Multiname& given, Value value)
{
    Traits* traits = traitsOf(base);
    Object* object = base.asObject();
    if (object != nullptr &&
        (object->exotic() == Exotic::First || (object->exotic() == Exotic::Elements && given.runtime))) {
        if (object->setExotic(*this, given, value)) return;
    }
    const Multiname name = spelled(*this, given);
    if (!name.attribute) {
        if (const Binding* binding = traits->find(name)) {
            setBinding(base, *traits, *binding, value, name, false);
            return;
        }
    }
    if (object == nullptr) {
        throwError(ErrorClass::Reference, 1056,
                   u"Cannot create property " + nameText(name) + u" on " + typeName(*this, base) + u".");
    }
    if (object->exotic() == Exotic::Last && object->setExotic(*this, name, value)) return;
    if (!object->isDynamic() || name.attribute || !name.hasPublic() || name.name.isNull())
        throwError(ErrorClass::Reference, 1056,
                   u"Cannot create property " +
                       (name.hasPublic() && !name.name.isNull() ? std::u16string(name.name.view())
                                                                : nameText(name)) +
                       u" on " + typeName(*this, base) + u".");
    object->table().set(name.name, value);
}

void Vm::initialize(Value base, const Multiname& name, Value value)
{
    Object* object = base.asObject();
    if (object != nullptr && object->exotic() != Exotic::First) {
        if (const Binding* binding = object->traits()->find(name)) {
            setBinding(base, *object->traits(), *binding, value, name, true);
            return;
        }
    }
    set(base, name, value);
}

bool Vm::remove(Value base, const Multiname& given)
{
    Traits* traits = traitsOf(base);
    Object* object = base.asObject();
    if (object == nullptr) {
        const Multiname name = spelled(*this, given);
        if (traits->find(name) != nullptr) return false;
        throwError(ErrorClass::Reference, 1120,
                   u"Cannot delete property " + nameText(name) + u" on " + typeName(*this, base) + u".");
    }
    bool deleted = false;
    if (object->exotic() == Exotic::First || (object->exotic() == Exotic::Elements && given.runtime)) {
        if (object->deleteExotic(*this, given, deleted)) return deleted;
    }
    const Multiname name = spelled(*this, given);
    if (traits->find(name) != nullptr) return false;
    if (object->exotic() == Exotic::Last && object->deleteExotic(*this, name, deleted)) return deleted;
    if (!object->isDynamic()) return false;
    if (name.name.isNull() || !name.hasPublic()) return true;
    if (object->tableIfAny() != nullptr) object->tableIfAny()->remove(name.name);
    return true;
}

bool Vm::hasOwn(Value base, const Multiname& given)
{
    if (base.isNullish()) return false;
    Object* object = base.asObject();
    if (object != nullptr && object->exotic() != Exotic::None) {
        if (object->hasExotic(*this, given)) return true;
    }
    const Multiname name = spelled(*this, given);
    if (name.name.isNull() || name.attribute) return false;
    if (traitsOf(base)->find(name) != nullptr) return true;
    return object != nullptr && name.hasPublic() && object->tableIfAny() != nullptr &&
           object->tableIfAny()->find(name.name) != PropertyTable::kMissing;
}

bool Vm::has(Value base, const Multiname& given)
{
    if (base.isNullish()) throwNull(base);
    if (hasOwn(base, given)) return true;
    const Multiname name = spelled(*this, given);
    if (name.name.isNull() || name.attribute || !name.hasPublic()) return false;
    Object* object = base.asObject();
    Value ignored;
    return getFromPrototypes(object != nullptr ? object->proto() : traitsOf(base)->cls->prototype, name,
                             ignored);
}

Value Vm::callProperty(Value base, const Multiname& given, std::span<const Value> args, bool isLex)
{
    Traits* traits = traitsOf(base);
    Object* object = base.asObject();
    const Multiname name =
        object != nullptr && object->exotic() != Exotic::None ? given : spelled(*this, given);
    if (!name.attribute) {
        const Binding* binding = traits->find(name);
        if (binding != nullptr && binding->kind == Binding::Kind::Method)
            return invoke(*traits->methods[static_cast<std::size_t>(binding->id)], base, args);
    }
    if (object != nullptr && object->exotic() != Exotic::None) {
        Value result;
        if (object->callExotic(*this, name, args, result)) return result;
    }
    const Value function = get(base, name);
    if (!isFunction(function)) {
        throwError(ErrorClass::Type, 1006,
                   (function.isNullish() && !name.name.isNull() ? std::u16string(name.name.view())
                                                                : std::u16string(u"value")) +
                       u" is not a function.");
    }
    return function.object()->call(*this, isLex && object != nullptr ? Value::null() : base, args);
}

Value Vm::constructProperty(Value base, const Multiname& name, std::span<const Value> args)
{
    const Value constructor = get(base, name);
    if (!constructor.isObject() || !constructor.object()->isCallable())
        throwError(ErrorClass::Type, 1007, "Instantiation attempted on a non-constructor.");
    return construct(constructor, args);
}

Value Vm::getSuper(Value self, Traits* base, const Multiname& given)
{
    traitsOf(self);
    const Multiname name = spelled(*this, given);
    const Binding* binding = base->find(name);
    Object* object = self.asObject();
    if (binding != nullptr && object != nullptr && object->traits()->isA(base)) {
        switch (binding->kind) {
        case Binding::Kind::Slot:
        case Binding::Kind::Const: return object->slot(static_cast<std::uint32_t>(binding->id));
        case Binding::Kind::Method:
            return m_heap.make<FunctionObject>(*this, base->methods[static_cast<std::size_t>(binding->id)],
                                               self);
        case Binding::Kind::Accessor:
            if (binding->id >= 0)
                return invoke(*base->methods[static_cast<std::size_t>(binding->id)], self, {});
            throwError(ErrorClass::Reference, 1077,
                       u"Illegal read of write-only property " + nameText(name) + u" on " +
                           dotted(base->qualifiedName()) + u".");
        default: break;
        }
    }
    Value result;
    if (object != nullptr && object->exotic() != Exotic::None && object->getExotic(*this, given, result))
        return result;
    if (!name.name.isNull() && base->cls != nullptr && getFromPrototypes(base->cls->prototype, name, result))
        return result;
    throwError(ErrorClass::Reference, 1069,
               u"Property " + nameText(name) + u" not found on " + dotted(base->qualifiedName()) +
                   u" and there is no default value.");
}

void Vm::setSuper(Value self, Traits* base, const Multiname& given, Value value)
{
    traitsOf(self);
    const Multiname name = spelled(*this, given);
    const Binding* binding = base->find(name);
    Object* object = self.asObject();
    if (binding != nullptr && object != nullptr && object->traits()->isA(base)) {
        setBinding(self, *base, *binding, value, name, false);
        return;
    }
    set(self, given, value);
}

Value Vm::callSuper(Value self, Traits* base, const Multiname& given, std::span<const Value> args)
{
    traitsOf(self);
    const Multiname name = spelled(*this, given);
    const Binding* binding = base->find(name);
    Object* object = self.asObject();
    if (binding != nullptr && binding->kind == Binding::Kind::Method && object != nullptr &&
        object->traits()->isA(base))
        return invoke(*base->methods[static_cast<std::size_t>(binding->id)], self, args);
    if (object != nullptr && object->exotic() != Exotic::None) {
        Value result;
        if (object->callExotic(*this, given, args, result)) return result;
    }
    const Value function = getSuper(self, base, name);
    if (!isFunction(function)) throwError(ErrorClass::Type, 1006, nameText(name) + u" is not a function.");
    return function.object()->call(*this, self, args);
}

} // namespace flash::avm2
