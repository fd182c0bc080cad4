#include "flash/video/StreamPictures.h"

#include <algorithm>

namespace flash::video
{

void StreamPictures::setDeblocking(Deblocking deblocking) { m_deblocking = deblocking; }

std::shared_ptr<const swf::Bitmap> StreamPictures::at(std::uint16_t number)
{
    if (!m_opened) {
        m_opened = true;
        m_decoder =
            VideoDecoder::open(static_cast<VideoCodec>(m_stream.codec), m_stream.width, m_stream.height);
    }
    if (!m_decoder) return nullptr;
    m_decoder->setDeblocking(m_deblocking);
    const auto end = static_cast<std::size_t>(
        std::find_if(m_stream.frames.begin(), m_stream.frames.end(),
                     [&](const swf::VideoStream::FrameData& frame) { return frame.number > number; }) -
        m_stream.frames.begin());
    if (end < m_next) {
        m_decoder->reset();
        m_next = 0;
        m_picture = nullptr;
    }
    while (m_next < end) {
        const base::Bytes packet = m_stream.frames[m_next++].data;
        if (m_next < end)
            m_decoder->skip(packet);
        else if (auto picture = m_decoder->decode(packet))
            m_picture = std::move(picture);
    }
    return m_picture;
}

} // namespace flash::video
