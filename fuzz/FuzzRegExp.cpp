// Matches arbitrary patterns over arbitrary texts the way scripts do. The input is lines: options ("g", "i",
// "m"), the pattern, what a match is replaced by, and the text.

#include "base/TextCodes.h"
#include "script/ScriptControl.h"

#include <cstddef>
#include <cstdint>

namespace
{

std::u16string_view takeLine(std::u16string_view& rest)
{
    const std::size_t end = std::min(rest.find(u'\n'), rest.size());
    const auto line = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return line;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size > 2048) return 0;
    const std::u16string input =
        base::utf16FromUtf8(std::string_view(reinterpret_cast<const char*>(data), size));
    std::u16string_view rest(input);
    const auto options = takeLine(rest);
    const auto has = [&](char16_t option) { return options.find(option) != std::u16string_view::npos; };

    static script::ScriptControl control;
    static const bool ready = [] {
        control.setTimeout(std::chrono::milliseconds(500));
        control.setHeapLimit(std::size_t{64} << 20);
        return control
            .addCode(u"Sub Probe(pattern, text, by, isGlobal, ignores, isMultiline)\n"
                     u"Dim r, m, s : Set r = New RegExp\n"
                     u"r.Pattern = pattern : r.Global = isGlobal : r.IgnoreCase = ignores : r.Multiline = "
                     u"isMultiline\n"
                     u"For Each m In r.Execute(text)\n"
                     u"If Mid(text, m.FirstIndex + 1, m.Length) <> m.Value Then Err.Raise 9999\n"
                     u"For Each s In m.SubMatches : Next : Next\n"
                     u"If r.Test(text) <> (r.Execute(text).Count > 0) Then Err.Raise 9999\n"
                     u"text = r.Replace(text, by)\n"
                     u"End Sub")
            .has_value();
    }();
    if (!ready) __builtin_trap();
    const script::Value pattern = script::Value::string(takeLine(rest));
    const script::Value with = script::Value::string(takeLine(rest));
    const script::Value arguments[] = {pattern,
                                       script::Value::string(rest),
                                       with,
                                       script::Value::boolean(has(u'g')),
                                       script::Value::boolean(has(u'i')),
                                       script::Value::boolean(has(u'm'))};
    const auto done = control.run(u"Probe", arguments);
    // A match is what it says it is.
    if (!done && done.error()->number == 9999) __builtin_trap();
    return 0;
}
