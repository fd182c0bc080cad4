#include "flash/avm2/bindings/Events.h"

#include "flash/avm2/bindings/EventKinds.h"
#include "flash/avm2/bindings/Fields.h"
#include "flash/avm2/bindings/Interactive.h"
#include "flash/avm2/classes/Library.h"

#include <algorithm>

namespace flash::avm2
{

using classes::allocateNative;
using classes::selfAs;
using Kind = NativeMember::Kind;

void EventObject::trace(Tracer& tracer)
{
    Object::trace(tracer);
    tracer(type);
    tracer(target);
    tracer(currentTarget);
}

EventObject* newEvent(Vm& vm, std::string_view cls, std::string_view type, bool bubbles, bool cancelable)
{
    const Value args[] = {Value(vm.name(type).string()), Value(bubbles), Value(cancelable)};
    return as<EventObject>(vm.construct(Value(vm.nativeClass(cls)), args));
}

namespace
{

EventObject& event(Call& call) { return selfAs<EventObject>(call, "flash.events.Event"); }
DispatcherObject& dispatcher(Call& call)
{
    return selfAs<DispatcherObject>(call, "flash.events.EventDispatcher");
}

bool bubblesByDefault(Vm& vm, EventObject& event)
{
    for (const char* cls :
         {"flash.events::MouseEvent", "flash.events::KeyboardEvent", "flash.events::FocusEvent",
          "flash.events::TouchEvent", "flash.events::GestureEvent", "flash.events::TransformGestureEvent"}) {
        if (event.traits()->isA(vm.nativeClass(cls)->instances)) return true;
    }
    return false;
}

Value type(Call& call) { return event(call).type; }
Value bubbles(Call& call) { return event(call).bubbles; }
Value cancelable(Call& call) { return event(call).cancelable; }
Value target(Call& call) { return event(call).target.isUndefined() ? Value::null() : event(call).target; }
Value currentTarget(Call& call)
{
    return event(call).currentTarget.isUndefined() ? Value::null() : event(call).currentTarget;
}
Value eventPhase(Call& call) { return event(call).phase; }
Value stopPropagation(Call& call)
{
    event(call).isStopped = true;
    return {};
}
Value stopImmediatePropagation(Call& call)
{
    event(call).isStopped = event(call).isStoppedAtOnce = true;
    return {};
}
Value preventDefault(Call& call)
{
    if (event(call).cancelable) event(call).isPrevented = true;
    return {};
}
Value isDefaultPrevented(Call& call) { return event(call).isPrevented; }

/// A copy by the class's own slots.
Value cloneEvent(Call& call)
{
    auto& self = event(call);
    ClassObject* cls = self.traits()->cls;
    // A class of a script that does not say how it is copied is copied as what it derives from.
    for (; cls != nullptr && cls->constructor != nullptr && cls->constructor->native == nullptr;
         cls = cls->base) {
    }
    if (cls == nullptr) return {};
    auto* made = as<EventObject>(Value(call.vm.instantiate(cls)));
    made->type = self.type;
    made->bubbles = self.bubbles;
    made->cancelable = self.cancelable;
    for (std::uint32_t i = 0; i < made->slotCount() && i < self.slotCount(); ++i)
        made->setSlot(i, self.slot(i));
    return made;
}

Value formatToString(Call& call)
{
    std::u16string text = u"[" + std::u16string(call.vm.text(call.arg(0)));
    for (std::uint32_t i = 1; i < call.count; ++i) {
        const std::u16string name(call.vm.text(call.args[i]));
        const Value value = call.vm.get(call.self, call.vm.publicName(call.vm.name(name)));
        const std::u16string shown(call.vm.text(value));
        text += u" " + name + u"=" + (value.isString() ? u"\"" + shown + u"\"" : shown);
    }
    return call.vm.string(text + u"]");
}

/// These were added later, and are not shown.
constexpr std::u16string_view kUnshown[] = {u"direction",
                                            u"errorID",
                                            u"imeClient",
                                            u"isMouseTargetInaccessible",
                                            u"isRelatedObjectInaccessible",
                                            u"movementX",
                                            u"movementY",
                                            u"responseHeaders"};

Value eventToString(Call& call)
{
    Traits* traits = event(call).traits();
    while (traits->cls != nullptr && traits->cls->constructor != nullptr &&
           traits->cls->constructor->native == nullptr)
        traits = traits->base;
    RootedList<Value> names(call.vm.heap());
    for (const std::string_view name : {"type", "bubbles", "cancelable", "eventPhase"})
        names.push_back(Value(call.vm.name(name).string()));
    if (traits->slotTypes.size() > 0) {
        names->pop_back();
        for (const Traits::Entry& entry : traits->entries()) {
            const bool isVariable =
                entry.binding.kind == Binding::Kind::Slot || entry.binding.kind == Binding::Kind::Const;
            if (!isVariable || std::ranges::find(kUnshown, entry.name.view()) != std::end(kUnshown)) continue;
            // Of data that came the text is the data itself.
            if (entry.name.view() == u"text" && traits->name.view() == u"DataEvent") continue;
            names.push_back(Value(entry.name.string()));
            if (entry.name.view() != u"localY") continue;
            for (const char* place : {"stageX", "stageY"})
                names.push_back(Value(call.vm.name(place).string()));
        }
        if (traits->name.view() == u"MouseEvent")
            names->insert(names->begin() + 3, Value(call.vm.name("eventPhase").string()));
        else if (traits->name.view() != u"TextEvent" && traits->name.view() != u"ErrorEvent")
            names->insert(names->begin() + 3, Value(call.vm.name("eventPhase").string()));
    }
    names->insert(names->begin(), Value(traits->name.string()));
    Call inner{call.vm, call.self, names->data(), static_cast<std::uint32_t>(names.size())};
    return formatToString(inner);
}

Value constructDispatcher(Call& call)
{
    if (call.has(0) && !call.arg(0).isNullish()) dispatcher(call).standIn = call.arg(0);
    return {};
}

Name eventType(Call& call)
{
    if (call.arg(0).isNullish()) throwNullParameter(call.vm, "type");
    return call.vm.names().intern(call.vm.toString(call.arg(0)));
}
Value addEventListener(Call& call)
{
    const Name type = eventType(call);
    if (!isFunction(call.arg(1))) {
        if (call.arg(1).isNullish())
            call.vm.throwError(ErrorClass::Type, 2007, "Parameter listener must be non-null.");
        call.vm.coerce(call.arg(1), call.vm.classes().function->instances);
    }
    const auto hold =
        call.vm.toBoolean(call.arg(4)) ? DispatcherObject::Hold::Weak : DispatcherObject::Hold::Strong;
    dispatcher(call).listen(call.vm, type, call.arg(1), call.vm.toBoolean(call.arg(2)),
                            call.vm.toInt(call.arg(3)), hold);
    return {};
}
Value removeEventListener(Call& call)
{
    const Name type = eventType(call);
    if (call.arg(1).isNullish()) throwNullParameter(call.vm, "listener");
    dispatcher(call).unlisten(call.vm, type, call.arg(1), call.vm.toBoolean(call.arg(2)));
    return {};
}
Value hasEventListener(Call& call)
{
    return dispatcher(call).hasListener(call.vm.names().intern(call.vm.toString(call.arg(0))));
}
Value willTrigger(Call& call)
{
    const Name type = call.vm.names().intern(call.vm.toString(call.arg(0)));
    for (const DispatcherObject* at = &dispatcher(call); at != nullptr; at = at->eventParent()) {
        if (at->hasListener(type)) return true;
    }
    return false;
}
Value dispatchEvent(Call& call)
{
    auto* event = as<EventObject>(call.arg(0));
    if (event == nullptr) call.vm.throwError(ErrorClass::Type, 2007, "Parameter event must be non-null.");
    if (event->isDispatched) {
        // It goes out again as a copy.
        const Value copy = call.vm.callPublic(Value(event), "clone");
        event = as<EventObject>(copy);
        if (event == nullptr) call.vm.throwError(ErrorClass::Type, 2007, "Parameter event must be non-null.");
    }
    return dispatcher(call).dispatch(call.vm, *event);
}
constexpr NativeMember kEventMembers[] = {
    {"type", Kind::Getter, &type, 0, 0, nullptr, "String"},
    {"bubbles", Kind::Getter, &bubbles, 0, 0, nullptr, "Boolean"},
    {"cancelable", Kind::Getter, &cancelable, 0, 0, nullptr, "Boolean"},
    {"target", Kind::Getter, &target, 0, 0, nullptr, "Object"},
    {"currentTarget", Kind::Getter, &currentTarget, 0, 0, nullptr, "Object"},
    {"eventPhase", Kind::Getter, &eventPhase, 0, 0, nullptr, "uint"},
    {"stopPropagation", Kind::Method, &stopPropagation, 0, 0},
    {"stopImmediatePropagation", Kind::Method, &stopImmediatePropagation, 0, 0},
    {"preventDefault", Kind::Method, &preventDefault, 0, 0},
    {"isDefaultPrevented", Kind::Method, &isDefaultPrevented, 0, 0},
    {"clone", Kind::Method, &cloneEvent, 0, 0},
    {"toString", Kind::Method, &eventToString, 0, 0},
    {"formatToString", Kind::Method, &formatToString, 1, -1},
};
constexpr NativeConstant kEventConstants[] = {
    {"ACTIVATE", 0, "activate"},
    {"ADDED", 0, "added"},
    {"ADDED_TO_STAGE", 0, "addedToStage"},
    {"CANCEL", 0, "cancel"},
    {"CHANGE", 0, "change"},
    {"CLEAR", 0, "clear"},
    {"CLOSE", 0, "close"},
    {"COMPLETE", 0, "complete"},
    {"CONNECT", 0, "connect"},
    {"COPY", 0, "copy"},
    {"CUT", 0, "cut"},
    {"DEACTIVATE", 0, "deactivate"},
    {"ENTER_FRAME", 0, "enterFrame"},
    {"EXIT_FRAME", 0, "exitFrame"},
    {"FRAME_CONSTRUCTED", 0, "frameConstructed"},
    {"FULLSCREEN", 0, "fullScreen"},
    {"ID3", 0, "id3"},
    {"INIT", 0, "init"},
    {"MOUSE_LEAVE", 0, "mouseLeave"},
    {"OPEN", 0, "open"},
    {"PASTE", 0, "paste"},
    {"REMOVED", 0, "removed"},
    {"REMOVED_FROM_STAGE", 0, "removedFromStage"},
    {"RENDER", 0, "render"},
    {"RESIZE", 0, "resize"},
    {"SCROLL", 0, "scroll"},
    {"SELECT", 0, "select"},
    {"SELECT_ALL", 0, "selectAll"},
    {"SOUND_COMPLETE", 0, "soundComplete"},
    {"TAB_CHILDREN_CHANGE", 0, "tabChildrenChange"},
    {"TAB_ENABLED_CHANGE", 0, "tabEnabledChange"},
    {"TAB_INDEX_CHANGE", 0, "tabIndexChange"},
    {"UNLOAD", 0, "unload"},
    {"FRAME_LABEL", 0, "frameLabel"},
    {"CONTEXT3D_CREATE", 0, "context3DCreate"},
    {"TEXTURE_READY", 0, "textureReady"},
    {"TEXT_INTERACTION_MODE_CHANGE", 0, "textInteractionModeChange"},
    {"VIDEO_FRAME", 0, "videoFrame"},
};
constexpr NativeConstant kPhases[] = {{"CAPTURING_PHASE", 1}, {"AT_TARGET", 2}, {"BUBBLING_PHASE", 3}};
constexpr NativeConstant kMouseConstants[] = {
    {"CLICK", 0, "click"},
    {"DOUBLE_CLICK", 0, "doubleClick"},
    {"MOUSE_DOWN", 0, "mouseDown"},
    {"MOUSE_MOVE", 0, "mouseMove"},
    {"MOUSE_OUT", 0, "mouseOut"},
    {"MOUSE_OVER", 0, "mouseOver"},
    {"MOUSE_UP", 0, "mouseUp"},
    {"MOUSE_WHEEL", 0, "mouseWheel"},
    {"ROLL_OUT", 0, "rollOut"},
    {"ROLL_OVER", 0, "rollOver"},
    {"RIGHT_CLICK", 0, "rightClick"},
    {"MIDDLE_CLICK", 0, "middleClick"},
    {"RIGHT_MOUSE_DOWN", 0, "rightMouseDown"},
    {"RIGHT_MOUSE_UP", 0, "rightMouseUp"},
    {"MIDDLE_MOUSE_DOWN", 0, "middleMouseDown"},
    {"MIDDLE_MOUSE_UP", 0, "middleMouseUp"},
    {"RELEASE_OUTSIDE", 0, "releaseOutside"},
    {"CONTEXT_MENU", 0, "contextMenu"},
};
constexpr NativeConstant kKeyConstants[] = {{"KEY_DOWN", 0, "keyDown"}, {"KEY_UP", 0, "keyUp"}};
constexpr NativeConstant kTimerConstants[] = {{"TIMER", 0, "timer"}, {"TIMER_COMPLETE", 0, "timerComplete"}};
constexpr NativeConstant kProgressConstants[] = {{"PROGRESS", 0, "progress"},
                                                 {"SOCKET_DATA", 0, "socketData"}};
constexpr NativeConstant kIoConstants[] = {{"IO_ERROR", 0, "ioError"}};
constexpr NativeConstant kErrorConstants[] = {{"ERROR", 0, "error"}};
constexpr NativeConstant kSecurityConstants[] = {{"SECURITY_ERROR", 0, "securityError"}};
constexpr NativeConstant kFocusConstants[] = {{"FOCUS_IN", 0, "focusIn"},
                                              {"FOCUS_OUT", 0, "focusOut"},
                                              {"KEY_FOCUS_CHANGE", 0, "keyFocusChange"},
                                              {"MOUSE_FOCUS_CHANGE", 0, "mouseFocusChange"}};
constexpr NativeConstant kTextConstants[] = {{"LINK", 0, "link"}, {"TEXT_INPUT", 0, "textInput"}};
constexpr NativeConstant kHttpConstants[] = {{"HTTP_STATUS", 0, "httpStatus"},
                                             {"HTTP_RESPONSE_STATUS", 0, "httpResponseStatus"}};
constexpr NativeConstant kNetConstants[] = {{"NET_STATUS", 0, "netStatus"}};
constexpr NativeConstant kAsyncConstants[] = {{"ASYNC_ERROR", 0, "asyncError"}};
constexpr NativeConstant kDataConstants[] = {{"DATA", 0, "data"},
                                             {"UPLOAD_COMPLETE_DATA", 0, "uploadCompleteData"}};
constexpr NativeConstant kSampleConstants[] = {{"SAMPLE_DATA", 0, "sampleData"}};
constexpr NativeConstant kScreenConstants[] = {
    {"FULL_SCREEN", 0, "fullScreen"},
    {"FULL_SCREEN_INTERACTIVE_ACCEPTED", 0, "fullScreenInteractiveAccepted"}};
constexpr NativeConstant kMenuConstants[] = {{"MENU_ITEM_SELECT", 0, "menuItemSelect"},
                                             {"MENU_SELECT", 0, "menuSelect"}};
constexpr NativeConstant kActivityConstants[] = {{"ACTIVITY", 0, "activity"}};
constexpr NativeConstant kStatusConstants[] = {{"STATUS", 0, "status"}};
constexpr NativeMember kDispatcherMembers[] = {
    {"addEventListener", Kind::Method, &addEventListener, 2, 5},
    {"removeEventListener", Kind::Method, &removeEventListener, 2, 3},
    {"hasEventListener", Kind::Method, &hasEventListener, 1, 1},
    {"willTrigger", Kind::Method, &willTrigger, 1, 1},
    {"dispatchEvent", Kind::Method, &dispatchEvent, 1, 1},
};

constexpr NativeMember kMouseMembers[] = {
    {"stageX", Kind::Getter, &interactive::stageX, 0, 0, nullptr, "Number"},
    {"stageY", Kind::Getter, &interactive::stageY, 0, 0, nullptr, "Number"},
    {"updateAfterEvent", Kind::Method, &interactive::updateAfterEvent, 0, 0},
};
constexpr NativeMember kUpdateMembers[] = {
    {"updateAfterEvent", Kind::Method, &interactive::updateAfterEvent, 0, 0},
};

constexpr NativeClass kClasses[] = {
    {.package = "flash.events",
     .name = "Event",
     .base = {},
     .flags = NativeClass::Sealed,
     .constructor = &constructEvent,
     .minArguments = 1,
     .maxArguments = 3,
     .allocate = &allocateNative<EventObject>,
     .members = kEventMembers,
     .constants = kEventConstants},
    {.package = "flash.events", .name = "EventPhase", .base = {}, .constants = kPhases},
    {.package = "flash.events", .name = "IEventDispatcher", .base = {}, .flags = NativeClass::Interface},
    {.package = "flash.events",
     .name = "EventDispatcher",
     .base = {},
     .flags = NativeClass::Sealed,
     .constructor = &constructDispatcher,
     .minArguments = 0,
     .maxArguments = 1,
     .allocate = &allocateNative<DispatcherObject>,
     .members = kDispatcherMembers,
     .interfaces = "flash.events::IEventDispatcher"},
    eventClass("MouseEvent",
               "localX:Number=nan localY:Number=nan relatedObject:* ctrlKey:Boolean altKey:Boolean "
               "shiftKey:Boolean buttonDown:Boolean delta:int isRelatedObjectInaccessible:Boolean "
               "movementX:Number movementY:Number",
               kMouseConstants, kMouseMembers),
    eventClass("KeyboardEvent",
               "charCode:uint keyCode:uint keyLocation:uint ctrlKey:Boolean altKey:Boolean shiftKey:Boolean",
               kKeyConstants, kUpdateMembers),
    eventClass("TimerEvent", "", kTimerConstants, kUpdateMembers),
    eventClass("ProgressEvent", "bytesLoaded:Number bytesTotal:Number", kProgressConstants),
    eventClass("TextEvent", "text:String=", kTextConstants),
    eventClass("ErrorEvent", "errorID:int", kErrorConstants, {}, "flash.events::TextEvent"),
    eventClass("IOErrorEvent", "", kIoConstants, {}, "flash.events::ErrorEvent"),
    eventClass("SecurityErrorEvent", "", kSecurityConstants, {}, "flash.events::ErrorEvent"),
    eventClass("AsyncErrorEvent", "error:*", kAsyncConstants, {}, "flash.events::ErrorEvent"),
    eventClass("FocusEvent",
               "relatedObject:* shiftKey:Boolean keyCode:uint direction:String "
               "isRelatedObjectInaccessible:Boolean",
               kFocusConstants),
    eventClass("HTTPStatusEvent", "status:int redirected:Boolean responseURL:String responseHeaders:*",
               kHttpConstants),
    eventClass("NetStatusEvent", "info:*", kNetConstants),
    eventClass("DataEvent", "data:String=", kDataConstants, {}, "flash.events::TextEvent"),
    eventClass("SampleDataEvent", "position:Number data:*", kSampleConstants),
    eventClass("FullScreenEvent", "fullScreen:Boolean interactive:Boolean", kScreenConstants),
    eventClass("ContextMenuEvent", "mouseTarget:* contextMenuOwner:* isMouseTargetInaccessible:Boolean",
               kMenuConstants),
    eventClass("ActivityEvent", "activating:Boolean", kActivityConstants),
    eventClass("StatusEvent", "code:String level:String", kStatusConstants),
};

} // namespace

Value constructEvent(Call& call)
{
    auto& made = event(call);
    made.type = call.vm.coerceString(call.arg(0));
    made.bubbles = call.has(1) ? call.vm.toBoolean(call.arg(1)) : bubblesByDefault(call.vm, made);
    made.cancelable = call.vm.toBoolean(call.arg(2));
    if (call.count <= 3) return {};
    // Not all take what their base has: data comes in the place of a text, an error in that of its number.
    const auto isA = [&](const char* cls) { return made.traits()->isA(call.vm.nativeClass(cls)->instances); };
    const std::uint32_t left = isA("flash.events::DataEvent")         ? 3U
                               : isA("flash.events::AsyncErrorEvent") ? 4U
                                                                      : call.count;
    for (std::uint32_t i = 3; i < call.count; ++i) {
        const std::uint32_t slot = i < left ? i - 3 : i - 2;
        if (slot < made.slotCount()) call.vm.setSlotTyped(made, slot, call.args[i]);
    }
    return {};
}

std::span<const NativeClass> eventClasses() { return kClasses; }

} // namespace flash::avm2
