#include "script/ScriptControl.h"

#include "script/vbscript/Convert.h"
#include "script/vbscript/Engine.h"
#include "script/vbscript/Errors.h"
#include "script/vbscript/Text.h"

namespace script
{

namespace
{

constexpr int kInvalidProperty = 380;

std::u16string lineOf(std::u16string_view source, int line)
{
    for (; line > 1; --line) {
        const std::size_t end = source.find_first_of(u"\r\n");
        if (end == std::u16string_view::npos) return {};
        const bool pair = source.substr(end, 2) == u"\r\n";
        source.remove_prefix(end + (pair ? 2 : 1));
    }
    return std::u16string(source.substr(0, source.find_first_of(u"\r\n")));
}

vbscript::Language languageOf(const vbscript::Locale& locale)
{
    return &locale == &vbscript::Locale::russian() ? vbscript::Language::Russian
                                                   : vbscript::Language::English;
}

} // namespace

struct ScriptControl::Settings {
    Host neutralHost;
    Host* host = nullptr;
    const vbscript::Locale* locale = &vbscript::Locale::english();
    std::optional<vbscript::Language> language;
    vbscript::Limits limits;
    // Shared with the calls that are running in it, so that Reset during a call is safe. Null until it is
    // asked for: hosts reset more often than they run something, and an engine is dear.
    std::shared_ptr<vbscript::Engine> engine;
    vbscript::Options fresh; // as they were at the last Reset, which is when they take effect

    const std::shared_ptr<vbscript::Engine>& running()
    {
        if (!engine) engine = std::make_shared<vbscript::Engine>(*host, fresh, limits);
        return engine;
    }
};

ScriptControl::ScriptControl(Host* host) : m_settings(std::make_unique<Settings>())
{
    m_settings->host = host ? host : &m_settings->neutralHost;
}

// While the script's objects end, hosts may still turn to the control.
ScriptControl::~ScriptControl() { reset(); }

Result<void> ScriptControl::setLanguage(std::u16string_view language)
{
    if (!vbscript::sameText(language, u"vbscript")) {
        auto failed = fault(kInvalidProperty);
        failed.value()->description = u"A script engine for the language '" + std::u16string(language) +
                                      u"' is not available; only VBScript is";
        failed.value()->source = u"ScriptControl";
        auto result = finish(Result<Value>(std::move(failed)), {});
        return Failed(std::move(result).error());
    }
    m_language = language;
    reset();
    return {};
}

bool ScriptControl::setLocale(int id)
{
    const auto* found = vbscript::Locale::byId(id);
    if (found) m_settings->locale = found;
    return found != nullptr;
}

bool ScriptControl::setInterfaceLanguage(int id)
{
    const auto* found = vbscript::Locale::byId(id);
    if (!found) return false;
    m_settings->language = languageOf(*found);
    m_settings->fresh.language = *m_settings->language;
    if (m_settings->engine) m_settings->engine->setLanguage(*m_settings->language);
    return true;
}

void ScriptControl::setTimeout(std::chrono::milliseconds timeout)
{
    m_settings->limits.timeout = timeout;
    if (m_settings->engine) m_settings->engine->setLimits(m_settings->limits);
}

void ScriptControl::setHeapLimit(std::size_t bytes)
{
    m_settings->limits.heapBytes = bytes;
    if (m_settings->engine) m_settings->engine->setLimits(m_settings->limits);
}

void ScriptControl::setStepLimit(std::uint64_t steps)
{
    m_settings->limits.steps = steps;
    if (m_settings->engine) m_settings->engine->setLimits(m_settings->limits);
}

void ScriptControl::reset()
{
    vbscript::Options& fresh = m_settings->fresh;
    fresh.locale = m_settings->locale;
    fresh.safeSubset = m_safeSubset;
    fresh.htmlComments = m_htmlComments;
    fresh.language = m_settings->language.value_or(languageOf(*m_settings->locale));
    const auto old = std::exchange(m_settings->engine, nullptr);
    m_error.clear();
}

void ScriptControl::addObject(std::u16string_view name, Dispatch& object, bool addMembers)
{
    m_settings->running()->addObject(name, object, addMembers);
}

Result<Value> ScriptControl::finish(Result<Value> result, std::u16string_view source, int firstLine)
{
    if (result) return result;
    const Fault& fault = *result.error();
    m_error.number = fault.number;
    const vbscript::Language language = m_settings->fresh.language;
    m_error.source = vbscript::sourceOf(fault, language);
    m_error.description = vbscript::describe(fault, language);
    m_error.line = fault.line;
    m_error.column = fault.column;
    const bool showsText = vbscript::isCompilationError(fault.number);
    m_error.text = showsText ? lineOf(source, fault.line - firstLine + 1) : std::u16string();
    return result;
}

Result<void> ScriptControl::addCode(std::u16string_view code, int firstLine)
{
    const auto engine = m_settings->running();
    auto result = finish(engine->execute(code, false, firstLine), code, firstLine);
    if (!result) return Failed(std::move(result).error());
    return {};
}

Result<void> ScriptControl::executeStatement(std::u16string_view statement) { return addCode(statement); }

Result<Value> ScriptControl::eval(std::u16string_view expression)
{
    const auto engine = m_settings->running();
    return finish(engine->execute(expression, true, 1), expression);
}

Result<Value> ScriptControl::run(std::u16string_view procedure, Arguments arguments)
{
    const auto engine = m_settings->running();
    return finish(engine->callProcedure(procedure, arguments), {});
}

Result<std::u16string> ScriptControl::textOf(const Value& value)
{
    const auto engine = m_settings->running();
    const Value plain = TRY_RESULT(engine->plain(value));
    return vbscript::toText(plain, engine->locale());
}

} // namespace script
