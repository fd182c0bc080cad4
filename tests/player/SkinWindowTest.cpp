#include "flash/FlashControl.h"
#include "player/PlayerWindow.h"
#include "skin/SampleSkin.h"

#include <QClipboard>
#include <QDialog>
#include <QMessageBox>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QWindow>
#include <QtTest/QTest>

namespace player
{
namespace
{

class SkinWindowTest : public PlayerWindow
{
protected:
    void putSkin(const QString& name, const QByteArray& xml,
                 const QByteArray& script = "Sub onLoad : End Sub") const
    {
        QDir().mkpath(path("media/skins/" + name));
        for (const auto& [file, bytes] : {std::pair("skin.xml", xml), std::pair("s.vbs", script)}) {
            QFile out(path("media/skins/" + name + '/' + file));
            ASSERT_TRUE(out.open(QFile::WriteOnly));
            out.write(bytes);
        }
    }
    static QByteArray skinOf(const QByteArray& elements)
    {
        return "<THEME scriptFile='s.vbs' minWidth='200' minHeight='100'><VIEW name='viewNormal'>" +
               elements + "</VIEW><VIEW name='viewFullScreen'/></THEME>";
    }
    /// Without the menu bar, as a skin is meant to be seen.
    static void showSkinned(Player& player)
    {
        player.Form_Load();
        if (player.menus().isChecked("mnuMenuBar")) player.ToggleMenu();
        QApplication::processEvents();
    }
    static QWidget& element(Player& player, const QString& name) { return *player.findChild<QWidget*>(name); }
    /// As the window system tells of the pointer, so that the toolkit's own notion of buttons is right.
    static void pointer(Player& player, QEvent::Type type, QPoint global)
    {
        QCursor::setPos(global);
        QWindow* window = player.windowHandle();
        const QPoint at = window->mapFromGlobal(global);
        if (type == QEvent::MouseButtonPress) QTest::mousePress(window, Qt::LeftButton, {}, at);
        if (type == QEvent::MouseMove) QTest::mouseMove(window, at);
        if (type == QEvent::MouseButtonRelease) QTest::mouseRelease(window, Qt::LeftButton, {}, at);
        QApplication::processEvents();
    }
    /// Presses in the middle of an element, moves by that much in steps and lets go.
    static void drag(Player& player, QWidget& from, QPoint by)
    {
        const QPoint start = from.mapToGlobal(from.rect().center());
        pointer(player, QEvent::MouseButtonPress, start);
        constexpr int kSteps = 5;
        for (int i = 1; i <= kSteps; ++i) pointer(player, QEvent::MouseMove, start + by * i / kSteps);
        pointer(player, QEvent::MouseButtonRelease, start + by);
    }
};

TEST_F(SkinWindowTest, FollowsThePointer)
{
    putSkin(
        "default",
        skinOf("<LABEL name='title' width='200' height='30' onDblClick='ZoomWindow 5'/>"
               "<SUBVIEW name='grip' left='Player.ScaleWidth - 20' top='Player.ScaleHeight - 20' width='20' "
               "height='20' onDrag='ResizeWindow'/>"
               "<SUBVIEW name='loose' left='50' top='100' width='40' height='40' "
               "onDrag='MoveObject loose'/>"));
    Player player(application, {});
    showSkinned(player);
    player.setGeometry(100, 100, 400, 300);
    QApplication::processEvents();

    drag(player, element(player, "title"), {2, 0});
    EXPECT_EQ(player.pos(), QPoint(100, 100)) << "a hand that trembles does not move it";
    drag(player, element(player, "title"), {60, 35});
    EXPECT_EQ(player.geometry(), QRect(160, 135, 400, 300));
    drag(player, element(player, "grip"), {50, 20});
    EXPECT_EQ(player.geometry(), QRect(160, 135, 450, 320));
    drag(player, element(player, "grip"), {-400, -300});
    EXPECT_EQ(player.geometry(), QRect(160, 135, 200, 100)) << "not below what the skin allows";
    player.resize(400, 300);
    QApplication::processEvents();
    drag(player, element(player, "loose"), {30, 40});
    EXPECT_EQ(element(player, "loose").pos(), QPoint(80, 140));
    EXPECT_EQ(player.geometry(), QRect(160, 135, 400, 300));

    // Nothing moves without the button, and a double click reaches its statement.
    player.MoveWindow();
    pointer(player, QEvent::MouseMove, {300, 300});
    EXPECT_EQ(player.pos(), QPoint(160, 135));
    const QPoint title = element(player, "title").mapTo(&player, QPoint(20, 10));
    QTest::mouseDClick(player.windowHandle(), Qt::LeftButton, {}, title);
    EXPECT_TRUE(player.isMaximized());
    player.ZoomWindow(5);
    EXPECT_FALSE(player.isMaximized());
}

TEST_F(SkinWindowTest, SkinsCommandTheWindow)
{
    putSkin("default", skinOf({}));
    Player player(application, {});
    showSkinned(player);
    const auto run = [&player](const char* statement) {
        EXPECT_EQ(player.skinWindow().skin().bridge().RunScript(statement), skin::Bridge::Outcome::Done)
            << statement;
    };
    const QString title = player.windowTitle();
    run("FullScreen True : FullScreen True : SetCaption \"later\"");
    EXPECT_TRUE(player.isFullScreen());
    EXPECT_TRUE(player.windowTitle().isEmpty());
    run("Player.FullScreen False : Player.FullScreen False");
    EXPECT_EQ(player.windowTitle(), "later");
    run("ZoomWindow 1");
    EXPECT_TRUE(player.isMaximized());
    run("FullScreen False");
    EXPECT_TRUE(player.isMaximized()) << "leaving what is off does nothing at all";
    run("ZoomWindow 0 : Width = 500 * 15 : Height = 333 * 15");
    EXPECT_EQ(player.frameGeometry().size(), QSize(500, 333)) << "in twips, with the frame";
    run("Minimize");
    EXPECT_EQ(player.WindowState(), 1);
    run("ZoomWindow 5");
    EXPECT_EQ(player.WindowState(), 0) << "a minimised window is restored";
    run("If mnuSkinList0.Tag <> \"default\" Then Err.Raise 5");

    player.menus().item("mnuTopMost").trigger();
    EXPECT_TRUE(player.isVisible());
    QDialog dialog(&player);
    QTimer::singleShot(0, &dialog, [&dialog] {
        EXPECT_TRUE(dialog.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
        EXPECT_TRUE(dialog.isModal());
        dialog.reject();
    });
    player.ShowDialog(dialog);
}

TEST_F(SkinWindowTest, PaintsOnlyWithinItsShape)
{
    const QString base = path("media/skins/default/base/");
    QDir().mkpath(base);
    QImage image(200, 150, QImage::Format_RGB32);
    image.fill(Qt::darkCyan);
    QPainter(&image).fillRect(0, 0, 60, 40, QColor(255, 0, 255));
    ASSERT_TRUE(image.save(base + "m.bmp"));
    putSkin("default",
            skinOf("<SUBVIEW name='m' width='200' height='150' image='m.bmp' windowMask='#FF00FF'/>"));
    Player player(application, '"' + movie + '"');
    showSkinned(player);
    // The movie lies in the hole too, and must not show there.
    ASSERT_TRUE(player.control().isVisible());
    ASSERT_TRUE(player.control().rect().contains(player.control().mapFrom(&player, QPoint(30, 20))));
    const auto picture = [&player] {
        QImage shown(player.size(), QImage::Format_ARGB32_Premultiplied);
        shown.fill(Qt::transparent);
        player.render(&shown, {}, {}, QWidget::DrawChildren);
        return shown;
    };
    for (int frame = 0; frame < 3; ++frame) {
        const QImage shown = picture();
        for (int y = 0; y < shown.height(); ++y)
            for (int x = 0; x < shown.width(); ++x)
                ASSERT_EQ(qAlpha(shown.pixel(x, y)), x < 60 && y < 40 ? 0 : 255) << x << ' ' << y;
        player.control().Forward();
    }
    player.ToggleMenu();
    QApplication::processEvents();
    EXPECT_EQ(qAlpha(picture().pixel(30, player.height() - player.ScaleHeight() + 20)), 255);
}

TEST_F(SkinWindowTest, StaysUsableWithEveryBrokenSkin)
{
    struct Case {
        const char* name;
        QByteArray xml, script;
        bool says;
    };
    const QByteArray load = "Sub onLoad : End Sub";
    const Case kCases[] = {
        {"missing", {}, {}, true},
        {"empty", " ", load, true},
        {"unclosed", "<THEME><VIEW name='viewNormal'>", load, true},
        {"bytes", QByteArray("\xFF\xFE\x00\x01 <THEME/>", 14), load, true},
        {"no theme", "<SKIN/>", load, false},
        {"no viewNormal", "<THEME scriptFile='s.vbs'><VIEW name='other'/></THEME>", load, false},
        {"syntax error", skinOf({}), "Sub onLoad (((", false},
        {"error at load", skinOf({}), "Sub onLoad : x = 1 / 0 : End Sub", false},
        {"loads itself", skinOf({}), "Sub onLoad : LoadNewSkin : End Sub", false},
        {"endless expression", skinOf("<LABEL name='l' left='F'/>"),
         load + "\r\nFunction F : Do : Loop : End Function", false},
        {"no images", skinOf("<BUTTON name='b' image='none.bmp' maskColor='#FF00FF'/>"), load, false},
    };
    putSkin("default", skinOf("<LABEL name='good' width='50'/>"));
    Player player(application, '"' + movie + '"');
    showSkinned(player);
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        if (!c.xml.isEmpty())
            putSkin("broken", c.xml, c.script);
        else
            QDir().mkpath(path("media/skins/broken"));
        player.EnumSkins();
        const auto choose = [&player](const QString& name) {
            for (int i = 0; i < 2; ++i)
                if (QAction& item = player.menus().item(QString("mnuSkinList%1").arg(i)); item.text() == name)
                    item.trigger();
        };
        QString said;
        QTimer answer; // again and again: a switch lets events run before it says anything
        QObject::connect(&answer, &QTimer::timeout, &player, [&said] {
            if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
                said = box->text();
                box->accept();
            }
        });
        answer.start(5);
        choose("broken");
        QApplication::processEvents();
        EXPECT_EQ(said.startsWith("Файл описания шкурки содержит синтаксические ошибки."), c.says);
        EXPECT_TRUE(player.control().isVisible()) << "the movie is still to be seen";
        choose("default");
        EXPECT_NE(player.findChild<QWidget*>("good"), nullptr);
        EXPECT_TRUE(player.skinWindow().isShown());
        EXPECT_EQ(player.control().TotalFrames(), 300);
    }
    EXPECT_TRUE(log().contains(" :: Wait Screen"));
}

TEST_F(SkinWindowTest, ShowsNumberedMenuItemsAsControlArrays)
{
    putSkin("default", skinOf("<LABEL name='out' width='300'/><SUBVIEW name='panel'/>"),
            "Sub onLoad\n"
            "  Player.mnuQLvl(2).Checked = True\n"
            "  out.Caption = Player.mnuQLvl(0).Caption & \"|\" & Player.mnuQLvl2.Checked & \"|\" & "
            "TypeName(Player) & \"|\" & TypeName(panel) & \"|\" & TypeName(out) & \"|\" & "
            "TypeName(Player.mnuLoop) & \"|\" & TypeName(SWF)\n"
            "  On Error Resume Next\n"
            "  Player.mnuQLvl(99).Click\n"
            "  out.Caption = out.Caption & \"|\" & Err.Number\n"
            "End Sub");
    Player player(application, core::commandLine({movie}));
    showSkinned(player);
    EXPECT_EQ(element(player, "out").property("Caption").toString(),
              "Высокое|True|Player|PictureBox|Label|Menu|ShockwaveFlash|340");
}

TEST_F(SkinWindowTest, ListsTheMistakesOfASkinThatTheUserReloads)
{
    putSkin("default", skinOf("\n<LABEL name='out' foreColor='red'/>\n<SUBVIEW name='panel'/>"),
            "Sub onLoad\n  x = 1\n  x = 1 / 0\nEnd Sub");
    Player player(application, core::commandLine({movie}));
    showSkinned(player);
    EXPECT_EQ(player.findChild<QDialog*>("frmMistakes"), nullptr) << "nobody has asked";
    player.menus().item("mnuUpdSkin").trigger();
    ASSERT_TRUE(waitFor([&] { return player.findChild<QDialog*>("frmMistakes") != nullptr; }));
    const QStringList told = player.findChild<QPlainTextEdit*>("txtMistakes")->toPlainText().split('\n');
    EXPECT_TRUE(told.contains("s.vbs:3: Деление на ноль [onLoad]")) << told.join('\n').toStdString();
    EXPECT_EQ(told.filter(QRegularExpression("^skin.xml:2: ")).size(), 1) << told.join('\n').toStdString();
    player.findChild<QPushButton*>("cbCopy")->click();
    EXPECT_EQ(QApplication::clipboard()->text().split('\n'), told);

    // A script that cannot be read at all: its own line is told, once.
    putSkin("default", skinOf("\n<LABEL name='out'/>"), "x = 1\nSub onLoad(\n");
    player.menus().item("mnuUpdSkin").trigger();
    const auto list = [&] {
        const auto* text = player.findChild<QPlainTextEdit*>("txtMistakes");
        return text == nullptr ? QStringList() : text->toPlainText().split('\n');
    };
    ASSERT_TRUE(waitFor([&] { return list().filter(QRegularExpression("^s.vbs:2: ")).size() == 1; }))
        << list().join('\n').toStdString();
    EXPECT_TRUE(list().filter("skin.xml").isEmpty()) << list().join('\n').toStdString();
    EXPECT_EQ(list().removeDuplicates(), 0);
}

} // namespace
} // namespace player
