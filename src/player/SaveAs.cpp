#include "player/SaveAs.h"

#include "base/Files.h"
#include "core/Application.h"
#include "core/RunTimeErrors.h"
#include "media/MediaFiles.h"
#include "player/Texts.h"

namespace player
{

QString saveFilter(const media::MediaInfo& info)
{
    if (info.Converted) return texts::kSaveProjector;
    return info.Compressed ? texts::kSaveCompressed : texts::kSavePlain;
}

SaveResult saveMovie(const media::MediaInfo& info, const QString& target)
{
    const auto movie = media::readPlainMovie(info);
    if (!movie) return {SaveOutcome::CannotConvert, movie.error().what, core::describe(movie.error())};
    std::error_code error;
    const auto real = std::filesystem::canonical(core::filePath(target), error);
    const auto file = error ? core::filePath(target) : real;
    base::sweepTemporaryFilesOf(file); // of a run that was killed
    const auto written = base::replaceFile(file, base::Bytes(*movie));
    if (!written) return {SaveOutcome::CannotWrite, written.error().what, core::describe(written.error())};
    return {};
}

QString saveDiagnosis(const media::MediaInfo& info, const QString& filter)
{
    const auto yesNo = [](bool value) { return value ? "True" : "False"; };
    return texts::kSaveFilter + filter + "\r\n" + texts::kSaveFile + info.MoviePath + "\r\n" +
           texts::kSaveCompression + yesNo(info.Compressed) + "\r\n" + texts::kSaveIsProjector +
           yesNo(info.Converted);
}

} // namespace player
