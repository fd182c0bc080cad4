#include "skin/WaitScreen.h"

#include <QPainter>
#include <QPixmap>

namespace skin
{

QImage paled(QImage picture)
{
    constexpr int kColourPercent = 40;
    constexpr int kLightPercent = 25;
    picture.convertTo(QImage::Format_ARGB32);
    for (int y = 0; y < picture.height(); ++y) {
        auto* pixels = reinterpret_cast<QRgb*>(picture.scanLine(y));
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb pixel = pixels[x];
            const int grey = qGray(pixel);
            const auto pale = [grey](int channel) {
                const int calm = grey + (channel - grey) * kColourPercent / 100;
                return calm + (255 - calm) * kLightPercent / 100;
            };
            pixels[x] = qRgba(pale(qRed(pixel)), pale(qGreen(pixel)), pale(qBlue(pixel)), qAlpha(pixel));
        }
    }
    return picture;
}

WaitScreen::WaitScreen(QWidget* area) : QWidget(area) { hide(); }

void WaitScreen::ShowWaitScreen(Look look)
{
    hide();
    QWidget* area = parentWidget();
    setGeometry(area->rect());
    m_picture = area->grab().toImage();
    if (look == Look::Paled) m_picture = paled(std::move(m_picture));
    raise();
    show();
}

void WaitScreen::HideWaitScreen()
{
    hide();
    m_picture = {};
}

void WaitScreen::paintEvent(QPaintEvent*) { QPainter(this).drawImage(rect(), m_picture); }

} // namespace skin
