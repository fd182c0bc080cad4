#include "svgpng/Recipe.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>

#include <gmock/gmock.h>

namespace
{

using testing::HasSubstr;

const QString kIcons = PROJECT_SOURCE_DIR "/assets/icons";

class Recipe : public testing::Test
{
protected:
    /// Draws a recipe whose own drawings are a black disc of half its side in the middle, and the icons.
    base::Result<void> draw(const QString& text)
    {
        QFile disc(m_folder.filePath("disc.svg"));
        EXPECT_TRUE(disc.open(QIODevice::WriteOnly));
        disc.write("<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 8 8'>"
                   "<circle cx='4' cy='4' r='2'/></svg>");
        disc.close();
        const auto pictures = svgpng::readRecipe(text);
        if (!pictures) return tl::make_unexpected(pictures.error());
        QStringList used;
        for (const auto& picture : *pictures)
            if (auto drawn = svgpng::draw(picture, m_folder.path(), {m_folder.path(), kIcons}, used); !drawn)
                return drawn;
        return {};
    }
    QImage image(const QString& name) const { return QImage(m_folder.filePath(name)); }

    QTemporaryDir m_folder;
};

TEST_F(Recipe, LaysDrawingsOverEachOtherInTheirPlaces)
{
    const auto drawn = draw("# two discs on a ground\n"
                            "picture a.png 40x20 scales=1,2 + ground #000080"
                            " + disc.svg 20x20@0,0 #FF0000 + disc.svg 20x20@20,0 #00FF00 opacity=0.5\n");
    ASSERT_TRUE(drawn) << drawn.error().what;
    const QImage once = image("a.png");
    EXPECT_EQ(once.size(), QSize(40, 20));
    EXPECT_EQ(once.pixelColor(10, 10), QColor(255, 0, 0));
    EXPECT_EQ(once.pixelColor(20, 10), QColor(0, 0, 128));
    EXPECT_NEAR(once.pixelColor(30, 10).green(), 128, 1);
    EXPECT_NEAR(once.pixelColor(30, 10).blue(), 64, 1);
    EXPECT_EQ(image("a@2x.png").size(), QSize(80, 40));
    EXPECT_EQ(image("a@2x.png").pixelColor(20, 20), QColor(255, 0, 0));
}

TEST_F(Recipe, KeyedPicturesHaveNoPixelBetweenDrawingAndKey)
{
    ASSERT_TRUE(draw("picture a.png 32x32 key=#FF00FF + disc.svg #FF00FF\n"));
    const QImage picture = image("a.png");
    int cut = 0, kept = 0;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x) {
            const QColor colour = picture.pixelColor(x, y);
            if (colour == QColor(255, 0, 255))
                ++cut;
            else if (colour == QColor(255, 0, 254)) // a drawing of the key's colour stays
                ++kept;
        }
    EXPECT_EQ(cut + kept, 32 * 32);
    EXPECT_NEAR(kept, 201, 8); // a disc of radius 8
}

TEST_F(Recipe, ButtonsHaveTheLookOfEachState)
{
    ASSERT_TRUE(draw("button play.png disc.svg 28x28 20\n"));
    const auto corner = [this](const char* state) {
        return image(QString(state) + "/play.png").pixelColor(3, 14);
    };
    const auto glyph = [this](const char* state) {
        return image(QString(state) + "/play.png").pixelColor(14, 14);
    };
    EXPECT_EQ(corner("up").alpha(), 0);
    EXPECT_NEAR(corner("over").alpha(), 46, 1);
    EXPECT_NEAR(corner("down").alpha(), 153, 1);
    EXPECT_EQ(corner("disabled").alpha(), 0);
    EXPECT_EQ(glyph("up"), QColor(0xEE, 0xEE, 0xFF));
    EXPECT_NEAR(glyph("disabled").alpha(), 89, 1);
}

TEST_F(Recipe, SaysInWhichLineAMistakeIs)
{
    struct Case {
        const char* line;
        const char* what;
    };
    constexpr Case kCases[] = {
        {"picture a.png + disc.svg", "needs a size"},
        {"picture a.png 10x10", "needs a layer"},
        {"picture a.png 10x10 +", "needs a drawing"},
        {"picture a.png 10x10 + ground", "needs a colour"},
        {"picture a.png 99999x10 + disc.svg", "needs a size"},
        {"picture a.png 10x10 + disc.svg #12", "needs a colour"},
        {"picture a.png 10x10 + disc.svg opacity=2", "needs a number"},
        {"picture a.png 10x10 scales=0 + disc.svg", "not understood"},
        {"picture a.png 10x10 + disc.svg 4x4@1", "not understood"},
        {"photo a.png 10x10 + disc.svg", "not understood"},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.line);
        const auto drawn = draw(QString("# first\n\n") + c.line);
        ASSERT_FALSE(drawn);
        EXPECT_THAT(drawn.error().what, testing::StartsWith("line 3: "));
        EXPECT_THAT(drawn.error().what, HasSubstr(c.what));
    }
    const auto missing = draw("picture a.png 10x10 + nowhere.svg\n");
    ASSERT_FALSE(missing);
    EXPECT_EQ(missing.error().code, base::ErrorCode::NotFound);
}

// A glyph that reaches the edge is cut there at some size, and one that hangs to a side looks crooked in its
// button.
TEST_F(Recipe, IconsStayWithinTheirGridAndInItsMiddle)
{
    const QStringList names = QDir(kIcons).entryList({"*.svg"});
    EXPECT_GT(names.size(), 40);
    for (const QString& name : names) {
        SCOPED_TRACE(name.toStdString());
        if (name == "mark-small.svg") continue; // fills its 16 pixels on purpose
        ASSERT_TRUE(draw("picture a.png 96x96 + " + name));
        const QImage icon = image("a.png");
        QRect ink;
        for (int y = 0; y < icon.height(); ++y)
            for (int x = 0; x < icon.width(); ++x)
                if (icon.pixelColor(x, y).alpha() > 0) ink |= QRect(x, y, 1, 1);
        EXPECT_TRUE(QRect(4, 4, 88, 88).contains(ink))
            << ink.left() << ' ' << ink.top() << ' ' << ink.right() << ' ' << ink.bottom();
        EXPECT_NEAR(ink.center().x(), 47.5, 6.5);
        // The bar of this one stands where the window will be.
        if (name != "minimise.svg") {
            EXPECT_NEAR(ink.center().y(), 47.5, 4.5);
        }
    }
}

} // namespace
