#include "swfc/actionscript/Compiler.h"

namespace swfc::actionscript
{
namespace
{

Tok operatorOf(Tok assignment)
{
    switch (assignment) {
    case Tok::PlusAssign: return Tok::Plus;
    case Tok::MinusAssign: return Tok::Minus;
    case Tok::StarAssign: return Tok::Star;
    case Tok::SlashAssign: return Tok::Slash;
    case Tok::PercentAssign: return Tok::Percent;
    case Tok::ShiftLeftAssign: return Tok::ShiftLeft;
    case Tok::ShiftRightAssign: return Tok::ShiftRight;
    case Tok::ShiftRightUnsignedAssign: return Tok::ShiftRightUnsigned;
    case Tok::AndAssign: return Tok::And;
    case Tok::OrAssign: return Tok::Or;
    case Tok::XorAssign: return Tok::Xor;
    default: return Tok::End;
    }
}

} // namespace

/// Takes the value from the stack into the variable; leaves a copy when one is wanted.
void Compiler::storeName(const std::string& name, Wanted wanted)
{
    const Resolved found = resolve(name);
    const bool isMember =
        found.kind == Resolved::Kind::OwnMember || found.kind == Resolved::Kind::StaticMember;
    if (found.kind == Resolved::Kind::Register) {
        m_asm.record(Action::StoreRegister, Assembler::Payload().u8(found.number));
        if (wanted == Wanted::Effect) m_asm.op(Action::Pop);
        return;
    }
    if (wanted == Wanted::Value) m_asm.op(Action::PushDuplicate);
    if (isMember) {
        const auto hold = Assembler::Payload().u8(m_scope.temporary[0]);
        m_asm.record(Action::StoreRegister, hold);
        m_asm.op(Action::Pop);
        if (found.kind == Resolved::Kind::OwnMember)
            nameValue("this", {});
        else
            dottedValue(found.owner, false);
        m_asm.push(name);
        m_asm.push(Register{m_scope.temporary[0]});
        m_asm.op(Action::SetMember);
        return;
    }
    m_asm.push(name);
    m_asm.op(Action::StackSwap);
    m_asm.op(Action::SetVariable);
}

/// Whether computing the expression again gives the same and does nothing.
bool Compiler::isRepeatable(const Expr* expr) const
{
    switch (expr->kind) {
    case ExprKind::Number:
    case ExprKind::String:
    case ExprKind::This: return true;
    case ExprKind::Name: return resolve(expr->text).kind != Resolved::Kind::OwnMember;
    default: return false;
    }
}

void Compiler::memberKey(const Expr* target)
{
    if (target->kind == ExprKind::Member)
        m_asm.push(target->text);
    else
        value(target->b);
}

/// Pushes object and key, once or twice. Both are computed once; registers hold them for the copy only.
void Compiler::memberTarget(const Expr* target, bool twice)
{
    value(target->a);
    memberKey(target);
    if (!twice) return;
    if (isRepeatable(target->a) && (target->kind == ExprKind::Member || isRepeatable(target->b))) {
        value(target->a);
        memberKey(target);
        return;
    }
    const Register object{m_scope.temporary[0]}, key{m_scope.temporary[1]};
    m_asm.record(Action::StoreRegister, Assembler::Payload().u8(key.number));
    m_asm.op(Action::Pop);
    m_asm.record(Action::StoreRegister, Assembler::Payload().u8(object.number));
    m_asm.push(key);
    m_asm.push(object);
    m_asm.push(key);
}

/// The old value is on the stack; leaves the new one.
void Compiler::compound(Tok op, const Expr* right)
{
    value(right);
    m_asm.at(right->where);
    binaryAction(operatorOf(op), right->where);
}

void Compiler::assign(const Expr* expr, Wanted wanted)
{
    const Expr* target = expr->a;
    if (m_version == 4) {
        slashAssign(target, expr->b, expr->op, wanted);
        return;
    }
    const bool plain = expr->op == Tok::Assign;
    const Register copy{m_scope.temporary[0]};
    switch (target->kind) {
    case ExprKind::Name: {
        const Resolved found = resolve(target->text);
        if (plain && found.kind == Resolved::Kind::Variable && wanted == Wanted::Effect) {
            m_asm.push(target->text);
            value(expr->b);
            m_asm.op(Action::SetVariable);
            return;
        }
        if (plain) {
            value(expr->b);
        } else {
            nameValue(target->text, target->where);
            compound(expr->op, expr->b);
        }
        storeName(target->text, wanted);
        return;
    }
    case ExprKind::Member:
    case ExprKind::Index:
        memberTarget(target, !plain);
        if (plain) {
            value(expr->b);
        } else {
            m_asm.op(Action::GetMember);
            compound(expr->op, expr->b);
        }
        if (wanted == Wanted::Value) {
            m_asm.record(Action::StoreRegister, Assembler::Payload().u8(copy.number));
        }
        m_asm.op(Action::SetMember);
        if (wanted == Wanted::Value) m_asm.push(copy);
        return;
    case ExprKind::Call: // eval(name) = value
        if (target->list.size() != 1) {
            error(target->where, "one argument to 'eval'");
            return;
        }
        value(target->list[0]);
        if (plain) {
            value(expr->b);
        } else {
            m_asm.op(Action::PushDuplicate);
            m_asm.op(Action::GetVariable);
            compound(expr->op, expr->b);
        }
        if (wanted == Wanted::Value) {
            m_asm.record(Action::StoreRegister, Assembler::Payload().u8(copy.number));
        }
        m_asm.op(Action::SetVariable);
        if (wanted == Wanted::Value) m_asm.push(copy);
        return;
    case ExprKind::SlashPath:
        m_asm.push(target->text);
        value(expr->b);
        m_asm.op(Action::SetVariable);
        if (wanted == Wanted::Value) value(target);
        return;
    default: error(target->where, "a variable or member before the assignment sign"); return;
    }
}

/// ++ and --, before and after.
void Compiler::update(const Expr* expr, Wanted wanted)
{
    const Expr* target = expr->a;
    const Action step = expr->op == Tok::PlusPlus ? Action::Increment : Action::Decrement;
    if (m_version == 4) {
        Expr one;
        one.kind = ExprKind::Number;
        one.number = 1;
        one.where = expr->where;
        const bool keepOld = wanted == Wanted::Value && expr->kind == ExprKind::Postfix;
        if (keepOld) value(target);
        slashAssign(target, &one, expr->op == Tok::PlusPlus ? Tok::PlusAssign : Tok::MinusAssign,
                    keepOld ? Wanted::Effect : wanted);
        return;
    }
    const bool keepOld = wanted == Wanted::Value && expr->kind == ExprKind::Postfix;
    if (target->kind == ExprKind::Name) {
        nameValue(target->text, target->where);
        if (keepOld) {
            // The value of a++ is a number even when the variable held a text.
            m_asm.op(Action::ToNumber);
            m_asm.op(Action::PushDuplicate);
        }
        m_asm.op(step);
        storeName(target->text, keepOld ? Wanted::Effect : wanted);
        return;
    }
    if (target->kind != ExprKind::Member && target->kind != ExprKind::Index) {
        error(target->where, "a variable or member with " + std::string(spelling(expr->op)));
        return;
    }
    const Register copy{m_scope.temporary[0]};
    const auto hold = Assembler::Payload().u8(copy.number);
    memberTarget(target, true);
    m_asm.op(Action::GetMember);
    if (keepOld) {
        m_asm.op(Action::ToNumber);
        m_asm.record(Action::StoreRegister, hold);
    }
    m_asm.op(step);
    if (wanted == Wanted::Value && !keepOld) m_asm.record(Action::StoreRegister, hold);
    m_asm.op(Action::SetMember);
    if (wanted == Wanted::Value) m_asm.push(copy);
}

} // namespace swfc::actionscript
