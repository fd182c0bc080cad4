#include "script/vbscript/DeclarationParser.h"

#include "script/vbscript/Errors.h"

#include <algorithm>
#include <utility>

namespace script::vbscript
{

using Kind = Statement::Kind;

Statement* DeclarationParser::statementAt(Kind kind, const Token& token)
{
    Statement& made = m_tree->statements.emplace_back();
    made.kind = kind;
    made.position = positionOf(token);
    return &made;
}

Result<void> DeclarationParser::endWord(Keyword keyword, int number)
{
    CHECK_RESULT(expect(Keyword::End, error::kExpectedEnd));
    return expect(keyword, number);
}

Result<void> DeclarationParser::declaration(Block& into)
{
    const Token& token = current();
    const bool isPublic = accept(Keyword::Public);
    const bool isPrivate = !isPublic && accept(Keyword::Private);
    bool isDefault = false;
    if (at(Keyword::Default)) {
        if (!m_class) return failHere(error::kOutsideClass);
        if (!isPublic) return failHere(error::kDefaultNotPublic);
        advance();
        isDefault = true;
    }
    if (at(Keyword::Sub) || at(Keyword::Function) || (at(Keyword::Property) && m_class)) {
        return procedure(isPrivate, isDefault);
    }
    if (isDefault) return failHere(error::kDefaultOfVariable);
    if (at(Keyword::Property)) return failHere(error::kOutsideClass);
    if (accept(Keyword::Const)) {
        if (m_class && !m_inProcedure) return failHere(error::kSyntax);
        return constants(into, token);
    }
    if (at(Keyword::Class)) {
        if (isPublic || isPrivate || m_class) return failHere(error::kSyntax);
        return classDeclaration();
    }
    const bool dim = accept(Keyword::Dim);
    if (!dim && !isPublic && !isPrivate) return failHere(error::kSyntax);
    if ((isPublic || isPrivate) && (dim || m_inProcedure))
        return failHere(m_inProcedure ? error::kSyntax : error::kExpectedIdentifier);
    auto* made = statementAt(Kind::Dim, token);
    do {
        made->declarators.push_back(TRY_RESULT(variable()));
        made->declarators.back().isPrivate = isPrivate;
    } while (accept(TokenKind::Comma));
    if (m_class && !m_inProcedure) {
        for (Declarator& field : made->declarators) m_class->fields.push_back(std::move(field));
    } else {
        into.push_back(made);
    }
    return {};
}

Result<Declarator> DeclarationParser::variable()
{
    Declarator made;
    made.position = positionOf(current());
    made.name = TRY_RESULT(identifier());
    if (!accept(TokenKind::LeftParen)) return made;
    made.isArray = true;
    if (accept(TokenKind::RightParen)) return made;
    do {
        if (!at(TokenKind::Number) || !current().value.isWhole())
            return failHere(error::kExpectedIntegerConstant);
        made.bounds.push_back(current().value.whole());
        advance();
    } while (accept(TokenKind::Comma));
    std::size_t count = 0;
    if (made.bounds.size() > 60 || !Array::countElements(made.bounds, count))
        return failHere(error::kTooComplex);
    CHECK_RESULT(expect(TokenKind::RightParen, error::kExpectedRightParen));
    return made;
}

Result<void> DeclarationParser::constants(Block& into, const Token& token)
{
    auto* made = statementAt(Kind::Const, token);
    do {
        Declarator constant;
        constant.position = positionOf(current());
        constant.name = TRY_RESULT(identifier());
        CHECK_RESULT(expect(TokenKind::Equal, error::kExpectedEqual));
        constant.literal = TRY_RESULT(constantValue());
        made->declarators.push_back(std::move(constant));
    } while (accept(TokenKind::Comma));
    into.push_back(made);
    return {};
}

// A literal, perhaps with signs and parentheses.
Result<Value> DeclarationParser::constantValue()
{
    int open = 0;
    bool negative = false;
    bool isSigned = false;
    for (;; advance()) {
        if (at(TokenKind::LeftParen)) {
            ++open;
        } else if (at(TokenKind::Minus)) {
            negative = !negative;
            isSigned = true;
        } else if (at(TokenKind::Plus)) {
            isSigned = true;
        } else {
            break;
        }
    }
    Value value = current().value;
    switch (current().kind) {
    case TokenKind::Number: break;
    case TokenKind::String:
    case TokenKind::Date:
        if (isSigned) return failHere(error::kExpectedLiteral);
        break;
    default:
        if (at(Keyword::True))
            value = Value::boolean(true);
        else if (at(Keyword::False))
            value = Value::boolean(false);
        else if (at(Keyword::Null))
            value = Value::null();
        else if (at(Keyword::Nothing))
            value = Value::object(nullptr);
        else if (!at(Keyword::Empty))
            return failHere(error::kExpectedLiteral);
        if (isSigned) return failHere(error::kExpectedLiteral);
    }
    advance();
    for (; open > 0; --open) CHECK_RESULT(expect(TokenKind::RightParen, error::kExpectedRightParen));
    if (!negative) return value;
    if (value.isWhole()) return Value::number(-std::int64_t{value.whole()});
    return Value::real(-value.asReal());
}

Result<void> DeclarationParser::procedure(bool isPrivate, bool isDefault)
{
    // Blocks of statements outside procedures may hold procedures, other procedures may not.
    if (m_inProcedure) return failHere(error::kSyntax);
    Procedure& made = m_tree->procedureNodes.emplace_back();
    made.isPrivate = isPrivate;
    made.isDefault = isDefault;
    Keyword closing = current().keyword;
    const int closingError = closing == Keyword::Sub        ? error::kExpectedSub
                             : closing == Keyword::Function ? error::kExpectedFunction
                                                            : error::kExpectedProperty;
    made.kind = closing == Keyword::Sub ? Procedure::Kind::Sub : Procedure::Kind::Function;
    advance();
    if (closing == Keyword::Property) {
        const Token& word = current();
        if (accept(Keyword::Get))
            made.kind = Procedure::Kind::PropertyGet;
        else if (accept(Keyword::Let))
            made.kind = Procedure::Kind::PropertyLet;
        else if (accept(Keyword::Set))
            made.kind = Procedure::Kind::PropertySet;
        else
            return failHere(error::kExpectedPropertyKind);
        if (isDefault && made.kind != Procedure::Kind::PropertyGet)
            return failAtToken(error::kDefaultNotGet, word);
    }
    made.position = positionOf(current());
    made.name = TRY_RESULT(identifier());
    if (accept(TokenKind::LeftParen) && !accept(TokenKind::RightParen)) {
        do {
            Parameter parameter;
            if (accept(Keyword::ByVal))
                parameter.byReference = false;
            else
                accept(Keyword::ByRef);
            const Token& token = current();
            parameter.name = TRY_RESULT(identifier());
            if (accept(TokenKind::LeftParen))
                CHECK_RESULT(expect(TokenKind::RightParen, error::kExpectedRightParen));
            const auto isSame = [&](const Parameter& other) { return other.name == parameter.name; };
            if (std::any_of(made.parameters.begin(), made.parameters.end(), isSame))
                return failAtToken(error::kNameRedefined, token);
            made.parameters.push_back(parameter);
        } while (accept(TokenKind::Comma));
        CHECK_RESULT(expect(TokenKind::RightParen, error::kExpectedRightParen));
    }
    const bool assigns =
        made.kind == Procedure::Kind::PropertyLet || made.kind == Procedure::Kind::PropertySet;
    if (assigns && made.parameters.empty()) return failHere(error::kLetWithoutArgument);
    // The body may follow on the same line. Loops around a procedure are not its own.
    m_inProcedure = true;
    m_procedureWord = closing;
    const int forLoops = std::exchange(m_forLoops, 0);
    const int doLoops = std::exchange(m_doLoops, 0);
    made.body = TRY_RESULT(block());
    made.end = positionOf(current());
    CHECK_RESULT(endWord(closing, closingError));
    m_inProcedure = false;
    m_forLoops = forLoops;
    m_doLoops = doLoops;
    (m_class ? m_class->procedures : m_tree->procedures).push_back(&made);
    return {};
}

Result<void> DeclarationParser::classDeclaration()
{
    if (m_inProcedure || m_blocks > 1) return failHere(error::kSyntax);
    ClassDeclaration& made = m_tree->classNodes.emplace_back();
    advance();
    made.position = positionOf(current());
    made.name = TRY_RESULT(identifier());
    m_class = &made;
    Block none;
    none = TRY_RESULT(block());
    CHECK_RESULT(endWord(Keyword::Class, error::kExpectedClass));
    m_class = nullptr;
    m_tree->classes.push_back(&made);
    return {};
}

} // namespace script::vbscript
