#include "swfc/output/SoundData.h"

#include "swfc/output/BitWriter.h"

#include <algorithm>
#include <array>

namespace swfc::output
{
namespace
{

using base::ErrorCode;
using base::fail;

// clang-format off
constexpr std::array<int, 89> kStepSizes = {
    7, 8, 9, 10, 11, 12, 13, 14, 16, 17, 19, 21, 23, 25, 28, 31, 34, 37, 41, 45, 50, 55, 60, 66, 73, 80, 88, 97,
    107, 118, 130, 143, 157, 173, 190, 209, 230, 253, 279, 307, 337, 371, 408, 449, 494, 544, 598, 658, 724, 796,
    876, 963, 1060, 1166, 1282, 1411, 1552, 1707, 1878, 2066, 2272, 2499, 2749, 3024, 3327, 3660, 4026, 4428,
    4871, 5358, 5894, 6484, 7132, 7845, 8630, 9493, 10442, 11487, 12635, 13899, 15289, 16818, 18500, 20350,
    22385, 24623, 27086, 29794, 32767};
constexpr int kIndexSteps[4][16] = {
    {-1, 2},
    {-1, -1, 2, 4},
    {-1, -1, -1, -1, 2, 4, 6, 8},
    {-1, -1, -1, -1, -1, -1, -1, -1, 1, 2, 4, 6, 8, 10, 13, 16}};
// clang-format on

constexpr std::size_t kSamplesPerPacket = 4096;

/// One channel's state; the decoder keeps the same.
struct AdpcmChannel {
    int sample = 0, index = 0;

