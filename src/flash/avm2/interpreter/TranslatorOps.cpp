#include "flash/avm2/interpreter/Translator.h"
#include "flash/avm2/interpreter/Unit.h"
#include "flash/avm2/interpreter/Vm.h"

#include <cmath>

namespace flash::avm2
{

using abc::Op;
using Kind = Type::Kind;
using R = RegisterOp;

RegisterOp Translator::stackOp(Op op)
{
    switch (op) {
#define AVM2_SAME(name)                                                                                      \
    case Op::name: return R::name;
        AVM2_CALL_OPS(AVM2_SAME)
        AVM2_STACK_OPS(AVM2_SAME)
#undef AVM2_SAME
    case Op::callsupervoid: return R::callsuper;
    case Op::callpropvoid: return R::callproperty;
    default: return R::throw_;
    }
}

std::uint16_t Translator::parts(std::uint32_t multiname) const
{
    const abc::MultinameInfo& info = m_abc.multinames[multiname];
    return static_cast<std::uint16_t>((info.hasRuntimeName() ? 1 : 0) | (info.hasRuntimeNamespace() ? 2 : 0));
}

bool Translator::step(const abc::Instruction& instruction)
{
    const auto op = static_cast<Op>(instruction.op);
    const std::int32_t operand = instruction.operands[0];
    const auto index = static_cast<std::uint32_t>(operand);
    switch (op) {
    case Op::bkpt:
    case Op::nop:
    case Op::label:
    case Op::debug:
    case Op::debugline:
    case Op::debugfile:
    case Op::coerce_a: return true;
    case Op::getlocal: getLocal(operand); return true;
    case Op::getlocal_0:
    case Op::getlocal_1:
    case Op::getlocal_2:
    case Op::getlocal_3: getLocal(instruction.op - 0xD0); return true;
    case Op::setlocal: setLocal(operand); return true;
    case Op::setlocal_0:
    case Op::setlocal_1:
    case Op::setlocal_2:
    case Op::setlocal_3: setLocal(instruction.op - 0xD4); return true;
    case Op::kill:
        spill(operand);
        if (m_isTyped) m_locals[index] = Type::of(Kind::Undefined);
        if (m_forms[index] == Rep::Boxed) emit(R::LoadConst, operand, constant(Value()));
        return true;
    case Op::pushbyte:
    case Op::pushshort: pushInt(operand, Type::of(Kind::Int)); return true;
    case Op::pushint: pushInt(m_abc.ints[index], Type::of(Kind::Int)); return true;
    case Op::pushuint:
        pushInt(static_cast<std::int32_t>(m_abc.uints[index]), Type::of(Kind::Uint));
        return true;
    case Op::pushdouble: pushConstant(m_abc.doubles[index], Type::of(Kind::Number)); return true;
    case Op::pushnan: pushConstant(std::nan(""), Type::of(Kind::Number)); return true;
    case Op::pushnull: pushConstant(Value::null(), Type::of(Kind::Null)); return true;
    case Op::pushundefined: pushConstant(Value(), Type::of(Kind::Undefined)); return true;
    case Op::pushtrue: pushConstant(true, Type::of(Kind::Boolean)); return true;
    case Op::pushfalse: pushConstant(false, Type::of(Kind::Boolean)); return true;
    case Op::pushstring:
        if (index == 0)
            pushConstant(Value::null(), Type::of(Kind::Null));
        else
            pushConstant(Value(m_code.unit->name(index).string()), Type::of(Kind::String));
        return true;
    case Op::pop: pop(); return true;
    case Op::dup: {
        const Operand top = m_stack.back();
        if (top.where == Operand::Where::Register && top.rep != Rep::Boxed && top.at == reg(depth() - 1)) {
            const std::int32_t own = reg(depth());
            emit(R::Move, own, 0, top.at);
            m_stack.push_back({Operand::Where::Register, top.rep, own, top.type});
        } else {
            m_stack.push_back(top);
        }
        return true;
    }
    case Op::swap: {
        // Values without a place of their own just change theirs.
        const auto base = static_cast<std::int32_t>(m_code.stackBase());
        const auto isFree = [&](const Operand& value) {
            return value.where != Operand::Where::Register || value.at < base;
        };
        const std::size_t x = depth() - 2, y = depth() - 1;
        if (!isFree(m_stack[x]) || !isFree(m_stack[y])) {
            place(x);
            place(y);
            emit(R::Move, reg(depth()), 0, reg(x));
            emit(R::Move, reg(x), 0, reg(y));
            emit(R::Move, reg(y), 0, reg(depth()));
            std::swap(m_stack[x].type, m_stack[y].type);
        } else {
            std::swap(m_stack[x], m_stack[y]);
        }
        return true;
    }
    case Op::inclocal: stepLocal(operand, 1, false); return true;
    case Op::declocal: stepLocal(operand, -1, false); return true;
    case Op::inclocal_i: stepLocal(operand, 1, true); return true;
    case Op::declocal_i: stepLocal(operand, -1, true); return true;
    case Op::convert_i:
    case Op::coerce_i: toInt(Kind::Int); return true;
    case Op::convert_u:
    case Op::coerce_u: toInt(Kind::Uint); return true;
    case Op::convert_d:
    case Op::coerce_d: toNumber(); return true;
    case Op::convert_b:
    case Op::coerce_b:
        if (m_stack.back().type.kind != Kind::Boolean) {
            const std::int32_t from = boxed(depth() - 1);
            pop();
            define(R::ToBooleanV, Type::of(Kind::Boolean), Rep::Boxed, from);
        }
        return true;
    case Op::coerce_s:
        if (m_stack.back().type.kind != Kind::String && m_stack.back().type.kind != Kind::Null) {
            const std::int32_t from = boxed(depth() - 1);
            pop();
            define(R::CoerceString, Type::of(Kind::String), Rep::Boxed, from);
        }
        return true;
    case Op::coerce_o:
        if (const Kind kind = m_stack.back().type.kind; kind == Kind::Any || kind == Kind::Undefined) {
            const std::int32_t from = boxed(depth() - 1);
            pop();
            define(R::CoerceObject, {}, Rep::Boxed, from);
        }
        return true;
    case Op::coerce: coerce(instruction); return true;
    case Op::pushscope: pushScope(false); return true;
    case Op::pushwith: pushScope(true); return true;
    case Op::popscope:
        m_scopes.pop_back();
        spill(static_cast<std::int32_t>(m_code.locals + m_scopes.size()));
        emit(R::popscope, reg(depth()));
        return true;
    case Op::getscopeobject: {
        const auto at = static_cast<std::int32_t>(m_code.locals) + operand;
        m_stack.push_back({Operand::Where::Register, Rep::Boxed, at, m_scopes[index].type});
        return true;
    }
    case Op::returnvoid: emit(R::ReturnVoid, 0); return false;
    case Op::returnvalue: {
        const Operand value = m_stack.back();
        const Type type = value.type;
        const Type wanted = typeOfTraits(m_code.returnType);
        const bool fits =
            wanted.kind == Kind::Instance
                ? type.kind == Kind::Null || (type.kind == Kind::Instance && type.traits->isA(wanted.traits))
                : (type.kind != Kind::Any && type == wanted) ||
                      (type.isNumeric() && wanted.kind == Kind::Number);
        const bool isPlain = m_code.returnType == nullptr || fits;
        if (isPlain && value.where == Operand::Where::Register && value.rep == Rep::Int) {
            emit(R::ReturnI, 0, 0, value.at);
            return false;
        }
        const std::int32_t from = boxed(depth() - 1);
        emit(isPlain ? R::Return : R::ReturnCoerced, 0, 0, from);
        return false;
    }
    case Op::throw_: others(instruction); return false;
    case Op::jump:
        flush();
        jump(R::Jump, index, 0, 0, 0);
        return false;
    case Op::lookupswitch: {
        const std::int32_t value = raw(depth() - 1);
        pop();
        flush();
        auto& targets = m_code.switches.emplace_back();
        for (const std::int32_t target : instruction.cases) {
            targets.push_back(static_cast<std::uint32_t>(target));
            meet(static_cast<std::uint32_t>(target));
        }
        targets.push_back(index);
        meet(index);
        emit(R::Switch, 0, static_cast<std::int32_t>(m_code.switches.size()) - 1, value);
        return false;
    }
    default: break;
    }
    if (arithmetic(op) || jumps(instruction) || properties(instruction)) return true;
    others(instruction);
    return true;
}

/// Instructions that work on the operand stack.
void Translator::others(const abc::Instruction& instruction)
{
    const auto op = static_cast<Op>(instruction.op);
    const abc::OpInfo& info = abc::opInfo(instruction.op);
    std::size_t taken = info.pops;
    std::uint16_t runtime = 0;
    for (std::size_t i = 0; i < info.operands.size(); ++i) {
        const auto value = static_cast<std::uint32_t>(instruction.operands[i]);
        if (info.operands[i] == 'm') runtime = parts(value);
        if (info.operands[i] == 'a') taken += op == Op::newobject ? std::size_t{value} * 2 : value;
    }
    taken += (runtime & 1U) + (runtime >> 1U & 1U);
    for (std::size_t i = depth() - taken; i < depth(); ++i) place(i);
    if (op == Op::hasnext2) {
        for (const std::int32_t local : instruction.operands) {
            const auto index = static_cast<std::size_t>(local);
            readLocal(index);
            spill(local);
            writeLocal(index, {}, true);
        }
    }
    const std::int32_t site =
        runtime == 0 && !info.operands.empty() && info.operands[0] == 'm' ? cache() : -1;
    Ins& ins = emit(stackOp(op), reg(depth()), instruction.operands[0], instruction.operands[1]);
    ins.parts = runtime;
    ins.cache = site;
    const Type before = taken > 0 ? m_stack.back().type : Type();
    pop(taken);
    if (info.pushes == 0) return;
    Type result;
    switch (op) {
    case Op::convert_s:
    case Op::typeof_:
    case Op::esc_xelem:
    case Op::esc_xattr: result = Type::of(Kind::String); break;
    case Op::in:
    case Op::instanceof_:
    case Op::istype:
    case Op::istypelate:
    case Op::deleteproperty:
    case Op::hasnext2: result = Type::of(Kind::Boolean); break;
    case Op::hasnext:
    case Op::li8:
    case Op::li16:
    case Op::li32: result = Type::of(Kind::Int); break;
    case Op::lf32:
    case Op::lf64: result = Type::of(Kind::Number); break;
    case Op::newarray: result = Type::instance(m_vm.classes().array->instances, true); break;
    case Op::newobject: result = Type::instance(m_vm.classes().object->instances, true); break;
    case Op::newactivation:
        if (m_code.activation != nullptr) result = Type::instance(m_code.activation, true);
        break;
    case Op::convert_o:
    case Op::checkfilter:
        result = before.kind == Kind::Instance ? Type::instance(before.traits, true) : before;
        break;
    case Op::astype: {
        bool known = false;
        Traits* wanted =
            settledType(m_vm, *m_code.unit, static_cast<std::uint32_t>(instruction.operands[0]), known);
        const Type type = known ? typeOfTraits(wanted) : Type();
        // Null when it is something else.
        if (type.kind == Kind::Instance || type.kind == Kind::String) result = type;
        break;
    }
    default: break;
    }
    for (std::size_t i = 0; i < info.pushes; ++i) push(result);
}

} // namespace flash::avm2
