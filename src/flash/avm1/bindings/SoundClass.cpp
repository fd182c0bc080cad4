#include "base/TextCodes.h"
#include "flash/avm1/bindings/Classes.h"
#include "flash/guard/Holding.h"

#include <cmath>
#include <optional>

namespace flash::avm1
{

namespace
{

/// What a Sound object speaks for and what it last started.
class SoundObject final : public Native
{
public:
    static constexpr char kTag = 0;
    explicit SoundObject(StageBinding& binding) : m_binding(binding) {}
    [[nodiscard]] const void* tag() const override { return &kTag; }
    void trace(Tracer& tracer) override { tracer(target); }

    /// The clip, or the one that stands at its path now: a sound outlives what it was made for.
    [[nodiscard]] stage::SoundOwner owner() const
    {
        if (path.empty()) return target ? m_binding.nodeOf(target) : nullptr;
        // A text is looked up each time, from the timeline of the script that asks: what it names may come
        // and go, and be another clip for another script.
        Vm& vm = m_binding.vm();
        Object* const base = target ? target : vm.target();
        return m_binding.nodeOf(vm.resolveTarget(base ? base : m_binding.host().level(0), path));
    }
    /// The target is gone: nothing can be heard or set any more, unless the sound was loaded.
    [[nodiscard]] bool isOrphan() const { return hasTarget && !own && !owner(); }

