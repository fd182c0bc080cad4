#pragma once

#include "flash/control/SharedMemory.h"
#include "flash/sound/Samples.h"

#include <atomic>
#include <span>

namespace flash::control
{

/// Sound on its way from the movie's end, which mixes, to the window's end, which owns the device. One
/// writer, one reader, no lock. Each end keeps its own position itself and takes from the other end's no more
/// than fits: what stands in the memory is a hint of the other end, not a promise.
class SoundRing
{
public:
    static constexpr std::size_t kFrames = 1U << 15U; ///< about three quarters of a second

    SoundRing() = default;
    static base::Result<SoundRing> create();
    static base::Result<SoundRing> attach(int descriptor);

    [[nodiscard]] int descriptor() const { return m_memory.descriptor(); }
    [[nodiscard]] bool isEmpty() const { return m_memory.isEmpty(); }

    // ---- the movie's end ----
    /// How many frames lie unread.
    [[nodiscard]] std::size_t waiting() const;
    /// @returns how many frames were taken; the rest does not fit.
    std::size_t write(std::span<const sound::StereoFrame> frames);
    /// How many frames the device has taken since the ring was made.
    [[nodiscard]] std::uint64_t taken() const;

    // ---- the window's end ----
    /// Fills what is there; the rest of `frames` is silence. Silence counts as taken by nobody.
    void read(std::span<sound::StereoFrame> frames);

private:
    struct Positions {
        std::atomic<std::uint64_t> written, read;
    };
    static_assert(std::atomic<std::uint64_t>::is_always_lock_free);
    static constexpr std::size_t kHeaderBytes = 64;
    static constexpr std::size_t kSizeBytes = kHeaderBytes + kFrames * sizeof(sound::StereoFrame);

    [[nodiscard]] Positions& positions() const;
    [[nodiscard]] std::span<sound::StereoFrame> frames() const;

    SharedMemory m_memory;
    std::uint64_t m_own = 0; // this end's position
};

} // namespace flash::control
