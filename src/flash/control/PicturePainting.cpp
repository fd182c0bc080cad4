#include "flash/control/PicturePainting.h"

#include <QImage>
#include <QPainter>
#include <QRegion>

namespace flash::control
{

void paintPicture(QPainter& painter, const QImage& picture, const QRegion& region, double deviceScale)
{
    painter.save();
    // What is drawn in the window's own pixels is copied in rows; anything scaled is sampled pixel by pixel.
    painter.scale(1 / deviceScale, 1 / deviceScale);
    for (const QRect& part : region) {
        const QRect pixels = QRectF(part.x() * deviceScale, part.y() * deviceScale,
                                    part.width() * deviceScale, part.height() * deviceScale)
                                 .toAlignedRect() &
                             picture.rect();
        if (pixels.isEmpty()) continue;
        // Within a clip of one rectangle: one of several is looked up row by row, and blended.
        painter.setClipRect(pixels);
        painter.drawImage(pixels.topLeft(), picture, pixels);
    }
    painter.restore();
}

} // namespace flash::control
