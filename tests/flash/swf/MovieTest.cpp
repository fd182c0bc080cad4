#include "MovieWriter.h"

#include "flash/swf/Describe.h"

#include <filesystem>
#include <fstream>
#include <iterator>

namespace flash::swf
{
namespace
{

using testing::Test;

ByteList label(std::string_view name) { return tag(43, BodyWriter().text(name)); }

TEST(Movie, ReadsTheSampleWithoutAWarning)
{
    const auto movie = parsed(sampleMovie());
    EXPECT_TRUE(movie->warnings.empty()) << describe(*movie);
    EXPECT_EQ(movie->characters.size(), 14U) << describe(*movie);
    EXPECT_EQ(movie->header.frameRate, 12.5);
    EXPECT_EQ(movie->header.frameSize, (Rect{0, 2000, 0, 1600}));
    EXPECT_EQ(movie->background, (Rgba{255, 0, 0, 255}));
    EXPECT_EQ(movie->scriptTimeoutSeconds, 20);
    EXPECT_EQ(movie->metadata, "<about/>");
    EXPECT_EQ(movie->exports.at("Clip"), 30);
    ASSERT_EQ(movie->timeline.frames.size(), 2U);
    EXPECT_EQ(movie->timeline.frames[0].label, "start");
    EXPECT_EQ(movie->timeline.frames[1].endOffset, movie->bytes.size() - kEnd.size());
    ASSERT_TRUE(movie->timeline.streamHead);
    EXPECT_EQ(movie->timeline.streamHead->latencySamples, 12);
    ASSERT_NE(movie->character(30), nullptr);
    EXPECT_TRUE(movie->character(30)->scalingGrid);
}

TEST(Movie, IsTheSameWhenCompressed)
{
    const ByteList plain = sampleMovie();
    const auto movie = parsed(compressedMovie(plain));
    EXPECT_EQ(movie->bytes, plain);
    EXPECT_TRUE(movie->header.compressed);
    EXPECT_EQ(movie->characters.size(), parsed(plain)->characters.size());
}

TEST(Movie, CompressedWithLzmaIsReadOrClearlyRefused)
{
    const ByteList file{0x5A, 0x57, 0x53, 0x0D, 0x1B, 0x00, 0x00, 0x00, 0x1B, 0x00, 0x00,
                        0x00, 0x5D, 0x00, 0x10, 0x00, 0x00, 0x00, 0x50, 0x00, 0x30, 0x07,
                        0xC8, 0x08, 0x44, 0x0D, 0x4B, 0x27, 0xFC, 0x3B, 0x13, 0x3C, 0xCE,
                        0xFB, 0x7B, 0x5B, 0x19, 0x77, 0xFF, 0xFF, 0xDB, 0x0E, 0x00, 0x00};
    const auto movie = parseMovie(file);
    if (!movie) {
        EXPECT_EQ(movie.error().code, base::ErrorCode::Unsupported);
        return;
    }
    EXPECT_EQ((*movie)->header.frameSize, (Rect{0, 2000, 0, 1600}));
    EXPECT_EQ((*movie)->timeline.frames.size(), 1U);
    EXPECT_TRUE((*movie)->warnings.empty());
}

TEST(Movie, RefusesWhatIsNoMovie)
{
    struct Case {
        const char* name;
        ByteList bytes;
        base::ErrorCode code;
    };
    const Case cases[] = {
        {"nothing", {}, base::ErrorCode::Malformed},
        {"another signature", {'F', 'L', 'V', 1, 0, 0, 0, 0, 0, 0}, base::ErrorCode::Malformed},
        {"no length", {'F', 'W', 'S', 6}, base::ErrorCode::Truncated},
        {"no frame size", {'F', 'W', 'S', 6, 0, 0, 0, 0, 0x78}, base::ErrorCode::Truncated},
        {"compressed garbage", {'C', 'W', 'S', 6, 0, 0, 0, 0, 1, 2, 3, 4}, base::ErrorCode::Truncated},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto movie = parseMovie(c.bytes);
        ASSERT_FALSE(movie);
        EXPECT_EQ(movie.error().code, c.code);
    }
}

// The copy is exact in size, so that a read past its end is seen by the address sanitizer.
TEST(Movie, CutAfterEachByteKeepsTheFramesItHas)
{
    const ByteList whole = sampleMovie();
    const auto complete = parsed(whole);
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const auto movie =
            parseMovie(ByteList(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)));
        if (!movie) {
            EXPECT_LT(length, 8U + 11U + 4U);
            continue;
        }
        std::size_t present = 0;
        for (const Frame& frame : complete->timeline.frames) present += frame.endOffset <= length;
        EXPECT_GE((*movie)->timeline.frames.size(), present) << "cut at " << length;
    }
    const ByteList compressed = compressedMovie(whole);
    for (std::size_t length = 0; length < compressed.size(); ++length)
        (void)parseMovie(
            ByteList(compressed.begin(), compressed.begin() + static_cast<std::ptrdiff_t>(length)));
}

