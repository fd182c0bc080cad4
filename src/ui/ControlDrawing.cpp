#include "ui/ControlDrawing.h"

#include "ui/Drawing.h"

#include <QIconEngine>
#include <QStyleOption>

namespace ui
{
namespace
{

using core::look::kAmber;
using core::look::kBlue;
using core::look::kInk;
using core::look::kPaper;
using core::look::kRed;
using core::look::kSky;
using core::look::kSteel;

constexpr double kRadius = 6;
constexpr double kSmallRadius = 3;
constexpr double kDisabled = 0.35;
const QColor kWhite(Qt::white);

bool has(const QStyleOption& option, QStyle::StateFlag flag) { return option.state.testFlag(flag); }
bool isEnabled(const QStyleOption& option) { return has(option, QStyle::State_Enabled); }
bool isOver(const QStyleOption& option) { return isEnabled(option) && has(option, QStyle::State_MouseOver); }

/// Focus is shown to those who work with the keyboard, and to everybody in fields.
bool showsFocus(const QStyleOption& option)
{
    return isEnabled(option) && has(option, QStyle::State_HasFocus) &&
           has(option, QStyle::State_KeyboardFocusChange);
}

QColor outlineOf(const QStyleOption& option)
{
    return isOver(option) ? QColor(kBlue) : faded(kSteel, isEnabled(option) ? 1 : kDisabled);
}

/// One of the signs of message boxes, drawn at the size that is asked for.
class SignEngine : public QIconEngine
{
public:
    explicit SignEngine(QStyle::StandardPixmap sign) : m_sign(sign) {}
    [[nodiscard]] QIconEngine* clone() const override { return new SignEngine(m_sign); }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        QPixmap result(size);
        result.fill(Qt::transparent);
        QPainter painter(&result);
        paint(&painter, QRect({}, size), mode, state);
        return result;
    }
    void paint(QPainter* painter, const QRect& rect, QIcon::Mode, QIcon::State) override
    {
        constexpr double kGrid = 24;
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->translate(rect.topLeft());
        painter->scale(rect.width() / kGrid, rect.height() / kGrid);
        painter->setPen(Qt::NoPen);
        const QPen stroke(kWhite, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
        switch (m_sign) {
        case QStyle::SP_MessageBoxWarning: {
            painter->setBrush(QColor(kAmber));
            painter->setPen(QPen(QColor(kAmber), 3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
            painter->drawPolygon(QPolygonF({{12, 3.5}, {22, 20.5}, {2, 20.5}}));
            painter->setPen(QPen(QColor(kInk), 2, Qt::SolidLine, Qt::RoundCap));
            painter->drawLine(QPointF(12, 9), QPointF(12, 14));
            painter->drawPoint(QPointF(12, 18));
            break;
        }
        case QStyle::SP_MessageBoxCritical:
            painter->setBrush(QColor(kRed));
            painter->drawEllipse(QPointF(12, 12), 11, 11);
            painter->setPen(stroke);
            painter->drawLine(QPointF(8.5, 8.5), QPointF(15.5, 15.5));
            painter->drawLine(QPointF(15.5, 8.5), QPointF(8.5, 15.5));
            break;
        case QStyle::SP_MessageBoxQuestion:
            painter->setBrush(QColor(kBlue));
            painter->drawEllipse(QPointF(12, 12), 11, 11);
            painter->setPen(stroke);
            painter->setBrush(Qt::NoBrush);
            painter->drawArc(QRectF(8.5, 5.5, 7, 7), -80 * 16, 250 * 16);
            painter->drawLine(QPointF(12, 12.6), QPointF(12, 14));
            painter->drawPoint(QPointF(12, 18));
            break;
        default:
            painter->setBrush(QColor(kBlue));
            painter->drawEllipse(QPointF(12, 12), 11, 11);
            painter->setPen(stroke);
            painter->drawPoint(QPointF(12, 6.5));
            painter->drawLine(QPointF(12, 11), QPointF(12, 17.5));
            break;
        }
        painter->restore();
    }

private:
    QStyle::StandardPixmap m_sign;
};

} // namespace

bool isPrimary(const QStyleOptionButton& option)
{
    return option.features.testFlag(QStyleOptionButton::DefaultButton);
}

void drawButton(QPainter& painter, const QStyleOptionButton& option)
{
    const bool down =
        isEnabled(option) && (has(option, QStyle::State_Sunken) || has(option, QStyle::State_On));
    QColor fill;
    QColor outline;
    if (isPrimary(option)) {
        // Darker under the pointer, so that the white caption keeps its contrast.
        fill = down ? QColor(kSteel) : mixed(kBlue, kInk, isOver(option) ? 0.15 : 0);
        if (!isEnabled(option)) fill = faded(kBlue, kDisabled);
    } else {
        fill = down ? mixed(kPaper, kBlue, 0.3) : isOver(option) ? mixed(kPaper, kSky, 0.18) : kWhite;
        outline = outlineOf(option);
        if (option.features.testFlag(QStyleOptionButton::Flat) && !down && !isOver(option)) return;
    }
    drawPlate(painter, option.rect, kRadius, fill, outline);
    if (showsFocus(option)) {
        drawFocusRing(painter, option.rect, kRadius);
        if (isPrimary(option)) // sky on blue is hard to see without a gap between them
            drawPlate(painter, QRectF(option.rect).adjusted(2, 2, -2, -2), kRadius - 2, QColor(), kWhite);
    }
}

void drawCheckBox(QPainter& painter, const QStyleOption& option)
{
    const bool on = has(option, QStyle::State_On);
    const bool partly = has(option, QStyle::State_NoChange);
    const bool down = isEnabled(option) && has(option, QStyle::State_Sunken);
    const double opacity = isEnabled(option) ? 1 : kDisabled;
    const bool filled = on || partly;
    drawPlate(painter, option.rect, kSmallRadius,
              down     ? QColor(kSky)
              : filled ? faded(kBlue, opacity)
                       : kWhite,
              filled ? QColor() : outlineOf(option));
    const QRectF square(option.rect);
    if (on) drawCheckMark(painter, square, kWhite);
    if (partly)
        painter.fillRect(square.adjusted(4, square.height() / 2 - 1, -4, 1 - square.height() / 2), kWhite);
}

void drawRadioButton(QPainter& painter, const QStyleOption& option)
{
    const bool on = has(option, QStyle::State_On);
    const QRectF circle(option.rect);
    drawPlate(painter, circle, circle.width() / 2,
              on ? faded(kBlue, isEnabled(option) ? 1 : kDisabled) : kWhite,
              on ? QColor() : outlineOf(option));
    if (on) drawPlate(painter, circle.adjusted(5, 5, -5, -5), circle.width() / 2, kWhite, QColor());
}

void drawField(QPainter& painter, const QStyleOption& option)
{
    const bool focused = isEnabled(option) && has(option, QStyle::State_HasFocus);
    drawPlate(painter, option.rect, kSmallRadius, isEnabled(option) ? kWhite : QColor(kPaper),
              outlineOf(option));
    if (focused) drawFocusRing(painter, option.rect, kSmallRadius);
}

void drawComboBox(QPainter& painter, const QStyleOptionComboBox& option, const QRect& arrow)
{
    drawField(painter, option);
    QRectF square(0, 0, 14, 14);
    square.moveCenter(QRectF(arrow).center());
    drawChevron(painter, square, Qt::DownArrow, faded(kSteel, isEnabled(option) ? 1 : kDisabled));
}

void drawScrollBar(QPainter& painter, const QStyleOptionSlider& option, const QRect& slider)
{
    painter.fillRect(option.rect, mixed(kPaper, kSteel, 0.08));
    if (option.minimum == option.maximum) return;
    const bool held =
        has(option, QStyle::State_Sunken) && option.activeSubControls & QStyle::SC_ScrollBarSlider;
    const QColor colour = held ? QColor(kBlue) : faded(kSteel, isOver(option) ? 0.7 : 0.45);
    const QRectF thumb = QRectF(slider).adjusted(3, 3, -3, -3);
    drawPlate(painter, thumb, std::min(thumb.width(), thumb.height()) / 2, colour, QColor());
}

void drawProgress(QPainter& painter, const QRectF& rect, double part)
{
    drawPlate(painter, rect, kSmallRadius, mixed(kPaper, kSteel, 0.2), QColor());
    if (part <= 0) return;
    painter.save();
    painter.setClipRect(QRectF(rect.left(), rect.top(), rect.width() * std::min(part, 1.0), rect.height()));
    drawPlate(painter, rect, kSmallRadius, QColor(kBlue), QColor());
    painter.restore();
}

QIcon messageIcon(QStyle::StandardPixmap icon)
{
    switch (icon) {
    case QStyle::SP_MessageBoxInformation:
    case QStyle::SP_MessageBoxWarning:
    case QStyle::SP_MessageBoxCritical:
    case QStyle::SP_MessageBoxQuestion: return QIcon(new SignEngine(icon));
    default: return {};
    }
}

} // namespace ui
