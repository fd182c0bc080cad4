#include "player/Player.h"

#include "QtPrint.h"
#include "base/Files.h"
#include "core/StartUp.h"
#include "flash/FlashControl.h"
#include "media/MovieBytes.h"
#include "player/WelcomePanel.h"

#include <QApplication>
#include <QDir>
#include <QDropEvent>
#include <QFileDialog>
#include <QLabel>
#include <QMimeData>
#include <QScreen>
#include <QTemporaryDir>
#include <gtest/gtest.h>

// The whole window, off screen, over a temporary program folder.

namespace player
{
namespace
{

class PlayerWindow : public testing::Test
{
protected:
    PlayerWindow()
    {
        QDir(m_folder.path()).mkpath("cache");
        QDir(m_folder.path()).mkpath("media/gadgets");
        core::StartUp(application, path("Zorvex"), {});
        movie = put("intro.swf", media::plainMovie());
    }
    [[nodiscard]] QString path(const QString& name) const { return m_folder.filePath(name); }
    [[nodiscard]] QString put(const QString& name, const media::ByteVector& bytes) const
    {
        EXPECT_TRUE(base::replaceFile(core::filePath(path(name)), bytes));
        return path(name);
    }
    [[nodiscard]] QStringList log() const
    {
        QFile file(application.LogFile);
        EXPECT_TRUE(file.open(QFile::ReadOnly));
        return QString::fromLatin1(file.readAll()).remove("<br>").split("\r\n");
    }
    static WelcomePanel& welcome(Player& player) { return *player.findChild<WelcomePanel*>(); }
    static void drop(Player& player, const QString& path)
    {
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(path), QUrl::fromLocalFile("/second")});
        QDragEnterEvent enter({9, 9}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&player, &enter);
        EXPECT_TRUE(enter.isAccepted());
        QDropEvent event({9, 9}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&player, &event);
        QApplication::processEvents();
    }
    QTemporaryDir m_folder;
    core::Application application;
    QString movie;
};

TEST_F(PlayerWindow, OpensTheFileOfTheCommandLine)
{
    Player player(application, '"' + movie + '"');
    player.Form_Load();
    EXPECT_TRUE(player.isVisible());
    EXPECT_FALSE(welcome(player).isVisible());
    EXPECT_EQ(player.windowTitle(), "Zorvex - " + movie);
    EXPECT_EQ(player.status().statusText, "Готово");
    EXPECT_TRUE(player.updateTimerEnabled());
    EXPECT_EQ(player.control().BGColor(), "0AB0FF");
    EXPECT_EQ(player.menus().item("mnuCompress").text(), "Сжать...");
    EXPECT_EQ(log().mid(log().indexOf(" :: Form Load") - 1),
              (QStringList{"", " :: Form Load", "Flash 80018", "", " :: LoadFlash (", movie + ")... ",
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
    EXPECT_FALSE(welcome(player).isVisible()) << welcome(player).message().toStdString();
    EXPECT_EQ(player.control().TotalFrames(), 300);
}

TEST_F(PlayerWindow, WelcomesWithoutAFileAndSaysWhatFailed)
{
    Player player(application, {});
    player.Form_Load();
    EXPECT_TRUE(welcome(player).isVisible());
    EXPECT_EQ(welcome(player).message(), "");
    EXPECT_EQ(player.windowTitle(), "Zorvex");

    drop(player, path("absent.swf"));
    EXPECT_EQ(welcome(player).message(), "Файл не найден");
    EXPECT_TRUE(welcome(player).findChild<QLabel*>("message")->isVisible());
    EXPECT_EQ(player.status().statusText, "Готово");
    EXPECT_FALSE(player.updateTimerEnabled());

    drop(player, movie);
    EXPECT_FALSE(welcome(player).isVisible());
    EXPECT_TRUE(player.menus().item("mnuSaveAs").isEnabled());
    EXPECT_EQ(player.menus().item("mnuMRU0").isVisible(), true);

    // The engine refuses what identification let pass: a movie that says it is compressed and is not.
    drop(player, put("broken.swf", media::withHeader("CWS", 5, 1000, media::movieBody())));
    EXPECT_EQ(welcome(player).message(), "Ролик повреждён, показать его нельзя");
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
    EXPECT_EQ(player.mediaInfo().OriginalPath, movie);
    command("FULLSCREEN", "1");
    EXPECT_TRUE(player.isFullScreen());
    command("FULLSCREEN", "False");
    EXPECT_FALSE(player.isFullScreen());
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

TEST_F(PlayerWindow, LivesOnWhenTheJournalCannotBeWritten)
{
    Player player(application, {});
    player.Form_Load();
    application.LogFile = path("absent/log");
    // The first failure is told; somebody has to close the screen.
    QTimer::singleShot(0, &player, [] {
        if (auto* screen = qobject_cast<QDialog*>(QApplication::activeModalWidget())) screen->accept();
    });
    drop(player, movie);
    QApplication::processEvents();
    drop(player, movie);
    EXPECT_EQ(player.mediaInfo().OriginalPath, movie);
    EXPECT_FALSE(welcome(player).isVisible());
}

} // namespace
} // namespace player
