#pragma once

#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QRect>

class QWidget;

namespace player
{

/// Moves or sizes a widget by the pointer until the left button is released. The window system does it where
/// it can; panels inside the window, and windows where nobody else does it, follow the pointer here.
///
/// A window begins to move with the pointer's first movement and not with the press: a window system that has
/// taken the pointer over would swallow the click, and no double click could follow.
class WindowDrag : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    /// Begin at the press of the left button or while it is held, and do nothing otherwise: the same
    /// statement is run at the release as well.
    void moveWindow(QWidget& window) { begin(window, Mode::MoveWindow); }
    /// @param edges those that follow the pointer
    void resizeWindow(QWidget& window, Qt::Edges edges = Qt::BottomEdge | Qt::RightEdge)
    {
        if (!m_widget) m_edges = edges;
        begin(window, Mode::ResizeWindow);
    }
    void moveObject(QWidget& object) { begin(object, Mode::MoveObject); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    enum class Mode { MoveWindow, ResizeWindow, MoveObject };
    void begin(QWidget& widget, Mode mode);
    [[nodiscard]] bool leaveToSystem() const;
    void follow(QPoint by);
    void end();

    QPointer<QWidget> m_widget;
    Mode m_mode = Mode::MoveWindow;
    Qt::Edges m_edges;
    /// System: the window system has taken over, and what still arrives here of the pointer means nothing.
    /// To ask it once more would let the window stick to the pointer after the button is released.
    enum class State { Pressed, Following, System };
    State m_state = State::Pressed;
    QPoint m_start; ///< global
    QRect m_geometry;
};

} // namespace player
