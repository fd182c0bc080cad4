#include "script/vbscript/Errors.h"
#include "script/vbscript/FunctionCompiler.h"
#include "script/vbscript/Operators.h"

namespace script::vbscript
{

using Kind = Expression::Kind;

std::uint8_t FunctionCompiler::literals(const Expression* left, const Expression* right)
{
    const auto isLiteral = [](const Expression* expression) {
        // A sign in front does not make a number less of a literal.
        while (expression->kind == Kind::Unary && expression->operation != Operator::Not)
            expression = expression->left;
        return expression->kind == Kind::Literal;
    };
    return static_cast<std::uint8_t>((isLiteral(left) ? kLeftLiteral : 0) |
                                     (isLiteral(right) ? kRightLiteral : 0));
}

Result<void> FunctionCompiler::value(const Expression* expression)
{
    switch (expression->kind) {
    case Kind::Literal: emit(Op::Constant, 1, constant(expression->literal)); return {};
    case Kind::Missing: emit(Op::Constant, 1, constant(Value::missing())); return {};
    case Kind::Name: return name(expression, false);
    case Kind::Member: return member(expression, {}, 0);
    case Kind::Call: return call(expression, 0);
    case Kind::Me: emit(Op::Me, 1); return {};
    case Kind::New: emit(Op::New, 1, expression->name); return {};
    case Kind::Unary:
        CHECK_RESULT(value(expression->left));
        emit(opOf(expression->operation), 0);
        return {};
    case Kind::Binary: return binary(expression);
    }
    return {};
}

// Puts the reciprocal of a whole divisor behind it. @returns kHasReciprocal where there is one
std::uint8_t FunctionCompiler::reciprocal(Operator operation, std::uint32_t index)
{
    const bool divides = operation == Operator::IntegerDivide || operation == Operator::Modulo;
    const Value divisor = m_function.constants[index];
    const bool fits = divisor.type() == VarType::Integer || divisor.type() == VarType::Long;
    // By one it would need 65 bits. A constant that is used elsewhere as well has another one behind it.
    if (!divides || !fits || divisor.whole() < 2 || index + 1 != m_function.constants.size()) return 0;
    const std::uint64_t upwards = UINT64_MAX / static_cast<std::uint64_t>(divisor.whole()) + 1;
    constant(Value::currency(static_cast<std::int64_t>(upwards)));
    return kHasReciprocal;
}

/// Whether it is a literal or a local variable: nothing happens when it is read.
bool FunctionCompiler::isSimple(const Expression* expression)
{
    if (expression->kind == Kind::Literal) return true;
    return expression->kind == Kind::Name && place(expression->name).kind == Place::Kind::Local;
}

// A local variable and a simple operation: the variable need not pass through the stack. @returns whether it
// was one
bool FunctionCompiler::binaryOfLocal(const Expression* expression, Result<void>& outcome)
{
    const Expression* left = expression->left;
    const Expression* right = expression->right;
    Op op{};
    switch (expression->operation) {
    case Operator::Add: op = Op::AddToLocal; break;
    case Operator::Subtract: op = Op::SubtractFromLocal; break;
    case Operator::Multiply: op = Op::MultiplyLocalBy; break;
    default: return false;
    }
    const bool fits = left->kind == Kind::Name && isSimple(left) && right->kind == Kind::Binary &&
                      isSimple(right->left) && isSimple(right->right);
    if (!fits) return false;
    outcome = binary(right);
    if (outcome) emit(op, 0, place(left->name).index);
    return true;
}

// A chain of operators nests to the left, as long as the source is; it is walked without recursion.
Result<void> FunctionCompiler::binary(const Expression* expression)
{
    std::vector<const Expression*> chain;
    const Expression* first = expression;
    for (; first->kind == Kind::Binary; first = first->left) chain.push_back(first);
    // a + b * 2
    Result<void> outcome;
    if (binaryOfLocal(chain.back(), outcome)) {
        CHECK_RESULT(outcome);
        chain.pop_back();
    } else {
        CHECK_RESULT(value(first));
    }
    for (auto link = chain.rbegin(); link != chain.rend(); ++link) {
        const Operator operation = (*link)->operation;
        const std::uint8_t flags = literals((*link)->left, (*link)->right);
        const std::size_t before = m_function.code.size();
        CHECK_RESULT(value((*link)->right));
        const Instruction last = m_function.code.back();
        const bool simple = m_function.code.size() == before + 1 && isFusible(operation);
        if (simple && (last.op == Op::Local || last.op == Op::Constant)) {
            m_function.code.pop_back();
            const bool isConstant = last.op == Op::Constant;
            const int more = isConstant ? reciprocal(operation, last.a) : 0;
            emit(fused(isConstant ? Op::AddConstant : Op::AddLocal, operation), -1, last.a, 0,
                 static_cast<std::uint8_t>(flags | more));
        } else {
            emit(opOf(operation), -1, 0, 0, flags);
        }
    }
    return {};
}

Result<void> FunctionCompiler::name(const Expression* expression, bool byReference)
{
    const Place found = place(expression->name);
    switch (found.kind) {
    case Place::Kind::Local: emit(byReference ? Op::LocalRef : Op::Local, 1, found.index); return {};
    case Place::Kind::Constant: emit(Op::Constant, 1, found.index); return {};
    case Place::Kind::Global: emit(byReference ? Op::GlobalRef : Op::Global, 1, found.index); return {};
    case Place::Kind::Implicit: emit(byReference ? Op::ImplicitRef : Op::Implicit, 1, found.index); return {};
    case Place::Kind::Field: emit(byReference ? Op::FieldRef : Op::Field, 1, found.index); return {};
    case Place::Kind::Own: break;
    }
    Function* own = found.member->get ? found.member->get : found.member->call;
    if (!own) return failAt(error::kSyntax, expression->position);
    emit(Op::CallOwn, 1, callee(own));
    return {};
}

Result<void> FunctionCompiler::arguments(const std::vector<Expression*>& list, bool calleeIsVariable)
{
    if (!list.empty()) CHECK_RESULT(checkCount(list.size(), list.front()->position));
    for (const Expression* one : list) CHECK_RESULT(argument(one, calleeIsVariable));
    return {};
}

// Variables are handed over by reference, also those that stand in an array; everything else by value.
Result<void> FunctionCompiler::argument(const Expression* expression, bool calleeIsVariable)
{
    if (expression->parenthesised || calleeIsVariable) return value(expression);
    if (expression->kind == Kind::Name) return name(expression, true);
    if (expression->kind == Kind::Call) return call(expression, kWantReference);
    return value(expression);
}

Result<void> FunctionCompiler::call(const Expression* expression, std::uint8_t flags)
{
    const Expression* target = expression->left;
    const auto& list = expression->arguments;
    const auto effect = 1 - static_cast<int>(list.size());
    if (target->kind == Kind::Member) return member(target, list, flags);
    if (target->kind != Kind::Name || target->parenthesised) {
        CHECK_RESULT(value(target));
        CHECK_RESULT(arguments(list, false));
        emit(Op::CallValue, effect - 1, 0, list.size(), flags);
        return {};
    }
    Place found = place(target->name);
    const bool recursion = isReturnName(target->name) && found.kind == Place::Kind::Local;
    if (recursion) {
        // name(...) inside the function of that name calls it again; inside a class, as its own member.
        found = m_function.owner ? Place{Place::Kind::Own, 0, nullptr, false} : global(target->name, false);
    }
    Function* own = nullptr;
    if (found.kind == Place::Kind::Own) {
        own = recursion ? &m_function : found.member->call ? found.member->call : found.member->get;
        if (!own) return failAt(error::kSyntax, target->position);
        // A property without parameters that answers an array or a collection: the arguments index that.
        if (own->kind == Procedure::Kind::PropertyGet && own->byReference.empty() && !list.empty()) {
            emit(Op::CallOwn, 1, callee(own));
            CHECK_RESULT(arguments(list, false));
            emit(Op::CallValue, effect - 1, 0, list.size(), flags);
            return {};
        }
    }
    CHECK_RESULT(arguments(list, found.kind == Place::Kind::Local || found.kind == Place::Kind::Field));
    switch (found.kind) {
    case Place::Kind::Local: emit(Op::CallLocal, effect, found.index, list.size(), flags); return {};
    case Place::Kind::Global: emit(Op::CallGlobal, effect, found.index, list.size(), flags); return {};
    case Place::Kind::Implicit: emit(Op::CallImplicit, effect, found.index, list.size(), flags); return {};
    case Place::Kind::Field: emit(Op::CallField, effect, found.index, list.size(), flags); return {};
    case Place::Kind::Constant: return failAt(error::kSyntax, target->position);
    case Place::Kind::Own: break;
    }
    emit(Op::CallOwn, effect, callee(own), list.size(), flags);
    return {};
}

// The object in front of a dot, or that of the With around.
Result<void> FunctionCompiler::object(const Expression* expression)
{
    const bool isLiteral = expression->left && expression->left->kind == Kind::Literal;
    if (expression->left && !isLiteral) return value(expression->left);
    // Fails when it runs, not before.
    if (isLiteral)
        emit(Op::Raise, 1, error::kObjectRequired);
    else if (m_withSlots.empty())
        emit(Op::Raise, 1, error::kUnqualifiedReference);
    else
        emit(Op::Local, 1, m_withSlots.back());
    return {};
}

Result<void> FunctionCompiler::member(const Expression* expression, const std::vector<Expression*>& list,
                                      std::uint8_t flags)
{
    CHECK_RESULT(object(expression));
    CHECK_RESULT(arguments(list, false));
    emit(Op::Member, -static_cast<int>(list.size()), site(expression->name, expression->left), list.size(),
         flags);
    return {};
}

} // namespace script::vbscript
