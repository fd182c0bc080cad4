#pragma once

#include "script/vbscript/ExpressionParser.h"

namespace script::vbscript
{

/// The part of the parser that reads declarations: variables, constants, procedures and classes.
class DeclarationParser : public ExpressionParser
{
public:
    using ExpressionParser::ExpressionParser;
    virtual ~DeclarationParser() = default;

protected:
    /// Statements up to the word that closes the block they stand in.
    virtual Result<Block> block() = 0;

    Result<void> declaration(Block& into);
    Statement* statementAt(Statement::Kind kind, const Token& token);
    Result<void> endWord(Keyword keyword, int number);

    int m_blocks = 0; // nested one in the other
    int m_forLoops = 0;
    int m_doLoops = 0;
    bool m_inProcedure = false;
    Keyword m_procedureWord = Keyword::None;
    ClassDeclaration* m_class = nullptr;

private:
    Result<Declarator> variable();
    Result<void> constants(Block& into, const Token& token);
    Result<Value> constantValue();
    Result<void> procedure(bool isPrivate, bool isDefault);
    Result<void> classDeclaration();
};

} // namespace script::vbscript
