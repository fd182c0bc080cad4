#include "script/vbscript/SimpleStatementParser.h"

#include "script/vbscript/Errors.h"

namespace script::vbscript
{

using Kind = Statement::Kind;

Result<void> SimpleStatementParser::assignment(Block& into)
{
    auto* made = statementAt(at(Keyword::Set) ? Kind::Set : Kind::Let, current());
    advance();
    const Token& first = current();
    made->target = TRY_RESULT(reference());
    if (made->target->kind == Expression::Kind::Me) return failAtToken(error::kInvalidMe, first);
    CHECK_RESULT(expect(TokenKind::Equal, error::kExpectedEqual));
    made->value = TRY_RESULT(expression());
    into.push_back(made);
    return {};
}

Result<Expression*> SimpleStatementParser::reference()
{
    if (at(Keyword::Me)) {
        Expression* me = node(Expression::Kind::Me, current());
        advance();
        return postfix(me);
    }
    if (!at(TokenKind::Identifier) && !at(TokenKind::LeadingDot)) return failHere(error::kExpectedIdentifier);
    Expression* named = TRY_RESULT(nameOrMember());
    return postfix(named);
}

Result<void> SimpleStatementParser::explicitCall(Block& into)
{
    auto* made = statementAt(Kind::Call, current());
    advance();
    // Call (New C).M
    made->value = at(TokenKind::LeftParen) ? TRY_RESULT(primary()) : TRY_RESULT(reference());
    if (made->value->kind != Expression::Kind::Call) made->value = call(made->value, {});
    into.push_back(made);
    return {};
}

// foo, foo args, foo(arg), foo(i) = value, a.b(1).c args: which one shows only at the end.
Result<void> SimpleStatementParser::callOrAssignment(Block& into)
{
    const Token& first = current();
    Expression* left = nullptr;
    if (at(TokenKind::Keyword)) {
        left = node(at(Keyword::Me) ? Expression::Kind::Me : Expression::Kind::Literal, first);
        if (at(Keyword::Nothing)) left->literal = Value::object(nullptr);
        advance();
        if (left->kind == Expression::Kind::Literal && !at(TokenKind::Dot))
            return failAtToken(error::kExpectedStatement, first);
    } else {
        left = TRY_RESULT(nameOrMember());
    }
    bool called = false;
    for (int length = 0;; ++length) {
        if (length > kMaxChain) return failHere(error::kTooComplex);
        if (accept(TokenKind::Dot)) {
            if (!at(TokenKind::Identifier)) return failHere(error::kExpectedIdentifier);
            left = member(left, current());
            advance();
            continue;
        }
        if (!at(TokenKind::LeftParen)) break;
        const std::size_t before = m_next;
        advance();
        auto found = TRY_RESULT(arguments(true));
        if (at(TokenKind::Equal) || at(TokenKind::Dot) || at(TokenKind::LeftParen)) {
            left = call(left, std::move(found));
            continue;
        }
        if (!atStatementEnd()) {
            // "foo (1) + 2": the parenthesis begins the first argument.
            m_next = before;
            break;
        }
        if (found.size() > 1) return failHere(error::kSubInParentheses);
        for (Expression* argument : found) argument->parenthesised = true;
        left = call(left, std::move(found));
        called = true;
        break;
    }
    if (!called && at(TokenKind::Equal)) {
        if (left->kind == Expression::Kind::Me) return failAtToken(error::kInvalidMe, first);
        advance();
        auto* made = statementAt(Kind::Let, first);
        made->target = left;
        made->value = TRY_RESULT(expression());
        into.push_back(made);
        return {};
    }
    if (!called) {
        auto found = atStatementEnd() ? std::vector<Expression*>() : TRY_RESULT(arguments(false));
        left = call(left, std::move(found));
    }
    auto* made = statementAt(Kind::Call, first);
    made->value = left;
    into.push_back(made);
    return {};
}

Result<void> SimpleStatementParser::reDim(Block& into)
{
    auto* made = statementAt(Kind::ReDim, current());
    advance();
    made->preserve = accept(Keyword::Preserve);
    do {
        Declarator array;
        array.position = positionOf(current());
        array.name = TRY_RESULT(identifier());
        CHECK_RESULT(expect(TokenKind::LeftParen, error::kExpectedLeftParen));
        do {
            array.newBounds.push_back(TRY_RESULT(expression()));
        } while (accept(TokenKind::Comma));
        if (array.newBounds.size() > 60) return failHere(error::kTooComplex);
        CHECK_RESULT(expect(TokenKind::RightParen, error::kExpectedRightParen));
        made->declarators.push_back(std::move(array));
    } while (accept(TokenKind::Comma));
    into.push_back(made);
    return {};
}

Result<void> SimpleStatementParser::erase(Block& into)
{
    const Token& token = current();
    advance();
    do {
        auto* made = statementAt(Kind::Erase, token);
        made->target = TRY_RESULT(reference());
        into.push_back(made);
    } while (accept(TokenKind::Comma));
    return {};
}

Result<void> SimpleStatementParser::exitStatement(Block& into)
{
    auto* made = statementAt(Kind::Exit, current());
    advance();
    if (at(Keyword::Do) && m_doLoops > 0) {
        made->exit = Statement::Exit::Do;
    } else if (at(Keyword::For) && m_forLoops > 0) {
        made->exit = Statement::Exit::For;
    } else if (m_inProcedure && at(m_procedureWord)) {
        made->exit = Statement::Exit::Procedure;
    } else {
        return failHere(error::kInvalidExit);
    }
    advance();
    into.push_back(made);
    return {};
}

Result<void> SimpleStatementParser::onError(Block& into)
{
    auto* made = statementAt(Kind::OnErrorResumeNext, current());
    advance();
    CHECK_RESULT(expect(Keyword::Error, error::kSyntax));
    if (accept(Keyword::Resume)) {
        CHECK_RESULT(expect(Keyword::Next, error::kExpectedNext));
    } else {
        CHECK_RESULT(expect(Keyword::GoTo, error::kSyntax));
        const bool zero = at(TokenKind::Number) && current().value.isWhole() && current().value.whole() == 0;
        if (!zero) return failHere(error::kSyntax);
        advance();
        made->kind = Kind::OnErrorGoToZero;
    }
    into.push_back(made);
    return {};
}

} // namespace script::vbscript
