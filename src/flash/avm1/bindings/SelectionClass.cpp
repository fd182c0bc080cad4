#include "flash/avm1/bindings/Classes.h"
#include "flash/stage/TextField.h"

#include <cmath>
#include <limits>

// Selection: the focus, and what is selected in the text field that has it.
namespace flash::avm1
{

namespace
{

stage::TextField* focusedField(Call& call)
{
    stage::Node* focus = StageBinding::of(call).stage().focus().node();
    return focus && focus->kind() == stage::NodeKind::TextField ? static_cast<stage::TextField*>(focus)
                                                                : nullptr;
}

/// None while the field is told that it has the focus: its text is selected afterwards.
stage::TextField* selectedField(Call& call)
{
    stage::TextField* field = focusedField(call);
    return field && field->hasSelection() ? field : nullptr;
}

Value getBeginIndex(Call& call)
{
    stage::TextField* field = selectedField(call);
    return Value(field ? static_cast<int>(field->selectionBegin()) : -1);
}
Value getEndIndex(Call& call)
{
    stage::TextField* field = selectedField(call);
    return Value(field ? static_cast<int>(field->selectionEnd()) : -1);
}
Value getCaretIndex(Call& call)
{
    stage::TextField* field = selectedField(call);
    return Value(field ? static_cast<int>(field->caret()) : -1);
}

Value setSelection(Call& call)
{
    stage::TextField* field = focusedField(call);
    if (!field || call.count() == 0) return {};
    const auto index = [&](std::size_t i) { return static_cast<std::size_t>(std::max(0, intArg(call, i))); };
    const std::size_t anchor = index(0);
    field->select(anchor, call.count() > 1 ? index(1) : field->length());
    return {};
}

Value getFocus(Call& call)
{
    StageBinding& binding = StageBinding::of(call);
    stage::Node* focus = binding.stage().focus().node();
    return focus ? binding.utf8(focus->dotPath()) : Value::null();
}

Value setFocus(Call& call)
{
    StageBinding& binding = StageBinding::of(call);
    if (call.count() == 0) return Value(false);
    if (call.arg(0).isNullish()) {
        binding.stage().focus().set(nullptr, stage::Focus::By::Script);
        return Value(true);
    }
    Object* object = call.arg(0).asObject();
    if (!object) object = call.vm.resolveTarget(call.vm.target(), textArg(call, 0));
    stage::Node* node = binding.nodeOf(object);
    if (!node) return Value(false);
    if (stage::Clip* clip = stage::asClip(node)) {
        // Read as any property, which may be a getter.
        const stage::NodePtr keep = node->shared_from_this();
        const Value enabled = object->get(call.vm, call.vm.name(std::string_view("focusEnabled")));
        clip->focusEnabled = enabled.isUndefined() ? std::optional<bool>() : toBoolean(call.vm, enabled);
        if (clip->isRemoved()) return Value(false);
    }
    if (!node->canTakeFocus()) return Value(false);
    const bool isClip = node->kind() == stage::NodeKind::Clip;
    binding.stage().focus().set(node, stage::Focus::By::Script);
    // A clip gets the focus, and scripts of the older movies are told that it did not.
    constexpr int kLastThatDenies = 8;
    return Value(!isClip || call.vm.version() > kLastThatDenies);
}

Value getTabIndex(Call& call)
{
    const stage::Node* node = selfNode(call);
    if (!node || !node->tabIndex) return {};
    // Fields answer without a sign, buttons and clips with one.
    if (node->kind() != stage::NodeKind::TextField) return Value(*node->tabIndex);
    return Value(static_cast<double>(static_cast<std::uint32_t>(*node->tabIndex)));
}
Value setTabIndex(Call& call)
{
    stage::Node* node = selfNode(call);
    if (!node) return {};
    if (call.arg(0).isString() && !node->tabIndex && node->kind() == stage::NodeKind::Clip &&
        std::isnan(numberArg(call, 0))) {
        // What is no place in the order is, while there is none, a property like others.
        call.self.asObject()->define(call.vm, "tabIndex", call.arg(0));
        return {};
    }
    if (call.arg(0).isNullish())
        node->tabIndex.reset();
    else
        node->tabIndex = std::isnan(numberArg(call, 0)) && node->kind() != stage::NodeKind::TextField
                             ? std::numeric_limits<int>::min()
                             : intArg(call, 0);
    return {};
}

// clang-format off
constexpr AccessorInfo kTabIndex[] = {{"tabIndex", kFrom6, &getTabIndex, &setTabIndex}};
constexpr MemberInfo kMembers[] = {
    {"getBeginIndex", 0, kReadOnly, &getBeginIndex, 0},
    {"getEndIndex",   0, kReadOnly, &getEndIndex,   1},
    {"getCaretIndex", 0, kReadOnly, &getCaretIndex, 2},
    {"getFocus",      0, kReadOnly, &getFocus,      3},
    {"setFocus",      0, kReadOnly, &setFocus,      4},
    {"setSelection",  0, kReadOnly, &setSelection,  5},
};
// clang-format on

constexpr int kNativeTable = 600;

} // namespace

void addTabIndex(Vm& vm, Object* prototype, std::uint16_t flags)
{
    vm.addAccessors(prototype, kTabIndex, flags);
}

void installSelection(StageBinding& binding)
{
    Vm& vm = binding.vm();
    Object* selection = defineGlobalObject(vm, "Selection", {});
    vm.addMembers(selection, kMembers, kNativeTable);
    makeBroadcaster(vm, selection);
    makeConstant(vm, selection);
}

} // namespace flash::avm1
