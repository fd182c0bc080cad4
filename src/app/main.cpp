#include "base/Failure.h"
#include "core/Files.h"
#include "core/Look.h"
#include "core/StartUp.h"
#include "core/Version.h"
#include "flash/Engine.h"
#include "flash/FlashControl.h"
#include "platform/Appearance.h"
#include "platform/FileDialogs.h"
#include "platform/TerminationSignal.h"
#include "player/Player.h"
#include "settings/SettingsFile.h"
#include "ui/Style.h"

#include <QApplication>
#include <QIcon>
#include <QMessageBox>
#include <QScopeGuard>
#include <QTimer>

#include <cstdlib>
#include <functional>
#include <iostream>
#include <memory>
#include <new>
#include <optional>

// Builds the parts and ties them together; no logic.

namespace
{

QIcon applicationIcon()
{
    QIcon icon;
    for (const char* size : {"16", "24", "32", "48", "64", "128", "256"})
        icon.addFile(QString(":/icon/%1.png").arg(size));
    return icon;
}

/// Lets no lack of memory end the program that a single event has met.
class GuardedApplication : public QApplication
{
public:
    using QApplication::QApplication;
    std::function<void()> ranOutOfMemory;

    bool notify(QObject* receiver, QEvent* event) override
    {
        try {
            return QApplication::notify(receiver, event);
        } catch (const std::bad_alloc&) {
            if (ranOutOfMemory) QTimer::singleShot(0, this, [this] { ranOutOfMemory(); });
            return true;
        }
    }
};

// What the process does on its way out that nobody has asked it to take, as when the display is gone.
player::Player* g_player = nullptr;

void saveAtExit()
{
    if (g_player != nullptr && !g_player->hasEnded()) g_player->saveForSuddenEnd();
}

/// What is asked by an option alone, in the language of the interface.
std::optional<QString> answerTo(const QStringList& arguments, char** argv)
{
    if (arguments.size() != 1 || !arguments.first().startsWith('-')) return std::nullopt;
    int noneOfTheToolkits = 1;
    const QCoreApplication plain(noneOfTheToolkits, argv);
    core::Language language;
    language.chooseFor(core::Language::kRussian,
                       QCoreApplication::applicationDirPath() + "/media/languages/");
    return core::commandLineAnswer(arguments);
}

} // namespace

int main(int argc, char** argv)
{
    // Answered before there is need of a display.
    QStringList arguments;
    for (int i = 1; i < argc; ++i) arguments += core::fileName(argv[i]);
    if (const auto answer = answerTo(arguments, argv)) {
        std::cout << answer->toStdString();
        return 0;
    }

    // The first movie's process comes up beside this one's start.
    std::shared_ptr<void> ready;
    if (!arguments.isEmpty()) ready = flash::FlashControl::keepProcessReady();

    // A file that is named like one of the toolkit's own options is a file.
    const bool isFile = arguments.size() == 1 && core::fileExists(arguments.first());
    int toolkitsCount = isFile ? 1 : argc;
    platform::preferDesktopDialogs();
    GuardedApplication qt(toolkitsCount, argv);
    QApplication::setApplicationName(core::kProductName);
    QApplication::setDesktopFileName("zorvex");
    QApplication::setWindowIcon(applicationIcon());

    core::Application application;
    // What the toolkit has left of the arguments, which are files: their bytes, not its reading of them.
    if (!isFile) {
        arguments.clear();
        for (int i = 1; i < toolkitsCount; ++i) arguments += core::fileName(argv[i]);
    }
    const QString commandLine = core::commandLine(arguments);
    try {
        core::StartUp(application, QApplication::applicationFilePath(), commandLine,
                      ui::initialiseVisualStyle);
    } catch (const base::Failure& failure) {
        // No handler is armed this early: the program ends with the plain text.
        QMessageBox::critical(nullptr, core::kProductName, QString::fromStdString(failure.description()));
        return 1;
    }

    application.language.chooseFor(settings::chosenLanguage(application), application.LanguagesPath);

    const platform::Appearance appearance;
    QObject::connect(&appearance, &platform::Appearance::changed, &qt, [&appearance] {
        // On X11 the resolution of texts tells their scale already.
        const bool scalesItself = QGuiApplication::platformName() == "xcb";
        core::look::adapt(appearance.wantsHighContrast(), scalesItself ? 1 : appearance.textScale());
    });

    player::Player player(application, commandLine);
    constexpr int kOnceShownMs = 1000;
    QTimer::singleShot(kOnceShownMs, &player, [&ready] { ready = flash::FlashControl::keepProcessReady(); });
    const auto endReady = qScopeGuard([&ready] { ready.reset(); }); // while there is an application
    const platform::TerminationSignal termination(
        [&player] { player.Form_QueryUnload(player::Player::UnloadMode::TaskManager); },
        &flash::Engine::interruptAll);
    QObject::connect(&qt, &QGuiApplication::commitDataRequest, &player,
                     [&player] { player.Form_QueryUnload(player::Player::UnloadMode::Windows); });
    qt.ranOutOfMemory = [&player] { player.closeForLackOfMemory(); };
    g_player = &player;
    const auto forget = qScopeGuard([] { g_player = nullptr; });
    std::atexit(saveAtExit);
    player.Form_Load();
    return player.hasEnded() ? 0 : QApplication::exec();
}
