#include "script/vbscript/Convert.h"
#include "script/vbscript/Engine.h"
#include "script/vbscript/Errors.h"
#include "script/vbscript/Operators.h"
#include "script/vbscript/Reference.h"

#include <cmath>

namespace script::vbscript
{

namespace
{

// Keeps its array locked: the elements may change while a For Each walks them, their number may not.
class ArrayEnumerator final : public Enumerator
{
public:
    explicit ArrayEnumerator(Array* array) : m_array(array) { ++m_array->locks; }
    Result<std::optional<Value>> next() override
    {
        if (m_next >= m_array->elements.size()) return std::optional<Value>();
        return std::optional<Value>(m_array->elements[m_next++]);
    }

private:
    ~ArrayEnumerator() override { --m_array->locks; }
    Ref<Array> m_array;
    std::size_t m_next = 0;
};

// Lets an enumerator stand in a hidden variable.
class EnumeratorHolder final : public Dispatch
{
public:
    explicit EnumeratorHolder(Ref<Enumerator> held) : enumerator(std::move(held)) {}
    [[nodiscard]] std::u16string typeName() const override { return u"Object"; }
    [[nodiscard]] std::optional<MemberId> memberId(std::u16string_view) const override
    {
        return std::nullopt;
    }
    Result<Value> invoke(MemberId, Access, Arguments) override { return fault(error::kNoSuchMember); }

