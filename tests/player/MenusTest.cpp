#include "player/Menus.h"

#include "PlayerWindow.h"
#include "flash/FlashControl.h"

#include <QDialog>
#include <QImage>
#include <QTest>

namespace player
{
namespace
{

TEST(Menus, ShowWhatHasACommandAndNoMore)
{
    QWidget window;
    Menus menus(&window);
    QAction& open = menus.item("mnuOpen");
    EXPECT_FALSE(open.isVisible());
    menus.connectItem("mnuOpen", [] {});
    EXPECT_TRUE(open.isVisible());
    menus.connectItem("mnuMRU0", [] {});
    menus.connectItem("mnuMRU3", [] {});
    EXPECT_TRUE(menus.item("mnuMRU0").isVisible()) << "says what will stand here";
    EXPECT_FALSE(menus.item("mnuMRU0").isEnabled());
    EXPECT_FALSE(menus.item("mnuMRU3").isVisible());
    EXPECT_FALSE(menus.item("mnuSep12").isVisible());
    EXPECT_EQ(menus.find("MNPOPSTOP"), &menus.item("mnPopStop"));
    EXPECT_EQ(menus.find("mnuPopStop"), nullptr);
}

TEST(Menus, LeaveTheMarkToTheCommand)
{
    QWidget window;
    Menus menus(&window);
    bool seen = true;
    menus.connectItem("mnuMute", [&] { seen = menus.isChecked("mnuMute"); });
    menus.item("mnuMute").trigger();
    EXPECT_FALSE(seen);
    EXPECT_FALSE(menus.isChecked("mnuMute"));
}

TEST_F(PlayerWindow, DrawsItsMenusWithTheChosenSet)
{
    const QString set = path("media/menus/default/");
    QDir().mkpath(set);
    QImage image(16, 16, QImage::Format_RGB32);
    image.fill(Qt::red);
    for (const char* name : {"play.png", "open.png", "checkmark.png", "bg.bmp"})
        ASSERT_TRUE(image.save(set + name));
    Player player(application, '"' + movie + '"');
    player.Form_Load();
    const ui::MenuSet& pictures = player.menus().menuSet();
    EXPECT_EQ(pictures.folder(), set);
    EXPECT_TRUE(pictures.hasGround());
    EXPECT_FALSE(pictures.checkMark().isNull());
    EXPECT_FALSE(pictures.icon("Открыть...").isNull());
    EXPECT_FALSE(pictures.icon(player.menus().item("mnuPopOpen").text()).isNull()) << "bound by caption";
    EXPECT_FALSE(pictures.icon("Воспроизвести").isNull());
    EXPECT_TRUE(pictures.icon("Приостановить").isNull());
}

TEST_F(PlayerWindow, PreparesThePopUpWhenItShows)
{
    Player player(application, '"' + movie + '"');
    player.Form_Load();
    Menus& menus = player.menus();
    const auto marks = [&](const char* quality) {
        player.SetQuality(quality);
        player.ShowPopUp();
        const QString result =
            QString(menus.isChecked("mnuPopHQ") ? "H" : "-") + (menus.isChecked("mnuPopLQ") ? "L" : "-");
        EXPECT_TRUE(menus.popUp().isVisible());
        menus.popUp().close();
        return result;
    };
    EXPECT_EQ(marks("High"), "H-");
    EXPECT_EQ(marks("Low"), "-L");
    EXPECT_EQ(marks("Medium"), "--");
    EXPECT_EQ(marks("AutoLow"), "--");

    menus.item("mnuPlay").setText("Приостановить");
    EXPECT_EQ(menus.item("mnuPopPlay").text(), "Воспроизвести") << "its caption changes when it shows only";
    player.ShowPopUp();
    EXPECT_EQ(menus.item("mnuPopPlay").text(), "Приостановить");
    menus.popUp().close();
}

TEST_F(PlayerWindow, AboutIsLoggedAndShowsItsPageOverThePlayer)
{
    Player player(application, {});
    player.Form_Load();
    bool seen = false;
    QTimer::singleShot(0, &player, [&seen] {
        auto* about = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(about, nullptr);
        seen = about->objectName() == "frmAbout";
        about->reject();
    });
    player.menus().item("mnuPopAbout").trigger();
    EXPECT_TRUE(seen);
    EXPECT_EQ(log().mid(log().indexOf(" :: About") - 1, 2), (QStringList{"", " :: About"}));
}

} // namespace
} // namespace player
