#include "skin/ShapeEdge.h"

#include <QPainter>

#include <algorithm>
#include <vector>

namespace skin
{
namespace
{

constexpr int kFull = 255;

/// A shape's pixels with a border of empty ones around them, which spares every look at a neighbour a check.
class Bits
{
public:
    explicit Bits(const QRegion& shape)
        : m_origin(shape.boundingRect().topLeft()), m_width(shape.boundingRect().width()),
          m_height(shape.boundingRect().height()), m_stride(m_width + 2),
          m_bits(static_cast<std::size_t>(m_stride) * static_cast<std::size_t>(m_height + 2))
    {
        for (const QRect& rect : shape)
            for (int y = rect.top(); y <= rect.bottom(); ++y)
                std::fill_n(m_bits.begin() + index(rect.left() - m_origin.x(), y - m_origin.y()),
                            rect.width(), true);
    }
    [[nodiscard]] bool at(int x, int y) const { return m_bits[static_cast<std::size_t>(index(x, y))]; }
    [[nodiscard]] int width() const { return m_width; }
    [[nodiscard]] int height() const { return m_height; }

private:
    [[nodiscard]] std::ptrdiff_t index(int x, int y) const
    {
        return static_cast<std::ptrdiff_t>(y + 1) * m_stride + x + 1;
    }
    QPoint m_origin;
    int m_width, m_height, m_stride;
    std::vector<bool> m_bits;
};

/// What happens to the outline where a run of edge pixels ends.
enum class End { Straight, Falls, Rises };

/// Walks the runs along which the outline passes one side of a row and softens them.
/// @param at     whether (along, across) belongs to the shape
/// @param soften called with (along, across, cover)
/// @param side   -1: the outline passes before the row, 1: behind it
template <class At, class Soften>
void softenRuns(int length, int across, int side, At at, Soften soften)
{
    const auto isEdge = [&](int i) { return at(i, across) && !at(i, across + side); };
    for (int i = 0; i < length;) {
        if (!isEdge(i)) {
            ++i;
            continue;
        }
        const int start = i;
        while (i < length && isEdge(i)) ++i;
        const int run = i - start;
        // Only steps of a single pixel belong to a slope; higher ones are corners.
        const auto endAt = [&](int beyond) {
            if (at(beyond, across)) return at(beyond, across + 2 * side) ? End::Straight : End::Rises;
            return at(beyond, across - side) ? End::Falls : End::Straight;
        };
        const End first = endAt(start - 1);
        const End last = endAt(i);
        // A ramp is not much longer than the next step of its slope, lest a straight side fade where a curve
        // ends.
        const auto rampAt = [&](int beyond, int direction, bool wholeRun) {
            int next = 0;
            for (int position = beyond; at(position, across - side) && !at(position, across) && next < run;
                 position += direction)
                ++next;
            return std::max(1.0, std::min<double>(2 * next, wholeRun ? run : run / 2.0));
        };
        const double rampFirst = first == End::Falls ? rampAt(start - 1, -1, last == End::Rises) : 0;
        const double rampLast = last == End::Falls ? rampAt(i, 1, first == End::Rises) : 0;
        for (int k = 0; k < run; ++k) {
            double cover = 1;
            if (rampFirst > 0) cover = std::min(cover, (k + 0.5) / rampFirst);
            if (rampLast > 0) cover = std::min(cover, (run - k - 0.5) / rampLast);
            if (cover < 1) soften(start + k, across, cover);
        }
    }
}

} // namespace

QImage coverOf(const QRegion& shape)
{
    const Bits bits(shape);
    QImage cover(bits.width(), bits.height(), QImage::Format_Alpha8);
    for (int y = 0; y < bits.height(); ++y)
        for (int x = 0; x < bits.width(); ++x) cover.scanLine(y)[x] = bits.at(x, y) ? kFull : 0;
    const auto lower = [&cover](int x, int y, double value) {
        uchar& pixel = cover.scanLine(y)[x];
        pixel = std::min(pixel, static_cast<uchar>(std::max(1.0, value * kFull + 0.5))); // 0 is outside
    };
    const auto at = [&bits](int x, int y) {
        return x >= -1 && y >= -1 && x <= bits.width() && y <= bits.height() && bits.at(x, y);
    };
    for (const int side : {-1, 1}) {
        for (int y = 0; y < bits.height(); ++y) softenRuns(bits.width(), y, side, at, lower);
        for (int x = 0; x < bits.width(); ++x)
            softenRuns(
                bits.height(), x, side, [&at](int along, int across) { return at(across, along); },
                [&lower](int along, int across, double value) { lower(across, along, value); });
    }
    return cover;
}

ShapeEdge::ShapeEdge(QWidget* area) : QWidget(area)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAttribute(Qt::WA_NoSystemBackground);
    hide();
}

void ShapeEdge::setShape(const QRegion& shape)
{
    raise();
    if (shape == m_shape) return;
    m_shape = shape;
    setVisible(!shape.isEmpty());
    if (shape.isEmpty()) return;
    setGeometry(parentWidget()->rect());
    m_cover = coverOf(shape);
    // Only over the pixels that it changes, so that what moves elsewhere is not painted twice.
    const QRect bounds = shape.boundingRect();
    QRegion soft;
    for (int y = 0; y < m_cover.height(); ++y) {
        const uchar* row = m_cover.constScanLine(y);
        for (int x = 0; x < m_cover.width(); ++x)
            if (row[x] != 0 && row[x] != kFull) soft += QRect(bounds.x() + x, bounds.y() + y, 1, 1);
    }
    setVisible(!soft.isEmpty());
    setMask(soft);
    update();
}

void ShapeEdge::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    painter.drawImage(m_shape.boundingRect().topLeft(), m_cover);
}

} // namespace skin
