#include "flash/sound/Mixer.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

namespace flash::sound
{

namespace
{

constexpr std::size_t kBlockFrames = 1024;
constexpr std::size_t kMaxVoices = 32;
constexpr float kLoudest = 32767;
// How much of what was turned down comes back with each frame: all of it in 200 ms.
constexpr float kRelease = 5.0F / kMixRate;

std::int16_t toSample(float value)
{
    return static_cast<std::int16_t>(std::lrintf(std::clamp(value, -kLoudest - 1, kLoudest)));
}

// Plain arrays and no branches, so that the compiler makes vectors of it.
void addEvenly(std::span<const StereoFrame> in, const Gains& gains, float* left, float* right)
{
    for (std::size_t i = 0; i < in.size(); ++i) {
        const auto l = static_cast<float>(in[i].left);
        const auto r = static_cast<float>(in[i].right);
        left[i] += l * gains.leftToLeft + r * gains.rightToLeft;
        right[i] += l * gains.leftToRight + r * gains.rightToRight;
    }
}

Gains sum(const Gains& a, const Gains& b)
{
    return {a.leftToLeft + b.leftToLeft, a.rightToLeft + b.rightToLeft, a.leftToRight + b.leftToRight,
            a.rightToRight + b.rightToRight};
}

Gains scaled(const Gains& gains, float factor)
{
    return {gains.leftToLeft * factor, gains.rightToLeft * factor, gains.leftToRight * factor,
            gains.rightToRight * factor};
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
    const auto playing = std::ranges::count_if(m_voices, [](const Voice& voice) { return !voice.isLeaving; });
    if (!source || static_cast<std::size_t>(playing) >= kMaxVoices) return 0;
    Voice& voice = m_voices.emplace_back();
    voice.id = ++m_lastId;
    voice.source = std::move(source);
    voice.gains = gains;
    return m_lastId;
}

void Mixer::remove(VoiceId voice)
{
    std::erase_if(m_voices, [voice](Voice& other) {
        if (other.id != voice) return false;
        other.isLeaving = true;
        return !other.hasBegun;
    });
}

void Mixer::clear()
{
    std::erase_if(m_voices, [](const Voice& voice) { return !voice.hasBegun; });
    for (Voice& voice : m_voices) voice.isLeaving = true;
}

const Mixer::Voice* Mixer::find(VoiceId voice) const
{
    const auto found = std::find_if(m_voices.begin(), m_voices.end(), [voice](const Voice& other) {
        return other.id == voice && !other.isLeaving;
    });
    return found == m_voices.end() ? nullptr : &*found;
}

void Mixer::setGains(VoiceId voice, const Gains& gains)
{
    for (Voice& other : m_voices)
        if (other.id == voice) other.gains = gains;
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

// Sets out for the gains that hold now.
void Mixer::aim(Voice& voice) const
{
    const Gains target = voice.isLeaving || m_muted ? Gains{0, 0, 0, 0} : m_master * voice.gains;
    if (!voice.hasBegun) voice.now = voice.target = target;
    voice.hasBegun = true;
    if (target == voice.target) return;
    voice.target = target;
    voice.rampLeft = kRampFrames;
    voice.step = scaled(sum(target, scaled(voice.now, -1)), 1.0F / kRampFrames);
}

void Mixer::accumulate(Voice& voice, std::span<const StereoFrame> in, float* left, float* right) const
{
    std::size_t i = 0;
    for (; i < in.size() && voice.rampLeft > 0; ++i) {
        voice.now = --voice.rampLeft == 0 ? voice.target : sum(voice.now, voice.step);
        addEvenly(in.subspan(i, 1), voice.now, left + i, right + i);
    }
    if (i < in.size()) addEvenly(in.subspan(i), voice.now, left + i, right + i);
}

// At once quieter than the output's end, slowly as loud as before: the shape of the waves stays.
StereoFrame Mixer::limited(float left, float right)
{
    const float peak = std::max(std::abs(left), std::abs(right));
    m_limit = std::min(m_limit + kRelease, 1.0F);
    if (peak * m_limit > kLoudest) m_limit = kLoudest / peak;
    return {toSample(left * m_limit), toSample(right * m_limit)};
}

void Mixer::mixBlock(std::span<StereoFrame> out)
{
    if (m_voices.empty()) {
        for (StereoFrame& frame : out) frame = limited(0, 0);
        rememberSilence(out.size());
        return;
    }
    std::array<float, kBlockFrames> left{}, right{};
    std::array<StereoFrame, kBlockFrames> frames;
    for (Voice& voice : m_voices) {
        aim(voice);
        const std::size_t wanted =
            voice.isLeaving ? std::min<std::size_t>(voice.rampLeft, out.size()) : out.size();
        const std::size_t got = voice.source->read(std::span(frames).first(wanted));
        voice.played += got;
        notePeaks(voice, std::span(frames).first(got));
        accumulate(voice, std::span(frames).first(got), left.data(), right.data());
        if (voice.isLeaving && (got < wanted || voice.rampLeft == 0))
            voice.source.reset();
        else if (got < wanted)
            m_finished.push_back({voice.id, std::move(voice.source)});
    }
    std::erase_if(m_voices, [](const Voice& voice) { return voice.source == nullptr; });
    for (std::size_t i = 0; i < out.size(); ++i) out[i] = limited(left[i], right[i]);
    remember(out);
}

void Mixer::notePeaks(Voice& voice, std::span<const StereoFrame> frames)
{
    voice.peakLeft = voice.peakRight = 0;
    for (const StereoFrame frame : frames) {
        voice.peakLeft = std::max(voice.peakLeft, std::abs(int{frame.left}));
        voice.peakRight = std::max(voice.peakRight, std::abs(int{frame.right}));
    }
}

std::pair<float, float> Mixer::peaks(VoiceId voice) const
{
    const Voice* found = find(voice);
    if (found == nullptr) return {};
    constexpr float kFull = 32768;
    const float left = static_cast<float>(found->peakLeft) / kFull,
                right = static_cast<float>(found->peakRight) / kFull;
    const Gains& gains = found->gains;
    const auto heard = [&](float fromLeft, float fromRight) {
        return std::min(std::abs(left * fromLeft) + std::abs(right * fromRight), 1.0F);
    };
    return {heard(gains.leftToLeft, gains.rightToLeft), heard(gains.leftToRight, gains.rightToRight)};
}

void Mixer::remember(std::span<const StereoFrame> frames)
{
    m_recent.resize(kRecentFrames);
    m_silentFrames = 0;
    for (const StereoFrame& frame : frames) {
        m_recent[m_recentEnd] = frame;
        m_recentEnd = (m_recentEnd + 1) % kRecentFrames;
    }
}

/// Once there is nothing but silence, more of it changes nothing.
void Mixer::rememberSilence(std::uint64_t frames)
{
    if (m_recent.empty()) return;
    for (; frames > 0 && m_silentFrames < kRecentFrames; --frames, ++m_silentFrames) {
        m_recent[m_recentEnd] = {};
        m_recentEnd = (m_recentEnd + 1) % kRecentFrames;
    }
}

void Mixer::recent(std::span<float> left, std::span<float> right) const
{
    constexpr float kFull = 32768;
    const std::size_t count = std::min({left.size(), right.size(), kRecentFrames});
    for (std::size_t i = 0; i < count; ++i) {
        const StereoFrame frame = m_recent.empty()
                                      ? StereoFrame{}
                                      : m_recent[(m_recentEnd + kRecentFrames - count + i) % kRecentFrames];
        left[i] = static_cast<float>(frame.left) / kFull;
        right[i] = static_cast<float>(frame.right) / kFull;
    }
}

void Mixer::skip(std::uint64_t frames)
{
    while (frames > 0 && !m_voices.empty()) {
        std::array<StereoFrame, kBlockFrames> unheard;
        const std::size_t count = std::min<std::uint64_t>(frames, unheard.size());
        mixBlock(std::span(unheard).first(count));
        frames -= count;
    }
    rememberSilence(frames);
}

} // namespace flash::sound
