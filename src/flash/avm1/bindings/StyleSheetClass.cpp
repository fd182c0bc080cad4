#include "flash/avm1/bindings/StyleSheetObject.h"

#include "base/TextCodes.h"
#include "flash/avm1/bindings/Classes.h"
#include "flash/avm1/bindings/TextFormatObject.h"

namespace flash::avm1
{

namespace
{

// A script can look at what a style sheet keeps: texts as parsed in `_css`, formats in `_styles`.
constexpr std::string_view kStyles = "_css";

Object* stylesOf(Call& call)
{
    Object* self = call.self.asObject();
    if (!self) return nullptr;
    const Name name = call.vm.name(kStyles);
    if (Object* styles = self->get(call.vm, name).asObject()) return styles;
    Object* styles = call.vm.newObject();
    self->define(call.vm, name, Value(styles), kDontEnum);
    return styles;
}

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
    if (!styles) return {};
    Value style;
    const Name name = toName(call.vm, call.arg(0));
    if (!styles->hasOwn(call.vm, name)) return Value::null();
    style = styles->get(call.vm, name);
    return style.isObject() ? Value(copyOf(call.vm, style.object())) : Value::null();
}

Value setStyle(Call& call)
{
    Object* styles = stylesOf(call);
    if (!styles) return {};
    const Name name = toName(call.vm, call.arg(0));
    if (Object* style = call.arg(1).asObject())
        styles->put(call.vm, name, Value(copyOf(call.vm, style)));
    else
        styles->remove(call.vm, name);
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
    if (Object* self = call.self.asObject())
        self->define(call.vm, kStyles, Value(call.vm.newObject()), kDontEnum);
    refresh(call);
    return {};
}

Value parseCss(Call& call)
{
    const auto rules = stage::StyleSheet::parse(textArg(call, 0), call.vm.version());
    if (!rules) return Value(false);
    Vm& vm = call.vm;
    Object* styles = stylesOf(call);
    if (!styles) return Value(true);
    for (const stage::StyleSheet::Rule& rule : *rules) {
        Object* style = vm.newObject();
        for (const auto& [name, value] : rule.properties)
            style->define(vm, vm.name(std::u16string_view(name)), Value(vm.string(value)));
        styles->put(vm, vm.name(std::u16string_view(rule.selector)), Value(style));
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
    binding.stage().fetch(std::move(request), [&binding, root,
                                               version](const base::Result<stage::LoadAnswer>& answer) {
        Vm& vm = binding.vm();
        const Vm::VersionScope scope(vm, version);
        Value text;
        if (answer) {
            const std::string_view bytes(reinterpret_cast<const char*>(answer->bytes.data()),
                                         answer->bytes.size());
            text = vm.string(base::isUtf8(bytes) ? base::utf16FromUtf8(bytes) : base::utf16FromAnsi(bytes));
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

Value construct(Call& call)
{
    Object* object = call.self.asObject();
    if (!object || !call.isConstruct) return {};
    object->attachNew<StyleSheetObject>();
    object->define(call.vm, kStyles, Value(call.vm.newObject()), kDontEnum);
    return {};
}

// clang-format off
constexpr MemberInfo kMembers[] = {
    {"getStyle",           0, 0, &getStyle},
    {"setStyle",           0, 0, &setStyle},
    {"getStyleNames",      0, 0, &getStyleNames},
    {"clear",              0, 0, &clear},
    {"parseCSS",           0, 0, &parseCss, 101},
    {"parse",              0, 0, &parse},
    {"load",               0, 0, &load, 100},
    {"onData",             0, 0, &onData},
    {"transform",          0, 0, &transform},
    {"parseCSSFontFamily", 0, 0, &parseCssFontFamily, 102},
};
// clang-format on

constexpr int kNativeTable = 113;

} // namespace

void installStyleSheet(StageBinding& binding, Object* textField)
{
    Vm& vm = binding.vm();
    Function* constructor = vm.newFunction(&construct);
    Object* prototype = vm.newObject(vm.builtIns().object);
    vm.addMembers(prototype, kMembers, kNativeTable);
    constructor->define(vm, vm.common().prototype, Value(prototype), kBuiltIn);
    prototype->define(vm, vm.common().constructor, Value(constructor), kBuiltIn);
    textField->define(vm, "StyleSheet", Value(constructor), kBuiltIn | kFrom7);
}

} // namespace flash::avm1
