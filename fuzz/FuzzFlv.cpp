#include "flash/video/FlvPlayer.h"

// The whole input is an FLV file, played to its end with one step back on the way.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using flash::video::FlvPlayer;
    auto opened = FlvPlayer::open(std::make_shared<std::vector<std::uint8_t>>(data, data + size));
    if (!opened) return 0;
    FlvPlayer& player = **opened;
    // Bounded, because the times of a file may lie weeks apart.
    constexpr int kMaxSteps = 64;
    for (int step = 0; step < kMaxSteps; ++step) {
        const auto next = player.msToNext();
        if (!next) break;
        player.advance(*next);
        player.picture();
        player.takeMessages();
        if (step == kMaxSteps / 2) player.seek(player.timeMs() / 2);
    }
    return 0;
}
