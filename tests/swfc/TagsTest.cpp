// What has no trace and no picture of its own, read back from the compiled file by the engine's parser.

#include "MovieFiles.h"

#include "flash/swf/Movie.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using test::MemoryFiles;
using testing::ElementsAre;
namespace swf = flash::swf;

std::string littleEndian(std::uint32_t value, int bytes)
{
    std::string out;
    for (int i = 0; i < bytes; ++i) out += static_cast<char>(value >> (8 * i) & 0xFF);
    return out;
}

/// One channel of 16 bits; the sample values count up from 0.
std::string wave(std::uint32_t rate, std::uint32_t samples)
{
    std::string data;
    for (std::uint32_t i = 0; i < samples; ++i) data += littleEndian(i, 2);
    return "RIFF" + littleEndian(static_cast<std::uint32_t>(36 + data.size()), 4) + "WAVEfmt " +
           littleEndian(16, 4) + littleEndian(1, 2) + littleEndian(1, 2) + littleEndian(rate, 4) +
           littleEndian(rate * 2, 4) + littleEndian(2, 2) + littleEndian(16, 2) + "data" +
           littleEndian(static_cast<std::uint32_t>(data.size()), 4) + data;
}

/// Compiles and parses; null when either says anything.
std::shared_ptr<const swf::Movie> compiled(const std::string& xml)
{
    MemoryFiles files;
    files.files["m.xml"] = xml;
    files.files["tone.wav"] = wave(11025, 2500);
    swfc::Diagnostics diagnostics;
    const auto bytes = swfc::source::compileMovie("m.xml", files, diagnostics);
    EXPECT_THAT(diagnostics.lines(), ElementsAre());
    auto movie = swf::parseMovie(bytes);
    if (!movie) {
        ADD_FAILURE() << movie.error().what;
        return nullptr;
    }
    EXPECT_THAT((*movie)->warnings, ElementsAre());
    return *movie;
}

template <class T>
std::vector<T> tagsOf(const swf::Frame& frame)
{
    std::vector<T> found;
    for (const swf::ControlTag& tag : frame.tags) {
        if (const T* wanted = std::get_if<T>(&tag)) found.push_back(*wanted);
    }
    return found;
}

TEST(Tags, HoldWhatTheMovieSaysOfItself)
{
    const auto movie = compiled("<movie version=\"8\" network=\"yes\" compressed=\"no\">"
                                "<metadata>Сделано для проверки</metadata>"
                                "<scriptLimits recursion=\"50\" timeout=\"10\"/><frame/></movie>");
    ASSERT_NE(movie, nullptr);
    EXPECT_EQ(movie->metadata, "Сделано для проверки");
    EXPECT_TRUE(movie->usesNetwork);
    EXPECT_FALSE(movie->header.compressed);
    EXPECT_EQ(movie->scriptMaxRecursion, 50);
    EXPECT_EQ(movie->scriptTimeoutSeconds, 10);
    const auto plain = compiled("<movie version=\"8\"><frame/></movie>");
    ASSERT_NE(plain, nullptr);
    EXPECT_EQ(plain->metadata, "");
    EXPECT_FALSE(plain->usesNetwork);
    EXPECT_TRUE(plain->header.compressed);
}

TEST(Tags, HoldImportsExportsAndRawBytes)
{
    const auto movie = compiled("<movie version=\"8\" compressed=\"no\"><import url=\"parts/other.swf\">"
                                "<asset id=\"a\" name=\"First\"/><asset id=\"b\" name=\"Second\"/></import>"
                                "<sprite id=\"own\" export=\"Mine\"><frame/></sprite>"
                                "<raw code=\"1000\" hex=\"00 01 02 FF\"/><frame/></movie>");
    ASSERT_NE(movie, nullptr);
    const auto imports = tagsOf<swf::ImportAssets>(movie->timeline.frames.at(0));
    ASSERT_EQ(imports.size(), 1U);
    EXPECT_EQ(imports[0].url, "parts/other.swf");
    ASSERT_EQ(imports[0].names.size(), 2U);
    EXPECT_EQ(imports[0].names[0].second, "First");
    EXPECT_EQ(imports[0].names[1].second, "Second");
    EXPECT_NE(imports[0].names[0].first, imports[0].names[1].first);
    ASSERT_TRUE(movie->exports.contains("Mine"));
    EXPECT_NE(movie->character(movie->exports.at("Mine")), nullptr);
    // Ten bits of code and six of length, then the four bytes.
    const std::string bytes(movie->bytes.begin(), movie->bytes.end());
    EXPECT_NE(bytes.find(littleEndian(1000U << 6 | 4, 2) + std::string("\x00\x01\x02\xFF", 4)),
              std::string::npos);
}

