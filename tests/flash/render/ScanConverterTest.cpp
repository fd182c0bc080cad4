#include "flash/render/ScanConverter.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <random>

namespace flash::render
{
namespace
{

struct Line {
    double x0, y0, x1, y1;
    std::uint32_t left, right;
};

/// Coverage of each style, pixel by pixel.
class Recorder final : public SpanSink
{
public:
    Recorder(const IntRect& area, std::uint32_t styles) : m_area(area), m_planes(styles + 1)
    {
        for (auto& plane : m_planes)
            plane.resize(static_cast<std::size_t>(area.width()) * static_cast<std::size_t>(area.height()));
    }
    void row(int y, std::span<const StyleSpan> spans) override
    {
        for (const StyleSpan& span : spans) {
            ASSERT_GE(span.x, m_area.left);
            ASSERT_LE(span.x + span.count, m_area.right);
            for (int i = 0; i < span.count; ++i) {
                const std::uint32_t byte = span.coverages == nullptr ? 0 : span.coverages[i];
                m_planes[span.style][index(span.x + i, y)] += span.coverages == nullptr ? span.coverage
                                                              : byte == 255             ? 256
                                                                                        : byte;
            }
        }
    }
    [[nodiscard]] std::uint32_t at(std::uint32_t style, int x, int y) const
    {
        return m_planes[style][index(x, y)];
    }
    [[nodiscard]] std::uint32_t sum(int x, int y) const
    {
        std::uint32_t result = 0;
        for (const auto& plane : m_planes) result += plane[index(x, y)];
        // Shares of one pixel are told in 256 or in 255 parts.
        return result == 255 ? 256 : result;
    }

private:
    [[nodiscard]] std::size_t index(int x, int y) const
    {
        return static_cast<std::size_t>(y - m_area.top) * static_cast<std::size_t>(m_area.width()) +
               static_cast<std::size_t>(x - m_area.left);
    }
    IntRect m_area;
    std::vector<std::vector<std::uint32_t>> m_planes;
};

// So many that numbers for each pixel and style are not kept.
constexpr std::uint32_t kManyStyles = DenseCells<std::int32_t>::kMaxStyles + 1;

Recorder convertWith(std::uint32_t statedStyles, const IntRect& clip, const std::vector<Line>& lines,
                     std::uint32_t styles, FillRule rule, Coverage coverage)
{
    Recorder recorder(clip, styles);
    ScanConverter converter;
    converter.begin(clip, coverage, statedStyles);
    for (const Line& line : lines) {
        converter.setStyles(line.left, line.right);
        converter.line(line.x0, line.y0, line.x1, line.y1);
    }
    EXPECT_FALSE(converter.isOverfull());
    converter.sweep(rule, recorder);
    // All is forgotten afterwards.
    Recorder empty(clip, styles);
    converter.begin(clip, coverage, statedStyles);
    converter.sweep(rule, empty);
    for (int y = clip.top; y < clip.bottom; ++y)
        for (int x = clip.left; x < clip.right; ++x) EXPECT_EQ(empty.sum(x, y), 0U);
    return recorder;
}

// Both ways of keeping cells must come to the same.
Recorder convert(const IntRect& clip, const std::vector<Line>& lines, std::uint32_t styles,
                 FillRule rule = FillRule::EvenOdd, Coverage coverage = Coverage::Exact)
{
    Recorder dense = convertWith(styles, clip, lines, styles, rule, coverage);
    const Recorder sparse = convertWith(kManyStyles, clip, lines, styles, rule, coverage);
    for (std::uint32_t style = 1; style <= styles; ++style)
        for (int y = clip.top; y < clip.bottom; ++y)
            for (int x = clip.left; x < clip.right; ++x)
                EXPECT_NEAR(dense.at(style, x, y), sparse.at(style, x, y), 1)
                    << style << " at " << x << "," << y;
    return dense;
}

std::vector<Line> polygon(const std::vector<std::array<double, 2>>& corners, std::uint32_t style = 1)
{
    std::vector<Line> lines;
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const auto& from = corners[i];
        const auto& to = corners[(i + 1) % corners.size()];
        lines.push_back({from[0], from[1], to[0], to[1], 0, style});
    }
    return lines;
}

std::vector<Line> randomPolygon(std::mt19937& random, int corners, double low, double high)
{
    std::uniform_real_distribution<double> place(low, high);
    std::vector<std::array<double, 2>> points;
    for (int i = 0; i < corners; ++i) points.push_back({place(random), place(random)});
    return polygon(points);
}

// Winding number of a point, by counting crossings to its left.
int winding(const std::vector<Line>& lines, double x, double y)
{
    int count = 0;
    for (const Line& line : lines) {
        if ((line.y0 <= y) == (line.y1 <= y)) continue;
        const double at = line.x0 + (y - line.y0) / (line.y1 - line.y0) * (line.x1 - line.x0);
        if (at <= x) count += line.y1 > line.y0 ? 1 : -1;
    }
    return count;
}

TEST(ScanConverter, CoversPixelsByTheirArea)
{
    const auto r = convert({0, 0, 6, 6}, polygon({{1, 1}, {3.5, 1}, {3.5, 2.25}, {1, 2.25}}), 1);
    EXPECT_EQ(r.at(1, 0, 1), 0U);
    EXPECT_EQ(r.at(1, 1, 1), 256U);
    EXPECT_EQ(r.at(1, 2, 1), 256U);
    EXPECT_EQ(r.at(1, 3, 1), 128U);
    EXPECT_EQ(r.at(1, 1, 2), 64U);
    EXPECT_EQ(r.at(1, 3, 2), 32U);
    EXPECT_EQ(r.at(1, 1, 3), 0U);

    const auto triangle = convert({0, 0, 4, 4}, polygon({{0, 0}, {4, 4}, {0, 4}}), 1);
    EXPECT_EQ(triangle.at(1, 0, 0), 128U);
    EXPECT_EQ(triangle.at(1, 0, 3), 256U);
    EXPECT_EQ(triangle.at(1, 3, 2), 0U);
}

TEST(ScanConverter, AgreesWithCountingSamples)
{
    std::mt19937 random(7);
    constexpr int kSize = 24, kGrid = 16;
    for (const FillRule rule : {FillRule::EvenOdd, FillRule::NonZero}) {
        for (int round = 0; round < 40; ++round) {
            const auto lines = randomPolygon(random, 3 + round % 5, -6, kSize + 6);
            const auto r = convert({0, 0, kSize, kSize}, lines, 1, rule);
            for (int y = 0; y < kSize; ++y)
                for (int x = 0; x < kSize; ++x) {
                    int inside = 0, least = 0, greatest = 0;
                    for (int s = 0; s < kGrid * kGrid; ++s) {
                        const int w =
                            winding(lines, x + (s % kGrid + 0.5) / kGrid, y + (s / kGrid + 0.5) / kGrid);
                        if (rule == FillRule::EvenOdd ? w % 2 != 0 : w != 0) ++inside;
                        least = s == 0 ? w : std::min(least, w);
                        greatest = s == 0 ? w : std::max(greatest, w);
                    }
                    // Where lines cross within a pixel, sums of areas do not tell how they overlap.
                    if (greatest - least > 1) continue;
                    ASSERT_NEAR(r.at(1, x, y), inside, 12) << "round " << round << " at " << x << "," << y;
                }
        }
    }
}

TEST(ScanConverter, NeighboursShareAPixelWithoutRemainder)
{
    // A square divided by slanted lines that meet in the middle: whatever is inside is full.
    const double cx = 10.3, cy = 9.7;
    const std::array<std::array<double, 2>, 4> corners{{{2, 2}, {18, 2}, {18, 18}, {2, 18}}};
    std::vector<Line> lines;
    for (std::uint32_t i = 0; i < 4; ++i) {
        const auto& from = corners[i];
        const auto& to = corners[(i + 1) % 4];
        lines.push_back({from[0], from[1], to[0], to[1], 0, i + 1});
        lines.push_back({from[0], from[1], cx, cy, i + 1, i == 0 ? 4 : i});
    }
    const auto r = convert({0, 0, 20, 20}, lines, 4);
    for (int y = 0; y < 20; ++y)
        for (int x = 0; x < 20; ++x) {
            const bool inside = x >= 2 && x < 18 && y >= 2 && y < 18;
            ASSERT_EQ(r.sum(x, y), inside ? 256U : 0U) << x << "," << y;
        }
    EXPECT_EQ(r.at(1, 10, 3), 256U);
    EXPECT_EQ(r.at(2, 16, 10), 256U);
}

TEST(ScanConverter, HigherStyleLiesOnTopWhereTheyOverlap)
{
    auto lines = polygon({{0, 0}, {4, 0}, {4, 4}, {0, 4}}, 1);
    for (const Line& line : polygon({{2, 0}, {6, 0}, {6, 4}, {2, 4}}, 2)) lines.push_back(line);
    const auto r = convert({0, 0, 8, 4}, lines, 2);
    EXPECT_EQ(r.at(1, 1, 1), 256U);
    EXPECT_EQ(r.at(1, 3, 1), 0U);
    EXPECT_EQ(r.at(2, 3, 1), 256U);
}

TEST(ScanConverter, ClippingDoesNotChangeWhatIsInside)
{
    std::mt19937 random(11);
    const IntRect whole{-40, -40, 80, 80}, part{5, 7, 25, 22};
    for (int round = 0; round < 60; ++round) {
        const auto lines = randomPolygon(random, 6, -40, 80);
        const auto all = convert(whole, lines, 1);
        const auto clipped = convert(part, lines, 1);
        for (int y = part.top; y < part.bottom; ++y)
            for (int x = part.left; x < part.right; ++x)
                ASSERT_NEAR(all.at(1, x, y), clipped.at(1, x, y), 3) << round << " at " << x << "," << y;
    }
}

TEST(ScanConverter, TakesEnormousAndInvalidNumbers)
{
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    const double values[] = {-kInfinity, -1e300, -1e12, -3e9, 0, 5.5, 8, 3e9, 1e12, 1e300, kInfinity, kNan};
    std::vector<Line> lines;
    for (const double x0 : values)
        for (const double y0 : values)
            for (const double x1 : values)
                for (const double y1 : values) lines.push_back({x0, y0, x1, y1, 0, 1});
    convert({0, 0, 8, 8}, lines, 1);

    const auto r = convert({0, 0, 8, 8}, polygon({{-1e9, -1e9}, {1e9, -1e9}, {1e9, 4}, {-1e9, 4}}), 1);
    EXPECT_EQ(r.at(1, 0, 0), 256U);
    EXPECT_EQ(r.at(1, 7, 3), 256U);
    EXPECT_EQ(r.at(1, 7, 4), 0U);
}

TEST(ScanConverter, SamplesPixelCentresWithoutSmoothing)
{
    const auto r = convert({0, 0, 8, 8}, polygon({{1.5, 1.5}, {4.4, 1.5}, {4.4, 3.6}, {1.5, 3.6}}), 1,
                           FillRule::EvenOdd, Coverage::Sampled);
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x)
            EXPECT_EQ(r.at(1, x, y), x >= 1 && x < 4 && y >= 1 && y < 4 ? 256U : 0U) << x << "," << y;
}

