#pragma once

#include "script/Dispatch.h"
#include "script/vbscript/Lexer.h"
#include "script/vbscript/Tree.h"

namespace script::vbscript
{

/// Reads a piece of source text.
/// @errors compilation errors with line and column; nesting beyond the parser's limits is one of them
Result<std::unique_ptr<Tree>> parseCode(std::u16string_view source, Names& names, SourceOptions options);

/// Reads one expression, which becomes the only statement of the tree's body: a Let without a target.
Result<std::unique_ptr<Tree>> parseExpression(std::u16string_view source, Names& names);

} // namespace script::vbscript
