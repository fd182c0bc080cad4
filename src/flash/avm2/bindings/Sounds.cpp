#include "flash/avm2/bindings/Sounds.h"

#include "flash/avm2/bindings/Fields.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/bindings/NetLoading.h"
#include "flash/avm2/bindings/Player.h"
#include "flash/avm2/classes/ByteArray.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <utility>

namespace flash::avm2
{

using classes::allocateNative;
using classes::selfAs;
using Kind = NativeMember::Kind;

const swf::Sound* SoundObject::symbolSound() const
{
    const swf::Character* character = movie && symbol != 0 ? movie->character(symbol) : nullptr;
    return character != nullptr ? std::get_if<swf::Sound>(&character->data) : nullptr;
}

namespace
{

SoundObject& self(Call& call) { return selfAs<SoundObject>(call, "flash.media.Sound"); }
SoundChannelObject& channelSelf(Call& call)
{
    return selfAs<SoundChannelObject>(call, "flash.media.SoundChannel");
}
stage::SoundSystem& system(Vm& vm) { return Player::of(vm).stage().services().sound; }

[[noreturn]] void throwSequence(Vm& vm)
{
    vm.throwError(ErrorClass::Io, 2037,
                  "Functions called in incorrect sequence, or earlier call was unsuccessful.");
}

constexpr double kSamplesPerMs = 44.1;

double lengthMs(Vm& vm, const SoundObject& sound)
{
    if (const swf::Sound* symbol = sound.symbolSound()) return system(vm).durationMs(*symbol);
    if (sound.samples) return static_cast<double>(sound.samples->size()) / kSamplesPerMs;
    return sound.file ? system(vm).fileDurationMs(*sound.file) : 0;
}

// ---- playing ----

/// What a script has given is heard as if it were made while it plays.
/// @param startMs not negative
stage::SoundId playSamples(Vm& vm, const SoundObject& sound, SoundChannelObject& channel, double startMs,
                           std::uint16_t loops)
{
    constexpr std::size_t kMaxFrames = std::size_t{1} << 25U;
    const SoundObject::Samples& samples = *sound.samples;
    const auto first = static_cast<std::size_t>(startMs * kSamplesPerMs);
    auto queue = std::make_shared<stage::SampleQueue>();
    for (std::uint16_t i = 0; i < loops && first < samples.size(); ++i) {
        if (queue->frames.size() + samples.size() - first > kMaxFrames) break;
        queue->frames.insert(queue->frames.end(), samples.begin() + static_cast<std::ptrdiff_t>(first),
                             samples.end());
    }
    queue->isEnded = true;
    channel.startMs = static_cast<double>(first) / kSamplesPerMs;
    return Player::of(vm).inputs().playSamples(std::move(queue));
}

/// @returns whether anything plays
bool begin(Vm& vm, SoundObject& sound, SoundChannelObject& channel, double startMs, std::uint16_t loops)
{
    swf::SoundInfo info;
    constexpr double kMaxStartMs = 1e8;
    if (!(startMs > 0 && startMs < kMaxStartMs)) startMs = 0;
    if (startMs > 0) info.inPoint = static_cast<std::uint32_t>(startMs * kSamplesPerMs);
    info.loops = loops;
    if (const swf::Sound* symbol = sound.symbolSound())
        channel.id = system(vm).playSound(nullptr, sound.movie, sound.symbol, *symbol, info);
    else if (sound.file)
        channel.id = system(vm).playFile(nullptr, sound.file, info);
    else if (sound.samples && Player::of(vm).inputs().playSamples)
        channel.id = playSamples(vm, sound, channel, startMs, loops);
    if (channel.id == 0) return false;
    system(vm).setSoundTransform(channel.id, channel.transform);
    Player::of(vm).watchSound(channel.id, channel);
    return true;
}

Value play(Call& call)
{
    Vm& vm = call.vm;
    auto& sound = self(call);
    double startMs = call.has(0) ? vm.toNumber(call.arg(0)) : 0;
    if (std::isnan(startMs)) startMs = 0;
    const int loops = call.has(1) ? vm.toInt(call.arg(1)) : 0;
    Object* transform = call.has(2) ? objectArg(call, 2, "flash.media::SoundTransform") : nullptr;
    const bool isMade = sound.isEmpty() && sound.hasListener(vm.name("sampleData"));
    if (sound.isEmpty() && !isMade) vm.throwError(ErrorClass::Argument, 2068, "Invalid sound.");
    constexpr int kMaxLoops = 65535;
    const auto times = static_cast<std::uint16_t>(std::clamp(loops, 1, kMaxLoops));
    auto* channel =
        as<SoundChannelObject>(Value(vm.instantiate(vm.nativeClass("flash.media::SoundChannel"))));
    Root<Object> keep(vm.heap(), channel);
    if (transform != nullptr) channel->transform = soundTransformOf(vm, Value(transform));
    if (isMade) {
        channel->id = Player::of(vm).playSamplesOf(sound);
        if (channel->id == 0) return Value::null();
        system(vm).setSoundTransform(channel->id, channel->transform);
        Player::of(vm).watchSound(channel->id, *channel);
        return Value(channel);
    }
    if (sound.isLoading) {
        constexpr std::size_t kMaxWaiting = 64;
        if (sound.waiting.size() >= kMaxWaiting) return Value::null();
        sound.waiting.push_back({channel, startMs, times});
        return Value(channel);
    }
    // What begins after the end does not begin.
    const double length = lengthMs(vm, sound);
    if (length > 0 && startMs >= length) return Value::null();
    return begin(vm, sound, *channel, startMs, times) ? Value(channel) : Value::null();
}

// ---- loading ----

void loaded(Vm& vm, SoundObject& sound, const base::Result<stage::LoadAnswer>& answer)
{
    const std::uint32_t turn = sound.turn;
    const auto step = [&](auto&& work) {
        if (turn == sound.turn) vm.guarded(work);
    };
    sound.isLoading = false;
    if (!answer) {
        sound.waiting.clear();
        step([&] {
            fireWith(vm, sound, "flash.events::IOErrorEvent", "ioError",
                     {Value(vm.string(std::u16string_view(u"Error #2032: Stream Error"))), Value(2032)});
        });
        return;
    }
    sound.file = std::make_shared<const std::vector<std::uint8_t>>(answer->bytes);
    sound.url = fromUtf8(answer->url);
    const auto size = static_cast<double>(answer->bytes.size());
    const auto waiting = std::exchange(sound.waiting, {});
    RootedList<SoundChannelObject*> channels(vm.heap());
    for (const SoundObject::Waiting& entry : waiting) channels.push_back(entry.channel);
    for (std::size_t i = 0; i < waiting.size(); ++i) {
        if (!channels[i]->isStopped) begin(vm, sound, *channels[i], waiting[i].startMs, waiting[i].loops);
    }
    step([&] { fire(vm, sound, "open"); });
    step([&] { fireWith(vm, sound, "flash.events::ProgressEvent", "progress", {Value(size), Value(size)}); });
    step([&] { fire(vm, sound, "complete"); });
}

Value load(Call& call)
{
    Vm& vm = call.vm;
    auto& sound = self(call);
    auto request = requestArg(call, 0);
    if (!request) return {};
    if (!sound.isEmpty()) throwSequence(vm);
    sound.isLoading = true;
    sound.url = fromUtf8(request->url);
    auto target = std::make_shared<Root<SoundObject>>(vm.heap(), &sound);
    Player::of(vm).stage().loads().fetch(
        std::move(*request),
        [&vm, target, turn = ++sound.turn](const base::Result<stage::LoadAnswer>& answer) {
            if (!vm.isDisabled() && target->get()->turn == turn) loaded(vm, *target->get(), answer);
        });
    return {};
}
Value close(Call& call)
{
    auto& sound = self(call);
    if (!sound.isLoading)
        call.vm.throwError(ErrorClass::Io, 2029, "This URLStream object does not have a stream opened.");
    sound.isLoading = false;
    ++sound.turn;
    sound.waiting.clear();
    return {};
}
Value construct(Call& call)
{
    auto& made = self(call);
    made.symbol = Player::of(call.vm).characterOf(made.traits()->cls, made.movie);
    if (made.symbolSound() == nullptr) made.symbol = 0;
    return call.has(0) && !call.arg(0).isNullish() ? load(call) : Value();
}

Value bytesTotal(Call& call)
{
    auto& sound = self(call);
    if (const swf::Sound* symbol = sound.symbolSound()) return static_cast<double>(symbol->data.size());
    return sound.file ? static_cast<double>(sound.file->size()) : 0.0;
}
Value soundLength(Call& call) { return lengthMs(call.vm, self(call)); }
Value url(Call& call)
{
    auto& sound = self(call);
    return sound.url.empty() ? Value::null() : Value(call.vm.string(sound.url));
}
Value id3(Call& call)
{
    auto& sound = self(call);
    if (sound.id3.isNull() && sound.file)
        sound.id3 = call.vm.construct(Value(call.vm.nativeClass("flash.media::ID3Info")), {});
    return sound.id3;
}
Value isBuffering(Call& call) { return self(call).isLoading; }
// ---- channels ----

Value position(Call& call)
{
    auto& channel = channelSelf(call);
    if (channel.id != 0) channel.lastMs = channel.startMs + system(call.vm).positionMs(channel.id);
    return channel.lastMs;
}
Value stopChannel(Call& call)
{
    auto& channel = channelSelf(call);
    channel.isStopped = true;
    if (channel.id == 0) return {};
    channel.lastMs = channel.startMs + system(call.vm).positionMs(channel.id);
    system(call.vm).stopSound(channel.id);
    Player::of(call.vm).unwatchSound(channel.id);
    channel.id = 0;
    return {};
}
template <bool isLeft>
Value peak(Call& call)
{
    const auto& peaks = Player::of(call.vm).inputs().soundPeaks;
    const auto& channel = channelSelf(call);
    if (channel.id == 0 || !peaks) return 0;
    const auto [left, right] = peaks(channel.id);
    return static_cast<double>(isLeft ? left : right);
}
Value channelTransform(Call& call) { return makeSoundTransform(call.vm, channelSelf(call).transform); }
Value setChannelTransform(Call& call)
{
    Object* given = objectArg(call, 0, "flash.media::SoundTransform");
    if (given == nullptr) throwNullParameter(call.vm, "soundTransform");
    auto& channel = channelSelf(call);
    channel.transform = soundTransformOf(call.vm, Value(given));
    if (channel.id != 0) system(call.vm).setSoundTransform(channel.id, channel.transform);
    return {};
}

constexpr NativeMember kSound[] = {
    {"play", Kind::Method, &play, 0, 3},
    {"load", Kind::Method, &load, 1, 2},
    {"close", Kind::Method, &close, 0, 0},
    {"bytesLoaded", Kind::Getter, &bytesTotal, 0, 0, nullptr, "uint"},
    {"bytesTotal", Kind::Getter, &bytesTotal, 0, 0, nullptr, "int"},
    {"length", Kind::Getter, &soundLength, 0, 0, nullptr, "Number"},
    {"url", Kind::Getter, &url, 0, 0, nullptr, "String"},
    {"id3", Kind::Getter, &id3, 0, 0, nullptr, "flash.media::ID3Info"},
    {"isBuffering", Kind::Getter, &isBuffering, 0, 0, nullptr, "Boolean"},
    {"isURLInaccessible", Kind::Getter, &isAlwaysFalse, 0, 0, nullptr, "Boolean"},
};
constexpr NativeMember kChannel[] = {
    {"stop", Kind::Method, &stopChannel, 0, 0},
    {"position", Kind::Getter, &position, 0, 0, nullptr, "Number"},
    {"leftPeak", Kind::Getter, &peak<true>, 0, 0, nullptr, "Number"},
    {"rightPeak", Kind::Getter, &peak<false>, 0, 0, nullptr, "Number"},
    {"soundTransform", Kind::Getter, &channelTransform, 0, 0, &setChannelTransform,
     "flash.media::SoundTransform"},
};

std::span<const NativeMember> soundMembers()
{
    static const auto kMembers = [] {
        std::vector<NativeMember> all(std::begin(kSound), std::end(kSound));
        const auto samples = soundSampleMembers();
        all.insert(all.end(), samples.begin(), samples.end());
        return all;
    }();
    return kMembers;
}

const NativeClass kClasses[] = {
    {.package = "flash.media",
     .name = "Sound",
     .base = "flash.events::EventDispatcher",
     .flags = NativeClass::Sealed,
     .constructor = &construct,
     .minArguments = 0,
     .maxArguments = 2,
     .allocate = &allocateNative<SoundObject>,
     .members = soundMembers()},
    {.package = "flash.media",
     .name = "SoundChannel",
     .base = "flash.events::EventDispatcher",
     .flags = NativeClass::Sealed | NativeClass::Final,
     .constructor = &refuseConstruction,
     .allocate = &allocateNative<SoundChannelObject>,
     .members = kChannel},
};

} // namespace

void Player::watchSound(std::uint64_t id, Object& channel)
{
    m_sounds.try_emplace(id, m_vm->heap(), &channel);
}
void Player::unwatchSound(std::uint64_t id)
{
    m_sounds.erase(id);
    m_madeSounds.erase(id);
}

stage::SoundId Player::playSamplesOf(DispatcherObject& sound)
{
    if (!m_inputs.playSamples) return 0;
    auto queue = std::make_shared<stage::SampleQueue>();
    const stage::SoundId id = m_inputs.playSamples(queue);
    if (id == 0) return 0;
    m_madeSounds.try_emplace(id, MadeSound{Root<DispatcherObject>(m_vm->heap(), &sound), queue});
    return id;
}

namespace
{

constexpr std::size_t kMinSamples = 2048, kMaxSamples = 8192;

/// Takes frames of two numbers, as the bytes have them. @returns how many there were
std::size_t takeSamples(const classes::ByteArrayObject& bytes, stage::SampleQueue& queue)
{
    constexpr std::size_t kFrameBytes = 2 * sizeof(float);
    constexpr float kFull = 32767;
    const std::size_t count = std::min(bytes.content.size() / kFrameBytes, kMaxSamples);
    const auto sampleAt = [&](std::size_t at) {
        std::uint32_t bits = 0;
        for (std::size_t i = 0; i < sizeof(float); ++i) {
            const std::size_t shift = 8 * (bytes.isLittle ? i : sizeof(float) - 1 - i);
            bits |= static_cast<std::uint32_t>(bytes.content[at + i]) << shift;
        }
        const auto value = std::bit_cast<float>(bits);
        const float loudness = std::isnan(value) ? 0 : std::clamp(value, -1.0F, 1.0F);
        return static_cast<std::int16_t>(std::lrintf(loudness * kFull));
    };
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t at = i * kFrameBytes;
        queue.frames.push_back({sampleAt(at), sampleAt(at + sizeof(float))});
    }
    return count;
}

} // namespace

