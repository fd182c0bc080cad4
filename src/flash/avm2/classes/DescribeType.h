#pragma once

#include "flash/avm2/interpreter/Native.h"

#include <span>

namespace flash::avm2::classes
{

/// flash.utils.describeType
std::span<const NativeFunctionInfo> describeFunctions();
/// What a description is to have in it, for those who ask in detail.
std::span<const NativeValue> describeFlags();

} // namespace flash::avm2::classes
