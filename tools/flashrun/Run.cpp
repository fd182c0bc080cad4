#include "Run.h"

#include "Picture.h"
#include "Recording.h"
#include "base/Files.h"
#include "flash/Engine.h"
#include "flash/Film.h"
#include "flash/InputScript.h"
#include "flash/avm2/abc/Abc.h"
#include "flash/avm2/abc/Disassembly.h"
#include "flash/swf/Describe.h"
#include "flash/swf/Disassembly.h"
#include "flash/swf/ScriptTags.h"

#include <QImage>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <vector>

namespace flashrun
{

namespace
{

constexpr std::uint64_t kMaxMovieBytes = 512ULL << 20;
// A movie whose header says no rate is still moved on, in steps of this length.
constexpr double kStepMsWithoutRate = 10;

bool isQuit(std::string_view command)
{
    constexpr std::string_view kQuit = "quit";
    return std::equal(command.begin(), command.end(), kQuit.begin(), kQuit.end(),
                      [](char a, char b) { return (a >= 'A' && a <= 'Z' ? a - 'A' + 'a' : a) == b; });
}

class Host : public flash::stage::HostEvents
{
public:
    enum class Traces { Printed, Dropped };
    enum class Quit { EndsTheRun, Ignored };
    enum class Commands { Shown, Hidden };
    Host(Traces traces, Quit quit, Commands commands) : m_traces(traces), m_quit(quit), m_commands(commands)
    {
    }

    void traceLine(std::string_view text) override
    {
        if (m_traces == Traces::Dropped) return;
        std::fwrite(text.data(), 1, text.size(), stdout);
        std::fputc('\n', stdout);
    }
    void logLine(std::string_view text) override
    {
        if (std::getenv("FLASHRUN_LOG") == nullptr) return;
        std::fprintf(stderr, "%.*s\n", static_cast<int>(text.size()), text.data());
    }
    void movieEnded(EndCause, std::string_view why) override
    {
        std::fprintf(stderr, "flashrun: the movie was ended: %.*s\n", static_cast<int>(why.size()),
                     why.data());
    }
    void fsCommand(std::string_view command, std::string_view argument) override
    {
        if (m_commands == Commands::Shown)
            traceLine("fscommand: " + std::string(command) + ' ' + std::string(argument));
        if (m_quit == Quit::Ignored || !isQuit(command)) return;
        // At once: what the script says after it is not heard.
        std::fflush(stdout);
        std::_Exit(EXIT_SUCCESS);
    }
    void openUrl(std::string_view url, std::string_view window) override
    {
        if (m_commands == Commands::Shown)
            traceLine("geturl: " + std::string(url) + ' ' + std::string(window));
    }
    void setClipboardText(std::string_view text) override { clipboard = text; }
    std::string clipboardText() override { return clipboard; }

    std::string clipboard;

private:
    Traces m_traces;
    Quit m_quit;
    Commands m_commands;
};

flash::Engine::Options optionsOf(const Arguments& arguments)
{
    flash::Engine::Options options;
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    options.startDateMs = arguments.dateMs.value_or(
        static_cast<double>(std::chrono::duration_cast<std::chrono::milliseconds>(now).count()));
    options.baseFolder = arguments.baseFolder;
    options.collectAlways = arguments.collectAlways;
    options.storageFolder = arguments.storageFolder;
    options.textCode = arguments.textCode;
    return options;
}

/// A movie that is played frame by frame, with input.
class Player
{
public:
    Player(const Arguments& arguments, Host& host) : m_host(host), m_engine(host, optionsOf(arguments)) {}

    base::Result<void> open(const Arguments& arguments)
    {
        if (!arguments.input.empty()) {
            m_input = TRY_RESULT(flash::InputScript::read(
                arguments.input, [this](std::string text) { m_host.clipboard = std::move(text); }));
            m_input.setScale(arguments.scale, arguments.scale);
        }
        m_engine.setDeviceScale(arguments.scale);
        if (arguments.twoThreads) m_engine.setSecondThread(flash::render::SecondThread::Always);
        m_engine.stage().view().setQuality(arguments.quality);
        CHECK_RESULT(m_engine.open(arguments.movie));
        playInput();
        return {};
    }

