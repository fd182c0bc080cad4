#include "flash/sound/FlvSound.h"

#include "flash/sound/Adpcm.h"
#include "flash/sound/CodecDecoder.h"
#include "flash/sound/DecodingSource.h"
#include "flash/video/FlvFile.h"
#include "flash/video/GrowingFile.h"

#include <algorithm>

namespace flash::sound
{

namespace
{

using codec::SoundCodec;
using Packet = video::FlvFile::Sound;

constexpr std::size_t kChunkFrames = 4096;
constexpr double kFramesPerMs = kMixRate / 1000.0;
// Times are whole milliseconds and decoders hold back some frames: only what is longer is a pause.
constexpr double kPauseFrames = kMixRate / 10.0;
// What decoders need before a place to sound right from there on.
constexpr double kLeadMs = 100;

class FlvSound final : public DecodingSource
{
public:
    FlvSound(FileBytes bytes, std::vector<Packet> packets, base::Bytes config)
        : m_growth(video::growthOf(bytes)), m_bytes(std::move(bytes)), m_packets(std::move(packets)),
          m_config(config)
    {
        begin(0);
    }
    [[nodiscard]] bool isUsable() const { return !m_packets.empty() && (isPlain() || m_codec); }
    void rewind() override { begin(0); }
    void seek(std::uint64_t frame) override { begin(frame); }

private:
    [[nodiscard]] bool isPlain() const
    {
        const SoundCodec codec = m_packets.front().codec;
        return codec == SoundCodec::PcmNative || codec == SoundCodec::PcmLittleEndian ||
               codec == SoundCodec::Adpcm;
    }

    void begin(std::uint64_t frame)
    {
        m_ended = m_packets.empty();
        if (m_ended) return;
        const double lead = static_cast<double>(frame) / kFramesPerMs - kLeadMs;
        const auto after = std::ranges::upper_bound(m_packets, lead, {}, &Packet::timeMs);
        m_next = after == m_packets.begin() ? 0 : static_cast<std::size_t>(after - m_packets.begin()) - 1;
        m_produced = m_next == 0 ? 0 : static_cast<std::uint64_t>(m_packets[m_next].timeMs * kFramesPerMs);
        m_pause = 0;
        m_hasLookedAhead = false;
        m_converter.reset();
        const Packet& first = m_packets.front();
        if (!isPlain()) m_codec = CodecDecoder::open(first.codec, first.rate, first.isStereo, m_config);
        restart(frame - std::min(frame, m_produced), kNoLimit);
    }

    bool decodeSome(std::vector<StereoFrame>& out) override
    {
        if (m_ended) return false;
        const std::size_t before = out.size();
        while (m_next == m_packets.size() && takeGrowth()) {
        }
        if (m_next == m_packets.size()) {
            m_ended = true;
            if (m_codec)
                m_codec->finish(out);
            else
                m_converter.flush(out);
            return true;
        }
        if (!m_hasLookedAhead) m_pause = pauseBefore(m_packets[m_next]);
        m_hasLookedAhead = true;
        if (m_pause > 0) {
            const std::uint64_t skipped = skipSilence(m_pause);
            const std::uint64_t made = std::min<std::uint64_t>(m_pause - skipped, kChunkFrames);
            m_pause -= skipped + made;
            m_produced += skipped;
            out.resize(before + made);
        } else {
            decode(m_packets[m_next++], out);
            m_hasLookedAhead = false;
        }
        m_produced += out.size() - before;
        return true;
    }

    /// Goes on with the same decoder: nothing is heard of the seam.
    bool takeGrowth()
    {
        if (!m_growth) return false;
        FileBytes longer = m_growth->beyond(m_bytes);
        if (!longer) return false;
        auto parsed = video::FlvFile::parse(*longer);
        if (!parsed) return false;
        std::ranges::stable_sort(parsed->sound, {}, &Packet::timeMs);
        m_bytes = std::move(longer);
        m_packets = std::move(parsed->sound);
        m_config = parsed->soundConfig;
        m_next = std::min(m_next, m_packets.size());
        return true;
    }

    [[nodiscard]] std::uint64_t pauseBefore(const Packet& packet) const
    {
        const double missing = packet.timeMs * kFramesPerMs - static_cast<double>(m_produced);
        return missing < (m_next == 0 ? 1 : kPauseFrames) ? 0 : static_cast<std::uint64_t>(missing);
    }

    void decode(const Packet& packet, std::vector<StereoFrame>& out)
    {
        // One that changes in the middle of the file is damage.
        if (packet.codec != m_packets.front().codec) return;
        const int channels = packet.isStereo ? 2 : 1;
        if (m_codec) {
            m_codec->feed(packet.bytes, out);
        } else if (packet.codec == SoundCodec::Adpcm) {
            std::vector<std::int16_t> samples;
            AdpcmDecoder(packet.bytes, channels).decode(packet.bytes.size() * 4, samples);
            convertSixteenBit(samples, packet.rate, channels, m_converter, out);
        } else {
            convertPcm(packet.bytes, packet.rate, packet.isSixteenBit, channels, m_converter, out);
        }
    }

    std::shared_ptr<video::Growth> m_growth;
    FileBytes m_bytes; // keeps the packets' bytes alive
    std::vector<Packet> m_packets;
    base::Bytes m_config;
    std::size_t m_next = 0;
    std::uint64_t m_produced = 0; // frames since time 0
    std::uint64_t m_pause = 0;    // what is left of the silence before the next packet
    bool m_hasLookedAhead = false;
    bool m_ended = false;
    RateConverter m_converter;
    std::unique_ptr<CodecDecoder> m_codec;
};

} // namespace

bool isFlv(base::Bytes file)
{
    return file.size() >= 3 && file[0] == 'F' && file[1] == 'L' && file[2] == 'V';
}

std::unique_ptr<SampleSource> openFlvSound(FileBytes file)
{
    auto parsed = video::FlvFile::parse(*file);
    if (!parsed) return nullptr;
    std::ranges::stable_sort(parsed->sound, {}, &Packet::timeMs);
    auto source = std::make_unique<FlvSound>(std::move(file), std::move(parsed->sound), parsed->soundConfig);
    if (!source->isUsable()) return nullptr;
    return source;
}

} // namespace flash::sound
