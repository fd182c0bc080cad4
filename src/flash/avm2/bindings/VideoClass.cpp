#include "flash/avm2/bindings/Display.h"
#include "flash/avm2/bindings/Fields.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/bindings/NetStreams.h"

// Places where moving pictures are seen.
namespace flash::avm2
{

using Kind = NativeMember::Kind;

namespace
{

stage::VideoNode& videoSelf(Call& call)
{
    stage::Node& node = displaySelf(call).node();
    if (node.kind() != stage::NodeKind::Video)
        call.vm.throwError(ErrorClass::Type, 1034,
                           "Type Coercion failed: cannot convert to flash.media.Video.");
    return static_cast<stage::VideoNode&>(node);
}
Value constructVideo(Call& call)
{
    const double width = call.has(0) ? call.vm.toInt(call.arg(0)) : 320,
                 height = call.has(1) ? call.vm.toInt(call.arg(1)) : 240;
    stage::VideoNode& node = videoSelf(call);
    if (displaySelf(call).characterId == 0) {
        // Nothing and less is as large as by default.
        if (width > 0) node.setWidth(width);
        if (height > 0) node.setHeight(height);
    }
    Call plain{call.vm, call.self, nullptr, 0};
    return constructDisplay(plain);
}
Value attachStream(Call& call)
{
    auto* stream = as<NetStreamObject>(Value(objectArg(call, 0, "flash.net::NetStream")));
    stage::VideoNode& node = videoSelf(call);
    DisplayObject& object = displaySelf(call);
    if (auto* before = as<NetStreamObject>(object.extra)) before->removeScreen(node);
    object.extra = stream;
    if (stream != nullptr) stream->addScreen(std::static_pointer_cast<stage::VideoNode>(object.nodePtr()));
    return {};
}
Value clearVideo(Call& call)
{
    videoSelf(call).setPicture(nullptr);
    return {};
}
Value videoWidth(Call& call) { return videoSelf(call).pictureWidth(); }
Value videoHeight(Call& call) { return videoSelf(call).pictureHeight(); }
Value smoothing(Call& call) { return videoSelf(call).smoothing(); }
Value setSmoothing(Call& call)
{
    const bool on = call.vm.toBoolean(call.arg(0));
    videoSelf(call).setSmoothing(on);
    return {};
}
Value deblocking(Call& call) { return videoSelf(call).deblocking(); }
Value setDeblocking(Call& call)
{
    const int value = call.vm.toInt(call.arg(0));
    videoSelf(call).setDeblocking(value);
    return {};
}
constexpr NativeMember kVideo[] = {
    {"attachNetStream", Kind::Method, &attachStream, 1, 1},
    {"attachCamera", Kind::Method, &doNothing, 1, 1},
    {"clear", Kind::Method, &clearVideo, 0, 0},
    {"videoWidth", Kind::Getter, &videoWidth, 0, 0, nullptr, "int"},
    {"videoHeight", Kind::Getter, &videoHeight, 0, 0, nullptr, "int"},
    {"smoothing", Kind::Getter, &smoothing, 0, 0, &setSmoothing, "Boolean"},
    {"deblocking", Kind::Getter, &deblocking, 0, 0, &setDeblocking, "int"},
};

constexpr NativeClass kClasses[] = {
    {.package = "flash.media",
     .name = "Video",
     .base = "flash.display::DisplayObject",
     .flags = NativeClass::Sealed,
     .constructor = &constructVideo,
     .minArguments = 0,
     .maxArguments = 2,
     .members = kVideo},
};

} // namespace

NativeLibrary videoLibrary() { return {kClasses, {}}; }

} // namespace flash::avm2
