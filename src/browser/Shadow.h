#pragma once

#include <QPixmap>
#include <QWidget>

namespace browser
{

/// Holds a picture and draws a drop shadow around it. The shadow's image is cut in nine: its corners stay,
/// its sides stretch, so that it fits a picture of any size.
class Shadow : public QWidget
{
public:
    /// @param image   of the shadow; when it is missing there is none
    /// @param picture becomes a child; keeps its size
    Shadow(QWidget* parent, const QString& image, QWidget* picture);

    /// Room around the picture, which is also the width of the image's border.
    static constexpr int kMargin = 12;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QPixmap m_image;
    QWidget* m_picture; // a child
};

} // namespace browser
