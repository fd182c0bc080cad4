#pragma once

#include "flash/avm2/bindings/Events.h"
#include "flash/avm2/bindings/Player.h"
#include "flash/stage/Services.h"
#include "flash/swf/Movie.h"

#include <memory>
#include <vector>

namespace flash::avm2
{

/// What a SoundTransform says to the mixer, which counts in whole per cent.
stage::SoundTransform soundTransformOf(Vm& vm, Value transform);
Value makeSoundTransform(Vm& vm, const stage::SoundTransform& transform);

class SoundChannelObject final : public DispatcherObject
{
public:
    AVM2_NATIVE(DispatcherObject)
    SoundChannelObject(Traits* traits, Object* proto) : DispatcherObject(traits, proto) {}
    stage::SoundId id = 0; ///< 0: waits for its file, or is over
    stage::SoundTransform transform;
    double lastMs = 0; ///< where it was when it ended
    bool isStopped = false;
    double startMs = 0; ///< where it began, of what plays from there as if it were a whole
};

/// A sound of the library, or a file.
class SoundObject final : public DispatcherObject
{
public:
    AVM2_NATIVE(DispatcherObject)
    SoundObject(Traits* traits, Object* proto) : DispatcherObject(traits, proto) {}
    void trace(Tracer& tracer) override
    {
        DispatcherObject::trace(tracer);
        tracer(id3);
        for (const Waiting& entry : waiting) tracer(entry.channel);
        if (samples != nullptr) tracer.outside(samples->size() * sizeof((*samples)[0]));
    }
    [[nodiscard]] const swf::Sound* symbolSound() const;
    [[nodiscard]] bool isEmpty() const
    {
        return symbol == 0 && file == nullptr && samples == nullptr && !isLoading;
    }

    stage::MoviePtr movie; ///< of the symbol
    std::uint16_t symbol = 0;
    std::shared_ptr<const std::vector<std::uint8_t>> file; ///< an MP3
    using Samples = std::vector<std::array<std::int16_t, 2>>;
    std::shared_ptr<const Samples> samples; ///< that a script gave, at 44100 Hz
    SoundReader reader;                     ///< once samples were asked for
    std::u16string url;
    bool isLoading = false;
    std::uint32_t turn = 0; ///< counts the loads that were asked for or given up
    Value id3 = Value::null();
    /// Channels that begin when the file has come.
    struct Waiting {
        SoundChannelObject* channel;
        double startMs;
        std::uint16_t loops;
    };
    std::vector<Waiting, vm::TracedAllocator<Waiting>> waiting;
};

/// Members that give and take samples.
std::span<const NativeMember> soundSampleMembers();

} // namespace flash::avm2
