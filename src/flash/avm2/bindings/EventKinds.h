#pragma once

#include "flash/avm2/interpreter/Native.h"

#include <span>

namespace flash::avm2
{

/// Events that only movies make, and lists of constants.
std::span<const NativeClass> eventKindClasses();

} // namespace flash::avm2
