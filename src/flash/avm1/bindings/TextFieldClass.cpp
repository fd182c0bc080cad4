#include "base/TextCodes.h"
#include "flash/avm1/bindings/Classes.h"
#include "flash/avm1/bindings/StyleSheetObject.h"
#include "flash/avm1/bindings/TextFormatObject.h"
#include "flash/avm1/classes/Filters.h"
#include "flash/stage/Clip.h"
#include "flash/stage/TextField.h"
#include "flash/stage/TextFonts.h"

#include <cmath>

namespace flash::avm1
{

namespace
{

using stage::TextField;
constexpr double kTwips = swf::kTwipsPerPixel;

TextField* selfField(Call& call)
{
    stage::Node* node = selfNode(call);
    const bool is = node && node->kind() == stage::NodeKind::TextField;
    return is ? static_cast<TextField*>(node) : nullptr;
}

/// The getter or setter that does `Body` for a text field, and nothing for other objects.
template <auto Body>
Value on(Call& call)
{
    TextField* field = selfField(call);
    if (!field) return {};
    return Body(call, *field);
}

Value fromColor(swf::Rgba color) { return Value(color.r << 16 | color.g << 8 | color.b); }
swf::Rgba colorArg(Call& call)
{
    const std::uint32_t value = toUint32(numberArg(call, 0));
    return {static_cast<std::uint8_t>(value >> 16), static_cast<std::uint8_t>(value >> 8),
            static_cast<std::uint8_t>(value), 255};
}

// ---- the text ---------------------------------------------------------------------------------------------

Value getText(Call& call, TextField& field)
{
    field.syncVariable();
    return call.vm.string(field.text());
}
Value setText(Call& call, TextField& field)
{
    field.setText(textArg(call, 0));
    return {};
}
Value getHtmlText(Call& call, TextField& field)
{
    field.syncVariable();
    return call.vm.string(field.html());
}
Value setHtmlText(Call& call, TextField& field)
{
    field.setHtml(textArg(call, 0));
    return {};
}
Value getLength(Call&, TextField& field)
{
    field.syncVariable();
    return Value(static_cast<double>(field.length()));
}
Value getVariable(Call& call, TextField& field)
{
    if (field.variable().empty()) return Value::null();
    return StageBinding::of(call).utf8(field.variable());
}
Value setVariable(Call& call, TextField& field)
{
    field.setVariable(call.arg(0).isNullish() ? std::string() : utf8Arg(call, 0));
    return {};
}

// ---- look -------------------------------------------------------------------------------------------------

template <auto Getter>
Value getFlag(Call&, TextField& field)
{
    return Value((field.*Getter)());
}
template <auto Setter>
Value setFlag(Call& call, TextField& field)
{
    (field.*Setter)(toBoolean(call.vm, call.arg(0)));
    return {};
}
template <auto Getter>
Value getColor(Call&, TextField& field)
{
    return fromColor((field.*Getter)());
}
template <auto Setter>
Value setColor(Call& call, TextField& field)
{
    (field.*Setter)(colorArg(call));
    return {};
}
template <auto Member>
Value getMember(Call&, TextField& field)
{
    return Value(field.*Member);
}
template <auto Member>
Value setMember(Call& call, TextField& field)
{
    field.*Member = toBoolean(call.vm, call.arg(0));
    return {};
}

Value getTextColor(Call&, TextField& field) { return fromColor(field.newFormat().style.color); }
Value setTextColor(Call& call, TextField& field)
{
    stage::PartialTextFormat change;
    change.color = colorArg(call);
    field.setNewFormat(change);
    field.setFormat(0, field.length(), change);
    return {};
}

Value getAutoSize(Call& call, TextField& field)
{
    constexpr std::string_view kNames[] = {"none", "left", "center", "right"};
    return call.vm.string(kNames[static_cast<std::size_t>(field.autoSize())]);
}
Value setAutoSize(Call& call, TextField& field)
{
    using Mode = TextField::AutoSize;
    if (call.arg(0).isBoolean()) {
        field.setAutoSize(call.arg(0).boolean() ? Mode::Left : Mode::None);
        return {};
    }
    const std::u16string name = AtomTable::fold(textArg(call, 0));
    field.setAutoSize(name == u"left"     ? Mode::Left
                      : name == u"center" ? Mode::Center
                      : name == u"right"  ? Mode::Right
                                          : Mode::None);
    return {};
}

Value getType(Call& call, TextField& field)
{
    return call.vm.string(std::string_view(field.isInput() ? "input" : "dynamic"));
}
Value setType(Call& call, TextField& field)
{
    const std::u16string name = AtomTable::fold(textArg(call, 0));
    if (name == u"input") field.readOnly = false;
    if (name == u"dynamic") field.readOnly = true;
    return {};
}

Value getMaxChars(Call&, TextField& field) { return field.maxChars ? Value(*field.maxChars) : Value::null(); }
Value setMaxChars(Call& call, TextField& field)
{
    const int most = call.arg(0).isNullish() ? 0 : intArg(call, 0);
    field.maxChars = most > 0 ? std::optional<int>(most) : std::nullopt;
    return {};
}
Value getRestrict(Call& call, TextField& field)
{
    return field.restrict ? Value(call.vm.string(*field.restrict)) : Value::null();
}
Value setRestrict(Call& call, TextField& field)
{
    field.restrict.reset();
    if (call.arg(0).isNullish()) return {};
    // No character at all would be a field that nobody can use.
    if (std::u16string set = textArg(call, 0); !set.empty()) field.restrict = std::move(set);
    return {};
}

Value getStyleSheet(Call& call, TextField&)
{
    Object* self = call.self.asObject();
    Value sheet;
    const Name name = call.vm.name(std::string_view("_styleSheet"));
    return self->find(call.vm, name, sheet, call.self) ? sheet : Value();
}
Value setStyleSheet(Call& call, TextField& field)
{
    Object* self = call.self.asObject();
    Object* sheet = call.arg(0).asObject();
    auto* native = sheet ? sheet->native<StyleSheetObject>() : nullptr;
    self->define(call.vm, "_styleSheet", native ? Value(sheet) : Value(), kBuiltIn);
    if (native) native->users.push_back(field.weak_from_this());
    field.setStyleSheet(native ? native->sheet : nullptr);
    return {};
}

Value getFilters(Call& call, TextField& field) { return filtersToValue(call.vm, field.filters()); }
Value setFilters(Call& call, TextField& field)
{
    field.setFilters(filtersFromValue(call.vm, call.arg(0)));
    return {};
}

constexpr std::string_view kGridFits[] = {"none", "pixel", "subpixel"};

Value getAntiAliasType(Call& call, TextField& field)
{
    return call.vm.string(std::string_view(field.rendering.advanced ? "advanced" : "normal"));
}
Value setAntiAliasType(Call& call, TextField& field)
{
    const std::u16string name = textArg(call, 0);
    if (name == u"advanced") field.rendering.advanced = true;
    if (name == u"normal") field.rendering.advanced = false;
    return {};
}
Value getGridFitType(Call& call, TextField& field)
{
    return call.vm.string(kGridFits[static_cast<std::size_t>(field.rendering.gridFit)]);
}
Value setGridFitType(Call& call, TextField& field)
{
    const std::string name = utf8Arg(call, 0);
    for (std::size_t i = 0; i < std::size(kGridFits); ++i)
        if (kGridFits[i] == name) field.rendering.gridFit = static_cast<TextField::Rendering::GridFit>(i);
    return {};
}
Value getSharpness(Call&, TextField& field) { return Value(field.rendering.sharpness); }
Value setSharpness(Call& call, TextField& field)
{
    field.rendering.sharpness = numberArg(call, 0);
    return {};
}
Value getThickness(Call&, TextField& field) { return Value(field.rendering.thickness); }
Value setThickness(Call& call, TextField& field)
{
    field.rendering.thickness = numberArg(call, 0);
    return {};
}

// ---- measures and scrolling -------------------------------------------------------------------------------

double wholePixels(double twips) { return std::floor(twips / kTwips + 1e-6); }

Value getTextWidth(Call&, TextField& field)
{
    field.syncVariable();
    return Value(wholePixels(field.layout().width()));
}
Value getTextHeight(Call&, TextField& field)
{
    field.syncVariable();
    if (field.length() == 0) return Value(0.0);
    return Value(wholePixels(TextField::textHeight(field.layout())));
}
Value getScroll(Call&, TextField& field) { return Value(field.scroll() + 1); }
Value setScroll(Call& call, TextField& field)
{
    const int line = intArg(call, 0);
    // Counted from one in 32 bits, which go round at their end.
    const auto index = static_cast<std::int32_t>(static_cast<std::uint32_t>(line) - 1U);
    field.setScroll(std::max(index, 0));
    return {};
}
Value getMaxScroll(Call&, TextField& field) { return Value(field.maxScroll() + 1); }
Value getBottomScroll(Call&, TextField& field) { return Value(field.bottomScroll() + 1); }
Value getHscroll(Call&, TextField& field) { return Value(std::trunc(field.hscroll() / kTwips)); }
Value setHscroll(Call& call, TextField& field)
{
    field.setHscroll(intArg(call, 0) * kTwips);
    return {};
}
Value getMaxHscroll(Call&, TextField& field) { return Value(std::trunc(field.maxHscroll() / kTwips)); }

// ---- methods ----------------------------------------------------------------------------------------------

struct Stretch {
    std::size_t begin = 0, end = 0;
};

/// The characters that the first `count` arguments name: all, one, or from one up to another.
Stretch stretchArg(Call& call, TextField& field, std::size_t count)
{
    const std::size_t size = field.length();
    const auto index = [&](std::size_t i) {
        return std::min(static_cast<std::size_t>(std::max(intArg(call, i), 0)), size);
    };
    if (count == 0) return {0, size};
    if (count == 1 && intArg(call, 0) < 0) return {};
    const std::size_t begin = index(0);
    return {begin, count == 1 ? std::min(begin + 1, size) : std::max(index(1), begin)};
}

Value getTextFormat(Call& call, TextField& field)
{
    field.syncVariable();
    // An empty field looks like the text that may come; no characters look like nothing.
    if (field.length() == 0)
        return Value(makeTextFormat(call.vm, stage::PartialTextFormat::of(field.newFormat())));
    const Stretch stretch = stretchArg(call, field, std::min<std::size_t>(call.count(), 2));
    return Value(makeTextFormat(call.vm, field.content().common(stretch.begin, stretch.end)));
}
Value setTextFormat(Call& call, TextField& field)
{
    if (call.count() == 0) return {};
    const std::size_t last = std::min<std::size_t>(call.count() - 1, 2);
    Object* object = call.arg(last).asObject();
    auto* format = object ? object->native<TextFormatObject>() : nullptr;
    if (!format) return {};
    const Stretch stretch = stretchArg(call, field, last);
    field.setFormat(stretch.begin, stretch.end, format->forText());
    return {};
}
Value getNewTextFormat(Call& call, TextField& field)
{
    return Value(makeTextFormat(call.vm, stage::PartialTextFormat::of(field.newFormat())));
}
Value setNewTextFormat(Call& call, TextField& field)
{
    Object* object = call.arg(0).asObject();
    if (auto* format = object ? object->native<TextFormatObject>() : nullptr)
        field.setNewFormat(format->forText());
    return {};
}
Value replaceText(Call& call, TextField& field)
{
    if (call.count() < 3) return {};
    const int begin = intArg(call, 0), end = intArg(call, 1);
    const int size = static_cast<int>(field.length());
    if (begin < 0 || end < begin) return {};
    const std::u16string text = textArg(call, 2);
    if (text.empty() && call.vm.version() < 8 && begin < end) return {};
    field.replaceText(static_cast<std::size_t>(std::min(begin, size)), static_cast<std::size_t>(end), text);
    return {};
}
Value replaceSel(Call& call, TextField& field)
{
    const std::u16string text = textArg(call, 0);
    const std::size_t begin = field.selectionBegin();
    field.replaceText(begin, field.selectionEnd(), text);
    field.select(begin + text.size(), begin + text.size());
    return {};
}
Value removeTextField(Call&, TextField& field)
{
    // Only what a script made can be removed by one.
    if (field.depth() < 0 || field.depth() > stage::kMaxScriptDepth) return {};
    if (stage::Clip* parent = field.parentClip()) parent->removeChild(field);
    return {};
}
Value getDepth(Call&, TextField& field) { return Value(field.depth()); }

Value getFontList(Call& call)
{
    RootedValues names(call.vm.heap());
    for (const std::string& name : stage::TextFonts::installed())
        names.push_back(StageBinding::of(call).utf8(name));
    return Value(call.vm.newArray(*names));
}

// clang-format off
constexpr AccessorInfo kAccessors[] = {
    {"text",              0, &on<&getText>,             &on<&setText>},
    {"htmlText",          0, &on<&getHtmlText>,         &on<&setHtmlText>},
    {"html",              0, &on<&getFlag<&TextField::isHtml>>,          &on<&setFlag<&TextField::setIsHtml>>},
    {"condenseWhite",     0, &on<&getFlag<&TextField::condensesWhite>>,  &on<&setFlag<&TextField::setCondensesWhite>>},
    {"length",            0, &on<&getLength>,           nullptr},
    {"variable",          0, &on<&getVariable>,         &on<&setVariable>},
    {"border",            0, &on<&getFlag<&TextField::hasBorder>>,       &on<&setFlag<&TextField::setBorder>>},
    {"borderColor",       0, &on<&getColor<&TextField::borderColor>>,    &on<&setColor<&TextField::setBorderColor>>},
    {"background",        0, &on<&getFlag<&TextField::hasBackground>>,   &on<&setFlag<&TextField::setBackground>>},
    {"backgroundColor",   0, &on<&getColor<&TextField::backgroundColor>>, &on<&setColor<&TextField::setBackgroundColor>>},
    {"textColor",         0, &on<&getTextColor>,        &on<&setTextColor>},
    {"multiline",         0, &on<&getFlag<&TextField::isMultiline>>,     &on<&setFlag<&TextField::setMultiline>>},
    {"wordWrap",          0, &on<&getFlag<&TextField::wraps>>,           &on<&setFlag<&TextField::setWraps>>},
    {"password",          0, &on<&getFlag<&TextField::isPassword>>,      &on<&setFlag<&TextField::setPassword>>},
    {"embedFonts",        0, &on<&getFlag<&TextField::embedsFonts>>,     &on<&setFlag<&TextField::setEmbedsFonts>>},
    {"autoSize",          0, &on<&getAutoSize>,         &on<&setAutoSize>},
    {"type",              0, &on<&getType>,             &on<&setType>},
    {"selectable",        0, &on<&getMember<&TextField::selectable>>,    &on<&setMember<&TextField::selectable>>},
    {"mouseWheelEnabled", 0, &on<&getMember<&TextField::mouseWheelEnabled>>, &on<&setMember<&TextField::mouseWheelEnabled>>},
    {"maxChars",          0, &on<&getMaxChars>,         &on<&setMaxChars>},
    {"restrict",          0, &on<&getRestrict>,         &on<&setRestrict>},
    {"styleSheet",        kFrom7, &on<&getStyleSheet>,  &on<&setStyleSheet>},
    {"textWidth",         0, &on<&getTextWidth>,        nullptr},
    {"textHeight",        0, &on<&getTextHeight>,       nullptr},
    {"scroll",            0, &on<&getScroll>,           &on<&setScroll>},
    {"maxscroll",         0, &on<&getMaxScroll>,        nullptr},
    {"bottomScroll",      0, &on<&getBottomScroll>,     nullptr},
    {"hscroll",           0, &on<&getHscroll>,          &on<&setHscroll>},
    {"maxhscroll",        0, &on<&getMaxHscroll>,       nullptr},
    {"filters",           kFrom8, &on<&getFilters>,     &on<&setFilters>},
    {"antiAliasType",     kFrom8, &on<&getAntiAliasType>, &on<&setAntiAliasType>},
    {"gridFitType",       kFrom8, &on<&getGridFitType>, &on<&setGridFitType>},
    {"sharpness",         kFrom8, &on<&getSharpness>,   &on<&setSharpness>},
    {"thickness",         kFrom8, &on<&getThickness>,   &on<&setThickness>},
};
constexpr MemberInfo kMembers[] = {
    {"replaceSel",       1, kFrom6, &on<&replaceSel>,       100},
    {"getTextFormat",    0, kFrom6, &on<&getTextFormat>,    101},
    {"setTextFormat",    0, kFrom6, &on<&setTextFormat>,    102},
    {"removeTextField",  0, kFrom6, &on<&removeTextField>,  103},
    {"getNewTextFormat", 0, kFrom6, &on<&getNewTextFormat>, 104},
    {"setNewTextFormat", 0, kFrom6, &on<&setNewTextFormat>, 105},
    {"getDepth",         0, kFrom6, &on<&getDepth>,         106},
    {"replaceText",      0, kFrom7, &on<&replaceText>,      107},
};
constexpr MemberInfo kStaticMembers[] = {
    {"getFontList",      0, kFrom6, &getFontList,           201},
};
// clang-format on

constexpr int kNativeTable = 104;

Value construct(Call& call)
{
    installTextFieldProperties(call.vm);
    return {};
}

} // namespace

void installTextFieldProperties(Vm& vm)
{
    Object* constructor = vm.global()->get(vm, vm.name(std::string_view("TextField"))).asObject();
    Object* prototype = constructor ? vm.prototypeOf(constructor) : nullptr;
    if (!prototype || prototype->hasPlain(vm, vm.name(std::string_view("text")))) return;
    vm.addAccessors(prototype, kAccessors);
    addTabIndex(vm, prototype);
}

void installTextField(StageBinding& binding)
{
    Vm& vm = binding.vm();
    Function* constructor = vm.defineClass("TextField", &construct, kMembers, 0, kNativeTable);
    vm.addMembers(constructor, kStaticMembers, kNativeTable);
    Object* prototype = vm.prototypeOf(constructor);
    makeBroadcaster(vm, prototype);
    // Version 5 has the class, but nothing of what is in it.
    for (const char* member : {"broadcastMessage", "addListener", "removeListener", "_listeners"})
        prototype->changeFlags(vm, vm.name(std::string_view(member)), kFrom6, 0);
    constructor->changeFlags(vm, vm.common().prototype, kFrom6, 0);
    installTextFormat(binding);
    installStyleSheet(binding, constructor);
}

} // namespace flash::avm1
