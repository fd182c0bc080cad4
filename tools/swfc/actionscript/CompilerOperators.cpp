#include "swfc/actionscript/Compiler.h"

namespace swfc::actionscript
{

void Compiler::unary(const Expr* expr)
{
    switch (expr->op) {
    case Tok::Minus:
        if (expr->a->kind == ExprKind::Number) {
            if (m_version == 4)
                m_asm.push(numberText(-expr->a->number));
            else
                m_asm.push(-expr->a->number);
            return;
        }
        if (m_version == 4)
            m_asm.push("0");
        else
            m_asm.push(0.0);
        value(expr->a);
        m_asm.op(Action::Subtract);
        return;
    case Tok::Plus:
        value(expr->a);
        if (m_version > 4) m_asm.op(Action::ToNumber);
        return;
    case Tok::Not:
        value(expr->a);
        m_asm.op(Action::Not);
        return;
    case Tok::Complement:
        if (!need(5, expr->where, "'~'")) return;
        value(expr->a);
        m_asm.push(-1.0);
        m_asm.op(Action::BitXor);
        return;
    case Tok::TypeOf:
        if (!need(5, expr->where, "'typeof'")) return;
        value(expr->a);
        m_asm.op(Action::TypeOf);
        return;
    case Tok::Void:
        effect(expr->a);
        if (m_version == 4)
            m_asm.push("");
        else
            m_asm.push(UndefinedValue{});
        return;
    default: deleteOperator(expr->a); return;
    }
}

void Compiler::deleteOperator(const Expr* target)
{
    if (!need(5, target->where, "'delete'")) return;
    switch (target->kind) {
    case ExprKind::Name: {
        const Resolved found = resolve(target->text);
        if (found.kind == Resolved::Kind::Variable || found.kind == Resolved::Kind::Register) {
            m_asm.push(target->text);
            m_asm.op(Action::Delete2);
            return;
        }
        if (found.kind == Resolved::Kind::OwnMember)
            nameValue("this", target->where);
        else
            dottedValue(found.owner, false);
        m_asm.push(target->text);
        m_asm.op(Action::Delete);
        return;
    }
    case ExprKind::Member:
    case ExprKind::Index:
        value(target->a);
        memberKey(target);
        m_asm.op(Action::Delete);
        return;
    default:
        // Deleting a value is allowed and does nothing.
        effect(target);
        m_asm.push(false);
    }
}

void Compiler::binary(const Expr* expr)
{
    switch (expr->op) {
    case Tok::LogicalAnd:
    case Tok::LogicalOr:
    case Tok::WordAnd:
    case Tok::WordOr: logical(expr); return;
    case Tok::WordEq:
    case Tok::WordNe:
    case Tok::WordLt:
    case Tok::WordGt:
    case Tok::WordLe:
    case Tok::WordGe: wordComparison(expr); return;
    case Tok::Greater:
    case Tok::LessEqual:
        if (m_version >= 6) break;
        // There is only "less" before version 6: the operands change places.
        if (m_version == 5) {
            value(expr->a);
            value(expr->b);
            m_asm.op(Action::StackSwap);
            m_asm.op(Action::Less2);
        } else {
            value(expr->b);
            value(expr->a);
            m_asm.op(Action::Less);
        }
        if (expr->op == Tok::LessEqual) m_asm.op(Action::Not);
        return;
    default: break;
    }
    // A chain such as a + b + c + ... leans to the left.
    value(expr->a);
    value(expr->b);
    m_asm.at(expr->where);
    binaryAction(expr->op, expr->where);
}

/// The action for two values on the stack.
void Compiler::binaryAction(Tok op, Position where)
{
    const bool old = m_version == 4;
    switch (op) {
    case Tok::Plus: m_asm.op(old ? Action::Add : Action::Add2); return;
    case Tok::Minus: m_asm.op(Action::Subtract); return;
    case Tok::Star: m_asm.op(Action::Multiply); return;
    case Tok::Slash: m_asm.op(Action::Divide); return;
    case Tok::WordAdd: m_asm.op(Action::StringAdd); return;
    case Tok::And:
        // Before there were bits, this sign joined texts.
        m_asm.op(old ? Action::StringAdd : Action::BitAnd);
        return;
    case Tok::Less: m_asm.op(old ? Action::Less : Action::Less2); return;
    case Tok::GreaterEqual:
        m_asm.op(old ? Action::Less : Action::Less2);
        m_asm.op(Action::Not);
        return;
    case Tok::Greater: m_asm.op(Action::Greater); return;
    case Tok::LessEqual:
        m_asm.op(Action::Greater);
        m_asm.op(Action::Not);
        return;
    case Tok::Equal: m_asm.op(old ? Action::Equals : Action::Equals2); return;
    case Tok::NotEqual:
        m_asm.op(old ? Action::Equals : Action::Equals2);
        m_asm.op(Action::Not);
        return;
    default: break;
    }
    if (!need(5, where, spelling(op))) return;
    switch (op) {
    case Tok::Percent: m_asm.op(Action::Modulo); return;
    case Tok::Or: m_asm.op(Action::BitOr); return;
    case Tok::Xor: m_asm.op(Action::BitXor); return;
    case Tok::ShiftLeft: m_asm.op(Action::ShiftLeft); return;
    case Tok::ShiftRight: m_asm.op(Action::ShiftRight); return;
    case Tok::ShiftRightUnsigned: m_asm.op(Action::ShiftRightUnsigned); return;
    default: break;
    }
    if (!need(6, where, spelling(op))) return;
    switch (op) {
    case Tok::StrictEqual: m_asm.op(Action::StrictEquals); return;
    case Tok::StrictNotEqual:
        m_asm.op(Action::StrictEquals);
        m_asm.op(Action::Not);
        return;
    case Tok::InstanceOf: m_asm.op(Action::InstanceOf); return;
    default: error(where, "an operator"); return;
    }
}

/// eq, ne, lt, gt, le, ge compare as texts. There is only "less" before version 6.
void Compiler::wordComparison(const Expr* expr)
{
    const Tok op = expr->op;
    const bool swapped = op == Tok::WordGt || op == Tok::WordLe;
    value(swapped ? expr->b : expr->a);
    value(swapped ? expr->a : expr->b);
    const bool equality = op == Tok::WordEq || op == Tok::WordNe;
    m_asm.op(equality ? Action::StringEquals : Action::StringLess);
    if (op == Tok::WordNe || op == Tok::WordLe || op == Tok::WordGe) m_asm.op(Action::Not);
}

void Compiler::logical(const Expr* expr)
{
    const bool isAnd = expr->op == Tok::LogicalAnd || expr->op == Tok::WordAnd;
    value(expr->a);
    if (m_version == 4 || expr->op == Tok::WordAnd || expr->op == Tok::WordOr) {
        value(expr->b);
        m_asm.op(isAnd ? Action::And : Action::Or);
        return;
    }
    const Label end = m_asm.newLabel();
    m_asm.op(Action::PushDuplicate);
    if (isAnd) m_asm.op(Action::Not);
    m_asm.branch(Action::If, end);
    m_asm.op(Action::Pop);
    value(expr->b);
    m_asm.mark(end);
}

} // namespace swfc::actionscript
