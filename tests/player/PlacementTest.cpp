#include "player/Placement.h"

#include "PlayerWindow.h"
#include "flash/FlashControl.h"

#include <QScreen>

namespace player
{
namespace
{

class Placing : public PlayerWindow
{
protected:
    Placing()
        : player(application, '"' + compile("small", R"(<movie version="6" width="400" height="300" rate="10">
                  <frame/></movie>)") +
                                  '"')
    {
        player.Form_Load();
        player.setUpdateTimerEnabled(false);
    }
    Player player;
};

TEST_F(Placing, GivesTheMovieItsShareOfItsOwnSize)
{
    const QPoint place = player.pos();
    for (const int percent : {200, 100}) {
        SCOPED_TRACE(percent);
        player.menus().item(QString("mnuZoom%1").arg(percent)).trigger();
        EXPECT_EQ(player.control().size(), QSize(400, 300) * percent / 100);
        EXPECT_EQ(player.pos(), place);
    }
    player.menus().item("mnuZoom50").trigger();
    EXPECT_EQ(player.width(), player.minimumWidth()) << "not below the least size";

    player.FullScreen(true);
    player.menus().item("mnuZoom100").trigger();
    EXPECT_FALSE(player.isFullScreen()) << "zooming leaves full screen";
    EXPECT_EQ(player.control().size(), QSize(400, 300));
}

TEST_F(Placing, SwitchesFullScreenOnceAndGivesTheTitleBack)
{
    player.ZoomWindow(1);
    player.FullScreen(false);
    EXPECT_EQ(player.WindowState(), 2) << "leaving what is not on touches nothing";
    player.ZoomWindow(0);
    player.SetCaption("До");
    player.FullScreen(true);
    player.FullScreen(true);
    EXPECT_TRUE(player.menus().isChecked("mnuFullScreen"));
    EXPECT_TRUE(player.menus().isChecked("mnuPopFullScreen"));
    EXPECT_EQ(player.windowTitle(), "");
    player.FullScreen(false);
    EXPECT_EQ(player.windowTitle(), "До");
    EXPECT_FALSE(player.menus().isChecked("mnuPopFullScreen"));
}

TEST_F(Placing, MaximisesByMode)
{
    player.ZoomWindow(5);
    EXPECT_EQ(player.WindowState(), 2) << "from normal to maximised";
    player.ZoomWindow(5);
    EXPECT_EQ(player.WindowState(), 0);
    player.Minimize();
    player.ZoomWindow(5);
    EXPECT_EQ(player.WindowState(), 0) << "from minimised to normal";
    player.ZoomWindow(1);
    EXPECT_EQ(player.WindowState(), 2);
    player.ZoomWindow(1);
    EXPECT_EQ(player.WindowState(), 2);
    player.ZoomWindow(0);
    EXPECT_EQ(player.WindowState(), 0);
}

TEST_F(Placing, FollowsWhatIsDoneToTheWindowFromOutside)
{
    QAction& zoom = player.menus().item("mnuZoom200");
    player.setWindowState(Qt::WindowFullScreen); // as a window manager would
    ASSERT_TRUE(waitFor([this] { return player.isFullScreen(); }));
    EXPECT_TRUE(player.menus().isChecked("mnuPopFullScreen"));
    EXPECT_EQ(player.WindowState(), 2);
    EXPECT_TRUE(zoom.isEnabled()) << "it leaves full screen";
    player.setWindowState(Qt::WindowNoState);
    ASSERT_TRUE(waitFor([this] { return !player.isFullScreen(); }));
    EXPECT_EQ(player.WindowState(), 0);
    player.setWindowState(Qt::WindowMaximized);
    EXPECT_FALSE(zoom.isEnabled()) << "a maximised window keeps its size";
    player.setWindowState(Qt::WindowNoState);
    EXPECT_TRUE(zoom.isEnabled());
}

TEST(Captions, ShowTheNameCutInTheMiddle)
{
    EXPECT_EQ(shortCaption("Zorvex - /films/dir/a.swf"), "Zorvex - a.swf");
    EXPECT_EQ(shortCaption("Zorvex - Экран приветствия"), "Zorvex - Экран приветствия");
    EXPECT_EQ(shortCaption("/films/a.swf"), "/films/a.swf") << "a script's own";
    const QString cut = shortCaption("Zorvex - /f/" + QString("имя").repeated(60) + " 7.swf");
    EXPECT_TRUE(cut.endsWith(" 7.swf") && cut.contains(u'…')) << cut.toStdString();
    EXPECT_LT(cut.size(), 90);
}

TEST_F(Placing, FitsTextsToTheWindowsFont)
{
    const QString path = "/a/rather/long/path/that/does/not/fit/movie.swf";
    const QString fitted = player.FitText(path, 150);
    EXPECT_LE(player.fontMetrics().horizontalAdvance(fitted), 150);
    EXPECT_TRUE(fitted.contains("...") && fitted.endsWith("movie.swf")) << fitted.toStdString();
    EXPECT_EQ(player.FitText("short", 150), "short");
}

TEST_F(PlayerWindow, StandsWhereItStoodAsFarAsThereIsRoom)
{
    QFile settings(path("settings.xml"));
    ASSERT_TRUE(settings.open(QFile::ReadOnly));
    QByteArray text = settings.readAll();
    settings.close();
    const QRect room = QGuiApplication::primaryScreen()->availableGeometry();
    const QPoint corner = room.bottomRight() - QPoint(130, 50);
    text.replace("place=\"\"",
                 "place=\"" + QString("%1,%2,0").arg(corner.x()).arg(corner.y()).toUtf8() + '"');
    ASSERT_TRUE(settings.open(QFile::WriteOnly));
    settings.write(text);
    settings.close();
    Player player(application, {});
    player.Form_Load();
    // The frame that the system adds is not known before.
    EXPECT_EQ(QRect(player.pos(), player.size()).bottomRight(), room.bottomRight());
}

} // namespace
} // namespace player
