#include "browser/Shadow.h"

#include <QPainter>

namespace browser
{

Shadow::Shadow(QWidget* parent, const QString& image, QWidget* picture)
    : QWidget(parent), m_image(image), m_picture(picture)
{
    picture->setParent(this);
    picture->move(kMargin, kMargin);
    setFixedSize(picture->size() + QSize(2 * kMargin, 2 * kMargin));
}

void Shadow::paintEvent(QPaintEvent*)
{
    // A picture that is not shown casts no shadow.
    if (m_image.isNull() || !m_picture->isVisible()) return;
    constexpr int kCorner = 2 * kMargin; // in the image: the border and as much below the picture
    const QSize image = m_image.size();
    const int xs[] = {0, kCorner, width() - kCorner, width()};
    const int ys[] = {0, kCorner, height() - kCorner, height()};
    const int fromX[] = {0, kCorner, image.width() - kCorner, image.width()};
    const int fromY[] = {0, kCorner, image.height() - kCorner, image.height()};
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            painter.drawPixmap(
                QRect(QPoint(xs[column], ys[row]), QPoint(xs[column + 1] - 1, ys[row + 1] - 1)), m_image,
                QRect(QPoint(fromX[column], fromY[row]), QPoint(fromX[column + 1] - 1, fromY[row + 1] - 1)));
        }
    }
}

} // namespace browser
