#include "flash/avm1/bindings/Classes.h"

// Classes of what this player does not have: printers, microphones, screen readers and other movies to talk
// to. Movies find them, ask, and are told that there is nothing of the kind.
namespace flash::avm1
{

namespace
{

Value nothing(Call&) { return {}; }
Value refuse(Call&) { return Value(false); }
Value none(Call&) { return Value::null(); }

/// The name is free: a movie that asks in order not to run twice shall run.
Value connect(Call& call) { return Value(call.count() > 0); }
/// As when nobody has connected to the name; whether somebody has is not what the answer tells.
Value send(Call& call)
{
    StageBinding::of(call).host().log("LocalConnection.send: there is no other movie to hear it");
    return Value(call.count() > 1);
}
Value domain(Call& call) { return call.vm.string(std::string_view("localhost")); }

// clang-format off
constexpr MemberInfo kConnectionMembers[] = {
    {"connect", 1, kFrom6, &connect},
    {"send",    2, kFrom6, &send},
    {"close",   0, kFrom6, &nothing},
    {"domain",  0, kFrom6, &domain},
};
constexpr MemberInfo kMicrophoneMembers[] = {
    {"setGain",               1, kFrom6, &nothing},
    {"setRate",               1, kFrom6, &nothing},
    {"setSilenceLevel",       1, kFrom6, &nothing},
    {"setUseEchoSuppression", 1, kFrom6, &nothing},
};
constexpr MemberInfo kPrintJobMembers[] = {
    {"start",   0, 0, &refuse},
    {"addPage", 1, 0, &refuse},
    {"send",    0, 0, &nothing},
};
// Known once a job was begun; ours never are.
constexpr AccessorInfo kPageMeasures[] = {
    {"orientation", 0, &nothing, nullptr},
    {"pageHeight",  0, &nothing, nullptr},
    {"pageWidth",   0, &nothing, nullptr},
    {"paperHeight", 0, &nothing, nullptr},
    {"paperWidth",  0, &nothing, nullptr},
};
constexpr MemberInfo kAccessibilityMembers[] = {
    {"isActive",         0, kReadOnly | kFrom6, &refuse},
    {"sendEvent",        0, kReadOnly | kFrom6, &nothing},
    {"updateProperties", 0, kReadOnly | kFrom6, &nothing},
};
// clang-format on

/// The prototype gets the measures with the first object of the class.
Value constructPrintJob(Call& call)
{
    Object* prototype = call.vm.prototypeOf(call.callee);
    if (prototype && !prototype->hasPlain(call.vm, call.vm.name(std::string_view("orientation"))))
        call.vm.addAccessors(prototype, kPageMeasures, 0);
    return {};
}

} // namespace

void installDeviceClasses(StageBinding& binding)
{
    Vm& vm = binding.vm();
    vm.defineClass("LocalConnection", &nothing, kConnectionMembers);

    Function* microphone = vm.defineClass("Microphone", &nothing, kMicrophoneMembers);
    microphone->define(vm, "get", vm.newScriptLike(&none), 0);

    Function* printJob = vm.defineClass("PrintJob", &constructPrintJob, kPrintJobMembers);
    vm.prototypeOf(printJob)->changeFlags(vm, Name(), kBuiltIn | kFrom7, 0);

    Object* accessibility = defineGlobalObject(vm, "Accessibility", {});
    makeConstant(vm, accessibility);
    for (const MemberInfo& member : kAccessibilityMembers)
        accessibility->define(vm, member.name, vm.newFunction(member.function, member.minArguments),
                              static_cast<std::uint16_t>(kDontDelete | member.flags));
}

} // namespace flash::avm1
