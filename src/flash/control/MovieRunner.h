#pragma once

#include "flash/Engine.h"
#include "flash/control/Messages.h"
#include "flash/sound/Mixer.h"
#include "flash/sound/Stretcher.h"

#include <QElapsedTimer>
#include <QRect>

#include <optional>
#include <vector>

class QImage;
namespace flash::stage
{
class TextField;
}

namespace flash::control
{

/// What a movie says, on its way to the window.
class MovieOutput
{
public:
    virtual ~MovieOutput() = default;
    virtual void say(FromMovie message) = 0;
    /// The timeline has come to another frame. @returns whether the window can see that by itself; otherwise
    /// it is said
    virtual bool showsFrame(int frame) = 0;
    /// Waits for the window's answer. Input and commands that come meanwhile reach the movie later.
    virtual Answer ask(Ask::What what) = 0;
    /// Asked every few milliseconds while scripts run. @returns true to end all scripts of the movie for good
    virtual bool endsScripts() = 0;
};

/// How far a sound device has got with what it was fed; empty where there is none.
using SoundClock = std::optional<double>; // milliseconds since it was opened

/// Plays a movie by the real clock and by messages: the whole of a movie's end but for the way the messages,
/// the pictures and the sounds take. One thread.
class MovieRunner : private stage::HostEvents
{
public:
    /// @param output borrowed
    explicit MovieRunner(MovieOutput& output);

    /// Does what the window says. Ignored, but for settings, while a script of the movie waits for an answer.
    void handle(const ToMovie& message);

    /// As handle(). @param bytes the file's, where the window's end has opened it
    void load(const Load& load, std::optional<std::vector<std::uint8_t>> bytes);

    /// Ends what the movie does now, and every one that is still to come.
    void interrupt() { m_engine.interrupt(Engine::Until::Ever); }
    /// Moves on to the present. @param device where the sound device is
    void step(SoundClock device);
    /// Until the next step is due, milliseconds; empty when nothing moves.
    [[nodiscard]] std::optional<double> msToNextStep();

    [[nodiscard]] bool isBusy() const { return m_busy; }
    [[nodiscard]] qint64 busyForMs() const { return m_busy ? m_sinceBusy.elapsed() : 0; }
    [[nodiscard]] bool isOpen() const { return m_engine.isOpen(); }
    /// What has changed since it was drawn, device pixels.
    [[nodiscard]] std::vector<QRect> dirtyRects();
    void render(QImage& image, const std::vector<QRect>& rects);
    [[nodiscard]] sound::Mixer& mixer();
    /// What a device is to play next, in its pitch whatever the speed is.
    void mix(std::span<sound::StereoFrame> frames);
    [[nodiscard]] const State& state() const { return m_state; }

private:
    void fsCommand(std::string_view command, std::string_view arguments) override;
    void openUrl(std::string_view url, std::string_view window) override;
    void traceLine(std::string_view utf8) override;
    void logLine(std::string_view utf8) override;
    void readyStateChanged(int state) override;
    void progressed(int percent) override;
    void setClipboardText(std::string_view utf8) override;
    std::string clipboardText() override;
    bool abortSlowScript() override;
    bool endsScripts() override;
    void limitReached(std::string_view what) override;
    void movieEnded(EndCause cause, std::string_view why) override;

    /// Who listens to keys may be anywhere in the movie.
    enum class Listeners : std::uint8_t { LookedFor, AsBefore };
    /// Runs `work`, which may run scripts, then tells the window what came of it.
    template <class Work>
    void drive(Work&& work, Listeners listeners = Listeners::LookedFor);
    void say(FromMovie message);
    void tellState(Listeners listeners = Listeners::LookedFor);
    [[nodiscard]] Standing standing() const;

    void act(const Load& message) { load(message, std::nullopt); }
    void act(const Unload& unload);
    void act(const Play&);
    void act(const Stop&);
    void act(const Halt& halt);
    void act(const SetVariable& variable);
    void act(const GetVariable& variable);
    void act(const Settings& settings);
    void act(const Background& background);
    void act(const View& view);
    void act(const Mouse& mouse);
    void act(const Key& key);
    void act(const TypedText& typed);
    void act(const Composition& composition);
    void act(const FocusChange& focus);
    void act(const OpenMenu& open);
    void act(const ChooseMenuItem& chosen);
    void act(const Advance& advance);
    void act(const Sync& sync);
    // These are of the way between two processes.
    void act(const Release&) {}
    void act(const PictureSocket&) {}
    void act(const Answer&) {}
    void act(const SoundDevice&) {}

    void type(const std::u32string& text);
    /// @returns null when something else has the focus, or nothing
    [[nodiscard]] stage::TextField* focusedField();
    [[nodiscard]] double inStepWithSound(double elapsedMs, SoundClock device);
    void applyQuality();
    void adaptQuality(double elapsedMs);

    MovieOutput& m_output;
    Engine m_engine;
    QElapsedTimer m_clock, m_sinceBusy;
    Settings m_settings;
    sound::Stretcher m_stretcher;
    State m_state;
    QElapsedTimer m_sinceLooked; // for listeners
    std::uint32_t m_menu = 0;    // that may be chosen from; 0: none
    std::uint32_t m_loaded = 0;  // the id of the Load that layer 0 came by
    int m_readyState = 0;
    std::size_t m_saidInDrive = 0;
    bool m_busy = false, m_automaticHigh = true;
    double m_costMs = 0, m_measuredMs = 0;
    double m_playedMs = 0, m_soundLeadMs = -1; // since the device was opened; -1: not measured yet
};

} // namespace flash::control
