#pragma once

#include "base/ByteReader.h"
#include "flash/sound/RateConverter.h"
#include "flash/sound/Samples.h"

#include <limits>
#include <vector>

namespace flash::sound
{

constexpr std::uint64_t kNoLimit = std::numeric_limits<std::uint64_t>::max();

/// Hands out what decodeSome() yields, without what is to be skipped and up to what was announced.
class DecodingSource : public SampleSource
{
public:
    std::size_t read(std::span<StereoFrame> out) override;

protected:
    /// Appends some frames; may append none and go on.
    /// @returns false at the end.
    virtual bool decodeSome(std::vector<StereoFrame>& out) = 0;
    void restart(std::uint64_t skip, std::uint64_t limit);
    void skipAhead(std::uint64_t count) { m_skip += count; }
    /// For stretches of silence, from decodeSome(): of `count` frames, how many would be skipped and need not
    /// be made.
    [[nodiscard]] std::uint64_t skipSilence(std::uint64_t count);

private:
    std::vector<StereoFrame> m_ready;
    std::size_t m_taken = 0;
    std::uint64_t m_skip = 0, m_left = kNoLimit;
};

/// The format's lowest rate, an eighth of 44100, is written down rounded.
double exactRate(int rate);
/// Appends plain samples, interleaved, at kMixRate.
void convertSixteenBit(const std::vector<std::int16_t>& samples, int rate, int channels,
                       RateConverter& converter, std::vector<StereoFrame>& out);
/// @param bytes of 16 bits, the lower first, or of 8 around 128
void convertPcm(base::Bytes bytes, int rate, bool sixteenBit, int channels, RateConverter& converter,
                std::vector<StereoFrame>& out);

} // namespace flash::sound
