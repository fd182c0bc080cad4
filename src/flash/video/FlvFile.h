#pragma once

#include "base/ByteReader.h"
#include "flash/codec/SoundCodec.h"
#include "flash/video/VideoDecoder.h"

#include <cstdint>
#include <vector>

namespace flash::video
{

/// What an FLV file holds, in the order of the file. Borrows the file's bytes.
struct FlvFile {
    struct Video {
        double timeMs = 0; ///< when it is due to the decoder
        double showMs = 0; ///< when its picture is due to be seen; another than timeMs in H.264 only
        bool key = false;  ///< needs no picture before it
        VideoCodec codec = VideoCodec::SorensonH263;
        std::uint8_t adjustment = 0; ///< see VideoDecoder::open()
        base::Bytes config;          ///< likewise
        base::Bytes packet;
    };
    struct Sound {
        double timeMs = 0;
        codec::SoundCodec codec = codec::SoundCodec::PcmNative;
        int rate = 0; ///< Hz: 5512, 11025, 22050 or 44100
        bool isSixteenBit = false, isStereo = false;
        base::Bytes bytes;
    };
    /// A name and a value in action message format 0, such as onMetaData and onCuePoint.
    struct Script {
        double timeMs = 0;
        base::Bytes message;
    };

    std::vector<Video> video;
    std::vector<Sound> sound;
    base::Bytes soundConfig; ///< AAC: what its decoder has to know before the packets
    std::vector<Script> scripts;
    double lastMs = 0; ///< the time of the last tag, or when the last picture shows

    /// A file that breaks off is read as far as it goes.
    /// @errors Malformed when it does not begin like an FLV file
    static base::Result<FlvFile> parse(base::Bytes bytes);
};

} // namespace flash::video
