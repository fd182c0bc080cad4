#include "script/vbscript/Convert.h"
#include "script/vbscript/Engine.h"
#include "script/vbscript/Errors.h"

#include <algorithm>
#include <cmath>

namespace script::vbscript
{

namespace
{

bool bothWhole(const Value& a, const Value& b) { return a.isWhole() && b.isWhole(); }
bool bothReal(const Value& a, const Value& b)
{
    return a.type() == VarType::Double && b.type() == VarType::Double;
}

// Adds up in Integer or Long while the result fits. Everything else takes the slow way.
bool setSum(Value& target, VarType a, VarType b, std::int64_t result)
{
    if (a == VarType::Integer && b == VarType::Integer) {
        if (result < INT16_MIN || result > INT16_MAX) return false;
        target.setWhole(VarType::Integer, static_cast<std::int32_t>(result));
        return true;
    }
    const bool whole =
        (a == VarType::Integer || a == VarType::Long) && (b == VarType::Integer || b == VarType::Long);
    if (!whole || result < INT32_MIN || result > INT32_MAX) return false;
    target.setWhole(VarType::Long, static_cast<std::int32_t>(result));
    return true;
}

template <class T>
bool compare(Op op, T a, T b)
{
    switch (op) {
    case Op::Equal: return a == b;
    case Op::NotEqual: return a != b;
    case Op::Less: return a < b;
    case Op::Greater: return a > b;
    case Op::LessEqual: return a <= b;
    default: return a >= b;
    }
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
            m_error.source = sourceOf(fault);
            m_error.description = describe(fault);
            m_error.helpFile = fault.helpFile;
            m_error.helpContext = fault.helpContext;
            dropTo(top.locals + top.function->slots);
            const auto at = static_cast<std::uint32_t>(top.next - top.function->code.data());
            const auto& statements = top.function->statements;
            const auto next = std::lower_bound(statements.begin(), statements.end(), at,
                                               [](const StatementMark& mark, std::uint32_t instruction) {
                                                   return mark.instruction < instruction;
                                               });
            // Every function ends in a mark, so there is always a next statement.
            top.next = top.function->code.data() + next->instruction;
            return true;
        }
        popFrame();
    }
    return false;
}

// The fast cases stand here, on values that the instruction finds ready; the rest is in the Engine's
// functions, which may push frames and change everything, so registers are written back before and fetched
// again after.
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
    Function* function = nullptr;

    const auto fetch = [&] {
        Frame& top = m_frames.back();
        next = top.next;
        locals = top.locals;
        function = top.function;
        constants = function->constants.data();
        sp = m_sp;
    };
    const auto leave = [&] {
        m_frames.back().next = next;
        m_sp = sp;
    };
    const auto end = [&](Result<Value> result) {
        if (--m_nestedRuns == 0 && !m_tornDown) runTerminations();
        return result;
    };
    fetch();

// Runs a slow operation; an error goes to whoever handles it.
#define SLOW(operation)                                                                                      \
    {                                                                                                        \
        leave();                                                                                             \
        if (auto outcome = (operation); !outcome) {                                                          \
            if (!handle(*outcome.error(), floor)) return end(Failed(std::move(outcome).error()));            \
        } else if (mustTerminate()) [[unlikely]] {                                                           \
            beginTermination();                                                                              \
        }                                                                                                    \
        fetch();                                                                                             \
        break;                                                                                               \
    }
