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
constexpr std::uint64_t kLargestProjectorBytes = std::uint64_t{1} << 31;

base::Result<void> writeRange(const QString& target, base::Bytes executable, const EmbeddedMovie& movie)
{
    // A movie that lacks its last byte gets it back.
    constexpr std::uint8_t kMissing[1] = {0};
    const base::Bytes rest = executable.subspan(movie.offset);
    const base::Bytes found = rest.first(std::min(rest.size(), movie.length));
    const base::Bytes parts[] = {found, base::Bytes(kMissing).first(movie.length - found.size())};
    return base::replaceFile(core::filePath(target), parts);
}

} // namespace

QString MediaFiles::ExtractEXE(const QString& path, ExtractTo where)
{
    m_application.LogEvent({});
    m_application.LogEvent(" :: ExtractEXE (" + path + ")... ");
    const bool toCache = where == ExtractTo::Cache;
    const QString target = toCache ? m_application.CachePath + CacheName(path, ".swf") : path;
    // The projector itself exists by its nature; only a movie in the cache was extracted earlier.
    if (toCache && core::fileExists(target)) {
        m_application.LogEvent("File exists");
        return target;
    }

    m_host.SetStatus(texts::kReadingExecutable);
    m_host.SetStatus(texts::kReadingFile);
    const auto executable = base::readFile(core::filePath(path), kLargestProjectorBytes);
    if (!executable) {
        note(executable.error());
        return {};
    }
    if (executable->size() < kShortestProjectorBytes) {
        m_application.LogEvent("Too short file");
        return {};
    }
    const auto movie = findEmbeddedMovie(*executable);
    if (!movie) {
        if (movie.error().code == base::ErrorCode::NotFound) m_errorDescription = texts::kNoMedia;
        return {};
    }
    if (!toCache) {
        m_application.LogEvent("Backing up");
        const auto backup =
            base::replaceFile(core::filePath(backupPath(path, ".exe")), base::Bytes(*executable));
        if (!backup) {
            note(backup.error());
            return {};
        }
    }
    m_application.LogEvent("Writing data... ");
    m_host.SetStatus(texts::kWritingFile);
    if (const auto written = writeRange(target, *executable, *movie); !written) {
        note(written.error());
        return {};
    }
    m_application.LogEvent("Ok");
    m_host.SetStatus(texts::kReady);
    return target;
}

} // namespace media
