#include "player/SizingFrame.h"

#include <QChildEvent>
#include <QMouseEvent>
#include <QWindow>

namespace player
{
namespace
{

constexpr int kRim = 4;
/// How far from a corner a point of the rim still stands for both of its edges.
constexpr int kCorner = 16;

QRegion innerPart(const QRegion& shape)
{
    QRegion inner = shape;
    for (const QPoint by : {QPoint(kRim, 0), QPoint(-kRim, 0), QPoint(0, kRim), QPoint(0, -kRim)})
        inner &= shape.translated(by);
    return inner;
}

Qt::CursorShape cursorFor(Qt::Edges edges)
{
    if (edges == (Qt::LeftEdge | Qt::TopEdge) || edges == (Qt::RightEdge | Qt::BottomEdge))
        return Qt::SizeFDiagCursor;
    if (edges == (Qt::RightEdge | Qt::TopEdge) || edges == (Qt::LeftEdge | Qt::BottomEdge))
        return Qt::SizeBDiagCursor;
    return edges & (Qt::LeftEdge | Qt::RightEdge) ? Qt::SizeHorCursor : Qt::SizeVerCursor;
}

} // namespace

SizingFrame::SizingFrame(QWidget& client) : QWidget(&client), m_client(client)
{
    setObjectName("frmSizing");
    setMouseTracking(true);
    setAttribute(Qt::WA_NoSystemBackground);
    // There for the mouse alone: what lies below may be painted as if nothing was over it.
    setUpdatesEnabled(false);
    hide();
    client.installEventFilter(this);
    client.window()->installEventFilter(this);
}

void SizingFrame::refresh()
{
    const QWidget& window = *m_client.window();
    const bool sizes = window.windowFlags().testFlag(Qt::FramelessWindowHint) && !window.isMaximized() &&
                       !window.isFullScreen();
    if (!sizes) return hide();
    const QRegion shape = m_client.mask().isEmpty() ? QRegion(m_client.rect()) : m_client.mask();
    const bool isNew = shape != m_shape;
    if (isNew) {
        m_shape = shape;
        setGeometry(m_client.rect());
        setMask(shape - innerPart(shape));
    }
    if (!isNew && !isHidden()) return;
    show();
    raise();
}

Qt::Edges SizingFrame::edgesAt(QPoint point) const
{
    const auto isOutside = [&](QPoint by) { return !m_shape.contains(point + by); };
    const auto near = [&](int reach) {
        Qt::Edges edges;
        if (isOutside({-reach, 0})) edges |= Qt::LeftEdge;
        if (isOutside({reach, 0})) edges |= Qt::RightEdge;
        if (isOutside({0, -reach})) edges |= Qt::TopEdge;
        if (isOutside({0, reach})) edges |= Qt::BottomEdge;
        return edges;
    };
    constexpr Qt::Edges kAcross = Qt::LeftEdge | Qt::RightEdge;
    constexpr Qt::Edges kAlong = Qt::TopEdge | Qt::BottomEdge;
    Qt::Edges edges = near(kRim + 1);
    const Qt::Edges wide = near(kCorner);
    if (!(edges & kAlong)) edges |= wide & kAlong;
    if (!(edges & kAcross)) edges |= wide & kAcross;
    // A thin part of the shape has both of a pair.
    if ((edges & kAcross) == kAcross) edges &= ~kAcross;
    if ((edges & kAlong) == kAlong) edges &= ~kAlong;
    return edges;
}

bool SizingFrame::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == &m_client) {
        if (event->type() == QEvent::Resize) refresh();
        // The views of a new skin come in front of what is there.
        if (event->type() == QEvent::ChildAdded && static_cast<QChildEvent*>(event)->child() != this)
            QMetaObject::invokeMethod(
                this, [this] { raise(); }, Qt::QueuedConnection);
    } else if (event->type() == QEvent::WindowStateChange || event->type() == QEvent::Show) {
        refresh();
    }
    return false;
}

void SizingFrame::mouseMoveEvent(QMouseEvent* event)
{
    if (event->buttons() == Qt::NoButton) setCursor(cursorFor(edgesAt(event->position().toPoint())));
}

void SizingFrame::mousePressEvent(QMouseEvent* event)
{
    const Qt::Edges edges = edgesAt(event->position().toPoint());
    if (event->button() != Qt::LeftButton || !edges) return;
    // At once: nobody double-clicks a rim, and no pixel of the way is lost.
    QWindow* const window = m_client.window()->windowHandle();
    if (window == nullptr || !window->startSystemResize(edges)) emit pressed(edges);
}

} // namespace player
