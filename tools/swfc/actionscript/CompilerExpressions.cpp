#include "swfc/actionscript/Compiler.h"

namespace swfc::actionscript
{

/// Leaves one value on the stack.
void Compiler::value(const Expr* expr)
{
    m_asm.at(expr->where);
    if (m_version == 4 && slashName(expr)) {
        slashValue(expr);
        return;
    }
    switch (expr->kind) {
    case ExprKind::Number:
        if (m_version == 4)
            m_asm.push(numberText(expr->number));
        else
            m_asm.push(expr->number);
        break;
    case ExprKind::String: m_asm.push(expr->text); break;
    case ExprKind::True:
    case ExprKind::False:
        if (m_version == 4)
            m_asm.push(expr->kind == ExprKind::True ? "1" : "0");
        else
            m_asm.push(expr->kind == ExprKind::True);
        break;
    case ExprKind::Null:
    case ExprKind::Undefined:
        if (m_version == 4)
            m_asm.push("");
        else if (expr->kind == ExprKind::Null)
            m_asm.push(NullValue{});
        else
            m_asm.push(UndefinedValue{});
        break;
    case ExprKind::This: nameValue("this", expr->where); break;
    case ExprKind::Super: nameValue("super", expr->where); break;
    case ExprKind::Name: nameValue(expr->text, expr->where); break;
    case ExprKind::SlashPath:
        m_asm.push(expr->text);
        m_asm.op(Action::GetVariable);
        break;
    case ExprKind::Array: arrayLiteral(expr); break;
    case ExprKind::Object: objectLiteral(expr); break;
    case ExprKind::Function: functionExpression(*expr->function); break;
    case ExprKind::Unary: unary(expr); break;
    case ExprKind::Prefix:
    case ExprKind::Postfix: update(expr, Wanted::Value); break;
    case ExprKind::Binary: binary(expr); break;
    case ExprKind::Conditional: {
        const Label otherwise = m_asm.newLabel(), end = m_asm.newLabel();
        condition(expr->a, otherwise, false);
        value(expr->b);
        m_asm.branch(Action::Jump, end);
        m_asm.mark(otherwise);
        value(expr->c);
        m_asm.mark(end);
        break;
    }
    case ExprKind::Assign: assign(expr, Wanted::Value); break;
    case ExprKind::Comma:
        effect(expr->a);
        value(expr->b);
        break;
    case ExprKind::Member:
    case ExprKind::Index:
        if (!need(5, expr->where, "members of objects")) break;
        value(expr->a);
        memberKey(expr);
        m_asm.op(Action::GetMember);
        break;
    case ExprKind::Call:
        switch (builtin(expr, Wanted::Value)) {
        case Produced::NotBuiltin: call(expr); break;
        case Produced::Nothing:
            if (m_version == 4)
                m_asm.push("");
            else
                m_asm.push(UndefinedValue{});
            break;
        case Produced::Value: break;
        }
        break;
    case ExprKind::New: newObject(expr); break;
    }
}

/// Does what the expression does and leaves nothing.
void Compiler::effect(const Expr* expr)
{
    m_asm.at(expr->where);
    switch (expr->kind) {
    case ExprKind::Assign: assign(expr, Wanted::Effect); return;
    case ExprKind::Prefix:
    case ExprKind::Postfix: update(expr, Wanted::Effect); return;
    case ExprKind::Comma:
        effect(expr->a);
        effect(expr->b);
        return;
    case ExprKind::Call: {
        const Produced produced = builtin(expr, Wanted::Effect);
        if (produced == Produced::NotBuiltin) call(expr);
        if (produced != Produced::Nothing) m_asm.op(Action::Pop);
        return;
    }
    default: value(expr); m_asm.op(Action::Pop);
    }
}

/// Branches to `target` when the expression is as `when` says; goes on otherwise. Leaves nothing.
void Compiler::condition(const Expr* expr, Label target, bool when)
{
    m_asm.at(expr->where);
    if (expr->kind == ExprKind::Unary && expr->op == Tok::Not) {
        condition(expr->a, target, !when);
        return;
    }
    const bool both = expr->kind == ExprKind::Binary && expr->op == Tok::LogicalAnd && m_version > 4;
    const bool either = expr->kind == ExprKind::Binary && expr->op == Tok::LogicalOr && m_version > 4;
    if ((both && !when) || (either && when)) {
        condition(expr->a, target, when);
        condition(expr->b, target, when);
        return;
    }
    if (both || either) {
        const Label decided = m_asm.newLabel();
        condition(expr->a, decided, !when);
        condition(expr->b, target, when);
        m_asm.mark(decided);
        return;
    }
    value(expr);
    if (!when) m_asm.op(Action::Not);
    m_asm.branch(Action::If, target);
}

Compiler::Resolved Compiler::resolve(const std::string& name) const
{
    const auto cell = m_scope.registers.find(name);
    if (cell != m_scope.registers.end()) return {Resolved::Kind::Register, cell->second, {}};
    if (m_scope.method.className.empty()) return {};
    if (const Function* fn = m_scope.function) {
        if (fn->locals.contains(name) || fn->namedOnly.contains(name)) return {};
        for (const std::string& parameter : fn->parameters) {
            if (parameter == name) return {};
        }
    }
    const auto member = m_context.classes.find(m_scope.method.className, name);
    if (!member) return {};
    if (member->isStatic) return {Resolved::Kind::StaticMember, 0, member->owner};
    if (m_scope.method.isStatic) return {};
    return {Resolved::Kind::OwnMember, 0, {}};
}

void Compiler::nameValue(const std::string& name, Position where)
{
    if (name == "newline") {
        m_asm.push("\n");
        return;
    }
    const Resolved found = resolve(name);
    switch (found.kind) {
    case Resolved::Kind::Register: m_asm.push(Register{found.number}); return;
    case Resolved::Kind::OwnMember:
        nameValue("this", where);
        m_asm.push(name);
        m_asm.op(Action::GetMember);
        return;
    case Resolved::Kind::StaticMember:
        dottedValue(found.owner, false);
        m_asm.push(name);
        m_asm.op(Action::GetMember);
        return;
    case Resolved::Kind::Variable: break;
    }
    const auto imported = m_imports.find(name);
    if (imported != m_imports.end()) {
        dottedValue(imported->second, false);
        return;
    }
    m_asm.push(name);
    m_asm.op(Action::GetVariable);
}

/// Pushes what a dotted name leads to.
void Compiler::dottedValue(const std::string& name, bool fromGlobal)
{
    std::size_t start = 0;
    if (fromGlobal) {
        m_asm.push("_global");
        m_asm.op(Action::GetVariable);
    }
    while (start <= name.size()) {
        const std::size_t dot = std::min(name.find('.', start), name.size());
        m_asm.push(name.substr(start, dot - start));
        m_asm.op(start == 0 && !fromGlobal ? Action::GetVariable : Action::GetMember);
        start = dot + 1;
    }
}

void Compiler::callArguments(const std::vector<Expr*>& list)
{
    for (std::size_t i = list.size(); i-- > 0;) value(list[i]);
    m_asm.push(static_cast<double>(list.size()));
}

void Compiler::call(const Expr* expr)
{
    if (!need(5, expr->where, "calls of functions")) return;
    const Expr* callee = expr->a;
    if (callee->kind == ExprKind::Name) {
        const std::string& name = callee->text;
        const Resolved found = resolve(name);
        const std::string className = fullClassName(name);
        const bool isCast = found.kind == Resolved::Kind::Variable && expr->list.size() == 1 &&
                            m_version >= 7 && m_context.classes.contains(className);
        if (isCast) {
            dottedValue(className, false);
            value(expr->list[0]);
            m_asm.op(Action::CastOp);
            return;
        }
        callArguments(expr->list);
        m_asm.at(expr->where);
        switch (found.kind) {
        case Resolved::Kind::Variable:
            m_asm.push(name);
            m_asm.op(Action::CallFunction);
            return;
        case Resolved::Kind::Register:
            m_asm.push(Register{found.number});
            m_asm.push(UndefinedValue{});
            break;
        case Resolved::Kind::OwnMember:
            nameValue("this", expr->where);
            m_asm.push(name);
            break;
        case Resolved::Kind::StaticMember:
            dottedValue(found.owner, false);
            m_asm.push(name);
            break;
        }
        m_asm.op(Action::CallMethod);
        return;
    }
    callArguments(expr->list);
    calledMethod(callee);
    m_asm.at(expr->where);
    m_asm.op(Action::CallMethod);
}

/// What is called, as an object and the name of its method; a function itself has no name.
void Compiler::calledMethod(const Expr* callee)
{
    if (callee->kind == ExprKind::Member || callee->kind == ExprKind::Index) {
        value(callee->a);
        memberKey(callee);
    } else {
        value(callee);
        m_asm.push(UndefinedValue{});
    }
}

void Compiler::newObject(const Expr* expr)
{
    if (!need(5, expr->where, "'new'")) return;
    callArguments(expr->list);
    const Expr* callee = expr->a;
    if (callee->kind == ExprKind::Name) {
        const std::string className = fullClassName(callee->text);
        if (resolve(callee->text).kind == Resolved::Kind::Variable && className == callee->text) {
            m_asm.push(callee->text);
            m_asm.op(Action::NewObject);
            return;
        }
    }
    calledMethod(callee);
    m_asm.at(expr->where);
    m_asm.op(Action::NewMethod);
}

void Compiler::arrayLiteral(const Expr* expr)
{
    if (!need(5, expr->where, "array literals")) return;
    for (std::size_t i = expr->list.size(); i-- > 0;) {
        if (expr->list[i] != nullptr)
            value(expr->list[i]);
        else
            m_asm.push(UndefinedValue{});
    }
    m_asm.push(static_cast<double>(expr->list.size()));
    m_asm.op(Action::InitArray);
}

void Compiler::objectLiteral(const Expr* expr)
{
    if (!need(5, expr->where, "object literals")) return;
    for (std::size_t i = 0; i < expr->list.size(); ++i) {
        m_asm.push(expr->names[i]);
        value(expr->list[i]);
    }
    m_asm.push(static_cast<double>(expr->list.size()));
    m_asm.op(Action::InitObject);
}

} // namespace swfc::actionscript
