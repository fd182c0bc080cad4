#include "player/Player.h"

#include "Environment.h"
#include "PlayerWindow.h"
#include "core/Files.h"
#include "core/Texts.h"
#include "flash/FlashControl.h"
#include "player/Advice.h"
#include "player/ControlBar.h"
#include "player/Texts.h"
#include "player/WelcomePanel.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QDropEvent>
#include <QFileDialog>
#include <QLabel>
#include <QMessageBox>
#include <QMimeData>
#include <QMouseEvent>
#include <QPushButton>
#include <QScreen>
#include <gtest/gtest.h>

// The whole window, off screen, over a temporary program folder.

namespace player
{
namespace
{

TEST_F(PlayerWindow, OpensTheFileOfTheCommandLine)
{
    Player player(application, '"' + movie + '"');
    player.Form_Load();
    EXPECT_TRUE(player.isVisible());
    EXPECT_FALSE(showsPanel(player));
    EXPECT_EQ(player.windowTitle(), "Zorvex - intro.swf") << "the file's name is enough";
    EXPECT_EQ(player.Caption(), "Zorvex - " + movie) << "scripts know the whole path";
    EXPECT_EQ(player.status().statusText, "Готово");
    EXPECT_TRUE(player.updateTimerEnabled());
    EXPECT_EQ(player.control().BGColor(), "0AB0FF");
    EXPECT_EQ(player.menus().item("mnuCompress").text(), "Сжать...");
    QStringList steps = log().mid(log().indexOf(" :: Form Load") - 1);
    // Where the movie plays is no step.
    steps.removeIf([](const QString& line) {
        return line.startsWith("Flash: Movies play inside") || line.startsWith("Flash: Confinement without");
    });
    EXPECT_EQ(steps, (QStringList{"", " :: Form Load", "Flash 80018", "", " :: Load Options", "",
                                  " :: Enumerate Skins", "", " :: LoadFlash (", movie + ")... ",
                                  "Ordinary File", " ... ", "Ok", ""}));

    const QRect before = player.geometry();
    player.FullScreen(true);
    EXPECT_EQ(player.size(), player.screen()->size());
    EXPECT_TRUE(player.windowTitle().isEmpty());
    player.SetCaption("Позже");
    EXPECT_TRUE(player.windowTitle().isEmpty());
    player.FullScreen(false);
    EXPECT_EQ(player.windowTitle(), "Позже");
    EXPECT_EQ(player.geometry(), before);
}

TEST_F(PlayerWindow, RegistersItselfAtEachSaveWhileTheOptionIsOn)
{
    const tests::Environment environment{{"HOME", path("home")},
                                         {"XDG_CONFIG_HOME", {}},
                                         {"XDG_DATA_HOME", {}},
                                         {"XDG_DATA_DIRS", path("none")}};
    const auto isDefault = [&] { return QFile::exists(path("home/.config/mimeapps.list")); };
    Player player(application, {});
    player.Form_Load();
    ASSERT_TRUE(player.SaveOpts());
    EXPECT_FALSE(isDefault());
    player.options().associate = true;
    ASSERT_TRUE(player.SaveOpts());
    EXPECT_TRUE(isDefault());
    EXPECT_TRUE(QFile::remove(path("home/.config/mimeapps.list")));
    ASSERT_TRUE(player.SaveOpts());
    EXPECT_TRUE(isDefault()) << "again, whatever became of it";
    player.options().associate = false;
    ASSERT_TRUE(player.SaveOpts());
    EXPECT_TRUE(isDefault()) << "switching it off removes nothing";
}

TEST_F(SkinnedWindow, HasItsOwnBarUnlessASkinDraws)
{
    const auto barOf = [](Player& player) { return player.findChild<ControlBar*>(); };
    Player plain(application, {});
    plain.Form_Load();
    EXPECT_TRUE(barOf(plain)->isVisible());
    EXPECT_FALSE(plain.menus().item("mnuSkin").isVisible());

    putSkin("default", skinOf("<LABEL name='status' width='100'/>"), kScript);
    Player player(application, {});
    player.Form_Load();
    EXPECT_FALSE(barOf(player)->isVisible());
    EXPECT_TRUE(player.menus().isChecked("mnuSkinList0"));
    EXPECT_EQ(player.minimumSize(), QSize(200, 100));
    EXPECT_EQ(player.skinWindow().movie().parentWidget()->objectName(), "viewNormal");

    player.FullScreen(true);
    EXPECT_EQ(player.skinWindow().movie().parentWidget()->objectName(), "viewFullScreen");
    EXPECT_EQ(player.skinWindow().movie().size(), player.size());
    player.FullScreen(false);
    EXPECT_EQ(player.skinWindow().movie().parentWidget()->objectName(), "viewNormal");
}

TEST_F(SkinnedWindow, SaysThatASkinIsBrokenAndStaysUsable)
{
    // A test that ended the program leaves a mark that would keep windows from opening.
    QTimer::singleShot(0, qApp, &QCoreApplication::quit);
    QApplication::exec();
    putSkin("default", "<THEME>");
    Player player(application, {});
    QString said;
    QTimer::singleShot(0, &player, [&said] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        ASSERT_NE(box, nullptr);
        said = box->text();
        box->accept();
    });
    player.Form_Load();
    EXPECT_EQ(said, "Файл описания шкурки содержит синтаксические ошибки. Попробуйте открыть файл \"" +
                        path("media/skins/default/skin.xml") + "\" в браузере, чтобы узнать причину.");
    EXPECT_TRUE(player.findChild<ControlBar*>()->isVisible());

