#pragma once

#include "player/Outside.h"

namespace player
{

class Player;

/// The doors of the real program: dialogs over the window, the system's programs, the journal.
/// @param player outlives what is returned
Outside::Doors outsideDoors(Player& player);

} // namespace player
