#pragma once

#include "script/Dispatch.h"
#include "script/Host.h"

#include <chrono>
#include <memory>

namespace script
{

/// What the last failing call reported; all zero and empty when there was none since Reset or clear().
struct ScriptError {
    int number = 0;
    std::u16string
        source; ///< "Microsoft VBScript runtime error" or "... compilation error", or the script's own
    std::u16string description;
    int line = 0;        ///< 1-based, in the text of the failing piece of code
    int column = 0;      ///< 1-based
    std::u16string text; ///< the line of source that a compilation error is about
    void clear() { *this = {}; }
};

/// A script engine as a host embeds it: code and objects go in, statements and expressions are run. All calls
/// report failures through their result and through error(). May be called again from a host object's methods
/// while a script runs, Reset included: the running script then ends in its own, forgotten world.
class ScriptControl
{
public:
    /// @param host answers MsgBox and the like; outlives the control. None: answers neutrally
    explicit ScriptControl(Host* host = nullptr);
    ~ScriptControl();
    ScriptControl(const ScriptControl&) = delete;
    ScriptControl& operator=(const ScriptControl&) = delete;

    [[nodiscard]] const std::u16string& language() const { return m_language; }
    /// Drops all code and objects. @errors 380 for any language but "VBScript", in any case
    Result<void> setLanguage(std::u16string_view language);

    /// Whether CreateObject and GetObject are limited to objects without a way outside. Takes effect with
    /// Reset.
    void setUseSafeSubset(bool safe) { m_safeSubset = safe; }

    /// Windows locale number: 1033 English (from the start), 1049 Russian. Takes effect with Reset.
    /// @returns false, and changes nothing, for others
    bool setLocale(int id);
    /// The language in which errors are described: 1033 English, 1049 Russian. Takes effect at once. Until it
    /// is set it follows the locale. @returns false, and changes nothing, for others
    bool setInterfaceLanguage(int id);
    /// Whether lines that begin with "<!--" or "-->" are comments, as in pages; so from the start. Takes
    /// effect with Reset.
    void setHtmlComments(bool taken) { m_htmlComments = taken; }
    /// How long one call may run before the host is asked; zero: for ever. 10 s from the start. Time that the
    /// script spends inside host objects hardly counts.
    void setTimeout(std::chrono::milliseconds timeout);
    /// Bounds what strings and arrays may take up; 1 GiB from the start.
    void setHeapLimit(std::size_t bytes);
    /// Ends a script after so many steps (rounds of loops and calls), for runs that must repeat exactly; 0:
    /// no limit.
    void setStepLimit(std::uint64_t steps);

    /// Drops all code, variables and objects.
    void reset();
    /// Makes an object known by name. @param addMembers its members are known without the name as well
    void addObject(std::u16string_view name, Dispatch& object, bool addMembers = false);
    /// Compiles declarations and runs the statements outside procedures.
    /// @param firstLine the number that errors give the first line of the text: what its author's editor
    /// shows
    Result<void> addCode(std::u16string_view code, int firstLine = 1);
    Result<void> executeStatement(std::u16string_view statement);
    Result<Value> eval(std::u16string_view expression);
    /// Calls a procedure of the added code.
    Result<Value> run(std::u16string_view procedure, Arguments arguments = {});

    /// A value as CStr would write it; objects give their default value.
    Result<std::u16string> textOf(const Value& value);

    [[nodiscard]] const ScriptError& error() const { return m_error; }
    ScriptError& error() { return m_error; }

private:
    struct Settings;
    Result<Value> finish(Result<Value> result, std::u16string_view source, int firstLine = 1);

    std::unique_ptr<Settings> m_settings;
    std::u16string m_language = u"VBScript";
    bool m_safeSubset = false;
    bool m_htmlComments = true;
    ScriptError m_error;
};

} // namespace script
