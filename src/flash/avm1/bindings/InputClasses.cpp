#include "flash/avm1/bindings/Classes.h"

// Key and Mouse: what the user does.
namespace flash::avm1
{

namespace
{

Value isDown(Call& call)
{
    stage::Stage& stage = StageBinding::of(call).stage();
    stage.keyboard().noteAsked();
    return Value(stage.keyboard().isDown(intArg(call, 0)));
}
Value isToggled(Call& call)
{
    return Value(StageBinding::of(call).stage().keyboard().isToggled(intArg(call, 0)));
}
Value getCode(Call& call)
{
    stage::Stage& stage = StageBinding::of(call).stage();
    stage.keyboard().noteAsked();
    return Value(stage.keyboard().lastCode());
}
Value getAscii(Call& call) { return Value(StageBinding::of(call).stage().keyboard().lastCharacter()); }
Value isAccessible(Call&) { return Value(false); }

// clang-format off
constexpr MemberInfo kKeyMembers[] = {
    {"getAscii",     0, kReadOnly, &getAscii},
    {"getCode",      0, kReadOnly, &getCode},
    {"isDown",       1, kReadOnly, &isDown},
    {"isToggled",    1, kReadOnly, &isToggled},
    {"isAccessible", 0, kReadOnly, &isAccessible},
};
struct KeyName {
    const char* name;
    int code;
};
constexpr KeyName kKeyNames[] = {
    {"ALT", 18},   {"BACKSPACE", 8}, {"CAPSLOCK", 20}, {"CONTROL", 17}, {"DELETEKEY", 46}, {"DOWN", 40},
    {"END", 35},   {"ENTER", 13},    {"ESCAPE", 27},   {"HOME", 36},    {"INSERT", 45},    {"LEFT", 37},
    {"PGDN", 34},  {"PGUP", 33},     {"RIGHT", 39},    {"SHIFT", 16},   {"SPACE", 32},     {"TAB", 9},
    {"UP", 38},
};
// clang-format on

Value showMouse(Call& call)
{
    StageBinding::of(call).stage().pointer().setVisible(true);
    return Value(0);
}
Value hideMouse(Call& call)
{
    const bool wasVisible = StageBinding::of(call).stage().pointer().isVisible();
    StageBinding::of(call).stage().pointer().setVisible(false);
    return Value(wasVisible ? 0 : 1);
}

constexpr MemberInfo kMouseMembers[] = {
    {"show", 0, kReadOnly, &showMouse},
    {"hide", 0, kReadOnly, &hideMouse},
};

} // namespace

void installKey(StageBinding& binding)
{
    Vm& vm = binding.vm();
    Object* key = defineGlobalObject(vm, "Key", kKeyMembers);
    for (const KeyName& entry : kKeyNames)
        key->define(vm, entry.name, Value(entry.code), kDontEnum | kDontDelete | kReadOnly);
    constexpr int kKeyTable = 800, kKeyNatives = 4;
    for (int i = 0; i < kKeyNatives; ++i)
        vm.registerNative(kKeyTable, i, kKeyMembers[i].function, kKeyMembers[i].minArguments);
    makeBroadcaster(vm, key);
    makeConstant(vm, key);
}

void installMouse(StageBinding& binding)
{
    Vm& vm = binding.vm();
    Object* mouse = defineGlobalObject(vm, "Mouse", kMouseMembers);
    constexpr int kMouseTable = 5;
    vm.registerNative(kMouseTable, 0, &showMouse);
    vm.registerNative(kMouseTable, 1, &hideMouse);
    makeBroadcaster(vm, mouse);
    makeConstant(vm, mouse);
}

} // namespace flash::avm1
