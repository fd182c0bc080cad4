#include "flash/sound/Samples.h"

#include <algorithm>
#include <array>

namespace flash::sound
{

void SampleSource::seek(std::uint64_t frame)
{
    rewind();
    std::array<StereoFrame, 1024> skipped;
    while (frame > 0) {
        const std::size_t wanted = std::min<std::uint64_t>(frame, skipped.size());
        const std::size_t got = read(std::span(skipped).first(wanted));
        if (got < wanted) return;
        frame -= got;
    }
}

} // namespace flash::sound
