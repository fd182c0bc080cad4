#include "base/Files.h"
#include "platform/Association.h"
#include "platform/MimeAppsList.h"
#include "platform/UserFolders.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>

#include <algorithm>
#include <cstring>
#include <optional>

// The association on desktops that follow the freedesktop rules: a desktop entry, a file type and the user's
// list of default applications. What a package has put in the system's folders already is not repeated.

namespace platform
{
namespace
{

constexpr const char* kType = "application/vnd.adobe.flash.movie";
constexpr const char* kEntry = "zorvex.desktop";
constexpr const char* kTypeFile = "mime/packages/zorvex.xml";
constexpr const char* kDefaults = "mimeapps.list";
/// Stands in a desktop entry that was written here, and in no other.
constexpr const char* kOwnMark = "X-Zorvex-Association=true\n";
/// What an entry of the same name that is not ours is called meanwhile.
constexpr const char* kAside = ".before";
constexpr std::uint64_t kMaxBytes = 1 << 20;
constexpr int kToolMs = 20'000;

constexpr std::uint8_t kEntryTemplate[] = {
#include "Entry.inc"
};
constexpr std::uint8_t kTypeTemplate[] = {
#include "Type.inc"
};

template <std::size_t N>
QString text(const std::uint8_t (&bytes)[N])
{
    return QString::fromUtf8(reinterpret_cast<const char*>(bytes), static_cast<qsizetype>(N));
}

/// @returns nothing when there is no such file; an empty file is a text
std::optional<QByteArray> contentOf(const QString& path)
{
    const auto bytes = base::readFile(path.toStdString(), kMaxBytes);
    if (!bytes) return std::nullopt;
    return QByteArray(reinterpret_cast<const char*>(bytes->data()), static_cast<qsizetype>(bytes->size()));
}

QString own(const QString& name) { return userFolder(UserFolder::Data) + name; }
QString ownEntry() { return own(QString("applications/") + kEntry); }

/// The folders that packages fill, the most important first.
QStringList systemFolders()
{
    QString folders = QFile::decodeName(qgetenv("XDG_DATA_DIRS"));
    if (folders.isEmpty()) folders = "/usr/local/share/:/usr/share/";
    QStringList result;
    for (const QString& folder : folders.split(':', Qt::SkipEmptyParts))
        if (QDir::isAbsolutePath(folder)) result += QDir::cleanPath(folder) + '/';
    return result;
}

/// @returns whether a desktop entry starts the executable, whatever links lead there
bool starts(const QByteArray& entry, const QString& executable)
{
    const auto valueOf = [&entry](const char* key) {
        for (const QByteArray& line : entry.split('\n'))
            if (line.startsWith(key)) return QString::fromUtf8(line.mid(line.indexOf('=') + 1)).trimmed();
        return QString();
    };
    QString named = valueOf("TryExec=");
    if (named.isEmpty()) named = QProcess::splitCommand(valueOf("Exec=")).value(0);
    const QString found = QDir::isAbsolutePath(named) ? named : QStandardPaths::findExecutable(named);
    return !found.isEmpty() &&
           QFileInfo(found).canonicalFilePath() == QFileInfo(executable).canonicalFilePath();
}

bool systemHasEntryFor(const QString& executable)
{
    for (const QString& folder : systemFolders())
        if (const auto entry = contentOf(folder + "applications/" + kEntry))
            return starts(*entry, executable); // those behind it are hidden by it
    return false;
}

bool systemKnowsType()
{
    const QStringList folders = systemFolders();
    return std::any_of(folders.begin(), folders.end(),
                       [](const QString& folder) { return QFileInfo::exists(folder + kTypeFile); });
}

/// A word of an Exec line. One with reserved characters is quoted and then escaped as any value of the file
/// is; others are not, because not everything that reads such lines knows about quotation.
QString execWord(const QString& word)
{
    constexpr const char* kReserved = " \t\n\"'\\><~|&;$*?#()`";
    const bool isPlain =
        std::none_of(word.begin(), word.end(), [](QChar c) { return QString(kReserved).contains(c); });
    if (isPlain) return QString(word).replace('%', "%%");
    QString quoted;
    for (const QChar c : word) {
        if (QString("\"`$\\").contains(c)) quoted += '\\';
        quoted += c;
        if (c == '%') quoted += c;
    }
    return '"' + quoted.replace('\\', "\\\\") + '"';
}

QString valueText(QString value) { return value.replace('\\', "\\\\").replace('\n', "\\n"); }

/// Writes a file and the folders above it, unless it holds that already.
class Writer
{
public:
    /// @returns whether the file was changed
    bool write(const QString& path, const QByteArray& content)
    {
        if (contentOf(path) == content) return false;
        QDir().mkpath(QFileInfo(path).path());
        const auto written = base::replaceFile(
            // A list that is a link, as users who keep their settings elsewhere have it, stays one.
            (QFileInfo(path).isSymLink() ? QFileInfo(path).symLinkTarget() : path).toStdString(),
            base::Bytes(reinterpret_cast<const std::uint8_t*>(content.constData()),
                        static_cast<std::size_t>(content.size())));
        if (!written) problems += QString::fromStdString(written.error().what);
        return written.has_value();
    }
    bool remove(const QString& path)
    {
        QFile file(path);
        if (!file.exists()) return false;
        if (file.remove()) return true;
        problems += path + ": " + file.errorString();
        return false;
    }
    void run(const char* tool, const QString& folder)
    {
        const QString program = QStandardPaths::findExecutable(tool);
        QProcess process;
        process.setStandardOutputFile(QProcess::nullDevice());
        process.setStandardErrorFile(QProcess::nullDevice());
        if (program.isEmpty()) {
            problems += QString(tool) + " is not installed";
            return;
        }
        process.start(program, {folder});
        if (!process.waitForFinished(kToolMs) || process.exitCode() != 0)
            problems += QString(tool) + " failed for " + folder;
    }
    QStringList problems;
};

/// The lists of defaults that count: the general one, and one of the running desktop's own when it says
/// something about movies, because it is asked before the other.
QStringList defaultLists()
{
    const QString folder = userFolder(UserFolder::Settings);
    QStringList lists{folder + kDefaults};
    for (const QString& desktop : qEnvironmentVariable("XDG_CURRENT_DESKTOP").toLower().split(':')) {
        const QString list = folder + desktop + '-' + kDefaults;
        const auto content = desktop.isEmpty() || desktop.contains('/') ? std::nullopt : contentOf(list);
        if (content && namesDefaultApplication(content->toStdString(), kType)) lists += list;
    }
    return lists;
}

QString withoutEnd(const QString& data, const char* end)
{
    Q_ASSERT(data.endsWith(end));
    return data.chopped(static_cast<qsizetype>(std::strlen(end)));
}

} // namespace

QStringList Association::Associate() const
{
    Writer writer;
    const QString executable = withoutEnd(m_values[Command].data, ".exe %1");
    if (!systemHasEntryFor(executable)) {
        const auto before = contentOf(ownEntry());
        if (before && !before->contains(kOwnMark) && !starts(*before, executable)) {
            QFile::remove(ownEntry() + kAside);
            QFile::rename(ownEntry(), ownEntry() + kAside);
        }
        // An entry that the user has made for this program says what it should.
        if (!before || before->contains(kOwnMark) || !starts(*before, executable)) {
            const QString icon = withoutEnd(m_values[Icon].data, ".exe,1") + ".svg";
            const QString entry = text(kEntryTemplate)
                                      .replace("@EXEC@", execWord(executable))
                                      .replace("@TRY_EXEC@", valueText(executable))
                                      .replace("@ICON@", valueText(icon)) +
                                  kOwnMark;
            if (writer.write(ownEntry(), entry.toUtf8()))
                writer.run("update-desktop-database", own("applications"));
        }
    }
    if (!systemKnowsType()) {
        const QString type = text(kTypeTemplate)
                                 .replace("@DESCRIPTION@", m_values[Description].data.toHtmlEscaped())
                                 .replace("@EXTENSION@", m_values[Extension].key.toLower());
        if (writer.write(own(kTypeFile), type.toUtf8())) writer.run("update-mime-database", own("mime"));
    }
    for (const QString& list : defaultLists()) {
        const std::string content = contentOf(list).value_or(QByteArray()).toStdString();
        writer.write(list, QByteArray::fromStdString(withDefaultApplication(content, kType, kEntry)));
    }
    return writer.problems;
}

QStringList Association::Withdraw() const
{
    Writer writer;
    for (const QString& list : defaultLists()) {
        const auto content = contentOf(list);
        if (!content) continue;
        const std::string rest = withoutDefaultApplication(content->toStdString(), kType, kEntry);
        rest.empty() && !content->isEmpty() ? writer.remove(list)
                                            : writer.write(list, QByteArray::fromStdString(rest));
    }
    if (writer.remove(own(kTypeFile))) writer.run("update-mime-database", own("mime"));
    if (const auto entry = contentOf(ownEntry()); entry && entry->contains(kOwnMark)) {
        writer.remove(ownEntry());
        QFile::rename(ownEntry() + kAside, ownEntry());
        writer.run("update-desktop-database", own("applications"));
    }
    return writer.problems;
}

} // namespace platform
