#include "flash/control/MovieRunner.h"

#include "base/TextCodes.h"
#include "flash/sound/SoundPlayer.h"
#include "flash/stage/Stage.h"
#include "flash/stage/TextField.h"

#include <algorithm>
#include <cmath>
#include <thread>
#include <utility>

namespace flash::control
{

namespace
{

// A pause longer than this (a suspended machine, a dialog) is not made up for.
constexpr double kLongestStepMs = 1000;
// How often the sound device and the loads of a movie without a next event are looked after.
constexpr double kLongestWaitMs = 1000;
// A key that comes so soon after a movie has begun to listen is the window's.
constexpr qint64 kLookMs = 150;

// The numbers of Settings::quality.
enum QualityNumber { Low, High, AutoLow, AutoHigh, Medium, Best };

} // namespace

MovieRunner::MovieRunner(MovieOutput& output) : m_output(output), m_engine(*this, {}) { applyQuality(); }

template <class Work>
void MovieRunner::drive(Work&& work, Listeners listeners)
{
    if (m_busy) return;
    m_busy = true;
    m_saidInDrive = 0;
    m_sinceBusy.start();
    m_engine.act([&](stage::Stage&) { work(); });
    m_busy = false;
    tellState(listeners);
}

void MovieRunner::limitReached(std::string_view what) { say(LimitReached{std::string(what)}); }

void MovieRunner::movieEnded(EndCause cause, std::string_view)
{
    say(Speaking{m_loaded = 0});
    if (cause != EndCause::Interrupted) say(RanOutOfMemory{});
}

void MovieRunner::handle(const ToMovie& message)
{
    std::visit([this](const auto& one) { act(one); }, message);
}

void MovieRunner::step(SoundClock device)
{
    if (!m_engine.isOpen() || m_settings.suspended != 0) return;
    drive(
        [&] {
            const double elapsed =
                std::min(static_cast<double>(m_clock.nsecsElapsed()) / 1e6, kLongestStepMs);
            m_clock.start();
            QElapsedTimer cost;
            cost.start();
            m_engine.advance(inStepWithSound(elapsed, device) * m_settings.speed,
                             device ? Engine::SoundPace::Device : Engine::SoundPace::Simulated);
            m_costMs += static_cast<double>(cost.nsecsElapsed()) / 1e6;
            adaptQuality(elapsed);
        },
        m_sinceLooked.isValid() && m_sinceLooked.elapsed() < kLookMs ? Listeners::AsBefore
                                                                     : Listeners::LookedFor);
}

/// The device's clock leads where there is one: streams and timeline must not drift apart.
double MovieRunner::inStepWithSound(double elapsedMs, SoundClock device)
{
    constexpr double kToleratedMs = 60, kShareOfStep = 0.1;
    if (!device) {
        m_soundLeadMs = -1;
        return elapsedMs;
    }
    m_playedMs += elapsedMs;
    const double lead = *device - m_playedMs;
    // The device takes some sound ahead; how much is seen after the first moments.
    if (m_soundLeadMs < 0 || *device < 500) {
        if (m_soundLeadMs < 0) m_playedMs = 0;
        m_soundLeadMs = std::max(lead, 0.0);
        return elapsedMs;
    }
    const double drift = lead - m_soundLeadMs;
    if (std::abs(drift) < kToleratedMs) return elapsedMs;
    const double correction = std::clamp(drift, -elapsedMs * kShareOfStep, elapsedMs * kShareOfStep);
    m_playedMs += correction;
    return elapsedMs + correction;
}

std::optional<double> MovieRunner::msToNextStep()
{
    if (!m_engine.isOpen() || m_settings.suspended != 0) return std::nullopt;
    if (!m_clock.isValid()) m_clock.start();
    const double since = static_cast<double>(m_clock.nsecsElapsed()) / 1e6;
    return std::clamp(m_engine.stage().msToNextEvent() / m_settings.speed - since, 0.0, kLongestWaitMs);
}

std::vector<QRect> MovieRunner::dirtyRects() { return m_engine.dirtyRects(); }

void MovieRunner::render(QImage& image, const std::vector<QRect>& rects)
{
    QElapsedTimer cost;
    cost.start();
    m_engine.render(image, rects);
    m_costMs += static_cast<double>(cost.nsecsElapsed()) / 1e6;
}

sound::Mixer& MovieRunner::mixer() { return m_engine.sound().mixer(); }

void MovieRunner::mix(std::span<sound::StereoFrame> frames)
{
    m_stretcher.mix(frames, [this](std::span<sound::StereoFrame> source) { mixer().mix(source); });
}

// ---- what the window says ---------------------------------------------------------------------------------

void MovieRunner::load(const Load& load, std::optional<std::vector<std::uint8_t>> bytes)
{
    Engine::Options& options = m_engine.options();
    options.startDateMs = load.startDateMs;
    options.randomSeed = load.randomSeed;
    options.language = load.language;
    options.screenWidth = load.screenWidth;
    options.screenHeight = load.screenHeight;
    options.storageFolder = load.storageFolder;
    options.textCode = load.textCode;
    options.trustedFolder = load.trustedFolder;
    options.sharedFolder = load.sharedFolder;
    Loaded answer{load.id, 0, "a script of the movie is running"};
    drive([&] {
        // Its first frame's scripts run before the movie is known to be loaded.
        const std::uint32_t before = m_loaded;
        if (load.layer == 0) say(Speaking{m_loaded = load.id});
        const auto opened = m_engine.openLevel(load.layer, load.address, std::move(bytes));
        answer = {load.id, static_cast<std::uint8_t>(opened.has_value()),
                  opened ? std::string() : opened.error().what};
        if (load.layer != 0) return;
        m_menu = 0;
        if (!opened) {
            say(Speaking{m_loaded = before});
            return;
        }
        m_clock.start();
        m_soundLeadMs = -1;
    });
    say(std::move(answer));
}

void MovieRunner::act(const Unload& unload)
{
    drive([&] {
        if (unload.layer != 0) {
            m_engine.stage().loads().unloadLevel(unload.layer);
            return;
        }
        m_menu = 0;
        m_engine.close();
        say(Speaking{m_loaded = 0});
    });
}

void MovieRunner::act(const Play&)
{
    drive([&] { m_engine.stage().play(); });
}

void MovieRunner::act(const Stop&)
{
    drive([&] { m_engine.stage().stop(); });
}

void MovieRunner::act(const Halt& halt)
{
    if (!m_engine.isOpen()) return;
    drive([&] {
        m_engine.stage().stop();
        m_engine.stage().gotoFrame(halt.frame);
        m_engine.stage().stop();
    });
}

void MovieRunner::act(const SetVariable& variable)
{
    drive([&] { m_engine.setVariable(variable.name, variable.value); });
}

void MovieRunner::act(const GetVariable& variable)
{
    Value value{variable.id, {}};
    drive([&] { value.text = m_engine.getVariable(variable.name); });
    say(std::move(value));
}

void MovieRunner::act(const Settings& settings)
{
    constexpr double kSlowest = 0.1, kFastest = 10;
    const Settings before = std::exchange(m_settings, settings);
    // Not a number is no speed.
    m_settings.speed = settings.speed > 0 ? std::clamp(settings.speed, kSlowest, kFastest) : 1;
    m_stretcher.setSpeed(m_settings.speed);
    m_engine.stage().setLoop(settings.loop != 0);
    m_engine.sound().setMasterVolume(std::clamp(settings.volume, 0.0, 1.0),
                                     std::clamp(settings.balance, -1.0, 1.0));
    mixer().setMuted(settings.muted != 0);
    m_engine.setSecondThread(settings.secondThread != 0 && std::thread::hardware_concurrency() > 1
                                 ? render::SecondThread::WhenHeavy
                                 : render::SecondThread::Never);
    if (settings.suspended != before.suspended) m_clock.start();
    if (settings.quality != before.quality) {
        m_automaticHigh = settings.quality != AutoLow;
        m_measuredMs = m_costMs = 0;
        applyQuality();
    }
    if (settings.scaleMode != before.scaleMode && settings.scaleMode >= 0 && settings.scaleMode <= 3) {
        drive(
            [&] { m_engine.stage().view().setScaleMode(static_cast<stage::ScaleMode>(settings.scaleMode)); });
    }
}

void MovieRunner::act(const Background& background)
{
    stage::Stage& stage = m_engine.stage();
    if (background.isSet != 0)
        stage.view().setHostBackground({static_cast<std::uint8_t>(background.rgb >> 16U & 255U),
                                        static_cast<std::uint8_t>(background.rgb >> 8U & 255U),
                                        static_cast<std::uint8_t>(background.rgb & 255U)});
    else if (stage.movie())
        stage.view().adopt(*stage.movie());
    tellState();
}

void MovieRunner::act(const View& view)
{
    drive([&] {
        m_engine.setDeviceScale(view.deviceScale);
        m_engine.stage().view().setSize(view.width, view.height);
    });
}

void MovieRunner::act(const Mouse& mouse)
{
    const auto button = static_cast<stage::MouseButton>(
        std::min<std::uint8_t>(mouse.button, static_cast<std::uint8_t>(stage::MouseButton::Right)));
    drive([&] {
        stage::Stage& stage = m_engine.stage();
        switch (static_cast<Mouse::Kind>(mouse.kind)) {
        case Mouse::Kind::Move: stage.pointer().move(mouse.x, mouse.y); break;
        case Mouse::Kind::Down: stage.pointer().press(mouse.x, mouse.y, button, mouse.count); break;
        case Mouse::Kind::Up: stage.pointer().release(mouse.x, mouse.y, button); break;
        case Mouse::Kind::Leave: stage.pointer().leave(); break;
        case Mouse::Kind::Wheel: stage.pointer().wheel(mouse.count); break;
        }
    });
}

void MovieRunner::act(const Key& key)
{
    drive([&] {
        stage::Stage& stage = m_engine.stage();
        if (key.down == 0) {
            stage.keyboard().release(key.code, key.character);
            return;
        }
        stage.keyboard().press(key.code, key.character);
        if (focusedField() == nullptr) return;
        if (key.command >= 0 && key.command <= static_cast<int>(stage::TextCommand::Enter))
            stage.keyboard().command(static_cast<stage::TextCommand>(key.command));
        else
            type(key.typed);
    });
}

void MovieRunner::act(const TypedText& typed)
{
    drive([&] { type(typed.text); });
}

void MovieRunner::act(const Composition& composition)
{
    drive([&] {
        m_engine.stage().keyboard().compose(base::utf16FromUtf8(composition.text),
                                            static_cast<std::size_t>(std::max(composition.caret, 0)));
    });
}

void MovieRunner::type(const std::u32string& text)
{
    for (const char32_t character : text) m_engine.stage().keyboard().type(character);
}

void MovieRunner::act(const FocusChange& focus)
{
    using Kind = FocusChange::Kind;
    if (focus.gained == static_cast<std::uint8_t>(Kind::Lost))
        drive([&] { m_engine.stage().keyboard().leave(); });
    else if (focus.gained == static_cast<std::uint8_t>(Kind::Paused))
        m_engine.stage().keyboard().pause();
}

void MovieRunner::act(const OpenMenu& open)
{
    Menu menu{open.id, {}};
    drive([&] {
        if (!m_engine.isOpen()) return;
        stage::Pointer& pointer = m_engine.stage().pointer();
        m_menu = open.id;
        for (stage::MenuItem& item :
             open.byPointer != 0 ? pointer.openMenu(open.x, open.y) : pointer.openFocusMenu())
            menu.items.push_back({static_cast<std::uint8_t>(item.kind), std::move(item.caption),
                                  static_cast<std::uint8_t>(item.separatorBefore ? 1 : 0),
                                  static_cast<std::uint8_t>(item.enabled ? 1 : 0)});
    });
    // Scripts that heard of it may have ended the movie.
    if (!m_engine.isOpen()) menu.items.clear();
    say(std::move(menu));
}

void MovieRunner::act(const ChooseMenuItem& chosen)
{
    if (chosen.id == 0 || std::exchange(m_menu, 0) != chosen.id || !m_engine.isOpen()) return;
    drive([&] { m_engine.stage().pointer().chooseMenuItem(chosen.item); });
}

void MovieRunner::act(const Advance& advance)
{
    drive([&] { m_engine.advance(advance.ms); });
}

void MovieRunner::act(const Sync& sync) { say(Done{sync.id}); }

// ---- quality ----------------------------------------------------------------------------------------------

void MovieRunner::applyQuality()
{
    stage::Quality wanted = stage::Quality::High;
    switch (m_settings.quality) {
    case Low: wanted = stage::Quality::Low; break;
    case Medium: wanted = stage::Quality::Medium; break;
    case Best: wanted = stage::Quality::Best; break;
    case AutoLow:
    case AutoHigh: wanted = m_automaticHigh ? stage::Quality::High : stage::Quality::Low; break;
    default: break;
    }
    if (m_engine.stage().view().quality() != wanted) m_engine.stage().view().setQuality(wanted);
}

/// The two automatic qualities: smooth as long as the machine keeps up.
void MovieRunner::adaptQuality(double elapsedMs)
{
    if (m_settings.quality != AutoLow && m_settings.quality != AutoHigh) return;
    m_measuredMs += elapsedMs;
    if (m_measuredMs < 1000) return;
    const double load = m_costMs / m_measuredMs;
    m_measuredMs = m_costMs = 0;
    // Smoothing costs some three times as much, so that what goes up does not come down again.
    const bool high = m_automaticHigh ? load < 0.8 : load < 0.2;
    if (high == m_automaticHigh) return;
    m_automaticHigh = high;
    applyQuality();
}

} // namespace flash::control
