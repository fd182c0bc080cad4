#include "MovieBuilder.h"

#include "flash/stage/Damage.h"

#include "flash/render/Canvas.h"
#include "flash/stage/Drawing.h"
#include "flash/stage/Stage.h"

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
    Shown()
    {
        MovieBuilder movie(1, 160, 120);
        movie.movie().header.version = 8;
        movie.square(1, 12, {200, 40, 40, 255});
        movie.square(2, 30, {40, 160, 60, 160});
        stage.open(movie.take(), "m.swf");
        stage.view().setSize(160, 120);
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

/// Does something at random to a stage, and tells what. The same seed does the same to two stages.
class Meddler
{
public:
    Meddler(Stage& stage, unsigned seed) : m_stage(stage), m_random(seed) {}

    std::string act()
    {
        std::vector<Node*> nodes;
        list(*m_stage.root(), nodes);
        Node& node = *nodes[below(nodes.size())];
        const std::string name = nameOf(node); // while it is there
        return "node " + name + ": " + change(node, nodes);
    }

private:
    static std::string nameOf(const Node& node)
    {
        return node.parent() == nullptr ? "root"
                                        : nameOf(*node.parent()) + "." + std::to_string(node.depth());
    }
    static void list(Node& node, std::vector<Node*>& nodes)
    {
        nodes.push_back(&node);
        for (const NodePtr& child : node.children()) list(*child, nodes);
    }
    unsigned below(std::size_t count) { return static_cast<unsigned>(m_random() % count); }
    double between(double least, double most) { return least + (most - least) * below(1000) / 1000; }
    bool maybe(unsigned oneIn) { return below(oneIn) == 0; }
    swf::Rgba color()
    {
        const auto level = [this] { return static_cast<std::uint8_t>(below(256)); };
        return {level(), level(), level(), maybe(2) ? std::uint8_t{255} : level()};
    }
    swf::Rect rect(int most)
    {
        const auto side = [&] { return static_cast<std::int32_t>(20 * between(5, most)); };
        return {0, side(), 0, side()};
    }

    swf::Filter filter()
    {
        const double blur = between(0, 12);
        switch (below(6)) {
        case 0: return swf::BlurFilter{blur, between(0, 12), 1 + static_cast<int>(below(3))};
        case 1: {
            swf::DropShadowFilter shadow;
            shadow.color = color();
            shadow.blurX = shadow.blurY = blur;
            shadow.angle = between(0, 6);
            shadow.distance = between(0, 15);
            shadow.strength = 1;
            shadow.inner = maybe(4);
            return shadow;
        }
        case 2: {
            swf::BevelFilter bevel;
            bevel.highlight = color();
            bevel.shadow = color();
            bevel.blurX = bevel.blurY = blur;
            bevel.angle = between(0, 6);
            bevel.distance = between(0, 6);
            bevel.strength = 1;
            bevel.inner = maybe(2);
            return bevel;
        }
        case 3: {
            swf::ColorMatrixFilter matrix;
            for (std::size_t i = 0; i < 4; ++i) matrix.matrix[i * 6] = between(0, 1.5);
            matrix.matrix[19] = maybe(3) ? 60 : 0;
            return matrix;
        }
        case 4: {
            swf::ConvolutionFilter convolution;
            convolution.columns = convolution.rows = 3;
            convolution.matrix = {0, 1, 0, 1, 1, 1, 0, 1, 0};
            convolution.divisor = 5;
            return convolution;
        }
        default: {
            swf::GlowFilter glow;
            glow.color = color();
            glow.blurX = glow.blurY = blur;
            glow.strength = 2;
            glow.knockout = maybe(5);
            return glow;
        }
        }
    }

    void draw(Clip& clip)
    {
        Drawing& pen = clip.drawing();
        if (maybe(3)) pen.clear();
        if (!maybe(3)) {
            swf::LineStyle line;
            line.width = static_cast<std::uint16_t>(below(200));
            line.color = color();
            line.noHorizontalScale = line.noVerticalScale = maybe(3);
            line.join = maybe(2) ? swf::LineStyle::Join::Miter : swf::LineStyle::Join::Round;
            pen.lineStyle(line);
        }
        swf::FillStyle fill;
        fill.color = color();
        pen.beginFill(fill);
        const auto point = [this] { return swf::Point{20 * between(0, 40), 20 * between(0, 40)}; };
        pen.moveTo(point());
        pen.lineTo(point());
        pen.curveTo(point(), point());
        pen.endFill();
        pen.lineStyle({});
        clip.contentChanged();
    }

    std::string add(Node& node)
    {
        Clip* clip = asClip(&node);
        if (clip == nullptr) return "nothing";
        const int depth = clip->nextHighestDepth();
        if (depth > 12) return "nothing";
        if (maybe(2)) {
            const auto made = clip->attachEmpty(depth, "c");
            if (made) draw(*made);
            return "adds a clip";
        }
        const NodePtr made =
            clip->attach(m_stage.movie(), static_cast<std::uint16_t>(1 + below(2)), depth, "s");
        if (made) made->setX(between(0, 80));
        return "adds a square";
    }

    std::string change(Node& node, const std::vector<Node*>& nodes)
    {
        Clip* clip = asClip(&node);
        Clip* parent = node.parentClip();
        switch (nodes.size() < 6 ? below(2) + 17 : below(19)) {
        case 0:
            node.setMatrix({between(-2, 2), between(-1, 1), between(-1, 1), between(-2, 2),
                            20 * between(0, 120), 20 * between(0, 90)});
            return "matrix";
        case 1:
        case 2: node.setX(node.x() + between(-9, 9)); return "x";
        case 3: node.setY(node.y() + between(-9, 9)); return "y";
        case 4: node.setVisible(!node.isVisible()); return "visible";
        case 5: node.setAlpha(between(0, 100)); return "alpha";
        case 6:
            node.setBlend(static_cast<swf::BlendMode>(1 + below(14)));
            return "blend " + std::to_string(static_cast<int>(node.blend()));
        case 7:
        case 8: {
            const auto filters = maybe(3) ? std::vector<swf::Filter>{} : std::vector{filter()};
            node.setFilters(filters);
            return "filters " + (filters.empty() ? std::string("none") : std::to_string(filters[0].index()));
        }
        case 9: node.setCacheAsBitmap(!node.cacheAsBitmap()); return "cacheAsBitmap";
        case 10:
            node.setOpaqueBackground(maybe(2) ? std::optional(color()) : std::nullopt);
            return "opaqueBackground";
        case 11:
            if (clip != nullptr && parent != nullptr)
                clip->setScrollRect(maybe(2) ? std::optional(rect(50)) : std::nullopt);
            return "scrollRect";
        case 12:
            if (clip != nullptr && parent != nullptr)
                clip->setScalingGrid(maybe(2) ? std::optional(swf::Rect{100, 300, 100, 300}) : std::nullopt);
            return "scalingGrid";
        case 13: {
            Node* mask = nodes[below(nodes.size())];
            bool related = maybe(3);
            for (const Node* at = mask; at; at = at->parent()) related = related || at == &node;
            for (const Node* at = &node; at; at = at->parent()) related = related || at == mask;
            node.setMask(related ? nullptr : mask);
            return related ? "no mask" : "mask " + std::to_string(mask->depth());
        }
        case 14:
            if (parent != nullptr && node.mask() == nullptr && node.maskee() == nullptr)
                node.setClipDepth(maybe(2) ? std::optional(node.depth() + 2) : std::nullopt);
            return "clipDepth";
        case 15:
            if (clip != nullptr) draw(*clip);
            return "draws";
        case 16:
            if (parent == nullptr || !maybe(3)) return "nothing";
            if (maybe(2)) {
                parent->swapDepths(node, node.depth() + 1);
                return "swapDepths";
            }
            parent->removeChild(node);
            return "removed";
        default: return add(node);
        }
    }

    Stage& m_stage;
    std::mt19937 m_random;
};

/// Sums of what several fills give to a pixel are rounded in one order or another, for what is drawn beside
/// it: one level of 256 is no difference.
bool looksSame(std::uint32_t a, std::uint32_t b)
{
    for (unsigned shift = 0; shift < 32; shift += 8)
        if (std::abs(static_cast<int>(a >> shift & 255) - static_cast<int>(b >> shift & 255)) > 1)
            return false;
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
    // ZORVEX_TEST_SCENES: so many instead, for a long look.
    const char* const asked = std::getenv("ZORVEX_TEST_SCENES");
    const unsigned scenes = asked != nullptr ? static_cast<unsigned>(std::atoi(asked)) : 60;
    for (unsigned seed = 1; seed <= scenes; ++seed) {
        Shown parts, whole;
        Meddler meddler(parts.stage, seed), twin(whole.stage, seed);
        std::mt19937 random(seed);
        std::string story;
        for (int step = 0; step < 120; ++step) {
            story += "\n" + std::to_string(step) + ":";
            for (unsigned i = 0, count = 1 + static_cast<unsigned>(random() % 3); i < count; ++i) {
                const std::string did = meddler.act();
                story += " " + did + ";";
                ASSERT_EQ(twin.act(), did);
            }
            const unsigned turn = static_cast<unsigned>(random());
            if (const std::string did = changeView(parts.stage.view(), turn); !did.empty())
                story += " " + did;
            changeView(whole.stage.view(), turn);
            const std::vector<IntRect> boxes = parts.drawChanges();
            whole.drawWhole();
            if (std::ranges::equal(parts.pixels, whole.pixels, looksSame)) continue;
            ASSERT_EQ(parts.pixels.size(), whole.pixels.size());
            // Which of the two is it: was too little drawn again, or does a part look different?
            const std::vector<std::uint32_t> wanted = whole.pixels;
            for (std::uint32_t& pixel : whole.pixels) pixel ^= 0xFFFFFF;
            whole.draw(boxes);
            int missed = 0, different = 0, remembered = 0;
            IntRect where;
            for (std::size_t i = 0; i < wanted.size(); ++i) {
                if (looksSame(parts.pixels[i], wanted[i])) continue;
                const int x = static_cast<int>(i) % whole.width, y = static_cast<int>(i) / whole.width;
                where = render::unite(where, {x, y, x + 1, y + 1});
                if (looksSame(whole.pixels[i], wanted[i]))
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
            break;
        }
        if (HasFailure() && seed % 8 == 0) break;
    }
}

} // namespace
} // namespace flash::stage::test