    putSkin("default", skinOf({}), kScript);
    player.menus().item("mnuUpdSkin").trigger();
    EXPECT_FALSE(player.findChild<ControlBar*>()->isVisible());
}

TEST_F(SkinnedWindow, TakesTheShapeOfItsSkinWithoutTheMenuBar)
{
    const QString base = path("media/skins/default/base/");
    QDir().mkpath(base);
    QImage image(50, 40, QImage::Format_RGB32);
    image.fill(qRgb(255, 0, 255));
    ASSERT_TRUE(image.save(base + "m.bmp"));
    putSkin("default",
            skinOf("<SUBVIEW name='m' width='50' height='40' image='m.bmp' windowMask='#FF00FF'/>"), kScript);
    Player player(application, {});
    player.Form_Load();
    player.ToggleMenu();
    EXPECT_TRUE(player.mask().isEmpty()) << "with the menu bar the window is a rectangle";
    player.ToggleMenu();
    EXPECT_TRUE(player.windowFlags().testFlag(Qt::FramelessWindowHint));
    EXPECT_EQ(player.mask(), QRegion(player.rect()) - QRegion(0, 0, 50, 40));
    player.resize(player.width() + 30, player.height());
    EXPECT_EQ(player.mask(), QRegion(player.rect()) - QRegion(0, 0, 50, 40));
    player.FullScreen(true);
    EXPECT_TRUE(player.mask().isEmpty());
    player.FullScreen(false);
    EXPECT_FALSE(player.mask().isEmpty());
    player.ToggleMenu();
    EXPECT_TRUE(player.mask().isEmpty());
    EXPECT_FALSE(player.windowFlags().testFlag(Qt::FramelessWindowHint));
}

TEST_F(SkinnedWindow, SwitchesSkinsFromTheirOwnScripts)
{
    for (const char* name : {"default", "other"})
        putSkin(name, skinOf("<BUTTON name='b' width='20' height='20' onClick='Other'/>"),
                "Sub onLoad : End Sub\r\nSub Other\r\nIf Player.mnuSkinList0.Checked Then "
                "Player.mnuSkinList1.Click Else Player.mnuSkinList0.Click\r\nEnd Sub");
    Player player(application, '"' + movie + '"');
    player.Form_Load();
    constexpr int kSwitches = 20;
    for (int i = 0; i < kSwitches; ++i) {
        const QString before = player.skinWindow().selectedSkin();
        const QPointer<QWidget> button = qobject_cast<QWidget*>(player.PIC(2));
        ASSERT_FALSE(button.isNull());
        for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
            QMouseEvent event(type, {5, 5}, button->mapToGlobal(QPointF(5, 5)), Qt::LeftButton,
                              type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton, {});
            QApplication::sendEvent(button, &event);
        }
        EXPECT_NE(player.skinWindow().selectedSkin(), before);
        EXPECT_NE(player.menus().isChecked("mnuSkinList0"), player.menus().isChecked("mnuSkinList1"));
        // The statement comes to its end before its skin does.
        EXPECT_TRUE(waitFor([&button] {
            QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            return button.isNull();
        }));
    }
    EXPECT_EQ(player.findChildren<skin::SkinPicture*>().size(), 3) << "nothing of the skins before is left";
    EXPECT_EQ(player.control().TotalFrames(), 300) << "the movie has survived";
}

