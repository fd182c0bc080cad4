#include "player/StatusTimer.h"

#include "PlayerWindow.h"
#include "flash/FlashControl.h"
#include "skin/Controls.h"

namespace player
{
namespace
{

constexpr const char* kMovie = R"(<movie version="6" width="100" height="80" rate="10">
  <frame duration="40"/></movie>)";

/// A skin that writes down what it finds each time it is told that the information has changed.
class Ticking : public SkinnedWindow
{
protected:
    Ticking()
    {
        putSkin("default",
                "<THEME scriptFile='s.vbs'><VIEW name='viewNormal' onInfoUpdate='Note'>"
                "<LABEL name='notes' width='100'/></VIEW><VIEW name='viewFullScreen' "
                "onInfoUpdate='Note'/></THEME>",
                "Dim count\r\nSub onLoad : End Sub\r\nSub Note\r\ncount = count + 1\r\n"
                "notes.Caption = count & \"|\" & Player.InfoText & \"|\" & Player.StatusText & \"|\" & "
                "Player.mnuPlay.Caption\r\nEnd Sub");
        const QString file = compile("forty", kMovie);
        player.Form_Load();
        player.LoadFlash(file, {});
        player.PauseMedia();
        player.StopMedia();
        player.setUpdateTimerEnabled(false);
    }
    [[nodiscard]] QStringList noted()
    {
        const auto labels = player.findChildren<skin::SkinLabel*>();
        return labels.isEmpty() ? QStringList() : labels.first()->Caption().split('|');
    }
    void tick() { player.timer().tmrUpdate_Timer(); }
    Player player{application, {}};
};

TEST_F(Ticking, TellsTheSkinEachTimeInTheStatedOrder)
{
    tick();
    ASSERT_EQ(noted().size(), 4) << noted().join(' ').toStdString();
    const int first = noted()[0].toInt();
    tick();
    EXPECT_EQ(noted()[0].toInt(), first + 1) << "though nothing has changed";
    EXPECT_EQ(noted()[1], "Прошло времени: 0:00");
    EXPECT_EQ(noted()[2], "Остановлено");
    EXPECT_EQ(player.menus().item("mnuPlay").text(), "Воспроизвести");

    player.control().GotoFrame(25);
    player.PlayMedia();
    tick();
    EXPECT_EQ(noted()[1], "Прошло времени: 0:02") << "2.5 s: halves go to the even second";
    EXPECT_EQ(noted()[2], "Воспроизведение");
    EXPECT_EQ(noted()[3], "Воспроизвести") << "the caption follows behind the status";
    EXPECT_EQ(player.menus().item("mnuPlay").text(), "Приостановить");
    EXPECT_EQ(player.menus().item("mnuPopPlay").text(), "Воспроизвести") << "the pop-up is left alone";
    tick();
    EXPECT_EQ(noted()[3], "Приостановить");
}

TEST_F(Ticking, FollowsTheQualityButForTheLastItem)
{
    const auto marks = [this] {
        QString set;
        for (int i = 0; i < 6; ++i) set += player.menus().isChecked(QString("mnuQLvl%1").arg(i)) ? '1' : '0';
        return set;
    };
    player.SetQuality("High");
    player.control().setQuality2("Medium");
    tick();
    EXPECT_EQ(marks(), "010000");
    player.control().setQuality2("AutoLow");
    tick();
    EXPECT_EQ(marks(), "000000") << "set by another way than SetQuality";
    player.SetQuality("AutoLow");
    EXPECT_EQ(marks(), "000001");
    player.control().setQuality2("AutoHigh");
    tick();
    EXPECT_EQ(marks(), "000011") << "nor is it cleared";
    player.control().setQuality2("Best");
    tick();
    EXPECT_EQ(marks(), "000001");
}

TEST_F(Ticking, RunsBySchedule)
{
    tick();
    const int before = noted()[0].toInt();
    player.setUpdateTimerEnabled(true);
    QElapsedTimer waited;
    waited.start();
    EXPECT_TRUE(waitFor([&] { return noted()[0].toInt() >= before + 2; }));
    EXPECT_GE(waited.elapsed(), 2 * StatusTimer::kIntervalMs - 50);
}

} // namespace
} // namespace player
