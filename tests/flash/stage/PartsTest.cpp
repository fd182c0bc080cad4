#include "MovieBuilder.h"

#include "flash/render/HitTest.h"
#include "flash/stage/Button.h"
#include "flash/stage/Drawing.h"
#include "flash/stage/Stage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

// What the parts of a stage promise each other: nobody keeps what has left.
namespace flash::stage::test
{
namespace
{

using testing::ElementsAre;
using B = MovieBuilder;

/// Counts whoever hears of keys, and keeps the order of what runs.
class Listener : public ScriptHost
{
public:
    void runActions(Node&, const MoviePtr&, const swf::ActionBlock& block) override
    {
        lines.emplace_back(reinterpret_cast<const char*>(block.bytes.data()), block.bytes.size());
    }
    void focusChanged(Node* before, Node* now) override
    {
        lines.push_back((before ? before->name() : "-") + ">" + (now ? now->name() : "-"));
        if (onFocus) std::exchange(onFocus, {})();
    }
    std::vector<std::string> lines;
    std::function<void()> onFocus;
};

struct Fixture {
    NullServices services;
    Listener script;
    Stage stage{services.services(), &script};
};

MoviePtr twoButtons()
{
    B movie;
    movie.square(1, 20);
    swf::Button button;
    swf::ButtonRecord record;
    record.states =
        swf::ButtonRecord::Up | swf::ButtonRecord::Over | swf::ButtonRecord::Down | swf::ButtonRecord::Hit;
    record.characterId = 1;
    record.depth = 1;
    button.records.push_back(record);
    movie.character(3, button);
    movie.tag(0, B::placed(3, 1, 10, 10, "a"));
    movie.tag(0, B::placed(3, 2, 100, 10, "b"));
    return movie.take();
}

TEST(Parts, ForgetWhatLeavesTheStage)
{
    Fixture f;
    f.stage.open(twoButtons(), "m.swf");
    Clip& root = *f.stage.root();
    const NodePtr a = root.childByName("a", Clip::Case::Sensitive)->shared_from_this();
    f.stage.pointer().move(15, 15);
    f.stage.pointer().press(15, 15);
    f.stage.focus().set(a.get());
    ASSERT_EQ(f.stage.pointer().over(), a.get());
    ASSERT_EQ(f.stage.focus().node(), a.get());
    root.removeChild(*a);
    EXPECT_TRUE(a->isRemoved());
    EXPECT_EQ(f.stage.pointer().over(), nullptr);
    EXPECT_EQ(f.stage.focus().node(), nullptr);
    f.stage.pointer().release(15, 15);
    EXPECT_EQ(f.stage.pointer().cursor(), Cursor::Arrow);
    EXPECT_EQ(f.stage.displayList().instances(), 4U)
        << "the root, the other button, its square and what takes the pointer";
    f.stage.close();
    EXPECT_EQ(f.stage.displayList().instances(), 0U) << "one that is kept counts no longer";
}

TEST(Focus, WhoIsToldMayMoveItOn)
{
    Fixture f;
    f.stage.open(twoButtons(), "m.swf");
    Clip& root = *f.stage.root();
    Node* a = root.childByName("a", Clip::Case::Sensitive);
    Node* b = root.childByName("b", Clip::Case::Sensitive);
    f.script.onFocus = [&] { f.stage.focus().set(b); };
    f.stage.focus().set(a);
    EXPECT_EQ(f.stage.focus().node(), b);
    EXPECT_THAT(f.script.lines, ElementsAre("->a", "a>b"));
    EXPECT_FALSE(f.stage.focus().isFramed()) << "by the mouse there is no frame";
    f.stage.keyboard().press(9);
    EXPECT_EQ(f.stage.focus().node(), a);
    EXPECT_TRUE(f.stage.focus().isFramed());
    f.stage.pointer().move(15, 15);
    EXPECT_FALSE(f.stage.focus().isFramed());
}

TEST(Keyboard, LosesItsKeysWithTheWindowAndKeepsItsToggles)
{
    Fixture f;
    f.stage.open(twoButtons(), "m.swf");
    f.stage.keyboard().press(20);
    f.stage.keyboard().press(20);
    EXPECT_TRUE(f.stage.keyboard().isDown(20));
    EXPECT_TRUE(f.stage.keyboard().isToggled(20)) << "a key that is held repeats, and turns nothing";
    f.stage.focus().set(f.stage.root()->childByName("a", Clip::Case::Sensitive));
    f.stage.keyboard().leave();
    EXPECT_FALSE(f.stage.keyboard().isDown(20));
    EXPECT_TRUE(f.stage.keyboard().isToggled(20));
    EXPECT_EQ(f.stage.focus().node(), nullptr);
}

TEST(ActionQueue, RunsRequestsLastAndHoldsThemForTheFrame)
{
    Fixture f;
    f.stage.open(twoButtons(), "m.swf");
    const MoviePtr movie = f.stage.movie();
    f.stage.queue().holdRequests(true);
    f.stage.queue().addRequest([&] { f.script.lines.emplace_back("request"); });
    f.stage.queue().addBlock(*f.stage.root(), movie, B::block("block"));
    f.stage.queue().run();
    EXPECT_THAT(f.script.lines, ElementsAre("block"));
    f.stage.queue().holdRequests(false);
    f.stage.queue().addBlock(*f.stage.root(), movie, B::block("late"));
    f.stage.queue().run();
    EXPECT_THAT(f.script.lines, ElementsAre("block", "late", "request"));
}

struct Mine : Peer {
    static constexpr char kTag = 0;
    Mine() : Peer(&kTag) {}
};
struct Other : Peer {
    static constexpr char kTag = 0;
    Other() : Peer(&kTag) {}
};

void goAroundTwice(Drawing& drawing, double left)
{
    for (const double inset : {0.0, 100.0}) {
        const double low = left + inset, high = left + 400 - inset;
        drawing.moveTo({low, inset});
        for (const swf::Point to : {swf::Point{high, inset}, {high, 400 - inset}, {low, 400 - inset}})
            drawing.lineTo(to);
    }
}

TEST(Drawing, AWindingRuleIsItsPathsOwn)
{
    using Winding = Drawing::Winding;
    Drawing drawing;
    drawing.lineStyle(swf::LineStyle{});
    drawing.beginFill({});
    goAroundTwice(drawing, 0);
    drawing.setWinding(Winding::NonZero);
    goAroundTwice(drawing, 1000);
    drawing.setWinding(Winding::EvenOdd);
    goAroundTwice(drawing, 2000);
    drawing.endFill();
    const swf::Shape& shape = *drawing.shape();
    for (const double left : {0.0, 1000.0, 2000.0}) {
        EXPECT_TRUE(render::shapeContains(shape, {left + 50, 200}));
        EXPECT_EQ(render::shapeContains(shape, {left + 200, 200}), left == 1000) << left;
    }
    // Each part has all of its lines.
    ASSERT_EQ(shape.layers.size(), 3U);
    for (const swf::ShapeLayer& layer : shape.layers)
        for (const swf::EdgeRun& run : layer.runs) EXPECT_EQ(run.line, 1);
    EXPECT_EQ(shape.edgeBounds, (swf::Rect{0, 2400, 0, 400}));
}

TEST(Drawing, APathAmidItsEdgesKeepsItsRule)
{
    Drawing drawing;
    drawing.beginFill({});
    drawing.lineTo({400, 0});
    drawing.setWinding(Drawing::Winding::NonZero);
    drawing.lineTo({400, 400});
    drawing.endFill();
    ASSERT_EQ(drawing.shape()->layers.size(), 1U);
    EXPECT_FALSE(drawing.shape()->layers[0].nonZeroWinding);
}

TEST(Peer, IsThatOfItsMachineOnly)
{
    Mine mine;
    Peer& peer = mine;
    EXPECT_EQ(peer.as<Mine>(), &mine);
    EXPECT_EQ(peer.as<Other>(), nullptr);
}

} // namespace
} // namespace flash::stage::test
