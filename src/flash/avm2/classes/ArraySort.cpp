#include "flash/avm2/classes/Sort.h"

#include <functional>

namespace flash::avm2::classes
{

namespace
{

/// Undefined goes to the end, and what is missing behind it.
int compareDefined(Value a, Value b, bool& decided)
{
    decided = a.isUndefined() || b.isUndefined();
    return a.isUndefined() ? (b.isUndefined() ? 0 : 1) : -1;
}

Value finish(Call& call, ArrayObject& array, const RootedList<Value>& values,
             const std::vector<std::uint32_t>& order, unsigned flags,
             const std::function<int(std::uint32_t, std::uint32_t)>& compare)
{
    if ((flags & kUniqueSort) != 0) {
        for (std::size_t i = 1; i < order.size(); ++i) {
            if (compare(order[i - 1], order[i]) == 0) return 0;
        }
    }
    if ((flags & kReturnIndexed) != 0) {
        auto* result = static_cast<ArrayObject*>(call.vm.newArray());
        for (const std::uint32_t index : order) result->push(call.vm, static_cast<double>(index));
        return result;
    }
    // What is missing, in the prototypes too, is missing at the end.
    std::vector<bool> isMissing(order.size());
    for (std::size_t i = 0; i < order.size(); ++i)
        isMissing[i] = values[i].isUndefined() && (i >= array.items.size() || array.items[i].isHole());
    for (std::uint32_t i = 0; i < order.size(); ++i) {
        if (isMissing[order[i]])
            array.erase(call.vm, i);
        else
            array.put(call.vm, i, values[order[i]]);
    }
    return call.self;
}

} // namespace

Value sortArray(Call& call)
{
    auto& array = selfAs<ArrayObject>(call, "Array");
    array.makeDense(call.vm);
    Value function;
    unsigned flags = 0;
    std::uint32_t next = 0;
    if (isFunction(call.arg(0))) {
        function = call.arg(0);
        next = 1;
    } else if (call.has(0) && !call.arg(0).isNumber()) {
        call.vm.coerce(call.arg(0), call.vm.classes().function->instances);
    }
    if (call.has(next)) flags = call.vm.toUint(call.arg(next));
    RootedList<Value> values(call.vm.heap());
    for (std::uint32_t i = 0; i < array.length(); ++i) values.push_back(array.at(call.vm, i));
    const auto compare = [&](std::uint32_t a, std::uint32_t b) {
        call.vm.check();
        bool decided = false;
        const int undefinedOrder = compareDefined(values[a], values[b], decided);
        if (decided) return undefinedOrder;
        if (function.isUndefined()) return compareValues(call.vm, values[a], values[b], flags);
        const double answer = call.vm.toNumber(call.vm.call(function, Value(), {values[a], values[b]}));
        const int sign = answer < 0 ? -1 : answer > 0 ? 1 : 0;
        return (flags & kDescending) != 0 ? -sign : sign;
    };
    const auto order = sortedOrder(static_cast<std::uint32_t>(values.size()), compare);
    return finish(call, array, values, order, flags, compare);
}

Value sortArrayOn(Call& call)
{
    auto& array = selfAs<ArrayObject>(call, "Array");
    array.makeDense(call.vm);
    RootedList<Name> names(call.vm.heap());
    std::vector<unsigned> flags;
    if (auto* list = as<ArrayObject>(call.arg(0))) {
        auto* options = as<ArrayObject>(call.arg(1));
        for (std::uint32_t i = 0; i < list->length(); ++i) {
            names.push_back(call.vm.names().intern(call.vm.toString(list->at(call.vm, i))));
            flags.push_back(options == nullptr                    ? call.vm.toUint(call.arg(1))
                            : options->length() == list->length() ? call.vm.toUint(options->at(call.vm, i))
                                                                  : 0);
        }
    } else {
        names.push_back(call.vm.names().intern(call.vm.toString(call.arg(0))));
        auto* options = as<ArrayObject>(call.arg(1));
        flags.push_back(options != nullptr ? call.vm.toUint(options->at(call.vm, 0))
                                           : call.vm.toUint(call.arg(1)));
    }
    if (names.empty()) return call.self;
    RootedList<Value> values(call.vm.heap()), keys(call.vm.heap());
    for (std::uint32_t i = 0; i < array.length(); ++i) {
        const Value value = array.at(call.vm, i);
        values.push_back(value);
        for (const Name name : names) {
            Value key;
            if (value.isObject() && call.vm.has(value, call.vm.publicName(name)))
                key = call.vm.get(value, call.vm.publicName(name));
            keys.push_back(key);
        }
    }
    const auto compare = [&](std::uint32_t a, std::uint32_t b) {
        call.vm.check();
        for (std::size_t i = 0; i < names.size(); ++i) {
            bool decided = false;
            const Value left = keys[a * names.size() + i], right = keys[b * names.size() + i];
            int result = compareDefined(left, right, decided);
            if (!decided) result = compareValues(call.vm, left, right, flags[i]);
            if (result != 0) return result;
        }
        return 0;
    };
    const auto order = sortedOrder(static_cast<std::uint32_t>(values.size()), compare);
    return finish(call, array, values, order, flags[0], compare);
}

} // namespace flash::avm2::classes
