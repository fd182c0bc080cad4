#include "flash/avm2/classes/Sort.h"
#include "flash/avm2/interpreter/Interpreter.h"

#include <algorithm>

namespace flash::avm2::classes
{

namespace
{

VectorObject& self(Call& call) { return selfAs<VectorObject>(call, "Vector"); }

void needsChangeable(Call& call, VectorObject& vector)
{
    if (vector.isFixed)
        call.vm.throwError(ErrorClass::Range, 1126, "Cannot change the length of a fixed Vector.");
}

VectorObject* sameKind(Call& call, VectorObject& vector)
{
    return call.vm.heap().make<VectorObject>(vector.traits(), vector.proto());
}

Value construct(Call& call)
{
    auto& vector = self(call);
    if (call.has(0)) vector.resize(call.vm, call.vm.toUint(call.arg(0)));
    vector.isFixed = call.has(1) && call.vm.toBoolean(call.arg(1));
    return {};
}

Value convert(Call& call)
{
    auto* cls = as<ClassObject>(Value(call.callee));
    if (call.count != 1)
        call.vm.throwError(ErrorClass::Argument, 1112,
                           u"Argument count mismatch on class coercion.  Expected 1, got " +
                               numberText(call.count) + u".");
    if (auto* same = as<VectorObject>(call.arg(0)); same != nullptr && same->traits() == cls->instances)
        return call.arg(0);
    RootedList<Value> values(call.vm.heap());
    if (auto* array = as<ArrayObject>(call.arg(0))) {
        for (std::uint32_t i = 0; i < array->length(); ++i) {
            values.push_back(array->at(call.vm, i));
            call.vm.check();
        }
    } else if (auto* other = as<VectorObject>(call.arg(0))) {
        for (const Value value : other->items) values.push_back(value);
    } else {
        return call.vm.coerce(call.arg(0), cls->instances);
    }
    auto* made = call.vm.heap().make<VectorObject>(cls->instances, cls->prototype);
    // Even where anything goes, what comes from another list is an object or null.
    for (std::size_t i = 0; i < values.size(); ++i)
        made->push(call.vm,
                   values[i].isUndefined() && made->elementType() == nullptr ? Value::null() : values[i]);
    return made;
}

Value length(Call& call) { return static_cast<double>(self(call).items.size()); }
Value setLength(Call& call)
{
    auto& vector = self(call);
    const double length = call.vm.toUint(call.arg(0));
    needsChangeable(call, vector);
    vector.resize(call.vm, length);
    return {};
}
Value isFixed(Call& call) { return self(call).isFixed; }
Value setFixed(Call& call)
{
    self(call).isFixed = call.vm.toBoolean(call.arg(0));
    return {};
}

Value push(Call& call)
{
    auto& vector = self(call);
    needsChangeable(call, vector);
    for (const Value value : call.rest(0)) vector.push(call.vm, value);
    return static_cast<double>(vector.items.size());
}

Value quickPush(Vm& vm, Value receiver, const Value* args)
{
    auto* const vector = as<VectorObject>(receiver);
    if (vector == nullptr || vector->isFixed) return Value::hole();
    const Traits* const type = vector->elementType();
    if (type != nullptr && !fitsType(args[0], type)) return Value::hole();
    vector->push(vm, args[0]);
    return static_cast<double>(vector->items.size());
}
Value quickLength(Vm&, Value receiver, const Value*)
{
    const auto* const vector = as<VectorObject>(receiver);
    if (vector == nullptr) return Value::hole();
    return static_cast<double>(vector->items.size());
}

/// What an empty vector gives away: of objects it is nothing at all.
Value missing(const VectorObject& vector)
{
    const Value initial = vector.initial();
    return initial.isNumber() ? initial : Value();
}

Value pop(Call& call)
{
    auto& vector = self(call);
    needsChangeable(call, vector);
    if (vector.items.empty()) return missing(vector);
    const Value last = vector.items.back();
    vector.items.pop_back();
    return last;
}

Value shift(Call& call)
{
    auto& vector = self(call);
    needsChangeable(call, vector);
    if (vector.items.empty()) return missing(vector);
    const Value first = vector.items.front();
    vector.items.erase(vector.items.begin());
    return first;
}

Value unshift(Call& call)
{
    auto& vector = self(call);
    needsChangeable(call, vector);
    RootedList<Value> values(call.vm.heap());
    for (const Value value : call.rest(0)) values.push_back(call.vm.coerce(value, vector.elementType()));
    vector.items.insert(vector.items.begin(), values.begin(), values.end());
    return static_cast<double>(vector.items.size());
}

Value reverse(Call& call)
{
    std::ranges::reverse(self(call).items);
    return call.self;
}

Value concat(Call& call)
{
    auto& vector = self(call);
    auto* result = sameKind(call, vector);
    result->items = vector.items;
    for (const Value value : call.rest(0)) {
        auto* other = as<VectorObject>(call.vm.coerce(value, call.vm.classes().vector->instances));
        if (other == nullptr) continue;
        // Vectors of objects are told apart by what is in them only.
        const Traits* objects = call.vm.vectorOf(nullptr)->instances;
        if (!other->traits()->isA(vector.traits()) &&
            !(vector.traits()->isA(objects) && other->traits()->isA(objects)))
            call.vm.coerce(value, vector.traits());
        for (std::size_t i = 0; i < other->items.size(); ++i) result->push(call.vm, other->items[i]);
    }
    return result;
}

Value slice(Call& call)
{
    auto& vector = self(call);
    const auto size = static_cast<double>(vector.items.size());
    const double from = clampIndex(call.has(0) ? call.vm.toNumber(call.arg(0)) : 0, size);
    const double to = clampIndex(call.has(1) ? call.vm.toNumber(call.arg(1)) : 16777215, size);
    auto* result = sameKind(call, vector);
    for (auto i = static_cast<std::size_t>(from); i < to && i < vector.items.size(); ++i)
        result->items.push_back(vector.items[i]);
    return result;
}

Value splice(Call& call)
{
    auto& vector = self(call);
    const auto size = static_cast<double>(vector.items.size());
    const auto from = static_cast<std::size_t>(clampIndex(call.vm.toNumber(call.arg(0)), size));
    double wanted = call.has(1) ? call.vm.toNumber(call.arg(1)) : size;
    // A count below nothing is a place before the end.
    if (wanted < 0) wanted = size + std::trunc(wanted) - static_cast<double>(from);
    const auto count = static_cast<std::size_t>(
        std::clamp(std::isnan(wanted) ? 0.0 : std::trunc(wanted), 0.0, size - static_cast<double>(from)));
    RootedList<Value> values(call.vm.heap());
    for (const Value value : call.rest(2)) values.push_back(call.vm.coerce(value, vector.elementType()));
    // Even a fixed vector changes its length so.
    if (from + count > vector.items.size()) return {};
    auto* removed = sameKind(call, vector);
    const auto begin = vector.items.begin() + static_cast<std::ptrdiff_t>(from);
    removed->items.assign(begin, begin + static_cast<std::ptrdiff_t>(count));
    vector.items.erase(begin, begin + static_cast<std::ptrdiff_t>(count));
    vector.items.insert(vector.items.begin() + static_cast<std::ptrdiff_t>(from), values.begin(),
                        values.end());
    return removed;
}

Value join(Call& call)
{
    auto& vector = self(call);
    const std::u16string separator(call.arg(0).isUndefined() ? u"," : call.vm.text(call.arg(0)));
    std::u16string text;
    for (std::size_t i = 0; i < vector.items.size(); ++i) {
        if (i > 0) text += separator;
        if (!vector.items[i].isUndefined() || vector.elementType() != nullptr)
            text += call.vm.text(vector.items[i]);
        call.vm.check();
    }
    return call.vm.string(std::move(text));
}

Value toString(Call& call)
{
    if (as<VectorObject>(call.self) == nullptr) return call.vm.string(std::u16string());
    Call inner{call.vm, call.self, nullptr, 0};
    return join(inner);
}

Value toLocaleString(Call& call)
{
    auto& vector = self(call);
    std::u16string text;
    for (std::size_t i = 0; i < vector.items.size(); ++i) {
        if (i > 0) text += u",";
        const Value value = vector.items[i];
        if (!value.isNullish()) text += call.vm.text(call.vm.callPublic(value, "toLocaleString"));
        call.vm.check();
    }
    return call.vm.string(std::move(text));
}

Value indexOf(Call& call)
{
    auto& vector = self(call);
    for (auto i = static_cast<std::size_t>(clampIndex(call.has(1) ? call.vm.toNumber(call.arg(1)) : 0,
                                                      static_cast<double>(vector.items.size())));
         i < vector.items.size(); ++i) {
        if (call.vm.strictEquals(vector.items[i], call.arg(0))) return static_cast<double>(i);
    }
    return -1;
}

Value lastIndexOf(Call& call)
{
    auto& vector = self(call);
    double from = call.has(1) ? call.vm.toNumber(call.arg(1)) : 2147483647.0;
    const auto size = static_cast<double>(vector.items.size());
    if (from < 0) from += size;
    for (double i = std::min(std::trunc(from), size - 1.0); i >= 0; --i) {
        if (call.vm.strictEquals(vector.items[static_cast<std::size_t>(i)], call.arg(0))) return i;
    }
    return -1;
}

template <class Use>
void walk(Call& call, Use&& use)
{
    auto& vector = self(call);
    if (!canWalk(call)) return;
    for (std::size_t i = 0; i < vector.items.size(); ++i) {
        call.vm.check();
        const Value value = vector.items[i];
        const Value answer =
            call.vm.call(call.arg(0), call.arg(1), {value, Value(static_cast<double>(i)), call.self});
        if (!use(value, answer)) return;
    }
}

Value every(Call& call)
{
    bool result = true;
    walk(call, [&](Value, Value answer) { return result = call.vm.toBoolean(answer); });
    return result;
}
Value some(Call& call)
{
    bool result = false;
    walk(call, [&](Value, Value answer) { return !(result = call.vm.toBoolean(answer)); });
    return result;
}
Value forEach(Call& call)
{
    walk(call, [](Value, Value) { return true; });
    return {};
}
Value filter(Call& call)
{
    auto* result = sameKind(call, self(call));
    walk(call, [&](Value value, Value answer) {
        if (call.vm.toBoolean(answer)) result->items.push_back(value);
        return true;
    });
    return result;
}
Value map(Call& call)
{
    auto* result = sameKind(call, self(call));
    walk(call, [&](Value, Value answer) {
        result->push(call.vm, answer);
        return true;
    });
    return result;
}

Value sort(Call& call)
{
    auto& vector = self(call);
    const bool calls = isFunction(call.arg(0));
    const unsigned flags = calls ? 0 : call.vm.toUint(call.arg(0));
    RootedList<Value> values(call.vm.heap(), vector.items.begin(), vector.items.end());
    const auto compare = [&](std::uint32_t a, std::uint32_t b) {
        call.vm.check();
        if (!calls) return compareValues(call.vm, values[a], values[b], flags);
        const double answer = call.vm.toNumber(call.vm.call(call.arg(0), Value(), {values[a], values[b]}));
        return answer < 0 ? -1 : answer > 0 ? 1 : 0;
    };
    const auto order = sortedOrder(static_cast<std::uint32_t>(values.size()), compare);
    if ((flags & kUniqueSort) != 0) {
        for (std::size_t i = 1; i < order.size(); ++i) {
            if (compare(order[i - 1], order[i]) == 0) return call.self;
        }
    }
    // A vector has no list of places to answer with: it is given back as it stands.
    if ((flags & kReturnIndexed) != 0) return call.self;
    for (std::size_t i = 0; i < order.size() && i < vector.items.size(); ++i)
        vector.items[i] = values[order[i]];
    return call.self;
}

Value insertAt(Call& call)
{
    auto& vector = self(call);
    // Conversions may run script, which may change the length.
    double at = call.vm.toInt(call.arg(0));
    const Value value = call.vm.coerce(call.arg(1), vector.elementType());
    needsChangeable(call, vector);
    const auto size = static_cast<double>(vector.items.size());
    if (at < 0) at = std::max(0.0, at + size);
    if (at > size) vector.outOfRange(call.vm, at);
    vector.items.insert(vector.items.begin() + static_cast<std::ptrdiff_t>(at), value);
    return {};
}

Value removeAt(Call& call)
{
    auto& vector = self(call);
    const double given = call.vm.toInt(call.arg(0));
    needsChangeable(call, vector);
    const auto size = static_cast<double>(vector.items.size());
    const double at = given < 0 ? std::max(0.0, given + size) : given;
    if (at >= size) vector.outOfRange(call.vm, given);
    const Value removed = vector.items[static_cast<std::size_t>(at)];
    vector.items.erase(vector.items.begin() + static_cast<std::ptrdiff_t>(at));
    return removed;
}

constexpr NativeMember kMembers[] = {
    {"length", Kind::Getter, &length, 0, 0, &setLength, "uint", &quickLength},
    {"fixed", Kind::Getter, &isFixed, 0, 0, &setFixed, "Boolean"},
    {"concat", Kind::As3, &concat},
    {"every", Kind::As3, &every, 1, 2},
    {"filter", Kind::As3, &filter, 1, 2},
    {"forEach", Kind::As3, &forEach, 1, 2},
    {"indexOf", Kind::As3, &indexOf, 1, 2},
    {"insertAt", Kind::As3, &insertAt, 2, 2},
    {"join", Kind::As3, &join, 0, 1},
    {"lastIndexOf", Kind::As3, &lastIndexOf, 1, 2},
    {"map", Kind::As3, &map, 1, 2},
    {"pop", Kind::As3, &pop, 0, 0},
    {"push", Kind::As3, &push, 0, -1, nullptr, {}, &quickPush, 1},
    {"removeAt", Kind::As3, &removeAt, 1, 1},
    {"reverse", Kind::As3, &reverse, 0, 0},
    {"shift", Kind::As3, &shift, 0, 0},
    {"slice", Kind::As3, &slice, 0, 2},
    {"some", Kind::As3, &some, 1, 2},
    {"sort", Kind::As3, &sort, 1, 1},
    {"splice", Kind::As3, &splice, 1, -1},
    {"toString", Kind::As3, &toString, 0, -1},
    {"unshift", Kind::As3, &unshift},
    {"toLocaleString", Kind::As3, &toLocaleString, 0, -1},
};

} // namespace

constinit const NativeClass kVector{.package = "__AS3__.vec",
                                    .name = "Vector",
                                    .base = {},
                                    .constructor = &construct,
                                    .minArguments = 0,
                                    .maxArguments = 2,
                                    .allocate = &allocateNative<VectorObject>,
                                    .conversion = &convert,
                                    .members = kMembers};

} // namespace flash::avm2::classes
