#pragma once

#include <QImage>
#include <QRegion>
#include <QWidget>

namespace skin
{

/// How much of each pixel of a shape's edge the shape covers, so that its slopes and curves, which a region
/// knows only in whole pixels, look smooth: along each step of the outline the cover falls from full to none
/// over the length of the step. Straight sides and right angles stay sharp. Nothing outside of the region is
/// covered.
/// @returns the cover of the region's bounding rectangle, Format_Alpha8
QImage coverOf(const QRegion& shape);

/// Lies over everything in a window that the system composes by its pixels, and softens the shape's edge in
/// what has been painted under it.
class ShapeEdge : public QWidget
{
    Q_OBJECT
public:
    explicit ShapeEdge(QWidget* area);
    /// @param shape in the area's coordinates; an empty one: there is no edge
    void setShape(const QRegion& shape);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QRegion m_shape;
    QImage m_cover;
};

} // namespace skin
