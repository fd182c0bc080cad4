#include "swfc/actionscript3/Parser.h"

#include <algorithm>

namespace swfc::actionscript3
{
namespace
{

constexpr std::string_view kModifierWords[] = {"static", "final", "override", "dynamic", "native"};
constexpr std::string_view kAccessWords[] = {"public", "private", "protected", "internal"};

bool isOneOf(const Token& token, auto& words)
{
    return std::ranges::find(words, token.text) != std::end(words);
}

} // namespace

/// Whether a declaration, or one more word before it, begins with the token.
bool Parser::startsDefinition(const Token& token) const
{
    static constexpr std::string_view kWords[] = {"var", "const", "function", "class", "interface"};
    if (token.newlineBefore && token.kind == Token::Kind::Name) return false;
    if (token.kind == Token::Kind::Keyword) return isOneOf(token, kWords) || isOneOf(token, kAccessWords);
    return token.kind == Token::Kind::Name && (isOneOf(token, kModifierWords) || token.text == "namespace");
}

/// @returns whether there were any.
bool Parser::modifiers(Modifiers& modifiers)
{
    bool any = false;
    while (!m_failed) {
        const bool isKeyword = m_token.kind == Token::Kind::Keyword;
        if (isKeyword && isOneOf(m_token, kAccessWords)) {
            if (lookAhead().text == "::") return any;
        } else if (m_token.kind == Token::Kind::Name && !isWord("namespace")) {
            // The name of a namespace stands in the line of what it goes with.
            const Token ahead = lookAhead();
            const bool isWord = isOneOf(m_token, kModifierWords);
            const bool isNamespaceNext = isWord && ahead.kind == Token::Kind::Name && !ahead.newlineBefore;
            if (!startsDefinition(ahead) && !isNamespaceNext) return any;
            if (ahead.newlineBefore && !isWord) return any;
        } else {
            return any;
        }
        const Token word = next();
        any = true;
        if (word.text == "static")
            modifiers.isStatic = true;
        else if (word.text == "final")
            modifiers.isFinal = true;
        else if (word.text == "override")
            modifiers.isOverride = true;
        else if (word.text == "dynamic")
            modifiers.isDynamic = true;
        else if (word.text == "native")
            fail(word.where, "expected a body for each function, found 'native'");
        else if (modifiers.access.empty())
            modifiers.access = word.text;
        else
            fail(word.where, "expected one namespace before a declaration, found '" + word.text + "'");
    }
    return any;
}

/// `[Name]`, `[Name("value", key="value")]`, as often as there are any.
void Parser::metadata(Modifiers& modifiers, Where where)
{
    while (is("[") && !m_failed) {
        // Outside of classes this may as well be an array.
        const Token name = lookAhead();
        if (name.kind != Token::Kind::Name) return;
        if (where == Where::File && (name.text[0] < 'A' || name.text[0] > 'Z')) return;
        readOn();
        Metadata entry;
        entry.name = next().text;
        if (accept("(")) {
            while (!is(")") && !m_failed) {
                std::string key;
                if (m_token.kind == Token::Kind::Name) {
                    key = next().text;
                    if (!accept("=")) {
                        entry.items.emplace_back("", key);
                        accept(",");
                        continue;
                    }
                }
                if (m_token.kind == Token::Kind::End || m_token.kind == Token::Kind::Punctuator) {
                    fail("a value");
                    return;
                }
                entry.items.emplace_back(key, next().text);
                if (!accept(",")) break;
            }
            expect(")", "after the metadata");
        }
        expect("]", "after the metadata");
        accept(";");
        modifiers.metadata.push_back(std::move(entry));
    }
}

/// A declaration or a statement where declarations may have modifiers.
Stmt* Parser::directive(Where where, const std::string& className)
{
    const Level level(*this);
    Modifiers before;
    metadata(before, where);
    const bool any = modifiers(before);
    if (is("var") || is("const")) {
        Stmt* node = where == Where::Class && !before.isStatic ? nullptr : varStatement(true);
        if (node == nullptr) {
            // Fields are no locals of anything; their values are computed in the constructor.
            Function* const outer = m_function;
            Function fields;
            m_function = &fields;
            m_functions.push_back(&fields);
            node = varStatement(true);
            m_functions.pop_back();
            m_function = outer;
        }
        node->modifiers = std::move(before);
        endStatement();
        return node;
    }
    if (is("function")) {
        Stmt* node = makeStmt(StmtKind::Function);
        readOn();
        node->function = function(&before, false, true);
        if (where == Where::Class && node->function->name == className && !node->function->hasBody)
            fail("a body for the constructor");
        node->modifiers = std::move(before);
        if (!node->function->hasBody)
            expect(";", "after the declaration");
        else
            accept(";");
        return node;
    }
    if (is("class") || is("interface")) {
        if (where == Where::Class) fail("a member of the class");
        Stmt* node = classStatement();
        node->declaration->modifiers = std::move(before);
        return node;
    }
    if (isWord("namespace") && lookAhead().kind == Token::Kind::Name) {
        Stmt* node = namespaceStatement();
        node->modifiers = std::move(before);
        return node;
    }
    if (any) {
        fail("a declaration");
        return makeStmt(StmtKind::Empty);
    }
    return statement();
}

Stmt* Parser::namespaceStatement()
{
    Stmt* node = makeStmt(StmtKind::Namespace);
    readOn();
    node->text = expectName("the name of the namespace");
    if (accept("=")) node->a = assignment();
    endStatement();
    return node;
}

Stmt* Parser::classStatement()
{
    Stmt* node = makeStmt(StmtKind::Class);
    ClassDeclaration* declaration = node->declaration = m_file.addClass();
    declaration->isInterface = next().text == "interface";
    declaration->where = m_token.where;
    declaration->name = expectName("the name of the class");
    declaration->initializer = m_file.addFunction();
    if (accept("extends")) {
        if (declaration->isInterface) {
            do declaration->interfaces.push_back(typeExpr());
            while (accept(","));
        } else {
            declaration->base = typeExpr();
        }
    }
    if (accept("implements")) {
        do declaration->interfaces.push_back(typeExpr());
        while (accept(","));
    }
    expect("{", "before the members");
    m_functions.push_back(declaration->initializer);
    Function* const outer = std::exchange(m_function, declaration->initializer);
    while (!is("}") && !atEnd()) declaration->body.push_back(directive(Where::Class, declaration->name));
    m_function = outer;
    m_functions.pop_back();
    expect("}", "after the members");
    return node;
}

void Parser::package()
{
    readOn();
    Package& package = m_file.packages.emplace_back();
    if (m_token.kind == Token::Kind::Name) package.name = dottedName("the name of the package");
    expect("{", "before the contents of the package");
    std::vector<Stmt*> body;
    while (!is("}") && !atEnd()) body.push_back(directive(Where::Package, {}));
    expect("}", "after the contents of the package");
    package.body = std::move(body);
}

void Parser::parseFile()
{
    m_function = m_file.initializer = m_file.addFunction();
    m_functions = {m_function};
    Package outside;
    outside.isOutside = true;
    while (!atEnd()) {
        if (is("package"))
            package();
        else
            outside.body.push_back(directive(Where::File, {}));
    }
    m_file.packages.push_back(std::move(outside));
}

Function* Parser::parseFrame(const std::string& name)
{
    Function* made = m_function = m_file.addFunction();
    made->name = name;
    m_functions = {made};
    while (!atEnd()) made->body.push_back(directive(Where::File, {}));
    return made;
}

} // namespace swfc::actionscript3
