#include "base/Files.h"
#include "media/Backups.h"
#include "media/CacheName.h"
#include "media/Compress.h"
#include "media/FileStart.h"
#include "media/MediaFiles.h"
#include "media/MovieHeader.h"
#include "media/Texts.h"

#include <QDir>

#include <algorithm>

// The conversions between the plain ("FWS") and the compressed form ("CWS") of a movie. The new file takes
// the old one's place in one step, after a copy of the old has gone to the cache: at no instant is it neither
// old nor new.

namespace media
{
namespace
{

/// No movie of the supported versions comes near; what does is made to fill the memory.
constexpr std::uint64_t kMaxMovieBytes = std::uint64_t{1} << 30;

/// Of the time that a decompression takes, what is gone when nothing is written yet.
constexpr double kInflatedPart = 0.6;

/// A link keeps leading to the movie: what it leads to is what is replaced.
std::filesystem::path replacedBy(const QString& path)
{
    std::error_code error;
    const auto real = std::filesystem::canonical(core::filePath(path), error);
    return error ? core::filePath(path) : real;
}

struct MovieBytes {
    std::vector<std::uint8_t> file;
    FileHeader header;
    [[nodiscard]] base::Bytes body() const { return base::Bytes(file).subspan(kFileHeaderBytes); }
};

base::Result<MovieBytes> readMovie(const QString& path)
{
    MovieBytes movie;
    movie.file = TRY_RESULT(base::readFile(core::filePath(path), kMaxMovieBytes));
    movie.header = TRY_RESULT(readFileHeader(movie.file));
    return movie;
}

base::Result<void> writeMovie(const QString& path, const FileHeader& header, const char* signature,
                              base::Bytes body)
{
    const auto head = header.withSignature(signature);
    const base::Bytes parts[] = {head, body};
    return base::replaceFile(replacedBy(path), parts);
}

bool isCompressed(const FileHeader& header) { return header.is("CWS") || header.is("ZWS"); }

/// The first 26 bytes of the plain form of a compressed movie.
base::Result<std::vector<std::uint8_t>> headerCopyOf(const MediaInfo& info)
{
    auto body = TRY_RESULT(decompressStart(core::filePath(info.MoviePath), kLongestHeaderBodyBytes));
    CHECK_RESULT(readFrameHeader(body)); // a copy that is no use would be used again and again
    body.resize(kHeaderBodyBytes);
    FileHeader header;
    header.version = info.Version;
    header.fileLength = info.FileLength;
    const auto head = header.withSignature("FWS");
    body.insert(body.begin(), head.begin(), head.end());
    return body;
}

/// Whether a copy in the cache is that of this movie, not of what the file was before or of another file.
bool hasHeaderCopy(const MediaInfo& info, const QString& target)
{
    const auto known = base::readFile(core::filePath(target), kFileHeaderBytes + kHeaderBodyBytes);
    if (!known) return false;
    const auto copy = headerCopyOf(info);
    return copy && *copy == *known;
}

} // namespace

bool isCompressedFile(const QString& path)
{
    auto file = FileStart::open(core::filePath(path));
    if (!file) return false;
    const auto start = file->bytes(kFileHeaderBytes);
    if (!start) return false;
    const auto header = readFileHeader(*start);
    return header && isCompressed(*header);
}

base::Result<std::vector<std::uint8_t>> readPlainMovie(const MediaInfo& info)
{
    MovieBytes movie = TRY_RESULT(readMovie(info.MoviePath));
    if (movie.header.is("FWS")) return std::move(movie.file);
    if (!isCompressed(movie.header)) return base::fail(base::ErrorCode::Malformed, "neither FWS nor CWS");
    const auto body = TRY_RESULT(
        decompressMovie(movie.file, std::min<std::uint64_t>(movie.header.fileLength, kMaxMovieBytes)));
    const auto head = movie.header.withSignature("FWS");
    std::vector<std::uint8_t> plain(head.size() + body.size());
    std::ranges::copy(body, std::ranges::copy(head, plain.begin()).out);
    return plain;
}

base::Result<void> MediaFiles::backUp(const QString& path, const QString& extension, base::Bytes content)
{
    const QString name = CacheName(path, extension);
    QDir().mkpath(m_application.CachePath);
    CHECK_RESULT(noteBackup(m_application.CachePath, name));
    // The cache path ends in a separator already; the doubled one is accepted by every system.
    return base::replaceFile(core::filePath(m_application.CachePath + QDir::separator() + name), content);
}

base::Result<void> MediaFiles::writeToCache(const QString& file, std::span<const base::Bytes> parts) const
{
    QDir().mkpath(m_application.CachePath); // a failure shows in what is written there
    return base::replaceFile(core::filePath(file), parts);
}

QString MediaFiles::DecompressFlash(MediaInfo& info, Extent extent)
{
    const bool headerOnly = extent == Extent::HeaderOnly;
    m_application.LogEvent({});
    m_application.LogEvent(QString(" :: DecompressFlash (") + (headerOnly ? "Header Only" : "Full") + ")");
    const QString target =
        headerOnly ? m_application.CachePath + CacheName(info.MoviePath, ".tmp") : info.MoviePath;
    if (headerOnly && hasHeaderCopy(info, target)) {
        m_application.LogEvent("Header exists - skipping");
        return target;
    }
    m_application.LogEvent("Target path: " + target);
    m_application.LogEvent("Reading data");
    m_host.SetStatus(texts::kReadingFile);

    const base::Result<void> done =
        headerOnly ? writeHeaderCopy(info, target) : decompressInPlace(info, target);
    if (!done) {
        note(done.error());
        return {};
    }
    if (!headerOnly) {
        m_application.LogEvent("Decompression succeeded");
        m_host.SetStatus(texts::kReady);
        if (info.MoviePath == target) {
            m_host.setCompressCaption(texts::kMenuCompress);
            info.OriginalPath = target;
        }
    }
    return target;
}

base::Result<void> MediaFiles::writeHeaderCopy(const MediaInfo& info, const QString& target)
{
    m_application.LogEvent("Decompression");
    m_host.SetStatus(texts::kDecompressing);
    const auto copy = TRY_RESULT(headerCopyOf(info));
    m_application.LogEvent("Writing new header");
    return writeToCache(target, copy);
}

base::Result<void> MediaFiles::decompressInPlace(const MediaInfo& info, const QString& target)
{
    const MovieBytes movie = TRY_RESULT(readMovie(info.MoviePath));
    if (movie.header.is("FWS")) return {}; // converted since it was loaded
    m_application.LogEvent("Decompression");
    m_host.SetStatus(texts::kDecompressing);
    // The stated length counts 8 bytes that are not in the stream; the room to spare does no harm.
    const auto body =
        TRY_RESULT(decompressMovie(movie.file, std::min<std::uint64_t>(info.FileLength, kMaxMovieBytes)));

    // From here on `info` may be that of another movie.
    if (!m_host.progress(kInflatedPart)) return base::fail(base::ErrorCode::LimitReached, "ended");
    m_application.LogEvent("Backing up");
    base::sweepTemporaryFilesOf(replacedBy(target)); // of a run that was killed
    CHECK_RESULT(backUp(target, ".swf", movie.file));
    if (core::fileExists(target)) m_application.LogEvent("Removing persistent file");
    m_application.LogEvent("Writing decompressed data");
    m_host.SetStatus(texts::kWriting);
    return writeMovie(target, movie.header, "FWS", body);
}

QString MediaFiles::CompressFlash(MediaInfo& info, int level)
{
    m_host.SetStatus(texts::kReadingFile);
    const QString target = info.MoviePath;
    const base::Result<void> done = compressInPlace(target, level);
    if (!done) {
        note(done.error());
        return {};
    }
    m_host.SetStatus(texts::kReady);
    if (info.MoviePath == target) {
        m_host.setCompressCaption(texts::kMenuDecompress);
        info.OriginalPath = target;
    }
    return target;
}

base::Result<void> MediaFiles::compressInPlace(const QString& target, int level)
{
    const MovieBytes movie = TRY_RESULT(readMovie(target));
    // A command given twice must not compress what is compressed already: no player could read the result.
    if (isCompressed(movie.header)) return {};
    m_host.SetStatus(texts::kCompressing);
    const auto body =
        TRY_RESULT(CompressData(movie.body(), level, [this](double part) { return m_host.progress(part); }));
    m_host.SetStatus(texts::kWriting);
    base::sweepTemporaryFilesOf(replacedBy(target));
    CHECK_RESULT(backUp(target, ".swf", movie.file));
    return writeMovie(target, movie.header, "CWS", body);
}

} // namespace media
