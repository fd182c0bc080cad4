#include "script/vbscript/Parser.h"

#include "script/vbscript/Errors.h"
#include "script/vbscript/SimpleStatementParser.h"

namespace script::vbscript
{

namespace
{

using Kind = Statement::Kind;

class Parser : public SimpleStatementParser
{
public:
    using SimpleStatementParser::SimpleStatementParser;

    Result<std::unique_ptr<Tree>> wholeCode()
    {
        skipLineEnds();
        if (at(Keyword::Option)) {
            advance();
            CHECK_RESULT(expect(Keyword::Explicit, error::kSyntax));
            m_tree->optionExplicit = true;
            if (!atStatementEnd()) return failHere(error::kExpectedEndOfStatement);
        }
        m_tree->body = TRY_RESULT(block());
        if (!at(TokenKind::EndOfFile)) return unexpected();
        return std::move(m_tree);
    }

private:
    static constexpr int kMaxBlocks = 128; // nested one in the other

    Failed unexpected() const
    {
        if (at(Keyword::Loop)) return failHere(error::kLoopWithoutDo);
        if (at(Keyword::Next)) return failHere(error::kUnexpectedNext);
        return failHere(error::kExpectedStatement);
    }

    void skipLineEnds()
    {
        while (at(TokenKind::EndOfLine) || at(TokenKind::Colon)) advance();
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

    Result<Block> block() override
    {
        if (++m_blocks > kMaxBlocks) return failHere(error::kTooComplex);
        Block found;
        for (;;) {
            skipLineEnds();
            if (atBlockEnd()) break;
            CHECK_RESULT(statement(found));
            // The word that ends the block may follow at once: Sub P() x = 1 End Sub.
            const bool ended = at(TokenKind::EndOfLine) || at(TokenKind::Colon) || at(TokenKind::EndOfFile) ||
                               (at(Keyword::End) && at(TokenKind::Keyword));
            if (!ended) return failHere(error::kExpectedEndOfStatement);
        }
        --m_blocks;
        return found;
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
        default: return failHere(error::kExpectedStatement);
        }
    }

    Result<void> keywordStatement(Block& into)
    {
        switch (current().keyword) {
        case Keyword::Me:
        case Keyword::Nothing: return callOrAssignment(into);
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
        default: return failHere(error::kExpectedStatement);
        }
    }

    Result<void> ifStatement(Block& into)
    {
        auto* made = statementAt(Kind::If, current());
        Branch& first = made->branches.emplace_back();
        first.position = made->position;
        advance();
        first.conditions.push_back(TRY_RESULT(expression()));
        CHECK_RESULT(expect(Keyword::Then, error::kExpectedThen));
        into.push_back(made);
        if (!at(TokenKind::EndOfLine)) return singleLineIf(made);

        made->branches.back().body = TRY_RESULT(block());
        while (at(Keyword::ElseIf)) {
            Branch branch;
            branch.position = positionOf(current());
            advance();
            branch.conditions.push_back(TRY_RESULT(expression()));
            CHECK_RESULT(expect(Keyword::Then, error::kExpectedThen));
            branch.body = TRY_RESULT(block());
            made->branches.push_back(std::move(branch));
        }
        if (accept(Keyword::Else)) made->otherwise = TRY_RESULT(block());
        return endWord(Keyword::If, error::kExpectedIf);
    }

    Result<void> singleLineIf(Statement* made)
    {
        if (++m_blocks > kMaxBlocks) return failHere(error::kTooComplex);
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
            if (!atStatementEnd()) return failHere(error::kExpectedEndOfStatement);
            if (!at(TokenKind::Colon)) break;
        }
        return found;
    }

    Result<void> selectStatement(Block& into)
    {
        auto* made = statementAt(Kind::Select, current());
        advance();
        CHECK_RESULT(expect(Keyword::Case, error::kExpectedCase));
        made->value = TRY_RESULT(expression());
        if (!at(TokenKind::EndOfLine) && !at(TokenKind::Colon))
            return failHere(error::kExpectedEndOfStatement);
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
        return endWord(Keyword::Select, error::kExpectedSelect);
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
            CHECK_RESULT(expect(Keyword::In, error::kExpectedIn));
            made->value = TRY_RESULT(expression());
        } else {
            made->target = TRY_RESULT(loopVariable());
            CHECK_RESULT(expect(TokenKind::Equal, error::kExpectedEqual));
            made->value = TRY_RESULT(expression());
            CHECK_RESULT(expect(Keyword::To, error::kExpectedTo));
            made->limit = TRY_RESULT(expression());
            if (accept(Keyword::Step)) made->step = TRY_RESULT(expression());
        }
        if (!at(TokenKind::EndOfLine) && !at(TokenKind::Colon))
            return failHere(error::kExpectedEndOfStatement);
        return loopBody(made, Keyword::Next, error::kExpectedNext);
    }

    Result<Expression*> loopVariable()
    {
        Expression* made = node(Expression::Kind::Name, current());
        made->name = TRY_RESULT(identifier());
        if (at(TokenKind::Dot) || at(TokenKind::LeftParen)) return failHere(error::kInvalidLoopVariable);
        return made;
    }

    Result<bool> loopTest(Statement* made, Statement::Test test)
    {
        if (!at(Keyword::While) && !at(Keyword::Until)) return false;
        if (made->test != Statement::Test::None) return failHere(error::kExpectedEndOfStatement);
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
        if (!at(TokenKind::EndOfLine) && !at(TokenKind::Colon))
            return failHere(tested ? error::kExpectedEndOfStatement : error::kExpectedLoopTest);
        CHECK_RESULT(loopBody(made, Keyword::Loop, error::kExpectedLoop));
        const bool testedAfter = TRY_RESULT(loopTest(made, Statement::Test::After));
        if (!testedAfter && !tested && !atStatementEnd()) return failHere(error::kExpectedLoopTest);
        return {};
    }

    Result<void> whileStatement(Block& into)
    {
        auto* made = statementAt(Kind::Do, current());
        advance();
        made->test = Statement::Test::Before;
        made->value = TRY_RESULT(expression());
        into.push_back(made);
        return loopBody(made, Keyword::Wend, error::kExpectedWend);
    }

    Result<void> withStatement(Block& into)
    {
        auto* made = statementAt(Kind::With, current());
        advance();
        made->value = TRY_RESULT(expression());
        made->body = TRY_RESULT(block());
        into.push_back(made);
        return endWord(Keyword::With, error::kExpectedWith);
    }

    struct LoopScope {
        explicit LoopScope(int& depth) : count(depth) { ++count; }
        ~LoopScope() { --count; }
        LoopScope(const LoopScope&) = delete;
        LoopScope& operator=(const LoopScope&) = delete;
        int& count;
    };
};

} // namespace

Result<std::unique_ptr<Tree>> parseCode(std::u16string_view source, Names& names, SourceOptions options)
{
    auto tokens = TRY_RESULT(tokenize(source, options));
    return Parser(std::move(tokens), names).wholeCode();
}

Result<std::unique_ptr<Tree>> parseExpression(std::u16string_view source, Names& names)
{
    auto tokens = TRY_RESULT(tokenize(source, {}));
    return ExpressionParser(std::move(tokens), names).wholeExpression();
}

} // namespace script::vbscript
