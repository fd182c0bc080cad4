#include "flash/avm1/bindings/Classes.h"

// System: what the player says of itself, security, the clipboard.
namespace flash::avm1
{

namespace
{

Value setClipboard(Call& call)
{
    StageBinding& binding = StageBinding::of(call);
    if (call.count() == 0) return Value(false);
    // What the user has copied elsewhere is not to vanish without the user doing something.
    if (!binding.stage().isHandlingInput()) {
        binding.services().host.logLine("System.setClipboard is only obeyed while the user acts");
        return Value(false);
    }
    binding.services().host.setClipboardText(utf8Arg(call, 0));
    return Value(true);
}

Value showSettings(Call& call)
{
    StageBinding::of(call).services().host.logLine("System.showSettings: there are no settings to show");
    return {};
}

/// Movies of one folder trust each other; nothing else is loaded.
Value allow(Call&) { return Value(true); }
Value sandboxType(Call& call) { return call.vm.string(std::string_view("localWithFile")); }

// clang-format off
constexpr MemberInfo kMembers[] = {
    {"setClipboard", 0, 0, &setClipboard, 0},
    {"showSettings", 0, 0, &showSettings, 1},
};
constexpr MemberInfo kSecurityMembers[] = {
    {"allowDomain",         0, 0,      &allow, 0},
    {"allowInsecureDomain", 0, kFrom7, &allow, 1},
    {"loadPolicyFile",      0, 0,      &allow, 2},
};
constexpr AccessorInfo kSecurityAccessors[] = {
    {"sandboxType", kFrom8, &sandboxType, nullptr},
};
struct Switch {
    const char* name;
    const char* code;  ///< in the server string
    bool on;
};
constexpr Switch kSwitches[] = {
    {"hasAudio",             "A",   true},
    {"hasStreamingAudio",    "SA",  true},
    {"hasStreamingVideo",    "SV",  false},
    {"hasEmbeddedVideo",     "EV",  true},
    {"hasMP3",               "MP3", true},
    {"hasAudioEncoder",      "AE",  false},
    {"hasVideoEncoder",      "VE",  false},
    {"hasAccessibility",     "ACC", false},
    {"hasPrinting",          "PR",  false},
    {"hasScreenPlayback",    "SP",  false},
    {"hasScreenBroadcast",   "SB",  false},
    {"isDebugger",           "DEB", false},
    {"localFileReadDisable", "LFD", false},
    {"avHardwareDisable",    "AVD", true},
};
// clang-format on

constexpr int kNativeTable = 1066, kSecurityTable = 12;

Object* makeCapabilities(StageBinding& binding)
{
    Vm& vm = binding.vm();
    const BindingInputs& inputs = binding.inputs();
    Object* made = vm.newObject();
    std::string server;
    for (const Switch& entry : kSwitches) {
        made->define(vm, entry.name, Value(entry.on));
        server += std::string(entry.code) + (entry.on ? "=t&" : "=f&");
    }
    const auto text = [&](const char* name, const std::string& value) {
        made->define(vm, name, binding.utf8(value));
    };
    // Movies look for these names; the version string claims the same system.
    text("manufacturer", "Macromedia Windows");
    text("os", "Windows XP");
    text("version", inputs.playerVersion);
    text("playerType", "StandAlone");
    text("language", inputs.language);
    text("screenColor", "color");
    made->define(vm, "screenResolutionX", Value(inputs.screenWidth));
    made->define(vm, "screenResolutionY", Value(inputs.screenHeight));
    made->define(vm, "screenDPI", Value(72));
    made->define(vm, "pixelAspectRatio", Value(1));
    server += "V=" + inputs.playerVersion + "&M=Macromedia Windows&R=" + std::to_string(inputs.screenWidth) +
              "x" + std::to_string(inputs.screenHeight) +
              "&DP=72&COL=color&AR=1.0&OS=Windows XP&L=" + inputs.language + "&PT=StandAlone";
    text("serverString", server);
    return made;
}

} // namespace

void installSystem(StageBinding& binding)
{
    Vm& vm = binding.vm();
    Object* system = defineGlobalObject(vm, "System", {});
    vm.addMembers(system, kMembers, kNativeTable);
    Object* security = vm.newObject();
    vm.addMembers(security, kSecurityMembers, kSecurityTable);
    vm.addAccessors(security, kSecurityAccessors);
    system->define(vm, "security", Value(security), kDontEnum);
    system->define(vm, "capabilities", Value(makeCapabilities(binding)), kDontEnum);
    system->define(vm, "useCodepage", Value(false), kDontEnum);
    system->define(vm, "exactSettings", Value(true), kDontEnum);
}

} // namespace flash::avm1