TEST(Tags, HoldTheGridOfClipsAndButtons)
{
    const auto movie = compiled(
        "<movie version=\"8\"><sprite id=\"s\" export=\"s\" scale9=\"5 6 20 30\"><frame/></sprite>"
        "<shape id=\"r\"><rect width=\"40\" height=\"40\" fill=\"#123456\"/></shape>"
        "<button id=\"b\" export=\"b\" scale9=\"1 2 3 4\"><state id=\"r\"/></button><frame/></movie>");
    ASSERT_NE(movie, nullptr);
    const auto gridOf = [&](const char* name) {
        const auto grid = movie->character(movie->exports.at(name))->scalingGrid.value_or(swf::Rect{});
        return std::array{grid.xMin / 20, grid.yMin / 20, grid.width() / 20, grid.height() / 20};
    };
    EXPECT_THAT(gridOf("s"), ElementsAre(5, 6, 20, 30));
    EXPECT_THAT(gridOf("b"), ElementsAre(1, 2, 3, 4));
}

TEST(Tags, HoldCuesOfFramesAndButtons)
{
    const auto movie = compiled(
        "<movie version=\"8\"><sound id=\"tone\" file=\"tone.wav\"/>"
        "<shape id=\"r\"><rect width=\"40\" height=\"40\" fill=\"#123456\"/></shape>"
        "<button id=\"b\" export=\"b\"><state id=\"r\"/><sound on=\"press\" sound=\"tone\"/>"
        "<sound on=\"rollOver\" sound=\"tone\" loops=\"3\"/></button>"
        "<frame><startSound sound=\"tone\" loops=\"2\" noMultiple=\"yes\" in=\"0.1\" out=\"0.2\">"
        "<envelope at=\"0\" left=\"0\" right=\"1\"/><envelope at=\"0.5\" left=\"0.5\" right=\"0.25\"/>"
        "</startSound></frame><frame><startSound sound=\"tone\" stop=\"yes\"/></frame></movie>");
    ASSERT_NE(movie, nullptr);
    const auto starts = tagsOf<swf::StartSound>(movie->timeline.frames.at(0));
    ASSERT_EQ(starts.size(), 1U);
    const swf::SoundInfo& cue = starts[0].info;
    EXPECT_FALSE(cue.stop);
    EXPECT_TRUE(cue.noMultiple);
    EXPECT_EQ(cue.loops, 2);
    EXPECT_EQ(cue.inPoint, 4410U);
    EXPECT_EQ(cue.outPoint, 8820U);
    ASSERT_EQ(cue.envelope.size(), 2U);
    EXPECT_EQ(cue.envelope[0].left, 0);
    EXPECT_EQ(cue.envelope[0].right, 32768);
    EXPECT_EQ(cue.envelope[1].position44, 22050U);
    EXPECT_EQ(cue.envelope[1].left, 16384);
    EXPECT_EQ(cue.envelope[1].right, 8192);
    const auto stops = tagsOf<swf::StartSound>(movie->timeline.frames.at(1));
    ASSERT_EQ(stops.size(), 1U);
    EXPECT_TRUE(stops[0].info.stop);

    const auto* button = std::get_if<swf::Button>(&movie->character(movie->exports.at("b"))->data);
    ASSERT_NE(button, nullptr);
    // Roll out, roll over, press, release.
    EXPECT_EQ(button->sounds[0].soundId, 0);
    EXPECT_EQ(button->sounds[1].soundId, starts[0].soundId);
    EXPECT_EQ(button->sounds[1].info.loops, 3);
    EXPECT_EQ(button->sounds[2].soundId, starts[0].soundId);
    EXPECT_EQ(button->sounds[3].soundId, 0);
}

// 2500 samples at 11025 Hz over frames of a tenth of a second: shares come from the total, so that the half
// sample of each frame is not lost, and the last block holds the rest.
TEST(Tags, ShareAStreamAmongTheFrames)
{
    const auto movie = compiled("<movie version=\"8\" rate=\"10\"><frame/>"
                                "<frame><stream file=\"tone.wav\" format=\"pcm\"/></frame>"
                                "<frame duration=\"4\"/></movie>");
    ASSERT_NE(movie, nullptr);
    ASSERT_TRUE(movie->timeline.streamHead.has_value());
    EXPECT_EQ(movie->timeline.streamHead->rate, 11025);
    EXPECT_EQ(movie->timeline.streamHead->samplesPerBlock, 1102);
    EXPECT_FALSE(movie->timeline.streamHead->stereo);
    std::vector<std::size_t> samples;
    std::string all;
    for (const swf::Frame& frame : movie->timeline.frames) {
        const auto blocks = tagsOf<swf::SoundStreamBlock>(frame);
        ASSERT_LE(blocks.size(), 1U);
        samples.push_back(blocks.empty() ? 0 : blocks[0].data.size() / 2);
        if (!blocks.empty()) all.append(blocks[0].data.begin(), blocks[0].data.end());
    }
    EXPECT_THAT(samples, ElementsAre(0, 1103, 1102, 295, 0, 0));
    EXPECT_EQ(all, wave(11025, 2500).substr(44));
}

} // namespace
