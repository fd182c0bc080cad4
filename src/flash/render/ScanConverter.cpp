#include "flash/render/ScanConverter.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace flash::render
{
namespace
{

constexpr int kBits = ScanConverter::kSubpixelBits;
constexpr int kOne = ScanConverter::kSubpixels;
constexpr int kMask = kOne - 1;
constexpr std::size_t kMostCells = std::size_t{1} << 20;
constexpr std::size_t kInsertionSortLimit = 24;

// A whole pixel in the unit of Cell::area.
constexpr std::int32_t kFullArea = 2 * kOne * kOne;

// Farther out than any surface, and near enough for products of two to keep their precision.
double bounded(double value)
{
    constexpr double kFar = 1e9;
    if (!(value > -kFar)) return -kFar; // NaN too
    return value < kFar ? value : kFar;
}

// The part of a pixel that is inside, 0..kFullArea.
std::int32_t insideArea(std::int32_t area, FillRule rule)
{
    area = std::abs(area);
    if (rule == FillRule::NonZero) return std::min(area, kFullArea);
    area &= 2 * kFullArea - 1;
    return area > kFullArea ? 2 * kFullArea - area : area;
}

std::uint32_t toCoverage(std::int32_t area) { return static_cast<std::uint32_t>(area + kOne) >> (kBits + 1); }

} // namespace

void ScanConverter::begin(const IntRect& clip, Coverage coverage)
{
    m_clip = clip;
    m_coverage = coverage;
    m_overfull = false;
    m_pair = 0;
    m_pairs.clear();
    m_cells.clear();
    m_cells.emplace_back();
    const auto rows = static_cast<std::size_t>(clip.height());
    if (m_firstRow <= m_lastRow) {
        // Left over when a conversion was given up.
        const auto last = std::min(m_heads.size(), static_cast<std::size_t>(m_lastRow) + 1);
        std::fill(m_heads.begin() + m_firstRow, m_heads.begin() + static_cast<std::ptrdiff_t>(last), 0);
    }
    if (m_heads.size() < rows) m_heads.resize(rows);
    m_firstRow = clip.height();
    m_lastRow = -1;
}

void ScanConverter::setStyles(std::uint32_t left, std::uint32_t right)
{
    if (!m_pairs.empty() && m_pairs[m_pair].left == left && m_pairs[m_pair].right == right) return;
    m_pair = static_cast<std::uint32_t>(m_pairs.size());
    m_pairs.push_back({left, right});
}

inline void ScanConverter::addCell(int x, int y, int cover, int area)
{
    std::uint32_t& head = m_heads[static_cast<std::size_t>(y)];
    Cell& first = m_cells[head];
    if (head != 0 && first.x == x && first.pair == m_pair) {
        first.cover += cover;
        first.area += area;
        return;
    }
    if (m_cells.size() >= kMostCells) {
        m_overfull = true;
        return;
    }
    const auto index = static_cast<std::uint32_t>(m_cells.size());
    m_cells.push_back({x, m_pair, cover, area, head});
    head = index;
}

// The part of a line within row y: from (x0, fy0) to (x1, fy1), x in 1/256 pixel, fy within the row.
inline void ScanConverter::rowPiece(int y, int x0, int fy0, int x1, int fy1)
{
    const int height = fy1 - fy0;
    if (height == 0) return;
    int column = x0 >> kBits;
    const int lastColumn = x1 >> kBits;
    if (column == lastColumn) {
        addCell(column, y, height, ((x0 & kMask) + (x1 & kMask)) * height);
        return;
    }
    // Heights at the borders of the columns follow from the slope; what rounding leaves goes to the last one.
    const int step = x1 > x0 ? 1 : -1;
    const float slope = static_cast<float>(height) / static_cast<float>(std::abs(x1 - x0));
    const int leaveAt = step > 0 ? kOne : 0;
    const int enterAt = kOne - leaveAt;
    int done = 0;
    int enteredAt = x0 & kMask;
    auto travelled = static_cast<float>(std::abs(leaveAt - enteredAt));
    while (column != lastColumn) {
        const int reached = static_cast<int>(travelled * slope);
        const int part = reached - done;
        addCell(column, y, part, (enteredAt + leaveAt) * part);
        done = reached;
        enteredAt = enterAt;
        travelled += kOne;
        column += step;
    }
    const int part = height - done;
    addCell(column, y, part, (enteredAt + (x1 & kMask)) * part);
}

void ScanConverter::lineSampled(int x0, int y0, int x1, int y1)
{
    int cover = kOne;
    if (y0 > y1) {
        std::swap(x0, x1);
        std::swap(y0, y1);
        cover = -kOne;
    }
    // Rows whose centre lies in [y0, y1).
    const int firstRow = (y0 + kOne / 2 - 1) >> kBits;
    const int lastRow = ((y1 + kOne / 2 - 1) >> kBits) - 1;
    if (firstRow > lastRow) return;
    m_firstRow = std::min(m_firstRow, firstRow);
    m_lastRow = std::max(m_lastRow, lastRow);
    const double slope = static_cast<double>(x1 - x0) / (y1 - y0);
    double x = x0 + slope * (firstRow * kOne + kOne / 2 - y0);
    const int columns = m_clip.width();
    for (int row = firstRow; row <= lastRow; ++row, x += slope * kOne) {
        // The first pixel whose centre is not left of the line.
        const int column = (static_cast<int>(std::ceil(x)) + kOne / 2 - 1) >> kBits;
        if (column < columns) addCell(std::max(column, 0), row, cover, 0);
    }
}

void ScanConverter::lineInside(int x0, int y0, int x1, int y1)
{
    if (y0 == y1) return;
    if (m_coverage == Coverage::Sampled) {
        lineSampled(x0, y0, x1, y1);
        return;
    }
    int row = y0 >> kBits;
    const int lastRow = y1 >> kBits;
    if (row == lastRow) {
        m_firstRow = std::min(m_firstRow, row);
        m_lastRow = std::max(m_lastRow, row);
        rowPiece(row, x0, y0 & kMask, x1, y1 & kMask);
        return;
    }
    const int fy0 = y0 & kMask, fy1 = y1 & kMask;
    const int step = y1 > y0 ? 1 : -1;
    const int leaveAt = step > 0 ? kOne : 0;
    const int enterAt = kOne - leaveAt;
    // A line that ends exactly on the upper border of a row has no part of it.
    m_firstRow = std::min(m_firstRow, std::min(row, lastRow));
    m_lastRow = std::max(m_lastRow, ((y1 > y0 ? y1 : y0) - 1) >> kBits);
    if (x0 == x1) {
        const int column = x0 >> kBits;
        const int twice = 2 * (x0 & kMask);
        if (leaveAt != fy0) addCell(column, row, leaveAt - fy0, twice * (leaveAt - fy0));
        const int whole = leaveAt - enterAt;
        for (row += step; row != lastRow; row += step) addCell(column, row, whole, twice * whole);
        if (fy1 != enterAt) addCell(column, row, fy1 - enterAt, twice * (fy1 - enterAt));
        return;
    }
    // x at the borders of the rows, in 32.32 fixed point: exact enough for any line within a clip.
    constexpr double kFraction = 4294967296.0;
    const double slope = static_cast<double>(x1 - x0) / std::abs(y1 - y0);
    const auto slopeOfRow = static_cast<std::int64_t>(slope * kOne * kFraction);
    std::int64_t x = (static_cast<std::int64_t>(x0) << 32) +
                     static_cast<std::int64_t>(slope * std::abs(leaveAt - fy0) * kFraction);
    int xRow = static_cast<int>(x >> 32);
    rowPiece(row, x0, fy0, xRow, leaveAt);
    for (row += step; row != lastRow; row += step) {
        x += slopeOfRow;
        const int xNext = static_cast<int>(x >> 32);
        rowPiece(row, xRow, enterAt, xNext, leaveAt);
        xRow = xNext;
    }
    rowPiece(row, xRow, enterAt, x1, fy1);
}

void ScanConverter::line(double x0, double y0, double x1, double y1)
{
    x0 = bounded(x0) - m_clip.left;
    x1 = bounded(x1) - m_clip.left;
    y0 = bounded(y0) - m_clip.top;
    y1 = bounded(y1) - m_clip.top;
    const double height = m_clip.height();
    if ((y0 <= 0 && y1 <= 0) || (y0 >= height && y1 >= height)) return;
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

// Copies the row's cells and sorts them by x. They come nearly sorted in either direction, and few.
void ScanConverter::gatherRow(std::uint32_t head)
{
    m_row.clear();
    for (std::uint32_t i = head; i != 0; i = m_cells[i].next) m_row.push_back(m_cells[i]);
    if (m_row.size() > kInsertionSortLimit) {
        std::ranges::sort(m_row, {}, &Cell::x);
        return;
    }
    for (std::size_t i = 1; i < m_row.size(); ++i) {
        const Cell cell = m_row[i];
        std::size_t j = i;
        for (; j > 0 && m_row[j - 1].x > cell.x; --j) m_row[j] = m_row[j - 1];
        m_row[j] = cell;
    }
}

inline void ScanConverter::activate(std::uint32_t style, std::int32_t cover, std::int32_t area)
{
    if (style == 0) return;
    std::size_t i = 0;
    for (; i < m_active.size() && m_active[i].style >= style; ++i) {
        if (m_active[i].style != style) continue;
        m_active[i].cover += cover;
        m_active[i].area += area;
        return;
    }
    m_active.insert(m_active.begin() + static_cast<std::ptrdiff_t>(i), {style, cover, area});
}

// `count` pixels with what the active styles have at the moment.
inline void ScanConverter::emit(int x, int count, FillRule rule)
{
    // Rounding the running sum, not each part, keeps a full pixel at exactly 256.
    std::int32_t sum = 0;
    std::uint32_t given = 0;
    for (const Active& active : m_active) {
        const std::int32_t part = insideArea(active.cover * (2 * kOne) - active.area, rule);
        sum = std::min(sum + part, kFullArea);
        const std::uint32_t total = toCoverage(sum);
        if (total != given) m_spans.push_back({m_clip.left + x, count, active.style, total - given});
        given = total;
    }
}

void ScanConverter::sweepRow(FillRule rule)
{
    const int width = m_clip.width();
    m_active.clear();
    m_spans.clear();
    for (std::size_t i = 0; i < m_row.size();) {
        const int x = m_row[i].x;
        if (x >= width) break;
        for (; i < m_row.size() && m_row[i].x == x; ++i) {
            const Cell& cell = m_row[i];
            const StylePair& pair = m_pairs[cell.pair];
            activate(pair.right, cell.cover, cell.area);
            activate(pair.left, -cell.cover, -cell.area);
        }
        emit(x, 1, rule);
        std::erase_if(m_active, [](Active& active) {
            active.area = 0;
            return active.cover == 0;
        });
        const int next = i < m_row.size() ? std::min(m_row[i].x, width) : width;
        if (!m_active.empty() && next > x + 1) emit(x + 1, next - x - 1, rule);
    }
}

void ScanConverter::sweep(FillRule rule, Sink& sink)
{
    for (int row = m_firstRow; row <= m_lastRow; ++row) {
        std::uint32_t& head = m_heads[static_cast<std::size_t>(row)];
        if (head == 0) continue;
        gatherRow(head);
        head = 0;
        sweepRow(rule);
        if (!m_spans.empty()) sink.row(m_clip.top + row, m_spans);
    }
    m_firstRow = m_clip.height();
    m_lastRow = -1;
}

} // namespace flash::render
