#include "flash/avm2/interpreter/Translator.h"

#include "flash/vm/Numbers.h"

// Numbers: conversions between their kinds, arithmetic, comparisons.

namespace flash::avm2
{

using abc::Op;
using Kind = Type::Kind;
using R = RegisterOp;

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
                         : last.op == R::AddIV ? R::AddToI
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
    const auto isRaw = [&](std::size_t at) {
        return m_stack[at].where == Operand::Where::Register && m_stack[at].rep == Rep::Int;
    };
    if (!isNumeric && any == R::AddV && isRaw(x) != isRaw(y)) {
        const bool isRight = isRaw(y);
        const std::int32_t other = boxed(isRight ? x : y), value = m_stack[isRight ? y : x].at;
        pop(2);
        define(R::AddIV, {}, Rep::Boxed, value, other).parts = isRight ? 1 : 0;
        return;
    }
    if (!isNumeric) {
        // A sum may be a text.
        const auto isText = [&](std::size_t at) {
            return m_stack[at].where == Operand::Where::Constant && valueOf(m_stack[at]).isString();
        };
        const Type result = any != R::AddV           ? Type::of(Kind::Number)
                            : isText(x) || isText(y) ? Type::of(Kind::String)
                                                     : Type();
        const std::int32_t left = boxed(x), right = boxed(y);
        pop(2);
        define(any, result, Rep::Boxed, left, right);
        return;
    }
    const R withInt = numbers == R::AddN   ? R::AddNI
                      : numbers == R::SubN ? R::SubNI
                      : numbers == R::MulN ? R::MulNI
                      : numbers == R::DivN ? R::DivNI
                                           : R::Move;
    const bool turns =
        isRaw(x) && !isRaw(y) && !isNumberConstant(y) && (numbers == R::AddN || numbers == R::MulN);
    if (withInt != R::Move && (turns || isRaw(y))) {
        const std::int32_t left = number(turns ? y : x), right = m_stack[turns ? x : y].at;
        pop(2);
        define(withInt, Type::of(Kind::Number), Rep::Boxed, left, right);
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

} // namespace flash::avm2
