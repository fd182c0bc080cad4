#include "script/vbscript/Convert.h"
#include "script/vbscript/Engine.h"
#include "script/vbscript/Errors.h"

#include <algorithm>
#include <cmath>

namespace script::vbscript
{

namespace
{

constexpr double kSafeSum = 1e300; // sums and products below it are finite

[[gnu::always_inline]] inline bool isIntegerOrLong(const Value& value)
{
    return value.type() == VarType::Integer || value.type() == VarType::Long;
}

// The fast halves of operators: on two numbers of common types, into the left one. What answers false has
// changed nothing and is left to the Engine's functions.

template <Op kOp>
[[gnu::always_inline]] inline bool calculate(Value& out, const Value& a, const Value& b)
{
    if (isIntegerOrLong(a) && isIntegerOrLong(b)) {
        const std::int64_t x = a.whole();
        const std::int64_t y = b.whole();
        const std::int64_t result = kOp == Op::Add ? x + y : kOp == Op::Subtract ? x - y : x * y;
        const bool isShort = a.type() == VarType::Integer && b.type() == VarType::Integer &&
                             result == static_cast<std::int16_t>(result);
        if (result != static_cast<std::int32_t>(result)) return false;
        out.overwriteWhole(isShort ? VarType::Integer : VarType::Long, static_cast<std::int32_t>(result));
        return true;
    }
    if (a.type() == VarType::Double && b.type() == VarType::Double) {
        const double x = a.asReal();
        const double y = b.asReal();
        const double result = kOp == Op::Add ? x + y : kOp == Op::Subtract ? x - y : x * y;
        if (!(std::fabs(result) < kSafeSum)) return false;
        out.overwriteReal(VarType::Double, result);
        return true;
    }
    return false;
}

template <Op kOp>
[[gnu::always_inline]] inline bool calculate(Value& a, const Value& b)
{
    return calculate<kOp>(a, a, b);
}

template <Op kOp>
[[gnu::always_inline]] inline bool divideWhole(Value& a, const Value& b)
{
    if (!isIntegerOrLong(a) || !isIntegerOrLong(b) || b.whole() <= 0) return false;
    const VarType type = a.type() == b.type() ? a.type() : VarType::Long;
    a.overwriteWhole(type, kOp == Op::Modulo ? a.whole() % b.whole() : a.whole() / b.whole());
    return true;
}

// The same by a constant whose reciprocal stands behind it: two multiplications instead of a division.
template <Op kOp>
[[gnu::always_inline]] inline bool divideByConstant(Value& a, const Value* constant, std::uint8_t flags)
{
    if ((flags & kHasReciprocal) == 0 || !isIntegerOrLong(a) || a.whole() < 0)
        return divideWhole<kOp>(a, constant[0]);
    __extension__ using Wide = unsigned __int128;
    const auto number = static_cast<std::uint64_t>(a.whole());
    const auto divisor = static_cast<std::uint64_t>(constant[0].whole());
    const auto reciprocal = static_cast<std::uint64_t>(constant[1].tenThousandths());
    const std::uint64_t result = kOp == Op::Modulo
                                     ? static_cast<std::uint64_t>(Wide{reciprocal * number} * divisor >> 64)
                                     : static_cast<std::uint64_t>(Wide{reciprocal} * number >> 64);
    const VarType type = a.type() == constant[0].type() ? a.type() : VarType::Long;
    a.overwriteWhole(type, static_cast<std::int32_t>(result));
    return true;
}

template <Op kOp, class T>
bool holds(T a, T b)
{
    switch (kOp) {
    case Op::Equal: return a == b;
    case Op::NotEqual: return a != b;
    case Op::Less: return a < b;
    case Op::Greater: return a > b;
    case Op::LessEqual: return a <= b;
    default: return a >= b;
    }
}

template <Op kOp>
[[gnu::always_inline]] inline bool compare(Value& a, const Value& b)
{
    if (a.isWhole() && b.isWhole()) {
        a.overwriteWhole(VarType::Boolean, holds<kOp>(a.whole(), b.whole()) ? -1 : 0);
        return true;
    }
    if (a.type() == VarType::Double && b.type() == VarType::Double) {
        a.overwriteWhole(VarType::Boolean, holds<kOp>(a.asReal(), b.asReal()) ? -1 : 0);
        return true;
    }
    return false;
}

template <Op kOp>
[[gnu::always_inline]] inline bool combine(Value& a, const Value& b)
{
    if (!a.isWhole() || a.type() != b.type()) return false;
    a.overwriteWhole(a.type(), kOp == Op::And ? a.whole() & b.whole() : a.whole() | b.whole());
    return true;
}

[[gnu::always_inline]] inline void pushCopy(Value*& sp, const Value& value)
{
    if (value.isPlain())
        (sp++)->overwritePlain(value);
    else
        new (sp++) Value(value.resolved());
}

// A simple value into a variable that holds a simple one: nothing is released that could run code.
[[gnu::always_inline]] inline bool storeSimple(Value& place, Value*& sp)
{
    Value& target = place.resolved();
    Value& value = sp[-1];
    const bool simple = (value.isPlain() || value.isString()) && (target.isPlain() || target.isString());
    if (!simple) return false;
    target = std::move(value);
    --sp;
    return true;
}

// An element that holds a simple value, by a whole index within a list; else null.
Value* simpleElement(const Value& holder, const Value& index)
{
    if (!holder.isArray() || !index.isWhole()) return nullptr;
    Array& array = *holder.asArray();
    if (array.bounds.size() != 1 || index.whole() < 0 || index.whole() > array.bounds[0]) return nullptr;
    Value& element = array.elements[static_cast<std::size_t>(index.whole())];
    return element.isPlain() ? &element : nullptr;
}

// Not in line: they would take the registers that calculating needs.
[[gnu::noinline]] bool readElement(const Value& holder, Value& index)
{
    const Value* element = simpleElement(holder.resolved(), index);
    if (element) index.overwritePlain(*element);
    return element != nullptr;
}

// value, index
[[gnu::noinline]] bool writeElement(const Value& variable, const Value* sp)
{
    const Value& holder = variable.resolved();
    if (!sp[-2].isPlain() || !holder.isArray() || holder.asArray()->isShared()) return false;
    Value* element = simpleElement(holder, sp[-1]);
    if (element) element->overwritePlain(sp[-2]);
    return element != nullptr;
}

// What an assignment of a number or a jump behind a comparison would do next, done at once.
[[gnu::always_inline]] inline void storeAhead(Value*& sp, const Instruction*& next, Value* locals)
{
    if (next->op != Op::StoreLocal || next->flags != 0) return;
    Value& target = locals[next->a];
    if (!target.isPlain()) return;
    target.overwritePlain(*--sp);
    ++next;
}
[[gnu::always_inline]] inline void jumpAhead(Value*& sp, const Instruction*& next, const Instruction* code)
{
    if (next->op != Op::JumpFalse) return;
    next = (--sp)->whole() == 0 ? code + next->a : next + 1;
}

// One round of a For loop that counts in whole numbers. @returns 1 to go on, 0 to leave, -1 for the slow way
[[gnu::always_inline]] inline int countOn(Value& variable, const Value* hidden)
{
    const bool whole =
        isIntegerOrLong(variable) && isIntegerOrLong(hidden[0]) && hidden[0].type() == hidden[1].type();
    if (!whole) return -1;
    const std::int32_t step = hidden[1].whole();
    const std::int64_t next = std::int64_t{variable.whole()} + step;
    const bool isShort = variable.type() == VarType::Integer && hidden[1].type() == VarType::Integer &&
                         next == static_cast<std::int16_t>(next);
    if (next != static_cast<std::int32_t>(next)) return -1;
    variable.overwriteWhole(isShort ? VarType::Integer : VarType::Long, static_cast<std::int32_t>(next));
    const bool goesOn = step >= 0 ? next <= hidden[0].whole() : next >= hidden[0].whole();
    return goesOn ? 1 : 0;
}

/// Where a frame goes on after an error in the instruction before its next one.
const Instruction* resumePoint(const Function& function, const Instruction* next)
{
    const auto at = static_cast<std::uint32_t>(next - function.code.data());
    // Every function ends in a mark, so there is always a next statement.
    const auto after = std::lower_bound(
        function.statements.begin(), function.statements.end(), at,
        [](const StatementMark& mark, std::uint32_t instruction) { return mark.instruction < instruction; });
    if (after != function.statements.begin() && (after - 1)->resume != 0)
        return function.code.data() + (after - 1)->resume;
    return function.code.data() + after->instruction;
}

} // namespace

Position Engine::positionOf(const Frame& frame) const
{
    const auto& statements = frame.function->statements;
    const auto at = static_cast<std::uint32_t>(frame.next - frame.function->code.data());
    auto found = std::upper_bound(
        statements.begin(), statements.end(), at - 1,
        [](std::uint32_t instruction, const StatementMark& mark) { return instruction < mark.instruction; });
    while (found != statements.begin()) {
        --found;
        if (found->position.line != 0) return found->position;
    }
    return {};
}

/// Finds the frame that goes on after an error. @returns false when run() must end with the error
bool Engine::handle(Fault& fault, std::size_t floor)
{
    if (fault.line == 0) {
        const Position position = positionOf(frame());
        fault.line = position.line;
        fault.column = position.column;
    }
    while (m_frames.size() > floor) {
        Frame& top = frame();
        if (top.resumeNext && !fault.uncatchable) {
            m_error.number = fault.number;
            m_error.source = sourceOf(fault, language());
            m_error.description = bareDescription(fault, language());
            m_error.helpFile = fault.helpFile;
            m_error.helpContext = fault.helpContext;
            dropTo(top.locals + top.function->slots);
            top.next = resumePoint(*top.function, top.next);
            return true;
        }
        popFrame();
    }
    return false;
}

/// After an instruction that may have failed or released something: the ends of objects and the clock come
/// before the next one, an error goes to whoever handles it. @returns false when run() ends with the error
bool Engine::settle(Result<void>& outcome, std::size_t floor)
{
    if (outcome && m_ticks < 0) outcome = attend();
    return outcome || handle(*outcome.error(), floor);
}

Result<Value> Engine::endRun(Result<Value> result)
{
    if (--m_nestedRuns == 0 && !m_tornDown) runTerminations();
    return result;
}

Value Engine::leaveFunction()
{
    Frame& top = m_frames.back();
    const int slot = top.function->returnSlot;
    Value result;
    if (slot >= 0) {
        Value& answer = top.locals[slot];
        result = answer.isReference() ? answer.resolved() : std::move(answer);
    }
    popFrame();
    return result;
}

// Here stand the fast cases, on values that an instruction finds ready; a case that breaks off is left to
// perform(), which may push frames and change everything. So registers are written back before and fetched
// again after it.
Result<Value> Engine::run()
{
    if (m_nestedRuns++ == 0) {
        m_used = {};
        m_lastCheck = std::chrono::steady_clock::now();
    }
    const std::size_t floor = m_frames.size() - 1;
    const Instruction* next = nullptr;
    Value* sp = nullptr;
    Value* locals = nullptr;
    const Value* constants = nullptr;
    const Instruction* code = nullptr;
    const auto fetch = [&] {
        const Frame& top = m_frames.back();
        next = top.next;
        locals = top.locals;
        constants = top.function->constants.data();
        code = top.function->code.data();
        sp = m_sp;
    };
    fetch();
    // What becomes of a result once so many operands have left the stack.
    const auto keep = [&](int popped) __attribute__((always_inline))
    {
        sp -= popped;
        storeAhead(sp, next, locals);
    };
    const auto decide = [&](int popped) __attribute__((always_inline))
    {
        sp -= popped;
        jumpAhead(sp, next, code);
    };

    for (;;) {
        const Instruction& at = *next++;
        // clang-format off
        switch (at.op) {
        case Op::Add: if (calculate<Op::Add>(sp[-2], sp[-1])) { keep(1); continue; } break;
        case Op::Subtract: if (calculate<Op::Subtract>(sp[-2], sp[-1])) { keep(1); continue; } break;
        case Op::Multiply: if (calculate<Op::Multiply>(sp[-2], sp[-1])) { keep(1); continue; } break;
        case Op::IntegerDivide: if (divideWhole<Op::IntegerDivide>(sp[-2], sp[-1])) { keep(1); continue; } break;
        case Op::Modulo: if (divideWhole<Op::Modulo>(sp[-2], sp[-1])) { keep(1); continue; } break;
        case Op::Equal: if (compare<Op::Equal>(sp[-2], sp[-1])) { decide(1); continue; } break;
        case Op::NotEqual: if (compare<Op::NotEqual>(sp[-2], sp[-1])) { decide(1); continue; } break;
        case Op::Less: if (compare<Op::Less>(sp[-2], sp[-1])) { decide(1); continue; } break;
        case Op::Greater: if (compare<Op::Greater>(sp[-2], sp[-1])) { decide(1); continue; } break;
        case Op::LessEqual: if (compare<Op::LessEqual>(sp[-2], sp[-1])) { decide(1); continue; } break;
        case Op::GreaterEqual: if (compare<Op::GreaterEqual>(sp[-2], sp[-1])) { decide(1); continue; } break;
        case Op::And: if (combine<Op::And>(sp[-2], sp[-1])) { --sp; continue; } break;
        case Op::Or: if (combine<Op::Or>(sp[-2], sp[-1])) { --sp; continue; } break;

        case Op::AddLocal: if (calculate<Op::Add>(sp[-1], locals[at.a].resolved())) { keep(0); continue; } break;
        case Op::SubtractLocal: if (calculate<Op::Subtract>(sp[-1], locals[at.a].resolved())) { keep(0); continue; } break;
        case Op::MultiplyLocal: if (calculate<Op::Multiply>(sp[-1], locals[at.a].resolved())) { keep(0); continue; } break;
        case Op::IntegerDivideLocal: if (divideWhole<Op::IntegerDivide>(sp[-1], locals[at.a].resolved())) { keep(0); continue; } break;
        case Op::ModuloLocal: if (divideWhole<Op::Modulo>(sp[-1], locals[at.a].resolved())) { keep(0); continue; } break;
        case Op::EqualLocal: if (compare<Op::Equal>(sp[-1], locals[at.a].resolved())) { decide(0); continue; } break;
        case Op::NotEqualLocal: if (compare<Op::NotEqual>(sp[-1], locals[at.a].resolved())) { decide(0); continue; } break;
        case Op::LessLocal: if (compare<Op::Less>(sp[-1], locals[at.a].resolved())) { decide(0); continue; } break;
        case Op::GreaterLocal: if (compare<Op::Greater>(sp[-1], locals[at.a].resolved())) { decide(0); continue; } break;
        case Op::LessEqualLocal: if (compare<Op::LessEqual>(sp[-1], locals[at.a].resolved())) { decide(0); continue; } break;
        case Op::GreaterEqualLocal: if (compare<Op::GreaterEqual>(sp[-1], locals[at.a].resolved())) { decide(0); continue; } break;

        case Op::AddConstant: if (calculate<Op::Add>(sp[-1], constants[at.a])) { keep(0); continue; } break;
        case Op::SubtractConstant: if (calculate<Op::Subtract>(sp[-1], constants[at.a])) { keep(0); continue; } break;
        case Op::MultiplyConstant: if (calculate<Op::Multiply>(sp[-1], constants[at.a])) { keep(0); continue; } break;
        case Op::IntegerDivideConstant:
            if (divideByConstant<Op::IntegerDivide>(sp[-1], constants + at.a, at.flags)) { keep(0); continue; }
            break;
        case Op::ModuloConstant: if (divideByConstant<Op::Modulo>(sp[-1], constants + at.a, at.flags)) { keep(0); continue; } break;
        case Op::EqualConstant: if (compare<Op::Equal>(sp[-1], constants[at.a])) { decide(0); continue; } break;
        case Op::NotEqualConstant: if (compare<Op::NotEqual>(sp[-1], constants[at.a])) { decide(0); continue; } break;
        case Op::LessConstant: if (compare<Op::Less>(sp[-1], constants[at.a])) { decide(0); continue; } break;
        case Op::GreaterConstant: if (compare<Op::Greater>(sp[-1], constants[at.a])) { decide(0); continue; } break;
        case Op::LessEqualConstant: if (compare<Op::LessEqual>(sp[-1], constants[at.a])) { decide(0); continue; } break;
        case Op::GreaterEqualConstant: if (compare<Op::GreaterEqual>(sp[-1], constants[at.a])) { decide(0); continue; } break;

        case Op::AddToLocal:
            if (calculate<Op::Add>(sp[-1], locals[at.a].resolved(), sp[-1])) { keep(0); continue; } break;
        case Op::SubtractFromLocal:
            if (calculate<Op::Subtract>(sp[-1], locals[at.a].resolved(), sp[-1])) { keep(0); continue; } break;
        case Op::MultiplyLocalBy:
            if (calculate<Op::Multiply>(sp[-1], locals[at.a].resolved(), sp[-1])) { keep(0); continue; } break;

        // clang-format on
        case Op::Constant: pushCopy(sp, constants[at.a]); continue;
        case Op::Local: pushCopy(sp, locals[at.a]); continue;
        case Op::LocalRef: {
            const Value& local = locals[at.a];
            new (sp++) Value(local.isReference() ? local : Value::reference(locals + at.a));
            continue;
        }
        case Op::Global: {
            const Global& found = *m_globals[at.a];
            if (!found.hasValue()) break;
            pushCopy(sp, found.value);
            continue;
        }
        case Op::Implicit: {
            const ImplicitName& name = m_frames.back().function->implicitNames[at.a];
            const Global& found = *m_globals[name.name];
            if (!found.hasValue() && !isOwnVariable(name)) break;
            pushCopy(sp, found.hasValue() ? found.value : locals[name.slot]);
            continue;
        }
        case Op::Field: pushCopy(sp, m_frames.back().me->fields[at.a]); continue;

        case Op::StoreLocal:
            if (at.flags == 0 && storeSimple(locals[at.a], sp)) continue;
            break;
        case Op::StoreGlobal: {
            Global& found = *m_globals[at.a];
            const bool isVariable = found.kind == Global::Kind::Variable;
            if (isVariable && at.flags == 0 && storeSimple(found.value, sp)) continue;
            break;
        }
        case Op::StoreImplicit: {
            const ImplicitName& name = m_frames.back().function->implicitNames[at.a];
            if (at.flags == 0 && isOwnVariable(name) && storeSimple(locals[name.slot], sp)) continue;
            break;
        }
        case Op::StoreField:
            if (at.flags == 0 && storeSimple(m_frames.back().me->fields[at.a], sp)) continue;
            break;
        case Op::Pop:
            if (!sp[-1].isPlain()) break;
            --sp;
            continue;

        case Op::CallLocal:
            if (at.count == 1 && (at.flags & kWantReference) == 0 && readElement(locals[at.a], sp[-1]))
                continue;
            break;
        case Op::PutLocal:
            if (at.count != 1 || at.flags != 0 || !writeElement(locals[at.a], sp)) break;
            sp -= 2;
            continue;
        case Op::CallGlobal: {
            const Global& found = *m_globals[at.a];
            if (found.kind != Global::Kind::Procedure) break;
            m_frames.back().next = next;
            m_sp = sp;
            auto outcome = pushFrame(*found.function, at.count, sp - at.count, nullptr, false);
            if ((!outcome || m_ticks < 0) && !settle(outcome, floor)) [[unlikely]]
                return endRun(Failed(std::move(outcome).error()));
            fetch();
            continue;
        }
        case Op::Jump: next = code + at.a; continue;
        case Op::JumpFalse:
            if (!sp[-1].isWhole()) break;
            if ((--sp)->whole() == 0) next = code + at.a;
            continue;
        case Op::JumpTrue:
            if (!sp[-1].isWhole()) break;
            if ((--sp)->whole() != 0) next = code + at.a;
            continue;
        case Op::Loop:
            next = code + at.a;
            if (--m_ticks >= 0) continue;
            break;
        case Op::ForNext: {
            const auto kind = static_cast<VariableKind>(at.flags);
            Value& variable =
                kind == VariableKind::Local ? locals[at.a].resolved() : *this->variable(kind, at.a);
            const int goesOn = countOn(variable, locals + at.count);
            if (goesOn < 0) break;
            // Behind it stands the loop's jump back.
            next = goesOn == 0 ? next + 1 : m_ticks > 0 ? code + next->a : next;
            m_ticks -= m_ticks > 0 ? goesOn : 0;
            continue;
        }
        case Op::Return: {
            m_sp = sp;
            const Frame& top = m_frames.back();
            const bool boundary = top.isBoundary;
            const bool discards = top.discards;
            Value result = leaveFunction();
            if (boundary) return endRun(std::move(result));
            if (!discards) push(std::move(result));
            // The instruction itself may be gone with the text that was executed.
            if (Result<void> outcome; m_ticks < 0 && !settle(outcome, floor)) [[unlikely]]
                return endRun(Failed(std::move(outcome).error()));
            fetch();
            continue;
        }
        default: break;
        }
        m_frames.back().next = next;
        m_sp = sp;
        auto outcome = perform(at);
        if ((!outcome || m_ticks < 0) && !settle(outcome, floor)) [[unlikely]]
            return endRun(Failed(std::move(outcome).error()));
        fetch();
    }
}

/// Any instruction but Return, on the values in memory.
Result<void> Engine::perform(const Instruction& at)
{
    Frame& top = frame();
    switch (at.op) {
    case Op::Add:
    case Op::Subtract:
    case Op::Multiply:
    case Op::Divide:
    case Op::IntegerDivide:
    case Op::Modulo:
    case Op::Power:
    case Op::Concat:
    case Op::Equal:
    case Op::NotEqual:
    case Op::Less:
    case Op::Greater:
    case Op::LessEqual:
    case Op::GreaterEqual:
    case Op::And:
    case Op::Or:
    case Op::Xor:
    case Op::Eqv:
    case Op::Imp: return binary(at.op, at.flags);
    case Op::Is: return is();
    case Op::AddToLocal:
    case Op::SubtractFromLocal:
    case Op::MultiplyLocalBy: {
        Value right = pop();
        push(top.locals[at.a].resolved());
        push(std::move(right));
        return binary(at.op == Op::AddToLocal          ? Op::Add
                      : at.op == Op::SubtractFromLocal ? Op::Subtract
                                                       : Op::Multiply,
                      at.flags);
    }
    case Op::Negate:
    case Op::Not: return unary(at.op);
    case Op::Pop: drop(1); return {};
    case Op::Constant: push(top.function->constants[at.a]); return {};
    case Op::Local:
    case Op::LocalRef: pushVariable(top.locals[at.a], at.op == Op::LocalRef); return {};
    case Op::Global:
    case Op::GlobalRef: return loadGlobal(at.a, at.op == Op::GlobalRef);
    case Op::Implicit:
    case Op::ImplicitRef: {
        const ImplicitName& name = top.function->implicitNames[at.a];
        const bool byReference = at.op == Op::ImplicitRef;
        if (!isOwnVariable(name)) return loadGlobal(name.name, byReference);
        pushVariable(top.locals[name.slot], byReference);
        return {};
    }
    case Op::Field:
    case Op::FieldRef: pushVariable(top.me->fields[at.a], at.op == Op::FieldRef); return {};
    case Op::Me:
        if (!top.me && !m_scope) m_scope = make<ScriptScope>(*this);
        push(Value::object(top.me ? static_cast<Dispatch*>(top.me.get()) : m_scope.get()));
        return {};
    case Op::New: return newObject(at.a);
    case Op::Raise: return fault(static_cast<int>(at.a));
    case Op::StoreLocal: return store(top.locals[at.a], pop(), at.flags);
    case Op::StoreGlobal: return storeGlobal(at.a, at.flags);
    case Op::StoreImplicit: {
        const ImplicitName& name = top.function->implicitNames[at.a];
        if (!isOwnVariable(name)) return storeGlobal(name.name, at.flags);
        return store(top.locals[name.slot], pop(), at.flags);
    }
    case Op::StoreField: {
        const Ref<Instance> me = top.me;
        return store(me->fields[at.a], pop(), at.flags);
    }
    case Op::CallLocal:
    case Op::CallGlobal:
    case Op::CallImplicit:
    case Op::CallField:
    case Op::CallOwn:
    case Op::CallValue:
    case Op::Member: return performCall(at);
    case Op::PutLocal:
    case Op::PutGlobal:
    case Op::PutImplicit:
    case Op::PutField:
    case Op::PutOwn:
    case Op::PutValue:
    case Op::PutMember: return performPut(at);
    case Op::Jump:
    case Op::Loop: jump(at.a); return {};
    case Op::JumpFalse:
    case Op::JumpTrue: {
        const bool holds = TRY_RESULT(condition());
        if (holds == (at.op == Op::JumpTrue)) jump(at.a);
        return {};
    }
    case Op::ForPrepare:
    case Op::ForTest:
    case Op::ForNext:
    case Op::ForEachPrepare:
    case Op::ForEachNext: return performLoop(at);
    case Op::WithPrepare: {
        const Value object = pop();
        if (!object.resolved().isObject()) return fault(error::kObjectRequired, quoted(object.resolved()));
        Value taken = object.resolved();
        top.locals[at.a] = std::move(taken);
        return {};
    }
    case Op::MakeArray: {
        const auto& bounds = top.function->shapes[at.count];
        Value& target = top.locals[at.a].resolved();
        if (target.isArray())
            return fault(error::kTypeMismatch, m_names.spelling(top.function->slotNames[at.a]));
        target = Value::array(bounds.empty() ? new Array() : new Array(bounds, false));
        return {};
    }
    case Op::ReDim: return reDim(at.count, (at.flags & kPreserve) != 0);
    case Op::Erase: return erase();
    case Op::OnError:
        top.resumeNext = at.flags != 0;
        m_error = ErrorState();
        return {};
    case Op::ClearLocal: top.locals[at.a] = Value(); return {};
    case Op::Return: return {};
    default: break;
    }
    // An operator with a right operand of its own: as if that had been pushed.
    const bool isLocal = at.op < Op::AddConstant;
    const auto first = static_cast<int>(isLocal ? Op::AddLocal : Op::AddConstant);
    push(isLocal ? top.locals[at.a].resolved() : top.function->constants[at.a]);
    return binary(static_cast<Op>(static_cast<int>(at.op) - first + static_cast<int>(Op::Add)), at.flags);
}

Result<void> Engine::performCall(const Instruction& at)
{
    Frame& top = frame();
    Value* bottom = m_sp - at.count;
    switch (at.op) {
    case Op::CallLocal:
        return callVariable(top.locals[at.a], top.function->slotNames[at.a], at.count, at.flags, bottom);
    case Op::CallImplicit: {
        const ImplicitName& name = top.function->implicitNames[at.a];
        Value& own = top.locals[name.slot];
        const bool isLocal =
            m_globals[name.name]->kind == Global::Kind::Undefined && !own.resolved().isEmpty();
        if (isLocal) return callVariable(own, name.name, at.count, at.flags, bottom);
        return callGlobal(name.name, at.count, at.flags);
    }
    case Op::CallField: {
        const Ref<Instance> me = top.me;
        return callVariable(me->fields[at.a], me->info->fields[at.a].name, at.count, at.flags, bottom);
    }
    case Op::CallOwn: return pushFrame(*top.function->callees[at.a], at.count, bottom, top.me, false);
    case Op::CallValue: {
        Value callee = bottom[-1];
        return callVariable(callee, top.function->name, at.count, at.flags, bottom - 1);
    }
    case Op::Member: return callMember(top.function->sites[at.a], at.count, at.flags);
    default: return callGlobal(at.a, at.count, at.flags);
    }
}

Result<void> Engine::performPut(const Instruction& at)
{
    Frame& top = frame();
    // The value was evaluated first; whoever takes it wants it behind its arguments.
    const bool hasObject = at.op == Op::PutMember || at.op == Op::PutValue;
    Value* bottom = m_sp - at.count - (hasObject ? 2 : 1);
    push(std::move(*bottom));
    switch (at.op) {
    case Op::PutLocal:
        return putIndexed(top.locals[at.a], top.function->slotNames[at.a], at.count, at.flags, bottom);
    case Op::PutImplicit: {
        const ImplicitName& name = top.function->implicitNames[at.a];
        if (!isOwnVariable(name)) return putGlobal(name.name, at.count, at.flags, bottom);
        return putIndexed(top.locals[name.slot], name.name, at.count, at.flags, bottom);
    }
    case Op::PutField: {
        const Ref<Instance> me = top.me;
        return putIndexed(me->fields[at.a], me->info->fields[at.a].name, at.count, at.flags, bottom);
    }
    case Op::PutOwn:
        return pushFrame(*top.function->callees[at.a], at.count + std::size_t{1}, bottom, top.me, true);
    case Op::PutValue: {
        Value base = bottom[1];
        return putIndexed(base, top.function->name, at.count, at.flags, bottom);
    }
    case Op::PutMember: return putMember(top.function->sites[at.a], at.count, at.flags, bottom);
    default: return putGlobal(at.a, at.count, at.flags, bottom);
    }
}

Result<void> Engine::performLoop(const Instruction& at)
{
    switch (at.op) {
    case Op::ForPrepare: return forPrepare(at.count);
    case Op::ForEachPrepare: return forEachPrepare(at.count);
    default: break;
    }
    const bool runs =
        TRY_RESULT(at.op == Op::ForEachNext ? forEachNext(at.count) : forContinues(at, at.op == Op::ForNext));
    if (!runs) ++frame().next;
    return {};
}

} // namespace script::vbscript
