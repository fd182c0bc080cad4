#pragma once

#include "core/Look.h"

#include <QPainter>

// Strokes that stay sharp at every scale of the screen, shared by all that this folder draws.

namespace ui
{

/// @returns the rectangle moved to the device's pixels, with its edges through the middle of a pixel: a
///          hairline along it is one pixel of the device wide
QRectF onPixels(const QPainter& painter, const QRectF& rect);

/// A line of one device pixel.
QPen hairline(const QColor& colour);

/// A rounded rectangle with an outline of one device pixel.
void drawPlate(QPainter& painter, const QRectF& rect, double radius, const QColor& fill,
               const QColor& outline);
/// The ring of 2 pixels around what has the keyboard.
void drawFocusRing(QPainter& painter, const QRectF& rect, double radius);
/// A check mark on a 16-unit grid.
void drawCheckMark(QPainter& painter, const QRectF& square, const QColor& colour);
/// An open arrow head in a square.
void drawChevron(QPainter& painter, const QRectF& square, Qt::ArrowType direction, const QColor& colour);

/// `part` 0: the one colour, 1: the other.
QColor mixed(QRgb from, QRgb to, double part);
QColor faded(QRgb colour, double opacity);

} // namespace ui
