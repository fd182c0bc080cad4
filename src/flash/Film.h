#pragma once

#include "base/Result.h"
#include "flash/Engine.h"
#include "flash/InputScript.h"
#include "flash/sound/Samples.h"
#include "flash/stage/Stage.h"

#include <QColor>
#include <QSize>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

class QImage;

namespace flash
{

/// A movie as a strip of pictures with the sound that belongs to them: played on simulated time, at whatever
/// moments are asked for. The same options give the same film on every run.
class Film
{
public:
    struct Options {
        std::string movie; ///< as Engine::open() takes it
        Engine::Options engine;
        std::filesystem::path input; ///< events as InputScript reads them; empty: none
        stage::Quality quality = stage::Quality::High;
        bool isGroundTransparent = false;
    };

    /// @errors those of Engine::open() and InputScript::read()
    static base::Result<std::unique_ptr<Film>> open(Options options);
    ~Film();
    Film(const Film&) = delete;
    Film& operator=(const Film&) = delete;

    /// Pixels of the movie's own frame.
    [[nodiscard]] QSize movieSize() const { return m_movieSize; }
    /// Of the movie; one without a rate is moved on a hundred times a second.
    [[nodiscard]] double framesPerSecond() const { return m_framesPerSecond; }
    [[nodiscard]] int totalFrames() const { return m_totalFrames; }
    [[nodiscard]] QColor ground() const { return m_ground; }

    /// The size in which pictures are drawn from now on; the movie is stretched to it.
    void setPictureSize(QSize pixels);

    /// Plays on to a moment of the movie's time, frame by frame, with the input that belongs to each frame.
    /// @param ms    since the movie started; never back
    /// @param heard gets the sound of the time until then at its end: kMixRate times the moment, rounded, in
    ///              all
    void playTo(double ms, std::vector<sound::StereoFrame>& heard);
    /// Whether the main timeline has been shown to its last frame, and that frame for its whole time.
    [[nodiscard]] bool hasShownTimeline() const { return m_hasShownTimeline; }
    /// Whether the main timeline plays.
    [[nodiscard]] bool isPlaying() const;
    /// Empty, or why the movie was closed before its time: in English, for a log.
    [[nodiscard]] const std::string& endedBecause() const;

    /// Whether anything changed since the last drawing.
    [[nodiscard]] bool hasChanged();
    /// Draws what changed since the last call.
    /// @param picture of the picture size, Format_ARGB32_Premultiplied; the same each time
    void draw(QImage& picture);

private:
    class Host;
    explicit Film(const Options& options);
    base::Result<void> start(const Options& options);
    void moveTo(double ms, std::vector<sound::StereoFrame>& heard);
    void playInput();

    std::unique_ptr<Host> m_host;
    Engine m_engine;
    InputScript m_input;
    QSize m_movieSize;
    QColor m_ground;
    double m_framesPerSecond = 0;
    int m_totalFrames = 0;
    double m_nowMs = 0;
    std::int64_t m_framesBegun = 1, m_samplesHeard = 0;
    bool m_isAtLastFrame = false, m_hasShownTimeline = false;
};

} // namespace flash
