#pragma once

#include "base/Result.h"
#include "flash/swf/Movie.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// What a running movie asks of its surroundings. Every interface has a do-nothing implementation as its
// default bodies, so that a stage can be made and tested without a device, a disk or a window.
namespace flash::stage
{

class Clip;
using MoviePtr = std::shared_ptr<const swf::Movie>;

/// Names a sound's owner (a clip whose stream plays). Never dereferenced by a sound system.
using SoundOwner = const void*;

/// One playing sound that a script started; 0 is none.
using SoundId = std::uint64_t;

/// What a script sets on a clip, or on everything. Percent. The left speaker gets left * leftToLeft + right *
/// rightToLeft, all of it times the volume.
struct SoundTransform {
    double leftToLeft = 100, rightToLeft = 0, leftToRight = 0, rightToRight = 100;
    double volume = 100;
    friend bool operator==(const SoundTransform&, const SoundTransform&) = default;
};

/// Event sounds and synchronised streams. Works on simulated time: the owner of stage and sound moves both by
/// the same amounts, so nothing has to be kept in step here.
class SoundSystem
{
public:
    virtual ~SoundSystem() = default;
    /// Starts, or with info.stop stops, a sound of the dictionary. `movie` keeps the sound's bytes alive.
    virtual void startEvent(const MoviePtr& /*movie*/, std::uint16_t /*soundId*/, const swf::Sound&,
                            const swf::SoundInfo&)
    {
    }
    /// A clip with a stream shows `frame` (index) and plays on from it. Called for every frame that the clip
    /// plays and that holds a block; a call that continues the previous one must not disturb the sound.
    /// `timeline` belongs to `movie`.
    virtual void streamFrame(SoundOwner, const MoviePtr& /*movie*/, const swf::Timeline& /*timeline*/,
                             std::size_t /*frame*/)
    {
    }
    /// The clip stopped, jumped or went away.
    virtual void stopStream(SoundOwner) {}
    /// Everything that plays now, streams included.
    virtual void stopAll() {}

    // ---- sounds of scripts. An owner is the address of the node a script's Sound speaks for; null is the
    // ---- whole movie. A sound obeys its owner's transform, those of the owner's parents and the movie's.
    /// Starts a sound of the dictionary. @returns what names it below; 0 when nothing was started.
    virtual SoundId playSound(SoundOwner, const MoviePtr& /*movie*/, std::uint16_t /*soundId*/,
                              const swf::Sound&, const swf::SoundInfo&)
    {
        return 0;
    }
    /// Starts an MP3 file that a script loaded, or what is heard of an FLV file.
    virtual SoundId playFile(SoundOwner, const std::shared_ptr<const std::vector<std::uint8_t>>& /*file*/,
                             const swf::SoundInfo&)
    {
        return 0;
    }
    virtual void stopSound(SoundId) {}
    /// A transform for this one sound, below its owner's.
    virtual void setSoundTransform(SoundId, const SoundTransform&) {}
    /// Stops every sound of the owner and of what lies below it, streams included; null stops everything.
    virtual void stopOwner(SoundOwner) {}
    /// Stops every sound made from a symbol of the dictionary that was started for the owner.
    virtual void stopSymbol(SoundOwner, const MoviePtr& /*movie*/, std::uint16_t /*soundId*/) {}
    /// How far into the sound it plays; the last position once it has ended, while it is remembered.
    [[nodiscard]] virtual double positionMs(SoundId) { return 0; }
    [[nodiscard]] virtual double durationMs(const swf::Sound& sound)
    {
        return sound.rate > 0 ? 1000.0 * sound.sampleCount / sound.rate : 0;
    }
    [[nodiscard]] virtual double fileDurationMs(base::Bytes /*mp3*/) { return 0; }
    /// Sounds started by playSound() or playFile() that played to their end since the last call.
    [[nodiscard]] virtual std::vector<SoundId> takeFinished() { return {}; }
    [[nodiscard]] virtual SoundTransform transform(SoundOwner) { return {}; }
    virtual void setTransform(SoundOwner, const SoundTransform&) {}
    /// The node went away for good: its transform is forgotten; what it started plays on.
    virtual void ownerRemoved(SoundOwner) {}
};

struct LoadRequest {
    enum class Method : std::uint8_t { None, Get, Post };
    std::string url; ///< as the script gave it: relative to `baseUrl`
    std::string baseUrl;
    Method method = Method::None;
    std::vector<std::pair<std::string, std::string>> variables; ///< to send; not yet encoded
    std::string digest = {}; ///< of a signed library, what is to come: its SHA-256; empty: anything may come
};
struct LoadAnswer {
    std::string url; ///< resolved, with its query
    std::vector<std::uint8_t> bytes;
};

/// Fetches what a movie asks for. Answers at once; the stage hands the answer on at its next frame, as if it
/// had taken a moment.
class Loader
{
public:
    virtual ~Loader() = default;
    virtual base::Result<LoadAnswer> load(const LoadRequest& request)
    {
        return base::fail(base::ErrorCode::Denied, request.url + ": loading is not available");
    }
};

/// What the movie tells its host, and asks of it.
class HostEvents
{
public:
    virtual ~HostEvents() = default;
    virtual void fsCommand(std::string_view /*command*/, std::string_view /*arguments*/) {}
    /// An address for a browser; the host decides.
    virtual void openUrl(std::string_view /*url*/, std::string_view /*window*/) {}
    virtual void traceLine(std::string_view /*utf8*/) {}
    virtual void logLine(std::string_view /*utf8*/) {}
    /// 0 loading, 1 uninitialised, 2 loaded, 3 interactive, 4 complete.
    virtual void readyStateChanged(int /*state*/) {}
    virtual void progressed(int /*percent*/) {}
    /// The movie's Stage.showMenu.
    virtual void showMenu(bool /*full*/) {}
    virtual void cursorVisible(bool) {}
    virtual void setClipboardText(std::string_view /*utf8*/) {}
    virtual std::string clipboardText() { return {}; }
    /// A script has run for too long. @returns true to end it.
    virtual bool abortSlowScript() { return true; }
    /// Asked every few milliseconds while scripts run, and whenever they have taken much memory.
    /// @returns true to end all scripts of the movie for good
    virtual bool endsScripts() { return false; }
    /// The movie went beyond what it may use, and something was not done. Once for each kind of thing; the
    /// log has the same. @param what English
    virtual void limitReached(std::string_view /*what*/) {}
    enum class EndCause : std::uint8_t {
        Memory,      ///< it needed more than there is, or than it may have
        Time,        ///< a frame, or drawing one, took too long
        Interrupted, ///< by the host
    };
    /// The movie was closed because it could not go on. @param why English
    virtual void movieEnded(EndCause, std::string_view /*why*/) {}
};

/// Shared objects: small named records that outlive the movie.
class SharedObjectStore
{
public:
    virtual ~SharedObjectStore() = default;
    virtual std::vector<std::uint8_t> read(std::string_view /*name*/) { return {}; }
    virtual bool write(std::string_view /*name*/, const std::vector<std::uint8_t>&) { return false; }
    virtual void remove(std::string_view /*name*/) {}
};

/// Borrowed by the stage; the owner (the engine) keeps them alive longer than the stage.
struct Services {
    SoundSystem& sound;
    Loader& loader;
    HostEvents& host;
    SharedObjectStore& sharedObjects;
};

/// A set of services that do nothing.
struct NullServices {
    SoundSystem sound;
    Loader loader;
    HostEvents host;
    SharedObjectStore sharedObjects;
    [[nodiscard]] Services services() { return {sound, loader, host, sharedObjects}; }
};

} // namespace flash::stage
