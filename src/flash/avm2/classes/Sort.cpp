#include "flash/avm2/classes/Sort.h"

#include <QString>

#include <numeric>

namespace flash::avm2::classes
{

namespace
{

/// A merge sort of our own: it ends whatever the comparison answers, and a comparison may throw.
void mergeSort(std::vector<std::uint32_t>& order, std::vector<std::uint32_t>& spare, std::size_t from,
               std::size_t to, const std::function<int(std::uint32_t, std::uint32_t)>& compare)
{
    if (to - from < 2) return;
    const std::size_t middle = from + (to - from) / 2;
    mergeSort(order, spare, from, middle, compare);
    mergeSort(order, spare, middle, to, compare);
    std::size_t left = from, right = middle, out = from;
    while (left < middle && right < to)
        spare[out++] = compare(order[left], order[right]) <= 0 ? order[left++] : order[right++];
    while (left < middle) spare[out++] = order[left++];
    while (right < to) spare[out++] = order[right++];
    std::copy(spare.begin() + static_cast<std::ptrdiff_t>(from),
              spare.begin() + static_cast<std::ptrdiff_t>(to),
              order.begin() + static_cast<std::ptrdiff_t>(from));
}

} // namespace

std::vector<std::uint32_t> sortedOrder(std::uint32_t count,
                                       const std::function<int(std::uint32_t, std::uint32_t)>& compare)
{
    std::vector<std::uint32_t> order(count), spare(count);
    std::iota(order.begin(), order.end(), 0U);
    mergeSort(order, spare, 0, count, compare);
    return order;
}

int compareValues(Vm& vm, Value a, Value b, unsigned flags)
{
    int result = 0;
    if ((flags & kNumeric) != 0) {
        const double left = vm.toNumber(a), right = vm.toNumber(b);
        // What is no number goes to the end.
        if (std::isnan(left) || std::isnan(right))
            result = std::isnan(left) ? (std::isnan(right) ? 0 : 1) : -1;
        else
            result = left < right ? -1 : left > right ? 1 : 0;
    } else {
        String* left = vm.toString(a);
        String* right = vm.toString(b);
        if ((flags & kCaseInsensitive) != 0) {
            const auto lower = [](std::u16string_view text) {
                std::u16string folded(text);
                for (char16_t& unit : folded) unit = QChar(unit).toLower().unicode();
                return folded;
            };
            result = lower(left->view()).compare(lower(right->view()));
        } else {
            result = left->view().compare(right->view());
        }
    }
    result = result < 0 ? -1 : result > 0 ? 1 : 0;
    return (flags & kDescending) != 0 ? -result : result;
}

} // namespace flash::avm2::classes
