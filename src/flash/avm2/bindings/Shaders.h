#pragma once

#include "flash/avm2/bindings/Graphics.h"

#include <optional>

namespace flash::avm2
{

/// What an instance of ShaderFilter does, with the values its kernel has now.
/// @throws 2162 for a kernel that puts out no colour, 2164 to 2166 for what is wrong with an input other than
/// the first, which is what is filtered
swf::Filter shaderFilterOf(Vm& vm, Object& filter);
/// Of a Shader. @returns nothing for null. @throws as shaderFilterOf(), of any input
std::optional<swf::FillStyle> shaderFillOf(Vm& vm, Value shader, Value matrix);

} // namespace flash::avm2
