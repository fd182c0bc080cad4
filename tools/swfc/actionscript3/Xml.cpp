#include "swfc/actionscript3/FunctionCompiler.h"

namespace swfc::actionscript3
{

/// The texts and values of a literal are joined, and the class reads the whole.
TypePtr FunctionCompiler::xml(const Expr* expr)
{
    const bool isList = expr->kind == ExprKind::XmlList;
    const Index name = m_program.abc.qname(m_program.publicNs(), isList ? "XMLList" : "XML");
    m_code.op(isList ? Op::getlex : Op::findpropstrict, name);
    if (isList) m_code.op(Op::pushnull);
    m_code.op(Op::pushstring, m_program.abc.string(expr->names[0]));
    for (std::size_t i = 0; i < expr->list.size(); ++i) {
        value(expr->list[i]);
        if (expr->parts[i] == XmlPart::Attribute) m_code.op(Op::esc_xattr);
        if (expr->parts[i] == XmlPart::Element) m_code.op(Op::esc_xelem);
        m_code.op(Op::add);
        m_code.op(Op::pushstring, m_program.abc.string(expr->names[i + 1]));
        m_code.op(Op::add);
    }
    if (isList)
        m_code.call(Op::call, 1);
    else
        m_code.call(Op::constructprop, name, 1);
    return m_program.types().any;
}

/// object.(condition): a new list of the elements for which the condition holds.
TypePtr FunctionCompiler::filter(const Expr* expr)
{
    const Label body = m_code.newLabel(), next = m_code.newLabel(), skip = m_code.newLabel();
    const std::uint32_t object = temporary(), position = temporary(), result = temporary(),
                        item = temporary();
    const Index list = m_program.abc.qname(m_program.publicNs(), "XMLList");
    value(expr->a);
    m_code.op(Op::checkfilter);
    m_code.op(Op::coerce_a);
    m_code.setLocal(object);
    m_code.op(Op::pushbyte, 0);
    m_code.setLocal(position);
    m_code.op(Op::getlex, list);
    m_code.op(Op::pushnull);
    m_code.op(Op::pushstring, m_program.abc.string(""));
    m_code.call(Op::call, 1);
    m_code.setLocal(result);
    m_code.jump(Op::jump, next);
    m_code.enteredFromBelow(body, next);
    m_code.markLoop(body);
    m_code.getLocal(object);
    m_code.getLocal(position);
    m_code.op(Op::nextvalue);
    m_code.op(Op::dup);
    m_code.setLocal(item);
    m_code.op(Op::pushwith);
    m_scopes.push_back({item, true});
    ++m_with;
    condition(expr->b, skip, false);
    --m_with;
    m_scopes.pop_back();
    m_code.getLocal(result);
    m_code.getLocal(position);
    m_code.getLocal(item);
    m_code.op(Op::setproperty, runtimeName(), 1);
    m_code.mark(skip);
    m_code.op(Op::popscope);
    m_code.mark(next);
    m_code.hasNext(object, position);
    m_code.jump(Op::iftrue, body);
    m_code.getLocal(result);
    release(object);
    release(position);
    release(result);
    release(item);
    return m_program.types().any;
}

} // namespace swfc::actionscript3
