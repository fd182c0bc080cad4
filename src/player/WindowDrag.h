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

    /// Begin at the press of the left button or while it is held, and do nothing otherwise: the same
    /// statement is run at the release as well.
    void moveWindow(QWidget& window);
    /// From the lower right corner.
    void resizeWindow(QWidget& window);
    void moveObject(QWidget& object);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    enum class Mode { Move, Resize };
    void follow(QWidget& widget, Mode mode);

    QPointer<QWidget> m_widget;
    Mode m_mode = Mode::Move;
    QPoint m_start; ///< global
    QRect m_geometry;
};

} // namespace player
