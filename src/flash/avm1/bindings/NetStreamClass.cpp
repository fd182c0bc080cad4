#include "flash/avm1/bindings/Classes.h"
#include "flash/avm1/bindings/NetStream.h"

#include <utility>

namespace flash::avm1
{
namespace
{

constexpr double kMsPerSecond = 1000;

// ---- NetConnection: there is no server to be had, so only connect(null) succeeds, which stands for files
// ---

class ConnectionObject final : public Native
{
public:
    static constexpr char kTag = 0;
    [[nodiscard]] const void* tag() const override { return &kTag; }
    bool connected = false;
    bool isOpen = false;    ///< connected or waiting
    bool isWaiting = false; ///< for a server that is asked at the first call
};

Value constructConnection(Call& call)
{
    if (Object* self = call.self.asObject()) self->attachNew<ConnectionObject>();
    return {};
}

void tellStatus(Call& call, std::string_view level, std::string_view code)
{
    Vm& vm = call.vm;
    Object* info = vm.newObject();
    info->put(vm, vm.name(std::string_view("code")), Value(vm.string(code)));
    info->put(vm, vm.name(std::string_view("level")), Value(vm.string(level)));
    vm.callMethod(call.self.asObject(), "onStatus", {Value(info)});
}

Value closeConnection(Call& call)
{
    auto* connection = call.native<ConnectionObject>();
    if (connection == nullptr || !connection->isOpen) return {};
    const bool waited = std::exchange(connection->isWaiting, false);
    connection->connected = connection->isOpen = false;
    tellStatus(call, "status", "NetConnection.Connect.Closed");
    // What never was connected is told of once more, without a word why.
    if (waited) call.vm.callMethod(call.self.asObject(), "onStatus", {Value()});
    return {};
}

Value connect(Call& call)
{
    auto* connection = call.native<ConnectionObject>();
    if (connection == nullptr || call.count() == 0) return Value(false);
    // The one that was open is closed first.
    closeConnection(call);
    connection = call.native<ConnectionObject>();
    if (connection == nullptr) return Value(false);
    const bool connected = call.arg(0).isNullish();
    connection->connected = connection->isOpen = connected;
    if (!connected) {
        StageBinding::of(call).host().log("there are no servers to connect to");
        // Such servers are asked at the first call only.
        const std::u16string address = textArg(call, 0);
        if (address.starts_with(u"http:") || address.starts_with(u"https:")) {
            if (auto* waiting = call.native<ConnectionObject>()) waiting->isOpen = waiting->isWaiting = true;
            return Value(true);
        }
    }
    tellStatus(call, connected ? "status" : "error",
               connected ? "NetConnection.Connect.Success" : "NetConnection.Connect.Failed");
    return Value(connected);
}

Value getConnected(Call& call)
{
    const auto* connection = call.native<ConnectionObject>();
    return connection != nullptr ? Value(connection->connected) : Value();
}

Value nothing(Call&) { return {}; }

// ---- NetStream ---------------------------------------------------------------------------------------

Value constructStream(Call& call)
{
    Object* self = call.self.asObject();
    if (self != nullptr)
        self->attachNew<NetStreamNative>(
            std::make_shared<NetStream>(StageBinding::of(call), *self, call.vm.version()));
    return {};
}

/// @returns null for what is no NetStream
std::shared_ptr<NetStream> streamOf(Object* object)
{
    auto* native = object != nullptr ? object->native<NetStreamNative>() : nullptr;
    return native != nullptr ? native->stream : nullptr;
}

/// The native that does `Body` for a stream, and nothing for other objects.
template <auto Body>
Value onStream(Call& call)
{
    const std::shared_ptr<NetStream> stream = streamOf(call.self.asObject());
    return stream ? Body(call, *stream) : Value();
}

Value play(Call& call, NetStream& stream)
{
    if (call.count() == 0) return {};
    StageBinding& binding = StageBinding::of(call);
    const stage::Clip* sender = binding.clipOf(call.vm.target());
    stream.play(utf8Arg(call, 0), sender != nullptr ? sender->url() : binding.stage().url());
    return {};
}

Value pause(Call& call, NetStream& stream)
{
    const bool paused = call.count() > 0 ? toBoolean(call.vm, call.arg(0)) : !stream.isPaused();
    stream.setPaused(paused);
    return {};
}

Value seek(Call& call, NetStream& stream)
{
    if (const double seconds = numberArg(call, 0); std::isfinite(seconds)) stream.seek(seconds);
    return {};
}

Value close(Call&, NetStream& stream)
{
    stream.close();
    return {};
}

Value setBufferTime(Call& call, NetStream& stream)
{
    if (const double seconds = numberArg(call, 0); seconds >= 0) stream.bufferTime = seconds;
    return {};
}

Value getTime(Call&, NetStream& stream)
{
    return Value(stream.player() != nullptr ? stream.player()->timeMs() / kMsPerSecond : 0);
}

/// Loaded and total are the same: the file is there when it plays.
Value getBytes(Call&, NetStream& stream)
{
    return Value(stream.player() != nullptr ? static_cast<double>(stream.player()->byteCount()) : 0);
}

Value getBufferLength(Call&, NetStream& stream)
{
    const auto* player = stream.player();
    return Value(player != nullptr ? (player->endMs() - player->timeMs()) / kMsPerSecond : 0);
}

Value getBufferTime(Call&, NetStream& stream) { return Value(stream.bufferTime); }
Value getCurrentFps(Call&, NetStream& stream)
{
    return Value(stream.player() != nullptr ? stream.player()->picturesInLastSecond() : 0);
}
Value getLiveDelay(Call&, NetStream&) { return Value(0); }

// ---- Video -------------------------------------------------------------------------------------------

stage::VideoNode* selfVideo(Call& call)
{
    stage::Node* node = selfNode(call);
    const bool is = node != nullptr && node->kind() == stage::NodeKind::Video;
    return is ? static_cast<stage::VideoNode*>(node) : nullptr;
}

template <auto Body>
Value onVideo(Call& call)
{
    stage::VideoNode* video = selfVideo(call);
    return video != nullptr ? Body(call, *video) : Value();
}

Value attachVideo(Call& call, stage::VideoNode& video)
{
    StageBinding::of(call).detachScreen(video);
    if (const auto stream = streamOf(call.arg(0).asObject()))
        stream->addScreen(std::static_pointer_cast<stage::VideoNode>(video.shared_from_this()));
    return {};
}

Value clear(Call&, stage::VideoNode& video)
{
    video.setPicture(nullptr);
    return {};
}

Value getWidth(Call&, stage::VideoNode& video) { return Value(video.pictureWidth()); }
Value getHeight(Call&, stage::VideoNode& video) { return Value(video.pictureHeight()); }
Value getSmoothing(Call&, stage::VideoNode& video) { return Value(video.smoothing()); }
Value setSmoothing(Call& call, stage::VideoNode& video)
{
    video.setSmoothing(toBoolean(call.vm, call.arg(0)));
    return {};
}
Value getDeblocking(Call&, stage::VideoNode& video) { return Value(video.deblocking()); }
Value setDeblocking(Call& call, stage::VideoNode& video)
{
    video.setDeblocking(intArg(call, 0));
    return {};
}

// clang-format off
constexpr MemberInfo kConnectionMembers[] = {
    {"connect",       1, kFrom6, &connect},
    {"close",         0, kFrom6, &closeConnection},
    {"call",          0, kFrom6, &nothing},
    {"addHeader",     0, kFrom6, &nothing},
};
constexpr AccessorInfo kConnectionAccessors[] = {
    {"isConnected", kFrom6, &getConnected, nullptr},
};
constexpr MemberInfo kStreamMembers[] = {
    {"play",          1, 0,      &onStream<&play>},
    {"pause",         0, 0,      &onStream<&pause>},
    {"seek",          1, 0,      &onStream<&seek>},
    {"close",         0, kFrom6, &onStream<&close>},
    {"setBufferTime", 1, kFrom6, &onStream<&setBufferTime>},
    {"attachAudio",   0, kFrom6, &nothing},
    {"attachVideo",   0, kFrom6, &nothing},
    {"publish",       0, 0,      &nothing},
    {"receiveAudio",  0, 0,      &nothing},
    {"receiveVideo",  0, 0,      &nothing},
    {"send",          0, kFrom6, &nothing},
};
constexpr AccessorInfo kStreamAccessors[] = {
    {"time",         kFrom6, &onStream<&getTime>,         nullptr},
    {"bytesLoaded",  kFrom6, &onStream<&getBytes>,        nullptr},
    {"bytesTotal",   kFrom6, &onStream<&getBytes>,        nullptr},
    {"bufferLength", kFrom6, &onStream<&getBufferLength>, nullptr},
    {"bufferTime",   kFrom6, &onStream<&getBufferTime>,   nullptr},
    {"currentFps",   kFrom6, &onStream<&getCurrentFps>,   nullptr},
    {"liveDelay",    kFrom6, &onStream<&getLiveDelay>,    nullptr},
};
constexpr MemberInfo kVideoMembers[] = {
    {"attachVideo", 1, kFrom6, &onVideo<&attachVideo>},
    {"clear",       0, kFrom6, &onVideo<&clear>},
};
constexpr AccessorInfo kVideoAccessors[] = {
    {"width",      kFrom6, &onVideo<&getWidth>,      nullptr},
    {"height",     kFrom6, &onVideo<&getHeight>,     nullptr},
    {"smoothing",  kFrom6, &onVideo<&getSmoothing>,  &onVideo<&setSmoothing>},
    {"deblocking", kFrom6, &onVideo<&getDeblocking>, &onVideo<&setDeblocking>},
};
// clang-format on

} // namespace

void installNetStream(StageBinding& binding)
{
    Vm& vm = binding.vm();
    Function* connection = vm.defineClass("NetConnection", &constructConnection, kConnectionMembers);
    vm.addAccessors(vm.prototypeOf(connection), kConnectionAccessors);
    Function* stream = vm.defineClass("NetStream", &constructStream, kStreamMembers);
    vm.addAccessors(vm.prototypeOf(stream), kStreamAccessors);
    Object* video = vm.prototypeOf(vm.global()->get(vm, vm.name(std::string_view("Video"))).asObject());
    vm.addMembers(video, kVideoMembers);
    // A loop over a video finds these, unlike what other classes have.
    for (const AccessorInfo& accessor : kVideoAccessors)
        video->defineAccessor(vm, vm.name(std::string_view(accessor.name)), vm.newFunction(accessor.getter),
                              accessor.setter != nullptr ? vm.newFunction(accessor.setter) : nullptr,
                              accessor.flags);
}

/// MovieClip.attachAudio: the clip's Sound objects govern the stream's sound from now on.
Value attachAudio(Call& call)
{
    if (const auto stream = streamOf(call.arg(0).asObject())) stream->setSoundTarget(call.self.asObject());
    return {};
}

} // namespace flash::avm1
