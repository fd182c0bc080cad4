#include "flash/sound/Sources.h"

#include "flash/sound/Adpcm.h"
#include "flash/sound/CodecDecoder.h"
#include "flash/sound/DecodingSource.h"
#include "flash/sound/FlvSound.h"
#include "flash/sound/Mp3Header.h"

#include <algorithm>
#include <optional>

namespace flash::sound
{

namespace
{

constexpr std::size_t kChunkBytes = 4096;
constexpr std::size_t kChunkSamples = 4096;

// The numbers are the same.
codec::SoundCodec codecOf(swf::SoundFormat format) { return static_cast<codec::SoundCodec>(format); }

bool isPcm(swf::SoundFormat format)
{
    return format == swf::SoundFormat::PcmNative || format == swf::SoundFormat::PcmLittleEndian;
}

class SoundSource final : public DecodingSource
{
public:
    SoundSource(MoviePtr movie, const swf::Sound& sound) : m_movie(std::move(movie)), m_sound(sound)
    {
        begin();
    }
    [[nodiscard]] bool isUsable() const { return isPcm(m_sound.format) || m_adpcm || m_codec; }
    void rewind() override { begin(); }

private:
    void begin()
    {
        m_rest = m_sound.data;
        m_ended = false;
        m_converter.reset();
        if (m_sound.format == swf::SoundFormat::Adpcm)
            m_adpcm.emplace(m_rest, channels());
        else if (!isPcm(m_sound.format)) {
            m_codec = CodecDecoder::open(codecOf(m_sound.format), m_sound.rate, m_sound.stereo);
        }
        const double perSample = kMixRate / exactRate(m_sound.rate);
        const double latency = std::max<int>(m_sound.latencySamples, 0) * perSample;
        const double length = m_sound.sampleCount * perSample;
        // Some tools leave the count at zero.
        restart(static_cast<std::uint64_t>(latency),
                m_sound.sampleCount == 0 ? kNoLimit : static_cast<std::uint64_t>(length + 0.5));
    }

    bool decodeSome(std::vector<StereoFrame>& out) override
    {
        if (m_ended) return false;
        if (m_adpcm) {
            std::vector<std::int16_t> samples;
            m_ended = m_adpcm->decode(kChunkSamples, samples) == 0;
            convertSixteenBit(samples, m_sound.rate, channels(), m_converter, out);
            if (m_ended) m_converter.flush(out);
            return true;
        }
        const base::Bytes chunk = m_rest.first(std::min(kChunkBytes, m_rest.size()));
        m_rest = m_rest.subspan(chunk.size());
        m_ended = chunk.empty();
        if (m_codec) {
            if (m_ended)
                m_codec->finish(out);
            else
                m_codec->feed(chunk, out);
        } else if (m_ended) {
            m_converter.flush(out);
        } else {
            convertPcm(chunk, m_sound.rate, m_sound.sixteenBit, channels(), m_converter, out);
        }
        return true;
    }
    [[nodiscard]] int channels() const { return m_sound.stereo ? 2 : 1; }

    MoviePtr m_movie; // keeps m_sound and its bytes alive
    const swf::Sound& m_sound;
    base::Bytes m_rest;
    bool m_ended = false;
    RateConverter m_converter;
    std::optional<AdpcmDecoder> m_adpcm;
    std::unique_ptr<CodecDecoder> m_codec;
};

class Mp3FileSource final : public DecodingSource
{
public:
    explicit Mp3FileSource(FileBytes file) : m_file(std::move(file)) { begin(); }
    [[nodiscard]] bool isUsable() const { return m_codec != nullptr; }
    void rewind() override { begin(); }

private:
    void begin()
    {
        m_rest = mp3Music(*m_file);
        m_codec = CodecDecoder::open(codec::SoundCodec::Mp3, kMixRate, true);
        m_ended = m_codec == nullptr;
        restart(0, kNoLimit);
    }
    bool decodeSome(std::vector<StereoFrame>& out) override
    {
        if (m_ended) return false;
        const base::Bytes chunk = m_rest.first(std::min(kChunkBytes, m_rest.size()));
        m_rest = m_rest.subspan(chunk.size());
        m_ended = chunk.empty();
        if (m_ended)
            m_codec->finish(out);
        else
            m_codec->feed(chunk, out);
        return true;
    }

