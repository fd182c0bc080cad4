#include "swfc/source/MovieBuilder.h"

#include <algorithm>
#include <cmath>

namespace swfc::source
{
namespace
{

using output::Tag;

constexpr int kAdpcm = 1, kMp3 = 2, kPcm = 3;

bool isMp3File(const std::vector<std::uint8_t>& bytes)
{
    return bytes.size() < 4 || bytes[0] != 'R' || bytes[1] != 'I';
}

/// Compression, rate, sample size and channels in one byte.
int soundFlags(int format, int rate, int channels)
{
    constexpr int kSixteenBits = 2;
    return (format << 4) | (output::rateCode(rate) << 2) | kSixteenBits | (channels == 2 ? 1 : 0);
}

} // namespace

void MovieBuilder::soundElement(const Element& element)
{
    Attributes attributes(element, m_diagnostics);
    const auto id = define(attributes, CharacterKind::Sound);
    const auto content = readFile(attributes, "file");
    const bool pcm = attributes.choice("format", {"adpcm", "pcm"}) == 1;
    const int bits = attributes.integer("bits", 4, 2, 5);
    if (!id || !content) return;
    output::BitWriter out;
    out.u16(*id);
    if (isMp3File(*content)) {
        const auto sound = output::readMp3(*content);
        if (!sound || output::rateCode(sound->rate) < 1) {
            attributes.error("expected a WAV or MP3 file of 11025, 22050 or 44100 Hz");
            return;
        }
        out.u8(static_cast<std::uint32_t>(soundFlags(kMp3, sound->rate, sound->channels)));
        out.u32(static_cast<std::uint32_t>(sound->frames.size() *
                                           static_cast<std::size_t>(sound->samplesPerFrame)));
        out.u16(0); // samples to skip
        out.append(sound->bytes);
    } else {
        const auto sound = output::readWave(*content);
        if (!sound) {
            attributes.error("expected a WAV or MP3 file: " + sound.error().what);
            return;
        }
        if (output::rateCode(sound->rate) < 0) {
            attributes.error("expected a rate of 5512, 11025, 22050 or 44100 Hz, found " +
                             std::to_string(sound->rate));
            return;
        }
        out.u8(static_cast<std::uint32_t>(soundFlags(pcm ? kPcm : kAdpcm, sound->rate, sound->channels)));
        out.u32(static_cast<std::uint32_t>(sound->frames()));
        out.append(pcm ? output::encodePcm(*sound, 0, sound->frames())
                       : output::encodeAdpcm(*sound, 0, sound->frames(), bits));
    }
    definitions().add(Tag::DefineSound, out);
}

/// Announces a stream; from this frame on each frame carries its share until the sound ends.
void MovieBuilder::streamElement(const Element& element, Timeline& timeline)
{
    Attributes attributes(element, m_diagnostics);
    const auto content = readFile(attributes, "file");
    const bool pcm = attributes.choice("format", {"adpcm", "pcm"}) == 1;
    const int bits = attributes.integer("bits", 4, 2, 5);
    if (timeline.stream) {
        attributes.error("expected one stream in a timeline");
        return;
    }
    if (!content) return;
    Timeline::Stream stream;
    stream.bits = pcm ? 16 : bits;
    stream.isMp3 = isMp3File(*content);
    int rate = 0, channels = 1;
    if (stream.isMp3) {
        auto sound = output::readMp3(*content);
        if (sound) stream.mp3 = std::move(*sound);
        rate = stream.mp3.rate;
        channels = stream.mp3.channels;
    } else {
        auto sound = output::readWave(*content);
        if (sound) stream.wave = std::move(*sound);
        rate = stream.wave.rate;
        channels = stream.wave.channels;
    }
    if (output::rateCode(rate) < (stream.isMp3 ? 1 : 0)) {
        attributes.error("expected a WAV file of 5512, 11025, 22050 or 44100 Hz or an MP3 file of 11025, "
                         "22050 or 44100 Hz");
        return;
    }
    const int format = stream.isMp3 ? kMp3 : pcm ? kPcm : kAdpcm;
    output::BitWriter out;
    out.u8(static_cast<std::uint32_t>(soundFlags(0, rate, channels)));
    out.u8(static_cast<std::uint32_t>(soundFlags(format, rate, channels)));
    out.u16(static_cast<std::uint32_t>(std::min(65535.0, rate / m_rate)));
    if (stream.isMp3) out.u16(0);
    timeline.tags.add(Tag::SoundStreamHead2, out);
    timeline.stream = std::move(stream);
}

/// A block holds what sounds until the next frame; shares are taken from the total so that none drifts.
void MovieBuilder::streamBlock(Timeline& timeline)
{
    if (!timeline.stream) return;
    Timeline::Stream& stream = *timeline.stream;
    const int rate = stream.isMp3 ? stream.mp3.rate : stream.wave.rate;
    const auto due =
        static_cast<std::size_t>(std::llround(static_cast<double>(++stream.framesDone) * rate / m_rate));
    output::BitWriter out;
    if (stream.isMp3) {
        const auto perFrame = static_cast<std::size_t>(stream.mp3.samplesPerFrame);
        const std::size_t first = stream.mp3Done;
        // Whole frames only, and never behind: a frame is sent when any part of it is due.
        const std::size_t last = std::min(stream.mp3.frames.size(), (due + perFrame - 1) / perFrame);
        if (first >= stream.mp3.frames.size()) return;
        const auto wanted = static_cast<std::ptrdiff_t>(stream.samplesDone);
        const auto sent = static_cast<std::ptrdiff_t>(first * perFrame);
        out.u16(static_cast<std::uint32_t>((last - first) * perFrame));
        out.u16(static_cast<std::uint16_t>(last > first ? wanted - sent : 0));
        for (std::size_t i = first; i < last; ++i) {
            const auto& frame = stream.mp3.frames[i];
            out.append(std::span(stream.mp3.bytes).subspan(frame.offset, frame.length));
        }
        stream.mp3Done = last;
        stream.samplesDone = due;
    } else {
        const std::size_t end = std::min(due, stream.wave.frames());
        if (stream.samplesDone >= end) return;
        const std::size_t count = end - stream.samplesDone;
        out.append(stream.bits == 16
                       ? output::encodePcm(stream.wave, stream.samplesDone, count)
                       : output::encodeAdpcm(stream.wave, stream.samplesDone, count, stream.bits));
        stream.samplesDone = end;
    }
    timeline.tags.add(Tag::SoundStreamBlock, out);
}

output::SoundCue MovieBuilder::soundCue(Attributes& attributes)
{
    output::SoundCue cue;
    cue.stop = attributes.flag("stop");
    cue.noMultiple = attributes.flag("noMultiple");
    cue.loops = attributes.integer("loops", 1, 0, 65535);
    // Seconds in the description, samples at 44.1 kHz in the file.
    constexpr double kSamplesPerSecond = 44100;
    const auto samples = [&](double seconds) {
        return static_cast<std::uint32_t>(std::clamp(seconds * kSamplesPerSecond, 0.0, 4e9));
    };
    if (const auto in = attributes.number("in")) cue.inPoint44 = samples(*in);
    if (const auto out = attributes.number("out")) cue.outPoint44 = samples(*out);
    for (const auto& child : attributes.element().children) {
        Attributes point(*child, m_diagnostics);
        if (child->name != "envelope" || cue.envelope.size() >= 8) {
            error(*child, "expected at most 8 <envelope> points, found <" + child->name + ">");
            continue;
        }
        const auto level = [&](const char* name) {
            return static_cast<std::uint16_t>(
                std::lround(std::clamp(point.number(name, 1), 0.0, 1.0) * 32768));
        };
        cue.envelope.push_back({samples(point.number("at", 0)), level("left"), level("right")});
    }
    return cue;
}

void MovieBuilder::startElement(const Element& element, Timeline& timeline)
{
    Attributes attributes(element, m_diagnostics);
    const Character* sound = lookUp(element, attributes.required("sound"));
    output::BitWriter out;
    out.u16(sound == nullptr ? 0 : sound->id);
    writeSoundCue(out, soundCue(attributes));
    timeline.tags.add(Tag::StartSound, out);
}

} // namespace swfc::source
