#pragma once

#include "flash/avm1/interpreter/Function.h"

namespace flash::avm1::classes
{

/// Array.sort and Array.sortOn.
Value sort(Call& call);
Value sortOn(Call& call);

enum SortOption : unsigned {
    kSortCaseInsensitive = 1,
    kSortDescending = 2,
    kSortUnique = 4,
    kSortReturnIndexed = 8,
    kSortNumeric = 16,
};

// Lists by their `length` and numbered members, whatever object they are.
double listLength(Vm& vm, Object* list);
RootedValues listElements(Vm& vm, Object* list);
/// Replaces the elements; the length follows.
void setListElements(Vm& vm, Object* list, std::span<const Value> elements);

} // namespace flash::avm1::classes
