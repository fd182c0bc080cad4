#pragma once

#include "flash/avm1/interpreter/Vm.h"

// The members of MovieClip by subject, for the table of the class.
namespace flash::avm1::movieclip
{

/// The value of a property, were it hidden from the running version.
Value hiddenOrNot(Vm& vm, Object& object, Name name);
/// Sets a property, were it hidden from the running version.
void setHiddenOrNot(Vm& vm, Object& object, Name name, Value value);

// ---- geometry ----
Value getBounds(Call& call);
Value getRect(Call& call);
Value localToGlobal(Call& call);
Value globalToLocal(Call& call);
Value hitTest(Call& call);

// ---- loading ----
Value getUrl(Call& call);
Value loadMovie(Call& call);
Value loadVariables(Call& call);
Value unloadMovie(Call& call);
Value getBytesLoaded(Call& call);
Value getBytesTotal(Call& call);
Value getSwfVersion(Call& call);

// ---- look ----
Value setMask(Call& call);
/// Blend mode, filters and the other properties that came with version 8.
void addLook(Vm& vm, Object* prototype);
/// Those that buttons share with clips.
void addButtonLook(Vm& vm, Object* prototype);

} // namespace flash::avm1::movieclip
