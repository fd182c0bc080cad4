#include "swfc/actionscript/Compiler.h"

// Version 4 knows no objects: a variable is reached by a path of clips, and what looks like a member is
// compiled to such a path. Properties of clips have actions of their own.
namespace swfc::actionscript
{

std::string Compiler::SlashName::variable() const { return path.empty() ? name : path + ":" + name; }

/// @returns the path to a clip named with dots or slashes, or nothing.
std::optional<std::string> Compiler::slashPath(const Expr* expr) const
{
    switch (expr->kind) {
    case ExprKind::This: return "";
    case ExprKind::SlashPath: return expr->text;
    case ExprKind::Name:
        if (expr->text == "_root") return "/";
        if (expr->text == "_parent") return "..";
        return expr->text;
    case ExprKind::Member: {
        auto base = slashPath(expr->a);
        if (!base) return {};
        const std::string part = expr->text == "_parent" ? ".." : expr->text;
        if (base->empty()) return part;
        return base->back() == '/' ? *base + part : *base + "/" + part;
    }
    default: return {};
    }
}

std::optional<Compiler::SlashName> Compiler::slashName(const Expr* expr)
{
    SlashName found;
    if (expr->kind == ExprKind::Name) {
        found.name = expr->text;
        if (found.name == "newline") return {};
    } else if (expr->kind == ExprKind::Member) {
        const auto path = slashPath(expr->a);
        if (!path) return {};
        found.path = *path;
        found.name = expr->text;
    } else if (expr->kind == ExprKind::SlashPath) {
        const std::size_t colon = expr->text.rfind(':');
        if (colon == std::string::npos) return {};
        found.path = expr->text.substr(0, colon);
        found.name = expr->text.substr(colon + 1);
    } else {
        return {};
    }
    found.property = propertyNumber(found.name, m_version);
    return found;
}

void Compiler::slashValue(const Expr* expr)
{
    const auto name = slashName(expr);
    if (name->property) {
        m_asm.push(name->path);
        m_asm.push(std::to_string(*name->property));
        m_asm.op(Action::GetProperty);
    } else {
        m_asm.push(name->variable());
        m_asm.op(Action::GetVariable);
    }
}

void Compiler::slashAssign(const Expr* target, const Expr* right, Tok op, Wanted wanted)
{
    const auto name = slashName(target);
    const bool isEval = target->kind == ExprKind::Call && target->list.size() == 1;
    if (!name && !isEval) {
        error(target->where, "a variable or property before the assignment sign in version 4");
        return;
    }
    if (isEval) {
        value(target->list[0]);
    } else if (name->property) {
        m_asm.push(name->path);
        m_asm.push(std::to_string(*name->property));
    } else {
        m_asm.push(name->variable());
    }
    if (op != Tok::Assign) value(target);
    value(right);
    switch (op) {
    case Tok::Assign: break;
    case Tok::PlusAssign: m_asm.op(Action::Add); break;
    case Tok::MinusAssign: m_asm.op(Action::Subtract); break;
    case Tok::StarAssign: m_asm.op(Action::Multiply); break;
    case Tok::SlashAssign: m_asm.op(Action::Divide); break;
    case Tok::AndAssign: m_asm.op(Action::StringAdd); break;
    default: need(5, target->where, spelling(op)); break;
    }
    m_asm.op(name && name->property ? Action::SetProperty : Action::SetVariable);
    // There is no action that copies a value: it is read again.
    if (wanted == Wanted::Value) value(target);
}

} // namespace swfc::actionscript
