#include "flash/avm2/bindings/TextField.h"

#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/bindings/Player.h"
#include "flash/avm2/bindings/StyleSheets.h"
#include "flash/avm2/bindings/TextFormat.h"
#include "flash/stage/TextHtml.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace flash::avm2
{

using Kind = NativeMember::Kind;
using stage::TextField;

namespace
{

constexpr double kTwips = swf::kTwipsPerPixel;

/// What a field keeps besides what its node does.
class FieldState final : public Object
{
public:
    AVM2_NATIVE(Object)
    FieldState(Traits* traits, Object* proto) : Object(traits, proto) {}
    void trace(Tracer& tracer) override
    {
        Object::trace(tracer);
        tracer(styleSheet);
    }
    Value styleSheet = Value::null();
    bool usesRichClipboard = false;
    Value interaction;
};

FieldState& stateOf(Call& call)
{
    DisplayObject& object = displaySelf(call);
    if (auto* state = as<FieldState>(object.extra)) return *state;
    auto* made = call.vm.heap().make<FieldState>(call.vm.classes().object->instances, nullptr);
    object.extra = made;
    return *made;
}

/// The getter or setter that does `Body` for a field.
template <auto Body>
Value on(Call& call)
{
    return Body(call, fieldSelf(call));
}

template <auto Getter>
Value getFlag(Call& call)
{
    return (fieldSelf(call).*Getter)();
}
template <auto Setter>
Value setFlag(Call& call)
{
    const bool value = call.vm.toBoolean(call.arg(0));
    (fieldSelf(call).*Setter)(value);
    return {};
}
template <auto Member>
Value getMember(Call& call)
{
    return fieldSelf(call).*Member;
}
template <auto Member>
Value setMember(Call& call)
{
    const bool value = call.vm.toBoolean(call.arg(0));
    fieldSelf(call).*Member = value;
    return {};
}
swf::Rgba colorArg(Call& call)
{
    const std::uint32_t value = call.vm.toUint(call.arg(0));
    return {static_cast<std::uint8_t>(value >> 16U), static_cast<std::uint8_t>(value >> 8U),
            static_cast<std::uint8_t>(value), 255};
}
Value fromColor(swf::Rgba color) { return color.r << 16 | color.g << 8 | color.b; }
template <auto Getter>
Value getColor(Call& call)
{
    return fromColor((fieldSelf(call).*Getter)());
}
template <auto Setter>
Value setColor(Call& call)
{
    const swf::Rgba color = colorArg(call);
    (fieldSelf(call).*Setter)(color);
    return {};
}

// ---- the text ----

Value text(Call& call) { return call.vm.string(fieldSelf(call).text()); }
Value setText(Call& call)
{
    const std::u16string value = textArg(call, 0, "text");
    fieldSelf(call).setText(value);
    return {};
}
/// A text that was not set as HTML can be read as such all the same.
Value htmlText(Call& call)
{
    TextField& field = fieldSelf(call);
    const bool isPlain = !field.isHtml() && stateOf(call).styleSheet.isNull();
    return call.vm.string(isPlain ? stage::htmlFromContent(field.content()) : field.html());
}
Value setHtmlText(Call& call)
{
    const std::u16string value = textArg(call, 0, "value");
    TextField& field = fieldSelf(call);
    field.setIsHtml(true);
    field.setHtml(value);
    return {};
}
Value length(Call& call) { return static_cast<double>(fieldSelf(call).text().size()); }

Value textColor(Call& call) { return fromColor(fieldSelf(call).newFormat().style.color); }
Value setTextColor(Call& call)
{
    stage::PartialTextFormat change;
    change.color = colorArg(call);
    TextField& field = fieldSelf(call);
    field.setNewFormat(change);
    field.setFormat(0, field.length(), change);
    return {};
}

Value defaultFormat(Call& call)
{
    return makeTextFormat(call.vm, stage::PartialTextFormat::of(fieldSelf(call).newFormat()));
}
Value setDefaultFormat(Call& call)
{
    refuseStyled(call);
    const Value given(objectArg(call, 0, "flash.text::TextFormat"));
    if (given.isNull()) throwNullParameter(call.vm, "format");
    fieldSelf(call).setNewFormat(textFormatOf(call.vm, as<TextFormatObject>(given)));
    return {};
}

Value styleSheet(Call& call)
{
    fieldSelf(call);
    return stateOf(call).styleSheet;
}
Value setStyleSheet(Call& call)
{
    TextField& field = fieldSelf(call);
    auto* sheet = as<StyleSheetObject>(Value(objectArg(call, 0, "flash.text::StyleSheet")));
    stateOf(call).styleSheet = Value(sheet);
    field.setStyleSheet(sheet != nullptr ? sheet->sheet(call.vm) : nullptr);
    return {};
}

// ---- choices by name ----

template <std::size_t count>
std::size_t choiceArg(Call& call, const std::string_view (&names)[count], std::string_view parameter)
{
    const std::string value = toUtf8(textArg(call, 0, parameter));
    for (std::size_t i = 0; i < count; ++i) {
        if (names[i] == value) return i;
    }
    throwNotAccepted(call.vm, parameter);
}
Value nameValue(Call& call, std::string_view name) { return Value(call.vm.name(name).string()); }

constexpr std::string_view kAutoSizes[] = {"none", "left", "center", "right"};
constexpr std::string_view kTypes[] = {"dynamic", "input"};
constexpr std::string_view kAntiAlias[] = {"normal", "advanced"};
constexpr std::string_view kGridFits[] = {"none", "pixel", "subpixel"};

Value autoSize(Call& call)
{
    return nameValue(call, kAutoSizes[static_cast<std::size_t>(fieldSelf(call).autoSize())]);
}
Value setAutoSize(Call& call)
{
    const auto choice = choiceArg(call, kAutoSizes, "autoSize");
    fieldSelf(call).setAutoSize(static_cast<TextField::AutoSize>(choice));
    return {};
}
Value type(Call& call) { return nameValue(call, kTypes[fieldSelf(call).isInput() ? 1 : 0]); }
Value setType(Call& call)
{
    const auto choice = choiceArg(call, kTypes, "type");
    fieldSelf(call).readOnly = choice == 0;
    return {};
}
Value antiAlias(Call& call)
{
    return nameValue(call, kAntiAlias[fieldSelf(call).rendering.advanced ? 1 : 0]);
}
/// What is none of the names changes nothing here; below it means none.
Value setAntiAlias(Call& call)
{
    const std::u16string name = textArg(call, 0, "antiAliasType");
    TextField& field = fieldSelf(call);
    if (name == u"advanced" || name == u"normal") field.rendering.advanced = name == u"advanced";
    return {};
}
Value gridFit(Call& call)
{
    return nameValue(call, kGridFits[static_cast<std::size_t>(fieldSelf(call).rendering.gridFit)]);
}
Value setGridFit(Call& call)
{
    using Fit = TextField::Rendering::GridFit;
    const std::u16string name = textArg(call, 0, "gridFitType");
    fieldSelf(call).rendering.gridFit = name == u"pixel"      ? Fit::Pixel
                                        : name == u"subpixel" ? Fit::Subpixel
                                                              : Fit::None;
    return {};
}
/// Kept within what the rasteriser of the genuine player takes.
template <double TextField::Rendering::*member, int bound>
Value setRendering(Call& call)
{
    const double value = call.vm.toNumber(call.arg(0));
    fieldSelf(call).rendering.*member =
        std::isnan(value) ? value
                          : std::clamp(value, -static_cast<double>(bound), static_cast<double>(bound));
    return {};
}
Value sharpness(Call& call) { return fieldSelf(call).rendering.sharpness; }
Value thickness(Call& call) { return fieldSelf(call).rendering.thickness; }

Value interaction(Call& call)
{
    fieldSelf(call);
    return nameValue(call, "normal");
}

// ---- input ----

Value maxChars(Call& call) { return fieldSelf(call).maxChars.value_or(0); }
Value setMaxChars(Call& call)
{
    const int value = call.vm.toInt(call.arg(0));
    fieldSelf(call).maxChars = value > 0 ? std::optional<int>(value) : std::nullopt;
    return {};
}
Value restrictText(Call& call)
{
    TextField& field = fieldSelf(call);
    return field.restrict ? Value(call.vm.string(*field.restrict)) : Value::null();
}
Value setRestrict(Call& call)
{
    const Value value = call.vm.coerceString(call.arg(0));
    TextField& field = fieldSelf(call);
    field.restrict.reset();
    if (value.isString()) field.restrict = std::u16string(call.vm.text(value));
    return {};
}

template <bool FieldState::*member>
Value getState(Call& call)
{
    fieldSelf(call);
    return stateOf(call).*member;
}
template <bool FieldState::*member>
Value setState(Call& call)
{
    fieldSelf(call);
    stateOf(call).*member = call.vm.toBoolean(call.arg(0));
    return {};
}

// ---- measures and scrolling ----

/// In the twentieths of a pixel that the player counts in.
double inPixels(double twips) { return std::round(twips) / kTwips; }

/// A space that hangs over the end of a wrapped line counts where lines are aligned to the left only.
Value textWidth(Call& call)
{
    const render::TextLayout& layout = fieldSelf(call).layout();
    double widest = 0;
    bool isMoved = false;
    for (const render::LayoutLine& line : layout.lines()) {
        widest = std::max(widest, line.width);
        if (line.glyphCount == 0) continue;
        const auto align = layout.runs()[layout.glyphs()[line.firstGlyph].run].style.align;
        isMoved = isMoved || align == swf::EditText::Align::Center || align == swf::EditText::Align::Right;
    }
    return inPixels(isMoved ? widest : layout.width());
}
Value textHeight(Call& call)
{
    TextField& field = fieldSelf(call);
    if (field.length() == 0) return 0;
    return inPixels(TextField::textHeight(field.layout()));
}
Value numLines(Call& call) { return fieldSelf(call).lineCount(); }
Value scrollV(Call& call) { return fieldSelf(call).scroll() + 1; }
Value setScrollV(Call& call)
{
    const int line = call.vm.toInt(call.arg(0));
    fieldSelf(call).setScroll(std::max(line, 1) - 1);
    return {};
}
Value maxScrollV(Call& call) { return fieldSelf(call).maxScroll() + 1; }
Value bottomScrollV(Call& call) { return fieldSelf(call).bottomScroll() + 1; }
Value scrollH(Call& call) { return std::trunc(fieldSelf(call).hscroll() / kTwips); }
Value setScrollH(Call& call)
{
    const double pixels = call.vm.toInt(call.arg(0)); // as recorded, its sign does not count
    fieldSelf(call).setHscroll(std::abs(pixels) * kTwips);
    return {};
}
Value maxScrollH(Call& call) { return std::trunc(fieldSelf(call).maxHscroll() / kTwips); }

constexpr NativeMember kProperties[] = {
    {"alwaysShowSelection", Kind::Getter, &getFlag<&TextField::alwaysShowsSelection>, 0, 0,
     &setFlag<&TextField::setAlwaysShowsSelection>, "Boolean"},
    {"antiAliasType", Kind::Getter, &antiAlias, 0, 0, &setAntiAlias, "String"},
    {"autoSize", Kind::Getter, &autoSize, 0, 0, &setAutoSize, "String"},
    {"background", Kind::Getter, &getFlag<&TextField::hasBackground>, 0, 0,
     &setFlag<&TextField::setBackground>, "Boolean"},
    {"backgroundColor", Kind::Getter, &getColor<&TextField::backgroundColor>, 0, 0,
     &setColor<&TextField::setBackgroundColor>, "uint"},
    {"border", Kind::Getter, &getFlag<&TextField::hasBorder>, 0, 0, &setFlag<&TextField::setBorder>,
     "Boolean"},
    {"borderColor", Kind::Getter, &getColor<&TextField::borderColor>, 0, 0,
     &setColor<&TextField::setBorderColor>, "uint"},
    {"bottomScrollV", Kind::Getter, &bottomScrollV, 0, 0, nullptr, "int"},
    {"condenseWhite", Kind::Getter, &getFlag<&TextField::condensesWhite>, 0, 0,
     &setFlag<&TextField::setCondensesWhite>, "Boolean"},
    {"defaultTextFormat", Kind::Getter, &defaultFormat, 0, 0, &setDefaultFormat, "flash.text::TextFormat"},
    {"displayAsPassword", Kind::Getter, &getFlag<&TextField::isPassword>, 0, 0,
     &setFlag<&TextField::setPassword>, "Boolean"},
    {"embedFonts", Kind::Getter, &getFlag<&TextField::embedsFonts>, 0, 0,
     &setFlag<&TextField::setEmbedsFonts>, "Boolean"},
    {"gridFitType", Kind::Getter, &gridFit, 0, 0, &setGridFit, "String"},
    {"htmlText", Kind::Getter, &htmlText, 0, 0, &setHtmlText, "String"},
    {"length", Kind::Getter, &length, 0, 0, nullptr, "int"},
    {"maxChars", Kind::Getter, &maxChars, 0, 0, &setMaxChars, "int"},
    {"maxScrollH", Kind::Getter, &maxScrollH, 0, 0, nullptr, "int"},
    {"maxScrollV", Kind::Getter, &maxScrollV, 0, 0, nullptr, "int"},
    {"mouseWheelEnabled", Kind::Getter, &getMember<&TextField::mouseWheelEnabled>, 0, 0,
     &setMember<&TextField::mouseWheelEnabled>, "Boolean"},
    {"multiline", Kind::Getter, &getFlag<&TextField::isMultiline>, 0, 0, &setFlag<&TextField::setMultiline>,
     "Boolean"},
    {"numLines", Kind::Getter, &numLines, 0, 0, nullptr, "int"},
    {"restrict", Kind::Getter, &restrictText, 0, 0, &setRestrict, "String"},
    {"scrollH", Kind::Getter, &scrollH, 0, 0, &setScrollH, "int"},
    {"scrollV", Kind::Getter, &scrollV, 0, 0, &setScrollV, "int"},
    {"selectable", Kind::Getter, &getMember<&TextField::selectable>, 0, 0, &setMember<&TextField::selectable>,
     "Boolean"},
    {"sharpness", Kind::Getter, &sharpness, 0, 0, &setRendering<&TextField::Rendering::sharpness, 400>,
     "Number"},
    {"styleSheet", Kind::Getter, &styleSheet, 0, 0, &setStyleSheet, "flash.text::StyleSheet"},
    {"text", Kind::Getter, &text, 0, 0, &setText, "String"},
    {"textColor", Kind::Getter, &textColor, 0, 0, &setTextColor, "uint"},
    {"textHeight", Kind::Getter, &textHeight, 0, 0, nullptr, "Number"},
    {"textInteractionMode", Kind::Getter, &interaction, 0, 0, nullptr, "String"},
    {"textWidth", Kind::Getter, &textWidth, 0, 0, nullptr, "Number"},
    {"thickness", Kind::Getter, &thickness, 0, 0, &setRendering<&TextField::Rendering::thickness, 200>,
     "Number"},
    {"type", Kind::Getter, &type, 0, 0, &setType, "String"},
    {"useRichTextClipboard", Kind::Getter, &getState<&FieldState::usesRichClipboard>, 0, 0,
     &setState<&FieldState::usesRichClipboard>, "Boolean"},
    {"wordWrap", Kind::Getter, &getFlag<&TextField::wraps>, 0, 0, &setFlag<&TextField::setWraps>, "Boolean"},
};

} // namespace

stage::TextField& fieldSelf(Call& call)
{
    DisplayObject& object = displaySelf(call);
    if (object.node().kind() != stage::NodeKind::TextField)
        call.vm.throwError(ErrorClass::Type, 1034,
                           "Type Coercion failed: cannot convert to flash.text.TextField.");
    return static_cast<TextField&>(object.node());
}

void refuseStyled(Call& call)
{
    if (!stateOf(call).styleSheet.isNull())
        call.vm.throwError(ErrorClass::Error, 2009,
                           "This method cannot be used on a text field with a style sheet.");
}

namespace
{
std::span<const NativeMember> textFieldMembers()
{
    static const auto kMembers = [] {
        std::vector<NativeMember> all(std::begin(kProperties), std::end(kProperties));
        for (const auto list : {textFieldMethods(), textFieldLineMethods()})
            all.insert(all.end(), list.begin(), list.end());
        return all;
    }();
    return kMembers;
}
} // namespace

NativeLibrary textFieldLibrary()
{
    static const std::array kClasses = {
        NativeClass{.package = "flash.text",
                    .name = "TextField",
                    .base = "flash.display::InteractiveObject",
                    .flags = NativeClass::Sealed,
                    .constructor = &constructDisplay,
                    .minArguments = 0,
                    .maxArguments = 0,
                    .members = textFieldMembers()},
    };
    return {kClasses, {}};
}

} // namespace flash::avm2
