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
class WindowDrag : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    /// Called at the press of the left button, at every move and at the release, as a skin's statement is.
    /// The drag begins when the pointer has gone a little way with the button held, so that clicks and double
    /// clicks stay what they are.
    void moveWindow(QWidget& window);
    /// From the lower right corner.
    void resizeWindow(QWidget& window);
    void moveObject(QWidget& object);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    enum class Mode { Move, Resize };
    void follow(QWidget& widget, Mode mode);
    [[nodiscard]] bool begins();

    QPointer<QWidget> m_widget;
    Mode m_mode = Mode::Move;
    bool m_pressed = false;
    QPoint m_start; ///< of the press, global
    QRect m_geometry;
};

} // namespace player
