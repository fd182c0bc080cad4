#include "flash/vm/String.h"

#include "flash/avm1/classes/Classes.h"
#include "flash/avm1/interpreter/Boxed.h"

#include "base/TextCodes.h"

#include <algorithm>

namespace flash::avm1::classes
{

namespace
{

Value construct(Call& call)
{
    String* text = call.count() == 0 ? call.vm.common().empty.string() : toString(call.vm, call.arg(0));
    if (!call.isConstruct) return text;
    if (Object* self = call.self.asObject()) {
        self->attachNew<Boxed>(Value(text));
        self->define(call.vm, call.vm.common().length, Value(static_cast<double>(text->length())),
                     kDontEnum | kDontDelete);
    }
    return {};
}

/// @returns the text of `this`, whatever that is.
std::u16string self(Call& call)
{
    if (const Boxed* boxed = call.native<Boxed>(); boxed != nullptr && boxed->value.isString())
        return std::u16string(boxed->value.string()->view());
    return toText(call.vm, call.self);
}

Value valueOf(Call& call)
{
    if (call.self.isString()) return call.self;
    const Boxed* boxed = call.native<Boxed>();
    return boxed != nullptr && boxed->value.isString() ? boxed->value : Value();
}

char16_t upper(char16_t unit)
{
    // The inverse of folding, for letters that fold by a fixed distance or in pairs.
    const auto fold = [](char16_t candidate) {
        return AtomTable::fold(std::u16string_view(&candidate, 1))[0];
    };
    if (unit == 0xFF) return 0x178;
    for (const int distance : {32, 1, 80}) {
        if (unit < distance) continue;
        const auto candidate = static_cast<char16_t>(unit - distance);
        if (candidate != unit && fold(candidate) == unit) return candidate;
    }
    return unit;
}

Value toUpperCase(Call& call)
{
    std::u16string text = self(call);
    for (char16_t& unit : text) unit = upper(unit);
    return call.vm.string(std::move(text));
}

Value toLowerCase(Call& call) { return call.vm.string(AtomTable::fold(self(call))); }

/// @returns the text of `this` without a copy of it.
String* selfCell(Call& call)
{
    if (call.self.isString()) return call.self.string();
    if (const Boxed* boxed = call.native<Boxed>(); boxed != nullptr && boxed->value.isString())
        return boxed->value.string();
    return toString(call.vm, call.self);
}

/// @returns the first argument as a place in a text.
std::int32_t placeIn(Call& call)
{
    const Value value = call.arg(0);
    constexpr double kMax = 0x7FFF'FFFF;
    const bool fits = value.isNumber() && value.number() >= 0 && value.number() <= kMax;
    return fits ? static_cast<std::int32_t>(value.number()) : toInt32(call.vm, value);
}

Value charAt(Call& call)
{
    const std::u16string_view text = selfCell(call)->view();
    const std::int32_t index = placeIn(call);
    if (index < 0 || static_cast<std::size_t>(index) >= text.size()) return call.vm.common().empty.string();
    return call.vm.string(text[static_cast<std::size_t>(index)]);
}

Value charCodeAt(Call& call)
{
    const std::u16string_view text = selfCell(call)->view();
    const std::int32_t index = placeIn(call);
    // Texts of version 5 end in a NUL byte, which is what stands beyond them.
    if (index < 0 || static_cast<std::size_t>(index) >= text.size())
        return Value(index >= 0 && call.vm.version() < 6 ? 0.0 : std::nan(""));
    const char16_t unit = text[static_cast<std::size_t>(index)];
    if (call.vm.version() < 6 && unit >= 0x80) {
        const std::uint16_t code = call.vm.host().textCode().codeOf(unit);
        return Value(code == 0 ? static_cast<int>('?') : static_cast<int>(code));
    }
    return Value(static_cast<int>(unit));
}

Value concat(Call& call)
{
    std::u16string text = self(call);
    for (const Value value : call.args) {
        text += toText(call.vm, value);
        if (!call.vm.takesText(text.size())) return {};
    }
    return call.vm.string(std::move(text));
}

Value indexOf(Call& call)
{
    const std::u16string text = self(call);
    const std::u16string wanted = toText(call.vm, call.arg(0));
    const std::int32_t start = call.count() > 1 ? std::max(toInt32(call.vm, call.arg(1)), 0) : 0;
    if (static_cast<std::size_t>(start) > text.size()) return Value(-1);
    const std::size_t found = text.find(wanted, static_cast<std::size_t>(start));
    return found == std::u16string::npos ? Value(-1) : Value(static_cast<double>(found));
}

Value lastIndexOf(Call& call)
{
    const std::u16string text = self(call);
    const std::u16string wanted = toText(call.vm, call.arg(0));
    std::size_t start = std::u16string::npos;
    if (call.count() > 1 && !call.arg(1).isUndefined()) {
        const std::int32_t index = toInt32(call.vm, call.arg(1));
        if (index < 0) return Value(-1);
        start = static_cast<std::size_t>(index);
    }
    const std::size_t found = text.rfind(wanted, start);
    return found == std::u16string::npos ? Value(-1) : Value(static_cast<double>(found));
}

/// A position that may count from the end, clamped to the text.
std::size_t position(Call& call, std::size_t argument, std::size_t size, std::size_t absent)
{
    if (argument >= call.count() || call.arg(argument).isUndefined()) return absent;
    const std::int64_t index = toInt32(call.vm, call.arg(argument));
    const auto length = static_cast<std::int64_t>(size);
    return static_cast<std::size_t>(std::clamp<std::int64_t>(index < 0 ? index + length : index, 0, length));
}

Value slice(Call& call)
{
    const std::u16string text = self(call);
    const std::size_t start = position(call, 0, text.size(), 0);
    const std::size_t end = position(call, 1, text.size(), text.size());
    return call.vm.string(start < end ? text.substr(start, end - start) : std::u16string());
}

Value substring(Call& call)
{
    const std::u16string text = self(call);
    const auto clamped = [&](std::size_t argument, std::int32_t absent) {
        const std::int32_t index = argument < call.count() && !call.arg(argument).isUndefined()
                                       ? toInt32(call.vm, call.arg(argument))
                                       : absent;
        return static_cast<std::size_t>(
            std::clamp<std::int64_t>(index, 0, static_cast<std::int64_t>(text.size())));
    };
    std::size_t start = clamped(0, 0);
    std::size_t end = clamped(1, static_cast<std::int32_t>(text.size()));
    // Nothing starts at the end, whatever the other bound.
    if (start == text.size()) return call.vm.string("");
    if (start > end) std::swap(start, end);
    return call.vm.string(text.substr(start, end - start));
}

Value substr(Call& call)
{
    const std::u16string text = self(call);
    const auto size = static_cast<std::int64_t>(text.size());
    std::int64_t start = toInt32(call.vm, call.arg(0));
    if (start < 0) start += size;
    start = std::clamp<std::int64_t>(start, 0, size);
    std::int64_t count = size;
    if (call.count() > 1 && !call.arg(1).isUndefined()) {
        count = toInt32(call.vm, call.arg(1));
        if (count < 0) {
            // A negative count reaches back from the end, like a position.
            count = start + count < 0 ? size + count : 0;
            count = std::max<std::int64_t>(count, 0);
        }
    }
    return call.vm.string(text.substr(static_cast<std::size_t>(start),
                                      static_cast<std::size_t>(std::min(count, size - start))));
}

Value split(Call& call)
{
    Vm& vm = call.vm;
    const std::u16string text = self(call);
    std::size_t limit = SIZE_MAX;
    if (call.count() > 1 && !call.arg(1).isUndefined()) {
        const std::int32_t wanted = toInt32(vm, call.arg(1));
        limit = wanted < 0 ? 0 : static_cast<std::size_t>(wanted);
    }
    RootedValues parts(vm.heap());
    // @returns false when there are more than there is memory for
    const auto add = [&](Value part) {
        parts->push_back(part);
        constexpr std::size_t kBetweenLooks = 4096;
        return parts->size() % kBetweenLooks != 0 || vm.takesMemory(2 * parts->size() * sizeof(Value));
    };
    const Value separatorValue = call.arg(0);
    // Nothing to split by, or nothing to split: the text itself. In version 6 and later not even a limit of
    // none keeps it from coming.
    if (call.count() == 0 || (separatorValue.isUndefined() && vm.version() >= 6)) {
        parts->push_back(vm.string(text));
        return vm.newArray(*parts);
    }
    std::u16string separator = toText(vm, separatorValue);
    if (vm.version() < 6) {
        // Version 5 knows single characters only: by none and by several nothing is split. With a limit it
        // looks at the separator twice, and takes a missing one for a comma.
        const bool limited = call.count() > 1;
        if (limited && separatorValue.isUndefined())
            separator.assign(1, u',');
        else if (limited && !separator.empty())
            separator = toText(vm, separatorValue);
        if (separator.empty() || (separator.size() > 1 && limit > 0)) {
            parts->push_back(vm.string(text));
            return vm.newArray(*parts);
        }
    }
    if (text.empty() && !separator.empty() && (vm.version() >= 6 || limit > 0)) {
        parts->push_back(vm.string(text));
        return vm.newArray(*parts);
    }
    if (separator.empty()) {
        for (std::size_t i = 0; i < text.size() && parts->size() < limit; ++i)
            if (!add(vm.string(text[i]))) return {};
        return vm.newArray(*parts);
    }
    std::size_t at = 0;
    while (parts->size() < limit) {
        const std::size_t found = text.find(separator, at);
        if (!add(vm.string(text.substr(at, found == std::u16string::npos ? found : found - at)))) return {};
        if (found == std::u16string::npos) break;
        at = found + separator.size();
    }
    return vm.newArray(*parts);
}

Value fromCharCode(Call& call)
{
    std::u16string text;
    for (const Value value : call.args) {
        const auto code = static_cast<std::uint16_t>(toInt32(call.vm, value));
        if (call.vm.version() < 6) {
            text += call.vm.host().textCode().textOf(code);
            if ((code & 0xFF) == 0) break;
        } else {
            if (code == 0) break;
            text += static_cast<char16_t>(code);
        }
    }
    return call.vm.string(std::move(text));
}

// clang-format off
constexpr MemberInfo kMembers[] = {
    // name          min    flags  function       native  brief
    {"valueOf",      0,     0,     &valueOf,      1},
    {"toString",     0,     0,     &valueOf,      2},
    {"toUpperCase",  0,     0,     &toUpperCase,  3},
    {"toLowerCase",  0,     0,     &toLowerCase,  4},
    {"charAt",       0,     0,     &charAt,       5,  true},
    {"charCodeAt",   0,     0,     &charCodeAt,   6,  true},
    {"concat",       0,     0,     &concat,       7},
    {"indexOf",      1,     0,     &indexOf,      8},
    {"lastIndexOf",  1,     0,     &lastIndexOf,  9},
    {"slice",        1,     0,     &slice,        10},
    {"substring",    1,     0,     &substring,    11},
    {"split",        0,     0,     &split,        12},
    {"substr",       1,     0,     &substr,       13},
};
constexpr MemberInfo kStatics[] = {
    {"fromCharCode", 0,     0,     &fromCharCode, 14},
};
// clang-format on
constexpr int kNativeTable = 251;

} // namespace

void installString(Vm& vm)
{
    Function* constructor = vm.defineClass("String", &construct, kMembers, 0, kNativeTable);
    vm.registerNative(kNativeTable, 0, &construct);
    vm.addMembers(constructor, kStatics, kNativeTable);
    vm.builtIns().string = vm.prototypeOf(constructor);
}

} // namespace flash::avm1::classes