    FileBytes m_file;
    base::Bytes m_rest;
    bool m_ended = false;
    std::unique_ptr<CodecDecoder> m_codec;
};

class StreamSource final : public DecodingSource
{
public:
    StreamSource(MoviePtr movie, const swf::Timeline& timeline, std::size_t firstFrame, double frameRate)
        : m_movie(std::move(movie)), m_timeline(timeline), m_head(*timeline.streamHead),
          m_firstFrame(firstFrame), m_perFrame(streamFramesPerTimelineFrame(m_head, frameRate))
    {
        begin();
    }
    [[nodiscard]] bool isUsable() const
    {
        return isPcm(m_head.format) || m_head.format == swf::SoundFormat::Adpcm || m_codec;
    }
    void rewind() override { begin(); }

private:
    void begin()
    {
        m_nextFrame = m_firstFrame;
        m_produced = 0;
        m_decoded = 0;
        m_pause = 0;
        m_block.reset();
        m_isFirstBlock = true;
        m_ended = false;
        m_converter.reset();
        m_codec = CodecDecoder::open(codecOf(m_head.format), m_head.rate, m_head.stereo);
        restart(0, kNoLimit);
    }

    bool decodeSome(std::vector<StereoFrame>& out) override
    {
        if (m_ended) return false;
        if (!m_block) {
            m_block = nextBlock();
            if (!m_block) {
                m_ended = true;
                if (m_codec)
                    m_codec->finish(out);
                else
                    m_converter.flush(out);
                return true;
            }
            m_pause = pauseBeforeBlock();
        }
        const std::size_t before = out.size();
        if (m_pause > 0) {
            const std::uint64_t count = std::min<std::uint64_t>(m_pause, kChunkSamples);
            out.resize(before + count);
            m_pause -= count;
            m_decoded += static_cast<double>(count);
        } else {
            decodeBlock(*m_block, out);
            m_block.reset();
            m_isFirstBlock = false;
        }
        m_produced += out.size() - before;
        return true;
    }

    std::optional<base::Bytes> nextBlock()
    {
        while (m_nextFrame < m_timeline.frames.size()) {
            const swf::Frame& frame = m_timeline.frames[m_nextFrame++];
            for (const swf::ControlTag& tag : frame.tags) {
                const auto* block = std::get_if<swf::SoundStreamBlock>(&tag);
                if (block != nullptr && !block->data.empty()) return block->data;
            }
        }
        return {};
    }

    // Blocks of MP3 run ahead of and behind their frames by some packets; only what is longer is a pause.
    [[nodiscard]] std::uint64_t pauseBeforeBlock() const
    {
        constexpr double kPauseFrames = kMixRate / 4.0;
        const double due = static_cast<double>(m_nextFrame - 1 - m_firstFrame) * m_perFrame;
        const double missing = due - static_cast<double>(m_produced);
        return m_isFirstBlock || missing < kPauseFrames ? 0 : static_cast<std::uint64_t>(missing);
    }

    void decodeBlock(base::Bytes block, std::vector<StereoFrame>& out)
    {
        const int channels = m_head.stereo ? 2 : 1;
        if (isPcm(m_head.format)) {
            convertPcm(block, m_head.rate, m_head.sixteenBit, channels, m_converter, out);
        } else if (m_head.format == swf::SoundFormat::Adpcm) {
            std::vector<std::int16_t> samples;
            AdpcmDecoder decoder(block, channels);
            const std::size_t moments = decoder.decode(block.size() * 4, samples);
            const std::size_t extra = std::min({decoder.paddingMoments(), momentsTooMany(moments), moments});
            samples.resize(samples.size() - extra * static_cast<std::size_t>(channels));
            m_decoded += static_cast<double>(moments - extra) * kMixRate / exactRate(m_head.rate);
            convertSixteenBit(samples, m_head.rate, channels, m_converter, out);
        } else if (m_codec) {
            if (m_head.format == swf::SoundFormat::Mp3) block = startOfMp3Block(block);
            m_codec->feed(block, out);
        }
    }

