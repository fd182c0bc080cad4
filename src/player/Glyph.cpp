#include "player/Glyph.h"

#include "core/Look.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace player
{
namespace
{

using core::look::kBlue;
using core::look::kIce;
using core::look::kSky;

constexpr int kButtonSize = 28;
constexpr int kGlyphSize = 20;
constexpr qreal kGrid = 24;
constexpr qreal kRadius = 6;

QPainterPath triangle(qreal left, qreal top, qreal right, qreal bottom)
{
    QPainterPath path({left, top});
    path.lineTo(right, (top + bottom) / 2);
    path.lineTo(left, bottom);
    path.closeSubpath();
    return path;
}

/// A solid triangle with a bar, pointing right: one frame on.
QPainterPath frameStep()
{
    QPainterPath path = triangle(6, 6, 15, 18);
    path.addRect(16, 6, 2.5, 12);
    return path;
}

QPainterPath loudspeaker()
{
    QPainterPath path({4, 9.5});
    path.lineTo(7.5, 9.5);
    path.lineTo(12, 5.5);
    path.lineTo(12, 18.5);
    path.lineTo(7.5, 14.5);
    path.lineTo(4, 14.5);
    path.closeSubpath();
    return path;
}

QPainterPath folder()
{
    QPainterPath path({4, 18});
    path.lineTo(4, 6.5);
    path.lineTo(9.5, 6.5);
    path.lineTo(11.5, 9);
    path.lineTo(20, 9);
    path.lineTo(20, 18);
    path.closeSubpath();
    return path;
}

QPainterPath corners()
{
    QPainterPath path;
    for (const QPolygonF& corner :
         {QPolygonF({{5, 9}, {5, 5}, {9, 5}}), QPolygonF({{15, 5}, {19, 5}, {19, 9}}),
          QPolygonF({{19, 15}, {19, 19}, {15, 19}}), QPolygonF({{9, 19}, {5, 19}, {5, 15}})})
        path.addPolygon(corner);
    return path;
}

} // namespace

void paintGlyph(QPainter& painter, Glyph glyph, const QRectF& square, const QColor& colour)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(square.topLeft());
    painter.scale(square.width() / kGrid, square.height() / kGrid);
    const QPen stroke(colour, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    const auto outline = [&](const QPainterPath& path) { painter.strokePath(path, stroke); };
    switch (glyph) {
    // The triangle stands a little to the right, where its weight is in the middle.
    case Glyph::Play: painter.drawPath(triangle(8, 5, 19.5, 19)); break;
    case Glyph::Pause:
        painter.drawRoundedRect(QRectF(6.5, 5, 4, 14), 1, 1);
        painter.drawRoundedRect(QRectF(13.5, 5, 4, 14), 1, 1);
        break;
    case Glyph::Stop: painter.drawRoundedRect(QRectF(6, 6, 12, 12), 1.5, 1.5); break;
    case Glyph::Forward: painter.drawPath(frameStep()); break;
    case Glyph::Back:
        painter.translate(kGrid, 0);
        painter.scale(-1, 1);
        painter.drawPath(frameStep());
        break;
    case Glyph::Open: outline(folder()); break;
    case Glyph::Sound: {
        painter.drawPath(loudspeaker());
        QPainterPath waves;
        waves.arcMoveTo(QRectF(11, 8.5, 6, 7), -60);
        waves.arcTo(QRectF(11, 8.5, 6, 7), -60, 120);
        waves.arcMoveTo(QRectF(9.5, 5.5, 11, 13), -60);
        waves.arcTo(QRectF(9.5, 5.5, 11, 13), -60, 120);
        outline(waves);
        break;
    }
    case Glyph::Muted: {
        painter.drawPath(loudspeaker());
        QPainterPath cross({15.5, 9.5});
        cross.lineTo(20.5, 14.5);
        cross.moveTo(20.5, 9.5);
        cross.lineTo(15.5, 14.5);
        outline(cross);
        break;
    }
    case Glyph::FullScreen: outline(corners()); break;
    }
    painter.restore();
}

void paintMark(QPainter& painter, const QRectF& square)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(square.topLeft());
    painter.scale(square.width() / kGrid, square.height() / kGrid);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(kBlue));
    painter.drawRoundedRect(QRectF(1, 1, 22, 22), 5.5, 5.5);
    // As in assets/icons/mark.svg.
    constexpr QPointF kTriangle[] = {{7.5, 4.1},  {17.6, 10},  {12.9, 15}, {16.4, 15},
                                     {7.5, 19.9}, {7.5, 16.7}, {13, 9.8},  {7.5, 9.8}};
    painter.setBrush(QColor(kIce));
    painter.setPen(QPen(QColor(kIce), 1, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolygon(kTriangle, std::size(kTriangle));
    painter.restore();
}

GlyphButton::GlyphButton(Glyph glyph, const QString& toolTip, QWidget* parent)
    : QAbstractButton(parent), m_glyph(glyph)
{
    setToolTip(toolTip);
    setAccessibleName(toolTip);
    setFixedSize(kButtonSize, kButtonSize);
    // The keyboard belongs to the movie: a click does not take it, the tabulator may.
    setFocusPolicy(Qt::TabFocus);
}

void GlyphButton::setGlyph(Glyph glyph)
{
    if (m_glyph == glyph) return;
    m_glyph = glyph;
    update();
}

QSize GlyphButton::sizeHint() const { return {kButtonSize, kButtonSize}; }

void GlyphButton::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor ground = Qt::transparent;
    if (isDown()) {
        ground = QColor(kBlue);
        ground.setAlphaF(0.6F);
    } else if (underMouse() && isEnabled()) {
        ground = QColor(kSky);
        ground.setAlphaF(0.18F);
    }
    painter.setBrush(ground);
    painter.setPen(hasFocus() ? QPen(QColor(kSky), 2) : QPen(Qt::NoPen));
    painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), kRadius, kRadius);
    QColor colour(kIce);
    if (!isEnabled()) colour.setAlphaF(0.35F);
    const qreal margin = (kButtonSize - kGlyphSize) / 2.0;
    paintGlyph(painter, m_glyph, QRectF(margin, margin, kGlyphSize, kGlyphSize), colour);
}

void GlyphButton::enterEvent(QEnterEvent* event)
{
    update();
    QAbstractButton::enterEvent(event);
}

void GlyphButton::leaveEvent(QEvent* event)
{
    update();
    QAbstractButton::leaveEvent(event);
}

} // namespace player
