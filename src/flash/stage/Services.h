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
};

struct LoadRequest {
    enum class Method : std::uint8_t { None, Get, Post };
    std::string url; ///< as the script gave it: relative to `baseUrl`
    std::string baseUrl;
    Method method = Method::None;
    std::vector<std::pair<std::string, std::string>> variables; ///< to send; not yet encoded
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
