#pragma once

#include "flash/sound/Samples.h"

#include <cstdint>
#include <memory>
#include <span>
#include <utility>
#include <vector>

namespace flash::sound
{

using VoiceId = std::uint64_t; ///< 0 is none

/// How much of each channel goes to each speaker; 1 is unchanged.
struct Gains {
    float leftToLeft = 1, rightToLeft = 0, leftToRight = 0, rightToRight = 1;
    friend bool operator==(const Gains&, const Gains&) = default;
};
/// First `inner`, then `outer`.
Gains operator*(const Gains& outer, const Gains& inner);

/// Adds up everything that plays. Its clock is the number of frames it was asked for.
class Mixer
{
public:
    /// Starts with the next call of mix().
    VoiceId add(std::unique_ptr<SampleSource> source, const Gains& gains = {});
    void remove(VoiceId voice);
    void clear() { m_voices.clear(); }
    void setGains(VoiceId voice, const Gains& gains);
    [[nodiscard]] bool isPlaying(VoiceId voice) const { return find(voice) != nullptr; }
    /// Frames that were mixed of the voice; 0 when it does not play.
    [[nodiscard]] std::uint64_t played(VoiceId voice) const;
    [[nodiscard]] bool isSilent() const { return m_voices.empty(); }

    /// Over everything. Muted sounds go on unheard.
    void setMaster(const Gains& gains) { m_master = gains; }
    void setMuted(bool muted) { m_muted = muted; }

    /// Overwrites `out` with the next frames.
    void mix(std::span<StereoFrame> out);
    /// Moves on without making samples to hear.
    void skip(std::uint64_t frames);

    struct Finished {
        VoiceId voice;
        std::unique_ptr<SampleSource> source;
    };
    /// @returns the voices that came to their end since the last call.
    std::vector<Finished> takeFinished() { return std::exchange(m_finished, {}); }

private:
    struct Voice {
        VoiceId id;
        std::unique_ptr<SampleSource> source;
        Gains gains;
        std::uint64_t played = 0;
    };
    [[nodiscard]] const Voice* find(VoiceId voice) const;
    void mixBlock(std::span<StereoFrame> out);

    std::vector<Voice> m_voices;
    std::vector<Finished> m_finished;
    VoiceId m_lastId = 0;
    Gains m_master;
    bool m_muted = false;
};

} // namespace flash::sound
