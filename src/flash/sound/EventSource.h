#pragma once

#include "flash/sound/Samples.h"
#include "flash/swf/Movie.h"

#include <memory>

namespace flash::sound
{

/// A sound as one placement plays it: from its in point to its out point, several times over, under an
/// envelope that runs on through the repetitions.
class EventSource final : public SampleSource
{
public:
    EventSource(std::unique_ptr<SampleSource> sound, const swf::SoundInfo& info);

    std::size_t read(std::span<StereoFrame> out) override;
    void rewind() override;
    /// Frames into the sound itself: starts again at the in point with each repetition.
    [[nodiscard]] std::uint64_t position() const { return m_position; }

private:
    std::size_t readOnce(std::span<StereoFrame> out);
    void applyEnvelope(std::span<StereoFrame> frames);

    std::unique_ptr<SampleSource> m_sound;
    swf::SoundInfo m_info;
    std::uint64_t m_position = 0; // of the next frame, in the sound
    std::uint64_t m_played = 0;   // since the start, repetitions included
    int m_loopsLeft = 1;
    std::size_t m_envelopeNext = 0; // the first point after m_played
};

} // namespace flash::sound
