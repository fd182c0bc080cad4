#include "QtPrint.h"
#include "browser/Resample.h"
#include "browser/SaveJpg.h"
#include "browser/cDIBSection.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace browser
{
namespace
{

QImage picture(int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y, qRgb(x * 3 % 256, y * 5 % 256, (x + y) * 7 % 256));
    }
    return image;
}

TEST(Bitmap, RowsAreBlueGreenRedPaddedToFourBytesAndBottomUp)
{
    cDIBSection bitmap;
    EXPECT_EQ(bitmap.DIBSectionBitsPtr(), nullptr);
    for (const int bad : {0, -1, 1 << 29}) EXPECT_FALSE(bitmap.Create(bad, 5)) << bad;
    EXPECT_EQ(bitmap.Width(), 0);

    QImage image(5, 2, QImage::Format_RGB32);
    image.fill(qRgb(1, 2, 3));
    image.setPixel(4, 1, qRgb(10, 20, 30));
    ASSERT_TRUE(bitmap.CreateFromPicture(image));
    EXPECT_EQ(bitmap.BytesPerScanLine(), 16);
    EXPECT_EQ(bitmap.header().biSizeImage, 32U);
    const std::uint8_t* bits = bitmap.DIBSectionBitsPtr();
    EXPECT_EQ(std::vector<int>(bits + 12, bits + 15), (std::vector<int>{30, 20, 10}))
        << "the bottom row first";
    EXPECT_EQ(std::vector<int>(bits + 16, bits + 19), (std::vector<int>{3, 2, 1}));
    EXPECT_EQ(bitmap.toImage().convertToFormat(QImage::Format_RGB32), image);
    bitmap.ClearUp();
    EXPECT_TRUE(bitmap.toImage().isNull());
}

TEST(Bitmap, CopiesPartsInAndOut)
{
    const QImage image = picture(20, 10);
    cDIBSection bitmap;
    bitmap.Create(8, 6);
    bitmap.LoadPictureBlt(image, 3, 2, 4, 3);
    const QImage got = bitmap.toImage();
    EXPECT_EQ(got.pixel(0, 0), image.pixel(3, 2));
    EXPECT_EQ(got.pixel(3, 2), image.pixel(6, 4));
    EXPECT_EQ(got.pixel(4, 3), qRgb(0, 0, 0));

    QImage target(20, 10, QImage::Format_RGB32);
    target.fill(Qt::white);
    QPainter painter(&target);
    bitmap.PaintPicture(painter, 10, 5, 2, 2, 1, 1);
    painter.end();
    EXPECT_EQ(target.pixel(10, 5), image.pixel(4, 3));
    EXPECT_EQ(target.pixel(12, 5), qRgb(255, 255, 255));
}

/// The stated formula, written down once more without any of the code under test.
std::uint8_t expected(const cDIBSection& source, int targetWidth, int targetHeight, int x, int y, int channel)
{
    const double sx = x * (double(source.Width() - 1) / targetWidth);
    const double sy = y * (double(source.Height() - 1) / targetHeight);
    const double fx = sx - std::floor(sx), fy = sy - std::floor(sy);
    const auto at = [&](int column, int row) {
        column = std::min(column, source.Width() - 1);
        row = std::min(row, source.Height() - 1);
        return double(source.DIBSectionBitsPtr()[row * source.BytesPerScanLine() + 3 * column + channel]);
    };
    const int left = int(sx), upper = int(sy);
    const double a = std::nearbyint((1 - fy) * at(left, upper) + fy * at(left, upper + 1));
    const double b = std::nearbyint((1 - fy) * at(left + 1, upper) + fy * at(left + 1, upper + 1));
    return static_cast<std::uint8_t>(std::nearbyint((1 - fx) * a + fx * b));
}

