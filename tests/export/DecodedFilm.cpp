#include "DecodedFilm.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libswresample/swresample.h>
#include <libswscale/swscale.h>
}

#include <map>
#include <memory>

namespace
{

struct Free {
    void operator()(AVFormatContext* format) const { avformat_close_input(&format); }
    void operator()(AVCodecContext* codec) const { avcodec_free_context(&codec); }
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
    void operator()(SwsContext* context) const { sws_freeContext(context); }
    void operator()(SwrContext* context) const { swr_free(&context); }
};
template <class T>
using Owned = std::unique_ptr<T, Free>;

QImage imageOf(const AVFrame& frame)
{
    QImage image(frame.width, frame.height, QImage::Format_RGBA8888);
    const Owned<SwsContext> converter(sws_getContext(
        frame.width, frame.height, static_cast<AVPixelFormat>(frame.format), frame.width, frame.height,
        AV_PIX_FMT_RGBA, SWS_BICUBIC | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT, nullptr, nullptr, nullptr));
    // As the file says it is meant.
    const int* coefficients =
        sws_getCoefficients(frame.colorspace == AVCOL_SPC_BT709 ? SWS_CS_ITU709 : SWS_CS_DEFAULT);
    sws_setColorspaceDetails(converter.get(), coefficients, frame.color_range == AVCOL_RANGE_JPEG,
                             coefficients, 1, 0, 1 << 16, 1 << 16);
    std::uint8_t* rows[] = {image.bits()};
    const int strides[] = {static_cast<int>(image.bytesPerLine())};
    sws_scale(converter.get(), frame.data, frame.linesize, 0, frame.height, rows, strides);
    return image;
}

std::vector<float> leftOf(AVFrame& frame)
{
    SwrContext* made = nullptr;
    swr_alloc_set_opts2(&made, &frame.ch_layout, AV_SAMPLE_FMT_FLTP, frame.sample_rate, &frame.ch_layout,
                        static_cast<AVSampleFormat>(frame.format), frame.sample_rate, 0, nullptr);
    const Owned<SwrContext> converter(made);
    swr_init(made);
    std::vector<std::vector<float>> channels(static_cast<std::size_t>(frame.ch_layout.nb_channels),
                                             std::vector<float>(static_cast<std::size_t>(frame.nb_samples)));
    std::vector<std::uint8_t*> rows;
    for (auto& channel : channels) rows.push_back(reinterpret_cast<std::uint8_t*>(channel.data()));
    swr_convert(made, rows.data(), frame.nb_samples, const_cast<const std::uint8_t**>(frame.extended_data),
                frame.nb_samples);
    return channels.front();
}

} // namespace

DecodedFilm DecodedFilm::of(const QString& file)
{
    DecodedFilm film;
    AVFormatContext* opened = nullptr;
    if (avformat_open_input(&opened, file.toUtf8().constData(), nullptr, nullptr) < 0) return film;
    const Owned<AVFormatContext> format(opened);
    if (avformat_find_stream_info(opened, nullptr) < 0) return film;
    std::map<int, Owned<AVCodecContext>> codecs;
    for (unsigned i = 0; i < opened->nb_streams; ++i) {
        const AVCodecParameters& parameters = *opened->streams[i]->codecpar;
        // The usual decoder of VP9 does not know of transparency.
        const AVCodec* known = parameters.codec_id == AV_CODEC_ID_VP9
                                   ? avcodec_find_decoder_by_name("libvpx-vp9")
                                   : avcodec_find_decoder(parameters.codec_id);
        if (known == nullptr) return film;
        Owned<AVCodecContext> codec(avcodec_alloc_context3(known));
        avcodec_parameters_to_context(codec.get(), &parameters);
        codec->pkt_timebase = opened->streams[i]->time_base;
        if (avcodec_open2(codec.get(), known, nullptr) < 0) return film;
        codecs[static_cast<int>(i)] = std::move(codec);
    }
    const Owned<AVPacket> packet(av_packet_alloc());
    const Owned<AVFrame> frame(av_frame_alloc());
    const auto drain = [&](int stream) {
        AVCodecContext& codec = *codecs[stream];
        while (avcodec_receive_frame(&codec, frame.get()) >= 0) {
            const double seconds = static_cast<double>(frame->best_effort_timestamp) *
                                   av_q2d(opened->streams[stream]->time_base);
            if (codec.codec_type == AVMEDIA_TYPE_VIDEO) {
                film.pictures.push_back({seconds, imageOf(*frame)});
            } else {
                if (film.left.empty()) film.soundStartsAt = seconds;
                film.soundRate = frame->sample_rate;
                const auto samples = leftOf(*frame);
                film.left.insert(film.left.end(), samples.begin(), samples.end());
            }
        }
    };
    while (av_read_frame(opened, packet.get()) >= 0) {
        avcodec_send_packet(codecs[packet->stream_index].get(), packet.get());
        drain(packet->stream_index);
        av_packet_unref(packet.get());
    }
    for (auto& [stream, codec] : codecs) {
        avcodec_send_packet(codec.get(), nullptr);
        drain(stream);
    }
    return film;
}
