#include "player/MovieList.h"

#include "QtPrint.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace player
{
namespace
{

class MovieListTest : public testing::Test, public MovieListHost
{
protected:
    MovieListTest()
    {
        for (const char* name : {"10.swf", "2.SWF", "b.swf", "Á.swf", "game.exe", "tool.exe", ".hidden.swf",
                                 "readme.txt", "me\"s.swf"}) {
            QFile file(path(name));
            EXPECT_TRUE(file.open(QFile::WriteOnly));
        }
        QDir(folder.path()).mkdir("empty");
    }
    [[nodiscard]] QString path(const QString& name) const { return folder.filePath(name); }

    [[nodiscard]] QString currentMovie() const override { return current; }
    [[nodiscard]] bool isProjector(const QString& file) const override { return file.contains("game"); }
    void LoadFlash(const QString& file, const QString&) override { current = file; }
    void NewMediaBrowse(const QString& browsed) override { current = "browse " + browsed; }
    void showNote(const QString& text) override { note = text; }

    QTemporaryDir folder;
    QString current, note;
    MovieList list{*this};
};

TEST_F(MovieListTest, WalksTheFilesBesideTheMovieInTheOrderPeopleExpect)
{
    list.open({path("2.SWF")});
    QStringList walked;
    for (int i = 0; i < 8 && note != "Это последний ролик"; ++i) {
        walked += QFileInfo(current).fileName();
        list.walk(1);
    }
    EXPECT_EQ(walked, (QStringList{"2.SWF", "10.swf", "Á.swf", "b.swf", "game.exe", "me\"s.swf"}))
        << "numbers as numbers, hidden files and programs without a movie left out";
    EXPECT_EQ(QFileInfo(current).fileName(), "me\"s.swf") << "the end is the end";
    list.walk(-1);
    EXPECT_EQ(QFileInfo(current).fileName(), "game.exe");
    list.walk(-4);
    EXPECT_EQ(QFileInfo(current).fileName(), "2.SWF");
    list.walk(-1);
    EXPECT_EQ(note, "Это первый ролик");
}

TEST_F(MovieListTest, WhatWasNamedTogetherIsTheList)
{
    list.open({path("b.swf"), path("tool.exe"), path("empty/../2.SWF")});
    EXPECT_EQ(current, path("b.swf"));
    list.walk(1);
    EXPECT_EQ(current, path("tool.exe")) << "it was named; the window says what is wrong with it";
    list.walk(1);
    EXPECT_EQ(current, path("2.SWF")) << "paths are made plain";
    list.walk(1);
    EXPECT_EQ(note, "Это последний ролик");
    EXPECT_EQ(current, path("2.SWF"));

    current = path("10.swf"); // opened some other way
    list.walk(-1);
    EXPECT_EQ(current, path("2.SWF"));

    list.open({folder.path(), path("empty")});
    EXPECT_EQ(current, path("2.SWF")) << "the movies of a folder";
    list.open({folder.path()});
    EXPECT_EQ(current, "browse " + folder.path());
    list.open({path("empty"), path("empty/")});
    EXPECT_EQ(current, "browse " + path("empty"));
    current.clear();
    list.walk(1);
    EXPECT_EQ(current, "") << "no movie, no next one";
}

TEST(PlainPath, TakesAddressesAndQueries)
{
    EXPECT_EQ(plainPath("file:///a%20b/../c.swf"), "/c.swf");
    EXPECT_EQ(plainPath("/x/./y/../z.swf?from=../a"), "/x/z.swf?from=../a");
    EXPECT_EQ(plainPath("z.swf"), QDir::current().absoluteFilePath("z.swf"));
}

} // namespace
} // namespace player
