#pragma once

#include "flash/render/Surface.h"
#include "flash/swf/Space.h"

#include <vector>

// Planes that are seen from aside.
namespace flash::render
{

/// The corners of what is seen of a rectangle: nothing of what lies behind the eye, or too close before it.
std::vector<swf::Point> seenCorners(const swf::Rect& rect, const swf::Homography& toDevice);

/// The device pixels that what is seen can touch, with one more all around.
IntRect projectedBounds(const std::vector<swf::Point>& seenCorners, const swf::Homography& toDevice);

/// How many device pixels a unit of the plane is long at most, along each of its axes.
struct Stretch {
    double x = 0, y = 0;
};
Stretch stretchAt(const std::vector<swf::Point>& seenCorners, const swf::Homography& toDevice);

/// Draws what is seen of a picture, between its pixels by their mean; around it, it is transparent.
/// @param fromDevice device pixels to the picture's
/// @param area what `target` is of the device; it has the same size, and is transparent
void project(const Surface& picture, const swf::Homography& fromDevice, const IntRect& area,
             SurfaceView target);

} // namespace flash::render
