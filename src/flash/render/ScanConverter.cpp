#include "flash/render/ScanConverter.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <type_traits>

namespace flash::render
{
namespace
{

constexpr int kBits = kSubpixelBits;
constexpr int kOne = kSubpixels;
constexpr int kMask = kOne - 1;

// Farther out than any surface, and near enough for products of two to keep their precision.
double bounded(double value)
{
    constexpr double kFar = 1e9;
    if (!(value > -kFar)) return -kFar; // NaN too
    return value < kFar ? value : kFar;
}

} // namespace

void ScanConverter::begin(const IntRect& clip, Coverage coverage, std::uint32_t styles, int wholeHeight)
{
    // Left over when a conversion was given up.
    if (m_firstRow <= m_lastRow) m_sparse.drop(m_firstRow, m_lastRow);
    m_clip = clip;
    m_coverage = coverage;
    m_firstRow = clip.height();
    m_lastRow = -1;
    m_kind = Kind::Sparse;
    if (m_dense.suits(clip.width(), std::max(clip.height(), wholeHeight), styles))
        m_kind = coverage == Coverage::Grid4 ? Kind::Quarters : Kind::Dense;
    switch (m_kind) {
    case Kind::Sparse: m_sparse.begin(clip.width(), clip.height()); break;
    case Kind::Dense: m_dense.begin(clip.width(), clip.height(), styles); break;
    case Kind::Quarters: m_quarters.begin(clip.width(), clip.height(), styles); break;
    }
}

void ScanConverter::setStyles(std::uint32_t left, std::uint32_t right)
{
    switch (m_kind) {
    case Kind::Sparse: m_sparse.setStyles(left, right); break;
    case Kind::Dense: m_dense.setStyles(left, right); break;
    case Kind::Quarters: m_quarters.setStyles(left, right); break;
    }
}

// The part of a line within row y: from (x0, fy0) to (x1, fy1), x in 1/256 pixel, fy within the row, fy0 <
// fy1.
// @param sign  1 when the line goes down, -1 when it was turned around to do so
// @param slope of the line, its height by its width, both positive
template <class Cells>
inline void ScanConverter::rowPiece(Cells& cells, int y, int x0, int fy0, int x1, int fy1, int sign,
                                    float slope)
{
    const int height = fy1 - fy0;
    int column = x0 >> kBits;
    const int lastColumn = x1 >> kBits;
    auto row = cells.row(y, std::min(column, lastColumn), std::max(column, lastColumn));
    if (column == lastColumn) {
        row.add(column, sign * height, ((x0 & kMask) + (x1 & kMask)) * sign * height);
        return;
    }
    // Heights at the borders of the columns follow from the slope; what rounding leaves goes to the last one.
    const int step = x1 > x0 ? 1 : -1;
    const int leaveAt = step > 0 ? kOne : 0;
    int done = 0;
    int enteredAt = x0 & kMask;
    auto travelled = static_cast<float>(std::abs(leaveAt - enteredAt));
    while (column != lastColumn) {
        const int reached = std::min(static_cast<int>(travelled * slope), height);
        const int part = sign * (reached - done);
        row.add(column, part, (enteredAt + leaveAt) * part);
        done = reached;
        enteredAt = kOne - leaveAt;
        travelled += kOne;
        column += step;
    }
    const int part = sign * (height - done);
    row.add(column, part, (enteredAt + (x1 & kMask)) * part);
}

// In pixels and unrounded: an edge of a movie often runs right through the centres of pixels, where a
// subpixel decides. A centre on an upper or left edge is inside.
template <class Cells>
void ScanConverter::lineSampled(Cells& cells, double x0, double y0, double x1, double y1)
{
    int cover = kOne;
    if (y0 > y1) {
        std::swap(x0, x1);
        std::swap(y0, y1);
        cover = -kOne;
    }
    // Rows whose centre lies in [y0, y1).
    const int firstRow = std::max(static_cast<int>(std::ceil(y0 - 0.5)), 0);
    const int lastRow = std::min(static_cast<int>(std::ceil(y1 - 0.5)), m_clip.height()) - 1;
    if (firstRow > lastRow) return;
    m_firstRow = std::min(m_firstRow, firstRow);
    m_lastRow = std::max(m_lastRow, lastRow);
    const double slope = (x1 - x0) / (y1 - y0);
    const int columns = m_clip.width();
    for (int row = firstRow; row <= lastRow; ++row) {
        // The first pixel whose centre is not left of the line.
        const double column = std::ceil(x0 + slope * (row + 0.5 - y0) - 0.5);
        if (!(column < columns)) continue;
        const int visible = std::max(static_cast<int>(std::max(column, 0.0)), 0);
        cells.row(row, visible, visible).add(visible, cover, 0);
    }
}

template <class Cells>
void ScanConverter::lineExact(Cells& cells, int x0, int y0, int x1, int y1)
{
    int sign = 1;
    if (y0 > y1) {
        std::swap(x0, x1);
        std::swap(y0, y1);
        sign = -1;
    }
    int row = y0 >> kBits;
    const int lastRow = (y1 - 1) >> kBits; // a line that ends on the border of a row has no part of it
    m_firstRow = std::min(m_firstRow, row);
    m_lastRow = std::max(m_lastRow, lastRow);
    int fy = y0 & kMask;
    const int fyLast = y1 - (lastRow << kBits);
    if (x0 == x1) {
        const int column = x0 >> kBits;
        const int twice = 2 * sign * (x0 & kMask);
        for (; row <= lastRow; ++row, fy = 0) {
            const int height = (row == lastRow ? fyLast : kOne) - fy;
            cells.row(row, column, column).add(column, sign * height, twice * height);
        }
        return;
    }
    // Single precision holds offsets within any clip to a fraction of a subpixel.
    const auto width = static_cast<float>(x1 - x0), height = static_cast<float>(y1 - y0);
    const float across = width / height, down = std::abs(height / width);
    int x = x0;
    for (; row < lastRow; ++row, fy = 0) {
        const int xNext = x0 + static_cast<int>(across * static_cast<float>(((row + 1) << kBits) - y0));
        rowPiece(cells, row, x, fy, xNext, kOne, sign, down);
        x = xNext;
    }
    rowPiece(cells, row, x, fy, x1, fyLast, sign, down);
}

// Rows of samples lie on the steps of the grid, columns between them.
template <int kStepBits, class Cells>
void ScanConverter::lineCounted(Cells& cells, int x0, int y0, int x1, int y1)
{
    if (y0 == y1) return;
    int sign = 1;
    if (y0 > y1) {
        std::swap(x0, x1);
        std::swap(y0, y1);
        sign = -1;
    }
    constexpr int kSteps = 1 << kStepBits;
    const int first = std::max(y0, 0), last = std::min(y1, m_clip.height() << kStepBits) - 1;
    const int width = m_clip.width() << kStepBits;
    if (first > last || (x0 >= width && x1 >= width)) return;
    m_firstRow = std::min(m_firstRow, first >> kStepBits);
    m_lastRow = std::max(m_lastRow, last >> kStepBits);
    constexpr int kFraction = CountedLine::kFraction;
    constexpr std::int64_t kHalf = (std::int64_t{1} << (kFraction - 1)) - 1;
    const std::int64_t slope = (std::int64_t{x1 - x0} << kFraction) / (y1 - y0);
    std::int64_t x = (std::int64_t{x0} << kFraction) + slope * (first - y0) + kHalf;
    constexpr int kHeight = kOne / kSteps;
    constexpr int kStepArea = 2 * kHeight * kHeight;
    const bool inside = std::min(x0, x1) >= 0 && std::max(x0, x1) < width;
    if constexpr (!std::is_same_v<Cells, SparseCells>) {
        if (inside) {
            cells.template addCounted<kStepBits>({first, last, x, slope, sign});
            return;
        }
    }
    for (int y = first; y <= last;) {
        // What the samples of a row of pixels have in the same pixel is added at once.
        const int row = y >> kStepBits, end = std::min(last + 1, (row + 1) << kStepBits);
        if (inside) {
            const int count = end - y;
            const int from = static_cast<int>(x >> kFraction) >> kStepBits;
            const int to = static_cast<int>((x + slope * (count - 1)) >> kFraction) >> kStepBits;
            auto cell = cells.row(row, std::min(from, to), std::max(from, to));
            if (from == to) {
                int steps = 0;
                for (; y < end; ++y, x += slope) steps += static_cast<int>(x >> kFraction) & (kSteps - 1);
                cell.add(from, sign * count * kHeight, sign * steps * kStepArea);
            } else {
                for (; y < end; ++y, x += slope) {
                    const int at = static_cast<int>(x >> kFraction);
                    cell.add(at >> kStepBits, sign * kHeight, sign * (at & (kSteps - 1)) * kStepArea);
                }
            }
            continue;
        }
        int column = -1, rows = 0, steps = 0;
        const auto flush = [&] {
            if (rows != 0)
                cells.row(row, column, column).add(column, sign * rows * kHeight, sign * steps * kStepArea);
        };
        for (; y < end; ++y, x += slope) {
            const std::int64_t at = x >> kFraction;
            if (at >= width) continue;
            const int visible = std::max(static_cast<int>(at), 0);
            if (visible >> kStepBits != column) {
                flush();
                column = visible >> kStepBits;
                rows = steps = 0;
            }
            ++rows;
            steps += visible & (kSteps - 1);
        }
        flush();
    }
}

void ScanConverter::lineOnGrid(int x0, int y0, int x1, int y1)
{
    if (m_coverage == Coverage::Grid4) {
        if (m_kind == Kind::Quarters)
            lineCounted<2>(m_quarters, x0, y0, x1, y1);
        else
            lineCounted<2>(m_sparse, x0, y0, x1, y1);
        return;
    }
    if (m_kind == Kind::Dense)
        lineCounted<1>(m_dense, x0, y0, x1, y1);
    else
        lineCounted<1>(m_sparse, x0, y0, x1, y1);
}

void ScanConverter::lineInside(int x0, int y0, int x1, int y1)
{
    if (y0 == y1) return;
    if (m_coverage == Coverage::Sampled) {
        line(static_cast<double>(x0) / kOne + m_clip.left, static_cast<double>(y0) / kOne + m_clip.top,
             static_cast<double>(x1) / kOne + m_clip.left, static_cast<double>(y1) / kOne + m_clip.top);
        return;
    }
    if (m_kind == Kind::Dense)
        lineExact(m_dense, x0, y0, x1, y1);
    else
        lineExact(m_sparse, x0, y0, x1, y1);
}

void ScanConverter::line(double x0, double y0, double x1, double y1)
{
    x0 = bounded(x0) - m_clip.left;
    x1 = bounded(x1) - m_clip.left;
    y0 = bounded(y0) - m_clip.top;
    y1 = bounded(y1) - m_clip.top;
    const double height = m_clip.height();
    if ((y0 <= 0 && y1 <= 0) || (y0 >= height && y1 >= height)) return;
    if (m_coverage == Coverage::Sampled) {
        // Ends on the grid of subpixels, so that what sums of small numbers leave does not decide about
        // centres.
        const auto snapped = [](double value) { return std::nearbyint(value * kOne) / kOne; };
        if (m_kind == Kind::Dense)
            lineSampled(m_dense, snapped(x0), snapped(y0), snapped(x1), snapped(y1));
        else
            lineSampled(m_sparse, snapped(x0), snapped(y0), snapped(x1), snapped(y1));
        return;
    }
    const auto cutAt = [&](double y) { return x0 + (y - y0) * ((x1 - x0) / (y1 - y0)); };
    double ax = x0, ay = y0, bx = x1, by = y1;
    if (ay < 0 || ay > height) {
        ay = std::clamp(ay, 0.0, height);
        ax = cutAt(ay);
    }
    if (by < 0 || by > height) {
        by = std::clamp(by, 0.0, height);
        bx = cutAt(by);
    }
    clippedLine(ax, ay, bx, by);
}

// Within the rows of the clip already. What lies left of it is moved onto its left border, where it still
// opens and closes what is on the right; what lies right of it has no effect.
void ScanConverter::clippedLine(double x0, double y0, double x1, double y1)
{
    const double width = m_clip.width();
    const auto fixed = [](double value) { return static_cast<int>(std::lrint(value * kOne)); };
    const auto cutAt = [&](double x) {
        return std::clamp(y0 + (x - x0) * ((y1 - y0) / (x1 - x0)), std::min(y0, y1), std::max(y0, y1));
    };
    const bool leftOut = x0 < 0 || x1 < 0;
    const bool rightOut = x0 > width || x1 > width;
    if (!leftOut && !rightOut) {
        lineInside(fixed(x0), fixed(y0), fixed(x1), fixed(y1));
        return;
    }
    if (x0 >= width && x1 >= width) return;
    if (x0 <= 0 && x1 <= 0) {
        lineInside(0, fixed(y0), 0, fixed(y1));
        return;
    }
    double ax = x0, ay = y0, bx = x1, by = y1;
    if (x0 < 0) {
        ax = 0;
        ay = cutAt(0);
        lineInside(0, fixed(y0), 0, fixed(ay));
    } else if (x0 > width) {
        ax = width;
        ay = cutAt(width);
    }
    if (x1 < 0) {
        bx = 0;
        by = cutAt(0);
    } else if (x1 > width) {
        bx = width;
        by = cutAt(width);
    }
    lineInside(fixed(ax), fixed(ay), fixed(bx), fixed(by));
    if (x1 < 0) lineInside(0, fixed(by), 0, fixed(y1));
}

void ScanConverter::sweep(FillRule rule, SpanSink& sink)
{
    switch (m_kind) {
    case Kind::Sparse:
        for (int row = m_firstRow; row <= m_lastRow; ++row)
            m_sparse.sweepRow(row, m_clip.left, m_clip.top + row, rule, sink);
        break;
    case Kind::Dense: m_dense.sweep(m_firstRow, m_lastRow, m_clip.left, m_clip.top, rule, sink); break;
    case Kind::Quarters: m_quarters.sweep(m_firstRow, m_lastRow, m_clip.left, m_clip.top, rule, sink); break;
    }
    m_firstRow = m_clip.height();
    m_lastRow = -1;
}

} // namespace flash::render
