#pragma once

#include <QRegion>
#include <QWidget>

namespace player
{

/// The rim of a window without a frame of the system's: a few pixels along its shape that are not seen and by
/// which it is sized.
class SizingFrame : public QWidget
{
    Q_OBJECT
public:
    /// @param client the window's inner area, whose mask is the window's shape
    explicit SizingFrame(QWidget& client);

    /// To be called when shape, frame or state of the window may have changed.
    void refresh();
    /// Which edges of the window a point of the rim stands for.
    [[nodiscard]] Qt::Edges edgesAt(QPoint point) const;

signals:
    /// Nobody else sizes windows here.
    void pressed(Qt::Edges edges);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    QWidget& m_client;
    QRegion m_shape;
};

} // namespace player
