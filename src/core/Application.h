#pragma once

#include "core/Language.h"

#include <QString>

#include <filesystem>
#include <functional>
#include <optional>

// core/: start-up, application paths, the event log, error reporting and the error screen. Nothing here knows
// of a movie, a skin or the player's window; what it needs from the window it asks through ErrorHost.

namespace base
{
class Failure;
}

namespace core
{

enum class LineBreak { None, Mark };

/// Where a program that shares its folder with other users keeps what it writes; with closing separators.
struct WrittenFolders {
    QString settings;
    QString cache;
    QString log;
    QString skins{}; ///< further skins of the user's own
};

/// The records that are one for the whole process, and the event log they name. One object, made by main()
/// and passed down by reference; a test makes a fresh one over a temporary folder. Records of the floors
/// above (the movie loaded, the browser's state) are members of those floors' own objects, which are built
/// from this one.
class Application
{
public:
    // All are absolute and end in a separator, except the log file. Folder names are appended as they stand,
    // so a program in the root folder has a doubled separator, which is accepted.
    QString AppPath;   ///< the program's folder
    QString CachePath; ///< header copies, converted and extracted movies, thumbnails
    QString SkinsPath; ///< skin folders
    /// Further skins where the program's folder is shared: the user's own. Empty where it is not.
    QString UserSkinsPath;
    QString GadgetsPath;   ///< the program's own Flash pages
    QString SettingsPath;  ///< the folder of settings.xml
    QString LanguagesPath; ///< catalogues of the interface's languages
    Language language;
    QString LogFile; ///< the event log; empty: nothing is logged

    /// Arms error handlers. False inside a development session, where errors pass through to the debugger.
    bool RunningCompiled = false;

    /// Sets all paths, deletes the journal of the run before and begins a new one.
    /// @param appPath  the program's folder with its closing separator
    /// @param written  where to write when that is not the program's folder
    /// @throws base::Failure when the old journal cannot be deleted or the new one not written
    void InitLog(const QString& appPath, const std::optional<WrittenFolders>& written = {});

    /// Appends one line to the journal (windows-1251, CR LF). The file is open only meanwhile, so the journal
    /// is complete up to its last entry even when the process dies.
    /// @param text may hold HTML and is not escaped
    /// @throws base::Failure when the journal cannot be written and nobody listens to `journalFailed`. Either
    ///         hears of it once: while the journal stays unwritable later entries are tried and dropped, so
    ///         that a full disk costs one error screen and not the use of the player.
    void LogEvent(const QString& text, LineBreak lineBreak = LineBreak::Mark);
    /// The same for what must not be missing at the end. Other entries end where the journal has
    /// kMaxJournalBytes, whoever floods it.
    void LogLast(const QString& text);
    static constexpr std::size_t kMaxJournalBytes = std::size_t{4} << 20;

    /// Told of a journal that cannot be written, instead of the procedure that met it: no command fails for
    /// want of a journal. Called in the midst of anything.
    std::function<void(const base::Failure&)> journalFailed;

private:
    void appendLine(const QString& text);

    bool m_logFailed = false;
    std::size_t m_journalBytes = 0;
};

/// Escapes "<", ">" and the double quote. The ampersand is left alone on purpose, so that an entity that is
/// there already survives.
QString HtmlEscape(const QString& text);

/// @returns product name, a space, and major "." minor "." revision
QString GetAppVersion();

/// @returns the log's line on the running system: "Windows 5.1 Build #2600", and in the same shape "Linux 6.1
///          Build #0-18-amd64"
QString systemLine();

/// The file that a text of the program names; base/FileNames.h says how.
std::filesystem::path filePath(const QString& path);

/// @returns whether a file (not a folder) of that name exists, hidden and read-only ones included
bool fileExists(const QString& path);

} // namespace core
