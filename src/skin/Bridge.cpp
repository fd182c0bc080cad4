#include "skin/Bridge.h"

#include "base/Failure.h"
#include "core/Application.h"
#include "skin/Texts.h"

#include <algorithm>
#include <chrono>

namespace skin
{
namespace
{

/// How often the time is looked at, and whether the program is to end.
constexpr std::chrono::milliseconds kSlice{100};
constexpr int kRussian = 1049; // the language of the program's own texts
constexpr std::size_t kScriptBytes = std::size_t{256} << 20;
/// The engine's number for a call that ran out of time.
constexpr int kInterrupted = -2147467260;
/// Lines of a library are counted from here on in the engine, so that its errors tell where they come from.
constexpr int kLibraryLines = 1'000'000;

std::u16string_view view(const QString& string)
{
    return {reinterpret_cast<const char16_t*>(string.utf16()), static_cast<std::size_t>(string.size())};
}

base::Failure failureOf(const script::ScriptError& error)
{
    return base::Failure(error.number, QString::fromStdU16String(error.source).toStdString(),
                         QString::fromStdU16String(error.description).toStdString());
}

} // namespace

Expression::Expression(QString text) : m_text(std::move(text)), m_kind(Kind::NotYetCompiled)
{
    bool isNumber = false;
    const QString trimmed = m_text.trimmed();
    const int number = trimmed.isEmpty() ? 0 : trimmed.toInt(&isNumber);
    if (!isNumber && !trimmed.isEmpty()) return;
    m_kind = Kind::Number;
    m_number = number;
}

class Bridge::Call
{
public:
    explicit Call(Bridge& bridge) : m_bridge(bridge)
    {
        if (m_bridge.m_depth++ > 0) {
            m_bridge.count();
            return;
        }
        m_bridge.m_callMs = 0;
        m_bridge.m_questions = 0;
        m_bridge.m_isEnding = false;
        m_bridge.m_since.start();
    }
    ~Call()
    {
        m_bridge.count();
        --m_bridge.m_depth;
    }
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

private:
    Bridge& m_bridge;
};

Bridge::Bridge(SkinHost& host, script::Host* scriptHost)
    : m_host(host), m_scriptHost(scriptHost), m_engine(this)
{
    m_engine.setTimeout(kSlice);
    m_engine.setHeapLimit(kScriptBytes);
    m_engine.setUseSafeSubset(true);
    m_engine.setInterfaceLanguage(kRussian);
    m_engine.reset();
}

void Bridge::count()
{
    // A script is looked at more often than that; what takes longer is a dialog, or other work of the host's.
    constexpr double kNsPerMs = 1e6, kLongestMs = 250;
    const double ms = std::min(static_cast<double>(m_since.nsecsElapsed()) / kNsPerMs, kLongestMs);
    m_since.start();
    m_callMs += ms;
    m_passMs += ms;
}

void Bridge::beginPass()
{
    if (m_passes++ > 0) return;
    if (m_depth > 0) count(); // what ran before is not part of it
    m_passMs = 0;
}

bool Bridge::endPass()
{
    const bool overran = hasOverrun();
    return --m_passes == 0 && overran;
}

bool Bridge::isOver() const { return m_isEnding || m_host.hasEnded() || hasOverrun(); }

bool Bridge::continueAfterTimeout()
{
    count();
    return !isOver() && m_callMs < kCallMs;
}

bool Bridge::mayAsk()
{
    count();
    if (++m_questions > kMaxQuestions) m_isEnding = true;
    if (m_passes > 0 && ++m_unprompted > kMaxUnprompted) m_passMs = kPassMs + 1;
    return m_scriptHost != nullptr && !isOver();
}

int Bridge::messageBox(const std::u16string& text, int buttons, const std::u16string& title)
{
    constexpr int kCancel = 2;
    if (!mayAsk()) return m_scriptHost != nullptr ? kCancel : script::Host::messageBox(text, buttons, title);
    const int answer = m_scriptHost->messageBox(text, buttons, title);
    m_since.start();
    return answer;
}

std::optional<std::u16string> Bridge::inputBox(const std::u16string& text, const std::u16string& title,
                                               const std::u16string& preset)
{
    if (!mayAsk()) return std::nullopt;
    auto answer = m_scriptHost->inputBox(text, title, preset);
    m_since.start();
    return answer;
}

std::optional<QString> Bridge::begin(const QString& language)
{
    const auto known = m_engine.setLanguage(view(language));
    const QString error = known ? QString() : QString::fromStdU16String(m_engine.error().description);
    m_engine.setUseSafeSubset(true);
    constexpr int kEnglish = 1033, kRussian = 1049;
    m_engine.setInterfaceLanguage(core::languageCode() == core::Language::kRussian ? kRussian : kEnglish);
    reset();
    if (m_player) m_engine.addObject(u"Player", *m_player, true);
    m_begun = true;
    return known ? std::nullopt : std::optional(error);
}

void Bridge::reset()
{
    m_begun = false;
    m_unprompted = 0;
    m_engine.reset();
    m_hanging.clear();
    m_lastTimerError.clear();
    m_objects.prune();
}

void Bridge::addObject(const QString& name, QObject* object)
{
    m_engine.addObject(view(name), *m_objects.dispatchOf(object));
}

std::optional<QString> Bridge::addCode(const QString& code, Source source)
{
    if (m_host.hasEnded()) return std::nullopt;
    const Call call(*this);
    // The text begins with an empty line that the file does not have: what follows is line 1, here and when
    // one of its procedures fails later.
    constexpr int kLineOfEmptyLine = 0;
    const int firstLine = kLineOfEmptyLine + (source == Source::Library ? kLibraryLines : 0);
    if (m_engine.addCode(view(code), firstLine)) return std::nullopt;
    const script::ScriptError& error = m_engine.error();
    m_host.noteMistake(source == Source::Library ? m_libraryFile : m_scriptFile, error.line % kLibraryLines,
                       QString::fromStdU16String(error.description));
    return QString("%1 (%2:%3)")
        .arg(QString::fromStdU16String(error.description))
        .arg(error.line % kLibraryLines)
        .arg(error.column);
}

void Bridge::ExecuteStatement(const QString& statement)
{
    if (m_host.hasEnded()) return;
    if (!m_begun) (void)begin("VBScript");
    const Call call(*this);
    if (!m_engine.executeStatement(view(statement))) throw failureOf(m_engine.error());
}

Bridge::Outcome Bridge::RunScript(const QString& statement, Repetition repetition)
{
    if (statement.isEmpty() || m_host.hasEnded() || hasOverrun() || m_hanging.contains(statement))
        return Outcome::Done;
    const Call call(*this);
    if (m_engine.executeStatement(view(statement))) return Outcome::Done;
    const script::ScriptError error = m_engine.error();
    if (error.number == kInterrupted) m_hanging.insert(statement);
    const QString place = texts::kScriptStart + core::HtmlEscape(statement) + texts::kScriptLine +
                          QString::number(error.line % kLibraryLines) +
                          (error.line < kLibraryLines ? "" : texts::kOfLibrary) + ")";
    if (repetition == Repetition::Timer) {
        // Three times a second the same would fill the disk.
        const QString same = place + QString::fromStdU16String(error.description);
        if (same == m_lastTimerError) return Outcome::Failed;
        m_lastTimerError = same;
    }
    m_host.noteMistake(error.line < kLibraryLines ? m_scriptFile : m_libraryFile, error.line % kLibraryLines,
                       QString::fromStdU16String(error.description) + " [" + statement + ']');
    m_host.logError(failureOf(error), place, {});
    return Outcome::Failed;
}

std::optional<double> Bridge::toNumber(const script::Result<script::Value>& value)
{
    if (!value || value->isEmpty()) return 0.0;
    if (value->isWhole()) return value->whole();
    if (value->type() == script::VarType::Double || value->type() == script::VarType::Single)
        return value->asReal();
    const auto text = m_engine.textOf(*value);
    if (!text) return std::nullopt;
    bool isNumber = false;
    const double number = QString::fromStdU16String(*text).toDouble(&isNumber);
    return isNumber ? std::optional(number) : std::nullopt;
}

std::optional<double> Bridge::EvalScript(const QString& expression)
{
    if (expression.trimmed().isEmpty() || m_host.hasEnded() || hasOverrun() || m_hanging.contains(expression))
        return 0.0;
    const Call call(*this);
    const auto value = m_engine.eval(view(expression));
    if (!value && value.error()->number == kInterrupted) m_hanging.insert(expression);
    return toNumber(value);
}

void Bridge::compile(Expression& expression)
{
    const QString name = QString("[skin expression %1]").arg(++m_functions);
    const bool oneLine = !expression.m_text.contains('\n') && !expression.m_text.contains('\r');
    // In parentheses, so that a text with a colon in it does not pass as a statement more.
    const QString code = "Function " + name + "\r\n" + name + "=(" + expression.m_text + ")\r\nEnd Function";
    const Call call(*this);
    const bool compiled = oneLine && m_engine.addCode(view(code));
    expression.m_kind = compiled ? Expression::Kind::Function : Expression::Kind::Text;
    expression.m_function = name.mid(1, name.size() - 2).toStdU16String();
}

std::optional<double> Bridge::evaluate(Expression& expression)
{
    if (expression.m_kind != Expression::Kind::Number && (m_host.hasEnded() || hasOverrun())) return 0.0;
    if (!m_hanging.isEmpty() && m_hanging.contains(expression.m_text)) expression = Expression("0");
    if (expression.m_kind == Expression::Kind::NotYetCompiled) compile(expression);
    switch (expression.m_kind) {
    case Expression::Kind::Number: return expression.m_number;
    case Expression::Kind::Function: {
        const Call call(*this);
        const auto value = m_engine.run(expression.m_function);
        // Each step of a window's resizing would wait for it again.
        if (!value && value.error()->number == kInterrupted) expression = Expression("0");
        return toNumber(value);
    }
    case Expression::Kind::NotYetCompiled:
    case Expression::Kind::Text: break;
    }
    return EvalScript(expression.m_text);
}

} // namespace skin