TEST(Bitmap, ResamplesToTheBitAsTheFormulaSays)
{
    std::mt19937 random(435);
    const auto any = [&random](int most) {
        return 1 + static_cast<int>(random() % static_cast<unsigned>(most));
    };
    for (int round = 0; round < 300; ++round) {
        // Small sources are where columns and rows run out; equal sizes are where fractions are odd.
        cDIBSection source, target, scalar;
        const int most = round % 3 == 0 ? 4 : 90;
        ASSERT_TRUE(source.Create(any(most), any(most)));
        source.RandomiseBits(static_cast<std::uint32_t>(round));
        if (round % 5 == 0)
            target.Create(source.Width(), source.Height());
        else
            target.Create(any(70), any(70));
        scalar.Create(target.Width(), target.Height());
        SCOPED_TRACE(QString("%1x%2 to %3x%4")
                         .arg(source.Width())
                         .arg(source.Height())
                         .arg(target.Width())
                         .arg(target.Height())
                         .toStdString());
        ASSERT_TRUE(target.Resample(source));
        const std::size_t line = static_cast<std::size_t>(target.BytesPerScanLine());
        resampleBilinearScalar({source.DIBSectionBitsPtr(), source.Width(), source.Height(),
                                static_cast<std::size_t>(source.BytesPerScanLine())},
                               {scalar.DIBSectionBitsPtr(), scalar.Width(), scalar.Height(), line});
        for (int y = 0; y < target.Height(); ++y) {
            for (int i = 0; i < 3 * target.Width(); ++i) {
                const std::size_t at = static_cast<std::size_t>(y) * line + static_cast<std::size_t>(i);
                const int want = expected(source, target.Width(), target.Height(), i / 3, y, i % 3);
                ASSERT_EQ(int(target.DIBSectionBitsPtr()[at]), want) << i << ", " << y;
                ASSERT_EQ(int(scalar.DIBSectionBitsPtr()[at]), want) << i << ", " << y;
            }
        }
    }
}

TEST(Bitmap, ResamplingNeedsTwoBitmapsAndMayBeOfItself)
{
    cDIBSection bitmap, none;
    bitmap.CreateFromPicture(picture(9, 7));
    EXPECT_FALSE(bitmap.Resample(none));
    EXPECT_FALSE(none.Resample(bitmap));
    cDIBSection copy = bitmap;
    EXPECT_TRUE(copy.Resample(bitmap));
    EXPECT_TRUE(bitmap.Resample(bitmap));
    EXPECT_EQ(bitmap.toImage(), copy.toImage());
}

class Jpeg : public testing::Test
{
protected:
    Jpeg()
    {
        application.LogFile = folder.filePath("log");
        bitmap.CreateFromPicture(picture(40, 30));
    }
    [[nodiscard]] QByteArray read(const QString& file) const
    {
        QFile opened(file);
        return opened.open(QFile::ReadOnly) ? opened.readAll() : QByteArray();
    }
    QTemporaryDir folder;
    core::Application application;
    cDIBSection bitmap;
};

TEST_F(Jpeg, WhatIsWrittenIsReadTheRightWayUp)
{
    const QString file = folder.filePath("a.jpg");
    QImage halves(40, 30, QImage::Format_RGB32);
    halves.fill(qRgb(200, 30, 40));
    for (int y = 15; y < 30; ++y)
        for (int x = 0; x < 40; ++x) halves.setPixel(x, y, qRgb(20, 60, 220));
    bitmap.CreateFromPicture(halves);
    ASSERT_TRUE(SaveJPG(application, bitmap, file, 75));
    const QImage got = loadThumbnail(file);
    ASSERT_EQ(got.size(), QSize(40, 30));
    EXPECT_GT(qRed(got.pixel(20, 3)), 180);
    EXPECT_GT(qBlue(got.pixel(20, 26)), 180);
    EXPECT_TRUE(read(application.LogFile).isEmpty());
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files).size(), 1) << "nothing temporary stays";
}

TEST_F(Jpeg, AFileThatCannotBeWrittenIsToldToTheJournal)
{
    EXPECT_FALSE(SaveJPG(application, bitmap, folder.filePath("no/such/folder/a.jpg"), 75));
    EXPECT_FALSE(SaveJPG(application, cDIBSection(), folder.filePath("a.jpg"), 75));
    cDIBSection tooWide; // the format's own limit is 65500
    tooWide.Create(70000, 1);
    EXPECT_FALSE(SaveJPG(application, tooWide, folder.filePath("a.jpg"), 75));
    EXPECT_EQ(read(application.LogFile).count("Failed to save to JPG "), 3);
    EXPECT_FALSE(QFile::exists(folder.filePath("a.jpg")));
}

TEST_F(Jpeg, ADamagedThumbnailIsAMissingOne)
{
    const QString file = folder.filePath("a.jpg");
    ASSERT_TRUE(SaveJPG(application, bitmap, file, 75));
    const QByteArray good = read(file);
    for (qsizetype length = 0; length < good.size(); length += 7) {
        QFile cut(file);
        ASSERT_TRUE(cut.open(QFile::WriteOnly));
        cut.write(good.left(length));
        cut.close();
        ASSERT_TRUE(loadThumbnail(file).isNull()) << length;
    }
    QFile text(file);
    ASSERT_TRUE(text.open(QFile::WriteOnly));
    text.write("this is no picture\xFF\xD9");
    text.close();
    EXPECT_TRUE(loadThumbnail(file).isNull());
    EXPECT_TRUE(loadThumbnail(folder.path()).isNull());
    EXPECT_TRUE(loadThumbnail(folder.filePath("none.jpg")).isNull());
}

} // namespace
} // namespace browser
