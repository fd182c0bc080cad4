#include "flash/avm2/bindings/Player.h"
#include "flash/avm2/bindings/TextEngine.h"
#include "flash/stage/TextFonts.h"

#include <algorithm>
#include <cmath>

// How texts of the text engine look.
namespace flash::avm2::textengine
{

using classes::allocateNative;
using classes::selfAs;
using Kind = NativeMember::Kind;

namespace
{
constexpr std::string_view kRotations[] = {"auto", "rotate0", "rotate90", "rotate180", "rotate270"};
constexpr std::string_view kBaselines[] = {"roman",
                                           "ascent",
                                           "descent",
                                           "ideographicTop",
                                           "ideographicCenter",
                                           "ideographicBottom",
                                           "useDominantBaseline"};
constexpr std::string_view kLines[] = {"unjustified", "allButLast", "allIncludingLast",
                                       "allButMandatoryBreak"};
} // namespace

const Choice kTextRotation{"textRotation", kRotations},
    kLineRotation{"lineRotation", std::span(kRotations).subspan(1)},
    kDominantBaseline{"dominantBaseline", std::span(kBaselines).first(render::kBaselines)},
    kAlignmentBaseline{"alignmentBaseline", kBaselines}, kLineJustification{"lineJustification", kLines};

namespace
{

constexpr std::string_view kOnOff[] = {"on", "off", "auto"};
constexpr std::string_view kBreaks[] = {"auto", "any", "none", "all"};
constexpr std::string_view kDigitCases[] = {"default", "lining", "oldStyle"};
constexpr std::string_view kDigitWidths[] = {"default", "proportional", "tabular"};
constexpr std::string_view kLigatures[] = {"common", "minimum", "none", "uncommon", "exotic"};
constexpr std::string_view kCases[] = {"default",   "title",           "caps", "smallCaps", "uppercase",
                                       "lowercase", "capsAndSmallCaps"};
constexpr std::string_view kWeights[] = {"normal", "bold"};
constexpr std::string_view kPostures[] = {"normal", "italic"};
constexpr std::string_view kLookups[] = {"device", "embeddedCFF"};
constexpr std::string_view kModes[] = {"cff", "normal"};
constexpr std::string_view kHintings[] = {"horizontalStem", "none"};
constexpr Choice kKerning{"kerning", kOnOff}, kBreakOpportunity{"breakOpportunity", kBreaks},
    kDigitCase{"digitCase", kDigitCases}, kDigitWidth{"digitWidth", kDigitWidths},
    kLigatureLevel{"ligatureLevel", kLigatures}, kTypographicCase{"typographicCase", kCases},
    kFontWeight{"fontWeight", kWeights}, kFontPosture{"fontPosture", kPostures},
    kFontLookup{"fontLookup", kLookups}, kRenderingMode{"renderingMode", kModes},
    kCffHinting{"cffHinting", kHintings};

/// The setters of the table's first members take the constructor's arguments.
void assignAll(Call& call, std::span<const NativeMember> members)
{
    for (std::uint32_t i = 0; i < std::min<std::size_t>(call.count, members.size()); ++i) {
        Call set{call.vm, call.self, call.args + i, 1};
        members[i].setter(set);
    }
}
template <class T>
Value clone(Call& call)
{
    T& from = selfAs<T>(call, T::kClass);
    auto* made = as<T>(Value(call.vm.instantiate(from.traits()->cls)));
    made->fields = from.fields;
    return Value(made);
}
template <class T>
Value locked(Call& call)
{
    return selfAs<T>(call, T::kClass).isLocked;
}
template <class T>
Value setLocked(Call& call)
{
    const bool value = call.vm.toBoolean(call.arg(0));
    selfAs<T>(call, T::kClass).change(call).isLocked = value;
    return {};
}

// ---- fonts ----

using Font = FontDescriptionObject;

Value setFontName(Call& call)
{
    const Value value(call.vm.string(textArg(call, 0, "fontName")));
    selfAs<Font>(call, Font::kClass).change(call).fields[FontName] = value;
    return {};
}
bool isInstalled(std::u16string_view name)
{
    const auto names = stage::TextFonts::installed();
    return std::ranges::find(names, toUtf8(name)) != names.end();
}
Value isFontCompatible(Call& call)
{
    const std::string name = toUtf8(textArg(call, 0, "fontName"));
    const bool bold = call.vm.text(call.arg(1)) == u"bold", italic = call.vm.text(call.arg(2)) == u"italic";
    Player& player = Player::of(call.vm);
    return player.stage().textFonts().embedded(player.stage().movie(), name, bold, italic) != nullptr;
}
Value isDeviceFontCompatible(Call& call) { return isInstalled(textArg(call, 0, "fontName")); }

Value constructFont(Call& call);
constexpr NativeMember kFontMembers[] = {
    {"fontName", Kind::Getter, &getField<Font, FontName>, 0, 0, &setFontName, "String"},
    {"fontWeight", Kind::Getter, &getField<Font, FontWeight>, 0, 0, &setChoice<Font, FontWeight, kFontWeight>,
     "String"},
    {"fontPosture", Kind::Getter, &getField<Font, FontPosture>, 0, 0,
     &setChoice<Font, FontPosture, kFontPosture>, "String"},
    {"fontLookup", Kind::Getter, &getField<Font, FontLookup>, 0, 0, &setChoice<Font, FontLookup, kFontLookup>,
     "String"},
    {"renderingMode", Kind::Getter, &getField<Font, FontRendering>, 0, 0,
     &setChoice<Font, FontRendering, kRenderingMode>, "String"},
    {"cffHinting", Kind::Getter, &getField<Font, FontHinting>, 0, 0,
     &setChoice<Font, FontHinting, kCffHinting>, "String"},
    {"locked", Kind::Getter, &locked<Font>, 0, 0, &setLocked<Font>, "Boolean"},
    {"clone", Kind::Method, &clone<Font>, 0, 0, nullptr, "flash.text.engine::FontDescription"},
    {"isFontCompatible", Kind::Static, &isFontCompatible, 3, 3, nullptr, "Boolean"},
    {"isDeviceFontCompatible", Kind::Static, &isDeviceFontCompatible, 3, 3, nullptr, "Boolean"},
};
Value constructFont(Call& call)
{
    constexpr std::string_view kDefaults[FontFields] = {"_serif", "normal", "normal",
                                                        "device", "cff",    "horizontalStem"};
    Font& made = selfAs<Font>(call, Font::kClass);
    for (std::size_t i = 0; i < FontFields; ++i) made.fields[i] = nameValue(call.vm, kDefaults[i]);
    assignAll(call, std::span(kFontMembers).first(FontFields));
    return {};
}

// ---- formats ----

using Format = ElementFormatObject;

Value setFont(Call& call)
{
    auto* font = as<Font>(Value(objectArg(call, 0, "flash.text.engine::FontDescription")));
    if (font == nullptr) throwNullParameter(call.vm, "fontDescription");
    selfAs<Format>(call, Format::kClass).change(call).fields[FormatFont] = Value(font);
    font->isLocked = true;
    return {};
}
Value setSize(Call& call)
{
    const double size = call.vm.toNumber(call.arg(0));
    if (!(size >= 0)) throwInvalid(call.vm);
    selfAs<Format>(call, Format::kClass).change(call).fields[FormatSize] = size;
    return {};
}
Value setLocale(Call& call)
{
    const Value value(call.vm.string(textArg(call, 0, "locale")));
    selfAs<Format>(call, Format::kClass).change(call).fields[FormatLocale] = value;
    return {};
}
/// What its font states of itself, at the format's size.
Value fontMetrics(Call& call)
{
    Vm& vm = call.vm;
    Format& format = selfAs<Format>(call, Format::kClass);
    const double size = format.fields[FormatSize].number();
    const auto face = faceOf(vm, as<Font>(format.fields[FormatFont]));
    const double scale = face != nullptr ? size / face->metrics().unitsPerEm : 0;
    const render::FontFace::Extras extras = face != nullptr ? face->extras() : render::FontFace::Extras();
    const Root<Object> metrics(vm.heap(), vm.instantiate(vm.nativeClass("flash.text.engine::FontMetrics")));
    constexpr double kAbove = 0.88;
    metrics->setSlot(
        0, vm.construct(Value(vm.nativeClass("flash.geom::Rectangle")),
                        std::array<Value, 4>{Value(0), Value(-kAbove * size), Value(size), Value(size)}));
    const double rest[] = {extras.strike * scale,      extras.strikeThickness * scale,
                           extras.underline * scale,   extras.underlineThickness * scale,
                           extras.subscript * scale,   extras.subscriptScale,
                           extras.superscript * scale, extras.superscriptScale};
    for (std::uint32_t i = 0; i < std::size(rest) && i + 1 < metrics->slotCount(); ++i)
        metrics->setSlot(i + 1, rest[i]);
    return Value(metrics.get());
}

template <FormatField field, FieldType type>
constexpr NativeMember open(std::string_view name, std::string_view typeName)
{
    return {name, Kind::Getter, &getField<Format, field>, 0, 0, &setOpen<Format, field, type>, typeName};
}
template <FormatField field, const Choice& choice>
constexpr NativeMember chosen()
{
    return {choice.parameter, Kind::Getter, &getField<Format, field>, 0, 0, &setChoice<Format, field, choice>,
            "String"};
}
Value constructFormat(Call& call);
constexpr NativeMember kFormatMembers[] = {
    {"fontDescription", Kind::Getter, &getField<Format, FormatFont>, 0, 0, &setFont,
     "flash.text.engine::FontDescription"},
    {"fontSize", Kind::Getter, &getField<Format, FormatSize>, 0, 0, &setSize, "Number"},
    open<FormatColor, FieldType::Uint>("color", "uint"),
    open<FormatAlpha, FieldType::Number>("alpha", "Number"),
    {"textRotation", Kind::Getter, &getField<Format, FormatRotation>, 0, 0,
     &setChoice<Format, FormatRotation, kTextRotation>, "String"},
    {"dominantBaseline", Kind::Getter, &getField<Format, FormatDominant>, 0, 0,
     &setChoice<Format, FormatDominant, kDominantBaseline>, "String"},
    {"alignmentBaseline", Kind::Getter, &getField<Format, FormatAlignment>, 0, 0,
     &setChoice<Format, FormatAlignment, kAlignmentBaseline>, "String"},
    open<FormatShift, FieldType::Number>("baselineShift", "Number"),
    chosen<FormatKerning, kKerning>(),
    open<FormatTrackingRight, FieldType::Number>("trackingRight", "Number"),
    open<FormatTrackingLeft, FieldType::Number>("trackingLeft", "Number"),
    {"locale", Kind::Getter, &getField<Format, FormatLocale>, 0, 0, &setLocale, "String"},
    chosen<FormatBreaks, kBreakOpportunity>(),
    chosen<FormatDigitCase, kDigitCase>(),
    chosen<FormatDigitWidth, kDigitWidth>(),
    chosen<FormatLigatures, kLigatureLevel>(),
    chosen<FormatCase, kTypographicCase>(),
    {"locked", Kind::Getter, &locked<Format>, 0, 0, &setLocked<Format>, "Boolean"},
    {"clone", Kind::Method, &clone<Format>, 0, 0, nullptr, "flash.text.engine::ElementFormat"},
    {"getFontMetrics", Kind::Method, &fontMetrics, 0, 0, nullptr, "flash.text.engine::FontMetrics"},
};
Value constructFormat(Call& call)
{
    Vm& vm = call.vm;
    Format& made = selfAs<Format>(call, Format::kClass);
    auto& fields = made.fields;
    fields[FormatSize] = 12;
    fields[FormatColor] = 0;
    fields[FormatAlpha] = 1;
    for (const auto at : {FormatShift, FormatTrackingLeft, FormatTrackingRight}) fields[at] = 0;
    for (const auto& [at, name] : {std::pair{FormatRotation, "auto"},
                                   {FormatDominant, "roman"},
                                   {FormatAlignment, "useDominantBaseline"},
                                   {FormatKerning, "on"},
                                   {FormatLocale, "en"},
                                   {FormatBreaks, "auto"},
                                   {FormatDigitCase, "default"},
                                   {FormatDigitWidth, "default"},
                                   {FormatLigatures, "common"},
                                   {FormatCase, "default"}})
        fields[at] = nameValue(vm, name);
    // A description that is not given is the usual one.
    const bool hasFont = call.count > 0 && !call.arg(0).isNullish();
    if (!hasFont) {
        const Value font = vm.construct(Value(vm.nativeClass("flash.text.engine::FontDescription")), {});
        Call set{vm, call.self, &font, 1};
        setFont(set);
    }
    for (std::uint32_t i = hasFont ? 0 : 1; i < std::min<std::uint32_t>(call.count, FormatFields); ++i) {
        Call set{vm, call.self, call.args + i, 1};
        kFormatMembers[i].setter(set);
    }
    return {};
}

Value assignSlots(Call& call)
{
    Object& object = *call.self.object();
    for (std::uint32_t i = 0; i < call.count && i < object.slotCount(); ++i)
        call.vm.setSlotTyped(object, i, call.args[i]);
    return {};
}

using C = NativeConstant;
// clang-format off
constexpr C kRotationNames[] = {{"AUTO", 0, "auto"}, {"ROTATE_0", 0, "rotate0"}, {"ROTATE_180", 0, "rotate180"},
    {"ROTATE_270", 0, "rotate270"}, {"ROTATE_90", 0, "rotate90"}};
constexpr C kBaselineNames[] = {{"ASCENT", 0, "ascent"}, {"DESCENT", 0, "descent"},
    {"IDEOGRAPHIC_BOTTOM", 0, "ideographicBottom"}, {"IDEOGRAPHIC_CENTER", 0, "ideographicCenter"},
    {"IDEOGRAPHIC_TOP", 0, "ideographicTop"}, {"ROMAN", 0, "roman"},
    {"USE_DOMINANT_BASELINE", 0, "useDominantBaseline"}};
constexpr C kKerningNames[] = {{"AUTO", 0, "auto"}, {"OFF", 0, "off"}, {"ON", 0, "on"}};
constexpr C kBreakNames[] = {{"ALL", 0, "all"}, {"ANY", 0, "any"}, {"AUTO", 0, "auto"}, {"NONE", 0, "none"}};
constexpr C kHintingNames[] = {{"HORIZONTAL_STEM", 0, "horizontalStem"}, {"NONE", 0, "none"}};
constexpr C kDigitCaseNames[] = {{"DEFAULT", 0, "default"}, {"LINING", 0, "lining"}, {"OLD_STYLE", 0, "oldStyle"}};
constexpr C kDigitWidthNames[] = {{"DEFAULT", 0, "default"}, {"PROPORTIONAL", 0, "proportional"},
    {"TABULAR", 0, "tabular"}};
constexpr C kLookupNames[] = {{"DEVICE", 0, "device"}, {"EMBEDDED_CFF", 0, "embeddedCFF"}};
constexpr C kPostureNames[] = {{"ITALIC", 0, "italic"}, {"NORMAL", 0, "normal"}};
constexpr C kWeightNames[] = {{"BOLD", 0, "bold"}, {"NORMAL", 0, "normal"}};
constexpr C kLigatureNames[] = {{"COMMON", 0, "common"}, {"EXOTIC", 0, "exotic"}, {"MINIMUM", 0, "minimum"},
    {"NONE", 0, "none"}, {"UNCOMMON", 0, "uncommon"}};
constexpr C kModeNames[] = {{"CFF", 0, "cff"}, {"NORMAL", 0, "normal"}};
constexpr C kCaseNames[] = {{"CAPS", 0, "caps"}, {"CAPS_AND_SMALL_CAPS", 0, "capsAndSmallCaps"},
    {"DEFAULT", 0, "default"}, {"LOWERCASE", 0, "lowercase"}, {"SMALL_CAPS", 0, "smallCaps"}, {"TITLE", 0, "title"},
    {"UPPERCASE", 0, "uppercase"}};
// clang-format on

constexpr NativeClass kClasses[] = {
    {.package = "flash.text.engine",
     .name = "FontDescription",
     .base = {},
     .flags = NativeClass::Sealed | NativeClass::Final,
     .constructor = &constructFont,
     .minArguments = 0,
     .maxArguments = FontFields,
     .allocate = &allocateNative<FontDescriptionObject>,
     .members = kFontMembers},
    {.package = "flash.text.engine",
     .name = "ElementFormat",
     .base = {},
     .flags = NativeClass::Sealed | NativeClass::Final,
     .constructor = &constructFormat,
     .minArguments = 0,
     .maxArguments = FormatFields,
     .allocate = &allocateNative<ElementFormatObject>,
     .members = kFormatMembers},
    {.package = "flash.text.engine",
     .name = "FontMetrics",
     .base = {},
     .flags = NativeClass::Sealed | NativeClass::Final,
     .constructor = &assignSlots,
     .minArguments = 9,
     .maxArguments = 9,
     .slots = "emBox:* strikethroughOffset:Number strikethroughThickness:Number underlineOffset:Number "
              "underlineThickness:Number subscriptOffset:Number subscriptScale:Number "
              "superscriptOffset:Number superscriptScale:Number"},
    engineConstants("TextRotation", kRotationNames),
    engineConstants("TextBaseline", kBaselineNames),
    engineConstants("Kerning", kKerningNames),
    engineConstants("BreakOpportunity", kBreakNames),
    engineConstants("CFFHinting", kHintingNames),
    engineConstants("DigitCase", kDigitCaseNames),
    engineConstants("DigitWidth", kDigitWidthNames),
    engineConstants("FontLookup", kLookupNames),
    engineConstants("FontPosture", kPostureNames),
    engineConstants("FontWeight", kWeightNames),
    engineConstants("LigatureLevel", kLigatureNames),
    engineConstants("RenderingMode", kModeNames),
    engineConstants("TypographicCase", kCaseNames),
};

} // namespace

bool Choice::holds(std::u16string_view name) const
{
    return std::ranges::any_of(names, [&](std::string_view known) { return name == widen(known); });
}

Value choiceArg(Call& call, const Choice& choice)
{
    const std::u16string name = textArg(call, 0, choice.parameter);
    if (!choice.holds(name)) throwNotAccepted(call.vm, choice.parameter);
    return Value(call.vm.name(name).string());
}

void throwInvalid(Vm& vm) { vm.throwError(ErrorClass::Argument, 2004, "One of the parameters is invalid."); }
void throwOutOfRange(Vm& vm)
{
    vm.throwError(ErrorClass::Range, 2006, "The supplied index is out of bounds.");
}

FontDescriptionObject& FontDescriptionObject::change(Call& call)
{
    if (isLocked)
        call.vm.throwError(ErrorClass::IllegalOperation, 2185,
                           "The FontDescription object is locked and cannot be modified.");
    return *this;
}
ElementFormatObject& ElementFormatObject::change(Call& call)
{
    if (isLocked)
        call.vm.throwError(ErrorClass::IllegalOperation, 2184,
                           "The ElementFormat object is locked and cannot be modified.");
    return *this;
}

render::Baseline baselineOf(std::u16string_view name)
{
    for (std::size_t i = 0; i < render::kBaselines; ++i) {
        if (name == widen(kBaselines[i])) return static_cast<render::Baseline>(i);
    }
    return render::Baseline::Roman;
}

render::FontFacePtr faceOf(Vm& vm, FontDescriptionObject* font)
{
    Player& player = Player::of(vm);
    stage::TextFonts& fonts = player.stage().textFonts();
    if (font == nullptr) return fonts.device("_serif", false, false);
    const auto is = [&](FontField field, std::u16string_view name) {
        return vm.text(font->fields[field]) == name;
    };
    const std::string name = toUtf8(vm.text(font->fields[FontName]));
    const bool bold = is(FontWeight, u"bold"), italic = is(FontPosture, u"italic");
    if (is(FontLookup, u"embeddedCFF")) {
        if (auto face = fonts.embedded(player.stage().movie(), name, bold, italic)) return face;
        for (const auto& [movie, id] : player.fontsSeenFrom(vm.currentDomain())) {
            if (auto face = fonts.embedded(movie, name, bold, italic)) return face;
        }
    }
    return fonts.device(player.stage().movie(), name, bold, italic);
}

render::ParagraphRun runOf(Vm& vm, ElementFormatObject* format)
{
    constexpr double kTwips = swf::kTwipsPerPixel, kMaxPixels = 2500;
    render::ParagraphRun run;
    run.size = 12 * kTwips;
    if (format == nullptr) {
        run.face = faceOf(vm, nullptr);
        return run;
    }
    const auto& fields = format->fields;
    const auto text = [&](FormatField field) { return vm.text(fields[field]); };
    const auto twips = [&](FormatField field) {
        const double number = fields[field].number();
        return std::isnan(number) ? 0 : std::clamp(number, -kMaxPixels, kMaxPixels) * kTwips;
    };
    run.face = faceOf(vm, as<FontDescriptionObject>(fields[FormatFont]));
    run.size = twips(FormatSize);
    const auto color = static_cast<std::uint32_t>(fields[FormatColor].number());
    const double alpha = std::clamp(fields[FormatAlpha].number(), 0.0, 1.0);
    run.color = {static_cast<std::uint8_t>(color >> 16U), static_cast<std::uint8_t>(color >> 8U),
                 static_cast<std::uint8_t>(color),
                 static_cast<std::uint8_t>(std::isnan(alpha) ? 0 : std::lround(alpha * 255))};
    run.kerning = text(FormatKerning) != u"off";
    run.trackingLeft = twips(FormatTrackingLeft);
    run.trackingRight = twips(FormatTrackingRight);
    run.shift = twips(FormatShift);
    run.dominant = baselineOf(text(FormatDominant));
    if (text(FormatAlignment) != u"useDominantBaseline") run.alignment = baselineOf(text(FormatAlignment));
    using Run = render::ParagraphRun;
    const std::u16string_view breaks = text(FormatBreaks);
    run.breaks = breaks == u"any"    ? Run::Breaks::Any
                 : breaks == u"none" ? Run::Breaks::None
                 : breaks == u"all"  ? Run::Breaks::All
                                     : Run::Breaks::Auto;
    const std::u16string_view letters = text(FormatCase);
    run.letters = letters == u"uppercase" || letters == u"caps" ? Run::Letters::Upper
                  : letters == u"lowercase"                     ? Run::Letters::Lower
                  : letters == u"capsAndSmallCaps"              ? Run::Letters::SmallCapitals
                  : letters == u"smallCaps"                     ? Run::Letters::AllSmall
                                                                : Run::Letters::AsGiven;
    for (std::size_t i = 0; i < std::size(kRotations); ++i)
        if (text(FormatRotation) == widen(kRotations[i]))
            run.rotation = i == 0 ? Run::Rotation::Auto : static_cast<Run::Rotation>(i - 1);
    const std::u16string_view ligatures = text(FormatLigatures);
    run.ligatures = ligatures == u"none" || ligatures == u"minimum" ? render::Ligatures::None
                    : ligatures == u"common"                        ? render::Ligatures::Common
                                                                    : render::Ligatures::Rare;
    return run;
}

std::span<const NativeClass> formatClasses() { return kClasses; }

} // namespace flash::avm2::textengine
