#pragma once

#include "flash/avm2/bindings/Events.h"
#include "flash/stage/Graphics.h"
#include "flash/video/FlvPlayer.h"
#include "flash/video/GrowingFile.h"

#include <memory>
#include <vector>

namespace flash::avm2
{

/// An FLV file beside the movie that plays into Video instances.
class NetStreamObject final : public DispatcherObject
{
public:
    AVM2_NATIVE(DispatcherObject)
    NetStreamObject(Traits* traits, Object* proto) : DispatcherObject(traits, proto) {}
    void trace(Tracer& tracer) override
    {
        DispatcherObject::trace(tracer);
        tracer(client);
        tracer(metaData);
        tracer(xmpData);
        tracer(resource);
        tracer.outside(fed.capacity());
    }
    [[nodiscard]] bool isPlaying() const { return player && !isPaused && !hasEnded; }
    void addScreen(const std::shared_ptr<stage::VideoNode>& screen);
    void removeScreen(const stage::VideoNode& screen);
    void showPicture();
    /// Moves on to the present time: shows pictures, tells of messages and of the end.
    void follow(Vm& vm);
    void startSound(Vm& vm);
    void stopSound(Vm& vm);
    void close(Vm& vm);

    std::unique_ptr<video::FlvPlayer> player;
    Value client;
    // As the stream told of itself, and what was asked to be played.
    Value metaData = Value::null(), xmpData = Value::null(), resource = Value::null();
    double openedMs = 0; ///< the stage's time when its bytes came
    std::vector<std::weak_ptr<stage::VideoNode>> screens;
    std::shared_ptr<const swf::Bitmap> shown;
    stage::SoundId sound = 0;
    stage::SoundTransform transform;
    double followedMs = 0; ///< the stage's time up to which the player has moved
    double bufferTime = 0.1;
    std::uint32_t turn = 0; ///< counts the files that were asked for or given up
    bool isPaused = false, hasEnded = false;

    // ---- fed by a script, byte by byte ----
    bool isFed = false;       ///< play(null): what comes is what the script appends
    bool feedEnds = false;    ///< nothing more is to come
    bool hasNews = false;     ///< bytes that the player does not know yet
    bool startsAtTag = false; ///< after a seek: from the first tag's time on
    std::vector<std::uint8_t> fed;
    std::shared_ptr<video::Growth> soundGrowth; ///< of what is heard
    /// Lets the player know what was appended, when it needs it.
    void takeFed(Vm& vm);
};

// Members of NetStream that scripts feed it by, and what they ask of what it plays.
Value appendBytes(Call& call);
Value appendBytesAction(Call& call);
Value stepStream(Call& call);
Value streamVideoCodec(Call& call);
Value streamAudioCodec(Call& call);
Value streamDecodedFrames(Call& call);
/// Tells listeners of a stream's state.
void tellStream(Vm& vm, NetStreamObject& stream, std::string_view code, std::string_view level,
                const std::string& description = {});

/// Figures of what a stream plays, at this moment.
Value newNetStreamInfo(Vm& vm, const NetStreamObject& stream);

} // namespace flash::avm2
