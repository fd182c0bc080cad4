#include "export/CommandLine.h"

#include "base/TextCode.h"
#include "base/TextNumbers.h"
#include "export/Formats.h"

#include <charconv>
#include <cmath>
#include <string_view>

namespace exporter
{

const char* const kHelp =
    R"(zorvex-export: writes a Flash movie as a video, pictures or sound

  zorvex-export MOVIE OUT.mp4 [options]     H.264 and AAC; OUT.mkv the same
  zorvex-export MOVIE OUT.webm [options]    VP9 and Opus
  zorvex-export MOVIE OUT.gif [options]     with a palette made for the film
  zorvex-export MOVIE OUT.png [options]     a folder OUT of pictures 000001.png, 000002.png...;
                                            with --frame the one picture OUT.png
  zorvex-export MOVIE OUT.wav [options]     what is heard; OUT.flac the same
  zorvex-export --formats                   what this machine can write, and what it lacks

Range
      --from T         where the film begins (default 0)
      --to T           where it ends
      --until WHAT     timeline: when the main timeline has been shown (default), or nothing
                       moves any more where it stops before; still: when nothing has moved or
                       sounded for three seconds. After ten minutes at the latest, unless --to
                       says otherwise.
      --frame T        only the picture of this moment, OUT.png
  T is a time in seconds (2.5), minutes and seconds (1:02.5), or a frame of the movie (48f;
  the first is 1f).

Picture and sound
      --size WxH       pixels; the movie keeps its shape, its ground fills the rest
      --scale S        times the movie's own size (default 1)
      --fps N          pictures a second, maybe as a fraction: 30000/1001 (default: the movie's)
      --quality Q      small, good or best (default good)
      --no-sound       pictures alone
      --transparent    without the movie's ground: webm, gif, png

Movie
      --input FILE     a JSON array of events; those up to the next "Wait" follow each frame
      --base-dir DIR   relative addresses count from here, and nothing else is read
                       (default: the movie's folder)
      --date TIME      local time at which the movie's clock starts: 2001-02-03T04:05:06
                       (default: now)
      --codepage NAME  the 8-bit code of texts in movies before version 6

A file of the name is replaced when the new one is whole, and not touched before. The movie is
played in simulated time, by a process that can read the movie's folder and write the one file.
Exit status: 0 done, 1 the movie cannot be played, 2 wrong usage, 3 the file cannot be written
or encoded, 4 cancelled.
)";

namespace
{

using base::ErrorCode;
using base::numberFromText;

constexpr double kMsPerSecond = 1000;
constexpr double kMaxSeconds = 48 * 3600.0;
constexpr int kMaxSide = 8192, kMaxRate = 240;

tl::unexpected<base::Error> wrong(std::string_view option, std::string_view needs, std::string_view value)
{
    return base::fail(ErrorCode::Malformed, std::string(option) + " needs " + std::string(needs) +
                                                ", not \"" + std::string(value) + "\"");
}

std::optional<int> whole(std::string_view text, int max)
{
    const auto value = numberFromText(text);
    if (!value || *value < 1 || *value > max || *value != std::floor(*value)) return std::nullopt;
    return static_cast<int>(*value);
}

/// A moment; frames are told by a negative value until the movie's rate is known: -1 is the first.
std::optional<double> moment(std::string_view text)
{
    if (text.ends_with('f')) {
        constexpr int kMaxFrames = 100'000'000;
        const auto frame = whole(text.substr(0, text.size() - 1), kMaxFrames);
        return frame ? std::optional(-static_cast<double>(*frame)) : std::nullopt;
    }
    double minutes = 0;
    if (const auto colon = text.find(':'); colon != std::string_view::npos) {
        const auto before = numberFromText(text.substr(0, colon));
        if (!before || *before < 0 || *before != std::floor(*before)) return std::nullopt;
        minutes = *before;
        text = text.substr(colon + 1);
    }
    const auto seconds = numberFromText(text);
    if (!seconds || *seconds < 0 || minutes * 60 + *seconds > kMaxSeconds) return std::nullopt;
    return (minutes * 60 + *seconds) * kMsPerSecond;
}

std::optional<QSize> sizeOf(std::string_view text)
{
    const auto by = text.find('x');
    if (by == std::string_view::npos) return std::nullopt;
    const auto width = whole(text.substr(0, by), kMaxSide), height = whole(text.substr(by + 1), kMaxSide);
    if (!width || !height) return std::nullopt;
    return QSize(*width, *height);
}

std::optional<Rate> rateOf(std::string_view text)
{
    constexpr int kMaxParts = 1'000'000;
    const auto slash = text.find('/');
    const auto above = whole(text.substr(0, slash), kMaxParts);
    const auto below = slash == std::string_view::npos ? 1 : whole(text.substr(slash + 1), kMaxParts);
    if (!above || !below) return std::nullopt;
    const Rate rate{*above, *below};
    if (rate.perSecond() > kMaxRate || rate.perSecond() < 1) return std::nullopt;
    return rate;
}

struct NamedQuality {
    const char* name;
    Quality quality;
};
constexpr NamedQuality kQualities[] = {
    {"small", Quality::Small}, {"good", Quality::Good}, {"best", Quality::Best}};

base::Result<void> take(Settings& settings, std::optional<End>& until, std::string_view option,
                        const std::string& value)
{
    constexpr auto kMoment = "a time like 2.5 or 1:02, or a frame like 48f";
    if (option == "--from" || option == "--to" || option == "--frame") {
        const auto at = moment(value);
        if (!at) return wrong(option, kMoment, value);
        (option == "--to" ? settings.toMs : settings.fromMs) = *at;
        if (option == "--frame") settings.isOnePicture = true;
    } else if (option == "--until") {
        if (value != "timeline" && value != "still") return wrong(option, "timeline or still", value);
        until = value == "still" ? End::Still : End::Timeline;
    } else if (option == "--size") {
        const auto size = sizeOf(value);
        if (!size) return wrong(option, "a size like 1280x720, at most 8192 a side", value);
        settings.size = *size;
    } else if (option == "--scale") {
        const auto scale = numberFromText(value);
        if (!scale || *scale < 0.01 || *scale > 64) return wrong(option, "a number from 0.01 to 64", value);
        settings.scale = *scale;
    } else if (option == "--fps") {
        const auto rate = rateOf(value);
        if (!rate) return wrong(option, "a number from 1 to 240", value);
        settings.rate = *rate;
    } else if (option == "--quality") {
        for (const NamedQuality& known : kQualities) {
            if (value != known.name) continue;
            settings.quality = known.quality;
            return {};
        }
        return wrong(option, "small, good or best", value);
    } else if (option == "--input") {
        settings.input = value;
    } else if (option == "--base-dir") {
        settings.baseFolder = value;
    } else if (option == "--codepage") {
        if (!base::TextCode::named(value)) return wrong(option, "the name of a code", value);
        settings.textCode = value;
    } else if (option == "--date") {
        settings.dateMs = base::localTimeFromText(value);
        if (!settings.dateMs) return wrong(option, "a time like 2001-02-03T04:05:06", value);
    } else {
        return base::fail(ErrorCode::Malformed, "unknown option " + std::string(option));
    }
    return {};
}

base::Result<void> check(const Settings& settings)
{
    const FormatInfo& format = infoOf(settings.format);
    if (settings.isGroundTransparent && !format.canBeTransparent)
        return base::fail(ErrorCode::Malformed,
                          std::string("--transparent is for webm, gif and png, not for ") + format.extension);
    if (settings.isOnePicture && settings.format != Format::Png)
        return base::fail(ErrorCode::Malformed, "--frame is for png");
    const bool areOfAKind = (settings.fromMs < 0) == (settings.toMs < 0);
    if (settings.end == End::Given && areOfAKind && std::abs(settings.toMs) <= std::abs(settings.fromMs))
        return base::fail(ErrorCode::Malformed, "the film ends before it begins");
    return {};
}

std::string text(double value)
{
    char written[40];
    const auto [end, error] = std::to_chars(written, written + sizeof written, value);
    return {written, end};
}

std::string momentText(double moment)
{
    return moment < 0 ? text(-moment) + "f" : text(moment / kMsPerSecond);
}

} // namespace

base::Result<CommandLine> parse(std::span<const std::string> words)
{
    CommandLine line;
    std::vector<std::string> names;
    std::optional<End> until;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string& word = words[i];
        if (word == "--help" || word == "-h") {
            line.what = CommandLine::What::Help;
            return line;
        }
        if (word == "--formats") {
            line.what = CommandLine::What::Formats;
            return line;
        }
        if (!word.starts_with("--")) {
            names.push_back(word);
        } else if (word == "--no-sound") {
            line.settings.hasSound = false;
        } else if (word == "--transparent") {
            line.settings.isGroundTransparent = true;
        } else if (word == "--report") {
            line.reports = true;
        } else if (i + 1 == words.size()) {
            return base::fail(ErrorCode::Malformed, word + " needs a value");
        } else {
            CHECK_RESULT(take(line.settings, until, word, words[i + 1]));
            ++i;
        }
    }
    if (names.size() != 2)
        return base::fail(ErrorCode::Malformed, "needs a movie and the name of the file to write");
    line.settings.end = until.value_or(line.settings.toMs != 0 ? End::Given : End::Timeline);
    line.settings.movie = names[0];
    line.settings.out = names[1];
    const auto format = formatOf(line.settings.out);
    if (!format)
        return base::fail(ErrorCode::Malformed,
                          names[1] + ": the name ends in mp4, mkv, webm, gif, png, wav or flac");
    line.settings.format = *format;
    CHECK_RESULT(check(line.settings));
    return line;
}

std::vector<std::string> wordsOf(const Settings& settings)
{
    // A name that begins like an option is no option.
    const auto name = [](const std::string& file) { return file.starts_with('-') ? "./" + file : file; };
    std::vector<std::string> words{name(settings.movie), name(settings.out.string())};
    const auto add = [&words](const char* option, std::string value) {
        words.emplace_back(option);
        words.push_back(std::move(value));
    };
    if (settings.isOnePicture)
        add("--frame", momentText(settings.fromMs));
    else if (settings.fromMs != 0)
        add("--from", momentText(settings.fromMs));
    if (settings.end == End::Still) add("--until", "still");
    if (settings.end == End::Timeline && settings.toMs != 0) add("--until", "timeline");
    if (settings.toMs != 0) add("--to", momentText(settings.toMs));
    if (!settings.size.isEmpty())
        add("--size", std::to_string(settings.size.width()) + 'x' + std::to_string(settings.size.height()));
    if (settings.scale != 1) add("--scale", text(settings.scale));
    if (!settings.rate.isMovies())
        add("--fps",
            std::to_string(settings.rate.numerator) + '/' + std::to_string(settings.rate.denominator));
    for (const NamedQuality& known : kQualities)
        if (settings.quality == known.quality) add("--quality", known.name);
    if (!settings.hasSound) words.emplace_back("--no-sound");
    if (settings.isGroundTransparent) words.emplace_back("--transparent");
    if (!settings.input.empty()) add("--input", settings.input.string());
    if (!settings.baseFolder.empty()) add("--base-dir", settings.baseFolder.string());
    if (!settings.textCode.empty()) add("--codepage", settings.textCode);
    return words;
}

} // namespace exporter
