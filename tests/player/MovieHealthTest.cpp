#include "player/MovieHealth.h"
#include "MovieKiller.h"
#include "PlayerWindow.h"
#include "flash/FlashControl.h"
#include "player/Texts.h"

#include <QMessageBox>
#include <QPushButton>
#include <QTest>

#include <csignal>

namespace player
{
namespace
{

class MovieHealthOfPlayer : public SkinnedWindow
{
protected:
    void SetUp() override
    {
        if (!qEnvironmentVariableIsSet("ZORVEX_MOVIE_PROGRAM")) GTEST_SKIP() << "movies play in this process";
    }
    static void endProcessOf(Player& player)
    {
        kill(static_cast<pid_t>(player.control().processId()), SIGSEGV);
    }
};

TEST_F(MovieHealthOfPlayer, TellsThatAMovieEndedAndAsksBeforeItDoesSoAThirdTime)
{
    Player player(application, {});
    player.Form_Load();
    for (int i = 0; i < MovieHealth::kMaxEnds; ++i) {
        player.LoadFlash(movie, {});
        ASSERT_EQ(player.control().TotalFrames(), 300);
        endProcessOf(player);
        ASSERT_TRUE(waitFor([&] { return !player.HasMovie(); }));
    }
    EXPECT_FALSE(log().filter("The movie's process has ended unexpectedly").isEmpty());

    bool asked = false;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, [&] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            asked = true;
            box->reject();
        }
    });
    look.start(20);
    player.LoadFlash(movie, {});
    EXPECT_TRUE(asked);
    EXPECT_FALSE(player.HasMovie());
    look.stop();

    const QString other = compile("other", R"(<movie version="6" width="50" height="50"><frame/></movie>)");
    player.LoadFlash(other, {});
    EXPECT_TRUE(player.HasMovie()) << "another file is none of this";
}

TEST_F(MovieHealthOfPlayer, SaysSoAndPlaysOnWheneverAProcessEnds)
{
    Player player(application, {});
    player.Form_Load();
    tests::MovieKiller killer(3);
    int told = 0;
    for (int round = 0; round < tests::killsAsked(10); ++round) {
        SCOPED_TRACE(round);
        // Another file each time: of one that ends again and again the user is asked.
        const QString name = path(QString("%1.swf").arg(round));
        ASSERT_TRUE(QFile::copy(movie, name));
        killer.strikeWithin(150, round % 2 == 0 ? SIGKILL : SIGSEGV);
        player.LoadFlash(name, {});
        killer.join();
        const auto plays = [&player] { return player.control().GetVariable("_totalframes") == "300"; };
        ASSERT_TRUE(waitFor([&] { return !player.HasMovie() || plays(); }));
        if (!player.HasMovie()) {
            ++told;
            EXPECT_TRUE(showsPanel(player));
            EXPECT_EQ(welcome(player).message(), texts::kMovieCrashed);
        }
        player.LoadFlash(movie, {});
        ASSERT_TRUE(player.HasMovie());
        EXPECT_EQ(player.control().TotalFrames(), 300);
    }
    EXPECT_GE(told, tests::killsAsked(10) / 4);
}

TEST_F(MovieHealthOfPlayer, AMovieThatIsRefusedLateIsDamagedAndNoCrash)
{
    Player player(application, {});
    player.Form_Load();
    for (int i = 0; i <= MovieHealth::kMaxEnds; ++i) {
        player.LoadFlash(movie, {});
        ASSERT_TRUE(player.HasMovie()) << "nobody is asked before";
        emit player.control().refused(movie);
        ASSERT_TRUE(waitFor([&] { return !player.HasMovie(); }));
        EXPECT_TRUE(welcome(player).message().startsWith(texts::kMovieDamaged));
    }
}

TEST_F(MovieHealthOfPlayer, WhatAMovieKeepsOutlivesItsProcess)
{
    const QString counter = compile("counter", R"(<movie version="7" width="50" height="50"><frame><script>
      var kept = SharedObject.getLocal("count");
      if (kept.data.times == undefined) kept.data.times = 0;
      kept.data.times++;
      var times = kept.data.times;</script></frame></movie>)");
    for (const char* times : {"1", "2", "3"}) {
        Player player(application, {});
        player.Form_Load();
        player.LoadFlash(counter, {});
        EXPECT_EQ(player.control().GetVariable("times"), times);
    }
}

TEST_F(MovieHealthOfPlayer, ANoticeOffersToCloseAMovieThatDoesNotAnswer)
{
    const QString endless = compile("endless", R"(<movie version="6" width="400" height="200" rate="20">
      <frame/><frame><script>while (true) {}</script></frame></movie>)");
    Player player(application, {});
    player.Form_Load();
    player.LoadFlash(endless, {});
    const auto notice = [&player] { return player.findChild<QWidget*>("fraNotAnswering"); };
    ASSERT_TRUE(waitFor([&] { return notice() != nullptr; }));
    const auto buttons = notice()->findChildren<QPushButton*>();
    ASSERT_EQ(buttons.size(), 2);
    QTest::mouseClick(buttons.last(), Qt::LeftButton);
    ASSERT_TRUE(waitFor([&] { return !player.HasMovie(); }));
    EXPECT_EQ(notice(), nullptr);
    EXPECT_EQ(welcome(player).message(), texts::kMovieNotAnswering);
    player.LoadFlash(movie, {});
    EXPECT_EQ(player.control().TotalFrames(), 300);
}

} // namespace
} // namespace player
