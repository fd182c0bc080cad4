#include "export/encode/Tracks.h"

#include "export/Formats.h"

#include <QImage>

#include <array>
#include <cmath>

namespace exporter
{

namespace
{

base::Result<const AVCodec*> firstOf(std::initializer_list<const char*> names)
{
    std::string tried;
    for (const char* name : names) {
        if (const AVCodec* codec = avcodec_find_encoder_by_name(name)) return codec;
        tried += (tried.empty() ? "" : ", ") + std::string(name);
    }
    return base::fail(base::ErrorCode::Unsupported, "FFmpeg has no encoder " + tried);
}

// A constant rate factor says how much may be lost; the scales of the two encoders differ.
struct QualityFactor {
    int h264, vp9;
};
QualityFactor factorOf(Quality quality)
{
    switch (quality) {
    case Quality::Small: return {27, 38};
    case Quality::Best: return {15, 20};
    case Quality::Good: break;
    }
    return {20, 30};
}

void chooseQuality(AVCodecContext& encoder, Quality quality)
{
    const auto set = [&encoder](const char* name, const char* value) {
        av_opt_set(encoder.priv_data, name, value, 0); // one that an encoder does not know is left out
    };
    const QualityFactor factor = factorOf(quality);
    if (encoder.codec_id == AV_CODEC_ID_H264) {
        set("preset", quality == Quality::Best ? "medium" : "superfast");
        set("tune", "animation");
        if (quality != Quality::Best) {
            // What the quick preset leaves out of looking ahead halves the size of drawn films for little
            // time.
            set("mbtree", "1");
            set("rc-lookahead", "10");
        }
        set("crf", std::to_string(factor.h264).c_str());
    } else if (encoder.codec_id == AV_CODEC_ID_VP9) {
        set("deadline", "good");
        set("cpu-used", quality == Quality::Best ? "2" : "5");
        set("row-mt", "1");
        set("crf", std::to_string(factor.vp9).c_str());
        encoder.bit_rate = 0;
    }
}

AVPixelFormat pixelsOf(const Settings& settings)
{
    if (settings.format == Format::Gif) return AV_PIX_FMT_PAL8;
    return settings.isGroundTransparent ? AV_PIX_FMT_YUVA420P : AV_PIX_FMT_YUV420P;
}

// GIF counts in hundredths of a second, whatever the rate of the pictures is.
constexpr AVRational kGifTime{1, 100};

} // namespace

base::Result<const AVCodec*> pictureEncoder(Format format)
{
    switch (format) {
    case Format::Mp4:
    case Format::Mkv: return firstOf({"libx264", "libopenh264"});
    case Format::WebM: return firstOf({"libvpx-vp9"});
    case Format::Gif: return firstOf({"gif"});
    default: return nullptr;
    }
}

QSize PictureTrack::fitting(Format format, QSize size)
{
    if (format == Format::Gif || format == Format::Png) return size;
    // Colours are stored for two pixels by two.
    return {size.width() + size.width() % 2, size.height() + size.height() % 2};
}

base::Result<PictureTrack> PictureTrack::add(Container& container, const Settings& settings, QSize size,
                                             Rate rate, std::unique_ptr<Palette> palette)
{
    const AVCodec* codec = TRY_RESULT(pictureEncoder(settings.format));
    PictureTrack track;
    track.m_container = &container;
    track.m_palette = std::move(palette);
    track.m_rate = rate;
    track.m_encoder.reset(avcodec_alloc_context3(codec));
    AVCodecContext& encoder = *track.m_encoder;
    encoder.width = size.width();
    encoder.height = size.height();
    encoder.pix_fmt = pixelsOf(settings);
    encoder.framerate = {rate.numerator, rate.denominator};
    encoder.time_base =
        settings.format == Format::Gif ? kGifTime : AVRational{rate.denominator, rate.numerator};
    encoder.gop_size = static_cast<int>(std::lround(std::clamp(5 * rate.perSecond(), 1.0, 300.0)));
    if (settings.format != Format::Gif) {
        encoder.colorspace = AVCOL_SPC_BT709;
        encoder.color_primaries = AVCOL_PRI_BT709;
        encoder.color_trc = AVCOL_TRC_BT709;
        encoder.color_range = AVCOL_RANGE_MPEG;
        encoder.chroma_sample_location = AVCHROMA_LOC_LEFT;
    }
    if (container.wantsGlobalHeader()) encoder.flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    chooseQuality(encoder, settings.quality);
    if (const int error = avcodec_open2(&encoder, codec, nullptr); error < 0)
        return av::fail(std::string("the encoder ") + codec->name + " does not start", error);
    track.m_stream = TRY_RESULT(container.addTrack(encoder));

    if (settings.format != Format::Gif) {
        track.m_converter.reset(sws_getContext(
            size.width(), size.height(), AV_PIX_FMT_BGRA, size.width(), size.height(), encoder.pix_fmt,
            SWS_BICUBIC | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INP, nullptr, nullptr, nullptr));
        if (!track.m_converter) return av::fail("the pictures cannot be converted", AVERROR(EINVAL));
        constexpr int kFull = 1, kLimited = 0, kUnchanged = 1 << 16;
        const int* coefficients = sws_getCoefficients(SWS_CS_ITU709);
        sws_setColorspaceDetails(track.m_converter.get(), coefficients, kFull, coefficients, kLimited, 0,
                                 kUnchanged, kUnchanged);
    }
    return track;
}

base::Result<void> PictureTrack::fill(const QImage& picture)
{
    // Fresh pixels each time: those before may still wait for the encoder or be held by it.
    m_frame.reset(av_frame_alloc());
    m_frame->format = m_encoder->pix_fmt;
    m_frame->width = m_encoder->width;
    m_frame->height = m_encoder->height;
    m_frame->colorspace = m_encoder->colorspace;
    m_frame->color_range = m_encoder->color_range;
    if (const int error = av_frame_get_buffer(m_frame.get(), 0); error < 0)
        return av::fail("a picture", error);
    if (m_palette) {
        m_palette->map(picture, m_frame->data[0], m_frame->linesize[0]);
        m_palette->writeColors(reinterpret_cast<std::uint32_t*>(m_frame->data[1]));
        return {};
    }
    const QImage straight =
        m_encoder->pix_fmt == AV_PIX_FMT_YUVA420P ? picture.convertToFormat(QImage::Format_ARGB32) : picture;
    const std::array<const std::uint8_t*, 1> source{straight.constBits()};
    const std::array<int, 1> sourceStride{static_cast<int>(straight.bytesPerLine())};
    sws_scale(m_converter.get(), source.data(), sourceStride.data(), 0, straight.height(), m_frame->data,
              m_frame->linesize);
    return {};
}

base::Result<void> PictureTrack::take(const QImage* picture)
{
    if (picture != nullptr) CHECK_RESULT(fill(*picture));
    const AVRational moment{m_rate.denominator, m_rate.numerator};
    av::Owned<AVFrame> given(av_frame_clone(m_frame.get())); // of the same pixels
    if (!given) return av::fail("a picture", AVERROR(ENOMEM));
    given->pts = av_rescale_q(m_count++, moment, m_encoder->time_base);
    if (!m_encoding) m_encoding = std::make_unique<EncodingThread>(*m_container, *m_encoder, *m_stream);
    return m_encoding->give(std::move(given));
}

base::Result<void> PictureTrack::finish()
{
    if (!m_encoding) return {};
    return m_encoding->finish();
}

} // namespace exporter
