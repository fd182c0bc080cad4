#include "platform/Association.h"

#include "Environment.h"
#include "QtPrint.h"

#include <QDir>
#include <QDirIterator>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QThread>
#include <gtest/gtest.h>

// Over a home folder of its own, and asked of the desktop's own tools.

namespace platform
{
namespace
{

constexpr const char* kType = "application/vnd.adobe.flash.movie";

TEST(AssociationValues, AreTheFourAsStated)
{
    const Association association("Zorvex", "C:\\Program Files\\Z\\");
    const auto& values = association.values();
    ASSERT_EQ(values.size(), 4U);
    EXPECT_EQ(values[0].key + '=' + values[0].data, "Zorvex=Flash Movie");
    EXPECT_EQ(values[1].key + '=' + values[1].data, ".SWF=Zorvex");
    EXPECT_EQ(values[2].key + '=' + values[2].data,
              "Zorvex\\shell\\open\\command=C:\\Program Files\\Z\\Zorvex.exe %1")
        << "not quoted, on purpose";
    EXPECT_EQ(values[3].key + '=' + values[3].data, "Zorvex\\DefaultIcon=C:\\Program Files\\Z\\Zorvex.exe,1");
}

#ifndef _WIN32

class DesktopAssociation : public testing::Test
{
protected:
    void SetUp() override
    {
        for (const char* tool : {"gio", "xdg-mime", "update-mime-database", "update-desktop-database"})
            if (QStandardPaths::findExecutable(tool).isEmpty()) GTEST_SKIP() << tool << " is not installed";
        QDir().mkpath(path("system/mime/packages"));
        QDir().mkpath(path("system/applications"));
        install(path("Программы/"));
    }
    void install(const QString& folder)
    {
        program = folder;
        QDir().mkpath(program);
        // Says what it was started with.
        put(program + "Zorvex", "#!/bin/sh\nprintf '%s|' \"$@\" > '" + path("started").toUtf8() + "'\n");
        QFile::setPermissions(program + "Zorvex", QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    [[nodiscard]] QString path(const QString& name) const { return m_folder.filePath(name); }
    static void put(const QString& path, const QByteArray& bytes)
    {
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        EXPECT_TRUE(file.open(QFile::WriteOnly) && file.write(bytes) == bytes.size()) << path.toStdString();
    }
    static QByteArray content(const QString& path)
    {
        QFile file(path);
        return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray("no such file");
    }
    static QString ask(const QString& tool, const QStringList& arguments)
    {
        QProcess process;
        process.start(tool, arguments);
        EXPECT_TRUE(process.waitForFinished()) << tool.toStdString();
        return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
    }
    static QString defaultProgram() { return ask("xdg-mime", {"query", "default", kType}); }
    /// Every file below the home folder but what the tools make of the others, with its bytes.
    [[nodiscard]] QMap<QString, QByteArray> home() const
    {
        QMap<QString, QByteArray> files;
        QDirIterator all(path("home"), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
        while (all.hasNext()) {
            const QString file = all.next();
            const bool isMade = file.contains("/mime/") && !file.contains("/packages/");
            if (!isMade && !file.endsWith("mimeinfo.cache")) files[file] = content(file);
        }
        return files;
    }
    QTemporaryDir m_folder;
    QString program;
    const tests::Environment environment{{"HOME", path("home")},
                                         {"XDG_CONFIG_HOME", {}},
                                         {"XDG_DATA_HOME", {}},
                                         {"XDG_DATA_DIRS", path("system")},
                                         {"XDG_CONFIG_DIRS", path("system")},
                                         {"XDG_CURRENT_DESKTOP", {}},
                                         {"DE", "generic"}};
};

TEST_F(DesktopAssociation, MakesAClickOnAMovieStartTheProgram)
{
    install(path("Мои программы $HOME \"x\" \\1/Zorvex/"));
    EXPECT_EQ(defaultProgram(), "");
    EXPECT_EQ(Association("Zorvex", program).Associate(), QStringList());
    EXPECT_TRUE(ask("gio", {"mime", kType}).contains("zorvex.desktop"));

    const QString movie = path("Мой ролик & 100%.SWF");
    put(movie, "not even a movie");
    put(path("plain"), "FWS\x06 and more");
    put(path("packed"), "CWS\x06 and more");
    for (const QString& file : {movie, path("plain"), path("packed")})
        EXPECT_TRUE(ask("gio", {"info", "-a", "standard::content-type", file}).contains(kType))
            << file.toStdString();

    EXPECT_EQ(QProcess::execute("gio", {"open", movie}), 0);
    for (int i = 0; i < 100 && content(path("started")).isEmpty() | !QFile::exists(path("started")); ++i)
        QThread::msleep(50);
    EXPECT_EQ(QString::fromUtf8(content(path("started"))), movie + '|') << "one argument, the file's path";

    if (!QStandardPaths::findExecutable("desktop-file-validate").isEmpty()) {
        EXPECT_EQ(ask("desktop-file-validate", {path("home/.local/share/applications/zorvex.desktop")}), "");
    }
}

TEST_F(DesktopAssociation, ChangesNothingTheSecondTimeAndNothingOutsideTheHome)
{
    const Association association("Zorvex", program);
    association.Associate();
    const auto first = home();
    EXPECT_EQ(first.size(), 3) << "an entry, a type and the list of defaults";
    const QDateTime written = QFileInfo(path("home/.config/mimeapps.list")).lastModified();
    QThread::msleep(20);
    EXPECT_EQ(association.Associate(), QStringList());
    EXPECT_EQ(home(), first);
    EXPECT_EQ(QFileInfo(path("home/.config/mimeapps.list")).lastModified(), written) << "not even written";
    EXPECT_EQ(QDir(path("system")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
              (QStringList{"applications", "mime"}));
    EXPECT_TRUE(QDir(path("system/applications")).isEmpty());

    // The program moves: the entry follows.
    ASSERT_TRUE(QDir().rename(program, path("moved")));
    Association("Zorvex", path("moved/")).Associate();
    EXPECT_TRUE(content(path("home/.local/share/applications/zorvex.desktop"))
                    .contains("Exec=" + path("moved/Zorvex").toUtf8() + " %f\n"));
    EXPECT_EQ(home().size(), 3);
}

TEST_F(DesktopAssociation, GivesBackWhatWasBefore)
{
    put(path("home/.local/share/applications/zorvex.desktop"),
        "[Desktop Entry]\nType=Application\nName=Other\nExec=true\n");
    put(path("home/.local/share/applications/other.desktop"),
        QByteArray("[Desktop Entry]\nType=Application\nName=Other\nExec=true %f\nMimeType=") + kType + ";\n");
    put(path("home/.config/mimeapps.list"),
        QByteArray("# by hand\n[Default Applications]\ntext/plain=x.desktop\n") + kType +
            "=other.desktop;\n\n[Added Associations]\ntext/plain=x.desktop;\n");
    const auto before = home();
    const Association association("Zorvex", program);
    association.Associate();
    association.Associate();
    EXPECT_EQ(defaultProgram(), "zorvex.desktop");
    EXPECT_EQ(association.Withdraw(), QStringList());
    EXPECT_EQ(home(), before);
    EXPECT_EQ(defaultProgram(), "other.desktop");
    EXPECT_EQ(association.Withdraw(), QStringList()) << "there is nothing to take back";
    EXPECT_EQ(home(), before);
}

TEST_F(DesktopAssociation, DoesNotRepeatWhatThePackageInstalls)
{
    QDir().mkpath(path("bin"));
    ASSERT_TRUE(QFile::link(program + "Zorvex", path("bin/zorvex")));
    const tests::Environment search{{"PATH", path("bin") + ':' + qEnvironmentVariable("PATH")}};
    put(path("system/applications/zorvex.desktop"),
        "[Desktop Entry]\nType=Application\nName=Z\nExec=zorvex %f\nTryExec=zorvex\n");
    put(path("system/mime/packages/zorvex.xml"), "<mime-info/>");
    Association("Zorvex", program).Associate();
    EXPECT_EQ(home().keys(), QStringList(path("home/.config/mimeapps.list")));
    EXPECT_EQ(defaultProgram(), "zorvex.desktop");
    // A program elsewhere is not the installed one.
    QDir().rename(program, path("copy"));
    put(program + "Zorvex", "#!/bin/sh\n");
    QFile::setPermissions(program + "Zorvex", QFile::ReadOwner | QFile::ExeOwner);
    Association("Zorvex", path("copy/")).Associate();
    EXPECT_TRUE(home().contains(path("home/.local/share/applications/zorvex.desktop")));
}

TEST_F(DesktopAssociation, ObeysTheRunningDesktopsOwnList)
{
    const tests::Environment desktop{{"XDG_CURRENT_DESKTOP", "Budgie:GNOME"}};
    const QByteArray mine = QByteArray("[Default Applications]\n") + kType + "=other.desktop\n";
    put(path("home/.config/gnome-mimeapps.list"), mine);
    put(path("home/.config/budgie-mimeapps.list"), "[Default Applications]\ntext/plain=x.desktop\n");
    Association("Zorvex", program).Associate();
    EXPECT_TRUE(content(path("home/.config/gnome-mimeapps.list")).contains("=zorvex.desktop;other.desktop;"));
    EXPECT_FALSE(content(path("home/.config/budgie-mimeapps.list")).contains("zorvex"));
}

TEST_F(DesktopAssociation, GoesOnPastWhatFailsAndSaysSo)
{
    put(path("home/.local/share/applications"), "a file where a folder should be");
    const QStringList problems = Association("Zorvex", program).Associate();
    EXPECT_EQ(problems.size(), 1) << problems.join("; ").toStdString();
    EXPECT_TRUE(content(path("home/.config/mimeapps.list")).contains("zorvex.desktop"));
    EXPECT_TRUE(QFile::exists(path("home/.local/share/mime/packages/zorvex.xml")));
}

#endif

} // namespace
} // namespace platform
