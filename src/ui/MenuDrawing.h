#pragma once

#include <QSize>

class QPainter;
class QStyleOption;
class QStyleOptionMenuItem;
class QWidget;

// How menus and menu bars look. Works for the program's own menus, which have a menu set, and for those that
// the toolkit opens by itself, which have none.

namespace ui
{

void drawMenuPanel(QPainter& painter, const QStyleOption& option, const QWidget* menu);
void drawMenuItem(QPainter& painter, const QStyleOptionMenuItem& option, const QWidget* menu);
/// @param contents the size of the caption; what is right of a tab is added by the toolkit
QSize menuItemSize(const QStyleOptionMenuItem& option, const QSize& contents);
/// The line, arrow or whatever else scrolls a menu that is higher than the screen.
void drawMenuScroller(QPainter& painter, const QStyleOptionMenuItem& option);

void drawMenuBarGround(QPainter& painter, const QStyleOption& option);
void drawMenuBarItem(QPainter& painter, const QStyleOptionMenuItem& option);

} // namespace ui
