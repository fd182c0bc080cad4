#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/classes/Library.h"

// Classes that are little more than their variables, and lists of constants.
namespace flash::avm2
{

namespace
{

Value assign(Call& call)
{
    Object* self = call.self.asObject();
    if (self == nullptr) return {};
    for (std::uint32_t i = 0; i < call.count && i < self->slotCount(); ++i)
        call.vm.setSlotTyped(*self, i, call.args[i]);
    return {};
}

using C = NativeConstant;
constexpr C kBlend[] = {{"ADD", 0, "add"},          {"ALPHA", 0, "alpha"},
                        {"DARKEN", 0, "darken"},    {"DIFFERENCE", 0, "difference"},
                        {"ERASE", 0, "erase"},      {"HARDLIGHT", 0, "hardlight"},
                        {"INVERT", 0, "invert"},    {"LAYER", 0, "layer"},
                        {"LIGHTEN", 0, "lighten"},  {"MULTIPLY", 0, "multiply"},
                        {"NORMAL", 0, "normal"},    {"OVERLAY", 0, "overlay"},
                        {"SCREEN", 0, "screen"},    {"SHADER", 0, "shader"},
                        {"SUBTRACT", 0, "subtract"}};
constexpr C kScaleMode[] = {{"EXACT_FIT", 0, "exactFit"},
                            {"NO_BORDER", 0, "noBorder"},
                            {"NO_SCALE", 0, "noScale"},
                            {"SHOW_ALL", 0, "showAll"}};
constexpr C kAlign[] = {{"BOTTOM", 0, "B"},    {"BOTTOM_LEFT", 0, "BL"}, {"BOTTOM_RIGHT", 0, "BR"},
                        {"LEFT", 0, "L"},      {"RIGHT", 0, "R"},        {"TOP", 0, "T"},
                        {"TOP_LEFT", 0, "TL"}, {"TOP_RIGHT", 0, "TR"}};
constexpr C kQuality[] = {{"BEST", 0, "best"},        {"HIGH", 0, "high"},
                          {"LOW", 0, "low"},          {"MEDIUM", 0, "medium"},
                          {"HIGH_8X8", 0, "8x8"},     {"HIGH_8X8_LINEAR", 0, "8x8linear"},
                          {"HIGH_16X16", 0, "16x16"}, {"HIGH_16X16_LINEAR", 0, "16x16linear"}};
constexpr C kDisplayState[] = {{"FULL_SCREEN", 0, "fullScreen"},
                               {"FULL_SCREEN_INTERACTIVE", 0, "fullScreenInteractive"},
                               {"NORMAL", 0, "normal"}};
constexpr C kSnapping[] = {{"ALWAYS", 0, "always"}, {"AUTO", 0, "auto"}, {"NEVER", 0, "never"}};
constexpr C kCaps[] = {{"NONE", 0, "none"}, {"ROUND", 0, "round"}, {"SQUARE", 0, "square"}};
constexpr C kJoints[] = {{"BEVEL", 0, "bevel"}, {"MITER", 0, "miter"}, {"ROUND", 0, "round"}};
constexpr C kLineScale[] = {{"HORIZONTAL", 0, "horizontal"},
                            {"NONE", 0, "none"},
                            {"NORMAL", 0, "normal"},
                            {"VERTICAL", 0, "vertical"}};
constexpr C kGradient[] = {{"LINEAR", 0, "linear"}, {"RADIAL", 0, "radial"}};
constexpr C kSpread[] = {{"PAD", 0, "pad"}, {"REFLECT", 0, "reflect"}, {"REPEAT", 0, "repeat"}};
constexpr C kInterpolation[] = {{"LINEAR_RGB", 0, "linearRGB"}, {"RGB", 0, "rgb"}};
constexpr C kFilterQuality[] = {{"HIGH", 3}, {"LOW", 1}, {"MEDIUM", 2}};
constexpr C kDisplacementMode[] = {
    {"CLAMP", 0, "clamp"}, {"COLOR", 0, "color"}, {"IGNORE", 0, "ignore"}, {"WRAP", 0, "wrap"}};
constexpr C kFilterType[] = {{"FULL", 0, "full"}, {"INNER", 0, "inner"}, {"OUTER", 0, "outer"}};

constexpr NativeClass constants(std::string_view package, std::string_view name,
                                std::span<const NativeConstant> list)
{
    return {.package = package,
            .name = name,
            .base = {},
            .flags = NativeClass::Sealed | NativeClass::Final,
            .constants = list};
}
constexpr NativeClass kClasses[] = {
    {.package = "flash.display",
     .name = "FrameLabel",
     .base = "flash.events::EventDispatcher",
     .flags = NativeClass::Sealed | NativeClass::Final,
     .constructor = &assign,
     .minArguments = 2,
     .maxArguments = 2,
     .slots = "name:String frame:int"},
    {.package = "flash.display",
     .name = "Scene",
     .base = {},
     .flags = NativeClass::Sealed | NativeClass::Final,
     .constructor = &assign,
     .minArguments = 3,
     .maxArguments = 3,
     .slots = "name:String labels:* numFrames:int"},
    constants("flash.display", "BlendMode", kBlend),
    constants("flash.display", "StageScaleMode", kScaleMode),
    constants("flash.display", "StageAlign", kAlign),
    constants("flash.display", "StageQuality", kQuality),
    constants("flash.display", "StageDisplayState", kDisplayState),
    constants("flash.display", "PixelSnapping", kSnapping),
    constants("flash.display", "CapsStyle", kCaps),
    constants("flash.display", "JointStyle", kJoints),
    constants("flash.display", "LineScaleMode", kLineScale),
    constants("flash.display", "GradientType", kGradient),
    constants("flash.display", "SpreadMethod", kSpread),
    constants("flash.display", "InterpolationMethod", kInterpolation),
    constants("flash.filters", "BitmapFilterQuality", kFilterQuality),
    constants("flash.filters", "BitmapFilterType", kFilterType),
    constants("flash.filters", "DisplacementMapFilterMode", kDisplacementMode),
    {.package = "flash.display", .name = "IBitmapDrawable", .base = {}, .flags = NativeClass::Interface},
};
} // namespace

std::span<const NativeClass> recordClasses() { return kClasses; }

} // namespace flash::avm2
