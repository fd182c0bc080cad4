#include "flash/control/SoundRing.h"

#include <algorithm>

namespace flash::control
{

base::Result<SoundRing> SoundRing::create()
{
    SoundRing ring;
    ring.m_memory = TRY_RESULT(SharedMemory::create(kSizeBytes));
    return ring;
}

base::Result<SoundRing> SoundRing::attach(int descriptor)
{
    SoundRing ring;
    ring.m_memory = TRY_RESULT(SharedMemory::attach(descriptor, kSizeBytes));
    return ring;
}

// The memory begins zeroed, which is a valid pair of atomics at 0.
SoundRing::Positions& SoundRing::positions() const
{
    return *reinterpret_cast<Positions*>(m_memory.bytes().data());
}

std::span<sound::StereoFrame> SoundRing::frames() const
{
    return {reinterpret_cast<sound::StereoFrame*>(m_memory.bytes().data() + kHeaderBytes), kFrames};
}

std::uint64_t SoundRing::taken() const { return positions().read.load(std::memory_order_acquire); }

std::size_t SoundRing::waiting() const
{
    return static_cast<std::size_t>(std::min<std::uint64_t>(m_own - taken(), kFrames));
}

std::size_t SoundRing::write(std::span<const sound::StereoFrame> given)
{
    const std::size_t count = std::min(given.size(), kFrames - waiting());
    const auto ring = frames();
    for (std::size_t i = 0; i < count; ++i) ring[(m_own + i) % kFrames] = given[i];
    m_own += count;
    positions().written.store(m_own, std::memory_order_release);
    return count;
}

void SoundRing::read(std::span<sound::StereoFrame> wanted)
{
    const std::uint64_t written = positions().written.load(std::memory_order_acquire);
    // A writer that claims more than the ring holds gets what the ring holds; one that goes back gets
    // nothing.
    const std::uint64_t ready = written - m_own <= kFrames ? written - m_own : 0;
    const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(ready, wanted.size()));
    const auto ring = frames();
    for (std::size_t i = 0; i < count; ++i) wanted[i] = ring[(m_own + i) % kFrames];
    std::fill(wanted.begin() + static_cast<std::ptrdiff_t>(count), wanted.end(), sound::StereoFrame{});
    m_own += count;
    positions().read.store(m_own, std::memory_order_release);
}

} // namespace flash::control
