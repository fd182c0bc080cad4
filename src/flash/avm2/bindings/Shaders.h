#pragma once

#include "flash/avm2/bindings/Graphics.h"

#include <optional>

namespace flash::avm2
{

/// What an instance of ShaderFilter does, with the values its kernel has now.
/// @throws 2162 for a kernel that puts out no colour, 2164 to 2166 for what is wrong with an input other than
/// the first, which is what is filtered
swf::Filter shaderFilterOf(Vm& vm, Object& filter);
/// The end of a chain of filters, by which a Shader blends. @throws as shaderFilterOf(), of any input from
/// the third on
swf::Filter shaderBlendOf(Vm& vm, Value shader);
/// Of a Shader. @returns nothing for null. @throws as shaderFilterOf(), of any input
std::optional<swf::FillStyle> shaderFillOf(Vm& vm, Value shader, Value matrix);

} // namespace flash::avm2
