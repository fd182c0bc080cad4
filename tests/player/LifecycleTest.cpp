#include "player/Lifecycle.h"

#include "PlayerWindow.h"
#include "flash/FlashControl.h"

namespace player
{
namespace
{

class Beginning : public PlayerWindow
{
protected:
    /// Sets what the next start does without a file.
    void setStartUp(const QString& value)
    {
        QFile file(path("settings.xml"));
        ASSERT_TRUE(file.open(QFile::ReadWrite));
        QByteArray text = file.readAll();
        const qsizetype at = text.indexOf("startUp=\"");
        ASSERT_GE(at, 0) << text.toStdString();
        const qsizetype end = text.indexOf('"', at + 9);
        text.replace(at + 9, end - at - 9, value.toUtf8());
        file.resize(0);
        file.seek(0);
        file.write(text);
    }
    /// The journal from the window's beginning on.
    [[nodiscard]] QStringList logged() const
    {
        const QStringList all = log();
        return all.mid(all.indexOf(" :: Form Load"));
    }
    [[nodiscard]] bool follow(const QStringList& lines) const
    {
        qsizetype at = 0;
        for (const QString& line : lines) {
            at = logged().indexOf(line, at);
            if (at < 0) return false;
            ++at;
        }
        return true;
    }
};

TEST_F(Beginning, LogsItsStepsInOrder)
{
    QDir().mkpath(path("media/skins/default"));
    Player player(application, {});
    QTimer::singleShot(0, &player, [] {
        if (auto* box = qobject_cast<QDialog*>(QApplication::activeModalWidget())) box->accept();
    });
    player.Form_Load();
    EXPECT_TRUE(follow(
        {" :: Form Load", "Flash 80018", " :: Load Options", " :: Enumerate Skins", " :: Close Flash"}))
        << logged().join('\n').toStdString();
    EXPECT_EQ(player.windowTitle(), "Zorvex");
    EXPECT_TRUE(player.isVisible());
}

TEST_F(Beginning, DoesTheStartUpAction)
{
    {
        setStartUp("1");
        Player player(application, {});
        player.Form_Load();
        EXPECT_TRUE(follow({" :: Enumerate Skins", " :: Media Browse"})) << logged().join('\n').toStdString();
        EXPECT_TRUE(player.isVisible());
    }
    {
        setStartUp("2");
        Player player(application, {});
        player.Form_Load();
        EXPECT_TRUE(follow({" :: LoadFlash (", " :: Close Flash"}))
            << "without recent files it loads an empty path, which shows the welcome page";
    }
    setStartUp("9");
    core::StartUp(application, path("Zorvex"), {});
    Player player(application, {});
    player.Form_Load();
    EXPECT_FALSE(logged().contains(" :: Close Flash")) << "another number does nothing";
    EXPECT_TRUE(player.isVisible());
}

TEST_F(Beginning, TakesWhatTheCommandLineNames)
{
    const QString second = put("second \"2\".swf", media::plainMovie());
    {
        Player player(application, core::commandLine({movie, second}));
        player.Form_Load();
        EXPECT_EQ(player.currentMovie(), movie);
        player.menus().item("mnuNext").trigger();
        EXPECT_EQ(player.currentMovie(), second);
    }
    {
        Player player(application, "\"/no such file.swf\" \"/nor this.swf\"");
        player.Form_Load();
        EXPECT_EQ(welcome(player).message().section('\n', 0, 0), "«nor this.swf»: Файл не найден");
        EXPECT_TRUE(logged().contains("/no such file.swf /nor this.swf)... "));
    }
}

TEST_F(Beginning, EndsByEachOfItsReasons)
{
    const std::pair<Lifecycle::UnloadMode, const char*> kReasons[] = {
        {Lifecycle::UnloadMode::ControlMenu, "Control Menu"},
        {Lifecycle::UnloadMode::FormCode, "Form Code"},
        {Lifecycle::UnloadMode::Windows, "Windows"},
        {Lifecycle::UnloadMode::TaskManager, "Task Manager"}};
    for (const auto& [mode, word] : kReasons) {
        SCOPED_TRACE(word);
        core::StartUp(application, path("Zorvex"), {});
        Player player(application, {});
        player.Form_Load();
        player.Form_QueryUnload(mode);
        EXPECT_TRUE(player.hasEnded());
        EXPECT_FALSE(player.isVisible());
        const QStringList all = log();
        EXPECT_EQ(all.mid(all.size() - 3),
                  (QStringList{"", "<B>Quit: Query Unload by " + QString(word) + "</B>", ""}));
        EXPECT_TRUE(all.contains(" :: Save Options"));
    }
}

TEST_F(Beginning, EndsWhateverFails)
{
    Player player(application, {});
    player.Form_Load();
    put("cache/a.swf", media::plainMovie());
    player.options().cacheMode = 2;
    QFile::remove(path("settings.xml"));
    QDir().mkpath(path("settings.xml/in the way"));
    application.LogFile = path("absent/log");
    player.Quit("test", true);
    EXPECT_TRUE(player.hasEnded());
    EXPECT_FALSE(QFile::exists(path("cache/a.swf"))) << "the cache is cleaned as the option says";
    QDir(path("settings.xml")).removeRecursively();
}

TEST_F(Beginning, ShowsTheWelcomePageWithTheReason)
{
    const QString page = compile("page", R"(<movie version="6" width="100" height="80" rate="10">
      <frame><script>told = version + "|" + error + "|" + noanim;</script></frame></movie>)");
    QFile::copy(page, path("media/gadgets/welcome.swf"));
    Player player(application, {});
    player.Form_Load();
    EXPECT_EQ(player.control().GetVariable("told"), "Zorvex 1.2.435||False");
    EXPECT_TRUE(player.movieScreen().showsControl());
    EXPECT_FALSE(player.HasMovie()) << "a page is not the user's movie";
    EXPECT_FALSE(player.menus().item("mnuSaveAs").isEnabled());
    EXPECT_FALSE(player.menus().item("mnuInfo").isEnabled());
    EXPECT_TRUE(player.settings().recentPaths().isEmpty());

    player.LoadFlash(path("absent.swf"), {});
    EXPECT_EQ(player.control().GetVariable("told"), "Zorvex 1.2.435|Файл не найден|False");
    EXPECT_EQ(player.StatusText(), "Готово");
    EXPECT_EQ(player.windowTitle(), "Zorvex");

    // One that does not begin with its colour stands on it all the same, whatever was shown before.
    const QString later = compile("later", R"(<movie version="8" width="100" height="80" rate="10"
      background="#16202E"><frame/></movie>)");
    QFile::remove(path("media/gadgets/welcome.swf"));
    QFile::copy(later, path("media/gadgets/welcome.swf"));
    player.CloseMedia({});
    EXPECT_EQ(player.control().BGColor(), "16202E");
    EXPECT_EQ(QColor(player.control().grab().toImage().pixel(9, 9)).name(), "#16202e");

    // A page that is broken gives way to the panel, and does not load itself for ever.
    put("media/gadgets/welcome.swf", media::withHeader("CWS", 6, 1000, media::movieBody()));
    player.CloseMedia("Причина");
    EXPECT_FALSE(player.movieScreen().showsControl());
    EXPECT_EQ(welcome(player).message(), "Причина");
}

} // namespace
} // namespace player
