#pragma once

#include <QAbstractButton>

class QPainter;

namespace player
{

enum class Glyph { Play, Pause, Stop, Back, Forward, Open, Sound, Muted, FullScreen };

/// Draws a glyph of the product's set, made on a 24-unit grid, into a square.
void paintGlyph(QPainter& painter, Glyph glyph, const QRectF& square, const QColor& colour);

/// The product's mark: a rounded blue square with a play triangle that a Z is cut into.
void paintMark(QPainter& painter, const QRectF& square);

/// A flat button of the control bar: 28 x 28 with a glyph of 20.
class GlyphButton : public QAbstractButton
{
    Q_OBJECT
public:
    GlyphButton(Glyph glyph, const QString& toolTip, QWidget* parent);
    void setGlyph(Glyph glyph);
    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    Glyph m_glyph;
};

} // namespace player
