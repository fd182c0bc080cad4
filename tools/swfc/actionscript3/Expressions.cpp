#include "swfc/actionscript3/FunctionCompiler.h"

#include <cmath>

namespace swfc::actionscript3
{
namespace
{

struct Comparison {
    std::string_view op;
    Op compute, jumpIf, jumpIfNot;
    bool negated; ///< the computed value is the contrary
};
constexpr Comparison kComparisons[] = {
    {"<", Op::lessthan, Op::iflt, Op::ifnlt, false},
    {"<=", Op::lessequals, Op::ifle, Op::ifnle, false},
    {">", Op::greaterthan, Op::ifgt, Op::ifngt, false},
    {">=", Op::greaterequals, Op::ifge, Op::ifnge, false},
    {"==", Op::equals, Op::ifeq, Op::ifne, false},
    {"!=", Op::equals, Op::ifne, Op::ifeq, true},
    {"===", Op::strictequals, Op::ifstricteq, Op::ifstrictne, false},
    {"!==", Op::strictequals, Op::ifstrictne, Op::ifstricteq, true},
};
const Comparison* comparison(std::string_view op)
{
    for (const Comparison& entry : kComparisons) {
        if (entry.op == op) return &entry;
    }
    return nullptr;
}

} // namespace

void FunctionCompiler::coerce(TypePtr to, TypePtr from)
{
    if (to == from) return;
    switch (to->kind) {
    case Type::Kind::Any: m_code.op(Op::coerce_a); return;
    case Type::Kind::Void: return;
    case Type::Kind::Int: m_code.op(Op::convert_i); return;
    case Type::Kind::Uint: m_code.op(Op::convert_u); return;
    case Type::Kind::Number: m_code.op(Op::convert_d); return;
    case Type::Kind::Boolean: m_code.op(Op::convert_b); return;
    case Type::Kind::String: m_code.op(Op::coerce_s); return;
    case Type::Kind::Object: m_code.op(Op::coerce_o); return;
    case Type::Kind::Class:
    case Type::Kind::Vector:
    case Type::Kind::Other: m_code.op(Op::coerce, to->name); return;
    }
}

TypePtr FunctionCompiler::number(double value, bool isInteger)
{
    const auto& types = m_program.types();
    const bool isWhole = value >= -2147483648.0 && value <= 2147483647.0 && value == std::trunc(value) &&
                         !(value == 0 && std::signbit(value));
    if (isWhole) {
        const auto number = static_cast<std::int32_t>(value);
        m_code.pushInt(number, number >= -128 && number <= 32767 ? 0 : m_program.abc.integer(number));
        return types.integer;
    }
    if (isInteger && !std::signbit(value) && value <= 4294967295.0) {
        m_code.op(Op::pushuint, m_program.abc.uinteger(static_cast<std::uint32_t>(value)));
        return types.uinteger;
    }
    m_code.op(Op::pushdouble, m_program.abc.number(value));
    return types.number;
}

/// Whether a value is a sum of int values, which may be added as such when only an int is wanted of it.
bool FunctionCompiler::isIntSum(const Expr* expr)
{
    // Deeper ones are rare and would have to be looked at again and again.
    constexpr int kDeepestSum = 16;
    if (expr->depth > kDeepestSum) return false;
    if (expr->kind == ExprKind::Number) return expr->isInteger && expr->number <= 2147483647.0;
    if (expr->kind == ExprKind::Name && expr->qualifier == nullptr && !expr->isAttribute &&
        expr->b == nullptr) {
        const Place place = resolve(expr->text);
        return place.kind == Place::Kind::Register && place.type->kind == Type::Kind::Int;
    }
    return expr->kind == ExprKind::Binary && (expr->op == "+" || expr->op == "-") && isIntSum(expr->a) &&
           isIntSum(expr->b);
}

void FunctionCompiler::intSum(const Expr* expr)
{
    if (expr->kind != ExprKind::Binary) {
        value(expr);
        return;
    }
    intSum(expr->a);
    intSum(expr->b);
    m_code.op(expr->op == "+" ? Op::add_i : Op::subtract_i);
}

void FunctionCompiler::valueAs(const Expr* expr, TypePtr type)
{
    switch (type->kind) {
    case Type::Kind::Number:
        if (expr->kind == ExprKind::Number) {
            m_code.op(Op::pushdouble, m_program.abc.number(expr->number));
            return;
        }
        break;
    case Type::Kind::Int:
        if (expr->kind == ExprKind::Binary && isIntSum(expr)) {
            intSum(expr);
            return;
        }
        break;
    default: break;
    }
    if (expr->kind == ExprKind::Conditional && type->kind != Type::Kind::Void) {
        const Label otherwise = m_code.newLabel(), end = m_code.newLabel();
        condition(expr->a, otherwise, false);
        valueAs(expr->b, type);
        m_code.jump(Op::jump, end);
        m_code.mark(otherwise);
        valueAs(expr->c, type);
        m_code.mark(end);
        return;
    }
    coerce(type, value(expr));
}

TypePtr FunctionCompiler::value(const Expr* expr)
{
    const auto& types = m_program.types();
    switch (expr->kind) {
    case ExprKind::Number: return number(expr->number, expr->isInteger);
    case ExprKind::String: m_code.op(Op::pushstring, m_program.abc.string(expr->text)); return types.string;
    case ExprKind::RegExp: return regExp(expr);
    case ExprKind::True: m_code.op(Op::pushtrue); return types.boolean;
    case ExprKind::False: m_code.op(Op::pushfalse); return types.boolean;
    case ExprKind::Null: m_code.op(Op::pushnull); return types.any;
    case ExprKind::This:
        m_code.getLocal(0);
        return (m_kind == Kind::Method || m_kind == Kind::Constructor) && !m_context.isStatic
                   ? m_context.cls->type
                   : types.any;
    case ExprKind::Super: error(expr->where, "expected a member of 'super'"); return types.any;
    case ExprKind::Name: return nameValue(expr);
    case ExprKind::Array: return arrayLiteral(expr);
    case ExprKind::Vector: return vectorLiteral(expr);
    case ExprKind::Object: return objectLiteral(expr);
    case ExprKind::Function: return functionExpression(expr);
    case ExprKind::Unary: return unary(expr);
    case ExprKind::Prefix:
    case ExprKind::Postfix: return update(expr, true);
    case ExprKind::Binary: return binary(expr);
    case ExprKind::Conditional: return conditional(expr);
    case ExprKind::Assign: return assign(expr, true);
    case ExprKind::Comma: effect(expr->a); return value(expr->b);
    case ExprKind::Member: return member(expr);
    case ExprKind::Descendants: {
        value(expr->a);
        const MemberName name = identifier(expr, nullptr, false);
        m_code.op(Op::getdescendants, name.name, name.parts);
        return types.any;
    }
    case ExprKind::Index: return index(expr);
    case ExprKind::Filter: return filter(expr);
    case ExprKind::Call: return call(expr, true);
    case ExprKind::New: return newObject(expr);
    case ExprKind::Generic: return generic(expr);
    case ExprKind::Xml:
    case ExprKind::XmlList: return xml(expr);
    }
    return types.any;
}

void FunctionCompiler::effect(const Expr* expr)
{
    switch (expr->kind) {
    case ExprKind::Prefix:
    case ExprKind::Postfix: update(expr, false); return;
    case ExprKind::Assign: assign(expr, false); return;
    case ExprKind::Call: call(expr, false); return;
    case ExprKind::Comma:
        effect(expr->a);
        effect(expr->b);
        return;
    default: break;
    }
    value(expr);
    m_code.op(Op::pop);
}

void FunctionCompiler::condition(const Expr* expr, Label target, bool when)
{
    if (expr->kind == ExprKind::Unary && expr->op == "!") {
        condition(expr->a, target, !when);
        return;
    }
    if (expr->kind == ExprKind::True || expr->kind == ExprKind::False) {
        if ((expr->kind == ExprKind::True) == when) m_code.jump(Op::jump, target);
        return;
    }
    if (expr->kind == ExprKind::Binary) {
        if (expr->op == "&&" || expr->op == "||") {
            if ((expr->op == "||") == when) {
                condition(expr->a, target, when);
                condition(expr->b, target, when);
            } else {
                const Label on = m_code.newLabel();
                condition(expr->a, on, !when);
                condition(expr->b, target, when);
                m_code.mark(on);
            }
            return;
        }
        if (const Comparison* found = comparison(expr->op)) {
            value(expr->a);
            value(expr->b);
            m_code.jump(when ? found->jumpIf : found->jumpIfNot, target);
            return;
        }
    }
    value(expr);
    m_code.jump(when ? Op::iftrue : Op::iffalse, target);
}

TypePtr FunctionCompiler::unary(const Expr* expr)
{
    const auto& types = m_program.types();
    if (expr->op == "delete") return deleteOperator(expr->a);
    if (expr->op == "void") {
        effect(expr->a);
        m_code.op(Op::pushundefined);
        return types.any;
    }
    if (expr->op == "-" && expr->a->kind == ExprKind::Number)
        return number(-expr->a->number, expr->a->isInteger);
    const TypePtr type = value(expr->a);
    if (expr->op == "!") {
        m_code.op(Op::not_);
        return types.boolean;
    }
    if (expr->op == "~") {
        m_code.op(Op::bitnot);
        return types.integer;
    }
    if (expr->op == "typeof") {
        m_code.op(Op::typeof_);
        return types.string;
    }
    if (expr->op == "-") {
        m_code.op(Op::negate);
        return types.number;
    }
    if (type->isNumeric()) return type;
    m_code.op(Op::convert_d);
    return types.number;
}

TypePtr FunctionCompiler::deleteOperator(const Expr* target)
{
    const auto& types = m_program.types();
    switch (target->kind) {
    case ExprKind::Name: {
        const Place place = resolve(target->text);
        if (place.kind == Place::Kind::Register || place.kind == Place::Kind::Slot) {
            m_code.op(Op::pushfalse); // variables stay
            return types.boolean;
        }
        if (place.kind == Place::Kind::Member)
            m_code.getLocal(0);
        else
            m_code.op(Op::findproperty, place.name);
        m_code.op(Op::deleteproperty, place.name);
        return types.boolean;
    }
    case ExprKind::Member:
    case ExprKind::Descendants: {
        value(target->a);
        const MemberName name = identifier(target, nullptr, false);
        m_code.op(Op::deleteproperty, name.name, name.parts);
        return types.boolean;
    }
    case ExprKind::Index:
        value(target->a);
        value(target->b);
        m_code.op(Op::deleteproperty, runtimeName(), 1);
        return types.boolean;
    default:
        effect(target);
        m_code.op(Op::pushtrue);
        return types.boolean;
    }
}

TypePtr FunctionCompiler::binary(const Expr* expr)
{
    const auto& types = m_program.types();
    if (expr->op == "&&" || expr->op == "||") return logical(expr);
    const TypePtr a = value(expr->a);
    const TypePtr b = value(expr->b);
    if (const Comparison* found = comparison(expr->op)) {
        m_code.op(found->compute);
        if (found->negated) m_code.op(Op::not_);
        return types.boolean;
    }
    if (expr->op == "is" || expr->op == "as" || expr->op == "instanceof" || expr->op == "in") {
        if (expr->op == "in" || expr->op == "instanceof") {
            m_code.op(expr->op == "in" ? Op::in : Op::instanceof_);
            return types.boolean;
        }
        m_code.op(expr->op == "is" ? Op::istypelate : Op::astypelate);
        if (expr->op == "is") return types.boolean;
        // What comes out is the class's, or null, as far as the class is known by its name.
        const auto found = packagedName(expr->b);
        if (found && found->definition != nullptr && found->definition->kind == Definition::Kind::Class) {
            m_code.op(Op::coerce, found->definition->cls->type->name);
            return found->definition->cls->type;
        }
        return types.any;
    }
    return operation(expr->op, a, b);
}

/// @param op an arithmetic operator, whose operands are on the stack
TypePtr FunctionCompiler::operation(std::string_view op, TypePtr a, TypePtr b)
{
    const auto& types = m_program.types();
    struct Operation {
        std::string_view text;
        Op op;
        TypePtr Program::BuiltIn::*type;
    };
    using BuiltIn = Program::BuiltIn;
    static constexpr Operation kOperations[] = {
        {"+", Op::add, nullptr},
        {"-", Op::subtract, &BuiltIn::number},
        {"*", Op::multiply, &BuiltIn::number},
        {"/", Op::divide, &BuiltIn::number},
        {"%", Op::modulo, &BuiltIn::number},
        {"<<", Op::lshift, &BuiltIn::integer},
        {">>", Op::rshift, &BuiltIn::integer},
        {">>>", Op::urshift, &BuiltIn::uinteger},
        {"&", Op::bitand_, &BuiltIn::integer},
        {"|", Op::bitor_, &BuiltIn::integer},
        {"^", Op::bitxor, &BuiltIn::integer},
    };
    for (const Operation& entry : kOperations) {
        if (entry.text != op) continue;
        m_code.op(entry.op);
        if (entry.type != nullptr) return types.*entry.type;
        if (a->isNumeric() && b->isNumeric()) return types.number;
        // Texts may be null, but a sum with one is a text.
        return a == types.string || b == types.string ? types.string : types.any;
    }
    return types.any;
}

TypePtr FunctionCompiler::logical(const Expr* expr)
{
    const Label end = m_code.newLabel();
    coerce(m_program.types().any, value(expr->a));
    m_code.op(Op::dup);
    m_code.jump(expr->op == "&&" ? Op::iffalse : Op::iftrue, end);
    m_code.op(Op::pop);
    coerce(m_program.types().any, value(expr->b));
    m_code.mark(end);
    return m_program.types().any;
}

TypePtr FunctionCompiler::conditional(const Expr* expr)
{
    valueAs(expr, m_program.types().any);
    return m_program.types().any;
}

} // namespace swfc::actionscript3