TEST(Movie, WithAnyByteDestroyedStaysWithinItsBounds)
{
    const ByteList whole = sampleMovie();
    for (std::size_t at = 8; at < whole.size(); ++at) {
        for (const std::uint8_t value : {0x00, 0x7F, 0xFF}) {
            ByteList damaged = whole;
            damaged[at] = value;
            (void)parseMovie(damaged);
        }
    }
}

TEST(Movie, WithHostileLengthsTakesNoMemoryForThem)
{
    const std::uint32_t huge = 0xFFFFFFFF;
    struct Case {
        const char* name;
        ByteList tag;
    };
    const Case cases[] = {
        {"tag length", BodyWriter().u16(2U << 6U | 63U).u32(huge).bytes()},
        {"names", tag(56, BodyWriter().u16(0xFFFF))},
        {"glyphs", tag(48, BodyWriter().u16(1).u8(0).u8(0).u8(0).u16(0xFFFF))},
        {"fills", tag(22, BodyWriter().u16(1).rect(0, 0, 0, 0).u8(0xFF).u16(0xFFFF))},
        {"JPEG before alpha", tag(35, BodyWriter().u16(1).u32(huge))},
        {"lossless pixels",
         tag(36, BodyWriter().u16(1).u8(5).u16(0xFFFF).u16(0xFFFF).raw(deflated(ByteList(1000))))},
        {"clip action", tag(26, BodyWriter().u8(0x80).u16(1).u16(0).u32(1).u32(1).u32(huge))},
        {"convolution", tag(70, BodyWriter().u8(0).u8(1).u16(1).u8(1).u8(5).u8(0xFF).u8(0xFF))},
        {"kerning", tag(48, BodyWriter()
                                .u16(1)
                                .u8(0x80)
                                .u8(0)
                                .u8(0)
                                .u16(1)
                                .u16(4)
                                .u16(5)
                                .u8(0)
                                .u8('a')
                                .u16(0)
                                .u16(0)
                                .u16(0)
                                .u16(0)
                                .u8(0)
                                .u16(0xFFFF))},
        {"morph offset",
         tag(46, BodyWriter().u16(1).rect(0, 0, 0, 0).rect(0, 0, 0, 0).u32(huge).u16(0).u8(0))},
        {"button actions", tag(34, BodyWriter().u16(1).u8(0).u16(0xFFFF).u8(0))},
    };
    ParseLimits limits;
    limits.bitmapBytes = limits.definitionBytes = 1U << 20U;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto movie = parsed(movieBytes(6, {kShowFrame, c.tag, kShowFrame}), limits);
        EXPECT_FALSE(movie->warnings.empty());
        EXPECT_GE(movie->timeline.frames.size(), 1U);
    }
}

TEST(Movie, StopsAtItsBudgets)
{
    ParseLimits limits;
    limits.inflatedBytes = 4000;
    const ByteList big = compressedMovie(movieBytes(6, {tag(999, BodyWriter().raw(ByteList(5000)))}));
    const auto movie = parseMovie(big, limits);
    ASSERT_FALSE(movie);
    EXPECT_EQ(movie.error().code, base::ErrorCode::LimitReached);

    limits = {};
    limits.definitionBytes = 20 * sizeof(Frame);
    const auto many = parsed(movieBytes(6, std::vector<ByteList>(100, kShowFrame)), limits);
    EXPECT_EQ(many->timeline.frames.size(), 20U);
    EXPECT_EQ(many->warnings.size(), 1U);

    ByteList nested = kEnd;
    for (int depth = 0; depth < 50; ++depth)
        nested = tag(39, BodyWriter().u16(static_cast<std::uint32_t>(depth)).u16(1).raw(nested));
    EXPECT_FALSE(parsed(movieBytes(6, {nested}))->warnings.empty());
}

TEST(Movie, SkipsADamagedTagAndSaysWhere)
{
    const ByteList broken = tag(2, BodyWriter().u16(7));
    const auto movie = parsed(movieBytes(6, {label("a"), broken, tag(999), kShowFrame}));
    ASSERT_EQ(movie->warnings.size(), 1U);
    EXPECT_EQ(movie->warnings[0].rfind("DefineShape at byte 31: ", 0), 0U) << movie->warnings[0];
    EXPECT_EQ(movie->character(7), nullptr);
    EXPECT_EQ(movie->timeline.frames.size(), 1U);
}

TEST(Movie, KeepsTheFirstOfTwoDefinitionsWithOneId)
{
    const auto sound = [](std::uint32_t samples) { return tag(14, BodyWriter().u16(1).u8(0).u32(samples)); };
    const auto movie = parsed(movieBytes(6, {sound(10), sound(20)}));
    EXPECT_EQ(definition<Sound>(*movie, 1)->sampleCount, 10U);
    EXPECT_EQ(movie->warnings.size(), 1U);
}

