#include "swfc/actionscript/ParserState.h"

namespace swfc::actionscript
{

void ParserState::blockBody(std::vector<Stmt*>& body)
{
    while (!is(Tok::RightBrace) && !is(Tok::End)) body.push_back(statement());
    expect(Tok::RightBrace, "after statements");
}

Stmt* ParserState::block()
{
    Stmt* node = makeStmt(StmtKind::Block);
    if (expect(Tok::LeftBrace, "before statements")) blockBody(node->body);
    return node;
}

Expr* ParserState::parenthesised(std::string_view statementName)
{
    expect(Tok::LeftParen, "after '" + std::string(statementName) + "'");
    Expr* inner = expression();
    expect(Tok::RightParen, "after the expression of '" + std::string(statementName) + "'");
    return inner;
}

Stmt* ParserState::conditionAndBody(StmtKind kind, std::string_view name)
{
    Stmt* node = makeStmt(kind);
    next();
    node->a = parenthesised(name);
    node->first = statement();
    return node;
}

Stmt* ParserState::statement()
{
    const Level level(*this);
    switch (peek().kind) {
    case Tok::LeftBrace: return block();
    case Tok::Semicolon: {
        Stmt* node = makeStmt(StmtKind::Empty);
        next();
        return node;
    }
    case Tok::Var: {
        Stmt* node = varStatement();
        endStatement();
        return node;
    }
    case Tok::If: return ifStatement();
    case Tok::While: return conditionAndBody(StmtKind::While, "while");
    case Tok::With: m_function->dynamicScope = true; return conditionAndBody(StmtKind::With, "with");
    case Tok::Do: {
        Stmt* node = makeStmt(StmtKind::DoWhile);
        next();
        node->first = statement();
        expect(Tok::While, "after the body of 'do'");
        node->a = parenthesised("while");
        accept(Tok::Semicolon);
        return node;
    }
    case Tok::For: return forStatement();
    case Tok::Switch: return switchStatement();
    case Tok::Try: return tryStatement();
    case Tok::Return:
    case Tok::Throw:
    case Tok::Break:
    case Tok::Continue: return jumpStatement();
    case Tok::Function: {
        Stmt* node = makeStmt(StmtKind::Function);
        next();
        std::string name = expectName("the name of a function");
        m_function->namedOnly.insert(name);
        node->function = functionTail(std::move(name), node->where);
        return node;
    }
    case Tok::Class:
    case Tok::Interface: return classStatement();
    case Tok::Import: {
        Stmt* node = makeStmt(StmtKind::Import);
        next();
        node->text = dottedName("the name of a class");
        endStatement();
        return node;
    }
    case Tok::Identifier: return nameStatement();
    default: {
        Stmt* node = makeStmt(StmtKind::Expression);
        node->a = expression();
        endStatement();
        return node;
    }
    }
}

/// Statements whose first word is a name elsewhere, labels, and plain expressions.
Stmt* ParserState::nameStatement()
{
    const Tok after = peek(1).kind;
    if (after == Tok::Colon) {
        Stmt* node = makeStmt(StmtKind::Labeled);
        node->text = next().text;
        next();
        node->first = statement();
        return node;
    }
    if (isWord("tellTarget") && after == Tok::LeftParen) {
        m_function->dynamicScope = true;
        return conditionAndBody(StmtKind::TellTarget, "tellTarget");
    }
    if (isWord("ifFrameLoaded") && after == Tok::LeftParen) {
        Stmt* node = conditionAndBody(StmtKind::IfFrameLoaded, "ifFrameLoaded");
        if (node->a->kind == ExprKind::Comma) node->a = node->a->b; // scene, frame
        if (accept(Tok::Else)) node->second = statement();
        return node;
    }
    const bool modifier = isWord("dynamic") || isWord("intrinsic");
    if (modifier && (after == Tok::Class || isWord("dynamic", 1) || isWord("intrinsic", 1)))
        return classStatement();
    Stmt* node = makeStmt(StmtKind::Expression);
    node->a = expression();
    endStatement();
    return node;
}

Stmt* ParserState::varStatement()
{
    Stmt* node = makeStmt(StmtKind::Var);
    next();
    do {
        node->names.push_back(expectName("the name of a variable"));
        declare(node->names.back());
        skipType();
        node->values.push_back(accept(Tok::Assign) ? assignment() : nullptr);
    } while (accept(Tok::Comma));
    return node;
}

/// A long row of else-ifs is read in a loop, so that it may be longer than the nesting limit; the compiler
/// walks it in the same way.
Stmt* ParserState::ifStatement()
{
    Stmt* const head = makeStmt(StmtKind::If);
    Stmt* node = head;
    while (true) {
        expect(Tok::If, "");
        node->a = parenthesised("if");
        node->first = statement();
        if (!accept(Tok::Else)) return head;
        if (!is(Tok::If)) {
            node->second = statement();
            return head;
        }
        node->second = makeStmt(StmtKind::If);
        node = node->second;
    }
}

Stmt* ParserState::forStatement()
{
    Stmt* node = makeStmt(StmtKind::For);
    next();
    expect(Tok::LeftParen, "after 'for'");
    m_noIn = true;
    if (is(Tok::Var)) {
        node->init = varStatement();
    } else if (!is(Tok::Semicolon)) {
        node->init = makeStmt(StmtKind::Expression);
        node->init->a = expression();
    }
    m_noIn = false;
    if (is(Tok::In) && node->init != nullptr) {
        const bool declared = node->init->kind == StmtKind::Var;
        const bool one = declared ? node->init->names.size() == 1 && node->init->values[0] == nullptr
                                  : assignable(node->init->a);
        if (!one) fail("one variable before 'in'");
        next();
        node->kind = StmtKind::ForIn;
        if (declared)
            node->names = node->init->names;
        else
            node->a = node->init->a;
        node->init = nullptr;
        node->b = expression();
        expect(Tok::RightParen, "after the object of 'for..in'");
    } else {
        expect(Tok::Semicolon, "after the start of 'for'");
        if (!is(Tok::Semicolon)) node->a = expression();
        expect(Tok::Semicolon, "after the condition of 'for'");
        if (!is(Tok::RightParen)) node->b = expression();
        expect(Tok::RightParen, "after the head of 'for'");
    }
    node->first = statement();
    return node;
}

Stmt* ParserState::switchStatement()
{
    Stmt* node = makeStmt(StmtKind::Switch);
    next();
    node->a = parenthesised("switch");
    expect(Tok::LeftBrace, "before cases");
    bool hasDefault = false;
    while (!is(Tok::RightBrace) && !m_failed) {
        SwitchCase entry;
        entry.where = peek().where;
        if (accept(Tok::Case)) {
            entry.test = expression();
        } else if (is(Tok::Default) && hasDefault) {
            fail("one 'default' in a 'switch'");
        } else if (expect(Tok::Default, "or 'case' in a 'switch'")) {
            hasDefault = true;
        }
        expect(Tok::Colon, "after a case");
        while (!is(Tok::Case) && !is(Tok::Default) && !is(Tok::RightBrace) && !is(Tok::End)) {
            entry.body.push_back(statement());
        }
        node->cases.push_back(std::move(entry));
    }
    expect(Tok::RightBrace, "after cases");
    return node;
}

Stmt* ParserState::tryStatement()
{
    Stmt* node = makeStmt(StmtKind::Try);
    next();
    node->first = block();
    while (accept(Tok::Catch)) {
        CatchClause clause;
        expect(Tok::LeftParen, "after 'catch'");
        clause.name = expectName("the name of a variable");
        declare(clause.name);
        if (accept(Tok::Colon)) clause.type = dottedName("the name of a type");
        if (clause.type == "Object") clause.type.clear();
        if (!clause.type.empty()) refer(clause.type.substr(0, clause.type.find('.')));
        expect(Tok::RightParen, "after the variable of 'catch'");
        clause.body = block();
        node->catches.push_back(std::move(clause));
    }
    if (accept(Tok::Finally)) node->second = block();
    if (node->catches.empty() && node->second == nullptr)
        fail("'catch' or 'finally' after the block of 'try'");
    return node;
}

Stmt* ParserState::jumpStatement()
{
    const Tok kind = peek().kind;
    Stmt* node = makeStmt(kind == Tok::Return  ? StmtKind::Return
                          : kind == Tok::Throw ? StmtKind::Throw
                          : kind == Tok::Break ? StmtKind::Break
                                               : StmtKind::Continue);
    next();
    const bool ends = is(Tok::Semicolon) || is(Tok::RightBrace) || is(Tok::End) || peek().newlineBefore;
    if (kind == Tok::Throw || (kind == Tok::Return && !ends))
        node->a = expression();
    else if (kind != Tok::Return && is(Tok::Identifier) && !ends)
        node->text = next().text;
    endStatement();
    return node;
}

Stmt* ParserState::classStatement()
{
    Stmt* node = makeStmt(StmtKind::Class);
    ClassDeclaration* declaration = m_program.addClass();
    node->declaration = declaration;
    while (is(Tok::Identifier)) declaration->isIntrinsic |= next().text == "intrinsic";
    declaration->isInterface = is(Tok::Interface);
    next();
    declaration->where = peek().where;
    declaration->name = dottedName("the name of a class");
    if (accept(Tok::Extends)) {
        declaration->base = dottedName("the name of a class");
        refer(declaration->base.substr(0, declaration->base.find('.')));
    }
    if (isWord("implements")) {
        next();
        do declaration->interfaces.push_back(dottedName("the name of an interface"));
        while (accept(Tok::Comma));
    }
    expect(Tok::LeftBrace, "before the members of a class");
    while (!is(Tok::RightBrace) && !m_failed) classMember(*declaration);
    expect(Tok::RightBrace, "after the members of a class");
    return node;
}

void ParserState::classMember(ClassDeclaration& declaration)
{
    if (accept(Tok::Semicolon)) return;
    ClassMember member;
    while (isWord("static") || isWord("public") || isWord("private")) {
        member.isStatic |= peek().text == "static";
        next();
    }
    member.where = peek().where;
    if (is(Tok::Var) && !declaration.isInterface) {
        next();
        do {
            member.name = expectName("the name of a field");
            skipType();
            member.value = accept(Tok::Assign) ? assignment() : nullptr;
            declaration.members.push_back(member);
        } while (accept(Tok::Comma));
        endStatement();
        return;
    }
    if (!expect(Tok::Function, declaration.isInterface ? "in an interface" : "or 'var' in a class")) return;
    member.kind = ClassMember::Kind::Method;
    const bool accessor = (isWord("get") || isWord("set")) && peek(1).kind == Tok::Identifier;
    if (accessor) member.kind = next().text == "get" ? ClassMember::Kind::Getter : ClassMember::Kind::Setter;
    member.name = expectName("the name of a method");
    if (declaration.isInterface || declaration.isIntrinsic) {
        // Signatures only: parameters and a type, no body.
        expect(Tok::LeftParen, "before parameters");
        while (!is(Tok::RightParen) && !m_failed) {
            expectName("the name of a parameter");
            skipType();
            if (!is(Tok::RightParen)) expect(Tok::Comma, "or ')' after a parameter");
        }
        expect(Tok::RightParen, "after parameters");
        skipType();
        endStatement();
        if (declaration.isIntrinsic) declaration.members.push_back(member);
        return;
    }
    member.function = functionTail({}, member.where);
    const std::string shortName = declaration.name.substr(declaration.name.rfind('.') + 1);
    if (!accessor && member.name == shortName)
        declaration.constructor = member.function;
    else
        declaration.members.push_back(member);
}

} // namespace swfc::actionscript
