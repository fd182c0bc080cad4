#pragma once

#include <QImage>

class QPainter;
class QRegion;

namespace flash::control
{

/// Shows a movie's picture in a widget, pixel for pixel.
/// @param picture device pixels; Format_RGB32, which is copied as it is to windows of either kind
/// @param region of the widget, in its own measure
void paintPicture(QPainter& painter, const QImage& picture, const QRegion& region, double deviceScale);

struct State;

/// The pointer that a movie has made itself.
/// @returns a null image when there is none, or when what the movie says of it does not fit together: the
///          movie's process is not to be trusted
QImage ownPointer(const State& state);

} // namespace flash::control
