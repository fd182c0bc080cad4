#include "PlayerWindow.h"
#include "core/RunTimeErrors.h"
#include "flash/FlashControl.h"
#include "player/Texts.h"

#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

// Movies and skins that will not let go.

namespace player
{
namespace
{

constexpr int kSoonMs = 1500;

class Hostile : public SkinnedWindow
{
protected:
    [[nodiscard]] QString movieOf(const QString& name, const QString& script,
                                  const QString& limits = {}) const
    {
        return compile(name, ("<movie version=\"7\" width=\"100\" height=\"80\" rate=\"20\">" + limits +
                              "<frame><script>" + script.toHtmlEscaped() + "</script></frame></movie>")
                                 .toUtf8());
    }
    /// Does something after some time, and remembers when.
    void after(int ms, const std::function<void()>& action)
    {
        m_since.invalidate();
        QTimer::singleShot(ms, qApp, [this, action] {
            m_since.start();
            action();
        });
    }
    /// A movie in a process of its own lets the call that opens it come back at once; one in this process
    /// only when the action has ended it.
    void awaitAction()
    {
        EXPECT_TRUE(waitFor([this] { return m_since.isValid(); }));
    }
    [[nodiscard]] qint64 msSince() const { return m_since.isValid() ? m_since.elapsed() : 1'000'000; }

private:
    QElapsedTimer m_since;
};

constexpr const char* kForEver = "while (true) {}";

TEST_F(Hostile, TheWindowComesBeforeAFirstFrameThatNeverEnds)
{
    const QString endless = movieOf("endless", kForEver);
    Player player(application, '"' + endless + '"');
    bool visible = false;
    after(500, [&] {
        visible = player.isVisible() && player.windowHandle()->isExposed();
        player.close();
    });
    player.Form_Load();
    awaitAction();
    EXPECT_TRUE(visible);
    EXPECT_TRUE(player.hasEnded());
    EXPECT_LT(msSince(), kSoonMs);
    EXPECT_TRUE(log().contains(" :: Save Options"));
}

TEST_F(Hostile, AnEndlessScriptGivesWayToWhatTheUserWants)
{
    const QString endless = movieOf("endless", kForEver);
    Player player(application, {});
    player.Form_Load();
    after(400, [&] { player.menus().item("mnuClose").trigger(); });
    player.LoadFlash(endless, {});
    awaitAction();
    EXPECT_LT(msSince(), kSoonMs);
    EXPECT_TRUE(waitFor([&] { return showsPanel(player); }));

    after(400, [&] { drop(player, movie); });
    player.LoadFlash(endless, {});
    awaitAction();
    EXPECT_LT(msSince(), kSoonMs);
    EXPECT_TRUE(waitFor([&] { return player.mediaInfo().OriginalPath == movie; }));
    EXPECT_EQ(player.control().TotalFrames(), 300);

    player.FullScreen(true);
    after(400, [&] {
        QTest::keyClick(&player.control(), Qt::Key_Escape);
        EXPECT_FALSE(player.isFullScreen());
        player.close();
    });
    player.LoadFlash(endless, {});
    awaitAction();
    EXPECT_TRUE(player.hasEnded());
    EXPECT_LT(msSince(), kSoonMs);
}

TEST_F(Hostile, TheQuestionAboutASlowScriptBarsNoWayOut)
{
    const QString slow = movieOf("slow", kForEver, "<scriptLimits recursion=\"100\" timeout=\"1\"/>");
    Player player(application, {});
    player.Form_Load();
    const auto question = [&player] { return player.findChild<QMessageBox*>("frmSlowScript"); };
    QTimer look;
    look.setInterval(20);
    bool asked = false;
    QObject::connect(&look, &QTimer::timeout, [&] {
        if (question() == nullptr) return;
        asked = true;
        look.stop();
        after(200, [&] { player.LoadFlash(movie, {}); });
    });
    look.start();
    player.LoadFlash(slow, {});
    awaitAction();
    EXPECT_TRUE(asked);
    EXPECT_LT(msSince(), kSoonMs);
    EXPECT_TRUE(waitFor([&] { return player.mediaInfo().OriginalPath == movie; }));

    look.disconnect();
    QObject::connect(&look, &QTimer::timeout, [&] {
        if (question() == nullptr) return;
        look.stop();
        after(200, [&] { player.close(); });
    });
    look.start();
    player.LoadFlash(slow, {});
    EXPECT_TRUE(waitFor([&player] { return player.hasEnded(); }));
    EXPECT_LT(msSince(), kSoonMs);
}

TEST_F(Hostile, FullScreenNeedsAClickAndEscapeIsTheLastWord)
{
    const QString trap =
        movieOf("trap", "_root.onEnterFrame = function () { fscommand('FULLSCREEN', 'true'); };");
    Player player(application, {});
    player.Form_Load();
    player.LoadFlash(trap, {});
    QTest::qWait(300);
    EXPECT_FALSE(player.isFullScreen());
    QTest::mouseClick(&player.control(), Qt::LeftButton, {}, {20, 20});
    EXPECT_TRUE(waitFor([&] { return player.isFullScreen(); }));
    auto* hint = player.findChild<QWidget*>("lblNote");
    ASSERT_NE(hint, nullptr);
    EXPECT_TRUE(hint->isVisible());
    QTest::keyClick(&player.control(), Qt::Key_Escape);
    EXPECT_FALSE(player.isFullScreen());
    QTest::mouseClick(&player.control(), Qt::LeftButton, {}, {20, 20});
    QTest::qWait(300);
    EXPECT_FALSE(player.isFullScreen()) << "who has left does not want it again";
}

TEST_F(Hostile, AMovieThatLoadsItselfLeavesTheWindowAlone)
{
    Player player(application, {});
    player.Form_Load();
    const QString itself = movieOf("itself", "fscommand('MEOWSEL', _url.substr(7));");
    player.LoadFlash(itself, {});
    QTest::qWait(1000);
    EXPECT_LE(log().filter("itself.swf)... ").size(), 7);
    EXPECT_EQ(player.mediaInfo().OriginalPath, itself);
}

TEST_F(Hostile, ArgumentsThatAreNoneShowNoScreen)
{
    Player player(application, {});
    player.Form_Load();
    player.LoadFlash(movieOf("bad", "_root.onEnterFrame = function () { fscommand('FULLSCREEN', 'xyz'); };"),
                     {});
    for (int i = 0; i < 5; ++i) {
        QTest::mouseClick(&player.control(), Qt::LeftButton, {}, {20, 20});
        QTest::qWait(100);
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    }
    EXPECT_EQ(log().filter("Failed for the movie: FULLSCREEN").size(), 1);
}

TEST_F(Hostile, AMovieThatIsHeldBackIsSaidToBe)
{
    Player player(application, {});
    player.Form_Load();
    player.LoadFlash(movieOf("much", "var much = new Array(900000000); much.join('x');"), {});
    EXPECT_TRUE(waitFor([&] { return player.StatusText() == texts::kPlayingLimited; }));
    player.LoadFlash(movie, {});
    EXPECT_TRUE(waitFor([&] { return player.StatusText() == texts::kPlaying; }));
}

TEST_F(Hostile, DropsAreCopies)
{
    Player player(application, {});
    player.Form_Load();
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(movie)});
    const auto send = [&](Qt::DropActions possible) {
        QDragEnterEvent enter({9, 9}, possible, &data, Qt::LeftButton, Qt::ShiftModifier);
        QApplication::sendEvent(&player, &enter);
        QDropEvent event({9, 9}, possible, &data, Qt::LeftButton, Qt::ShiftModifier);
        event.setDropAction(Qt::MoveAction);
        QApplication::sendEvent(&player, &event);
        return event.isAccepted() ? event.dropAction() : Qt::IgnoreAction;
    };
    EXPECT_EQ(send(Qt::CopyAction | Qt::MoveAction), Qt::CopyAction);
    EXPECT_EQ(send(Qt::MoveAction), Qt::IgnoreAction);
}

