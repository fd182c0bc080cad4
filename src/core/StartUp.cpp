#include "core/StartUp.h"

#include "base/Failure.h"
#include "core/Texts.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace core
{
namespace
{

/// A name that no shipped executable holds.
constexpr const char* kDevelopmentProject = "ZorvexWorkbench";

/// @returns the folder for what is written: empty when the program folder will do
QString separateDataPath(const QString& appPath)
{
    if (QFileInfo(appPath).isWritable()) return {};
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + "/zorvex/";
    QDir().mkpath(folder + "cache");
    return QDir::toNativeSeparators(folder);
}

} // namespace

void StartUp(Application& application, const QString& executable, const QString& commandLine,
             const std::function<void()>& visualStyle)
{
    const QString appPath =
        QDir::toNativeSeparators(QFileInfo(executable).absolutePath()) + QDir::separator();
    const QString dataPath = separateDataPath(appPath);
    try {
        application.InitLog(appPath, dataPath);
    } catch (const base::Failure&) {
        // A program that was installed read-only starts even when the user's folder takes no journal either.
        if (dataPath.isEmpty()) throw;
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
}

QString commandLine(const QStringList& arguments)
{
    QStringList quoted;
    for (const QString& argument : arguments)
        quoted += argument.contains(' ') ? '"' + argument + '"' : argument;
    return quoted.join(' ');
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
