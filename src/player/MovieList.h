#pragma once

#include <QString>
#include <QStringList>

namespace player
{

/// What the list asks of the window.
class MovieListHost
{
public:
    virtual ~MovieListHost() = default;
    /// @returns path of the movie that is loaded, empty when there is none of the user's
    [[nodiscard]] virtual QString currentMovie() const = 0;
    /// Whether a program file has a movie inside.
    [[nodiscard]] virtual bool isProjector(const QString& path) const = 0;
    virtual void LoadFlash(const QString& path, const QString& caption) = 0;
    virtual void NewMediaBrowse(const QString& folder) = 0;
    virtual void showNote(const QString& text) = 0;
};

/// What "previous" and "next" walk: the files that were named or dropped together, or else the files beside
/// the movie that is loaded, in the order people expect.
class MovieList
{
public:
    /// @param host outlives the list
    explicit MovieList(MovieListHost& host) : m_host(host) {}

    /// Opens what was named or dropped: a folder is browsed, a file is loaded, of several the first; these
    /// and the movies of folders among them make the list.
    /// @param paths as they came: addresses of files, relative, with a page's query behind
    void open(const QStringList& paths);
    /// Loads the movie so many places on. At either end it says so and stays. Program files without a movie
    /// are passed over.
    void walk(int step);

private:
    MovieListHost& m_host;
    QStringList m_files; ///< as they were given together
};

/// A path as it came from outside, made whole and plain: neither "file:" nor "." and ".." in it.
QString plainPath(const QString& path);
/// The movies and program files of a folder: hidden ones left out, by name, numbers as numbers.
QStringList moviesIn(const QString& folder);

} // namespace player
