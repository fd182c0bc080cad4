#pragma once

#include <QIcon>
#include <QStyle>

class QPainter;
class QStyleOptionButton;
class QStyleOptionComboBox;
class QStyleOptionSlider;

// How the controls of dialogs look.

namespace ui
{

/// The one button of a dialog that the Return key presses is the blue one.
[[nodiscard]] bool isPrimary(const QStyleOptionButton& option);
void drawButton(QPainter& painter, const QStyleOptionButton& option);
void drawCheckBox(QPainter& painter, const QStyleOption& option);
void drawRadioButton(QPainter& painter, const QStyleOption& option);
/// The frame of a line of text, or of anything else that is written into.
void drawField(QPainter& painter, const QStyleOption& option);
/// The list's frame and arrow, without the text in it.
void drawComboBox(QPainter& painter, const QStyleOptionComboBox& option, const QRect& arrow);
/// A bar without buttons at its ends.
void drawScrollBar(QPainter& painter, const QStyleOptionSlider& option, const QRect& slider);
void drawProgress(QPainter& painter, const QRectF& rect, double part);

/// The signs of message boxes; null for any other picture.
QIcon messageIcon(QStyle::StandardPixmap icon);

} // namespace ui
