#include "settings/SettingsFile.h"

#include "QtPrint.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace settings
{
namespace
{

class SettingsFiles : public testing::Test
{
protected:
    SettingsFiles() { application.InitLog(m_folder.path() + '/'); }
    [[nodiscard]] QString path(const QString& name = "settings.xml") const { return m_folder.filePath(name); }
    QString put(const QByteArray& bytes, const QString& name = "settings.xml") const
    {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QFile::WriteOnly) && file.write(bytes) == bytes.size());
        return path(name);
    }
    [[nodiscard]] QByteArray content(const QString& name = "settings.xml") const
    {
        QFile file(path(name));
        return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray("no such file");
    }
    [[nodiscard]] bool logged(const char* text) const { return content("App.Log.html").contains(text); }
    static QByteArray shipped()
    {
        QFile file(PROJECT_SOURCE_DIR "/assets/program/settings.xml");
        EXPECT_TRUE(file.open(QFile::ReadOnly));
        return file.readAll();
    }

    QTemporaryDir m_folder;
    core::Application application;
    Options options;
    QStringList recent;
};

TEST_F(SettingsFiles, ChangeOnlyWhatTheyKnow)
{
    struct Case {
        const char* name;
        QByteArray before, after;
    };
    const Case kCases[] = {
        {"order, strangers and comments",
         "<?xml version=\"1.0\" encoding=\"windows-1251\"?>\n<!-- \xEC\xEE\xB8 -->\n<SETTINGS own=\"\xC6\">\n"
         "\t<VIEW topMost=\"True\" zoom=\"3\" skin=\"\xC6\xF3\xEA\" quality=\"Low\"/>\n\n  <OTHER>\xC6 &amp; "
         "</OTHER>\n"
         "  <!-- SOUND --><SOUND pan=\"-5\" volume=\"7\"/></SETTINGS>\n",
         "<?xml version=\"1.0\" encoding=\"windows-1251\"?>\n<!-- \xEC\xEE\xB8 -->\n<SETTINGS own=\"\xC6\">\n"
         "\t<VIEW topMost=\"True\" zoom=\"3\" skin=\"\xC6\xF3\xEA\" quality=\"Best\"/>\n\n  <OTHER>\xC6 "
         "&amp; </OTHER>\n"
         "  <!-- SOUND --><SOUND pan=\"-5\" volume=\"8\"/></SETTINGS>\n"},
        {"UTF-8 with a mark and CR LF",
         "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"utf-8\"?>\r\n<SETTINGS>\r\n <VIEW skin=\"Жук\" "
         "quality=\"\"/>\r\n"
         "  <SOUND volume=\"1\"/>\r\n</SETTINGS>\r\n",
         "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"utf-8\"?>\r\n<SETTINGS>\r\n <VIEW skin=\"Жук\" "
         "quality=\"Best\"/>\r\n"
         "  <SOUND volume=\"8\"/>\r\n</SETTINGS>\r\n"},
        {"as an editor left it",
         "<?xml version='1.0' encoding='UTF-8' ?>\n<SETTINGS>\r\n<VIEW\n\tquality = 'Low'  skin='Жук' />\n"
         "<FILES search=\"\"><RECENT></RECENT><RECENT /></FILES></SETTINGS>",
         "<?xml version='1.0' encoding='UTF-8' ?>\n<SETTINGS>\r\n<VIEW\n\tquality = 'Best'  skin='Жук' />\n"
         "<FILES search=\"\"><RECENT></RECENT><RECENT /></FILES></SETTINGS>"},
        {"no declaration, one line", "<SETTINGS><VIEW quality=\"Жук\"/><GADGETS/></SETTINGS>\n",
         "<SETTINGS><VIEW quality=\"Best\"/><GADGETS/></SETTINGS>\n"},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        put(c.before);
        SettingsFile file(application);
        ASSERT_TRUE(file.load(options, recent));
        options.quality = "Best";
        options.volume = 8;
        options.search.clear();
        EXPECT_TRUE(file.save(options, recent));
        EXPECT_EQ(content(), c.after);
        if (c.before.contains("skin")) {
            EXPECT_EQ(options.skin.toUpper(), "ЖУК");
        }
    }
}

