#include "platform/Shell.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <sys/stat.h>

namespace platform
{
namespace
{

class Files
{
public:
    QString put(const QString& name, const QByteArray& bytes, bool executable = false) const
    {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QFile::WriteOnly));
        file.write(bytes);
        file.close();
        auto permissions = QFile::ReadOwner | QFile::WriteOwner;
        if (executable) permissions |= QFile::ExeOther;
        EXPECT_TRUE(file.setPermissions(permissions));
        return file.fileName();
    }
    [[nodiscard]] QString path(const QString& name) const { return QDir(m_folder.path()).filePath(name); }

private:
    QTemporaryDir m_folder;
};

TEST(ExamineFile, TakesProgramsForProgramsByAnyOfTheirMarks)
{
    const Files files;
    struct Case {
        const char* what;
        QString name;
        QByteArray bytes;
        bool executable = false;
    };
    const QByteArray text = "Just a text.\n";
    QByteArray image(40'000, '\0');
    image.replace(32769, 5, "CD001");
    const Case kPrograms[] = {
        {"by name", "game.exe", text},
        {"in capitals", "GAME.ExE", text},
        {"the last of several", "photo.jpg.scr", text},
        {"dots and spaces that one system drops", "game.exe. .", text},
        {"a script", "install.sh", text},
        {"another system's script", "a.vbs", text},
        {"a shortcut", "a.lnk", text},
        {"an entry of the desktop", "a.desktop", text},
        {"a package", "a.deb", text},
        {"a disk image, which is mounted", "a.iso", text},
        {"a document with macros", "a.docm", text},
        {"by permission", "notes.txt", text, true},
        {"by permission, without a name", "notes", text, true},
        {"a Linux program by its bytes", "picture.jpg",
         QByteArray("\x7f"
                    "ELF\x02\x01\x01",
                    7)},
        {"a Windows program by its bytes", "picture.png", "MZ\x90"},
        {"a script by its bytes", "readme.txt", "#!/bin/sh\nrm -rf ~\n"},
        {"behind a byte order mark", "readme.md", "\xEF\xBB\xBF#!/bin/sh\n"},
        {"an entry of the desktop by its bytes", "letter.txt", "# hello\n\n[Desktop Entry]\nExec=sh\n"},
        {"a shortcut by its bytes", "letter.doc", "[internetshortcut]\r\nURL=file:///x\r\n"},
        {"a Java class", "picture.gif", "\xCA\xFE\xBA\xBE\0\0"},
        {"a disk image by its bytes", "movie.avi", image},
    };
    for (const Case& c : kPrograms) {
        SCOPED_TRACE(c.what);
        const QString path = files.put(c.name, c.bytes, c.executable);
        const FileVerdict verdict = examineFile(path);
        EXPECT_EQ(verdict.kind, FileKind::Program);
        EXPECT_FALSE(verdict.reason.isEmpty());
        const QString link = files.path("harmless.txt");
        ASSERT_TRUE(QFile::link(path, link));
        EXPECT_EQ(examineFile(link).kind, FileKind::Program) << "behind a link";
        QFile::remove(link);
    }
}

TEST(ExamineFile, LetsDocumentsPass)
{
    const Files files;
    const std::pair<const char*, QByteArray> kDocuments[] = {
        {"readme.txt", "Just a text.\n"},
        {"Прочти меня.TXT", "\xCF\xF0\xEE\xF7\xF2\xE8\n"},
        {"page.html", "<html><body>Text</body></html>"},
        {"picture.jpg", QByteArray("\xFF\xD8\xFF\xE0\0\x10JFIF", 10)},
        {"book.pdf", "%PDF-1.4\n"},
        {"pack.zip", QByteArray("PK\x03\x04\x14\0\0\0", 8)},
        {"movie.swf", "FWS\x06"},
        {"table.csv", "a;b\n"},
        {"no extension", "text"},
        {"empty.txt", ""},
    };
    for (const auto& [name, bytes] : kDocuments) {
        SCOPED_TRACE(name);
        const FileVerdict verdict = examineFile(files.put(name, bytes));
        EXPECT_EQ(verdict.kind, FileKind::Document) << verdict.reason.toStdString();
    }
}

TEST(ExamineFile, KnowsWhatIsNoFile)
{
    const Files files;
    EXPECT_EQ(examineFile(files.path("absent.txt")).kind, FileKind::Missing);
    ASSERT_TRUE(QFile::link(files.path("absent.txt"), files.path("dangling.txt")));
    EXPECT_EQ(examineFile(files.path("dangling.txt")).kind, FileKind::Missing);
    EXPECT_EQ(examineFile("/dev/null").kind, FileKind::Special);
    ASSERT_EQ(mkfifo(files.path("pipe.txt").toLocal8Bit().constData(), 0600), 0);
    EXPECT_EQ(examineFile(files.path("pipe.txt")).kind, FileKind::Special) << "without waiting for a writer";
    QDir().mkpath(files.path("folder"));
    EXPECT_EQ(examineFile(files.path("folder")).kind, FileKind::Folder);
    QDir().mkpath(files.path("Bundle.app"));
    EXPECT_EQ(examineFile(files.path("Bundle.app/")).kind, FileKind::Program);
    const QString document = files.put("document.txt", "text");
    ASSERT_TRUE(QFile::link(document, files.path("link.txt")));
    EXPECT_EQ(examineFile(files.path("folder/../link.txt")).path, QFileInfo(document).canonicalFilePath())
        << "what is opened is the file, not the way to it";
}

} // namespace
} // namespace platform
