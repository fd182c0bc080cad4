#pragma once

#include "script/vbscript/DeclarationParser.h"

namespace script::vbscript
{

/// The part of the parser that reads statements without others in them: assignments, calls, ReDim, Erase,
/// Exit, On Error.
class SimpleStatementParser : public DeclarationParser
{
public:
    using DeclarationParser::DeclarationParser;

protected:
    Result<void> assignment(Block& into);
    Result<void> explicitCall(Block& into);
    Result<void> callOrAssignment(Block& into);
    Result<void> reDim(Block& into);
    Result<void> erase(Block& into);
    Result<void> exitStatement(Block& into);
    Result<void> onError(Block& into);

private:
    Result<Expression*> reference();
};

} // namespace script::vbscript
