#include "flash/avm1/bindings/Classes.h"

// Classes of what this player does not have: printers, microphones and screen readers. Movies find them, ask,
// and are told that there is nothing of the kind.
namespace flash::avm1
{

namespace
{

Value nothing(Call&) { return {}; }
Value refuse(Call&) { return Value(false); }
Value none(Call&) { return Value::null(); }

// clang-format off
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
