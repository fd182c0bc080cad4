#include "swfc/actionscript3/FunctionCompiler.h"

namespace swfc::actionscript3
{

TypePtr FunctionCompiler::regExp(const Expr* expr)
{
    const Index name = m_program.abc.qname(m_program.publicNs(), "RegExp");
    m_code.op(Op::findpropstrict, name);
    m_code.op(Op::pushstring, m_program.abc.string(expr->text));
    m_code.op(Op::pushstring, m_program.abc.string(expr->flags));
    m_code.call(Op::constructprop, name, 2);
    return m_program.types().any;
}

TypePtr FunctionCompiler::arrayLiteral(const Expr* expr)
{
    for (const Expr* element : expr->list) {
        if (element == nullptr)
            m_code.op(Op::pushundefined);
        else
            value(element);
    }
    m_code.call(Op::newarray, static_cast<std::uint32_t>(expr->list.size()));
    return m_program.types().array;
}

void FunctionCompiler::pushType(TypePtr type)
{
    if (type->kind == Type::Kind::Any) {
        m_code.op(Op::pushnull);
    } else if (type->kind == Type::Kind::Vector) {
        m_code.op(Op::getlex, m_program.abc.qname(m_program.publicNs("__AS3__.vec"), "Vector"));
        pushType(type->element);
        m_code.call(Op::applytype, 1);
    } else {
        m_code.op(Op::getlex, type->name);
    }
}

TypePtr FunctionCompiler::generic(const Expr* expr)
{
    value(expr->a);
    pushType(m_program.resolve(expr->type, scope()));
    m_code.call(Op::applytype, 1);
    return m_program.types().cls;
}

TypePtr FunctionCompiler::vectorLiteral(const Expr* expr)
{
    const TypePtr element = m_program.resolve(expr->type, scope());
    const TypePtr type = m_program.vectorOf(element);
    pushType(type);
    m_code.pushInt(static_cast<std::int32_t>(expr->list.size()),
                   m_program.abc.integer(static_cast<std::int32_t>(expr->list.size())));
    m_code.call(Op::construct, 1);
    m_code.op(Op::coerce, type->name);
    for (std::size_t i = 0; i < expr->list.size(); ++i) {
        if (expr->list[i] == nullptr) continue;
        m_code.op(Op::dup);
        number(static_cast<double>(i), true);
        valueAs(expr->list[i], element);
        m_code.op(Op::setproperty, runtimeName(), 1);
    }
    return type;
}

TypePtr FunctionCompiler::objectLiteral(const Expr* expr)
{
    for (std::size_t i = 0; i < expr->list.size(); ++i) {
        m_code.op(Op::pushstring, m_program.abc.string(expr->names[i]));
        value(expr->list[i]);
    }
    m_code.call(Op::newobject, static_cast<std::uint32_t>(expr->list.size()));
    return m_program.types().any;
}

TypePtr FunctionCompiler::functionExpression(const Expr* expr)
{
    const Function& fn = *expr->function;
    if (fn.name.empty() || !fn.namesItself) {
        m_code.op(Op::newfunction, closure(fn));
        return m_program.types().function;
    }
    // Its own name is seen within, and nowhere else.
    const Index name = m_program.abc.qname(m_program.publicNs(), fn.name);
    const std::uint32_t reg = temporary();
    m_code.call(Op::newobject, 0);
    m_code.op(Op::dup);
    m_code.setLocal(reg);
    m_code.op(Op::pushwith);
    m_catches.push_back({fn.name, true, reg, m_program.types().any});
    const Index method = closure(fn);
    m_catches.pop_back();
    m_code.op(Op::newfunction, method);
    m_code.op(Op::dup);
    m_code.getLocal(reg);
    m_code.op(Op::swap);
    m_code.op(Op::setproperty, name);
    m_code.op(Op::popscope);
    release(reg);
    return m_program.types().function;
}

} // namespace swfc::actionscript3
