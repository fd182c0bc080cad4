#include "script/vbscript/Parser.h"

#include "script/vbscript/Errors.h"
#include "script/vbscript/ExpressionParser.h"

#include <algorithm>

namespace script::vbscript
{

namespace
{

using Kind = Statement::Kind;

class Parser : public ExpressionParser
{
public:
    using ExpressionParser::ExpressionParser;

    Result<std::unique_ptr<Tree>> wholeCode()
    {
        skipLineEnds();
        if (at(Keyword::Option)) {
            advance();
            CHECK_RESULT(expect(Keyword::Explicit, error::kSyntax));
            m_tree->optionExplicit = true;
            if (!atStatementEnd()) return failHere(1025);
        }
        m_tree->body = TRY_RESULT(block());
        if (!at(TokenKind::EndOfFile)) return unexpected();
        return std::move(m_tree);
    }

private:
    static constexpr int kMaxBlocks = 128; // nested one in the other

    Failed unexpected() const
    {
        if (at(Keyword::Loop)) return failHere(1038);
        if (at(Keyword::Next)) return failHere(1055);
        return failHere(error::kSyntax);
    }

    void skipLineEnds()
    {
        while (at(TokenKind::EndOfLine) || at(TokenKind::Colon)) advance();
    }

    Statement* statementAt(Kind kind, const Token& token)
    {
        Statement& made = m_tree->statements.emplace_back();
        made.kind = kind;
        made.position = positionOf(token);
        return &made;
    }

    // Whether the current word closes the block it stands in; whose end it is, the caller checks.
    [[nodiscard]] bool atBlockEnd() const
    {
        if (at(TokenKind::EndOfFile)) return true;
        if (!at(TokenKind::Keyword)) return false;
        switch (current().keyword) {
        case Keyword::End:
        case Keyword::Else:
        case Keyword::ElseIf:
        case Keyword::Case:
        case Keyword::Loop:
        case Keyword::Next:
        case Keyword::Wend: return true;
        default: return false;
        }
    }

    Result<Block> block()
    {
        if (++m_blocks > kMaxBlocks) return failHere(1001);
        Block found;
        for (;;) {
            skipLineEnds();
            if (atBlockEnd()) break;
            CHECK_RESULT(statement(found));
            if (!at(TokenKind::EndOfLine) && !at(TokenKind::Colon) && !at(TokenKind::EndOfFile))
                return failHere(1025);
        }
        --m_blocks;
        return found;
    }

    Result<void> endWord(Keyword keyword, int number)
    {
        CHECK_RESULT(expect(Keyword::End, 1014));
        return expect(keyword, number);
    }

    Result<void> statement(Block& into)
    {
        const Token& token = current();
        if (token.kind == TokenKind::Identifier && token.keyword != Keyword::None) {
            if (at(Keyword::Default) && m_class) return declaration(into);
            // The others (Property, Error, Step, Execute...) are plain names at a statement's start, except:
            const Keyword next = ahead().keyword;
            const bool declares = next == Keyword::Get || next == Keyword::Let || next == Keyword::Set;
            if (at(Keyword::Property) && (m_class || declares)) return declaration(into);
        }
        if (m_class && !m_inProcedure) return declaration(into);
        switch (token.kind) {
        case TokenKind::Identifier:
        case TokenKind::LeadingDot: return callOrAssignment(into);
        case TokenKind::Keyword: return keywordStatement(into);
        default:
            return failHere(
                token.kind == TokenKind::Number || token.kind == TokenKind::String ? 1024 : error::kSyntax);
        }
    }