TEST(Timeline, FindsLabelsWithoutRegardToCaseAndTakesTheFirst)
{
    const auto movie = parsed(
        movieBytes(6, {label("Intro"), kShowFrame, label("loop"), kShowFrame, label("LOOP"), kShowFrame}));
    EXPECT_EQ(movie->timeline.frameByLabel("intro"), 0U);
    EXPECT_EQ(movie->timeline.frameByLabel("Loop"), 1U);
    EXPECT_FALSE(movie->timeline.frameByLabel("missing"));
    EXPECT_FALSE(movie->timeline.frameByLabel(""));
}

TEST(Timeline, EndsTheLastFrameThatLacksItsMarkUnlessTheMovieIsCutOff)
{
    const auto cut = [](ByteList file) {
        file.resize(file.size() - kEnd.size());
        return file;
    };
    const ByteList two = movieBytes(6, {kShowFrame, label("last")}), one = movieBytes(6, {label("last")});
    const auto whole = parsed(two);
    ASSERT_EQ(whole->timeline.frames.size(), 2U);
    EXPECT_EQ(whole->timeline.frames[1].label, "last");
    EXPECT_EQ(parsed(cut(two))->timeline.frames.size(), 1U);
    EXPECT_EQ(parsed(cut(one))->timeline.frames.size(), 1U) << "its only frame";
}

TEST(Timeline, OfASpriteWithoutEndTagIsKept)
{
    const auto movie = parsed(
        movieBytes(6, {tag(39, BodyWriter().u16(5).u16(9).raw(label("x")).raw(kShowFrame)), kShowFrame}));
    const auto* sprite = definition<Sprite>(*movie, 5);
    ASSERT_NE(sprite, nullptr);
    EXPECT_EQ(sprite->timeline->frames.size(), 1U);
    EXPECT_EQ(sprite->timeline->statedFrameCount, 9);
    EXPECT_EQ(sprite->timeline->frameByLabel("X"), 0U);
}

TEST(Movie, OfTheOtherMachineIsRecognisedFromVersion9)
{
    const ByteList attributes = tag(69, BodyWriter().u32(8));
    EXPECT_TRUE(parsed(movieBytes(9, {attributes}))->isAs3);
    EXPECT_FALSE(parsed(movieBytes(8, {attributes}))->isAs3);
}

TEST(Movie, ShowsByItsFirstTagsForWhichPlayersItWasMade)
{
    const ByteList attributes = tag(69, BodyWriter().u32(0)), about = tag(77, BodyWriter().text("<about/>"));
    const ByteList background = tag(9, BodyWriter().u8(1).u8(2).u8(3));
    const auto isOfLaterPlayers = [](int version, int rate, const std::vector<ByteList>& tags) {
        constexpr std::size_t kWholeRateAt = 20; // behind the signature, the length, the stage and a fraction
        ByteList bytes = movieBytes(version, tags);
        bytes[kWholeRateAt] = static_cast<std::uint8_t>(rate);
        return parsed(bytes)->isOfLaterPlayers();
    };
    EXPECT_TRUE(isOfLaterPlayers(10, 1, {kShowFrame})) << "by its version";
    EXPECT_TRUE(isOfLaterPlayers(8, 1, {attributes, about, kShowFrame})) << "by what it tells of itself";
    EXPECT_TRUE(isOfLaterPlayers(7, 1, {attributes, background, kShowFrame})) << "by the tools' order";
    EXPECT_FALSE(isOfLaterPlayers(8, 1, {background, attributes, kShowFrame})) << "not the tools' order";
    EXPECT_TRUE(isOfLaterPlayers(5, 12, {background, kShowFrame}));
    EXPECT_FALSE(isOfLaterPlayers(5, 1, {background, kShowFrame}));
    EXPECT_FALSE(isOfLaterPlayers(8, 24, {attributes, kShowFrame, background}));
    EXPECT_FALSE(isOfLaterPlayers(6, 24, {kShowFrame, background})) << "a background that comes late";
}

TEST(Movie, FromTheCollectionIsReadWithoutAWarning)
{
    const std::filesystem::path folder = std::filesystem::path(PROJECT_SOURCE_DIR) / "../shared/movies";
    if (!std::filesystem::is_directory(folder)) GTEST_SKIP() << "the collection is not here";
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() != ".swf") continue;
        SCOPED_TRACE(entry.path().string());
        std::ifstream file(entry.path(), std::ios::binary);
        const auto movie = parsed(ByteList(std::istreambuf_iterator<char>(file), {}));
        EXPECT_TRUE(movie->warnings.empty()) << describe(*movie);
        EXPECT_EQ(movie->timeline.frames.size(), movie->header.frameCount);
    }
}

} // namespace
} // namespace flash::swf
