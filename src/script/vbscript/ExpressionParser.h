#pragma once

#include "script/vbscript/Lexer.h"
#include "script/vbscript/Parser.h"

namespace script::vbscript
{

/// The half of the parser that reads expressions; the statements' half builds on it.
class ExpressionParser
{
public:
    ExpressionParser(std::vector<Token> tokens, Names& names)
        : m_tokens(std::move(tokens)), m_names(names), m_tree(std::make_unique<Tree>())
    {
    }

    Result<std::unique_ptr<Tree>> wholeExpression();

protected:
    // Deeper nesting is refused before the parser's own stack is in danger.
    static constexpr int kMaxDepth = 256;
    // Longest a.b(1).c... chain; these nest to the left.
    static constexpr int kMaxChain = 1000;

    [[nodiscard]] const Token& current() const { return m_tokens[m_next]; }
    [[nodiscard]] const Token& ahead(std::size_t count = 1) const
    {
        return m_tokens[std::min(m_next + count, m_tokens.size() - 1)];
    }
    void advance()
    {
        if (m_next + 1 < m_tokens.size()) ++m_next;
    }
    [[nodiscard]] bool at(TokenKind kind) const { return current().kind == kind; }
    [[nodiscard]] bool at(Keyword keyword) const { return current().keyword == keyword; }
    bool accept(TokenKind kind)
    {
        if (!at(kind)) return false;
        advance();
        return true;
    }
    bool accept(Keyword keyword)
    {
        if (!at(keyword)) return false;
        advance();
        return true;
    }
    /// Whether a statement may end here.
    [[nodiscard]] bool atStatementEnd() const;
    [[nodiscard]] static Position positionOf(const Token& token) { return {token.line, token.column}; }
    Failed failHere(int number) const { return failAtToken(number, current()); }
    static Failed failAtToken(int number, const Token& token);
    Result<void> expect(TokenKind kind, int number);
    Result<void> expect(Keyword keyword, int number);
    Result<Symbol> identifier();

    Result<Expression*> expression() { return binary(0); }
    /// Arguments up to a closing parenthesis (consumed), or up to the end of the statement.
    Result<std::vector<Expression*>> arguments(bool inParentheses);
    Expression* node(Expression::Kind kind, const Token& token);
    Expression* member(Expression* object, const Token& token);
    Expression* call(Expression* callee, std::vector<Expression*> arguments);
    /// .name or (arguments) behind an expression, as often as they come.
    Result<Expression*> postfix(Expression* left);
    Result<Expression*> nameOrMember();

    std::vector<Token> m_tokens;
    std::size_t m_next = 0;
    Names& m_names;
    std::unique_ptr<Tree> m_tree;
    int m_depth = 0;

    Result<Expression*> primary();

private:
    Result<Expression*> binary(int minimum);
    Result<Expression*> unary();
};

} // namespace script::vbscript
