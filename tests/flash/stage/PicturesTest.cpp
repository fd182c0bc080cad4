#include "MovieBuilder.h"

#include "flash/render/Canvas.h"
#include "flash/stage/Graphics.h"
#include "flash/stage/Stage.h"

#include <gtest/gtest.h>

// Where what is on the display list is seen, to the pixel.
namespace flash::stage::test
{
namespace
{

constexpr int kWidth = 100, kHeight = 60;
constexpr std::uint32_t kWhite = 0xFFFFFFFF, kRed = 0xFFFF0000, kBlue = 0xFF0000FF;

struct Shown {
    Shown()
    {
        MovieBuilder movie(1, kWidth, kHeight);
        movie.movie().header.version = 8;
        movie.square(1, 10);
        movie.square(2, 20, {0, 0, 255, 255});
        stage.open(movie.take(), "m.swf");
        stage.view().setSize(kWidth, kHeight);
    }
    NodePtr attach(Clip& to, std::uint16_t id, int depth, double x, double y)
    {
        NodePtr node = to.attach(stage.movie(), id, depth, "n");
        node->setX(x);
        node->setY(y);
        return node;
    }
    std::uint32_t at(int x, int y)
    {
        std::vector<std::uint32_t> pixels(std::size_t{kWidth} * kHeight);
        render::Canvas canvas({pixels.data(), kWidth, kHeight, kWidth}, render::Quality::Low,
                              stage.view().renderCache());
        const render::IntRect all{0, 0, kWidth, kHeight};
        stage.view().render(canvas, {&all, 1});
        return pixels[static_cast<std::size_t>(y * kWidth + x)];
    }
    NullServices services;
    Stage stage{services.services(), nullptr};
};

TEST(Pictures, AMaskIsNotCutByWhatItHolds)
{
    Shown shown;
    Clip& root = *shown.stage.root();
    shown.attach(root, 2, 0, 0, 0);
    auto mask = root.attachEmpty(1, "mask");
    shown.attach(*mask, 1, 0, 0, 0)->setClipDepth(1);
    shown.attach(*mask, 2, 1, 5, 5);
    root.childAt(0)->setMask(mask.get());
    EXPECT_EQ(shown.at(7, 7), kBlue);
    EXPECT_EQ(shown.at(15, 15), kBlue) << "beyond the clip layer";
    EXPECT_EQ(shown.at(2, 2), kWhite) << "the clip layer itself lets nothing through";
}

TEST(Pictures, APictureHoldsWhatFiltersOfItsPartsAdd)
{
    Shown shown;
    Clip& root = *shown.stage.root();
    auto kept = root.attachEmpty(0, "kept");
    kept->setX(40);
    kept->setY(20);
    const NodePtr part = shown.attach(*kept, 2, 0, 0, 0);
    part->setFilters({swf::BlurFilter{21, 21, 1}});
    const std::uint32_t outside = shown.at(35, 30);
    EXPECT_NE(outside, kWhite);
    kept->setCacheAsBitmap(true);
    EXPECT_EQ(shown.at(35, 30), outside);
    kept->setCacheAsBitmap(false);
    kept->setBlend(swf::BlendMode::Layer);
    EXPECT_EQ(shown.at(35, 30), outside);
}

// At nine tenths 7 twips are 6.3: with the parent's 204 that is half a pixel after 10, not a hair more.
TEST(Pictures, PlacesAreWholeTwips)
{
    Shown shown;
    auto parent = shown.stage.root()->attachEmpty(0, "parent");
    parent->setMatrix({0.9, 0, 0, 0.9, 204, 0});
    shown.attach(*parent, 1, 0, 0, 0)->setMatrix({1, 0, 0, 1, 7, 0});
    EXPECT_EQ(shown.at(10, 3), kRed);
}

TEST(Pictures, BitmapsSnapUnlessScaledOrToldNotTo)
{
    Shown shown;
    auto bitmap =
        std::make_shared<swf::Bitmap>(swf::Bitmap{4, 4, true, std::vector<std::uint32_t>(16, kRed)});
    Clip& root = *shown.stage.root();
    const NodePtr node = root.attachBitmap(bitmap, 0, false);
    node->setX(10.5);
    EXPECT_EQ(shown.at(10, 1), kWhite);
    EXPECT_EQ(shown.at(14, 1), kRed);
    static_cast<BitmapNode&>(*node).setSnapping(PixelSnapping::Never);
    EXPECT_EQ(shown.at(10, 1), kRed);
    static_cast<BitmapNode&>(*node).setSnapping(PixelSnapping::Auto);
    node->setMatrix({2, 0, 0, 2, 210, 0});
    EXPECT_EQ(shown.at(10, 1), kRed);
    static_cast<BitmapNode&>(*node).setSnapping(PixelSnapping::Always);
    EXPECT_EQ(shown.at(10, 1), kWhite);
}

} // namespace
} // namespace flash::stage::test
