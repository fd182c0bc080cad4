#include "player/Console.h"

#include "PlayerWindow.h"
#include "flash/FlashControl.h"

#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QTest>

namespace player
{
namespace
{

TEST(ConsoleHistory, TakesEveryStatementOnce)
{
    EXPECT_TRUE(belongsInHistory({}, "PlayMedia"));
    EXPECT_FALSE(belongsInHistory({"StopMedia", "PlayMedia"}, "playmedia"));
    EXPECT_FALSE(belongsInHistory({}, ""));
}

class ConsoleOfPlayer : public PlayerWindow
{
protected:
    ConsoleOfPlayer() : player(application, '"' + movie + '"')
    {
        player.Form_Load();
        player.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&player));
        player.menus().item("mnuConsole").trigger();
    }
    [[nodiscard]] Console& console() { return player.console(); }
    [[nodiscard]] QLineEdit& line() { return *console().line().lineEdit(); }
    /// Where the window system would send it.
    void press(Qt::Key key)
    {
        QWidget* focus = player.focusWidget();
        ASSERT_NE(focus, nullptr);
        QTest::keyClick(focus, key);
    }
    void run(const QString& statement)
    {
        line().setText(statement);
        press(Qt::Key_Return);
    }
    [[nodiscard]] QStringList history()
    {
        QStringList list;
        for (int i = 0; i < console().line().count(); ++i) list += console().line().itemText(i);
        return list;
    }
    Player player;
};

TEST_F(ConsoleOfPlayer, ShowsInTheMiddleAndGoesWithEscape)
{
    EXPECT_TRUE(console().isVisible());
    EXPECT_TRUE(player.menus().isChecked("mnuConsole"));
    EXPECT_TRUE(line().hasFocus());
    EXPECT_EQ(console().x(), (player.ScaleWidth() - console().width()) / 2);
    EXPECT_EQ(console().y(), (player.ScaleHeight() - console().height()) / 3);
    press(Qt::Key_Escape);
    EXPECT_FALSE(console().isVisible());
    EXPECT_FALSE(player.menus().isChecked("mnuConsole"));
    EXPECT_TRUE(player.control().hasFocus());

    player.FullScreen(true);
    player.ShowConsole();
    EXPECT_TRUE(player.rect().contains(QRect(console().mapTo(&player, QPoint()), console().size())));
    EXPECT_EQ(console().parentWidget()->children().last(), &console()) << "in front of everything";
    player.FullScreen(false);
    EXPECT_TRUE(console().parentWidget()->rect().contains(console().geometry()));
    player.resize(player.minimumSize());
    EXPECT_TRUE(console().parentWidget()->rect().contains(console().geometry()))
        << "the smallest window holds it";
    player.menus().item("mnuConsole").trigger();
    EXPECT_FALSE(console().isVisible());
}

TEST_F(ConsoleOfPlayer, RunsStatementsAndKeepsThem)
{
    player.control().Stop();
    run("PlayMedia");
    EXPECT_TRUE(player.control().Playing());
    EXPECT_EQ(line().text(), "PlayMedia") << "the line is not cleared";
    run("playmedia");
    run("");
    run("Player.SetSound 40, 0");
    EXPECT_EQ(history(), (QStringList{"Player.SetSound 40, 0", "PlayMedia"}));
    EXPECT_EQ(line().text(), "Player.SetSound 40, 0");
    EXPECT_EQ(player.Volume(), 40);
    press(Qt::Key_Up);
    EXPECT_EQ(line().text(), "Player.SetSound 40, 0");
    press(Qt::Key_Down);
    EXPECT_EQ(line().text(), "PlayMedia");
    run("Player.Console.Left = 3 : cmbConsole.Text = \"?\"");
    EXPECT_EQ(console().x(), 3);
    EXPECT_EQ(line().text(), "?");
    run("HideConsole");
    EXPECT_FALSE(console().isVisible());
}

