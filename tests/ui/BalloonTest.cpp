#include "ui/Balloon.h"

#include "QtPrint.h"
#include "base/Failure.h"
#include "skin/Controls.h"
#include "ui/Style.h"

#include <QApplication>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QTest>
#include <gtest/gtest.h>

namespace ui
{
namespace
{

class BalloonOver : public testing::Test
{
public:
    BalloonOver()
    {
        window.setGeometry(100, 200, 200, 100);
        control.setGeometry(20, 20, 60, 28);
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
    }
    [[nodiscard]] QPointer<Balloon> shown() const { return window.findChild<Balloon*>(); }
    Balloon* show(const QString& text)
    {
        return Balloon::show(control, text, control.mapToGlobal(QPoint(30, 14)));
    }
    QWidget window;
    QPushButton control{&window};
};

TEST_F(BalloonOver, WrapsAtItsWidthAndBreaksLongWords)
{
    const QSize small = show("Стоп")->size();
    EXPECT_LT(small.width(), 100);
    const QString sentence = QString("слово ").repeated(40);
    EXPECT_LE(show(sentence)->width(), Balloon::kTextWidth + 24);
    EXPECT_GT(show(sentence)->height(), 4 * control.fontMetrics().height());
    const QSize path = show(QString(200, 'w'))->size();
    EXPECT_LE(path.width(), Balloon::kTextWidth + 24);
    EXPECT_GT(path.height(), 2 * small.height());
    EXPECT_EQ(show("одна\r\nдве")->height(), show("одна\nдве")->height());
    EXPECT_GT(show("одна\nдве")->height(), small.height());
}

TEST_F(BalloonOver, PointsAtThePointerAndStaysOnTheScreen)
{
    const QRect room = control.screen()->availableGeometry();
    const QSize size = show("Подсказка")->size();
    for (const QPoint at : {room.center(), room.topLeft(), room.topRight(), room.bottomRight()}) {
        Balloon* balloon = Balloon::show(control, "Подсказка", at);
        EXPECT_TRUE(room.contains(balloon->geometry())) << at.x() << ' ' << at.y();
        EXPECT_FALSE(balloon->geometry().contains(at)) << "the pointer hides nothing";
        EXPECT_EQ(balloon->size(), size);
    }
    EXPECT_EQ(Balloon::show(control, "Подсказка", room.center())->geometry().bottom() + 1, room.center().y());
}

TEST_F(BalloonOver, GoesWhenItsTimeIsOver)
{
    struct Case {
        const char* name;
        std::function<void(BalloonOver&)> happens;
        bool closes;
    };
    const auto send = [](QWidget& widget, QEvent::Type type) {
        QEvent event(type);
        QApplication::sendEvent(&widget, &event);
    };
    const Case kCases[] = {
        {"the pointer leaves", [&](BalloonOver& o) { send(o.control, QEvent::Leave); }, true},
        {"the pointer leaves another", [&](BalloonOver& o) { send(o.window, QEvent::Leave); }, false},
        {"a press", [](BalloonOver& o) { QTest::mousePress(&o.control, Qt::LeftButton); }, true},
        {"a key", [](BalloonOver& o) { QTest::keyClick(&o.window, Qt::Key_Shift); }, true},
        {"the window moves", [&](BalloonOver& o) { send(o.window, QEvent::Move); }, true},
        {"the control goes", [](BalloonOver& o) { o.control.hide(); }, true},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        control.show();
        const QPointer<Balloon> balloon = show("Подсказка");
        ASSERT_TRUE(balloon->isVisible());
        c.happens(*this);
        EXPECT_EQ(!balloon || !balloon->isVisible(), c.closes);
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

TEST_F(BalloonOver, IsWhatEveryTooltipBecomes)
{
    Balloon::install();
    Balloon::install();
    control.setToolTip("Звук & <b>свет</b>");
    QHelpEvent request(QEvent::ToolTip, {5, 5}, control.mapToGlobal(QPoint(5, 5)));
    QApplication::sendEvent(&control, &request);
    ASSERT_NE(shown(), nullptr);
    EXPECT_EQ(shown()->text(), "Звук & <b>свет</b>") << "shown as it is";
    EXPECT_TRUE(request.isAccepted());
    EXPECT_EQ(window.findChildren<Balloon*>().size(), 1);
    Style style;
    EXPECT_EQ(style.styleHint(QStyle::SH_ToolTip_WakeUpDelay, nullptr, nullptr, nullptr), 1000);
}

TEST(SetToolTip, RefusesWhatHasNoWindow)
{
    QWidget window;
    SetToolTip(&window, "Окно");
    EXPECT_EQ(window.toolTip(), "Окно");
    QLabel label(&window);
    skin::SkinLabel skinLabel("LBL", 1, &window, &window);
    QObject object;
    for (QObject* control : {static_cast<QObject*>(&label), static_cast<QObject*>(&skinLabel), &object,
                             static_cast<QObject*>(nullptr)}) {
        try {
            SetToolTip(control, "Текст");
            ADD_FAILURE();
        } catch (const base::Failure& failure) {
            EXPECT_EQ(failure.number(), 438);
        }
    }
    EXPECT_TRUE(label.toolTip().isEmpty());
}

} // namespace
} // namespace ui
