#include "export/CommandLine.h"
#include "export/Report.h"

#include <QBuffer>

#include <gtest/gtest.h>

namespace
{

using exporter::CommandLine;
using exporter::End;

base::Result<CommandLine> parse(const std::vector<std::string>& words) { return exporter::parse(words); }

TEST(ExportCommandLine, TellsWhatIsWrong)
{
    const std::vector<std::vector<std::string>> wrong = {
        {},
        {"a.swf"},
        {"a.swf", "a.avi"},
        {"a.swf", "a.mp4", "b.mp4"},
        {"a.swf", "a.mp4", "--to"},
        {"a.swf", "a.mp4", "--to", "soon"},
        {"a.swf", "a.mp4", "--to", "1:x"},
        {"a.swf", "a.mp4", "--to", "-1"},
        {"a.swf", "a.mp4", "--to", "0f"},
        {"a.swf", "a.mp4", "--to", "1e99"},
        {"a.swf", "a.mp4", "--from", "3", "--to", "3"},
        {"a.swf", "a.mp4", "--size", "1280"},
        {"a.swf", "a.mp4", "--size", "0x720"},
        {"a.swf", "a.mp4", "--size", "99999x720"},
        {"a.swf", "a.mp4", "--fps", "30/0"},
        {"a.swf", "a.mp4", "--fps", "1000"},
        {"a.swf", "a.mp4", "--quality", "fine"},
        {"a.swf", "a.mp4", "--transparent"},
        {"a.swf", "a.mp4", "--frame", "1"},
        {"a.swf", "a.mp4", "--loud"},
    };
    for (const auto& words : wrong) {
        const auto line = parse(words);
        EXPECT_FALSE(line) << ::testing::PrintToString(words);
    }
}

TEST(ExportCommandLine, MomentsAreSecondsMinutesOrFrames)
{
    const auto line = parse({"a.swf", "a.MP4", "--from", "12f", "--to", "1:02.5"});
    ASSERT_TRUE(line) << line.error().what;
    EXPECT_EQ(line->settings.fromMs, -12);
    EXPECT_EQ(line->settings.toMs, 62'500);
    EXPECT_EQ(line->settings.end, End::Given);
    EXPECT_EQ(parse({"a.swf", "a.gif", "--to", "9", "--until", "still"})->settings.end, End::Still);
    EXPECT_EQ(parse({"a.swf", "a.gif"})->settings.end, End::Timeline);
}

TEST(ExportCommandLine, TheWordsOfSettingsSayTheSame)
{
    exporter::Settings settings;
    settings.movie = "-strange name.swf";
    settings.out = "/x/film.webm";
    settings.format = exporter::Format::WebM;
    settings.fromMs = 1234.5678;
    settings.toMs = -400;
    settings.end = End::Given;
    settings.size = {1280, 720};
    settings.rate = {30000, 1001};
    settings.quality = exporter::Quality::Small;
    settings.hasSound = false;
    settings.isGroundTransparent = true;
    settings.input = "in.json";
    settings.textCode = "windows-1251";
    const auto line = parse(exporter::wordsOf(settings));
    ASSERT_TRUE(line) << line.error().what;
    const exporter::Settings& read = line->settings;
    EXPECT_EQ(read.movie, "./-strange name.swf");
    EXPECT_EQ(read.out, settings.out);
    EXPECT_EQ(read.format, settings.format);
    EXPECT_EQ(read.fromMs, settings.fromMs);
    EXPECT_EQ(read.toMs, settings.toMs);
    EXPECT_EQ(read.end, settings.end);
    EXPECT_EQ(read.size, settings.size);
    EXPECT_EQ(read.rate, settings.rate);
    EXPECT_EQ(read.quality, settings.quality);
    EXPECT_FALSE(read.hasSound);
    EXPECT_TRUE(read.isGroundTransparent);
    EXPECT_EQ(read.input, settings.input);
    EXPECT_EQ(read.textCode, settings.textCode);
}

TEST(ExportReport, IsReadAsItWasWritten)
{
    using namespace exporter::report;
    const auto advanced = read(write(Advanced{12, 340}));
    ASSERT_TRUE(advanced);
    EXPECT_EQ(std::get<Advanced>(*advanced).expected, 340);
    const auto done = read(write(Done{5, 200.5, true}));
    ASSERT_TRUE(done);
    EXPECT_TRUE(std::get<Done>(*done).isCutShort);
    EXPECT_EQ(std::get<Done>(*done).ms, 200.5);
    QImage picture(1000, 500, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::darkGreen);
    const auto shown = read(write(Shown{picture}));
    ASSERT_TRUE(shown);
    EXPECT_EQ(std::get<Shown>(*shown).picture.size(), QSize(320, 160));
}

TEST(ExportReport, WhatIsNoLineOfItIsNothing)
{
    for (const char* line : {"", "advanced", "advanced 1", "advanced x 2", "advanced -1 2", "done 1 nan 0",
                             "done 1 inf 0", "shown", "shown ####", "shown AAAA", "hello world"})
        EXPECT_FALSE(exporter::report::read(line)) << line;
    EXPECT_FALSE(exporter::report::read("shown " + QByteArray(2 << 20, 'A')));
    QByteArray large;
    QBuffer buffer(&large);
    buffer.open(QIODevice::WriteOnly);
    QImage picture(4000, 3000, QImage::Format_RGB32);
    picture.fill(Qt::red);
    ASSERT_TRUE(picture.save(&buffer, "JPEG"));
    EXPECT_FALSE(exporter::report::read("shown " + large.toBase64()));
}

} // namespace
