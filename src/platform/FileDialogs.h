#pragma once

namespace platform
{

// The desktop's own file dialogs come by the portal org.freedesktop.portal.Desktop, for programs of every
// kind.

/// Takes the portal's dialogs into use where the desktop has one and the user has not named a theme. To be
/// called before the application object is made.
void preferDesktopDialogs();

/// Whether a dialog of the desktop's would show: its service is there and answers. Without one the toolkit's
/// own dialogs are to be used. Waits for the service once.
bool hasDesktopDialogs();

} // namespace platform
