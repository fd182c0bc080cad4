#include "flash/render/SpanPainter.h"
#include "flash/render/Compose.h"
#include "flash/render/ScanConverter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace flash::render
{
namespace
{

/// Hands on rows, and says nothing of pixels or colours: all comes as spans then.
class RowsOnly final : public SpanSink
{
public:
    explicit RowsOnly(SpanSink& to) : m_to(to) {}
    void row(int y, std::span<const StyleSpan> spans) override { m_to.row(y, spans); }

private:
    SpanSink& m_to;
};

struct Polygon {
    std::vector<std::pair<int, int>> corners; ///< steps of the grid
};

Polygon randomPolygon(std::mt19937& random, int width, int height)
{
    Polygon polygon;
    const std::size_t corners = 3 + random() % 9;
    for (std::size_t i = 0; i < corners; ++i)
        polygon.corners.emplace_back(static_cast<int>(random() % static_cast<unsigned>(width * 6)) - width,
                                     static_cast<int>(random() % static_cast<unsigned>(height * 6)) - height);
    return polygon;
}

void convert(const Polygon& polygon, const IntRect& clip, FillRule rule, SpanSink& sink)
{
    ScanConverter converter;
    converter.begin(clip, Coverage::Grid4, 1);
    converter.setStyles(0, 1);
    auto from = polygon.corners.back();
    for (const auto& to : polygon.corners) {
        converter.lineOnGrid(from.first, from.second, to.first, to.second);
        from = to;
    }
    converter.sweep(rule, sink);
}

Surface ground(int width, int height)
{
    std::mt19937 random(3);
    Surface surface(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const std::uint32_t grey = random() % 256;
            surface.row(y)[x] = 0xFF000000 | grey << 16 | (255 - grey) << 8 | grey / 2;
        }
    return surface;
}

TEST(SpanPainter, LaysOneColourTheSameWithSpansAndWithout)
{
    std::mt19937 random(11);
    constexpr std::uint32_t kColors[] = {0xFF804020, 0x80402010, 0x01010101, 0x00000000, 0xFFFFFFFF};
    // Clips that end within a group of pixels, at one, and one before.
    constexpr int kWidths[] = {1, 7, 8, 15, 61, 200};
    for (int round = 0; round < 600; ++round) {
        const int width = kWidths[static_cast<std::size_t>(round) % std::size(kWidths)], height = 40;
        const IntRect clip{3, 2, 3 + width, 2 + height};
        const FillRule rule = round % 2 == 0 ? FillRule::EvenOdd : FillRule::NonZero;
        const Polygon polygon = randomPolygon(random, width, height);
        Surface direct = ground(width + 9, height + 5), spans = ground(width + 9, height + 5);
        SpanPainter painter;
        painter.styles().push_back({kColors[static_cast<std::size_t>(round) % std::size(kColors)], nullptr});
        painter.setTarget({direct.view(), 0, 0}, nullptr);
        convert(polygon, clip, rule, painter);
        painter.setTarget({spans.view(), 0, 0}, nullptr);
        RowsOnly rows(painter);
        convert(polygon, clip, rule, rows);
        for (int y = 0; y < direct.height(); ++y)
            for (int x = 0; x < direct.width(); ++x)
                ASSERT_EQ(direct.pixel(x, y), spans.pixel(x, y)) << round << ": " << x << ", " << y;
    }
}

TEST(SpanPainter, LaysGradientsTheSameWithSpansAndWithout)
{
    std::mt19937 random(12);
    // The last one is wider than the blocks that rows of gradients are worked out in.
    constexpr int kWidths[] = {1, 7, 8, 15, 61, 700};
    for (int round = 0; round < 300; ++round) {
        const int width = kWidths[static_cast<std::size_t>(round) % std::size(kWidths)], height = 30;
        const IntRect clip{3, 2, 3 + width, 2 + height};
        const FillRule rule = round % 2 == 0 ? FillRule::EvenOdd : FillRule::NonZero;
        const Polygon polygon = randomPolygon(random, width, height);
        swf::Gradient gradient;
        const auto alpha = static_cast<std::uint8_t>(round % 3 == 0 ? 255 : round % 3 == 1 ? 90 : 0);
        gradient.stops = {{0, {250, 10, 90, 255}}, {255, {0, 200, 30, alpha}}};
        const auto ramp = std::make_shared<const GradientRamp>(makeRamp(gradient, {}));
        const auto kind =
            round % 5 == 0 ? swf::FillStyle::Kind::LinearGradient : swf::FillStyle::Kind::RadialGradient;
        Surface direct = ground(width + 9, height + 5), spans = ground(width + 9, height + 5);
        SpanPainter painter;
        painter.styles().push_back(
            {0, makeGradientPaint(kind, gradient, ramp, {0.0013, 0.0004, -0.0002, 0.0017, 20.3, 15.8})});
        painter.setTarget({direct.view(), 0, 0}, nullptr);
        convert(polygon, clip, rule, painter);
        painter.setTarget({spans.view(), 0, 0}, nullptr);
        RowsOnly rows(painter);
        convert(polygon, clip, rule, rows);
        for (int y = 0; y < direct.height(); ++y)
            for (int x = 0; x < direct.width(); ++x)
                ASSERT_EQ(direct.pixel(x, y), spans.pixel(x, y)) << round << ": " << x << ", " << y;
    }
}

TEST(SpanPainter, FillsAsManyPixelsAsItIsTold)
{
    for (const unsigned count : {0U, 1U, 511U, 512U, 5000U}) {
        std::vector<std::uint32_t> pixels(count + 2, 7);
        fillPixels(pixels.data() + 1, count, 0x80FF0102);
        EXPECT_EQ(pixels.front(), 7U);
        EXPECT_EQ(pixels.back(), 7U);
        EXPECT_EQ(std::ranges::count(pixels, 0x80FF0102U), std::ptrdiff_t{count});
    }
}

} // namespace
} // namespace flash::render
