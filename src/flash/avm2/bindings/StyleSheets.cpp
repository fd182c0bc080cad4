#include "flash/avm2/bindings/StyleSheets.h"

#include "base/Ascii.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/bindings/TextFormat.h"

#include <algorithm>
#include <cmath>

namespace flash::avm2
{

using classes::allocateNative;
using classes::selfAs;
using Kind = NativeMember::Kind;

namespace
{

StyleSheetObject& self(Call& call) { return selfAs<StyleSheetObject>(call, "flash.text.StyleSheet"); }

Value copyOf(Vm& vm, Object* from)
{
    Root<Object> copy(vm.heap(), vm.newObject());
    if (from == nullptr) return Value(copy.get());
    for (std::uint32_t at = from->nextIndex(vm, 0); at != 0; at = from->nextIndex(vm, at)) {
        const Name name = vm.names().intern(vm.toString(from->nextName(vm, at)));
        vm.set(Value(copy.get()), vm.publicName(name), from->nextValue(vm, at));
    }
    return Value(copy.get());
}

Value getStyle(Call& call)
{
    const auto& styles = self(call).styles;
    const auto found = styles.find(base::asciiLowered(call.vm.text(call.arg(0))));
    return copyOf(call.vm, found != styles.end() ? found->second.asObject() : nullptr);
}

void keepStyle(Vm& vm, StyleSheetObject& sheet, std::u16string_view selector, Value style)
{
    const std::u16string name = base::asciiLowered(selector);
    constexpr std::size_t kMaxStyles = 10'000;
    if (sheet.styles.size() < kMaxStyles || sheet.styles.contains(name)) sheet.styles[name] = style;
    // A class may have its own idea of what a style looks like, and is asked whenever one is set.
    vm.callPublic(Value(&sheet), "transform", {style});
}

Value setStyle(Call& call)
{
    const std::u16string name(call.vm.text(call.arg(0)));
    Object* style = call.arg(1).asObject();
    keepStyle(call.vm, self(call), name, style != nullptr ? copyOf(call.vm, style) : Value::null());
    return {};
}
Value clear(Call& call)
{
    self(call).styles.clear();
    return {};
}
Value styleNames(Call& call)
{
    auto* list = static_cast<ArrayObject*>(call.vm.newArray());
    for (const auto& [name, style] : self(call).styles) list->push(call.vm, Value(call.vm.string(name)));
    return Value(list);
}
Value parseCss(Call& call)
{
    Vm& vm = call.vm;
    auto& sheet = self(call);
    const auto rules = stage::StyleSheet::parse(vm.text(call.arg(0)), stage::StyleSheet::kActionScript3);
    if (!rules) return {};
    for (const stage::StyleSheet::Rule& rule : *rules) {
        Root<Object> style(vm.heap(), vm.newObject());
        for (const auto& [name, value] : rule.properties)
            vm.set(Value(style.get()), vm.publicName(vm.names().intern(name)), Value(vm.string(value)));
        keepStyle(vm, sheet, rule.selector, Value(style.get()));
    }
    return {};
}

// ---- a style as a format ----

std::u16string_view withoutBlanks(std::u16string_view text)
{
    const std::size_t first = text.find_first_not_of(u" \t\r\n");
    return first == std::u16string_view::npos ? std::u16string_view() : text.substr(first);
}

/// The number that a text begins with; not-a-number when it begins with none.
double leadingNumber(std::u16string_view text, bool isWhole)
{
    text = withoutBlanks(text);
    std::size_t length = !text.empty() && (text[0] == u'-' || text[0] == u'+') ? 1 : 0;
    const std::size_t digits = length;
    bool hasPoint = isWhole;
    while (length < text.size() &&
           ((text[length] >= u'0' && text[length] <= u'9') || (text[length] == u'.' && !hasPoint))) {
        hasPoint = hasPoint || text[length] == u'.';
        ++length;
    }
    if (length == digits) return std::nan("");
    return textNumber(text.substr(0, length));
}

int colorOf(std::u16string_view text)
{
    constexpr std::size_t kMaxDigits = 6;
    if (text.size() < 2 || text.size() > kMaxDigits + 1 || text[0] != u'#') return 0;
    int color = 0;
    for (const char16_t unit : text.substr(1)) {
        const char16_t small = unit | 0x20U;
        if (unit >= u'0' && unit <= u'9')
            color = color << 4 | (unit - u'0');
        else if (small >= u'a' && small <= u'f')
            color = color << 4 | (small - u'a' + 10);
        else
            return 0;
    }
    return color;
}

Value transform(Call& call)
{
    Vm& vm = call.vm;
    const Value style = call.arg(0);
    if (style.isNullish()) return Value::null();
    Root<Object> format(vm.heap(), makeTextFormat(vm, {}).object());
    const Value target(format.get());
    // What a style does not say, or says with nothing, stays open.
    const auto text = [&](const char* name) {
        const Value value = vm.getPublic(style, name);
        return vm.toBoolean(value) ? std::u16string(vm.text(value)) : std::u16string();
    };
    const auto set = [&](const char* name, Value value) { vm.setPublic(target, name, value); };
    const auto setText = [&](const char* name, std::u16string_view value) {
        set(name, Value(vm.string(value)));
    };
    const auto setLength = [&](const char* name, const char* property, bool isWhole) {
        if (const auto value = text(property); !value.empty()) set(name, leadingNumber(value, isWhole));
    };
    if (const auto value = text("color"); !value.empty()) set("color", colorOf(value));
    if (const auto value = text("display"); !value.empty()) setText("display", value);
    if (const auto value = text("fontFamily"); !value.empty())
        setText("font", fromUtf8(stage::StyleSheet::fontNames(value)));
    if (const auto value = text("fontSize"); !value.empty()) {
        if (const double size = leadingNumber(value, true); size > 0) set("size", size);
    }
    if (const auto value = text("fontStyle"); value == u"italic" || value == u"normal")
        set("italic", value == u"italic");
    if (const auto value = text("fontWeight"); value == u"bold" || value == u"normal")
        set("bold", value == u"bold");
    const auto kerning = text("kerning");
    const double kerningNumber = leadingNumber(kerning, true);
    set("kerning", kerning == u"true" || (!std::isnan(kerningNumber) && kerningNumber != 0));
    setLength("leading", "leading", true);
    setLength("letterSpacing", "letterSpacing", false);
    setLength("leftMargin", "marginLeft", true);
    setLength("rightMargin", "marginRight", true);
    if (const auto value = text("textAlign"); !value.empty()) setText("align", value);
    if (const auto value = text("textDecoration"); value == u"none" || value == u"underline")
        set("underline", value == u"underline");
    setLength("indent", "textIndent", true);
    return target;
}

constexpr NativeMember kMembers[] = {
    {"getStyle", Kind::Method, &getStyle, 1, 1},
    {"setStyle", Kind::Method, &setStyle, 2, 2},
    {"clear", Kind::Method, &clear, 0, 0},
    {"parseCSS", Kind::Method, &parseCss, 1, 1},
    {"transform", Kind::Method, &transform, 1, 1},
    {"styleNames", Kind::Getter, &styleNames, 0, 0, nullptr, "Array"},
};
constexpr NativeClass kClasses[] = {
    {.package = "flash.text",
     .name = "StyleSheet",
     .base = "flash.events::EventDispatcher",
     .minArguments = 0,
     .maxArguments = 0,
     .allocate = &allocateNative<StyleSheetObject>,
     .members = kMembers},
};

} // namespace

std::shared_ptr<const stage::StyleSheet> StyleSheetObject::sheet(Vm& vm)
{
    auto made = std::make_shared<stage::StyleSheet>();
    for (const auto& [name, style] : styles) {
        Object* object = style.asObject();
        if (object == nullptr) continue;
        stage::StyleProperties properties;
        for (std::uint32_t at = object->nextIndex(vm, 0); at != 0; at = object->nextIndex(vm, at)) {
            const std::u16string key(vm.text(object->nextName(vm, at)));
            properties.emplace_back(key, std::u16string(vm.text(object->nextValue(vm, at))));
        }
        made->set(name, std::move(properties));
    }
    return made;
}

NativeLibrary styleSheetLibrary() { return {kClasses, {}}; }

} // namespace flash::avm2