    Object* target = nullptr; ///< what a clip's path counts from; none for a path that was given as a text
    std::u16string path;
    bool hasTarget = false;
    stage::MoviePtr movie; ///< of the attached symbol
    std::uint16_t symbol = 0;
    const swf::Sound* sound = nullptr; ///< belongs to `movie`
    std::shared_ptr<const std::vector<std::uint8_t>> file;
    stage::SoundId playing = 0;
    /// A loaded sound has a volume and a transform of its own, apart from its target's.
    std::optional<stage::SoundTransform> own;

private:
    StageBinding& m_binding;
};

/// What does not fit an integer wraps, and what is none is 0; from version 9 on both become the lowest one.
double wholeArg(Call& call)
{
    const double number = numberArg(call, 0);
    if (call.vm.version() < 9) return toInt32(number);
    constexpr double kLowest = -2147483648.0;
    const double whole = std::trunc(number);
    return whole >= kLowest && whole <= -(kLowest + 1) ? whole : kLowest;
}

stage::SoundSystem& soundSystem(Call& call) { return StageBinding::of(call).services().sound; }

Value construct(Call& call)
{
    Object* self = call.self.asObject();
    if (!self) return {};
    StageBinding& binding = StageBinding::of(call);
    auto& state = self->attachNew<SoundObject>(binding);
    if (call.count() > 0 && !call.arg(0).isNullish()) {
        Object* object = call.arg(0).asObject();
        state.hasTarget = true;
        if (!object) {
            state.path = textArg(call, 0);
        } else if (binding.nodeOf(object)) {
            // A clip counts by its path: under another name it is not the sound's any more.
            state.path = binding.host().targetPath(object);
            state.target = binding.host().level(0);
        }
    }
    return {};
}

void giveMeasures(Vm& vm, Object* sound);

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
    const auto id = StageBinding::of(call).stage().linkage().exportedCharacter(movie, utf8Arg(call, 0));
    const swf::Character* character = id ? movie->character(*id) : nullptr;
    const auto* sound = character ? std::get_if<swf::Sound>(&character->data) : nullptr;
    if (!sound) return {};
    state->own.reset();
    state->movie = movie;
    state->symbol = *id;
    state->sound = sound;
    state->file.reset();
    giveMeasures(call.vm, call.self.object());
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
    if (state->playing == 0) return {};
    if (state->own) soundSystem(call).setSoundTransform(state->playing, *state->own);
    StageBinding::of(call).watchSound(state->playing, call.self.asObject());
    return {};
}

Value stop(Call& call)
{
    auto* state = call.native<SoundObject>();
    if (!state || state->isOrphan()) return {};
    if (call.count() > 0 && !call.arg(0).isUndefined()) {
        const auto id =
            StageBinding::of(call).stage().linkage().exportedCharacter(state->movie, utf8Arg(call, 0));
        if (id) soundSystem(call).stopSymbol(state->owner(), state->movie, *id);
        return {};
    }
    soundSystem(call).stopOwner(state->owner());
    if (state->playing) soundSystem(call).stopSound(state->playing);
    return {};
}

stage::SoundTransform transformOf(Call& call, const SoundObject& state)
{
    return state.own ? *state.own : soundSystem(call).transform(state.owner());
}

template <class Change>
Value change(Call& call, Change apply)
{
    auto* state = call.native<SoundObject>();
    if (!state || state->isOrphan()) return {};
    stage::SoundTransform transform = transformOf(call, *state);
    apply(transform);
    if (state->own) {
        state->own = transform;
        soundSystem(call).setSoundTransform(state->playing, transform);
    } else {
        soundSystem(call).setTransform(state->owner(), transform);
    }
    return {};
}

Value setVolume(Call& call)
{
    const double volume = call.count() == 0 ? 0 : wholeArg(call);
    return change(call, [&](stage::SoundTransform& t) { t.volume = volume; });
}
Value getVolume(Call& call)
{
    auto* state = call.native<SoundObject>();
    return state && !state->isOrphan() ? Value(transformOf(call, *state).volume) : Value();
}
// Not limited to -100..100: getPan() and the transform show what such numbers lead to.
Value setPan(Call& call)
{
    const double pan = call.count() == 0 ? 0 : wholeArg(call);
    return change(call, [&](stage::SoundTransform& t) {
        t.leftToLeft = pan <= 0 ? 100 : 100 - pan;
        t.rightToRight = pan >= 0 ? 100 : 100 + pan;
        t.rightToLeft = t.leftToRight = 0;
    });
}
Value getPan(Call& call)
{
    auto* state = call.native<SoundObject>();
    if (!state || state->isOrphan()) return {};
    const stage::SoundTransform t = transformOf(call, *state);
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

/// The value of an own property; nothing when there is none. Those with a getter count as undefined: the
/// genuine player does not call it here.
std::optional<Value> ownValue(Vm& vm, const Object& object, std::string_view name)
{
    const std::uint32_t at = object.shape()->find(vm.name(name), vm.isCaseSensitive());
    if (at == Shape::kMissing) return {};
    const Shape::Property& property = object.shape()->properties()[at];
    return (property.flags & kAccessor) != 0 ? Value() : object.slot(property.slot);
}

Value setTransform(Call& call)
{
    Object* object = call.arg(0).asObject();
    if (!object) return {};
    return change(call, [&](stage::SoundTransform& t) {
        // The order in which the values are asked for.
        for (const Part& part : {kParts[0], kParts[1], kParts[3], kParts[2]}) {
            if (const auto value = ownValue(call.vm, *object, part.name))
                t.*part.member = toInt32(call.vm, *value);
        }
    });
}
Value getTransform(Call& call)
{
    auto* state = call.native<SoundObject>();
    if (!state || state->isOrphan()) return {};
    const stage::SoundTransform t = transformOf(call, *state);
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
    if (!state->isOrphan()) state->own = stage::SoundTransform{};
    giveMeasures(call.vm, call.self.object());
    auto self = std::make_shared<Root<Object>>(call.vm.heap(), call.self.asObject());
    binding.stage().loads().fetch(
        std::move(request), [&binding, self, streaming](const base::Result<stage::LoadAnswer>& answer) {
            Object* object = self->get();
            auto* sound = object ? object->native<SoundObject>() : nullptr;
            if (!sound) return;
            const auto file = answer ? guard::hold(answer->bytes) : nullptr;
            if (file) {
                sound->sound = nullptr;
                sound->file = file;
                if (streaming) {
                    sound->playing = binding.services().sound.playFile(sound->owner(), sound->file, {});
                    if (sound->playing != 0) {
                        if (sound->own)
                            binding.services().sound.setSoundTransform(sound->playing, *sound->own);
                        binding.watchSound(sound->playing, object);
                    }
                }
            }
            binding.callHandler(object, "onLoad", {Value(file != nullptr)});
        });
    return {};
}

Value getBytesLoaded(Call& call)
{
    auto* state = call.native<SoundObject>();
    return state && state->file ? Value(static_cast<double>(state->file->size())) : Value();
}

/// A sound's length and place cannot be set, though the functions are there.
Value nothing(Call&) { return {}; }
/// Nothing here keeps one movie from hearing another's sounds.
Value areSoundsInaccessible(Call&) { return Value(false); }

// clang-format off
// In the order of the numbers that ASnative knows them by.
constexpr MemberInfo kMembers[] = {
    {"getPan",         0, kReadOnly,          &getPan,         0},
    {"getTransform",   0, kReadOnly,          &getTransform,   1},
    {"getVolume",      0, kReadOnly,          &getVolume,      2},
    {"setPan",         1, kReadOnly,          &setPan,         3},
    {"setTransform",   1, kReadOnly,          &setTransform,   4},
    {"setVolume",      0, kReadOnly,          &setVolume,      5},
    {"stop",           0, kReadOnly,          &stop,           6},
    {"attachSound",    1, kReadOnly,          &attachSound,    7},
    {"start",          0, kReadOnly,          &start,          8},
    {"getDuration",    0, kReadOnly | kFrom6, &getDuration,    9},
    {"setDuration",    1, kReadOnly | kFrom6, &nothing,        10},
    {"getPosition",    0, kReadOnly | kFrom6, &getPosition,    11},
    {"setPosition",    1, kReadOnly | kFrom6, &nothing,        12},
    {"loadSound",      1, kReadOnly | kFrom6, &loadSound,      13},
    {"getBytesLoaded", 0, kReadOnly | kFrom6, &getBytesLoaded, 14},
    {"getBytesTotal",  0, kReadOnly | kFrom6, &getBytesLoaded, 15},
    {"areSoundsInaccessible", 0, kReadOnly | kFrom9, &areSoundsInaccessible, 16},
};
constexpr int kNativeTable = 500;
constexpr AccessorInfo kAccessors[] = {
    {"checkPolicyFile", kReadOnly, &nothing, nullptr},
};
// Of a sound that has something to play; the class itself has no such properties.
constexpr AccessorInfo kOwnAccessors[] = {
    {"duration", kFrom6, &getDuration, nullptr},
    {"position", kFrom6, &getPosition, nullptr},
};
// clang-format on

void giveMeasures(Vm& vm, Object* sound)
{
    if (!sound->hasPlain(vm, vm.name(std::string_view("duration")))) vm.addAccessors(sound, kOwnAccessors);
}

} // namespace

void installSound(StageBinding& binding)
{
    Vm& vm = binding.vm();
    Function* constructor = vm.defineClass("Sound", &construct, kMembers, 0, kNativeTable);
    vm.addAccessors(vm.prototypeOf(constructor), kAccessors);
    vm.prototypeOf(constructor)->changeFlags(vm, Name(), kReadOnly, 0);
}

} // namespace flash::avm1
