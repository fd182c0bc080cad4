#pragma once

#include "flash/avm1/interpreter/Vm.h"

// The classes of the language itself. Each install function makes the constructor, gives the prototype its
// members and notes it in Vm::builtIns. What the stage adds (MovieClip and its like) lives with the stage.
namespace flash::avm1::classes
{

/// Everything below, in the order that lets later ones rely on earlier ones.
void installAll(Vm& vm);

void installObject(Vm& vm);
void installFunction(Vm& vm);
void installString(Vm& vm);
void installNumber(Vm& vm);
void installBoolean(Vm& vm);
void installArray(Vm& vm);
void installMath(Vm& vm);
void installError(Vm& vm);
void installDate(Vm& vm);
void installGlobals(Vm& vm);

} // namespace flash::avm1::classes
