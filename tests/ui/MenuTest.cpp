#include "ui/Menu.h"

#include "QtPrint.h"
#include "ui/Mnemonics.h"
#include "ui/Style.h"

#include <QApplication>
#include <QHelpEvent>
#include <QImage>
#include <QTemporaryDir>
#include <QTest>
#include <QToolTip>
#include <gtest/gtest.h>

namespace ui
{
namespace
{

QString lettersOf(const QStringList& captions)
{
    QString letters;
    const QList<int> positions = chooseMnemonics(captions);
    for (int i = 0; i < captions.size(); ++i)
        letters += positions[i] < 0 ? QChar('-') : captions[i][positions[i]];
    return letters;
}

TEST(Mnemonics, GiveEveryItemALetterOfItsOwn)
{
    EXPECT_EQ(lettersOf({"Файл", "Вид", "Воспроизведение", "Сервис", "Справка"}), "ФВоСп");
    EXPECT_EQ(lettersOf({"50%", "100%", "200%"}), "512");
    EXPECT_EQ(lettersOf({"Кадр вперед", "Вид"}), "КВ")
        << "a later first letter goes before an earlier second";
    EXPECT_EQ(lettersOf({"Тише", "Тот день"}), "Тд") << "another word's first letter goes before the inside";
    EXPECT_EQ(lettersOf({"Да", "да", "ад", "«-»"}), "Д-а-") << "what has no letter left has none";
    EXPECT_EQ(lettersOf({"", "&&"}), "--");
    EXPECT_EQ(withMnemonic("Вид", 1), "В&ид");
    EXPECT_EQ(withMnemonic("Том && Джерри", -1), "Том && Джерри");
    for (const QChar letter : QString("ФЯЁQ"))
        EXPECT_EQ(otherLayout(otherLayout(letter)), letter) << "the layouts are each other's mirror";
    EXPECT_TRUE(otherLayout('7').isNull());
}

class SetFolder : public testing::Test
{
protected:
    void put(const QString& name, const QColor& colour, int side = 16) const
    {
        QImage image(side, side, QImage::Format_RGB32);
        image.fill(colour);
        ASSERT_TRUE(image.save(folder() + name));
    }
    [[nodiscard]] QString folder() const { return m_folder.path() + '/'; }

private:
    QTemporaryDir m_folder;
};

TEST_F(SetFolder, BindsIconsToCaptions)
{
    put("a.png", Qt::red);
    put("b.png", Qt::green);
    MenuSet set;
    set.load(folder());
    set.addIcon("Открыть", "a.png");
    set.addIcon("ОТКРЫТЬ", "b.png");
    set.addIcon("Закрыть", "absent.png");
    EXPECT_EQ(set.icon("открыть").pixmap(16).toImage().pixelColor(8, 8), Qt::red)
        << "a caption that is there keeps its icon";
    EXPECT_TRUE(set.icon("Закрыть").isNull());
    EXPECT_TRUE(set.checkMark().isNull());
    set.load(folder());
    EXPECT_TRUE(set.icon("Открыть").isNull()) << "a new set forgets the one before";
}

TEST_F(SetFolder, WritesReadablyOnItsGround)
{
    MenuSet set;
    EXPECT_GT(set.textColour().lightness(), 200) << "the ground without a picture is dark";
    put("bg.bmp", QColor(250, 250, 240));
    set.load(folder());
    EXPECT_TRUE(set.hasGround());
    EXPECT_LT(set.textColour().lightness(), 60);
    put("bg.bmp", QColor(20, 30, 60));
    set.load(folder());
    EXPECT_GT(set.textColour().lightness(), 200);
    put("bg.bmp", Qt::white, 4096);
    set.load(folder());
    EXPECT_FALSE(set.hasGround()) << "no menu needs a picture of that size";
}

class OpenMenu : public SetFolder
{
protected:
    OpenMenu() { menu.setStyle(&m_style); }
    void open()
    {
        menu.popup({0, 0});
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&menu));
    }
    [[nodiscard]] QImage picture() { return menu.grab().toImage(); }
    /// How many pixels of a colour lie in the row of an item.
    int count(const QAction& item, const QColor& colour)
    {
        const QImage image = picture().copy(menu.actionGeometry(const_cast<QAction*>(&item)));
        int pixels = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x) pixels += image.pixelColor(x, y) == colour;
        return pixels;
    }
    MenuSet set;
    Menu menu{set, "Файл", nullptr};

private:
    Style m_style;
};

