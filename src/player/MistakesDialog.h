#pragma once

#include <QStringList>

class QWidget;

namespace player
{

/// Shows an author what is wrong in a skin's files, as a text that can be copied, beside the window.
/// @param mistakes "file:line: what", a mistake each
void showMistakes(QWidget& window, const QString& folder, const QStringList& mistakes);

} // namespace player