    Result<void> keywordStatement(Block& into)
    {
        switch (current().keyword) {
        case Keyword::Me: return callOrAssignment(into);
        case Keyword::Dim:
        case Keyword::Const:
        case Keyword::Public:
        case Keyword::Private:
        case Keyword::Sub:
        case Keyword::Function:
        case Keyword::Class: return declaration(into);
        case Keyword::ReDim: return reDim(into);
        case Keyword::Erase: return erase(into);
        case Keyword::Set:
        case Keyword::Let: return assignment(into);
        case Keyword::Call: return explicitCall(into);
        case Keyword::If: return ifStatement(into);
        case Keyword::Select: return selectStatement(into);
        case Keyword::For: return forStatement(into);
        case Keyword::Do: return doStatement(into);
        case Keyword::While: return whileStatement(into);
        case Keyword::With: return withStatement(into);
        case Keyword::Exit: return exitStatement(into);
        case Keyword::On: return onError(into);
        case Keyword::Stop:
            into.push_back(statementAt(Kind::Stop, current()));
            advance();
            return {};
        case Keyword::Option: return failHere(error::kSyntax);
        default: return failHere(error::kSyntax);
        }
    }

    // ---- declarations

    Result<void> declaration(Block& into)
    {
        const Token& token = current();
        const bool isPublic = accept(Keyword::Public);
        const bool isPrivate = !isPublic && accept(Keyword::Private);
        bool isDefault = false;
        if (at(Keyword::Default)) {
            if (!m_class) return failHere(1048);
            advance();
            if (!isPublic) return failHere(1057);
            isDefault = true;
        }
        if (at(Keyword::Sub) || at(Keyword::Function) || (at(Keyword::Property) && m_class)) {
            return procedure(isPrivate, isDefault);
        }
        if (isDefault) return failHere(1056);
        if (at(Keyword::Property)) return failHere(1048);
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
            return failHere(m_inProcedure ? error::kSyntax : 1010);
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

    Result<Declarator> variable()
    {
        Declarator made;
        made.position = positionOf(current());
        made.name = TRY_RESULT(identifier());
        if (!accept(TokenKind::LeftParen)) return made;
        made.isArray = true;
        if (accept(TokenKind::RightParen)) return made;
        do {
            if (!at(TokenKind::Number) || !current().value.isWhole()) return failHere(1026);
            made.bounds.push_back(current().value.whole());
            advance();
        } while (accept(TokenKind::Comma));
        std::size_t count = 0;
        if (made.bounds.size() > 60 || !Array::countElements(made.bounds, count)) return failHere(1001);
        CHECK_RESULT(expect(TokenKind::RightParen, 1006));
        return made;
    }

    Result<void> constants(Block& into, const Token& token)
    {
        auto* made = statementAt(Kind::Const, token);
        do {
            Declarator constant;
            constant.position = positionOf(current());
            constant.name = TRY_RESULT(identifier());
            CHECK_RESULT(expect(TokenKind::Equal, 1011));
            constant.literal = TRY_RESULT(constantValue());
            made->declarators.push_back(std::move(constant));
        } while (accept(TokenKind::Comma));
        into.push_back(made);
        return {};
    }

    // A literal, perhaps with signs and parentheses.
    Result<Value> constantValue()
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
            if (isSigned) return failHere(1045);
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
                return failHere(1045);
            if (isSigned) return failHere(1045);
        }
        advance();
        for (; open > 0; --open) CHECK_RESULT(expect(TokenKind::RightParen, 1006));
        if (!negative) return value;
        if (value.isWhole()) return Value::number(-std::int64_t{value.whole()});
        return Value::real(-value.asReal());
    }

