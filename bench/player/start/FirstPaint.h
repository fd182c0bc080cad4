#pragma once

#include <QEvent>
#include <QTimer>
#include <QWidget>

#include <cstdlib>

/// Ends the process when a window has been painted for the first time, without any tidying up.
class FirstPaint : public QObject
{
public:
    explicit FirstPaint(QWidget& window) : QObject(&window) { window.installEventFilter(this); }

protected:
    bool eventFilter(QObject*, QEvent* event) override
    {
        // After what was painted has been sent to the screen.
        if (event->type() == QEvent::Paint) QTimer::singleShot(0, [] { std::_Exit(0); });
        return false;
    }
};
