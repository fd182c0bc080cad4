#include "flash/avm2/bindings/Fields.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/bindings/NetStreams.h"

#include <algorithm>
#include <iterator>

// Figures of streams, and the devices that would feed them and are not there.
namespace flash::avm2
{

using Kind = NativeMember::Kind;

namespace
{

Value infoToText(Call& call)
{
    Vm& vm = call.vm;
    const auto part = [&](std::string_view name) {
        return widen(std::string(name)) + u"=" + std::u16string(vm.text(vm.getPublic(call.self, name)));
    };
    return Value(vm.string(part("currentBytesPerSecond") + u" " + part("byteCount") + u" " +
                           part("maxBytesPerSecond") + u" " + part("audioByteCount") + u" " +
                           part("videoByteCount") + u" " + part("dataByteCount") + u" " +
                           part("droppedFrames")));
}
constexpr NativeMember kInfo[] = {{"toString", Kind::Method, &infoToText, 0, 0, nullptr, "String"}};

// ---- devices ----

constexpr NativeMember kMicrophone[] = {
    {"getMicrophone", Kind::Static, &isAlwaysNull, 0, 1},
    {"getEnhancedMicrophone", Kind::Static, &isAlwaysNull, 0, 1},
    {"isSupported", Kind::StaticGetter, &isAlwaysFalse, 0, 0, nullptr, "Boolean"},
    {"names", Kind::StaticGetter, &isAlwaysEmpty, 0, 0, nullptr, "Array"},
    {"setLoopBack", Kind::Method, &doNothing, 0, 1, nullptr, "void"},
    {"setSilenceLevel", Kind::Method, &doNothing, 1, 2, nullptr, "void"},
    {"setUseEchoSuppression", Kind::Method, &doNothing, 1, 1, nullptr, "void"},
};
constexpr NativeMember kCamera[] = {
    {"getCamera", Kind::Static, &isAlwaysNull, 0, 1},
    {"isSupported", Kind::StaticGetter, &isAlwaysFalse, 0, 0, nullptr, "Boolean"},
    {"names", Kind::StaticGetter, &isAlwaysEmpty, 0, 0, nullptr, "Array"},
    {"setLoopback", Kind::Method, &doNothing, 0, 1, nullptr, "void"},
    {"setMode", Kind::Method, &doNothing, 3, 4, nullptr, "void"},
    {"setMotionLevel", Kind::Method, &doNothing, 1, 2, nullptr, "void"},
    {"setQuality", Kind::Method, &doNothing, 2, 2, nullptr, "void"},
    {"setKeyFrameInterval", Kind::Method, &doNothing, 1, 1, nullptr, "void"},
    {"drawToBitmapData", Kind::Method, &doNothing, 1, 1, nullptr, "void"},
    {"copyToByteArray", Kind::Method, &doNothing, 2, 2, nullptr, "void"},
    {"copyToVector", Kind::Method, &doNothing, 2, 2, nullptr, "void"},
};

// What streams that are sent would be made of: settings that a script reads again, as nothing is sent.
Value setVideoMode(Call& call)
{
    Object& self = *call.self.object();
    constexpr const char* kNames[] = {"width", "height", "fps"};
    for (std::uint32_t i = 0; i < std::size(kNames); ++i) setReadOnly(call.vm, self, kNames[i], call.arg(i));
    return {};
}
Value setVideoQuality(Call& call)
{
    Object& self = *call.self.object();
    setReadOnly(call.vm, self, "bandwidth", call.arg(0));
    setReadOnly(call.vm, self, "quality", call.arg(1));
    return {};
}
Value setKeyFrames(Call& call)
{
    setReadOnly(call.vm, *call.self.object(), "keyFrameInterval", call.arg(0));
    return {};
}
Value sorenson(Call& call) { return Value(call.vm.name("Sorenson").string()); }
Value h264(Call& call) { return Value(call.vm.name("H264Avc").string()); }
Value setProfile(Call& call)
{
    const std::u16string profile = textArg(call, 0, "profile"), level = textArg(call, 1, "level");
    if (profile != u"baseline" && profile != u"main") throwNotAccepted(call.vm, "profile");
    setReadOnly(call.vm, *call.self.object(), "profile", Value(call.vm.string(profile)));
    setReadOnly(call.vm, *call.self.object(), "level", Value(call.vm.string(level)));
    return {};
}
constexpr NativeMember kSettings[] = {
    {"setMode", Kind::Method, &setVideoMode, 3, 3},
    {"setQuality", Kind::Method, &setVideoQuality, 2, 2},
    {"setKeyFrameInterval", Kind::Method, &setKeyFrames, 1, 1},
    {"codec", Kind::Getter, &sorenson, 0, 0, nullptr, "String"},
};
constexpr NativeMember kH264Settings[] = {
    {"setProfileLevel", Kind::Method, &setProfile, 2, 2},
    {"codec", Kind::Getter, &h264, 0, 0, nullptr, "String"},
};
constexpr std::int8_t kOptionsSince = 12, kSettingsSince = 13; // versions of movies

constexpr NativeClass kClasses[] = {
    {.package = "flash.media",
     .name = "MicrophoneEnhancedOptions",
     .base = {},
     .flags = NativeClass::Sealed | NativeClass::Final,
     .minArguments = 0,
     .maxArguments = 0,
     .slots = "mode:String=fullDuplex echoPath:int=128 nonLinearProcessing:Boolean=true "
              "autoGain:Boolean isVoiceDetected:int",
     .since = kOptionsSince},
    {.package = "flash.media",
     .name = "VideoStreamSettings",
     .base = {},
     .flags = NativeClass::Sealed,
     .minArguments = 0,
     .maxArguments = 0,
     .members = kSettings,
     .slots = "width:int=160 height:int=120 fps:Number=15 bandwidth:int=16384 quality:int "
              "keyFrameInterval:int=15",
     .since = kSettingsSince},
    {.package = "flash.media",
     .name = "H264VideoStreamSettings",
     .base = "flash.media::VideoStreamSettings",
     .flags = NativeClass::Sealed | NativeClass::Final,
     .minArguments = 0,
     .maxArguments = 0,
     .members = kH264Settings,
     .slots = "profile:String=baseline level:String=2.1",
     .since = kSettingsSince},
    {.package = "flash.net",
     .name = "NetStreamInfo",
     .base = {},
     .flags = NativeClass::Sealed | NativeClass::Final,
     .constructor = &assignSlots,
     .minArguments = 0,
     .maxArguments = 22,
     .members = kInfo,
     .slots = "currentBytesPerSecond:Number byteCount:Number maxBytesPerSecond:Number "
              "audioBytesPerSecond:Number audioByteCount:Number videoBytesPerSecond:Number "
              "videoByteCount:Number dataBytesPerSecond:Number dataByteCount:Number "
              "playbackBytesPerSecond:Number droppedFrames:Number audioBufferByteLength:Number "
              "videoBufferByteLength:Number dataBufferByteLength:Number audioBufferLength:Number "
              "videoBufferLength:Number dataBufferLength:Number SRTT:Number audioLossRate:Number "
              "videoLossRate:Number metaData:* xmpData:* uri:String resourceName:String isLive:Boolean"},
    {.package = "flash.media",
     .name = "Microphone",
     .base = "flash.events::EventDispatcher",
     .flags = NativeClass::Sealed | NativeClass::Final,
     .constructor = &refuseConstruction,
     .members = kMicrophone,
     .slots = "activityLevel:Number=-1 gain:Number=50 index:int muted:Boolean=true name:String rate:int=8 "
              "silenceLevel:Number=10 silenceTimeout:int=2000 codec:String framesPerPacket:int=2 "
              "encodeQuality:int=6 enableVAD:Boolean noiseSuppressionLevel:int=-30 "
              "useEchoSuppression:Boolean soundTransform:* enhancedOptions:*"},
    {.package = "flash.media",
     .name = "Camera",
     .base = "flash.events::EventDispatcher",
     .flags = NativeClass::Sealed | NativeClass::Final,
     .constructor = &refuseConstruction,
     .members = kCamera,
     .slots = "activityLevel:Number=-1 bandwidth:int=16384 currentFPS:Number fps:Number=15 height:int=120 "
              "index:int keyFrameInterval:int=15 loopback:Boolean motionLevel:int=50 "
              "motionTimeout:int=2000 muted:Boolean=true name:String quality:int width:int=160"},
};

} // namespace

namespace
{

/// Bytes of one kind that a file holds, seen from a moment of it.
struct Share {
    double all = 0, ahead = 0, lastSecond = 0;
    double aheadMs = 0; ///< until the last of them is due
};
template <class Tags, class SizeOf>
Share shareOf(const Tags& tags, double nowMs, SizeOf&& sizeOf)
{
    constexpr double kSecond = 1000;
    Share share;
    for (const auto& tag : tags) {
        const auto size = static_cast<double>(sizeOf(tag));
        share.all += size;
        if (tag.timeMs > nowMs) {
            share.ahead += size;
            share.aheadMs = std::max(share.aheadMs, tag.timeMs - nowMs);
        } else if (tag.timeMs > nowMs - kSecond) {
            share.lastSecond += size;
        }
    }
    return share;
}

} // namespace

Value newNetStreamInfo(Vm& vm, const NetStreamObject& stream)
{
    Root<Object> made(vm.heap(), vm.instantiate(vm.nativeClass("flash.net::NetStreamInfo")));
    const auto set = [&](std::string_view name, Value value) { setReadOnly(vm, *made, name, value); };
    set("metaData", stream.metaData);
    set("xmpData", stream.xmpData);
    set("resourceName", stream.resource);
    set("uri", Value(vm.name("null").string()));
    if (!stream.player) return Value(made.get());
    const video::FlvFile& file = stream.player->file();
    const double now = stream.player->timeMs();
    constexpr double kSecond = 1000;
    // A file comes at once: whatever it is, it came within the second in which it was opened.
    const double arrives = vm.host().timeMs() - stream.openedMs < kSecond ? 1 : 0;
    const auto bytes = static_cast<double>(stream.player->byteCount());
    set("byteCount", bytes);
    set("maxBytesPerSecond", bytes);
    set("currentBytesPerSecond", bytes * arrives);
    double played = 0;
    const auto tell = [&](const std::string& kind, const Share& share) {
        played += share.lastSecond;
        set(kind + "ByteCount", share.all);
        set(kind + "BytesPerSecond", share.all * arrives);
        set(kind + "BufferByteLength", share.ahead);
        set(kind + "BufferLength", share.aheadMs / kSecond);
    };
    tell("audio", shareOf(file.sound, now, [](const auto& tag) { return tag.bytes.size(); }));
    tell("video", shareOf(file.video, now, [](const auto& tag) { return tag.packet.size(); }));
    tell("data", shareOf(file.scripts, now, [](const auto& tag) { return tag.message.size(); }));
    set("playbackBytesPerSecond", played);
    return Value(made.get());
}

NativeLibrary netStreamInfoLibrary() { return {kClasses, {}}; }

} // namespace flash::avm2
