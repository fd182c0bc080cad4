#pragma once

#include "flash/render/CellSums.h"
#include "flash/render/Spans.h"

#include <array>
#include <cstddef>
#include <optional>
#include <vector>

namespace flash::render
{

/// The rows of samples that a line crosses, 2^kStepBits of them to the pixel each way.
struct CountedLine {
    static constexpr int kFraction = 20; ///< bits
    int first = 0, last = 0;             ///< rows of samples
    std::int64_t x = 0, slope = 0;       ///< where the first is crossed, and what each adds; within the row
    int sign = 1;                        ///< 1 when the line goes down
};

/// Collects what lines do to pixels in a number for each pixel and style, from which coverage follows by
/// adding up along the row. Nothing has to be sorted, and pixels are converted side by side; a bit for each
/// group of pixels tells where there is anything at all. For few styles on surfaces of usual size.
/// @tparam Sum the number, see kUnitBits
template <class Sum>
class DenseCells
{
public:
    static constexpr std::uint32_t kMaxStyles = 16;
    /// Whether so many numbers are worth keeping.
    static bool suits(int width, int height, std::uint32_t styles);

    void begin(int width, int height, std::uint32_t styles);
    void setStyles(std::uint32_t left, std::uint32_t right);
    /// A row to add to; see SparseCells::Row.
    class Row
    {
    public:
        void add(int x, int cover, int area)
        {
            area >>= kUnitBits<Sum>;
            const int here = (cover * (2 * kSubpixels) >> kUnitBits<Sum>)-area;
            if (m_right != nullptr) {
                addTo(m_right[x], here);
                addTo(m_right[x + 1], area);
            }
            if (m_left != nullptr) {
                addTo(m_left[x], -here);
                addTo(m_left[x + 1], -area);
            }
        }

    private:
        friend class DenseCells;
        Row(Sum* left, Sum* right) : m_left(left), m_right(right) {}
        Sum* m_left;
        Sum* m_right;
    };
    /// @param first,last columns that will be added to
    Row row(int y, int first, int last)
    {
        const auto index = static_cast<std::size_t>(y);
        m_rowStyles[index] |= m_styleBits;
        // The last column's right neighbour is written to as well.
        mark(m_bits.data() + index * m_wordsOfRow, static_cast<unsigned>(first) / kGroup,
             static_cast<unsigned>(last + 1) / kGroup);
        Sum* sums = m_sums.data() + index * m_rowSize;
        return {m_left == kNone ? nullptr : sums + m_left, m_right == kNone ? nullptr : sums + m_right};
    }
    template <int kStepBits>
    void addCounted(const CountedLine& line);
    [[nodiscard]] bool isOverfull() const { return false; }
    /// Tells the sink about rows and forgets them.
    /// @param left,top where the sink has their first pixel and row 0
    void sweep(int firstRow, int lastRow, int left, int top, FillRule rule, SpanSink& sink);

private:
    static constexpr unsigned kGroup = 8; ///< pixels
    static constexpr std::ptrdiff_t kNone = -1;
    // Evenly covered pixels up to so many are told one by one with their neighbours.
    static constexpr int kShortStretch = 16;
    // A stretch of groups that have their bit set, or of pixels between such.
    struct Stretch {
        int begin = 0, end = 0; ///< pixels
        bool varies = false;
    };
    static void addTo(Sum& sum, int value) { sum = static_cast<Sum>(sum + value); }
    // A running sum as an area.
    static std::int32_t areaOf(std::int32_t sum)
    {
        return static_cast<std::int32_t>(static_cast<std::uint32_t>(sum) << kUnitBits<Sum>);
    }
    static void mark(std::uint64_t* bits, unsigned first, unsigned last)
    {
        if (last < 64)
            *bits |= (std::uint64_t{2} << last) - (std::uint64_t{1} << first);
        else
            markBeyond(bits, first, last);
    }
    /// The same for rows of more than a word.
    [[gnu::noinline]] static void markBeyond(std::uint64_t* bits, unsigned first, unsigned last);
    template <int kStepBits, bool kBothSides>
    void countSides(const CountedLine& line);
    // Inlined by order: a call of something that changes nothing is left out.
    [[gnu::always_inline]] inline void foresee(int row, int left, int y, const PixelGround& ground) const;
    void sweepRow(int row, int left, int y, FillRule rule, SpanSink& sink, const PixelGround& ground);
    void paintOne(Sum* sums, FillRule rule, std::uint32_t color, std::uint32_t* to);
    void layOne(Sum* sums, FillRule rule, const Paint& paint, int left, int y, std::uint32_t* to);
    bool layNear(Sum* sums, std::uint64_t* bits, FillRule rule, const Paint& paint, int left, int y,
                 std::uint32_t* to);
    void findStretches(std::uint64_t* bits);
    void sweepOne(std::uint32_t style, Sum* sums, FillRule rule);
    void sweepSeveral(std::uint32_t styles, Sum* sums, FillRule rule);
    void sweepShared(int x, std::size_t group, std::span<const std::uint32_t> styles);
    void emitShared(int x, int count, std::span<const std::int32_t> areas,
                    std::span<const std::uint32_t> styles);
    void addPixels(std::uint32_t style, int x, int count);
    void addConstant(std::uint32_t style, int x, int count, std::uint32_t coverage);
    void flush();

    int m_width = 0;
    std::uint32_t m_styles = 0;
    std::size_t m_styleSize = 0;                    ///< numbers in a row for one style
    std::size_t m_rowSize = 0;                      ///< numbers in a row for all styles
    std::size_t m_wordsOfRow = 0;                   ///< of bits
    std::ptrdiff_t m_left = kNone, m_right = kNone; ///< where the present styles' numbers start in a row
    std::uint32_t m_styleBits = 0;
    // Between conversions all of these are 0.
    std::vector<Sum> m_sums;
    std::vector<std::uint64_t> m_bits;
    std::vector<std::uint32_t> m_rowStyles; ///< bit by bit, which styles a row has anything of

    std::vector<Stretch> m_stretches;
    std::vector<std::uint8_t> m_coverage; ///< of the row at hand
    std::vector<std::int32_t> m_areas;    ///< of the row at hand, style by style
    std::vector<std::uint8_t> m_shares;   ///< of the row at hand, style by style; where styles share pixels
    std::vector<std::uint8_t> m_present;  ///< by style and group: not 0 when it has an area there
    std::vector<StyleSpan> m_spans;
    int m_origin = 0; ///< x of the row's first pixel for the sink
    // The style whose colour and paint the sink was asked for last.
    std::uint32_t m_askedStyle = 0;
    const Paint* m_plainPaint = nullptr;
    std::optional<std::uint32_t> m_plainColor;
    // A span of m_coverage that may still grow.
    std::uint32_t m_openStyle = 0;
    int m_openBegin = 0, m_openEnd = 0;
};

} // namespace flash::render
