#include "flash/swf/SoundTags.h"

#include "flash/swf/Tags.h"

namespace flash::swf
{
namespace
{

// One byte, most significant bit first: format 4 bits, rate 2, sample size 1, channels 1.
template <class T>
void readSoundType(BodyReader& body, T& sound)
{
    constexpr int kRates[] = {5512, 11025, 22050, 44100};
    sound.format = static_cast<SoundFormat>(body.bits(4));
    sound.rate = kRates[body.bits(2)];
    sound.sixteenBit = body.flag();
    sound.stereo = body.flag();
}

} // namespace

SoundInfo readSoundInfo(BodyReader& body)
{
    SoundInfo info;
    body.bits(2);
    info.stop = body.flag();
    info.noMultiple = body.flag();
    const bool hasEnvelope = body.flag();
    const bool hasLoops = body.flag();
    const bool hasOutPoint = body.flag();
    const bool hasInPoint = body.flag();
    if (hasInPoint) info.inPoint = body.u32();
    if (hasOutPoint) info.outPoint = body.u32();
    if (hasLoops) info.loops = body.u16();
    if (hasEnvelope) {
        const unsigned count = body.u8();
        for (unsigned i = 0; i < count; ++i) {
            SoundInfo::Envelope point;
            point.position44 = body.u32();
            point.left = body.u16();
            point.right = body.u16();
            if (body.overrun()) break;
            info.envelope.push_back(point);
        }
    }
    return info;
}

} // namespace flash::swf

namespace flash::swf::tags
{

base::Result<void> defineSound(TagContext& tag)
{
    Sound sound;
    const std::uint16_t id = tag.body.u16();
    readSoundType(tag.body, sound);
    sound.sampleCount = tag.body.u32();
    CHECK_RESULT(tag.body.check());
    if (sound.format == SoundFormat::Mp3 && tag.body.remaining() >= 2) sound.latencySamples = tag.body.i16();
    sound.data = tag.body.rest();
    tag.builder.define(id, sound);
    return {};
}

base::Result<void> startSound(TagContext& tag)
{
    StartSound start;
    start.soundId = tag.body.u16();
    start.info = readSoundInfo(tag.body);
    CHECK_RESULT(tag.body.check());
    tag.add(std::move(start));
    return {};
}

base::Result<void> soundStreamHead(TagContext& tag)
{
    SoundStreamHead head;
    tag.body.u8(); // the format that the authoring tool suggests for playing
    readSoundType(tag.body, head);
    head.samplesPerBlock = tag.body.u16();
    CHECK_RESULT(tag.body.check());
    // Some encoders leave the latency out.
    if (head.format == SoundFormat::Mp3 && tag.body.remaining() >= 2) head.latencySamples = tag.body.i16();
    tag.timeline.streamHead = head;
    return {};
}

base::Result<void> soundStreamBlock(TagContext& tag)
{
    tag.add(SoundStreamBlock{tag.body.rest()});
    return {};
}

base::Result<void> defineVideoStream(TagContext& tag)
{
    VideoStream video;
    const std::uint16_t id = tag.body.u16();
    video.frameCount = tag.body.u16();
    video.width = tag.body.u16();
    video.height = tag.body.u16();
    tag.body.bits(4);
    video.deblocking = static_cast<std::uint8_t>(tag.body.bits(3));
    video.smoothing = tag.body.flag();
    video.codec = tag.body.u8();
    CHECK_RESULT(tag.body.check());
    tag.builder.define(id, std::move(video));
    return {};
}

base::Result<void> videoFrame(TagContext& tag)
{
    const std::uint16_t id = tag.body.u16();
    VideoStream::FrameData frame;
    frame.number = tag.body.u16();
    CHECK_RESULT(tag.body.check());
    frame.data = tag.body.rest();
    auto* video = tag.builder.find<VideoStream>(id);
    if (!video)
        return base::fail(base::ErrorCode::NotFound, "there is no video stream " + std::to_string(id));
    if (tag.builder.definitions().take(sizeof(frame))) video->frames.push_back(frame);
    return {};
}

} // namespace flash::swf::tags
