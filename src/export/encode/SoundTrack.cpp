#include "export/encode/Tracks.h"

#include "flash/Film.h"

#include <algorithm>

namespace exporter
{

namespace
{

constexpr int kBitRate = 192'000;
// For encoders that take stretches of any length.
constexpr int kUsualStretch = 4096;

AVSampleFormat sampleFormatOf(const AVCodec& codec)
{
    // Ours where it is taken: nothing is lost then.
    for (const AVSampleFormat* format = codec.sample_fmts; format != nullptr && *format >= 0; ++format)
        if (*format == AV_SAMPLE_FMT_S16) return *format;
    return codec.sample_fmts != nullptr ? codec.sample_fmts[0] : AV_SAMPLE_FMT_S16;
}

int rateOf(const AVCodec& codec)
{
    const int* rate = codec.supported_samplerates;
    if (rate == nullptr) return flash::sound::kMixRate;
    int best = *rate;
    for (; *rate != 0; ++rate) {
        if (*rate == flash::sound::kMixRate) return *rate;
        best = std::max(best, *rate);
    }
    return best;
}

} // namespace

base::Result<const AVCodec*> soundEncoder(Format format)
{
    const auto named = [](const char* name) -> base::Result<const AVCodec*> {
        if (const AVCodec* codec = avcodec_find_encoder_by_name(name)) return codec;
        return base::fail(base::ErrorCode::Unsupported, std::string("FFmpeg has no encoder ") + name);
    };
    switch (format) {
    case Format::Mp4:
    case Format::Mkv: return named("aac");
    case Format::WebM: return named("libopus");
    case Format::Wav: return named("pcm_s16le");
    case Format::Flac: return named("flac");
    default: return nullptr;
    }
}

base::Result<SoundTrack> SoundTrack::add(Container& container, Format format)
{
    const AVCodec* codec = TRY_RESULT(soundEncoder(format));
    SoundTrack track;
    track.m_container = &container;
    track.m_encoder.reset(avcodec_alloc_context3(codec));
    AVCodecContext& encoder = *track.m_encoder;
    encoder.sample_fmt = sampleFormatOf(*codec);
    encoder.sample_rate = rateOf(*codec);
    encoder.time_base = {1, encoder.sample_rate};
    encoder.bit_rate = kBitRate;
    av_channel_layout_default(&encoder.ch_layout, 2);
    if (container.wantsGlobalHeader()) encoder.flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    if (const int error = avcodec_open2(&encoder, codec, nullptr); error < 0)
        return av::fail(std::string("the encoder ") + codec->name + " does not start", error);
    track.m_stream = TRY_RESULT(container.addTrack(encoder));

    // What Opus needs to start is said in the file's head, and players take it off the moments of its sound.
    // The muxer leaves it to us to add it there.
    if (format == Format::WebM) track.m_position = encoder.initial_padding;

    AVChannelLayout stereo{};
    av_channel_layout_default(&stereo, 2);
    SwrContext* converter = nullptr;
    int error = swr_alloc_set_opts2(&converter, &encoder.ch_layout, encoder.sample_fmt, encoder.sample_rate,
                                    &stereo, AV_SAMPLE_FMT_S16, flash::sound::kMixRate, 0, nullptr);
    track.m_converter.reset(converter);
    if (error >= 0) error = swr_init(converter);
    if (error < 0) return av::fail("the sound cannot be converted", error);
    track.m_waiting.reset(av_audio_fifo_alloc(encoder.sample_fmt, 2, kUsualStretch));
    return track;
}

base::Result<void> SoundTrack::take(std::span<const std::int16_t> samples)
{
    const auto count = static_cast<int>(samples.size() / 2);
    const auto* input = reinterpret_cast<const std::uint8_t*>(samples.data());
    const int most = swr_get_out_samples(m_converter.get(), count);
    if (most <= 0) return {};
    av::Owned<AVFrame> converted(av_frame_alloc());
    converted->format = m_encoder->sample_fmt;
    converted->nb_samples = most;
    av_channel_layout_copy(&converted->ch_layout, &m_encoder->ch_layout);
    if (const int error = av_frame_get_buffer(converted.get(), 0); error < 0)
        return av::fail("a stretch of sound", error);
    // Nothing to put in: what the converter holds back comes out.
    const int made = swr_convert(m_converter.get(), converted->extended_data, most,
                                 samples.empty() ? nullptr : &input, count);
    if (made < 0) return av::fail("the sound cannot be converted", made);
    const int kept =
        av_audio_fifo_write(m_waiting.get(), reinterpret_cast<void**>(converted->extended_data), made);
    if (kept < made) return av::fail("a stretch of sound", AVERROR(ENOMEM));
    return encodeWaiting(false);
}

base::Result<void> SoundTrack::encodeWaiting(bool isEnd)
{
    const int stretch = m_encoder->frame_size > 0 ? m_encoder->frame_size : kUsualStretch;
    while (true) {
        const int waiting = av_audio_fifo_size(m_waiting.get());
        if (waiting == 0 || (waiting < stretch && !isEnd)) return {};
        av::Owned<AVFrame> frame(av_frame_alloc());
        frame->format = m_encoder->sample_fmt;
        frame->sample_rate = m_encoder->sample_rate;
        frame->nb_samples = std::min(stretch, waiting);
        av_channel_layout_copy(&frame->ch_layout, &m_encoder->ch_layout);
        if (const int error = av_frame_get_buffer(frame.get(), 0); error < 0)
            return av::fail("a stretch of sound", error);
        av_audio_fifo_read(m_waiting.get(), reinterpret_cast<void**>(frame->extended_data),
                           frame->nb_samples);
        frame->pts = m_position;
        m_position += frame->nb_samples;
        CHECK_RESULT(m_container->encode(*m_encoder, frame.get(), *m_stream));
    }
}

base::Result<void> SoundTrack::finish()
{
    CHECK_RESULT(take({}));
    CHECK_RESULT(encodeWaiting(true));
    return m_container->encode(*m_encoder, nullptr, *m_stream);
}

} // namespace exporter
