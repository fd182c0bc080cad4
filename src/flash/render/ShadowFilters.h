#pragma once

#include "flash/render/Surface.h"
#include "flash/swf/Movie.h"

// The filters that are made of the blurred alpha of their source: shadow, glow, bevel and the two gradients.
namespace flash::render
{

/// Whole device pixels: the genuine player does not move effects within them.
struct ShadowOffset {
    int x = 0, y = 0;
};
/// @param angle radians, clockwise from the x axis
ShadowOffset shadowOffset(double distance, double angle, double scale);

void applyShadow(const swf::DropShadowFilter& filter, SurfaceView surface, double scale);
void applyBevel(const swf::BevelFilter& filter, SurfaceView surface, double scale);
void applyGradient(const swf::GradientFilter& filter, SurfaceView surface, double scale);

} // namespace flash::render
