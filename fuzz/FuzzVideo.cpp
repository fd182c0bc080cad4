#include "flash/video/VideoDecoder.h"

#include <array>

// Packets of an embedded video. The first byte chooses the codec, the next two the size; each packet has its
// length before it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using flash::video::VideoCodec;
    using flash::video::VideoDecoder;
    if (size < 4) return 0;
    constexpr std::array kCodecs = {VideoCodec::SorensonH263, VideoCodec::Screen, VideoCodec::Vp6,
                                    VideoCodec::Vp6Alpha, VideoCodec::Screen2};
    const auto decoder =
        VideoDecoder::open(kCodecs[data[0] % kCodecs.size()], data[1] * 4, data[2] * 4, data[3]);
    if (!decoder) return 0;
    base::Bytes rest = base::Bytes(data, size).subspan(4);
    constexpr int kMaxPackets = 16;
    for (int packet = 0; packet < kMaxPackets && rest.size() >= 2; ++packet) {
        const std::size_t length = std::min<std::size_t>(rest[0] | rest[1] << 8U, rest.size() - 2);
        const base::Bytes bytes = rest.subspan(2, length);
        if (packet % 4 == 3)
            decoder->skip(bytes);
        else
            (void)decoder->decode(bytes);
        rest = rest.subspan(2 + length);
    }
    return 0;
}
