#include "Arguments.h"

#include "base/TextCode.h"
#include "base/TextNumbers.h"
#include "flash/Engine.h"

#include <cmath>
#include <string_view>

namespace flashrun
{

const char* const kHelp =
    R"(flashrun: plays a Flash movie without a window, in simulated time

  flashrun trace MOVIE [options]    prints what the movie traces, one call to a line
      --frames N       end after frame N (frame 1 is shown at time 0)
      --ms T           end when T milliseconds of the movie's time have passed
                       (neither given: --frames 1)
      --fscommands S   show prints the movie's commands among its traces, as
                       fscommand: NAME ARGUMENT, and the addresses it asks for, as
                       geturl: ADDRESS WINDOW; hide is the default
  flashrun render MOVIE --frame N --out FILE.png [options]
  flashrun render MOVIE --frames A-B --out FOLDER [options]
                       writes pictures; a series is named frame0001.png and so on
      --scale S        times the movie's own size (default 1)
      --quality Q      low, medium, high or best (default high)
      --threads N      draws frames by so many, 1 or 2 (default 1): the pictures are the same
  flashrun thumbnail MOVIE --out FILE.png [options]
                       writes the first picture that shows what the movie is about
      --size N         pixels of the longer side (default 256)
      --seconds S      give the best picture so far when this time is up (default 5)
  flashrun record MOVIE --out FILE.wav [--frames N] [--ms T] [options]
                       writes what is heard, 44100 Hz in stereo, for as long as trace would play
  flashrun info MOVIE  prints the header, what the movie defines, and its tags
  flashrun actions MOVIE
                       prints the movie's scripts, an action to a line

Options of trace, render and record
      --base-dir DIR   relative addresses count from here, and nothing else is read
                       (default: the movie's folder)
      --date TIME      local time at which the movie's clock starts: 2001-02-03T04:05:06
                       (default: now)
      --storage DIR    shared objects are kept there (default: until the run ends)
      --input FILE     a JSON array of events; those up to the next "Wait" follow each frame
      --collect-always frees what scripts no longer hold at every chance, and overwrites it:
                       slow; brings to light what is freed too early

MOVIE may end in a query, movie.swf?name=value: its variables are set on the root.
Exit status: 0 done, 1 the movie cannot be played, 2 wrong usage.
)";

namespace
{

base::Result<double> number(std::string_view option, std::string_view text, double min, double max)
{
    const auto value = base::numberFromText(text);
    if (!value || !(*value >= min && *value <= max)) {
        return base::fail(base::ErrorCode::Malformed, std::string(option) + " needs a number from " +
                                                          std::to_string(std::lround(min)) + " to " +
                                                          std::to_string(std::lround(max)) + ", not \"" +
                                                          std::string(text) + "\"");
    }
    return *value;
}

base::Result<double> localDate(const std::string& text)
{
    if (const auto timeMs = base::localTimeFromText(text)) return *timeMs;
    return base::fail(base::ErrorCode::Malformed,
                      "--date needs a time like 2001-02-03T04:05:06, not \"" + text + "\"");
}

base::Result<flash::stage::Quality> qualityByName(std::string_view name)
{
    using flash::stage::Quality;
    if (name == "low") return Quality::Low;
    if (name == "medium") return Quality::Medium;
    if (name == "high") return Quality::High;
    if (name == "best") return Quality::Best;
    return base::fail(base::ErrorCode::Malformed,
                      "--quality is low, medium, high or best, not \"" + std::string(name) + "\"");
}

constexpr double kMaxFrames = 10'000'000;
constexpr double kMaxThumbnailPixels = 4096;

base::Result<void> takeOption(Arguments& arguments, std::string_view option, const std::string& value)
{
    if (option == "--frames" && arguments.command == Command::Render) {
        const auto dash = value.find('-');
        if (dash == std::string::npos) {
            return base::fail(base::ErrorCode::Malformed,
                              "--frames of render needs a first and a last: 1-10");
        }
        arguments.firstFrame =
            static_cast<int>(TRY_RESULT(number(option, value.substr(0, dash), 1, kMaxFrames)));
        arguments.lastFrame =
            static_cast<int>(TRY_RESULT(number(option, value.substr(dash + 1), 1, kMaxFrames)));
        arguments.series = true;
    } else if (option == "--frames") {
        arguments.frames = static_cast<int>(TRY_RESULT(number(option, value, 1, kMaxFrames)));
    } else if (option == "--frame" && arguments.command == Command::Render) {
        arguments.firstFrame = static_cast<int>(TRY_RESULT(number(option, value, 1, kMaxFrames)));
        arguments.lastFrame = arguments.firstFrame;
    } else if (option == "--ms" && arguments.command != Command::Render) {
        arguments.ms = TRY_RESULT(number(option, value, 0, 1e12));
    } else if (option == "--size" && arguments.command == Command::Thumbnail) {
        arguments.size = static_cast<int>(TRY_RESULT(number(option, value, 1, kMaxThumbnailPixels)));
    } else if (option == "--seconds" && arguments.command == Command::Thumbnail) {
        arguments.seconds = TRY_RESULT(number(option, value, 0, 600));
    } else if (option == "--out" && arguments.command != Command::Trace) {
        arguments.out = value;
    } else if (option == "--scale" && arguments.command == Command::Render) {
        arguments.scale = TRY_RESULT(number(option, value, 0.01, 64));
    } else if (option == "--threads" && arguments.command == Command::Render) {
        arguments.twoThreads = TRY_RESULT(number(option, value, 1, 2)) == 2;
    } else if (option == "--quality") {
        arguments.quality = TRY_RESULT(qualityByName(value));
    } else if (option == "--base-dir") {
        arguments.baseFolder = value;
    } else if (option == "--storage") {
        arguments.storageFolder = value;
    } else if (option == "--codepage") {
        if (value != flash::Engine::Options::kAutomaticTextCode && !base::TextCode::named(value))
            return base::fail(base::ErrorCode::Malformed, "--codepage does not know \"" + value + "\"");
        arguments.textCode = value;
    } else if (option == "--date") {
        arguments.dateMs = TRY_RESULT(localDate(value));
    } else if (option == "--fscommands" && arguments.command == Command::Trace) {
        if (value != "show" && value != "hide")
            return base::fail(base::ErrorCode::Malformed,
                              "--fscommands is show or hide, not \"" + value + "\"");
        arguments.showCommands = value == "show";
    } else if (option == "--input") {
        arguments.input = value;
    } else {
        return base::fail(base::ErrorCode::Malformed, "unknown option " + std::string(option));
    }
    return {};
}

base::Result<void> check(const Arguments& arguments)
{
    using base::ErrorCode;
    if (arguments.movie.empty()) return base::fail(ErrorCode::Malformed, "no movie is given");
    if (arguments.command == Command::Thumbnail && arguments.out.empty())
        return base::fail(ErrorCode::Malformed, "thumbnail needs --out");
    if (arguments.command == Command::Record && arguments.out.empty())
        return base::fail(ErrorCode::Malformed, "record needs --out");
    if (arguments.command != Command::Render) return {};
    if (arguments.firstFrame == 0)
        return base::fail(ErrorCode::Malformed, "render needs --frame or --frames");
    if (arguments.lastFrame < arguments.firstFrame) {
        return base::fail(ErrorCode::Malformed, "--frames ends before it begins");
    }
    if (arguments.out.empty()) return base::fail(ErrorCode::Malformed, "render needs --out");
    return {};
}

} // namespace

base::Result<Arguments> parseArguments(std::span<char*> words)
{
    Arguments arguments;
    if (words.empty()) return base::fail(base::ErrorCode::Malformed, "no command is given");
    const std::string_view command = words[0];
    if (command == "--help" || command == "-h" || command == "help") return arguments;
    if (command == "trace")
        arguments.command = Command::Trace;
    else if (command == "render")
        arguments.command = Command::Render;
    else if (command == "record")
        arguments.command = Command::Record;
    else if (command == "info")
        arguments.command = Command::Info;
    else if (command == "actions")
        arguments.command = Command::Actions;
    else if (command == "thumbnail")
        arguments.command = Command::Thumbnail;
    else
        return base::fail(base::ErrorCode::Malformed, "unknown command " + std::string(command));
    for (std::size_t i = 1; i < words.size(); ++i) {
        const std::string_view word = words[i];
        if (word == "--help" || word == "-h") return Arguments{};
        if (!word.starts_with("--")) {
            if (!arguments.movie.empty()) {
                return base::fail(base::ErrorCode::Malformed, "more than one movie is given");
            }
            arguments.movie = word;
        } else {
            if (word == "--collect-always") {
                arguments.collectAlways = true;
                continue;
            }
            if (i + 1 == words.size()) {
                return base::fail(base::ErrorCode::Malformed, std::string(word) + " needs a value");
            }
            CHECK_RESULT(takeOption(arguments, word, words[++i]));
        }
    }
    CHECK_RESULT(check(arguments));
    return arguments;
}

} // namespace flashrun
