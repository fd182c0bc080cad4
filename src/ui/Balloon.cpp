#include "ui/Balloon.h"

#include "base/Failure.h"
#include "core/Version.h"
#include "platform/WindowSystem.h"
#include "skin/Controls.h"
#include "ui/Drawing.h"

#include <QApplication>
#include <QBitmap>
#include <QHelpEvent>
#include <QLabel>
#include <QPainterPath>
#include <QScreen>
#include <QTextLayout>
#include <QToolTip>

namespace ui
{
namespace
{

constexpr int kMargin = 8; ///< around the text
constexpr double kRadius = 6;
constexpr int kArrowHeight = 10;
constexpr int kArrowWidth = 12;
constexpr int kArrowInset = 20;    ///< of the arrow's point from the balloon's edge, where there is room
constexpr int kPointerHeight = 20; ///< what the pointer covers below its point
constexpr int kNoSuchMember = 438;

/// The text broken into lines. @returns its size
QSize layOut(QTextLayout& layout)
{
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    QSizeF size;
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(Balloon::kTextWidth);
        line.setPosition({0, size.height()});
        size = {std::max(size.width(), line.naturalTextWidth()), size.height() + line.height()};
    }
    layout.endLayout();
    return {static_cast<int>(std::ceil(size.width())), static_cast<int>(std::ceil(size.height()))};
}

QString inLines(const QString& text)
{
    return QString(text).replace("\r\n", "\n").replace('\n', QChar::LineSeparator);
}

/// Turns the request for a tooltip into a balloon. Widgets that answer the request themselves have no text.
class Requests : public QObject
{
public:
    using QObject::QObject;
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() != QEvent::ToolTip || !watched->isWidgetType()) return false;
        auto* widget = static_cast<QWidget*>(watched);
        if (widget->toolTip().isEmpty()) return false;
        Balloon::show(*widget, widget->toolTip(), static_cast<QHelpEvent*>(event)->globalPos());
        event->accept();
        return true;
    }
};

} // namespace

void Balloon::install()
{
    constexpr const char* kName = "zorvexToolTips";
    if (qApp->findChild<QObject*>(kName, Qt::FindDirectChildrenOnly) != nullptr) return;
    auto* requests = new Requests(qApp);
    requests->setObjectName(kName);
    qApp->installEventFilter(requests);
}

Balloon* Balloon::show(QWidget& control, const QString& text, const QPoint& at)
{
    for (Balloon* open : control.window()->findChildren<Balloon*>()) open->close();
    auto* balloon = new Balloon(control, text, at);
    balloon->setVisible(true);
    return balloon;
}

Balloon::Balloon(QWidget& control, const QString& text, const QPoint& at)
    : QWidget(control.window(), Qt::ToolTip | Qt::FramelessWindowHint | Qt::WindowTransparentForInput |
                                    Qt::WindowDoesNotAcceptFocus),
      m_control(&control), m_text(text)
{
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAttribute(Qt::WA_DeleteOnClose);
    setFont(QToolTip::font());
    setPalette(QToolTip::palette());
    setAccessibleName(text);
    place(at);
    // Where nothing blends windows, what lies outside must not be drawn at all.
    QBitmap shape(size());
    shape.clear();
    QPainter painter(&shape);
    painter.setPen(QPen(Qt::color1, 1));
    painter.setBrush(Qt::color1);
    painter.drawPath(outline());
    painter.end();
    setMask(shape);
    qApp->installEventFilter(this);
    connect(&control, &QObject::destroyed, this, &QWidget::close);
    m_time.setSingleShot(true);
    connect(&m_time, &QTimer::timeout, this, &QWidget::close);
    m_time.start(kDisplayMs);
}

void Balloon::place(const QPoint& at)
{
    QTextLayout layout(inLines(m_text), font());
    const QSize box = layOut(layout) + QSize(2 * kMargin, 2 * kMargin);
    const QScreen* screen = QApplication::screenAt(at);
    const QRect room = (screen == nullptr ? m_control->screen() : screen)->availableGeometry();
    m_above = at.y() - box.height() - kArrowHeight >= room.top();
    // The arrow sits near the balloon's left edge, and moves along it where the screen ends.
    const int furthest = std::max(room.left(), room.right() + 1 - box.width());
    const int left = std::clamp(at.x() - kArrowInset, room.left(), furthest);
    const int corner = static_cast<int>(kRadius) + kArrowWidth / 2;
    m_arrow = std::clamp(at.x() - left, corner, std::max(corner, box.width() - corner));
    m_box = QRect(QPoint(0, m_above ? 0 : kArrowHeight), box);
    const int top = m_above ? at.y() - box.height() - kArrowHeight : at.y() + kPointerHeight;
    setGeometry(left, top, box.width(), box.height() + kArrowHeight);
}

QPainterPath Balloon::outline() const
{
    const QRectF box = QRectF(m_box).adjusted(0.5, 0.5, -0.5, -0.5);
    QPainterPath balloon;
    balloon.addRoundedRect(box, kRadius, kRadius);
    const double edge = m_above ? box.bottom() : box.top();
    const double point = m_above ? height() - 0.5 : 0.5;
    QPainterPath arrow({m_arrow - kArrowWidth / 2.0, edge});
    arrow.lineTo(m_arrow, point);
    arrow.lineTo(m_arrow + kArrowWidth / 2.0, edge);
    arrow.closeSubpath();
    return balloon.united(arrow);
}

void Balloon::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    // Without transparency the smooth edge would be mixed with black.
    if (!platform::hasPerPixelTransparency()) painter.fillRect(rect(), QColor(core::look::kSteel));
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(core::look::kSteel), 1));
    painter.setBrush(palette().toolTipBase());
    painter.drawPath(outline());
    QTextLayout layout(inLines(m_text), font());
    layOut(layout);
    painter.setPen(palette().toolTipText().color());
    layout.draw(&painter, m_box.topLeft() + QPointF(kMargin, kMargin));
}

bool Balloon::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
    case QEvent::KeyPress:
    case QEvent::ApplicationStateChange: close(); break;
    case QEvent::Leave:
    case QEvent::Hide:
    case QEvent::EnabledChange:
        if (watched == m_control) close();
        break;
    case QEvent::Move:
    case QEvent::WindowDeactivate:
        if (m_control && watched == m_control->window()) close();
        break;
    default: break;
    }
    return false;
}

void SetToolTip(QObject* control, const QString& text)
{
    auto* widget = qobject_cast<QWidget*>(control);
    if (widget == nullptr || qobject_cast<QLabel*>(widget) != nullptr ||
        qobject_cast<skin::SkinLabel*>(widget) != nullptr)
        throw base::Failure(kNoSuchMember, core::kProductName,
                            "Object doesn't support this property or method: hwnd");
    Balloon::install();
    widget->setToolTip(text);
}

} // namespace ui
