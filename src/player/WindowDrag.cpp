#include "player/WindowDrag.h"

#include <QApplication>
#include <QMouseEvent>
#include <QWidget>
#include <QWindow>

namespace player
{
namespace
{

bool isHeld() { return QGuiApplication::mouseButtons().testFlag(Qt::LeftButton); }

constexpr int kClickPixels = 3; ///< what a hand moves while it clicks

} // namespace

bool WindowDrag::begins()
{
    const bool first = !m_pressed;
    m_pressed = isHeld();
    if (!m_pressed) return false;
    if (first) m_start = QCursor::pos();
    if ((QCursor::pos() - m_start).manhattanLength() <= kClickPixels) return false;
    // The window system may keep the release for itself.
    m_pressed = false;
    return true;
}

void WindowDrag::moveWindow(QWidget& window)
{
    if (m_widget || window.isFullScreen() || !begins()) return;
    if (window.windowHandle() != nullptr && window.windowHandle()->startSystemMove()) return;
    if (!window.isMaximized()) follow(window, Mode::Move);
}

void WindowDrag::resizeWindow(QWidget& window)
{
    if (m_widget || window.isFullScreen() || !begins()) return;
    if (window.windowHandle() != nullptr &&
        window.windowHandle()->startSystemResize(Qt::BottomEdge | Qt::RightEdge))
        return;
    if (!window.isMaximized()) follow(window, Mode::Resize);
}

void WindowDrag::moveObject(QWidget& object)
{
    if (!m_widget && begins()) follow(object, Mode::Move);
}

void WindowDrag::follow(QWidget& widget, Mode mode)
{
    m_widget = &widget;
    m_mode = mode;
    m_geometry = widget.geometry();
    qApp->installEventFilter(this);
}

bool WindowDrag::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::MouseMove && event->type() != QEvent::MouseButtonRelease) return false;
    if (!watched->isWidgetType()) return false; // the window's own event comes first, then the widget's
    const auto* mouse = static_cast<QMouseEvent*>(event);
    const bool ends = !m_widget || !isHeld();
    if (m_widget) {
        const QPoint by = mouse->globalPosition().toPoint() - m_start;
        if (m_mode == Mode::Move)
            m_widget->move(m_geometry.topLeft() + by);
        else
            m_widget->resize((m_geometry.size() + QSize(by.x(), by.y())).expandedTo(m_widget->minimumSize()));
    }
    if (ends) {
        m_widget = nullptr;
        qApp->removeEventFilter(this);
    }
    return false;
}

} // namespace player
