#include "flash/avm2/bindings/DisplaySpace.h"

#include "flash/avm2/bindings/Conversions.h"
#include "flash/avm2/bindings/Matrix3D.h"

#include <algorithm>
#include <cmath>

namespace flash::avm2::space
{

namespace
{

constexpr double kTwips = swf::kTwipsPerPixel;

/// @throws nothing: what is no number counts as 0
double finiteArg(Call& call)
{
    const double value = call.vm.toNumber(call.arg(0));
    return std::isfinite(value) ? value : 0;
}

template <class Change>
Value changePlace(Call& call, Change change)
{
    DisplayObject& object = displaySelf(call);
    stage::SpacePlace place = object.node().spacePlaceOrFlat();
    change(place);
    object.node().setSpacePlace(place);
    object.noteTransformed();
    return {};
}

swf::Rect boundsThrough(DisplayObject& object, stage::Node::Extent extent, const auto& seen)
{
    const swf::Rect own = object.node().bounds(extent);
    if (own.isEmpty()) return own;
    swf::Rect all;
    const double left = own.xMin, right = own.xMax, top = own.yMin, bottom = own.yMax;
    for (const swf::Point corner : {swf::Point{left, top}, {right, top}, {left, bottom}, {right, bottom}}) {
        const swf::Point at = seen(corner);
        constexpr double kFar = 1 << 30;
        const auto x = static_cast<std::int32_t>(std::round(std::clamp(at.x, -kFar, kFar))),
                   y = static_cast<std::int32_t>(std::round(std::clamp(at.y, -kFar, kFar)));
        all = swf::unite(all, {x, x, y, y});
    }
    return all;
}

swf::Point onStage(DisplayObject& object, double x, double y, double z)
{
    const auto [px, py, pz, w] = object.node().toStageInSpace().map(x, y, z);
    return w != 0 ? swf::Point{px / w, py / w} : swf::Point{};
}

} // namespace

Value depth(Call& call)
{
    const stage::SpacePlace* place = displaySelf(call).node().spacePlace();
    return place != nullptr ? place->place[2] : 0.0;
}
Value setDepth(Call& call)
{
    const double value = finiteArg(call);
    return changePlace(call, [value](stage::SpacePlace& place) {
        place.place[2] = value;
        place.matrix.m[14] = value * kTwips;
    });
}
Value depthScale(Call& call)
{
    const stage::SpacePlace* place = displaySelf(call).node().spacePlace();
    return place != nullptr ? place->scale[2] : 1.0;
}
Value setDepthScale(Call& call)
{
    const double value = finiteArg(call);
    return changePlace(call, [value](stage::SpacePlace& place) {
        place.scale[2] = value;
        place.recompose();
    });
}
Value setTurnAbout(Call& call, std::size_t axis)
{
    const double value = finiteArg(call);
    return changePlace(call, [value, axis](stage::SpacePlace& place) {
        place.turn[axis] = value;
        place.recompose();
    });
}

void moveTo(DisplayObject& object, std::size_t axis, double pixels)
{
    stage::SpacePlace place = object.node().spacePlaceOrFlat();
    place.place[axis] = pixels;
    place.matrix.m[12 + axis] = pixels * kTwips;
    object.node().setSpacePlace(place);
}

void keepScale(DisplayObject& object)
{
    stage::Node& node = object.node();
    if (node.spacePlace() == nullptr) return;
    stage::SpacePlace place = *node.spacePlace();
    place.scale[0] = node.scaleX() / 100;
    place.scale[1] = node.scaleY() / 100;
    place.recompose();
    node.setSpacePlace(place);
}

/// The point of its plane that is seen there.
Value globalToLocal(Call& call)
{
    DisplayObject& object = displaySelf(call);
    const swf::Point given = pointOf(objectArg(call, 0, "flash.geom::Point", "point"));
    const auto back = swf::Homography::ofPlane(object.node().toStageInSpace()).inverted();
    if (!back) return newVector(call.vm, 0, 0, 0, 0);
    const auto [x, y, w] = back->map(given.x * kTwips, given.y * kTwips);
    if (w == 0) return newVector(call.vm, 0, 0, 0, 0);
    return newVector(call.vm, x / w / kTwips, y / w / kTwips, 0, 0);
}
Value localToGlobal(Call& call)
{
    Object& vector = objectArg(call, 0, kVector, "point3d");
    const swf::Point at = onStage(displaySelf(call), slotNumber(vector, 0) * kTwips,
                                  slotNumber(vector, 1) * kTwips, slotNumber(vector, 2) * kTwips);
    return newPoint(call.vm, at.x / kTwips, at.y / kTwips);
}
Value seenFrom(Vm& vm, DisplayObject& object, swf::Point local)
{
    const swf::Point at = onStage(object, local.x * kTwips, local.y * kTwips, 0);
    return newPoint(vm, at.x / kTwips, at.y / kTwips);
}

swf::Rect boundsIn(DisplayObject& object, DisplayObject& target, stage::Node::Extent extent)
{
    return boundsThrough(object, extent, [&](swf::Point corner) {
        const swf::Point seen = onStage(object, corner.x, corner.y, 0);
        return target.node().toStageAt(seen).inverted().map(seen);
    });
}
swf::Rect boundsOnStage(DisplayObject& object)
{
    stage::Node& node = object.node();
    if (!node.isInSpace()) return node.boundsThrough(node.toStage());
    return boundsThrough(object, stage::Node::Extent::WithStrokes,
                         [&](swf::Point corner) { return onStage(object, corner.x, corner.y, 0); });
}

} // namespace flash::avm2::space
