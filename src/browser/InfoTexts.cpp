#include "browser/InfoTexts.h"

#include "browser/ConvertSize.h"
#include "browser/Texts.h"
#include "core/Application.h"

#include <algorithm>

namespace browser
{
namespace
{

constexpr qint64 kShortestMovieBytes = 8;

QString noteOn(const media::MediaInfo& info)
{
    const auto onDisk = static_cast<double>(info.FileSize), whole = static_cast<double>(info.FileLength);
    const QString percent = whole > 0 ? roundedText(onDisk / whole * 100, 1) : QString("0");
    // The order decides: each test that holds replaces what was said before.
    QString note = texts::kNotCompressed;
    if (info.Compressed) note = texts::kCompression + percent + texts::kOfOriginal;
    if (info.Converted) note = texts::kProjector;
    if (!info.Compressed && onDisk < whole) note = texts::kOnly + percent + texts::kLoaded;
    return note;
}

} // namespace

InfoTexts describeMovie(const media::MediaInfo& info, const QString& playTime)
{
    InfoTexts texts;
    const QString& path = info.OriginalPath;
    texts.path = path;
    texts.name = path.mid(std::max(path.lastIndexOf('\\'), path.lastIndexOf('/')) + 1);
    if (!core::fileExists(path)) return texts;
    texts.found = InfoTexts::Found::TooShort;
    if (info.FileSize < kShortestMovieBytes) return texts;

    texts.found = InfoTexts::Found::Movie;
    texts.version = texts::kVersion + QString::number(info.Version);
    texts.time = texts::kTime + playTime + " (" + QString::number(info.FrameCount) + ")";
    texts.note = noteOn(info);
    const auto onDisk = static_cast<double>(info.FileSize), whole = static_cast<double>(info.FileLength);
    texts.size = texts::kSize + (onDisk != whole ? ConvertSize(onDisk) + " (" + ConvertSize(whole) + ")"
                                                 : ConvertSize(whole));
    texts.metrix = texts::kMetrix + QString::number(info.Width) + " x " + QString::number(info.Height) +
                   " @ " + QString::number(static_cast<double>(info.FrameRate)) + texts::kFps;
    return texts;
}

} // namespace browser