TEST(ScanConverter, CountsSamplesTheSameHoweverCellsAreKept)
{
    std::mt19937 random(5);
    // The last one needs more than a word to tell its groups of pixels.
    constexpr int kWidths[] = {1, 9, 40, 700};
    for (int round = 0; round < 200; ++round) {
        const IntRect clip{2, 3, 2 + kWidths[static_cast<std::size_t>(round) % std::size(kWidths)], 30};
        const Coverage coverage = round % 3 == 0 ? Coverage::Grid2 : Coverage::Grid4;
        // Some reach beyond the clip, which is gone about otherwise.
        const int beyond = round % 5 == 0 ? 20 : 0, steps = coverage == Coverage::Grid4 ? 4 : 2;
        const auto place = [&](int size) {
            const auto range = static_cast<unsigned>((size + 2 * beyond) * steps);
            return static_cast<int>(random() % range) - beyond * steps;
        };
        Recorder dense(clip, 2), sparse(clip, 2);
        ScanConverter converters[2];
        converters[0].begin(clip, coverage, 2);
        converters[1].begin(clip, coverage, kManyStyles);
        // Two outlines: of one style, and between two.
        for (const std::uint32_t left : {0U, 2U}) {
            for (ScanConverter& converter : converters) converter.setStyles(left, 1);
            const int startX = place(clip.width()), startY = place(clip.height());
            int x = startX, y = startY;
            for (int corner = 0; corner < 7; ++corner) {
                const int nextX = corner == 6 ? startX : place(clip.width());
                const int nextY = corner == 6 ? startY : place(clip.height());
                for (ScanConverter& converter : converters) converter.lineOnGrid(x, y, nextX, nextY);
                x = nextX;
                y = nextY;
            }
        }
        converters[0].sweep(FillRule::EvenOdd, dense);
        converters[1].sweep(FillRule::EvenOdd, sparse);
        for (std::uint32_t style = 1; style <= 2; ++style)
            for (int y = clip.top; y < clip.bottom; ++y)
                for (int x = clip.left; x < clip.right; ++x)
                    ASSERT_NEAR(dense.at(style, x, y), sparse.at(style, x, y), 1)
                        << round << ": " << style << " at " << x << "," << y;
    }
}

TEST(ScanConverter, SaysWhenItIsOverfullAndRecovers)
{
    ScanConverter converter;
    const IntRect clip{0, 0, 2000, 2000};
    converter.begin(clip, Coverage::Exact, 2000);
    for (std::uint32_t i = 0; i < 2000 && !converter.isOverfull(); ++i) {
        converter.setStyles(0, i + 1);
        converter.line(i, 0, i + 0.5, 2000);
    }
    EXPECT_TRUE(converter.isOverfull());
    Recorder recorder({0, 0, 4, 4}, 1);
    converter.begin({0, 0, 4, 4}, Coverage::Exact, 2000);
    converter.setStyles(0, 1);
    converter.line(1, 0, 1, 4);
    converter.sweep(FillRule::EvenOdd, recorder);
    EXPECT_EQ(recorder.at(1, 0, 0), 0U);
    EXPECT_EQ(recorder.at(1, 3, 3), 256U);
}

} // namespace
} // namespace flash::render
