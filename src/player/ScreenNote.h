#pragma once

#include <QLabel>

namespace player
{

/// A word to the user that lies over the window for a moment and takes no click.
class ScreenNote : public QLabel
{
    Q_OBJECT
public:
    static constexpr int kShownMs = 4000;
    /// Shows over `window`, near its upper edge, in place of the note before; it deletes itself when its time
    /// is over.
    static void show(QWidget& window, const QString& text, int shownMs = kShownMs);

private:
    ScreenNote(QWidget& window, const QString& text);
};

} // namespace player
