#include "../stage/MovieBuilder.h"

#include "flash/guard/Guard.h"
#include "flash/stage/Stage.h"

#include <gtest/gtest.h>

// What a file defines in a few bytes and the stage must not make in full.
namespace flash::stage::test
{
namespace
{

using B = MovieBuilder;
using guard::Bound;

struct Fixture {
    Fixture()
    {
        watch.setReport([this](Bound bound, std::string_view) { reports.push_back(bound); });
    }
    void open(B& movie)
    {
        const guard::Turn turn(watch);
        stage.open(movie.take(), "m.swf");
    }
    guard::Guard watch;
    std::vector<Bound> reports;
    NullServices services;
    Stage stage{services.services(), nullptr};
};

TEST(StageBounds, EndsWhereFewDefinitionsMakeInstancesWithoutEnd)
{
    B movie;
    movie.square(1, 10);
    constexpr std::uint16_t kLevels = 11, kEach = 10;
    for (std::uint16_t id = 2; id < kLevels + 2; ++id) {
        swf::Timeline& timeline = movie.sprite(id);
        for (std::uint16_t depth = 1; depth <= kEach; ++depth)
            B::tag(timeline, 0, B::placed(static_cast<std::uint16_t>(id - 1), depth));
    }
    movie.tag(0, B::placed(kLevels + 1, 1));
    Fixture f;
    f.open(movie);
    EXPECT_EQ(f.stage.displayList().instances(), guard::kMaxInstances);
    EXPECT_EQ(f.reports, std::vector{Bound::Instances});
    f.stage.close();
    EXPECT_EQ(f.stage.displayList().instances(), 0U) << "what has left the stage makes room";
}

TEST(StageBounds, LeavesOutWhatContainsItself)
{
    B movie;
    movie.square(1, 10);
    swf::Timeline& outer = movie.sprite(2);
    swf::Timeline& inner = movie.sprite(3);
    for (std::uint16_t depth = 1; depth <= 1000; ++depth) {
        B::tag(outer, 0, B::placed(3, depth));
        B::tag(inner, 0, B::placed(2, depth));
    }
    swf::Button button;
    for (std::uint16_t depth = 1; depth <= 1000; ++depth) {
        swf::ButtonRecord record;
        record.states = swf::ButtonRecord::Up | swf::ButtonRecord::Hit;
        record.characterId = 4;
        record.depth = depth;
        button.records.push_back(record);
    }
    movie.character(4, button);
    movie.tag(0, B::placed(2, 1));
    movie.tag(0, B::placed(4, 2));
    Fixture f;
    f.open(movie);
    EXPECT_LE(f.stage.displayList().instances(), 1100U);
    EXPECT_EQ(f.reports, std::vector{Bound::SelfContained});
}

TEST(StageBounds, LetsScriptsPutClipsIntoTheirLike)
{
    B movie;
    movie.square(1, 10);
    B::tag(movie.sprite(2), 0, B::placed(1, 1));
    B::tag(movie.sprite(3), 0, B::placed(2, 1));
    movie.tag(0, B::placed(3, 1));
    Fixture f;
    f.open(movie);
    const guard::Turn turn(f.watch);
    Clip* at = asClip(f.stage.root()->childAt(kTimelineDepth + 1));
    for (int i = 0; i < 50; ++i) {
        at = asClip(at->attach(at->movie(), 3, 5, "again").get());
        ASSERT_NE(at, nullptr);
        EXPECT_EQ(at->children().size(), 1U) << "its own timeline's clip is there";
    }
    EXPECT_TRUE(f.reports.empty());
}

TEST(StageBounds, NestsOnlySoDeeply)
{
    B movie;
    Fixture f;
    f.open(movie);
    const guard::Turn turn(f.watch);
    std::shared_ptr<Clip> at = f.stage.root()->attachEmpty(1, "c");
    int depth = 1;
    while (const auto next = at->attachEmpty(1, "c")) {
        at = next;
        ASSERT_LT(++depth, 100'000);
    }
    static_cast<void>(at->drawing());
    EXPECT_EQ(depth, guard::kDeepestNesting - 1);
    EXPECT_EQ(f.stage.root()->width(), 0);
    EXPECT_FALSE(f.stage.root()->hitsShape({0, 0}));
    EXPECT_EQ(at->slashPath().size(), 2U * static_cast<std::size_t>(depth));
    f.stage.root()->removeChild(*f.stage.root()->childAt(1));
    EXPECT_EQ(f.stage.displayList().instances(), 1U);
}

TEST(StageBounds, ForgetsInstancesThatNobodyDraws)
{
    B movie;
    Fixture f;
    f.open(movie);
    const guard::Turn turn(f.watch);
    std::vector<std::weak_ptr<Clip>> made;
    for (int frame = 0; frame < 2000; ++frame) {
        const auto clip = f.stage.root()->attachEmpty(1, "c");
        made.push_back(clip);
        f.stage.advanceFrame();
    }
    // Their control blocks, which are one with them, are let go of as well; seen from here by the list only.
    EXPECT_LT(f.stage.view().notedChanges(), 1000U);
}

TEST(StageBounds, TakesNoMoreCommandsThanItCanHold)
{
    B movie;
    Fixture f;
    f.open(movie);
    const guard::Turn turn(f.watch);
    int run = 0;
    for (int i = 0; i < 100; ++i) f.stage.queue().addRequest([&] { ++run; }, guard::kMaxRequestBytes / 10);
    f.stage.queue().run();
    EXPECT_EQ(run, 10);
    EXPECT_EQ(f.reports, std::vector{Bound::Requests});
    f.stage.queue().addRequest([&] { ++run; }, guard::kMaxRequestBytes / 2);
    f.stage.queue().run();
    EXPECT_EQ(run, 11) << "later ones are taken again";
}

TEST(StageBounds, WidthOfATextWithAScalingMatrixIsThatOfItsStatedBounds)
{
    B movie;
    swf::StaticText text;
    text.bounds = {0, 2000, 0, 400};
    text.matrix = {4, 0, 0, 4, 0, 0};
    movie.character(1, text);
    B::tag(movie.sprite(2), 0, B::placed(1, 1));
    movie.tag(0, B::placed(2, 1));
    Fixture f;
    f.open(movie);
    EXPECT_EQ(f.stage.root()->childAt(kTimelineDepth + 1)->width(), 100);
}

} // namespace
} // namespace flash::stage::test
