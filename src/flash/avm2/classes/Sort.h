#pragma once

#include "flash/avm2/classes/Library.h"

#include <functional>

namespace flash::avm2::classes
{

enum SortFlag : unsigned {
    kCaseInsensitive = 1,
    kDescending = 2,
    kUniqueSort = 4,
    kReturnIndexed = 8,
    kNumeric = 16
};

/// What follows the sorting of `count` things: their old places in the new order.
/// @param less may be inconsistent and may throw
std::vector<std::uint32_t> sortedOrder(std::uint32_t count,
                                       const std::function<int(std::uint32_t, std::uint32_t)>& compare);

/// -1, 0 or 1 by the flags, as texts unless they say numbers.
int compareValues(Vm& vm, Value a, Value b, unsigned flags);

// Members of Array.
Value sortArray(Call& call);
Value sortArrayOn(Call& call);

} // namespace flash::avm2::classes
