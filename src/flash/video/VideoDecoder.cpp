#include "flash/video/VideoDecoder.h"

#include "flash/codec/Ffmpeg.h"
#include "flash/guard/Holding.h"

#include <algorithm>

namespace flash::video
{
namespace
{

constexpr int kBlock = 16; ///< pixels that coded sizes are rounded up to

AVCodecID codecId(VideoCodec codec)
{
    switch (codec) {
    case VideoCodec::SorensonH263: return AV_CODEC_ID_FLV1;
    case VideoCodec::Screen: return AV_CODEC_ID_FLASHSV;
    case VideoCodec::Vp6: return AV_CODEC_ID_VP6F;
    case VideoCodec::Vp6Alpha: return AV_CODEC_ID_VP6A;
    case VideoCodec::Screen2: return AV_CODEC_ID_FLASHSV2;
    case VideoCodec::H264: return AV_CODEC_ID_H264;
    }
    return AV_CODEC_ID_NONE;
}

/// What of the coded pixels belongs to the picture.
int visible(int coded, int wanted)
{
    return wanted > 0 && coded > wanted && coded - wanted < kBlock ? wanted : coded;
}

/// The colours are coded premultiplied already; where coding made one exceed its alpha it is cut.
std::uint32_t withinAlpha(std::uint32_t pixel)
{
    const std::uint32_t alpha = pixel >> 24;
    const auto channel = [&](int shift) { return std::min(pixel >> shift & 0xFF, alpha) << shift; };
    return alpha << 24 | channel(16) | channel(8) | channel(0);
}

} // namespace

struct VideoDecoder::Parts {
    explicit Parts(const codec::Ffmpeg& functions) : ffmpeg(functions) {}
    ~Parts()
    {
        ffmpeg.sws_freeContext(scaler);
        ffmpeg.avcodec_free_context(&context);
        ffmpeg.av_packet_free(&packet);
        ffmpeg.av_frame_free(&frame);
    }
    const codec::Ffmpeg& ffmpeg;
    AVCodecContext* context = nullptr;
    AVPacket* packet = nullptr;
    AVFrame* frame = nullptr;
    SwsContext* scaler = nullptr;
    int width = 0, height = 0; ///< wanted
    guard::Holding holding;    ///< of the pictures below
    std::size_t heldPixels = 0;

