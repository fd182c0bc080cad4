#pragma once

#include "base/Result.h"
#include "flash/sound/Mixer.h"

#include <filesystem>
#include <vector>

namespace flashrun
{

/// What a movie lets be heard, kept to be written as a sound file; as much as one can hold.
class Recording
{
public:
    /// Pulls the next stretch of the movie's time from the mixer, which moves its sounds on.
    void take(flash::sound::Mixer& mixer, double ms);
    /// WAV, 16 bits, two channels.
    /// @errors LimitReached when it went on for longer (some seven hours)
    base::Result<void> write(const std::filesystem::path& file) const;

private:
    std::vector<flash::sound::StereoFrame> m_frames;
    double m_owedFrames = 0; // less than one
    bool m_tooLong = false;
};

} // namespace flashrun
