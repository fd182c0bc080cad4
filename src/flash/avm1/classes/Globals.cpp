#include "flash/avm1/classes/Classes.h"
#include "flash/avm1/interpreter/ArrayNative.h"

#include "base/Ascii.h"
#include "base/PercentCode.h"
#include "base/TextCodes.h"

#include <cmath>
#include <limits>

// Functions and constants of _global that belong to no class.
namespace flash::avm1::classes
{

namespace
{

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

Value parseInt(Call& call)
{
    const std::u16string text = toText(call.vm, call.arg(0));
    int radix = 0;
    if (call.count() > 1) {
        radix = toInt32(call.vm, call.arg(1));
        if (radix < 2 || radix > 36) return Value(kNaN);
    }
    return Value(parseIntPrefix(text, radix));
}

Value parseFloat(Call& call) { return Value(parseFloatPrefix(toText(call.vm, call.arg(0)))); }
Value isNaN(Call& call) { return Value(std::isnan(toNumber(call.vm, call.arg(0)))); }
Value isFinite(Call& call)
{
    return Value(call.count() > 0 && std::isfinite(toNumber(call.vm, call.arg(0))));
}

/// Texts of movies before version 6 are ANSI, later ones UTF-8.
std::string bytesOf(Vm& vm, std::u16string_view text)
{
    return vm.version() < 6 ? vm.host().textCode().encode(text) : base::utf8FromUtf16(text);
}

Value escape(Call& call)
{
    const std::string escaped = base::percentEncoded(bytesOf(call.vm, toText(call.vm, call.arg(0))), {});
    return call.vm.string(std::u16string(escaped.begin(), escaped.end()));
}

Value unescape(Call& call)
{
    const std::string bytes = bytesOf(call.vm, toText(call.vm, call.arg(0)));
    std::string plain;
    bool ended = false;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (bytes[i] == '+') {
            plain += ' ';
        } else if (bytes[i] == '%') {
            // An escape that is none is dropped, with what stands in the place of its digits.
            // A first digit that is none is the last that is looked at.
            if (i + 1 < bytes.size() && base::hexDigit(bytes[i + 1]) < 0) {
                ++i;
                continue;
            }
            if (i + 2 >= bytes.size()) break;
            if (base::hexDigit(bytes[i + 2]) >= 0)
                plain += static_cast<char>(base::hexDigit(bytes[i + 1]) << 4 | base::hexDigit(bytes[i + 2]));
            i += 2;
            if (!plain.empty() && plain.back() == '\0') {
                // The text ends at a NUL byte.
                plain.pop_back();
                ended = true;
                break;
            }
        } else {
            plain += bytes[i];
        }
    }
    if (call.vm.version() >= 6) return call.vm.string(base::utf16FromLooseUtf8(plain));
    // To version 5 a text of nothing at all is none.
    return plain.empty() && !ended ? Value() : Value(call.vm.string(call.vm.host().textCode().decode(plain)));
}

/// ASSetPropFlags(object, names, set, clear): names are null (all), a comma-separated text or a list.
Value setPropFlags(Call& call)
{
    Vm& vm = call.vm;
    Object* object = call.arg(0).asObject();
    if (object == nullptr || call.count() < 3) return {};
    constexpr std::uint16_t mask = 0x7FFF;
    const auto set = static_cast<std::uint16_t>(toInt32(vm, call.arg(2)) & mask);
    const auto clear = static_cast<std::uint16_t>(toInt32(vm, call.arg(3)) & mask);
    const Value names = call.arg(1);
    if (names.isNull()) {
        object->changeFlags(vm, Name(), set, clear);
        return {};
    }
    if (Object* list = names.asObject(); list != nullptr && list->native<ArrayNative>() != nullptr) {
        const double length = std::min(toNumber(vm, list->get(vm, vm.common().length)), 65535.0);
        for (double i = 0; i < length && !vm.isUnwinding(); ++i) {
            const Value name = list->get(vm, vm.names().fromIndex(static_cast<std::uint32_t>(i)));
            object->changeFlags(vm, toName(vm, name), set, clear);
        }
        return {};
    }
    const std::u16string text = toText(vm, names);
    for (std::size_t at = 0; at <= text.size();) {
        const std::size_t end = std::min(text.find(u',', at), text.size());
        object->changeFlags(vm, vm.name(std::u16string_view(text).substr(at, end - at)), set, clear);
        at = end + 1;
    }
    return {};
}

/// ASnew(): whether the calling function was called by `new`.
Value asNew(Call& call) { return Value(call.vm.isConstructing()); }

Value asNative(Call& call)
{
    const std::int32_t table = toInt32(call.vm, call.arg(0));
    const std::int32_t index = toInt32(call.vm, call.arg(1));
    if (table < 0 || index < 0) return {};
    return call.vm.nativeByNumber(table, index);
}

/// Calls `define(name, flags)` for each name of a comma-separated list. A digit before a name stands for the
/// version from which on it is visible.
template <typename Define>
void forEachVersionedName(std::u16string_view list, const Define& define)
{
    for (std::size_t at = 0; at <= list.size();) {
        const std::size_t end = std::min(list.find(u',', at), list.size());
        std::u16string_view name = list.substr(at, end - at);
        std::uint16_t flags = 0;
        if (!name.empty() && name[0] >= u'6' && name[0] <= u'9') {
            constexpr std::uint16_t kByDigit[] = {kFrom6, kFrom7, kFrom8, kFrom9};
            flags = kByDigit[name[0] - u'6'];
            name.remove_prefix(1);
        }
        define(name, flags);
        at = end + 1;
    }
}

/// The arguments of the two functions below: object, table, names and, when not the first, where to begin.
/// Calls `define(object, name, table, index, flags)` for each name.
template <typename Define>
void forEachNumberedName(Call& call, std::int32_t step, const Define& define)
{
    Vm& vm = call.vm;
    Object* object = call.arg(0).asObject();
    if (object == nullptr) return;
    const std::int32_t table = toInt32(vm, call.arg(1));
    std::int32_t index = call.count() > 3 ? toInt32(vm, call.arg(3)) : 0;
    forEachVersionedName(toText(vm, call.arg(2)), [&](std::u16string_view name, std::uint16_t flags) {
        define(*object, vm.name(name), table, index, flags);
        index += step;
    });
}

/// ASSetNative(object, table, names, first): puts numbered functions on an object under the given names.
Value setNative(Call& call)
{
    Vm& vm = call.vm;
    forEachNumberedName(call, 1, [&vm](Object& object, Name name, int table, int index, std::uint16_t flags) {
        if (Function* function = vm.nativeByNumber(table, index)) object.define(vm, name, function, flags);
    });
    return {};
}

/// ASSetNativeAccessor: likewise, each name taking two functions, getter and setter.
Value setNativeAccessor(Call& call)
{
    Vm& vm = call.vm;
    forEachNumberedName(call, 2, [&vm](Object& object, Name name, int table, int index, std::uint16_t flags) {
        if (Function* getter = vm.nativeByNumber(table, index))
            object.defineAccessor(vm, name, getter, vm.nativeByNumber(table, index + 1), flags);
    });
    return {};
}

/// setInterval(function, ms, args...) and setInterval(object, "method", ms, args...).
Value startTimer(Call& call, bool repeats)
{
    Vm& vm = call.vm;
    Object* first = call.arg(0).asObject();
    if (first == nullptr || call.count() < 2) return {};
    Value function = first, self, method;
    std::size_t at = 1;
    if (!first->isFunction()) {
        function = Value();
        self = first;
        method = toString(vm, call.arg(1));
        at = 2;
        if (call.count() < 3) return {};
    }
    if (call.arg(at).isUndefined()) return {};
    const double number = toNumber(vm, call.arg(at));
    const double period = std::isnan(number) ? 0 : number;
    const std::span<const Value> rest = call.args.subspan(at + 1);
    return Value(vm.addTimer(function, self, method, rest, period, repeats));
}

Value setInterval(Call& call) { return startTimer(call, true); }
Value setTimeout(Call& call) { return startTimer(call, false); }

Value clearTimer(Call& call)
{
    call.vm.removeTimer(toInt32(call.vm, call.arg(0)));
    return {};
}

Value traceFunction(Call& call)
{
    call.vm.host().trace(call.arg(0).isUndefined() ? std::u16string(u"undefined")
                                                   : toText(call.vm, call.arg(0)));
    return {};
}

Value updateAfterEvent(Call& call)
{
    call.vm.host().updateAfterEvent();
    return {};
}

/// ASconstructor(table, index): a native as the constructor of a class, with a prototype of its own.
Value asConstructor(Call& call)
{
    const Value native = asNative(call);
    Object* function = native.asObject();
    if (function == nullptr) return {};
    Vm& vm = call.vm;
    Function* constructor =
        vm.newFunction(function->asFunction()->nativeFunction(), function->asFunction()->minArguments());
    Object* prototype = vm.newObject();
    prototype->define(vm, vm.common().constructor, constructor, kBuiltIn);
    constructor->define(vm, vm.common().prototype, prototype, kBuiltIn);
    return constructor;
}

// clang-format off
constexpr MemberInfo kFunctions[] = {
    // name                 min    flags   function             native
    {"ASSetPropFlags",      0,     0,      &setPropFlags,       0},
    {"ASSetNative",         0,     0,      &setNative},
    {"ASSetNativeAccessor", 0,     0,      &setNativeAccessor},
    {"ASconstructor",       0,     0,      &asConstructor},
    {"ASnative",            2,     0,      &asNative},
    {"ASnew",               0,     0,      &asNew},
    {"trace",               0,     0,      &traceFunction},
    {"parseInt",            1,     0,      &parseInt},
    {"parseFloat",          1,     0,      &parseFloat},
    {"isNaN",               0,     0,      &isNaN},
    {"isFinite",            0,     0,      &isFinite},
    {"escape",              1,     0,      &escape},
    {"unescape",            1,     0,      &unescape},
    {"setInterval",         0,     0,      &setInterval},
    {"clearInterval",       0,     0,      &clearTimer},
    {"setTimeout",          0,     0,      &setTimeout},
    {"clearTimeout",        0,     0,      &clearTimer},
    {"updateAfterEvent",    0,     0,      &updateAfterEvent},
};
constexpr struct { int table, index; NativeFunction function; } kNumbers[] = {
    {1, 0, &setPropFlags},
    {2, 0, &asNew},
    {4, 0, &asNative},
    {100, 0, &escape},
    {100, 1, &unescape},
    {100, 2, &parseInt},
    {100, 3, &parseFloat},
    {100, 4, &traceFunction},
    {200, 18, &isNaN},
    {200, 19, &isFinite},
    {250, 0, &setInterval},
    {250, 1, &clearTimer},
    {250, 2, &setTimeout},
};
// clang-format on

} // namespace

void installGlobals(Vm& vm)
{
    vm.addMembers(vm.global(), kFunctions);
    for (const auto& number : kNumbers) vm.registerNative(number.table, number.index, number.function);
    constexpr std::uint16_t kConstant = kBuiltIn;
    vm.global()->define(vm, "NaN", Value(kNaN), kConstant);
    vm.global()->define(vm, "Infinity", Value(std::numeric_limits<double>::infinity()), kConstant);
}

void installAll(Vm& vm)
{
    installFunction(vm);
    installObject(vm);
    installString(vm);
    installNumber(vm);
    installBoolean(vm);
    installArray(vm);
    installMath(vm);
    installError(vm);
    installDate(vm);
    installGlobals(vm);
}

} // namespace flash::avm1::classes
