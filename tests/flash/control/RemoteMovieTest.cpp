#include "flash/FlashControl.h"

#include "Environment.h"
#include "MovieKiller.h"
#include "Movies.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>

#include <csignal>
#include <gtest/gtest.h>
#include <thread>

namespace flash
{

namespace
{

const swf::ByteList kForEver = {0x99, 2, 0, 0xFB, 0xFF}; // a jump to itself

/// A control whose movies play in processes of their own; skips the test where they do not.
class RemoteMovie : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!qEnvironmentVariableIsSet("ZORVEX_MOVIE_PROGRAM")) GTEST_SKIP() << "movies play in this process";
        m_control.resize(100, 80);
    }

    void load(const QString& name, const swf::ByteList& bytes)
    {
        ASSERT_TRUE(m_control.LoadMovie(0, m_folder.write(name, bytes)))
            << m_control.errorText().toStdString();
        ASSERT_TRUE(m_control.hasOwnProcess());
    }

    QColor pixel(int x, int y) { return m_control.grab().toImage().pixelColor(x, y); }

    test::MovieFolder m_folder;
    FlashControl m_control;
};

} // namespace

TEST_F(RemoteMovie, OutlivesTheEndOfItsProcessAtAnyMoment)
{
    // From before the process has come up to well into play, each with a kill that no program can answer and
    // one that is a crash.
    tests::MovieKiller killer(14);
    int crashes = 0;
    for (int round = 0; round < tests::killsAsked(40); ++round) {
        SCOPED_TRACE(round);
        QSignalSpy crashed(&m_control, &FlashControl::crashed);
        killer.strikeWithin(round % 4 == 0 ? 300 : 120, round % 2 == 0 ? SIGKILL : SIGSEGV);
        load("a.swf", test::movingSquare(50));
        if (round % 3 == 0) QTest::qWait(20);
        // Where it struck before there was a process, this one is for it.
        if (killer.join() == 0 && m_control.processId() > 0)
            kill(static_cast<pid_t>(m_control.processId()), SIGKILL);
        m_control.Forward(); // in the middle of a call that waits
        // One that died before it saw the movie was replaced by another, which lives.
        const auto plays = [this] {
            return m_control.hasOwnProcess() && m_control.GetVariable("_totalframes") == "50";
        };
        ASSERT_TRUE(QTest::qWaitFor([&] { return crashed.count() == 1 || plays(); }, 5000));
        if (crashed.isEmpty()) continue;
        ++crashes;
        EXPECT_FALSE(m_control.hasOwnProcess());
        EXPECT_EQ(m_control.TotalFrames(), 0);
        EXPECT_EQ(m_control.Movie(), QString());
    }
    EXPECT_GT(crashes, tests::killsAsked(40) / 4) << "the others met processes that had seen no movie yet";
    load("b.swf", test::movingSquare(3));
    EXPECT_EQ(m_control.TotalFrames(), 3);
    EXPECT_EQ(pixel(10, 10), QColor(255, 0, 0));
}

TEST_F(RemoteMovie, APreparedProcessThatIsGoneOrStoppedIsNotUsed)
{
    const tests::Environment usual({{"ZORVEX_MOVIE_PATIENCE_MS", {}}});
    for (const int signal : {SIGKILL, SIGSTOP}) {
        SCOPED_TRACE(signal);
        load("a.swf", test::movingSquare(4));
        ASSERT_TRUE(QTest::qWaitFor([] { return tests::movieProcesses().size() == 2; }, 5000))
            << "one to spare";
        QTest::qWait(1200);
        for (const pid_t process : tests::movieProcesses()) {
            if (process != m_control.processId()) kill(process, signal);
        }
        load("b.swf", test::movingSquare(3));
        EXPECT_TRUE(QTest::qWaitFor([this] { return m_control.TotalFrames() == 3; }, 5000));
    }
}

