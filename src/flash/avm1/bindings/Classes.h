#pragma once

#include "flash/avm1/bindings/StageBinding.h"
#include "flash/avm1/interpreter/Function.h"

// The built-in classes that act on the stage, one file each. A member table per class; `install` puts the
// class on the global object.
namespace flash::avm1
{

void installMovieClip(StageBinding& binding);
void installMovieClipDrawing(StageBinding& binding, Object* prototype);
void installButton(StageBinding& binding);
void installBroadcaster(StageBinding& binding);
void installKey(StageBinding& binding);
void installMouse(StageBinding& binding);
void installSelection(StageBinding& binding);
void installStage(StageBinding& binding);
void installColor(StageBinding& binding);
void installSound(StageBinding& binding);
void installTextField(StageBinding& binding);
void installTextFormat(StageBinding& binding);
void installStyleSheet(StageBinding& binding, Object* textField);
/// @param package the object `flash.geom`
void installTransform(StageBinding& binding, Object* package);
void installLoadVars(StageBinding& binding);
void installSharedObject(StageBinding& binding);
void installSystem(StageBinding& binding);
void installMovieClipLoader(StageBinding& binding);
void installLocalConnection(StageBinding& binding);
/// Microphone, PrintJob and Accessibility, behind which there is nothing.
void installDeviceClasses(StageBinding& binding);
/// NetConnection, NetStream, and what Video has besides a button's members.
void installNetStream(StageBinding& binding);
Value attachAudio(Call& call);
/// The rest of the library, after all other classes. @param flash the package
void installLibrary(StageBinding& binding, Object* flash);

/// Gives the prototype of text fields its properties, which are not there before the first text field is.
void installTextFieldProperties(Vm& vm);

/// Gives a prototype of instances the property `tabIndex`: a whole number of 32 bits, or undefined.
void addTabIndex(Vm& vm, Object* prototype, std::uint16_t flags = 0);

/// Makes an object a broadcaster: addListener, removeListener, broadcastMessage and an empty list.
void makeBroadcaster(Vm& vm, Object* object);
/// Makes an object without a class and puts it on the global object under a name.
Object* defineGlobalObject(Vm& vm, std::string_view name, std::span<const MemberInfo> members);

/// Nothing that the object has now can be changed, deleted or enumerated.
void makeConstant(Vm& vm, Object* object);

// ---- arguments of natives ----
inline double numberArg(Call& call, std::size_t index) { return toNumber(call.vm, call.arg(index)); }
inline int intArg(Call& call, std::size_t index) { return toInt32(call.vm, call.arg(index)); }
inline std::u16string textArg(Call& call, std::size_t index) { return toText(call.vm, call.arg(index)); }
inline std::string utf8Arg(Call& call, std::size_t index)
{
    return StageBinding::toUtf8(toText(call.vm, call.arg(index)));
}
inline stage::Clip* selfClip(Call& call) { return StageBinding::of(call).clipOf(call.self.asObject()); }
inline stage::Node* selfNode(Call& call) { return StageBinding::of(call).nodeOf(call.self.asObject()); }

} // namespace flash::avm1