TEST_F(SettingsFiles, TwoWindowsDoNotUndoEachOther)
{
    put(shipped());
    for (const char* name : {"old.swf", "one.swf", "two.swf"}) {
        QFile file(m_folder.filePath(name));
        ASSERT_TRUE(file.open(QFile::WriteOnly));
    }
    const auto path = [this](const char* name) { return m_folder.filePath(name); };
    SettingsFile first(application), second(application);
    Options one, two;
    QStringList recentOne, recentTwo;
    ASSERT_TRUE(first.load(one, recentOne));
    one.skin = "lagoon";
    ASSERT_TRUE(first.save(one, {path("old.swf")}));
    ASSERT_TRUE(second.load(two, recentTwo));
    ASSERT_EQ(recentTwo, QStringList{path("old.swf")});

    one.volume = 30;
    ASSERT_TRUE(first.save(one, {path("one.swf"), path("old.swf")}));
    two.cacheMode = 2;
    ASSERT_TRUE(second.save(two, {path("two.swf"), path("old.swf")}));
    one.timeMode = 4; // and knows nothing of what the second has done
    ASSERT_TRUE(first.save(one, {path("one.swf"), path("old.swf")}));

    SettingsFile third(application);
    ASSERT_TRUE(third.load(options, recent));
    EXPECT_EQ(options.skin, "lagoon");
    EXPECT_EQ(options.volume, 30);
    EXPECT_EQ(options.cacheMode, 2);
    EXPECT_EQ(options.timeMode, 4);
    QStringList sorted = recent;
    sorted.sort();
    EXPECT_EQ(sorted, (QStringList{path("old.swf"), path("one.swf"), path("two.swf")}));
    EXPECT_EQ(recent.last(), path("old.swf"));
}

TEST_F(SettingsFiles, ReadEveryValueAndLeaveWhatDoesNotConvert)
{
    put("<SETTINGS><VIEW scaleMode='abc' topMost='-1' menuBar='0' repeat='TRUE' quality=''/>"
        "<SOUND volume='300' pan='-2.5' mute='perhaps'/><GADGETS noAnimation='1'/>"
        "<SYSTEM cacheMode='2' startUp='99999999999' timeMode='5' sfx='False' associate='True'/>"
        "<FILES lastPage='7'/></SETTINGS>");
    options.scaleMode = 1;
    options.volume = 55;
    options.mute = true;
    options.startUp = 2;
    options.hqShots = false;
    ASSERT_TRUE(SettingsFile(application).load(options, recent));
    EXPECT_EQ(options.quality, "");
    EXPECT_EQ(options.scaleMode, 1);
    EXPECT_TRUE(options.topMost);
    EXPECT_FALSE(options.menuBar);
    EXPECT_TRUE(options.repeat);
    EXPECT_EQ(options.volume, 55);
    EXPECT_EQ(options.pan, -2) << "halves go to the even number";
    EXPECT_TRUE(options.mute);
    EXPECT_EQ(options.noAnimation, "1");
    EXPECT_EQ(options.cacheMode, 2);
    EXPECT_EQ(options.startUp, 2);
    EXPECT_EQ(options.timeMode, 5);
    EXPECT_FALSE(options.sfx);
    EXPECT_TRUE(options.hqShots) << "missing: the default, not what was there";
    EXPECT_TRUE(options.associate);
    EXPECT_EQ(options.search, application.AppPath);
    EXPECT_EQ(options.lastPage, 7);
    EXPECT_EQ(options.skin, "default");
}

TEST_F(SettingsFiles, TellWhatAnotherWindowHasSaved)
{
    put(shipped());
    SettingsFile ours(application), theirs(application);
    Options other;
    QStringList others;
    ASSERT_TRUE(ours.load(options, recent));
    ASSERT_TRUE(theirs.load(other, others));
    EXPECT_FALSE(ours.refresh(options, recent)) << "nothing has happened";
    options.sfx = !options.sfx; // chosen here, and not saved yet
    other.sfx = options.sfx;
    other.language = "en";
    other.noAnimation = "True";
    other.volume = 7; // each window has its own
    ASSERT_TRUE(theirs.save(other, others));
    EXPECT_TRUE(ours.refresh(options, recent));
    EXPECT_EQ(options.language, "en");
    EXPECT_EQ(options.noAnimation, "True");
    EXPECT_NE(options.volume, 7);
    EXPECT_FALSE(ours.refresh(options, recent)) << "told once";
    ASSERT_TRUE(ours.save(options, recent));
    EXPECT_TRUE(content().contains("volume=\"7\"")) << "and what it has not changed is not undone";
}

