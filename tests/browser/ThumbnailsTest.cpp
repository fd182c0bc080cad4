#include "browser/Thumbnails.h"
#include "browser/SaveJpg.h"

#include "Host.h"
#include "MovieKiller.h"
#include "QtPrint.h"
#include "browser/DialogStyle.h"
#include "flash/FlashControl.h"
#include "media/MovieBytes.h"

#include <QApplication>
#include <QClipboard>
#include <QElapsedTimer>
#include <QLabel>
#include <QProcess>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <array>
#include <csignal>

namespace browser
{
namespace
{

constexpr std::array<QRgb, 10> kColours = {
    qRgb(255, 0, 0),   qRgb(0, 255, 0), qRgb(0, 0, 255),   qRgb(255, 255, 0), qRgb(255, 0, 255),
    qRgb(0, 255, 255), qRgb(0, 0, 0),   qRgb(255, 128, 0), qRgb(128, 0, 255), qRgb(0, 128, 64)};

/// The whole stage in one colour, but for a white corner that keeps the picture from being blank.
QString ground(int number)
{
    return QString("<shape id='g%1'><rect width='320' height='240' fill='%2'/>"
                   "<rect width='40' height='30' fill='#fff'/></shape>")
        .arg(number)
        .arg(QColor(kColours[static_cast<std::size_t>(number)]).name());
}

int nearest(QRgb colour)
{
    const auto distance = [colour](QRgb other) {
        return std::abs(qRed(colour) - qRed(other)) + std::abs(qGreen(colour) - qGreen(other)) +
               std::abs(qBlue(colour) - qBlue(other));
    };
    const auto found = std::min_element(kColours.begin(), kColours.end(),
                                        [&](QRgb a, QRgb b) { return distance(a) < distance(b); });
    return static_cast<int>(found - kColours.begin());
}

class ThumbnailMaker : public BrowserTest
{
protected:
    ThumbnailMaker() : thumbnails(application, host, state)
    {
        thumbnails.seed = 1;
        // The sanitizers make everything slow; what is to be dropped loops for ever.
        thumbnails.limits.timeMs = 1500;
    }

    QString movie(const QString& name, const QString& content)
    {
        write("source.xml", ("<movie version='7' compressed='no' width='320' height='240' rate='20'>" +
                             content + "</movie>")
                                .toUtf8());
        const int status =
            QProcess::execute(ZORVEX_TOOLS_DIR "/swfc", {path("source.xml"), "-o", path(name)});
        EXPECT_EQ(status, 0) << name.toStdString();
        return path(name);
    }
    QString scripted(const QString& name, const QString& script)
    {
        return movie(name, ground(1) + "<frame duration='10'><place id='g1' depth='1'/><script><![CDATA[" +
                               script + "]]></script></frame>");
    }
    /// Ten frames, each of a colour of its own.
    QString colours(const QString& name)
    {
        QString content;
        for (int i = 0; i < 10; ++i)
            content += ground(i) + QString("<frame><place id='g%1' depth='%2'/></frame>").arg(i).arg(i + 1);
        return movie(name, content);
    }
    [[nodiscard]] QString shotOf(const QString& movie) const
    {
        return application.CachePath + media::CacheName(movie, ".jpg");
    }
    QImage make(const QString& movie)
    {
        thumbnails.MakeThumbnail(movie, shotOf(movie));
        return loadThumbnail(shotOf(movie));
    }
    void makeAll(const QStringList& movies)
    {
        std::vector<Thumbnails::Order> orders;
        for (const QString& each : movies) orders.push_back({each, shotOf(each)});
        thumbnails.makeAll(orders);
    }
    /// Does something to the progress window once it is at work.
    void later(int ms, const std::function<void(frmShot&)>& act)
    {
        QTimer::singleShot(ms, qApp, [this, act] {
            ASSERT_NE(thumbnails.window(), nullptr);
            act(*thumbnails.window());
        });
    }

