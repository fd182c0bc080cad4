#include "flash/avm2/interpreter/Translator.h"
#include "flash/avm2/interpreter/Unit.h"
#include "flash/avm2/interpreter/Vm.h"
#include "flash/vm/Numbers.h"

#include <cmath>

namespace flash::avm2
{

using abc::Op;
using Kind = Type::Kind;
using R = RegisterOp;

RegisterOp stackOp(Op op)
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
        const Type type = m_stack.back().type;
        const std::int32_t from = boxed(depth() - 1);
        const bool isPlain =
            m_code.returnType == nullptr || (type.kind != Kind::Any && type.kind != Kind::Instance &&
                                             type == typeOfTraits(m_code.returnType));
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

void Translator::stepLocal(std::int32_t local, int by, bool isInt)
{
    const auto index = static_cast<std::size_t>(local);
    const Type before = localType(index);
    readLocal(index);
    spill(local);
    if (isInt) {
        writeLocal(index, Type::of(Kind::Int));
        if (m_forms[index] != Rep::Boxed) {
            emit(R::AddIK, local, 0, local, by);
            return;
        }
        const std::int32_t spare = reg(m_body.maxStack);
        emit(before.isNumeric() ? R::UnboxInt : R::ToIntV, spare, 0, local);
        emit(R::AddIK, spare, 0, spare, by);
        emit(R::BoxInt, local, 0, spare);
        return;
    }
    writeLocal(index, Type::of(Kind::Number));
    if (!before.isNumeric()) emit(R::ToNumberV, local, 0, local);
    emit(R::AddNK, local, 0, local, constant(by));
}

void Translator::toInt(Kind kind)
{
    Operand& top = m_stack.back();
    const Type wanted = Type::of(kind);
    if (top.type == wanted) return;
    if (top.where != Operand::Where::Register && valueOf(top).isNumber()) {
        const std::int32_t value = vm::toInt32(valueOf(top).number());
        pop();
        pushInt(value, wanted);
        return;
    }
    const Rep rep = kind == Kind::Int ? Rep::Int : Rep::Uint;
    if (isFresh(top) && top.at == reg(depth() - 1)) {
        // Sums of ints are exact as numbers: their lower bits are those of the sum of ints.
        Ins& last = m_code.code.back();
        const R narrow = last.op == R::AddII   ? R::AddI
                         : last.op == R::SubII ? R::SubI
                         : last.op == R::MulII ? R::MulToI
                                               : R::Move;
        if (narrow != R::Move) {
            last.op = narrow;
            top = {Operand::Where::Register, rep, top.at, wanted};
            return;
        }
    }
    const std::size_t at = depth() - 1;
    const std::int32_t from = raw(at);
    // The same 32 bits, where they are.
    m_stack[at] = {Operand::Where::Register, rep, from, wanted};
    if (from != reg(at)) return;
    const Ins& last = m_code.code.back();
    if (last.d == from && (last.op == R::ToIntV || last.op == R::UnboxInt)) m_last = m_code.code.size();
}

void Translator::toNumber()
{
    const std::size_t at = depth() - 1;
    Operand& top = m_stack[at];
    if (top.where != Operand::Where::Register && valueOf(top).isNumber()) {
        const Value value = valueOf(top);
        pop();
        pushConstant(value, Type::of(Kind::Number));
        return;
    }
    if (top.type.isNumeric()) {
        boxed(at);
        m_stack[at].type = Type::of(Kind::Number);
        return;
    }
    const std::int32_t from = boxed(at);
    pop();
    define(R::ToNumberV, Type::of(Kind::Number), Rep::Boxed, from);
}

bool Translator::isNumberConstant(std::size_t at) const
{
    return m_stack[at].where != Operand::Where::Register && valueOf(m_stack[at]).isNumber();
}

/// On ints. A constant on the right goes into the instruction.
void Translator::addInt(R op, R immediate)
{
    const std::size_t x = depth() - 2, y = depth() - 1;
    const std::int32_t left = raw(x);
    if (immediate != R::Move && isNumberConstant(y)) {
        std::int32_t value = vm::toInt32(valueOf(m_stack[y]).number());
        if (op == R::SubI) value = static_cast<std::int32_t>(0U - static_cast<std::uint32_t>(value));
        pop(2);
        define(immediate, Type::of(op == R::UshrI ? Kind::Uint : Kind::Int),
               op == R::UshrI ? Rep::Uint : Rep::Int, left, value);
        return;
    }
    const std::int32_t right = raw(y);
    pop(2);
    define(op, Type::of(op == R::UshrI ? Kind::Uint : Kind::Int), op == R::UshrI ? Rep::Uint : Rep::Int, left,
           right);
}

void Translator::numeric(R numbers, R immediate, R any)
{
    const std::size_t x = depth() - 2, y = depth() - 1;
    const bool isNumeric = m_stack[x].type.isNumeric() && m_stack[y].type.isNumeric();
    if (!isNumeric) {
        // A sum may be a text.
        const Type result = any == R::AddV ? Type() : Type::of(Kind::Number);
        const std::int32_t left = boxed(x), right = boxed(y);
        pop(2);
        define(any, result, Rep::Boxed, left, right);
        return;
    }
    const std::int32_t left = number(x);
    if (immediate != R::Move && isNumberConstant(y)) {
        const std::int32_t value = constant(valueOf(m_stack[y]).number());
        pop(2);
        define(immediate, Type::of(Kind::Number), Rep::Boxed, left, value);
        return;
    }
    const std::int32_t right = number(y);
    pop(2);
    define(numbers, Type::of(Kind::Number), Rep::Boxed, left, right);
}

bool Translator::arithmetic(Op op)
{
    const auto areInts = [&] {
        return m_stack[depth() - 1].type.kind == Kind::Int && m_stack[depth() - 2].type.kind == Kind::Int;
    };
    const auto ofInts = [&](R exact) {
        const std::int32_t left = raw(depth() - 2), right = raw(depth() - 1);
        pop(2);
        define(exact, Type::of(Kind::Number), Rep::Boxed, left, right);
    };
    switch (op) {
    case Op::add:
        if (areInts())
            ofInts(R::AddII);
        else
            numeric(R::AddN, R::AddNK, R::AddV);
        return true;
    case Op::subtract:
        if (areInts())
            ofInts(R::SubII);
        else
            numeric(R::SubN, R::SubNK, R::SubV);
        return true;
    case Op::multiply:
        if (areInts())
            ofInts(R::MulII);
        else
            numeric(R::MulN, R::MulNK, R::MulV);
        return true;
    case Op::divide: numeric(R::DivN, R::DivNK, R::DivV); return true;
    case Op::modulo:
        if (areInts())
            ofInts(R::ModII);
        else
            numeric(R::ModN, R::Move, R::ModV);
        return true;
    case Op::negate: {
        const std::int32_t from = number(depth() - 1);
        pop();
        define(R::NegN, Type::of(Kind::Number), Rep::Boxed, from);
        return true;
    }
    case Op::increment:
    case Op::decrement: {
        const std::int32_t from = number(depth() - 1);
        pop();
        define(R::AddNK, Type::of(Kind::Number), Rep::Boxed, from, constant(op == Op::increment ? 1 : -1));
        return true;
    }
    case Op::increment_i:
    case Op::decrement_i: {
        const std::int32_t from = raw(depth() - 1);
        pop();
        define(R::AddIK, Type::of(Kind::Int), Rep::Int, from, op == Op::increment_i ? 1 : -1);
        return true;
    }
    case Op::negate_i:
    case Op::bitnot: {
        const std::int32_t from = raw(depth() - 1);
        pop();
        define(op == Op::bitnot ? R::NotI : R::NegI, Type::of(Kind::Int), Rep::Int, from);
        return true;
    }
    case Op::add_i: addInt(R::AddI, R::AddIK); return true;
    case Op::subtract_i: addInt(R::SubI, R::AddIK); return true;
    case Op::multiply_i: addInt(R::MulI, R::Move); return true;
    case Op::bitand_: addInt(R::AndI, R::AndIK); return true;
    case Op::bitor_: addInt(R::OrI, R::OrIK); return true;
    case Op::bitxor: addInt(R::XorI, R::Move); return true;
    case Op::lshift: addInt(R::ShlI, R::ShlIK); return true;
    case Op::rshift: addInt(R::ShrI, R::ShrIK); return true;
    case Op::urshift: addInt(R::UshrI, R::UshrIK); return true;
    case Op::sxi1:
    case Op::sxi8:
    case Op::sxi16: {
        const std::int32_t bits = op == Op::sxi1 ? 31 : op == Op::sxi8 ? 24 : 16;
        const std::int32_t from = raw(depth() - 1);
        pop();
        define(R::ShlIK, Type::of(Kind::Int), Rep::Int, from, bits);
        pop();
        define(R::ShrIK, Type::of(Kind::Int), Rep::Int, reg(depth()), bits);
        return true;
    }
    case Op::lessthan:
    case Op::lessequals:
    case Op::greaterthan:
    case Op::greaterequals:
    case Op::equals:
    case Op::strictequals: compare(op); return true;
    case Op::not_: {
        const bool isBoolean = m_stack.back().type.kind == Kind::Boolean;
        const std::int32_t from = boxed(depth() - 1);
        pop();
        define(isBoolean ? R::NotB : R::NotV, Type::of(Kind::Boolean), Rep::Boxed, from);
        return true;
    }
    default: return false;
    }
}

void Translator::compare(Op op)
{
    const std::size_t x = depth() - 2, y = depth() - 1;
    const Kind left = m_stack[x].type.kind, right = m_stack[y].type.kind;
    const bool isEquality = op == Op::equals || op == Op::strictequals;
    const bool turns = op == Op::greaterthan || op == Op::greaterequals;
    const bool isStrict = op == Op::lessthan || op == Op::greaterthan;
    R form = R::Move;
    std::int32_t a = 0, b = 0;
    if (left == right && (left == Kind::Int || (left == Kind::Uint && !isEquality))) {
        a = raw(x);
        b = raw(y);
        form = isEquality          ? R::EqI
               : left == Kind::Int ? (isStrict ? R::LtI : R::LeI)
               : isStrict          ? R::LtU
                                   : R::LeU;
    } else if (m_stack[x].type.isNumeric() && m_stack[y].type.isNumeric()) {
        a = boxed(x);
        b = boxed(y);
        form = isEquality ? R::EqN : isStrict ? R::LtN : R::LeN;
    } else {
        a = boxed(x);
        b = boxed(y);
        form = op == Op::equals ? R::EqV : op == Op::strictequals ? R::SeqV : isStrict ? R::LtV : R::LeV;
    }
    pop(2);
    define(form, Type::of(Kind::Boolean), Rep::Boxed, turns ? b : a, turns ? a : b);
}

void Translator::jump(R op, std::uint32_t target, std::int32_t a, std::int32_t b, std::int32_t c)
{
    emit(op, static_cast<std::int32_t>(target), a, b, c);
    meet(target);
}

void Translator::jumpIf(bool wanted, std::uint32_t target)
{
    const std::size_t at = depth() - 1;
    const Operand top = m_stack[at];
    if (isFresh(top) && top.at == reg(at)) {
        // What was compared just now.
        const Ins last = m_code.code.back();
        R form = R::Move;
        bool turns = false;
        switch (last.op) {
        case R::LtI:
            form = wanted ? R::JLtI : R::JLeI;
            turns = !wanted;
            break;
        case R::LeI:
            form = wanted ? R::JLeI : R::JLtI;
            turns = !wanted;
            break;
        case R::LtU:
            form = wanted ? R::JLtU : R::JLeU;
            turns = !wanted;
            break;
        case R::LeU:
            form = wanted ? R::JLeU : R::JLtU;
            turns = !wanted;
            break;
        case R::EqI: form = wanted ? R::JEqI : R::JNeI; break;
        case R::LtN: form = wanted ? R::JLtN : R::JNltN; break;
        case R::LeN: form = wanted ? R::JLeN : R::JNleN; break;
        case R::EqN: form = wanted ? R::JEqN : R::JNeN; break;
        case R::LtV: form = wanted ? R::JLtV : R::JNltV; break;
        case R::LeV: form = wanted ? R::JLeV : R::JNleV; break;
        case R::EqV: form = wanted ? R::JEqV : R::JNeV; break;
        case R::SeqV: form = wanted ? R::JSeqV : R::JSneV; break;
        default: break;
        }
        if (form != R::Move) {
            m_code.code.pop_back();
            m_last = 0;
            pop();
            flush();
            jump(form, target, 0, turns ? last.c : last.b, turns ? last.b : last.c);
            return;
        }
    }
    R form = wanted ? R::JTrueV : R::JFalseV;
    std::int32_t from = 0;
    if (top.type.kind == Kind::Int || top.type.kind == Kind::Uint) {
        from = raw(at);
        form = wanted ? R::JTrueI : R::JFalseI;
    } else {
        from = boxed(at);
        if (top.type.kind == Kind::Boolean) form = wanted ? R::JTrueB : R::JFalseB;
    }
    pop();
    flush();
    jump(form, target, 0, from, 0);
}

bool Translator::jumpIfCompared(Op op, std::uint32_t target)
{
    enum class Relation : std::uint8_t { Lt, Le, Eq, StrictEq };
    Relation relation = Relation::Lt;
    bool turns = false, isNot = false;
    switch (op) {
    case Op::iflt: break;
    case Op::ifnlt: isNot = true; break;
    case Op::ifle: relation = Relation::Le; break;
    case Op::ifnle:
        relation = Relation::Le;
        isNot = true;
        break;
    case Op::ifgt: turns = true; break;
    case Op::ifngt: turns = isNot = true; break;
    case Op::ifge:
        relation = Relation::Le;
        turns = true;
        break;
    case Op::ifnge:
        relation = Relation::Le;
        turns = isNot = true;
        break;
    case Op::ifeq: relation = Relation::Eq; break;
    case Op::ifne:
        relation = Relation::Eq;
        isNot = true;
        break;
    case Op::ifstricteq: relation = Relation::StrictEq; break;
    case Op::ifstrictne:
        relation = Relation::StrictEq;
        isNot = true;
        break;
    default: return false;
    }
    const std::size_t x = depth() - 2, y = depth() - 1;
    const Kind left = m_stack[x].type.kind, right = m_stack[y].type.kind;
    const bool isEquality = relation == Relation::Eq || relation == Relation::StrictEq;
    R form = R::Move;
    std::int32_t a = 0, b = 0;
    if (left == Kind::Int && right == Kind::Int && isNumberConstant(y)) {
        a = raw(x);
        b = vm::toInt32(valueOf(m_stack[y]).number());
        if (isEquality)
            form = isNot ? R::JNeIK : R::JEqIK;
        else if (relation == Relation::Lt)
            form = turns ? (isNot ? R::JLeIK : R::JGtIK) : isNot ? R::JGeIK : R::JLtIK;
        else
            form = turns ? (isNot ? R::JLtIK : R::JGeIK) : isNot ? R::JGtIK : R::JLeIK;
        turns = false;
    } else if (left == right && (left == Kind::Int || (left == Kind::Uint && !isEquality))) {
        a = raw(x);
        b = raw(y);
        const bool isInt = left == Kind::Int;
        if (isEquality) {
            form = isNot ? R::JNeI : R::JEqI;
        } else {
            // Not a < b is b <= a.
            const bool isLess = (relation == Relation::Lt) != isNot;
            form = isInt ? (isLess ? R::JLtI : R::JLeI) : isLess ? R::JLtU : R::JLeU;
            if (isNot) turns = !turns;
        }
    } else {
        const bool isNumeric = m_stack[x].type.isNumeric() && m_stack[y].type.isNumeric();
        a = boxed(x);
        b = boxed(y);
        switch (relation) {
        case Relation::Lt:
            form = isNumeric ? (isNot ? R::JNltN : R::JLtN) : isNot ? R::JNltV : R::JLtV;
            break;
        case Relation::Le:
            form = isNumeric ? (isNot ? R::JNleN : R::JLeN) : isNot ? R::JNleV : R::JLeV;
            break;
        case Relation::Eq: form = isNumeric ? (isNot ? R::JNeN : R::JEqN) : isNot ? R::JNeV : R::JEqV; break;
        case Relation::StrictEq:
            form = isNumeric ? (isNot ? R::JNeN : R::JEqN) : isNot ? R::JSneV : R::JSeqV;
            break;
        }
    }
    pop(2);
    flush();
    jump(form, target, 0, turns ? b : a, turns ? a : b);
    return true;
}

bool Translator::jumps(const abc::Instruction& instruction)
{
    const auto op = static_cast<Op>(instruction.op);
    const auto target = static_cast<std::uint32_t>(instruction.operands[0]);
    if (op == Op::iftrue || op == Op::iffalse) {
        jumpIf(op == Op::iftrue, target);
        return true;
    }
    return jumpIfCompared(op, target);
}

void Translator::coerce(const abc::Instruction& instruction)
{
    const auto multiname = static_cast<std::uint32_t>(instruction.operands[0]);
    if (multiname == 0) return;
    bool known = false;
    Traits* wanted = settledType(m_vm, *m_code.unit, multiname, known);
    const Type result = known ? typeOfTraits(wanted) : Type();
    const Operand& top = m_stack.back();
    if (known) {
        if (wanted == nullptr) return;
        if (result.kind == Kind::Int || result.kind == Kind::Uint) return toInt(result.kind);
        if (result.kind == Kind::Number) return toNumber();
        if (result.kind == Kind::Instance &&
            (top.type.kind == Kind::Null ||
             (top.type.kind == Kind::Instance && top.type.traits->isA(wanted))))
            return;
        if (result.kind == top.type.kind && (result.kind == Kind::String || result.kind == Kind::Boolean))
            return;
    }
    const std::int32_t from = boxed(depth() - 1);
    pop();
    define(R::CoerceType, result, Rep::Boxed, from, 0, static_cast<std::int32_t>(multiname));
}

void Translator::pushScope(bool isWith)
{
    const Type type = m_stack.back().type;
    spill(static_cast<std::int32_t>(m_code.locals + m_scopes.size()));
    if (isWith) {
        place(depth() - 1);
        emit(R::pushwith, reg(depth()));
    } else {
        emit(R::PushScope, 0, 0, boxed(depth() - 1));
    }
    pop();
    m_scopes.push_back({type.kind == Kind::Instance ? Type::instance(type.traits, true) : Type(), isWith});
}

/// What a name means for a receiver of a known class, when that cannot be otherwise at run time.
const Binding* Translator::binding(const Type& receiver, std::uint32_t multiname)
{
    if (receiver.kind != Kind::Instance || receiver.traits->isInterface || parts(multiname) != 0)
        return nullptr;
    const BuiltIns& classes = m_vm.classes();
    for (ClassObject* cls : {classes.xml, classes.xmlList}) {
        if (cls != nullptr && receiver.traits->isA(cls->instances)) return nullptr;
    }
    const Multiname& name = m_code.unit->multiname(multiname);
    return name.attribute ? nullptr : receiver.traits->find(name);
}

bool Translator::getProperty(std::uint32_t multiname)
{
    const std::uint16_t runtime = parts(multiname);
    const std::size_t top = depth() - 1;
    if (runtime == 1) {
        const Type index = m_stack[top].type;
        if (index.kind != Kind::Int && index.kind != Kind::Uint) return false;
        const Type receiver = m_stack[top - 1].type;
        Type result;
        if (receiver.kind == Kind::Instance && receiver.traits->isVector)
            result = typeOfTraits(receiver.traits->element);
        const std::int32_t base = boxed(top - 1), at = raw(top);
        pop(2);
        const bool isInt = result.kind == Kind::Int;
        define(isInt ? R::GetElemI : R::GetElem, result, isInt ? Rep::Int : Rep::Boxed, base, at,
               static_cast<std::int32_t>(multiname))
            .parts = index.kind == Kind::Uint ? 1 : 0;
        return true;
    }
    if (runtime != 0) return false;
    const Type receiver = m_stack[top].type;
    const Binding* found = binding(receiver, multiname);
    const std::int32_t base = boxed(top);
    if (found != nullptr && (found->kind == Binding::Kind::Slot || found->kind == Binding::Kind::Const)) {
        const Type type = typeOfSlot(m_vm, *receiver.traits, static_cast<std::uint32_t>(found->id));
        pop();
        const bool isInt = type.kind == Kind::Int;
        define(isInt ? R::GetSlotI : R::GetSlot, type, isInt ? Rep::Int : Rep::Boxed, base, found->id,
               static_cast<std::int32_t>(multiname));
    } else if (found != nullptr && found->kind == Binding::Kind::Accessor && found->id >= 0) {
        pop();
        const std::int32_t window = reg(depth());
        define(R::GetAccessor, {}, Rep::Boxed, base, found->id, static_cast<std::int32_t>(multiname)).cache =
            window;
    } else {
        pop();
        const std::int32_t site = cache();
        define(R::GetProp, {}, Rep::Boxed, base, 0, static_cast<std::int32_t>(multiname)).cache = site;
    }
    return true;
}

bool Translator::setElement(std::uint32_t multiname)
{
    const std::size_t value = depth() - 1, index = depth() - 2, base = depth() - 3;
    const Kind kind = m_stack[index].type.kind;
    if (kind != Kind::Int && kind != Kind::Uint) return false;
    const std::int32_t object = boxed(base), at = raw(index), from = boxed(value);
    pop(3);
    Ins& ins = emit(R::SetElem, 0, from, object, at);
    ins.parts = kind == Kind::Uint ? 1 : 0;
    ins.cache = static_cast<std::int32_t>(multiname);
    return true;
}

bool Translator::setProperty(std::uint32_t multiname, bool isInit)
{
    const std::uint16_t runtime = parts(multiname);
    if (runtime == 1) return setElement(multiname);
    if (runtime != 0) return false;
    const std::size_t value = depth() - 1, base = depth() - 2;
    const Type receiver = m_stack[base].type;
    const Binding* found = binding(receiver, multiname);
    if (found != nullptr &&
        (found->kind == Binding::Kind::Slot || (found->kind == Binding::Kind::Const && isInit))) {
        const auto slot = static_cast<std::uint32_t>(found->id);
        const TypeRef& reference = receiver.traits->slotTypes[slot];
        bool known = reference.unit == nullptr;
        Traits* wanted =
            known ? reference.resolved : settledType(m_vm, *reference.unit, reference.name, known);
        const Type type = typeOfTraits(wanted), given = m_stack[value].type;
        bool fits = known && wanted == nullptr;
        if (known && wanted != nullptr) {
            switch (type.kind) {
            case Kind::Int:
            case Kind::Uint:
                fits = given.isNumeric();
                if (fits && given.kind != type.kind) toInt(type.kind);
                break;
            case Kind::Number: fits = given.isNumeric(); break;
            case Kind::Boolean:
            case Kind::String: fits = given.kind == type.kind; break;
            case Kind::Instance:
                fits =
                    given.kind == Kind::Null || (given.kind == Kind::Instance && given.traits->isA(wanted));
                break;
            default: break;
            }
        }
        const std::int32_t object = boxed(base);
        const bool isRaw = fits && type.kind == Kind::Int && m_stack[value].rep == Rep::Int;
        const std::int32_t from = isRaw ? m_stack[value].at : boxed(value);
        pop(2);
        emit(isRaw  ? R::SetSlotI
             : fits ? R::SetSlot
                    : R::SetSlotTyped,
             0, from, object, found->id)
            .cache = static_cast<std::int32_t>(multiname);
        return true;
    }
    const std::int32_t object = boxed(base), from = boxed(value);
    pop(2);
    const std::int32_t site = cache();
    Ins& ins = emit(R::SetProp, 0, static_cast<std::int32_t>(multiname), object, from);
    ins.parts = isInit ? 1 : 0;
    ins.cache = site;
    return true;
}

/// A name that the classes of the frame's own scopes tell the place of.
bool Translator::findInScopes(std::uint32_t multiname)
{
    if (parts(multiname) != 0) return false;
    for (std::size_t i = m_scopes.size(); i-- > 0;) {
        const Scope& scope = m_scopes[i];
        if (scope.isWith || scope.type.kind != Kind::Instance) return false;
        if (binding(scope.type, multiname) != nullptr) {
            const auto at = static_cast<std::int32_t>(m_code.locals + i);
            m_stack.push_back({Operand::Where::Register, Rep::Boxed, at, scope.type});
            return true;
        }
        // Only activations and the like are sure to be nothing more than that.
        if (scope.type.traits->cls != nullptr || !scope.type.traits->isSealed) return false;
    }
    return false;
}

void Translator::call(const abc::Instruction& instruction)
{
    const auto op = static_cast<Op>(instruction.op);
    const auto multiname = static_cast<std::uint32_t>(instruction.operands[0]);
    const std::int32_t count = instruction.operands[1];
    const std::uint16_t runtime = parts(multiname);
    const std::size_t taken = static_cast<std::size_t>(count) + 1 + (runtime & 1U) + (runtime >> 1U & 1U);
    const std::size_t base = depth() - taken;
    const Type receiver = m_stack[base].type;
    for (std::size_t i = base; i < depth(); ++i) place(i);
    const Binding* found = binding(receiver, multiname);
    if (found != nullptr && found->kind == Binding::Kind::Method) {
        emit(R::CallEarly, reg(depth()), found->id, count, instruction.operands[0]);
    } else {
        const std::int32_t site = cache();
        Ins& ins = emit(stackOp(op), reg(depth()), instruction.operands[0], count);
        ins.parts = runtime;
        ins.cache = site;
    }
    pop(taken);
    if (op != Op::callpropvoid) push({});
}

bool Translator::properties(const abc::Instruction& instruction)
{
    const auto op = static_cast<Op>(instruction.op);
    const auto multiname = static_cast<std::uint32_t>(instruction.operands[0]);
    switch (op) {
    case Op::getproperty: return getProperty(multiname);
    case Op::setproperty:
    case Op::initproperty: return setProperty(multiname, op == Op::initproperty);
    case Op::callproperty:
    case Op::callproplex:
    case Op::callpropvoid: call(instruction); return true;
    case Op::findproperty:
    case Op::findpropstrict: return findInScopes(multiname);
    case Op::getlex:
        if (!findInScopes(multiname)) return false;
        return getProperty(multiname);
    case Op::getslot: {
        const std::size_t top = depth() - 1;
        const Type receiver = m_stack[top].type;
        const std::int32_t slot = instruction.operands[0] - 1;
        if (receiver.kind != Kind::Instance || slot < 0 ||
            static_cast<std::size_t>(slot) >= receiver.traits->slotTypes.size())
            return false;
        const std::int32_t base = boxed(top);
        const Type type = typeOfSlot(m_vm, *receiver.traits, static_cast<std::uint32_t>(slot));
        pop();
        const bool isInt = type.kind == Kind::Int;
        define(isInt ? R::GetSlotI : R::GetSlot, type, isInt ? Rep::Int : Rep::Boxed, base, slot);
        return true;
    }
    default: return false;
    }
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
