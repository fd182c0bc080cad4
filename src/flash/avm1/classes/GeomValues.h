#pragma once

#include "flash/avm1/interpreter/Vm.h"
#include "flash/render/Surface.h"

#include <optional>

// Between script objects that merely look like flash.geom's (any object with the members counts) and ours.
namespace flash::avm1
{

/// Reads x, y, width and height; truncated to whole pixels. Nothing for what is no object.
std::optional<render::IntRect> rectFromValue(Vm& vm, Value value);
/// Reads x and y; (0, 0) for what is no object or lacks one of them.
swf::Point pointFromValue(Vm& vm, Value value);
/// Reads a, b, c, d, tx and ty, all in pixels; what is no number counts as 0. Nothing for what is no object
/// and for objects that lack one of them.
std::optional<swf::Matrix> matrixFromValue(Vm& vm, Value value);
/// The numbers of a ColorTransform; nothing for every other object, whatever it has.
std::optional<swf::ColorTransform> colorTransformFromValue(Vm& vm, Value value);

// New objects of the classes in flash.geom; undefined when a script has removed the class.
Value newRectangle(Vm& vm, double x, double y, double width, double height);
Value newPoint(Vm& vm, double x, double y);
Value newMatrix(Vm& vm, const swf::Matrix& matrix);
Value newColorTransform(Vm& vm, const swf::ColorTransform& transform);

/// @param package the object `flash.geom`
void installColorTransform(Vm& vm, Object* package);

/// The classes of flash.geom that are written in script: Point, Rectangle, Matrix.
void installGeomPrelude(Vm& vm);

} // namespace flash::avm1