    // What fills up a block's last byte sounds like moments of it, which would add up to a drift.
    [[nodiscard]] std::size_t momentsTooMany(std::size_t decoded) const
    {
        const double perMoment = kMixRate / exactRate(m_head.rate);
        const double due = static_cast<double>(m_nextFrame - m_firstFrame) * m_perFrame;
        const double most = m_decoded + static_cast<double>(decoded) * perMoment - due;
        return most < perMoment ? 0 : static_cast<std::size_t>(most / perMoment);
    }

    // An MP3 block begins with its sample count and with how far into it the frame's moment lies.
    base::Bytes startOfMp3Block(base::Bytes block)
    {
        base::ByteReader reader(block);
        const auto count = reader.u16();
        const auto seek = reader.i16();
        if (!count || !seek) return {};
        if (m_isFirstBlock && *seek > 0) {
            skipAhead(static_cast<std::uint64_t>(*seek * kMixRate / exactRate(m_head.rate)));
        }
        return reader.rest();
    }

    MoviePtr m_movie; // keeps the timeline and its blocks alive
    const swf::Timeline& m_timeline;
    const swf::SoundStreamHead m_head;
    const std::size_t m_firstFrame;
    const double m_perFrame;
    std::size_t m_nextFrame = 0;
    std::uint64_t m_produced = 0; // frames at kMixRate, for gaps
    double m_decoded = 0;         // of ADPCM, as m_produced, with what the converter still holds back
    std::uint64_t m_pause = 0;    // silence that is left before m_block
    std::optional<base::Bytes> m_block;
    bool m_isFirstBlock = true, m_ended = false;
    RateConverter m_converter;
    std::unique_ptr<CodecDecoder> m_codec;
};

template <class Source, class... Arguments>
std::unique_ptr<SampleSource> usableOrNull(Arguments&&... arguments)
{
    auto source = std::make_unique<Source>(std::forward<Arguments>(arguments)...);
    if (!source->isUsable()) return nullptr;
    return source;
}

} // namespace

std::unique_ptr<SampleSource> openSound(MoviePtr movie, const swf::Sound& sound)
{
    return usableOrNull<SoundSource>(std::move(movie), sound);
}

std::unique_ptr<SampleSource> openSoundFile(FileBytes file)
{
    if (!file) return nullptr;
    if (isFlv(*file)) return openFlvSound(std::move(file));
    return usableOrNull<Mp3FileSource>(std::move(file));
}

std::unique_ptr<SampleSource> openStream(MoviePtr movie, const swf::Timeline& timeline,
                                         std::size_t firstFrame, double frameRate)
{
    if (!timeline.streamHead) return nullptr;
    return usableOrNull<StreamSource>(std::move(movie), timeline, firstFrame, frameRate);
}

double streamFramesPerTimelineFrame(const swf::SoundStreamHead& head, double frameRate)
{
    if (frameRate > 0) return kMixRate / frameRate;
    return head.samplesPerBlock * kMixRate / std::max(exactRate(head.rate), 1.0);
}

double mp3DurationMs(base::Bytes file)
{
    base::Bytes rest = mp3Music(file);
    double ms = 0;
    while (!rest.empty()) {
        const auto header = readMp3Header(rest);
        if (header) ms += 1000.0 * header->samples / header->rate;
        rest = rest.subspan(std::min(header ? header->bytes : 1, rest.size()));
    }
    return ms;
}

} // namespace flash::sound
