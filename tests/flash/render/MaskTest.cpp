#include "flash/render/Mask.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace flash::render
{
namespace
{

Mask maskOf(IntRect bounds, std::vector<std::uint8_t> coverage)
{
    Mask mask = emptyMask(bounds);
    std::copy(coverage.begin(), coverage.end(), mask.coverage.begin());
    return mask;
}

std::vector<int> rowOf(const Mask& mask, int y)
{
    if (mask.isRectangle()) return std::vector<int>(static_cast<std::size_t>(mask.bounds.width()), 255);
    return {mask.at(mask.bounds.left, y), mask.at(mask.bounds.left, y) + mask.bounds.width()};
}

// A mask within a mask lets through what both do, to the degree that both do.
TEST(Mask, IntersectionMultipliesCoverage)
{
    const IntRect bounds{0, 0, 4, 1};
    Mask mask = maskOf(bounds, {0, 255, 128, 255});
    intersectMask(mask, maskOf(bounds, {255, 255, 128, 64}));
    EXPECT_EQ(rowOf(mask, 0), (std::vector<int>{0, 255, 64, 64}));

    // Of different places only the common one stays.
    mask = maskOf({0, 0, 3, 1}, {10, 20, 30});
    intersectMask(mask, maskOf({1, 0, 4, 1}, {255, 255, 255}));
    EXPECT_EQ(mask.bounds, (IntRect{1, 0, 3, 1}));
    EXPECT_EQ(rowOf(mask, 0), (std::vector<int>{20, 30}));

    // A rectangle cuts, and two make one.
    mask = maskOf({0, 0, 3, 1}, {10, 20, 30});
    intersectMask(mask, {{2, 0, 9, 9}, {}});
    EXPECT_EQ(rowOf(mask, 0), (std::vector<int>{30}));
    mask = {{0, 0, 5, 5}, {}};
    intersectMask(mask, {{3, 3, 9, 9}, {}});
    EXPECT_TRUE(mask.isRectangle());
    EXPECT_EQ(mask.bounds, (IntRect{3, 3, 5, 5}));
    mask = {{0, 0, 2, 1}, {}};
    intersectMask(mask, maskOf({0, 0, 2, 1}, {7, 8}));
    EXPECT_EQ(rowOf(mask, 0), (std::vector<int>{7, 8}));
}

TEST(Mask, FindsTheRectangleThatItIs)
{
    Mask mask = maskOf({0, 0, 4, 3}, {0, 0, 0, 0, 0, 255, 255, 0, 0, 255, 255, 0});
    simplifyMask(mask);
    EXPECT_TRUE(mask.isRectangle());
    EXPECT_EQ(mask.bounds, (IntRect{1, 1, 3, 3}));
    mask = maskOf({0, 0, 4, 3}, {0, 0, 0, 0, 0, 255, 254, 0, 0, 255, 255, 0});
    simplifyMask(mask);
    EXPECT_FALSE(mask.isRectangle());
    EXPECT_EQ(mask.bounds, (IntRect{1, 1, 3, 3}));
}

// Shapes that lie over each other let through more, never less; the parts of one add up.
TEST(Mask, SweepsUnite)
{
    Mask mask = emptyMask({0, 0, 4, 1});
    MaskSink sink(mask);
    const StyleSpan half{0, 2, 1, 128, nullptr};
    const StyleSpan full{1, 2, 1, 256, nullptr};
    sink.row(0, {&half, 1});
    sink.row(0, {&half, 1});
    sink.row(0, {&full, 1});
    EXPECT_EQ(rowOf(mask, 0), (std::vector<int>{192, 255, 255, 0}));

    const StyleSpan parts[] = {{3, 1, 1, 100, nullptr}, {3, 1, 2, 56, nullptr}};
    sink.row(0, parts);
    EXPECT_NEAR(rowOf(mask, 0)[3], 156, 1);

    const std::uint8_t coverages[] = {255, 64};
    const StyleSpan each{0, 2, 1, 0, coverages};
    mask = emptyMask({0, 0, 4, 1});
    sink.row(0, {&each, 1});
    sink.row(0, {&each, 1});
    EXPECT_EQ(rowOf(mask, 0)[0], 255);
    EXPECT_NEAR(rowOf(mask, 0)[1], 112, 1);
}

} // namespace
} // namespace flash::render
