#pragma once

#include "flash/swf/Movie.h"
#include "flash/video/VideoDecoder.h"

#include <memory>

namespace flash::video
{

/// The pictures of a video that is embedded in a movie, by their numbers. Going forward costs the packets in
/// between; going back starts over from the first.
class StreamPictures
{
public:
    /// @param stream borrowed; frames may still be added to it
    explicit StreamPictures(const swf::VideoStream& stream) : m_stream(stream) {}

    /// @param number of the stream's frames, from 0
    /// @returns the picture shown with this number: that of the nearest packet at or before it; null before
    ///          the first and when nothing can be decoded
    std::shared_ptr<const swf::Bitmap> at(std::uint16_t number);
    /// For the pictures that are still to be decoded.
    void setDeblocking(Deblocking deblocking);

private:
    const swf::VideoStream& m_stream;
    std::unique_ptr<VideoDecoder> m_decoder;
    bool m_opened = false;
    Deblocking m_deblocking = Deblocking::AsCoded;
    std::size_t m_next = 0; ///< the packet that comes next
    std::shared_ptr<const swf::Bitmap> m_picture;
};

} // namespace flash::video
