#include "flash/avm2/bindings/Fields.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/bindings/NetStreams.h"

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

Value noNames(Call& call) { return Value(call.vm.newArray()); }
Value refuse(Call& call)
{
    call.vm.throwError(ErrorClass::Argument, 2012,
                       std::u16string(call.vm.traitsOf(call.self)->name.view()) +
                           u"$ class cannot be instantiated.");
}
constexpr NativeMember kMicrophone[] = {
    {"getMicrophone", Kind::Static, &isAlwaysNull, 0, 1},
    {"getEnhancedMicrophone", Kind::Static, &isAlwaysNull, 0, 1},
    {"isSupported", Kind::StaticGetter, &isAlwaysFalse, 0, 0, nullptr, "Boolean"},
    {"names", Kind::StaticGetter, &noNames, 0, 0, nullptr, "Array"},
    {"setLoopBack", Kind::Method, &doNothing, 0, 1, nullptr, "void"},
    {"setSilenceLevel", Kind::Method, &doNothing, 1, 2, nullptr, "void"},
    {"setUseEchoSuppression", Kind::Method, &doNothing, 1, 1, nullptr, "void"},
};
constexpr NativeMember kCamera[] = {
    {"getCamera", Kind::Static, &isAlwaysNull, 0, 1},
    {"isSupported", Kind::StaticGetter, &isAlwaysFalse, 0, 0, nullptr, "Boolean"},
    {"names", Kind::StaticGetter, &noNames, 0, 0, nullptr, "Array"},
    {"setLoopback", Kind::Method, &doNothing, 0, 1, nullptr, "void"},
    {"setMode", Kind::Method, &doNothing, 3, 4, nullptr, "void"},
    {"setMotionLevel", Kind::Method, &doNothing, 1, 2, nullptr, "void"},
    {"setQuality", Kind::Method, &doNothing, 2, 2, nullptr, "void"},
    {"setKeyFrameInterval", Kind::Method, &doNothing, 1, 1, nullptr, "void"},
    {"drawToBitmapData", Kind::Method, &doNothing, 1, 1, nullptr, "void"},
    {"copyToByteArray", Kind::Method, &doNothing, 2, 2, nullptr, "void"},
    {"copyToVector", Kind::Method, &doNothing, 2, 2, nullptr, "void"},
};

constexpr NativeClass kClasses[] = {
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
     .constructor = &refuse,
     .members = kMicrophone,
     .slots = "activityLevel:Number=-1 gain:Number=50 index:int muted:Boolean=true name:String rate:int=8 "
              "silenceLevel:Number=10 silenceTimeout:int=2000 codec:String framesPerPacket:int=2 "
              "encodeQuality:int=6 enableVAD:Boolean noiseSuppressionLevel:int=-30 "
              "useEchoSuppression:Boolean soundTransform:* enhancedOptions:*"},
    {.package = "flash.media",
     .name = "Camera",
     .base = "flash.events::EventDispatcher",
     .flags = NativeClass::Sealed | NativeClass::Final,
     .constructor = &refuse,
     .members = kCamera,
     .slots = "activityLevel:Number=-1 bandwidth:int=16384 currentFPS:Number fps:Number=15 height:int=120 "
              "index:int keyFrameInterval:int=15 loopback:Boolean motionLevel:int=50 "
              "motionTimeout:int=2000 muted:Boolean=true name:String quality:int width:int=160"},
};

} // namespace

Value newNetStreamInfo(Vm& vm, double byteCount)
{
    Object* made = vm.instantiate(vm.nativeClass("flash.net::NetStreamInfo"));
    constexpr std::uint32_t kByteCount = 1;
    made->setSlot(kByteCount, byteCount);
    return Value(made);
}

NativeLibrary netStreamInfoLibrary() { return {kClasses, {}}; }

} // namespace flash::avm2
