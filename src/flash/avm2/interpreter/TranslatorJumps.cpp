#include "flash/avm2/interpreter/Translator.h"

#include "flash/vm/Numbers.h"

// Jumps, and comparisons that are made for the sake of one.

namespace flash::avm2
{

using abc::Op;
using Kind = Type::Kind;
using R = RegisterOp;

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

} // namespace flash::avm2
