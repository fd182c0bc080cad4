#pragma once

#include "flash/AudioOutput.h"

#include <chrono>
#include <functional>
#include <memory>
#include <span>
#include <string>

namespace flash
{

/// A connection to a sound server that takes sound by making the caller wait. Used from one thread at a time.
class SoundStream
{
public:
    virtual ~SoundStream() = default;
    /// Waits until there is room.
    /// @returns false when the connection is gone; it takes no more then
    virtual bool write(std::span<const sound::StereoFrame> frames) = 0;
};
/// Connects; may wait as long as it takes, and is called on a thread of its own.
/// @returns null where there is no server now
using OpenStream = std::function<std::unique_ptr<SoundStream>()>;

/// Connects to PulseAudio by its simple interface.
/// @param application what the server shows to its user
OpenStream pulseStreams(std::string application);

/// A second way to a sound server, for when the first one has lost it for good: as long as it is asked for,
/// it tries to connect every few seconds. All that waits does so on threads of its own.
class ServerOutput
{
public:
    /// @param pause between two tries
    explicit ServerOutput(OpenStream open, std::chrono::milliseconds pause = std::chrono::seconds(2));
    ~ServerOutput();
    ServerOutput(const ServerOutput&) = delete;
    ServerOutput& operator=(const ServerOutput&) = delete;

    /// Returns at once.
    /// @returns null where no connection has been made yet; one is sought then
    std::unique_ptr<OutputDevice> open(QIODevice& from);

private:
    struct Search;
    OpenStream m_open;
    std::shared_ptr<Search> m_search;
};

} // namespace flash
