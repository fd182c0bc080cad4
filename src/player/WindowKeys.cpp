#include "player/WindowKeys.h"

#include "flash/FlashControl.h"
#include "player/Shortcuts.h"

#include <QAction>
#include <QKeyEvent>
#include <QWheelEvent>
#include <QWidget>

namespace player
{

WindowKeys::WindowKeys(QWidget& window, flash::FlashControl& control, Callbacks callbacks)
    : QObject(&window), m_window(window), m_control(control), m_callbacks(std::move(callbacks))
{
    window.installEventFilter(this);
    control.installEventFilter(this);
}

bool WindowKeys::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::KeyPress) return isTaken(*static_cast<QKeyEvent*>(event));
    if (event->type() == QEvent::Wheel && watched == &m_control) {
        const auto& wheel = *static_cast<QWheelEvent*>(event);
        if (!wheel.modifiers().testFlag(Qt::ControlModifier)) return false;
        turn(wheel);
        return true;
    }
    return false;
}

bool WindowKeys::isTaken(const QKeyEvent& key)
{
    const Qt::KeyboardModifiers held = key.modifiers() & ~Qt::KeypadModifier;
    if (key.key() == Qt::Key_F10 && (held == Qt::NoModifier || held == Qt::ShiftModifier)) {
        held == Qt::NoModifier ? m_callbacks.showMenu() : m_callbacks.showPopUp();
        return true;
    }
    if (belongsToMovie(key, m_control.hasFocus() && m_control.listensToKeys())) return false;
    QAction* action = actionOf(key);
    if (action == nullptr) return false;
    action->trigger();
    return true;
}

QAction* WindowKeys::actionOf(const QKeyEvent& key) const
{
    const QKeySequence twin = inOtherLayout(QKeySequence(key.keyCombination()));
    if (twin.isEmpty()) return nullptr;
    for (QAction* action : m_window.actions())
        if (action->isEnabled() && action->shortcuts().contains(twin) &&
            (action->autoRepeat() || !key.isAutoRepeat()))
            return action;
    return nullptr;
}

void WindowKeys::turn(const QWheelEvent& wheel)
{
    constexpr int kNotch = 120;
    m_turned += wheel.angleDelta().y();
    if (std::abs(m_turned) < kNotch) return;
    const int direction = m_turned > 0 ? 1 : -1;
    m_turned = 0;
    m_callbacks.zoom(direction);
}

} // namespace player
