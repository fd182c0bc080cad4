#include "ui/Drawing.h"

#include <QPolygonF>
#include <QTransform>

#include <cmath>

namespace ui
{

QRectF onPixels(const QPainter& painter, const QRectF& rect)
{
    const QTransform toDevice = painter.deviceTransform();
    const QRectF device = toDevice.mapRect(rect);
    const QRectF snapped(QPointF(std::round(device.left()) + 0.5, std::round(device.top()) + 0.5),
                         QPointF(std::round(device.right()) - 0.5, std::round(device.bottom()) - 0.5));
    return toDevice.inverted().mapRect(snapped);
}

QPen hairline(const QColor& colour)
{
    QPen pen(colour, 1);
    pen.setCosmetic(true);
    return pen;
}

void drawPlate(QPainter& painter, const QRectF& rect, double radius, const QColor& fill,
               const QColor& outline)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(outline.isValid() ? hairline(outline) : QPen(Qt::NoPen));
    painter.setBrush(fill.isValid() ? QBrush(fill) : QBrush(Qt::NoBrush));
    painter.drawRoundedRect(onPixels(painter, rect), radius, radius);
    painter.restore();
}

void drawFocusRing(QPainter& painter, const QRectF& rect, double radius)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(core::look::kSky), 2));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(rect.adjusted(1, 1, -1, -1), radius, radius);
    painter.restore();
}

void drawCheckMark(QPainter& painter, const QRectF& square, const QColor& colour)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(square.topLeft());
    painter.scale(square.width() / 16, square.height() / 16);
    painter.setPen(QPen(colour, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(QPolygonF({{3.5, 8.5}, {6.5, 11.5}, {12.5, 4.5}}));
    painter.restore();
}

void drawChevron(QPainter& painter, const QRectF& square, Qt::ArrowType direction, const QColor& colour)
{
    double degrees = 0; // a chevron that points down
    switch (direction) {
    case Qt::UpArrow: degrees = 180; break;
    case Qt::LeftArrow: degrees = 90; break;
    case Qt::RightArrow: degrees = -90; break;
    case Qt::DownArrow:
    case Qt::NoArrow: break;
    }
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(square.center());
    painter.rotate(degrees);
    const double unit = std::min(square.width(), square.height()) / 16;
    painter.scale(unit, unit);
    painter.setPen(QPen(colour, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(QPolygonF({{-4, -2}, {0, 2}, {4, -2}}));
    painter.restore();
}

QColor mixed(QRgb from, QRgb to, double part)
{
    const auto channel = [part](int a, int b) { return static_cast<int>(std::lround(a + (b - a) * part)); };
    return {channel(qRed(from), qRed(to)), channel(qGreen(from), qGreen(to)),
            channel(qBlue(from), qBlue(to))};
}

QColor faded(QRgb colour, double opacity)
{
    QColor result(colour);
    result.setAlphaF(static_cast<float>(opacity));
    return result;
}

} // namespace ui
