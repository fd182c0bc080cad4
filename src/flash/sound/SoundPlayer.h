#pragma once

#include "flash/sound/EventSource.h"
#include "flash/sound/Mixer.h"
#include "flash/sound/SoundCache.h"
#include "flash/stage/SampleQueue.h"
#include "flash/stage/Services.h"

#include <functional>
#include <map>

namespace flash::sound
{

/// The stage's sound system: knows what each voice of the mixer is and under whose transforms it stands.
class SoundPlayer final : public stage::SoundSystem
{
public:
    using Owner = stage::SoundOwner;

    /// @param parentOf gives the owner above one that is alive; null at the top. Without it, every owner
    ///                 stands by itself.
    explicit SoundPlayer(std::function<Owner(Owner)> parentOf = {}) : m_parentOf(std::move(parentOf)) {}

    /// Pull from here; mixing moves the clock of everything that plays.
    [[nodiscard]] Mixer& mixer() { return m_mixer; }
    /// Moves the sounds on by simulated time without letting them be heard.
    void advance(double ms);
    /// The rate by which blocks of a stream belong to moments.
    void setFrameRate(double framesPerSecond) { m_frameRate = framesPerSecond; }
    /// The host's own volume, over the movie's. @param volume 0..1 @param balance -1 (left only) to 1 (right)
    void setMasterVolume(double volume, double balance = 0);
    /// Everything stops, every transform is forgotten: another movie comes.
    void reset();

    void startEvent(const MoviePtr& movie, std::uint16_t soundId, const swf::Sound& sound,
                    const swf::SoundInfo& info) override;
    void streamFrame(Owner owner, const MoviePtr& movie, const swf::Timeline& timeline,
                     std::size_t frame) override;
    void stopStream(Owner owner) override;
    void stopAll() override;

    stage::SoundId playSound(Owner owner, const MoviePtr& movie, std::uint16_t soundId,
                             const swf::Sound& sound, const swf::SoundInfo& info) override;
    stage::SoundId playFile(Owner owner, const FileBytes& file, const swf::SoundInfo& info) override;
    /// Plays what a script puts into a queue, silence while that is empty, until it has ended.
    stage::SoundId playQueue(std::shared_ptr<stage::SampleQueue> queue);
    void stopSound(stage::SoundId id) override;
    void setSoundTransform(stage::SoundId id, const stage::SoundTransform& transform) override;
    void stopOwner(Owner owner) override;
    void stopSymbol(Owner owner, const MoviePtr& movie, std::uint16_t soundId) override;
    [[nodiscard]] double positionMs(stage::SoundId id) override;
    [[nodiscard]] double durationMs(const swf::Sound& sound) override;
    [[nodiscard]] double fileDurationMs(base::Bytes mp3) override;
    [[nodiscard]] std::vector<stage::SoundId> takeFinished() override;
    [[nodiscard]] stage::SoundTransform transform(Owner owner) override;
    void setTransform(Owner owner, const stage::SoundTransform& transform) override;
    void ownerRemoved(Owner owner) override;

private:
    enum class Kind : std::uint8_t { Event, Stream, Script };
    struct Playing {
        Kind kind = Kind::Event;
        std::vector<Owner> owners; // innermost first; addresses to compare, never to follow
        const swf::Movie* movie = nullptr;
        std::uint16_t soundId = 0;
        stage::SoundTransform transform;    // of this sound alone
        const EventSource* event = nullptr; // owned by the mixer; events and scripts only
        const swf::Timeline* timeline = nullptr;
        std::size_t firstFrame = 0, lastFrame = 0; // streams only
    };
    VoiceId start(Playing playing, std::unique_ptr<SampleSource> source);
    VoiceId startSound(Playing playing, std::unique_ptr<SampleSource> sound, const swf::SoundInfo& info);
    void stopIf(const std::function<bool(const Playing&)>& which);
    [[nodiscard]] bool isPlayingSymbol(const MoviePtr& movie, std::uint16_t soundId) const;
    [[nodiscard]] std::vector<Owner> ownersOf(Owner owner) const;
    [[nodiscard]] Gains gainsOf(const Playing& playing) const;
    void applyMaster();
    void collectFinished();

    std::function<Owner(Owner)> m_parentOf;
    Mixer m_mixer;
    SoundCache m_cache;
    std::map<VoiceId, Playing> m_playing;
    std::map<VoiceId, double> m_lastPositions; // of scripts' sounds that ended
    std::vector<stage::SoundId> m_finished;
    std::map<Owner, stage::SoundTransform> m_transforms;
    double m_frameRate = 0, m_masterVolume = 1, m_masterBalance = 0;
    double m_unplayedFrames = 0; // of advance(): less than one
};

} // namespace flash::sound
