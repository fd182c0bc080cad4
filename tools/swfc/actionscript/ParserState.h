#pragma once

#include "swfc/actionscript/Parser.h"

#include <initializer_list>

namespace swfc::actionscript
{

/// Recursive descent over the tokens. After the first error in a statement the parser sees only the end of
/// the script, so every procedure returns soon; the loop over the outermost statements then goes on behind
/// the damage. Procedures return empty nodes instead of null.
class ParserState
{
public:
    ParserState(std::vector<Token> tokens, Program& program, int version, Diagnostics& diagnostics)
        : m_tokens(std::move(tokens)), m_program(program), m_version(version), m_diagnostics(diagnostics)
    {
    }

    void parseStatements();
    void parseHandlers();

private:
    // tokens
    [[nodiscard]] const Token& peek(std::size_t ahead = 0) const;
    const Token& next();
    [[nodiscard]] bool is(Tok kind) const { return peek().kind == kind; }
    [[nodiscard]] bool isWord(std::string_view word, std::size_t ahead = 0) const
    {
        return peek(ahead).kind == Tok::Identifier && peek(ahead).text == word;
    }
    bool accept(Tok kind);
    bool expect(Tok kind, std::string_view where);
    std::string expectName(std::string_view what);
    std::string expectMemberName();
    std::string dottedName(std::string_view what);
    void skipType();
    void endStatement();
    void fail(const std::string& expected);
    void recover();
    /// Counts a level of nesting while it lives.
    class Level
    {
    public:
        explicit Level(ParserState& state) : m_state(state)
        {
            if (++m_state.m_depth > kDeepestNesting) {
                m_state.fail("statements and expressions nested at most 256 deep");
            }
        }
        ~Level() { --m_state.m_depth; }
        Level(const Level&) = delete;
        Level& operator=(const Level&) = delete;

    private:
        ParserState& m_state;
    };

    // nodes
    Expr* makeExpr(ExprKind kind);
    Expr* chain(Expr* node, std::initializer_list<const Expr*> children);
    Stmt* makeStmt(StmtKind kind);
    void refer(const std::string& name);
    void declare(const std::string& name) { m_function->locals.insert(name); }

    // expressions
    Expr* expression(); // with commas
    Expr* assignment();
    Expr* conditional();
    Expr* binary(int lowest);
    Expr* unary();
    Expr* postfix();
    Expr* primary();
    Expr* arrayLiteral();
    Expr* objectLiteral();
    Expr* newExpression();
    Expr* suffixes(Expr* base, bool calls);
    void arguments(Expr* call);
    void noteCall(const Expr* call);
    [[nodiscard]] Tok binaryOperator() const;
    bool assignable(const Expr* target);
    Function* functionTail(std::string name, Position where);

    // statements
    Stmt* statement();
    Stmt* block();
    void blockBody(std::vector<Stmt*>& body);
    Stmt* varStatement();
    Stmt* ifStatement();
    Stmt* forStatement();
    Stmt* switchStatement();
    Stmt* tryStatement();
    Stmt* jumpStatement();
    Stmt* nameStatement();
    Stmt* conditionAndBody(StmtKind kind, std::string_view name);
    Stmt* classStatement();
    void classMember(ClassDeclaration& declaration);
    Expr* parenthesised(std::string_view statementName);

    std::vector<Token> m_tokens;
    std::size_t m_at = 0;
    Program& m_program;
    Function* m_function = nullptr; // the one whose body is being read
    int m_version;
    Diagnostics& m_diagnostics;
    int m_depth = 0;
    bool m_failed = false;
    bool m_noIn = false; // reading the head of a for statement
};

} // namespace swfc::actionscript
