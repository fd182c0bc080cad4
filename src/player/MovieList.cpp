#include "player/MovieList.h"

#include "browser/FolderScan.h"
#include "core/Application.h"
#include "core/Files.h"
#include "player/Texts.h"

#include <QDir>
#include <QFileInfo>
#include <QUrl>

#include <algorithm>

namespace player
{
namespace
{

/// So many program files without a movie are looked into before a step ends; each is read whole.
constexpr int kMaxSkipped = 20;

bool isProgramFile(const QString& path) { return path.endsWith(".exe", Qt::CaseInsensitive); }

} // namespace

QString plainPath(const QString& path)
{
    // File managers may pass an address, shells a name that is relative to where they stand.
    const QString local = path.startsWith("file://") ? core::localFile(QUrl(path)) : path;
    // A page's parameters are no part of the file's name, unless the file is named so.
    const qsizetype mark = core::fileExists(local) ? -1 : local.lastIndexOf('?');
    const QString file = mark < 0 ? local : local.left(mark);
    const QString query = mark < 0 ? QString() : local.mid(mark);
    return QDir::cleanPath(QDir::current().absoluteFilePath(file)) + query;
}

QStringList moviesIn(const QString& folder)
{
    QStringList movies;
    for (const browser::FolderEntry& entry : browser::listFolder(folder)) {
        const QString path = QDir(folder).filePath(entry.name);
        const bool isNamedSo = entry.name.endsWith(".swf", Qt::CaseInsensitive) || isProgramFile(entry.name);
        if (!entry.isFolder && isNamedSo && core::isReadable(path)) movies += path;
    }
    return movies;
}

void MovieList::open(const QStringList& paths)
{
    m_files.clear();
    if (paths.isEmpty()) return;
    const QString first = plainPath(paths.first());
    if (paths.size() == 1) {
        if (core::isFolder(first)) return m_host.NewMediaBrowse(first);
        return m_host.LoadFlash(first, {});
    }
    for (const QString& path : paths) {
        const QString plain = plainPath(path);
        if (core::isFolder(plain))
            m_files += moviesIn(plain);
        else
            m_files += plain;
    }
    m_files.removeDuplicates();
    if (m_files.isEmpty()) return m_host.NewMediaBrowse(first); // folders without a movie
    const QString movie = m_files.first();                      // loading may open other files
    m_host.LoadFlash(movie, {});
}

void MovieList::walk(int step)
{
    const QString current = m_host.currentMovie();
    if (current.isEmpty() || step == 0) return;
    const bool together = m_files.contains(current);
    const QStringList files = together ? m_files : moviesIn(QFileInfo(current).path());
    const int direction = step < 0 ? -1 : 1;
    qsizetype at = files.indexOf(QFileInfo(current).absoluteFilePath());
    int passedOver = 0;
    for (int left = std::abs(step); left > 0;) {
        at += direction;
        if (at < 0 || at >= files.size() || passedOver > kMaxSkipped)
            return m_host.showNote(direction < 0 ? texts::kFirstMovie : texts::kLastMovie);
        // What was named is tried whatever it is; of what merely lies there, only movies.
        if (!together && isProgramFile(files[at]) && !m_host.isProjector(files[at]))
            ++passedOver;
        else
            --left;
    }
    const QString next = files[at];
    m_host.showNote(QString(texts::kMovieOf).arg(at + 1).arg(files.size()).arg(QFileInfo(next).fileName()));
    m_host.LoadFlash(next, {});
}

} // namespace player
