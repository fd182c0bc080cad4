#pragma once

#include <QSize>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

// Films out of movies: what is to be written, how it is played and encoded, the program that does it, and the
// windows that ask for it. Knows nothing of the player.
namespace exporter
{

enum class Format : std::uint8_t { Mp4, Mkv, WebM, Gif, Png, Wav, Flac };

/// Pictures a second, as a fraction.
struct Rate {
    int numerator = 0, denominator = 1; ///< a numerator of 0: the movie's own
    [[nodiscard]] bool isMovies() const { return numerator == 0; }
    [[nodiscard]] double perSecond() const { return static_cast<double>(numerator) / denominator; }
    friend bool operator==(const Rate&, const Rate&) = default;
};

/// Where the film ends.
enum class End : std::uint8_t {
    Timeline, ///< when the main timeline has been shown; with movies that stop it before, as Still
    Still,    ///< when nothing has moved or sounded for three seconds
    Given,    ///< at `toMs`
};

enum class Quality : std::uint8_t { Small, Good, Best };

struct Settings {
    std::string movie;
    std::filesystem::path out;
    Format format = Format::Mp4;

    /// Moments are milliseconds of the movie's time, or, below zero, its frames: -1 is the first.
    double fromMs = 0;
    End end = End::Timeline;
    /// For End::Given; otherwise the film ends there at the latest. A frame that is named belongs to it.
    double toMs = 0;
    /// The one picture at `fromMs`.
    bool isOnePicture = false;

    QSize size; ///< pixels; empty: the movie's own. The movie keeps its shape, its ground fills the rest.
    double scale = 1; ///< of the movie's own size, when `size` is empty
    Rate rate;
    Quality quality = Quality::Good;
    bool hasSound = true;
    bool isGroundTransparent = false;

    std::filesystem::path input; ///< events, see flash::InputScript
    std::filesystem::path baseFolder;
    std::string textCode;
    std::optional<double> dateMs;
};

/// Films of movies that never end are this long when nothing else is said.
constexpr double kLongestMs = 10 * 60 * 1000.0;
/// How long nothing may move or sound.
constexpr double kStillMs = 3000;

} // namespace exporter
