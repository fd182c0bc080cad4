#include "flash/avm2/bindings/TextFormat.h"

#include "flash/avm2/bindings/Library.h"
#include "flash/stage/StyleSheet.h"

#include <algorithm>
#include <cmath>

namespace flash::avm2
{

using classes::allocateNative;
using classes::selfAs;
using Kind = NativeMember::Kind;
using Align = swf::EditText::Align;

namespace
{

constexpr double kTwips = swf::kTwipsPerPixel;
constexpr std::string_view kAligns[] = {"left", "right", "center", "justify"};

TextFormatObject& self(Call& call) { return selfAs<TextFormatObject>(call, TextFormatTag::kClass); }

/// As the processor converts: to the nearest, halves to even; the smallest number for what has no other.
double processorInt(double number)
{
    constexpr double kMin = -2147483648.0, kMax = 2147483647.0;
    const double rounded = std::nearbyint(number);
    return rounded >= kMin && rounded <= kMax ? rounded : kMin;
}

template <TextFormatField field>
Value setText(Call& call)
{
    const Value value = call.vm.coerceString(call.arg(0));
    self(call).fields[field] = value;
    return {};
}
template <TextFormatField field>
Value setFlag(Call& call)
{
    self(call).fields[field] =
        call.arg(0).isNullish() ? Value::null() : Value(call.vm.toBoolean(call.arg(0)));
    return {};
}
template <TextFormatField field>
Value setWhole(Call& call)
{
    const Value value =
        call.arg(0).isNullish() ? Value::null() : Value(processorInt(call.vm.toNumber(call.arg(0))));
    self(call).fields[field] = value;
    return {};
}
Value setColor(Call& call)
{
    const Value value = call.arg(0).isNullish() ? Value::null() : Value(call.vm.toInt(call.arg(0)));
    self(call).fields[FormatColor] = value;
    return {};
}
Value setSpacing(Call& call)
{
    const Value value = call.arg(0).isNullish() ? Value::null() : Value(call.vm.toNumber(call.arg(0)));
    self(call).fields[FormatLetterSpacing] = value;
    return {};
}
Value setAlign(Call& call)
{
    const Value value = call.vm.coerceString(call.arg(0));
    if (value.isString()) {
        const std::string name = toUtf8(call.vm.text(value));
        if (std::ranges::find(kAligns, name) == std::end(kAligns) && name != "start" && name != "end")
            throwNotAccepted(call.vm, "align");
    }
    self(call).fields[FormatAlign] = value;
    return {};
}
Value setDisplay(Call& call)
{
    const Value value = call.vm.coerceString(call.arg(0));
    const std::u16string name = value.isString() ? std::u16string(call.vm.text(value)) : std::u16string();
    const bool isKnown = name == u"block" || name == u"inline" || name == u"none";
    self(call).fields[FormatDisplay] = isKnown ? value : Value::null();
    return {};
}
Value setTabStops(Call& call)
{
    const Value given = call.vm.coerce(call.arg(0), call.vm.classes().array->instances);
    auto* list = as<ArrayObject>(given);
    if (list == nullptr) {
        self(call).fields[FormatTabStops] = Value::null();
        return {};
    }
    constexpr std::uint32_t kMaxStops = 4096;
    auto* stops = static_cast<ArrayObject*>(call.vm.newArray());
    for (std::uint32_t i = 0; i < std::min(list->length(), kMaxStops); ++i)
        stops->push(call.vm, processorInt(call.vm.toNumber(list->at(call.vm, i))));
    self(call).fields[FormatTabStops] = Value(stops);
    return {};
}
template <TextFormatField field>
Value get(Call& call)
{
    return self(call).fields[field];
}

constexpr NativeMember kMembers[] = {
    {"font", Kind::Getter, &get<FormatFont>, 0, 0, &setText<FormatFont>, "String"},
    {"size", Kind::Getter, &get<FormatSize>, 0, 0, &setWhole<FormatSize>, "Object"},
    {"color", Kind::Getter, &get<FormatColor>, 0, 0, &setColor, "Object"},
    {"bold", Kind::Getter, &get<FormatBold>, 0, 0, &setFlag<FormatBold>, "Object"},
    {"italic", Kind::Getter, &get<FormatItalic>, 0, 0, &setFlag<FormatItalic>, "Object"},
    {"underline", Kind::Getter, &get<FormatUnderline>, 0, 0, &setFlag<FormatUnderline>, "Object"},
    {"url", Kind::Getter, &get<FormatUrl>, 0, 0, &setText<FormatUrl>, "String"},
    {"target", Kind::Getter, &get<FormatTarget>, 0, 0, &setText<FormatTarget>, "String"},
    {"align", Kind::Getter, &get<FormatAlign>, 0, 0, &setAlign, "String"},
    {"leftMargin", Kind::Getter, &get<FormatLeftMargin>, 0, 0, &setWhole<FormatLeftMargin>, "Object"},
    {"rightMargin", Kind::Getter, &get<FormatRightMargin>, 0, 0, &setWhole<FormatRightMargin>, "Object"},
    {"indent", Kind::Getter, &get<FormatIndent>, 0, 0, &setWhole<FormatIndent>, "Object"},
    {"leading", Kind::Getter, &get<FormatLeading>, 0, 0, &setWhole<FormatLeading>, "Object"},
    {"blockIndent", Kind::Getter, &get<FormatBlockIndent>, 0, 0, &setWhole<FormatBlockIndent>, "Object"},
    {"tabStops", Kind::Getter, &get<FormatTabStops>, 0, 0, &setTabStops, "Array"},
    {"bullet", Kind::Getter, &get<FormatBullet>, 0, 0, &setFlag<FormatBullet>, "Object"},
    {"kerning", Kind::Getter, &get<FormatKerning>, 0, 0, &setFlag<FormatKerning>, "Object"},
    {"letterSpacing", Kind::Getter, &get<FormatLetterSpacing>, 0, 0, &setSpacing, "Object"},
    {"display", Kind::Getter, &get<FormatDisplay>, 0, 0, &setDisplay, "String"},
};
constexpr std::uint32_t kConstructorArguments = FormatLeading + 1;

Value construct(Call& call)
{
    auto& made = self(call);
    made.fields.fill(Value::null());
    made.fields[FormatDisplay] = Value(call.vm.name("block").string());
    for (std::uint32_t i = 0; i < std::min(call.count, kConstructorArguments); ++i) {
        Call set{call.vm, call.self, call.args + i, 1};
        kMembers[i].setter(set);
    }
    return {};
}

constexpr NativeClass kClasses[] = {
    {.package = "flash.text",
     .name = "TextFormat",
     .base = {},
     .flags = NativeClass::Sealed,
     .constructor = &construct,
     .minArguments = 0,
     .maxArguments = kConstructorArguments,
     .allocate = &allocateNative<TextFormatObject>,
     .members = kMembers},
};

} // namespace

NativeLibrary textFormatLibrary() { return {kClasses, {}}; }

stage::PartialTextFormat textFormatOf(Vm& vm, const TextFormatObject* format)
{
    stage::PartialTextFormat result;
    if (format == nullptr) return result;
    const auto& fields = format->fields;
    const auto text = [&](TextFormatField field) { return std::u16string(vm.text(fields[field])); };
    const auto has = [&](TextFormatField field) { return !fields[field].isNullish(); };
    if (has(FormatFont)) result.font = toUtf8(text(FormatFont));
    if (has(FormatUrl)) result.url = text(FormatUrl);
    if (has(FormatTarget)) result.target = text(FormatTarget);
    // Sizes that no text can have would only take the layout's time.
    constexpr double kMaxPixels = 2500;
    const auto length = [&](TextFormatField field, std::optional<double>& into, double least) {
        if (!has(field)) return;
        const double number = fields[field].number();
        into = std::isnan(number) ? 0 : std::clamp(number, least, kMaxPixels) * kTwips;
    };
    length(FormatSize, result.size, 0);
    length(FormatLeftMargin, result.leftMargin, -kMaxPixels);
    length(FormatRightMargin, result.rightMargin, -kMaxPixels);
    length(FormatIndent, result.indent, -kMaxPixels);
    length(FormatLeading, result.leading, -kMaxPixels);
    length(FormatBlockIndent, result.blockIndent, -kMaxPixels);
    length(FormatLetterSpacing, result.letterSpacing, -kMaxPixels);
    const auto flag = [&](TextFormatField field, std::optional<bool>& into) {
        if (has(field)) into = fields[field].boolean();
    };
    flag(FormatBold, result.bold);
    flag(FormatItalic, result.italic);
    flag(FormatUnderline, result.underline);
    flag(FormatBullet, result.bullet);
    flag(FormatKerning, result.kerning);
    if (has(FormatColor)) {
        const auto color =
            static_cast<std::uint32_t>(static_cast<std::int32_t>(fields[FormatColor].number()));
        result.color =
            swf::Rgba{static_cast<std::uint8_t>(color >> 16U), static_cast<std::uint8_t>(color >> 8U),
                      static_cast<std::uint8_t>(color), 255};
    }
    if (has(FormatAlign)) {
        const std::string name = toUtf8(text(FormatAlign));
        const auto* found = std::ranges::find(kAligns, name);
        if (found != std::end(kAligns))
            result.align = static_cast<Align>(found - std::begin(kAligns));
        else
            result.align = name == "end" ? Align::Right : Align::Left;
    }
    if (auto* stops = as<ArrayObject>(fields[FormatTabStops])) {
        result.tabStops.emplace();
        for (std::uint32_t i = 0; i < stops->length(); ++i) {
            const double stop = vm.toNumber(stops->at(vm, i));
            result.tabStops->push_back(std::isnan(stop) ? 0 : stop * kTwips);
        }
    }
    return result;
}

Value makeTextFormat(Vm& vm, const stage::PartialTextFormat& format)
{
    auto* made = as<TextFormatObject>(vm.construct(Value(vm.nativeClass("flash.text::TextFormat")), {}));
    Root<Object> keep(vm.heap(), made);
    auto& fields = made->fields;
    if (format.font) fields[FormatFont] = Value(vm.string(std::string_view(*format.font)));
    if (format.url) fields[FormatUrl] = Value(vm.string(*format.url));
    if (format.target) fields[FormatTarget] = Value(vm.string(*format.target));
    const auto length = [&](TextFormatField field, const std::optional<double>& from) {
        if (from) fields[field] = *from / kTwips;
    };
    length(FormatSize, format.size);
    length(FormatLeftMargin, format.leftMargin);
    length(FormatRightMargin, format.rightMargin);
    length(FormatIndent, format.indent);
    length(FormatLeading, format.leading);
    length(FormatBlockIndent, format.blockIndent);
    length(FormatLetterSpacing, format.letterSpacing);
    const auto flag = [&](TextFormatField field, const std::optional<bool>& from) {
        if (from) fields[field] = *from;
    };
    flag(FormatBold, format.bold);
    flag(FormatItalic, format.italic);
    flag(FormatUnderline, format.underline);
    flag(FormatBullet, format.bullet);
    flag(FormatKerning, format.kerning);
    if (format.color) fields[FormatColor] = format.color->r << 16 | format.color->g << 8 | format.color->b;
    if (format.align)
        fields[FormatAlign] = Value(vm.name(kAligns[static_cast<std::size_t>(*format.align)]).string());
    if (format.tabStops) {
        auto* stops = static_cast<ArrayObject*>(vm.newArray());
        fields[FormatTabStops] = Value(stops);
        for (const double stop : *format.tabStops) stops->push(vm, stop / kTwips);
    }
    return Value(made);
}

} // namespace flash::avm2
