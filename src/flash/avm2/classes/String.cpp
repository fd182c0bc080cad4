#include "flash/avm2/classes/Library.h"
#include "flash/avm2/classes/RegExp.h"

#include <QString>

#include <algorithm>

namespace flash::avm2::classes
{

namespace
{

/// A copy: arguments may change what `this` is made of.
std::u16string selfText(Call& call)
{
    if (call.self.isObject() && call.self.object() == call.vm.classes().string->prototype) return {};
    return std::u16string(call.vm.text(call.self));
}

double number(Call& call, std::uint32_t i, double missing)
{
    return call.has(i) ? call.vm.toNumber(call.arg(i)) : missing;
}

Value charAt(Call& call)
{
    const std::u16string text = selfText(call);
    const double at = std::trunc(number(call, 0, 0));
    const double place = std::isnan(at) ? 0 : at;
    if (place < 0 || place >= static_cast<double>(text.size())) return call.vm.common().empty.string();
    return call.vm.names().fromUnit(text[static_cast<std::size_t>(place)]).string();
}

Value charCodeAt(Call& call)
{
    String* self = call.vm.toString(call.self);
    const double at = std::trunc(number(call, 0, 0));
    const double place = std::isnan(at) ? 0 : at;
    if (place < 0 || place >= static_cast<double>(self->length())) return std::nan("");
    return static_cast<double>(self->view()[static_cast<std::size_t>(place)]);
}

Value quickCharCodeAt(Vm&, Value receiver, const Value* args)
{
    if (!receiver.isString() || !args[0].isNumber()) return Value::hole();
    String* const text = receiver.string();
    const double at = args[0].number();
    if (!(at >= 0 && at < static_cast<double>(text->length()))) return Value::hole();
    return static_cast<double>(text->view()[static_cast<std::size_t>(at)]);
}
Value quickLength(Vm&, Value receiver, const Value*)
{
    if (!receiver.isString()) return Value::hole();
    return static_cast<double>(receiver.string()->length());
}

Value concat(Call& call)
{
    std::u16string text = selfText(call);
    for (std::uint32_t i = 0; i < call.count; ++i) text += call.vm.text(call.args[i]);
    return call.vm.string(std::move(text));
}

Value indexOf(Call& call)
{
    const std::u16string text = selfText(call);
    const std::u16string wanted(call.has(0) ? call.vm.text(call.arg(0)) : u"undefined");
    double from = number(call, 1, 0);
    from = std::isnan(from) ? 0 : std::clamp(std::trunc(from), 0.0, static_cast<double>(text.size()));
    const auto found = text.find(wanted, static_cast<std::size_t>(from));
    return found == std::u16string::npos ? -1.0 : static_cast<double>(found);
}

Value lastIndexOf(Call& call)
{
    const std::u16string text = selfText(call);
    const std::u16string wanted(call.has(0) ? call.vm.text(call.arg(0)) : u"undefined");
    const double from = number(call, 1, 2147483647.0);
    if (from < 0) return -1;
    const auto found = text.rfind(wanted, std::isnan(from) || from > 4e9 ? std::u16string::npos
                                                                         : static_cast<std::size_t>(from));
    return found == std::u16string::npos ? -1.0 : static_cast<double>(found);
}

Value localeCompare(Call& call)
{
    const std::u16string text = selfText(call);
    const std::u16string other(call.vm.text(call.arg(0)));
    const std::size_t shared = std::min(text.size(), other.size());
    for (std::size_t i = 0; i < shared; ++i) {
        if (text[i] != other[i]) return static_cast<double>(text[i]) - static_cast<double>(other[i]);
    }
    return static_cast<double>(text.size()) - static_cast<double>(other.size());
}

Value slice(Call& call)
{
    const std::u16string text = selfText(call);
    const auto length = static_cast<double>(text.size());
    const double from = clampIndex(number(call, 0, 0), length);
    const double to = clampIndex(number(call, 1, 2147483647.0), length);
    return call.vm.string(
        to > from ? text.substr(static_cast<std::size_t>(from), static_cast<std::size_t>(to - from))
                  : std::u16string());
}

Value substr(Call& call)
{
    const std::u16string text = selfText(call);
    const auto length = static_cast<double>(text.size());
    const double from = clampIndex(number(call, 0, 0), length);
    double count = number(call, 1, 2147483647.0);
    count = std::isnan(count) ? 0 : std::trunc(count);
    if (count < 0) {
        // A count below nothing is taken from the whole length, unless the end so found lies before the
        // start.
        count = from + count >= 0 ? 0 : std::max(0.0, length + count);
    }
    count = std::min(count, length - from);
    return call.vm.string(count > 0
                              ? text.substr(static_cast<std::size_t>(from), static_cast<std::size_t>(count))
                              : std::u16string());
}

Value substring(Call& call)
{
    const std::u16string text = selfText(call);
    const auto length = static_cast<double>(text.size());
    const auto place = [&](std::uint32_t i, double missing) {
        const double given = number(call, i, missing);
        return std::isnan(given) ? 0.0 : std::clamp(std::trunc(given), 0.0, length);
    };
    double from = place(0, 0), to = place(1, 2147483647.0);
    if (from > to) std::swap(from, to);
    return call.vm.string(text.substr(static_cast<std::size_t>(from), static_cast<std::size_t>(to - from)));
}

// The player's tables are those of Unicode 3: Georgian has its old pairs, a final sigma one of its own.
char16_t lowerOf(char16_t unit)
{
    constexpr char16_t kDottedI = 0x130, kFinalSigma = 0x3C2, kItsCapital = 0x3A2;
    if (unit == kDottedI) return u'i';
    if (unit == kItsCapital) return kFinalSigma;
    if (unit >= 0x10A0 && unit <= 0x10C5) return static_cast<char16_t>(unit + 0x30);
    return QChar(unit).toLower().unicode();
}
char16_t upperOf(char16_t unit)
{
    constexpr char16_t kFinalSigma = 0x3C2, kItsCapital = 0x3A2, kLunateSigma = 0x3F2, kSigma = 0x3A3;
    if (unit == kFinalSigma) return kItsCapital;
    if (unit == kLunateSigma) return kSigma;
    // Greek letters with a small iota stay one.
    const bool isRow = unit >= 0x1F80 && unit <= 0x1FAF && (unit & 8U) == 0;
    if (isRow) return static_cast<char16_t>(unit + 8);
    if (unit == 0x1FB3 || unit == 0x1FC3 || unit == 0x1FF3) return static_cast<char16_t>(unit + 9);
    return QChar(unit).toUpper().unicode();
}

template <bool upper>
Value inCase(Call& call)
{
    const std::u16string text = selfText(call);
    std::u16string result(text.size(), 0);
    for (std::size_t i = 0; i < text.size(); ++i) {
        // Unit by unit: no character becomes two.
        result[i] = upper ? upperOf(text[i]) : lowerOf(text[i]);
    }
    return call.vm.string(std::move(result));
}

Value split(Call& call)
{
    const std::u16string text = selfText(call);
    const double limit =
        call.has(1) && !call.arg(1).isUndefined() ? call.vm.toUint(call.arg(1)) : 4294967295.0;
    if (auto* pattern = as<RegExpObject>(call.arg(0))) return pattern->split(call.vm, text, limit);
    auto* result = static_cast<ArrayObject*>(call.vm.newArray());
    const bool isMissing = call.arg(0).isUndefined();
    const std::u16string separator(isMissing ? u"" : call.vm.text(call.arg(0)));
    if (isMissing) {
        result->push(call.vm, Value(call.vm.string(text)));
        return result;
    }
    std::size_t at = 0;
    while (result->length() < limit) {
        if (separator.empty()) {
            if (at >= text.size()) break;
            result->push(call.vm, Value(call.vm.names().fromUnit(text[at++]).string()));
            continue;
        }
        const auto found = text.find(separator, at);
        result->push(call.vm, Value(call.vm.string(
                                  text.substr(at, found == std::u16string::npos ? found : found - at))));
        if (found == std::u16string::npos) break;
        at = found + separator.size();
        call.vm.check();
    }
    return result;
}

Value replace(Call& call)
{
    const std::u16string text = selfText(call);
    const Value with = call.arg(1);
    if (auto* pattern = as<RegExpObject>(call.arg(0))) return pattern->replace(call.vm, text, with);
    const std::u16string wanted(call.vm.text(call.arg(0)));
    const auto found = text.find(wanted);
    std::u16string replacement;
    if (isFunction(with)) {
        if (found == std::u16string::npos) return call.vm.string(text);
        replacement = call.vm.text(call.vm.call(
            with, Value(),
            {Value(call.vm.string(wanted)), Value(static_cast<double>(found)), Value(call.vm.string(text))}));
    } else {
        const std::u16string given(call.vm.text(with));
        if (found == std::u16string::npos) return call.vm.string(text);
        const std::pair<int, int> whole[] = {
            {static_cast<int>(found), static_cast<int>(found + wanted.size())}};
        replacement = RegExpObject::expand(given, text, whole);
    }
    return call.vm.string(text.substr(0, found) + replacement + text.substr(found + wanted.size()));
}

RegExpObject* patternOf(Call& call)
{
    if (auto* pattern = as<RegExpObject>(call.arg(0))) return pattern;
    const Value args[] = {Value(call.vm.toString(call.arg(0)))};
    return as<RegExpObject>(call.vm.construct(Value(call.vm.classes().regExp), args));
}

Value match(Call& call)
{
    const std::u16string text = selfText(call);
    return patternOf(call)->match(call.vm, text);
}

Value search(Call& call)
{
    const std::u16string text = selfText(call);
    return patternOf(call)->search(call.vm, text);
}

Value length(Call& call) { return static_cast<double>(call.vm.toString(call.self)->length()); }

Value fromCharCode(Call& call)
{
    std::u16string text;
    for (std::uint32_t i = 0; i < call.count; ++i)
        text += static_cast<char16_t>(call.vm.toUint(call.args[i]));
    return call.vm.string(std::move(text));
}

Value toStringSelf(Call& call)
{
    if (call.self.isString()) return call.self;
    if (call.self.isObject() && call.self.object() == call.vm.classes().string->prototype)
        return call.vm.common().empty.string();
    call.vm.throwError(ErrorClass::Type, 1004,
                       "Method String.prototype.toString was invoked on an incompatible object.");
}

Value convert(Call& call)
{
    return call.has(0) ? Value(call.vm.toString(call.arg(0))) : Value(call.vm.common().empty.string());
}

constexpr NativeMember kMembers[] = {
    {"length", Kind::Getter, &length, 0, 0, nullptr, "int", &quickLength},
    {"charAt", Kind::As3, &charAt, 0, 1},
    {"charCodeAt", Kind::As3, &charCodeAt, 0, 1, nullptr, {}, &quickCharCodeAt, 1},
    {"concat", Kind::As3, &concat},
    {"indexOf", Kind::As3, &indexOf, 0, 2},
    {"lastIndexOf", Kind::As3, &lastIndexOf, 0, 2},
    {"localeCompare", Kind::As3, &localeCompare, 0, -1},
    {"match", Kind::As3, &match, 0, 1},
    {"replace", Kind::As3, &replace, 0, 2},
    {"search", Kind::As3, &search, 0, 1},
    {"slice", Kind::As3, &slice, 0, 2},
    {"split", Kind::As3, &split, 0, 2},
    {"substr", Kind::As3, &substr, 0, 2},
    {"substring", Kind::As3, &substring, 0, 2},
    {"toLowerCase", Kind::As3, &inCase<false>, 0, 0},
    {"toLocaleLowerCase", Kind::As3, &inCase<false>, 0, 0},
    {"toUpperCase", Kind::As3, &inCase<true>, 0, 0},
    {"toLocaleUpperCase", Kind::As3, &inCase<true>, 0, 0},
    {"toString", Kind::As3, &toStringSelf, 0, -1},
    {"valueOf", Kind::As3, &toStringSelf, 0, -1},
    {"fromCharCode", Kind::Static, &fromCharCode},
};
constexpr NativeConstant kLengthOne[] = {{"length", 1}};

} // namespace

constinit const NativeClass kString{.package = {},
                                    .name = "String",
                                    .base = {},
                                    .flags = NativeClass::Sealed | NativeClass::Final,
                                    .conversion = &convert,
                                    .members = kMembers,
                                    .constants = kLengthOne};

} // namespace flash::avm2::classes
