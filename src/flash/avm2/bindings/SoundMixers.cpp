#include "flash/avm2/bindings/Fields.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/bindings/Player.h"
#include "flash/avm2/bindings/Sounds.h"
#include "flash/avm2/classes/ByteArray.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <complex>
#include <numbers>
#include <span>
#include <vector>

// Transforms of sounds, everything that sounds at once, and the devices that are not there.
namespace flash::avm2
{

using classes::allocateNative;
using classes::selfAs;
using Kind = NativeMember::Kind;

namespace
{

struct TransformTag {
    static constexpr const char* kClass = "flash.media.SoundTransform";
};
enum TransformField : std::uint8_t {
    Volume,
    LeftToLeft,
    LeftToRight,
    RightToLeft,
    RightToRight,
    kTransformFields
};
using TransformObject = FieldsOf<Object, kTransformFields, TransformTag>;

TransformObject& self(Call& call) { return selfAs<TransformObject>(call, TransformTag::kClass); }

void setPanOf(TransformObject& transform, double pan)
{
    transform.fields[LeftToLeft] = std::sqrt(1 - pan);
    transform.fields[RightToRight] = std::sqrt(1 + pan);
    transform.fields[LeftToRight] = transform.fields[RightToLeft] = 0;
}
Value construct(Call& call)
{
    auto& made = self(call);
    made.fields[Volume] = call.has(0) ? call.vm.toNumber(call.arg(0)) : 1.0;
    setPanOf(made, call.has(1) ? call.vm.toNumber(call.arg(1)) : 0);
    return {};
}
Value pan(Call& call)
{
    const auto& fields = self(call).fields;
    if (fields[LeftToRight].number() != 0 || fields[RightToLeft].number() != 0) return 0;
    const double left = fields[LeftToLeft].number();
    return 1 - left * left;
}
Value setPan(Call& call)
{
    const double value = call.vm.toNumber(call.arg(0));
    setPanOf(self(call), value);
    return {};
}
template <TransformField field>
Value get(Call& call)
{
    return self(call).fields[field];
}
template <TransformField field>
Value set(Call& call)
{
    const double value = call.vm.toNumber(call.arg(0));
    self(call).fields[field] = value;
    return {};
}

// ---- SoundMixer ----

stage::SoundSystem& system(Vm& vm) { return Player::of(vm).stage().services().sound; }

Value stopAll(Call& call)
{
    system(call.vm).stopAll();
    return {};
}
Value mixerTransform(Call& call) { return makeSoundTransform(call.vm, system(call.vm).transform(nullptr)); }
Value setMixerTransform(Call& call)
{
    Object* given = objectArg(call, 0, "flash.media::SoundTransform");
    if (given == nullptr) throwNullParameter(call.vm, "soundTransform");
    system(call.vm).setTransform(nullptr, soundTransformOf(call.vm, Value(given)));
    return {};
}
Value bufferTime(Call& call) { return Player::of(call.vm).soundBufferTime; }
Value setBufferTime(Call& call)
{
    Player::of(call.vm).soundBufferTime = call.vm.toInt(call.arg(0));
    return {};
}
/// As of silence: 256 numbers for each side.
constexpr std::size_t kSpectrum = 256, kAnalysed = 512;

/// How strong frequencies are in samples, followed by as many of silence: bins of 44100 / 1024 Hz.
std::array<float, kAnalysed> strengths(std::span<const float, kAnalysed> samples)
{
    constexpr std::size_t kSize = 2 * kAnalysed;
    std::array<std::complex<double>, kSize> values{};
    for (std::size_t i = 0, reversed = 0; i < kSize; ++i) {
        if (i < kAnalysed) values[reversed] = samples[i];
        std::size_t bit = kSize / 2;
        for (; bit > 0 && (reversed & bit) != 0; bit /= 2) reversed ^= bit;
        reversed |= bit;
    }
    for (std::size_t length = 2; length <= kSize; length *= 2) {
        for (std::size_t i = 0; i < length / 2; ++i) {
            const auto turn =
                std::polar(1.0, -2 * std::numbers::pi * static_cast<double>(i) / static_cast<double>(length));
            for (std::size_t at = i; at < kSize; at += length) {
                const auto odd = values[at + length / 2] * turn;
                values[at + length / 2] = values[at] - odd;
                values[at] += odd;
            }
        }
    }
    std::array<float, kAnalysed> result{};
    for (std::size_t i = 0; i < kAnalysed; ++i)
        result[i] = static_cast<float>(std::max(0.0, std::log(std::abs(values[i])) / 4));
    return result;
}

/// What is heard at this moment, or how strong its frequencies are: 256 numbers of the left, then of the
/// right.
Value computeSpectrum(Call& call)
{
    auto* bytes = as<classes::ByteArrayObject>(Value(objectArg(call, 0, "flash.utils::ByteArray")));
    if (bytes == nullptr) throwNullParameter(call.vm, "outputArray");
    const bool wantsFrequencies = call.vm.toBoolean(call.arg(1));
    // Each step halves the rate, or the part of the frequencies that is looked at.
    constexpr int kMaxStretch = 4;
    const auto stretch =
        static_cast<unsigned>(std::clamp(call.has(2) ? call.vm.toInt(call.arg(2)) : 0, 0, kMaxStretch));
    const std::size_t count = wantsFrequencies ? kAnalysed : kSpectrum << stretch;
    std::vector<float> sides[2] = {std::vector<float>(count), std::vector<float>(count)};
    if (const auto& recent = Player::of(call.vm).inputs().recentSound) recent(sides[0], sides[1]);
    bytes->content.clear();
    for (const std::vector<float>& side : sides) {
        std::array<float, kAnalysed> strong{};
        if (wantsFrequencies) strong = strengths(std::span<const float, kAnalysed>(side));
        for (std::size_t i = 0; i < kSpectrum; ++i) {
            const float value =
                wantsFrequencies ? strong[(2 * i) >> ((stretch + 1) / 2)] : side[i << stretch];
            const auto bits = std::bit_cast<std::uint32_t>(value);
            for (unsigned byte = 0; byte < sizeof(float); ++byte) {
                const unsigned shift = 8 * (bytes->isLittle ? byte : 3 - byte);
                bytes->content.push_back(static_cast<std::uint8_t>(bits >> shift));
            }
        }
    }
    bytes->position = 0;
    return {};
}

constexpr NativeMember kTransform[] = {
    {"volume", Kind::Getter, &get<Volume>, 0, 0, &set<Volume>, "Number"},
    {"pan", Kind::Getter, &pan, 0, 0, &setPan, "Number"},
    {"leftToLeft", Kind::Getter, &get<LeftToLeft>, 0, 0, &set<LeftToLeft>, "Number"},
    {"leftToRight", Kind::Getter, &get<LeftToRight>, 0, 0, &set<LeftToRight>, "Number"},
    {"rightToLeft", Kind::Getter, &get<RightToLeft>, 0, 0, &set<RightToLeft>, "Number"},
    {"rightToRight", Kind::Getter, &get<RightToRight>, 0, 0, &set<RightToRight>, "Number"},
};
constexpr NativeMember kMixer[] = {
    {"stopAll", Kind::Static, &stopAll, 0, 0},
    {"computeSpectrum", Kind::Static, &computeSpectrum, 1, 3},
    {"areSoundsInaccessible", Kind::Static, &isAlwaysFalse, 0, 0},
    {"soundTransform", Kind::StaticGetter, &mixerTransform, 0, 0, &setMixerTransform,
     "flash.media::SoundTransform"},
    {"useSpeakerphoneForVoice", Kind::StaticGetter, &isAlwaysFalse, 0, 0, &doNothing, "Boolean"},
    {"audioPlaybackMode", Kind::StaticGetter,
     [](Call& call) -> Value { return Value(call.vm.name("media").string()); }, 0, 0, &doNothing, "String"},
    {"bufferTime", Kind::StaticGetter, &bufferTime, 0, 0, &setBufferTime, "int"},
};

using C = NativeConstant;
constexpr C kCodecs[] = {
    {"NELLYMOSER", 0, "NellyMoser"}, {"PCMA", 0, "pcma"}, {"PCMU", 0, "pcmu"}, {"SPEEX", 0, "Speex"}};

Value assignSlots(Call& call)
{
    Object& object = *call.self.object();
    for (std::uint32_t i = 0; i < call.count && i < object.slotCount(); ++i)
        call.vm.setSlotTyped(object, i, call.args[i]);
    return {};
}

constexpr NativeClass kClasses[] = {
    {.package = "flash.media",
     .name = "SoundTransform",
     .base = {},
     .flags = NativeClass::Sealed | NativeClass::Final,
     .constructor = &construct,
     .minArguments = 0,
     .maxArguments = 2,
     .allocate = &allocateNative<TransformObject>,
     .members = kTransform},
    staticsOf("flash.media", "SoundMixer", kMixer),
    {.package = "flash.media",
     .name = "SoundLoaderContext",
     .base = {},
     .flags = NativeClass::Sealed,
     .constructor = &assignSlots,
     .minArguments = 0,
     .maxArguments = 2,
     .slots = "bufferTime:Number=1000 checkPolicyFile:Boolean"},
    {.package = "flash.media",
     .name = "ID3Info",
     .base = {},
     .slots = "album:String artist:String comment:String genre:String songName:String track:String "
              "year:String"},
    constantsOf("flash.media", "SoundCodec", kCodecs),
};

} // namespace

stage::SoundTransform soundTransformOf(Vm& vm, Value value)
{
    auto* transform = as<TransformObject>(value);
    if (transform == nullptr) return {};
    const auto percent = [&](TransformField field) {
        const double number = std::trunc(vm.toNumber(transform->fields[field]) * 100);
        return std::isnan(number) ? -2147483648.0 : number;
    };
    return {percent(LeftToLeft), percent(RightToLeft), percent(LeftToRight), percent(RightToRight),
            percent(Volume)};
}

Value makeSoundTransform(Vm& vm, const stage::SoundTransform& transform)
{
    auto* made = as<TransformObject>(vm.construct(Value(vm.nativeClass("flash.media::SoundTransform")), {}));
    made->fields[Volume] = transform.volume / 100;
    made->fields[LeftToLeft] = transform.leftToLeft / 100;
    made->fields[LeftToRight] = transform.leftToRight / 100;
    made->fields[RightToLeft] = transform.rightToLeft / 100;
    made->fields[RightToRight] = transform.rightToRight / 100;
    return Value(made);
}

NativeLibrary soundMixerLibrary() { return {kClasses, {}}; }

} // namespace flash::avm2
