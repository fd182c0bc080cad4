#include "Meddler.h"
#include "MovieBuilder.h"

#include "flash/stage/Damage.h"

#include "flash/render/Canvas.h"
#include "flash/stage/Graphics.h"

#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>
#include <random>

// Where the stage must be drawn again. What counts: drawn in parts it looks as if drawn whole.
namespace flash::stage::test
{
namespace
{

using render::IntRect;

long long pixelsOf(const Damage& damage)
{
    long long sum = 0;
    for (const IntRect& box : damage.boxes()) sum += 1LL * box.width() * box.height();
    return sum;
}

TEST(Damage, KeepsFarThingsApartAndPutsNearOnesTogether)
{
    Damage damage;
    damage.setArea({0, 0, 1000, 1000});
    damage.add({-50, -50, 10, 10});
    damage.add({990, 990, 2000, 2000});
    EXPECT_EQ(pixelsOf(damage), 200) << "cut to the area, each by itself";
    damage.add({12, 0, 20, 10});
    EXPECT_EQ(damage.boxes().size(), 2U);
    EXPECT_TRUE(damage.contains({0, 0, 20, 10}));
    damage.add({});
    damage.add({2000, 0, 3000, 10});
    EXPECT_EQ(pixelsOf(damage), 300) << "nothing, and what lies outside";
    damage.setArea({0, 0, 100, 100});
    EXPECT_EQ(pixelsOf(damage), 200);
    damage.clear();
    EXPECT_TRUE(damage.isEmpty());
}

TEST(Damage, CoversAllThatWasAddedWithFewBoxes)
{
    std::mt19937 random(3);
    for (int round = 0; round < 200; ++round) {
        Damage damage;
        damage.setArea({0, 0, 640, 480});
        damage.setBoxCost(static_cast<long long>(random() % 20000));
        std::vector<IntRect> added;
        for (unsigned i = 0, count = 1 + static_cast<unsigned>(random() % 40); i < count; ++i) {
            const int x = static_cast<int>(random() % 700) - 30, y = static_cast<int>(random() % 540) - 30;
            added.push_back({x, y, x + static_cast<int>(random() % 90), y + static_cast<int>(random() % 90)});
            damage.add(added.back());
        }
        if (round % 2 == 0) damage.settle();
        ASSERT_LE(damage.boxes().size(), Damage::kMaxBoxes);
        for (const IntRect& box : added) {
            const IntRect seen = render::intersect(box, {0, 0, 640, 480});
            for (int x = seen.left; x < seen.right; x += 7)
                for (int y = seen.top; y < seen.bottom; y += 7)
                    ASSERT_TRUE(damage.contains({x, y, x + 1, y + 1})) << round;
        }
    }
}

/// A stage and the picture of it.
struct Shown {
    Shown() : Shown(twoSquares()) {}
    explicit Shown(MovieBuilder movie)
    {
        movie.movie().header.version = 8;
        stage.open(movie.take(), "m.swf");
        stage.view().setSize(160, 120);
    }
    static MovieBuilder twoSquares()
    {
        MovieBuilder movie(1, 160, 120);
        movie.square(1, 12, {200, 40, 40, 255});
        movie.square(2, 30, {40, 160, 60, 160});
        return movie;
    }
    void draw(std::span<const IntRect> boxes)
    {
        width = stage.view().width();
        height = stage.view().height();
        pixels.resize(static_cast<std::size_t>(width * height));
        render::Canvas canvas({pixels.data(), width, height, width}, render::Quality::High,
                              stage.view().renderCache());
        stage.view().render(canvas, boxes);
    }
    void drawWhole()
    {
        pixels.assign(pixels.size(), 0x12345678);
        const IntRect all{0, 0, stage.view().width(), stage.view().height()};
        draw({&all, 1});
    }
    std::vector<IntRect> drawChanges()
    {
        const auto boxes = stage.view().dirtyBoxes();
        const std::vector<IntRect> copy(boxes.begin(), boxes.end());
        if (!copy.empty()) draw(copy);
        return copy;
    }
    NullServices services;
    Stage stage{services.services(), nullptr};
    std::vector<std::uint32_t> pixels;
    int width = 0, height = 0;
};

/// Sums of what several fills give to a pixel are rounded in one order or another, for what is drawn beside
/// it: one level of 256 is no difference. Filters make more of it, one around another again.
int levelsApart(const std::vector<std::uint32_t>& a, const std::vector<std::uint32_t>& b, std::size_t at)
{
    int most = 0;
    for (unsigned shift = 0; shift < 32; shift += 8)
        most = std::max(
            most, std::abs(static_cast<int>(a[at] >> shift & 255) - static_cast<int>(b[at] >> shift & 255)));
    return most;
}

bool looksSame(const std::vector<std::uint32_t>& a, const std::vector<std::uint32_t>& b, int most)
{
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (a[i] != b[i] && levelsApart(a, b, i) > most) return false;
    return true;
}

/// The view changes, too, now and then.
std::string changeView(View& view, unsigned seed)
{
    switch (seed % 40) {
    case 0: view.setSize(120 + static_cast<int>(seed % 90), 100 + static_cast<int>(seed % 70)); return "size";
    case 1: view.setScaleMode(static_cast<ScaleMode>(seed / 40 % 4)); return "scale mode";
    case 2: view.setHostBackground({static_cast<std::uint8_t>(seed), 90, 90, 255}); return "background";
    case 3: view.setAlign(seed / 40 % 16); return "align";
    default: return {};
    }
}

TEST(Damage, DrawnInPartsAStageLooksAsDrawnWhole)
{
    // ZORVEX_TEST_SCENES, ZORVEX_TEST_FIRST_SCENE: so many instead, for a long look, and from which.
    const auto number = [](const char* name, unsigned otherwise) {
        const char* const text = std::getenv(name);
        return text != nullptr ? static_cast<unsigned>(std::atoi(text)) : otherwise;
    };
    const unsigned first = number("ZORVEX_TEST_FIRST_SCENE", 1), count = number("ZORVEX_TEST_SCENES", 60);
    unsigned failures = 0;
    for (unsigned seed = first; seed < first + count && failures < 30; ++seed) {
        Shown parts, whole;
        Meddler meddler(parts.stage, seed), twin(whole.stage, seed);
        std::mt19937 random(seed);
        std::string story;
        for (int step = 0; step < 120; ++step) {
            story += "\n" + std::to_string(step) + ":";
            for (unsigned i = 0, acts = 1 + static_cast<unsigned>(random() % 3); i < acts; ++i) {
                const std::string did = meddler.act();
                story += " " + did + ";";
                ASSERT_EQ(twin.act(), did);
            }
            const unsigned turn = static_cast<unsigned>(random());
            if (const std::string did = changeView(parts.stage.view(), turn); !did.empty())
                story += " " + did;
            changeView(whole.stage.view(), turn);
            const std::vector<IntRect> boxes = parts.drawChanges();
            parts.drawChanges(); // what showed only in drawing that it reaches further
            whole.drawWhole();
            const int most = meddler.hasFilters() ? 3 : 1;
            if (looksSame(parts.pixels, whole.pixels, most)) continue;
            ASSERT_EQ(parts.pixels.size(), whole.pixels.size());
            // Which of the two is it: was too little drawn again, or does a part look different?
            const std::vector<std::uint32_t> wanted = whole.pixels;
            for (std::uint32_t& pixel : whole.pixels) pixel ^= 0xFFFFFF;
            whole.draw(boxes);
            int missed = 0, different = 0, remembered = 0;
            IntRect where;
            for (std::size_t i = 0; i < wanted.size(); ++i) {
                if (levelsApart(parts.pixels, wanted, i) <= most) continue;
                const int x = static_cast<int>(i) % whole.width, y = static_cast<int>(i) / whole.width;
                where = render::unite(where, {x, y, x + 1, y + 1});
                if (levelsApart(whole.pixels, wanted, i) <= most)
                    ++remembered; // it depends on what was drawn before
                else
                    ++((whole.pixels[i] ^ wanted[i]) == 0xFFFFFF ? missed : different);
            }
            const std::string tail = story.size() > 1500 ? story.substr(story.size() - 1500) : story;
            ADD_FAILURE() << "scene " << seed << " step " << step << ": " << missed
                          << " pixels not drawn again, " << different << " drawn differently, " << remembered
                          << " for what was drawn before, within " << where.left << "," << where.top << " "
                          << where.right << "," << where.bottom << " of " << boxes.size()
                          << " boxes, the first " << (boxes.empty() ? 0 : boxes[0].left) << ","
                          << (boxes.empty() ? 0 : boxes[0].top) << " " << (boxes.empty() ? 0 : boxes[0].right)
                          << "," << (boxes.empty() ? 0 : boxes[0].bottom) << tail;
            ++failures;
            break;
        }
    }
}

TEST(Damage, DrawsAgainOnlyWhatShowsAPictureThatAScriptDrawsOn)
{
    Shown shown;
    const auto picture =
        std::make_shared<swf::Bitmap>(swf::Bitmap{10, 10, true, std::vector(100, 0xFF102030U)});
    const auto other = std::make_shared<swf::Bitmap>(*picture);
    Clip& root = *shown.stage.root();
    root.attachBitmap(picture, 0, false)->setX(10);
    root.attachBitmap(other, 1, false)->setX(60);
    const auto filled = root.attachEmpty(2, "filled");
    swf::FillStyle fill;
    fill.kind = swf::FillStyle::Kind::Bitmap;
    fill.matrix = {20, 0, 0, 20, 0, 0};
    fill.bitmap = picture;
    filled->drawing().beginFill(fill);
    for (const swf::Point corner : {swf::Point{0, 0}, {200, 0}, {200, 200}, {0, 200}})
        filled->drawing().lineTo(corner);
    filled->drawing().endFill();
    filled->setX(120);
    filled->setY(90);
    shown.drawChanges();
    const auto covered = [&](int x, int y) {
        const auto boxes = shown.stage.view().dirtyBoxes();
        return std::ranges::any_of(boxes, [&](const IntRect& box) {
            return box.contains({x, y, x + 1, y + 1});
        });
    };
    shown.stage.view().noteDrawnOn(*picture);
    EXPECT_TRUE(covered(15, 5));
    EXPECT_TRUE(covered(125, 95)) << "a fill";
    EXPECT_FALSE(covered(65, 5)) << "another picture";
    EXPECT_FALSE(covered(80, 60));
    shown.drawChanges();
    EXPECT_TRUE(shown.stage.view().dirtyBoxes().empty());
    // A mask that is on no list shows what it masks.
    const auto mask = std::make_shared<BitmapNode>(shown.stage, picture, false);
    root.childAt(1)->setMask(mask.get());
    shown.drawChanges();
    shown.stage.view().noteDrawnOn(*picture);
    EXPECT_TRUE(covered(5, 5));
}

TEST(Damage, WhatALayerHidShowsWhenItGoes)
{
    Shown shown;
    Clip& root = *shown.stage.root();
    const NodePtr layer = root.attach(shown.stage.movie(), 1, 0, "layer");
    root.attach(shown.stage.movie(), 2, 1, "below");
    layer->setClipDepth(1);
    shown.drawChanges();
    root.removeChild(*layer);
    shown.drawChanges();
    EXPECT_NE(shown.pixels[25 * 160 + 25], 0xFFFFFFFFU) << "further than the layer reached";
}

TEST(Damage, AMaskReachesAsFarAsTheFiltersOfWhatItMasks)
{
    Shown shown;
    Clip& root = *shown.stage.root();
    const NodePtr masked = root.attach(shown.stage.movie(), 2, 0, "masked");
    const NodePtr mask = root.attach(shown.stage.movie(), 1, 1, "mask");
    masked->setX(40);
    masked->setY(40);
    masked->setFilters({swf::BlurFilter{20, 20, 3}});
    mask->setX(50);
    mask->setY(50);
    masked->setMask(mask.get());
    shown.drawChanges();
    mask->setX(54);
    shown.drawChanges();
    const std::vector<std::uint32_t> parts = shown.pixels;
    shown.drawWhole();
    EXPECT_TRUE(looksSame(parts, shown.pixels, 1));
}

TEST(Damage, ThatAClipScrollsCountsForWhatItIsIn)
{
    Shown shown;
    const auto outer = shown.stage.root()->attachEmpty(0, "outer");
    const auto inner = outer->attachEmpty(0, "inner");
    inner->attach(shown.stage.movie(), 2, 0, "square");
    EXPECT_EQ(outer->bounds().width(), 600);
    inner->setScrollRect(swf::Rect{0, 100, 0, 100});
    EXPECT_EQ(outer->bounds().width(), 100);
    inner->setScrollRect({});
    EXPECT_EQ(outer->bounds().width(), 600);
}

TEST(Damage, WhatStandsWhereItStoodIsNotDrawnAgain)
{
    Shown shown;
    const NodePtr square = shown.stage.root()->attach(shown.stage.movie(), 1, 0, "square");
    shown.drawChanges();
    const auto there = [&] {
        square->setX(30);
        square->setScaleX(200);
    };
    const auto back = [&] {
        square->setX(0);
        square->setScaleX(100);
    };
    there();
    back();
    EXPECT_TRUE(shown.stage.view().dirtyBoxes().empty());
    there();
    EXPECT_FALSE(shown.drawChanges().empty()) << "still noted when it moves later";
    back();
    square->setAlpha(50);
    there();
    EXPECT_FALSE(shown.drawChanges().empty()) << "it looks another way";
    back();
    shown.stage.root()->removeChild(*square);
    EXPECT_FALSE(shown.drawChanges().empty());
    const std::vector<std::uint32_t> parts = shown.pixels;
    shown.drawWhole();
    EXPECT_EQ(parts, shown.pixels);
}

TEST(Damage, ALoopOfTheTimelineDrawsOnlyWhatItChanges)
{
    MovieBuilder movie(4, 160, 120);
    movie.square(1, 12, {200, 40, 40, 255});
    movie.square(2, 30, {40, 160, 60, 160});
    movie.tag(0, MovieBuilder::placed(1, 1, 0, 0, "stays"));
    movie.tag(1, MovieBuilder::placed(2, 3, 60, 40, "also"));
    movie.tag(3, MovieBuilder::placed(2, 2, 100, 80, "comes"));
    Shown shown(movie);
    const auto drawn = [&](int frame) {
        shown.stage.gotoFrame(frame);
        auto boxes = shown.drawChanges();
        const std::vector<std::uint32_t> parts = shown.pixels;
        shown.drawWhole();
        EXPECT_EQ(parts, shown.pixels) << frame;
        return boxes;
    };
    drawn(2);
    EXPECT_TRUE(drawn(1).empty()) << "as it was";
    EXPECT_TRUE(drawn(2).empty());
    EXPECT_EQ(drawn(3).size(), 1U);
    const auto back = drawn(1);
    ASSERT_EQ(back.size(), 1U) << "where something went";
    EXPECT_EQ(back[0].left, 99) << "with what its smoothed edges may touch";
    EXPECT_FALSE(drawn(0).empty());
    drawn(2);
    shown.stage.root()->childAt(kTimelineDepth + 3)->setX(10);
    EXPECT_FALSE(drawn(2).empty());
    shown.stage.root()->childAt(kTimelineDepth + 1)->setClipDepth(kTimelineDepth + 3);
    drawn(2);
    EXPECT_FALSE(drawn(1).empty()) << "a layer that the placement does not know of";
}

TEST(Damage, MasksMayGoRoundInARing)
{
    Shown shown;
    Clip& root = *shown.stage.root();
    std::vector<NodePtr> squares;
    for (int i = 0; i < 3; ++i) squares.push_back(root.attach(shown.stage.movie(), 1, i, "s"));
    for (std::size_t i = 0; i < 3; ++i) squares[i]->setMask(squares[(i + 1) % 3].get());
    shown.drawWhole();
    squares[0]->setX(5);
    shown.drawChanges();
}

} // namespace
} // namespace flash::stage::test
