#pragma once

#include <QStringList>

class QFontMetrics;

namespace settings
{

/// The movies opened last, newest first. Paths are told apart without regard to case.
class RecentList
{
public:
    static constexpr int kCapacity = 5;

    /// @param gadgetsPath the folder of the program's own pages, which never enter the list; outlives this
    explicit RecentList(const QString& gadgetsPath) : m_gadgetsPath(gadgetsPath) {}

    /// Puts a path on top, in the form given; one that is listed already moves there.
    void AddRecent(const QString& path);
    /// @returns the index, or -1
    [[nodiscard]] int FindRecent(const QString& path) const;
    [[nodiscard]] const QStringList& paths() const { return m_paths; }
    void clear() { m_paths.clear(); }

private:
    const QString& m_gadgetsPath;
    QStringList m_paths;
};

/// Shortens a path for display: as much of its folders as fits, an ellipsis and the file's name,
/// "/home/us.../movie.swf". A name that is too wide by itself loses its end instead. Both separators are
/// known. What fits is not changed.
QString CompactPath(const QString& path, int widthPixels, const QFontMetrics& metrics);

} // namespace settings
