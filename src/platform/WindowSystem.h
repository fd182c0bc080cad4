#pragma once

namespace platform
{

/// Whether a window's own transparency shows now: on X11 as long as a compositing manager runs, elsewhere
/// always. Needs the application object.
bool hasPerPixelTransparency();

/// Whether somebody else gives windows their frames and carries out what they wish for: to fill the screen,
/// to be moved. On X11 a window may be alone with its server; elsewhere always. Needs the application object.
bool hasWindowManager();

/// Whether the program's windows are alone with an X11 server: nobody but the program changes their state,
/// and what the toolkit believes of it is not to be trusted. Needs the application object.
bool isAloneWithDisplay();

/// Whether a window knows where it stands and may say where it wants to; on Wayland the desktop keeps that to
/// itself. Needs the application object.
bool letsWindowsPlaceThemselves();

/// Tells the display that somebody is there, as a key would: the time until it goes dark begins anew. Only
/// X11 takes such a word.
void pokeScreen();

} // namespace platform
