#include "MovieBytes.h"
#include "QtPrint.h"
#include "media/CacheName.h"
#include "media/Compress.h"
#include "media/MovieHeader.h"
#include "media/Projector.h"
#include "media/UrlEncode.h"

#include <ctime>
#include <gtest/gtest.h>

namespace media
{
namespace
{

using base::ErrorCode;

TEST(FrameHeader, RoundsHalvesToEvenAndReadsFieldsOfAnyWidth)
{
    struct Case {
        const char* name;
        unsigned fieldBits;
        std::uint32_t widthTwips, heightTwips;
        int width, height;
    };
    constexpr Case kCases[] = {
        {"usual", 15, 11000, 8000, 550, 400},
        {"halves go to the even neighbour", 7, 50, 70, 2, 4},
        {"below and above a half", 7, 69, 71, 3, 4},
        {"empty rectangle", 0, 0, 0, 0, 0},
        {"negative maxima count as unsigned", 4, 15, 10, 1, 0},
        {"the widest whose colour a header copy holds", 16, 65535, 40000, 3277, 2000},
        {"wider", 17, 65540, 40000, 3277, 2000},
        {"the widest", 31, 2147483640, 40000, 107374182, 2000},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        const auto header = readFrameHeader(frameHeader(c.fieldBits, c.widthTwips, c.heightTwips));
        ASSERT_TRUE(header) << header.error().what;
        EXPECT_EQ(header->width, c.width);
        EXPECT_EQ(header->height, c.height);
        EXPECT_EQ(header->frameRate, 24) << "the fraction byte comes first and is dropped";
        EXPECT_EQ(header->frameCount, 300);
        EXPECT_EQ(header->background, "0AB0FF");
        EXPECT_TRUE(header->hasBackground);
        EXPECT_EQ(needsLongHeader(frameHeader(c.fieldBits, 0, 0)), c.fieldBits > 16);
    }
    ByteVector attributes = movieBody();
    attributes[13] = 0x44; // tag 69 with four bytes, as version 8 begins
    attributes[14] = 0x11;
    EXPECT_EQ(readFrameHeader(attributes)->background, "0AB0FF") << "what stands there, whatever it means";
    EXPECT_FALSE(readFrameHeader(attributes)->hasBackground);
}

TEST(FrameHeader, EndsAnywhereWithoutReadingOn)
{
    const ByteVector whole = frameHeader(15, 11000, 8000);
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        const auto header =
            readFrameHeader(ByteVector(whole.begin(), whole.begin() + static_cast<long>(length)));
        EXPECT_EQ(header.has_value(), length >= 13) << length; // 65 bits, rate and count
    }
    EXPECT_EQ(readFrameHeader(ByteVector(whole.begin(), whole.begin() + 13))->background, "000000");
    EXPECT_FALSE(readFrameHeader(ByteVector(20, 0xFF)));
    EXPECT_TRUE(readFrameHeader(ByteVector(21, 0xFF))) << "fields of 31 bits";
}

TEST(DecompressData, TrustsTheStreamAndNotTheStatedLength)
{
    const ByteVector body = movieBody(100'000);
    const ByteVector stream = CompressData(body, 9).value();
    EXPECT_EQ(DecompressData(stream, body.size()).value(), body);
    EXPECT_EQ(DecompressData(stream, 0xFFFFFFFF).value(), body) << "a stated 4 GiB costs nothing";
    EXPECT_EQ(DecompressData(stream, body.size() - 1).error().code, ErrorCode::LimitReached);

    for (std::size_t length = 0; length < stream.size(); length += 1 + stream.size() / 200)
        EXPECT_FALSE(DecompressData(base::Bytes(stream).first(length), body.size())) << length;
    ByteVector damaged = stream;
    damaged[damaged.size() / 2] ^= 0x55;
    EXPECT_FALSE(DecompressData(damaged, body.size()));
    EXPECT_FALSE(DecompressData({}, 0));
    EXPECT_TRUE(DecompressData(CompressData({}, 9).value(), 0)->empty());
}

TEST(FindEmbeddedMovie, TakesTheMovieNearestTheEnd)
{
    const ByteVector first = plainMovie(5, 50);
    const ByteVector second = plainMovie(6, 60);
    ByteVector file = projector(first);
    const std::size_t offset = file.size();
    file.insert(file.end(), second.begin(), second.end());
    const auto found = findEmbeddedMovie(file);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->offset, offset);
    EXPECT_EQ(found->length, second.size());
}

TEST(FindEmbeddedMovie, PassesOverFalseCandidates)
{
    const ByteVector movie = plainMovie();
    ByteVector version8 = plainMovie(8);
    ByteVector noEndTag = movie;
    noEndTag.back() = 1;
    ByteVector tooLong = movie;
    tooLong[6] = 0xFF;
    const char letters[] = "FWSFWWSFFWS";
    const ByteVector inCode(letters, letters + sizeof letters - 1);
    struct Case {
        const char* name;
        const ByteVector* candidate;
    };
    for (const Case& c : {Case{"version 8", &version8}, Case{"no end tag", &noEndTag},
                          Case{"too long", &tooLong}, Case{"letters in code", &inCode}}) {
        SCOPED_TRACE(c.name);
        ByteVector file = projector(movie, 2000, 0);
        file.insert(file.end(), c.candidate->begin(), c.candidate->end());
        ASSERT_TRUE(findEmbeddedMovie(file));
        EXPECT_EQ(findEmbeddedMovie(file)->offset, 2000U);
        EXPECT_EQ(findEmbeddedMovie(projector(*c.candidate)).error().code, ErrorCode::NotFound);
    }
}

TEST(FindEmbeddedMovie, HandlesMoviesAtTheVeryEdges)
{
    ByteVector cut = projector(plainMovie(), 2000, 0);
    cut.pop_back();
    ASSERT_TRUE(findEmbeddedMovie(cut)) << "a movie may lack its last byte";
    cut.pop_back();
    EXPECT_FALSE(findEmbeddedMovie(cut)) << "but not two";

    ByteVector atStart = plainMovie();
    EXPECT_EQ(findEmbeddedMovie(atStart)->offset, 0U);
    for (const std::uint32_t length : {0U, 1U, 2U, 8U, 0xFFFFFFFFU}) {
        ByteVector file(1024, 0);
        const ByteVector movie = withHeader("FWS", 1, length, {});
        std::copy(movie.begin(), movie.end(), file.begin() + 500);
        EXPECT_FALSE(findEmbeddedMovie(file)) << length;
        std::copy(movie.begin(), movie.end(), file.begin());
        EXPECT_FALSE(findEmbeddedMovie(file)) << length;
    }
    for (std::size_t size = 0; size < 12; ++size) EXPECT_FALSE(findEmbeddedMovie(ByteVector(size, 'W')));
    ByteVector head{'F', 'W', 'S', 1, 0};
    EXPECT_FALSE(findEmbeddedMovie(head));
}

TEST(FindAnyMovie, TakesWhatIsAMovieToItsEnd)
{
    const ByteVector movie = plainMovie(9);
    ByteVector cut = movie;
    cut.resize(cut.size() - 30); // its length says more
    ByteVector noEnd = movie;
    noEnd[noEnd.size() - 2] = 0x40;
    ByteVector damaged = compressedMovie(9);
    damaged[damaged.size() - 2] ^= 0xFF;
    ByteVector wrongLength = compressedMovie(9);
    ++wrongLength[4];
    struct Case {
        const char* name;
        ByteVector file;
        bool found;
    };
    const Case kCases[] = {
        {"a version the first search refuses", movie, true},
        {"compressed", compressedMovie(6), true},
        {"LZMA", lzmaMovie(), true},
        {"cut", cut, false},
        {"no end tag", noEnd, false},
        {"damaged stream", damaged, false},
        {"version 0", plainMovie(0), false},
        {"shorter than it says", wrongLength, true},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        const auto found = findAnyMovie(projector(c.file, 2000, 0));
        ASSERT_EQ(found.has_value(), c.found);
        if (!c.found) continue;
        EXPECT_EQ(found->offset, 2000U);
        EXPECT_EQ(found->length, c.file.size());
    }
    ByteVector two = projector(plainMovie(9, 10), 2000, 0);
    const std::size_t second = two.size();
    for (const std::uint8_t byte : compressedMovie(8)) two.push_back(byte);
    two.insert(two.end(), damaged.begin(), damaged.end());
    EXPECT_EQ(findAnyMovie(two)->offset, second) << "the last one that is whole";
    for (const bool little : {true, false}) {
        ByteVector marked = two;
        const std::uint32_t numbers[] = {0xFA123456, static_cast<std::uint32_t>(two.size() - 2000)};
        for (const std::uint32_t number : numbers) {
            for (unsigned i = 0; i < 4; ++i)
                marked.push_back(static_cast<std::uint8_t>(number >> 8 * (little ? i : 3 - i)));
        }
        EXPECT_EQ(findAnyMovie(marked)->offset, 2000U) << "the footer points at it";
        marked.back() = marked[marked.size() - 4] = 0xFF;
        EXPECT_EQ(findAnyMovie(marked)->offset, second) << "and is not believed blindly";
    }
}

TEST(FindAnyMovie, LooksAtNoMoreThanItsBudget)
{
    // Each candidate is a bomb of its own; all together would take minutes.
    const ByteVector tags(50'000'000, 0x40); // none of them the last
    const ByteVector bomb = withHeader("CWS", 6, 50'000'008, CompressData(tags, 9).value());
    ByteVector file = projector(bomb);
    for (int i = 0; i < 300; ++i) file.insert(file.end(), bomb.begin(), bomb.end());
    const std::clock_t begin = std::clock(); // of this process: others may have the machine meanwhile
    EXPECT_FALSE(findAnyMovie(file));
    EXPECT_LT((std::clock() - begin) / CLOCKS_PER_SEC, 20);
}

TEST(CacheName, FlattensEitherKindOfPath)
{
    EXPECT_EQ(CacheName("C:\\Movies\\intro.swf", ".tmp"), "C@Movies#intro.swf.tmp");
    EXPECT_EQ(CacheName("/home/Фильмы//a.swf", ".swf"), "#home#Фильмы#a.swf.swf");
    EXPECT_EQ(CacheName("a\\b.swf", ""), CacheName("a/b.swf", ""));

    const QString deep = "/" + QString("Очень длинное имя/").repeated(40) + "ролик.swf";
    const QString name = CacheName(deep, ".tmp");
    EXPECT_LE(name.toUtf8().size(), 248) << "must leave room for a temporary file's suffix";
    EXPECT_TRUE(name.endsWith("#ролик.swf.tmp"));
    EXPECT_NE(name, CacheName("/x" + deep, ".tmp"));
}

TEST(URLEncode, EncodesByWindows1251Codes)
{
    EXPECT_EQ(URLEncode("Привет 1"), "%D0%9F%D1%80%D0%B8%D0%B2%D0%B5%D1%82%20%31");
    EXPECT_EQ(URLEncode("a\n&\u65E5"), "a%A%26");
}

} // namespace
} // namespace media
