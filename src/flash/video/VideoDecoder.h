#pragma once

#include "base/ByteReader.h"
#include "flash/swf/Shape.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace flash::video
{

/// The codecs of embedded streams and FLV files, by the numbers of the formats.
enum class VideoCodec : std::uint8_t {
    SorensonH263 = 2,
    Screen = 3,
    Vp6 = 4,
    Vp6Alpha = 5,
    Screen2 = 6,
    H264 = 7
};

/// Whether the seams between coded blocks are smoothed; only Sorenson H.263 knows it.
enum class Deblocking : std::uint8_t {
    AsCoded, ///< where the packet asks for it
    Off,
    On
};

/// What scripts and files say about it, by number; On2's own ways, from 3 on, mean nothing to other codecs.
[[nodiscard]] constexpr Deblocking deblockingOf(int number)
{
    return number == 1 ? Deblocking::Off : number == 2 ? Deblocking::On : Deblocking::AsCoded;
}

/// Decodes packet after packet by libavcodec; each picture builds on the ones before it.
class VideoDecoder
{
public:
    /// Larger pictures are refused: they are damage, or meant to eat memory.
    static constexpr int kMaxPixels = 4096 * 4096;

    /// @param width, height  of the video, pixels; what a codec adds to reach whole blocks is cut off. 0:
    /// keep
    ///                       what is coded.
    /// @param adjustment     VP6 of FLV files: the byte before each packet, pixels to cut at the right (upper
    ///                       four bits) and at the bottom; 0 elsewhere
    /// @param config H.264: the parameters that its packets refer to, as they stand before them in the file
    /// @returns null when the codec is unknown or the libraries are not there
    static std::unique_ptr<VideoDecoder> open(VideoCodec codec, int width, int height,
                                              std::uint8_t adjustment = 0, base::Bytes config = {});
    ~VideoDecoder();
    VideoDecoder(const VideoDecoder&) = delete;
    VideoDecoder& operator=(const VideoDecoder&) = delete;

    /// For the pictures made from now on.
    void setDeblocking(Deblocking deblocking);

    /// @returns the picture; null when the packet holds none, or is damaged
    std::shared_ptr<const swf::Bitmap> decode(base::Bytes packet);
    /// Decodes without making a picture of it: for those on the way to the one that is shown.
    void skip(base::Bytes packet);

    // H.264 hands out its pictures in the order they are seen in, which is not the one of its packets.

    /// @param stamp what the picture is known by afterwards
    void feed(base::Bytes packet, std::int64_t stamp);
    /// There are no more packets; until reset() none is taken.
    void feedEnd();
    /// Goes on to the next picture that is whole.
    /// @returns its stamp; nothing when more packets are needed for it
    std::optional<std::int64_t> next();
    /// The picture that next() went to; null when it cannot be had.
    std::shared_ptr<const swf::Bitmap> picture();

    /// Forgets the pictures before: the next packet is a key frame.
    void reset();

private:
    struct Parts;
    explicit VideoDecoder(std::unique_ptr<Parts> parts);
    bool send(base::Bytes packet, std::int64_t stamp = 0);
    bool receive();
    bool scale(swf::Bitmap& bitmap);
    void convert(swf::Bitmap& bitmap);
    void smooth();
    std::unique_ptr<Parts> m_parts;
};

} // namespace flash::video
