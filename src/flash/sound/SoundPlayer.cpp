#include "flash/sound/SoundPlayer.h"

#include <algorithm>
#include <cmath>

namespace flash::sound
{

namespace
{

constexpr double kFramesPerMs = kMixRate / 1000.0;
// A stream that is this far from its timeline starts anew; less is left to the clock.
constexpr double kMaxStreamLag = kMixRate / 2.0;
// Ended sounds whose last position a script can still ask for.
constexpr std::size_t kRememberedSounds = 256;

Gains toGains(const stage::SoundTransform& transform)
{
    const double unit = transform.volume / 10000;
    return {static_cast<float>(transform.leftToLeft * unit), static_cast<float>(transform.rightToLeft * unit),
            static_cast<float>(transform.leftToRight * unit),
            static_cast<float>(transform.rightToRight * unit)};
}

} // namespace

void SoundPlayer::advance(double ms)
{
    m_unplayedFrames += std::max(ms, 0.0) * kFramesPerMs;
    const double whole = std::floor(m_unplayedFrames);
    m_unplayedFrames -= whole;
    m_mixer.skip(static_cast<std::uint64_t>(whole));
}

void SoundPlayer::setMasterVolume(double volume, double balance)
{
    m_masterVolume = volume;
    m_masterBalance = balance;
    applyMaster();
}

void SoundPlayer::applyMaster()
{
    const auto left = static_cast<float>(m_masterVolume * std::min(1.0, 1.0 - m_masterBalance));
    const auto right = static_cast<float>(m_masterVolume * std::min(1.0, 1.0 + m_masterBalance));
    m_mixer.setMaster(Gains{left, 0, 0, right} * toGains(transform(nullptr)));
}

void SoundPlayer::reset()
{
    stopAll();
    m_transforms.clear();
    m_lastPositions.clear();
    m_finished.clear();
    m_cache.clear();
    m_unplayedFrames = 0;
    applyMaster();
}

std::vector<SoundPlayer::Owner> SoundPlayer::ownersOf(Owner owner) const
{
    std::vector<Owner> owners;
    while (owner != nullptr) {
        owners.push_back(owner);
        owner = m_parentOf ? m_parentOf(owner) : nullptr;
    }
    return owners;
}

Gains SoundPlayer::gainsOf(const Playing& playing) const
{
    Gains gains = toGains(playing.transform);
    for (const Owner owner : playing.owners) {
        if (const auto found = m_transforms.find(owner); found != m_transforms.end()) {
            gains = toGains(found->second) * gains;
        }
    }
    return gains;
}

VoiceId SoundPlayer::start(Playing playing, std::unique_ptr<SampleSource> source)
{
    const VoiceId voice = m_mixer.add(std::move(source), gainsOf(playing));
    if (voice != 0) m_playing.emplace(voice, std::move(playing));
    return voice;
}

VoiceId SoundPlayer::startSound(Playing playing, std::unique_ptr<SampleSource> sound,
                                const swf::SoundInfo& info)
{
    if (!sound) return 0;
    auto event = std::make_unique<EventSource>(std::move(sound), info);
    playing.event = event.get();
    return start(std::move(playing), std::move(event));
}

void SoundPlayer::stopIf(const std::function<bool(const Playing&)>& which)
{
    collectFinished();
    std::erase_if(m_playing, [&](const auto& entry) {
        if (!which(entry.second)) return false;
        m_mixer.remove(entry.first);
        return true;
    });
}

void SoundPlayer::collectFinished()
{
    for (const auto& [voice, source] : m_mixer.takeFinished()) {
        const auto found = m_playing.find(voice);
        if (found == m_playing.end()) continue;
        if (found->second.kind == Kind::Script) {
            m_finished.push_back(voice);
            if (m_lastPositions.size() >= kRememberedSounds) m_lastPositions.erase(m_lastPositions.begin());
            m_lastPositions[voice] = static_cast<double>(found->second.event->position()) / kFramesPerMs;
        }
        m_playing.erase(found);
    }
}

bool SoundPlayer::isPlayingSymbol(const MoviePtr& movie, std::uint16_t soundId) const
{
    return std::any_of(m_playing.begin(), m_playing.end(), [&](const auto& entry) {
        return entry.second.movie == movie.get() && entry.second.soundId == soundId &&
               entry.second.kind != Kind::Stream && m_mixer.isPlaying(entry.first);
    });
}

void SoundPlayer::startEvent(const MoviePtr& movie, std::uint16_t soundId, const swf::Sound& sound,
                             const swf::SoundInfo& info)
{
    if (info.stop) {
        stopIf([&](const Playing& playing) {
            return playing.kind != Kind::Stream && playing.movie == movie.get() && playing.soundId == soundId;
        });
        return;
    }
    if (info.noMultiple && isPlayingSymbol(movie, soundId)) return;
    Playing playing;
    playing.movie = movie.get();
    playing.soundId = soundId;
    startSound(std::move(playing), m_cache.open(movie, sound), info);
}

void SoundPlayer::streamFrame(Owner owner, const MoviePtr& movie, const swf::Timeline& timeline,
                              std::size_t frame)
{
    if (!timeline.streamHead) return;
    collectFinished();
    for (auto& [voice, playing] : m_playing) {
        if (playing.kind != Kind::Stream || playing.owners.empty() || playing.owners.front() != owner)
            continue;
        if (playing.timeline != &timeline || frame <= playing.lastFrame) break;
        const double due = static_cast<double>(frame - playing.firstFrame) *
                           streamFramesPerTimelineFrame(*timeline.streamHead, m_frameRate);
        if (std::abs(due - static_cast<double>(m_mixer.played(voice))) > kMaxStreamLag) break;
        playing.lastFrame = frame;
        return;
    }
    stopStream(owner);
    Playing playing;
    playing.kind = Kind::Stream;
    playing.owners = ownersOf(owner);
    playing.movie = movie.get();
    playing.timeline = &timeline;
    playing.firstFrame = playing.lastFrame = frame;
    start(std::move(playing), openStream(movie, timeline, frame, m_frameRate));
}

void SoundPlayer::stopStream(Owner owner)
{
    stopIf([owner](const Playing& playing) {
        return playing.kind == Kind::Stream && !playing.owners.empty() && playing.owners.front() == owner;
    });
}

void SoundPlayer::stopAll()
{
    collectFinished();
    m_mixer.clear();
    m_playing.clear();
}

stage::SoundId SoundPlayer::playSound(Owner owner, const MoviePtr& movie, std::uint16_t soundId,
                                      const swf::Sound& sound, const swf::SoundInfo& info)
{
    Playing playing;
    playing.kind = Kind::Script;
    playing.owners = ownersOf(owner);
    playing.movie = movie.get();
    playing.soundId = soundId;
    return startSound(std::move(playing), m_cache.open(movie, sound), info);
}

stage::SoundId SoundPlayer::playFile(Owner owner, const FileBytes& file, const swf::SoundInfo& info)
{
    Playing playing;
    playing.kind = Kind::Script;
    playing.owners = ownersOf(owner);
    return startSound(std::move(playing), openSoundFile(file), info);
}

namespace
{

class QueueSource final : public SampleSource
{
public:
    explicit QueueSource(std::shared_ptr<stage::SampleQueue> queue) : m_queue(std::move(queue)) {}
    std::size_t read(std::span<StereoFrame> out) override
    {
        const std::size_t count = std::min(out.size(), m_queue->frames.size());
        for (std::size_t i = 0; i < count; ++i) {
            out[i] = {m_queue->frames.front()[0], m_queue->frames.front()[1]};
            m_queue->frames.pop_front();
        }
        if (m_queue->isEnded) return count;
        std::fill(out.begin() + static_cast<std::ptrdiff_t>(count), out.end(), StereoFrame{});
        return out.size();
    }
    void rewind() override {} // what was heard is gone

private:
    std::shared_ptr<stage::SampleQueue> m_queue;
};

} // namespace

stage::SoundId SoundPlayer::playQueue(std::shared_ptr<stage::SampleQueue> queue)
{
    Playing playing;
    playing.kind = Kind::Script;
    return startSound(std::move(playing), std::make_unique<QueueSource>(std::move(queue)), {});
}

void SoundPlayer::stopSound(stage::SoundId id)
{
    collectFinished();
    m_mixer.remove(id);
    m_playing.erase(id);
}

void SoundPlayer::setSoundTransform(stage::SoundId id, const stage::SoundTransform& transform)
{
    const auto found = m_playing.find(id);
    if (found == m_playing.end()) return;
    found->second.transform = transform;
    m_mixer.setGains(id, gainsOf(found->second));
}

void SoundPlayer::stopOwner(Owner owner)
{
    if (owner == nullptr) {
        stopAll();
        return;
    }
    stopIf([owner](const Playing& playing) {
        return std::find(playing.owners.begin(), playing.owners.end(), owner) != playing.owners.end();
    });
}

void SoundPlayer::stopSymbol(Owner owner, const MoviePtr& movie, std::uint16_t soundId)
{
    stopIf([&](const Playing& playing) {
        return playing.kind != Kind::Stream && playing.movie == movie.get() && playing.soundId == soundId &&
               (owner == nullptr ||
                std::find(playing.owners.begin(), playing.owners.end(), owner) != playing.owners.end());
    });
}

double SoundPlayer::positionMs(stage::SoundId id)
{
    collectFinished();
    if (const auto found = m_playing.find(id); found != m_playing.end()) {
        return found->second.event == nullptr
                   ? 0
                   : static_cast<double>(found->second.event->position()) / kFramesPerMs;
    }
    const auto ended = m_lastPositions.find(id);
    return ended == m_lastPositions.end() ? 0 : ended->second;
}

double SoundPlayer::durationMs(const swf::Sound& sound)
{
    if (sound.sampleCount == 0 && sound.format == swf::SoundFormat::Mp3) return mp3DurationMs(sound.data);
    const double rate = sound.rate == 5512 ? 5512.5 : sound.rate;
    return rate > 0 ? 1000.0 * sound.sampleCount / rate : 0;
}

double SoundPlayer::fileDurationMs(base::Bytes mp3) { return mp3DurationMs(mp3); }

std::vector<stage::SoundId> SoundPlayer::takeFinished()
{
    collectFinished();
    return std::exchange(m_finished, {});
}

stage::SoundTransform SoundPlayer::transform(Owner owner)
{
    const auto found = m_transforms.find(owner);
    return found == m_transforms.end() ? stage::SoundTransform{} : found->second;
}

void SoundPlayer::setTransform(Owner owner, const stage::SoundTransform& transform)
{
    m_transforms[owner] = transform;
    if (owner == nullptr) applyMaster();
    for (const auto& [voice, playing] : m_playing) m_mixer.setGains(voice, gainsOf(playing));
}

void SoundPlayer::ownerRemoved(Owner owner) { m_transforms.erase(owner); }

} // namespace flash::sound
