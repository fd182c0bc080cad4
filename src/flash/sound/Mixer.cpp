#include "flash/sound/Mixer.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace flash::sound
{

namespace
{

constexpr std::size_t kBlockFrames = 1024;
// Scripts may ask for any number of sounds at once; the genuine player hears eight, hardly anyone tells more
// than these apart.
constexpr std::size_t kMaxVoices = 64;

std::int16_t clampSample(float value)
{
    return static_cast<std::int16_t>(std::lrintf(std::clamp(value, -32768.0F, 32767.0F)));
}

// Plain arrays and no branches, so that the compiler makes vectors of it.
void accumulate(std::span<const StereoFrame> in, const Gains& gains, float* left, float* right)
{
    for (std::size_t i = 0; i < in.size(); ++i) {
        const auto l = static_cast<float>(in[i].left);
        const auto r = static_cast<float>(in[i].right);
        left[i] += l * gains.leftToLeft + r * gains.rightToLeft;
        right[i] += l * gains.leftToRight + r * gains.rightToRight;
    }
}

} // namespace

Gains operator*(const Gains& outer, const Gains& inner)
{
    return {outer.leftToLeft * inner.leftToLeft + outer.rightToLeft * inner.leftToRight,
            outer.leftToLeft * inner.rightToLeft + outer.rightToLeft * inner.rightToRight,
            outer.leftToRight * inner.leftToLeft + outer.rightToRight * inner.leftToRight,
            outer.leftToRight * inner.rightToLeft + outer.rightToRight * inner.rightToRight};
}

VoiceId Mixer::add(std::unique_ptr<SampleSource> source, const Gains& gains)
{
    if (!source || m_voices.size() >= kMaxVoices) return 0;
    m_voices.push_back({++m_lastId, std::move(source), gains});
    return m_lastId;
}

void Mixer::remove(VoiceId voice)
{
    std::erase_if(m_voices, [voice](const Voice& other) { return other.id == voice; });
}

const Mixer::Voice* Mixer::find(VoiceId voice) const
{
    const auto found = std::find_if(m_voices.begin(), m_voices.end(),
                                    [voice](const Voice& other) { return other.id == voice; });
    return found == m_voices.end() ? nullptr : &*found;
}

void Mixer::setGains(VoiceId voice, const Gains& gains)
{
    for (Voice& other : m_voices) {
        if (other.id == voice) other.gains = gains;
    }
}

std::uint64_t Mixer::played(VoiceId voice) const
{
    const Voice* found = find(voice);
    return found == nullptr ? 0 : found->played;
}

void Mixer::mix(std::span<StereoFrame> out)
{
    while (!out.empty()) {
        const std::size_t count = std::min(out.size(), kBlockFrames);
        mixBlock(out.first(count));
        out = out.subspan(count);
    }
}

void Mixer::mixBlock(std::span<StereoFrame> out)
{
    if (m_voices.empty()) {
        std::fill(out.begin(), out.end(), StereoFrame{});
        return;
    }
    std::array<float, kBlockFrames> left{}, right{};
    std::array<StereoFrame, kBlockFrames> frames;
    for (Voice& voice : m_voices) {
        const std::size_t got = voice.source->read(std::span(frames).first(out.size()));
        voice.played += got;
        accumulate(std::span(frames).first(got), m_master * voice.gains, left.data(), right.data());
        if (got < out.size()) {
            m_finished.push_back({voice.id, std::move(voice.source)});
        }
    }
    std::erase_if(m_voices, [](const Voice& voice) { return voice.source == nullptr; });
    for (std::size_t i = 0; i < out.size(); ++i) {
        out[i] = m_muted ? StereoFrame{} : StereoFrame{clampSample(left[i]), clampSample(right[i])};
    }
}

void Mixer::skip(std::uint64_t frames)
{
    std::array<StereoFrame, kBlockFrames> unheard;
    while (frames > 0 && !m_voices.empty()) {
        const std::size_t count = std::min<std::uint64_t>(frames, unheard.size());
        mixBlock(std::span(unheard).first(count));
        frames -= count;
    }
}

} // namespace flash::sound
