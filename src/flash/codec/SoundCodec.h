#pragma once

#include <cstdint>

namespace flash::codec
{

/// How sound is written down, by the numbers that movies and video files share; the last ones occur in video
/// files alone.
enum class SoundCodec : std::uint8_t {
    PcmNative = 0,
    Adpcm = 1,
    Mp3 = 2,
    PcmLittleEndian = 3,
    Nellymoser16k = 4,
    Nellymoser8k = 5,
    Nellymoser = 6,
    ALaw = 7,
    MuLaw = 8,
    Aac = 10,
    Speex = 11,
    Mp3At8k = 14,
};

} // namespace flash::codec
