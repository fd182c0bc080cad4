#include "flash/sound/EventSource.h"
#include "flash/sound/Sources.h"

#include <array>

// The first bytes choose format, rate and channels; the rest is the sound, as one piece, as blocks of a
// stream and as an MP3 file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace flash;
    if (size < 4) return 0;
    constexpr std::array<swf::SoundFormat, 8> kFormats = {
        swf::SoundFormat::PcmNative,       swf::SoundFormat::Adpcm,         swf::SoundFormat::Mp3,
        swf::SoundFormat::PcmLittleEndian, swf::SoundFormat::Nellymoser16k, swf::SoundFormat::Nellymoser8k,
        swf::SoundFormat::Nellymoser,      swf::SoundFormat::Speex};
    constexpr std::array<int, 4> kRates = {5512, 11025, 22050, 44100};
    auto movie = std::make_shared<swf::Movie>();
    movie->bytes.assign(data + 4, data + size);

    swf::Sound sound;
    sound.format = kFormats[data[0] % kFormats.size()];
    sound.rate = kRates[data[1] % kRates.size()];
    sound.stereo = (data[1] & 4U) != 0;
    sound.sixteenBit = (data[1] & 8U) != 0;
    sound.sampleCount = data[2] * 1000U;
    sound.latencySamples = static_cast<std::int16_t>(data[3] * 10);
    sound.data = movie->bytes;
    std::array<sound::StereoFrame, 4096> out;
    const auto drain = [&out](sound::SampleSource* source) {
        // Bounded, because a loop or a pause may last for hours.
        for (int i = 0; source != nullptr && i < 64 && source->read(out) == out.size(); ++i) {
        }
    };
    swf::SoundInfo info;
    info.inPoint = data[3] * 16U;
    info.loops = data[2];
    if (auto source = sound::openSound(movie, sound)) {
        sound::EventSource event(std::move(source), info);
        drain(&event);
    }

    swf::Timeline timeline;
    timeline.streamHead = swf::SoundStreamHead{sound.format, sound.rate, sound.sixteenBit,
                                               sound.stereo, 0,          sound.latencySamples};
    base::Bytes rest = movie->bytes;
    while (!rest.empty()) {
        const std::size_t length = std::min<std::size_t>(rest.size(), rest[0] + 1U);
        timeline.frames.emplace_back().tags.emplace_back(swf::SoundStreamBlock{rest.first(length)});
        timeline.frames.resize(timeline.frames.size() + rest[0] % 8);
        rest = rest.subspan(length);
    }
    drain(sound::openStream(movie, timeline, data[3] % 4U, data[2] / 4.0).get());
    drain(sound::openSoundFile(std::make_shared<const std::vector<std::uint8_t>>(movie->bytes)).get());
    return 0;
}
