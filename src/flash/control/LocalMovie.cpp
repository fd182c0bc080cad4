#include "flash/control/LocalMovie.h"

#include "flash/AudioOutput.h"
#include "flash/control/PicturePainting.h"
#include "flash/sound/Mixer.h"

#include <cmath>

namespace flash::control
{

namespace
{

/// Stands between the device and the mixer, which is another for every movie.
class MixerSource : public SoundSource
{
public:
    explicit MixerSource(MovieRunner& runner) : m_runner(runner) {}
    void mix(std::span<sound::StereoFrame> frames) override { m_runner.mix(frames); }
    [[nodiscard]] bool isSilent() override { return m_runner.mixer().isSilent(); }

private:
    MovieRunner& m_runner;
};

} // namespace

LocalMovie::LocalMovie(MovieListener& listener)
    : m_listener(listener), m_runner(*this),
      m_audio(std::make_unique<AudioOutput>(std::make_unique<MixerSource>(m_runner)))
{
    const auto note = [this](const char* what) {
        m_listener.heard(LogLine{std::string("The sound device ") + what});
        m_listener.settle();
    };
    connect(m_audio.get(), &AudioOutput::lost, this, [note] { note("is lost; the movie plays on"); });
    connect(m_audio.get(), &AudioOutput::foundAgain, this, [note] { note("is back"); });
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, [this] { tick(); });
}

LocalMovie::~LocalMovie() { m_audio->release(); }

MoviePort::Loading LocalMovie::load(const Load& load, int)
{
    m_loaded = {load.id, 0, "a script of the movie is running"};
    command(load);
    return {m_loaded.done != 0 ? Loading::State::Done : Loading::State::Failed, m_loaded.error};
}

std::optional<std::string> LocalMovie::variable(const std::string& name)
{
    if (isBusy()) return std::nullopt;
    command(GetVariable{0, name});
    return m_value.text;
}

std::vector<MenuEntry> LocalMovie::menu(const OpenMenu& open)
{
    m_menu = {};
    if (!isBusy()) command(open);
    return std::exchange(m_menu, {}).items;
}

void LocalMovie::command(const ToMovie& message)
{
    m_runner.handle(message);
    if (!isBusy()) finish();
}

void LocalMovie::tick()
{
    if (isBusy()) return;
    const double elapsed =
        m_sinceSound.isValid() ? static_cast<double>(m_sinceSound.nsecsElapsed()) / 1e6 : 0;
    m_sinceSound.start();
    m_runner.step(m_audio->isPulling() ? SoundClock(m_audio->fedMs()) : std::nullopt);
    m_audio->follow(elapsed);
    finish();
    m_listener.settle();
}

void LocalMovie::finish()
{
    if (m_wantedView) m_runner.handle(*std::exchange(m_wantedView, std::nullopt));
    QRegion dirty;
    for (const QRect& part : m_runner.dirtyRects()) dirty |= part;
    if (!dirty.isEmpty()) m_listener.pictureChanged(dirty, MovieListener::Painting::Later);
    if (const auto wait = m_runner.msToNextStep())
        m_timer.start(static_cast<int>(std::ceil(*wait)));
    else
        m_timer.stop();
}

void LocalMovie::setView(int width, int height, double deviceScale)
{
    m_image = QImage(width, height, QImage::Format_ARGB32_Premultiplied);
    m_image.fill(0);
    m_unpainted = m_image.rect();
    const View view{width, height, deviceScale};
    if (isBusy())
        m_wantedView = view;
    else
        m_runner.handle(view);
}

void LocalMovie::refresh()
{
    if (isBusy()) return;
    const std::vector<QRect> dirty = m_unpainted.isEmpty() ? m_runner.dirtyRects() : std::vector{m_unpainted};
    m_unpainted = QRect();
    if (!dirty.empty()) m_runner.render(m_image, dirty);
}

void LocalMovie::paint(QPainter& painter, const QRegion& region, double deviceScale)
{
    refresh();
    // Opaque, so that it is copied without a look at each pixel's alpha.
    const QImage opaque(m_image.constBits(), m_image.width(), m_image.height(), m_image.bytesPerLine(),
                        QImage::Format_RGB32);
    paintPicture(painter, opaque, region, deviceScale);
}

void LocalMovie::releaseSound() { m_audio->release(); }

void LocalMovie::say(FromMovie message)
{
    if (const auto* loaded = std::get_if<Loaded>(&message))
        m_loaded = *loaded;
    else if (const auto* value = std::get_if<Value>(&message))
        m_value = *value;
    else if (auto* menu = std::get_if<Menu>(&message))
        m_menu = std::move(*menu);
    else
        m_listener.heard(std::move(message));
}

} // namespace flash::control
