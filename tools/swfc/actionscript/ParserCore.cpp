#include "swfc/actionscript/ParserState.h"

#include <algorithm>

namespace swfc::actionscript
{

const Token& ParserState::peek(std::size_t ahead) const
{
    if (m_failed) return m_tokens.back();
    return m_tokens[std::min(m_at + ahead, m_tokens.size() - 1)];
}

const Token& ParserState::next()
{
    const Token& token = peek();
    if (!m_failed && m_at + 1 < m_tokens.size()) ++m_at;
    return token;
}

bool ParserState::accept(Tok kind)
{
    if (!is(kind)) return false;
    next();
    return true;
}

bool ParserState::expect(Tok kind, std::string_view where)
{
    if (accept(kind)) return true;
    fail(std::string(spelling(kind)) + " " + std::string(where));
    return false;
}

void ParserState::fail(const std::string& expected)
{
    if (m_failed) return;
    const Token& found = peek();
    m_diagnostics.error(found.where, "expected " + expected + ", found " + describe(found));
    m_failed = true;
}

/// Goes behind the statement that failed: past its semicolon, or past the brace that closes it.
void ParserState::recover()
{
    m_failed = false;
    m_depth = 0;
    m_noIn = false;
    m_function = &m_program.main;
    int braces = 0;
    while (!is(Tok::End)) {
        const Tok kind = next().kind;
        if (kind == Tok::LeftBrace) ++braces;
        if (kind == Tok::RightBrace && --braces <= 0) return;
        if (kind == Tok::Semicolon && braces <= 0) return;
    }
}

std::string ParserState::expectName(std::string_view what)
{
    if (is(Tok::Identifier)) return next().text;
    fail(std::string(what));
    return {};
}

/// After a dot and in an object literal every word is a name.
std::string ParserState::expectMemberName()
{
    const Token& token = peek();
    const bool word =
        token.kind == Tok::Identifier || (token.kind >= Tok::Break && token.kind <= Tok::Undefined);
    if (word) return next().text;
    fail("the name of a member");
    return {};
}

std::string ParserState::dottedName(std::string_view what)
{
    std::string name = expectName(what);
    while (accept(Tok::Dot)) {
        name += '.';
        if (accept(Tok::Star)) return name + "*";
        name += expectName(what);
    }
    return name;
}

/// ":Type" after a declared name; read and left out.
void ParserState::skipType()
{
    if (!accept(Tok::Colon)) return;
    if (accept(Tok::Void) || accept(Tok::Star)) return;
    dottedName("the name of a type");
}

void ParserState::endStatement()
{
    if (accept(Tok::Semicolon) || is(Tok::RightBrace) || is(Tok::End)) return;
    if (peek().newlineBefore) return;
    fail("';' after this statement");
}

Expr* ParserState::makeExpr(ExprKind kind)
{
    Expr* node = m_program.addExpr();
    node->kind = kind;
    node->where = peek().where;
    return node;
}

/// Sets the depth of a node from its children.
Expr* ParserState::chain(Expr* node, std::initializer_list<const Expr*> children)
{
    for (const Expr* child : children) {
        if (child != nullptr) node->depth = std::max(node->depth, child->depth + 1);
    }
    if (node->depth > kLongestChain) fail("an expression of at most 1000 links");
    return node;
}

Stmt* ParserState::makeStmt(StmtKind kind)
{
    Stmt* node = m_program.addStmt();
    node->kind = kind;
    node->where = peek().where;
    return node;
}

void ParserState::refer(const std::string& name)
{
    m_function->references.insert(name);
    if (name == "arguments") m_function->usesArguments = true;
}

void ParserState::parseStatements()
{
    m_function = &m_program.main;
    while (true) {
        while (!is(Tok::End)) {
            if (accept(Tok::InitClip) || accept(Tok::EndInitClip)) continue;
            if (is(Tok::RightBrace)) {
                fail("a statement");
                break;
            }
            m_program.main.body.push_back(statement());
        }
        if (!m_failed) return;
        recover();
        if (m_diagnostics.errorCount() >= Diagnostics::kMaxErrors) return;
    }
}

void ParserState::parseHandlers()
{
    m_function = &m_program.main;
    while (!is(Tok::End)) {
        Handler handler;
        handler.where = peek().where;
        handler.clipEvent = isWord("onClipEvent");
        if (!handler.clipEvent && !isWord("on")) {
            fail("'on' or 'onClipEvent'");
        } else {
            next();
        }
        expect(Tok::LeftParen, "before the names of events");
        do {
            handler.events.push_back(expectName("the name of an event"));
            if (handler.events.back() != "keyPress") continue;
            if (is(Tok::String))
                handler.key = next().text;
            else
                fail("a key such as \"<Left>\" or \"a\"");
        } while (accept(Tok::Comma));
        expect(Tok::RightParen, "after the names of events");
        Function* body = m_program.addFunction();
        body->where = peek().where;
        m_function = body;
        if (expect(Tok::LeftBrace, "before the handler's statements")) blockBody(body->body);
        m_function = &m_program.main;
        handler.body = body;
        if (!m_failed) m_program.handlers.push_back(std::move(handler));
        while (accept(Tok::Semicolon)) {
        }
        if (m_failed) recover();
        if (m_diagnostics.errorCount() >= Diagnostics::kMaxErrors) return;
    }
}

std::unique_ptr<Program> parse(const SourceText& source, ScriptKind kind, int version, SourceFiles& files,
                               Diagnostics& diagnostics)
{
    auto program = std::make_unique<Program>();
    program->main.where = source.start;
    ParserState state(tokenize(source, version, files, diagnostics), *program, version, diagnostics);
    if (kind == ScriptKind::Handlers)
        state.parseHandlers();
    else
        state.parseStatements();
    return program;
}

} // namespace swfc::actionscript
