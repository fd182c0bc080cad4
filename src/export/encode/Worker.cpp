#include "export/encode/Worker.h"

#include "base/Files.h"
#include "export/Formats.h"
#include "export/encode/Strip.h"
#include "export/encode/Tracks.h"

#include <QBuffer>

#include <optional>
#include <system_error>
#include <unistd.h>

namespace exporter
{

namespace
{

Written whatCameOf(const Strip& strip, std::int64_t pictures)
{
    return {pictures, strip.ms(), strip.isCutShort(), strip.film().endedBecause()};
}

/// A palette for all the film: it is played once for its colours alone.
base::Result<std::unique_ptr<Palette>> paletteOf(const Settings& settings)
{
    // Colours come and go more slowly than pictures.
    constexpr double kLookMs = 200;
    Strip strip = TRY_RESULT(Strip::open(settings));
    auto palette = std::make_unique<Palette>();
    std::vector<flash::sound::StereoFrame> unheard;
    double lookedMs = -kLookMs;
    do {
        if (strip.ms() - lookedMs < kLookMs) continue;
        bool isNew = false;
        const QImage& picture = strip.picture(isNew);
        if (!isNew) continue;
        lookedMs = strip.ms();
        CHECK_RESULT(palette->look(picture));
    } while (strip.next(unheard));
    CHECK_RESULT(palette->choose());
    return palette;
}

base::Result<QByteArray> pngOf(const QImage& picture, bool isTransparent)
{
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    const auto format = isTransparent ? QImage::Format_ARGB32 : QImage::Format_RGB32;
    if (!picture.convertToFormat(format).save(&buffer, "PNG"))
        return base::fail(base::ErrorCode::IoFailure, "the picture cannot be encoded");
    return png;
}

base::Bytes bytesOf(const QByteArray& bytes)
{
    return {reinterpret_cast<const std::uint8_t*>(bytes.constData()), static_cast<std::size_t>(bytes.size())};
}

} // namespace

void prepareEncoders()
{
    av_log_set_level(AV_LOG_QUIET);
    for (const FormatInfo& info : formats()) {
        (void)pictureEncoder(info.format);
        (void)soundEncoder(info.format);
    }
}

base::Result<Written> writeFilm(const Settings& settings, int descriptor, Progress& progress)
{
    const FormatInfo& format = infoOf(settings.format);
    std::unique_ptr<Palette> palette;
    if (settings.format == Format::Gif) palette = TRY_RESULT(paletteOf(settings));
    Strip strip = TRY_RESULT(Strip::open(settings));
    progress.opened();
    const auto container = TRY_RESULT(Container::open(settings.format, descriptor));
    std::optional<PictureTrack> pictures;
    std::optional<SoundTrack> sound;
    if (format.hasPictures) {
        pictures = TRY_RESULT(
            PictureTrack::add(*container, settings, strip.size(), strip.rate(), std::move(palette)));
    }
    if (format.hasSound && (settings.hasSound || !format.hasPictures))
        sound = TRY_RESULT(SoundTrack::add(*container, settings.format));
    CHECK_RESULT(container->begin());

    std::int64_t count = 0;
    std::vector<flash::sound::StereoFrame> heard;
    bool goesOn = true;
    while (goesOn) {
        if (pictures || settings.end != End::Given) { // whether anything moves is seen by drawing it
            bool isNew = false;
            const QImage& picture = strip.picture(isNew);
            if (pictures) CHECK_RESULT(pictures->take(isNew ? &picture : nullptr));
            progress.shown(picture);
        }
        progress.advanced(++count, strip.expected());
        goesOn = strip.next(heard);
        static_assert(sizeof(flash::sound::StereoFrame) == 2 * sizeof(std::int16_t));
        if (sound)
            CHECK_RESULT(
                sound->take({reinterpret_cast<const std::int16_t*>(heard.data()), 2 * heard.size()}));
    }
    if (pictures) CHECK_RESULT(pictures->finish());
    if (sound) CHECK_RESULT(sound->finish());
    CHECK_RESULT(container->finish());
    return whatCameOf(strip, count);
}

base::Result<Written> writePictures(const Settings& settings, const std::filesystem::path& folder,
                                    Progress& progress)
{
    Strip strip = TRY_RESULT(Strip::open(settings));
    progress.opened();
    std::int64_t count = 0;
    std::vector<flash::sound::StereoFrame> unheard;
    do {
        bool isNew = false;
        const QImage& picture = strip.picture(isNew);
        const QByteArray png = TRY_RESULT(pngOf(picture, settings.isGroundTransparent));
        char name[32];
        std::snprintf(name, sizeof name, "%06lld.png", static_cast<long long>(++count));
        auto file = TRY_RESULT(base::PendingFile::create(folder / name));
        CHECK_RESULT(file.write(bytesOf(png)));
        CHECK_RESULT(file.commit());
        progress.shown(picture);
        progress.advanced(count, strip.expected());
    } while (strip.next(unheard));
    return whatCameOf(strip, count);
}

base::Result<Written> writePicture(const Settings& settings, int descriptor, Progress& progress)
{
    Strip strip = TRY_RESULT(Strip::open(settings));
    progress.opened();
    bool isNew = false;
    const QImage& picture = strip.picture(isNew);
    const QByteArray png = TRY_RESULT(pngOf(picture, settings.isGroundTransparent));
    for (qsizetype written = 0; written < png.size();) {
        const ssize_t count =
            ::write(descriptor, png.constData() + written, static_cast<std::size_t>(png.size() - written));
        if (count < 0 && errno == EINTR) continue;
        if (count < 0)
            return base::fail(base::ErrorCode::IoFailure,
                              "the file cannot be written: " + std::generic_category().message(errno));
        written += count;
    }
    progress.shown(picture);
    progress.advanced(1, 1);
    return whatCameOf(strip, 1);
}

} // namespace exporter
