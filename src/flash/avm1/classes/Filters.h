#pragma once

#include "flash/avm1/interpreter/Vm.h"

#include <optional>
#include <vector>

namespace flash::avm1
{

/// Makes the classes of the package flash.filters: BitmapFilter and those derived from it that draw.
/// @param package the object `flash.filters`
void installFilters(Vm& vm, Object* package);

/// @returns what a filter object describes; nothing for other values.
std::optional<swf::Filter> filterFromValue(Value value);
/// Reads an array of filter objects, as the property `filters` of clips takes it; other elements are left
/// out.
std::vector<swf::Filter> filtersFromValue(Vm& vm, Value array);

/// @returns a new filter object (`Vm::global` must hold the classes), or undefined when the classes are gone.
Value filterToValue(Vm& vm, const swf::Filter& filter);
Value filtersToValue(Vm& vm, std::span<const swf::Filter> filters);

} // namespace flash::avm1
