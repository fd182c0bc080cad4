#include "flash/sound/SoundCache.h"

#include <algorithm>
#include <vector>

namespace flash::sound
{

namespace
{

constexpr double kLongestKeptSeconds = 30;
constexpr std::size_t kDecodeStep = 8192;

} // namespace

struct SoundCache::Decoded {
    std::unique_ptr<SampleSource> source;
    std::vector<StereoFrame> frames;
    bool complete = false;

    void decodeUpTo(std::size_t end)
    {
        while (!complete && frames.size() < end) {
            const std::size_t before = frames.size();
            frames.resize(before + kDecodeStep);
            const std::size_t got = source->read(std::span(frames).subspan(before));
            frames.resize(before + got);
            complete = got < kDecodeStep;
        }
    }
};

class SoundCache::Reader final : public SampleSource
{
public:
    explicit Reader(std::shared_ptr<Decoded> decoded) : m_decoded(std::move(decoded)) {}

    std::size_t read(std::span<StereoFrame> out) override
    {
        m_decoded->decodeUpTo(m_position + out.size());
        const auto& frames = m_decoded->frames;
        if (m_position >= frames.size()) return 0;
        const std::size_t count = std::min(out.size(), frames.size() - m_position);
        std::copy_n(frames.begin() + static_cast<std::ptrdiff_t>(m_position), count, out.begin());
        m_position += count;
        return count;
    }
    void rewind() override { m_position = 0; }
    void seek(std::uint64_t frame) override
    {
        // Kept sounds are short; a position past any of them is as good as the end.
        constexpr std::uint64_t kBeyond = std::uint64_t{1} << 32U;
        m_decoded->decodeUpTo(static_cast<std::size_t>(
            std::min<std::uint64_t>(frame, static_cast<std::uint64_t>(kLongestKeptSeconds + 1) * kMixRate)));
        m_position = static_cast<std::size_t>(std::min(frame, kBeyond));
    }

private:
    std::shared_ptr<Decoded> m_decoded;
    std::size_t m_position = 0;
};

SoundCache::~SoundCache() = default;

std::unique_ptr<SampleSource> SoundCache::open(const MoviePtr& movie, const swf::Sound& sound)
{
    const bool isLong =
        sound.sampleCount == 0 || sound.rate <= 0 || sound.sampleCount > kLongestKeptSeconds * sound.rate;
    if (isLong) return openSound(movie, sound);
    auto found = std::find_if(m_entries.begin(), m_entries.end(),
                              [&](const Entry& entry) { return entry.sound == &sound; });
    if (found == m_entries.end()) {
        auto source = openSound(movie, sound);
        if (!source) return nullptr;
        auto decoded = std::make_shared<Decoded>();
        decoded->source = std::move(source);
        m_entries.push_front({&sound, std::move(decoded)});
        trim();
    } else {
        m_entries.splice(m_entries.begin(), m_entries, found);
    }
    return std::make_unique<Reader>(m_entries.front().decoded);
}

void SoundCache::trim()
{
    std::size_t bytes = 0;
    for (auto entry = m_entries.begin(); entry != m_entries.end(); ++entry) {
        bytes += entry->decoded->frames.size() * sizeof(StereoFrame);
        if (bytes <= m_budgetBytes || entry == m_entries.begin()) continue;
        m_entries.erase(entry, m_entries.end());
        return;
    }
}

void SoundCache::clear() { m_entries.clear(); }

} // namespace flash::sound
