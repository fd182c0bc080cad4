#include "base/Ascii.h"
#include "flash/avm2/bindings/Conversions.h"
#include "flash/avm2/bindings/Display.h"
#include "flash/avm2/bindings/Interactive.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/bindings/Player.h"

#include <algorithm>
#include <array>

namespace flash::avm2
{

using Kind = NativeMember::Kind;

namespace
{

stage::View& view(Call& call) { return Player::of(call.vm).stage().view(); }

struct ScaleName {
    std::u16string_view name;
    stage::ScaleMode mode;
};
constexpr ScaleName kScaleNames[] = {{u"showAll", stage::ScaleMode::ShowAll},
                                     {u"noBorder", stage::ScaleMode::NoBorder},
                                     {u"exactFit", stage::ScaleMode::ExactFit},
                                     {u"noScale", stage::ScaleMode::NoScale}};

[[noreturn]] void notAccepted(Call& call, std::string_view name)
{
    call.vm.throwError(ErrorClass::Argument, 2008,
                       "Parameter " + std::string(name) + " must be one of the accepted values.");
}

Value scaleMode(Call& call)
{
    const auto* found = std::ranges::find(kScaleNames, view(call).scaleMode(), &ScaleName::mode);
    return call.vm.string(found->name);
}
Value setScaleMode(Call& call)
{
    const std::u16string_view name = call.vm.text(call.arg(0));
    const auto* found = std::ranges::find(kScaleNames, name, &ScaleName::name);
    if (found == std::end(kScaleNames)) notAccepted(call, "scaleMode");
    view(call).setScaleMode(found->mode);
    return {};
}

Value align(Call& call)
{
    std::u16string text;
    const unsigned bits = view(call).align();
    if (bits & stage::kAlignTop) text += u'T';
    if (bits & stage::kAlignBottom) text += u'B';
    if (bits & stage::kAlignLeft) text += u'L';
    if (bits & stage::kAlignRight) text += u'R';
    return call.vm.string(text);
}
Value setAlign(Call& call)
{
    unsigned bits = 0;
    const Value letters = call.arg(0);
    for (const char16_t letter : letters.isNullish() ? std::u16string_view() : call.vm.text(letters)) {
        switch (letter) {
        case u'T':
        case u't': bits |= stage::kAlignTop; break;
        case u'B':
        case u'b': bits |= stage::kAlignBottom; break;
        case u'L':
        case u'l': bits |= stage::kAlignLeft; break;
        case u'R':
        case u'r': bits |= stage::kAlignRight; break;
        default: break;
        }
    }
    view(call).setAlign(bits);
    return {};
}

struct QualityName {
    std::u16string_view set, shown;
    stage::Quality quality;
};
constexpr QualityName kQualityNames[] = {
    {u"low", u"LOW", stage::Quality::Low},      {u"medium", u"MEDIUM", stage::Quality::Medium},
    {u"high", u"HIGH", stage::Quality::High},   {u"best", u"BEST", stage::Quality::Best},
    {u"8x8", u"8X8", stage::Quality::Best},     {u"8x8linear", u"8X8LINEAR", stage::Quality::Best},
    {u"16x16", u"16X16", stage::Quality::Best}, {u"16x16linear", u"16X16LINEAR", stage::Quality::Best},
};
Value quality(Call& call)
{
    // Several names mean the same here, and are remembered.
    const auto* found =
        std::ranges::find(kQualityNames, Player::of(call.vm).chosenQuality, &QualityName::set);
    if (found == std::end(kQualityNames) || found->quality != view(call).quality())
        found = std::ranges::find(kQualityNames, view(call).quality(), &QualityName::quality);
    return call.vm.string(found->shown);
}
/// What is none is not heard.
Value setQuality(Call& call)
{
    const std::u16string name = base::asciiLowered(call.vm.text(call.arg(0)));
    const auto* found = std::ranges::find(kQualityNames, name, &QualityName::set);
    if (found == std::end(kQualityNames)) return {};
    view(call).setQuality(found->quality);
    Player::of(call.vm).chosenQuality = found->set;
    return {};
}

Value displayState(Call& call)
{
    return call.vm.string(std::string_view(view(call).isFullScreen() ? "fullScreen" : "normal"));
}
/// Whether it comes to pass is the host's to say, who asks the user.
Value setDisplayState(Call& call)
{
    if (call.arg(0).isNullish()) notAccepted(call, "displayState");
    const std::u16string name(call.vm.text(call.arg(0)));
    if (name != u"normal" && name != u"fullScreen" && name != u"fullScreenInteractive")
        notAccepted(call, "displayState");
    stage::Stage& stage = Player::of(call.vm).stage();
    const std::string wanted = name == u"normal" ? "false" : "true";
    stage.queue().addRequest([&stage, wanted] { stage.services().host.fsCommand("fullscreen", wanted); });
    return {};
}

Value stageWidth(Call& call) { return view(call).stageWidth(); }
Value stageHeight(Call& call) { return view(call).stageHeight(); }
Value frameRate(Call& call) { return Player::of(call.vm).stage().frameRate(); }
Value setFrameRate(Call& call)
{
    const double rate = call.vm.toNumber(call.arg(0));
    constexpr double kMin = 0.01, kMax = 1000;
    if (!std::isnan(rate)) Player::of(call.vm).stage().setFrameRate(std::clamp(rate, kMin, kMax));
    return {};
}
Value color(Call& call)
{
    const swf::Rgba color = view(call).background();
    return static_cast<double>(0xFF000000U | color.r << 16U | color.g << 8U | color.b);
}
Value setColor(Call& call)
{
    const std::uint32_t rgb = call.vm.toUint(call.arg(0));
    view(call).setBackground({static_cast<std::uint8_t>(rgb >> 16U), static_cast<std::uint8_t>(rgb >> 8U),
                              static_cast<std::uint8_t>(rgb), 255});
    return {};
}
Value invalidate(Call& call)
{
    Player::of(call.vm).requestRender();
    return {};
}
Value showsMenu(Call& call) { return view(call).showsMenu(); }
Value setShowsMenu(Call& call)
{
    view(call).setShowsMenu(call.vm.toBoolean(call.arg(0)));
    return {};
}
/// Whether what has the focus is framed where it does not say itself.
Value focusRect(Call& call) { return displaySelf(call).node().focusRect.value_or(true); }
Value setFocusRect(Call& call)
{
    displaySelf(call).node().focusRect = call.vm.toBoolean(call.arg(0));
    return {};
}
/// Colours are those of the screen, whatever is asked for.
Value colorCorrection(Call& call) { return Value(call.vm.string(Player::of(call.vm).kept.colorCorrection)); }
Value setColorCorrection(Call& call)
{
    const std::u16string_view name = call.vm.text(call.arg(0));
    for (const std::u16string_view known : {u"default", u"on", u"off"}) {
        if (name != known) continue;
        Player::of(call.vm).kept.colorCorrection = known;
        return {};
    }
    notAccepted(call, "colorCorrection");
}
/// The part that the whole screen shows; kept for those who ask.
Value fullScreenPart(Call& call)
{
    const auto& part = Player::of(call.vm).kept.fullScreenPart;
    return part ? newRectangle(call.vm, (*part)[0], (*part)[1], (*part)[2], (*part)[3]) : Value::null();
}
Value setFullScreenPart(Call& call)
{
    auto& part = Player::of(call.vm).kept.fullScreenPart;
    if (call.arg(0).isNull()) {
        part.reset();
        return {};
    }
    std::array<double, 4> given{};
    constexpr const char* kSides[] = {"x", "y", "width", "height"};
    for (std::size_t i = 0; i < given.size(); ++i)
        given[i] = call.vm.toNumber(call.vm.getPublic(call.arg(0), kSides[i]));
    part = given;
    return {};
}
Value isFalse(Call&) { return false; }
Value ignore(Call&) { return {}; }
Value one(Call&) { return 1; }

/// What other objects have and the stage only shows: setting it is a mistake that scripts hear of.
Value refuseOnStage(Call& call)
{
    call.vm.throwError(ErrorClass::IllegalOperation, 2071,
                       "The Stage class does not implement this property or method.");
}
constexpr NativeMember unset(std::string_view name, NativeFunction getter = nullptr)
{
    return {name, Kind::Getter, getter, 0, 0, &refuseOnStage};
}
Value isNull(Call&) { return Value::null(); }
Value isTrue(Call&) { return true; }

constexpr NativeMember kStage[] = {
    unset("name"),
    unset("mask"),
    unset("visible"),
    unset("x"),
    unset("y"),
    unset("z"),
    unset("scaleX"),
    unset("scaleY"),
    unset("scaleZ"),
    unset("rotation"),
    unset("rotationX"),
    unset("rotationY"),
    unset("rotationZ"),
    unset("alpha"),
    unset("width"),
    unset("height"),
    unset("cacheAsBitmap"),
    unset("opaqueBackground"),
    unset("scrollRect"),
    unset("filters"),
    unset("blendMode"),
    unset("transform"),
    unset("scale9Grid"),
    unset("focusRect"),
    // Variables elsewhere.
    unset("mouseEnabled", &isTrue),
    unset("accessibilityProperties", &isNull),
    unset("accessibilityImplementation", &isNull),
    unset("contextMenu", &isNull),
    {"tabChildren", Kind::Getter, &interactive::stageTabChildren, 0, 0, &interactive::setStageTabChildren,
     "Boolean"},
    {"focus", Kind::Getter, &interactive::stageFocus, 0, 0, &interactive::setStageFocus,
     "flash.display::InteractiveObject"},
    {"scaleMode", Kind::Getter, &scaleMode, 0, 0, &setScaleMode, "String"},
    {"align", Kind::Getter, &align, 0, 0, &setAlign, "String"},
    {"quality", Kind::Getter, &quality, 0, 0, &setQuality, "String"},
    {"displayState", Kind::Getter, &displayState, 0, 0, &setDisplayState, "String"},
    {"stageWidth", Kind::Getter, &stageWidth, 0, 0, &ignore, "int"},
    {"stageHeight", Kind::Getter, &stageHeight, 0, 0, &ignore, "int"},
    {"fullScreenWidth", Kind::Getter, &stageWidth, 0, 0, nullptr, "uint"},
    {"fullScreenHeight", Kind::Getter, &stageHeight, 0, 0, nullptr, "uint"},
    {"frameRate", Kind::Getter, &frameRate, 0, 0, &setFrameRate, "Number"},
    {"color", Kind::Getter, &color, 0, 0, &setColor, "uint"},
    {"colorCorrection", Kind::Getter, &colorCorrection, 0, 0, &setColorCorrection, "String"},
    {"fullScreenSourceRect", Kind::Getter, &fullScreenPart, 0, 0, &setFullScreenPart,
     "flash.geom::Rectangle"},
    {"invalidate", Kind::Method, &invalidate, 0, 0},
    {"showDefaultContextMenu", Kind::Getter, &showsMenu, 0, 0, &setShowsMenu, "Boolean"},
    {"stageFocusRect", Kind::Getter, &focusRect, 0, 0, &setFocusRect, "Boolean"},
    {"isFocusInaccessible", Kind::Method, &isFalse, 0, 0},
    {"contentsScaleFactor", Kind::Getter, &one, 0, 0, nullptr, "Number"},
    {"wmodeGPU", Kind::Getter, &isFalse, 0, 0, nullptr, "Boolean"},
    {"softKeyboardRect", Kind::Getter, [](Call& call) -> Value { return newRectangle(call.vm, 0, 0, 0, 0); },
     0, 0, nullptr, "flash.geom::Rectangle"},
    {"allowsFullScreen", Kind::Getter, &isFalse, 0, 0, nullptr, "Boolean"},
    {"allowsFullScreenInteractive", Kind::Getter, &isFalse, 0, 0, nullptr, "Boolean"},
};

constexpr NativeClass kClasses[] = {
    {.package = "flash.display",
     .name = "Stage",
     .base = "flash.display::DisplayObjectContainer",
     .flags = NativeClass::Sealed,
     .constructor = &refuseDisplayConstruction,
     .members = kStage,
     .slots = "stage3Ds:* stageVideos:* mouseLock:Boolean "
              "colorCorrectionSupport:String=defaultOff "
              "browserZoomFactor:Number=1 displayContextInfo:String=none"},
};

} // namespace

std::span<const NativeClass> stageClasses() { return kClasses; }

} // namespace flash::avm2
