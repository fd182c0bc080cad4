#include "QtPrint.h"
#include "base/Failure.h"
#include "skin/Catalogue.h"
#include "skin/Description.h"
#include "skin/ElementPointer.h"
#include "skin/Region.h"
#include "skin/SkinFiles.h"
#include "skin/WaitScreen.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <random>

namespace skin
{
namespace
{

TEST(ParseColor, ReadsBlueGreenRed)
{
    EXPECT_EQ(toColor(ParseColor("#0000FF")), QColor(255, 0, 0));
    EXPECT_EQ(toColor(ParseColor("#ff0000")), QColor(0, 0, 255));
    EXPECT_EQ(toColor(ParseColor("255")), QColor(255, 0, 0));
    EXPECT_EQ(ParseColor("0"), 0U);
    // Numbers of the system's palette and of an alpha are cut to the colour.
    EXPECT_EQ(ParseColor("#FF0000FF"), 0xFFU);
    EXPECT_EQ(ParseColor("-1"), 0xFFFFFFU);
    for (const char* text : {"", "red", "#", "#zz", "0x10"})
        EXPECT_THROW((void)ParseColor(text), base::Failure) << text;
}

TEST(Conversion, TakesWhatScriptsTake)
{
    EXPECT_TRUE(toBoolean("TRUE"));
    EXPECT_TRUE(toBoolean("-1"));
    EXPECT_FALSE(toBoolean("0"));
    EXPECT_THROW((void)toBoolean("yes"), base::Failure);
    EXPECT_EQ(toWhole("2.5"), 2);
    EXPECT_THROW((void)toWhole(""), base::Failure);
    EXPECT_THROW((void)toWhole("1e300"), base::Failure);
}

/// The same by the definition, pixel by pixel.
QRegion naive(const QImage& picture, SkinColour key, bool holes)
{
    QRegion region;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            if ((QColor(picture.pixel(x, y)).rgb() == toColor(key).rgb()) == holes)
                region |= QRect(x, y, 1, 1);
    return region;
}

TEST(Region, IsThatOfEveryPixel)
{
    constexpr SkinColour kKey = 0xFF00FF;
    std::mt19937 random(5);
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE(round);
        const int width = static_cast<int>(random() % 20);
        const int height = static_cast<int>(random() % 20);
        QImage picture(width, height, QImage::Format_RGB32);
        const unsigned share = random() % 5;
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                picture.setPixel(x, y, random() % 4 < share ? qRgb(255, 0, 255) : qRgb(255, 0, 254));
        // Equal regions may be kept as different rectangles.
        EXPECT_TRUE((GetHoleRegion(picture, kKey) ^ naive(picture, kKey, true)).isEmpty());
        EXPECT_TRUE((GetSolidRegion(picture, kKey) ^ naive(picture, kKey, false)).isEmpty());
    }
}

TEST(WindowShape, CutsInsideAndAddsOutside)
{
    const QRegion hole(0, 0, 10, 10);
    EXPECT_EQ(windowShape({100, 50}, {{hole, 20, 10}}), QRegion(0, 0, 100, 50) - QRegion(20, 10, 10, 10));
    EXPECT_EQ(windowShape({100, 50}, {{hole, 95, 10}}),
              (QRegion(0, 0, 100, 50) - QRegion(95, 10, 5, 10)) + QRegion(100, 10, 5, 10));
    EXPECT_EQ(windowShape({100, 50}, {{hole, 0, 0}, {hole, 0, 0}}), QRegion(0, 0, 100, 50))
        << "twice the same hole is none";
}

TEST(ElementPointer, RunsTheStatementsOfAButton)
{
    ElementPointer button({true, true, true});
    const auto press = button.press(PointerButton::Left);
    EXPECT_EQ(press.paint, ImageState::Down);
    EXPECT_FALSE(press.run) << "what can be clicked never drags";
    EXPECT_FALSE(button.move(true).run);
    const auto release = button.release(PointerButton::Left);
    EXPECT_EQ(release.paint, ImageState::Normal);
    EXPECT_FALSE(release.run);
    EXPECT_EQ(button.click().run, Statement::Click);
    const auto twice = button.doubleClick();
    EXPECT_EQ(twice.paint, ImageState::Down);
    EXPECT_EQ(twice.run, Statement::DoubleClick);
    EXPECT_EQ(button.enter().paint, ImageState::Over);
    EXPECT_EQ(button.leave().paint, ImageState::Normal);

    const auto menu = button.press(PointerButton::Right);
    EXPECT_TRUE(menu.popUp);
    EXPECT_FALSE(menu.run || menu.paint);
}

TEST(ElementPointer, DragsWhatHasNoClick)
{
    ElementPointer panel({});
    EXPECT_FALSE(panel.move(true).run) << "not before a press";
    EXPECT_EQ(panel.press(PointerButton::Left).run, Statement::Drag);
    EXPECT_EQ(panel.move(true).run, Statement::Drag);
    EXPECT_FALSE(panel.move(false).run);
    EXPECT_EQ(panel.release(PointerButton::Left).run, Statement::Drag);
    EXPECT_EQ(panel.move(true).run, Statement::Drag) << "a release without a click leaves it ready";
    panel.click();
    EXPECT_FALSE(panel.move(true).run);
    EXPECT_FALSE(panel.press(PointerButton::Left).paint) << "no image for the press";
}

class Folder : public testing::Test
{
protected:
    void put(const QString& name, const QByteArray& bytes)
    {
        QDir(path).mkpath(QFileInfo(name).path());
        QFile file(path + name);
        ASSERT_TRUE(file.open(QFile::WriteOnly));
        file.write(bytes);
    }
    QTemporaryDir folder;
    QString path = folder.path() + '/';
};
using SkinFiles = Folder;
using Catalogue = Folder;

TEST_F(SkinFiles, AreFoundInAnyCaseAndNowhereElse)
{
    put("Up/Sub/Play.BMP", "x");
    EXPECT_EQ(findFile(path, "up\\SUB\\play.bmp"), path + "Up/Sub/Play.BMP");
    EXPECT_EQ(findFile(path, "up/sub/play.png"), "");
    EXPECT_EQ(findFile(path, "up"), "") << "a folder is no file";
    EXPECT_EQ(findFile(path + "Up/", "..\\Up\\Sub\\Play.BMP"), "");
}

TEST_F(SkinFiles, ReadsImagesAndRefusesHugeOnes)
{
    for (const char* format : {"bmp", "png", "jpg"}) {
        QImage image(5, 4, QImage::Format_RGB32);
        image.fill(Qt::red);
        ASSERT_TRUE(image.save(path + "a." + format));
        const auto read = loadImage(path, QString("A.") + format);
        ASSERT_TRUE(read) << read.error().what;
        EXPECT_EQ(read->size(), QSize(5, 4));
    }
    put("one.gif",
        QByteArray::fromHex("47494638376101000100800000ff0000ffffff2c00000000010001000002024401003b"));
    const auto gif = loadImage(path, "one.gif");
    ASSERT_TRUE(gif) << gif.error().what;
    EXPECT_EQ(gif->pixelColor(0, 0), QColor(255, 0, 0));

    put("broken.bmp", "BM not an image");
    EXPECT_EQ(loadImage(path, "broken.bmp").error().code, base::ErrorCode::Malformed);
    EXPECT_EQ(loadImage(path, "none.bmp").error().code, base::ErrorCode::NotFound);
    QByteArray huge(54, '\0'); // a header alone may ask for gigabytes
    huge.replace(0, 2, "BM");
    huge[10] = 54;
    huge[14] = 40;
    huge[20] = huge[24] = 1; // 65,536 pixels each way
    huge[26] = 1;
    huge[28] = 24;
    put("huge.bmp", huge);
    EXPECT_FALSE(loadImage(path, "huge.bmp"));
    QFile large(path + "large.bmp");
    ASSERT_TRUE(large.open(QFile::WriteOnly));
    ASSERT_TRUE(large.resize(100LL << 20));
    EXPECT_EQ(loadImage(path, "large.bmp").error().code, base::ErrorCode::LimitReached);
}

TEST_F(SkinFiles, ReadsScriptsOfBothEncodings)
{
    put("a.vbs", "one\r\n\xCF\xF3\xF1\xEA");
    put("b.vbs", "\xEF\xBB\xBFone\nПуск\n");
    EXPECT_EQ(ReadTextFile(path + "a.vbs"), "\r\none\r\nПуск");
    EXPECT_EQ(ReadTextFile(path + "b.vbs"), "\r\none\r\nПуск");
    EXPECT_EQ(ReadTextFile(path + "none.vbs"), "");
}

TEST_F(Catalogue, ListsFoldersAndFindsTheRememberedOne)
{
    for (const char* name : {"default", "-work", "Blue"}) QDir(path).mkpath(name);
    put("file", "x");
    QStringList skins = listSkins({path});
    EXPECT_EQ(skinFolder({path}, "BLUE"), path + "Blue/");
    EXPECT_EQ(skinFolder({path}, "gone"), path + "default/");
    EXPECT_EQ(skinFolder({path}, "-work"), path + "default/");
    skins.sort();
    EXPECT_EQ(skins, (QStringList{"Blue", "default"}));
    EXPECT_TRUE(listSkins({path + "none/"}).isEmpty());

    // The user's own skins come behind the program's, whose names they do not take.
    const QString own = path + "-work/";
    for (const char* name : {"blue", "Mine"}) QDir(own).mkpath(name);
    skins = listSkins({path, own});
    skins.sort();
    EXPECT_EQ(skins, (QStringList{"Blue", "Mine", "default"}));
    EXPECT_EQ(skinFolder({path, own}, "mine"), own + "Mine/");
    EXPECT_EQ(skinFolder({path, own}, "Blue"), path + "Blue/");
    EXPECT_EQ(skinFolder({path, own}, "gone"), path + "default/");
}

TEST(WaitScreen, CoversTheAreaPaledOrAsItWas)
{
    QWidget area;
    area.resize(8, 8);
    area.setAutoFillBackground(true);
    area.setPalette(QPalette(QColor(Qt::red)));
    const QRgb before = area.grab().toImage().pixel(4, 4);
    WaitScreen screen(&area);
    screen.ShowWaitScreen(WaitScreen::Look::Still);
    EXPECT_EQ(screen.geometry(), area.rect());
    EXPECT_EQ(screen.grab().toImage().pixel(4, 4), before);
    screen.ShowWaitScreen(WaitScreen::Look::Paled);
    EXPECT_NE(screen.grab().toImage().pixel(4, 4), before);
}

TEST(WaitScreen, TurnsPaleAndGrey)
{
    QImage red(2, 1, QImage::Format_RGB32);
    red.fill(qRgb(200, 20, 20));
    const QColor pale = paled(red).pixelColor(0, 0);
    EXPECT_LT(pale.saturation(), QColor(200, 20, 20).saturation() / 2);
    EXPECT_GT(qGray(pale.rgb()), qGray(200, 20, 20));
}

} // namespace
} // namespace skin
