#include "swfc/actionscript3/Parser.h"

namespace swfc::actionscript3
{
namespace
{

struct BinaryOperator {
    std::string_view text;
    int precedence;
};
constexpr BinaryOperator kBinaryOperators[] = {
    {"||", 1},  {"&&", 2},  {"|", 3},          {"^", 4},  {"&", 5},  {"==", 6},  {"!=", 6},
    {"===", 6}, {"!==", 6}, {"<", 7},          {">", 7},  {"<=", 7}, {">=", 7},  {"is", 7},
    {"as", 7},  {"in", 7},  {"instanceof", 7}, {"<<", 8}, {">>", 8}, {">>>", 8}, {"+", 9},
    {"-", 9},   {"*", 10},  {"/", 10},         {"%", 10},
};
constexpr std::string_view kAssignments[] = {
    "=", "+=", "-=", "*=", "/=", "%=", "<<=", ">>=", ">>>=", "&=", "|=", "^=", "&&=", "||="};
constexpr std::string_view kUnaryOperators[] = {"+", "-", "!", "~", "typeof", "void", "delete", "++", "--"};

} // namespace

Expr* Parser::expression()
{
    Expr* left = assignment();
    while (is(",")) {
        Expr* node = makeExpr(ExprKind::Comma);
        readOn();
        node->a = left;
        node->b = assignment();
        left = chain(node, {node->a, node->b});
    }
    return left;
}

bool Parser::assignable(const Expr* target)
{
    switch (target->kind) {
    case ExprKind::Name:
    case ExprKind::Member:
    case ExprKind::Descendants:
    case ExprKind::Index: return true;
    default: return false;
    }
}

Expr* Parser::assignment()
{
    const Level level(*this);
    Expr* left = conditional();
    for (const std::string_view op : kAssignments) {
        if (!is(op)) continue;
        if (!assignable(left)) fail("a variable or member before the assignment sign");
        Expr* node = makeExpr(ExprKind::Assign);
        readOn();
        node->op = op;
        node->a = left;
        node->b = assignment();
        return chain(node, {node->a, node->b});
    }
    return left;
}

Expr* Parser::conditional()
{
    Expr* test = binary(1);
    if (!is("?")) return test;
    Expr* node = makeExpr(ExprKind::Conditional);
    readOn();
    node->a = test;
    const bool noIn = m_noIn;
    m_noIn = false;
    node->b = assignment();
    m_noIn = noIn;
    expect(":", "between the two values of a condition");
    node->c = assignment();
    return chain(node, {node->a, node->b, node->c});
}

Expr* Parser::binary(int lowest)
{
    Expr* left = unary();
    for (;;) {
        const BinaryOperator* found = nullptr;
        for (const BinaryOperator& op : kBinaryOperators) {
            if (is(op.text)) found = &op;
        }
        if (found == nullptr || found->precedence < lowest || (m_noIn && found->text == "in")) return left;
        Expr* node = makeExpr(ExprKind::Binary);
        readOn();
        node->op = found->text;
        node->a = left;
        node->b = binary(found->precedence + 1);
        left = chain(node, {node->a, node->b});
    }
}

Expr* Parser::unary()
{
    for (const std::string_view op : kUnaryOperators) {
        if (!is(op)) continue;
        const Level level(*this);
        const bool counts = op == "++" || op == "--";
        Expr* node = makeExpr(counts ? ExprKind::Prefix : ExprKind::Unary);
        readOn();
        node->op = op;
        node->a = unary();
        if (counts && !assignable(node->a)) fail("a variable or member after '" + std::string(op) + "'");
        return chain(node, {node->a});
    }
    return postfix();
}

Expr* Parser::postfix()
{
    Expr* base = suffixes(primary(), true);
    for (const std::string_view op : {std::string_view("++"), std::string_view("--")}) {
        if (!is(op) || m_token.newlineBefore) continue;
        if (!assignable(base)) fail("a variable or member before '" + std::string(op) + "'");
        Expr* node = makeExpr(ExprKind::Postfix);
        readOn();
        node->op = op;
        node->a = base;
        return chain(node, {base});
    }
    return base;
}

void Parser::arguments(Expr* call)
{
    const bool noIn = m_noIn;
    m_noIn = false;
    expect("(", "before the arguments");
    while (!is(")") && !m_failed) {
        call->list.push_back(assignment());
        chain(call, {call->list.back()});
        if (!accept(",")) break;
    }
    m_noIn = noIn;
    expect(")", "after the arguments");
}

/// What follows a dot: `name`, `*`, `@name`, `ns::name`, `@[...]`.
void Parser::identifier(Expr* node)
{
    if (accept("@")) {
        node->isAttribute = true;
        if (is("[")) {
            readOn();
            node->b = expression();
            expect("]", "after the name of an attribute");
            chain(node, {node->b});
            return;
        }
    }
    if (accept("*")) {
        node->isAnyName = true;
    } else if (m_token.kind == Token::Kind::Name || m_token.kind == Token::Kind::Keyword) {
        node->text = next().text;
    } else {
        fail("a name after the dot");
        return;
    }
    qualify(node);
}

/// Turns the identifier just read into the namespace of the one behind a `::`.
void Parser::qualify(Expr* node)
{
    if (!is("::")) return;
    Expr* qualifier = makeExpr(ExprKind::Name);
    qualifier->text = std::exchange(node->text, {});
    qualifier->isAnyName = std::exchange(node->isAnyName, false);
    refer(qualifier->text);
    node->qualifier = qualifier;
    readOn();
    if (accept("*")) {
        node->isAnyName = true;
    } else if (is("[")) {
        readOn();
        node->b = expression();
        expect("]", "after the name");
        chain(node, {node->b});
    } else if (m_token.kind == Token::Kind::Name || m_token.kind == Token::Kind::Keyword) {
        node->text = next().text;
    } else {
        fail("a name after '::'");
    }
}

Expr* Parser::dotSuffix(Expr* base)
{
    readOn();
    if (is("(")) {
        Expr* node = makeExpr(ExprKind::Filter);
        node->a = base;
        // Names in the condition are sought in the element first.
        const Capture capture(*this);
        readOn();
        const bool noIn = m_noIn;
        m_noIn = false;
        node->b = expression();
        m_noIn = noIn;
        expect(")", "after the condition of a filter");
        return chain(node, {base, node->b});
    }
    Expr* node = makeExpr(ExprKind::Member);
    node->a = base;
    identifier(node);
    return chain(node, {base});
}

Expr* Parser::suffixes(Expr* base, bool calls)
{
    while (!m_failed) {
        Expr* node = nullptr;
        if (is(".")) {
            base = dotSuffix(base);
        } else if (is("..")) {
            node = makeExpr(ExprKind::Descendants);
            readOn();
            node->a = base;
            identifier(node);
            base = chain(node, {base});
        } else if (is("[")) {
            node = makeExpr(ExprKind::Index);
            readOn();
            const bool noIn = m_noIn;
            m_noIn = false;
            node->a = base;
            node->b = expression();
            m_noIn = noIn;
            expect("]", "after the index");
            base = chain(node, {node->a, node->b});
        } else if (is(".<")) {
            node = makeExpr(ExprKind::Generic);
            readOn();
            node->a = base;
            node->type = typeExpr();
            closeAngle();
            base = chain(node, {base});
        } else if (calls && is("(")) {
            node = makeExpr(ExprKind::Call);
            node->a = base;
            node->where = base->where;
            arguments(node);
            base = chain(node, {base});
        } else {
            return base;
        }
    }
    return base;
}

Expr* Parser::newExpression()
{
    const Level level(*this);
    Expr* node = makeExpr(ExprKind::New);
    readOn();
    if (is("<")) {
        node->kind = ExprKind::Vector;
        readOn();
        node->type = typeExpr();
        closeAngle();
        const Expr* elements = arrayLiteral();
        node->list = elements->list;
        return chain(node, {elements});
    }
    node->a = is("new") ? newExpression() : suffixes(primary(), false);
    if (is("(")) arguments(node);
    return chain(node, {node->a});
}

Expr* Parser::arrayLiteral()
{
    const Level level(*this);
    Expr* node = makeExpr(ExprKind::Array);
    const bool noIn = m_noIn;
    m_noIn = false;
    expect("[", "before the elements");
    while (!is("]") && !m_failed) {
        if (accept(",")) {
            node->list.push_back(nullptr);
            continue;
        }
        node->list.push_back(assignment());
        chain(node, {node->list.back()});
        if (!is("]")) expect(",", "between elements");
    }
    m_noIn = noIn;
    expect("]", "after the elements");
    return node;
}

Expr* Parser::objectLiteral()
{
    const Level level(*this);
    Expr* node = makeExpr(ExprKind::Object);
    const bool noIn = m_noIn;
    m_noIn = false;
    expect("{", "before the members");
    while (!is("}") && !m_failed) {
        if (m_token.kind == Token::Kind::End || m_token.kind == Token::Kind::Punctuator) {
            fail("a name");
            break;
        }
        node->names.push_back(next().text);
        expect(":", "after the name");
        node->list.push_back(assignment());
        chain(node, {node->list.back()});
        if (!accept(",")) break;
    }
    m_noIn = noIn;
    expect("}", "after the members");
    return node;
}

Expr* Parser::wordPrimary()
{
    struct Word {
        std::string_view text;
        ExprKind kind;
    };
    static constexpr Word kWords[] = {{"true", ExprKind::True},
                                      {"false", ExprKind::False},
                                      {"null", ExprKind::Null},
                                      {"this", ExprKind::This}};
    for (const Word& word : kWords) {
        if (!is(word.text)) continue;
        Expr* node = makeExpr(word.kind);
        readOn();
        return node;
    }
    if (is("new")) return newExpression();
    if (is("function")) {
        Expr* node = makeExpr(ExprKind::Function);
        readOn();
        node->function = function(nullptr, true, true);
        return node;
    }
    if (is("super")) {
        Expr* node = makeExpr(ExprKind::Super);
        readOn();
        if (is("(")) {
            readOn();
            node->a = expression();
            expect(")", "after the object");
        }
        return node;
    }
    // Namespaces of the language qualify names.
    if (is("public") || is("private") || is("protected") || is("internal")) {
        Expr* node = makeExpr(ExprKind::Name);
        node->text = next().text;
        if (!is("::")) fail("'::' after the namespace");
        qualify(node);
        return node;
    }
    fail("an expression");
    return makeExpr(ExprKind::Null);
}

Expr* Parser::primary()
{
    const Level level(*this);
    Expr* node = nullptr;
    switch (m_token.kind) {
    case Token::Kind::Number:
        node = makeExpr(ExprKind::Number);
        node->number = m_token.number;
        node->isInteger = m_token.isInteger;
        readOn();
        return node;
    case Token::Kind::String:
        node = makeExpr(ExprKind::String);
        node->text = next().text;
        return node;
    case Token::Kind::Name:
        node = makeExpr(ExprKind::Name);
        node->text = next().text;
        if (!is("::")) refer(node->text);
        qualify(node);
        return node;
    case Token::Kind::Keyword: return wordPrimary();
    default: break;
    }
    if (accept("(")) {
        const bool noIn = m_noIn;
        m_noIn = false;
        node = expression();
        m_noIn = noIn;
        expect(")", "after the expression");
        return node;
    }
    if (is("[")) return arrayLiteral();
    if (is("{")) return objectLiteral();
    if (is("@")) {
        node = makeExpr(ExprKind::Name);
        identifier(node);
        return node;
    }
    if (is("*") && lookAhead().text == "::") {
        node = makeExpr(ExprKind::Name);
        identifier(node);
        return node;
    }
    if (is("/") || is("/=")) {
        node = makeExpr(ExprKind::RegExp);
        const Token token = m_lexer.regExp(m_token);
        node->text = token.text;
        node->flags = token.flags;
        readOn();
        return node;
    }
    if (is("<")) return xmlLiteral();
    fail("an expression");
    return makeExpr(ExprKind::Null);
}

} // namespace swfc::actionscript3
