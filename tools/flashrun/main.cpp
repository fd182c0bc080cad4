#include "Arguments.h"
#include "Run.h"
#include "Thumbnail.h"

#include <QGuiApplication>
#include <cstdio>

namespace
{

constexpr int kCannotPlay = 1;
constexpr int kWrongUsage = 2;

base::Result<void> run(const flashrun::Arguments& arguments)
{
    using flashrun::Command;
    switch (arguments.command) {
    case Command::Help: std::fputs(flashrun::kHelp, stdout); return {};
    case Command::Trace: return flashrun::trace(arguments);
    case Command::Render: return flashrun::render(arguments);
    case Command::Record: return flashrun::record(arguments);
    case Command::Info: return flashrun::info(arguments);
    case Command::Actions: return flashrun::actions(arguments);
    case Command::Thumbnail: return flashrun::thumbnail(arguments);
    }
    return {};
}

} // namespace

int main(int count, char** words)
{
    const auto arguments = flashrun::parseArguments(std::span(words + 1, words + std::max(count, 1)));
    if (!arguments) {
        std::fprintf(stderr, "flashrun: %s\nSee flashrun --help.\n", arguments.error().what.c_str());
        return kWrongUsage;
    }
    // Texts are drawn and measured with the machine's fonts, which only a graphical program gets; a display
    // is not needed for them.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    int none = 1;
    const QGuiApplication application(none, words);
    const auto done = run(*arguments);
    std::fflush(stdout);
    if (!done) {
        std::fprintf(stderr, "flashrun: %s\n", done.error().what.c_str());
        return kCannotPlay;
    }
    return 0;
}
