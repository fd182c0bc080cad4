#include "core/Application.h"

#include "Environment.h"
#include "QtPrint.h"
#include "base/Failure.h"
#include "core/RunTimeErrors.h"
#include "core/StartUp.h"
#include "platform/SystemVersion.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/resource.h>

namespace core
{
namespace
{

class ApplicationTest : public testing::Test
{
protected:
    [[nodiscard]] QString folder() const { return m_folder.path() + "/"; }
    [[nodiscard]] static QByteArray content(const QString& path)
    {
        QFile file(path);
        return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray("unreadable");
    }
    QTemporaryDir m_folder;
    Application application;
};

TEST_F(ApplicationTest, JournalBeginsWithItsHeaderAndHoldsOnlyThisRun)
{
    QFile old(folder() + "App.Log.html");
    ASSERT_TRUE(old.open(QFile::WriteOnly));
    old.write("yesterday");
    old.close();
    old.setPermissions(QFile::ReadOwner);

    application.InitLog(folder());
    const QByteArray expected =
        "<html>\r\n<head>\r\n<title>Zorvex</title>\r\n"
        "<meta http-equiv=\"Content-Type\" content=\"text/html\">\r\n</head>\r\n"
        "<body bgcolor=#4974BA text=#FFFFFF link=#EEEEFF vlink=#EEEEFF alink=#EEEEFF>\r\n"
        "<font face=\"Tahoma, Verdana, Arial\" size=\"2\">\r\n"
        "<b>Zorvex</b><br>\r\n<br>\r\nZorvex 1.2.435<br>\r\n" +
        systemLine().toUtf8() + "<br>\r\n<br>\r\n";
    EXPECT_EQ(content(application.LogFile), expected);
    EXPECT_EQ(application.GadgetsPath, folder() + "media/gadgets/");
    EXPECT_EQ(application.SkinsPath, folder() + "media/skins/");
    EXPECT_EQ(application.CachePath, folder() + "cache/");
    EXPECT_EQ(QDir(folder()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList("App.Log.html"))
        << "no folder is made at start-up";
}

TEST_F(ApplicationTest, EntriesAreWindows1251AndUnescaped)
{
    application.LogFile = folder() + "log";
    application.LogEvent(" :: LoadFlash (", LineBreak::None);
    application.LogEvent("<i>Файл</i>)... ");
    EXPECT_EQ(content(application.LogFile), " :: LoadFlash (\r\n<i>\xD4\xE0\xE9\xEB</i>)... <br>\r\n");
}

TEST_F(ApplicationTest, NoFloodFillsTheDiskAndTheEndIsToldAllTheSame)
{
    application.InitLog(folder());
    for (int i = 0; i < 3000; ++i) application.LogEvent(QString(5000, 'x'));
    application.LogLast("the end");
    const QByteArray journal = content(application.LogFile);
    EXPECT_LT(journal.size(), 5'000'000);
    EXPECT_EQ(journal.count("The journal is full."), 1);
    EXPECT_TRUE(journal.endsWith("the end<br>\r\n"));
}

TEST_F(ApplicationTest, AJournalThatFailsCostsNoCommandWhereSomebodyListens)
{
    application.InitLog(folder());
    int told = 0;
    application.journalFailed = [&told](const base::Failure&) { ++told; };
    application.LogFile = folder() + "absent/log";
    EXPECT_NO_THROW(application.LogEvent("a"));
    EXPECT_NO_THROW(application.LogEvent("b"));
    EXPECT_EQ(told, 1);
}

TEST_F(ApplicationTest, UnwritableJournalIsReportedOnceAndRecovers)
{
    application.LogFile = folder() + "absent/log";
    EXPECT_THROW(application.LogEvent("a"), base::Failure);
    EXPECT_NO_THROW(application.LogEvent("b"));
    QDir(folder()).mkdir("absent");
    EXPECT_NO_THROW(application.LogEvent("c"));
    EXPECT_EQ(content(application.LogFile), "c<br>\r\n");
    QFile::remove(application.LogFile);
    QDir(folder()).rmdir("absent");
    EXPECT_THROW(application.LogEvent("d"), base::Failure) << "a new failure is reported again";
}

TEST_F(ApplicationTest, FullDiskIsAFailureWithItsNumber)
{
    application.LogFile = folder() + "log";
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit small{2, before.rlim_max};
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    int number = 0;
    try {
        application.LogEvent("more than two bytes");
    } catch (const base::Failure& failure) {
        number = failure.number();
    }
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &before), 0);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(number, kDiskFull);
}

TEST(HtmlEscape, LeavesTheAmpersandAlone)
{
    EXPECT_EQ(HtmlEscape("a & <b c=\"d\"> &lt;"), "a & &lt;b c=&quot;d&quot;&gt; &lt;");
}

TEST_F(ApplicationTest, StartUpLogsItsStepsInOrder)
{
    StartUp(application, folder() + "Zorvex", "\"/a b/c.swf\"");
    EXPECT_TRUE(application.RunningCompiled);
    const QByteArray log = content(application.LogFile);
    const QString steps =
        " :: Start Up<br>\r\nInitializing Visual Styles<br>\r\nApplication Path: " + folder() +
        "<br>\r\nCache Path: " + folder() + "cache/<br>\r\nArgument: \"/a b/c.swf\"<br>\r\n";
    EXPECT_TRUE(log.endsWith(steps.toUtf8())) << log.constData();

    StartUp(application, folder() + "MyZORVEXworkbench2", {});
    EXPECT_FALSE(application.RunningCompiled);
    EXPECT_TRUE(content(application.LogFile).contains("<B> IDE Session!</B><br>\r\n"));
    EXPECT_TRUE(content(application.LogFile).endsWith("Argument: <br>\r\n"));
}

TEST_F(ApplicationTest, SharedProgramFolderMovesWhatIsWritten)
{
    const tests::Environment environment{{"HOME", folder() + "home"},
                                         {"XDG_CONFIG_HOME", folder() + "config/"},
                                         {"XDG_CACHE_HOME", "relative/is/ignored"},
                                         {"XDG_STATE_HOME", ""}};
    const QString program = folder() + "program";
    ASSERT_TRUE(QDir().mkdir(program));
    QFile mark(program + "/installed");
    ASSERT_TRUE(mark.open(QFile::WriteOnly));
    StartUp(application, program + "/Zorvex", {});
    EXPECT_EQ(application.AppPath, program + "/");
    EXPECT_EQ(application.SkinsPath, program + "/media/skins/") << "what is installed is not moved";
    EXPECT_EQ(application.SettingsPath, folder() + "config/zorvex/");
    EXPECT_EQ(application.CachePath, folder() + "home/.cache/zorvex/");
    EXPECT_EQ(application.LogFile, folder() + "home/.local/state/zorvex/App.Log.html");
    EXPECT_EQ(application.UserSkinsPath, folder() + "home/.local/share/zorvex/skins/");
    EXPECT_TRUE(QDir(application.CachePath).exists() && QDir(application.SettingsPath).exists());
    EXPECT_TRUE(content(application.LogFile)
                    .contains("Settings Path: " + application.SettingsPath.toUtf8() +
                              " (the program is installed for all users)<br>\r\n"));
    EXPECT_EQ(QDir(program).entryList(QDir::Files), QStringList("installed"));

    // Without the mark a folder that takes no files has the same effect; the superuser writes everywhere.
    ASSERT_TRUE(mark.remove());
    if (::geteuid() != 0) {
        QFile::setPermissions(program, QFile::ReadOwner | QFile::ExeOwner);
        StartUp(application, program + "/Zorvex", {});
        EXPECT_EQ(application.SettingsPath, folder() + "config/zorvex/");
        EXPECT_TRUE(content(application.LogFile).contains("(the program folder cannot be written)"));
        QFile::setPermissions(program, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    StartUp(application, program + "/Zorvex", {});
    EXPECT_EQ(application.SettingsPath, program + "/");
    EXPECT_EQ(application.LogFile, program + "/App.Log.html") << "a folder of one's own stays portable";
    EXPECT_EQ(application.UserSkinsPath, QString());
}

TEST_F(ApplicationTest, StartsWithoutAJournalWhenTheUserHasNoFolder)
{
    const tests::Environment environment{
        {"HOME", "/proc/none"}, {"XDG_CONFIG_HOME", ""}, {"XDG_CACHE_HOME", ""}, {"XDG_STATE_HOME", ""}};
    QFile mark(folder() + "installed");
    ASSERT_TRUE(mark.open(QFile::WriteOnly));
    EXPECT_NO_THROW(StartUp(application, folder() + "Zorvex", {}));
    EXPECT_TRUE(application.LogFile.isEmpty());
}

TEST(CommandLine, QuotesArgumentsWithSpaces)
{
    EXPECT_EQ(commandLine({"/a b/c.swf"}), "\"/a b/c.swf\"");
    EXPECT_EQ(commandLine({"a.swf", "b c.swf"}), "a.swf \"b c.swf\"");
    const QStringList odd{"/a \"b\" c.swf", "\"", "\"\"", "плоский.swf", "x y?a=\"1\""};
    EXPECT_EQ(argumentsOf(commandLine({odd[0]})), QStringList(odd[0])) << "names with quotes stay whole";
    QTemporaryDir folder;
    const QString there = folder.filePath("a \"b\".swf");
    QFile file(there);
    ASSERT_TRUE(file.open(QFile::WriteOnly));
    EXPECT_EQ(argumentsOf(commandLine(QStringList{there} + odd)), QStringList{there} + odd);
    EXPECT_EQ(argumentsOf("no such file.swf"), QStringList("no such file.swf")) << "in pieces";
    EXPECT_EQ(argumentsOf("  "), QStringList());
    EXPECT_EQ(commandLine({}), "");
}

TEST(CommandLine, AnswersWithoutAWindowUnlessAFileHasThatName)
{
    EXPECT_EQ(commandLineAnswer({"--version"}), GetAppVersion() + '\n');
    ASSERT_TRUE(commandLineAnswer({"--help"}));
    EXPECT_TRUE(commandLineAnswer({"--help"})->contains("--version"));
    EXPECT_FALSE(commandLineAnswer({}));
    EXPECT_FALSE(commandLineAnswer({"--other.swf"}));
    EXPECT_FALSE(commandLineAnswer({"--help", "a.swf"}));

    const QTemporaryDir folder;
    const QString before = QDir::currentPath();
    QDir::setCurrent(folder.path());
    QFile file("--help");
    EXPECT_TRUE(file.open(QFile::WriteOnly));
    EXPECT_FALSE(commandLineAnswer({"--help"}));
    QDir::setCurrent(before);
}

TEST(SystemVersion, SplitsKernelReleases)
{
    struct Case {
        const char *release, *version, *build;
    };
    for (const Case& c : {Case{"6.1.0-18-amd64", "6.1", "0-18-amd64"}, Case{"6.12-rc1", "6.12", "-rc1"},
                          Case{"7.0", "7.0", ""}, Case{"odd", "odd", ""}, Case{"", "", ""}}) {
        SCOPED_TRACE(c.release);
        const auto found = platform::parseKernelRelease("Linux", c.release);
        EXPECT_EQ(found.version, c.version);
        EXPECT_EQ(found.build, c.build);
    }
    EXPECT_STREQ(platform::windowsName(2, 5, 1).name, "Windows 2000") << "every 5.x is named so on purpose";
    EXPECT_EQ(platform::windowsName(1, 0, 4).code, 0) << "no such minor number";
}

} // namespace
} // namespace core
