#pragma once

#include <QProxyStyle>

namespace ui
{

/// How the program's windows, dialogs and menus look, the toolkit's own dialogs among them. Drawn with
/// strokes, so that it is sharp at every scale of the screen.
class Style : public QProxyStyle
{
    Q_OBJECT
public:
    Style();

    void polish(QWidget* widget) override;
    using QProxyStyle::polish;

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                            const QWidget* widget) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                         const QWidget* widget) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                           const QWidget* widget) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override;
    QIcon standardIcon(StandardPixmap icon, const QStyleOption* option, const QWidget* widget) const override;
};

/// Sets the program's look: colours, type and language, this style, and balloons in place of the toolkit's
/// tooltips. Needs the QApplication.
void initialiseVisualStyle();

} // namespace ui
