#include "Movies.h"

#include <QImage>
#include <QProcess>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>

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
        {"word that the option does not know", {"trace", movie, "--fscommands", "yes"}, 2},
        {"no number", {"trace", movie, "--frames", "ten"}, 2},
        {"render without a frame", {"render", movie, "--out", picture}, 2},
        {"record without a file", {"record", movie, "--frames", "2"}, 2},
        {"recording in a folder that is missing", {"record", movie, "--out", "/no/such/a.wav"}, 1},
        {"help", {"--help"}, 0},
        {"missing movie", {"trace", "/no/such/movie.swf"}, 1},
        {"no movie at all", {"trace", folder.write("b.swf", {1, 2, 3, 4, 5, 6, 7, 8, 9})}, 1},
        {"cut movie", {"info", folder.write("c.swf", {'F', 'W', 'S', 6, 0})}, 1},
        {"missing input", {"trace", movie, "--input", "/no/such/input.json"}, 1},
        {"input that is no array", {"trace", movie, "--input", folder.write("i.json", {'{', '}'})}, 1},
        {"picture in a folder that is missing",
         {"render", movie, "--frame", "1", "--out", "/no/such/a.png"},
         1},
        {"thumbnail without a place", {"thumbnail", movie}, 2},
        {"thumbnail of no size", {"thumbnail", movie, "--size", "0", "--out", picture}, 2},
        {"thumbnail of no movie",
         {"thumbnail", folder.write("d.swf", {'C', 'W', 'S', 6, 99, 0, 0, 0, 1, 2, 3}), "--out", picture},
         1},
        {"thumbnail in a folder that is missing", {"thumbnail", movie, "--out", "/no/such/a.png"}, 1},
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

TEST(Flashrun, PicturesAMovieForAFileManager)
{
    const test::MovieFolder folder;
    const swf::ByteList endless = {0x99, 2, 0, 0xFB, 0xFF}; // jumps to itself
    struct Case {
        const char* name;
        QString movie;
        QSize size;
    };
    const Case kCases[] = {
        {"plain", folder.write("a.swf", test::movingSquare(3)), {100, 80}},
        {"a name with what else begins a query",
         folder.write("a?b #1.swf", test::movingSquare(3)),
         {100, 80}},
        {"a script that does not end",
         folder.write("endless.swf", test::movingSquare(3, endless)),
         {100, 80}},
        {"damaged behind its first frames",
         folder.write("cut.swf",
                      [] {
                          auto bytes = test::movingSquare(9);
                          bytes.resize(bytes.size() - 30);
                          return bytes;
                      }()),
         {100, 80}},
        {"one pixel high", folder.write("flat.swf", swf::movieBytes(6, {swf::kShowFrame}, 1)), {}},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        const QString out = c.movie + ".png";
        const auto begin = std::chrono::steady_clock::now();
        const Ended ended = flashrun({"thumbnail", c.movie, "--size", "100", "--seconds", "2", "--out", out});
        EXPECT_EQ(ended.status, 0) << ended.errors.toStdString();
        EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10));
        const QImage picture(out);
        ASSERT_FALSE(picture.isNull());
        EXPECT_EQ(std::max(picture.width(), picture.height()), 100);
        if (c.size.isEmpty()) continue;
        EXPECT_EQ(picture.size(), c.size);
        int red = 0;
        for (int x = 0; x < picture.width(); ++x) red += picture.pixelColor(x, 10) == QColor(255, 0, 0);
        EXPECT_NEAR(red, 20, 2) << "the square is on it";
    }
}

TEST(Flashrun, PassesOverFramesThatShowNothingYet)
{
    // Grey for a second, then the square.
    using swf::BodyWriter;
    using swf::tag;
    BodyWriter shape;
    shape.u16(1).rect(0, 1000, 0, 1000).u8(1).u8(0).rgb({0, 0, 255, 255}).u8(0).indexWidths(1, 0);
    shape.moveTo(0, 0).fill1(1).lineTo(1000, 0).lineTo(0, 1000).lineTo(-1000, 0).lineTo(0, -1000).endShape();
    std::vector<swf::ByteList> tags = {tag(9, BodyWriter().rgb({128, 128, 128, 255})), tag(2, shape)};
    for (int i = 0; i < 20; ++i) tags.push_back(swf::kShowFrame);
    tags.push_back(tag(26, BodyWriter().u8(0b110).u16(1).u16(1).translation(200, 200)));
    tags.push_back(swf::kShowFrame);
    for (int i = 0; i < 20; ++i) tags.push_back(swf::kShowFrame);
    const test::MovieFolder folder;
    const QString movie = folder.write("late.swf", swf::movieBytes(6, tags, 41));
    const QString out = movie + ".png";
    ASSERT_EQ(flashrun({"thumbnail", movie, "--size", "50", "--out", out}).status, 0);
    EXPECT_EQ(QImage(out).pixelColor(15, 15), QColor(0, 0, 255));
}

} // namespace flash
