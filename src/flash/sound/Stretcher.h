#pragma once

#include "flash/sound/Samples.h"

#include <functional>
#include <vector>

namespace flash::sound
{

/// Plays sound faster or slower in its own pitch: pieces of it are laid over each other where they fit best.
class Stretcher
{
public:
    using Source = std::function<void(std::span<StereoFrame> frames)>;

    /// Source frames for each frame that comes out; 1, the default, lets everything through untouched.
    void setSpeed(double speed);
    [[nodiscard]] double speed() const { return m_speed; }

    /// Fills all of `out`. @param source is asked for as many frames as that takes
    void mix(std::span<StereoFrame> out, const Source& source);

private:
    static constexpr std::size_t kOverlap = 512; ///< frames that two pieces share, and that one adds
    static constexpr std::size_t kReach = 384;   ///< how far from its place a better one is looked for

    void makePiece(const Source& source);
    void fetch(std::size_t frames, const Source& source);
    [[nodiscard]] std::size_t bestPlace(std::size_t from, std::size_t to) const;

    double m_speed = 1;
    double m_place = 0;                ///< of the next piece in m_input
    std::vector<StereoFrame> m_input;  ///< fetched and still of use
    std::vector<StereoFrame> m_tail;   ///< how the piece before would go on
    std::vector<StereoFrame> m_output; ///< made and not taken yet
};

} // namespace flash::sound
