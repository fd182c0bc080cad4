#include "flash/sound/CodecDecoder.h"

#include "flash/codec/Ffmpeg.h"

#include <algorithm>

namespace flash::sound
{

namespace
{

constexpr std::size_t kNellymoserBlockBytes = 64;

using codec::SoundCodec;

AVCodecID codecOf(SoundCodec format)
{
    switch (format) {
    case SoundCodec::Mp3:
    case SoundCodec::Mp3At8k: return AV_CODEC_ID_MP3;
    case SoundCodec::Nellymoser16k:
    case SoundCodec::Nellymoser8k:
    case SoundCodec::Nellymoser: return AV_CODEC_ID_NELLYMOSER;
    case SoundCodec::Speex: return AV_CODEC_ID_SPEEX;
    case SoundCodec::ALaw: return AV_CODEC_ID_PCM_ALAW;
    case SoundCodec::MuLaw: return AV_CODEC_ID_PCM_MULAW;
    case SoundCodec::Aac: return AV_CODEC_ID_AAC;
    case SoundCodec::PcmNative:
    case SoundCodec::PcmLittleEndian:
    case SoundCodec::Adpcm: return AV_CODEC_ID_NONE;
    }
    return AV_CODEC_ID_NONE;
}

int codecRate(SoundCodec format, int statedRate)
{
    switch (format) {
    case SoundCodec::Nellymoser16k:
    case SoundCodec::Speex: return 16000;
    case SoundCodec::Nellymoser8k:
    case SoundCodec::ALaw:
    case SoundCodec::MuLaw: return 8000;
    default: return statedRate;
    }
}

} // namespace

struct CodecDecoder::Parts {
    explicit Parts(const codec::Ffmpeg& functions) : ffmpeg(functions) {}
    ~Parts()
    {
        ffmpeg.av_parser_close(parser);
        ffmpeg.avcodec_free_context(&context);
        ffmpeg.av_packet_free(&packet);
        ffmpeg.av_frame_free(&frame);
    }
    const codec::Ffmpeg& ffmpeg;
    AVCodecContext* context = nullptr;
    AVCodecParserContext* parser = nullptr; // MP3 only
    AVPacket* packet = nullptr;
    AVFrame* frame = nullptr;
    std::size_t blockBytes = 0;           // of a packet, for formats with packets of one size; else 0
    std::vector<std::uint8_t> unfinished; // the start of the next such packet
    RateConverter converter;
};

CodecDecoder::CodecDecoder(std::unique_ptr<Parts> parts) : m_parts(std::move(parts)) {}
CodecDecoder::~CodecDecoder() = default;

std::unique_ptr<CodecDecoder> CodecDecoder::open(SoundCodec format, int rate, bool stereo, base::Bytes config)
{
    const AVCodecID id = codecOf(format);
    if (id == AV_CODEC_ID_NONE) return nullptr;
    const codec::Ffmpeg* ffmpeg = codec::Ffmpeg::get();
    const AVCodec* codec = ffmpeg == nullptr ? nullptr : ffmpeg->avcodec_find_decoder(id);
    if (codec == nullptr) return nullptr;
    auto parts = std::make_unique<Parts>(*ffmpeg);
    parts->context = ffmpeg->avcodec_alloc_context3(codec);
    parts->packet = ffmpeg->av_packet_alloc();
    parts->frame = ffmpeg->av_frame_alloc();
    if (parts->context == nullptr || parts->packet == nullptr || parts->frame == nullptr) return nullptr;
    parts->context->thread_count = 1;
    parts->context->sample_rate = codecRate(format, rate);
    // Nellymoser and Speex are mono by definition, whatever the movie says.
    const bool mono = id == AV_CODEC_ID_NELLYMOSER || id == AV_CODEC_ID_SPEEX || !stereo;
    ffmpeg->av_channel_layout_default(&parts->context->ch_layout, mono ? 1 : 2);
    if (!config.empty()) {
        // Freed with the context.
        auto* extra =
            static_cast<std::uint8_t*>(ffmpeg->av_mallocz(config.size() + AV_INPUT_BUFFER_PADDING_SIZE));
        if (extra == nullptr) return nullptr;
        std::ranges::copy(config, extra);
        parts->context->extradata = extra;
        parts->context->extradata_size = static_cast<int>(config.size());
    }
    if (ffmpeg->avcodec_open2(parts->context, codec, nullptr) < 0) return nullptr;
    if (id == AV_CODEC_ID_MP3) {
        parts->parser = ffmpeg->av_parser_init(id);
        if (parts->parser == nullptr) return nullptr;
    }
    if (id == AV_CODEC_ID_NELLYMOSER) parts->blockBytes = kNellymoserBlockBytes;
    return std::unique_ptr<CodecDecoder>(new CodecDecoder(std::move(parts)));
}

void CodecDecoder::decodePacket(base::Bytes bytes, std::vector<StereoFrame>& out)
{
    // The copy gives the padding that libavcodec's bit readers need behind a packet.
    AVPacket* packet = m_parts->packet;
    if (bytes.empty() || m_parts->ffmpeg.av_new_packet(packet, static_cast<int>(bytes.size())) < 0) return;
    std::copy(bytes.begin(), bytes.end(), packet->data);
    const int sent = m_parts->ffmpeg.avcodec_send_packet(m_parts->context, packet);
    m_parts->ffmpeg.av_packet_unref(packet);
    if (sent >= 0) takeFrames(out);
}

void CodecDecoder::takeFrames(std::vector<StereoFrame>& out)
{
    AVFrame* frame = m_parts->frame;
    while (m_parts->ffmpeg.avcodec_receive_frame(m_parts->context, frame) >= 0) {
        const SampleLayout layout{frame->format, frame->sample_rate, frame->ch_layout.nb_channels};
        m_parts->converter.convert(layout, frame->extended_data, frame->nb_samples, out);
        m_parts->ffmpeg.av_frame_unref(frame);
    }
}

void CodecDecoder::feed(base::Bytes bytes, std::vector<StereoFrame>& out)
{
    if (m_parts->parser != nullptr) {
        std::vector<std::uint8_t> padded(bytes.begin(), bytes.end());
        padded.resize(bytes.size() + AV_INPUT_BUFFER_PADDING_SIZE);
        std::size_t position = 0;
        while (position < bytes.size()) {
            std::uint8_t* packet = nullptr;
            int packetBytes = 0;
            const int used = m_parts->ffmpeg.av_parser_parse2(
                m_parts->parser, m_parts->context, &packet, &packetBytes, padded.data() + position,
                static_cast<int>(bytes.size() - position), AV_NOPTS_VALUE, AV_NOPTS_VALUE, 0);
            if (used < 0) return;
            if (packetBytes > 0) decodePacket({packet, static_cast<std::size_t>(packetBytes)}, out);
            if (used == 0 && packetBytes == 0) return;
            position += static_cast<std::size_t>(used);
        }
        return;
    }
    if (m_parts->blockBytes == 0) {
        decodePacket(bytes, out);
        return;
    }
    auto& pending = m_parts->unfinished;
    pending.insert(pending.end(), bytes.begin(), bytes.end());
    std::size_t position = 0;
    for (; pending.size() - position >= m_parts->blockBytes; position += m_parts->blockBytes) {
        decodePacket({pending.data() + position, m_parts->blockBytes}, out);
    }
    pending.erase(pending.begin(), pending.begin() + static_cast<std::ptrdiff_t>(position));
}

void CodecDecoder::finish(std::vector<StereoFrame>& out)
{
    if (m_parts->parser != nullptr) {
        std::uint8_t* packet = nullptr;
        int packetBytes = 0;
        m_parts->ffmpeg.av_parser_parse2(m_parts->parser, m_parts->context, &packet, &packetBytes, nullptr, 0,
                                         AV_NOPTS_VALUE, AV_NOPTS_VALUE, 0);
        if (packetBytes > 0) decodePacket({packet, static_cast<std::size_t>(packetBytes)}, out);
    }
    if (m_parts->ffmpeg.avcodec_send_packet(m_parts->context, nullptr) >= 0) takeFrames(out);
    m_parts->converter.flush(out);
}

} // namespace flash::sound