TEST_F(PlayerWindow, FindsAFileRelativeToWhereItWasStarted)
{
    const QString before = QDir::currentPath();
    QDir::setCurrent(m_folder.path());
    Player player(application, "intro.swf?a=1");
    player.Form_Load();
    QDir::setCurrent(before);
    EXPECT_EQ(player.mediaInfo().MoviePath, QFileInfo(movie).absoluteFilePath());
}

TEST_F(PlayerWindow, PlaysAFileWithAQuestionMarkInItsName)
{
    Player player(application, put("100% кто? там.swf", media::plainMovie()));
    player.Form_Load();
    EXPECT_FALSE(showsPanel(player));
    EXPECT_EQ(player.control().TotalFrames(), 300);
}

TEST_F(PlayerWindow, WelcomesWithoutAFileAndSaysWhatFailed)
{
    Player player(application, {});
    player.Form_Load();
    EXPECT_TRUE(showsPanel(player));
    EXPECT_EQ(welcome(player).message(), "");
    EXPECT_EQ(player.windowTitle(), "Zorvex");

    drop(player, path("absent.swf"));
    EXPECT_EQ(welcome(player).message(),
              "«absent.swf»: Файл не найден\n" + adviceOn(core::texts::kFileNotFound));
    EXPECT_TRUE(welcome(player).findChild<QLabel*>("message")->isVisible());
    EXPECT_EQ(player.status().statusText, "Готово");
    EXPECT_FALSE(player.updateTimerEnabled());

    drop(player, movie);
    EXPECT_FALSE(showsPanel(player));
    EXPECT_TRUE(player.menus().item("mnuSaveAs").isEnabled());
    EXPECT_EQ(player.menus().item("mnuMRU0").isVisible(), true);

    // File managers give a name in windows-1251 by its bytes.
    const QString old = core::fileName("\xEF\xF0\xE8\xE2\xE5\xF2.swf");
    ASSERT_TRUE(base::replaceFile(core::filePath(path(old)), media::plainMovie()));
    QMimeData data;
    data.setData("text/uri-list", "file://" + path({}).toUtf8() + "/%EF%F0%E8%E2%E5%F2.swf\r\n");
    QDragEnterEvent enter({9, 9}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&player, &enter);
    QDropEvent event({9, 9}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&player, &event);
    EXPECT_TRUE(waitFor([&] { return player.windowTitle() == "Zorvex - привет.swf"; }))
        << player.windowTitle().toStdString();

    // The engine refuses what identification let pass: a movie that says it is compressed and is not.
    drop(player, put("broken.swf", media::withHeader("CWS", 5, 1000, media::movieBody())));
    EXPECT_EQ(welcome(player).message(),
              "«broken.swf»: Ролик повреждён, показать его нельзя\n" + adviceOn(texts::kMovieDamaged));
    EXPECT_FALSE(player.menus().item("mnuSaveAs").isEnabled()) << "there is nothing to save";
}

