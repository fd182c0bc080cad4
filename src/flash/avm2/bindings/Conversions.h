#pragma once

#include "flash/avm2/interpreter/Vm.h"
#include "flash/render/Surface.h"
#include "flash/swf/Movie.h"

#include <optional>

// Values of flash.geom and flash.filters, and what the stage takes for them.
namespace flash::avm2
{

/// The slots of a matrix count pixels, what the stage has twips.
swf::Matrix matrixOf(Object& matrix);
Value newMatrix(Vm& vm, const swf::Matrix& matrix);
Value newPoint(Vm& vm, double x, double y);
Value newRectangle(Vm& vm, double x, double y, double width, double height);
/// Twips become pixels.
Value newRectangle(Vm& vm, const swf::Rect& rect);
/// Of a rectangle in pixels: its twips.
swf::Rect twipsOf(Object& rectangle);
/// Of a rectangle in pixels: the whole pixels, as the player cuts its numbers.
render::IntRect pixelsOf(Object& rectangle);
swf::Point pointOf(Object& point);
swf::ColorTransform colorTransformOf(Object& transform);
Value newColorTransform(Vm& vm, const swf::ColorTransform& transform);

/// An argument of a class, which is not null.
/// @throws 1034 for another class, 2007 for null
Object& objectArg(Call& call, std::uint32_t index, std::string_view cls, const char* parameter);
/// The same, where null means there is none.
Object* optionalArg(Call& call, std::uint32_t index, std::string_view cls);

/// @returns nothing for what is no filter
std::optional<swf::Filter> filterOf(Vm& vm, Value value);
Value newFilter(Vm& vm, const swf::Filter& filter);

std::string_view blendModeName(swf::BlendMode mode);
std::optional<swf::BlendMode> blendModeOf(std::u16string_view name);

/// A number of a slot; 0 for what is none.
double slotNumber(Object& object, std::uint32_t slot);

} // namespace flash::avm2
