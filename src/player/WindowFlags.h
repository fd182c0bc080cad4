#pragma once

#include <QWidget>

namespace player
{

/// Changes a window's flag while it is shown, without the hiding and showing that the toolkit's own function
/// does.
void setWindowFlagInPlace(QWidget& window, Qt::WindowType flag, bool on);

} // namespace player