/// Keeps what is to be heard until the next frame ready. A sound that gives less than it should has ended.
void Player::askForSamples()
{
    constexpr double kFramesPerMs = 44.1;
    const double untilNext = 2 * kFramesPerMs * m_stage->frameMs();
    const std::size_t wanted = std::max(kMaxSamples, static_cast<std::size_t>(std::min(untilNext, 1e6)));
    std::vector<std::uint64_t> ids;
    for (const auto& [id, made] : m_madeSounds) ids.push_back(id);
    for (const std::uint64_t id : ids) {
        // Whoever is asked may stop any of them.
        for (auto found = m_madeSounds.find(id);
             found != m_madeSounds.end() && !found->second.queue->isEnded &&
             found->second.queue->frames.size() < wanted && !m_vm->isDisabled();
             found = m_madeSounds.find(id)) {
            const auto queue = found->second.queue;
            Root<DispatcherObject> sound(m_vm->heap(), found->second.sound.get());
            Root<Object> data(m_vm->heap(), nullptr);
            std::size_t count = 0;
            m_vm->guarded([&] {
                data = m_vm->instantiate(m_vm->classes().byteArray);
                fireWith(*m_vm, *sound, "flash.events::SampleDataEvent", "sampleData",
                         {Value(found->second.asked), Value(data.get())});
                count = takeSamples(*as<classes::ByteArrayObject>(Value(data.get())), *queue);
            });
            queue->isEnded = count < kMinSamples;
            found = m_madeSounds.find(id);
            if (found != m_madeSounds.end()) found->second.asked += static_cast<double>(count);
        }
    }
}

void Player::tellFinishedSounds()
{
    for (const stage::SoundId id : m_services.sound.takeFinished()) {
        const auto found = m_sounds.find(id);
        if (found == m_sounds.end()) {
            tellOldMovies(id);
            continue;
        }
        Root<SoundChannelObject> channel(m_vm->heap(), static_cast<SoundChannelObject*>(found->second.get()));
        m_sounds.erase(found);
        m_madeSounds.erase(id);
        channel->lastMs = channel->startMs + m_services.sound.positionMs(id);
        channel->id = 0;
        m_vm->guarded([&] { fire(*m_vm, *channel, "soundComplete"); });
    }
}

NativeLibrary soundLibrary() { return {kClasses, {}}; }

} // namespace flash::avm2
