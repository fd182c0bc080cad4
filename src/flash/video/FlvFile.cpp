#include "flash/video/FlvFile.h"

namespace flash::video
{
namespace
{

// Layout by the file format's description, version 10.1, annex E. Numbers are big-endian.
constexpr std::size_t kHeaderBytes = 9, kTagHeaderBytes = 11, kBackPointerBytes = 4;
enum class TagType : std::uint8_t { Audio = 8, Video = 9, Script = 18 };
constexpr std::uint8_t kAacConfig = 0;
// H.264: what kind of packet it is, and how much later than it is decoded its picture shows, milliseconds.
constexpr std::size_t kAvcHeaderBytes = 4;
constexpr std::uint8_t kAvcConfig = 0, kAvcPicture = 1;
constexpr unsigned kKeyFrame = 1, kServerFrame = 5;

std::uint32_t bigEndian(base::Bytes bytes, std::size_t at, int count)
{
    std::uint32_t value = 0;
    for (int i = 0; i < count; ++i) value = value << 8 | bytes[at + static_cast<std::size_t>(i)];
    return value;
}

double signedBigEndian24(base::Bytes bytes, std::size_t at)
{
    constexpr std::int32_t kSign = 1 << 23;
    const auto value = static_cast<std::int32_t>(bigEndian(bytes, at, 3));
    return (value ^ kSign) - kSign;
}

/// @param config in, out: what the packets that follow are decoded by
/// @returns whether there is a picture in it
bool takeAvcHeader(FlvFile::Video& video, base::Bytes& config)
{
    if (video.packet.size() < kAvcHeaderBytes) return false;
    const std::uint8_t kind = video.packet[0];
    const double later = signedBigEndian24(video.packet, 1);
    video.packet = video.packet.subspan(kAvcHeaderBytes);
    if (kind == kAvcConfig) config = video.packet;
    video.config = config;
    video.showMs += later;
    return kind == kAvcPicture && !config.empty();
}

void addVideo(FlvFile& file, double timeMs, base::Bytes body, base::Bytes& config)
{
    const unsigned kind = body[0] >> 4;
    const auto codec = static_cast<VideoCodec>(body[0] & 15);
    if (kind == kServerFrame) return;
    FlvFile::Video video{timeMs, timeMs, kind == kKeyFrame, codec, 0, {}, body.subspan(1)};
    if (codec == VideoCodec::Vp6 || codec == VideoCodec::Vp6Alpha) {
        if (video.packet.empty()) return;
        video.adjustment = video.packet[0];
        video.packet = video.packet.subspan(1);
    }
    if (codec == VideoCodec::H264 && !takeAvcHeader(video, config)) return;
    if (video.packet.empty()) return;
    file.lastMs = std::max(file.lastMs, video.showMs);
    file.video.push_back(video);
}

void addSound(FlvFile& file, double timeMs, base::Bytes body)
{
    constexpr int kRates[] = {5512, 11025, 22050, 44100};
    const unsigned head = body[0];
    FlvFile::Sound sound{timeMs,
                         static_cast<codec::SoundCodec>(head >> 4),
                         kRates[head >> 2 & 3],
                         (head & 2) != 0,
                         (head & 1) != 0,
                         body.subspan(1)};
    if (sound.codec == codec::SoundCodec::Aac) {
        if (sound.bytes.empty()) return;
        const bool isConfig = sound.bytes[0] == kAacConfig;
        sound.bytes = sound.bytes.subspan(1);
        if (isConfig) {
            file.soundConfig = sound.bytes;
            return;
        }
    }
    if (!sound.bytes.empty()) file.sound.push_back(sound);
}

} // namespace

base::Result<FlvFile> FlvFile::parse(base::Bytes bytes)
{
    if (bytes.size() < kHeaderBytes || bytes[0] != 'F' || bytes[1] != 'L' || bytes[2] != 'V')
        return base::fail(base::ErrorCode::Malformed, "this is no FLV file");
    FlvFile file;
    base::Bytes videoConfig;
    std::size_t at = std::size_t{bigEndian(bytes, 5, 4)} + kBackPointerBytes;
    while (at < bytes.size() && bytes.size() - at >= kTagHeaderBytes) {
        const auto type = static_cast<TagType>(bytes[at] & 31);
        const std::size_t size = bigEndian(bytes, at + 1, 3);
        const double timeMs = bigEndian(bytes, at + 4, 3) | std::uint32_t{bytes[at + 7]} << 24;
        at += kTagHeaderBytes;
        if (size > bytes.size() - at) break;
        const base::Bytes body = bytes.subspan(at, size);
        at += size + kBackPointerBytes;
        if (body.empty()) continue;
        file.lastMs = std::max(file.lastMs, timeMs);
        switch (type) {
        case TagType::Audio: addSound(file, timeMs, body); break;
        case TagType::Video: addVideo(file, timeMs, body, videoConfig); break;
        case TagType::Script: file.scripts.push_back({timeMs, body}); break;
        default: break;
        }
    }
    return file;
}

} // namespace flash::video
