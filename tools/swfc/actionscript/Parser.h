#pragma once

#include "swfc/actionscript/Lexer.h"
#include "swfc/actionscript/Tree.h"

#include <memory>

namespace swfc::actionscript
{

enum class ScriptKind {
    Statements, ///< a frame's script, or a file of classes
    Handlers,   ///< `on (...) { }` and `onClipEvent (...) { }`
};

/// Nesting of statements and expressions beyond this is refused; it bounds every recursion over the tree.
constexpr int kDeepestNesting = 256;
/// Links of one chain of operators, calls or members.
constexpr int kLongestChain = 1000;

/// Reads the statements of a script. After an error it goes on with the next statement.
/// @returns always a tree; worth compiling only when no error was reported.
std::unique_ptr<Program> parse(const SourceText& source, ScriptKind kind, int version, SourceFiles& files,
                               Diagnostics& diagnostics);

} // namespace swfc::actionscript