    const Ref<Enumerator> enumerator;
};

// The type in which a loop counts.
VarType loopType(const Value& a, const Value& b, const Value& c)
{
    VarType type = VarType::Integer;
    for (const Value* value : {&a, &b, &c}) {
        switch (value->type()) {
        case VarType::Empty:
        case VarType::Boolean:
        case VarType::Byte:
        case VarType::Integer: break;
        case VarType::Long:
            if (type == VarType::Integer) type = VarType::Long;
            break;
        default: return VarType::Double;
        }
    }
    return type;
}

} // namespace

Result<Value*> Engine::element(Array& array, const Value* indexes, std::size_t count)
{
    if (count != array.bounds.size()) return fault(error::kSubscript);
    std::size_t offset = 0;
    std::size_t stride = 1;
    for (std::size_t i = 0; i < count; ++i) {
        const Value& given = indexes[i].resolved();
        std::int32_t index = 0;
        if (given.isWhole()) {
            index = given.whole();
        } else {
            const Value value = TRY_RESULT(plain(given));
            index = TRY_RESULT(toLong(value, *m_locale));
        }
        if (index < 0 || index > array.bounds[i]) return fault(error::kSubscript);
        offset += static_cast<std::size_t>(index) * stride;
        stride *= static_cast<std::size_t>(array.bounds[i]) + 1;
    }
    return &array.elements[offset];
}

// kPreserve: the value as it is, whether object or not.
Result<void> Engine::store(Value& target, Value value, std::uint8_t flags)
{
    dereference(value);
    if ((flags & kPreserve) == 0) {
        if ((flags & kSet) != 0) {
            if (!value.isObject()) return fault(error::kObjectRequired, quoted(value));
        } else if (value.isObject()) {
            value = TRY_RESULT(plain(value));
        }
    }
    Value& place = target.resolved();
    if (value.isArray() && !value.asArray()->resizable) {
        CHECK_RESULT(reserve(value.asArray()->elements.size() * sizeof(Value)));
        // A copy of a fixed array is an array like any other.
        auto* copy = new Array(*value.asArray(), 0);
        copy->resizable = true;
        value = Value::array(copy);
    } else if (value.isArray() && value.asArray()->locks > 0) {
        value = Value::array(new Array(*value.asArray(), 0));
    }
    if (place.isArray() && (place.asArray()->isLocked() || !place.asArray()->resizable)) {
        return fault(place.asArray()->isLocked() ? error::kArrayLocked : error::kTypeMismatch);
    }
    place = std::move(value);
    return {};
}

Result<void> Engine::loadGlobal(Symbol name, bool byReference)
{
    Global& found = *m_globals[name];
    if (found.kind == Global::Kind::Undefined) {
        if (Value* declared = declaredHere(name)) {
            pushVariable(*declared, byReference);
            return {};
        }
    }
    switch (found.kind) {
    case Global::Kind::Variable: push(byReference ? Value::reference(&found.value) : found.value); return {};
    case Global::Kind::Constant:
    case Global::Kind::HostObject: push(found.value); return {};
    case Global::Kind::Procedure:
    case Global::Kind::Intrinsic:
    case Global::Kind::HostMember: return callGlobal(name, 0, 0);
    case Global::Kind::Class: return fault(error::kObjectRequired, m_names.spelling(name));
    case Global::Kind::Undefined: break;
    }
    if (resolveHostMember(name, found)) return callGlobal(name, 0, 0);
    if (frame().function->optionExplicit) return fault(error::kUndefinedVariable, m_names.spelling(name));
    if (byReference) {
        found.kind = Global::Kind::Variable;
        push(Value::reference(&found.value));
    } else {
        push(Value());
    }
    return {};
}

Result<void> Engine::storeGlobal(Symbol name, std::uint8_t flags)
{
    Global& found = *m_globals[name];
    if (found.kind == Global::Kind::Undefined) {
        if (Value* declared = declaredHere(name)) return store(*declared, pop(), flags);
    }
    if (found.kind == Global::Kind::Undefined && !resolveHostMember(name, found)) {
        if (frame().function->optionExplicit) return fault(error::kUndefinedVariable, m_names.spelling(name));
        found.kind = Global::Kind::Variable;
    }
    if (found.kind == Global::Kind::Variable) {
        Value value = pop();
        auto stored = store(found.value, std::move(value), flags);
        // Errors of a default value are not about the variable.
        if (!stored && stored.error()->number == error::kTypeMismatch)
            return named(Failed(std::move(stored).error()), name);
        return stored;
    }
    if (found.kind == Global::Kind::HostMember || found.kind == Global::Kind::Intrinsic)
        return putGlobal(name, 0, flags, m_sp - 1);
    return fault(error::kIllegalAssignment, m_names.spelling(name));
}

Value* Engine::declaredHere(Symbol name)
{
    std::size_t at = m_frames.size() - 1;
    while (m_frames[at].function->seesLocals) --at;
    const auto& extras = m_frames[at].extras;
    if (!extras || extras->declared.count(name) == 0) return nullptr;
    const auto found = extras->variables.find(name);
    return found == extras->variables.end() ? nullptr : &found->second->resolved();
}

bool Engine::isOwnVariable(const ImplicitName& name)
{
    Global& found = *m_globals[name.name];
    if (found.kind != Global::Kind::Undefined) return false;
    return found.hostsAsked == static_cast<int>(m_memberHosts.size()) || !resolveHostMember(name.name, found);
}

Value* Engine::variable(VariableKind kind, std::uint32_t index)
{
    Frame& current = frame();
    switch (kind) {
    case VariableKind::Local: return &current.locals[index].resolved();
    case VariableKind::Global: return &m_globals[index]->value;
    case VariableKind::Implicit: {
        const ImplicitName& name = current.function->implicitNames[index];
        Global& found = *m_globals[name.name];
        return found.kind == Global::Kind::Undefined ? &current.locals[name.slot].resolved() : &found.value;
    }
    case VariableKind::Field: return &current.me->fields[index];
    }
    return nullptr;
}

void Engine::pushVariable(Value& variable, bool byReference)
{
    if (!byReference)
        push(variable.resolved());
    else
        push(variable.isReference() ? variable : Value::reference(&variable));
}

// ---- loops

// from, limit, step -> from
Result<void> Engine::forPrepare(std::size_t hidden)
{
    Value bounds[3];
    for (int i = 0; i < 3; ++i) {
        bounds[i] = TRY_RESULT(plain(m_sp[i - 3]));
        if (bounds[i].isNull()) return fault(error::kInvalidNull);
    }
    const VarType type = loopType(bounds[0], bounds[1], bounds[2]);
    for (Value& bound : bounds) {
        if (type == VarType::Double) {
            const bool isDate = bound.type() == VarType::Date;
            const double number = TRY_RESULT(toDouble(bound, *m_locale));
            bound = isDate ? Value::date(number) : Value::real(number);
        } else {
            const std::int32_t number = TRY_RESULT(toLong(bound, *m_locale));
            bound.setWhole(type, number);
        }
    }
    Value* slots = frame().locals + hidden;
    slots[0] = bounds[1];
    slots[1] = bounds[2];
    drop(3);
    push(bounds[0]);
    return {};
}

Result<bool> Engine::forContinues(const Instruction& instruction, bool step)
{
    Value* slots = frame().locals + instruction.count;
    if (slots[0].isEmpty()) return fault(error::kLoopNotInitialized);
    const auto kind = static_cast<VariableKind>(instruction.flags);
    Value* counter = variable(kind, instruction.a);
    if (step) {
        const Value current = TRY_RESULT(plain(*counter));
        Value next = TRY_RESULT(applyBinary(Operator::Add, current, slots[1], kNoLiteral, *m_locale));
        // The default value's code may have moved things.
        counter = variable(kind, instruction.a);
        *counter = std::move(next);
    }
    const double current = TRY_RESULT(toDouble(*counter, *m_locale));
    const double limit = TRY_RESULT(toDouble(slots[0], *m_locale));
    const double by = TRY_RESULT(toDouble(slots[1], *m_locale));
    return by >= 0 ? current <= limit : current >= limit;
}

Result<void> Engine::forEachPrepare(std::size_t hidden)
{
    Value group = pop();
    if (group.isReference()) {
        Value copy = group.resolved();
        group = std::move(copy);
    }
    Ref<Enumerator> enumerator;
    if (group.isArray()) {
        enumerator = Ref<Enumerator>(new ArrayEnumerator(group.asArray()));
    } else if (group.isObject()) {
        if (!group.asObject()) return fault(error::kObjectNotSet);
        enumerator = group.asObject()->enumerate();
    }
    if (!enumerator) return fault(error::kNotCollection);
    frame().locals[hidden] = Value::object(new EnumeratorHolder(std::move(enumerator)));
    return {};
}

Result<bool> Engine::forEachNext(std::size_t hidden)
{
    Value& state = frame().locals[hidden];
    // Its beginning failed, and that error is the one to be seen behind the loop.
    if (!state.isObject()) return false;
    const Ref<Enumerator> enumerator = static_cast<EnumeratorHolder*>(state.asObject())->enumerator;
    auto next = TRY_RESULT(enumerator->next());
    if (!next) return false;
    push(std::move(*next));
    return true;
}

// ---- arrays and objects

// reference, bounds... ->
Result<void> Engine::reDim(std::size_t count, bool preserve)
{
    std::vector<std::int32_t> bounds(count);
    for (std::size_t i = 0; i < count; ++i) {
        const Value bound =
            TRY_RESULT(plain(m_sp[static_cast<std::ptrdiff_t>(i) - static_cast<std::ptrdiff_t>(count)]));
        bounds[i] = TRY_RESULT(toLong(bound, *m_locale));
        if (bounds[i] < -1) return fault(error::kSubscript);
    }
    std::size_t total = 0;
    if (!Array::countElements(bounds, total)) return fault(error::kOutOfMemory);
    CHECK_RESULT(reserve(total * sizeof(Value)));
    drop(count);
    Value reference = pop();
    if (!reference.isReference()) return fault(error::kTypeMismatch);
    Value& target = reference.resolved();
    if (target.isArray() && (target.asArray()->isLocked() || !target.asArray()->resizable))
        return fault(error::kArrayLocked);
    if (!preserve || !target.isArray() || target.asArray()->bounds.empty()) {
        target = Value::array(new Array(std::move(bounds), true));
        return {};
    }
    // Only the last dimension may change.
    const auto& old = target.asArray()->bounds;
    if (old.size() != count || !std::equal(old.begin(), old.end() - 1, bounds.begin()))
        return fault(error::kSubscript);
    target.writableArray()->resizeLast(bounds.back());
    return {};
}

Result<void> Engine::erase()
{
    Value reference = pop();
    Value& target = reference.resolved();
    if (!target.isArray()) return fault(error::kTypeMismatch);
    if (target.asArray()->isLocked()) return fault(error::kArrayLocked);
    // A fixed array keeps its size and loses its contents.
    target =
        Value::array(target.asArray()->resizable ? new Array() : new Array(target.asArray()->bounds, false));
    return {};
}

Result<void> Engine::newObject(Symbol name)
{
    // No class of a script hides the language's own one.
    if (const auto object = newBuiltIn(m_names.spelling(name))) {
        push(Value::object(object.get()));
        return {};
    }
    Global& found = *m_globals[name];
    if (found.kind == Global::Kind::Class) {
        CHECK_RESULT(reserve(found.info->fields.size() * sizeof(Value) + sizeof(Instance)));
        const Ref<Instance> made = make<Instance>(*this, *found.info);
        push(Value::object(made.get()));
        if (found.info->initialize) return pushFrame(*found.info->initialize, 0, m_sp, made, true);
        return {};
    }
    return fault(error::kClassNotDefined, m_names.spelling(name));
}

// ---- operators: the slow halves

Result<void> Engine::binary(Op op, std::uint8_t literals)
{
    const Value left = TRY_RESULT(plain(m_sp[-2]));
    const Value right = TRY_RESULT(plain(m_sp[-1]));
    if (op == Op::Concat && left.isString()) CHECK_RESULT(reserve(left.text().size() * 2));
    // The operands leave the stack first, so that a string may be appended to in place.
    auto result = TRY_RESULT(applyBinary(operatorOf(op), left, right, literals, *m_locale));
    drop(2);
    push(std::move(result));
    return {};
}

Result<void> Engine::is()
{
    const Value& left = m_sp[-2].resolved();
    const Value& right = m_sp[-1].resolved();
    if (!left.isObject() || !right.isObject())
        return fault(error::kObjectRequired, quoted(left.isObject() ? right : left));
    const bool same = left.asObject() == right.asObject();
    drop(2);
    push(Value::boolean(same));
    return {};
}

Result<void> Engine::unary(Op op)
{
    const Value operand = TRY_RESULT(plain(m_sp[-1]));
    auto result = TRY_RESULT(applyUnary(operatorOf(op), operand, *m_locale));
    drop(1);
    push(std::move(result));
    return {};
}

Result<bool> Engine::condition()
{
    const Value value = TRY_RESULT(plain(m_sp[-1]));
    drop(1);
    if (value.isNull()) return false;
    return toBoolean(value, *m_locale);
}

} // namespace script::vbscript
