#include "flash/avm1/interpreter/ArrayNative.h"

#include "flash/avm1/classes/ArraySort.h"
#include "flash/avm1/classes/Classes.h"

#include <algorithm>

namespace flash::avm1::classes
{

namespace
{

Value construct(Call& call)
{
    Vm& vm = call.vm;
    Object* array = call.isConstruct ? call.self.asObject() : nullptr;
    if (array == nullptr) array = vm.newArray();
    auto& native = array->attachNew<ArrayNative>();
    if (call.count() == 1 && call.arg(0).isNumber())
        array->put(vm, vm.common().length, Value(toInt32(vm, call.arg(0))));
    else
        native.assign(call.args);
    return array;
}

Value push(Call& call)
{
    Vm& vm = call.vm;
    Object* self = call.self.asObject();
    if (self == nullptr) return {};
    if (const ArrayNative* array = self->native<ArrayNative>()) {
        std::int32_t length = array->signedLength();
        for (const Value value : call.args) {
            if (length >= 0)
                self->putIndex(vm, static_cast<std::uint32_t>(length), value);
            else
                self->put(vm, toName(vm, Value(length)), value);
            length = static_cast<std::int32_t>(static_cast<std::uint32_t>(length) + 1);
        }
        return Value(length);
    }
    double length = listLength(vm, self);
    for (const Value value : call.args) self->putIndex(vm, static_cast<std::uint32_t>(length++), value);
    self->put(vm, vm.common().length, Value(length));
    return Value(length);
}

Value pop(Call& call)
{
    Vm& vm = call.vm;
    Object* self = call.self.asObject();
    if (self == nullptr) return {};
    Value top;
    if (auto* array = self->native<ArrayNative>(); array != nullptr && array->popElement(vm, *self, top))
        return top;
    const double length = listLength(vm, self);
    if (length <= 0) return {};
    const Name last = vm.names().fromIndex(static_cast<std::uint32_t>(length - 1));
    const bool isArray = self->native<ArrayNative>() != nullptr;
    const Value value = isArray ? self->ownData(vm, last) : self->get(vm, last);
    self->remove(vm, last);
    // Of what is no array only the elements move, here and below: its length is its own.
    if (isArray) self->put(vm, vm.common().length, Value(length - 1));
    return value;
}

void putElements(Vm& vm, Object* list, std::size_t first, std::span<const Value> elements)
{
    for (std::size_t i = 0; i < elements.size() && !vm.checkLoop(); ++i)
        list->put(vm, vm.names().fromIndex(static_cast<std::uint32_t>(first + i)), elements[i]);
}

Value shift(Call& call)
{
    Object* self = call.self.asObject();
    if (self == nullptr) return {};
    RootedValues elements = listElements(call.vm, self);
    if (elements->empty()) return {};
    const Value first = elements->front();
    elements->erase(elements->begin());
    if (self->native<ArrayNative>() == nullptr) {
        putElements(call.vm, self, 0, *elements);
        return first;
    }
    setListElements(call.vm, self, *elements);
    return first;
}

Value unshift(Call& call)
{
    Object* self = call.self.asObject();
    if (self == nullptr) return {};
    RootedValues elements = listElements(call.vm, self);
    const std::size_t before = elements->size();
    elements->insert(elements->begin(), call.args.begin(), call.args.end());
    if (self->native<ArrayNative>() == nullptr) {
        putElements(call.vm, self, 0, *elements);
        return Value(static_cast<double>(before));
    }
    setListElements(call.vm, self, *elements);
    return Value(static_cast<double>(elements->size()));
}

Value concat(Call& call)
{
    Object* self = call.self.asObject();
    if (self == nullptr) return {};
    RootedValues elements = listElements(call.vm, self);
    for (const Value value : call.args) {
        Object* list = value.asObject();
        if (list == nullptr || list->native<ArrayNative>() == nullptr) {
            elements->push_back(value);
            continue;
        }
        const RootedValues more = listElements(call.vm, list);
        if (!call.vm.takesMemory((elements->size() + more.size()) * 2 * sizeof(Value))) return {};
        elements->insert(elements->end(), more.begin(), more.end());
    }
    return call.vm.newArray(*elements);
}

/// A position that may count from the end, clamped to the list.
std::size_t position(Call& call, std::size_t argument, std::size_t size, std::size_t absent)
{
    if (argument >= call.count() || call.arg(argument).isUndefined()) return absent;
    const std::int64_t index = toInt32(call.vm, call.arg(argument));
    const auto length = static_cast<std::int64_t>(size);
    return static_cast<std::size_t>(std::clamp<std::int64_t>(index < 0 ? index + length : index, 0, length));
}

Value slice(Call& call)
{
    Object* self = call.self.asObject();
    if (self == nullptr) return {};
    RootedValues elements = listElements(call.vm, self);
    const std::size_t start = position(call, 0, elements->size(), 0);
    const std::size_t end = position(call, 1, elements->size(), elements->size());
    if (start >= end) return call.vm.newArray();
    return call.vm.newArray(std::span<const Value>(*elements).subspan(start, end - start));
}

Value splice(Call& call)
{
    Vm& vm = call.vm;
    Object* self = call.self.asObject();
    if (self == nullptr || call.count() == 0) return {};
    RootedValues elements = listElements(vm, self);
    const std::size_t start = position(call, 0, elements->size(), 0);
    std::size_t count = elements->size() - start;
    if (call.count() > 1) {
        const std::int32_t wanted = toInt32(vm, call.arg(1));
        if (wanted < 0) return {};
        count = std::min(count, static_cast<std::size_t>(wanted));
    }
    const auto first = elements->begin() + static_cast<std::ptrdiff_t>(start);
    Object* removed = vm.newArray(std::span<const Value>(*elements).subspan(start, count));
    elements->erase(first, first + static_cast<std::ptrdiff_t>(count));
    if (call.count() > 2)
        elements->insert(elements->begin() + static_cast<std::ptrdiff_t>(start), call.args.begin() + 2,
                         call.args.end());
    setListElements(vm, self, *elements);
    return removed;
}

Value reverse(Call& call)
{
    Object* self = call.self.asObject();
    if (self == nullptr) return {};
    RootedValues elements = listElements(call.vm, self);
    std::ranges::reverse(*elements);
    setListElements(call.vm, self, *elements);
    return self;
}

Value joined(Vm& vm, Object* self, std::u16string_view separator)
{
    RootedValues elements = listElements(vm, self);
    std::u16string text;
    for (std::size_t i = 0; i < elements->size() && !vm.isUnwinding(); ++i) {
        if (i > 0) text += separator;
        const Value element = (*elements)[i];
        text += toText(vm, element);
        if (!vm.takesText(text.size())) return {};
        if (vm.checkLoop()) return {};
    }
    return vm.string(std::move(text));
}

Value join(Call& call)
{
    Object* self = call.self.asObject();
    if (self == nullptr) return {};
    const bool given = call.count() > 0;
    return joined(call.vm, self, given ? toText(call.vm, call.arg(0)) : std::u16string(u","));
}

Value toString(Call& call)
{
    Object* self = call.self.asObject();
    return self == nullptr ? Value() : joined(call.vm, self, u",");
}

// clang-format off
constexpr MemberInfo kMembers[] = {
    // name       min    flags  function    native  brief
    {"push",      0,     0,     &push,      1,  true},
    {"pop",       0,     0,     &pop,       2,  true},
    {"concat",    0,     0,     &concat,    3},
    {"shift",     0,     0,     &shift,     4},
    {"unshift",   0,     0,     &unshift,   5},
    {"slice",     0,     0,     &slice,     6},
    {"join",      0,     0,     &join,      7},
    {"splice",    0,     0,     &splice,    8},
    {"toString",  0,     0,     &toString,  9},
    {"sort",      0,     0,     &sort,      10},
    {"reverse",   0,     0,     &reverse,   11},
    {"sortOn",    0,     0,     &sortOn,    12},
};
// clang-format on
constexpr int kNativeTable = 252;

} // namespace

void installArray(Vm& vm)
{
    Function* constructor = vm.defineClass("Array", &construct, kMembers, 0, kNativeTable);
    vm.registerNative(kNativeTable, 0, &construct);
    vm.builtIns().array = vm.prototypeOf(constructor);
    vm.builtIns().arrayConstructor = constructor;
    constructor->define(vm, "CASEINSENSITIVE", Value(static_cast<double>(kSortCaseInsensitive)), 0);
    constructor->define(vm, "DESCENDING", Value(static_cast<double>(kSortDescending)), 0);
    constructor->define(vm, "UNIQUESORT", Value(static_cast<double>(kSortUnique)), 0);
    constructor->define(vm, "RETURNINDEXEDARRAY", Value(static_cast<double>(kSortReturnIndexed)), 0);
    constructor->define(vm, "NUMERIC", Value(static_cast<double>(kSortNumeric)), 0);
}

} // namespace flash::avm1::classes