TEST_F(PlayerWindow, OpenDialogRestsTheTimerAndLoadsWhatWasChosen)
{
    Player player(application, '"' + movie + '"');
    player.Form_Load();
    const QString second = put("second.swf", media::compressedMovie());
    bool seen = false;
    QTimer::singleShot(0, &player, [&] {
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        seen = true;
        EXPECT_EQ(dialog->windowTitle(), "Открыть файл Macromedia Flash...");
        EXPECT_EQ(dialog->directory(), QDir(m_folder.path()));
        EXPECT_FALSE(player.updateTimerEnabled());
        EXPECT_EQ(player.status().statusText, "Открытие файла...");
        dialog->selectFile(second);
        static_cast<QDialog*>(dialog)->accept();
    });
    player.OpenMedia();
    EXPECT_TRUE(seen);
    EXPECT_EQ(player.mediaInfo().OriginalPath, second);
    EXPECT_TRUE(player.updateTimerEnabled());
    EXPECT_EQ(player.menus().item("mnuCompress").text(), "Снять сжатие");
}

TEST_F(PlayerWindow, SoundIsClampedAndMutingRemembers)
{
    Player player(application, {});
    player.SetSound(70, -300);
    player.MuteSound(true);
    EXPECT_EQ(player.control().masterVolume(), 0);
    EXPECT_TRUE(player.menus().isChecked("mnuMute"));
    player.SetSound(30, 0);
    player.MuteSound(false);
    EXPECT_EQ(player.control().masterVolume(), 0.7) << "what was set while muted is forgotten";
    player.SetSound(500, 0);
    EXPECT_EQ(player.control().masterVolume(), 1.0);
    player.menus().item("mnuVolumeUp").trigger();
    EXPECT_EQ(player.control().masterVolume(), 1.0);
    player.menus().item("mnuPopMute").trigger();
    EXPECT_TRUE(player.menus().isChecked("mnuPopMute"));
    EXPECT_TRUE(player.menus().isChecked("mnuMute"));
}

TEST_F(PlayerWindow, MarksFollowTheControl)
{
    Player player(application, {});
    player.menus().item("mnuQLvl5").trigger();
    EXPECT_TRUE(player.menus().isChecked("mnuQLvl5"));
    EXPECT_FALSE(player.menus().isChecked("mnuQLvl0"));
    player.SetQuality("nonsense");
    EXPECT_EQ(player.control().Quality2(), "AutoLow");
    EXPECT_TRUE(player.menus().isChecked("mnuQLvl5"));
    player.SetScaleMode(2);
    EXPECT_TRUE(player.menus().isChecked("mnuSMode2"));
    EXPECT_FALSE(player.menus().isChecked("mnuSMode0"));
    const bool loop = player.control().Loop();
    player.menus().item("mnuLoop").trigger();
    EXPECT_EQ(player.control().Loop(), !loop);
    EXPECT_EQ(player.menus().isChecked("mnuLoop"), !loop);
}

TEST_F(PlayerWindow, PagesCommandIt)
{
    Player player(application, {});
    player.Form_Load();
    const auto command = [&player](const char* name, const QString& argument) {
        emit player.control().FSCommand(name, argument);
    };
    command("meowlog", "x");
    command("Quit", "");
    EXPECT_EQ(log().mid(log().size() - 4),
              (QStringList{"Media debug :: x", "", " :: Unsupported FS Command (Quit)", ""}));
    command("MeowSel", movie);
    EXPECT_TRUE(waitFor([&] { return player.mediaInfo().OriginalPath == movie; }));
    command("FULLSCREEN", "1");
    QApplication::processEvents();
    EXPECT_FALSE(player.isFullScreen()) << "the user has not clicked";
    player.FullScreen(true);
    command("FULLSCREEN", "False");
    EXPECT_TRUE(waitFor([&] { return !player.isFullScreen(); }));
}

TEST_F(PlayerWindow, FillsTheScreenWhenAMovieAskedBeforeItWasShown)
{
    Player player(application, '"' + movie + '"');
    player.FullScreen(true);
    player.Form_Load();
    EXPECT_TRUE(player.isVisible());
    EXPECT_EQ(player.size(), player.screen()->size());
    player.FullScreen(false);
    EXPECT_LT(player.width(), player.screen()->size().width());
}

