#pragma once

#include "Shapes.h"

#include <cmath>
#include <random>

// Pictures of all that a canvas can draw, for tests that draw them in two ways.
namespace flash::render::test
{

/// Shapes of a seed: fills that meet and overlap, lines, gradients, bitmaps, holes.
class Scene
{
public:
    explicit Scene(unsigned seed, int shapes = 24) : m_random(seed)
    {
        for (int i = 0; i < shapes; ++i) m_shapes.push_back(make(i));
        m_bitmap.width = m_bitmap.height = 16;
        for (int i = 0; i < 256; ++i)
            m_bitmap.pixels.push_back(0xFF000000U | static_cast<unsigned>(i * 66051));
    }

    /// @param time moves everything: what comes twice with the same is the same picture
    void draw(Canvas& canvas, int width, int height, int time) const
    {
        canvas.clear({230, 230, 240, 255});
        for (std::size_t i = 0; i < m_shapes.size(); ++i) {
            const int n = static_cast<int>(i);
            const swf::Matrix place = at(n, width, height, time);
            swf::ColorTransform color;
            if (n % 4 == 1) color.alphaMul = 128;
            switch (n % 8) {
            case 2: // seen through another
                canvas.beginMask();
                canvas.drawShape(m_shapes[(i + 3) % m_shapes.size()], place);
                canvas.endMask();
                canvas.drawShape(m_shapes[i], place, color);
                canvas.popMask();
                break;
            case 3:
            case 7: {
                const auto filters = filtersOf(n / 4);
                canvas.beginLayer(deviceBounds(m_shapes[i]->bounds, place), filters);
                canvas.drawShape(m_shapes[i], place, color);
                canvas.endLayer(n % 8 == 3 ? swf::BlendMode::Multiply : swf::BlendMode::Normal, {}, filters);
                break;
            }
            case 4:
                canvas.beginMask(MaskKind::Alpha);
                canvas.drawShape(m_shapes[(i + 1) % m_shapes.size()], place, {.alphaMul = 180});
                canvas.endMask();
                canvas.beginLayer(canvas.clip());
                canvas.drawShape(m_shapes[i], place);
                canvas.drawBitmap(m_bitmap, {3, 1, -1, 3, place.tx, place.ty}, color, Smoothing::On);
                canvas.endLayer(swf::BlendMode::Screen);
                canvas.popMask();
                break;
            case 5: canvas.drawShape(*m_shapes[i], place, color); break;
            default: canvas.drawShape(m_shapes[i], place, color);
            }
        }
        std::vector<GlyphPlacement> letters;
        for (int i = 0; i < 30; ++i) {
            const double size = i % 10 == 0 ? 0.2 : 0.02;
            letters.push_back({m_shapes[static_cast<std::size_t>(i) % m_shapes.size()],
                               {size, 0, 0, size, 9.3 * i, height / 2.0 + 3 * (i % 5)}});
        }
        canvas.drawGlyphs(letters, {20, 30, 160, 255});
        canvas.strokeRect({100, 1500, 200, 1700}, kStage, {255, 0, 0, 255});
        canvas.invertRect({2000, 2400, 500, 2500}, kStage);
        canvas.fillRect({700, 1333, 777, 2111}, kStage, {0, 90, 0, 128});
    }

private:
    static std::vector<swf::Filter> filtersOf(int n)
    {
        const swf::Rgba dark{0, 0, 60, 255}, light{255, 255, 200, 255};
        switch (n % 6) {
        case 0: return {swf::BlurFilter{5, 3, 2}};
        case 1: return {swf::DropShadowFilter{dark, 6, 9, 1, 7, 1.5, true}};
        case 2: return {swf::GlowFilter{light, 9, 9, 2, true}, swf::BlurFilter{2, 2, 1}};
        case 3: return {swf::BevelFilter{light, dark, 5, 5, 2, 6, 1, true}};
        case 4:
            return {swf::ConvolutionFilter{3, 5, 15, 0, std::vector<double>(15, 1), dark, true, true},
                    swf::DropShadowFilter{dark, 3, 3, -2, 11, 1}};
        default: return {swf::GradientFilter{true, {{0, light}, {255, dark}}, 7, 7, 1, 5, 1, true}};
        }
    }

    double part() { return std::uniform_real_distribution<double>(0, 1)(m_random); }

    [[nodiscard]] static swf::Matrix at(int n, int width, int height, int time)
    {
        const double turn = n % 3 == 0 ? 0.4 * n : 0, scale = (n % 5 == 0 ? 1.37 : 1) / swf::kTwipsPerPixel;
        const double c = scale * std::cos(turn), s = scale * std::sin(turn);
        // By whole pixels, by quarters, by twips.
        const double step = n % 3 == 0 ? 3 : n % 3 == 1 ? 0.25 : 0.05;
        return {
            c, s, -s, c, std::fmod(n * 53.0, width) + step * time, std::fmod(n * 37.0, height) - step * time};
    }

    std::shared_ptr<const swf::Shape> make(int n)
    {
        swf::ShapeLayer layer;
        swf::FillStyle fill =
            solid(static_cast<std::uint8_t>(m_random()), static_cast<std::uint8_t>(m_random()),
                  static_cast<std::uint8_t>(m_random()), n % 6 == 5 ? 140 : 255);
        layer.fills.push_back(fill);
        if (n % 4 == 3) {
            fill.kind = swf::FillStyle::Kind::RadialGradient;
            fill.gradient.stops = {{0, {255, 255, 255, 255}}, {255, fill.color}};
            fill.matrix = {0.04, 0, 0, 0.04, 0, 0};
        } else {
            std::swap(fill.color.r, fill.color.b);
        }
        layer.fills.push_back(fill);
        if (n % 3 == 1) {
            swf::LineStyle line;
            line.width = static_cast<std::uint16_t>(n % 2 == 0 ? 0 : 50);
            line.color = {0, 0, 40, 255};
            line.pixelHinting = n % 9 == 4;
            layer.lines.push_back(line);
        }
        const double size = 10 + 40 * part();
        for (int ring = 0; ring < 2; ++ring) {
            swf::EdgeRun run;
            run.fill1 = static_cast<std::uint16_t>(1 + ring);
            run.fill0 = static_cast<std::uint16_t>(n % 2 == 0 ? ring : 0);
            run.line = layer.lines.empty() ? 0 : 1;
            const double radius = ring == 0 ? size : size * 0.6;
            run.startX = twips(radius);
            for (int k = 1; k <= 6; ++k) {
                const double angle = k * 1.0471975511965976,
                             r = k == 6 ? radius : radius * (0.6 + 0.6 * part());
                const double bend = angle - 0.5;
                run.edges.push_back(k % 2 == 0 ? lineTo(r * std::cos(angle), r * std::sin(angle))
                                               : curveTo(1.2 * r * std::cos(bend), 1.2 * r * std::sin(bend),
                                                         r * std::cos(angle), r * std::sin(angle)));
            }
            run.edges.back().anchorX = run.startX;
            run.edges.back().anchorY = run.startY;
            layer.runs.push_back(std::move(run));
        }
        // With a long border that lies between the rows of pixels.
        if (n % 7 == 0) layer.runs.push_back(rectRun(-60, 5.4, 60, 12.6, 1, layer.lines.empty() ? 0 : 1));
        return shapeOf(std::move(layer));
    }

    std::mt19937 m_random;
    std::vector<std::shared_ptr<const swf::Shape>> m_shapes;
    swf::Bitmap m_bitmap;
};

} // namespace flash::render::test
