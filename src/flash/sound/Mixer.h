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

/// Adds up everything that plays. Its clock is the number of frames it was asked for; what comes out does not
/// depend on the portions that it is asked for in.
///
/// Gains that change, and voices that are taken away, do so over kRampFrames: a jump would be heard as a
/// click. What is louder than the output can be is turned down for as long, instead of being cut off.
class Mixer
{
public:
    static constexpr unsigned kRampFrames = 256; // 6 ms

    /// Starts with the next call of mix().
    /// @returns 0 when there is no source, or as many voices as the genuine player has
    VoiceId add(std::unique_ptr<SampleSource> source, const Gains& gains = {});
    void remove(VoiceId voice);
    void clear();
    void setGains(VoiceId voice, const Gains& gains);
    [[nodiscard]] bool isPlaying(VoiceId voice) const { return find(voice) != nullptr; }
    /// Frames that were mixed of the voice; 0 when it does not play.
    [[nodiscard]] std::uint64_t played(VoiceId voice) const;
    /// How loud each side of a voice was in what was mixed last, 0 to 1, before the master volume.
    [[nodiscard]] std::pair<float, float> peaks(VoiceId voice) const;
    /// Whether nothing is to be heard any more, not even the end of what was taken away.
    [[nodiscard]] bool isSilent() const { return m_voices.empty(); }

    /// Over everything. Muted sounds go on unheard.
    void setMaster(const Gains& gains) { m_master = gains; }
    void setMuted(bool muted) { m_muted = muted; }

    /// Overwrites `out` with the next frames.
    void mix(std::span<StereoFrame> out);
    /// Moves on without making samples to hear.
    void skip(std::uint64_t frames);
    /// What was mixed last, the newest at the end, -1 to 1; silence where there was nothing yet.
    /// @param left, right of the same length, at most kRecentFrames
    void recent(std::span<float> left, std::span<float> right) const;
    static constexpr std::size_t kRecentFrames = 4096;

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
        bool isLeaving = false;
        int peakLeft = 0, peakRight = 0; ///< of its samples in the last block
        // What it is heard under now and shall be in `rampLeft` frames.
        bool hasBegun = false;
        Gains now, target, step;
        unsigned rampLeft = 0;
    };
    [[nodiscard]] const Voice* find(VoiceId voice) const;
    void mixBlock(std::span<StereoFrame> out);
    static void notePeaks(Voice& voice, std::span<const StereoFrame> frames);
    void aim(Voice& voice) const;
    void accumulate(Voice& voice, std::span<const StereoFrame> in, float* left, float* right) const;
    StereoFrame limited(float left, float right);

    std::vector<Voice> m_voices;
    std::vector<Finished> m_finished;
    VoiceId m_lastId = 0;
    Gains m_master;
    bool m_muted = false;
    float m_limit = 1; ///< what everything is turned down to
    void remember(std::span<const StereoFrame> frames);
    void rememberSilence(std::uint64_t frames);
    std::vector<StereoFrame> m_recent; ///< a ring of kRecentFrames, once anything was mixed
    std::size_t m_recentEnd = 0;
    std::size_t m_silentFrames = 0; ///< the newest of the ring that are known to be silent
};

} // namespace flash::sound
