#include "flash/FlashControl.h"

#include "../Movies.h"

#include <QEventLoop>
#include <QGuiApplication>
#include <QPainter>
#include <QScreen>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>
#include <optional>
#include <string_view>
#include <sys/socket.h>
#include <sys/un.h>
#include <vector>

// What a movie's window shows past its store, seen on the screen.
namespace flash
{

namespace
{

constexpr QRect kPlace(40, 30, 100, 80); // of the movie in the window

class PaintCount : public QObject
{
public:
    explicit PaintCount(QObject& of) { of.installEventFilter(this); }
    int count = 0;

protected:
    bool eventFilter(QObject*, QEvent* event) override
    {
        count += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
};

/// Of what this thread has to do.
class EventCount : public QObject
{
public:
    EventCount() { qApp->installEventFilter(this); }
    int count = 0;

protected:
    bool eventFilter(QObject*, QEvent*) override
    {
        ++count;
        return false;
    }
};

/// As an application that has nothing to do: between events the thread sleeps in its loop.
void idleFor(int ms)
{
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec();
}

/// The connections of this process to the display, the toolkit's first.
std::vector<int> displaySockets()
{
    std::vector<int> found;
    constexpr int kMostOpen = 256;
    for (int file = 0; file < kMostOpen; ++file) {
        sockaddr_un peer{};
        socklen_t length = sizeof peer;
        if (getpeername(file, reinterpret_cast<sockaddr*>(&peer), &length) != 0) continue;
        const std::string_view path(peer.sun_path, sizeof peer.sun_path);
        if (path.find("X11-unix") != std::string_view::npos) found.push_back(file);
    }
    return found;
}

/// Lets through half of what is below.
class Veil : public QWidget
{
public:
    using QWidget::QWidget;

protected:
    void paintEvent(QPaintEvent*) override { QPainter(this).fillRect(rect(), QColor(0, 0, 255, 128)); }
};

/// The parameter: whether the window's thread sleeps between its events, or always comes round for more.
class DirectPainting : public testing::TestWithParam<bool>
{
protected:
    void SetUp() override
    {
        m_sleeps = GetParam();
        if (QGuiApplication::platformName() != "xcb") GTEST_SKIP() << "no X11 display";
        m_control = new FlashControl(&m_window);
        m_control->setGeometry(kPlace);
        m_window.setGeometry(20, 10, 300, 200);
        m_window.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&m_window));
        ASSERT_TRUE(m_control->LoadMovie(0, m_folder.write("a.swf", test::movingSquare(5))));
        ASSERT_TRUE(m_control->hasOwnProcess());
        playOn();
    }

    /// Some frames, the last of which holds.
    void playOn()
    {
        const auto wait = [this](int ms) { m_sleeps ? idleFor(ms) : QTest::qWait(ms); };
        m_control->Play();
        wait(60);
        const int before = m_paints ? m_paints->count : 0;
        wait(250);
        m_painted = m_paints ? m_paints->count - before : 0;
        m_control->setSuspended(true);
        wait(60);
    }
    void goOn()
    {
        m_control->setSuspended(false);
        playOn();
    }

    QImage screen(const QRect& part) const
    {
        const QRect there = part.translated(m_window.mapToGlobal(QPoint()));
        return QGuiApplication::primaryScreen()
            ->grabWindow(0, there.x(), there.y(), there.width(), there.height())
            .toImage()
            .convertToFormat(QImage::Format_RGB32);
    }
    /// Whether the screen shows what painting the window would.
    bool isShown()
    {
        return QTest::qWaitFor(
            [this] {
                const QImage painted = m_window.grab().toImage().convertToFormat(QImage::Format_RGB32);
                return screen(m_window.rect()) == painted;
            },
            2000);
    }

    test::MovieFolder m_folder;
    QWidget m_window;
    FlashControl* m_control = nullptr;
    std::optional<PaintCount> m_paints;
    int m_painted = 0;
    bool m_sleeps = false;
};

} // namespace

TEST_P(DirectPainting, PicturesReachTheScreenWithoutAPaintEvent)
{
    m_paints.emplace(*m_control);
    const QImage before = screen(kPlace);
    for (int round = 0; round < 3; ++round) {
        goOn();
        EXPECT_EQ(m_painted, 0);
        EXPECT_TRUE(isShown());
    }
    EXPECT_NE(screen(kPlace), before) << "or else nothing moved";
}

TEST_P(DirectPainting, TheWindowIsNotWokenUpForPictures)
{
    if (!m_sleeps) GTEST_SKIP();
    m_control->setSuspended(false);
    m_control->Play();
    idleFor(300);
    // 30 frames a second, each with a picture; and whoever sees them may see other things meanwhile.
    EventCount events;
    QImage before = screen(kPlace);
    int seen = 0;
    constexpr int kLooks = 8;
    for (int look = 0; look < kLooks; ++look) {
        idleFor(250);
        const QImage now = screen(kPlace);
        seen += now != before ? 1 : 0;
        before = now;
    }
    EXPECT_GE(seen, kLooks - 2);
    // The end of each sleep here, what it takes to look, and news of the movie some times a second.
    EXPECT_LT(events.count, 60);
}

