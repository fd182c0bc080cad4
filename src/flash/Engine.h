#pragma once

#include "base/Result.h"
#include "flash/guard/Guard.h"
#include "flash/render/RenderCache.h"
#include "flash/stage/CursorPicture.h"
#include "flash/stage/Services.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class QImage;
class QRect;

namespace flash::stage
{
class Stage;
}
namespace flash::sound
{
class SoundPlayer;
}

namespace flash
{

/// A player without a window: stage, scripts, sound and loading tied together. Runs on simulated time, so
/// that the same movie, options and input give the same result on every run. One thread.
class Engine
{
public:
    struct Options {
        /// What scripts take for the present when the movie starts: milliseconds since 1970-01-01 UTC.
        double startDateMs = 0;
        std::uint32_t randomSeed = 1;
        /// What scripts are told of the machine: language in two letters, screen in pixels.
        std::string language = "en";
        static constexpr std::string_view kAutomaticTextCode = "automatic";
        /// The 8-bit code of movies before version 6 (base::TextCode::named()), or kAutomaticTextCode, which
        /// looks at a movie's own texts. Empty, or nothing to be seen there: the system's own.
        std::string textCode;
        int screenWidth = 1024, screenHeight = 768;
        /// Relative addresses count from here, and nothing outside can be read. Empty: the movie's folder.
        std::filesystem::path baseFolder;
        /// Shared objects are kept here, in a folder for each movie. Empty: they end with the engine.
        std::filesystem::path storageFolder;
        /// A movie that lies in `trustedFolder`, not below it, may also read from `sharedFolder`, by full
        /// paths.
        std::filesystem::path trustedFolder, sharedFolder;
        /// What all that is loaded may take together, see guard::kMaxHeldBytes.
        std::size_t mostHeldBytes = guard::kMaxHeldBytes;
        /// Collects the scripts' garbage whenever it can, and overwrites it: slow, finds what is freed too
        /// early.
        bool collectAlways = false;
    };

    /// @param host borrowed
    explicit Engine(stage::HostEvents& host, Options options);
    ~Engine();
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;

    /// What is changed here takes effect with the next movie.
    [[nodiscard]] Options& options();

    /// The file that an address as open() takes it names.
    [[nodiscard]] static std::filesystem::path pathOf(const std::string& address);
    /// Where the shared objects of a movie are kept below `storageFolder`.
    [[nodiscard]] static std::filesystem::path storageOf(const std::filesystem::path& storageFolder,
                                                         const std::filesystem::path& movie);

    /// Replaces whatever plays. The first frame is shown and its scripts have run when the call returns. A
    /// view that has no size yet takes the movie's, times the device scale.
    /// @param address a path or file: address, maybe with a query after its last "?" whose variables the root
    ///                gets
    /// @errors those of reading the file and of swf::parseMovie(); what played goes on then.
    /// @param bytes the file's; empty: it is read from the address
    base::Result<void> open(const std::string& address,
                            std::optional<std::vector<std::uint8_t>> bytes = std::nullopt);
    /// Loads over the movie that plays; the level appears at the next frame. Other than a movie, the host may
    /// read from anywhere.
    /// @errors as open()
    base::Result<void> openLevel(int level, const std::string& address,
                                 std::optional<std::vector<std::uint8_t>> bytes = std::nullopt);
    void close();
    [[nodiscard]] bool isOpen() const;
    /// Whether every movie that was read since level 0 was opened lies in `trustedFolder`, links resolved; as
    /// it was when it was read. Never true again once a movie from elsewhere has come, into whatever clip.
    [[nodiscard]] bool holdsOnlyTrusted() const;
    /// Whether movies have read files that are no movies since level 0 was opened.
    [[nodiscard]] bool hasReadFiles() const;

    /// Stops whatever the movie does at this moment, a script in an endless loop too: within some
    /// milliseconds the call at hand returns, the movie is closed, and no script of it runs any more. From
    /// any thread or signal handler.
    enum class Until : std::uint8_t {
        NextMovie,
        Ever, ///< the process is about to end: no further movie opens
    };
    void interrupt(Until until) noexcept;
    /// The same for every movie of the process, for ever.
    static void interruptAll() noexcept { guard::interruptAll(); }
    /// Does something to the stage as one step of the movie: watched over by the clock and bounded like
    /// those below. A movie that cannot go on, because it takes too long or too much memory, is closed, and
    /// the host is told (HostEvents::movieEnded).
    /// @returns false when the movie was ended
    bool act(const std::function<void(stage::Stage&)>& work);

    /// Moves everything on. Not for a level of detail below a frame: loads and frames take place within.
    enum class SoundPace {
        Simulated, ///< sounds move on with the movie, unheard
        Device,    ///< whoever pulls from the mixer moves the sounds on
    };
    void advance(double ms, SoundPace clock = SoundPace::Simulated);

    [[nodiscard]] stage::Stage& stage();
    [[nodiscard]] const stage::Stage& stage() const;
    [[nodiscard]] sound::SoundPlayer& sound();
    /// The pointer that the movie has made itself, at this moment; null: stage().pointer() says which is
    /// seen.
    [[nodiscard]] stage::CursorPicturePtr cursorPicture() const;

    /// Device pixels to a pixel of the host's measure; kept from movie to movie.
    void setDeviceScale(double scale);
    /// Who draws frames, of this movie and those after it.
    void setSecondThread(render::SecondThread when);
    /// @returns what changed since it was drawn last, device pixels: a few parts (stage::Damage::kMaxBoxes at
    ///          most), which may overlap.
    [[nodiscard]] std::vector<QRect> dirtyRects();
    /// Draws parts of the view, background included, and takes everything for drawn.
    /// @param image of the view's size, Format_ARGB32_Premultiplied
    void render(QImage& image, const std::vector<QRect>& rects);

    [[nodiscard]] std::string getVariable(const std::string& path);
    void setVariable(const std::string& path, const std::string& value);

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace flash
