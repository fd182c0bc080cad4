#include "MovieWriter.h"
#include "TestPictures.h"

namespace flash::swf
{
namespace
{

using Pixels = std::vector<std::uint32_t>;

std::shared_ptr<const Bitmap> bitmapOf(const std::vector<ByteList>& tags)
{
    const auto movie = parsed(movieBytes(8, tags));
    const auto* character = definition<BitmapCharacter>(*movie, 1);
    return character ? character->bitmap : std::make_shared<const Bitmap>();
}

TEST(Bitmap, ReadsEveryLosslessFormat)
{
    struct Case {
        const char* name;
        unsigned code, format, width, height;
        ByteList header, data;
        Pixels pixels;
        bool opaque;
    };
    const Case cases[] = {
        {"colour map, rows padded to 4 bytes, an index past the map is black",
         20,
         3,
         3,
         2,
         {1},
         {10, 20, 30, 40, 50, 60, 0, 1, 0, 0, 1, 2, 1, 0},
         {0xFF0A141E, 0xFF28323C, 0xFF0A141E, 0xFF28323C, 0xFF000000, 0xFF28323C},
         true},
        {"15 bits, big-endian, rows padded to 4 bytes",
         20,
         4,
         1,
         2,
         {},
         {0x7C, 0x1F, 0, 0, 0x03, 0xE0, 0, 0},
         {0xFFFF00FF, 0xFF00FF00},
         true},
        {"24 bits", 20, 5, 2, 1, {}, {0, 1, 2, 3, 99, 4, 5, 6}, {0xFF010203, 0xFF040506}, true},
        {"colour map with alpha", 36, 3, 1, 1, {0}, {10, 20, 30, 40, 0, 0, 0, 0}, {0x280A141E}, false},
        {"32 bits: multiplied by alpha already, never brighter than it",
         36,
         5,
         2,
         1,
         {},
         {128, 64, 200, 128, 255, 1, 2, 3},
         {0x80408080, 0xFF010203},
         false},
        {"all opaque in spite of its alpha channel", 36, 5, 1, 1, {}, {255, 1, 2, 3}, {0xFF010203}, true},
        {"rows that are missing are transparent", 36, 5, 1, 2, {}, {255, 1, 2, 3}, {0xFF010203, 0}, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto bitmap = bitmapOf(
            {tag(c.code, BodyWriter().u16(1).u8(c.format).u16(c.width).u16(c.height).raw(c.header).raw(
                             deflated(c.data)))});
        EXPECT_EQ(bitmap->width, static_cast<int>(c.width));
        EXPECT_EQ(bitmap->height, static_cast<int>(c.height));
        EXPECT_EQ(bitmap->pixels, c.pixels);
        EXPECT_EQ(bitmap->opaque, c.opaque);
    }
}

TEST(Bitmap, ReadsJpegInEveryFormThatEncodersWrite)
{
    const ByteList& whole = testJpeg();
    const ByteList tables = jpegTablesOf(whole), picture = jpegPictureOf(whole);
    const auto joined = [](ByteList a, const ByteList& b) {
        a.insert(a.end(), b.begin(), b.end());
        return a;
    };
    const ByteList strayMarkers{0xFF, 0xD9, 0xFF, 0xD8};
    struct Case {
        const char* name;
        std::vector<ByteList> tags;
    };
    const Case cases[] = {
        {"tables of the movie", {tag(8, BodyWriter().raw(tables)), tag(6, BodyWriter().u16(1).raw(picture))}},
        {"empty tables, whole picture", {tag(8), tag(6, BodyWriter().u16(1).raw(whole))}},
        {"no tables, whole picture", {tag(6, BodyWriter().u16(1).raw(whole))}},
        {"whole picture", {tag(21, BodyWriter().u16(1).raw(whole))}},
        {"tables in a stream before the picture",
         {tag(21, BodyWriter().u16(1).raw(joined(tables, picture)))}},
        {"stray end and start in front", {tag(21, BodyWriter().u16(1).raw(joined(strayMarkers, whole)))}},
        {"no end of image", {tag(21, BodyWriter().u16(1).raw(ByteList(whole.begin(), whole.end() - 2)))}},
        {"no alpha behind it",
         {tag(35, BodyWriter().u16(1).u32(static_cast<std::uint32_t>(whole.size())).raw(whole))}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto bitmap = bitmapOf(c.tags);
        EXPECT_EQ(bitmap->pixels, Pixels(64, 0xFF808080));
        EXPECT_TRUE(bitmap->opaque);
    }
}

TEST(Bitmap, TakesAlphaFromBesideTheJpeg)
{
    ByteList alpha(64, 0x40);
    alpha[0] = 0xFF;
    const auto bitmap = bitmapOf({tag(90, BodyWriter()
                                              .u16(1)
                                              .u32(static_cast<std::uint32_t>(testJpeg().size()))
                                              .u16(0)
                                              .raw(testJpeg())
                                              .raw(deflated(alpha)))});
    ASSERT_EQ(bitmap->pixels.size(), 64U);
    EXPECT_EQ(bitmap->pixels[0], 0xFF808080);
    EXPECT_EQ(bitmap->pixels[1], 0x40404040U);
    EXPECT_FALSE(bitmap->opaque);
}

TEST(Bitmap, ReadsPngAndGifInPlaceOfJpeg)
{
    const auto png = bitmapOf({tag(21, BodyWriter().u16(1).raw(testPng()))});
    EXPECT_EQ(png->pixels, (Pixels{0x80800000, 0xFF0000FF}));
    EXPECT_FALSE(png->opaque);
    const auto gif = bitmapOf({tag(21, BodyWriter().u16(1).raw(testGif()))});
    EXPECT_EQ(gif->pixels, Pixels{0xFF00FF00});
    EXPECT_TRUE(gif->opaque);
}

TEST(Picture, IsDecodedWhateverItsKindAndRefusedWhenItIsNone)
{
    for (const ByteList& file : {testJpeg(), testPng(), testGif()}) {
        EXPECT_TRUE(decodePicture(file));
        for (std::size_t length = 0; length < file.size(); length += 7)
            (void)decodePicture(ByteList(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(length)));
    }
    const auto none = decodePicture(ByteList{'B', 'M', 0, 0});
    ASSERT_FALSE(none);
    EXPECT_EQ(none.error().code, base::ErrorCode::Unsupported);
}

TEST(Picture, ThatClaimsAHugeSizeIsRefusedBeforeMemoryIsTaken)
{
    ByteList jpeg = testJpeg();
    for (std::size_t i = 0; i + 9 < jpeg.size(); ++i) // the frame header holds height and width
        if (jpeg[i] == 0xFF && jpeg[i + 1] == 0xC0)
            jpeg[i + 5] = jpeg[i + 6] = jpeg[i + 7] = jpeg[i + 8] = 0xF0;
    for (const ByteList& file : {jpeg, testPng(0x0F)}) {
        const auto huge = decodePicture(file);
        ASSERT_FALSE(huge);
        EXPECT_EQ(huge.error().code, base::ErrorCode::LimitReached) << huge.error().what;
    }
    ParseLimits limits;
    limits.bitmapBytes = 100;
    const auto overBudget = decodePicture(testJpeg(), limits);
    ASSERT_FALSE(overBudget);
    EXPECT_EQ(overBudget.error().code, base::ErrorCode::LimitReached);
}

} // namespace
} // namespace flash::swf
