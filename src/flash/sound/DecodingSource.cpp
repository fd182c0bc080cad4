#include "flash/sound/DecodingSource.h"

extern "C" {
#include <libavutil/samplefmt.h>
}

#include <algorithm>
#include <cstring>

namespace flash::sound
{

std::size_t DecodingSource::read(std::span<StereoFrame> out)
{
    std::size_t done = 0;
    while (done < out.size() && m_left > 0) {
        if (m_taken == m_ready.size()) {
            m_ready.clear();
            m_taken = 0;
            if (!decodeSome(m_ready) && m_ready.empty()) break;
        }
        std::uint64_t count = m_ready.size() - m_taken;
        if (m_skip > 0) {
            count = std::min(count, m_skip);
            m_skip -= count;
        } else {
            count = std::min({count, static_cast<std::uint64_t>(out.size() - done), m_left});
            std::copy_n(m_ready.begin() + static_cast<std::ptrdiff_t>(m_taken), count,
                        out.begin() + static_cast<std::ptrdiff_t>(done));
            done += count;
            m_left -= count;
        }
        m_taken += count;
    }
    return done;
}

void DecodingSource::restart(std::uint64_t skip, std::uint64_t limit)
{
    m_ready.clear();
    m_taken = 0;
    m_skip = skip;
    m_left = limit;
}

std::uint64_t DecodingSource::skipSilence(std::uint64_t count)
{
    const std::uint64_t skipped = std::min(count, m_skip);
    m_skip -= skipped;
    return skipped;
}

double exactRate(int rate) { return rate == 5512 ? 5512.5 : rate; }

void convertSixteenBit(const std::vector<std::int16_t>& samples, int rate, int channels,
                       RateConverter& converter, std::vector<StereoFrame>& out)
{
    const auto* plane = reinterpret_cast<const std::uint8_t*>(samples.data());
    converter.convert({AV_SAMPLE_FMT_S16, rate, channels}, &plane,
                      static_cast<int>(samples.size()) / channels, out);
}

void convertPcm(base::Bytes bytes, int rate, bool sixteenBit, int channels, RateConverter& converter,
                std::vector<StereoFrame>& out)
{
    const std::size_t momentBytes = static_cast<std::size_t>(sixteenBit ? 2 : 1) * channels;
    // A copy for the sake of alignment: the bytes stand anywhere in the movie.
    std::vector<std::int16_t> samples(bytes.size() / momentBytes * channels);
    if (sixteenBit) {
        if (!samples.empty()) std::memcpy(samples.data(), bytes.data(), samples.size() * 2);
    } else {
        for (std::size_t i = 0; i < samples.size(); ++i) {
            samples[i] = static_cast<std::int16_t>((bytes[i] - 128) * 256);
        }
    }
    convertSixteenBit(samples, rate, channels, converter, out);
}

} // namespace flash::sound
