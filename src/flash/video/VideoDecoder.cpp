#include "flash/video/VideoDecoder.h"

#include "flash/codec/Ffmpeg.h"
#include "flash/guard/Holding.h"
#include "flash/video/Deblocking.h"
#include "flash/video/PlanarPixels.h"

#include <algorithm>
#include <array>

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

/// Whether a packet of Sorenson H.263 asks for smoothed seams: a bit behind the sizes and the kind of
/// picture.
bool asksForDeblocking(base::Bytes packet)
{
    constexpr std::size_t kToSize = 17 + 5 + 8, kSizeBits = 3, kKindBits = 2;
    const auto bit = [&](std::size_t at) {
        return at / 8 < packet.size() ? packet[at / 8] >> (7 - at % 8) & 1 : 0;
    };
    const int size = bit(kToSize) << 2 | bit(kToSize + 1) << 1 | bit(kToSize + 2);
    const std::size_t statedBits = size == 0 ? 16 : size == 1 ? 32 : 0;
    return bit(kToSize + kSizeBits + statedBits + kKindBits) != 0;
}

/// Whether a picture is made of planes of 8 bits whose colours have half the size both ways.
bool isPlanar(int format)
{
    return format == AV_PIX_FMT_YUV420P || format == AV_PIX_FMT_YUVJ420P || format == AV_PIX_FMT_YUVA420P;
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
    Deblocking deblocking = Deblocking::AsCoded;
    bool isSmoothingAsked = false; ///< by the last packet
    std::array<Plane, 3> planes{}; ///< of the frame that a picture is made of
    std::array<std::vector<std::uint8_t>, 3> smoothed;
    guard::Holding holding; ///< of the pictures below
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
    if (codec == VideoCodec::SorensonH263) {
        // Exact to the last digit, as the players are; and each block tells how coarsely it was coded.
        parts->context->idct_algo = FF_IDCT_FAAN;
        parts->context->export_side_data |= AV_CODEC_EXPORT_DATA_VIDEO_ENC_PARAMS;
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
    if (m_parts->context->codec_id == AV_CODEC_ID_FLV1) m_parts->isSmoothingAsked = asksForDeblocking(bytes);
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

void VideoDecoder::setDeblocking(Deblocking deblocking) { m_parts->deblocking = deblocking; }

bool VideoDecoder::scale(swf::Bitmap& bitmap)
{
    const AVFrame* frame = m_parts->frame;
    m_parts->scaler = m_parts->ffmpeg.sws_getCachedContext(
        m_parts->scaler, bitmap.width, bitmap.height, static_cast<AVPixelFormat>(frame->format), bitmap.width,
        bitmap.height, AV_PIX_FMT_BGRA, SWS_BILINEAR | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT, nullptr,
        nullptr, nullptr);
    if (m_parts->scaler == nullptr) return false;
    // A row more than there is: the library's vector code may write some pixels behind the last one.
    const std::size_t size = bitmap.pixels.size();
    bitmap.pixels.resize(size + static_cast<std::size_t>(bitmap.width));
    std::uint8_t* planes[4] = {reinterpret_cast<std::uint8_t*>(bitmap.pixels.data())};
    const int strides[4] = {bitmap.width * 4};
    m_parts->ffmpeg.sws_scale(m_parts->scaler, frame->data, frame->linesize, 0, bitmap.height, planes,
                              strides);
    bitmap.pixels.resize(size);
    for (std::uint32_t& pixel : bitmap.pixels) pixel |= 0xFF000000;
    return true;
}

/// Puts copies of the frame's planes in their places, with the seams between coded blocks smoothed.
void VideoDecoder::smooth()
{
    const AVFrame* frame = m_parts->frame;
    const AVFrameSideData* side =
        m_parts->ffmpeg.av_frame_get_side_data(frame, AV_FRAME_DATA_VIDEO_ENC_PARAMS);
    if (side == nullptr) return;
    auto* coding = reinterpret_cast<AVVideoEncParams*>(side->data);
    constexpr int kBlockBits = 4; // a macroblock has 16 samples of luma each way
    const auto columns = static_cast<unsigned>(frame->width + 15) >> kBlockBits;
    for (std::size_t i = 0; i < m_parts->planes.size(); ++i) {
        Plane& plane = m_parts->planes[i];
        std::vector<std::uint8_t>& copy = m_parts->smoothed[i];
        copy.resize(static_cast<std::size_t>(plane.width) * static_cast<std::size_t>(plane.height));
        for (int y = 0; y < plane.height; ++y)
            std::copy_n(plane.samples + y * plane.stride, plane.width,
                        copy.begin() + std::ptrdiff_t{y} * plane.width);
        plane.samples = copy.data();
        plane.stride = plane.width;
        const int bits = i == 0 ? kBlockBits : kBlockBits - 1;
        smoothSeams(plane, [&](int x, int y) {
            const unsigned block =
                (static_cast<unsigned>(y) >> bits) * columns + (static_cast<unsigned>(x) >> bits);
            // Told in halves.
            return block < coding->nb_blocks
                       ? (coding->qp + av_video_enc_params_block(coding, block)->delta_qp) / 2
                       : 0;
        });
    }
}

void VideoDecoder::convert(swf::Bitmap& bitmap)
{
    const AVFrame* frame = m_parts->frame;
    for (std::size_t i = 0; i < m_parts->planes.size(); ++i) {
        const int shift = i == 0 ? 0 : 1;
        m_parts->planes[i] = {frame->data[i], (bitmap.width + shift) >> shift,
                              (bitmap.height + shift) >> shift, frame->linesize[i]};
    }
    if (m_parts->context->codec_id == AV_CODEC_ID_FLV1 && m_parts->deblocking != Deblocking::Off &&
        (m_parts->deblocking == Deblocking::On || m_parts->isSmoothingAsked))
        smooth();
    // H.264 may say itself by which matrix its colours were made, and of which range they are. What says
    // nothing is of the older matrix, as all video of Flash's first years was.
    const bool speaks = m_parts->context->codec_id == AV_CODEC_ID_H264;
    const bool named = speaks && frame->colorspace != AVCOL_SPC_UNSPECIFIED;
    const int* found = m_parts->ffmpeg.sws_getCoefficients(named ? frame->colorspace : SWS_CS_ITU601);
    const ColorMatrix matrix = ColorMatrix::of({found[0], found[1], found[2], found[3]},
                                               speaks && frame->color_range == AVCOL_RANGE_JPEG);
    const auto width = static_cast<std::size_t>(bitmap.width);
    const auto& [luma, u, v] = m_parts->planes;
    for (int y = 0; y < bitmap.height; ++y) {
        const PlanarRow row{
            luma.samples + y * luma.stride, u.samples + y / 2 * u.stride, v.samples + y / 2 * v.stride,
            bitmap.opaque ? nullptr : frame->data[3] + std::ptrdiff_t{y} * frame->linesize[3]};
        makePixels(row, matrix, std::span(bitmap.pixels).subspan(static_cast<std::size_t>(y) * width, width));
    }
}

std::shared_ptr<const swf::Bitmap> VideoDecoder::picture()
{
    const AVFrame* frame = m_parts->frame;
    const int width = visible(frame->width, m_parts->width);
    const int height = visible(frame->height, m_parts->height);
    if (width <= 0 || height <= 0) return nullptr;
    const std::size_t size = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    if (!m_parts->makeRoom(size)) return nullptr;
    auto bitmap = std::make_shared<swf::Bitmap>();
    bitmap->width = width;
    bitmap->height = height;
    bitmap->opaque = frame->format != AV_PIX_FMT_YUVA420P;
    bitmap->pixels.resize(size);
    if (isPlanar(frame->format))
        convert(*bitmap);
    else if (!scale(*bitmap))
        return nullptr;
    return bitmap;
}

} // namespace flash::video
