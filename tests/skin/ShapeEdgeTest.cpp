#include "skin/ShapeEdge.h"

#include <QImage>
#include <QPainter>
#include <gtest/gtest.h>

#include <cmath>

namespace skin
{
namespace
{

int coverAt(const QImage& cover, int x, int y) { return cover.constScanLine(y)[x]; }

TEST(ShapeEdge, KeepsStraightSidesAndRightAnglesSharp)
{
    const QRegion shape = QRegion(3, 4, 60, 40) - QRegion(20, 10, 12, 9) - QRegion(3, 4, 8, 5);
    const QImage cover = coverOf(shape);
    ASSERT_EQ(cover.size(), QSize(60, 40));
    for (int y = 0; y < 40; ++y)
        for (int x = 0; x < 60; ++x)
            ASSERT_EQ(coverAt(cover, x, y), shape.contains(QPoint(x + 3, y + 4)) ? 255 : 0) << x << ' ' << y;
}

TEST(ShapeEdge, SmoothsSlopesAndCurves)
{
    // Pixels of a disc by their centres, and the true cover of each from 16 by 16 samples. The smooth outline
    // lies within the pixels of the region, half a pixel further in than the disc's on the average.
    constexpr int kSize = 81;
    constexpr double kRadius = 38.3;
    const auto isInside = [](double x, double y, double radius) {
        return std::hypot(x - kSize / 2.0, y - kSize / 2.0) < radius;
    };
    QRegion disc;
    for (int y = 0; y < kSize; ++y)
        for (int x = 0; x < kSize; ++x)
            if (isInside(x + 0.5, y + 0.5, kRadius)) disc += QRect(x, y, 1, 1);
    const QPoint origin = disc.boundingRect().topLeft();
    const QImage cover = coverOf(disc);
    double hard = 0, soft = 0;
    for (int y = 0; y < cover.height(); ++y) {
        for (int x = 0; x < cover.width(); ++x) {
            const bool has = disc.contains(origin + QPoint(x, y));
            ASSERT_TRUE(has || coverAt(cover, x, y) == 0);
            const auto trueCover = [&](double radius) {
                int inside = 0;
                for (int i = 0; i < 256; ++i)
                    inside += isInside(origin.x() + x + (i % 16 + 0.5) / 16,
                                       origin.y() + y + (i / 16 + 0.5) / 16, radius);
                return inside / 256.0;
            };
            soft += std::pow(coverAt(cover, x, y) / 255.0 - trueCover(kRadius - 0.5), 2);
            hard += std::pow((has ? 1 : 0) - trueCover(kRadius), 2);
        }
    }
    EXPECT_GT(coverAt(cover, cover.width() / 2, cover.height() / 2), 254);
    EXPECT_LT(soft, hard / 2) << soft << " against " << hard;
    // The stairs of a slope of one in eight become a ramp.
    QRegion slope;
    for (int x = 0; x < 64; ++x) slope += QRect(x, 8 - x / 8, 1, 20);
    const QImage ramp = coverOf(slope);
    for (int x = 8; x < 56; ++x) {
        const int top = 8 - x / 8 - slope.boundingRect().top();
        EXPECT_NEAR(coverAt(ramp, x, top), (x % 8 + 0.5) / 8 * 255, 1) << x;
    }
}

TEST(ShapeEdge, LeavesTheSideBesideARoundedCornerAlone)
{
    constexpr int kRadius = 10;
    QRegion rounded(0, 0, 200, 100);
    for (int y = 0; y < kRadius; ++y)
        for (int x = 0; x < kRadius; ++x)
            if (std::hypot(kRadius - x - 0.5, kRadius - y - 0.5) > kRadius) rounded -= QRect(x, y, 1, 1);
    const QImage cover = coverOf(rounded);
    int soft = 0;
    for (int y = 0; y < cover.height(); ++y) {
        for (int x = 0; x < cover.width(); ++x) {
            const int value = coverAt(cover, x, y);
            EXPECT_EQ(value != 0, rounded.contains(QPoint(x, y)));
            if (value == 0 || value == 255) continue;
            ++soft;
            EXPECT_TRUE(x < kRadius * 3 / 2 && y < kRadius * 3 / 2) << x << ' ' << y;
        }
    }
    EXPECT_GT(soft, 5);
}

TEST(ShapeEdge, SoftensOnlyWhatLiesUnderIt)
{
    QWidget area;
    area.resize(40, 40);
    QWidget ground(&area);
    ground.resize(40, 40);
    ground.setStyleSheet("background: white");
    ShapeEdge edge(&area);
    area.setAttribute(Qt::WA_TranslucentBackground);
    QRegion slope;
    for (int y = 0; y < 40; ++y) slope += QRect(0, y, 40 - y, 1);
    edge.setShape(slope);
    area.setMask(slope);
    area.show();
    QImage image(40, 40, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    area.render(&image, {}, {}, QWidget::DrawChildren);
    EXPECT_EQ(qAlpha(image.pixel(5, 5)), 255);
    EXPECT_EQ(qAlpha(image.pixel(30, 20)), 0);
    EXPECT_NEAR(qAlpha(image.pixel(19, 20)), 128, 2);
}

} // namespace
} // namespace skin