TEST_F(SettingsFiles, KeepTheRecentFilesThatExist)
{
    const QString a = put("", "а 漢.swf"), b = put("", "b & c.swf"), gone = put("", "gone.swf");
    put(shipped());
    {
        SettingsFile file(application);
        ASSERT_TRUE(file.load(options, recent));
        EXPECT_EQ(recent, QStringList());
        ASSERT_TRUE(file.save(options, {gone, a, b}));
        QFile::remove(gone);
        ASSERT_TRUE(file.save(options, {gone, a, b}));
        EXPECT_TRUE(content().contains("gone.swf")) << "an entry without a file is left as it is";
    }
    SettingsFile file(application);
    ASSERT_TRUE(file.load(options, recent));
    EXPECT_EQ(recent, (QStringList{a, b}));
    ASSERT_TRUE(file.save(options, {b}));
    ASSERT_TRUE(SettingsFile(application).load(options, recent));
    EXPECT_EQ(recent, (QStringList{b})) << "slots behind the list are emptied";
    EXPECT_EQ(content().count("<RECENT"), 6);
}

TEST_F(SettingsFiles, GainWhatCameLaterOnceItIsChosen)
{
    put(shipped());
    SettingsFile file(application);
    ASSERT_TRUE(file.load(options, recent));
    ASSERT_TRUE(file.save(options, {}));
    EXPECT_FALSE(content().contains("codepage"))
        << "the file keeps its form as long as nothing else is wanted";
    EXPECT_FALSE(content().contains("secondThread"));
    options.codepage = "koi8-r";
    options.secondThread = false;
    ASSERT_TRUE(file.save(options, {}));
    options = {};
    ASSERT_TRUE(SettingsFile(application).load(options, recent));
    EXPECT_EQ(options.codepage, "koi8-r");
    EXPECT_FALSE(options.secondThread);
    options.codepage = "automatic";
    ASSERT_TRUE(file.save(options, {}));
    ASSERT_TRUE(SettingsFile(application).load(options, recent));
    EXPECT_EQ(options.codepage, "automatic") << "what is there is overwritten";
}

TEST_F(SettingsFiles, DamagedOnesAreKeptAsideAndReplaced)
{
    for (const QByteArray& damaged : {QByteArray(), QByteArray("<SETTINGS><VIEW"), QByteArray("<html/>")}) {
        SCOPED_TRACE(damaged.toStdString());
        put(damaged);
        SettingsFile file(application);
        options = {};
        options.volume = 55;
        EXPECT_FALSE(file.load(options, recent));
        EXPECT_EQ(options.volume, 55) << "nothing is applied";
        EXPECT_EQ(content("settings.xml.bad"), damaged);
        EXPECT_TRUE(logged("Invalid settings file"));
        EXPECT_TRUE(logged("settings.xml.bad"));
        EXPECT_TRUE(file.save(options, recent));
        EXPECT_TRUE(SettingsFile(application).load(options, recent));
        EXPECT_EQ(options.volume, 55);
    }
}

TEST_F(SettingsFiles, AFailedSaveLeavesTheOldFile)
{
    put(shipped());
    SettingsFile file(application);
    ASSERT_TRUE(file.load(options, recent));
    options.volume = 1;
    // The name taken by a folder that is not empty: no rename can replace it, for root neither.
    QFile::rename(path(), path("old"));
    QDir(m_folder.path()).mkpath("settings.xml/full");
    EXPECT_FALSE(file.save(options, recent));
    EXPECT_TRUE(logged("not saved: "));
    EXPECT_EQ(QDir(m_folder.path()).entryList({"settings.xml.*"}, QDir::Files), QStringList())
        << "no temporary file is left";
    // What cannot be read may be good, and is never replaced.
    SettingsFile unreadable(application);
    EXPECT_FALSE(unreadable.load(options, recent));
    EXPECT_FALSE(unreadable.save(options, recent));
    EXPECT_TRUE(QDir(path("settings.xml/full")).exists());
}

TEST_F(SettingsFiles, AreSeededFromTheInstalledProgram)
{
    put(QByteArray(shipped()).replace("volume=\"100\"", "volume=\"31\""));
    QTemporaryDir own;
    const QString folder = own.path() + '/';
    application.InitLog(m_folder.path() + '/', core::WrittenFolders{folder, folder, folder});
    SettingsFile file(application);
    ASSERT_TRUE(file.load(options, recent));
    EXPECT_EQ(options.volume, 31);
    options.volume = 32;
    ASSERT_TRUE(file.save(options, recent));
    EXPECT_TRUE(content().contains("volume=\"31\"")) << "the installed file is not written";
    ASSERT_TRUE(SettingsFile(application).load(options, recent));
    EXPECT_EQ(options.volume, 32);
}

} // namespace
} // namespace settings
