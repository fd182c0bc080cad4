#pragma once

#include <QLabel>

namespace player
{

/// Says for some seconds how the screen is got back: for whoever did not ask for full screen himself.
class FullScreenHint : public QLabel
{
    Q_OBJECT
public:
    static constexpr int kShownMs = 4000;
    /// Shows over `window`, near its upper edge, until its time is over; it deletes itself.
    static void show(QWidget& window);

private:
    explicit FullScreenHint(QWidget& window);
};

} // namespace player
