#pragma once

#include "flash/render/Canvas.h"

#include <optional>

namespace flash::stage
{

class Node;

/// How a script draws on a bitmap of its own.
struct BitmapDrawing {
    swf::Matrix matrix; ///< pixels to pixels
    swf::ColorTransform transform;
    swf::BlendMode blend = swf::BlendMode::Normal;
    std::optional<render::IntRect> clip;
    bool isSmooth = false;
    render::Quality quality = render::Quality::High;
};

/// Draws a picture, which may be the target itself.
void drawOnBitmap(swf::Bitmap& target, const swf::Bitmap& picture, const BitmapDrawing& how);
/// Draws a node with all below it, wherever it stands on the stage.
void drawOnBitmap(swf::Bitmap& target, Node& node, const BitmapDrawing& how);

} // namespace flash::stage