    BrowserState state;
    Thumbnails thumbnails;
};

constexpr const char* kEndless = "while (true) x++;";

TEST_F(ThumbnailMaker, ChoosesAFrameOfTheMiddlePart)
{
    struct Case {
        int frames;
        double random;
        int expected;
    };
    for (const Case& c : {Case{100, 0, 30}, Case{100, 0.9999, 90}, Case{1, 0, 0}, Case{1, 0.9, 1},
                          Case{15, 0, 4}, Case{5, 0, 2}, Case{0, 0.5, 0}, Case{65535, 0.5, 39321}})
        EXPECT_EQ(thumbnailFrame(c.frames, c.random), c.expected) << c.frames << " " << c.random;
}

TEST_F(ThumbnailMaker, TheSeedDecidesWhichFrameIsSeen)
{
    const QString file = colours("a.swf");
    std::set<int> seen;
    for (quint32 seed = 0; seed < 12; ++seed) {
        int first = -1;
        for (int again = 0; again < 2; ++again) {
            BrowserState fresh;
            Thumbnails maker(application, host, fresh);
            maker.seed = seed;
            const QString shot = application.CachePath + QString("%1-%2.jpg").arg(seed).arg(again);
            maker.MakeThumbnail(file, shot);
            const QImage picture = loadThumbnail(shot);
            ASSERT_EQ(picture.size(), QSize(kShotWidth, kShotHeight));
            const int frame = nearest(picture.pixel(120, 90));
            EXPECT_GE(frame, 3);
            EXPECT_LE(frame, 9);
            EXPECT_TRUE(again == 0 || frame == first) << "the same seed, the same frame";
            first = frame;
        }
        seen.insert(first);
    }
    EXPECT_GE(seen.size(), 3U);
}

TEST_F(ThumbnailMaker, PrefersAFrameThatShowsSomething)
{
    // More than half of the middle part is a blank stage with a hairline.
    QString content = ground(8) + "<shape id='line'><rect width='320' height='1' fill='#888'/></shape>"
                                  "<frame duration='7'><place id='line' depth='1'/></frame>"
                                  "<frame duration='3'><place id='g8' depth='2'/></frame>";
    const QString file = movie("a.swf", content);
    int pictured = 0;
    for (quint32 seed = 0; seed < 10; ++seed) {
        thumbnails.seed = seed;
        const QString shot = application.CachePath + QString("%1.jpg").arg(seed);
        thumbnails.MakeThumbnail(file, shot);
        if (nearest(loadThumbnail(shot).pixel(120, 90)) == 8) ++pictured;
    }
    EXPECT_GE(pictured, 8);
}

TEST_F(ThumbnailMaker, WaitsForScriptsToSettle)
{
    // Nothing can be seen before the fifth frame, and then a clip that a script makes.
    const QString file =
        movie("a.swf", "<frame duration='10'><script><![CDATA[var n = 0; onEnterFrame = function () {"
                       "if (++n == 5) { beginFill(0x8000FF); moveTo(40, 0); lineTo(320, 0);"
                       "lineTo(320, 240); lineTo(40, 240); endFill(); } };]]></script></frame>");
    EXPECT_EQ(nearest(make(file).pixel(120, 90)), 8);
}

TEST_F(ThumbnailMaker, DropsWhatLoopsForEverOrEatsMemoryAndGoesOn)
{
    struct Case {
        const char* name;
        const char* script;
        bool mayBePictured; ///< the engine's own limits may end the script before
    };
    const Case kCases[] = {
        {"a loop", kEndless, false},
        {"a loop in each frame", "onEnterFrame = function () { while (true) x++; };", false},
        {"recursion", "function f() { f(); } f();", true},
        {"a text that doubles", "var s = 'x'; while (true) { s += s; s.charAt(0); }", true},
        {"objects", "var a = []; while (true) a.push({a: 1, b: [1, 2, 3]});", false},
        {"a drawing", "beginFill(1); while (true) lineTo(Math.random() * 300, Math.random() * 200);", false},
        {"a function called by a native", "[2, 1].sort(function (x, y) { while (true) x++; });", false},
        {"natives at work on much",
         "var s = 'x'; for (var i = 0; i < 22; i++) s += s; while (true) s.indexOf('xxxxxxxxy');", false},
        {"one native that takes long",
         "var a = []; for (var i = 0; i < 200000; i++) a.push(100000 + i); a.sort();", false},
    };
    QStringList movies;
    for (const Case& c : kCases) movies += scripted(QString("%1.swf").arg(c.name), c.script);
    thumbnails.limits.timeMs = 1000;
    const QString good = colours("good.swf");
    thumbnails.limits.memoryBytes = std::int64_t{300} << 20;
    makeAll(movies + QStringList{good});
    for (int i = 0; i < movies.size(); ++i) {
        const Case& c = kCases[i];
        EXPECT_TRUE(c.mayBePictured || !core::fileExists(shotOf(movies[i]))) << c.name;
    }
    EXPECT_FALSE(loadThumbnail(shotOf(good)).isNull());
    EXPECT_GE(journal().count("Thumbnail dropped: "), 7);
    EXPECT_EQ(thumbnails.window(), nullptr);
}

TEST_F(ThumbnailMaker, CancelStopsTheRunAtOnce)
{
    thumbnails.limits.timeMs = 60000;
    const QString first = colours("first.swf");
    QElapsedTimer clock;
    later(600, [](frmShot& window) {
        auto* cancel = window.findChild<QPushButton*>("cbCancel");
        QTest::mouseClick(cancel, Qt::LeftButton);
        EXPECT_FALSE(cancel->isEnabled());
    });
    clock.start();
    thumbnails.sideBySide = 2;
    const QString second = scripted("second.swf", kEndless), third = scripted("third.swf", kEndless);
    const QString fourth = colours("fourth.swf");
    makeAll({first, second, third, fourth});
    EXPECT_LT(clock.elapsed(), 20000);
    EXPECT_TRUE(state.skip);
    EXPECT_TRUE(core::fileExists(shotOf(first))) << "what is made stays";
    for (const QString& other : {second, third, fourth}) EXPECT_FALSE(core::fileExists(shotOf(other)));
}

TEST_F(ThumbnailMaker, ADoubleClickSkipsOneMovie)
{
    thumbnails.limits.timeMs = 60000;
    const QString first = scripted("first.swf", kEndless), second = colours("second.swf");
    QString path, count;
    int bar = 0;
    later(300, [&](frmShot& window) {
        path = window.findChild<QLabel*>("lblPath")->text();
        count = window.findChild<QLabel*>("lblCountOver")->text();
        bar = window.findChild<QWidget*>("picProgress")->width();
        EXPECT_TRUE(window.findChild<QWidget*>("picStatus")->isVisible());
        EXPECT_EQ(count, window.findChild<QLabel*>("lblCountUnder")->text());
        // On the movie itself: it must not swallow the click.
        auto* pic = window.findChild<QWidget*>("PIC");
        QTest::mouseDClick(window.childAt(pic->mapTo(&window, pic->rect().center())), Qt::LeftButton);
    });
    makeAll({first, second});
    EXPECT_FALSE(core::fileExists(shotOf(first)));
    EXPECT_FALSE(loadThumbnail(shotOf(second)).isNull());
    EXPECT_FALSE(state.skip);
    EXPECT_TRUE(path.endsWith("first.swf")) << path.toStdString();
    EXPECT_EQ(count, "Готово 1 из 2");
    EXPECT_EQ(bar, 144) << "half of the track";
}

TEST_F(ThumbnailMaker, WhatCannotBeLoadedShowsTheMissingSign)
{
    write("empty.swf", "");
    write("text.swf", "no movie at all, but long enough for a header");
    write("no.exe", QByteArray("MZ") + QByteArray(3000, 'x'));
    folder("Clips.swf");
    const QString good = colours("good.swf");
    QImage sign;
    for (const char* name : {"empty.swf", "text.swf", "no.exe", "Clips.swf", "gone.swf"}) {
        SCOPED_TRACE(name);
        ASSERT_FALSE(make(good).isNull()) << "a movie before it, which must not shine through";
        const QImage picture = make(path(name));
        ASSERT_FALSE(picture.isNull());
        EXPECT_TRUE(sign.isNull() || picture == sign);
        sign = picture;
        QFile::remove(shotOf(good));
    }
    EXPECT_NE(nearest(sign.pixel(5, 5)), nearest(make(good).pixel(120, 90)));
}

TEST_F(ThumbnailMaker, PicturesProjectorsAndOddNames)
{
    const QString good = colours("good.swf");
    QFile file(good);
    ASSERT_TRUE(file.open(QFile::ReadOnly));
    const QByteArray bytes = file.readAll();
    const media::ByteVector exe = media::projector({bytes.begin(), bytes.end()});
    write("Игра.EXE",
          QByteArray(reinterpret_cast<const char*>(exe.data()), static_cast<qsizetype>(exe.size())));
    const char* names[] = {"Игра.EXE", "who?.swf", "a#b%20c.swf", "日本 ёж.swf"};
    for (const char* name : names) {
        SCOPED_TRACE(name);
        if (!core::fileExists(path(name))) write(name, bytes);
        const QImage picture = make(path(name));
        ASSERT_FALSE(picture.isNull()) << journal().toStdString();
        EXPECT_EQ(qRgb(255, 255, 255), picture.pixel(4, 4) | 0x0F0F0F)
            << "the corner that all frames have" << journal().toStdString();
    }
}

TEST_F(ThumbnailMaker, WorksInSilenceAtTheChosenQualityAndNeverTwice)
{
    QApplication::clipboard()->setText("mine");
    const QString file =
        scripted("a.swf", "System.setClipboard('stolen'); fscommand('quit'); getURL('http://x/');");
    host.smooth = false;
    ASSERT_FALSE(make(file).isNull());
    ASSERT_NE(thumbnails.window(), nullptr) << "whoever asked for one thumbnail closes the window";
    EXPECT_EQ(thumbnails.window()->SWF().Quality(), 0);
    EXPECT_FALSE(thumbnails.window()->findChild<QWidget*>("picStatus")->isVisible());
    EXPECT_EQ(QApplication::clipboard()->text(), "mine");

    host.smooth = true;
    const QString other = colours("b.swf");
    make(other);
    EXPECT_EQ(thumbnails.window()->SWF().Quality(), 1);
    QFile damaged(shotOf(other));
    ASSERT_TRUE(damaged.open(QFile::WriteOnly));
    damaged.close();
    EXPECT_TRUE(make(other).isNull()) << "a thumbnail that is there is not made again";
    thumbnails.closeWindow();
    EXPECT_EQ(thumbnails.window(), nullptr);
}

TEST_F(ThumbnailMaker, SeveralAtOnceTakeTheirTurnsAndComeOutAsOneByOne)
{
    if (!flash::FlashControl::givesOwnProcesses()) GTEST_SKIP() << "movies play in this process";
    QStringList movies;
    for (int i = 0; i < 6; ++i) movies += colours(QString("%1.swf").arg(i));
    std::vector<QImage> alone;
    for (const int sideBySide : {1, 4}) {
        BrowserState fresh;
        Thumbnails maker(application, host, fresh);
        maker.seed = 7;
        maker.sideBySide = sideBySide;
        std::vector<Thumbnails::Order> orders;
        for (const QString& each : movies) {
            QFile::remove(shotOf(each));
            orders.push_back({each, shotOf(each)});
        }
        maker.makeAll(orders);
        for (int i = 0; i < movies.size(); ++i) {
            SCOPED_TRACE(i);
            const QImage picture = loadThumbnail(shotOf(movies[i]));
            ASSERT_FALSE(picture.isNull());
            if (sideBySide == 1) alone.push_back(picture);
            EXPECT_EQ(picture, alone[static_cast<std::size_t>(i)]);
        }
    }

    // Three that use up their time do so together, and hold nothing up.
    thumbnails.sideBySide = 4;
    QStringList mixed;
    for (const char* name : {"x.swf", "y.swf", "z.swf"}) mixed += scripted(name, kEndless);
    const QString good = colours("good.swf");
    QElapsedTimer clock;
    clock.start();
    makeAll(mixed + QStringList{good});
    EXPECT_LT(clock.elapsed(), 2 * thumbnails.limits.timeMs);
    EXPECT_TRUE(core::fileExists(shotOf(good)));
    EXPECT_EQ(journal().count("Thumbnail dropped: it takes too long"), 3);
}

TEST_F(ThumbnailMaker, AProcessThatIsKilledCostsOnePictureAtMost)
{
    if (!flash::FlashControl::givesOwnProcesses()) GTEST_SKIP() << "movies play in this process";
    thumbnails.sideBySide = 2;
    const auto four = [this](const QString& prefix) {
        QStringList movies;
        for (int i = 0; i < 4; ++i) movies += colours(prefix + QString::number(i) + ".swf");
        return movies;
    };
    QElapsedTimer undisturbed;
    undisturbed.start();
    makeAll(four("whole_"));
    const auto takesMs = static_cast<int>(undisturbed.elapsed()) + 1;
    // Seeded moments, from the first process to where the movies are done.
    QRandomGenerator random(20);
    for (int round = 0; round < tests::killsAsked(10); ++round) {
        SCOPED_TRACE(round);
        // Others each time: one that failed is not tried again.
        const QStringList movies = four(QString("%1_").arg(round));
        QTimer moment;
        QObject::connect(&moment, &QTimer::timeout, [&] {
            moment.setInterval(1); // and again until there is one
            if (thumbnails.window() == nullptr) return;
            const int place = static_cast<int>(random.bounded(thumbnails.window()->places()));
            const auto process = static_cast<pid_t>(thumbnails.window()->SWF(place).processId());
            if (process == 0) return;
            kill(process, round % 2 == 0 ? SIGKILL : SIGSEGV);
            moment.stop();
        });
        moment.start(static_cast<int>(random.bounded(takesMs)));
        makeAll(movies);
        int made = 0;
        for (const QString& each : movies) made += loadThumbnail(shotOf(each)).isNull() ? 0 : 1;
        EXPECT_GE(made, 3);
    }
    EXPECT_TRUE(journal().contains("Thumbnail dropped: its process has ended"));
}

TEST_F(ThumbnailMaker, EndsWithTheProgram)
{
    thumbnails.limits.timeMs = 60000;
    thumbnails.sideBySide = 1;
    later(300, [this](frmShot&) { host.ended = true; });
    const QString other = colours("b.swf");
    makeAll({scripted("a.swf", kEndless), other});
    EXPECT_FALSE(core::fileExists(shotOf(other)));
}

TEST_F(ThumbnailMaker, APictureThatCannotBeWrittenStopsNothing)
{
    const QString a = colours("a.swf"), b = colours("b.swf");
    thumbnails.makeAll({{a, path("no/folder/a.jpg")}, {b, shotOf(b)}});
    EXPECT_EQ(journal().count("Failed to save JPEG"), 1);
    EXPECT_FALSE(loadThumbnail(shotOf(b)).isNull());
}

} // namespace
} // namespace browser
