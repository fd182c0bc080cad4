#pragma once

#include "swfc/output/Shape.h"

namespace swfc::output
{

/// Writes the records of one shape: style changes and edges. Positions are rounded to twips as absolute
/// values, so that errors do not add up along a path.
class EdgeWriter
{
public:
    EdgeWriter(BitWriter& out, int fillBits, int lineBits)
        : m_out(out), m_fillBits(fillBits), m_lineBits(lineBits)
    {
    }
    void setStyleBits(int fillBits, int lineBits)
    {
        m_fillBits = fillBits;
        m_lineBits = lineBits;
        m_left = m_right = m_line = 0;
    }
    /// Announces new styles, which the caller writes next; then setStyleBits().
    void beginNewStyles();
    void styles(std::size_t left, std::size_t right, std::size_t line)
    {
        m_wantLeft = left;
        m_wantRight = right;
        m_wantLine = line;
    }
    /// A contour that has a fill is closed by an edge; that edge is drawn without a line unless it was asked
    /// for.
    void contour(const Contour& contour);
    /// As contour(), for morphs: every edge in order, none added, none left out.
    void plainContour(const Contour& contour);
    void end();

private:
    void styleChange(const Point* moveTo);
    void edge(const Edge& edge);
    void straightPiece(std::int32_t dx, std::int32_t dy);

    BitWriter& m_out;
    int m_fillBits, m_lineBits;
    std::size_t m_left = 0, m_right = 0, m_line = 0;
    std::size_t m_wantLeft = 0, m_wantRight = 0, m_wantLine = 0;
    std::int32_t m_x = 0, m_y = 0;
    bool m_keepEmptyEdges = false;
};

} // namespace swfc::output
