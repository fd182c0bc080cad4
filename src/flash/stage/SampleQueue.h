#pragma once

#include <array>
#include <cstdint>
#include <deque>

namespace flash::stage
{

/// Sound that a script makes while it plays: frames of left and right at 44100 Hz, not heard yet.
struct SampleQueue {
    std::deque<std::array<std::int16_t, 2>> frames;
    bool isEnded = false; ///< no more will come
};

} // namespace flash::stage
