#include "flash/avm1/bindings/Classes.h"

#include <cmath>

namespace flash::avm1
{

namespace
{

constexpr const char* kScaleModes[] = {"showAll", "noBorder", "exactFit", "noScale"};

Value getScaleMode(Call& call)
{
    const auto index = static_cast<std::size_t>(StageBinding::of(call).stage().view().scaleMode());
    return call.vm.string(std::string_view(kScaleModes[index]));
}
Value setScaleMode(Call& call)
{
    if (call.count() == 0) return {};
    // Anything unknown means to show all.
    const std::u16string name = AtomTable::fold(textArg(call, 0));
    stage::ScaleMode mode = stage::ScaleMode::ShowAll;
    if (name == u"noborder") mode = stage::ScaleMode::NoBorder;
    if (name == u"exactfit") mode = stage::ScaleMode::ExactFit;
    if (name == u"noscale") mode = stage::ScaleMode::NoScale;
    StageBinding::of(call).stage().view().setScaleMode(mode);
    return {};
}

Value getAlign(Call& call)
{
    const unsigned align = StageBinding::of(call).stage().view().align();
    std::u16string text;
    if (align & stage::kAlignLeft) text += u'L';
    if (align & stage::kAlignTop) text += u'T';
    if (align & stage::kAlignRight) text += u'R';
    if (align & stage::kAlignBottom) text += u'B';
    return call.vm.string(text);
}
Value setAlign(Call& call)
{
    unsigned align = 0;
    for (const char16_t c : textArg(call, 0)) {
        if (c == u'L' || c == u'l') align |= stage::kAlignLeft;
        if (c == u'T' || c == u't') align |= stage::kAlignTop;
        if (c == u'R' || c == u'r') align |= stage::kAlignRight;
        if (c == u'B' || c == u'b') align |= stage::kAlignBottom;
    }
    StageBinding::of(call).stage().view().setAlign(align);
    return {};
}

Value getWidth(Call& call) { return Value(StageBinding::of(call).stage().view().stageWidth()); }
Value getHeight(Call& call) { return Value(StageBinding::of(call).stage().view().stageHeight()); }

Value getShowMenu(Call& call) { return Value(StageBinding::of(call).stage().view().showsMenu()); }
Value setShowMenu(Call& call)
{
    StageBinding::of(call).stage().view().setShowsMenu(toBoolean(call.vm, call.arg(0)));
    return {};
}

Value getDisplayState(Call& call)
{
    const bool full = StageBinding::of(call).stage().view().isFullScreen();
    return call.vm.string(std::string_view(full ? "fullScreen" : "normal"));
}
Value setDisplayState(Call& call)
{
    const std::u16string name = AtomTable::fold(textArg(call, 0));
    stage::Stage& stage = StageBinding::of(call).stage();
    const bool on = name == u"fullscreen";
    if ((!on && name != u"normal") || on == stage.view().isFullScreen()) return {};
    stage.view().setFullScreen(on);
    // Whether its window follows is the host's to say.
    stage.queue().addRequest(
        [&stage, on] { stage.services().host.fsCommand("fullscreen", on ? "true" : "false"); });
    return {};
}

// clang-format off
constexpr AccessorInfo kAccessors[] = {
    {"scaleMode",    0,      &getScaleMode,    &setScaleMode},
    {"align",        0,      &getAlign,        &setAlign},
    {"width",        0,      &getWidth,        nullptr},
    {"height",       0,      &getHeight,       nullptr},
    {"showMenu",     0,      &getShowMenu,     &setShowMenu},
    {"displayState", 0,      &getDisplayState, &setDisplayState},
};
// clang-format on

} // namespace

void installStage(StageBinding& binding)
{
    Vm& vm = binding.vm();
    Object* stage = defineGlobalObject(vm, "Stage", {});
    makeBroadcaster(vm, stage);
    vm.addAccessors(stage, kAccessors);
    constexpr int kStageTable = 666;
    int index = 1;
    for (const AccessorInfo& accessor : kAccessors) {
        vm.registerNative(kStageTable, index++, accessor.getter);
        if (accessor.setter) vm.registerNative(kStageTable, index, accessor.setter, 1);
        ++index;
    }
}

} // namespace flash::avm1
