#include "script/vbscript/Engine.h"
#include "script/vbscript/Errors.h"
#include "script/vbscript/FastPaths.h"

#include <algorithm>

namespace script::vbscript
{

namespace
{

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
        case Op::Member: {
            MemberSite& site = m_frames.back().function->sites[at.a];
            Instance* object = knownInstance(sp[-1 - at.count], site);
            Function* function = object ? site.member->call ? site.member->call : site.member->get : nullptr;
            const bool fits = function && !function->isPrivate && function->byReference.size() == at.count;
            m_frames.back().next = next;
            m_sp = sp;
            auto outcome =
                fits ? pushFrame(*function, at.count, sp - at.count - 1, Ref<Instance>(object), false)
                     : callMember(site, at.count, at.flags);
            if ((!outcome || m_ticks < 0) && !settle(outcome, floor)) [[unlikely]]
                return endRun(Failed(std::move(outcome).error()));
            fetch();
            continue;
        }
        case Op::PutMember: {
            MemberSite& site = m_frames.back().function->sites[at.a];
            Value* bottom = sp - at.count - 2;
            Instance* object = knownInstance(bottom[1], site);
            Function* function = object && (at.flags & kSet) == 0 ? site.member->let : nullptr;
            const bool fits =
                function && !function->isPrivate && function->byReference.size() == at.count + 1U;
            // The value was evaluated first; whoever takes it wants it behind its arguments.
            new (sp++) Value(std::move(*bottom));
            m_frames.back().next = next;
            m_sp = sp;
            auto outcome = fits ? pushFrame(*function, at.count + 1U, bottom, Ref<Instance>(object), true)
                                : putMember(site, at.count, at.flags, bottom);
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

} // namespace script::vbscript