TEST_F(RemoteMovie, AMovieForWhichNoProcessStartsDoesNotPlay)
{
    const QString movie = m_folder.write("a.swf", test::movingSquare(4));
    for (const QString program : {"/bin/false", "/bin/true", "/nowhere/at-all"}) {
        SCOPED_TRACE(program.toStdString());
        const tests::Environment broken({{"ZORVEX_MOVIE_PROGRAM", program}});
        FlashControl control;
        QSignalSpy refused(&control, &FlashControl::refused);
        // One that ends at once may be seen to do so while the call still waits, or later.
        if (control.LoadMovie(0, movie)) {
            ASSERT_TRUE(QTest::qWaitFor([&] { return !refused.isEmpty(); }, 5000));
            EXPECT_EQ(refused.first().first().toString(), movie);
        }
        EXPECT_TRUE(control.lacksProcess());
        EXPECT_FALSE(control.hasOwnProcess());
        EXPECT_EQ(control.TotalFrames(), 0) << "nor inside this process, where nothing confines it";
        EXPECT_NE(control.errorText(), QString());
    }
    load("b.swf", test::movingSquare(3));
    EXPECT_FALSE(m_control.lacksProcess());
}

TEST_F(RemoteMovie, AProcessThatIsSlowToStartHoldsNobodyUp)
{
    const tests::Environment usual({{"ZORVEX_MOVIE_PATIENCE_MS", {}}});
    const QString real = qEnvironmentVariable("ZORVEX_MOVIE_PROGRAM");
    // The first start fails as well, after the call has come back.
    const QString slow = m_folder.writeProgram(
        "slow", "cd " + m_folder.path() + " && sleep 0.6\nmkdir tried || exec " + real + "\nexit 1\n");
    const tests::Environment environment({{"ZORVEX_MOVIE_PROGRAM", slow}});
    FlashControl control;
    control.resize(100, 80);
    QElapsedTimer taken;
    taken.start();
    ASSERT_TRUE(control.LoadMovie(0, m_folder.write("a.swf", test::movingSquare(4))));
    EXPECT_TRUE(control.isLoading());
    EXPECT_LT(taken.elapsed(), 500) << "long before there is a process";
    taken.start();
    control.SetVariable("told", "early");
    control.Stop();
    EXPECT_LT(taken.elapsed(), 900);
    EXPECT_EQ(control.TotalFrames(), 0) << "as of a busy movie";
    ASSERT_TRUE(QTest::qWaitFor([&] { return control.TotalFrames() == 4; }, 8000));
    ASSERT_TRUE(QTest::qWaitFor([&] { return control.GetVariable("told") == "early"; }, 3000))
        << "what was asked meanwhile is done";
    EXPECT_FALSE(control.Playing());
}

TEST_F(RemoteMovie, AnEndlessFirstFrameHoldsNobodyUp)
{
    const tests::Environment usual({{"ZORVEX_MOVIE_PATIENCE_MS", {}}});
    QElapsedTimer taken;
    taken.start();
    load("endless.swf", test::movingSquare(3, kForEver));
    EXPECT_LT(taken.elapsed(), 1500) << "opening";
    taken.start();
    m_control.Forward();
    EXPECT_EQ(m_control.GetVariable("x"), QString());
    EXPECT_LT(taken.elapsed(), 1500) << "commands";

    QSignalSpy frozen(&m_control, &FlashControl::frozen);
    ASSERT_TRUE(frozen.wait(6000));
    EXPECT_TRUE(frozen.first().first().toBool());

    taken.start();
    load("b.swf", test::movingSquare(3));
    EXPECT_LT(taken.elapsed(), 1500) << "the next movie";
    EXPECT_EQ(m_control.TotalFrames(), 3);
}

TEST_F(RemoteMovie, KeepsWhatPlaysWhenTheNextOneCannotBeLoaded)
{
    load("a.swf", test::movingSquare(4));
    m_control.GotoFrame(2);
    EXPECT_FALSE(m_control.LoadMovie(0, m_folder.write("text.swf", {'n', 'o', ' ', 'm', 'o', 'v'})));
    EXPECT_FALSE(m_control.LoadMovie(0, m_folder.path()));
    EXPECT_FALSE(m_control.LoadMovie(0, "/dev/zero"));
    EXPECT_EQ(m_control.FrameNum(), 2);
    EXPECT_EQ(pixel(50, 10), QColor(255, 0, 0));
}

