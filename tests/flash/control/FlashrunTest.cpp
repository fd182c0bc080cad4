#include "Movies.h"

#include <QImage>
#include <QProcess>

#include <gtest/gtest.h>

namespace flash
{

namespace
{

struct Ended {
    int status = -1;
    QByteArray out, errors;
};

Ended flashrun(const QStringList& arguments)
{
    QProcess process;
    process.start(QString(ZORVEX_TOOLS_DIR "/flashrun"), arguments);
    EXPECT_TRUE(process.waitForFinished(30000));
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

} // namespace

TEST(Flashrun, TellsWrongUsageAndUnplayableMoviesApart)
{
    const test::MovieFolder folder;
    const QString movie = folder.write("a.swf", test::movingSquare(2));
    const QString picture = movie + ".png";
    struct Case {
        const char* name;
        QStringList arguments;
        int status;
    };
    const Case kCases[] = {
        {"no command", {}, 2},
        {"unknown command", {"play", movie}, 2},
        {"no movie", {"trace"}, 2},
        {"option without value", {"trace", movie, "--frames"}, 2},
        {"option of another command", {"trace", movie, "--out", picture}, 2},
        {"no number", {"trace", movie, "--frames", "ten"}, 2},
        {"render without a frame", {"render", movie, "--out", picture}, 2},
        {"help", {"--help"}, 0},
        {"missing movie", {"trace", "/no/such/movie.swf"}, 1},
        {"no movie at all", {"trace", folder.write("b.swf", {1, 2, 3, 4, 5, 6, 7, 8, 9})}, 1},
        {"cut movie", {"info", folder.write("c.swf", {'F', 'W', 'S', 6, 0})}, 1},
        {"missing input", {"trace", movie, "--input", "/no/such/input.json"}, 1},
        {"input that is no array", {"trace", movie, "--input", folder.write("i.json", {'{', '}'})}, 1},
        {"picture in a folder that is missing",
         {"render", movie, "--frame", "1", "--out", "/no/such/a.png"},
         1},
        {"a movie", {"trace", movie, "--frames", "3", "--date", "2001-02-03T04:05:06"}, 0},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        const Ended ended = flashrun(c.arguments);
        EXPECT_EQ(ended.status, c.status) << ended.errors.toStdString();
        EXPECT_EQ(ended.errors.isEmpty(), c.status == 0);
        EXPECT_LE(ended.errors.count('\n'), c.status == 1 ? 1 : 2);
    }
}

TEST(Flashrun, WritesThePicturesOfTheFramesAskedFor)
{
    const test::MovieFolder folder;
    const QString movie = folder.write("a.swf", test::movingSquare(3));
    const QString out = movie + ".png";
    ASSERT_EQ(flashrun({"render", movie, "--frame", "2", "--scale", "2", "--out", out}).status, 0);
    const QImage picture(out);
    EXPECT_EQ(picture.size(), QSize(200, 160));
    EXPECT_EQ(picture.pixelColor(60, 10), QColor(255, 0, 0));
    EXPECT_EQ(picture.pixelColor(30, 10), QColor(128, 128, 128));

    const QString series = movie + ".frames";
    ASSERT_EQ(flashrun({"render", movie, "--frames", "2-4", "--out", series}).status, 0);
    EXPECT_FALSE(QFile::exists(series + "/frame0001.png"));
    EXPECT_EQ(QImage(series + "/frame0003.png").pixelColor(50, 10), QColor(255, 0, 0));
    EXPECT_EQ(QImage(series + "/frame0004.png").pixelColor(10, 10), QColor(255, 0, 0)) << "it goes round";
}

} // namespace flash
