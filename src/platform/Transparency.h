#pragma once

namespace platform
{

/// Whether a window's own transparency shows now: on X11 as long as a compositing manager runs, elsewhere
/// always. Needs the application object.
bool hasPerPixelTransparency();

} // namespace platform
