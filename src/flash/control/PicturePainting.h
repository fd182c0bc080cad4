#pragma once

class QImage;
class QPainter;
class QRegion;

namespace flash::control
{

/// Shows a movie's picture in a widget, pixel for pixel.
/// @param picture device pixels; Format_RGB32, which is copied as it is to windows of either kind
/// @param region of the widget, in its own measure
void paintPicture(QPainter& painter, const QImage& picture, const QRegion& region, double deviceScale);

} // namespace flash::control
