#pragma once

#include "flash/avm1/interpreter/Vm.h"

namespace flash::avm1
{

class StageBinding;

/// @param package the object `flash.display`
void installBitmapData(StageBinding& binding, Object* package);

/// The picture of a BitmapData object, shared: later changes to it show. Null for other objects and once it
/// is disposed of.
std::shared_ptr<swf::Bitmap> bitmapFromObject(const Object* object);

} // namespace flash::avm1
