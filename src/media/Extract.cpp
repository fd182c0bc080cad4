#include "base/Files.h"
#include "media/CacheName.h"
#include "media/MediaFiles.h"
#include "media/Projector.h"
#include "media/Texts.h"

#include <algorithm>

namespace media
{
namespace
{

/// A longer file is no projector, and its length is more than the 32 bits of its own format can say.
constexpr std::uint64_t kMaxProjectorBytes = std::uint64_t{1} << 31;

/// The movie's bytes in an executable. One that lacks its last byte gets it back.
struct MovieRange {
    MovieRange(base::Bytes executable, const EmbeddedMovie& movie)
    {
        static constexpr std::uint8_t kMissing[1] = {0};
        const base::Bytes rest = executable.subspan(movie.offset);
        parts[0] = rest.first(std::min(rest.size(), movie.length));
        parts[1] = base::Bytes(kMissing).first(movie.length - parts[0].size());
    }
    [[nodiscard]] bool isIn(const QString& file) const
    {
        const auto known = base::readFile(core::filePath(file), parts[0].size() + parts[1].size());
        if (!known || known->size() != parts[0].size() + parts[1].size()) return false;
        const auto end = std::ranges::mismatch(*known, parts[0]).in1;
        return std::equal(end, known->end(), parts[1].begin(), parts[1].end());
    }
    base::Bytes parts[2];
};

/// Whether a file begins as movies do, plain or compressed.
bool isMovie(base::Bytes file)
{
    return file.size() >= 3 && (file[0] == 'F' || file[0] == 'C' || file[0] == 'Z') && file[1] == 'W' &&
           file[2] == 'S';
}

base::Result<EmbeddedMovie> movieIn(base::Bytes executable)
{
    auto movie = findEmbeddedMovie(executable);
    if (!movie && movie.error().code == base::ErrorCode::NotFound) movie = findAnyMovie(executable);
    return movie;
}

} // namespace

bool holdsMovie(const QString& path)
{
    const auto executable = base::readFile(core::filePath(path), kMaxProjectorBytes);
    return executable && executable->size() >= kShortestProjectorBytes && movieIn(*executable);
}

QString MediaFiles::ExtractEXE(const QString& path, ExtractTo where)
{
    m_application.LogEvent({});
    m_application.LogEvent(" :: ExtractEXE (" + path + ")... ");
    const bool toCache = where == ExtractTo::Cache;
    const QString target = toCache ? m_application.CachePath + CacheName(path, ".swf") : path;

    m_host.SetStatus(texts::kReadingExecutable);
    m_host.SetStatus(texts::kReadingFile);
    const auto executable = base::readFile(core::filePath(path), kMaxProjectorBytes);
    if (!executable) {
        note(executable.error());
        return {};
    }
    // The movie has taken the projector's place already; its backup must not be replaced by the movie.
    if (!toCache && isMovie(*executable)) {
        m_application.LogEvent("File exists");
        m_host.SetStatus(texts::kReady);
        return target;
    }
    if (executable->size() < kShortestProjectorBytes) {
        m_application.LogEvent("Too short file");
        return {};
    }
    const auto movie = movieIn(*executable);
    if (!movie) {
        if (movie.error().code == base::ErrorCode::NotFound) m_errorDescription = texts::kNoMedia;
        return {};
    }
    const MovieRange range(*executable, *movie);
    // What was taken out earlier serves again, unless it came from what the file was before, or from another.
    if (toCache && range.isIn(target)) {
        m_application.LogEvent("File exists");
        return target;
    }
    if (!toCache) {
        m_application.LogEvent("Backing up");
        base::sweepTemporaryFilesOf(core::filePath(target)); // of a run that was killed
        if (const auto backup = backUp(path, ".exe", *executable); !backup) {
            note(backup.error());
            return {};
        }
    }
    m_application.LogEvent("Writing data... ");
    m_host.SetStatus(texts::kWritingFile);
    const auto written =
        toCache ? writeToCache(target, range.parts) : base::replaceFile(core::filePath(target), range.parts);
    if (!written) {
        note(written.error());
        return {};
    }
    m_application.LogEvent("Ok");
    m_host.SetStatus(texts::kReady);
    return target;
}

} // namespace media
