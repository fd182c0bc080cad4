#include "flash/stage/FocusSteps.h"

#include <gtest/gtest.h>

#include <vector>

namespace flash::stage
{
namespace
{

using swf::Rect;

Rect box(int x, int y, int width = 10, int height = 10) { return {x, x + width, y, y + height}; }

/// Which of some boxes the arrow downwards leads to from the one at 0, 0; -1: none.
int below(std::vector<Rect> boxes)
{
    const auto found = nextInDirection(box(0, 0), boxes, Direction::Down);
    return found ? static_cast<int>(*found) : -1;
}

TEST(FocusSteps, OnlyWhatReachesFurtherCounts)
{
    EXPECT_EQ(below({box(50, 0)}), -1);
    EXPECT_EQ(below({box(50, 1)}), 0);
    EXPECT_EQ(below({box(5, 1, 10, 9)}), -1) << "ends where the origin does";
    EXPECT_EQ(below({box(5, -10, 10, 21)}), 0) << "begins before it and ends behind it";
    EXPECT_EQ(below({}), -1);
}

TEST(FocusSteps, AheadGoesBeforeBesideAndThatBeforeTheRest)
{
    EXPECT_EQ(below({box(-11, 10), box(-10, 40)}), 1) << "touching is ahead, however far";
    EXPECT_EQ(below({box(-30, 5), box(0, 90)}), 1);
    EXPECT_EQ(below({box(20, 20), box(-80, 5)}), 1) << "beside, however far";
}

TEST(FocusSteps, TheNearestCountsAndThenTheFirst)
{
    EXPECT_EQ(below({box(0, 11), box(0, 10)}), 1);
    EXPECT_EQ(below({box(0, 25, 10, 5), box(0, 20)}), 1) << "by the near edge";
    EXPECT_EQ(below({box(5, 10), box(-5, 10)}), 0);
    EXPECT_EQ(below({box(60, 210), box(160, 140)}), 1) << "as the crow flies";
    EXPECT_EQ(below({box(60, 210), box(160, 155)}), 0);
}

TEST(FocusSteps, EachDirectionFindsItsOwn)
{
    const std::vector<Rect> around = {box(0, 40), box(0, -40), box(-40, 0), box(40, 0)};
    const auto next = [&](Direction direction) { return *nextInDirection(box(0, 0), around, direction); };
    EXPECT_EQ(next(Direction::Down), 0U);
    EXPECT_EQ(next(Direction::Up), 1U);
    EXPECT_EQ(next(Direction::Left), 2U);
    EXPECT_EQ(next(Direction::Right), 3U);
}

// The genuine player is not the same in all directions.
TEST(FocusSteps, UpwardsLowerBordersAreCompared)
{
    const auto isAbove = [](const Rect& other) {
        return nextInDirection(box(0, 0), std::vector<Rect>{other}, Direction::Up).has_value();
    };
    EXPECT_TRUE(isAbove(box(0, 0, 10, 5))) << "ends above where the origin does";
    EXPECT_FALSE(isAbove(box(0, -20, 10, 30))) << "begins above, but does not end there";
}

TEST(FocusSteps, WhatIsBesideComesFirstOnlyOnTheWayDown)
{
    const auto next = [](Direction direction, std::vector<Rect> boxes) {
        return *nextInDirection(box(0, 0), boxes, direction);
    };
    EXPECT_EQ(next(Direction::Down, {box(20, 20), box(-80, 5)}), 1U);
    EXPECT_EQ(next(Direction::Up, {box(20, -20), box(-80, -5)}), 0U);
    EXPECT_EQ(next(Direction::Left, {box(-20, 20), box(-5, -80)}), 0U);
    EXPECT_EQ(next(Direction::Right, {box(20, 20), box(5, -80)}), 0U);
}

} // namespace
} // namespace flash::stage
