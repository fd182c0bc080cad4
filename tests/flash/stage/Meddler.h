#pragma once

#include "flash/stage/Clip.h"
#include "flash/stage/Drawing.h"
#include "flash/stage/Stage.h"

#include <array>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace flash::stage::test
{

/// Does something at random to a stage, and tells what. The same seed does the same to two stages.
class Meddler
{
public:
    Meddler(Stage& stage, unsigned seed) : m_stage(stage), m_random(seed)
    {
        for (auto& picture : m_pictures)
            picture =
                std::make_shared<swf::Bitmap>(swf::Bitmap{24, 18, false, std::vector(24 * 18, 0xFF3060A0U)});
    }

    std::string act()
    {
        std::vector<Node*> nodes;
        list(*m_stage.root(), nodes);
        Node& node = *nodes[below(nodes.size())];
        const std::string name = nameOf(node); // while it is there
        return "node " + name + ": " + change(node, nodes);
    }
    /// Some have been set, so far.
    [[nodiscard]] bool hasFilters() const { return m_hasFilters; }

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
        m_hasFilters = true;
        switch (below(7)) {
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
        case 5: {
            swf::DisplacementMapFilter map;
            map.map = m_pictures[below(2)];
            map.componentX = map.componentY = 1;
            map.scaleX = map.scaleY = between(0, 20);
            return map;
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
        if (maybe(4)) {
            fill.kind = swf::FillStyle::Kind::Bitmap;
            fill.matrix = {20, 0, 0, 20, 20 * between(0, 20), 0};
            fill.bitmap = m_pictures[below(2)];
            fill.repeat = maybe(2);
        }
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
        if (maybe(5)) {
            if (const NodePtr made = clip->attachBitmap(m_pictures[below(2)], depth, maybe(2)))
                made->setX(between(0, 80));
            return "adds a picture";
        }
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
        switch (nodes.size() < 6 ? below(2) + 18 : below(20)) {
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
        case 17: {
            const auto& picture = m_pictures[below(2)];
            std::fill_n(picture->pixels.begin() + static_cast<int>(24 * below(18)), 24,
                        color().a == 255 ? 0xFF20C040U : 0U);
            m_stage.view().noteDrawnOn(*picture);
            return "draws on a picture";
        }
        default: return add(node);
        }
    }

    Stage& m_stage;
    std::mt19937 m_random;
    std::array<std::shared_ptr<swf::Bitmap>, 2> m_pictures; ///< that nodes show, and that are drawn on
    bool m_hasFilters = false;
};

} // namespace flash::stage::test
