#pragma once

#include "swfc/actionscript/ClassTable.h"
#include "swfc/actionscript/Lexer.h"

#include <cstdint>
#include <vector>

namespace swfc::actionscript
{

/// What all scripts of one movie share.
struct ScriptContext {
    int version; ///< of the movie, 4 to 8; decides which actions there are
    SourceFiles& files;
    Diagnostics& diagnostics;
    ClassTable& classes;
};

/// Compiles a frame's script.
/// @returns a whole block of actions, its end action included; meaningless once an error was reported.
std::vector<std::uint8_t> compileScript(const SourceText& source, ScriptContext& context);

struct CompiledHandler {
    Position where;
    bool clipEvent = false;          ///< `onClipEvent (...)`, not `on (...)`
    std::vector<std::string> events; ///< as written
    std::string key;                 ///< of keyPress
    std::vector<std::uint8_t> actions;
};

/// Compiles the handlers of a button or of a clip.
std::vector<CompiledHandler> compileHandlers(const SourceText& source, ScriptContext& context);

} // namespace swfc::actionscript
