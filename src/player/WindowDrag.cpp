#include "player/WindowDrag.h"

#include <QApplication>
#include <QMouseEvent>
#include <QWidget>
#include <QWindow>

#include <algorithm>

namespace player
{
namespace
{

/// Pixels that a hand may tremble within a click.
constexpr int kTremble = 3;

/// @param least size that the edges stop at
QRect sizedBy(QRect rect, Qt::Edges edges, QPoint by, QSize least)
{
    const QSize room = rect.size() - least;
    if (edges.testFlag(Qt::LeftEdge)) rect.setLeft(rect.left() + std::min(by.x(), room.width()));
    if (edges.testFlag(Qt::TopEdge)) rect.setTop(rect.top() + std::min(by.y(), room.height()));
    if (edges.testFlag(Qt::RightEdge)) rect.setRight(rect.right() + std::max(by.x(), -room.width()));
    if (edges.testFlag(Qt::BottomEdge)) rect.setBottom(rect.bottom() + std::max(by.y(), -room.height()));
    return rect;
}

bool isHeld() { return QGuiApplication::mouseButtons().testFlag(Qt::LeftButton); }

} // namespace

void WindowDrag::begin(QWidget& widget, Mode mode)
{
    if (!isHeld() || m_widget) return;
    if (mode != Mode::MoveObject && widget.isFullScreen()) return;
    m_widget = &widget;
    m_mode = mode;
    m_state = State::Pressed;
    m_start = QCursor::pos();
    m_geometry = QRect(widget.pos(), widget.size());
    qApp->installEventFilter(this);
}

bool WindowDrag::leaveToSystem() const
{
    QWindow* const window = m_widget->windowHandle();
    if (m_mode == Mode::MoveObject || window == nullptr) return false;
    return m_mode == Mode::MoveWindow ? window->startSystemMove() : window->startSystemResize(m_edges);
}

void WindowDrag::follow(QPoint by)
{
    if (m_mode != Mode::MoveObject && m_widget->isMaximized()) return;
    if (m_mode == Mode::ResizeWindow)
        m_widget->setGeometry(sizedBy(m_geometry, m_edges, by, m_widget->minimumSize()));
    else
        m_widget->move(m_geometry.topLeft() + by);
}

void WindowDrag::end()
{
    m_widget = nullptr;
    qApp->removeEventFilter(this);
}

bool WindowDrag::eventFilter(QObject* watched, QEvent* event)
{
    // The window's own event comes first, then the widget's.
    if (!watched->isWidgetType()) return false;
    const QEvent::Type type = event->type();
    if (type == QEvent::MouseButtonPress || !m_widget) end();
    if (type != QEvent::MouseMove && type != QEvent::MouseButtonRelease) return false;
    const bool released = type == QEvent::MouseButtonRelease || !isHeld();
    if (m_widget && m_state != State::System) {
        const QPoint by = static_cast<QMouseEvent*>(event)->globalPosition().toPoint() - m_start;
        if (m_state == State::Pressed && !released && by.manhattanLength() > kTremble)
            m_state = leaveToSystem() ? State::System : State::Following;
        if (m_state == State::Following) follow(by);
    }
    if (released) end();
    return false;
}

} // namespace player
