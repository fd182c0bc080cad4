#include "swfc/actionscript3/Parser.h"

#include <algorithm>

namespace swfc::actionscript3
{

Parser::Parser(const SourceText& source, File& file, Diagnostics& diagnostics)
    : m_lexer(source, diagnostics), m_file(file), m_diagnostics(diagnostics)
{
    readOn();
}

void Parser::readOn() { m_token = m_failed ? Token() : m_lexer.next(); }

Token Parser::next()
{
    Token token = std::move(m_token);
    readOn();
    return token;
}

Token Parser::lookAhead()
{
    // What is wrong there will be told when it is read in earnest.
    Lexer ahead = m_lexer;
    ahead.beQuiet();
    return ahead.next();
}

bool Parser::accept(std::string_view text)
{
    if (!is(text)) return false;
    readOn();
    return true;
}

bool Parser::expect(std::string_view text, std::string_view where)
{
    if (accept(text)) return true;
    fail("'" + std::string(text) + "' " + std::string(where));
    return false;
}

void Parser::fail(const std::string& expected)
{
    fail(m_token.where, "expected " + expected + ", found " + describe(m_token));
}

void Parser::fail(Position where, const std::string& message)
{
    if (!m_failed) m_diagnostics.error(where, message);
    m_failed = true;
    const Position last = m_token.where;
    m_token = Token();
    m_token.where = last;
}

std::string Parser::expectName(std::string_view what)
{
    if (m_token.kind == Token::Kind::Name) return next().text;
    fail(std::string(what));
    return {};
}

std::string Parser::dottedName(std::string_view what)
{
    std::string name = expectName(what);
    while (is(".") && !m_failed) {
        readOn();
        if (is("*")) {
            readOn();
            return name + ".*";
        }
        // Keywords may be parts of package names.
        if (m_token.kind != Token::Kind::Name && m_token.kind != Token::Kind::Keyword) {
            fail("a name after the dot");
            break;
        }
        name += "." + next().text;
    }
    return name;
}

/// A statement ends with a semicolon, a brace, a new line or the text.
void Parser::endStatement()
{
    if (accept(";") || is("}") || atEnd() || m_token.newlineBefore) return;
    fail("';' after the statement");
}

/// The bracket that ends a type's parameter may be the first of a longer sign.
void Parser::closeAngle()
{
    if (m_token.kind != Token::Kind::Punctuator || !m_token.text.starts_with('>')) {
        fail("'>' after the type");
        return;
    }
    Mark mark = m_token.begin;
    ++mark.offset;
    m_lexer.seek(mark);
    readOn();
}

Expr* Parser::makeExpr(ExprKind kind)
{
    Expr* node = m_file.addExpr();
    node->kind = kind;
    node->where = m_token.where;
    return node;
}

Expr* Parser::chain(Expr* node, std::initializer_list<const Expr*> children)
{
    for (const Expr* child : children) {
        if (child != nullptr) node->depth = std::max(node->depth, child->depth + 1);
    }
    if (node->depth > kLongestChain) fail(node->where, "expected at most 1000 links in one expression");
    return node;
}

Stmt* Parser::makeStmt(StmtKind kind)
{
    Stmt* node = m_file.addStmt();
    node->kind = kind;
    node->where = m_token.where;
    return node;
}

void Parser::refer(const std::string& name)
{
    for (Function* function : m_functions) {
        if (function != m_function || m_dynamic > 0) function->captured.insert(name);
    }
    if (name == "arguments") m_function->usesArguments = true;
    for (Function* function : m_functions) {
        if (!function->name.empty() && name == function->name) function->namesItself = true;
    }
}

void Parser::declare(const std::string& name, TypeExpr* type, bool isConst)
{
    for (Local& local : m_function->locals) {
        if (local.name != name) continue;
        if (local.type == nullptr) local.type = type;
        return;
    }
    m_function->locals.push_back({name, type, isConst});
}

TypeExpr* Parser::typeExpr()
{
    const Level level(*this);
    TypeExpr* type = m_file.addType();
    type->where = m_token.where;
    if (accept("*")) {
        type->name = "*";
        return type;
    }
    if (accept("void")) {
        type->name = "void";
        return type;
    }
    type->name = dottedName("a type");
    if (accept(".<")) {
        type->parameter = typeExpr();
        closeAngle();
    }
    return type;
}

TypeExpr* Parser::typeOrNull()
{
    // `name:*=value` is read as one sign too many.
    if (!accept(":")) return nullptr;
    if (is("*=")) {
        TypeExpr* type = m_file.addType();
        type->name = "*";
        type->where = m_token.where;
        Mark mark = m_token.begin;
        ++mark.offset;
        m_lexer.seek(mark);
        readOn();
        return type;
    }
    return typeExpr();
}

void Parser::parameters(Function* function)
{
    expect("(", "before the parameters");
    while (!is(")") && !m_failed) {
        if (accept("...")) {
            function->rest = expectName("the name of the remaining arguments");
            typeOrNull();
            break;
        }
        Variable& parameter = function->parameters.emplace_back();
        parameter.where = m_token.where;
        if (accept("const")) parameter.where = m_token.where;
        parameter.name = expectName("a parameter");
        parameter.type = typeOrNull();
        if (accept("=")) {
            Expr* value = assignment();
            function->parameters.back().value = value;
        } else if (function->parameters.size() > 1 &&
                   function->parameters[function->parameters.size() - 2].value != nullptr) {
            fail("a value for every parameter after one that has one");
        }
        if (!accept(",")) break;
    }
    expect(")", "after the parameters");
    function->returnType = typeOrNull();
}

void Parser::functionBody(Function* function)
{
    Function* const outer = m_function;
    const int dynamic = m_dynamic;
    const bool noIn = m_noIn;
    m_function = function;
    m_functions.push_back(function);
    m_dynamic = 0;
    m_noIn = false;
    expect("{", "before the body of a function");
    while (!is("}") && !atEnd()) function->body.push_back(statement());
    m_function = outer;
    m_functions.pop_back();
    m_dynamic = dynamic;
    m_noIn = noIn;
    expect("}", "after the body of a function");
}

/// From the name on; the word before it has been read.
Function* Parser::function(Modifiers* modifiers, bool isExpression, bool hasBody)
{
    const Level level(*this);
    Function* made = m_file.addFunction();
    made->where = m_token.where;
    if (modifiers != nullptr && (isWord("get") || isWord("set"))) {
        const Token ahead = lookAhead();
        if (ahead.kind == Token::Kind::Name || ahead.kind == Token::Kind::Keyword) {
            made->role = next().text == "get" ? Function::Role::Getter : Function::Role::Setter;
            made->where = m_token.where;
        }
    }
    // Members may be named like keywords: they are always written after a dot.
    if (modifiers != nullptr && m_token.kind == Token::Kind::Keyword)
        made->name = next().text;
    else if (!isExpression || m_token.kind == Token::Kind::Name)
        made->name = expectName("the name of the function");
    Function* const outer = m_function;
    m_function = made;
    m_functions.push_back(made);
    parameters(made);
    m_functions.pop_back();
    m_function = outer;
    made->hasBody = hasBody;
    if (hasBody && !(modifiers != nullptr && !is("{") && is(";")))
        functionBody(made);
    else
        made->hasBody = false;
    return made;
}

} // namespace swfc::actionscript3
