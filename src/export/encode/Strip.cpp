#include "export/encode/Strip.h"

#include "export/Formats.h"
#include "export/encode/Tracks.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <numeric>

namespace exporter
{

namespace
{

constexpr double kMsPerSecond = 1000;
// Halves of what rounding leaves where moments meet.
constexpr double kSlackMs = 1e-6;
// The header's rate counts in 256ths.
constexpr int kRateUnit = 256;
constexpr int kMaxSide = 8192;
// Browsers show a GIF's picture for at least two hundredths of a second.
constexpr Rate kQuickestGif{50, 1};

Rate rateOf(const Settings& settings, double moviesOwn)
{
    Rate rate = settings.rate;
    if (rate.isMovies()) {
        const int units = std::max(1, static_cast<int>(std::lround(moviesOwn * kRateUnit)));
        const int common = std::gcd(units, kRateUnit);
        rate = {units / common, kRateUnit / common};
    }
    if (settings.format == Format::Gif && rate.perSecond() > kQuickestGif.perSecond()) return kQuickestGif;
    return rate;
}

enum class Edge { Begin, End };
/// @param moment as in Settings
double msOf(double moment, Edge edge, double framesPerSecond)
{
    if (moment >= 0) return moment;
    return (-moment - (edge == Edge::Begin ? 1 : 0)) * kMsPerSecond / framesPerSecond;
}

flash::Film::Options filmOptions(const Settings& settings)
{
    flash::Film::Options options;
    options.movie = settings.movie;
    options.input = settings.input;
    options.quality =
        settings.quality == Quality::Best ? flash::stage::Quality::Best : flash::stage::Quality::High;
    options.isGroundTransparent = settings.isGroundTransparent;
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    options.engine.startDateMs = settings.dateMs.value_or(
        static_cast<double>(std::chrono::duration_cast<std::chrono::milliseconds>(now).count()));
    options.engine.language = "ru";
    options.engine.baseFolder = settings.baseFolder;
    options.engine.textCode = settings.textCode;
    return options;
}

} // namespace

base::Result<Strip> Strip::open(const Settings& settings)
{
    Strip strip;
    strip.m_film = TRY_RESULT(flash::Film::open(filmOptions(settings)));
    strip.m_rate = rateOf(settings, strip.m_film->framesPerSecond());
    const double framesPerSecond = strip.m_film->framesPerSecond();
    strip.m_fromMs = msOf(settings.fromMs, Edge::Begin, framesPerSecond);
    strip.m_end = settings.end;
    strip.m_toMs =
        settings.toMs != 0 ? msOf(settings.toMs, Edge::End, framesPerSecond) : strip.m_fromMs + kLongestMs;
    double endMs = strip.m_toMs;
    if (settings.end == End::Timeline && strip.m_film->totalFrames() > 1) {
        const double timeline = kMsPerSecond * strip.m_film->totalFrames() / framesPerSecond;
        endMs = std::min(endMs, std::max(timeline, strip.m_fromMs));
    }
    strip.m_expected = std::max<std::int64_t>(
        1, std::llround((endMs - strip.m_fromMs) * strip.m_rate.perSecond() / kMsPerSecond));
    strip.lay(settings);
    std::vector<flash::sound::StereoFrame> before;
    // In steps, so that what is heard before the film begins takes no room.
    for (double ms = 0; ms < strip.m_fromMs;) {
        ms = std::min(ms + kMsPerSecond, strip.m_fromMs);
        strip.m_film->playTo(ms, before);
        before.clear();
    }
    return strip;
}

void Strip::lay(const Settings& settings)
{
    const QSize own = m_film->movieSize();
    const bool isGiven = !settings.size.isEmpty();
    const QSize wanted =
        (isGiven ? settings.size : (QSizeF(own) * settings.scale).toSize()).expandedTo({1, 1});
    const QSize bounded = wanted.boundedTo({kMaxSide, kMaxSide});
    const QSize whole = PictureTrack::fitting(settings.format, bounded);
    const QSize movie = isGiven ? own.scaled(bounded, Qt::KeepAspectRatio).expandedTo({1, 1}) : bounded;
    m_picture = QImage(whole, QImage::Format_ARGB32_Premultiplied);
    m_picture.fill(settings.isGroundTransparent ? QColor(Qt::transparent) : m_film->ground());
    const int left = (whole.width() - movie.width()) / 2, top = (whole.height() - movie.height()) / 2;
    m_movie = QImage(m_picture.scanLine(top) + std::ptrdiff_t{4} * left, movie.width(), movie.height(),
                     m_picture.bytesPerLine(), m_picture.format());
    m_film->setPictureSize(movie);
}

double Strip::momentOf(std::int64_t index) const
{
    return m_fromMs + static_cast<double>(index) * kMsPerSecond * m_rate.denominator / m_rate.numerator;
}

const QImage& Strip::picture(bool& isNew)
{
    isNew = m_drawn < 0 || m_film->hasChanged();
    if (isNew) m_film->draw(m_movie);
    m_drawn = m_index;
    return m_picture;
}

bool Strip::next(std::vector<flash::sound::StereoFrame>& heard)
{
    heard.clear();
    m_film->playTo(momentOf(++m_index), heard);
    return !isOver(heard);
}

bool Strip::isOver(const std::vector<flash::sound::StereoFrame>& heard)
{
    if (!m_film->endedBecause().empty()) return true;
    if (momentOf(m_index) + kSlackMs >= m_toMs) {
        m_isCutShort = m_end != End::Given;
        return true;
    }
    if (m_end == End::Given) return false;
    if (m_end == End::Timeline && m_film->hasShownTimeline()) return true;
    const bool isSilent = std::ranges::all_of(
        heard, [](flash::sound::StereoFrame frame) { return frame == flash::sound::StereoFrame{}; });
    const bool isStill = isSilent && !m_film->hasChanged();
    m_stillMs = isStill ? m_stillMs + kMsPerSecond / m_rate.perSecond() : 0;
    // A timeline that plays comes to its end, however still the movie is on the way.
    if (m_end == End::Timeline && m_film->totalFrames() > 1 && m_film->isPlaying()) return false;
    return m_stillMs >= kStillMs;
}

} // namespace exporter
