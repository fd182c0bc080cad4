#pragma once

#include "flash/render/Surface.h"

#include <cstdint>
#include <span>
#include <vector>

namespace flash::render
{

/// Which windings of a style's outline count as inside.
enum class FillRule : std::uint8_t { EvenOdd, NonZero };

/// Exact: each pixel knows how much of it is covered. Sampled: it is covered or not, as its centre is.
enum class Coverage : std::uint8_t { Exact, Sampled };

/// What a sweep reports of one row: `coverage` (1..256) of `count` pixels from `x` on belongs to `style`.
struct StyleSpan {
    int x = 0, count = 0;
    std::uint32_t style = 0;
    std::uint32_t coverage = 0;
};

/// Turns lines into coverage, for all styles of a layer in one sweep: each line knows the style on either
/// side, and where styles meet within a pixel their coverages add up to 256, so that no seam shows.
///
/// Where styles overlap, which happens in shapes that were not drawn by the authoring tool, the one with the
/// higher number lies on top.
class ScanConverter
{
public:
    /// Receives what a row holds, from left to right. Where several styles share pixels, their spans follow
    /// each other with the same `x` and `count`, and their coverages sum up to 256 at most; other spans do
    /// not overlap.
    class Sink
    {
    public:
        virtual ~Sink() = default;
        virtual void row(int y, std::span<const StyleSpan> spans) = 0;
    };

    /// Starts over.
    /// @param clip lines are needed for these pixels only
    void begin(const IntRect& clip, Coverage coverage);

    /// Styles of the lines that follow, 0 for none. Which one is called left does not matter, as long as it
    /// is always the same side with regard to the direction of travel.
    void setStyles(std::uint32_t left, std::uint32_t right);

    /// A line in device pixels. Any numbers: what is not finite ends up far away.
    void line(double x0, double y0, double x1, double y1);
    /// The same for lines known to lie within the clip, in 1/256 pixel relative to its upper left corner.
    void lineInside(int x0, int y0, int x1, int y1);

    /// Too many cells: what was added since begin() is incomplete. The caller divides the clip and starts
    /// over.
    [[nodiscard]] bool isOverfull() const { return m_overfull; }

    /// Goes over all rows that lines have touched.
    void sweep(FillRule rule, Sink& sink);

    static constexpr int kSubpixelBits = 8;
    static constexpr int kSubpixels = 1 << kSubpixelBits;

private:
    // What lines do to a pixel and, through `cover`, to all pixels on its right.
    struct Cell {
        std::int32_t x = 0;
        std::uint32_t pair = 0; ///< index into m_pairs
        std::int32_t cover = 0; ///< height crossed, 1/256 pixel
        std::int32_t area = 0;  ///< twice the area between the lines and the left border, 1/65536 pixel
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

    void addCell(int x, int y, int cover, int area);
    void rowPiece(int y, int x0, int fy0, int x1, int fy1);
    void lineSampled(int x0, int y0, int x1, int y1);
    void clippedLine(double x0, double y0, double x1, double y1);
    void gatherRow(std::uint32_t head);
    void sweepRow(FillRule rule);
    void activate(std::uint32_t style, std::int32_t cover, std::int32_t area);
    void emit(int x, int count, FillRule rule);

    IntRect m_clip;
    Coverage m_coverage = Coverage::Exact;
    bool m_overfull = false;
    std::uint32_t m_pair = 0;
    std::vector<StylePair> m_pairs;
    std::vector<Cell> m_cells;          ///< [0] is the end of every list
    std::vector<std::uint32_t> m_heads; ///< first cell of each row
    int m_firstRow = 0, m_lastRow = -1; ///< rows touched, relative to the clip
    std::vector<Cell> m_row;            ///< the row's cells by x
    std::vector<Active> m_active;       ///< by falling style
    std::vector<StyleSpan> m_spans;     ///< what the row holds, for the sink
};

} // namespace flash::render
