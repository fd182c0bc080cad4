#include "swfc/actionscript/Script.h"

#include "swfc/actionscript/Compiler.h"
#include "swfc/actionscript/Parser.h"

namespace swfc::actionscript
{

std::vector<std::uint8_t> compileScript(const SourceText& source, ScriptContext& context)
{
    const std::size_t before = context.diagnostics.errorCount();
    const auto program =
        parse(source, ScriptKind::Statements, context.version, context.files, context.diagnostics);
    if (context.diagnostics.errorCount() != before) return {};
    return Compiler(context, source.path).run(program->main.body);
}

std::vector<CompiledHandler> compileHandlers(const SourceText& source, ScriptContext& context)
{
    const std::size_t before = context.diagnostics.errorCount();
    const auto program =
        parse(source, ScriptKind::Handlers, context.version, context.files, context.diagnostics);
    std::vector<CompiledHandler> compiled;
    if (context.diagnostics.errorCount() != before) return compiled;
    for (const Handler& handler : program->handlers) {
        compiled.push_back({handler.where, handler.clipEvent, handler.events, handler.key,
                            Compiler(context, source.path).run(handler.body->body)});
    }
    return compiled;
}

} // namespace swfc::actionscript
