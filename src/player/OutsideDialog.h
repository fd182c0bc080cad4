#pragma once

#include "player/Outside.h"

class QWidget;

namespace player
{

class PlayerHost;

/// The callbacks of the real program: dialogs over the window, the system's programs, the journal.
/// @param host   outlives what is returned
/// @param window as does this one, above which the dialogs lie
Outside::Callbacks outsideCallbacks(PlayerHost& host, QWidget& window);

} // namespace player
