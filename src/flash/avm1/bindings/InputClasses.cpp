#include "flash/avm1/bindings/Classes.h"
#include "flash/stage/TextField.h"

// Key, Mouse and Selection: what the user does.
namespace flash::avm1
{

namespace
{

Value isDown(Call& call) { return Value(StageBinding::of(call).stage().isKeyDown(intArg(call, 0))); }
Value isToggled(Call& call) { return Value(StageBinding::of(call).stage().isKeyToggled(intArg(call, 0))); }
Value getCode(Call& call) { return Value(StageBinding::of(call).stage().lastKeyCode()); }
Value getAscii(Call& call) { return Value(StageBinding::of(call).stage().lastCharCode()); }
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
    StageBinding::of(call).stage().setMouseVisible(true);
    return Value(0);
}
Value hideMouse(Call& call)
{
    const bool wasVisible = StageBinding::of(call).stage().isMouseVisible();
    StageBinding::of(call).stage().setMouseVisible(false);
    return Value(wasVisible ? 0 : 1);
}

constexpr MemberInfo kMouseMembers[] = {
    {"show", 0, kReadOnly, &showMouse},
    {"hide", 0, kReadOnly, &hideMouse},
};

stage::TextField* focusedField(Call& call)
{
    stage::Node* focus = StageBinding::of(call).stage().focus();
    return focus && focus->kind() == stage::NodeKind::TextField ? static_cast<stage::TextField*>(focus)
                                                                : nullptr;
}
Value getBeginIndex(Call& call)
{
    stage::TextField* field = focusedField(call);
    return Value(field ? static_cast<int>(field->selectionBegin()) : -1);
}
Value getEndIndex(Call& call)
{
    stage::TextField* field = focusedField(call);
    return Value(field ? static_cast<int>(field->selectionEnd()) : -1);
}
Value getCaretIndex(Call& call)
{
    stage::TextField* field = focusedField(call);
    return Value(field ? static_cast<int>(field->caret()) : -1);
}
Value setSelection(Call& call)
{
    stage::TextField* field = focusedField(call);
    if (!field) return {};
    field->select(std::max(0, intArg(call, 0)), std::max(0, intArg(call, 1)));
    return {};
}
Value getFocus(Call& call)
{
    StageBinding& binding = StageBinding::of(call);
    stage::Node* focus = binding.stage().focus();
    return focus ? binding.utf8(focus->dotPath()) : Value::null();
}
Value setFocus(Call& call)
{
    StageBinding& binding = StageBinding::of(call);
    if (call.count() == 0) return Value(false);
    if (call.arg(0).isNullish()) {
        binding.stage().setFocus(nullptr);
        return Value(true);
    }
    Object* object = call.arg(0).asObject();
    if (!object) object = call.vm.resolveTarget(call.vm.target(), textArg(call, 0));
    stage::Node* node = binding.nodeOf(object);
    if (!node || !binding.stage().canTakeFocus(*node)) return Value(false);
    binding.stage().setFocus(node);
    return Value(true);
}

// clang-format off
constexpr MemberInfo kSelectionMembers[] = {
    {"getBeginIndex", 0, kReadOnly, &getBeginIndex},
    {"getEndIndex",   0, kReadOnly, &getEndIndex},
    {"getCaretIndex", 0, kReadOnly, &getCaretIndex},
    {"getFocus",      0, kReadOnly, &getFocus},
    {"setFocus",      0, kReadOnly, &setFocus},
    {"setSelection",  2, kReadOnly, &setSelection},
};
// clang-format on

} // namespace

void installKey(StageBinding& binding)
{
    Vm& vm = binding.vm();
    Object* key = defineGlobalObject(vm, "Key", kKeyMembers);
    for (const KeyName& entry : kKeyNames)
        key->define(vm, entry.name, Value(entry.code), kDontEnum | kDontDelete | kReadOnly);
    makeBroadcaster(vm, key);
}

void installMouse(StageBinding& binding)
{
    makeBroadcaster(binding.vm(), defineGlobalObject(binding.vm(), "Mouse", kMouseMembers));
}

void installSelection(StageBinding& binding)
{
    makeBroadcaster(binding.vm(), defineGlobalObject(binding.vm(), "Selection", kSelectionMembers));
}

} // namespace flash::avm1
