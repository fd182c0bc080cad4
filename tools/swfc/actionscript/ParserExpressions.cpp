#include "swfc/actionscript/ParserState.h"

namespace swfc::actionscript
{
namespace
{

struct WordOperator {
    std::string_view word;
    Tok kind;
};
constexpr WordOperator kWordOperators[] = {
    {"add", Tok::WordAdd}, {"eq", Tok::WordEq},   {"ne", Tok::WordNe},
    {"lt", Tok::WordLt},   {"gt", Tok::WordGt},   {"le", Tok::WordLe},
    {"ge", Tok::WordGe},   {"and", Tok::WordAnd}, {"or", Tok::WordOr},
};

/// How tightly a binary operator binds; 0 for what is none.
int precedence(Tok op)
{
    switch (op) {
    case Tok::LogicalOr:
    case Tok::WordOr: return 1;
    case Tok::LogicalAnd:
    case Tok::WordAnd: return 2;
    case Tok::Or: return 3;
    case Tok::Xor: return 4;
    case Tok::And: return 5;
    case Tok::Equal:
    case Tok::NotEqual:
    case Tok::StrictEqual:
    case Tok::StrictNotEqual:
    case Tok::WordEq:
    case Tok::WordNe: return 6;
    case Tok::Less:
    case Tok::Greater:
    case Tok::LessEqual:
    case Tok::GreaterEqual:
    case Tok::WordLt:
    case Tok::WordGt:
    case Tok::WordLe:
    case Tok::WordGe:
    case Tok::InstanceOf: return 7;
    case Tok::WordAdd: return 8;
    case Tok::ShiftLeft:
    case Tok::ShiftRight:
    case Tok::ShiftRightUnsigned: return 9;
    case Tok::Plus:
    case Tok::Minus: return 10;
    case Tok::Star:
    case Tok::Slash:
    case Tok::Percent: return 11;
    default: return 0;
    }
}

bool isAssignment(Tok kind) { return kind >= Tok::Assign && kind <= Tok::XorAssign; }

} // namespace

Expr* ParserState::expression()
{
    Expr* left = assignment();
    while (is(Tok::Comma)) {
        Expr* node = makeExpr(ExprKind::Comma);
        next();
        node->a = left;
        node->b = assignment();
        left = chain(node, {node->a, node->b});
    }
    return left;
}

bool ParserState::assignable(const Expr* target)
{
    switch (target->kind) {
    case ExprKind::Name:
    case ExprKind::SlashPath:
    case ExprKind::Member:
    case ExprKind::Index: return true;
    // eval("name") = value is how variables were made before there were arrays.
    case ExprKind::Call: return target->a->kind == ExprKind::Name && target->a->text == "eval";
    default: return false;
    }
}

Expr* ParserState::assignment()
{
    const Level level(*this);
    Expr* left = conditional();
    if (!isAssignment(peek().kind)) return left;
    Expr* node = makeExpr(ExprKind::Assign);
    if (!assignable(left)) fail("a variable or member before the assignment sign");
    node->op = next().kind;
    node->a = left;
    node->b = assignment();
    return chain(node, {node->a, node->b});
}

Expr* ParserState::conditional()
{
    Expr* test = binary(1);
    if (!is(Tok::Question)) return test;
    Expr* node = makeExpr(ExprKind::Conditional);
    next();
    node->a = test;
    const bool noIn = m_noIn;
    m_noIn = false;
    node->b = assignment();
    m_noIn = noIn;
    expect(Tok::Colon, "between the two values of a condition");
    node->c = assignment();
    return chain(node, {node->a, node->b, node->c});
}

/// The operator at hand, or End. Operators that are words are names for the lexer.
Tok ParserState::binaryOperator() const
{
    const Token& token = peek();
    if (token.kind != Tok::Identifier) return precedence(token.kind) > 0 ? token.kind : Tok::End;
    if (token.newlineBefore) return Tok::End;
    for (const WordOperator& word : kWordOperators) {
        if (word.word == token.text) return word.kind;
    }
    return Tok::End;
}

Expr* ParserState::binary(int lowest)
{
    Expr* left = unary();
    while (true) {
        const Tok op = binaryOperator();
        const int binds = op == Tok::End ? 0 : precedence(op);
        if (binds < lowest || binds == 0) return left;
        Expr* node = makeExpr(ExprKind::Binary);
        next();
        node->op = op;
        node->a = left;
        node->b = binary(binds + 1);
        left = chain(node, {node->a, node->b});
        if (m_failed) return left;
    }
}

Expr* ParserState::unary()
{
    const Level level(*this);
    Tok op = peek().kind;
    if (isWord("not") && !peek(1).newlineBefore) {
        const Tok after = peek(1).kind;
        const bool operand = after == Tok::Identifier || after == Tok::Number || after == Tok::String ||
                             after == Tok::SlashPath || after == Tok::True || after == Tok::False ||
                             after == Tok::This || (after == Tok::LeftParen && m_version == 4);
        if (operand) op = Tok::WordNot;
    }
    switch (op) {
    case Tok::PlusPlus:
    case Tok::MinusMinus: {
        Expr* node = makeExpr(ExprKind::Prefix);
        next();
        node->op = op;
        node->a = unary();
        if (!assignable(node->a)) fail("a variable or member after " + std::string(spelling(op)));
        return chain(node, {node->a});
    }
    case Tok::Plus:
    case Tok::Minus:
    case Tok::Not:
    case Tok::WordNot:
    case Tok::Complement:
    case Tok::TypeOf:
    case Tok::Void:
    case Tok::Delete: {
        Expr* node = makeExpr(ExprKind::Unary);
        next();
        node->op = op == Tok::WordNot ? Tok::Not : op;
        node->a = unary();
        if (op == Tok::Delete && node->a->kind == ExprKind::Name) m_function->namedOnly.insert(node->a->text);
        return chain(node, {node->a});
    }
    default: return postfix();
    }
}

Expr* ParserState::postfix()
{
    Expr* base = suffixes(is(Tok::New) ? newExpression() : primary(), true);
    const Tok op = peek().kind;
    if ((op != Tok::PlusPlus && op != Tok::MinusMinus) || peek().newlineBefore) return base;
    Expr* node = makeExpr(ExprKind::Postfix);
    if (!assignable(base)) fail("a variable or member before " + std::string(spelling(op)));
    next();
    node->op = op;
    node->a = base;
    return chain(node, {base});
}

/// `new Name`, `new a.b.Name(arguments)`, `new (expression)(arguments)`; then calls and members may follow.
Expr* ParserState::newExpression()
{
    const Level level(*this);
    Expr* node = makeExpr(ExprKind::New);
    next();
    node->a = suffixes(is(Tok::New) ? newExpression() : primary(), false);
    if (is(Tok::LeftParen)) arguments(node);
    for (const Expr* argument : node->list) chain(node, {argument});
    return chain(node, {node->a});
}

Expr* ParserState::suffixes(Expr* base, bool calls)
{
    while (!m_failed) {
        if (is(Tok::Dot)) {
            Expr* node = makeExpr(ExprKind::Member);
            next();
            node->a = base;
            node->text = expectMemberName();
            base = chain(node, {base});
        } else if (is(Tok::LeftBracket)) {
            Expr* node = makeExpr(ExprKind::Index);
            next();
            node->a = base;
            const bool noIn = m_noIn;
            m_noIn = false;
            node->b = expression();
            m_noIn = noIn;
            expect(Tok::RightBracket, "after an index");
            base = chain(node, {base, node->b});
        } else if (is(Tok::LeftParen) && calls) {
            Expr* node = makeExpr(ExprKind::Call);
            node->a = base;
            arguments(node);
            noteCall(node);
            for (const Expr* argument : node->list) chain(node, {argument});
            base = chain(node, {base});
        } else {
            break;
        }
    }
    return base;
}

/// eval and set reach variables by names made at run time.
void ParserState::noteCall(const Expr* call)
{
    if (call->a->kind == ExprKind::Super) m_function->callsSuper = true;
    if (call->a->kind != ExprKind::Name) return;
    const std::string& name = call->a->text;
    if (name == "eval" || name == "set") m_function->dynamicScope = true;
}

void ParserState::arguments(Expr* call)
{
    const bool noIn = m_noIn;
    m_noIn = false;
    expect(Tok::LeftParen, "before arguments");
    if (!is(Tok::RightParen)) {
        do call->list.push_back(assignment());
        while (accept(Tok::Comma));
    }
    expect(Tok::RightParen, "after arguments");
    m_noIn = noIn;
}

Expr* ParserState::primary()
{
    const Token& token = peek();
    const auto simple = [&](ExprKind kind) {
        Expr* node = makeExpr(kind);
        node->text = token.text;
        node->number = token.number;
        next();
        return node;
    };
    switch (token.kind) {
    case Tok::Number: return simple(ExprKind::Number);
    case Tok::String: return simple(ExprKind::String);
    case Tok::SlashPath: return simple(ExprKind::SlashPath);
    case Tok::True: return simple(ExprKind::True);
    case Tok::False: return simple(ExprKind::False);
    case Tok::Null: return simple(ExprKind::Null);
    case Tok::Undefined: return simple(ExprKind::Undefined);
    case Tok::This: m_function->usesThis = true; return simple(ExprKind::This);
    case Tok::Super: m_function->usesSuper = true; return simple(ExprKind::Super);
    case Tok::Identifier: refer(token.text); return simple(ExprKind::Name);
    case Tok::LeftBracket: return arrayLiteral();
    case Tok::LeftBrace: return objectLiteral();
    case Tok::LeftParen: {
        const Level level(*this);
        next();
        const bool noIn = m_noIn;
        m_noIn = false;
        Expr* inner = expression();
        m_noIn = noIn;
        expect(Tok::RightParen, "after an expression");
        return inner;
    }
    case Tok::Function: {
        Expr* node = makeExpr(ExprKind::Function);
        next();
        std::string name;
        if (is(Tok::Identifier)) name = next().text;
        if (!name.empty()) m_function->namedOnly.insert(name);
        node->function = functionTail(std::move(name), node->where);
        return node;
    }
    default: fail("an expression"); return makeExpr(ExprKind::Undefined);
    }
}

Expr* ParserState::arrayLiteral()
{
    const Level level(*this);
    Expr* node = makeExpr(ExprKind::Array);
    expect(Tok::LeftBracket, "before elements");
    const bool noIn = m_noIn;
    m_noIn = false;
    while (!is(Tok::RightBracket) && !m_failed) {
        if (is(Tok::Comma))
            node->list.push_back(nullptr);
        else
            node->list.push_back(assignment());
        chain(node, {node->list.back()});
        if (!is(Tok::RightBracket)) expect(Tok::Comma, "or ']' after an element");
    }
    expect(Tok::RightBracket, "after elements");
    m_noIn = noIn;
    return node;
}

Expr* ParserState::objectLiteral()
{
    const Level level(*this);
    Expr* node = makeExpr(ExprKind::Object);
    expect(Tok::LeftBrace, "before members");
    const bool noIn = m_noIn;
    m_noIn = false;
    while (!is(Tok::RightBrace) && !m_failed) {
        if (is(Tok::String) || is(Tok::Number))
            node->names.push_back(next().text);
        else
            node->names.push_back(expectMemberName());
        expect(Tok::Colon, "after the name of a member");
        node->list.push_back(assignment());
        chain(node, {node->list.back()});
        if (!is(Tok::RightBrace)) expect(Tok::Comma, "or '}' after a member");
    }
    expect(Tok::RightBrace, "after members");
    m_noIn = noIn;
    return node;
}

/// Parameters and body. What the function refers to counts as captured by the one around it.
Function* ParserState::functionTail(std::string name, Position where)
{
    const Level level(*this);
    Function* outer = m_function;
    Function* inner = m_program.addFunction();
    inner->name = std::move(name);
    inner->where = where;
    const bool noIn = m_noIn;
    m_noIn = false;
    m_function = inner;
    expect(Tok::LeftParen, "before parameters");
    if (!is(Tok::RightParen)) {
        do {
            inner->parameters.push_back(expectName("the name of a parameter"));
            skipType();
        } while (accept(Tok::Comma));
    }
    expect(Tok::RightParen, "after parameters");
    skipType();
    if (expect(Tok::LeftBrace, "before the function's statements")) blockBody(inner->body);
    m_function = outer;
    m_noIn = noIn;
    outer->captured.insert(inner->references.begin(), inner->references.end());
    outer->references.insert(inner->references.begin(), inner->references.end());
    // A name made at run time in an inner function may be any of ours.
    outer->dynamicScope = outer->dynamicScope || inner->dynamicScope;
    return inner;
}

} // namespace swfc::actionscript
