#include "flash/avm1/classes/ArraySort.h"

#include "flash/avm1/interpreter/ArrayNative.h"
#include "flash/avm1/interpreter/Vm.h"
#include "flash/guard/Guard.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace flash::avm1::classes
{

namespace
{

/// Compares two elements. @returns less than, equal to, or greater than 0.
class Comparison
{
public:
    struct Field {
        Name name; ///< null: the element itself
        std::uint32_t options;
    };
    Comparison(Vm& vm, std::vector<Field> fields, Value function)
        : m_vm(vm), m_fields(std::move(fields)), m_names(vm.heap()), m_function(function)
    {
        for (const Field& field : m_fields) m_names.push_back(field.name);
    }

    int operator()(Value a, Value b)
    {
        // A list that is sorted already takes a number of comparisons that goes with its square.
        if (m_vm.checkLoop()) return 0;
        if (m_function.isObject()) {
            const double order = toNumber(m_vm, m_vm.call(m_function, {}, {a, b}));
            return noted(order > 0 ? 1 : order < 0 ? -1 : 0);
        }
        for (const Field& field : m_fields) {
            const int order = byField(a, b, field);
            if (order != 0) return (field.options & kSortDescending) != 0 ? -order : order;
        }
        return noted(0);
    }
    [[nodiscard]] bool hasFunction() const { return m_function.isObject(); }
    /// As without a comparison function.
    int withoutFunction(Value a, Value b) { return byField(a, b, m_fields.front()); }
    /// @returns whether any two elements were equal.
    [[nodiscard]] bool metEqual() const { return m_metEqual; }

private:
    int noted(int order)
    {
        m_metEqual |= order == 0;
        return order;
    }
    int byField(Value a, Value b, const Field& field)
    {
        if (!field.name.isNull()) {
            a = member(a, field.name);
            b = member(b, field.name);
        }
        if ((field.options & kSortNumeric) != 0 && a.isNumber() && b.isNumber())
            return numeric(a.number(), b.number());
        const std::u16string left = text(a, field.options);
        const std::u16string right = text(b, field.options);
        return left < right ? -1 : left > right ? 1 : 0;
    }
    static int numeric(double a, double b) { return a < b ? -1 : a > b ? 1 : 0; }
    Value member(Value value, Name name)
    {
        // What is no object stands for itself. Only an object's own data counts, and no getter is asked.
        Object* object = value.asObject();
        return object == nullptr ? value : object->ownData(m_vm, name);
    }
    std::u16string text(Value value, std::uint32_t options)
    {
        std::u16string result = toText(m_vm, value);
        return (options & kSortCaseInsensitive) != 0 ? AtomTable::fold(result) : result;
    }

    Vm& m_vm;
    std::vector<Field> m_fields;
    RootedNames m_names; // keeps those of the fields alive
    Value m_function;
    bool m_metEqual = false;
};

/// Quicksort with the first element as pivot. Which pairs are compared, and in which order, is on purpose:
/// comparison functions with side effects or contradictions show it, and so does the order of equal elements.
void quickSort(std::vector<std::uint32_t>& order, const RootedValues& elements, Comparison& compare,
               const Vm& vm)
{
    struct Range {
        std::ptrdiff_t first, last;
    };
    std::vector<Range> pending{{0, static_cast<std::ptrdiff_t>(order.size()) - 1}};
    const auto at = [&](std::ptrdiff_t index) -> std::uint32_t& {
        return order[static_cast<std::size_t>(index)];
    };
    while (!pending.empty() && !vm.isUnwinding()) {
        const Range range = pending.back();
        pending.pop_back();
        if (range.first >= range.last) continue;
        const Value pivot = elements[at(range.first)];
        std::ptrdiff_t left = range.first + 1, right = range.last;
        while (!vm.isUnwinding()) {
            while (left < right && compare(pivot, elements[at(left)]) > 0) ++left;
            while (right > range.first && compare(pivot, elements[at(right)]) <= 0) --right;
            if (left >= right) break;
            std::swap(at(left), at(right));
        }
        std::swap(at(range.first), at(right));
        pending.push_back({right + 1, range.last});
        pending.push_back({range.first, right - 1});
    }
}

Value sortList(Vm& vm, Object* list, Comparison& compare, std::uint32_t options)
{
    const RootedValues elements = listElements(vm, list);
    std::vector<std::uint32_t> order(elements.size());
    std::iota(order.begin(), order.end(), 0U);
    quickSort(order, elements, compare, vm);
    if (vm.isUnwinding()) return {};
    if ((options & kSortUnique) != 0) {
        // A function does not decide what counts as the same: neighbours are looked at once more, as texts.
        bool same = !compare.hasFunction() && compare.metEqual();
        for (std::size_t i = 1; compare.hasFunction() && i < order.size() && !same && !vm.isUnwinding(); ++i)
            same = compare.withoutFunction(elements[order[i - 1]], elements[order[i]]) == 0;
        if (vm.isUnwinding()) return {};
        if (same) return Value(0);
    }
    if ((options & kSortDescending) != 0) std::ranges::reverse(order);
    if ((options & kSortReturnIndexed) != 0) {
        const RootedValues indices(vm.heap(), order.begin(), order.end());
        return vm.newArray(*indices);
    }
    // Elements that stay are not written: a comparison function that changed the list meanwhile finds its
    // changes.
    for (std::uint32_t i = 0; i < order.size(); ++i) {
        if (order[i] != i) list->putIndex(vm, i, elements[order[i]]);
    }
    return list;
}

} // namespace

namespace
{

/// Objects do not count as options, numbers in texts do.
std::uint32_t optionsFrom(Vm& vm, Value value)
{
    return value.isObject() || value.isUndefined() ? 0 : toUint32(toNumber(vm, value));
}

} // namespace

double listLength(Vm& vm, Object* list)
{
    if (const ArrayNative* array = list->native<ArrayNative>()) return array->length();
    constexpr double kMaxElements = 1e7;
    const double length = toInt32(vm, list->get(vm, vm.common().length));
    return std::clamp(length, 0.0, kMaxElements);
}

RootedValues listElements(Vm& vm, Object* list)
{
    const double length = listLength(vm, list);
    RootedValues elements(vm.heap());
    if (length > static_cast<double>(guard::kMaxElements)) {
        vm.abortScript("An array is too long to be worked on; the scripts of this movie were stopped.");
        return elements;
    }
    if (ArrayNative* array = list->native<ArrayNative>();
        array != nullptr && array->elements().size() == length) {
        *elements = array->elements();
        // Where the dense part has a hole there may be an element with flags of its own, or an inherited one.
        for (std::size_t i = 0; i < elements.size() && !vm.checkLoop(); ++i) {
            if (elements[i].isHole()) elements[i] = list->getIndex(vm, static_cast<std::uint32_t>(i));
        }
        return elements;
    }
    for (double i = 0; i < length && !vm.checkLoop(); ++i)
        elements.push_back(list->get(vm, vm.names().fromIndex(static_cast<std::uint32_t>(i))));
    return elements;
}

void setListElements(Vm& vm, Object* list, std::span<const Value> elements)
{
    if (ArrayNative* array = list->native<ArrayNative>()) {
        array->setLength(vm, *list, 0);
        array->assign(elements);
        return;
    }
    for (std::size_t i = 0; i < elements.size(); ++i)
        list->put(vm, vm.names().fromIndex(static_cast<std::uint32_t>(i)), elements[i]);
    const double before = listLength(vm, list);
    for (auto i = static_cast<double>(elements.size()); i < before; ++i)
        list->remove(vm, vm.names().fromIndex(static_cast<std::uint32_t>(i)));
    list->put(vm, vm.common().length, Value(static_cast<double>(elements.size())));
}

Value sort(Call& call)
{
    Object* self = call.self.asObject();
    if (self == nullptr) return {};
    // One argument, or two: what compares, if it is an object, and the options, which have to be a number. An
    // object that is no function finds every two elements equal.
    Value function;
    Value optionsValue;
    if (call.count() > 0) {
        const Value first = call.arg(0);
        if (!first.isObject() && !first.isNumber()) return {};
        if (first.isObject()) function = first;
        optionsValue = call.arg(1).isNumber() || first.isObject() ? call.arg(1) : first;
    }
    const std::uint32_t options = optionsFrom(call.vm, optionsValue);
    Comparison compare(call.vm, {{Name(), options & ~kSortDescending}}, function);
    return sortList(call.vm, self, compare, options);
}

Value sortOn(Call& call)
{
    Vm& vm = call.vm;
    Object* self = call.self.asObject();
    if (self == nullptr || call.count() == 0) return {};
    std::vector<Comparison::Field> fields;
    std::uint32_t options = optionsFrom(vm, call.arg(1));
    Object* names = call.arg(0).asObject();
    if (names != nullptr && names->native<ArrayNative>() != nullptr) {
        const RootedValues list = listElements(vm, names);
        RootedValues each(vm.heap());
        // Only a real array gives each field its options.
        Object* optionList = call.arg(1).asObject();
        if (optionList != nullptr && optionList->native<ArrayNative>() != nullptr)
            *each = *listElements(vm, optionList);
        for (std::size_t i = 0; i < list.size(); ++i) {
            const std::uint32_t own = each.size() == list.size() ? toUint32(toNumber(vm, each[i])) : options;
            fields.push_back({toName(vm, list[i]), own});
        }
        if (each.size() == list.size() && !each.empty()) options = toUint32(toNumber(vm, each[0]));
        if (fields.empty()) return self;
    } else {
        fields.push_back({toName(vm, call.arg(0)), options});
    }
    // With several fields each has its own direction; the list as a whole has none.
    if (fields.size() > 1)
        options &= ~kSortDescending;
    else
        fields[0].options &= ~kSortDescending;
    Comparison compare(vm, std::move(fields), {});
    return sortList(vm, self, compare, options);
}

} // namespace flash::avm1::classes