TEST_F(OpenMenu, ShowsTheIconOfTheCaptionAndTheMarkInItsPlace)
{
    put("play.png", Qt::magenta);
    put("checkmark.png", Qt::cyan);
    set.load(folder());
    set.addIcon("Воспроизвести", "play.png");
    QAction& play = *menu.addAction("Воспроизвести");
    QAction& loop = *menu.addAction("Повтор");
    loop.setCheckable(true);
    open();
    constexpr int kWholeIcon = 256;
    EXPECT_EQ(count(play, Qt::magenta), kWholeIcon);
    EXPECT_EQ(count(loop, Qt::cyan), 0);
    play.setText("Приостановить");
    EXPECT_EQ(count(play, Qt::magenta), 0) << "the icon is the caption's, not the item's";
    play.setText("Воспроизвести");
    play.setCheckable(true);
    play.setChecked(true);
    loop.setChecked(true);
    EXPECT_EQ(count(play, Qt::magenta), 0);
    EXPECT_EQ(count(play, Qt::cyan), kWholeIcon);
    EXPECT_EQ(count(loop, Qt::cyan), kWholeIcon);
    loop.setEnabled(false);
    EXPECT_EQ(count(loop, Qt::cyan), 0) << "a disabled item is paler";
}

TEST_F(OpenMenu, LaysItsGroundFromTheCorner)
{
    put("bg.bmp", QColor(10, 20, 30), 1);
    set.load(folder());
    menu.addAction("Открыть");
    open();
    EXPECT_EQ(picture().pixelColor(3, 3), QColor(10, 20, 30));
}

TEST_F(OpenMenu, LeavesRoomForTheShortcut)
{
    QAction& item = *menu.addAction("Открыть");
    open();
    const int without = menu.actionGeometry(&item).width();
    item.setShortcut(QKeySequence("Ctrl+Shift+O"));
    const int text = menu.fontMetrics().horizontalAdvance(item.shortcut().toString(QKeySequence::NativeText));
    EXPECT_GE(menu.sizeHint().width(), without + text + 16);
}

TEST_F(OpenMenu, AnswersToTheLetterInBothLayouts)
{
    QString chosen;
    for (const char* caption : {"Открыть", "Остановить", "Закрыть"}) {
        QAction* item = menu.addAction(caption);
        QObject::connect(item, &QAction::triggered, [&chosen, caption] { chosen = caption; });
    }
    menu.actions()[2]->setEnabled(false);
    struct Case {
        const char* typed;
        const char* chosen;
    };
    constexpr Case kCases[] = {{"о", "Открыть"}, // the first letter
                               {"j", "Открыть"}, // the same key while Latin letters are switched on
                               {"с", "Остановить"},
                               {"з", ""}, // disabled
                               {"ъ", ""}};
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.typed);
        chosen.clear();
        open();
        QTest::sendKeyEvent(QTest::Click, &menu, Qt::Key_unknown, QString(c.typed), Qt::NoModifier);
        EXPECT_EQ(chosen, c.chosen);
        EXPECT_EQ(menu.isVisible(), chosen.isEmpty());
        menu.close();
    }
}

TEST_F(OpenMenu, TakesEitherMouseButton)
{
    QAction& item = *menu.addAction("Открыть");
    for (const auto button : {Qt::LeftButton, Qt::RightButton}) {
        bool ran = false;
        const auto connection = QObject::connect(&item, &QAction::triggered, [&ran] { ran = true; });
        open();
        const QPoint at = menu.actionGeometry(&item).center();
        QTest::mouseMove(&menu, at);
        QTest::mouseClick(&menu, button, {}, at);
        EXPECT_TRUE(ran);
        QObject::disconnect(connection);
    }
}

TEST_F(SetFolder, TellsTheWholeOfAShortenedCaption)
{
    const MenuSet set;
    Menu menu(set, "Файл", nullptr);
    QAction* open = menu.addAction("Открыть...");
    QAction* recent = menu.addAction(".../intro.swf");
    recent->setToolTip("/home/films/intro.swf");
    menu.popup({50, 50});
    const auto tipOver = [&menu](QAction* item) {
        const QPoint at = menu.actionGeometry(item).center();
        QHelpEvent request(QEvent::ToolTip, at, menu.mapToGlobal(at));
        QApplication::sendEvent(&menu, &request);
        return request.isAccepted() ? QToolTip::text() : QString();
    };
    EXPECT_EQ(tipOver(recent), "/home/films/intro.swf");
    EXPECT_EQ(tipOver(open), "") << "the caption says it all";
}

} // namespace
} // namespace ui
