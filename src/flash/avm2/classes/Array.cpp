#include "flash/avm2/classes/ArrayLike.h"
#include "flash/avm2/classes/Sort.h"

#include <algorithm>

namespace flash::avm2::classes
{

namespace
{

ArrayObject& self(Call& call) { return selfAs<ArrayObject>(call, "Array"); }

Value construct(Call& call)
{
    auto& array = self(call);
    if (call.count == 1 && call.args[0].isNumber()) {
        const double length = call.args[0].number();
        if (length < 0 || length > 4294967295.0 || length != std::floor(length))
            call.vm.throwError(ErrorClass::Range, 1005,
                               u"Array index is not a positive integer (" + numberText(length) + u").");
        array.setLength(static_cast<std::uint32_t>(length));
        return {};
    }
    for (const Value value : call.rest(0)) array.push(call.vm, value);
    return {};
}

Value convert(Call& call) { return call.callee->construct(call.vm, call.rest(0)); }

void checkLoop(Call& call) { call.vm.check(); }

std::u16string joined(Call& call, std::u16string_view separator, bool locale)
{
    ArrayLike list(call);
    std::u16string text;
    for (std::uint32_t i = 0; i < list.length(); ++i) {
        if (i > 0) text += separator;
        const Value value = list.at(i);
        if (!value.isNullish())
            text += call.vm.text(locale ? call.vm.callPublic(value, "toLocaleString") : value);
        checkLoop(call);
        if (text.size() > (std::size_t{1} << 25))
            call.vm.throwError(ErrorClass::Error, 1000, "The system is out of memory.");
    }
    return text;
}

Value join(Call& call)
{
    const std::u16string separator(call.arg(0).isUndefined() ? u"," : call.vm.text(call.arg(0)));
    return call.vm.string(joined(call, separator, false));
}

Value toString(Call& call)
{
    const bool isArray = as<ArrayObject>(call.self) != nullptr;
    return call.vm.string(isArray ? joined(call, u",", false) : std::u16string());
}

Value toLocaleString(Call& call)
{
    self(call);
    return call.vm.string(joined(call, u",", true));
}

Value push(Call& call)
{
    auto& array = self(call);
    for (const Value value : call.rest(0)) array.push(call.vm, value);
    return static_cast<double>(array.length());
}

Value quickPush(Vm& vm, Value receiver, const Value* args)
{
    auto* const array = as<ArrayObject>(receiver);
    if (array == nullptr) return Value::hole();
    array->push(vm, args[0]);
    return static_cast<double>(array->length());
}
Value quickLength(Vm&, Value receiver, const Value*)
{
    const auto* const array = as<ArrayObject>(receiver);
    if (array == nullptr) return Value::hole();
    return static_cast<double>(array->length());
}

Value pop(Call& call)
{
    auto& array = self(call);
    if (array.length() == 0) return {};
    // Behind holes at the end it is the last that is there.
    std::uint32_t at = array.length() - 1;
    if (!array.holds(call.vm, at) && !array.items.empty() && array.tableIfAny() == nullptr) {
        at = std::min(at, static_cast<std::uint32_t>(array.items.size()) - 1);
        while (at > 0 && array.items[at].isHole()) --at;
    }
    const Value last = array.at(call.vm, at);
    array.erase(call.vm, at);
    array.setLength(array.length() - 1);
    return last;
}

Value shift(Call& call)
{
    auto& array = self(call);
    if (array.length() == 0) return {};
    array.makeDense(call.vm);
    const Value first = array.at(call.vm, 0);
    if (!array.items.empty()) array.items.erase(array.items.begin());
    array.setLength(array.length() - 1);
    return first;
}

Value unshift(Call& call)
{
    auto& array = self(call);
    array.makeDense(call.vm);
    const std::uint32_t length = array.length() + call.count;
    array.items.insert(array.items.begin(), call.args, call.args + call.count);
    array.setLength(length);
    return static_cast<double>(length);
}

Value reverse(Call& call)
{
    auto& array = self(call);
    array.makeDense(call.vm);
    std::ranges::reverse(array.items);
    return call.self;
}

Value concat(Call& call)
{
    auto* result = static_cast<ArrayObject*>(call.vm.newArray());
    const auto append = [&](Value value) {
        if (auto* array = as<ArrayObject>(value)) {
            const std::uint32_t offset = result->length();
            for (std::uint32_t i = 0; i < array->length(); ++i) {
                if (array->holds(call.vm, i)) result->put(call.vm, offset + i, array->at(call.vm, i));
                checkLoop(call);
            }
            result->setLength(std::max(result->length(), offset + array->length()));
        } else if (auto* vector = as<VectorObject>(value)) {
            for (std::size_t i = 0; i < vector->items.size(); ++i) result->push(call.vm, vector->items[i]);
        } else {
            result->push(call.vm, value);
        }
    };
    append(call.self);
    for (const Value value : call.rest(0)) append(value);
    return result;
}

Value slice(Call& call)
{
    ArrayLike list(call);
    const double length = list.length();
    const double from = clampIndex(call.has(0) ? call.vm.toNumber(call.arg(0)) : 0, length);
    const double to = clampIndex(call.has(1) ? call.vm.toNumber(call.arg(1)) : 16777215, length);
    auto* result = static_cast<ArrayObject*>(call.vm.newArray());
    for (auto i = static_cast<std::uint32_t>(from); i < to; ++i) {
        // What the prototype has in place of an element becomes one.
        result->put(call.vm, i - static_cast<std::uint32_t>(from), list.at(i));
        checkLoop(call);
    }
    if (to > from) result->setLength(static_cast<std::uint32_t>(to - from));
    return result;
}

Value splice(Call& call)
{
    auto& array = self(call);
    if (call.count == 0) return {};
    // Asking arguments for their numbers may run script, which may change the length.
    const double start = call.vm.toNumber(call.arg(0));
    const double wanted = call.has(1) ? call.vm.toNumber(call.arg(1)) : array.length();
    const auto from = static_cast<std::uint32_t>(clampIndex(start, array.length()));
    array.makeDense(call.vm);
    if (array.items.size() < array.length()) return {};
    const auto count = static_cast<std::uint32_t>(std::clamp(
        std::isnan(wanted) ? 0.0 : std::trunc(wanted), 0.0, static_cast<double>(array.length() - from)));
    auto* removed = static_cast<ArrayObject*>(call.vm.newArray());
    const auto begin = array.items.begin() + from;
    removed->items.assign(begin, begin + count);
    for (std::uint32_t i = 0; i < count; ++i) {
        if (removed->items[i].isHole()) removed->items[i] = array.at(call.vm, from + i);
    }
    removed->setLength(count);
    const std::uint32_t added = call.count > 2 ? call.count - 2 : 0;
    const std::uint32_t length = array.length() - count + added;
    // What moves comes from the prototypes where it is missing.
    for (std::uint32_t i = from + count; added != count && i < array.length(); ++i) {
        if (!array.items[i].isHole()) continue;
        const Value inherited = array.at(call.vm, i);
        if (!inherited.isUndefined()) array.items[i] = inherited;
    }
    array.items.erase(begin, begin + count);
    if (added > 0) array.items.insert(array.items.begin() + from, call.args + 2, call.args + call.count);
    array.setLength(length);
    return removed;
}

Value indexOf(Call& call)
{
    ArrayLike list(call);
    for (auto i = static_cast<std::uint32_t>(
             clampIndex(call.has(1) ? call.vm.toNumber(call.arg(1)) : 0, list.length()));
         i < list.length(); ++i) {
        if (list.holds(i) && call.vm.strictEquals(list.at(i), call.arg(0))) return static_cast<double>(i);
        checkLoop(call);
    }
    return -1;
}

Value lastIndexOf(Call& call)
{
    ArrayLike list(call);
    const double length = list.length();
    double from = call.has(1) ? call.vm.toNumber(call.arg(1)) : 2147483647.0;
    if (from < 0) from += length;
    for (double i = std::min(std::trunc(from), length - 1.0); i >= 0; --i) {
        const auto at = static_cast<std::uint32_t>(i);
        if (list.holds(at) && call.vm.strictEquals(list.at(at), call.arg(0))) return i;
        checkLoop(call);
    }
    return -1;
}

/// Calls a function for each element until `use` says that it is enough.
template <class Use>
void walk(Call& call, Use&& use)
{
    if (!canWalk(call)) return;
    ArrayLike list(call);
    for (std::uint32_t i = 0; i < list.length(); ++i) {
        checkLoop(call);
        const Value value = list.at(i);
        const Value answer =
            call.vm.call(call.arg(0), call.arg(1), {value, Value(static_cast<double>(i)), call.self});
        if (!use(value, answer)) return;
    }
}

Value every(Call& call)
{
    bool result = true;
    walk(call, [&](Value, Value answer) { return result = answer.isBoolean() && answer.boolean(); });
    return result;
}
Value some(Call& call)
{
    bool result = false;
    walk(call, [&](Value, Value answer) { return !(result = answer.isBoolean() && answer.boolean()); });
    return result;
}
Value forEach(Call& call)
{
    walk(call, [](Value, Value) { return true; });
    return {};
}
Value filter(Call& call)
{
    auto* result = static_cast<ArrayObject*>(call.vm.newArray());
    walk(call, [&](Value value, Value answer) {
        if (answer.isBoolean() && answer.boolean()) result->push(call.vm, value);
        return true;
    });
    return result;
}
Value map(Call& call)
{
    auto* result = static_cast<ArrayObject*>(call.vm.newArray());
    walk(call, [&](Value, Value answer) {
        result->push(call.vm, answer);
        return true;
    });
    return result;
}

Value insertAt(Call& call)
{
    auto& array = self(call);
    array.makeDense(call.vm);
    const double at = clampIndex(call.vm.toNumber(call.arg(0)), array.length());
    const std::uint32_t length = array.length() + 1;
    if (at <= static_cast<double>(array.items.size()))
        array.items.insert(array.items.begin() + static_cast<std::ptrdiff_t>(at), call.arg(1));
    array.setLength(length);
    return {};
}

Value removeAt(Call& call)
{
    auto& array = self(call);
    array.makeDense(call.vm);
    const double given = call.vm.toInt(call.arg(0));
    const double at = given < 0 ? array.length() + given : given;
    if (at < 0 || at >= static_cast<double>(array.items.size())) return {};
    const Value removed = array.at(call.vm, static_cast<std::uint32_t>(at));
    array.items.erase(array.items.begin() + static_cast<std::ptrdiff_t>(at));
    array.setLength(array.length() - 1);
    return removed;
}

Value length(Call& call) { return static_cast<double>(self(call).length()); }
Value setLength(Call& call)
{
    self(call).setLength(call.vm.toUint(call.arg(0)));
    return {};
}

constexpr NativeMember kMembers[] = {
    {"length", Kind::Getter, &length, 0, 0, &setLength, "uint", &quickLength},
    {"concat", Kind::As3, &concat},
    {"every", Kind::As3, &every, 1, 2},
    {"filter", Kind::As3, &filter, 1, 2},
    {"forEach", Kind::As3, &forEach, 1, 2},
    {"indexOf", Kind::As3, &indexOf, 1, 2},
    {"insertAt", Kind::As3, &insertAt, 2, 2},
    {"join", Kind::As3, &join, 0, 1},
    {"lastIndexOf", Kind::As3, &lastIndexOf, 1, 2},
    {"map", Kind::As3, &map, 1, 2},
    {"pop", Kind::As3, &onAnyList<&pop>, 0, 0},
    {"push", Kind::As3, &onAnyList<&push>, 0, -1, nullptr, {}, &quickPush, 1},
    {"removeAt", Kind::As3, &removeAt, 1, 1},
    {"reverse", Kind::As3, &onAnyList<&reverse>, 0, 0},
    {"shift", Kind::As3, &onAnyList<&shift>, 0, 0},
    {"slice", Kind::As3, &slice, 0, 2},
    {"some", Kind::As3, &some, 1, 2},
    {"sort", Kind::As3, &onAnyList<&sortArray>},
    {"sortOn", Kind::As3, &onAnyList<&sortArrayOn>, 1, -1},
    {"splice", Kind::As3, &onAnyList<&splice>},
    {"toLocaleString", Kind::Prototype, &toLocaleString},
    {"toString", Kind::Prototype, &toString},
    {"unshift", Kind::As3, &onAnyList<&unshift>},
};
constexpr NativeConstant kConstants[] = {
    {"CASEINSENSITIVE", 1},    {"DESCENDING", 2}, {"UNIQUESORT", 4},
    {"RETURNINDEXEDARRAY", 8}, {"NUMERIC", 16},   {"length", 1},
};

} // namespace

constinit const NativeClass kArray{.package = {},
                                   .name = "Array",
                                   .base = {},
                                   .constructor = &construct,
                                   .minArguments = 0,
                                   .maxArguments = -1,
                                   .allocate = &allocateNative<ArrayObject>,
                                   .conversion = &convert,
                                   .members = kMembers,
                                   .constants = kConstants};

} // namespace flash::avm2::classes