    int encode(int wanted, int bits)
    {
        const int step = kStepSizes[static_cast<std::size_t>(index)];
        const int sign = wanted < sample ? 1 : 0;
        int difference = std::abs(wanted - sample);
        int magnitude = 0, applied = step >> (bits - 1);
        for (int k = bits - 2; k >= 0; --k) {
            const int part = step >> (bits - 2 - k);
            if (difference < part) continue;
            difference -= part;
            applied += part;
            magnitude |= 1 << k;
        }
        sample = std::clamp(sign != 0 ? sample - applied : sample + applied, -32768, 32767);
        index = std::clamp(index + kIndexSteps[bits - 2][magnitude], 0, 88);
        return (sign << (bits - 1)) | magnitude;
    }
};

/// The index whose step fits the first difference, so that a packet does not start with a slow attack.
int startIndex(int first, int second)
{
    const auto found = std::lower_bound(kStepSizes.begin(), kStepSizes.end(), std::abs(second - first));
    return std::min(63, static_cast<int>(found - kStepSizes.begin()));
}

} // namespace

base::Result<WaveSound> readWave(base::Bytes file)
{
    base::ByteReader in(file);
    const std::uint32_t riff = TRY_RESULT(in.u32());
    CHECK_RESULT(in.skip(4));
    const std::uint32_t wave = TRY_RESULT(in.u32());
    constexpr std::uint32_t kRiff = 0x46464952, kWave = 0x45564157, kFormat = 0x20746D66, kData = 0x61746164;
    if (riff != kRiff || wave != kWave) return fail(ErrorCode::Malformed, "no WAV file");
    WaveSound sound;
    int bits = 0;
    while (!in.atEnd()) {
        const std::uint32_t kind = TRY_RESULT(in.u32());
        const std::uint32_t length = TRY_RESULT(in.u32());
        const base::Bytes body = TRY_RESULT(in.bytes(std::min<std::size_t>(length, in.remaining())));
        if (length % 2 == 1 && !in.atEnd()) CHECK_RESULT(in.skip(1));
        base::ByteReader chunk(body);
        if (kind == kFormat) {
            const int format = TRY_RESULT(chunk.u16());
            sound.channels = TRY_RESULT(chunk.u16());
            sound.rate = static_cast<int>(TRY_RESULT(chunk.u32()));
            CHECK_RESULT(chunk.skip(6));
            bits = TRY_RESULT(chunk.u16());
            const bool known =
                format == 1 && (bits == 8 || bits == 16) && (sound.channels == 1 || sound.channels == 2);
            if (!known)
                return fail(ErrorCode::Unsupported,
                            "WAV file is not 8- or 16-bit PCM in one or two channels");
        } else if (kind == kData) {
            if (bits == 0) return fail(ErrorCode::Malformed, "WAV data before its format");
            const std::size_t count = body.size() / static_cast<std::size_t>(bits / 8);
            sound.samples.reserve(count);
            for (std::size_t i = 0; i < count; ++i) {
                if (bits == 16)
                    sound.samples.push_back(TRY_RESULT(chunk.i16()));
                else
                    sound.samples.push_back(static_cast<std::int16_t>((TRY_RESULT(chunk.u8()) - 128) * 256));
            }
        }
    }
    if (sound.samples.size() < static_cast<std::size_t>(sound.channels))
        return fail(ErrorCode::Malformed, "WAV file without samples");
    sound.samples.resize(sound.frames() * static_cast<std::size_t>(sound.channels));
    return sound;
}

base::Result<Mp3Sound> readMp3(base::Bytes file)
{
    constexpr int kBitRates1[] = {0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 0};
    constexpr int kBitRates2[] = {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160, 0};
    constexpr int kRates[] = {44100, 48000, 32000, 0};
    Mp3Sound sound;
    std::size_t at = 0;
    if (file.size() > 10 && file[0] == 'I' && file[1] == 'D' && file[2] == '3') {
        at = 10;
        std::size_t length = 0;
        for (std::size_t i = 6; i < 10; ++i) length = (length << 7) | (file[i] & 0x7F);
        at += length;
    }
    while (at + 4 <= file.size()) {
        const int b1 = file[at + 1], b2 = file[at + 2], b3 = file[at + 3];
        const int version = (b1 >> 3) & 3,
                  layer = (b1 >> 1) & 3; // version: 3 is MPEG 1, 2 MPEG 2, 0 MPEG 2.5
        const int bitRate = (version == 3 ? kBitRates1 : kBitRates2)[b2 >> 4] * 1000;
        const int rate = kRates[(b2 >> 2) & 3] >> (version == 3 ? 0 : version == 2 ? 1 : 2);
        const bool valid = file[at] == 0xFF && (b1 & 0xE0) == 0xE0 && version != 1 && layer == 1 &&
                           bitRate != 0 && rate != 0;
        if (!valid) {
            ++at;
            continue;
        }
        const int samples = version == 3 ? 1152 : 576;
        const std::size_t length = static_cast<std::size_t>(samples / 8 * bitRate / rate + ((b2 >> 1) & 1));
        if (at + length > file.size()) break;
        if (sound.frames.empty()) {
            sound.rate = rate;
            sound.channels = (b3 >> 6) == 3 ? 1 : 2;
            sound.samplesPerFrame = samples;
        }
        sound.frames.push_back({sound.bytes.size(), length});
        sound.bytes.insert(sound.bytes.end(), file.begin() + static_cast<std::ptrdiff_t>(at),
                           file.begin() + static_cast<std::ptrdiff_t>(at + length));
        at += length;
    }
    if (sound.frames.empty()) return fail(ErrorCode::Malformed, "no MP3 frames in the file");
    return sound;
}

int rateCode(int rate)
{
    switch (rate) {
    case 5512: return 0;
    case 11025: return 1;
    case 22050: return 2;
    case 44100: return 3;
    default: return -1;
    }
}

std::vector<std::uint8_t> encodeAdpcm(const WaveSound& wave, std::size_t firstFrame, std::size_t frames,
                                      int bits)
{
    BitWriter out;
    out.bits(static_cast<std::uint32_t>(bits - 2), 2);
    const auto channels = static_cast<std::size_t>(wave.channels);
    const auto at = [&](std::size_t frame, std::size_t channel) {
        const std::size_t last = wave.frames() - 1;
        return static_cast<int>(wave.samples[std::min(frame, last) * channels + channel]);
    };
    const std::size_t end = firstFrame + frames;
    for (std::size_t packet = firstFrame; packet < end; packet += kSamplesPerPacket) {
        std::array<AdpcmChannel, 2> state;
        for (std::size_t c = 0; c < channels; ++c) {
            state[c] = {at(packet, c), startIndex(at(packet, c), at(packet + 1, c))};
            out.signedBits(state[c].sample, 16);
            out.bits(static_cast<std::uint32_t>(state[c].index), 6);
        }
        const std::size_t packetEnd = std::min(packet + kSamplesPerPacket, end);
        for (std::size_t frame = packet + 1; frame < packetEnd; ++frame) {
            for (std::size_t c = 0; c < channels; ++c) {
                out.bits(static_cast<std::uint32_t>(state[c].encode(at(frame, c), bits)), bits);
            }
        }
    }
    return std::move(out.bytes());
}

std::vector<std::uint8_t> encodePcm(const WaveSound& wave, std::size_t firstFrame, std::size_t frames)
{
    BitWriter out;
    const auto channels = static_cast<std::size_t>(wave.channels);
    const std::size_t end = std::min((firstFrame + frames) * channels, wave.samples.size());
    for (std::size_t i = firstFrame * channels; i < end; ++i)
        out.u16(static_cast<std::uint16_t>(wave.samples[i]));
    return std::move(out.bytes());
}

} // namespace swfc::output
