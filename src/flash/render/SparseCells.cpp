#include "flash/render/SparseCells.h"

namespace flash::render
{
namespace
{

constexpr std::size_t kMaxCells = std::size_t{1} << 20;
constexpr std::size_t kInsertionSortLimit = 24;

} // namespace

void SparseCells::begin(int width, int height)
{
    m_width = width;
    m_overfull = false;
    m_pair = 0;
    m_pairs.clear();
    m_cells.clear();
    m_cells.emplace_back();
    if (m_heads.size() < static_cast<std::size_t>(height)) m_heads.resize(static_cast<std::size_t>(height));
}

void SparseCells::drop(int firstRow, int lastRow)
{
    for (int row = firstRow; row <= lastRow; ++row) m_heads[static_cast<std::size_t>(row)] = 0;
}

void SparseCells::setStyles(std::uint32_t left, std::uint32_t right)
{
    if (!m_pairs.empty() && m_pairs[m_pair].left == left && m_pairs[m_pair].right == right) return;
    m_pair = static_cast<std::uint32_t>(m_pairs.size());
    m_pairs.push_back({left, right});
}

void SparseCells::append(std::uint32_t& head, const Cell& cell)
{
    if (m_cells.size() >= kMaxCells) {
        m_overfull = true;
        return;
    }
    head = static_cast<std::uint32_t>(m_cells.size());
    m_cells.push_back(cell);
}

// Copies the row's cells and sorts them by x. They come nearly sorted in either direction, and few.
void SparseCells::gatherRow(std::uint32_t head)
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

void SparseCells::activate(std::uint32_t style, std::int32_t cover, std::int32_t area)
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
void SparseCells::emit(int x, int count, FillRule rule)
{
    // Rounding the running sum, not each part, keeps a full pixel at exactly 256.
    std::int32_t sum = 0;
    std::uint32_t given = 0;
    for (const Active& active : m_active) {
        const std::int32_t part = insideArea(active.cover * (2 * kSubpixels) - active.area, rule);
        sum = std::min(sum + part, kFullArea);
        const std::uint32_t total = toCoverage(sum);
        if (total != given) m_spans.push_back({x, count, active.style, total - given});
        given = total;
    }
}

void SparseCells::sweepRow(int row, int left, int y, FillRule rule, SpanSink& sink)
{
    std::uint32_t& head = m_heads[static_cast<std::size_t>(row)];
    if (head == 0) return;
    gatherRow(head);
    head = 0;
    m_active.clear();
    m_spans.clear();
    for (std::size_t i = 0; i < m_row.size();) {
        const int x = m_row[i].x;
        if (x >= m_width) break;
        for (; i < m_row.size() && m_row[i].x == x; ++i) {
            const Cell& cell = m_row[i];
            const StylePair& pair = m_pairs[cell.pair];
            activate(pair.right, cell.cover, cell.area);
            activate(pair.left, -cell.cover, -cell.area);
        }
        emit(left + x, 1, rule);
        std::erase_if(m_active, [](Active& active) {
            active.area = 0;
            return active.cover == 0;
        });
        const int next = i < m_row.size() ? std::min(m_row[i].x, m_width) : m_width;
        if (!m_active.empty() && next > x + 1) emit(left + x + 1, next - x - 1, rule);
    }
    if (!m_spans.empty()) sink.row(y, m_spans);
}

} // namespace flash::render
