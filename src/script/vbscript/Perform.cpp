// The whole of every instruction, on the values in memory: what the machine's loop leaves to others.

#include "script/vbscript/Convert.h"
#include "script/vbscript/Engine.h"
#include "script/vbscript/Errors.h"

namespace script::vbscript
{

/// Any instruction but those that the loop does whole, on the values in memory.
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
    case Op::CallValue: return performCall(at);
    case Op::PutLocal:
    case Op::PutGlobal:
    case Op::PutImplicit:
    case Op::PutField:
    case Op::PutOwn:
    case Op::PutValue: return performPut(at);
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
    case Op::Member:
    case Op::PutMember:
    case Op::Return: return {}; // done by the loop itself
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
    default: return callGlobal(at.a, at.count, at.flags);
    }
}

Result<void> Engine::performPut(const Instruction& at)
{
    Frame& top = frame();
    // The value was evaluated first; whoever takes it wants it behind its arguments.
    Value* bottom = m_sp - at.count - (at.op == Op::PutValue ? 2 : 1);
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
