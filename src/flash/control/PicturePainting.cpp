#include "flash/control/PicturePainting.h"

#include "flash/control/Messages.h"
#include "flash/stage/CursorPicture.h"

#include <QPainter>
#include <QRegion>

#include <cstring>

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

QImage ownPointer(const State& state)
{
    constexpr int kMost = stage::CursorPicture::kMostSide;
    constexpr std::size_t kPixelBytes = 4;
    const int width = state.pointerWidth, height = state.pointerHeight;
    if (width < 1 || height < 1 || width > kMost || height > kMost) return {};
    if (state.pointerX >= width || state.pointerY >= height) return {};
    const std::size_t rowBytes = static_cast<std::size_t>(width) * kPixelBytes;
    if (state.pointerPixels.size() != rowBytes * static_cast<std::size_t>(height)) return {};
    QImage image(width, height, QImage::Format_ARGB32_Premultiplied);
    if (image.isNull()) return {};
    for (int y = 0; y < height; ++y)
        std::memcpy(image.scanLine(y), state.pointerPixels.data() + static_cast<std::size_t>(y) * rowBytes,
                    rowBytes);
    return image;
}

} // namespace flash::control