    /// The picture that shows, the next one, and those that the codec keeps to build on: of H.264 some
    /// seventeen, at a byte and a half to the pixel.
    bool makeRoom(std::size_t pixels)
    {
        const std::size_t pictures = context->codec_id == AV_CODEC_ID_H264 ? 9 : 4;
        if (pixels <= heldPixels) return true;
        holding = {};
        heldPixels = 0;
        auto taken = guard::Holding::take(pictures * pixels * sizeof(std::uint32_t));
        if (!taken) return false;
        holding = std::move(*taken);
        heldPixels = pixels;
        return true;
    }
};

VideoDecoder::VideoDecoder(std::unique_ptr<Parts> parts) : m_parts(std::move(parts)) {}
VideoDecoder::~VideoDecoder() = default;

std::unique_ptr<VideoDecoder> VideoDecoder::open(VideoCodec codec, int width, int height,
                                                 std::uint8_t adjustment, base::Bytes config)
{
    const codec::Ffmpeg* ffmpeg = codec::Ffmpeg::get();
    const AVCodec* found = ffmpeg == nullptr ? nullptr : ffmpeg->avcodec_find_decoder(codecId(codec));
    if (found == nullptr) return nullptr;
    auto parts = std::make_unique<Parts>(*ffmpeg);
    parts->context = ffmpeg->avcodec_alloc_context3(found);
    parts->packet = ffmpeg->av_packet_alloc();
    parts->frame = ffmpeg->av_frame_alloc();
    if (parts->context == nullptr || parts->packet == nullptr || parts->frame == nullptr) return nullptr;
    parts->width = width;
    parts->height = height;
    parts->context->thread_count = 1; // The same pictures on every run, and none held back.
    parts->context->max_pixels = kMaxPixels;
    if (adjustment != 0) config = base::Bytes(&adjustment, 1);
    if (!config.empty()) {
        // Freed with the context.
        parts->context->extradata =
            static_cast<std::uint8_t*>(ffmpeg->av_mallocz(config.size() + AV_INPUT_BUFFER_PADDING_SIZE));
        if (parts->context->extradata == nullptr) return nullptr;
        std::ranges::copy(config, parts->context->extradata);
        parts->context->extradata_size = static_cast<int>(config.size());
    }
    if (codec == VideoCodec::Screen || codec == VideoCodec::Screen2) {
        parts->context->width = width;
        parts->context->height = height;
    }
    if (ffmpeg->avcodec_open2(parts->context, found, nullptr) < 0) return nullptr;
    return std::unique_ptr<VideoDecoder>(new VideoDecoder(std::move(parts)));
}

bool VideoDecoder::send(base::Bytes bytes, std::int64_t stamp)
{
    // The copy gives the padding that libavcodec's bit readers need behind a packet.
    AVPacket* packet = m_parts->packet;
    if (bytes.empty() || m_parts->ffmpeg.av_new_packet(packet, static_cast<int>(bytes.size())) < 0)
        return false;
    std::copy(bytes.begin(), bytes.end(), packet->data);
    packet->pts = stamp;
    const int sent = m_parts->ffmpeg.avcodec_send_packet(m_parts->context, packet);
    m_parts->ffmpeg.av_packet_unref(packet);
    return sent >= 0;
}

bool VideoDecoder::receive()
{
    return m_parts->ffmpeg.avcodec_receive_frame(m_parts->context, m_parts->frame) >= 0;
}

std::shared_ptr<const swf::Bitmap> VideoDecoder::decode(base::Bytes packet)
{
    if (!send(packet) || !receive()) return nullptr;
    auto bitmap = picture();
    m_parts->ffmpeg.av_frame_unref(m_parts->frame);
    return bitmap;
}

void VideoDecoder::skip(base::Bytes packet)
{
    if (send(packet) && receive()) m_parts->ffmpeg.av_frame_unref(m_parts->frame);
}

void VideoDecoder::feed(base::Bytes packet, std::int64_t stamp) { send(packet, stamp); }

void VideoDecoder::feedEnd() { m_parts->ffmpeg.avcodec_send_packet(m_parts->context, nullptr); }

std::optional<std::int64_t> VideoDecoder::next()
{
    if (!receive()) return {};
    return m_parts->frame->pts;
}

void VideoDecoder::reset() { m_parts->ffmpeg.avcodec_flush_buffers(m_parts->context); }

bool VideoDecoder::prepareScaler(int width, int height)
{
    const AVFrame* frame = m_parts->frame;
    m_parts->scaler = m_parts->ffmpeg.sws_getCachedContext(
        m_parts->scaler, width, height, static_cast<AVPixelFormat>(frame->format), width, height,
        AV_PIX_FMT_BGRA, SWS_BILINEAR | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT, nullptr, nullptr, nullptr);
    if (m_parts->scaler == nullptr) return false;
    if (m_parts->context->codec_id != AV_CODEC_ID_H264) return true;
    // H.264 may say itself by which matrix its colours were made, and of which range they are. What says
    // nothing is of the older matrix, as all video of Flash's first years was.
    constexpr int kOne = 1 << 16;
    const int matrix = frame->colorspace == AVCOL_SPC_UNSPECIFIED ? SWS_CS_ITU601 : frame->colorspace;
    const int* coefficients = m_parts->ffmpeg.sws_getCoefficients(matrix);
    m_parts->ffmpeg.sws_setColorspaceDetails(m_parts->scaler, coefficients,
                                             frame->color_range == AVCOL_RANGE_JPEG ? 1 : 0, coefficients, 1,
                                             0, kOne, kOne);
    return true;
}

std::shared_ptr<const swf::Bitmap> VideoDecoder::picture()
{
    const AVFrame* frame = m_parts->frame;
    const int width = visible(frame->width, m_parts->width);
    const int height = visible(frame->height, m_parts->height);
    if (width <= 0 || height <= 0) return nullptr;
    if (!m_parts->makeRoom(static_cast<std::size_t>(width) * static_cast<std::size_t>(height)))
        return nullptr;
    const auto format = static_cast<AVPixelFormat>(frame->format);
    if (!prepareScaler(width, height)) return nullptr;
    auto bitmap = std::make_shared<swf::Bitmap>();
    bitmap->width = width;
    bitmap->height = height;
    bitmap->opaque = format != AV_PIX_FMT_YUVA420P;
    // A row more than there is: the library's vector code may write some pixels behind the last one.
    bitmap->pixels.resize(static_cast<std::size_t>(width) * (static_cast<std::size_t>(height) + 1));
    std::uint8_t* planes[4] = {reinterpret_cast<std::uint8_t*>(bitmap->pixels.data())};
    const int strides[4] = {width * 4};
    m_parts->ffmpeg.sws_scale(m_parts->scaler, frame->data, frame->linesize, 0, height, planes, strides);
    bitmap->pixels.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    if (bitmap->opaque)
        for (std::uint32_t& pixel : bitmap->pixels) pixel |= 0xFF000000;
    else
        for (std::uint32_t& pixel : bitmap->pixels) pixel = withinAlpha(pixel);
    return bitmap;
}

} // namespace flash::video
