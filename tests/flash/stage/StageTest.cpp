#include "MovieBuilder.h"

#include "flash/stage/Button.h"
#include "flash/stage/Drawing.h"
#include "flash/stage/Stage.h"

#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace flash::stage::test
{
namespace
{

using testing::ElementsAre;

/// Writes down what runs, and lets a test act in its place.
class Recorder : public ScriptHost
{
public:
    void runActions(Node& target, const MoviePtr&, const swf::ActionBlock& block) override
    {
        const std::string name(reinterpret_cast<const char*>(block.bytes.data()), block.bytes.size());
        lines.push_back(target.name().empty() ? name : target.name() + ":" + name);
        if (const auto act = acts.find(name); act != acts.end()) act->second(static_cast<Clip&>(target));
    }
    bool hasHandler(Node& node, Event event) override { return handlers.contains({node.name(), event}); }
    void dispatch(Node& node, Event event) override
    {
        if (hasHandler(node, event))
            lines.push_back(node.name() + " " + std::to_string(static_cast<int>(event)));
    }
    std::vector<std::string> takeLines() { return std::exchange(lines, {}); }
    std::vector<std::string> lines;
    std::map<std::string, std::function<void(Clip&)>> acts;
    std::set<std::pair<std::string, Event>> handlers;
};

struct Fixture {
    NullServices services;
    Recorder script;
    Stage stage{services.services(), &script};
};

using B = MovieBuilder;

TEST(Timeline, KeepsInstancesOverARewindWhenTheSamePlacementMadeThem)
{
    B movie(4);
    movie.square(1, 10);
    movie.sprite(2);
    movie.tag(0, B::placed(2, 1, 0, 0, "kept"));
    movie.tag(1, B::moved(1, 50));
    movie.tag(2, B::placed(2, 2, 0, 0, "late"));
    movie.tag(2, swf::RemoveObject{1, {}});
    movie.tag(3, B::placed(2, 1, 7, 0, "again"));
    Fixture f;
    f.stage.open(movie.take(), "m.swf");
    Clip& root = *f.stage.root();
    const NodePtr kept = root.childAt(kTimelineDepth + 1)->shared_from_this();
    f.stage.gotoFrame(1);
    EXPECT_EQ(kept->x(), 50);
    f.stage.gotoFrame(0);
    EXPECT_EQ(root.childAt(kTimelineDepth + 1), kept.get());
    EXPECT_EQ(kept->x(), 0) << "what later frames changed is undone";
    f.stage.gotoFrame(3);
    EXPECT_TRUE(kept->isRemoved());
    EXPECT_EQ(root.childAt(kTimelineDepth + 1)->name(), "again");
    f.stage.gotoFrame(1);
    EXPECT_EQ(root.children().size(), 1U);
    EXPECT_EQ(root.childAt(kTimelineDepth + 1)->name(), "kept");
    EXPECT_EQ(root.childAt(kTimelineDepth + 1)->x(), 50);
}

TEST(Timeline, LeavesAloneWhatAScriptMoved)
{
    B movie(2);
    movie.sprite(2);
    movie.tag(0, B::placed(2, 1, 0, 0, "a"));
    movie.tag(1, B::moved(1, 50));
    Fixture f;
    f.stage.open(movie.take(), "m.swf");
    Node& node = *f.stage.root()->childByName("A", Clip::Case::Insensitive);
    node.setScriptTransformed();
    node.setX(12.5);
    f.stage.advanceFrame();
    EXPECT_EQ(f.stage.currentFrame(), 1);
    EXPECT_EQ(node.x(), 12.5);
}

TEST(Timeline, QueuesEventsNewestClipFirstAndFrameScriptsAfterLoad)
{
    B movie(2);
    swf::Timeline& sprite = movie.sprite(2, 2);
    B::tag(sprite, 0, swf::DoAction{B::block("s1")});
    B::tag(sprite, 1, swf::DoAction{B::block("s2")});
    swf::PlaceObject first = B::placed(2, 1, 0, 0, "a"), second = B::placed(2, 2, 0, 0, "b");
    first.clipActions = {{swf::kClipLoad, 0, B::block("load")}, {swf::kClipEnterFrame, 0, B::block("enter")}};
    second.clipActions = first.clipActions;
    movie.tag(0, swf::DoAction{B::block("r1")});
    movie.tag(0, first);
    movie.tag(0, second);
    movie.tag(1, swf::DoAction{B::block("r2")});
    Fixture f;
    f.stage.open(movie.take(), "m.swf");
    EXPECT_THAT(f.script.takeLines(), ElementsAre("r1", "a:load", "a:s1", "b:load", "b:s1"));
    f.stage.advanceFrame();
    EXPECT_THAT(f.script.takeLines(), ElementsAre("b:enter", "b:s2", "a:enter", "a:s2", "r2"));
}

TEST(Timeline, InitActionsRunFirstAndOnce)
{
    B movie(3);
    movie.tag(0, swf::DoAction{B::block("frame")});
    movie.tag(0, swf::DoInitAction{5, B::block("init")});
    movie.tag(1, swf::DoInitAction{5, B::block("init")});
    Fixture f;
    f.stage.open(movie.take(), "m.swf");
    f.stage.advanceFrame();
    EXPECT_THAT(f.script.takeLines(), ElementsAre("init", "frame"));
}

TEST(Timeline, RunsUnloadScriptsBeforeAnInstanceGoes)
{
    B movie(2);
    movie.sprite(2);
    swf::PlaceObject placed = B::placed(2, 1, 0, 0, "a");
    placed.clipActions = {{swf::kClipUnload, 0, B::block("unload")}};
    movie.tag(0, placed);
    movie.tag(1, swf::RemoveObject{1, {}});
    Fixture f;
    f.stage.open(movie.take(), "m.swf");
    const NodePtr node = f.stage.root()->childAt(kTimelineDepth + 1)->shared_from_this();
    bool wasThere = false;
    f.script.acts["unload"] = [&](Clip& clip) { wasThere = !clip.isRemoved(); };
    f.stage.advanceFrame();
    EXPECT_THAT(f.script.takeLines(), ElementsAre("a:unload"));
    EXPECT_TRUE(wasThere);
    EXPECT_TRUE(node->isRemoved());
    EXPECT_TRUE(f.stage.root()->children().empty());
}

TEST(Timeline, LoopsOnlyWhenAskedTo)
{
    B movie(2);
    Fixture f;
    f.stage.open(movie.take(), "m.swf");
    f.stage.setLoop(false);
    f.stage.advance(500);
    EXPECT_EQ(f.stage.currentFrame(), 1);
    EXPECT_FALSE(f.stage.isPlaying());
    f.stage.setLoop(true);
    f.stage.play();
    f.stage.advance(100);
    EXPECT_EQ(f.stage.currentFrame(), 0);
}

TEST(Timeline, SurvivesAClipThatContainsItself)
{
    B movie;
    swf::Timeline& sprite = movie.sprite(2);
    B::tag(sprite, 0, B::placed(2, 1));
    movie.tag(0, B::placed(2, 1));
    Fixture f;
    f.stage.open(movie.take(), "m.swf");
    f.stage.advanceFrame();
    SUCCEED();
}

TEST(Timeline, MissingCharactersAndStrayTagsChangeNothing)
{
    B movie(2);
    movie.tag(0, B::placed(77, 1));
    movie.tag(0, B::moved(5, 10));
    movie.tag(0, swf::RemoveObject{9, {}});
    Fixture f;
    f.stage.open(movie.take(), "m.swf");
    f.stage.advanceFrame();
    EXPECT_TRUE(f.stage.root()->children().empty());
}

TEST(Timeline, PlacesBelowWhatHasTheDepthUpToVersion5)
{
    for (const int version : {5, 6}) {
        B movie(2);
        movie.movie().header.version = version;
        movie.square(1, 10);
        B::tag(movie.sprite(2), 0, B::placed(1, 1));
        B::tag(movie.sprite(3), 0, B::placed(1, 1));
        movie.tag(0, B::placed(2, 1, 0, 0, "first"));
        movie.tag(1, B::placed(3, 1, 0, 0, "second"));
        Fixture f;
        f.stage.open(movie.take(), "m.swf");
        f.stage.setLoop(false);
        f.stage.advanceFrame();
        std::vector<std::string> names;
        for (const NodePtr& child : f.stage.root()->children()) names.push_back(child->name());
        if (version == 5)
            EXPECT_THAT(names, ElementsAre("second", "first"));
        else
            EXPECT_THAT(names, ElementsAre("first"));
    }
}

TEST(Clip, SwapsDepthsAndKeepsTheOrder)
{
    B movie;
    movie.sprite(2);
    Fixture f;
    const MoviePtr taken = movie.take();
    f.stage.open(taken, "m.swf");
    Clip& root = *f.stage.root();
    for (int depth = 0; depth < 4; ++depth) root.attach(taken, 2, depth, "c" + std::to_string(depth));
    Node& first = *root.childAt(0);
    root.swapDepths(first, 3);
    EXPECT_EQ(root.childAt(3), &first);
    EXPECT_EQ(root.childAt(0)->name(), "c3");
    root.swapDepths(first, 10);
    EXPECT_EQ(root.children().back().get(), &first);
    EXPECT_EQ(root.nextHighestDepth(), 11);
    EXPECT_EQ(root.childAt(3), nullptr);
}

/// A 20 x 20 button at (10, 10); its up state is a sprite.
void addButton(B& movie, bool menu = false)
{
    movie.square(1, 20);
    swf::Button button;
    button.trackAsMenu = menu;
    swf::ButtonRecord record;
    record.states =
        swf::ButtonRecord::Up | swf::ButtonRecord::Over | swf::ButtonRecord::Down | swf::ButtonRecord::Hit;
    record.characterId = 1;
    record.depth = 1;
    button.records.push_back(record);
    using C = swf::ButtonAction::Condition;
    const std::pair<int, const char*> kConditions[] = {
        {C::IdleToOverUp, "over"},         {C::OverUpToIdle, "out"},
        {C::OverUpToOverDown, "press"},    {C::OverDownToOverUp, "release"},
        {C::OverDownToOutDown, "dragOut"}, {C::OutDownToOverDown, "dragOver"},
        {C::OutDownToIdle, "outside"},     {C::IdleToOverDown, "menuOver"},
        {C::OverDownToIdle, "menuOut"},
    };
    for (const auto& [condition, name] : kConditions)
        button.actions.push_back({static_cast<std::uint16_t>(condition), 0, B::block(name)});
    button.actions.push_back({0, 13, B::block("enterKey")});
    movie.character(3, button);
    movie.tag(0, B::placed(3, 1, 10, 10));
}

TEST(Pointer, DrivesAButtonThroughItsStates)
{
    B movie;
    addButton(movie);
    Fixture f;
    f.stage.open(movie.take(), "m.swf");
    const auto& button = static_cast<const Button&>(*f.stage.root()->children().front());
    f.stage.pointer().move(5, 5);
    f.stage.pointer().move(15, 15);
    EXPECT_EQ(f.stage.pointer().cursor(), Cursor::Hand);
    EXPECT_EQ(button.state(), Button::State::Over);
    f.stage.pointer().press(15, 15);
    EXPECT_EQ(button.state(), Button::State::Down);
    f.stage.pointer().move(50, 50);
    f.stage.pointer().move(15, 15);
    f.stage.pointer().release(15, 15);
    EXPECT_THAT(f.script.takeLines(), ElementsAre("over", "press", "dragOut", "dragOver", "release"));
    f.stage.pointer().press(15, 15);
    f.stage.pointer().move(50, 50);
    f.stage.pointer().release(50, 50);
    EXPECT_THAT(f.script.takeLines(), ElementsAre("press", "dragOut", "outside"));
    EXPECT_EQ(button.state(), Button::State::Up);
    f.stage.keyboard().press(13);
    EXPECT_THAT(f.script.takeLines(), ElementsAre("enterKey"));
}

TEST(Pointer, HiddenMaskedAndCoveredThings)
{
    B movie;
    addButton(movie);
    movie.square(4, 5);
    swf::PlaceObject mask = B::placed(4, 2, 10, 10);
    mask.clipDepth = 9;
    movie.tag(0, mask);
    movie.tag(0, B::placed(3, 5, 10, 10));
    Fixture f;
    f.stage.open(movie.take(), "m.swf");
    Clip& root = *f.stage.root();
    f.stage.pointer().move(12, 12);
    Node& masked = *root.childAt(kTimelineDepth + 5);
    EXPECT_EQ(static_cast<Button&>(masked).state(), Button::State::Over);
    f.stage.pointer().move(25, 25);
    EXPECT_EQ(static_cast<Button&>(masked).state(), Button::State::Up) << "outside of its mask";
    EXPECT_EQ(static_cast<Button&>(*root.childAt(kTimelineDepth + 1)).state(), Button::State::Over);
    root.childAt(kTimelineDepth + 1)->setVisible(false);
    f.stage.advanceFrame();
    EXPECT_EQ(f.stage.pointer().cursor(), Cursor::Arrow) << "what moves away under the pointer loses it";
}

TEST(Pointer, DragsWithinLimits)
{
    B movie;
    movie.sprite(2);
    movie.tag(0, B::placed(2, 1, 5, 5, "a"));
    Fixture f;
    f.stage.open(movie.take(), "m.swf");
    auto& clip = static_cast<Clip&>(*f.stage.root()->children().front());
    f.stage.pointer().move(10, 10);
    f.stage.pointer().startDrag(clip, false, Pointer::DragLimits{0, 0, 20, 30});
    f.stage.pointer().move(14, 90);
    EXPECT_EQ(clip.x(), 9);
    EXPECT_EQ(clip.y(), 30);
    f.stage.pointer().stopDrag();
    f.stage.pointer().move(1, 1);
    EXPECT_EQ(clip.x(), 9);
}

TEST(View, ScaleModesAndPointer)
{
    B movie(1, 100, 50);
    Fixture f;
    f.stage.open(movie.take(), "m.swf");
    f.stage.view().setSize(400, 400);
    struct Case {
        const char* name;
        ScaleMode mode;
        double scaleX, scaleY, left, top;
    };
    const Case kCases[] = {
        {"show all leaves room above", ScaleMode::ShowAll, 4, 4, 0, 100},
        {"no border cuts the sides", ScaleMode::NoBorder, 8, 8, -200, 0},
        {"exact fit distorts", ScaleMode::ExactFit, 4, 8, 0, 0},
        {"no scale centres", ScaleMode::NoScale, 1, 1, 150, 175},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        f.stage.view().setScaleMode(c.mode);
        const swf::Matrix view = f.stage.view().matrix();
        EXPECT_DOUBLE_EQ(view.a * 20, c.scaleX);
        EXPECT_DOUBLE_EQ(view.d * 20, c.scaleY);
        EXPECT_DOUBLE_EQ(view.tx, c.left);
        EXPECT_DOUBLE_EQ(view.ty, c.top);
        f.stage.pointer().move(c.left + 10 * c.scaleX, c.top + 5 * c.scaleY);
        EXPECT_NEAR(f.stage.pointer().position().x, 200, 1e-6);
        EXPECT_NEAR(f.stage.pointer().position().y, 100, 1e-6);
    }
}

TEST(Drawing, BoundsFollowCurvesAndLines)
{
    Drawing drawing;
    drawing.beginFill({});
    drawing.moveTo({0, 0});
    drawing.curveTo({100, 200}, {200, 0});
    drawing.endFill();
    EXPECT_EQ(drawing.shape()->bounds, (swf::Rect{0, 200, 0, 100})) << "half way to the control point";
    swf::LineStyle line;
    line.width = 20;
    drawing.lineStyle(line);
    drawing.lineTo({300, 0});
    EXPECT_EQ(drawing.shape()->bounds, (swf::Rect{-10, 310, -10, 100}));
    EXPECT_EQ(drawing.shape()->edgeBounds, (swf::Rect{0, 300, 0, 100}));
}

TEST(Stage, CatchesUpAfterAPauseWithoutRunningEveryFrame)
{
    B movie(1000);
    Fixture f;
    f.stage.open(movie.take(), "m.swf");
    f.stage.advance(250);
    EXPECT_EQ(f.stage.currentFrame(), 2);
    f.stage.advance(50'000);
    EXPECT_LT(f.stage.currentFrame(), 20);
}

} // namespace
} // namespace flash::stage::test