TEST_F(Hostile, QuestionsOfASkinWithoutEndEndWithTheProgram)
{
    putSkin("default", skinOf("<BUTTON name='b' width='20' height='20' onClick='Ask'/>"),
            "Sub onLoad : End Sub\r\nSub Ask\r\nDo\r\nMsgBox \"again\"\r\nLoop\r\nEnd Sub");
    Player player(application, '"' + movie + '"');
    player.Form_Load();
    after(500, [&] {
        EXPECT_NE(QApplication::activeModalWidget(), nullptr);
        player.Quit("test", true);
    });
    player.skinWindow().skin().bridge().RunScript("Ask");
    EXPECT_TRUE(player.hasEnded());
    EXPECT_LT(msSince(), kSoonMs);
    EXPECT_TRUE(log().contains(" :: Save Options"));
}

TEST_F(Hostile, QuestionsOfASkinWithoutEndAreEndedSomeTime)
{
    putSkin("default", skinOf("<LABEL name='l'/>"),
            "Dim n\r\nSub onLoad : End Sub\r\nSub Ask\r\nDo\r\nMsgBox \"again\"\r\nLoop\r\nEnd Sub");
    Player player(application, '"' + movie + '"');
    player.Form_Load();
    int boxes = 0;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, [&boxes] {
        if (auto* box = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
            ++boxes;
            box->accept();
        }
    });
    look.start(5);
    player.skinWindow().skin().bridge().RunScript("Ask");
    EXPECT_EQ(boxes, skin::Bridge::kMaxQuestions);
}

