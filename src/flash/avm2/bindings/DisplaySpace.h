#pragma once

#include "flash/avm2/bindings/Display.h"
#include "flash/stage/Space.h"

// Members of DisplayObject that take it out of the plane, and what others do with one that has left it.
// Whatever of these is set takes it out, to the same number even.
namespace flash::avm2::space
{

Value depth(Call& call);
Value setDepth(Call& call);
Value depthScale(Call& call);
Value setDepthScale(Call& call);
/// @tparam axis 0 for x, 1 for y, 2 for z
template <std::size_t axis>
Value turn(Call& call)
{
    const stage::SpacePlace* place = displaySelf(call).node().spacePlace();
    return place != nullptr ? place->turn[axis] : 0.0;
}
Value setTurnAbout(Call& call, std::size_t axis);
template <std::size_t axis>
Value setTurn(Call& call)
{
    return setTurnAbout(call, axis);
}
/// @param pixels along an axis, in its parent's space
void moveTo(DisplayObject& object, std::size_t axis, double pixels);
/// Takes over what was done to the scales of its matrix; nothing for what is flat.
void keepScale(DisplayObject& object);

Value globalToLocal(Call& call);
Value localToGlobal(Call& call);
/// Where on the stage a point of its plane is seen. Pixels.
Value seenFrom(Vm& vm, DisplayObject& object, swf::Point local);
/// Twips, as seen.
swf::Rect boundsIn(DisplayObject& object, DisplayObject& target, stage::Node::Extent extent);
swf::Rect boundsOnStage(DisplayObject& object);

} // namespace flash::avm2::space
