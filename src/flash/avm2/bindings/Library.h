#pragma once

#include "flash/avm2/interpreter/Native.h"

#include <span>

namespace flash::avm2
{

/// The classes that act on the stage, and those that go with them.
std::span<const NativeLibrary> bindingsLibrary();

std::span<const NativeClass> geometryClasses();
std::span<const NativeClass> recordClasses();
std::span<const NativeFunctionInfo> systemFunctions();

} // namespace flash::avm2
