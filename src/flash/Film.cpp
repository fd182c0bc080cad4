#include "flash/Film.h"

#include "flash/sound/SoundPlayer.h"

#include <QImage>

#include <cmath>

namespace flash
{

namespace
{

constexpr double kMsPerSecond = 1000;
// A movie whose header says no rate is still moved on, this often.
constexpr double kStepsPerSecondWithoutRate = 100;
// The stage adds up the lengths of frames, we multiply: what rounding leaves between the two is less than
// this.
constexpr double kSlackMs = 1e-6;

} // namespace

/// Nobody is there to answer: what the movie asks for is refused.
class Film::Host : public stage::HostEvents
{
public:
    void movieEnded(EndCause, std::string_view why) override { m_endedBecause = why; }
    void setClipboardText(std::string_view text) override { m_clipboard = text; }
    std::string clipboardText() override { return m_clipboard; }

    [[nodiscard]] const std::string& endedBecause() const { return m_endedBecause; }

private:
    std::string m_clipboard, m_endedBecause;
};

Film::Film(const Options& options) : m_host(std::make_unique<Host>()), m_engine(*m_host, options.engine) {}

Film::~Film() = default;

base::Result<std::unique_ptr<Film>> Film::open(Options options)
{
    std::unique_ptr<Film> film(new Film(options));
    CHECK_RESULT(film->start(options));
    return film;
}

base::Result<void> Film::start(const Options& options)
{
    if (!options.input.empty()) {
        m_input = TRY_RESULT(InputScript::read(
            options.input, [this](const std::string& text) { m_host->setClipboardText(text); }));
    }
    CHECK_RESULT(m_engine.open(options.movie));
    stage::Stage& stage = m_engine.stage();
    m_movieSize = QSize(stage.view().width(), stage.view().height());
    const swf::Rgba ground = stage.view().background();
    m_ground = QColor(ground.r, ground.g, ground.b);
    if (options.isGroundTransparent) stage.view().setHostBackground({0, 0, 0, 0});
    stage.view().setQuality(options.quality);
    m_framesPerSecond = stage.frameRate() > 0 ? stage.frameRate() : kStepsPerSecondWithoutRate;
    m_totalFrames = stage.totalFrames();
    m_isAtLastFrame = m_totalFrames > 1 && stage.currentFrame() == m_totalFrames - 1;
    playInput();
    return {};
}

void Film::setPictureSize(QSize pixels)
{
    m_input.setScale(static_cast<double>(pixels.width()) / m_movieSize.width(),
                     static_cast<double>(pixels.height()) / m_movieSize.height());
    m_engine.act([pixels](stage::Stage& stage) {
        stage.view().setScaleMode(stage::ScaleMode::ExactFit);
        stage.view().setSize(pixels.width(), pixels.height());
    });
}

void Film::playInput()
{
    m_engine.act([this](stage::Stage& stage) { m_input.playUpToWait(stage); });
}

void Film::playTo(double ms, std::vector<sound::StereoFrame>& heard)
{
    while (true) {
        const double next = static_cast<double>(m_framesBegun) * kMsPerSecond / m_framesPerSecond;
        if (next > ms + kSlackMs) break;
        moveTo(next + kSlackMs, heard);
        ++m_framesBegun;
        m_hasShownTimeline = m_hasShownTimeline || m_isAtLastFrame;
        m_isAtLastFrame = m_totalFrames > 1 && m_engine.stage().currentFrame() == m_totalFrames - 1;
        playInput();
    }
    moveTo(ms, heard);
}

void Film::moveTo(double ms, std::vector<sound::StereoFrame>& heard)
{
    if (ms <= m_nowMs) return;
    const std::int64_t samples = std::llround(ms * sound::kMixRate / kMsPerSecond);
    const std::size_t before = heard.size();
    heard.resize(before + static_cast<std::size_t>(samples - m_samplesHeard));
    m_engine.sound().mixer().mix(std::span(heard).subspan(before));
    m_samplesHeard = samples;
    m_engine.advance(ms - m_nowMs, Engine::SoundPace::Device);
    m_nowMs = ms;
}

bool Film::isPlaying() const { return m_engine.stage().isPlaying(); }

const std::string& Film::endedBecause() const { return m_host->endedBecause(); }

bool Film::hasChanged() { return !m_engine.dirtyRects().empty(); }

void Film::draw(QImage& picture) { m_engine.render(picture, m_engine.dirtyRects()); }

} // namespace flash
