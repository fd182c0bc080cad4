#include "player/PageCommands.h"

#include "QtPrint.h"
#include "base/Failure.h"
#include "core/Application.h"
#include "core/Version.h"
#include "player/PageAddresses.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace player
{
namespace
{

/// Writes down what a page made the program do.
class Host : public PageCommandHost
{
public:
    QStringList calls;
    bool ownPage = true;
    int page = 3, pages = 7;
    std::optional<QString> chosen;

    void LogEvent(const QString& text) override { calls += "log " + text; }
    bool isOwnPage() const override { return ownPage; }
    bool isPageAddress(const QString& path) const override { return path.startsWith("/gadgets/"); }
    bool OpenMedia() override
    {
        calls += "open";
        return chosen.has_value();
    }
    PageOutcome helpWanted() override
    {
        calls += "help";
        return PageOutcome::Done;
    }
    PageOutcome updateWanted() override
    {
        calls += "update";
        return PageOutcome::Done;
    }
    void LoadFlash(const QString& path, const QString& caption) override
    {
        calls += "load " + path + '|' + caption;
    }
    void FullScreen(bool on) override { calls += on ? "full" : "not full"; }
    void ZoomFlash(int percent, quint8 repeats) override
    {
        calls += QString("zoom %1 %2").arg(percent).arg(repeats);
    }
    PageOutcome openOutside(const QString& target) override
    {
        calls += "outside " + target;
        return PageOutcome::Declined;
    }
    QString browserFolder() const override { return "/last/"; }
    int browserPage() const override { return page; }
    void setBrowserPage(int value) override { page = value; }
    void setBrowserOrder(const QString& word) override { calls += "order " + word; }
    int browserPageCount() const override { return pages; }
    void NewMediaBrowse(const QString& folder) override
    {
        calls += QString("browse %1 at %2").arg(folder).arg(page);
    }
    void ShowBrowsePage() override { calls += QString("show %1").arg(page); }
    std::optional<QString> chooseBrowserFolder(const QString& start) override
    {
        calls += "choose " + start;
        return chosen;
    }
};

QStringList run(const QString& command, const QString& argument, Host host = {})
{
    (void)runPageCommand(host, command, argument);
    return host.calls;
}

TEST(PageCommands, DoWhatTheirNamesSay)
{
    struct Case {
        const char* command;
        const char* argument;
        QStringList calls;
    };
    const Case kCases[] = {
        {"meowlog", "x", {"log Media debug :: x"}},
        {"MEOWLOG", "<b>bold</b>", {"log Media debug :: <b>bold</b>"}},
        {"MeowOpen", "ignored", {"open"}},
        {"MEOWHELP", "ignored", {"help"}},
        {"MEOWUPDATE", "ignored", {"update"}},
        {"MEOWSEL", "/m/a.swf", {"load /m/a.swf|"}},
        {"MEOWSEL", "/gadgets/about.swf", {"load /gadgets/about.swf|"}},
        {"MEOWSEARCH", "/m/", {"browse /m/ at 0"}},
        {"MEOWSEARCH", "", {"browse /last/ at 0"}},
        {"MeowNextPage", "9", {"show 4"}},
        {"MEOWBACKPAGE", "9", {"show 2"}},
        {"MEOWLASTPAGE", "9", {"show 6"}},
        {"MEOWFIRSTPAGE", "9", {"show 0"}},
        {"MEOWORDER", "date", {"order date", "browse /last/ at 0"}},
        {"MEOWBROWSE", "/m", {"choose /m"}},
        {"MEOWBROWSE", "", {"choose /last/"}},
        {"FULLSCREEN", "true", {"full"}},
        {"FullScreen", " TRUE ", {"full"}},
        {"FULLSCREEN", "1", {"full"}},
        {"FULLSCREEN", "-0.5", {"full"}},
        {"FULLSCREEN", "false", {"zoom 100 2"}},
        {"FULLSCREEN", "0", {"zoom 100 2"}},
        {"EXEC", "a <b>", {"log Movie opened: 'a &lt;b&gt;'", "outside a <b>"}},
        {"Quit", "x", {"log ", "log  :: Unsupported FS Command (Quit)"}},
        {"", "x", {"log ", "log  :: Unsupported FS Command ()"}},
        {"MEOWLOG ", "x", {"log ", "log  :: Unsupported FS Command (MEOWLOG )"}},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.command + std::string(" ") + c.argument);
        EXPECT_EQ(run(c.command, c.argument), c.calls);
    }
}

TEST(PageCommands, LeaveThePageNumberToWhoeverShowsThePage)
{
    Host host;
    host.page = 0;
    host.pages = 0;
    (void)runPageCommand(host, "MEOWLASTPAGE", {});
    EXPECT_EQ(host.page, -1);
    (void)runPageCommand(host, "MEOWBACKPAGE", {});
    EXPECT_EQ(host.page, -2);
    host.page = 5;
    host.chosen = "/chosen";
    (void)runPageCommand(host, "MEOWBROWSE", "/m");
    EXPECT_EQ(host.calls.last(), "browse /chosen at 5") << "choosing a folder does not reset the page";
}

TEST(PageCommands, TellWhatTheUserDidNotWant)
{
    Host host;
    EXPECT_EQ(runPageCommand(host, "MEOWOPEN", {}), PageOutcome::Declined);
    EXPECT_EQ(runPageCommand(host, "MEOWBROWSE", {}), PageOutcome::Declined);
    EXPECT_EQ(runPageCommand(host, "EXEC", "a"), PageOutcome::Declined);
    EXPECT_EQ(runPageCommand(host, "MEOWSEL", "a"), PageOutcome::Done);
    host.chosen = "/chosen";
    EXPECT_EQ(runPageCommand(host, "MEOWOPEN", {}), PageOutcome::Done);
    EXPECT_EQ(runPageCommand(host, "MEOWBROWSE", {}), PageOutcome::Done);
}

TEST(PageCommands, ReportAnArgumentThatIsNoBoolean)
{
    for (const char* argument : {"", "yes", "1x", "True!"}) {
        SCOPED_TRACE(argument);
        Host host;
        try {
            (void)runPageCommand(host, "FULLSCREEN", argument);
            FAIL();
        } catch (const base::Failure& failure) {
            EXPECT_EQ(failure.number(), 13);
        }
        EXPECT_TRUE(host.calls.isEmpty());
    }
}

TEST(PageCommands, TrustMoviesLessThanPages)
{
    Host movie;
    movie.ownPage = false;
    EXPECT_EQ(run("MEOWLOG", "<script>", movie), QStringList{"log Media debug :: &lt;script&gt;"});
    EXPECT_EQ(run("MEOWSEL", "/gadgets/about.swf?about=x", movie),
              QStringList{"log Not opened for a movie: /gadgets/about.swf?about=x"});
    EXPECT_EQ(run("MEOWSEL", "/m/b.swf", movie), QStringList{"load /m/b.swf|"});
}

TEST(PageAddresses, CarryTheirParametersEncoded)
{
    core::Application application;
    application.GadgetsPath = "/g/";
    EXPECT_EQ(welcomePage(application, "Привет 1", "True"),
              "/g/welcome.swf?version=Zorvex 1.2.435&error=%D0%9F%D1%80%D0%B8%D0%B2%D0%B5%D1%82%20%31"
              "&noanim=True");
    EXPECT_EQ(soundPage("/g/", 40, -7), "/g/sound.swf?volume=40&pan=-7");
    const QString about = aboutPage(application, "Аa", "Бb", "False");
    EXPECT_TRUE(about.startsWith("/g/about.swf?about=Zorvex 1.2.435%3CBR%3E%3CBR%3E")) << about.toStdString();
    EXPECT_TRUE(about.contains("%3CBR%3E%3CBR%3E%D0%90a%3CBR%3E%3CBR%3E%20%D0%91b%3CBR%3E%3CBR%3E"));
    EXPECT_TRUE(about.endsWith("&noanim=False"));
}

TEST(PageAddresses, KnowWhatLiesInTheFolderByWhatItReallyIs)
{
    const QTemporaryDir folder;
    const QDir root(folder.path());
    root.mkpath("gadgets/below");
    root.mkpath("gadgets2");
    for (const char* name : {"gadgets/a.swf", "gadgets/below/b.swf", "gadgets2/c.swf", "d.swf"}) {
        QFile file(root.filePath(name));
        ASSERT_TRUE(file.open(QFile::WriteOnly));
    }
    QFile::link(root.filePath("d.swf"), root.filePath("gadgets/link.swf"));
    const QString gadgets = root.filePath("gadgets") + '/';
    const auto lies = [&](const char* name) { return liesWithin(root.filePath(name), gadgets); };
    EXPECT_TRUE(lies("gadgets/a.swf"));
    EXPECT_TRUE(lies("gadgets/below/b.swf"));
    EXPECT_TRUE(lies("gadgets2/../gadgets/a.swf"));
    EXPECT_FALSE(lies("gadgets2/c.swf")) << "a name that only begins alike";
    EXPECT_FALSE(lies("gadgets/../d.swf"));
    EXPECT_FALSE(lies("gadgets/link.swf")) << "what a link leads to counts";
    EXPECT_FALSE(lies("gadgets/absent.swf"));
    EXPECT_FALSE(liesWithin(root.filePath("d.swf"), {})) << "no folder is known";

    EXPECT_EQ(filePartOf(root.filePath("d.swf") + "?a=1"), root.filePath("d.swf"));
    EXPECT_EQ(filePartOf("file://" + root.filePath("d%20e.swf") + "?a"), root.filePath("d e.swf"));
}

} // namespace
} // namespace player