TEST_F(ConsoleOfPlayer, TellsWhatFailedAndStays)
{
    auto* answer = console().findChild<QLabel*>("lblAnswer");
    for (const char* statement : {"Play(", "NoSuchThing 1", "Err.Raise 5"}) {
        SCOPED_TRACE(statement);
        run(statement); // a window would stop the test here
        EXPECT_TRUE(answer->isVisible());
        EXPECT_TRUE(answer->text().contains("ошибка ")) << answer->text().toStdString();
        EXPECT_TRUE(console().rect().contains(answer->geometry()));
    }
    EXPECT_EQ(log().count("Консоль"), 0) << "the journal is not in this code page";
    EXPECT_EQ(log().filter("<B><FONT color=\"#000000\">").size(), 3);
    EXPECT_TRUE(history().isEmpty());
    EXPECT_TRUE(console().isVisible());
    run("PlayMedia");
    EXPECT_FALSE(answer->isVisible());
}

TEST_F(ConsoleOfPlayer, CompletesNamesByTab)
{
    line().setText("Player.tog");
    press(Qt::Key_Tab);
    EXPECT_EQ(line().text(), "Player.Toggle");
    EXPECT_TRUE(console().findChild<QLabel*>("lblAnswer")->text().contains("ToggleTimeMode"));
    line().setText("Player.togglet");
    press(Qt::Key_Tab);
    EXPECT_EQ(line().text(), "Player.ToggleTimeMode");
    line().setText("nothinglikethis");
    press(Qt::Key_Tab);
    EXPECT_EQ(line().text(), "nothinglikethis");
    EXPECT_TRUE(line().hasFocus());
}

TEST_F(ConsoleOfPlayer, KeepsItsHistoryAndItsKeyboard)
{
    run("FullScreen True");
    EXPECT_TRUE(console().isAncestorOf(player.focusWidget())) << "who types goes on typing";
    run("FullScreen False");
    EXPECT_TRUE(console().isAncestorOf(player.focusWidget()));
    Player second(application, {});
    second.Form_Load();
    EXPECT_EQ(second.console().line().history(), (QStringList{"FullScreen False", "FullScreen True"}));
    EXPECT_EQ(second.console().line().currentText(), "");
}

TEST_F(ConsoleOfPlayer, WhatIsTypedDoesNotDriveThePlayer)
{
    const int volume = player.Volume();
    for (const Qt::Key key : {Qt::Key_M, Qt::Key_Space, Qt::Key_Down, Qt::Key_Home}) press(key);
    EXPECT_FALSE(player.Muted());
    EXPECT_EQ(player.Volume(), volume);
    EXPECT_EQ(line().text(), "m ");
    press(Qt::Key_F12);
    EXPECT_FALSE(console().isVisible()) << "function keys are the program's everywhere";
}

TEST_F(ConsoleOfPlayer, IsDraggedByBodyTitleAndCloseButton)
{
    auto* title = console().findChild<QLabel*>("lblConsole");
    auto* close = console().findChild<QWidget*>("chkCloseConsole");
    EXPECT_EQ(close->toolTip(), "Закрыть консоль");
    for (QWidget* handle : {static_cast<QWidget*>(&console()), static_cast<QWidget*>(title), close}) {
        SCOPED_TRACE(handle->objectName().toStdString());
        const QPoint before = console().pos();
        const QPoint from = handle == &console() ? QPoint(2, 2) : QPoint(10, 10);
        QWindow* window = player.windowHandle();
        const QPoint grip = handle->mapTo(&player, from);
        const auto pointAt = [&](int way) {
            QCursor::setPos(player.mapToGlobal(grip + QPoint(way, way)));
            return grip + QPoint(way, way);
        };
        QTest::mousePress(window, Qt::LeftButton, {}, pointAt(0));
        for (const int way : {1, 12, 20, 30}) QTest::mouseMove(window, pointAt(way));
        QTest::mouseRelease(window, Qt::LeftButton, {}, pointAt(30));
        EXPECT_NE(console().pos(), before);
        EXPECT_TRUE(console().isVisible()) << "a drag is no click";
        player.ShowConsole();
    }
    QTest::mouseClick(close, Qt::LeftButton);
    EXPECT_FALSE(console().isVisible());
}

} // namespace
} // namespace player
