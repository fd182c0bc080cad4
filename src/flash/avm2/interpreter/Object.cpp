#include "flash/avm2/interpreter/Object.h"

#include "flash/avm2/interpreter/Code.h"
#include "flash/avm2/interpreter/Vm.h"

namespace flash::avm2
{

Object::Object(Traits* traits, Object* proto)
    : m_traits(traits), m_proto(proto), m_slotCount(static_cast<std::uint32_t>(traits->slotInitials.size()))
{
    m_slots = m_slotCount <= kInlineSlots ? m_inline : new Value[m_slotCount];
    for (std::uint32_t i = 0; i < m_slotCount; ++i) m_slots[i] = traits->slotInitials[i];
}

Object::~Object()
{
    if (m_slots != m_inline) delete[] m_slots;
}

void Object::trace(Tracer& tracer)
{
    tracer(m_traits);
    tracer(m_proto);
    for (std::uint32_t i = 0; i < m_slotCount; ++i) tracer(m_slots[i]);
    if (m_table) m_table->trace(tracer);
}

std::uint32_t Object::nextIndex(Vm&, std::uint32_t after)
{
    if (!m_table) return 0;
    for (std::uint32_t i = after; i < m_table->size(); ++i) {
        const PropertyTable::Entry& entry = m_table->at(i);
        if (!entry.name.isNull() && !entry.isHidden) return i + 1;
    }
    return 0;
}

Value Object::nextName(Vm&, std::uint32_t index)
{
    if (!m_table || index == 0 || index > m_table->size()) return Value::null();
    const Name name = m_table->at(index - 1).name;
    if (name.isNull()) return Value::null();
    if (name.arrayIndex() != Atom::kNotIndex && name.arrayIndex() <= 0x0FFF'FFFF)
        return static_cast<double>(name.arrayIndex());
    return name.string();
}

Value Object::nextValue(Vm&, std::uint32_t index)
{
    if (!m_table || index == 0 || index > m_table->size()) return {};
    return m_table->at(index - 1).value;
}

Value Object::call(Vm& vm, Value, std::span<const Value>)
{
    vm.throwError(ErrorClass::Type, 1006, "value is not a function.");
}

Value Object::construct(Vm& vm, std::span<const Value>)
{
    vm.throwError(ErrorClass::Type, 1007, "Instantiation attempted on a non-constructor.");
}

Value Object::descendants(Vm& vm, const Multiname&)
{
    vm.throwError(ErrorClass::Type, 1016,
                  u"Descendants operator (..) not supported on type " + vm.className(Value(this)));
}

void MethodEnv::trace(Tracer& tracer)
{
    tracer(unit);
    tracer(scope);
    tracer(owner);
    tracer(name);
    tracer(ns);
    tracer(code);
    tracer(activationTraitsHolder);
}

const abc::MethodInfo& MethodEnv::info() const { return unit->abc().methods[method]; }

FunctionObject::FunctionObject(Vm& vm, MethodEnv* env)
    : Object(vm.classes().function->instances, vm.classes().function->prototype), m_env(env)
{
}

FunctionObject::FunctionObject(Vm& vm, MethodEnv* env, Value self) : FunctionObject(vm, env)
{
    m_self = self;
    m_isBound = true;
}

void FunctionObject::trace(Tracer& tracer)
{
    Object::trace(tracer);
    tracer(m_env);
    tracer(m_self);
    tracer(m_prototype);
}

Value FunctionObject::call(Vm& vm, Value self, std::span<const Value> args)
{
    if (m_isBound) return vm.invoke(*m_env, m_self, args, this);
    if (self.isNullish()) {
        Object* global = m_env->scope != nullptr ? m_env->scope->global : nullptr;
        self = global != nullptr ? Value(global) : Value(vm.nativeGlobal());
    }
    return vm.invoke(*m_env, self, args, this);
}

Value FunctionObject::construct(Vm& vm, std::span<const Value> args)
{
    if (m_isBound || m_env->role == MethodEnv::Role::Method)
        vm.throwError(ErrorClass::Type, 1064,
                      u"Cannot call method " + vm.methodText(*m_env) + u" as constructor.");
    // One that was taken away is made anew.
    if (m_prototype.isNullish()) m_hasPrototype = false;
    const Value wanted = prototype(vm);
    Object* proto = wanted.asObject();
    auto* made = vm.heap().make<Object>(vm.classes().object->instances,
                                        proto != nullptr ? proto : vm.classes().object->prototype);
    const Value result = vm.invoke(*m_env, Value(made), args, this);
    return result.isObject() ? result : Value(made);
}

Value FunctionObject::prototype(Vm& vm)
{
    if (!m_hasPrototype) {
        if (m_isBound || m_env->role == MethodEnv::Role::Method) return {};
        Object* made = vm.newObject();
        made->table().set(vm.common().constructor, Value(this));
        made->table().setHidden(vm.common().constructor, true);
        setPrototype(made);
    }
    return m_prototype.isNull() ? Value() : m_prototype;
}

ClassObject::ClassObject(Vm& vm, Traits* statics, Traits* instances, ClassObject* base)
    : Object(statics, vm.classes().cls != nullptr ? vm.classes().cls->prototype : nullptr),
      instances(instances), base(base)
{
    if (base != nullptr) allocate = base->allocate;
    prototype = nullptr;
    if (instances != nullptr) instances->cls = this;
}

void ClassObject::trace(Tracer& tracer)
{
    Object::trace(tracer);
    tracer(instances);
    tracer(base);
    tracer(prototype);
    tracer(constructor);
    tracer(generic);
}

Value ClassObject::call(Vm& vm, Value self, std::span<const Value> args)
{
    if (conversion != nullptr) {
        Call call{vm, self, args.data(), static_cast<std::uint32_t>(args.size()), this};
        return conversion(call);
    }
    if (args.size() != 1)
        vm.throwError(ErrorClass::Argument, 1112,
                      std::u16string(u"Argument count mismatch on class coercion.  Expected 1, got ") +
                          numberText(static_cast<double>(args.size())) + u".");
    return vm.coerce(args[0], instances);
}

Value ClassObject::construct(Vm& vm, std::span<const Value> args)
{
    if (instances->isInterface) vm.throwError(ErrorClass::Verify, 1001, "The method is not implemented.");
    if (isAbstract)
        vm.throwError(ErrorClass::Argument, 2012,
                      std::u16string(instances->name.view()) + u"$ class cannot be instantiated.");
    // A primitive has no object around it.
    if (instances->special != Traits::Special::None && conversion != nullptr) return call(vm, Value(), args);
    Object* made = vm.instantiate(this);
    if (constructor != nullptr) vm.invoke(*constructor, Value(made), args, this);
    return made;
}

} // namespace flash::avm2
