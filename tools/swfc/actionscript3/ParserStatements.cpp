#include "swfc/actionscript3/Parser.h"

namespace swfc::actionscript3
{

Stmt* Parser::block()
{
    Stmt* node = makeStmt(StmtKind::Block);
    expect("{", "before the statements");
    while (!is("}") && !atEnd()) node->body.push_back(statement());
    expect("}", "after the statements");
    return node;
}

Expr* Parser::parenthesised(std::string_view what)
{
    expect("(", "after " + std::string(what));
    Expr* node = expression();
    expect(")", "after the condition");
    return node;
}

Stmt* Parser::statement()
{
    const Level level(*this);
    if (m_failed) return makeStmt(StmtKind::Empty);
    if (is("{")) return block();
    if (m_token.kind == Token::Kind::Keyword) {
        if (is("var") || is("const")) {
            Stmt* node = varStatement(true);
            endStatement();
            return node;
        }
        if (is("if")) return ifStatement();
        if (is("for")) return forStatement();
        if (is("switch")) return switchStatement();
        if (is("try")) return tryStatement();
        if (is("super")) return superStatement();
        if (is("default")) return xmlNamespaceStatement();
        if (is("import")) return importStatement();
        if (is("use")) return useStatement();
        if (is("break") || is("continue") || is("return") || is("throw")) return jumpStatement();
        if (is("while") || is("with")) {
            Stmt* node = makeStmt(is("while") ? StmtKind::While : StmtKind::With);
            const std::string word = next().text;
            node->a = parenthesised(word);
            if (word == "with") {
                const Capture capture(*this);
                node->first = statement();
            } else {
                node->first = statement();
            }
            return node;
        }
        if (is("do")) {
            Stmt* node = makeStmt(StmtKind::DoWhile);
            readOn();
            node->first = statement();
            expect("while", "after the body of 'do'");
            node->a = parenthesised("while");
            accept(";");
            return node;
        }
        if (is("function")) {
            Stmt* node = makeStmt(StmtKind::Function);
            readOn();
            node->function = function(nullptr, false, true);
            declare(node->function->name, nullptr, false);
            m_function->functions.push_back(node->function);
            accept(";");
            return node;
        }
        if (is("class") || is("interface") || is("package")) {
            fail("a statement");
            return makeStmt(StmtKind::Empty);
        }
    }
    if (accept(";")) return makeStmt(StmtKind::Empty);
    if (m_token.kind == Token::Kind::Name) {
        const Token ahead = lookAhead();
        if (ahead.kind == Token::Kind::Punctuator && ahead.text == ":") {
            Stmt* node = makeStmt(StmtKind::Labeled);
            node->text = next().text;
            readOn();
            node->first = statement();
            return node;
        }
    }
    Stmt* node = makeStmt(StmtKind::Expression);
    node->a = expression();
    endStatement();
    return node;
}

Stmt* Parser::varStatement(bool withIn)
{
    Stmt* node = makeStmt(StmtKind::Var);
    node->isConst = next().text == "const";
    do {
        Variable variable;
        variable.where = m_token.where;
        variable.name = expectName("the name of a variable");
        variable.type = typeOrNull();
        declare(variable.name, variable.type, node->isConst);
        // A declaration in a with statement puts its value where the name is found.
        if (m_dynamic > 0) refer(variable.name);
        if (accept("=")) {
            const bool noIn = m_noIn;
            m_noIn = !withIn;
            variable.value = assignment();
            m_noIn = noIn;
        }
        node->variables.push_back(variable);
    } while (accept(","));
    return node;
}

Stmt* Parser::ifStatement()
{
    Stmt* node = makeStmt(StmtKind::If);
    readOn();
    node->a = parenthesised("if");
    node->first = statement();
    if (accept("else")) node->second = statement();
    return node;
}

Stmt* Parser::forStatement()
{
    Stmt* node = makeStmt(StmtKind::For);
    readOn();
    if (isWord("each")) {
        readOn();
        node->isEach = true;
    }
    expect("(", "after for");
    if (is("var") || is("const")) {
        node->init = varStatement(false);
    } else if (!is(";")) {
        Stmt* init = makeStmt(StmtKind::Expression);
        m_noIn = true;
        init->a = expression();
        m_noIn = false;
        node->init = init;
    }
    if (node->init != nullptr && is("in")) {
        node->kind = StmtKind::ForIn;
        if (node->init->kind == StmtKind::Expression) {
            node->a = node->init->a;
            node->init = nullptr;
            if (!assignable(node->a)) fail("a variable or member before 'in'");
        } else if (node->init->variables.size() != 1) {
            fail("one variable before 'in'");
        }
        readOn();
        node->b = expression();
        expect(")", "after the object");
        node->first = statement();
        return node;
    }
    if (node->isEach) fail("'in'");
    expect(";", "after the beginning of 'for'");
    if (!is(";")) node->a = expression();
    expect(";", "after the condition of 'for'");
    if (!is(")")) node->b = expression();
    expect(")", "after the head of 'for'");
    node->first = statement();
    return node;
}

Stmt* Parser::switchStatement()
{
    Stmt* node = makeStmt(StmtKind::Switch);
    readOn();
    node->a = parenthesised("switch");
    expect("{", "before the cases");
    bool hasDefault = false;
    while (!is("}") && !atEnd()) {
        SwitchCase entry;
        entry.where = m_token.where;
        if (accept("default")) {
            if (hasDefault) fail("one default in a switch");
            hasDefault = true;
        } else if (expect("case", "in a switch")) {
            entry.test = expression();
        }
        expect(":", "after the case");
        while (!is("case") && !is("default") && !is("}") && !atEnd()) entry.body.push_back(statement());
        // `default xml namespace` cannot begin a statement here.
        node->cases.push_back(std::move(entry));
    }
    expect("}", "after the cases");
    return node;
}

Stmt* Parser::tryStatement()
{
    Stmt* node = makeStmt(StmtKind::Try);
    readOn();
    node->first = block();
    while (is("catch") && !m_failed) {
        readOn();
        CatchClause clause;
        expect("(", "after catch");
        clause.name = expectName("the name of the error");
        clause.type = typeOrNull();
        expect(")", "after the name of the error");
        // Whether a function within uses the name: what is used in there is noted by the outermost one.
        auto& captured = m_function->captured;
        const bool before = captured.erase(clause.name) > 0;
        clause.body = block();
        clause.isCaptured = captured.contains(clause.name);
        if (before) captured.insert(clause.name);
        node->catches.push_back(std::move(clause));
    }
    if (accept("finally")) node->second = block();
    if (node->catches.empty() && node->second == nullptr) fail("'catch' or 'finally'");
    return node;
}

Stmt* Parser::jumpStatement()
{
    Stmt* node = makeStmt(StmtKind::Return);
    const std::string word = next().text;
    if (word == "break" || word == "continue") {
        node->kind = word == "break" ? StmtKind::Break : StmtKind::Continue;
        if (m_token.kind == Token::Kind::Name && !m_token.newlineBefore) node->text = next().text;
    } else if (word == "throw") {
        node->kind = StmtKind::Throw;
        node->a = expression();
    } else if (!is(";") && !is("}") && !atEnd() && !m_token.newlineBefore) {
        node->a = expression();
    }
    endStatement();
    return node;
}

/// `super(...)` alone is the base class's constructor.
Stmt* Parser::superStatement()
{
    Stmt* node = makeStmt(StmtKind::Expression);
    const Token ahead = lookAhead();
    if (ahead.kind == Token::Kind::Punctuator && ahead.text == "(") {
        Expr* call = makeExpr(ExprKind::Call);
        Expr* base = makeExpr(ExprKind::Super);
        const Position where = m_token.where;
        readOn();
        arguments(call);
        if (!is(".") && !is("[")) {
            node->kind = StmtKind::SuperCall;
            node->a = call;
            node->where = where;
            m_function->callsSuper = true;
            endStatement();
            return node;
        }
        // super(object).method(...)
        if (call->list.size() != 1) fail("one object after super");
        base->a = call->list.empty() ? nullptr : call->list[0];
        node->a = suffixes(base, true);
        for (const std::string_view op : {std::string_view("="), std::string_view("+=")}) {
            if (!is(op)) continue;
            Expr* assign = makeExpr(ExprKind::Assign);
            readOn();
            assign->op = op;
            assign->a = node->a;
            assign->b = assignment();
            node->a = chain(assign, {assign->a, assign->b});
        }
        endStatement();
        return node;
    }
    node->a = expression();
    endStatement();
    return node;
}

Stmt* Parser::xmlNamespaceStatement()
{
    Stmt* node = makeStmt(StmtKind::XmlNamespace);
    readOn();
    if (!isWord("xml")) fail("'xml namespace' after default");
    readOn();
    if (!isWord("namespace")) fail("'namespace' after default xml");
    readOn();
    expect("=", "after default xml namespace");
    node->a = assignment();
    m_function->usesXmlNamespace = true;
    endStatement();
    return node;
}

Stmt* Parser::importStatement()
{
    Stmt* node = makeStmt(StmtKind::Import);
    readOn();
    node->text = dottedName("the name of a class");
    endStatement();
    return node;
}

Stmt* Parser::useStatement()
{
    Stmt* node = makeStmt(StmtKind::UseNamespace);
    readOn();
    if (!isWord("namespace")) fail("'namespace' after use");
    do {
        readOn();
        if (m_token.kind == Token::Kind::Keyword)
            node->names.push_back(next().text);
        else
            node->names.push_back(dottedName("a namespace"));
    } while (is(","));
    endStatement();
    return node;
}

} // namespace swfc::actionscript3
