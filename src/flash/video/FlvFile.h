#pragma once

#include "base/ByteReader.h"
#include "flash/video/VideoDecoder.h"

#include <cstdint>
#include <vector>

namespace flash::video
{

/// What an FLV file holds, in the order of the file. Borrows the file's bytes.
struct FlvFile {
    struct Video {
        double timeMs = 0;
        bool key = false; ///< needs no picture before it
        VideoCodec codec = VideoCodec::SorensonH263;
        std::uint8_t adjustment = 0; ///< see VideoDecoder::open()
        base::Bytes packet;
    };
    struct Sound {
        double timeMs = 0;
        base::Bytes frames;
    };
    /// A name and a value in action message format 0, such as onMetaData and onCuePoint.
    struct Script {
        double timeMs = 0;
        base::Bytes message;
    };

    std::vector<Video> video;
    std::vector<Sound> mp3;
    std::vector<Script> scripts;
    bool hasOtherSound = false; ///< in a format that is not played
    double lastMs = 0;          ///< the time of the last tag

    /// A file that breaks off is read as far as it goes.
    /// @errors Malformed when it does not begin like an FLV file
    static base::Result<FlvFile> parse(base::Bytes bytes);
};

} // namespace flash::video
