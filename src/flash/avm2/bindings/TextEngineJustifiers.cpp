#include "flash/avm2/bindings/TextEngine.h"

#include <algorithm>
#include <cmath>

// How lines of the text engine fill their width, and where tabs stop.
namespace flash::avm2::textengine
{

using classes::allocateNative;
using classes::selfAs;
using Kind = NativeMember::Kind;
using Justifier = JustifierObject;

namespace
{

constexpr std::string_view kStyles[] = {"pushInKinsoku", "prioritizeLeastAdjustment", "pushOutOnly"};
constexpr Choice kJustificationStyle{"justificationStyle", kStyles};
constexpr std::string_view kAlignments[] = {"start", "center", "end", "decimal"};
constexpr Choice kTabAlignment{"alignment", kAlignments};

template <JustifierField field>
Value setSpacing(Call& call)
{
    const double value = call.vm.toNumber(call.arg(0));
    if (!(value >= 0)) throwInvalid(call.vm);
    selfAs<Justifier>(call, Justifier::kClass).fields[field] = value;
    return {};
}
Value clone(Call& call) { return cloneJustifier(call.vm, selfAs<Justifier>(call, Justifier::kClass)); }
Value justifierForLocale(Call& call) { return justifierFor(call.vm, textArg(call, 0, "locale")); }
Value refuse(Call& call)
{
    call.vm.throwError(ErrorClass::Argument, 2012, "TextJustifier$ class cannot be instantiated.");
}

void construct(Call& call, std::string_view locale, std::string_view lines)
{
    Vm& vm = call.vm;
    Justifier& made = selfAs<Justifier>(call, Justifier::kClass);
    made.fields[JustifierLocale] =
        call.has(0) ? Value(vm.string(textArg(call, 0, "locale"))) : nameValue(vm, locale);
    made.fields[JustifierLines] = nameValue(vm, lines);
    made.fields[JustifierLetters] = false;
    made.fields[JustifierMinimum] = 0.5;
    made.fields[JustifierOptimum] = 1;
    made.fields[JustifierMaximum] = 1.5;
    made.fields[JustifierStyle] = nameValue(vm, "pushInKinsoku");
    made.fields[JustifierTrailing] = false;
    if (call.has(1)) {
        Call set{vm, call.self, call.args + 1, 1};
        setChoice<Justifier, JustifierLines, kLineJustification>(set);
    }
}
Value constructSpace(Call& call)
{
    construct(call, "en", "unjustified");
    if (call.has(2))
        selfAs<Justifier>(call, Justifier::kClass).fields[JustifierLetters] = call.vm.toBoolean(call.arg(2));
    return {};
}
Value constructEastAsian(Call& call)
{
    selfAs<Justifier>(call, Justifier::kClass).isEastAsian = true;
    construct(call, "ja", "allButLast");
    if (call.has(2)) {
        Call set{call.vm, call.self, call.args + 2, 1};
        setChoice<Justifier, JustifierStyle, kJustificationStyle>(set);
    }
    return {};
}

constexpr NativeMember kBase[] = {
    {"getJustifierForLocale", Kind::Static, &justifierForLocale, 1, 1, nullptr,
     "flash.text.engine::TextJustifier"},
    {"locale", Kind::Getter, &getField<Justifier, JustifierLocale>, 0, 0, nullptr, "String"},
    {"lineJustification", Kind::Getter, &getField<Justifier, JustifierLines>, 0, 0,
     &setChoice<Justifier, JustifierLines, kLineJustification>, "String"},
    {"clone", Kind::Method, &clone, 0, 0, nullptr, "flash.text.engine::TextJustifier"},
};
constexpr NativeMember kSpace[] = {
    {"letterSpacing", Kind::Getter, &getField<Justifier, JustifierLetters>, 0, 0,
     &setOpen<Justifier, JustifierLetters, FieldType::Boolean>, "Boolean"},
    {"minimumSpacing", Kind::Getter, &getField<Justifier, JustifierMinimum>, 0, 0,
     &setSpacing<JustifierMinimum>, "Number"},
    {"optimumSpacing", Kind::Getter, &getField<Justifier, JustifierOptimum>, 0, 0,
     &setSpacing<JustifierOptimum>, "Number"},
    {"maximumSpacing", Kind::Getter, &getField<Justifier, JustifierMaximum>, 0, 0,
     &setSpacing<JustifierMaximum>, "Number"},
};
constexpr NativeMember kEastAsian[] = {
    {"justificationStyle", Kind::Getter, &getField<Justifier, JustifierStyle>, 0, 0,
     &setChoice<Justifier, JustifierStyle, kJustificationStyle>, "String"},
    {"composeTrailingIdeographicSpaces", Kind::Getter, &getField<Justifier, JustifierTrailing>, 0, 0,
     &setOpen<Justifier, JustifierTrailing, FieldType::Boolean>, "Boolean"},
};

// ---- tab stops ----

struct TabStopTag {
    static constexpr const char* kClass = "flash.text.engine.TabStop";
};
enum TabField : std::size_t { TabAlignment, TabPosition, TabToken, TabFields };
class TabStopObject final : public FieldsOf<Object, TabFields, TabStopTag>
{
public:
    using FieldsOf::FieldsOf;
    TabStopObject& change(Call&) { return *this; }
};
Value setPosition(Call& call)
{
    const double value = call.vm.toNumber(call.arg(0));
    if (!(value >= 0)) throwInvalid(call.vm);
    selfAs<TabStopObject>(call, TabStopTag::kClass).fields[TabPosition] = value;
    return {};
}
Value setToken(Call& call)
{
    const Value value(call.vm.string(textArg(call, 0, "decimalAlignmentToken")));
    selfAs<TabStopObject>(call, TabStopTag::kClass).fields[TabToken] = value;
    return {};
}
constexpr NativeMember kTabStop[] = {
    {"alignment", Kind::Getter, &getField<TabStopObject, TabAlignment>, 0, 0,
     &setChoice<TabStopObject, TabAlignment, kTabAlignment>, "String"},
    {"position", Kind::Getter, &getField<TabStopObject, TabPosition>, 0, 0, &setPosition, "Number"},
    {"decimalAlignmentToken", Kind::Getter, &getField<TabStopObject, TabToken>, 0, 0, &setToken, "String"},
};
Value constructTabStop(Call& call)
{
    auto& fields = selfAs<TabStopObject>(call, TabStopTag::kClass).fields;
    fields[TabAlignment] = nameValue(call.vm, "start");
    fields[TabPosition] = 0;
    fields[TabToken] = nameValue(call.vm, "");
    for (std::uint32_t i = 0; i < std::min<std::size_t>(call.count, TabFields); ++i) {
        Call set{call.vm, call.self, call.args + i, 1};
        kTabStop[i].setter(set);
    }
    return {};
}

using C = NativeConstant;
constexpr C kLineNames[] = {{"ALL_BUT_LAST", 0, "allButLast"},
                            {"ALL_BUT_MANDATORY_BREAK", 0, "allButMandatoryBreak"},
                            {"ALL_INCLUDING_LAST", 0, "allIncludingLast"},
                            {"UNJUSTIFIED", 0, "unjustified"}};
constexpr C kStyleNames[] = {{"PRIORITIZE_LEAST_ADJUSTMENT", 0, "prioritizeLeastAdjustment"},
                             {"PUSH_IN_KINSOKU", 0, "pushInKinsoku"},
                             {"PUSH_OUT_ONLY", 0, "pushOutOnly"}};
constexpr C kTabNames[] = {
    {"CENTER", 0, "center"}, {"DECIMAL", 0, "decimal"}, {"END", 0, "end"}, {"START", 0, "start"}};

constexpr NativeClass justifier(std::string_view name, NativeFunction constructor,
                                std::span<const NativeMember> members)
{
    return {.package = "flash.text.engine",
            .name = name,
            .base = "flash.text.engine::TextJustifier",
            .flags = NativeClass::Sealed | NativeClass::Final,
            .constructor = constructor,
            .minArguments = 0,
            .maxArguments = 3,
            .members = members};
}
constexpr NativeClass kClasses[] = {
    {.package = "flash.text.engine",
     .name = "TextJustifier",
     .base = {},
     .flags = NativeClass::Sealed,
     .constructor = &refuse,
     .allocate = &allocateNative<Justifier>,
     .members = kBase},
    justifier("SpaceJustifier", &constructSpace, kSpace),
    justifier("EastAsianJustifier", &constructEastAsian, kEastAsian),
    {.package = "flash.text.engine",
     .name = "TabStop",
     .base = {},
     .flags = NativeClass::Sealed | NativeClass::Final,
     .constructor = &constructTabStop,
     .minArguments = 0,
     .maxArguments = TabFields,
     .allocate = &allocateNative<TabStopObject>,
     .members = kTabStop},
    engineConstants("LineJustification", kLineNames),
    engineConstants("JustificationStyle", kStyleNames),
    engineConstants("TabAlignment", kTabNames),
};

} // namespace

Value cloneJustifier(Vm& vm, const Justifier& from)
{
    auto* made = as<Justifier>(Value(vm.instantiate(from.traits()->cls)));
    made->fields = from.fields;
    made->isEastAsian = from.isEastAsian;
    return Value(made);
}

Value justifierFor(Vm& vm, std::u16string_view locale)
{
    const bool isEastAsian =
        locale.starts_with(u"ja") || locale.starts_with(u"zh") || locale.starts_with(u"ko");
    const Value name(vm.string(locale));
    return vm.construct(Value(vm.nativeClass(isEastAsian ? "flash.text.engine::EastAsianJustifier"
                                                         : "flash.text.engine::SpaceJustifier")),
                        {&name, 1});
}

render::Justification justificationOf(Vm& vm, const Justifier* justifier)
{
    render::Justification how;
    if (justifier == nullptr) return how;
    const std::u16string_view lines = vm.text(justifier->fields[JustifierLines]);
    using Lines = render::Justification::Lines;
    how.lines = lines == u"allButLast"             ? Lines::AllButLast
                : lines == u"allIncludingLast"     ? Lines::All
                : lines == u"allButMandatoryBreak" ? Lines::AllButMandatory
                                                   : Lines::None;
    using Spread = render::Justification::Spread;
    how.spread = justifier->isEastAsian                              ? Spread::Letters
                 : vm.toBoolean(justifier->fields[JustifierLetters]) ? Spread::SpacesAndLetters
                                                                     : Spread::Spaces;
    how.widestSpace = justifier->fields[JustifierMaximum].number();
    if (!justifier->isEastAsian) how.narrowestSpace = justifier->fields[JustifierMinimum].number();
    return how;
}

std::vector<render::LineTabStop> tabStopsOf(Vm& vm, Value stops)
{
    constexpr std::size_t kMaxStops = 4096;
    std::vector<render::LineTabStop> result;
    const auto* list = as<VectorObject>(stops);
    if (list == nullptr) return result;
    for (const Value item : list->items) {
        const auto* stop = as<TabStopObject>(item);
        if (stop == nullptr || result.size() >= kMaxStops) continue;
        const std::u16string_view name = vm.text(stop->fields[TabAlignment]);
        std::size_t kind = 0;
        while (kind + 1 < std::size(kAlignments) && name != widen(kAlignments[kind])) ++kind;
        using Alignment = render::LineTabStop::Alignment;
        result.push_back({static_cast<Alignment>(kind),
                          stop->fields[TabPosition].number() * swf::kTwipsPerPixel,
                          std::u16string(vm.text(stop->fields[TabToken]))});
    }
    std::ranges::stable_sort(result, {}, &render::LineTabStop::position);
    return result;
}

std::span<const NativeClass> justifierClasses() { return kClasses; }

} // namespace flash::avm2::textengine
