#include "base/TextCodes.h"
#include "flash/avm1/bindings/Classes.h"

#include <cmath>

namespace flash::avm1
{

namespace
{

/// What a Sound object speaks for and what it last started.
class SoundObject final : public Native
{
public:
    static constexpr char kTag = 0;
    [[nodiscard]] const void* tag() const override { return &kTag; }

    [[nodiscard]] stage::SoundOwner owner() const
    {
        const stage::NodePtr node = target.lock();
        return node && !node->isRemoved() ? node.get() : nullptr;
    }
    /// The target is gone: nothing can be heard or set any more.
    [[nodiscard]] bool isOrphan() const { return hasTarget && !owner(); }

    std::weak_ptr<stage::Node> target;
    bool hasTarget = false;
    stage::MoviePtr movie; ///< of the attached symbol
    std::uint16_t symbol = 0;
    const swf::Sound* sound = nullptr; ///< belongs to `movie`
    std::shared_ptr<const std::vector<std::uint8_t>> file;
    stage::SoundId playing = 0;
};

stage::SoundSystem& soundSystem(Call& call) { return StageBinding::of(call).services().sound; }

Value construct(Call& call)
{
    Object* self = call.self.asObject();
    if (!self) return {};
    auto& state = self->attachNew<SoundObject>();
    if (call.count() > 0 && !call.arg(0).isNullish()) {
        StageBinding& binding = StageBinding::of(call);
        Object* object = call.arg(0).asObject();
        if (!object) object = call.vm.resolveTarget(call.vm.target(), textArg(call, 0));
        state.hasTarget = true;
        if (stage::Node* node = binding.nodeOf(object)) state.target = node->weak_from_this();
    }
    return {};
}

Value attachSound(Call& call)
{
    auto* state = call.native<SoundObject>();
    if (!state) return {};
    StageBinding& binding = StageBinding::of(call);
    stage::Clip* scope =
        stage::asClip(const_cast<stage::Node*>(static_cast<const stage::Node*>(state->owner())));
    if (!scope) scope = binding.clipOf(call.vm.target());
    if (!scope) scope = binding.stage().root();
    const stage::MoviePtr movie = scope ? scope->movie() : nullptr;
    const auto id = stage::Stage::exportedCharacter(movie, utf8Arg(call, 0));
    const swf::Character* character = id ? movie->character(*id) : nullptr;
    const auto* sound = character ? std::get_if<swf::Sound>(&character->data) : nullptr;
    if (!sound) return {};
    state->movie = movie;
    state->symbol = *id;
    state->sound = sound;
    state->file.reset();
    return {};
}

Value start(Call& call)
{
    auto* state = call.native<SoundObject>();
    if (!state || state->isOrphan()) return {};
    swf::SoundInfo info;
    const double offset = call.count() > 0 ? numberArg(call, 0) : 0;
    if (offset > 0 && offset < 1e5) info.inPoint = static_cast<std::uint32_t>(offset * 44100);
    const double loops = call.count() > 1 ? numberArg(call, 1) : 1;
    info.loops = static_cast<std::uint16_t>(std::clamp(std::isnan(loops) ? 1.0 : loops, 1.0, 65535.0));
    if (state->sound)
        state->playing =
            soundSystem(call).playSound(state->owner(), state->movie, state->symbol, *state->sound, info);
    else if (state->file)
        state->playing = soundSystem(call).playFile(state->owner(), state->file, info);
    if (state->playing) StageBinding::of(call).watchSound(state->playing, call.self.asObject());
    return {};
}

Value stop(Call& call)
{
    auto* state = call.native<SoundObject>();
    if (!state || state->isOrphan()) return {};
    if (call.count() > 0 && !call.arg(0).isUndefined()) {
        const auto id = stage::Stage::exportedCharacter(state->movie, utf8Arg(call, 0));
        if (id) soundSystem(call).stopSymbol(state->owner(), state->movie, *id);
        return {};
    }
    soundSystem(call).stopOwner(state->owner());
    if (state->playing) soundSystem(call).stopSound(state->playing);
    return {};
}

template <class Change>
Value change(Call& call, Change apply)
{
    auto* state = call.native<SoundObject>();
    if (!state || state->isOrphan()) return {};
    stage::SoundTransform transform = soundSystem(call).transform(state->owner());
    apply(transform);
    soundSystem(call).setTransform(state->owner(), transform);
    return {};
}

Value setVolume(Call& call)
{
    const double volume = numberArg(call, 0);
    return change(call,
                  [&](stage::SoundTransform& t) { t.volume = std::isnan(volume) ? 0 : std::trunc(volume); });
}
Value getVolume(Call& call)
{
    auto* state = call.native<SoundObject>();
    return state && !state->isOrphan() ? Value(soundSystem(call).transform(state->owner()).volume) : Value();
}
Value setPan(Call& call)
{
    const double pan = std::clamp(std::trunc(numberArg(call, 0)), -100.0, 100.0);
    return change(call, [&](stage::SoundTransform& t) {
        const double p = std::isnan(pan) ? 0 : pan;
        t.leftToLeft = p <= 0 ? 100 : 100 - p;
        t.rightToRight = p >= 0 ? 100 : 100 + p;
        t.rightToLeft = t.leftToRight = 0;
    });
}
Value getPan(Call& call)
{
    auto* state = call.native<SoundObject>();
    if (!state || state->isOrphan()) return {};
    const stage::SoundTransform t = soundSystem(call).transform(state->owner());
    return Value(t.leftToLeft == 100 ? std::abs(t.rightToRight) - 100 : 100 - std::abs(t.leftToLeft));
}

struct Part {
    const char* name;
    double stage::SoundTransform::*member;
};
constexpr Part kParts[] = {
    {"ll", &stage::SoundTransform::leftToLeft},
    {"lr", &stage::SoundTransform::rightToLeft},
    {"rl", &stage::SoundTransform::leftToRight},
    {"rr", &stage::SoundTransform::rightToRight},
};

Value setTransform(Call& call)
{
    Object* object = call.arg(0).asObject();
    if (!object) return {};
    Vm& vm = call.vm;
    return change(call, [&](stage::SoundTransform& t) {
        for (const Part& part : kParts) {
            Value value;
            if (object->find(vm, vm.name(std::string_view(part.name)), value, Value(object)))
                t.*part.member = toInt32(vm, value);
        }
    });
}
Value getTransform(Call& call)
{
    auto* state = call.native<SoundObject>();
    if (!state || state->isOrphan()) return {};
    const stage::SoundTransform t = soundSystem(call).transform(state->owner());
    Object* result = call.vm.newObject();
    for (const Part& part : {kParts[3], kParts[2], kParts[1], kParts[0]})
        result->define(call.vm, part.name, Value(t.*part.member));
    return result;
}

Value getPosition(Call& call)
{
    auto* state = call.native<SoundObject>();
    if (!state || (!state->sound && !state->file)) return {};
    return Value(state->playing ? std::round(soundSystem(call).positionMs(state->playing)) : 0.0);
}
Value getDuration(Call& call)
{
    auto* state = call.native<SoundObject>();
    if (!state) return {};
    if (state->sound) return Value(std::round(soundSystem(call).durationMs(*state->sound)));
    if (state->file) return Value(std::round(soundSystem(call).fileDurationMs(*state->file)));
    return {};
}

Value loadSound(Call& call)
{
    auto* state = call.native<SoundObject>();
    if (!state || call.count() == 0) return {};
    StageBinding& binding = StageBinding::of(call);
    stage::LoadRequest request;
    request.url = utf8Arg(call, 0);
    stage::Clip* sender = binding.clipOf(call.vm.target());
    request.baseUrl = sender ? sender->url() : binding.stage().url();
    const bool streaming = toBoolean(call.vm, call.arg(1));
    auto self = std::make_shared<Root<Object>>(call.vm.heap(), call.self.asObject());
    binding.stage().fetch(
        std::move(request), [&binding, self, streaming](const base::Result<stage::LoadAnswer>& answer) {
            Object* object = self->get();
            auto* sound = object ? object->native<SoundObject>() : nullptr;
            if (!sound) return;
            if (answer) {
                sound->sound = nullptr;
                sound->file = std::make_shared<const std::vector<std::uint8_t>>(answer->bytes);
                if (streaming) {
                    sound->playing = binding.services().sound.playFile(sound->owner(), sound->file, {});
                    if (sound->playing) binding.watchSound(sound->playing, object);
                }
            }
            binding.callHandler(object, "onLoad", {Value(answer.has_value())});
        });
    return {};
}

Value getBytesLoaded(Call& call)
{
    auto* state = call.native<SoundObject>();
    return state && state->file ? Value(static_cast<double>(state->file->size())) : Value();
}

// clang-format off
constexpr MemberInfo kMembers[] = {
    {"getPan",         0, kReadOnly,          &getPan},
    {"getTransform",   0, kReadOnly,          &getTransform},
    {"getVolume",      0, kReadOnly,          &getVolume},
    {"setPan",         1, kReadOnly,          &setPan},
    {"setTransform",   1, kReadOnly,          &setTransform},
    {"setVolume",      1, kReadOnly,          &setVolume},
    {"stop",           0, kReadOnly,          &stop},
    {"attachSound",    1, kReadOnly,          &attachSound},
    {"start",          0, kReadOnly,          &start},
    {"getDuration",    0, kReadOnly | kFrom6, &getDuration},
    {"getPosition",    0, kReadOnly | kFrom6, &getPosition},
    {"loadSound",      1, kReadOnly | kFrom6, &loadSound},
    {"getBytesLoaded", 0, kReadOnly | kFrom6, &getBytesLoaded},
    {"getBytesTotal",  0, kReadOnly | kFrom6, &getBytesLoaded},
};
constexpr AccessorInfo kAccessors[] = {
    {"duration", kFrom6, &getDuration, nullptr},
    {"position", kFrom6, &getPosition, nullptr},
};
// clang-format on

} // namespace

void installSound(StageBinding& binding)
{
    Vm& vm = binding.vm();
    Function* constructor = vm.defineClass("Sound", &construct, kMembers);
    vm.addAccessors(vm.prototypeOf(constructor), kAccessors);
}

} // namespace flash::avm1
