#include "flash/avm2/bindings/EventKinds.h"

#include "flash/avm2/bindings/Fields.h"
#include "flash/avm2/bindings/Interactive.h"
#include "flash/avm2/classes/Library.h"

#include <array>

// Events that nothing here sends, for movies that make them on their own, and lists of constants that go with
// later services. What they are about is not there; the names are.
namespace flash::avm2
{

using Kind = NativeMember::Kind;

namespace
{

/// Gestures that carry more than their base: their arguments stand in an order of their own.
Value constructGesture(Call& call)
{
    constexpr std::uint32_t kShared = 3;
    // Slots, by argument: phase, localX, localY, what is the class's own, ctrlKey, altKey, shiftKey.
    constexpr std::array<std::uint32_t, 11> kTransform = {0, 1, 2, 6, 7, 8, 9, 10, 3, 4, 5};
    constexpr std::array<std::uint32_t, 8> kTap = {0, 1, 2, 6, 7, 3, 4, 5};
    auto& made = classes::selfAs<EventObject>(call, "flash.events.Event");
    made.type = call.vm.coerceString(call.arg(0));
    made.bubbles = !call.has(1) || call.vm.toBoolean(call.arg(1));
    made.cancelable = call.vm.toBoolean(call.arg(2));
    const bool isTransform = made.slotCount() >= kTransform.size();
    const std::span<const std::uint32_t> order =
        isTransform ? std::span<const std::uint32_t>(kTransform) : std::span<const std::uint32_t>(kTap);
    for (std::uint32_t i = kShared; i < call.count && i - kShared < order.size(); ++i) {
        if (order[i - kShared] < made.slotCount())
            call.vm.setSlotTyped(made, order[i - kShared], call.args[i]);
    }
    return {};
}

Value constructUncaught(Call& call)
{
    auto& made = classes::selfAs<EventObject>(call, "flash.events.Event");
    made.type = call.has(0) ? Value(call.vm.coerceString(call.arg(0)))
                            : Value(call.vm.name("uncaughtError").string());
    made.bubbles = !call.has(1) || call.vm.toBoolean(call.arg(1));
    made.cancelable = !call.has(2) || call.vm.toBoolean(call.arg(2));
    setReadOnly(call.vm, made, "error", call.has(3) ? call.arg(3) : Value::null());
    return {};
}

Value updateAfterEvent(Call&) { return {}; }

/// Shows itself under the name of another.
Value filterToString(Call& call)
{
    return call.vm.callPublic(call.self, "formatToString",
                              {Value(call.vm.name("NetTransformEvent").string()),
                               Value(call.vm.name("type").string()), Value(call.vm.name("bubbles").string()),
                               Value(call.vm.name("cancelable").string()),
                               Value(call.vm.name("eventPhase").string()),
                               Value(call.vm.name("header").string()), Value(call.vm.name("data").string())});
}

Value constructTagData(Call& call)
{
    Object* self = call.self.asObject();
    for (std::uint32_t i = 0; self != nullptr && i < call.count && i < self->slotCount(); ++i)
        call.vm.setSlotTyped(*self, i, call.args[i]);
    return {};
}

// Where on the stage something happened that names a place of its target.
constexpr NativeMember kPlaced[] = {
    {"stageX", Kind::Getter, &interactive::stageX, 0, 0, nullptr, "Number"},
    {"stageY", Kind::Getter, &interactive::stageY, 0, 0, nullptr, "Number"},
    {"updateAfterEvent", Kind::Method, &updateAfterEvent, 0, 0},
};
constexpr NativeMember kTapPlaced[] = {
    {"tapStageX", Kind::Getter, &interactive::tapStageX, 0, 0, nullptr, "Number"},
    {"tapStageY", Kind::Getter, &interactive::tapStageY, 0, 0, nullptr, "Number"},
};
constexpr NativeMember kFilterMembers[] = {{"toString", Kind::Method, &filterToString, 0, 0}};

using C = NativeConstant;
constexpr C kTouchEvent[] = {{"TOUCH_BEGIN", 0, "touchBegin"},        {"TOUCH_END", 0, "touchEnd"},
                             {"TOUCH_MOVE", 0, "touchMove"},          {"TOUCH_OUT", 0, "touchOut"},
                             {"TOUCH_OVER", 0, "touchOver"},          {"TOUCH_ROLL_OUT", 0, "touchRollOut"},
                             {"TOUCH_ROLL_OVER", 0, "touchRollOver"}, {"TOUCH_TAP", 0, "touchTap"}};
constexpr C kGestureEvent[] = {{"GESTURE_TWO_FINGER_TAP", 0, "gestureTwoFingerTap"}};
constexpr C kTransformGestureEvent[] = {{"GESTURE_DIRECTIONAL_TAP", 0, "gestureDirectionalTap"},
                                        {"GESTURE_PAN", 0, "gesturePan"},
                                        {"GESTURE_ROTATE", 0, "gestureRotate"},
                                        {"GESTURE_SWIPE", 0, "gestureSwipe"},
                                        {"GESTURE_ZOOM", 0, "gestureZoom"}};
constexpr C kPressAndTapGestureEvent[] = {{"GESTURE_PRESS_AND_TAP", 0, "gesturePressAndTap"}};
constexpr C kUncaughtErrorEvent[] = {{"UNCAUGHT_ERROR", 0, "uncaughtError"}};
constexpr C kImeEvent[] = {{"IME_COMPOSITION", 0, "imeComposition"},
                           {"IME_START_COMPOSITION", 0, "imeStartComposition"}};
constexpr C kShaderEvent[] = {{"COMPLETE", 0, "complete"}};
constexpr C kSyncEvent[] = {{"SYNC", 0, "sync"}};
constexpr C kNetDataEvent[] = {{"MEDIA_TYPE_DATA", 0, "mediaTypeData"}};
constexpr C kNetMonitorEvent[] = {{"NET_STREAM_CREATE", 0, "netStreamCreate"}};
constexpr C kOutputProgressEvent[] = {{"OUTPUT_PROGRESS", 0, "outputProgress"}};
constexpr C kAccelerometerEvent[] = {{"UPDATE", 0, "update"}};
constexpr C kGeolocationEvent[] = {{"UPDATE", 0, "update"}};
constexpr C kGameInputEvent[] = {{"DEVICE_ADDED", 0, "deviceAdded"},
                                 {"DEVICE_REMOVED", 0, "deviceRemoved"},
                                 {"DEVICE_UNUSABLE", 0, "deviceUnusable"}};
constexpr C kSoftKeyboardEvent[] = {{"SOFT_KEYBOARD_ACTIVATE", 0, "softKeyboardActivate"},
                                    {"SOFT_KEYBOARD_ACTIVATING", 0, "softKeyboardActivating"},
                                    {"SOFT_KEYBOARD_DEACTIVATE", 0, "softKeyboardDeactivate"}};
constexpr C kStageVideoAvailabilityEvent[] = {{"STAGE_VIDEO_AVAILABILITY", 0, "stageVideoAvailability"}};
constexpr C kStageVideoEvent[] = {{"RENDER_STATE", 0, "renderState"},
                                  {"RENDER_STATUS_ACCELERATED", 0, "accelerated"},
                                  {"RENDER_STATUS_SOFTWARE", 0, "software"},
                                  {"RENDER_STATUS_UNAVAILABLE", 0, "unavailable"}};
constexpr C kVideoEvent[] = {{"RENDER_STATE", 0, "renderState"},
                             {"RENDER_STATUS_ACCELERATED", 0, "accelerated"},
                             {"RENDER_STATUS_SOFTWARE", 0, "software"},
                             {"RENDER_STATUS_UNAVAILABLE", 0, "unavailable"}};
constexpr C kVideoTextureEvent[] = {{"RENDER_STATE", 0, "renderState"}};
constexpr C kThrottleEvent[] = {{"THROTTLE", 0, "Throttle"}};
constexpr C kActionScriptVersion[] = {{"ACTIONSCRIPT2", 2}, {"ACTIONSCRIPT3", 3}};
constexpr C kColorCorrection[] = {{"DEFAULT", 0, "default"}, {"OFF", 0, "off"}, {"ON", 0, "on"}};
constexpr C kColorCorrectionSupport[] = {
    {"DEFAULT_OFF", 0, "defaultOff"}, {"DEFAULT_ON", 0, "defaultOn"}, {"UNSUPPORTED", 0, "unsupported"}};
constexpr C kSWFVersion[] = {{"FLASH1", 1}, {"FLASH2", 2},   {"FLASH3", 3},   {"FLASH4", 4},
                             {"FLASH5", 5}, {"FLASH6", 6},   {"FLASH7", 7},   {"FLASH8", 8},
                             {"FLASH9", 9}, {"FLASH10", 10}, {"FLASH11", 11}, {"FLASH12", 12}};
constexpr C kShaderPrecision[] = {{"FAST", 0, "fast"}, {"FULL", 0, "full"}};
constexpr C kShaderParameterType[] = {
    {"BOOL", 0, "bool"},           {"BOOL2", 0, "bool2"},         {"BOOL3", 0, "bool3"},
    {"BOOL4", 0, "bool4"},         {"FLOAT", 0, "float"},         {"FLOAT2", 0, "float2"},
    {"FLOAT3", 0, "float3"},       {"FLOAT4", 0, "float4"},       {"INT", 0, "int"},
    {"INT2", 0, "int2"},           {"INT3", 0, "int3"},           {"INT4", 0, "int4"},
    {"MATRIX2X2", 0, "matrix2x2"}, {"MATRIX3X3", 0, "matrix3x3"}, {"MATRIX4X4", 0, "matrix4x4"}};
constexpr C kBitmapEncodingColorSpace[] = {{"COLORSPACE_4_2_0", 0, "4:2:0"},
                                           {"COLORSPACE_4_2_2", 0, "4:2:2"},
                                           {"COLORSPACE_4_4_4", 0, "4:4:4"},
                                           {"COLORSPACE_AUTO", 0, "auto"}};
constexpr C kGesturePhase[] = {
    {"ALL", 0, "all"}, {"BEGIN", 0, "begin"}, {"END", 0, "end"}, {"UPDATE", 0, "update"}};
constexpr C kTouchEventIntent[] = {{"ERASER", 0, "eraser"}, {"PEN", 0, "pen"}, {"UNKNOWN", 0, "unknown"}};
constexpr C kSoftKeyboardTrigger[] = {{"CONTENT_TRIGGERED", 0, "contentTriggered"},
                                      {"USER_TRIGGERED", 0, "userTriggered"}};
constexpr C kThrottleType[] = {{"PAUSE", 0, "pause"}, {"RESUME", 0, "resume"}, {"THROTTLE", 0, "throttle"}};
constexpr C kH264Profile[] = {{"BASELINE", 0, "baseline"}, {"MAIN", 0, "main"}};
constexpr C kH264Level[] = {
    {"LEVEL_1", 0, "1"},     {"LEVEL_1B", 0, "1B"},   {"LEVEL_1_1", 0, "1.1"}, {"LEVEL_1_2", 0, "1.2"},
    {"LEVEL_1_3", 0, "1.3"}, {"LEVEL_2", 0, "2"},     {"LEVEL_2_1", 0, "2.1"}, {"LEVEL_2_2", 0, "2.2"},
    {"LEVEL_3", 0, "3"},     {"LEVEL_3_1", 0, "3.1"}, {"LEVEL_3_2", 0, "3.2"}, {"LEVEL_4", 0, "4"},
    {"LEVEL_4_1", 0, "4.1"}, {"LEVEL_4_2", 0, "4.2"}, {"LEVEL_5", 0, "5"},     {"LEVEL_5_1", 0, "5.1"}};
constexpr C kMicrophoneEnhancedMode[] = {{"FULL_DUPLEX", 0, "fullDuplex"},
                                         {"HALF_DUPLEX", 0, "halfDuplex"},
                                         {"HEADSET", 0, "headset"},
                                         {"OFF", 0, "off"},
                                         {"SPEAKER_MUTE", 0, "speakerMute"}};
constexpr C kStageVideoAvailability[] = {{"AVAILABLE", 0, "available"}, {"UNAVAILABLE", 0, "unavailable"}};
constexpr C kVideoCodec[] = {{"H264AVC", 0, "H264Avc"}, {"SORENSON", 0, "Sorenson"}};
constexpr C kVideoStatus[] = {
    {"ACCELERATED", 0, "accelerated"}, {"SOFTWARE", 0, "software"}, {"UNAVAILABLE", 0, "unavailable"}};
constexpr C kNetStreamAppendBytesAction[] = {
    {"END_SEQUENCE", 0, "endSequence"}, {"RESET_BEGIN", 0, "resetBegin"}, {"RESET_SEEK", 0, "resetSeek"}};
constexpr C kNetStreamPlayTransitions[] = {{"APPEND", 0, "append"}, {"APPEND_AND_WAIT", 0, "appendAndWait"},
                                           {"RESET", 0, "reset"},   {"RESUME", 0, "resume"},
                                           {"STOP", 0, "stop"},     {"SWAP", 0, "swap"},
                                           {"SWITCH", 0, "switch"}};
constexpr C kSystemUpdaterType[] = {{"DRM", 0, "drm"}, {"SYSTEM", 0, "system"}};
constexpr C kClipboardFormats[] = {
    {"BITMAP_FORMAT", 0, "air:bitmap"}, {"FILE_LIST_FORMAT", 0, "air:file list"},
    {"HTML_FORMAT", 0, "air:html"},     {"RICH_TEXT_FORMAT", 0, "air:rtf"},
    {"TEXT_FORMAT", 0, "air:text"},     {"URL_FORMAT", 0, "air:url"}};
constexpr C kClipboardTransferMode[] = {{"CLONE_ONLY", 0, "cloneOnly"},
                                        {"CLONE_PREFERRED", 0, "clonePreferred"},
                                        {"ORIGINAL_ONLY", 0, "originalOnly"},
                                        {"ORIGINAL_PREFERRED", 0, "originalPreferred"}};

constexpr NativeClass gesture(std::string_view name, std::string_view slots,
                              std::span<const NativeConstant> constants,
                              std::span<const NativeMember> members = {})
{
    return {.package = "flash.events",
            .name = name,
            .base = "flash.events::GestureEvent",
            .flags = NativeClass::Sealed,
            .constructor = &constructGesture,
            .minArguments = 1,
            .maxArguments = -1,
            .members = members,
            .constants = constants,
            .slots = slots};
}

constexpr NativeClass kClasses[] = {
    {.package = "flash.events",
     .name = "UncaughtErrorEvent",
     .base = "flash.events::ErrorEvent",
     .flags = NativeClass::Sealed,
     .constructor = &constructUncaught,
     .minArguments = 0,
     .maxArguments = 4,
     .constants = kUncaughtErrorEvent,
     .slots = "error:*"},
    {.package = "flash.events",
     .name = "UncaughtErrorEvents",
     .base = "flash.events::EventDispatcher",
     .flags = NativeClass::Sealed,
     .minArguments = 0,
     .maxArguments = 0},
    {.package = "flash.events",
     .name = "IMEEvent",
     .base = "flash.events::TextEvent",
     .flags = NativeClass::Sealed,
     .constructor = &constructEvent,
     .minArguments = 1,
     .maxArguments = 5,
     .constants = kImeEvent,
     .slots = "imeClient:*"},
    {.package = "flash.media",
     .name = "AVTagData",
     .base = {},
     .flags = NativeClass::Sealed,
     .constructor = &constructTagData,
     .minArguments = 2,
     .maxArguments = 2,
     .slots = "data:String localTime:Number"},
    eventClass("TouchEvent",
               "touchPointID:int isPrimaryTouchPoint:Boolean localX:Number=nan localY:Number=nan "
               "sizeX:Number=nan sizeY:Number=nan pressure:Number=nan relatedObject:* "
               "ctrlKey:Boolean altKey:Boolean shiftKey:Boolean isRelatedObjectInaccessible:Boolean",
               kTouchEvent, kPlaced),
    eventClass("GestureEvent",
               "phase:String localX:Number localY:Number ctrlKey:Boolean altKey:Boolean "
               "shiftKey:Boolean",
               kGestureEvent, kPlaced),
    gesture("TransformGestureEvent",
            "scaleX:Number=1 scaleY:Number=1 rotation:Number offsetX:Number offsetY:Number",
            kTransformGestureEvent),
    gesture("PressAndTapGestureEvent", "tapLocalX:Number tapLocalY:Number", kPressAndTapGestureEvent,
            kTapPlaced),
    eventClass("ShaderEvent", "bitmapData:* byteArray:* vector:*", kShaderEvent),
    eventClass("SyncEvent", "changeList:*", kSyncEvent),
    eventClass("NetDataEvent", "timestamp:Number info:*", kNetDataEvent),
    eventClass("NetMonitorEvent", "netStream:*", kNetMonitorEvent),
    eventClass("NetFilterEvent", "header:* data:*", {}, kFilterMembers),
    eventClass("OutputProgressEvent", "bytesPending:Number bytesTotal:Number", kOutputProgressEvent),
    eventClass("AccelerometerEvent",
               "timestamp:Number accelerationX:Number accelerationY:Number accelerationZ:Number",
               kAccelerometerEvent),
    eventClass("GeolocationEvent",
               "latitude:Number longitude:Number altitude:Number horizontalAccuracy:Number "
               "verticalAccuracy:Number speed:Number heading:Number timestamp:Number",
               kGeolocationEvent),
    eventClass("GameInputEvent", "device:*", kGameInputEvent),
    eventClass("SoftKeyboardEvent", "relatedObject:* triggerType:String", kSoftKeyboardEvent),
    eventClass("StageVideoAvailabilityEvent", "availability:String", kStageVideoAvailabilityEvent),
    eventClass("StageVideoEvent", "status:String colorSpace:String codecInfo:String", kStageVideoEvent),
    eventClass("VideoEvent", "status:String codecInfo:String", kVideoEvent),
    eventClass("VideoTextureEvent", "status:String colorSpace:String codecInfo:String", kVideoTextureEvent),
    eventClass("ThrottleEvent", "state:String targetFrameRate:Number", kThrottleEvent),
    constantsOf("flash.display", "ActionScriptVersion", kActionScriptVersion),
    constantsOf("flash.display", "ColorCorrection", kColorCorrection),
    constantsOf("flash.display", "ColorCorrectionSupport", kColorCorrectionSupport),
    constantsOf("flash.display", "SWFVersion", kSWFVersion),
    constantsOf("flash.display", "ShaderPrecision", kShaderPrecision),
    constantsOf("flash.display", "ShaderParameterType", kShaderParameterType),
    constantsOf("flash.display", "BitmapEncodingColorSpace", kBitmapEncodingColorSpace),
    constantsOf("flash.events", "GesturePhase", kGesturePhase),
    constantsOf("flash.events", "TouchEventIntent", kTouchEventIntent),
    constantsOf("flash.events", "SoftKeyboardTrigger", kSoftKeyboardTrigger),
    constantsOf("flash.events", "ThrottleType", kThrottleType),
    constantsOf("flash.media", "H264Profile", kH264Profile),
    constantsOf("flash.media", "H264Level", kH264Level),
    constantsOf("flash.media", "MicrophoneEnhancedMode", kMicrophoneEnhancedMode),
    constantsOf("flash.media", "StageVideoAvailability", kStageVideoAvailability),
    constantsOf("flash.media", "VideoCodec", kVideoCodec),
    constantsOf("flash.media", "VideoStatus", kVideoStatus),
    constantsOf("flash.net", "NetStreamAppendBytesAction", kNetStreamAppendBytesAction),
    constantsOf("flash.net", "NetStreamPlayTransitions", kNetStreamPlayTransitions),
    constantsOf("flash.system", "SystemUpdaterType", kSystemUpdaterType),
    constantsOf("flash.desktop", "ClipboardFormats", kClipboardFormats),
    constantsOf("flash.desktop", "ClipboardTransferMode", kClipboardTransferMode),
};

} // namespace

std::span<const NativeClass> eventKindClasses() { return kClasses; }

} // namespace flash::avm2