TEST_F(Hostile, ASkinThatHangsIsPutAwayForTheProgramsOwn)
{
    putSkin("default", skinOf("<LABEL name='fine'/>"), kScript);
    QByteArray labels;
    for (int i = 0; i < 100; ++i)
        labels += "<LABEL name='l" + QByteArray::number(i) + "' left='Slow(" + QByteArray::number(i) + ")'/>";
    const QByteArray slow =
        "Function Slow(n)\r\nDim i\r\nFor i = 1 To 100000000 : Next\r\nSlow = n\r\nEnd Function\r\n";
    const struct {
        const char* name;
        QByteArray xml, script;
    } kSkins[] = {
        {"a layout", skinOf(labels), slow + kScript},
        {"a change of the movie",
         "<THEME scriptFile='s.vbs'><VIEW name='viewNormal' onMediaChange='Again'/></THEME>",
         "Sub onLoad : End Sub\r\nSub Again\r\nPlayer.LoadFlash \"" + movie.toUtf8() + "\", \"\"\r\nEnd Sub"},
        {"a layout that builds anew",
         "<THEME scriptFile='s.vbs'><VIEW name='viewNormal' onResize='Player.CreateSkin'/></THEME>", kScript},
        {"a layout that loads anew",
         "<THEME scriptFile='s.vbs'><VIEW name='viewNormal' onResize='Player.LoadNewSkin'/></THEME>",
         kScript},
    };
    QFile settings(path("settings.xml"));
    for (const auto& hostile : kSkins) {
        SCOPED_TRACE(hostile.name);
        putSkin("hostile", hostile.xml, hostile.script);
        Player player(application, {});
        player.Form_Load();
        player.LoadFlash(movie, {});
        QString told;
        QTimer look;
        QObject::connect(&look, &QTimer::timeout, [&told] {
            if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
                told = box->text();
                box->accept();
            }
        });
        look.start(20);
        player.skinWindow().selectSkin("hostile");
        player.EnumSkins();
        player.LoadNewSkin();
        EXPECT_TRUE(waitFor([&] { return !told.isEmpty(); }));
        EXPECT_TRUE(told.contains("hostile")) << told.toStdString();
        EXPECT_EQ(player.skinWindow().selectedSkin(), "default");
        EXPECT_TRUE(waitFor([&] { return player.LBL(1) != nullptr; }));
        player.LoadFlash(movie, {});
        EXPECT_EQ(player.control().TotalFrames(), 300);
    }
}

TEST_F(Hostile, ASkinChangesTheMovieWhenItsStatementIsDone)
{
    putSkin("default", skinOf("<LABEL name='l'/>"),
            "Sub onLoad : End Sub\r\nSub Change\r\nPlayer.LoadFlash \"" + movie.toUtf8() +
                "\", \"\"\r\nPlayer.CloseMedia \"\"\r\nPlayer.CreateSkin\r\nPlayer.LoadFlash \"" +
                movie.toUtf8() + "\", \"\"\r\nEnd Sub");
    Player player(application, {});
    player.Form_Load();
    const QPointer<QObject> label = player.LBL(1);
    player.skinWindow().skin().bridge().RunScript("Change");
    EXPECT_EQ(player.mediaInfo().OriginalPath, QString());
    EXPECT_TRUE(waitFor([&] { return player.mediaInfo().OriginalPath == movie; }));
    EXPECT_TRUE(waitFor([&] { return player.movieScreen().showsControl() && player.HasMovie(); }));
}

} // namespace
} // namespace player
