#pragma once

#include "flash/avm1/bindings/StageBinding.h"
#include "flash/stage/Graphics.h"
#include "flash/video/FlvPlayer.h"

#include <memory>
#include <optional>
#include <vector>

namespace flash::avm1
{

/// An FLV file beside the movie that plays into Video instances. Whoever calls a member that runs handlers
/// keeps the stream alive meanwhile: a script can make its NetStream object something else.
class NetStream final : public std::enable_shared_from_this<NetStream>
{
public:
    /// @param self what scripts know the stream by
    NetStream(StageBinding& binding, Object& self, int version);
    ~NetStream();
    NetStream(const NetStream&) = delete;
    NetStream& operator=(const NetStream&) = delete;
    void trace(Tracer& tracer);

    /// Loads a file and plays it from its start once it is there.
    void play(const std::string& url, const std::string& baseUrl);
    void setPaused(bool paused);
    [[nodiscard]] bool isPaused() const { return m_paused; }
    void seek(double seconds);
    void close();

    void addScreen(const std::shared_ptr<stage::VideoNode>& screen);
    void removeScreen(const stage::VideoNode& screen);
    /// The clip whose Sound object governs this stream's sound.
    void setSoundTarget(Object* clip);

    /// Until something of the stream is due on the stage's clock; nothing while it does not play.
    [[nodiscard]] std::optional<double> msToNext() const;
    /// Moves on to the stage's present time: shows pictures, calls handlers.
    void follow();

    [[nodiscard]] const video::FlvPlayer* player() const { return m_player.get(); }
    double bufferTime = 0.1; ///< seconds, for scripts; a file beside the movie needs no buffer

private:
    void begin(const base::Result<stage::LoadAnswer>& answer);
    void tellStatus(std::string_view code, std::string_view level);
    void tellMessages();
    void showPicture();
    void startSound();
    void stopSound();
    void end();
    [[nodiscard]] bool isPlaying() const { return m_player && !m_paused && !m_ended; }

    StageBinding& m_binding;
    Object* m_self;
    const int m_version; ///< of the movie that made the stream
    std::unique_ptr<video::FlvPlayer> m_player;
    std::vector<std::weak_ptr<stage::VideoNode>> m_screens;
    std::shared_ptr<const swf::Bitmap> m_shown;
    Object* m_soundTarget = nullptr;
    stage::SoundId m_sound = 0;
    double m_followedMs = 0; ///< the stage's time up to which the player has moved
    unsigned m_request = 0;  ///< tells the answer that is waited for from those that came too late
    bool m_paused = false, m_ended = false;
};

/// The native side of a NetStream object.
class NetStreamNative final : public Native
{
public:
    static constexpr char kTag = 0;
    explicit NetStreamNative(std::shared_ptr<NetStream> stream) : stream(std::move(stream)) {}
    [[nodiscard]] const void* tag() const override { return &kTag; }
    void trace(Tracer& tracer) override { stream->trace(tracer); }
    const std::shared_ptr<NetStream> stream;
};

} // namespace flash::avm1
