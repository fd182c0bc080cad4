#pragma once

#include <QObject>

#include <functional>

class QAction;
class QKeyEvent;
class QWheelEvent;
class QWidget;

namespace flash
{
class FlashControl;
}

namespace player
{

/// The window's keys that no menu item has: F10 and Shift+F10 for the menus, the wheel with Ctrl for the
/// zoom, and the letters of shortcuts while a Russian layout is switched on and the system knows no other.
class WindowKeys : public QObject
{
    Q_OBJECT
public:
    struct Callbacks {
        std::function<void()> showMenu;
        std::function<void()> showPopUp;
        std::function<void(int direction)> zoom;
    };
    /// @param window  its actions are what keys are looked up in
    /// @param control has the keys first; both outlive this object
    WindowKeys(QWidget& window, flash::FlashControl& control, Callbacks callbacks);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    [[nodiscard]] bool isTaken(const QKeyEvent& key);
    [[nodiscard]] QAction* actionOf(const QKeyEvent& key) const;
    void turn(const QWheelEvent& wheel);

    QWidget& m_window;
    flash::FlashControl& m_control;
    const Callbacks m_callbacks;
    int m_turned = 0; ///< eighths of a degree that made no notch yet
};

} // namespace player