TEST_F(PlayerWindow, EndsOnceWithItsReason)
{
    {
        Player player(application, {});
        player.Form_Load();
        player.close();
        EXPECT_TRUE(player.hasEnded());
        player.Quit("again", true);
    }
    EXPECT_EQ(log().mid(log().size() - 3),
              (QStringList{"", "<B>Quit: Query Unload by Control Menu</B>", ""}));
    EXPECT_FALSE(log().contains("<B>Quit: again</B>"));
}

TEST_F(PlayerWindow, RemembersFromRunToRun)
{
    const QString second = put("second.swf", media::compressedMovie());
    {
        Player player(application, '"' + movie + '"');
        player.Form_Load();
        player.LoadFlash(second, {});
        player.SetQuality("Medium");
        player.SetScaleMode(1);
        player.menus().item("mnuLoop").trigger();
        player.menus().item("mnuMenuBar").trigger();
        player.SetSound(40, -30);
        player.ToggleTimeMode();
        player.options().startUp = 2;
        player.close();
    }
    {
        Player player(application, {});
        player.Form_Load();
        EXPECT_EQ(player.mediaInfo().OriginalPath, second) << "the most recent file";
        EXPECT_EQ(player.control().Quality2(), "Medium");
        EXPECT_TRUE(player.menus().isChecked("mnuQLvl1"));
        EXPECT_EQ(player.control().ScaleMode(), 1);
        EXPECT_FALSE(player.control().Loop());
        EXPECT_FALSE(player.menus().isChecked("mnuLoop"));
        EXPECT_TRUE(player.menus().bar().isVisibleTo(&player));
        EXPECT_EQ(player.control().masterVolume(), 0.4);
        EXPECT_EQ(player.status().timeMode(), 1);
        EXPECT_TRUE(player.menus().item("mnuMRU1").isVisible());
        EXPECT_FALSE(player.menus().item("mnuMRU2").isVisible());
        player.MuteSound(true);
        player.close();
    }
    QFile::remove(second);
    Player player(application, {});
    player.Form_Load();
    EXPECT_EQ(player.mediaInfo().OriginalPath, movie) << "a file that is gone has left the list";
    EXPECT_TRUE(player.menus().isChecked("mnuMute"));
    EXPECT_EQ(player.control().masterVolume(), 0);
    player.MuteSound(false);
    EXPECT_EQ(player.control().masterVolume(), 0.4) << "muting is not saved as silence";
}

TEST_F(PlayerWindow, SavesOptionsOnlyWhenTheyAreAccepted)
{
    Player player(application, {});
    player.Form_Load();
    const auto choose = [&player](const char* button) {
        QTimer::singleShot(0, &player, [button] {
            QWidget* dialog = QApplication::activeModalWidget();
            ASSERT_NE(dialog, nullptr);
            dialog->findChild<QComboBox*>("cmbCache")->setCurrentIndex(2);
            dialog->findChild<QPushButton*>(button)->click();
        });
        player.menus().item("mnuOpt").trigger();
        return player.options().cacheMode;
    };
    EXPECT_EQ(choose("cbCancel"), 0);
    EXPECT_FALSE(log().contains(" :: Save Options"));
    EXPECT_EQ(choose("cbOk"), 2);
    EXPECT_TRUE(log().contains(" :: Save Options"));
}

TEST_F(PlayerWindow, LivesOnWhenTheJournalCannotBeWritten)
{
    Player player(application, {});
    player.Form_Load();
    application.LogFile = path("absent/log");
    // The first failure is told; somebody has to close the screen.
    int screens = 0;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, [&screens] {
        auto* screen = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (screen == nullptr) return;
        ++screens;
        screen->accept();
    });
    look.start(10);
    player.LoadFlash(movie, {});
    EXPECT_EQ(player.mediaInfo().OriginalPath, movie) << "the command that met it is not lost";
    EXPECT_TRUE(waitFor([&] { return screens > 0; }));
    player.LoadFlash(movie, {});
    player.CloseMedia({});
    QApplication::processEvents();
    EXPECT_EQ(screens, 1);
}

} // namespace
} // namespace player
