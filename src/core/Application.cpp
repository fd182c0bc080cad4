#include "core/Application.h"

#include "base/Failure.h"
#include "base/FileNames.h"
#include "base/TextCodes.h"
#include "core/RunTimeErrors.h"
#include "core/Version.h"
#include "platform/SystemVersion.h"

#include <QDir>

#include <cerrno>
#include <fstream>

namespace core
{
namespace
{

constexpr const char* kJournalName = "App.Log.html";

/// Says that the system's version cannot be had. Selected by a flag that nothing sets: a system that does not
/// tell leaves the two texts of the line empty instead.
constexpr bool kVersionNotAvailable = false;
constexpr const char* kVersionNotAvailableText = "Windows version is n/a";

} // namespace

void Application::InitLog(const QString& appPath, const std::optional<WrittenFolders>& written)
{
    const QString separator = QDir::separator();
    AppPath = appPath;
    SettingsPath = written ? written->settings : AppPath;
    GadgetsPath = AppPath + "media" + separator + "gadgets" + separator;
    LanguagesPath = AppPath + "media" + separator + "languages" + separator;
    CachePath = written ? written->cache : AppPath + "cache" + separator;
    SkinsPath = AppPath + "media" + separator + "skins" + separator;
    UserSkinsPath = written ? written->skins : QString();
    LogFile = (written ? written->log : AppPath) + kJournalName;

    if (fileExists(LogFile)) {
        std::error_code error;
        std::filesystem::remove(filePath(LogFile), error);
        if (error) throw runTimeError(error.value(), kJournalName);
    }
    m_logFailed = false;
    m_journalBytes = 0;
    const QString product = kProductName;
    for (const QString& line :
         {QString("<html>"), QString("<head>"), "<title>" + product + "</title>",
          QString(R"(<meta http-equiv="Content-Type" content="text/html">)"), QString("</head>"),
          QString("<body bgcolor=#4974BA text=#FFFFFF link=#EEEEFF vlink=#EEEEFF alink=#EEEEFF>"),
          QString(R"(<font face="Tahoma, Verdana, Arial" size="2">)")})
        appendLine(line);

    LogEvent("<b>" + product + "</b>");
    LogEvent({});
    LogEvent(GetAppVersion());
    LogEvent(systemLine());
    LogEvent({});
}

void Application::LogEvent(const QString& text, LineBreak lineBreak)
{
    if (m_journalBytes > kMaxJournalBytes) return;
    appendLine(lineBreak == LineBreak::Mark ? text + "<br>" : text);
    if (m_journalBytes > kMaxJournalBytes) appendLine("<b>The journal is full.</b><br>");
}

void Application::LogLast(const QString& text) { appendLine(text + "<br>"); }

void Application::appendLine(const QString& text)
{
    if (LogFile.isEmpty()) return;
    std::string line = base::ansiFromUtf16(std::u16string_view(
        reinterpret_cast<const char16_t*>(text.utf16()), static_cast<std::size_t>(text.size())));
    line += "\r\n";
    m_journalBytes += line.size();
    errno = 0;
    std::ofstream file(filePath(LogFile), std::ios::app | std::ios::binary);
    file << line;
    file.close();
    const bool failedBefore = std::exchange(m_logFailed, !file);
    if (!m_logFailed || failedBefore) return;
    const base::Failure failure = runTimeError(errno, kJournalName);
    if (!journalFailed) throw failure;
    journalFailed(failure);
}

QString HtmlEscape(const QString& text)
{
    QString escaped = text;
    return escaped.replace('<', "&lt;").replace('>', "&gt;").replace('"', "&quot;");
}

QString GetAppVersion()
{
    return QString("%1 %2.%3.%4")
        .arg(kProductName)
        .arg(kVersionMajor)
        .arg(kVersionMinor)
        .arg(kVersionRevision);
}

QString systemLine()
{
    if (kVersionNotAvailable) return kVersionNotAvailableText;
    const platform::SystemVersion system = platform::systemVersion();
    return QString::fromStdString(system.name + " " + system.version + " Build #" + system.build);
}

std::filesystem::path filePath(const QString& path) { return base::pathNamed(path.toStdString()); }

bool fileExists(const QString& path)
{
    std::error_code ignored;
    return std::filesystem::is_regular_file(filePath(path), ignored);
}

} // namespace core