TEST_P(DirectPainting, WhatComesOverTheMovieBetweenPicturesStays)
{
    m_control->setSuspended(false);
    m_control->Play();
    Veil veil(&m_window);
    for (int round = 0; round < 6; ++round) {
        veil.setGeometry(kPlace.left() + 7 * round, kPlace.top() + 5 * round, 40, 10);
        veil.show();
        idleFor(80);
        QWidget dialog(&m_window, Qt::Dialog);
        dialog.setGeometry(330, 10, 50, 50);
        dialog.show();
        idleFor(50);
        veil.hide();
        idleFor(30);
    }
    veil.show();
    m_control->setSuspended(true);
    EXPECT_TRUE(isShown());
}

TEST_P(DirectPainting, AMovieThatEndsWhileTheWindowSleepsEndsTheWait)
{
    for (int round = 0; round < 3; ++round) {
        m_control->setSuspended(false);
        m_control->Play();
        idleFor(100);
        // From within the loop, as handlers do: the next one, and then none.
        QTimer::singleShot(50, m_control, [this, round] {
            const QString next = m_folder.write("b.swf", test::movingSquare(5));
            EXPECT_TRUE(m_control->LoadMovie(0, round == 2 ? QString() : next));
        });
        idleFor(200);
    }
    EXPECT_TRUE(isShown());
}

TEST_P(DirectPainting, IsPaintedWhenTheWayToTheDisplayEnds)
{
    goOn();
    const std::vector<int> sockets = displaySockets();
    ASSERT_EQ(sockets.size(), 2U);
    shutdown(sockets.back(), SHUT_RDWR);
    m_paints.emplace(*m_control);
    goOn();
    EXPECT_GT(m_painted, 0);
    EXPECT_TRUE(isShown());
    // The next movie has another.
    ASSERT_TRUE(m_control->LoadMovie(0, m_folder.write("b.swf", test::movingSquare(5))));
    playOn();
    goOn();
    EXPECT_EQ(m_painted, 0);
    EXPECT_TRUE(isShown());
}

TEST_P(DirectPainting, WhatLiesOverTheMovieStays)
{
    Veil veil(&m_window);
    veil.setGeometry(kPlace.left() + 30, kPlace.top(), 40, 10);
    veil.show();
    goOn();
    EXPECT_TRUE(isShown());
    veil.move(kPlace.topLeft());
    goOn();
    EXPECT_TRUE(isShown());
    veil.hide();
    EXPECT_TRUE(isShown());
    Veil within(m_control);
    within.setGeometry(0, 0, 100, 10);
    within.show();
    goOn();
    EXPECT_TRUE(isShown());
    m_control->setMask(QRegion(0, 0, 50, 80));
    goOn();
    EXPECT_TRUE(isShown());
}

TEST_P(DirectPainting, WhatTheStoreMissesIsPaintedBeforeItIsSeen)
{
    goOn();
    {
        QWidget other(nullptr, Qt::ToolTip);
        other.setGeometry(QRect(m_window.mapToGlobal(kPlace.topLeft()), QSize(100, 15)));
        other.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&other));
        goOn();
    }
    EXPECT_TRUE(isShown()) << "uncovered";
    goOn();
    m_control->move(kPlace.topLeft() + QPoint(35, 25));
    EXPECT_TRUE(isShown()) << "moved within the window";
    goOn();
    m_window.hide();
    m_window.show();
    EXPECT_TRUE(isShown()) << "shown again";
    goOn();
    m_control->resize(130, 100);
    EXPECT_TRUE(isShown()) << "of another size";
    goOn();
    EXPECT_TRUE(isShown());
}

TEST_P(DirectPainting, AnotherWindowTakesTheMovieOver)
{
    goOn();
    QWidget other;
    other.setGeometry(330, 10, 200, 150);
    other.show();
    m_control->setParent(&other);
    m_control->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&other));
    goOn();
    EXPECT_TRUE(QTest::qWaitFor(
        [&] {
            const QPoint at = other.mapToGlobal(QPoint());
            return QGuiApplication::primaryScreen()
                       ->grabWindow(0, at.x(), at.y(), other.width(), other.height())
                       .toImage()
                       .convertToFormat(QImage::Format_RGB32) ==
                   other.grab().toImage().convertToFormat(QImage::Format_RGB32);
        },
        2000));
    EXPECT_TRUE(isShown());
    m_control->setParent(&m_window);
}

INSTANTIATE_TEST_SUITE_P(AThreadThat, DirectPainting, testing::Bool(),
                         [](const auto& info) { return info.param ? "Sleeps" : "IsAwake"; });

} // namespace flash
