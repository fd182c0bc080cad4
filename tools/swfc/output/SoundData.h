#pragma once

#include "base/ByteReader.h"

#include <cstdint>
#include <string>
#include <vector>

namespace swfc::output
{

/// What a WAV file holds: 16-bit samples, channels interleaved.
struct WaveSound {
    int rate = 0; ///< Hz
    int channels = 1;
    std::vector<std::int16_t> samples;
    [[nodiscard]] std::size_t frames() const { return samples.size() / static_cast<std::size_t>(channels); }
};
/// @errors Malformed, Truncated; Unsupported for anything but 8- or 16-bit PCM in one or two channels.
base::Result<WaveSound> readWave(base::Bytes file);

/// The frames of an MP3 file; tags around them are left out.
struct Mp3Sound {
    struct Frame {
        std::size_t offset = 0, length = 0; // into `bytes`
    };
    int rate = 0, channels = 1;
    int samplesPerFrame = 1152;
    std::vector<std::uint8_t> bytes;
    std::vector<Frame> frames;
};
base::Result<Mp3Sound> readMp3(base::Bytes file);

/// Sample rates that a movie can name: 5512, 11025, 22050, 44100 Hz.
/// @returns 0 to 3, or -1
int rateCode(int rate);

/// @param bits 2 to 5 for each sample
std::vector<std::uint8_t> encodeAdpcm(const WaveSound& wave, std::size_t firstFrame, std::size_t frames,
                                      int bits);
std::vector<std::uint8_t> encodePcm(const WaveSound& wave, std::size_t firstFrame, std::size_t frames);

} // namespace swfc::output
