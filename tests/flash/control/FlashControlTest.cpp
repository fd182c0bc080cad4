#include "flash/FlashControl.h"

#include "Movies.h"
#include "StandInOutput.h"

#include <QApplication>
#include <QClipboard>
#include <QElapsedTimer>
#include <QImage>
#include <QInputMethodEvent>
#include <QPaintEvent>
#include <QStyleHints>
#include <QTest>

#include <atomic>
#include <cstdio>
#include <gtest/gtest.h>
#include <thread>

namespace flash
{

namespace
{

class Counted : public FlashControl
{
public:
    int paints = 0;

protected:
    void paintEvent(QPaintEvent* event) override
    {
        ++paints;
        FlashControl::paintEvent(event);
    }
};

QColor pixel(FlashControl& control, int x, int y) { return control.grab().toImage().pixelColor(x, y); }

const QColor kRed(255, 0, 0), kGrey(128, 128, 128);

} // namespace

TEST(FlashControl, ReportsWhatIsLoadedAndKeepsItWhenALoadFails)
{
    const test::MovieFolder folder;
    FlashControl control;
    EXPECT_EQ(control.FrameNum(), -1);
    EXPECT_EQ(control.TotalFrames(), 0);
    EXPECT_FALSE(control.Playing());
    QList<int> states;
    QObject::connect(&control, &FlashControl::OnReadyStateChange, [&](int state) { states << state; });

    const QString movie = folder.write("a.swf", test::movingSquare(4));
    ASSERT_TRUE(control.LoadMovie(0, movie + "?name=value")) << control.errorText().toStdString();
    EXPECT_EQ(control.FrameNum(), 0);
    EXPECT_EQ(control.TotalFrames(), 4);
    EXPECT_TRUE(control.Playing());
    EXPECT_EQ(control.movieSize(), QSize(100, 80));
    EXPECT_EQ(control.frameRate(), 12.5);
    EXPECT_EQ(control.BGColor(), "808080");
    EXPECT_EQ(control.ReadyState(), 4);
    ASSERT_FALSE(states.isEmpty());
    EXPECT_EQ(states.last(), 4);

    for (const QString& bad :
         {QString("/no/such/file.swf"), folder.write("text.swf", {'n', 'o', ' ', 'm', 'o', 'v'}),
          folder.write("empty.swf", {})}) {
        SCOPED_TRACE(bad.toStdString());
        EXPECT_FALSE(control.LoadMovie(0, bad));
        EXPECT_FALSE(control.errorText().isEmpty());
        EXPECT_FALSE(control.LoadMovie(5, bad));
        EXPECT_EQ(control.TotalFrames(), 4);
        EXPECT_EQ(control.Movie(), movie + "?name=value");
    }
    EXPECT_TRUE(control.LoadMovie(0, QString()));
    EXPECT_EQ(control.FrameNum(), -1);
}

TEST(FlashControl, StepsHaltAndGoRoundAtTheEnds)
{
    const test::MovieFolder folder;
    FlashControl control;
    ASSERT_TRUE(control.LoadMovie(0, folder.write("a.swf", test::movingSquare(3))));
    control.Forward();
    EXPECT_EQ(control.FrameNum(), 1);
    EXPECT_FALSE(control.Playing());
    control.Forward();
    control.Forward();
    EXPECT_EQ(control.FrameNum(), 0);
    control.Back();
    EXPECT_EQ(control.FrameNum(), 2);
    control.Play();
    EXPECT_TRUE(control.Playing());
    control.Stop();
    EXPECT_EQ(control.FrameNum(), 2);
    control.GotoFrame(99);
    EXPECT_EQ(control.FrameNum(), 2);
    control.Rewind();
    EXPECT_EQ(control.FrameNum(), 0);
    EXPECT_FALSE(control.Playing());
}

TEST(FlashControl, TakesOnlySettingsItKnows)
{
    FlashControl control;
    EXPECT_EQ(control.Quality2(), "High");
    for (const char* name : {"Low", "Medium", "High", "AutoLow", "AutoHigh", "Best"}) {
        control.setQuality2(QString(name).toLower());
        EXPECT_EQ(control.Quality2(), name);
        const int number = control.Quality();
        control.setQuality2("Splendid");
        control.setQuality(17);
        EXPECT_EQ(control.Quality(), number);
    }
    control.setScaleMode(2);
    control.setScaleMode(4);
    control.setScaleMode(-1);
    EXPECT_EQ(control.ScaleMode(), 2);
    control.setBGColor("#12abEF");
    EXPECT_EQ(control.BGColor(), "12ABEF");
    for (const char* bad : {"", "12", "GGGGGG", "1234567", "-12345"}) control.setBGColor(bad);
    EXPECT_EQ(control.BGColor(), "12ABEF");
}

TEST(FlashControl, ShowsTheMovieScaledAsTold)
{
    const test::MovieFolder folder;
    FlashControl control;
    control.resize(300, 80); // three times as wide as the movie
    ASSERT_TRUE(control.LoadMovie(0, folder.write("a.swf", test::movingSquare(3))));
    control.Stop();
    EXPECT_EQ(pixel(control, 110, 10), kRed) << "show all: centred, at its own size";
    EXPECT_EQ(pixel(control, 150, 10), kGrey);
    control.setScaleMode(2);
    EXPECT_EQ(pixel(control, 10, 10), kRed) << "exact fit: stretched";
    EXPECT_EQ(pixel(control, 55, 10), kRed);
    EXPECT_EQ(pixel(control, 70, 10), kGrey);
    control.GotoFrame(1);
    EXPECT_EQ(pixel(control, 10, 10), kGrey);
    EXPECT_EQ(pixel(control, 70, 10), kRed);
    control.resize(100, 80);
    EXPECT_EQ(pixel(control, 30, 10), kRed);
    control.setBGColor("0000FF");
    EXPECT_EQ(pixel(control, 90, 70), QColor(0, 0, 255)) << "the host's colour holds";
    ASSERT_TRUE(control.LoadMovie(0, folder.write("b.swf", test::movingSquare(1))));
    EXPECT_EQ(pixel(control, 90, 70), kGrey) << "until the next movie";
}

TEST(FlashControl, FollowsTheRealClockAndPaintsOnlyWhatMoves)
{
    const test::MovieFolder folder;
    Counted control;
    control.resize(100, 80);
    control.show();
    ASSERT_TRUE(control.LoadMovie(0, folder.write("a.swf", test::movingSquare(1000))));
    QElapsedTimer clock;
    clock.start();
    QTest::qWait(1000);
    const double due = static_cast<double>(clock.elapsed()) * 12.5 / 1000;
    EXPECT_NEAR(control.FrameNum(), due, 3);

    control.Stop();
    QTest::qWait(50);
    const int frame = control.FrameNum();
    control.paints = 0;
    QTest::qWait(300);
    EXPECT_EQ(control.FrameNum(), frame);
    EXPECT_EQ(control.paints, 0);

    control.Play();
    control.setSuspended(true);
    QTest::qWait(200);
    EXPECT_EQ(control.FrameNum(), frame);
    control.setSuspended(false);
    QTest::qWait(300);
    EXPECT_GT(control.FrameNum(), frame);
}

TEST(FlashControl, StopsAtTheLastFrameWhenItDoesNotLoop)
{
    const test::MovieFolder folder;
    FlashControl control;
    control.setLoop(false);
    ASSERT_TRUE(control.LoadMovie(0, folder.write("a.swf", test::movingSquare(3))));
    QTest::qWait(500);
    EXPECT_EQ(control.FrameNum(), 2);
    EXPECT_FALSE(control.Playing());
    EXPECT_FALSE(control.Loop());
}

TEST(FlashControl, LoadsALayerOverTheMovieAndLeavesItPlaying)
{
    const test::MovieFolder folder;
    FlashControl control;
    control.resize(100, 80);
    ASSERT_TRUE(control.LoadMovie(0, folder.write("a.swf", test::movingSquare(4))));
    control.GotoFrame(3);
    const test::MovieFolder elsewhere;
    ASSERT_TRUE(control.LoadMovie(6000, elsewhere.write("layer.swf", test::movingSquare(1)) + "?volume=50"))
        << control.errorText().toStdString();
    QTest::qWait(300);
    EXPECT_EQ(control.FrameNum(), 3);
    EXPECT_EQ(pixel(control, 70, 10), kRed);
    EXPECT_EQ(pixel(control, 10, 10), kRed) << "the layer's square";
    EXPECT_EQ(pixel(control, 90, 70), kGrey);
    ASSERT_TRUE(control.LoadMovie(6000, QString()));
    QTest::qWait(200);
    EXPECT_EQ(pixel(control, 10, 10), kGrey);
}

TEST(FlashControl, LetsOnlyTrustedMoviesReadTheSharedFolder)
{
    const test::MovieFolder pages, others, shared;
    const auto asks = test::getUrl(shared.write("50% of #1.swf", test::movingSquare(1))
                                       .replace('%', "%25")
                                       .replace('#', "%23")
                                       .toStdString(),
                                   "_level5");
    FlashControl control;
    control.resize(100, 80);
    control.setSharedFolder(QFileInfo(pages.write("page.swf", test::blank(asks))).path() + "/",
                            shared.path() + "/");
    const struct {
        const char* name;
        QString movie;
        QColor seen;
    } cases[] = {{"in the trusted folder", pages.path() + "/page.swf?a=1", kRed},
                 {"below it", pages.write("below/page.swf", test::blank(asks)), kGrey},
                 {"elsewhere", others.write("page.swf", test::blank(asks)), kGrey}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ASSERT_TRUE(control.LoadMovie(0, c.movie));
        QTest::qWait(200);
        EXPECT_EQ(pixel(control, 10, 10), c.seen);
    }
}

TEST(FlashControl, LetsAHostAnswerACommandByLoadingAnotherMovie)
{
    const test::MovieFolder folder;
    FlashControl control;
    const QString second = folder.write("b.swf", test::movingSquare(7));
    QStringList heard;
    QObject::connect(&control, &FlashControl::FSCommand, &control,
                     [&](const QString& command, const QString& args) {
                         heard << command << args;
                         EXPECT_TRUE(control.LoadMovie(0, args));
                     });
    const auto actions = test::fsCommand("load", second.toStdString());
    EXPECT_TRUE(control.LoadMovie(0, folder.write("a.swf", test::movingSquare(2, actions))));
    EXPECT_EQ(heard, (QStringList{"load", second}));
    EXPECT_EQ(control.TotalFrames(), 7);
    EXPECT_EQ(control.Movie(), second);
}

TEST(FlashControl, DeliversNoMessageInsideAnother)
{
    const test::MovieFolder folder;
    FlashControl control;
    int heard = 0, depth = 0;
    QObject::connect(&control, &FlashControl::FSCommand, &control, [&](const QString&, const QString&) {
        EXPECT_EQ(depth, 0);
        ++depth;
        const bool again = ++heard < 200;
        EXPECT_TRUE(!again || control.LoadMovie(0, control.senderMovie()));
        --depth;
    });
    EXPECT_TRUE(control.LoadMovie(
        0, folder.write("a.swf", test::movingSquare(1, test::fsCommand("MEOWSEL", "itself")))));
    EXPECT_EQ(heard, 1) << "the event loop has its turn between two loads";
    EXPECT_TRUE(QTest::qWaitFor([&] { return heard == 200; }, 45'000));
}

TEST(FlashControl, KnowsAPageByWhatWasLoaded)
{
    const test::MovieFolder pages, shared;
    const auto speak = test::fsCommand("a", "b");
    const auto loadAndSpeak = [&](const QString& what) {
        auto actions = test::getUrl(what.toStdString(), "_level5");
        actions.pop_back(); // its end
        actions.insert(actions.end(), speak.begin(), speak.end());
        return test::movingSquare(2, actions);
    };
    const QString stranger = shared.write("stranger.jpg", test::movingSquare(1));
    const QString text = shared.write("text.txt", {'a', '=', 'b'});
    FlashControl control;
    control.setSharedFolder(pages.path() + '/', shared.path() + '/');
    int heard = 0;
    bool isPage = false, hasRead = false;
    QObject::connect(&control, &FlashControl::FSCommand, &control, [&] {
        ++heard;
        isPage = control.senderIsPage();
        hasRead = control.senderHasRead();
    });
    const auto loopsAround = [&] { // its first frame comes again
        heard = 0;
        return QTest::qWaitFor([&] { return heard > 1; });
    };
    const QString plain = pages.write("plain.swf", test::movingSquare(2, speak));
    ASSERT_TRUE(control.LoadMovie(0, plain + "?a=b"));
    EXPECT_TRUE(isPage);
    ASSERT_TRUE(control.LoadMovie(6000, pages.write("sound.swf", test::movingSquare(1)) + "?volume=1"));
    ASSERT_TRUE(loopsAround());
    EXPECT_TRUE(isPage) << "a page in another layer takes nothing away";
    EXPECT_FALSE(hasRead);
    // In a process of its own a page has no such neighbour at all.
    EXPECT_EQ(control.LoadMovie(1, stranger), !control.hasOwnProcess());
    ASSERT_TRUE(loopsAround());
    EXPECT_EQ(isPage, control.hasOwnProcess()) << "a movie from elsewhere in another layer";

    ASSERT_TRUE(control.LoadMovie(0, pages.write("picture.swf", loadAndSpeak(stranger))));
    ASSERT_TRUE(loopsAround());
    EXPECT_FALSE(isPage) << "a picture that is a movie";

    ASSERT_TRUE(control.LoadMovie(0, pages.write("reader.swf", loadAndSpeak(text))));
    ASSERT_TRUE(loopsAround());
    EXPECT_TRUE(isPage);
    EXPECT_TRUE(hasRead);

    QFile::link(stranger, pages.path() + "/link.swf");
    QFile::remove(stranger);
    shared.write("stranger.jpg", test::movingSquare(2, speak));
    ASSERT_TRUE(control.LoadMovie(0, pages.path() + "/link.swf"));
    EXPECT_FALSE(isPage) << "what a link leads to counts";

    QFile::rename(plain, shared.path() + "/moved.swf");
    ASSERT_TRUE(control.LoadMovie(0, shared.path() + "/moved.swf"));
    ASSERT_TRUE(loopsAround());
    QFile::rename(shared.path() + "/moved.swf", plain);
    QFile::link(plain, shared.path() + "/moved.swf");
    ASSERT_TRUE(loopsAround());
    EXPECT_FALSE(isPage) << "a file that is swapped while it plays gives nothing";
}

TEST(FlashControl, TellsWhetherTheUserHasJustActed)
{
    const test::MovieFolder folder;
    FlashControl control;
    control.resize(100, 80);
    control.show();
    int heard = 0;
    quint64 act = 99;
    QObject::connect(&control, &FlashControl::FSCommand, &control, [&] {
        ++heard;
        act = control.senderAct();
    });
    const auto next = [&] {
        heard = 0;
        EXPECT_TRUE(QTest::qWaitFor([&] { return heard > 0; }));
        return act;
    };
    const QString movie = folder.write("a.swf", test::movingSquare(2, test::fsCommand("a", "b")));
    ASSERT_TRUE(control.LoadMovie(0, movie));
    EXPECT_EQ(next(), 0U);
    QTest::mouseMove(&control, {20, 20});
    QTest::keyClick(&control, Qt::Key_Escape);
    EXPECT_EQ(next(), 0U) << "neither moving nor leaving is a wish";
    QTest::mousePress(&control, Qt::LeftButton, {}, {20, 20});
    const quint64 first = next();
    EXPECT_NE(first, 0U);
    QTest::mouseRelease(&control, Qt::LeftButton, {}, {20, 20});
    EXPECT_GT(next(), first);
    QTest::keyClick(&control, Qt::Key_A);
    EXPECT_GT(next(), first + 1);
    ASSERT_TRUE(control.LoadMovie(0, movie));
    EXPECT_EQ(act, 0U) << "the click was another movie's";
    QTest::mouseClick(&control, Qt::LeftButton, {}, {20, 20});
    QTest::qWait(1200);
    EXPECT_EQ(next(), 0U) << "it holds for a second";
}

TEST(FlashControl, LetsInputMethodsTypeIntoTheMovie)
{
    const test::MovieFolder folder;
    FlashControl control;
    control.resize(100, 80);
    control.show();
    ASSERT_TRUE(control.LoadMovie(0, folder.write("a.swf", test::inputField())));
    EXPECT_FALSE(control.testAttribute(Qt::WA_InputMethodEnabled));
    const auto send = [&control](const QString& composed, const QString& committed = {}) {
        QInputMethodEvent event(composed, {});
        event.setCommitString(committed);
        QCoreApplication::sendEvent(&control, &event);
    };
    QWidget& widget = control;
    const auto caret = [&widget] { return widget.inputMethodQuery(Qt::ImCursorRectangle).toRect(); };
    QTest::mouseClick(&control, Qt::LeftButton, {}, {20, 20});
    EXPECT_TRUE(QTest::qWaitFor([&] { return control.testAttribute(Qt::WA_InputMethodEnabled); }));
    const QRect empty = caret();
    EXPECT_TRUE(QRect(5, 5, 80, 30).contains(empty)) << "where the method may show what it offers";

    send("ab");
    EXPECT_EQ(control.GetVariable("v"), "") << "nothing is typed yet";
    EXPECT_TRUE(QTest::qWaitFor([&] { return caret().left() > empty.left() + 5; }));
    send({});
    EXPECT_TRUE(QTest::qWaitFor([&] { return caret() == empty; })) << "called off";
    send("a");
    send({}, QString::fromUtf8("\u00E9\u0436"));
    EXPECT_EQ(control.GetVariable("v"), QString::fromUtf8("\u00E9\u0436"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return caret().left() > empty.left(); }));
}

TEST(FlashControl, LeavesTheKeysThatAMovieDoesNotTypeToItsHost)
{
    constexpr std::uint8_t kReadOnly = 0x08, kPassword = 0x10;
    const test::MovieFolder folder;
    FlashControl control;
    control.resize(100, 80);
    control.show();
    const auto takes = [&control](Qt::Key key, Qt::KeyboardModifiers modifiers, const QString& text) {
        QKeyEvent event(QEvent::ShortcutOverride, key, modifiers, text);
        event.ignore();
        QCoreApplication::sendEvent(&control, &event);
        return event.isAccepted();
    };
    const auto copies = [&] { return takes(Qt::Key_C, Qt::ControlModifier, "\3"); };
    const auto types = [&] { return takes(Qt::Key_C, {}, "c"); };
    const auto click = [&control](const QString& file) {
        ASSERT_TRUE(control.LoadMovie(0, file));
        QTest::mouseClick(&control, Qt::LeftButton, {}, {20, 20});
    };
    click(folder.write("typed.swf", test::inputField()));
    EXPECT_TRUE(QTest::qWaitFor(copies));
    EXPECT_TRUE(types());
    EXPECT_EQ(control.inputMethodHints(), Qt::ImhNone);
    click(folder.write("read.swf", test::inputField(kReadOnly)));
    EXPECT_TRUE(QTest::qWaitFor([&] { return copies() && !types(); })) << "it can be copied, and no more";
    EXPECT_FALSE(control.testAttribute(Qt::WA_InputMethodEnabled));
    click(folder.write("secret.swf", test::inputField(kPassword)));
    EXPECT_TRUE(QTest::qWaitFor([&] { return control.inputMethodHints().testFlag(Qt::ImhHiddenText); }));
    EXPECT_TRUE(types());
}

TEST(FlashControl, CountsClicksToThree)
{
    const test::MovieFolder folder;
    FlashControl control;
    control.resize(100, 80);
    control.show();
    ASSERT_TRUE(control.LoadMovie(0, folder.write("a.swf", test::inputField())));
    control.SetVariable("v", "ab cd");
    QGuiApplication::clipboard()->clear();
    // Far enough apart from the clicks of other tests, and from each other where one begins anew.
    const auto copied = [&](int clicks) {
        QTest::qWait(QGuiApplication::styleHints()->mouseDoubleClickInterval() + 50);
        const QPointF at(12, 15);
        for (int i = 0; i < clicks; ++i) {
            for (const auto type : {i == 1 ? QEvent::MouseButtonDblClick : QEvent::MouseButtonPress,
                                    QEvent::MouseButtonRelease}) {
                const bool isHeld = type != QEvent::MouseButtonRelease;
                QMouseEvent event(type, at, control.mapToGlobal(at), Qt::LeftButton,
                                  isHeld ? Qt::LeftButton : Qt::NoButton, {});
                QCoreApplication::sendEvent(&control, &event);
            }
        }
        QTest::keyClick(&control, Qt::Key_C, Qt::ControlModifier);
        QTest::qWait(100);
        return QGuiApplication::clipboard()->text();
    };
    EXPECT_EQ(copied(2), "ab");
    EXPECT_EQ(copied(3), "ab cd");
}

TEST(FlashControl, TakesOnlySoMuchAtOnceFromAMovie)
{
    const test::MovieFolder folder;
    FlashControl control;
    int heard = 0;
    QStringList log;
    QObject::connect(&control, &FlashControl::FSCommand, &control, [&] { ++heard; });
    QObject::connect(&control, &FlashControl::logged, &control, [&](const QString& text) { log << text; });
    control.setScriptWatch([questions = 0]() mutable { return ++questions == 400; });
    auto actions = test::fsCommand("a", std::string(20'000, 'x'));
    actions.back() = 0x99; // instead of the end: back to the start, for ever
    const auto back = -static_cast<int>(actions.size() + 4);
    for (const int byte : {2, 0, back & 255, back >> 8 & 255})
        actions.push_back(static_cast<std::uint8_t>(byte));
    ASSERT_TRUE(control.LoadMovie(0, folder.write("a.swf", test::blank(actions))));
    if (control.hasOwnProcess())
        GTEST_SKIP() << "commands come when the script has ended, which nobody watches";
    EXPECT_GT(heard, 10);
    EXPECT_LT(heard, 500);
    EXPECT_TRUE(log.contains("The movie says more at once than is listened to."))
        << log.join('|').toStdString();
}

TEST(FlashControl, ReadsAndSetsVariablesOfTheRoot)
{
    const test::MovieFolder folder;
    FlashControl control;
    control.resize(100, 80);
    control.SetVariable("early", "1"); // nothing is loaded: nothing happens
    ASSERT_TRUE(control.LoadMovie(0, folder.write("a.swf", test::movingSquare(1)) + "?greeting=%41bc&n=2"));
    EXPECT_EQ(control.GetVariable("greeting"), "Abc");
    EXPECT_EQ(control.GetVariable("n"), "2");
    EXPECT_EQ(control.GetVariable("missing"), "");
    control.SetVariable("greeting", QString::fromUtf8("Привет"));
    EXPECT_EQ(control.GetVariable("_level0.greeting"), QString::fromUtf8("Привет"));
    control.SetVariable("_alpha", "50");
    const QColor mixed = pixel(control, 10, 10);
    EXPECT_NEAR(mixed.red(), 192, 3);
    EXPECT_NEAR(mixed.green(), 64, 3);
}

TEST(FlashControl, SurvivesAHostThatDeletesItFromAHandler)
{
    const test::MovieFolder folder;
    auto* control = new FlashControl;
    QObject::connect(control, &FlashControl::OnReadyStateChange, [&](int) {
        delete control;
        control = nullptr;
    });
    EXPECT_TRUE(control->LoadMovie(0, folder.write("a.swf", test::movingSquare(2))));
    EXPECT_EQ(control, nullptr);
}

TEST(FlashControl, AWatchEndsScriptsThatLoopForEver)
{
    const test::MovieFolder folder;
    FlashControl control;
    int questions = 0;
    control.setScriptWatch([&questions] { return ++questions == 3; });
    const swf::ByteList forEver = {0x99, 2, 0, 0xFB, 0xFF}; // a jump to itself
    ASSERT_TRUE(control.LoadMovie(0, folder.write("a.swf", test::movingSquare(4, forEver))));
    if (control.hasOwnProcess()) GTEST_SKIP() << "the window does not wait, so that nobody has to watch";
    EXPECT_EQ(questions, 3);
    control.GotoFrame(2); // the timeline goes on without its scripts
    EXPECT_EQ(control.FrameNum(), 2);
}

TEST(FlashControl, ASuspendedMovieMovesWhenItsHostMovesIt)
{
    const test::MovieFolder folder;
    FlashControl control;
    control.setSuspended(true);
    ASSERT_TRUE(control.LoadMovie(0, folder.write("a.swf", test::movingSquare(4))));
    QTest::qWait(200);
    EXPECT_EQ(control.FrameNum(), 0);
    control.advance(2 * 1000 / 12.5);
    EXPECT_EQ(control.FrameNum(), 2);
}

TEST(FlashControl, SoundComesWithoutAGap)
{
    // With ZORVEX_TEST_STRESS_S, for so many seconds and with every core at work on something else.
    const int stressSeconds = qEnvironmentVariableIntValue("ZORVEX_TEST_STRESS_S");
    std::atomic<bool> ends = false;
    std::vector<std::thread> stress;
    for (unsigned i = 0; stressSeconds > 0 && i < std::thread::hardware_concurrency(); ++i) {
        stress.emplace_back([&ends] {
            while (!ends) {
            }
        });
    }
    test::Heard heard;
    setStandInOutput(
        [&heard](QIODevice& from) { return std::make_unique<test::StandInOutput>(from, heard); });
    {
        const test::MovieFolder folder;
        FlashControl control;
        ASSERT_TRUE(control.LoadMovie(0, folder.write("sounds.swf", test::soundingMovie())));
        QTest::qWait(stressSeconds > 0 ? stressSeconds * 1000 : 1500);
    }
    setStandInOutput(nullptr);
    ends = true;
    for (std::thread& thread : stress) thread.join();
    RecordProperty("silentFrames", std::to_string(heard.silent));
    if (stressSeconds > 0) {
        std::printf("%lld frames, %lld silent in %d gaps, %lld late\n", static_cast<long long>(heard.frames),
                    static_cast<long long>(heard.silent), heard.gaps, static_cast<long long>(heard.late));
    }
    EXPECT_GT(heard.frames, sound::kMixRate / 2);
    // A machine that does much else may be late once.
    EXPECT_LE(heard.silent + heard.late, heard.frames / 20) << heard.gaps << " gaps";
}

} // namespace flash
