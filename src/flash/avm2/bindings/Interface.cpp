#include "flash/avm2/bindings/Fields.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/bindings/Player.h"

// What a movie has of its user besides the stage: keys, cursor, menus, printers, helpers.
namespace flash::avm2
{

using classes::allocateNative;
using classes::selfAs;
using Kind = NativeMember::Kind;

namespace
{

// ---- Keyboard ----

template <int key>
Value isToggled(Call& call)
{
    return Player::of(call.vm).stage().keyboard().isToggled(key);
}
constexpr int kCapsLock = 20, kNumLock = 144;
Value isAccessibleKey(Call&) { return false; }

constexpr NativeMember kKeyboard[] = {
    {"capsLock", Kind::StaticGetter, &isToggled<kCapsLock>, 0, 0, nullptr, "Boolean"},
    {"numLock", Kind::StaticGetter, &isToggled<kNumLock>, 0, 0, nullptr, "Boolean"},
    {"hasVirtualKeyboard", Kind::StaticGetter, &isAlwaysFalse, 0, 0, nullptr, "Boolean"},
    {"physicalKeyboardType", Kind::StaticGetter,
     [](Call& call) -> Value { return Value(call.vm.name("alphanumeric").string()); }, 0, 0, nullptr,
     "String"},
    {"isAccessible", Kind::Static, &isAccessibleKey, 0, 0},
};
using C = NativeConstant;
// clang-format off
constexpr C kKeys[] = {
    {"A", 65}, {"B", 66}, {"C", 67}, {"D", 68}, {"E", 69}, {"F", 70}, {"G", 71}, {"H", 72}, {"I", 73},
    {"J", 74}, {"K", 75}, {"L", 76}, {"M", 77}, {"N", 78}, {"O", 79}, {"P", 80}, {"Q", 81}, {"R", 82},
    {"S", 83}, {"T", 84}, {"U", 85}, {"V", 86}, {"W", 87}, {"X", 88}, {"Y", 89}, {"Z", 90},
    {"NUMBER_0", 48}, {"NUMBER_1", 49}, {"NUMBER_2", 50}, {"NUMBER_3", 51}, {"NUMBER_4", 52},
    {"NUMBER_5", 53}, {"NUMBER_6", 54}, {"NUMBER_7", 55}, {"NUMBER_8", 56}, {"NUMBER_9", 57},
    {"BACKSPACE", 8}, {"TAB", 9}, {"ENTER", 13}, {"COMMAND", 15}, {"SHIFT", 16}, {"CONTROL", 17},
    {"ALTERNATE", 18}, {"CAPS_LOCK", 20}, {"NUMPAD", 21}, {"ESCAPE", 27}, {"SPACE", 32}, {"PAGE_UP", 33},
    {"PAGE_DOWN", 34}, {"END", 35}, {"HOME", 36}, {"LEFT", 37}, {"UP", 38}, {"RIGHT", 39}, {"DOWN", 40},
    {"INSERT", 45}, {"DELETE", 46},
    {"NUMPAD_0", 96}, {"NUMPAD_1", 97}, {"NUMPAD_2", 98}, {"NUMPAD_3", 99}, {"NUMPAD_4", 100},
    {"NUMPAD_5", 101}, {"NUMPAD_6", 102}, {"NUMPAD_7", 103}, {"NUMPAD_8", 104}, {"NUMPAD_9", 105},
    {"NUMPAD_MULTIPLY", 106}, {"NUMPAD_ADD", 107}, {"NUMPAD_ENTER", 108}, {"NUMPAD_SUBTRACT", 109},
    {"NUMPAD_DECIMAL", 110}, {"NUMPAD_DIVIDE", 111},
    {"F1", 112}, {"F2", 113}, {"F3", 114}, {"F4", 115}, {"F5", 116}, {"F6", 117}, {"F7", 118}, {"F8", 119},
    {"F9", 120}, {"F10", 121}, {"F11", 122}, {"F12", 123}, {"F13", 124}, {"F14", 125}, {"F15", 126},
    {"SEMICOLON", 186}, {"EQUAL", 187}, {"COMMA", 188}, {"MINUS", 189}, {"PERIOD", 190}, {"SLASH", 191},
    {"BACKQUOTE", 192}, {"LEFTBRACKET", 219}, {"BACKSLASH", 220}, {"RIGHTBRACKET", 221}, {"QUOTE", 222},
    {"STRING_BEGIN", 0, "Begin"}, {"STRING_BREAK", 0, "Break"}, {"STRING_CLEARDISPLAY", 0, "ClrDsp"},
    {"STRING_CLEARLINE", 0, "ClrLn"}, {"STRING_DELETE", 0, "Delete"}, {"STRING_DELETECHAR", 0, "DelChr"},
    {"STRING_DELETELINE", 0, "DelLn"}, {"STRING_DOWNARROW", 0, "Down"}, {"STRING_END", 0, "End"},
    {"STRING_EXECUTE", 0, "Exec"}, {"STRING_FIND", 0, "Find"}, {"STRING_HELP", 0, "Help"},
    {"STRING_HOME", 0, "Home"}, {"STRING_INSERT", 0, "Insert"}, {"STRING_INSERTCHAR", 0, "InsChr"},
    {"STRING_INSERTLINE", 0, "InsLn"}, {"STRING_LEFTARROW", 0, "Left"}, {"STRING_MENU", 0, "Menu"},
    {"STRING_MODESWITCH", 0, "ModeSw"}, {"STRING_NEXT", 0, "Next"}, {"STRING_PAGEDOWN", 0, "PgDn"},
    {"STRING_PAGEUP", 0, "PgUp"}, {"STRING_PAUSE", 0, "Pause"}, {"STRING_PREV", 0, "Prev"},
    {"STRING_PRINT", 0, "Print"}, {"STRING_PRINTSCREEN", 0, "PrntScrn"}, {"STRING_REDO", 0, "Redo"},
    {"STRING_RESET", 0, "Reset"}, {"STRING_RIGHTARROW", 0, "Right"}, {"STRING_SCROLLLOCK", 0, "ScrlLck"},
    {"STRING_SELECT", 0, "Select"}, {"STRING_STOP", 0, "Stop"}, {"STRING_SYSREQ", 0, "SysReq"},
    {"STRING_SYSTEM", 0, "Sys"}, {"STRING_UNDO", 0, "Undo"}, {"STRING_UPARROW", 0, "Up"},
    {"STRING_USER", 0, "User"},
};
// clang-format on
constexpr C kLocations[] = {{"STANDARD", 0}, {"LEFT", 1}, {"RIGHT", 2}, {"NUM_PAD", 3}, {"D_PAD", 4}};
constexpr C kTouchModes[] = {
    {"GESTURE", 0, "gesture"}, {"NONE", 0, "none"}, {"TOUCH_POINT", 0, "touchPoint"}};
constexpr C kKeyboardTypes[] = {
    {"ALPHANUMERIC", 0, "alphanumeric"}, {"KEYPAD", 0, "keypad"}, {"NONE", 0, "none"}};

Value inputMode(Call& call) { return Value(call.vm.string(Player::of(call.vm).kept.touchMode)); }
/// Which of the user's touches would be told of; there are none.
Value setInputMode(Call& call)
{
    const std::u16string mode = textArg(call, 0, "inputMode");
    for (const std::u16string_view known : {u"none", u"gesture", u"touchPoint"}) {
        if (mode != known) continue;
        Player::of(call.vm).kept.touchMode = known;
        return {};
    }
    throwNotAccepted(call.vm, "inputMode");
}
Value mapsTouch(Call& call) { return Player::of(call.vm).kept.mapsTouch; }
Value setMapsTouch(Call& call)
{
    Player::of(call.vm).kept.mapsTouch = call.vm.toBoolean(call.arg(0));
    return {};
}
constexpr NativeMember kMultitouch[] = {
    {"inputMode", Kind::StaticGetter, &inputMode, 0, 0, &setInputMode, "String"},
    {"maxTouchPoints", Kind::StaticGetter, &isAlwaysZero, 0, 0, nullptr, "int"},
    {"supportedGestures", Kind::StaticGetter, &isAlwaysNull},
    {"supportsGestureEvents", Kind::StaticGetter, &isAlwaysFalse, 0, 0, nullptr, "Boolean"},
    {"supportsTouchEvents", Kind::StaticGetter, &isAlwaysFalse, 0, 0, nullptr, "Boolean"},
    {"mapTouchToMouse", Kind::StaticGetter, &mapsTouch, 0, 0, &setMapsTouch, "Boolean"},
};

// ---- game devices: there are none ----

Value deviceAt(Call& call) { call.vm.throwError(ErrorClass::Range, 1506, "The specified range is invalid."); }
constexpr NativeMember kGameInput[] = {
    {"numDevices", Kind::StaticGetter, &isAlwaysZero, 0, 0, nullptr, "int"},
    {"isSupported", Kind::StaticGetter, &isAlwaysFalse, 0, 0, nullptr, "Boolean"},
    {"getDeviceAt", Kind::Static, &deviceAt, 1, 1},
};

// ---- menus ----

Value makeMenuList(Call& call)
{
    // hideBuiltInItems() and its like are about the player's own items, which this player decides on.
    Object& self = *call.self.object();
    self.setSlot(0, Value(call.vm.newArray()));
    self.setSlot(1, call.vm.construct(Value(call.vm.nativeClass("flash.ui::ContextMenuBuiltInItems")), {}));
    self.setSlot(2, call.vm.construct(Value(call.vm.nativeClass("flash.ui::ContextMenuClipboardItems")), {}));
    return {};
}
Value hideBuiltIn(Call& call)
{
    Object* items = call.self.object()->slot(1).asObject();
    for (std::uint32_t i = 0; items != nullptr && i < items->slotCount(); ++i) items->setSlot(i, false);
    return {};
}
Value cloneSlots(Call& call)
{
    Object& self = *call.self.object();
    ClassObject* cls = self.traits()->cls;
    while (cls->constructor != nullptr && cls->constructor->native == nullptr && cls->base != nullptr)
        cls = cls->base;
    Object* made = call.vm.instantiate(cls);
    for (std::uint32_t i = 0; i < made->slotCount() && i < self.slotCount(); ++i)
        made->setSlot(i, self.slot(i));
    return Value(made);
}
constexpr NativeMember kMenu[] = {
    {"hideBuiltInItems", Kind::Method, &hideBuiltIn, 0, 0},
    {"clone", Kind::Method, &cloneSlots, 0, 0},
    {"isSupported", Kind::StaticGetter, &isAlwaysTrue, 0, 0, nullptr, "Boolean"},
};
constexpr NativeMember kClone[] = {{"clone", Kind::Method, &cloneSlots, 0, 0}};
/// What its base has, it sets as well.
Value makeMenuItem(Call& call)
{
    if (call.arg(0).isNullish()) throwNullParameter(call.vm, "caption");
    constexpr const char* kNames[] = {"caption", "separatorBefore", "enabled", "visible"};
    Object& self = *call.self.object();
    for (std::uint32_t i = 0; i < call.count && i < std::size(kNames); ++i)
        setReadOnly(call.vm, self, kNames[i], call.args[i]);
    return {};
}

// ---- what is outside the player: not there ----

Value noExternal(Call& call)
{
    call.vm.throwError(ErrorClass::Error, 2067,
                       "The ExternalInterface is not available in this container. ExternalInterface requires "
                       "Internet Explorer ActiveX, Firefox, Mozilla 1.7.5 and greater, or other browsers "
                       "that support NPRuntime.");
}
constexpr NativeMember kExternal[] = {
    {"available", Kind::StaticGetter, &isAlwaysFalse, 0, 0, nullptr, "Boolean"},
    {"objectID", Kind::StaticGetter, &isAlwaysNull, 0, 0, nullptr, "String"},
    {"marshallExceptions", Kind::StaticGetter, &isAlwaysFalse, 0, 0, &doNothing, "Boolean"},
    {"addCallback", Kind::Static, &noExternal, 2, 2},
    {"call", Kind::Static, &noExternal, 1, -1},
};
constexpr NativeMember kAccessibility[] = {
    {"active", Kind::StaticGetter, &isAlwaysFalse, 0, 0, nullptr, "Boolean"},
    {"sendEvent", Kind::Static, &doNothing, 3, 4},
    {"updateProperties", Kind::Static, &doNothing, 0, 0},
};

// ---- printing: nothing comes of it ----

Value printJob(Call& call)
{
    Player::of(call.vm).log("PrintJob: there is no printer");
    return false;
}
Value addPage(Call& call)
{
    call.vm.throwError(ErrorClass::Error, 2057, "The page could not be added to the print job.");
}
constexpr NativeMember kPrintJob[] = {
    {"start", Kind::Method, &printJob, 0, 0},
    {"addPage", Kind::Method, &addPage, 1, 4},
    {"send", Kind::Method, &doNothing, 0, 0},
    {"isSupported", Kind::StaticGetter, &isAlwaysFalse, 0, 0, nullptr, "Boolean"},
};
constexpr C kOrientations[] = {{"LANDSCAPE", 0, "landscape"}, {"PORTRAIT", 0, "portrait"}};

// ---- sensors: none ----

constexpr NativeMember kSensor[] = {
    {"isSupported", Kind::StaticGetter, &isAlwaysFalse, 0, 0, nullptr, "Boolean"},
    {"muted", Kind::Getter, &isAlwaysTrue, 0, 0, nullptr, "Boolean"},
    {"setRequestedUpdateInterval", Kind::Method, &doNothing, 1, 1},
};
constexpr NativeClass sensor(std::string_view name)
{
    return {.package = "flash.sensors",
            .name = name,
            .base = "flash.events::EventDispatcher",
            .flags = NativeClass::Sealed,
            .minArguments = 0,
            .maxArguments = 0,
            .members = kSensor};
}

constexpr std::string_view kDispatcher = "flash.events::EventDispatcher";

constexpr NativeClass kClasses[] = {
    {.package = "flash.ui",
     .name = "Keyboard",
     .base = {},
     .flags = NativeClass::Sealed | NativeClass::Final,
     .members = kKeyboard,
     .constants = kKeys},
    constantsOf("flash.ui", "KeyLocation", kLocations),
    constantsOf("flash.ui", "MultitouchInputMode", kTouchModes),
    constantsOf("flash.ui", "KeyboardType", kKeyboardTypes),
    staticsOf("flash.ui", "Multitouch", kMultitouch),
    {.package = "flash.ui",
     .name = "GameInput",
     .base = kDispatcher,
     .flags = NativeClass::Sealed,
     .members = kGameInput},
    {.package = "flash.ui",
     .name = "GameInputControl",
     .base = kDispatcher,
     .flags = NativeClass::Sealed,
     .constructor = &refuseConstruction},
    {.package = "flash.ui",
     .name = "GameInputDevice",
     .base = {},
     .flags = NativeClass::Sealed,
     .constructor = &refuseConstruction},
    {.package = "flash.display",
     .name = "NativeMenu",
     .base = kDispatcher,
     .flags = NativeClass::Sealed,
     .constructor = &refuseConstruction,
     .minArguments = 0,
     .maxArguments = 0,
     .since = 10},
    {.package = "flash.display",
     .name = "NativeMenuItem",
     .base = kDispatcher,
     .flags = NativeClass::Sealed,
     .minArguments = 0,
     .maxArguments = 0,
     .slots = "enabled:Boolean=true",
     .since = 10},
    {.package = "flash.ui",
     .name = "ContextMenuBuiltInItems",
     .base = {},
     .flags = NativeClass::Sealed | NativeClass::Final,
     .members = kClone,
     .slots = "forwardAndBack:Boolean=true loop:Boolean=true play:Boolean=true print:Boolean=true "
              "quality:Boolean=true rewind:Boolean=true save:Boolean=true zoom:Boolean=true"},
    {.package = "flash.ui",
     .name = "ContextMenuClipboardItems",
     .base = {},
     .flags = NativeClass::Sealed | NativeClass::Final,
     .members = kClone,
     .slots = "clear:Boolean copy:Boolean cut:Boolean paste:Boolean selectAll:Boolean"},
    {.package = "flash.ui",
     .name = "ContextMenu",
     .base = "flash.display::NativeMenu",
     .flags = NativeClass::Sealed | NativeClass::Final,
     .constructor = &makeMenuList,
     .minArguments = 0,
     .maxArguments = 0,
     .members = kMenu,
     .slots = "customItems:* builtInItems:* clipboardItems:* clipboardMenu:Boolean link:*"},
    {.package = "flash.ui",
     .name = "ContextMenuItem",
     .base = "flash.display::NativeMenuItem",
     .flags = NativeClass::Sealed | NativeClass::Final,
     .constructor = &makeMenuItem,
     .minArguments = 1,
     .maxArguments = 4,
     .members = kClone,
     .slots = "caption:String separatorBefore:Boolean visible:Boolean=true"},
    staticsOf("flash.external", "ExternalInterface", kExternal),
    staticsOf("flash.accessibility", "Accessibility", kAccessibility),
    {.package = "flash.accessibility",
     .name = "AccessibilityProperties",
     .base = {},
     .flags = NativeClass::Sealed,
     .slots = "name:String= description:String= shortcut:String= silent:Boolean forceSimple:Boolean "
              "noAutoLabeling:Boolean"},
    {.package = "flash.printing",
     .name = "PrintJob",
     .base = kDispatcher,
     .flags = NativeClass::Sealed,
     .members = kPrintJob,
     .slots = "orientation:String pageHeight:int pageWidth:int paperHeight:int paperWidth:int"},
    {.package = "flash.printing",
     .name = "PrintJobOptions",
     .base = {},
     .flags = NativeClass::Sealed,
     .constructor = &assignSlots,
     .minArguments = 0,
     .maxArguments = 1,
     .slots = "printAsBitmap:Boolean"},
    constantsOf("flash.printing", "PrintJobOrientation", kOrientations),
    sensor("Accelerometer"),
    sensor("Geolocation"),
};

} // namespace

NativeLibrary interfaceLibrary() { return {kClasses, {}}; }

} // namespace flash::avm2
