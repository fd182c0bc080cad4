#include "script/vbscript/ExpressionParser.h"

#include "script/vbscript/Errors.h"

namespace script::vbscript
{

namespace
{

struct BinaryOperator {
    Operator operation;
    int precedence;
};

constexpr int kNotPrecedence = 6;
constexpr int kNegatePrecedence = 13;

// Higher binds tighter.
std::optional<BinaryOperator> binaryOperator(const Token& token)
{
    switch (token.kind) {
    case TokenKind::Equal: return BinaryOperator{Operator::Equal, 7};
    case TokenKind::NotEqual: return BinaryOperator{Operator::NotEqual, 7};
    case TokenKind::Less: return BinaryOperator{Operator::Less, 7};
    case TokenKind::Greater: return BinaryOperator{Operator::Greater, 7};
    case TokenKind::LessEqual: return BinaryOperator{Operator::LessEqual, 7};
    case TokenKind::GreaterEqual: return BinaryOperator{Operator::GreaterEqual, 7};
    case TokenKind::Concat: return BinaryOperator{Operator::Concat, 8};
    case TokenKind::Plus: return BinaryOperator{Operator::Add, 9};
    case TokenKind::Minus: return BinaryOperator{Operator::Subtract, 9};
    case TokenKind::IntegerDivide: return BinaryOperator{Operator::IntegerDivide, 11};
    case TokenKind::Times: return BinaryOperator{Operator::Multiply, 12};
    case TokenKind::Divide: return BinaryOperator{Operator::Divide, 12};
    case TokenKind::Power: return BinaryOperator{Operator::Power, 14};
    case TokenKind::Keyword: break;
    default: return std::nullopt;
    }
    switch (token.keyword) {
    case Keyword::Imp: return BinaryOperator{Operator::Imp, 1};
    case Keyword::Eqv: return BinaryOperator{Operator::Eqv, 2};
    case Keyword::Xor: return BinaryOperator{Operator::Xor, 3};
    case Keyword::Or: return BinaryOperator{Operator::Or, 4};
    case Keyword::And: return BinaryOperator{Operator::And, 5};
    case Keyword::Is: return BinaryOperator{Operator::Is, 7};
    case Keyword::Mod: return BinaryOperator{Operator::Modulo, 10};
    default: return std::nullopt;
    }
}

} // namespace

bool ExpressionParser::atStatementEnd() const
{
    switch (current().kind) {
    case TokenKind::EndOfFile:
    case TokenKind::EndOfLine:
    case TokenKind::Colon: return true;
    // Of a single-line If.
    case TokenKind::Keyword: return at(Keyword::Else) || at(Keyword::End);
    default: return false;
    }
}

Failed ExpressionParser::failAtToken(int number, const Token& token)
{
    auto failed = fault(number);
    failed.value()->line = token.line;
    failed.value()->column = token.column;
    return failed;
}

Result<void> ExpressionParser::expect(TokenKind kind, int number)
{
    if (!accept(kind)) return failHere(number);
    return {};
}

Result<void> ExpressionParser::expect(Keyword keyword, int number)
{
    if (!accept(keyword)) return failHere(number);
    return {};
}

Result<Symbol> ExpressionParser::identifier()
{
    if (!at(TokenKind::Identifier)) return failHere(error::kExpectedIdentifier);
    const Symbol name = m_names.intern(current().spelling);
    advance();
    return name;
}

Expression* ExpressionParser::node(Expression::Kind kind, const Token& token)
{
    Expression& made = m_tree->expressions.emplace_back();
    made.kind = kind;
    made.position = positionOf(token);
    return &made;
}

Expression* ExpressionParser::member(Expression* object, const Token& token)
{
    Expression* made = node(Expression::Kind::Member, token);
    made->left = object;
    made->name = m_names.intern(token.spelling);
    return made;
}

Expression* ExpressionParser::call(Expression* callee, std::vector<Expression*> arguments)
{
    Expression& made = m_tree->expressions.emplace_back();
    made.kind = Expression::Kind::Call;
    made.position = callee->position;
    made.left = callee;
    made.arguments = std::move(arguments);
    return &made;
}

Result<std::unique_ptr<Tree>> ExpressionParser::wholeExpression()
{
    accept(TokenKind::EndOfLine);
    const Position position = positionOf(current());
    // Nothing to evaluate is Empty.
    Expression* value =
        at(TokenKind::EndOfFile) ? node(Expression::Kind::Literal, current()) : TRY_RESULT(expression());
    accept(TokenKind::EndOfLine);
    if (!at(TokenKind::EndOfFile)) return failHere(error::kExpectedEndOfStatement);
    Statement& statement = m_tree->statements.emplace_back();
    statement.kind = Statement::Kind::Let;
    statement.position = position;
    statement.value = value;
    m_tree->body.push_back(&statement);
    return std::move(m_tree);
}

Result<Expression*> ExpressionParser::binary(int minimum)
{
    if (++m_depth > kMaxDepth) return failHere(error::kTooComplex);
    Expression* left = TRY_RESULT(unary());
    for (;;) {
        const auto found = binaryOperator(current());
        if (!found || found->precedence <= minimum) break;
        const Token& token = current();
        advance();
        Expression* right = TRY_RESULT(binary(found->precedence));
        Expression* made = node(Expression::Kind::Binary, token);
        made->operation = found->operation;
        made->left = left;
        made->right = right;
        left = made;
    }
    --m_depth;
    return left;
}

Result<Expression*> ExpressionParser::unary()
{
    const Token& token = current();
    std::optional<Operator> operation;
    int precedence = kNegatePrecedence;
    if (at(TokenKind::Minus)) operation = Operator::Negate;
    if (at(Keyword::Not) && at(TokenKind::Keyword)) {
        operation = Operator::Not;
        precedence = kNotPrecedence;
    }
    if (at(TokenKind::Plus)) {
        // Leaves its operand as it is, a text a text; only no longer a variable to be handed over.
        advance();
        Expression* operand = TRY_RESULT(binary(precedence));
        operand->parenthesised = true;
        return operand;
    }
    if (!operation) return primary();
    advance();
    Expression* operand = TRY_RESULT(binary(precedence));
    Expression* made = node(Expression::Kind::Unary, token);
    made->operation = *operation;
    made->left = operand;
    return made;
}

Result<Expression*> ExpressionParser::primary()
{
    const Token& token = current();
    switch (token.kind) {
    case TokenKind::Number:
    case TokenKind::String:
    case TokenKind::Date: {
        Expression* made = node(Expression::Kind::Literal, token);
        made->literal = token.value;
        advance();
        return made;
    }
    case TokenKind::LeftParen: {
        advance();
        Expression* inner = TRY_RESULT(expression());
        CHECK_RESULT(expect(TokenKind::RightParen, error::kExpectedRightParen));
        inner->parenthesised = true;
        return postfix(inner);
    }
    case TokenKind::Identifier:
    case TokenKind::LeadingDot: {
        Expression* named = TRY_RESULT(nameOrMember());
        return postfix(named);
    }
    case TokenKind::Keyword: break;
    default:
        return failHere(token.kind == TokenKind::EndOfLine || token.kind == TokenKind::EndOfFile
                            ? error::kSyntax
                            : error::kExpectedExpression);
    }
    Expression* made = node(Expression::Kind::Literal, token);
    switch (token.keyword) {
    case Keyword::True: made->literal = Value::boolean(true); break;
    case Keyword::False: made->literal = Value::boolean(false); break;
    case Keyword::Null: made->literal = Value::null(); break;
    case Keyword::Empty: break;
    case Keyword::Nothing: made->literal = Value::object(nullptr); break;
    case Keyword::Me:
        made->kind = Expression::Kind::Me;
        advance();
        return postfix(made);
    case Keyword::New:
        made->kind = Expression::Kind::New;
        advance();
        made->name = TRY_RESULT(identifier());
        return made;
    default: return failHere(error::kSyntax);
    }
    advance();
    return at(TokenKind::Dot) ? postfix(made) : made;
}

Result<Expression*> ExpressionParser::nameOrMember()
{
    if (accept(TokenKind::LeadingDot)) {
        if (!at(TokenKind::Identifier)) return failHere(error::kExpectedIdentifier);
        Expression* made = member(nullptr, current());
        advance();
        return made;
    }
    Expression* made = node(Expression::Kind::Name, current());
    made->name = TRY_RESULT(identifier());
    return made;
}

Result<Expression*> ExpressionParser::postfix(Expression* left)
{
    for (int length = 0;; ++length) {
        if (length > kMaxChain) return failHere(error::kTooComplex);
        if (accept(TokenKind::Dot)) {
            if (!at(TokenKind::Identifier)) return failHere(error::kExpectedIdentifier);
            left = member(left, current());
            advance();
        } else if (accept(TokenKind::LeftParen)) {
            left = call(left, TRY_RESULT(arguments(true)));
        } else {
            return left;
        }
    }
}

Result<std::vector<Expression*>> ExpressionParser::arguments(bool inParentheses)
{
    std::vector<Expression*> found;
    if (inParentheses && accept(TokenKind::RightParen)) return found;
    for (;;) {
        const bool ends = inParentheses ? at(TokenKind::RightParen) : atStatementEnd();
        if (at(TokenKind::Comma) || ends) {
            found.push_back(node(Expression::Kind::Missing, current()));
        } else {
            found.push_back(TRY_RESULT(expression()));
        }
        if (!accept(TokenKind::Comma)) break;
    }
    if (inParentheses) CHECK_RESULT(expect(TokenKind::RightParen, error::kExpectedRightParen));
    return found;
}

} // namespace script::vbscript
