#include "core/StartUp.h"

#include "base/Failure.h"
#include "core/Files.h"
#include "core/Texts.h"
#include "platform/UserFolders.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace core
{
namespace
{

/// A name that no shipped executable holds.
constexpr const char* kDevelopmentProject = "ZorvexWorkbench";

/// Stands in a program folder that was put there by a package or by "install": other users share it, and what
/// its manager did not put there would stay behind when the program is removed. So it is not written even by
/// a user who could.
constexpr const char* kInstalledMark = "installed";

/// @returns why the program folder is left alone, or null when it is the place for what is written
const char* reasonToWriteElsewhere(const QString& appPath)
{
    if (fileExists(appPath + kInstalledMark)) return "the program is installed for all users";
    if (!QFileInfo(appPath).isWritable()) return "the program folder cannot be written";
    return nullptr;
}

WrittenFolders usersFolders()
{
    using platform::UserFolder;
    const auto own = [](UserFolder folder) {
        const QString path = platform::userFolder(folder) + "zorvex/";
        QDir().mkpath(path); // a failure shows in what is written there
        return QDir::toNativeSeparators(path);
    };
    const QString skins = QDir::toNativeSeparators(platform::userFolder(UserFolder::Data) + "zorvex/skins/");
    return {own(UserFolder::Settings), own(UserFolder::Cache), own(UserFolder::State), skins};
}

} // namespace

void StartUp(Application& application, const QString& executable, const QString& commandLine,
             const std::function<void()>& visualStyle)
{
    const QString appPath =
        QDir::toNativeSeparators(QFileInfo(executable).absolutePath()) + QDir::separator();
    const char* elsewhere = reasonToWriteElsewhere(appPath);
    const auto written = elsewhere != nullptr ? std::optional(usersFolders()) : std::nullopt;
    try {
        application.InitLog(appPath, written);
    } catch (const base::Failure&) {
        // A program that was installed read-only starts even when the user's folder takes no journal either.
        if (!written) throw;
        application.LogFile.clear();
    }
    application.LogEvent(" :: Start Up");

    application.RunningCompiled = !isDevelopmentSession(executable);
    if (!application.RunningCompiled) application.LogEvent("<B> IDE Session!</B>");

    application.LogEvent("Initializing Visual Styles");
    if (visualStyle) visualStyle();

    application.LogEvent("Application Path: " + application.AppPath);
    application.LogEvent("Cache Path: " + application.CachePath);
    application.LogEvent("Argument: " + commandLine);
    if (elsewhere != nullptr)
        application.LogEvent("Settings Path: " + application.SettingsPath + " (" + elsewhere + ")");
}

QString commandLine(const QStringList& arguments)
{
    QStringList quoted;
    for (const QString& argument : arguments) {
        const bool plain = !argument.contains(' ') && !argument.contains('"');
        quoted += plain ? argument : '"' + QString(argument).replace('"', "\"\"") + '"';
    }
    return quoted.join(' ');
}

QStringList argumentsOf(const QString& commandLine)
{
    QStringList arguments;
    QString argument;
    bool quoted = false;
    bool begun = false;
    for (qsizetype at = 0; at <= commandLine.size(); ++at) {
        const QChar letter = at < commandLine.size() ? commandLine[at] : QChar();
        if (letter == '"' && quoted && at + 1 < commandLine.size() && commandLine[at + 1] == '"') {
            argument += letter;
            ++at;
        } else if (letter == '"') {
            quoted = !quoted;
            begun = true;
        } else if (at == commandLine.size() || (letter == ' ' && !quoted)) {
            if (begun) arguments += argument;
            argument.clear();
            begun = false;
        } else {
            argument += letter;
            begun = true;
        }
    }
    if (arguments.size() < 2) return arguments;
    const QString whole = QString(commandLine).remove('"');
    if (fileExists(whole)) return {whole};
    const auto isThere = [](const QString& path) {
        return path.startsWith("file://") || isAnything(path.section('?', 0, 0)) || isAnything(path);
    };
    if (std::ranges::none_of(arguments, isThere)) return {whole};
    return arguments;
}

std::optional<QString> commandLineAnswer(const QStringList& arguments)
{
    if (arguments.size() != 1 || fileExists(arguments.first())) return std::nullopt;
    const QString& argument = arguments.first();
    if (argument == "--version") return GetAppVersion() + '\n';
    if (argument == "--help" || argument == "-h") return texts::kHelp;
    return std::nullopt;
}

bool isDevelopmentSession(const QString& executable)
{
    return QFileInfo(executable).completeBaseName().contains(kDevelopmentProject, Qt::CaseInsensitive);
}

} // namespace core
