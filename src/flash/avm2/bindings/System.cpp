#include "flash/avm2/bindings/Fields.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/bindings/Player.h"
#include "flash/avm2/classes/ByteArray.h"

#include <algorithm>

// What the player says of itself and the machine, and the few things that movies may do to it.
namespace flash::avm2
{

using Kind = NativeMember::Kind;

namespace
{

Value fscommand(Call& call)
{
    stage::Stage& stage = Player::of(call.vm).stage();
    const std::string command = toUtf8(call.vm.text(call.arg(0)));
    const std::string argument = call.has(1) ? toUtf8(call.vm.text(call.arg(1))) : std::string();
    if (!stage.queue().takesRequest(command.size() + argument.size())) return {};
    stage.queue().addRequest(
        [&stage, command, argument] { stage.services().host.fsCommand(command, argument); },
        command.size() + argument.size());
    return {};
}

// ---- System ----

Value memory(Call& call) { return static_cast<double>(call.vm.heap().bytesInUse()); }
Value setClipboard(Call& call)
{
    Player& player = Player::of(call.vm);
    const std::string text = toUtf8(call.vm.text(call.arg(0)));
    // What the user has copied elsewhere is not to vanish without the user doing something.
    if (!player.stage().isHandlingInput()) {
        player.log("System.setClipboard is only obeyed while the user acts");
        return {};
    }
    player.stage().services().host.setClipboardText(text);
    return {};
}
Value disposeXml(Call&) { return {}; }
Value collect(Call& call)
{
    call.vm.heap().collect();
    return {};
}
/// Movies do not end the player; they may ask for it by fscommand.
Value exitPlayer(Call& call)
{
    call.vm.throwError(ErrorClass::Security, 2103, "System.exit is only available in the standalone player.");
}

// ---- Security ----

Value sandboxType(Call& call) { return Value(call.vm.name("localWithFile").string()); }
Value pageDomain(Call&) { return Value::null(); }
/// A setting of the whole player that scripts make and read again.
template <bool PlayerSettings::*setting>
Value kept(Call& call)
{
    return Player::of(call.vm).kept.*setting;
}
template <bool PlayerSettings::*setting>
Value keep(Call& call)
{
    Player::of(call.vm).kept.*setting = call.vm.toBoolean(call.arg(0));
    return {};
}

// ---- Capabilities ----

template <bool answer>
Value flag(Call&)
{
    return answer;
}
Value textOf(Call& call, const char* text) { return Value(call.vm.string(std::string_view(text))); }
Value version(Call& call) { return textOf(call, "WIN 11,2,202,0"); }
Value playerType(Call& call) { return textOf(call, "StandAlone"); }
Value manufacturer(Call& call) { return textOf(call, "Macromedia Windows"); }
Value os(Call& call) { return textOf(call, "Windows XP"); }
Value cpu(Call& call) { return textOf(call, "x86"); }
Value screenColor(Call& call) { return textOf(call, "color"); }
Value touchscreen(Call& call) { return textOf(call, "none"); }
Value language(Call& call)
{
    return Value(call.vm.string(std::string_view(Player::of(call.vm).inputs().language)));
}
Value screenX(Call& call) { return Player::of(call.vm).inputs().screenWidth; }
Value screenY(Call& call) { return Player::of(call.vm).inputs().screenHeight; }
Value dpi(Call&) { return 72; }
Value one(Call&) { return 1; }
Value idcLevel(Call& call) { return textOf(call, "5.1"); }
Value serverString(Call& call)
{
    const PlayerInputs& inputs = Player::of(call.vm).inputs();
    const std::string text =
        "A=t&SA=t&SV=t&EV=t&MP3=t&AE=f&VE=f&ACC=f&PR=f&SP=f&SB=f&DEB=f&V=WIN%2011%2C2%2C202%2C0&M=Macromedia%"
        "20"
        "Windows&R=" +
        std::to_string(inputs.screenWidth) + "x" + std::to_string(inputs.screenHeight) +
        "&COL=color&AR=1.0&OS=Windows%20XP&ARCH=x86&L=" + inputs.language +
        "&PR32=t&PR64=f&LS=en&PT=StandAlone&AVD=t&LFD=f&WD=f&IME=f&DD=f&DDP=f&DTS=f&DTE=f&DTH=f&DTM=f";
    return Value(call.vm.string(std::string_view(text)));
}
Value hasMultiChannel(Call&) { return false; }

constexpr NativeMember kSystem[] = {
    {"gc", Kind::Static, &collect, 0, 0},
    {"totalMemory", Kind::StaticGetter, &memory, 0, 0, nullptr, "uint"},
    {"totalMemoryNumber", Kind::StaticGetter, &memory, 0, 0, nullptr, "Number"},
    {"privateMemory", Kind::StaticGetter, &memory, 0, 0, nullptr, "Number"},
    {"freeMemory", Kind::StaticGetter, [](Call&) -> Value { return 0; }, 0, 0, nullptr, "Number"},
    {"processCPUUsage", Kind::StaticGetter, [](Call&) -> Value { return 0; }, 0, 0, nullptr, "Number"},
    {"ime", Kind::StaticGetter, &isAlwaysNull},
    {"pause", Kind::Static, &doNothing, 0, 0},
    {"resume", Kind::Static, &doNothing, 0, 0},
    {"exit", Kind::Static, &exitPlayer, 1, 1},
    {"setClipboard", Kind::Static, &setClipboard, 1, 1},
    {"disposeXML", Kind::Static, &disposeXml, 1, 1},
    {"pauseForGCIfCollectionImminent", Kind::Static, &doNothing, 0, 1},
    {"useCodePage", Kind::StaticGetter, &kept<&PlayerSettings::usesCodePage>, 0, 0,
     &keep<&PlayerSettings::usesCodePage>, "Boolean"},
    {"vmVersion", Kind::StaticGetter, [](Call& call) -> Value { return textOf(call, "1.0 cyclone"); }, 0, 0,
     nullptr, "String"},
};
constexpr NativeMember kSecurity[] = {
    {"allowDomain", Kind::Static, &doNothing},
    {"allowInsecureDomain", Kind::Static, &doNothing},
    {"loadPolicyFile", Kind::Static, &doNothing, 1, 1},
    {"showSettings", Kind::Static, &doNothing, 0, 1},
    {"exactSettings", Kind::StaticGetter, &kept<&PlayerSettings::exactSettings>, 0, 0,
     &keep<&PlayerSettings::exactSettings>, "Boolean"},
    {"disableAVM1Loading", Kind::StaticGetter, &kept<&PlayerSettings::refusesOldMovies>, 0, 0,
     &keep<&PlayerSettings::refusesOldMovies>, "Boolean"},
    {"sandboxType", Kind::StaticGetter, &sandboxType, 0, 0, nullptr, "String"},
    {"pageDomain", Kind::StaticGetter, &pageDomain, 0, 0, nullptr, "String"},
};
/// Every movie is in the one that there is.
Value currentSecurityDomain(Call& call)
{
    return call.vm.construct(Value(call.vm.nativeClass("flash.system::SecurityDomain")), {});
}
constexpr NativeMember kSecurityDomain[] = {
    {"currentDomain", Kind::StaticGetter, &currentSecurityDomain, 0, 0, nullptr,
     "flash.system::SecurityDomain"},
};
using C = NativeConstant;
constexpr C kSecurityConstants[] = {
    {"APPLICATION", 0, "application"},
    {"LOCAL_TRUSTED", 0, "localTrusted"},
    {"LOCAL_WITH_FILE", 0, "localWithFile"},
    {"LOCAL_WITH_NETWORK", 0, "localWithNetwork"},
    {"REMOTE", 0, "remote"},
};
constexpr NativeMember kCapabilities[] = {
    {"avHardwareDisable", Kind::StaticGetter, &flag<true>, 0, 0, nullptr, "Boolean"},
    {"cpuArchitecture", Kind::StaticGetter, &cpu, 0, 0, nullptr, "String"},
    {"hasAccessibility", Kind::StaticGetter, &flag<false>, 0, 0, nullptr, "Boolean"},
    {"hasAudio", Kind::StaticGetter, &flag<true>, 0, 0, nullptr, "Boolean"},
    {"hasAudioEncoder", Kind::StaticGetter, &flag<false>, 0, 0, nullptr, "Boolean"},
    {"hasEmbeddedVideo", Kind::StaticGetter, &flag<true>, 0, 0, nullptr, "Boolean"},
    {"hasIME", Kind::StaticGetter, &flag<false>, 0, 0, nullptr, "Boolean"},
    {"hasMP3", Kind::StaticGetter, &flag<true>, 0, 0, nullptr, "Boolean"},
    {"hasMultiChannelAudio", Kind::Static, &hasMultiChannel, 1, 1},
    {"hasPrinting", Kind::StaticGetter, &flag<false>, 0, 0, nullptr, "Boolean"},
    {"hasScreenBroadcast", Kind::StaticGetter, &flag<false>, 0, 0, nullptr, "Boolean"},
    {"hasScreenPlayback", Kind::StaticGetter, &flag<false>, 0, 0, nullptr, "Boolean"},
    {"hasStreamingAudio", Kind::StaticGetter, &flag<true>, 0, 0, nullptr, "Boolean"},
    {"hasStreamingVideo", Kind::StaticGetter, &flag<true>, 0, 0, nullptr, "Boolean"},
    {"hasTLS", Kind::StaticGetter, &flag<false>, 0, 0, nullptr, "Boolean"},
    {"hasVideoEncoder", Kind::StaticGetter, &flag<false>, 0, 0, nullptr, "Boolean"},
    {"isDebugger", Kind::StaticGetter, &flag<false>, 0, 0, nullptr, "Boolean"},
    {"isEmbeddedInAcrobat", Kind::StaticGetter, &flag<false>, 0, 0, nullptr, "Boolean"},
    {"language", Kind::StaticGetter, &language, 0, 0, nullptr, "String"},
    {"localFileReadDisable", Kind::StaticGetter, &flag<false>, 0, 0, nullptr, "Boolean"},
    {"manufacturer", Kind::StaticGetter, &manufacturer, 0, 0, nullptr, "String"},
    {"maxLevelIDC", Kind::StaticGetter, &idcLevel, 0, 0, nullptr, "String"},
    {"os", Kind::StaticGetter, &os, 0, 0, nullptr, "String"},
    {"pixelAspectRatio", Kind::StaticGetter, &one, 0, 0, nullptr, "Number"},
    {"playerType", Kind::StaticGetter, &playerType, 0, 0, nullptr, "String"},
    {"screenColor", Kind::StaticGetter, &screenColor, 0, 0, nullptr, "String"},
    {"screenDPI", Kind::StaticGetter, &dpi, 0, 0, nullptr, "Number"},
    {"screenResolutionX", Kind::StaticGetter, &screenX, 0, 0, nullptr, "Number"},
    {"screenResolutionY", Kind::StaticGetter, &screenY, 0, 0, nullptr, "Number"},
    {"serverString", Kind::StaticGetter, &serverString, 0, 0, nullptr, "String"},
    {"supports32BitProcesses", Kind::StaticGetter, &flag<true>, 0, 0, nullptr, "Boolean"},
    {"supports64BitProcesses", Kind::StaticGetter, &flag<false>, 0, 0, nullptr, "Boolean"},
    {"touchscreenType", Kind::StaticGetter, &touchscreen, 0, 0, nullptr, "String"},
    {"version", Kind::StaticGetter, &version, 0, 0, nullptr, "String"},
};

// ---- contexts of loads ----

Value jpegContext(Call& call)
{
    Object& self = *call.self.object();
    const std::uint32_t last = self.slotCount() - 1;
    if (call.has(0)) call.vm.setSlotTyped(self, last, call.arg(0));
    for (std::uint32_t i = 1; i < call.count && i - 1 < last; ++i)
        call.vm.setSlotTyped(self, i - 1, call.args[i]);
    return {};
}

/// Bytes that nobody can foresee; whatever movies use them for stays within them.
Value randomBytes(Call& call)
{
    const std::uint32_t count = call.vm.toUint(call.arg(0));
    if (count == 0 || count > 1024)
        call.vm.throwError(ErrorClass::Range, 2004, "One of the parameters is invalid.");
    auto* array = as<classes::ByteArrayObject>(call.vm.construct(Value(call.vm.classes().byteArray), {}));
    for (std::uint32_t i = 0; i < count; ++i)
        array->content.push_back(static_cast<std::uint8_t>(Player::of(call.vm).random() >> 13U));
    return Value(array);
}

constexpr C kImePolicies[] = {
    {"ALPHANUMERIC_FULL", 0, "ALPHANUMERIC_FULL"},
    {"ALPHANUMERIC_HALF", 0, "ALPHANUMERIC_HALF"},
    {"CHINESE", 0, "CHINESE"},
    {"JAPANESE_HIRAGANA", 0, "JAPANESE_HIRAGANA"},
    {"JAPANESE_KATAKANA_FULL", 0, "JAPANESE_KATAKANA_FULL"},
    {"JAPANESE_KATAKANA_HALF", 0, "JAPANESE_KATAKANA_HALF"},
    {"KOREAN", 0, "KOREAN"},
    {"UNKNOWN", 0, "UNKNOWN"},
};
constexpr C kImageDecoding[] = {{"ON_DEMAND", 0, "onDemand"}, {"ON_LOAD", 0, "onLoad"}};
constexpr C kPanels[] = {
    {"CAMERA", 0, "camera"},
    {"DEFAULT", 0, "default"},
    {"DISPLAY", 0, "display"},
    {"LOCAL_STORAGE", 0, "localStorage"},
    {"MICROPHONE", 0, "microphone"},
    {"PRIVACY", 0, "privacy"},
    {"SETTINGS_MANAGER", 0, "settingsManager"},
};
constexpr C kTouchscreens[] = {{"FINGER", 0, "finger"}, {"NONE", 0, "none"}, {"STYLUS", 0, "stylus"}};
constexpr C kEndian[] = {{"BIG_ENDIAN", 0, "bigEndian"}, {"LITTLE_ENDIAN", 0, "littleEndian"}};
constexpr C kEncoding[] = {{"AMF0", 0}, {"AMF3", 3}, {"DEFAULT", 3}};
constexpr C kCompression[] = {{"DEFLATE", 0, "deflate"}, {"LZMA", 0, "lzma"}, {"ZLIB", 0, "zlib"}};

constexpr NativeClass interfaceOf(std::string_view package, std::string_view name)
{
    return {.package = package, .name = name, .base = {}, .flags = NativeClass::Interface};
}
constexpr std::string_view kContextSlots =
    "checkPolicyFile:Boolean applicationDomain:* securityDomain:* allowCodeImport:Boolean=true "
    "requestedContentParent:* parameters:* imageDecodingPolicy:String=onDemand";

constexpr NativeClass kClasses[] = {
    staticsOf("flash.system", "System", kSystem),
    {.package = "flash.system",
     .name = "Security",
     .base = {},
     .flags = NativeClass::Sealed | NativeClass::Final,
     .members = kSecurity,
     .constants = kSecurityConstants},
    staticsOf("flash.system", "Capabilities", kCapabilities),
    {.package = "flash.system",
     .name = "LoaderContext",
     .base = {},
     .flags = NativeClass::Sealed,
     .constructor = &assignSlots,
     .minArguments = 0,
     .maxArguments = 3,
     .slots = kContextSlots},
    {.package = "flash.system",
     .name = "JPEGLoaderContext",
     .base = "flash.system::LoaderContext",
     .flags = NativeClass::Sealed,
     .constructor = &jpegContext,
     .minArguments = 0,
     .maxArguments = 4,
     .slots = "deblockingFilter:Number"},
    {.package = "flash.system", .name = "SecurityDomain", .base = {}, .members = kSecurityDomain},
    constantsOf("flash.system", "SecurityPanel", kPanels),
    constantsOf("flash.system", "IMEConversionMode", kImePolicies),
    constantsOf("flash.system", "ImageDecodingPolicy", kImageDecoding),
    constantsOf("flash.system", "TouchscreenType", kTouchscreens),
    constantsOf("flash.utils", "Endian", kEndian),
    constantsOf("flash.utils", "CompressionAlgorithm", kCompression),
    constantsOf("flash.net", "ObjectEncoding", kEncoding),
    interfaceOf("flash.utils", "IDataInput"),
    interfaceOf("flash.utils", "IDataInput2"),
    interfaceOf("flash.utils", "IDataOutput"),
    interfaceOf("flash.utils", "IDataOutput2"),
    interfaceOf("flash.utils", "IExternalizable"),
};
constexpr NativeFunctionInfo kFunctions[] = {
    {"flash.system", "fscommand", &fscommand, 1, 2},
    {"flash.crypto", "generateRandomBytes", &randomBytes, 1, 1},
    {"flash.profiler", "profile", &doNothing, 1, 1},
    {"flash.profiler", "showRedrawRegions", &doNothing, 1, 2},
};

} // namespace

NativeLibrary systemLibrary() { return {kClasses, kFunctions}; }

} // namespace flash::avm2
