// Runs every .vbs file in the folders beside this file and compares what it prints with the .expected file
// next to it. An error that ends a script is part of the output: "(line, column) source: description". A
// first line
// "' locale: ru" runs the script in that locale.

#include "base/Files.h"
#include "base/TextCodes.h"
#include "script/ScriptControl.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>

namespace
{

namespace fs = std::filesystem;

struct KnownFailure {
    const char* name; // folder/file without .vbs
    const char* reason;
};
// Scripts whose expected output is right and not reached yet. One that passes must leave this list.
constexpr std::array<KnownFailure, 0> kKnownFailures = {};

std::string readText(const fs::path& path)
{
    const auto bytes = base::readFile(path, 1U << 24);
    if (!bytes) return "cannot be read: " + path.string();
    return {bytes->begin(), bytes->end()};
}

std::string runScript(const std::string& source)
{
    script::ScriptControl control;
    control.setUseSafeSubset(true);
    if (source.rfind("' locale: ru", 0) == 0) control.setLocale(1049);
    control.reset();
    std::string output;
    const auto host = script::make<script::HostObject>(u"Object");
    host->method(u"Echo", [&](script::Arguments arguments) -> script::Result<script::Value> {
        bool first = true;
        for (const script::Value& argument : arguments) {
            const auto text = TRY_RESULT(control.textOf(argument));
            output += (first ? "" : " ") + base::utf8FromUtf16(text);
            first = false;
        }
        output += '\n';
        return script::Value();
    });
    control.addObject(u"WScript", *host, true);
    if (!control.addCode(base::utf16FromUtf8(source))) {
        const auto& error = control.error();
        output += "(" + std::to_string(error.line) + ", " + std::to_string(error.column) + ") " +
                  base::utf8FromUtf16(error.source) + ": " + base::utf8FromUtf16(error.description) + "\n";
    }
    control.reset(); // what objects print when they end belongs to the output
    return output;
}

std::vector<std::string> scriptNames()
{
    const fs::path root = TEST_SOURCE_DIR;
    std::vector<std::string> names;
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        if (entry.path().extension() == ".vbs") {
            names.push_back(fs::relative(entry.path(), root).replace_extension().generic_string());
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

class ScriptFiles : public testing::TestWithParam<std::string>
{
};

TEST_P(ScriptFiles, PrintsWhatIsExpected)
{
    const fs::path path = fs::path(TEST_SOURCE_DIR) / GetParam();
    const std::string printed = runScript(readText(path.string() + ".vbs"));
    const std::string expected = readText(path.string() + ".expected");
    for (const KnownFailure& known : kKnownFailures) {
        if (GetParam() != known.name) continue;
        EXPECT_NE(printed, expected) << "passes now and must leave the list of known failures";
        GTEST_SKIP() << known.reason;
    }
    EXPECT_EQ(printed, expected);
}

INSTANTIATE_TEST_SUITE_P(, ScriptFiles, testing::ValuesIn(scriptNames()), [](const auto& info) {
    std::string name = info.param;
    for (char& c : name) {
        if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
    }
    return name;
});

} // namespace
