#include "flash/avm2/bindings/NetStreams.h"

#include "flash/avm2/bindings/Display.h"
#include "flash/avm2/bindings/Fields.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/bindings/NetConnection.h"
#include "flash/avm2/bindings/Player.h"
#include "flash/avm2/bindings/Sounds.h"
#include "flash/avm2/classes/Amf.h"
#include "flash/guard/Holding.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace flash::avm2
{

using classes::allocateNative;
using classes::selfAs;
using Kind = NativeMember::Kind;

namespace
{

constexpr double kMsPerSecond = 1000, kSamplesPerMs = 44.1;

NetStreamObject& self(Call& call) { return selfAs<NetStreamObject>(call, "flash.net.NetStream"); }

void tell(Vm& vm, NetStreamObject& stream, std::string_view code, std::string_view level,
          const std::string& description = {})
{
    tellStream(vm, stream, code, level, description);
}

/// Calls the client's methods of the messages that are due: a name and a value each.
void tellMessages(Vm& vm, NetStreamObject& stream)
{
    const std::uint32_t turn = stream.turn;
    for (const base::Bytes message : stream.player->takeMessages()) {
        vm.guarded([&] {
            auto* bytes = as<classes::ByteArrayObject>(Value(vm.instantiate(vm.classes().byteArray)));
            bytes->content.assign(message.begin(), message.end());
            const Value name = classes::readAmf(vm, *bytes, 0);
            const Value value = classes::readAmf(vm, *bytes, 0);
            if (!name.isString()) return;
            const std::u16string_view called = vm.text(name);
            if (called == u"onMetaData") stream.metaData = value;
            if (called == u"onXMPData") stream.xmpData = value;
            const Multiname method = vm.publicName(vm.names().intern(vm.toString(name)));
            if (vm.has(stream.client, method)) vm.callProperty(stream.client, method, {&value, 1});
        });
        if (stream.turn != turn) return; // closed by the client, and the messages with it
    }
}

void begin(Vm& vm, NetStreamObject& stream, const base::Result<stage::LoadAnswer>& answer)
{
    auto file = answer ? guard::hold(answer->bytes) : nullptr;
    if (!file) {
        tell(vm, stream, "NetStream.Play.StreamNotFound", "error");
        return;
    }
    auto opened = video::FlvPlayer::open(std::move(file));
    if (!opened) {
        Player::of(vm).log(answer->url + ": " + opened.error().what);
        tell(vm, stream, "NetStream.Play.FileStructureInvalid", "error");
        return;
    }
    stream.player = std::move(*opened);
    stream.hasEnded = false;
    stream.followedMs = stream.openedMs = vm.host().timeMs();
    if (!stream.isPaused) stream.startSound(vm);
    // A listener may close the stream.
    const std::uint32_t turn = stream.turn;
    tell(vm, stream, "NetStream.Play.Start", "status");
    if (stream.turn == turn) tell(vm, stream, "NetStream.Buffer.Full", "status");
    if (stream.turn == turn) tellMessages(vm, stream);
    stream.showPicture();
}

Value construct(Call& call)
{
    auto& made = self(call);
    auto* connection = as<NetConnectionObject>(Value(objectArg(call, 0, "flash.net::NetConnection")));
    if (connection == nullptr || connection->state == NetConnectionObject::State::None)
        call.vm.throwError(ErrorClass::Argument, 2126, "NetConnection object must be connected.");
    made.client = Value(&made);
    Player::of(call.vm).noteStream(made);
    return {};
}

Value play(Call& call)
{
    Vm& vm = call.vm;
    auto& stream = self(call);
    stream.close(vm);
    if (call.arg(0).isNullish()) stream.isFed = call.has(0);
    if (call.arg(0).isNullish() || call.arg(0).isBoolean()) return {};
    Player& player = Player::of(vm);
    stage::LoadRequest request;
    stream.resource = vm.coerceString(call.arg(0));
    request.url = toUtf8(vm.text(stream.resource));
    request.baseUrl = player.stage().url();
    player.watchStream(stream);
    // The object is part of what waits: it stays while its file is on the way.
    auto target = std::make_shared<Root<NetStreamObject>>(vm.heap(), &stream);
    player.stage().loads().fetch(
        std::move(request), [&vm, target, turn = stream.turn](const base::Result<stage::LoadAnswer>& answer) {
            if (!vm.isDisabled() && target->get()->turn == turn) begin(vm, *target->get(), answer);
        });
    return {};
}
void setPaused(Vm& vm, NetStreamObject& stream, bool isPaused)
{
    if (stream.isPaused == isPaused) return;
    stream.follow(vm);
    stream.isPaused = isPaused;
    stream.followedMs = vm.host().timeMs();
    if (isPaused)
        stream.stopSound(vm);
    else if (stream.isPlaying())
        stream.startSound(vm);
    if (isPaused)
        tell(vm, stream, "NetStream.Pause.Notify", "status", "Pausing");
    else
        tell(vm, stream, "NetStream.Unpause.Notify", "status", "Unpausing");
}
Value pause(Call& call)
{
    setPaused(call.vm, self(call), true);
    return {};
}
Value resume(Call& call)
{
    setPaused(call.vm, self(call), false);
    return {};
}
Value togglePause(Call& call)
{
    setPaused(call.vm, self(call), !self(call).isPaused);
    return {};
}
Value seek(Call& call)
{
    Vm& vm = call.vm;
    auto& stream = self(call);
    const double seconds = vm.toNumber(call.arg(0));
    if (!stream.player || std::isnan(seconds)) return {};
    const double ms = std::trunc(seconds * kMsPerSecond);
    if (!stream.player->seek(ms)) {
        tell(vm, stream, "NetStream.Seek.InvalidTime", "error");
        return {};
    }
    stream.hasEnded = false;
    Player::of(vm).watchStream(stream);
    stream.followedMs = vm.host().timeMs();
    stream.stopSound(vm);
    if (stream.isPlaying()) stream.startSound(vm);
    stream.showPicture();
    const std::uint32_t turn = stream.turn;
    tell(vm, stream, "NetStream.SeekStart.Notify", "status", "Start Seeking " + toUtf8(numberText(ms)));
    if (stream.turn == turn) tell(vm, stream, "NetStream.Seek.Notify", "status");
    if (stream.turn == turn) tell(vm, stream, "NetStream.Seek.Complete", "status", "Seek Complete -1");
    return {};
}
Value close(Call& call)
{
    self(call).close(call.vm);
    return {};
}
Value client(Call& call) { return self(call).client; }
Value setClient(Call& call)
{
    if (!call.arg(0).isObject())
        call.vm.throwError(ErrorClass::Type, 2004, "One of the parameters is invalid.");
    self(call).client = call.arg(0);
    return {};
}
Value time(Call& call)
{
    auto& stream = self(call);
    stream.follow(call.vm);
    return stream.player ? stream.player->timeMs() / kMsPerSecond : 0.0;
}
Value bytes(Call& call)
{
    auto& stream = self(call);
    return stream.player ? static_cast<double>(stream.player->byteCount()) : 0.0;
}
Value currentFps(Call& call)
{
    auto& stream = self(call);
    return stream.player ? stream.player->picturesInLastSecond() : 0;
}
Value bufferTime(Call& call) { return self(call).bufferTime; }
Value setBufferTime(Call& call)
{
    const double value = call.vm.toNumber(call.arg(0));
    self(call).bufferTime = value;
    return {};
}
Value transform(Call& call) { return makeSoundTransform(call.vm, self(call).transform); }
Value setTransform(Call& call)
{
    Object* given = objectArg(call, 0, "flash.media::SoundTransform");
    if (given == nullptr) throwNullParameter(call.vm, "soundTransform");
    auto& stream = self(call);
    stream.transform = soundTransformOf(call.vm, Value(given));
    if (stream.sound != 0)
        Player::of(call.vm).services().sound.setSoundTransform(stream.sound, stream.transform);
    return {};
}
/// A file has come as a whole: what is still to be played.
Value bufferLength(Call& call)
{
    auto& stream = self(call);
    stream.follow(call.vm);
    if (!stream.player) return 0;
    return std::max(0.0, stream.player->endMs() - stream.player->timeMs()) / kMsPerSecond;
}
/// Plays what the options name.
Value play2(Call& call)
{
    Object* options = objectArg(call, 0, "flash.net::NetStreamPlayOptions");
    if (options == nullptr) throwNullParameter(call.vm, "param");
    const Value name = call.vm.getPublic(Value(options), "streamName");
    Call named{call.vm, call.self, &name, 1};
    return play(named);
}
Value info(Call& call)
{
    auto& stream = self(call);
    stream.follow(call.vm);
    return newNetStreamInfo(call.vm, stream);
}
Value three(Call&) { return 3; }

constexpr NativeMember kStream[] = {
    {"play", Kind::Method, &play, 0, -1},
    {"play2", Kind::Method, &play2, 1, 1},
    {"appendBytes", Kind::Method, &appendBytes, 1, 1},
    {"appendBytesAction", Kind::Method, &appendBytesAction, 1, 1},
    {"step", Kind::Method, &stepStream, 1, 1},
    {"onPeerConnect", Kind::Method, &isAlwaysTrue, 1, 1},
    {"info", Kind::Getter, &info, 0, 0, nullptr, "flash.net::NetStreamInfo"},
    {"multicastInfo", Kind::Getter, &isAlwaysNull},
    {"peerStreams", Kind::Getter, &isAlwaysEmpty, 0, 0, nullptr, "Array"},
    {"pause", Kind::Method, &pause, 0, 0},
    {"resume", Kind::Method, &resume, 0, 0},
    {"togglePause", Kind::Method, &togglePause, 0, 0},
    {"seek", Kind::Method, &seek, 1, 1},
    {"close", Kind::Method, &close, 0, 0},
    {"dispose", Kind::Method, &close, 0, 0},
    {"attach", Kind::Method, &doNothing, 1, 1},
    {"attachAudio", Kind::Method, &doNothing, 1, 1},
    {"attachCamera", Kind::Method, &doNothing, 1, 2},
    {"publish", Kind::Method, &doNothing, 0, 2},
    {"send", Kind::Method, &doNothing, 1, -1},
    {"receiveAudio", Kind::Method, &doNothing, 1, 1},
    {"receiveVideo", Kind::Method, &doNothing, 1, 1},
    {"receiveVideoFPS", Kind::Method, &doNothing, 1, 1},
    {"client", Kind::Getter, &client, 0, 0, &setClient, "Object"},
    {"time", Kind::Getter, &time, 0, 0, nullptr, "Number"},
    {"bytesLoaded", Kind::Getter, &bytes, 0, 0, nullptr, "uint"},
    {"bytesTotal", Kind::Getter, &bytes, 0, 0, nullptr, "uint"},
    {"currentFPS", Kind::Getter, &currentFps, 0, 0, nullptr, "Number"},
    {"bufferTime", Kind::Getter, &bufferTime, 0, 0, &setBufferTime, "Number"},
    {"bufferLength", Kind::Getter, &bufferLength, 0, 0, nullptr, "Number"},
    {"videoCodec", Kind::Getter, &streamVideoCodec, 0, 0, nullptr, "uint"},
    {"audioCodec", Kind::Getter, &streamAudioCodec, 0, 0, nullptr, "uint"},
    {"decodedFrames", Kind::Getter, &streamDecodedFrames, 0, 0, nullptr, "uint"},
    {"liveDelay", Kind::Getter, &isAlwaysZero, 0, 0, nullptr, "Number"},
    {"objectEncoding", Kind::Getter, &three, 0, 0, nullptr, "uint"},
    {"soundTransform", Kind::Getter, &transform, 0, 0, &setTransform, "flash.media::SoundTransform"},
    {"checkPolicyFile", Kind::Getter, &isAlwaysFalse, 0, 0, &doNothing, "Boolean"},
};

constexpr NativeConstant kPeers[] = {{"CONNECT_TO_FMS", 0, "connectToFMS"},
                                     {"DIRECT_CONNECTIONS", 0, "directConnections"}};

/// Settings of services that nothing here takes part in: kept for those who ask.
constexpr std::string_view kStreamSlots =
    "maxPauseBufferTime:Number=30 bufferTimeMax:Number backBufferTime:Number=30 backBufferLength:Number "
    "inBufferSeek:Boolean audioReliable:Boolean=true "
    "videoReliable:Boolean=true dataReliable:Boolean=true audioSampleAccess:Boolean "
    "videoSampleAccess:Boolean "
    "useHardwareDecoder:Boolean=true useJitterBuffer:Boolean videoStreamSettings:* farID:String= "
    "nearNonce:String= farNonce:String=";

constexpr NativeClass kClasses[] = {
    {.package = "flash.net",
     .name = "NetStream",
     .base = "flash.events::EventDispatcher",
     .flags = NativeClass::Sealed,
     .constructor = &construct,
     .minArguments = 1,
     .maxArguments = 2,
     .allocate = &allocateNative<NetStreamObject>,
     .members = kStream,
     .constants = kPeers,
     .slots = kStreamSlots},
    {.package = "flash.net",
     .name = "NetStreamPlayOptions",
     .base = "flash.events::EventDispatcher",
     .flags = NativeClass::Sealed,
     .minArguments = 0,
     .maxArguments = 0,
     .slots = "len:Number=-1 offset:Number=-1 oldStreamName:String start:Number=-2 streamName:String "
              "transition:String"},
};

} // namespace

void tellStream(Vm& vm, NetStreamObject& stream, std::string_view code, std::string_view level,
                const std::string& description)
{
    vm.guarded([&] {
        Root<Object> info(vm.heap(), vm.newObject());
        vm.setPublic(Value(info.get()), "code", Value(vm.name(code).string()));
        if (!description.empty())
            vm.setPublic(Value(info.get()), "description", Value(vm.string(std::string_view(description))));
        vm.setPublic(Value(info.get()), "level", Value(vm.name(level).string()));
        fireWith(vm, stream, "flash.events::NetStatusEvent", "netStatus", {Value(info.get())});
    });
}

void NetStreamObject::addScreen(const std::shared_ptr<stage::VideoNode>& screen)
{
    removeScreen(*screen);
    screens.push_back(screen);
    screen->setPicture(shown);
}

void NetStreamObject::removeScreen(const stage::VideoNode& screen)
{
    std::erase_if(screens, [&](const std::weak_ptr<stage::VideoNode>& entry) {
        const auto known = entry.lock();
        return !known || known.get() == &screen;
    });
}

void NetStreamObject::showPicture()
{
    if (!player) return;
    const auto first = screens.empty() ? nullptr : screens.front().lock();
    auto picture = player->picture(video::deblockingOf(first ? first->deblocking() : 0));
    if (picture == shown) return;
    shown = std::move(picture);
    for (const auto& entry : screens)
        if (const auto screen = entry.lock()) screen->setPicture(shown);
}

void NetStreamObject::startSound(Vm& vm)
{
    auto file = player->soundFile();
    if (!file) return;
    if (isFed) {
        soundGrowth = std::make_shared<video::Growth>();
        file = video::growing(std::move(file), soundGrowth);
    }
    swf::SoundInfo info;
    constexpr double kLast = std::numeric_limits<std::uint32_t>::max();
    info.inPoint = static_cast<std::uint32_t>(std::min(player->timeMs() * kSamplesPerMs, kLast));
    stage::SoundSystem& system = Player::of(vm).services().sound;
    sound = system.playFile(nullptr, file, info);
    if (sound != 0) system.setSoundTransform(sound, transform);
}

void NetStreamObject::stopSound(Vm& vm)
{
    if (sound != 0) Player::of(vm).services().sound.stopSound(sound);
    sound = 0;
}

void NetStreamObject::close(Vm& vm)
{
    ++turn;
    stopSound(vm);
    player.reset();
    shown.reset();
    metaData = xmpData = resource = Value::null();
    isPaused = hasEnded = isFed = feedEnds = hasNews = startsAtTag = false;
    fed = {};
    Player::of(vm).unwatchStream(*this);
}

void NetStreamObject::follow(Vm& vm)
{
    if (isFed) takeFed(vm);
    if (!isPlaying()) return;
    const double now = vm.host().timeMs();
    player->advance(now - followedMs);
    followedMs = now;
    showPicture();
    const std::uint32_t before = turn;
    tellMessages(vm, *this);
    if (turn != before || !player || !player->atEnd()) return;
    // What is fed goes on when there is more of it.
    if (isFed && !feedEnds) return;
    hasEnded = true;
    for (const char* code : {"NetStream.Buffer.Flush", "NetStream.Play.Stop", "NetStream.Buffer.Empty"}) {
        if (turn == before) tell(vm, *this, code, "status");
    }
    if (turn == before && hasEnded) Player::of(vm).unwatchStream(*this);
}

void Player::noteStream(DispatcherObject& stream)
{
    m_allStreams.push_back(&stream);
    RootedList<Object*> hearers(m_vm->heap());
    for (DispatcherObject* monitor : m_monitors) hearers.push_back(monitor);
    for (std::size_t i = 0; i < hearers.size(); ++i) {
        m_vm->guarded([&] {
            fireWith(*m_vm, static_cast<DispatcherObject&>(*hearers[i]), "flash.events::NetMonitorEvent",
                     "netStreamCreate", {Value(&stream)});
        });
    }
}
void Player::watchStream(Object& stream) { m_streams.try_emplace(&stream, m_vm->heap(), &stream); }
void Player::unwatchStream(Object& stream) { m_streams.erase(&stream); }

void Player::followStreams()
{
    RootedList<Object*> playing(m_vm->heap());
    for (const auto& [stream, root] : m_streams) playing.push_back(root.get());
    for (std::size_t i = 0; i < playing.size(); ++i) static_cast<NetStreamObject*>(playing[i])->follow(*m_vm);
}

NativeLibrary netStreamLibrary() { return {kClasses, {}}; }

} // namespace flash::avm2
