#include "swfc/actionscript3/FunctionCompiler.h"

namespace swfc::actionscript3
{

/// Puts the object and the parts of the name into registers, so that both can be used twice.
FunctionCompiler::Target FunctionCompiler::openTarget(const Expr* expr)
{
    Target target;
    const auto keep = [&](std::uint32_t& reg) {
        reg = temporary();
        m_code.setLocal(reg);
    };
    const auto keepParts = [&] {
        for (int i = target.name.parts; i-- > 0;) keep(target.parts[i]);
    };
    if (expr->kind == ExprKind::Name) {
        target.name = identifier(expr, nullptr, false);
        keepParts();
        for (int i = 0; i < target.name.parts; ++i) m_code.getLocal(target.parts[i]);
        m_code.op(Op::findpropstrict, target.name.name, target.name.parts);
        keep(target.object);
        return target;
    }
    if (expr->a->kind == ExprKind::Super) {
        target.isSuper = true;
        if (expr->a->a != nullptr) {
            value(expr->a->a);
            keep(target.object);
        }
        if (expr->kind == ExprKind::Index) {
            value(expr->b);
            target.name = {runtimeName(), 1, m_program.types().any, false};
        } else {
            ClassSymbol* base = m_context.cls != nullptr ? m_program.baseOf(m_context.cls) : nullptr;
            target.name = identifier(expr, base != nullptr ? base->type : nullptr, false);
            // The base class knows its protected members by its own namespace.
            const Member* member =
                base == nullptr || expr->qualifier != nullptr || expr->b != nullptr
                    ? nullptr
                    : m_program.findMember(base, expr->text, false, open(), Member::Kind::Getter);
            if (member != nullptr) target.name.name = member->name;
        }
        keepParts();
        return target;
    }
    if (expr->kind == ExprKind::Index) {
        const TypePtr base = value(expr->a);
        keep(target.object);
        value(expr->b);
        target.name = {runtimeName(), 1,
                       base->kind == Type::Kind::Vector ? base->element : m_program.types().any, false};
        keep(target.parts[0]);
        return target;
    }
    // The object is kept before the parts of the name are computed.
    ClassSymbol* cls = nullptr;
    const TypePtr base = staticBase(expr->a, cls);
    keep(target.object);
    const Member* member = nullptr;
    if (cls != nullptr && expr->qualifier == nullptr && !expr->isAttribute && !expr->isAnyName &&
        expr->b == nullptr)
        member = m_program.findMember(cls, expr->text, true, open(), Member::Kind::Getter);
    if (member != nullptr)
        target.name = {memberQName(*member, expr->text), 0, member->type, false};
    else
        target.name = identifier(expr, base, false);
    keepParts();
    return target;
}

void FunctionCompiler::pushTarget(const Target& target)
{
    m_code.getLocal(target.object);
    for (int i = 0; i < target.name.parts; ++i) m_code.getLocal(target.parts[i]);
}

TypePtr FunctionCompiler::getTarget(const Target& target)
{
    m_code.op(target.isSuper ? Op::getsuper : Op::getproperty, target.name.name, target.name.parts);
    return target.name.isMethod ? m_program.types().function : target.name.type;
}

void FunctionCompiler::setTarget(const Target& target, bool wanted)
{
    std::uint32_t reg = 0;
    if (wanted) {
        reg = temporary();
        m_code.op(Op::dup);
        m_code.setLocal(reg);
    }
    m_code.op(target.isSuper    ? Op::setsuper
              : target.isFilled ? Op::initproperty
                                : Op::setproperty,
              target.name.name, target.name.parts);
    if (!wanted) return;
    m_code.getLocal(reg);
    release(reg);
}

void FunctionCompiler::closeTarget(const Target& target)
{
    for (const std::uint32_t reg : {target.object, target.parts[0], target.parts[1]}) {
        if (reg != 0) release(reg);
    }
}

namespace
{

bool isPlainName(const Expr* expr)
{
    return expr->kind == ExprKind::Name && expr->qualifier == nullptr && !expr->isAttribute &&
           !expr->isAnyName;
}

} // namespace

TypePtr FunctionCompiler::assign(const Expr* expr, bool wanted)
{
    if (expr->op != "=") return compound(expr, wanted);
    const Expr* target = expr->a;
    if (isPlainName(target)) {
        const Place place = resolve(target->text);
        if (place.isConst)
            error(target->where, "expected a variable, found the constant '" + target->text + "'");
        beginStore(place);
        valueAs(expr->b, place.type);
        endStore(place, wanted);
        return place.type;
    }
    return assignMember(expr, wanted);
}

TypePtr FunctionCompiler::assignMember(const Expr* expr, bool wanted)
{
    const Expr* target = expr->a;
    const auto& types = m_program.types();
    if (target->kind == ExprKind::Name || target->a->kind == ExprKind::Super) {
        const Target opened = openTarget(target);
        pushTarget(opened);
        const TypePtr type = value(expr->b);
        setTarget(opened, wanted);
        closeTarget(opened);
        return type;
    }
    TypePtr type = types.any;
    Target simple;
    if (target->kind == ExprKind::Index) {
        const TypePtr base = value(target->a);
        value(target->b);
        simple.name = {runtimeName(), 1, types.any, false};
        if (base->kind == Type::Kind::Vector) type = base->element;
    } else {
        ClassSymbol* cls = nullptr;
        const TypePtr base = staticBase(target->a, cls);
        const bool isPlain = target->qualifier == nullptr && !target->isAttribute && !target->isAnyName &&
                             target->b == nullptr;
        const Member* member = nullptr;
        if (cls != nullptr && isPlain) {
            member = m_program.findMember(cls, target->text, true, open(), Member::Kind::Setter);
            if (member != nullptr) simple.name = {memberQName(*member, target->text), 0, member->type, false};
        }
        if (member == nullptr) simple.name = identifier(target, base, true);
        if (isPlain && target->a->kind == ExprKind::This && m_context.cls != nullptr) {
            member = m_program.findMember(m_context.cls, target->text, false, open(), Member::Kind::Setter);
            simple.isFilled = member != nullptr && isFilledHere(*member);
        }
        type = simple.name.type;
    }
    if (target->kind == ExprKind::Descendants)
        error(target->where, "expected a member to assign to, found descendants");
    if (type == types.any)
        type = value(expr->b);
    else
        valueAs(expr->b, type);
    setTarget(simple, wanted);
    return type;
}

void FunctionCompiler::storeInto(const Expr* target, std::uint32_t reg, TypePtr type)
{
    if (isPlainName(target)) {
        const Place place = resolve(target->text);
        beginStore(place);
        m_code.getLocal(reg);
        coerce(place.type, type);
        endStore(place, false);
        return;
    }
    const Target opened = openTarget(target);
    pushTarget(opened);
    m_code.getLocal(reg);
    setTarget(opened, false);
    closeTarget(opened);
}

TypePtr FunctionCompiler::compound(const Expr* expr, bool wanted)
{
    const auto& types = m_program.types();
    const std::string_view op = expr->op.substr(0, expr->op.size() - 1);
    const bool isLogical = op == "&&" || op == "||";
    const auto compute = [&](TypePtr old) -> TypePtr {
        if (!isLogical) {
            const TypePtr right = value(expr->b);
            return operation(op, old, right);
        }
        const Label end = m_code.newLabel();
        coerce(types.any, old);
        m_code.op(Op::dup);
        m_code.jump(op == "&&" ? Op::iffalse : Op::iftrue, end);
        m_code.op(Op::pop);
        coerce(types.any, value(expr->b));
        m_code.mark(end);
        return types.any;
    };
    if (isPlainName(expr->a)) {
        const Place place = resolve(expr->a->text);
        if (place.isConst)
            error(expr->a->where, "expected a variable, found the constant '" + expr->a->text + "'");
        beginStore(place);
        const TypePtr old = getPlace(place);
        if (old->kind == Type::Kind::Int && (op == "+" || op == "-") && isIntSum(expr->b)) {
            intSum(expr->b);
            m_code.op(op == "+" ? Op::add_i : Op::subtract_i);
        } else {
            coerce(place.type, compute(old));
        }
        endStore(place, wanted);
        return place.type;
    }
    const Target target = openTarget(expr->a);
    pushTarget(target);
    pushTarget(target);
    const TypePtr type = compute(getTarget(target));
    setTarget(target, wanted);
    closeTarget(target);
    return type;
}

TypePtr FunctionCompiler::update(const Expr* expr, bool wanted)
{
    const auto& types = m_program.types();
    if (isPlainName(expr->a)) {
        const Place place = resolve(expr->a->text);
        if (place.isConst)
            error(expr->a->where, "expected a variable, found the constant '" + expr->a->text + "'");
        return updatePlace(expr, place, wanted);
    }
    const bool isPrefix = expr->kind == ExprKind::Prefix;
    const Target target = openTarget(expr->a);
    pushTarget(target);
    const TypePtr old = getTarget(target);
    if (!old->isNumeric()) m_code.op(Op::convert_d);
    const std::uint32_t reg = temporary();
    m_code.setLocal(reg);
    pushTarget(target);
    m_code.getLocal(reg);
    m_code.op(expr->op == "++" ? Op::increment : Op::decrement);
    if (isPrefix) {
        m_code.op(Op::dup);
        m_code.setLocal(reg);
    }
    Target plain = target;
    setTarget(plain, false);
    if (wanted) m_code.getLocal(reg);
    release(reg);
    closeTarget(target);
    return isPrefix ? types.number : old->isNumeric() ? old : types.number;
}

TypePtr FunctionCompiler::updatePlace(const Expr* expr, const Place& place, bool wanted)
{
    const auto& types = m_program.types();
    const bool isPrefix = expr->kind == ExprKind::Prefix, isUp = expr->op == "++";
    const bool isInt = place.type->kind == Type::Kind::Int;
    if (place.kind == Place::Kind::Register && (isInt || place.type->kind == Type::Kind::Number)) {
        if (wanted && !isPrefix) m_code.getLocal(place.number);
        if (isInt)
            m_code.op(isUp ? Op::inclocal_i : Op::declocal_i, place.number);
        else
            m_code.op(isUp ? Op::inclocal : Op::declocal, place.number);
        if (wanted && isPrefix) m_code.getLocal(place.number);
        return place.type;
    }
    const TypePtr old = getPlace(place);
    const TypePtr counted = old->isNumeric() ? old : types.number;
    if (counted != old) m_code.op(Op::convert_d);
    const std::uint32_t reg = temporary();
    m_code.setLocal(reg);
    beginStore(place);
    m_code.getLocal(reg);
    if (isInt)
        m_code.op(isUp ? Op::increment_i : Op::decrement_i);
    else
        m_code.op(isUp ? Op::increment : Op::decrement);
    coerce(place.type, isInt ? types.integer : types.number);
    if (isPrefix) {
        endStore(place, wanted);
        release(reg);
        return place.type;
    }
    endStore(place, false);
    if (wanted) m_code.getLocal(reg);
    release(reg);
    return counted;
}

} // namespace swfc::actionscript3