#define SLOW_TEST(operation, variable)                                                                       \
    bool variable = false;                                                                                   \
    {                                                                                                        \
        leave();                                                                                             \
        auto outcome = (operation);                                                                          \
        if (!outcome) {                                                                                      \
            if (!handle(*outcome.error(), floor)) return end(Failed(std::move(outcome).error()));            \
            fetch();                                                                                         \
            break;                                                                                           \
        }                                                                                                    \
        variable = *outcome;                                                                                 \
        fetch();                                                                                             \
    }

    for (;;) {
        const Instruction& at = *next++;
        switch (at.op) {
        case Op::Statement:
            if (--m_ticks < 0) [[unlikely]]
                SLOW(attend())
            break;

        case Op::Add: {
            Value& a = sp[-2];
            const Value& b = sp[-1];
            if (bothWhole(a, b) && setSum(a, a.type(), b.type(), std::int64_t{a.whole()} + b.whole())) {
                --sp;
                break;
            }
            if (bothReal(a, b) && std::abs(a.asReal() + b.asReal()) < 1e300) {
                a.setReal(VarType::Double, a.asReal() + b.asReal());
                --sp;
                break;
            }
            SLOW(binary(at.op, at.flags))
        }
        case Op::Subtract: {
            Value& a = sp[-2];
            const Value& b = sp[-1];
            if (bothWhole(a, b) && setSum(a, a.type(), b.type(), std::int64_t{a.whole()} - b.whole())) {
                --sp;
                break;
            }
            if (bothReal(a, b) && std::abs(a.asReal() - b.asReal()) < 1e300) {
                a.setReal(VarType::Double, a.asReal() - b.asReal());
                --sp;
                break;
            }
            SLOW(binary(at.op, at.flags))
        }
        case Op::Multiply: {
            Value& a = sp[-2];
            const Value& b = sp[-1];
            if (bothWhole(a, b) && setSum(a, a.type(), b.type(), std::int64_t{a.whole()} * b.whole())) {
                --sp;
                break;
            }
            if (bothReal(a, b) && std::abs(a.asReal() * b.asReal()) < 1e300) {
                a.setReal(VarType::Double, a.asReal() * b.asReal());
                --sp;
                break;
            }
            SLOW(binary(at.op, at.flags))
        }
        case Op::IntegerDivide:
        case Op::Modulo: {
            Value& a = sp[-2];
            const Value& b = sp[-1];
            const bool plainTypes = (a.type() == VarType::Integer || a.type() == VarType::Long) &&
                                    (b.type() == VarType::Integer || b.type() == VarType::Long);
            if (plainTypes && b.whole() > 0) {
                const VarType type = a.type() == b.type() ? a.type() : VarType::Long;
                a.setWhole(type, at.op == Op::Modulo ? a.whole() % b.whole() : a.whole() / b.whole());
                --sp;
                break;
            }
            SLOW(binary(at.op, at.flags))
        }
        case Op::Equal:
        case Op::NotEqual:
        case Op::Less:
        case Op::Greater:
        case Op::LessEqual:
        case Op::GreaterEqual: {
            Value& a = sp[-2];
            const Value& b = sp[-1];
            if (bothWhole(a, b)) {
                a.setWhole(VarType::Boolean, compare(at.op, a.whole(), b.whole()) ? -1 : 0);
                --sp;
                break;
            }
            if (bothReal(a, b)) {
                a.setWhole(VarType::Boolean, compare(at.op, a.asReal(), b.asReal()) ? -1 : 0);
                --sp;
                break;
            }
            SLOW(binary(at.op, at.flags))
        }
        case Op::And:
        case Op::Or: {
            Value& a = sp[-2];
            const Value& b = sp[-1];
            if (a.isWhole() && a.type() == b.type()) {
                a.setWhole(a.type(), at.op == Op::And ? a.whole() & b.whole() : a.whole() | b.whole());
                --sp;
                break;
            }
            SLOW(binary(at.op, at.flags))
        }
        case Op::Divide:
        case Op::Power:
        case Op::Concat:
        case Op::Xor:
        case Op::Eqv:
        case Op::Imp: SLOW(binary(at.op, at.flags))
        case Op::Is: SLOW(is())
        case Op::Negate:
        case Op::Plus:
        case Op::Not: SLOW(unary(at.op))

        case Op::Pop: (--sp)->~Value(); break;
        case Op::Constant: new (sp++) Value(constants[at.a]); break;
        case Op::Local: new (sp++) Value(locals[at.a].resolved()); break;
        case Op::LocalRef: {
            const Value& local = locals[at.a];
            if (local.isReference())
                new (sp++) Value(local);
            else
                new (sp++) Value(Value::reference(locals + at.a));
            break;
        }
        case Op::Global: {
            const Global& found = *m_globals[at.a];
            if (found.kind == Global::Kind::Variable || found.kind == Global::Kind::Constant) {
                new (sp++) Value(found.value);
                break;
            }
            SLOW(loadGlobal(at.a, false))
        }
        case Op::GlobalRef: {
            Global& found = *m_globals[at.a];
            if (found.kind == Global::Kind::Variable) {
                new (sp++) Value(Value::reference(&found.value));
                break;
            }
            SLOW(loadGlobal(at.a, true))
        }
        case Op::Implicit:
        case Op::ImplicitRef: {
            const ImplicitName& name = function->implicitNames[at.a];
            Global& found = *m_globals[name.name];
            const bool byReference = at.op == Op::ImplicitRef;
            if (found.kind == Global::Kind::Undefined && !resolveHostMember(name.name, found)) {
                Value& local = locals[name.slot];
                if (!byReference)
                    new (sp++) Value(local.resolved());
                else if (local.isReference())
                    new (sp++) Value(local);
                else
                    new (sp++) Value(Value::reference(&local));
                break;
            }
            SLOW(loadGlobal(name.name, byReference))
        }
        case Op::Field: new (sp++) Value(m_frames.back().me->fields[at.a]); break;
        case Op::FieldRef: new (sp++) Value(Value::reference(&m_frames.back().me->fields[at.a])); break;
        case Op::Me: new (sp++) Value(Value::object(m_frames.back().me.get())); break;
        case Op::New: SLOW(newObject(at.a))

        case Op::StoreLocal: {
            Value& target = locals[at.a].resolved();
            const Value& value = sp[-1];
            if ((at.flags & kSet) == 0 && (value.isNumeric() || value.isString()) && !target.isArray()) {
                target = std::move(*--sp);
                break;
            }
            leave();
            Value taken = pop();
            auto outcome = store(locals[at.a], std::move(taken), at.flags);
            if (!outcome && !handle(*outcome.error(), floor)) return end(Failed(std::move(outcome).error()));
            fetch();
            break;
        }
        case Op::StoreGlobal: {
            Global& found = *m_globals[at.a];
            const Value& value = sp[-1];
            if (found.kind == Global::Kind::Variable && (at.flags & kSet) == 0 &&
                (value.isNumeric() || value.isString()) && !found.value.isArray()) {
                found.value = std::move(*--sp);
                break;
            }
            SLOW(storeGlobal(at.a, at.flags))
        }
        case Op::StoreImplicit: {
            const ImplicitName& name = function->implicitNames[at.a];
            const Global& found = *m_globals[name.name];
            const Value& value = sp[-1];
            const bool isLocal = found.kind == Global::Kind::Undefined &&
                                 found.hostsAsked == static_cast<int>(m_memberHosts.size());
            if (isLocal && (at.flags & kSet) == 0 && (value.isNumeric() || value.isString())) {
                Value& target = locals[name.slot].resolved();
                if (!target.isArray()) {
                    target = std::move(*--sp);
                    break;
                }
            }
            SLOW(storeImplicit(name, at.flags))
        }
        case Op::StoreField: {
            leave();
            Value taken = pop();
            const Ref<Instance> me = m_frames.back().me;
            auto outcome = store(me->fields[at.a], std::move(taken), at.flags);
            if (!outcome && !handle(*outcome.error(), floor)) return end(Failed(std::move(outcome).error()));
            fetch();
            break;
        }

        case Op::CallLocal:
            SLOW(callVariable(locals[at.a], function->slotNames[at.a], at.count, at.flags, sp - at.count))
        case Op::CallGlobal: SLOW(callGlobal(at.a, at.count, at.flags))
        case Op::CallImplicit: {
            const ImplicitName& name = function->implicitNames[at.a];
            Global& found = *m_globals[name.name];
            const bool isLocal =
                found.kind == Global::Kind::Undefined && !locals[name.slot].resolved().isEmpty();
            if (isLocal) SLOW(callVariable(locals[name.slot], name.name, at.count, at.flags, sp - at.count))
            SLOW(callGlobal(name.name, at.count, at.flags))
        }
        case Op::CallField: {
            const Ref<Instance> me = m_frames.back().me;
            SLOW(callVariable(me->fields[at.a], me->info->fields[at.a].name, at.count, at.flags,
                              sp - at.count))
        }
        case Op::CallOwn:
            SLOW(pushFrame(*function->callees[at.a], at.count, sp - at.count, m_frames.back().me, false))
        case Op::CallValue: {
            leave();
            Value callee = sp[-1 - at.count];
            SLOW(callVariable(callee, function->name, at.count, at.flags, sp - at.count - 1))
        }
        case Op::Member: SLOW(callMember(function->sites[at.a], at.count, at.flags))

        case Op::PutLocal:
            SLOW(putIndexed(locals[at.a], function->slotNames[at.a], at.count, at.flags, sp - at.count - 1))
        case Op::PutGlobal: SLOW(putGlobal(at.a, at.count, at.flags))
        case Op::PutImplicit: {
            const ImplicitName& name = function->implicitNames[at.a];
            if (m_globals[name.name]->kind == Global::Kind::Undefined &&
                !resolveHostMember(name.name, *m_globals[name.name])) {
                SLOW(putIndexed(locals[name.slot], name.name, at.count, at.flags, sp - at.count - 1))
            }
            SLOW(putGlobal(name.name, at.count, at.flags))
        }
        case Op::PutField: {
            const Ref<Instance> me = m_frames.back().me;
            SLOW(putIndexed(me->fields[at.a], me->info->fields[at.a].name, at.count, at.flags,
                            sp - at.count - 1))
        }
        case Op::PutOwn:
            SLOW(pushFrame(*function->callees[at.a], at.count + std::size_t{1}, sp - at.count - 1,
                           m_frames.back().me, true))
        case Op::PutValue: {
            leave();
            Value base = sp[-2 - at.count];
            SLOW(putIndexed(base, function->name, at.count, at.flags, sp - at.count - 2))
        }
        case Op::PutMember: SLOW(putMember(function->sites[at.a], at.count, at.flags))

        case Op::Jump: next = function->code.data() + at.a; break;
        case Op::JumpFalse:
        case Op::JumpTrue: {
            const bool wanted = at.op == Op::JumpTrue;
            if (sp[-1].isWhole()) {
                if (((--sp)->whole() != 0) == wanted) next = function->code.data() + at.a;
                break;
            }
            SLOW_TEST(condition(), holds)
            if (holds == wanted) next = function->code.data() + at.a;
            break;
        }

        case Op::ForPrepare: SLOW(forPrepare(at.count))
        case Op::ForTest: {
            SLOW_TEST(forContinues(at, false), runs)
            if (!runs) ++next;
            break;
        }
        case Op::ForNext: {
            const Value* hidden = locals + at.count;
            Value* variable = nullptr;
            switch (static_cast<VariableKind>(at.flags)) {
            case VariableKind::Local: variable = &locals[at.a].resolved(); break;
            case VariableKind::Global: variable = &m_globals[at.a]->value; break;
            case VariableKind::Implicit: {
                const ImplicitName& name = function->implicitNames[at.a];
                Global& found = *m_globals[name.name];
                variable =
                    found.kind == Global::Kind::Undefined ? &locals[name.slot].resolved() : &found.value;
                break;
            }
            case VariableKind::Field: break;
            }
            if (variable && variable->isWhole() && bothWhole(hidden[0], hidden[1])) {
                const std::int32_t step = hidden[1].whole();
                const std::int64_t stepped = std::int64_t{variable->whole()} + step;
                if (setSum(*variable, variable->type(), hidden[1].type(), stepped)) {
                    if (step >= 0 ? stepped > hidden[0].whole() : stepped < hidden[0].whole()) ++next;
                    break;
                }
            }
            SLOW_TEST(forContinues(at, true), runs)
            if (!runs) ++next;
            break;
        }
        case Op::ForEachPrepare: SLOW(forEachPrepare(at.count))
        case Op::ForEachNext: {
            SLOW_TEST(forEachNext(at.count), runs)
            if (!runs) ++next;
            break;
        }
        case Op::WithPrepare: {
            const Value& object = sp[-1].resolved();
            if (!object.isObject()) SLOW(Result<void>(fault(error::kObjectRequired, quoted(object))))
            Value taken = object;
            locals[at.a] = std::move(taken);
            (--sp)->~Value();
            break;
        }
        case Op::MakeArray: {
            const auto& bounds = function->shapes[at.count];
            Value& target = locals[at.a].resolved();
            target = Value::array(bounds.empty() ? new Array() : new Array(bounds, false));
            break;
        }
        case Op::ReDim: SLOW(reDim(at.count, (at.flags & kPreserve) != 0))
        case Op::Erase: SLOW(erase())
        case Op::OnError:
            m_frames.back().resumeNext = at.flags != 0;
            m_error = ErrorState();
            break;
        case Op::ClearLocal: locals[at.a] = Value(); break;
        case Op::Return: {
            leave();
            Frame& top = m_frames.back();
            const bool boundary = top.isBoundary;
            const bool discards = top.discards;
            Value result;
            if (function->returnSlot >= 0) {
                Value& slot = top.locals[function->returnSlot];
                result = slot.isReference() ? slot.resolved() : std::move(slot);
            }
            popFrame();
            if (boundary) return end(std::move(result));
            if (!discards) push(std::move(result));
            if (mustTerminate()) [[unlikely]]
                beginTermination();
            fetch();
            break;
        }
        }
    }
#undef SLOW
#undef SLOW_TEST
}

} // namespace script::vbscript
