#pragma once

#include "flash/avm2/bindings/Display.h"
#include "flash/avm2/bindings/Fields.h"
#include "flash/stage/TextField.h"

namespace flash::avm2
{

/// The field behind an object. @throws 1034 when it is of another class, or has none
stage::TextField& fieldSelf(Call& call);

/// The field among whose letters an object stands as a picture; null for others.
stage::TextField* fieldAround(const DisplayObject& object);
Value getImageReference(Call& call);

/// Those that lay the text out, or change parts of it.
std::span<const NativeMember> textFieldMethods();
std::span<const NativeMember> textFieldLineMethods();

/// Fields with a style sheet look as it says. @throws 2009
void refuseStyled(Call& call);

} // namespace flash::avm2
