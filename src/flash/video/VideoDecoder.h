#pragma once

#include "base/ByteReader.h"
#include "flash/swf/Shape.h"

#include <cstdint>
#include <memory>

namespace flash::video
{

/// The codecs of embedded streams and FLV files, by the numbers of the formats.
enum class VideoCodec : std::uint8_t { SorensonH263 = 2, Screen = 3, Vp6 = 4, Vp6Alpha = 5, Screen2 = 6 };

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
    /// @returns null when the codec is unknown or the libraries are not there
    static std::unique_ptr<VideoDecoder> open(VideoCodec codec, int width, int height,
                                              std::uint8_t adjustment = 0);
    ~VideoDecoder();
    VideoDecoder(const VideoDecoder&) = delete;
    VideoDecoder& operator=(const VideoDecoder&) = delete;

    /// @returns the picture; null when the packet holds none, or is damaged
    std::shared_ptr<const swf::Bitmap> decode(base::Bytes packet);
    /// Decodes without making a picture of it: for those on the way to the one that is shown.
    void skip(base::Bytes packet);
    /// Forgets the pictures before: the next packet is a key frame.
    void reset();

private:
    struct Parts;
    explicit VideoDecoder(std::unique_ptr<Parts> parts);
    bool send(base::Bytes packet);
    std::shared_ptr<const swf::Bitmap> toBitmap();
    std::unique_ptr<Parts> m_parts;
};

} // namespace flash::video