    Result<void> procedure(bool isPrivate, bool isDefault)
    {
        if (m_inProcedure || m_blocks > (m_class ? 2 : 1)) return failHere(error::kSyntax);
        Procedure& made = m_tree->procedureNodes.emplace_back();
        made.position = positionOf(current());
        made.isPrivate = isPrivate;
        made.isDefault = isDefault;
        Keyword closing = current().keyword;
        const int closingError = closing == Keyword::Sub ? 1016 : closing == Keyword::Function ? 1015 : 1050;
        made.kind = closing == Keyword::Sub ? Procedure::Kind::Sub : Procedure::Kind::Function;
        advance();
        if (closing == Keyword::Property) {
            if (accept(Keyword::Get))
                made.kind = Procedure::Kind::PropertyGet;
            else if (accept(Keyword::Let))
                made.kind = Procedure::Kind::PropertyLet;
            else if (accept(Keyword::Set))
                made.kind = Procedure::Kind::PropertySet;
            else
                return failHere(1049);
            if (isDefault && made.kind != Procedure::Kind::PropertyGet) return failHere(1058);
        }
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
                if (accept(TokenKind::LeftParen)) CHECK_RESULT(expect(TokenKind::RightParen, 1006));
                const auto isSame = [&](const Parameter& other) { return other.name == parameter.name; };
                if (std::any_of(made.parameters.begin(), made.parameters.end(), isSame)) {
                    auto failed = failHere(1041);
                    failed.value()->column = token.column;
                    return failed;
                }
                made.parameters.push_back(parameter);
            } while (accept(TokenKind::Comma));
            CHECK_RESULT(expect(TokenKind::RightParen, 1006));
        }
        const bool assigns =
            made.kind == Procedure::Kind::PropertyLet || made.kind == Procedure::Kind::PropertySet;
        if (assigns && made.parameters.empty()) return failHere(1054);
        // The body may follow on the same line.
        m_inProcedure = true;
        m_procedureWord = closing;
        made.body = TRY_RESULT(block());
        made.end = positionOf(current());
        CHECK_RESULT(endWord(closing, closingError));
        m_inProcedure = false;
        (m_class ? m_class->procedures : m_tree->procedures).push_back(&made);
        return {};
    }

    Result<void> classDeclaration()
    {
        if (m_inProcedure || m_blocks > 1) return failHere(error::kSyntax);
        ClassDeclaration& made = m_tree->classNodes.emplace_back();
        made.position = positionOf(current());
        advance();
        made.name = TRY_RESULT(identifier());
        m_class = &made;
        Block none;
        none = TRY_RESULT(block());
        CHECK_RESULT(endWord(Keyword::Class, 1047));
        m_class = nullptr;
        m_tree->classes.push_back(&made);
        return {};
    }

    // ---- assignments and calls

    Result<void> assignment(Block& into)
    {
        auto* made = statementAt(at(Keyword::Set) ? Kind::Set : Kind::Let, current());
        advance();
        made->target = TRY_RESULT(reference());
        CHECK_RESULT(expect(TokenKind::Equal, 1011));
        made->value = TRY_RESULT(expression());
        into.push_back(made);
        return {};
    }

    Result<Expression*> reference()
    {
        if (at(Keyword::Me)) {
            Expression* me = node(Expression::Kind::Me, current());
            advance();
            return postfix(me);
        }
        if (!at(TokenKind::Identifier) && !at(TokenKind::LeadingDot)) return failHere(1010);
        Expression* named = TRY_RESULT(nameOrMember());
        return postfix(named);
    }

    Result<void> explicitCall(Block& into)
    {
        auto* made = statementAt(Kind::Call, current());
        advance();
        made->value = TRY_RESULT(reference());
        if (made->value->kind != Expression::Kind::Call) made->value = call(made->value, {});
        into.push_back(made);
        return {};
    }

    // foo, foo args, foo(arg), foo(i) = value, a.b(1).c args: which one shows only at the end.
    Result<void> callOrAssignment(Block& into)
    {
        const Token& first = current();
        Expression* left = nullptr;
        if (at(Keyword::Me)) {
            left = node(Expression::Kind::Me, first);
            advance();
        } else {
            left = TRY_RESULT(nameOrMember());
        }
        bool called = false;
        for (int length = 0;; ++length) {
            if (length > kMaxChain) return failHere(1001);
            if (accept(TokenKind::Dot)) {
                if (!at(TokenKind::Identifier)) return failHere(1010);
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
            if (found.size() > 1) return failHere(1044);
            for (Expression* argument : found) argument->parenthesised = true;
            left = call(left, std::move(found));
            called = true;
            break;
        }
        if (!called && at(TokenKind::Equal)) {
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

    Result<void> reDim(Block& into)
    {
        auto* made = statementAt(Kind::ReDim, current());
        advance();
        made->preserve = accept(Keyword::Preserve);
        do {
            Declarator array;
            array.position = positionOf(current());
            array.name = TRY_RESULT(identifier());
            CHECK_RESULT(expect(TokenKind::LeftParen, 1005));
            do {
                array.newBounds.push_back(TRY_RESULT(expression()));
            } while (accept(TokenKind::Comma));
            if (array.newBounds.size() > 60) return failHere(1001);
            CHECK_RESULT(expect(TokenKind::RightParen, 1006));
            made->declarators.push_back(std::move(array));
        } while (accept(TokenKind::Comma));
        into.push_back(made);
        return {};
    }

    Result<void> erase(Block& into)
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

    // ---- control flow

    Result<void> ifStatement(Block& into)
    {
        auto* made = statementAt(Kind::If, current());
        Branch& first = made->branches.emplace_back();
        first.position = made->position;
        advance();
        first.conditions.push_back(TRY_RESULT(expression()));
        CHECK_RESULT(expect(Keyword::Then, 1017));
        into.push_back(made);
        if (!at(TokenKind::EndOfLine)) return singleLineIf(made);

        made->branches.back().body = TRY_RESULT(block());
        while (at(Keyword::ElseIf)) {
            Branch branch;
            branch.position = positionOf(current());
            advance();
            branch.conditions.push_back(TRY_RESULT(expression()));
            CHECK_RESULT(expect(Keyword::Then, 1017));
            branch.body = TRY_RESULT(block());
            made->branches.push_back(std::move(branch));
        }
        if (accept(Keyword::Else)) made->otherwise = TRY_RESULT(block());
        return endWord(Keyword::If, 1012);
    }

    Result<void> singleLineIf(Statement* made)
    {
        if (++m_blocks > kMaxBlocks) return failHere(1001);
        made->branches.back().body = TRY_RESULT(lineOfStatements());
        if (accept(Keyword::Else)) made->otherwise = TRY_RESULT(lineOfStatements());
        // "If a Then b End If" on one line is allowed.
        if (at(Keyword::End) && ahead().keyword == Keyword::If) {
            advance();
            advance();
        }
        --m_blocks;
        return {};
    }

    Result<Block> lineOfStatements()
    {
        Block found;
        for (;;) {
            while (at(TokenKind::Colon)) advance();
            if (at(TokenKind::EndOfLine) || at(TokenKind::EndOfFile) || at(Keyword::Else)) break;
            if (at(Keyword::End) && ahead().keyword == Keyword::If) break;
            CHECK_RESULT(statement(found));
            if (!atStatementEnd()) return failHere(1025);
            if (!at(TokenKind::Colon)) break;
        }
        return found;
    }

    Result<void> selectStatement(Block& into)
    {
        auto* made = statementAt(Kind::Select, current());
        advance();
        CHECK_RESULT(expect(Keyword::Case, 1021));
        made->value = TRY_RESULT(expression());
        if (!at(TokenKind::EndOfLine) && !at(TokenKind::Colon)) return failHere(1025);
        skipLineEnds();
        while (at(Keyword::Case)) {
            Branch branch;
            branch.position = positionOf(current());
            advance();
            if (accept(Keyword::Else)) {
                made->otherwise = TRY_RESULT(block());
                break;
            }
            do {
                branch.conditions.push_back(TRY_RESULT(expression()));
            } while (accept(TokenKind::Comma));
            branch.body = TRY_RESULT(block());
            made->branches.push_back(std::move(branch));
        }
        into.push_back(made);
        return endWord(Keyword::Select, 1022);
    }

    Result<void> loopBody(Statement* made, Keyword closing, int number)
    {
        made->body = TRY_RESULT(block());
        made->closing = positionOf(current());
        return expect(closing, number);
    }

    Result<void> forStatement(Block& into)
    {
        auto* made = statementAt(Kind::For, current());
        advance();
        into.push_back(made);
        const LoopScope scope(m_forLoops);
        if (accept(Keyword::Each)) {
            made->kind = Kind::ForEach;
            made->target = TRY_RESULT(loopVariable());
            CHECK_RESULT(expect(Keyword::In, 1046));
            made->value = TRY_RESULT(expression());
        } else {
            made->target = TRY_RESULT(loopVariable());
            CHECK_RESULT(expect(TokenKind::Equal, 1011));
            made->value = TRY_RESULT(expression());
            CHECK_RESULT(expect(Keyword::To, 1013));
            made->limit = TRY_RESULT(expression());
            if (accept(Keyword::Step)) made->step = TRY_RESULT(expression());
        }
        if (!at(TokenKind::EndOfLine) && !at(TokenKind::Colon)) return failHere(1025);
        return loopBody(made, Keyword::Next, 1020);
    }

    Result<Expression*> loopVariable()
    {
        Expression* made = node(Expression::Kind::Name, current());
        made->name = TRY_RESULT(identifier());
        if (at(TokenKind::Dot) || at(TokenKind::LeftParen)) return failHere(1040);
        return made;
    }

    Result<bool> loopTest(Statement* made, Statement::Test test)
    {
        if (!at(Keyword::While) && !at(Keyword::Until)) return false;
        if (made->test != Statement::Test::None) return failHere(1025);
        made->test = test;
        made->until = at(Keyword::Until);
        advance();
        made->value = TRY_RESULT(expression());
        return true;
    }

    Result<void> doStatement(Block& into)
    {
        auto* made = statementAt(Kind::Do, current());
        advance();
        into.push_back(made);
        const LoopScope scope(m_doLoops);
        const bool tested = TRY_RESULT(loopTest(made, Statement::Test::Before));
        if (!at(TokenKind::EndOfLine) && !at(TokenKind::Colon)) return failHere(tested ? 1025 : 1028);
        CHECK_RESULT(loopBody(made, Keyword::Loop, 1019));
        const bool testedAfter = TRY_RESULT(loopTest(made, Statement::Test::After));
        if (!testedAfter && !tested && !atStatementEnd()) return failHere(1028);
        return {};
    }

    Result<void> whileStatement(Block& into)
    {
        auto* made = statementAt(Kind::Do, current());
        advance();
        made->test = Statement::Test::Before;
        made->value = TRY_RESULT(expression());
        into.push_back(made);
        return loopBody(made, Keyword::Wend, 1018);
    }

    Result<void> withStatement(Block& into)
    {
        auto* made = statementAt(Kind::With, current());
        advance();
        made->value = TRY_RESULT(expression());
        made->body = TRY_RESULT(block());
        into.push_back(made);
        return endWord(Keyword::With, 1029);
    }

    Result<void> exitStatement(Block& into)
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
            return failHere(1039);
        }
        advance();
        into.push_back(made);
        return {};
    }

    Result<void> onError(Block& into)
    {
        auto* made = statementAt(Kind::OnErrorResumeNext, current());
        advance();
        CHECK_RESULT(expect(Keyword::Error, error::kSyntax));
        if (accept(Keyword::Resume)) {
            CHECK_RESULT(expect(Keyword::Next, 1020));
        } else {
            CHECK_RESULT(expect(Keyword::GoTo, error::kSyntax));
            const bool zero =
                at(TokenKind::Number) && current().value.isWhole() && current().value.whole() == 0;
            if (!zero) return failHere(error::kSyntax);
            advance();
            made->kind = Kind::OnErrorGoToZero;
        }
        into.push_back(made);
        return {};
    }

    struct LoopScope {
        explicit LoopScope(int& depth) : count(depth) { ++count; }
        ~LoopScope() { --count; }
        LoopScope(const LoopScope&) = delete;
        LoopScope& operator=(const LoopScope&) = delete;
        int& count;
    };

    int m_blocks = 0;
    int m_forLoops = 0;
    int m_doLoops = 0;
    bool m_inProcedure = false;
    Keyword m_procedureWord = Keyword::None;
    ClassDeclaration* m_class = nullptr;
};

} // namespace

Result<std::unique_ptr<Tree>> parseCode(std::u16string_view source, Names& names)
{
    auto tokens = TRY_RESULT(tokenize(source));
    return Parser(std::move(tokens), names).wholeCode();
}

Result<std::unique_ptr<Tree>> parseExpression(std::u16string_view source, Names& names)
{
    auto tokens = TRY_RESULT(tokenize(source));
    return ExpressionParser(std::move(tokens), names).wholeExpression();
}

} // namespace script::vbscript
