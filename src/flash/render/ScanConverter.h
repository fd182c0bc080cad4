#pragma once

#include "flash/render/DenseCells.h"
#include "flash/render/Spans.h"
#include "flash/render/SparseCells.h"
#include "flash/render/Surface.h"

#include <cstdint>

namespace flash::render
{

/// Exact: each pixel knows how much of it is covered. Sampled: it is covered or not, as its centre is. Grid4
/// and Grid2: points lie on quarters or halves of pixels, and so many samples each way tell how much is
/// covered; the genuine player smooths edges like that.
enum class Coverage : std::uint8_t { Exact, Grid4, Grid2, Sampled };

/// Steps of the grid that points lie on, to a pixel; 0 where they lie anywhere.
constexpr int gridSteps(Coverage coverage)
{
    return coverage == Coverage::Grid4 ? 4 : coverage == Coverage::Grid2 ? 2 : 0;
}

/// Turns lines into coverage, for all styles of a layer in one sweep: each line knows the style on either
/// side, and where styles meet within a pixel their coverages add up to 256, so that no seam shows.
///
/// Where styles overlap, which happens in shapes that were not drawn by the authoring tool, the one with the
/// higher number lies on top.
class ScanConverter
{
public:
    /// Starts over.
    /// @param clip   lines are needed for these pixels only
    /// @param styles the highest style number
    /// @param wholeHeight of what the clip is a band of, if it is one: the way of collecting depends on that
    void begin(const IntRect& clip, Coverage coverage, std::uint32_t styles, int wholeHeight = 0);

    /// Styles of the lines that follow, 0 for none. Which one is called left does not matter, as long as it
    /// is always the same side with regard to the direction of travel.
    void setStyles(std::uint32_t left, std::uint32_t right);

    /// A line in device pixels. Any numbers: what is not finite ends up far away.
    void line(double x0, double y0, double x1, double y1);
    /// The same for lines known to lie within the clip, in 1/256 pixel relative to its upper left corner.
    void lineInside(int x0, int y0, int x1, int y1);

    /// For Coverage::Grid4 and Grid2, instead of the others: between points of the grid, in its steps from
    /// the upper left corner of the clip, within 2^29.
    void lineOnGrid(int x0, int y0, int x1, int y1);

    /// Too many cells: what was added since begin() is incomplete. The caller divides the clip and starts
    /// over.
    [[nodiscard]] bool isOverfull() const { return m_kind == Kind::Sparse && m_sparse.isOverfull(); }

    /// Goes over all rows that lines have touched.
    void sweep(FillRule rule, SpanSink& sink);

private:
    // Where lines are collected. Quarters: densely, for Coverage::Grid4.
    enum class Kind { Sparse, Dense, Quarters };
    template <class Cells>
    void rowPiece(Cells& cells, int y, int x0, int fy0, int x1, int fy1, int sign, float slope);
    template <class Cells>
    void lineExact(Cells& cells, int x0, int y0, int x1, int y1);
    template <class Cells>
    void lineSampled(Cells& cells, double x0, double y0, double x1, double y1);
    template <int kStepBits, class Cells>
    void lineCounted(Cells& cells, int x0, int y0, int x1, int y1);
    void clippedLine(double x0, double y0, double x1, double y1);

    IntRect m_clip;
    Coverage m_coverage = Coverage::Exact;
    Kind m_kind = Kind::Sparse;
    int m_firstRow = 0, m_lastRow = -1; ///< rows touched, relative to the clip
    SparseCells m_sparse;
    DenseCells<std::int32_t> m_dense;
    DenseCells<std::int16_t> m_quarters;
};

} // namespace flash::render
