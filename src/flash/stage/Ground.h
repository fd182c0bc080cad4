#pragma once

#include "flash/render/Surface.h"
#include "flash/swf/Geometry.h"

namespace flash::stage
{

class Node;
class Stage;

/// The uppermost instance whose own outline hides all that lies below it in a box of device pixels; null when
/// there is none that is easily seen to. What contains it draws it straight onto the stage.
/// @param view stage twips to device pixels
[[nodiscard]] Node* groundOf(Stage& stage, const swf::Matrix& view, const render::IntRect& box);

} // namespace flash::stage
