#pragma once

#include "flash/render/Spans.h"

#include <vector>

namespace flash::render
{

/// Collects what lines do to pixels in lists, one for each row: for any number of styles, and for surfaces so
/// large that keeping a number for every pixel would not pay.
class SparseCells
{
public:
    void begin(int width, int height);
    void setStyles(std::uint32_t left, std::uint32_t right);
    /// A row to add to.
    class Row
    {
    public:
        /// Something crosses `cover` of the height of the pixel, with twice that `area` between itself and
        /// the pixel's left border. All pixels on the right are changed by the cover.
        void add(int x, int cover, int area)
        {
            Cell& first = m_cells.m_cells[m_head];
            if (m_head != 0 && first.x == x && first.pair == m_cells.m_pair) {
                first.cover += cover;
                first.area += area;
                return;
            }
            m_cells.append(m_head, {x, m_cells.m_pair, cover, area, m_head});
        }

    private:
        friend class SparseCells;
        Row(SparseCells& cells, std::uint32_t& head) : m_cells(cells), m_head(head) {}
        SparseCells& m_cells;
        std::uint32_t& m_head;
    };
    /// @param first,last columns that will be added to
    Row row(int y, [[maybe_unused]] int first, [[maybe_unused]] int last)
    {
        return {*this, m_heads[static_cast<std::size_t>(y)]};
    }
    [[nodiscard]] bool isOverfull() const { return m_overfull; }
    /// Tells the sink about a row and forgets it.
    void sweepRow(int row, int left, int y, FillRule rule, SpanSink& sink);
    /// Forgets rows without telling.
    void drop(int firstRow, int lastRow);

private:
    struct Cell {
        std::int32_t x = 0;
        std::uint32_t pair = 0; ///< index into m_pairs
        std::int32_t cover = 0, area = 0;
        std::uint32_t next = 0; ///< the row's next cell
    };
    struct StylePair {
        std::uint32_t left = 0, right = 0;
    };
    // A style that has something in the row at hand.
    struct Active {
        std::uint32_t style = 0;
        std::int32_t cover = 0, area = 0;
    };
    void append(std::uint32_t& head, const Cell& cell);
    void gatherRow(std::uint32_t head);
    void activate(std::uint32_t style, std::int32_t cover, std::int32_t area);
    void emit(int x, int count, FillRule rule);

    int m_width = 0;
    bool m_overfull = false;
    std::uint32_t m_pair = 0;
    std::vector<StylePair> m_pairs;
    std::vector<Cell> m_cells;          ///< [0] is the end of every list
    std::vector<std::uint32_t> m_heads; ///< first cell of each row; all 0 between conversions
    std::vector<Cell> m_row;            ///< the row's cells by x
    std::vector<Active> m_active;       ///< by falling style
    std::vector<StyleSpan> m_spans;
};

} // namespace flash::render
