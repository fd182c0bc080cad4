#pragma once

namespace player
{

class Player;

/// Gives every item of the menus its command.
/// @param player outlives its menus
void connectMenuCommands(Player& player);

} // namespace player
