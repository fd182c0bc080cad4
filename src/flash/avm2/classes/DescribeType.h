#pragma once

#include "flash/avm2/interpreter/Native.h"

#include <span>

namespace flash::avm2::classes
{

/// flash.utils.describeType
std::span<const NativeFunctionInfo> describeFunctions();

} // namespace flash::avm2::classes