TEST_F(RemoteMovie, OneThatIsNotWaitedForIsSeenLater)
{
    m_control.setWaits(false);
    QSignalSpy refused(&m_control, &FlashControl::refused), crashed(&m_control, &FlashControl::crashed);
    const auto settles = [this] { return QTest::qWaitFor([this] { return !m_control.isBehind(); }, 3000); };
    ASSERT_TRUE(m_control.LoadMovie(0, m_folder.write("a.swf", test::movingSquare(4))));
    EXPECT_TRUE(m_control.isBehind());
    ASSERT_TRUE(settles());
    EXPECT_EQ(m_control.TotalFrames(), 4);
    m_control.GotoFrame(3);
    m_control.Back();
    EXPECT_TRUE(m_control.isBehind());
    ASSERT_TRUE(settles());
    EXPECT_EQ(m_control.FrameNum(), 3) << "back from what was seen then, the first frame";

    ASSERT_TRUE(m_control.LoadMovie(0, m_folder.write("text.swf", {'n', 'o', ' ', 'm', 'o', 'v'})));
    ASSERT_TRUE(settles());
    EXPECT_EQ(refused.count(), 1);
    EXPECT_EQ(crashed.count(), 0);
    EXPECT_NE(m_control.errorText(), QString());
    EXPECT_FALSE(m_control.hasOwnProcess());

    ASSERT_TRUE(m_control.LoadMovie(0, m_folder.path() + "/a.swf"));
    kill(static_cast<pid_t>(m_control.processId()), SIGKILL);
    ASSERT_TRUE(settles());
    EXPECT_EQ(m_control.TotalFrames(), 4)
        << "another process has taken the place of the one that saw nothing";
    kill(static_cast<pid_t>(m_control.processId()), SIGKILL);
    ASSERT_TRUE(crashed.wait(3000));
    ASSERT_TRUE(settles()) << "behind until the end of the process has been told";
}

TEST_F(RemoteMovie, PagesAndMoviesDoNotShareAProcess)
{
    const test::MovieFolder pages;
    m_control.setSharedFolder(pages.path(), m_folder.path());
    load("a.swf", test::movingSquare(4));
    const QString page = pages.write("page.swf", test::movingSquare(2));
    EXPECT_FALSE(m_control.LoadMovie(1, page));
    EXPECT_TRUE(m_control.LoadMovie(1, m_folder.write("b.swf", test::movingSquare(1))));
    ASSERT_TRUE(m_control.LoadMovie(0, page));
    EXPECT_TRUE(m_control.LoadMovie(1, page));
    EXPECT_FALSE(m_control.LoadMovie(1, m_folder.path() + "/b.swf"));
}

TEST_F(RemoteMovie, IsDrawnForWhoeverGrabsItWhileNobodySeesIt)
{
    const QColor red(255, 0, 0), grey(128, 128, 128);
    m_control.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&m_control));
    load("a.swf", test::movingSquare(5));
    m_control.Rewind();
    EXPECT_EQ(pixel(10, 10), red);
    m_control.hide();
    m_control.GotoFrame(2);
    EXPECT_EQ(pixel(50, 10), red);
    EXPECT_EQ(pixel(10, 10), grey);
    m_control.GotoFrame(3);
    m_control.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&m_control));
    EXPECT_TRUE(QTest::qWaitFor([&] { return pixel(70, 10) == red; }, 2000));
    EXPECT_EQ(pixel(50, 10), grey);
}

TEST_F(RemoteMovie, FollowsTheWindowsSizeAndShowsThePictureOfEach)
{
    load("a.swf", test::movingSquare(1));
    for (const int factor : {2, 1, 3, 1}) {
        SCOPED_TRACE(factor);
        m_control.resize(100 * factor, 80 * factor);
        EXPECT_EQ(pixel(20 * factor - 2, 20 * factor - 2), QColor(255, 0, 0));
        EXPECT_EQ(pixel(20 * factor + 2, 20 * factor + 2), QColor(128, 128, 128));
    }
}

TEST_F(RemoteMovie, DrawsHeavyFramesByTwoThreadsWhereItMay)
{
    if (std::thread::hardware_concurrency() < 2) GTEST_SKIP() << "there is one core";
    const auto threads = [this] {
        return QDir(QString("/proc/%1/task").arg(m_control.processId()))
            .entryList(QDir::Dirs | QDir::NoDotAndDotDot)
            .size();
    };
    m_control.resize(1000, 800);
    m_control.setSecondThread(false);
    load("a.swf", test::movingVeils());
    m_control.grab(); // one that nobody looks at has no size yet
    QTest::qWait(700);
    ASSERT_TRUE(m_control.Playing());
    const auto alone = threads();
    ASSERT_GT(alone, 0);
    m_control.setSecondThread(true);
    EXPECT_TRUE(QTest::qWaitFor([&] { return threads() == alone + 1; }, 10000));
    m_control.setSecondThread(false);
    EXPECT_TRUE(QTest::qWaitFor([&] { return threads() == alone; }, 10000));
}

} // namespace flash
