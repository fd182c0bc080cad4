#include "swfc/actionscript3/FunctionCompiler.h"

namespace swfc::actionscript3
{

void FunctionCompiler::arguments(const Expr* expr)
{
    for (const Expr* argument : expr->list) value(argument);
}

TypePtr FunctionCompiler::call(const Expr* expr, bool wanted)
{
    const auto& types = m_program.types();
    const Expr* callee = expr->a;
    const auto count = static_cast<std::uint32_t>(expr->list.size());
    if (callee->kind == ExprKind::Name && callee->qualifier == nullptr && !callee->isAttribute &&
        !callee->isAnyName)
        return callName(expr, wanted);
    if (callee->kind == ExprKind::Member || callee->kind == ExprKind::Index || callee->kind == ExprKind::Name)
        return callMember(expr, wanted);
    // The object a generic is called with becomes one of it.
    TypePtr type = types.any;
    if (callee->kind == ExprKind::Generic)
        type = m_program.vectorOf(m_program.resolve(callee->type, scope()));
    value(callee);
    m_code.op(Op::pushnull);
    arguments(expr);
    m_code.call(Op::call, count);
    if (!wanted)
        m_code.op(Op::pop);
    else if (type != types.any)
        m_code.op(Op::coerce, type->name);
    return type;
}

/// `int(value)` and its like are instructions.
TypePtr FunctionCompiler::conversion(const Expr* expr, const Place& place)
{
    const auto& types = m_program.types();
    if (place.definition != nullptr || !place.isKnown || place.isVariable ||
        place.kind != Place::Kind::Lexical || m_with > 0 || m_isWithin || expr->list.size() != 1)
        return nullptr;
    struct Conversion {
        std::string_view name;
        TypePtr type;
        Op op;
    };
    const Conversion conversions[] = {
        {"int", types.integer, Op::convert_i},   {"uint", types.uinteger, Op::convert_u},
        {"Number", types.number, Op::convert_d}, {"Boolean", types.boolean, Op::convert_b},
        {"String", types.string, Op::convert_s},
    };
    for (const Conversion& entry : conversions) {
        if (entry.name != expr->a->text) continue;
        if (value(expr->list[0]) != entry.type || entry.op == Op::convert_s) m_code.op(entry.op);
        return entry.type;
    }
    return nullptr;
}

TypePtr FunctionCompiler::callName(const Expr* expr, bool wanted)
{
    const auto& types = m_program.types();
    const auto count = static_cast<std::uint32_t>(expr->list.size());
    const Place place = resolve(expr->a->text);
    if (const TypePtr type = conversion(expr, place)) {
        if (!wanted) m_code.op(Op::pop);
        return type;
    }
    if (place.kind == Place::Kind::Register || place.kind == Place::Kind::Slot) {
        getPlace(place);
        m_code.op(Op::pushnull);
        arguments(expr);
        m_code.call(Op::call, count);
        if (!wanted) m_code.op(Op::pop);
        return types.any;
    }
    if (place.kind == Place::Kind::Member)
        m_code.getLocal(0);
    else
        m_code.op(Op::findpropstrict, place.name);
    arguments(expr);
    // What holds a variable of a function is not the `this` of what the variable holds.
    if (place.isVariable) {
        m_code.call(Op::callproplex, place.name, count);
        if (!wanted) m_code.op(Op::pop);
        return types.any;
    }
    m_code.call(wanted ? Op::callproperty : Op::callpropvoid, place.name, count);
    if (!wanted) return types.any;
    if (place.definition != nullptr && place.definition->kind == Definition::Kind::Class && count == 1) {
        m_code.op(Op::coerce, place.definition->cls->type->name);
        return place.definition->cls->type;
    }
    return place.result != nullptr && place.result->kind != Type::Kind::Void ? place.result : types.any;
}

TypePtr FunctionCompiler::callMember(const Expr* expr, bool wanted)
{
    const auto& types = m_program.types();
    const Expr* callee = expr->a;
    const auto count = static_cast<std::uint32_t>(expr->list.size());
    MemberName name;
    if (callee->kind == ExprKind::Member) {
        if (const auto found = packagedName(callee)) {
            m_code.op(Op::findpropstrict, found->name);
            arguments(expr);
            m_code.call(wanted ? Op::callproperty : Op::callpropvoid, found->name, count);
            return types.any;
        }
    }
    if (callee->kind != ExprKind::Name && callee->a->kind == ExprKind::Super) {
        const Target target = openTarget(callee);
        pushTarget(target);
        arguments(expr);
        m_code.call(wanted ? Op::callsuper : Op::callsupervoid, target.name.name, count, target.name.parts);
        closeTarget(target);
        return types.any;
    }
    if (callee->kind == ExprKind::Name) {
        const Target target = openTarget(callee);
        pushTarget(target);
        name = target.name;
        closeTarget(target);
    } else if (callee->kind == ExprKind::Index) {
        value(callee->a);
        value(callee->b);
        name = {runtimeName(), 1, types.any, false};
    } else {
        name = openMember(callee);
    }
    arguments(expr);
    m_code.call(wanted ? Op::callproperty : Op::callpropvoid, name.name, count, name.parts);
    return name.isMethod && name.type->kind != Type::Kind::Void ? name.type : types.any;
}

TypePtr FunctionCompiler::newObject(const Expr* expr)
{
    const auto& types = m_program.types();
    const Expr* what = expr->a;
    const auto count = static_cast<std::uint32_t>(expr->list.size());
    const bool isPlainName =
        what->kind == ExprKind::Name && what->qualifier == nullptr && !what->isAttribute && !what->isAnyName;
    Index name = 0;
    const Definition* definition = nullptr;
    if (isPlainName) {
        const Place place = resolve(what->text);
        if (place.kind == Place::Kind::Lexical) {
            name = place.name;
            definition = place.definition;
        }
    } else if (const auto found = packagedName(what)) {
        name = found->name;
        definition = found->definition;
    }
    if (name != 0) {
        m_code.op(Op::findpropstrict, name);
        arguments(expr);
        m_code.call(Op::constructprop, name, count);
        const bool isClass =
            definition != nullptr && definition->kind == Definition::Kind::Class && m_with == 0;
        if (isClass && definition->cls->declaration->isInterface)
            error(expr->where, "expected a class to make an object of, found the interface '" +
                                   definition->cls->name + "'");
        return isClass ? definition->cls->type : types.any;
    }
    if (what->kind == ExprKind::Member && what->a->kind != ExprKind::Super) {
        const MemberName member = openMember(what);
        arguments(expr);
        m_code.call(Op::constructprop, member.name, count, member.parts);
        return types.any;
    }
    value(what);
    arguments(expr);
    m_code.call(Op::construct, count);
    if (what->kind != ExprKind::Generic) return types.any;
    const TypePtr type = m_program.vectorOf(m_program.resolve(what->type, scope()));
    m_code.op(Op::coerce, type->name);
    return type;
}

} // namespace swfc::actionscript3
