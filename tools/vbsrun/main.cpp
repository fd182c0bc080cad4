// Runs a VBScript file without a window: vbsrun [--locale en|ru] FILE.vbs

#include "base/Files.h"
#include "base/TextCodes.h"
#include "script/ScriptControl.h"

#include <cstdio>
#include <cstring>
#include <iostream>

namespace
{

constexpr std::uint64_t kMaxFileBytes = 64U << 20;

// Shows message boxes as text and takes answers to input boxes from the standard input.
class ConsoleHost final : public script::Host
{
public:
    int messageBox(const std::u16string& text, int buttons, const std::u16string&) override
    {
        std::puts(base::utf8FromUtf16(text).c_str());
        return script::defaultButton(buttons);
    }
    std::optional<std::u16string> inputBox(const std::u16string& text, const std::u16string&,
                                           const std::u16string&) override
    {
        std::puts(base::utf8FromUtf16(text).c_str());
        std::string line;
        if (!std::getline(std::cin, line)) return std::nullopt;
        return base::utf16FromUtf8(line);
    }
};

// UTF-8 or UTF-16 with a byte order mark, plain UTF-8, else the ANSI code page.
std::u16string decoded(const std::vector<std::uint8_t>& bytes)
{
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    if (text.substr(0, 3) == "\xEF\xBB\xBF") return base::utf16FromUtf8(text.substr(3));
    if (text.substr(0, 2) == "\xFF\xFE") {
        std::u16string wide;
        for (std::size_t i = 2; i + 1 < bytes.size(); i += 2)
            wide += static_cast<char16_t>(bytes[i] | bytes[i + 1] << 8);
        return wide;
    }
    return base::isUtf8(text) ? base::utf16FromUtf8(text) : base::utf16FromAnsi(text);
}

} // namespace

int main(int argc, char** argv)
{
    int next = 1;
    int locale = 1033;
    if (next + 1 < argc && std::strcmp(argv[next], "--locale") == 0) {
        locale = std::strcmp(argv[next + 1], "ru") == 0 ? 1049 : 1033;
        next += 2;
    }
    if (next + 1 != argc) {
        std::fputs("usage: vbsrun [--locale en|ru] FILE.vbs\n", stderr);
        return 2;
    }
    const char* file = argv[next];
    const auto bytes = base::readFile(file, kMaxFileBytes);
    if (!bytes) {
        std::fprintf(stderr, "%s: %s\n", file, bytes.error().what.c_str());
        return 2;
    }

    ConsoleHost host;
    script::ScriptControl engine(&host);
    engine.setLocale(locale);
    engine.reset();
    // Arguments are joined by blanks, as the console host of the system does.
    const auto echo = [&engine](script::Arguments arguments) -> script::Result<script::Value> {
        std::string line;
        for (const script::Value& argument : arguments) {
            if (&argument != arguments.data()) line += ' ';
            const auto text = TRY_RESULT(engine.textOf(argument));
            line += base::utf8FromUtf16(text);
        }
        std::puts(line.c_str());
        return script::Value();
    };
    const auto wscript = script::make<script::HostObject>(u"Object");
    wscript->method(u"Echo", echo);
    engine.addObject(u"WScript", *wscript, true);
    if (engine.addCode(decoded(*bytes))) return 0;
    const script::ScriptError& error = engine.error();
    std::fflush(stdout);
    std::fprintf(stderr, "%s(%d, %d) %s: %s\n", file, error.line, error.column,
                 base::utf8FromUtf16(error.source).c_str(), base::utf8FromUtf16(error.description).c_str());
    return 1;
}
