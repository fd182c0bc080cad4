#pragma once

#include "flash/avm2/interpreter/Native.h"

// How what is on the display list is laid over what lies below it: members of DisplayObject.
namespace flash::avm2::effects
{

Value blendMode(Call& call);
Value setBlendMode(Call& call);
/// A kernel that blends is written only; what reads the mode finds "shader".
Value setBlendShader(Call& call);
Value filters(Call& call);
Value setFilters(Call& call);

} // namespace flash::avm2::effects
