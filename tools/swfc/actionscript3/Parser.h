#pragma once

#include "swfc/actionscript3/Lexer.h"
#include "swfc/actionscript3/Tree.h"

#include <initializer_list>

namespace swfc::actionscript3
{

/// Nesting of statements and expressions beyond this is refused; it bounds every recursion over the tree.
constexpr int kDeepestNesting = 256;
/// Links of one chain of operators, calls or members.
constexpr int kLongestChain = 1000;

/// Recursive descent. After an error the parser sees only the end of the text, so that every procedure
/// returns soon. Procedures return empty nodes instead of null.
class Parser
{
public:
    Parser(const SourceText& source, File& file, Diagnostics& diagnostics);

    /// A file: packages and what stands outside of them.
    void parseFile();
    /// The script of a frame. @returns the function it is the body of
    Function* parseFrame(const std::string& name);

private:
    // tokens
    [[nodiscard]] const Token& peek() const { return m_token; }
    Token next();
    Token lookAhead();
    void readOn();
    [[nodiscard]] bool is(std::string_view text) const
    {
        return m_token.text == text &&
               (m_token.kind == Token::Kind::Punctuator || m_token.kind == Token::Kind::Keyword);
    }
    [[nodiscard]] bool isWord(std::string_view text) const
    {
        return m_token.kind == Token::Kind::Name && m_token.text == text;
    }
    [[nodiscard]] bool atEnd() const { return m_token.kind == Token::Kind::End; }
    bool accept(std::string_view text);
    bool expect(std::string_view text, std::string_view where);
    std::string expectName(std::string_view what);
    std::string dottedName(std::string_view what);
    void closeAngle();
    void endStatement();
    void fail(const std::string& expected);
    void fail(Position where, const std::string& message);
    class Level
    {
    public:
        explicit Level(Parser& parser) : m_parser(parser)
        {
            if (++m_parser.m_depth > kDeepestNesting)
                m_parser.fail("statements and expressions nested at most 256 deep");
        }
        ~Level() { --m_parser.m_depth; }
        Level(const Level&) = delete;
        Level& operator=(const Level&) = delete;

    private:
        Parser& m_parser;
    };
    /// Names used while it lives are sought at run time: in a function within, or by a with statement.
    class Capture
    {
    public:
        explicit Capture(Parser& parser) : m_parser(parser) { ++m_parser.m_dynamic; }
        ~Capture() { --m_parser.m_dynamic; }
        Capture(const Capture&) = delete;
        Capture& operator=(const Capture&) = delete;

    private:
        Parser& m_parser;
    };

    // nodes
    Expr* makeExpr(ExprKind kind);
    Expr* chain(Expr* node, std::initializer_list<const Expr*> children);
    Stmt* makeStmt(StmtKind kind);
    void refer(const std::string& name);
    void declare(const std::string& name, TypeExpr* type, bool isConst);
    TypeExpr* typeExpr();
    TypeExpr* typeOrNull();

    // expressions
    Expr* expression(); // with commas
    Expr* assignment();
    Expr* conditional();
    Expr* binary(int lowest);
    Expr* unary();
    Expr* postfix();
    Expr* primary();
    Expr* wordPrimary();
    Expr* newExpression();
    Expr* suffixes(Expr* base, bool calls);
    Expr* dotSuffix(Expr* base);
    void identifier(Expr* node);
    void qualify(Expr* node);
    Expr* arrayLiteral();
    Expr* objectLiteral();
    void arguments(Expr* call);
    static bool assignable(const Expr* target);
    Expr* xmlLiteral();
    void xmlElement(Expr* node, int depth);
    void xmlTag(Expr* node, bool& isEmpty);
    void xmlInsert(Expr* node, XmlPart part);
    void xmlText(Expr* node, char c) { node->names.back() += c; }
    bool xmlMarkup(Expr* node);

    // functions
    Function* function(Modifiers* modifiers, bool isExpression, bool hasBody);
    void parameters(Function* function);
    void functionBody(Function* function);

    // statements
    Stmt* statement();
    Stmt* block();
    Stmt* varStatement(bool withIn);
    Stmt* ifStatement();
    Stmt* forStatement();
    Stmt* switchStatement();
    Stmt* tryStatement();
    Stmt* jumpStatement();
    Stmt* superStatement();
    Stmt* xmlNamespaceStatement();
    Stmt* importStatement();
    Stmt* useStatement();
    Stmt* namespaceStatement();
    Expr* parenthesised(std::string_view what);

    // definitions
    enum class Where : std::uint8_t { File, Package, Class };
    Stmt* directive(Where where, const std::string& className);
    bool modifiers(Modifiers& modifiers);
    void metadata(Modifiers& modifiers, Where where);
    bool startsDefinition(const Token& token) const;
    Stmt* classStatement();
    void package();

    Lexer m_lexer;
    Token m_token;
    File& m_file;
    Diagnostics& m_diagnostics;
    Function* m_function = nullptr;     // the one whose body is being read
    std::vector<Function*> m_functions; // it and those around it
    int m_depth = 0, m_dynamic = 0;
    bool m_failed = false;
    bool m_noIn = false; // reading the head of a for statement
};

} // namespace swfc::actionscript3
