#include "flash/avm1/bindings/StyleSheetObject.h"

#include "base/TextCodes.h"
#include "flash/avm1/bindings/Classes.h"
#include "flash/avm1/bindings/DataLoading.h"
#include "flash/avm1/bindings/TextFormatObject.h"
#include "flash/avm1/classes/ClassTable.h"

namespace flash::avm1
{

namespace
{

// A script can look at what a style sheet keeps: texts as parsed in `_css`, formats in `_styles`.
constexpr std::string_view kStyles = "_css";

constexpr std::string_view kFormats = "_styles";

enum class IfMissing { Leave, Make };

/// The object that a sheet keeps under a name; there is none before the first style.
Object* keptUnder(Call& call, std::string_view property, IfMissing ifMissing = IfMissing::Leave)
{
    Object* self = call.self.asObject();
    if (!self) return nullptr;
    const Name name = call.vm.name(property);
    if (Object* kept = self->get(call.vm, name).asObject()) return kept;
    if (ifMissing == IfMissing::Leave) return nullptr;
    Object* made = call.vm.newLiteral();
    self->put(call.vm, name, Value(made));
    return made;
}
Object* stylesOf(Call& call) { return keptUnder(call, kStyles); }

/// What text fields see of the styles, made anew after each change.
void refresh(Call& call)
{
    Object* self = call.self.asObject();
    auto* native = self ? self->native<StyleSheetObject>() : nullptr;
    Object* styles = stylesOf(call);
    if (!native || !styles) return;
    Vm& vm = call.vm;
    auto sheet = std::make_shared<stage::StyleSheet>();
    for (const Name selector : styles->enumerate(vm)) {
        Object* style = styles->get(vm, selector).asObject();
        if (!style) continue;
        stage::StyleProperties properties;
        for (const Name property : style->enumerate(vm))
            properties.emplace_back(property.view(), toText(vm, style->get(vm, property)));
        sheet->set(selector.view(), std::move(properties));
    }
    native->sheet = std::move(sheet);
    for (const std::weak_ptr<stage::Node>& user : native->users)
        if (const auto node = user.lock()) static_cast<stage::TextField&>(*node).setStyleSheet(native->sheet);
}

Object* copyOf(Vm& vm, Object* style)
{
    Object* copy = vm.newObject();
    // The copy lists its properties in the order of the original.
    const RootedNames names = style->enumerate(vm);
    for (std::size_t i = names.size(); i-- > 0;) copy->define(vm, names[i], style->get(vm, names[i]));
    return copy;
}

Value getStyle(Call& call)
{
    Object* styles = stylesOf(call);
    if (!styles) return Value::null();
    Object* style = styles->get(call.vm, toName(call.vm, call.arg(0))).asObject();
    return style ? Value(copyOf(call.vm, style)) : Value::null();
}

/// Takes a style in, and has its format made by methods that scripts may have replaced.
void keepStyle(Call& call, Name name, Value style)
{
    if (Object* styles = keptUnder(call, kStyles, IfMissing::Make)) styles->put(call.vm, name, style);
    keptUnder(call, kFormats, IfMissing::Make);
    if (Object* self = call.self.asObject()) call.vm.callMethod(self, "doTransform", {Value(name.string())});
}

Value setStyle(Call& call)
{
    const Name name = toName(call.vm, call.arg(0));
    Object* style = call.arg(1).asObject();
    // What is no object is kept all the same: the name is listed, and its style is null.
    keepStyle(call, name, style ? Value(copyOf(call.vm, style)) : Value::null());
    refresh(call);
    return {};
}

Value getStyleNames(Call& call)
{
    Object* styles = stylesOf(call);
    if (!styles) return {};
    RootedValues names(call.vm.heap());
    for (const Name name : styles->enumerate(call.vm)) names.push_back(name.string());
    return Value(call.vm.newArray(*names));
}

Value clear(Call& call)
{
    if (Object* self = call.self.asObject()) {
        self->put(call.vm, call.vm.name(kStyles), Value(call.vm.newLiteral()));
        self->put(call.vm, call.vm.name(kFormats), Value(call.vm.newLiteral()));
    }
    refresh(call);
    return {};
}

Value parseCss(Call& call)
{
    const auto rules = stage::StyleSheet::parse(textArg(call, 0), call.vm.version());
    if (!rules) return Value(false);
    Vm& vm = call.vm;
    for (const stage::StyleSheet::Rule& rule : *rules) {
        Object* style = vm.newObject();
        for (const auto& [name, value] : rule.properties)
            style->define(vm, vm.name(std::u16string_view(name)), Value(vm.string(value)));
        keepStyle(call, vm.name(std::u16string_view(rule.selector)), Value(style));
        if (vm.isUnwinding()) return {};
    }
    refresh(call);
    return Value(true);
}

/// Its text and a flag; the methods that a script may replace are looked up when called.
Value load(Call& call)
{
    Object* self = call.self.asObject();
    if (!self || call.count() == 0 || call.arg(0).isUndefined()) return Value(false);
    StageBinding& binding = StageBinding::of(call);
    stage::LoadRequest request;
    request.url = utf8Arg(call, 0);
    stage::Clip* sender = binding.clipOf(call.vm.target());
    request.baseUrl = sender ? sender->url() : binding.stage().url();
    if (request.url.empty()) return Value(false);
    auto root = std::make_shared<Root<Object>>(call.vm.heap(), self);
    const int version = call.vm.version();
    binding.stage().loads().fetch(
        std::move(request), [&binding, root, version](const base::Result<stage::LoadAnswer>& answer) {
            Vm& vm = binding.vm();
            const Vm::VersionScope scope(vm, version);
            Value text;
            if (answer) {
                const std::string_view bytes(reinterpret_cast<const char*>(answer->bytes.data()),
                                             answer->bytes.size());
                text = vm.string(textFromBytes(vm, bytes));
            }
            binding.callHandler(root->get(), "onData", {text});
        });
    return Value(true);
}

Value onData(Call& call)
{
    Object* self = call.self.asObject();
    if (!self) return {};
    bool success = false;
    if (!call.arg(0).isUndefined())
        success = toBoolean(call.vm, call.vm.callMethod(self, "parse", {call.arg(0)}));
    call.vm.callMethod(self, "onLoad", {Value(success)});
    return {};
}

Value parse(Call& call) { return parseCss(call); }

/// Makes a TextFormat of a style.
Value transform(Call& call)
{
    Object* style = call.arg(0).asObject();
    if (!style) return Value::null();
    Vm& vm = call.vm;
    stage::StyleProperties properties;
    for (const Name property : style->enumerate(vm))
        properties.emplace_back(property.view(), toText(vm, style->get(vm, property)));
    // Two formats that differ in everything tell what the style says anything about.
    stage::TextFormat one, other;
    other.style = {"\n", -1, {1, 1, 1, 1}, true, true, true, true, -1, swf::EditText::Align::Justify,
                   -1,   -1, -1,           -1,   -1,   true, {-1}};
    other.url = other.target = u"\n";
    bool shown = true;
    stage::StyleSheet::apply(properties, one, shown);
    stage::StyleSheet::apply(properties, other, shown);
    stage::PartialTextFormat said = stage::PartialTextFormat::of(one);
    said.keepCommon(other);
    Object* format = makeTextFormat(vm, said);
    if (!shown) format->native<TextFormatObject>()->display = TextFormatObject::Display::None;
    return Value(format);
}

Value parseCssFontFamily(Call& call)
{
    if (call.count() == 0) return {};
    return call.vm.string(base::utf16FromUtf8(stage::StyleSheet::fontNames(textArg(call, 0))));
}

Value update(Call& call)
{
    refresh(call);
    return {};
}
Value copyMethod(Call& call)
{
    Object* style = call.arg(0).asObject();
    return style ? Value(copyOf(call.vm, style)) : Value::null();
}
Value onLoad(Call&) { return {}; }

/// "#RRGGBB" as a number; null for other texts.
Value parseColor(Call& call)
{
    const std::u16string text = textArg(call, 0);
    constexpr std::size_t kDigits = 6;
    if (text.empty() || text[0] != u'#' || text.size() != kDigits + 1) return Value::null();
    unsigned color = 0;
    for (const char16_t unit : std::u16string_view(text).substr(1)) {
        const char16_t small = unit | 0x20;
        if (unit >= u'0' && unit <= u'9')
            color = color << 4 | (unit - u'0');
        else if (small >= u'a' && small <= u'f')
            color = color << 4 | (small - u'a' + 10);
        else
            return Value::null();
    }
    return Value(color);
}

Value doTransform(Call& call)
{
    Object* self = call.self.asObject();
    Object* styles = stylesOf(call);
    if (!self || !styles) return {};
    const Name name = toName(call.vm, call.arg(0));
    const Value format = call.vm.callMethod(self, "transform", {styles->get(call.vm, name)});
    if (Object* formats = keptUnder(call, kFormats)) formats->put(call.vm, name, format);
    return {};
}

Value construct(Call& call)
{
    Object* object = call.self.asObject();
    if (!object || !call.isConstruct) return {};
    object->attachNew<StyleSheetObject>();
    return {};
}

// clang-format off
constexpr LibraryFunction kMembers[] = {
    {"load",               Written::Native, kHidden7, &load,               0, 100},
    {"update",             Written::Native, kHidden7, &update,             0, 104},
    {"parseCSSInternal",   Written::Native, kHidden7, &parseCss,           0, 101},
    {"parseCSSFontFamily", Written::Native, kHidden7, &parseCssFontFamily, 0, 102},
    {"parseColor",         Written::Native, kHidden7, &parseColor,         0, 103},
    {"_copy",              Written::Script, kHidden7, &copyMethod},
    {"clear",              Written::Script, kHidden7, &clear},
    {"getStyle",           Written::Script, kHidden7, &getStyle},
    {"setStyle",           Written::Script, kHidden7, &setStyle},
    {"getStyleNames",      Written::Script, kHidden7, &getStyleNames},
    {"doTransform",        Written::Script, kHidden7, &doTransform},
    {"transform",          Written::Script, kHidden7, &transform},
    {"parse",              Written::Script, kHidden7, &parse},
    {"onLoad",             Written::Script, kHidden7, &onLoad},
    {"onData",             Written::Script, kHidden7, &onData},
};
// clang-format on

constexpr int kNativeTable = 113;

} // namespace

void installStyleSheet(StageBinding& binding, Object* textField)
{
    Vm& vm = binding.vm();
    Function* constructor = vm.newFunction(&construct);
    Object* prototype = vm.newObject(vm.builtIns().object);
    defineFunctions(vm, prototype, kMembers, kNativeTable);
    const Name parseName = vm.name(std::string_view("parse"));
    prototype->define(vm, "parseCSS", prototype->get(vm, parseName), kHidden);
    constructor->define(vm, vm.common().prototype, Value(prototype), kBuiltIn);
    prototype->define(vm, vm.common().constructor, Value(constructor), kBuiltIn);
    textField->define(vm, "StyleSheet", Value(constructor), kBuiltIn | kFrom7);
}

} // namespace flash::avm1
