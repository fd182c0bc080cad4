#pragma once

#include "base/ByteReader.h"
#include "core/Application.h"
#include "media/MediaHost.h"
#include "media/MediaInfo.h"

#include <span>
#include <vector>

namespace media
{

/// Whether a file is a compressed movie by its signature.
[[nodiscard]] bool isCompressedFile(const QString& path);

/// Whether a movie can be taken out of a program file. Reads it whole.
[[nodiscard]] bool holdsMovie(const QString& path);

enum class Extent { HeaderOnly, Full };
enum class ExtractTo { Cache, ProjectorItself };

/// The movie that `info` describes as a plain one, whatever its form on disk. Nothing is written.
/// @errors those of reading and decompressing; Malformed when the file is no movie any more
base::Result<std::vector<std::uint8_t>> readPlainMovie(const MediaInfo& info);

/// The one road that a file takes into the player, and the record of the movie that came along it last.
/// Failures travel as texts: empty on success or the user's message; or as an empty path.
class MediaFiles
{
public:
    MediaFiles(core::Application& application, MediaHost& host);

    /// The movie loaded last. A failed load leaves it as it was.
    [[nodiscard]] const MediaInfo& mediaInfo() const { return m_info; }
    MediaInfo& mediaInfo() { return m_info; }

    /// Checks, identifies and opens a file, and brings the window up to date. Success or failure shows in the
    /// window, the journal and `mediaInfo`. Every failure ends in CloseMedia with its message, except one of
    /// a page in the gadgets folder, which could otherwise load itself for ever.
    /// @param path    file, with "?" and parameters behind it for a page; may be empty
    /// @param caption for the window; empty: the file
    void LoadFlash(const QString& path, const QString& caption);

    /// Identifies a file by its first bytes and reads its header into `mediaInfo`. A projector's movie is
    /// extracted first, a compressed movie gets a header copy in the cache.
    /// @param path replaced by the extracted movie's when the file is a projector
    /// @returns empty, or the user's message
    QString GetFlashInfo(QString& path);

    /// Full: converts the movie in place, the compressed file kept in the cache. HeaderOnly: writes a plain
    /// copy of the movie's first 26 bytes to the cache, or uses the one that is there.
    /// @returns path of the result, empty on failure; the movie is then as it was
    QString DecompressFlash(MediaInfo& info, Extent extent);

    /// Converts the movie in place, the plain file kept in the cache. Version and length are left unchanged.
    /// @param level zlib's, 0 to 9
    /// @returns path of the result, empty on failure; the movie is then as it was
    QString CompressFlash(MediaInfo& info, int level);

    /// Takes the movie out of a projector, of whatever system and version. A movie extracted earlier is used
    /// again.
    /// @returns path of the movie, or empty; the reason is then `errorDescription`
    QString ExtractEXE(const QString& path, ExtractTo target);

    /// The user's text of the failure met last.
    [[nodiscard]] const QString& errorDescription() const { return m_errorDescription; }

private:
    void tryLoad(const QString& path, QString caption);
    void failLoad(const QString& file);
    [[nodiscard]] base::Result<void> writeHeaderCopy(const MediaInfo& info, const QString& target);
    [[nodiscard]] base::Result<void> decompressInPlace(const MediaInfo& info, const QString& target);
    [[nodiscard]] base::Result<void> compressInPlace(const QString& target, int level);
    /// Writes a file into the cache, which is made when it is missing.
    [[nodiscard]] base::Result<void> writeToCache(const QString& file,
                                                  std::span<const base::Bytes> parts) const;
    [[nodiscard]] base::Result<void> writeToCache(const QString& file, base::Bytes content) const
    {
        return writeToCache(file, std::span(&content, 1));
    }
    /// Keeps in the cache what a conversion of `path` is about to replace.
    [[nodiscard]] base::Result<void> backUp(const QString& path, const QString& extension,
                                            base::Bytes content);
    /// Logs `error` and makes its user's text the current description.
    void note(const base::Error& error);

    core::Application& m_application;
    MediaHost& m_host;
    MediaInfo m_info;
    QString m_errorDescription;
};

} // namespace media
