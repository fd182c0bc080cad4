#include "MovieBuilder.h"

#include "flash/render/Canvas.h"
#include "flash/stage/Graphics.h"
#include "flash/stage/Ground.h"
#include "flash/stage/Renderer.h"
#include "flash/stage/Stage.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>

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

/// All of the stage, with nothing left out.
std::vector<std::uint32_t> drawnWhole(Stage& stage, render::RenderCache& cache)
{
    std::vector<std::uint32_t> pixels(std::size_t{kWidth} * kHeight);
    render::Canvas canvas({pixels.data(), kWidth, kHeight, kWidth}, render::Quality::High, cache);
    canvas.clear(stage.view().background());
    Renderer renderer(canvas, stage.view().matrix());
    renderer.drawNode(*stage.root(), stage.view().matrix(), {});
    return pixels;
}

/// Things here and there, within each other, that are changed in any way.
struct Meddled : Shown {
    explicit Meddled(unsigned seed) : random(seed)
    {
        std::vector<Clip*> clips{stage.root()};
        for (int i = 0; i < 12; ++i) {
            Clip& to = *clips[static_cast<std::size_t>(upTo(static_cast<int>(clips.size()) - 1))];
            if (upTo(3) == 0) {
                nodes.push_back(to.attachEmpty(i, "c"));
                clips.push_back(static_cast<Clip*>(nodes.back().get()));
            } else {
                nodes.push_back(attach(to, static_cast<std::uint16_t>(1 + upTo(1)), i, upTo(80), upTo(40)));
            }
        }
    }
    int upTo(int most) { return static_cast<int>(random() % static_cast<unsigned>(most + 1)); }
    void change()
    {
        Node& node = *nodes[static_cast<std::size_t>(upTo(11))];
        const bool on = upTo(1) == 0;
        swf::ColorTransform pale;
        pale.alphaMul = 128;
        switch (upTo(10)) {
        case 9:
        case 10:
        case 0: node.setMatrix({20, 0, 0, 20, upTo(400) * -10.0, upTo(400) * -10.0}); break;
        case 1: node.setMatrix({1, 0.2, 0, 1, upTo(80) * 20.0, upTo(40) * 20.0}); break;
        case 2: node.setVisible(on); break;
        case 3: node.setColor(pale); break;
        case 4: node.setColor({}); break;
        case 5: node.setBlend(on ? swf::BlendMode::Multiply : swf::BlendMode::Normal); break;
        case 6: node.setClipDepth(on ? std::optional(node.depth() + upTo(4)) : std::nullopt); break;
        case 7:
            node.setFilters(on ? std::vector<swf::Filter>{swf::BlurFilter{}} : std::vector<swf::Filter>{});
            break;
        default: nodes[0]->setMask(on ? nodes[1].get() : nullptr);
        }
    }
    std::mt19937 random;
    std::vector<NodePtr> nodes;
};

// What a ground hides is not drawn. Nothing else may tell: whatever lies above or below it, is cut, blended
// or filtered, and wherever it goes afterwards.
TEST(Pictures, GroundsHideOnlyWhatIsHidden)
{
    int grounds = 0;
    for (unsigned scene = 0; scene < 150; ++scene) {
        Meddled shown(scene), compared(scene);
        View& view = shown.stage.view();
        std::vector<std::uint32_t> pixels(std::size_t{kWidth} * kHeight);
        render::Canvas canvas({pixels.data(), kWidth, kHeight, kWidth}, render::Quality::High,
                              view.renderCache());
        for (int step = 0; step < 15; ++step) {
            SCOPED_TRACE(std::to_string(scene) + " " + std::to_string(step));
            const auto boxes = view.dirtyBoxes();
            const std::vector<render::IntRect> dirty(boxes.begin(), boxes.end());
            for (const render::IntRect& box : dirty)
                grounds += groundOf(shown.stage, view.matrix(), box) != nullptr ? 1 : 0;
            view.render(canvas, dirty);
            const auto whole = drawnWhole(compared.stage, compared.stage.view().renderCache());
            const auto away = std::ranges::mismatch(pixels, whole).in1 - pixels.begin();
            ASSERT_EQ(pixels, whole) << away % kWidth << "," << away / kWidth;
            shown.change();
            compared.change();
        }
    }
    EXPECT_GT(grounds, 300);
}

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