    [[nodiscard]] flash::Engine& engine() { return m_engine; }
    [[nodiscard]] double frameMs() const
    {
        const double rate = m_engine.stage().frameRate();
        return rate > 0 ? 1000 / rate : kStepMsWithoutRate;
    }
    /// To the next frame, which a movie that took this one's place may have at another rate.
    void playFrame()
    {
        constexpr double kLeastMs = 1e-6, kSpareMs = 1000;
        constexpr int kMostEvents = 100'000;
        const auto frame = m_engine.stage().frameCounter();
        // A movie that was ended has no more frames.
        double left = frameMs() + kSpareMs;
        for (int i = 0; i < kMostEvents && left > 0 && m_engine.stage().frameCounter() == frame; ++i) {
            const double ms = std::max(m_engine.stage().msToNextEvent(), kLeastMs);
            m_engine.advance(ms);
            left -= ms;
        }
        playInput();
    }
    void playAsLongAs(const Arguments& arguments)
    {
        int framesLeft = arguments.frames.value_or(arguments.ms ? std::numeric_limits<int>::max() : 1) - 1;
        if (!arguments.ms) {
            for (; framesLeft > 0; --framesLeft) playFrame();
            return;
        }
        // A little slack, for sums of frame times that are not whole.
        constexpr double kSlackMs = 1e-6;
        double left = *arguments.ms;
        for (; left + kSlackMs >= frameMs() && framesLeft > 0; --framesLeft) {
            left -= frameMs();
            playFrame();
        }
        if (framesLeft > 0 && left > kSlackMs) m_engine.advance(left);
    }

private:
    void playInput()
    {
        m_engine.act([this](flash::stage::Stage& stage) { m_input.playUpToWait(stage); });
    }
    Host& m_host;
    flash::Engine m_engine;
    flash::InputScript m_input;
};

base::Result<void> writePicture(flash::Engine& engine, const std::filesystem::path& file)
{
    QImage image(engine.stage().view().width(), engine.stage().view().height(),
                 QImage::Format_ARGB32_Premultiplied);
    image.fill(0);
    engine.render(image, {image.rect()});
    return writePng(image, file);
}

std::filesystem::path pictureName(const Arguments& arguments, int frame)
{
    if (!arguments.series) return arguments.out;
    char name[32];
    std::snprintf(name, sizeof(name), "frame%04d.png", frame);
    return arguments.out / name;
}

} // namespace

base::Result<void> trace(const Arguments& arguments)
{
    Host host(Host::Traces::Printed, Host::Quit::EndsTheRun,
              arguments.showCommands ? Host::Commands::Shown : Host::Commands::Hidden);
    Player player(arguments, host);
    CHECK_RESULT(player.open(arguments));
    player.playAsLongAs(arguments);
    return {};
}

base::Result<void> record(const Arguments& arguments)
{
    constexpr double kPieceMs = 1000;
    flash::Film::Options options;
    options.movie = arguments.movie;
    options.engine = optionsOf(arguments);
    options.input = arguments.input;
    options.quality = arguments.quality;
    const auto film = TRY_RESULT(flash::Film::open(std::move(options)));
    double lengthMs = arguments.ms.value_or(std::numeric_limits<double>::max());
    if (arguments.frames || !arguments.ms)
        lengthMs = std::min(lengthMs, 1000 * (arguments.frames.value_or(1) - 1) / film->framesPerSecond());
    std::vector<flash::sound::StereoFrame> heard;
    for (double nowMs = 0; nowMs < lengthMs;) {
        nowMs = std::min(nowMs + kPieceMs, lengthMs);
        film->playTo(nowMs, heard);
        if (heard.size() > kMaxSoundFrames)
            return base::fail(base::ErrorCode::LimitReached,
                              arguments.out.string() + ": a sound file ends at 4 GB");
    }
    if (!film->endedBecause().empty())
        std::fprintf(stderr, "flashrun: the movie was ended: %s\n", film->endedBecause().c_str());
    return writeSound(heard, arguments.out);
}

base::Result<void> render(const Arguments& arguments)
{
    if (arguments.series) {
        std::error_code error;
        std::filesystem::create_directories(arguments.out, error);
        if (error)
            return base::fail(base::ErrorCode::IoFailure, arguments.out.string() + ": " + error.message());
    }
    // A movie that ends itself is drawn as it was: the pictures were asked for.
    Host host(Host::Traces::Dropped, Host::Quit::Ignored, Host::Commands::Hidden);
    Player player(arguments, host);
    CHECK_RESULT(player.open(arguments));
    for (int frame = 1; frame <= arguments.lastFrame; ++frame) {
        if (frame > 1) player.playFrame();
        if (frame >= arguments.firstFrame) {
            CHECK_RESULT(writePicture(player.engine(), pictureName(arguments, frame)));
        }
    }
    return {};
}

base::Result<void> info(const Arguments& arguments)
{
    const auto bytes = TRY_RESULT(base::readFile(arguments.movie, kMaxMovieBytes));
    const auto movie = TRY_RESULT(flash::swf::parseMovie(bytes));
    const std::string text = flash::swf::describe(*movie);
    std::fwrite(text.data(), 1, text.size(), stdout);
    return {};
}

base::Result<void> actions(const Arguments& arguments)
{
    const auto bytes = TRY_RESULT(base::readFile(arguments.movie, kMaxMovieBytes));
    const auto movie = TRY_RESULT(flash::swf::parseMovie(bytes));
    std::string text = flash::swf::disassemble(*movie);
    for (const auto& block : flash::swf::readScriptTags(*movie).blocks) {
        const auto abc = flash::avm2::abc::parseAbc(block.bytes);
        text += "block " + block.name + '\n' +
                (abc ? flash::avm2::abc::disassemble(**abc) : abc.error().what + '\n');
    }
    std::fwrite(text.data(), 1, text.size(), stdout);
    return {};
}

} // namespace flashrun
