#pragma once

#include <QMargins>
#include <QSize>

namespace player
{

/// The window's size for a movie at a zoom. Reckoned in twips, 15 to the pixel whatever the screen is, as
/// skins and scripts expect: the movie's part is divided first, then the borders are added and the sum is
/// rounded.
/// @param movie   pixels
/// @param borders pixels between the window's edge and the movie
/// @param minimum pixels
QSize zoomedSize(int percent, QSize movie, QMargins borders, QSize minimum);

} // namespace player
