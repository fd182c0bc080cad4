#include "flash/guard/Guard.h"
#include "flash/guard/Holding.h"
#include "flash/video/Deblocking.h"
#include "flash/video/FlvPlayer.h"
#include "flash/video/PlanarPixels.h"
#include "flash/video/StreamPictures.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

namespace flash::video
{
namespace
{

// clip.flv: 40 x 24 pixels, Sorenson H.263 at 10 pictures a second, a key frame every fifth; red for a
// second, then blue; a tone as MP3. screen.flv: screen video, 5 pictures.

FlvPlayer::FileBytes bytesOf(const std::string& name)
{
    std::ifstream file(std::string(TEST_SOURCE_DIR) + "/" + name, std::ios::binary);
    return std::make_shared<std::vector<std::uint8_t>>(std::istreambuf_iterator<char>(file),
                                                       std::istreambuf_iterator<char>());
}

bool isRed(const swf::Bitmap& picture)
{
    const std::uint32_t pixel = picture.pixels[picture.pixels.size() / 2];
    return (pixel >> 16 & 0xFF) > 200 && (pixel & 0xFF) < 60 && pixel >> 24 == 0xFF;
}
bool isBlue(const swf::Bitmap& picture)
{
    const std::uint32_t pixel = picture.pixels[picture.pixels.size() / 2];
    return (pixel >> 16 & 0xFF) < 60 && (pixel & 0xFF) > 200 && pixel >> 24 == 0xFF;
}

TEST(FlvPlayer, ShowsWhatIsDueAndStopsAtTheEnd)
{
    auto player = std::move(*FlvPlayer::open(bytesOf("clip.flv")));
    EXPECT_EQ(player->picture(), nullptr) << "the first picture is 50 ms into the file";
    player->advance(*player->msToNext());
    ASSERT_NE(player->picture(), nullptr);
    EXPECT_EQ(player->picture()->width, 40);
    EXPECT_EQ(player->picture()->height, 24);
    EXPECT_TRUE(isRed(*player->picture()));
    player->advance(950);
    EXPECT_TRUE(isRed(*player->picture())) << "the last of the first second";
    EXPECT_EQ(player->picturesInLastSecond(), 10);
    player->advance(60);
    EXPECT_TRUE(isBlue(*player->picture()));
    player->advance(1e9);
    EXPECT_TRUE(player->atEnd());
    EXPECT_DOUBLE_EQ(player->timeMs(), player->endMs());
    EXPECT_FALSE(player->msToNext());
    EXPECT_NE(player->soundFile(), nullptr);
}

// avc.flv: the same pictures in H.264 with three pictures between those they build on, which so come out of
// order; avc-709.flv and avc-full.flv say that their colours are of the newer matrix, or of full range.

TEST(FlvPlayer, ShowsH264InTheOrderOfItsPictures)
{
    auto player = std::move(*FlvPlayer::open(bytesOf("avc.flv")));
    player->advance(*player->msToNext());
    ASSERT_NE(player->picture(), nullptr);
    EXPECT_EQ(player->picture()->width, 40);
    EXPECT_EQ(player->picture()->height, 24);
    const double first = player->timeMs();
    std::shared_ptr<const swf::Bitmap> before;
    for (int i = 0; i < 20; ++i) {
        EXPECT_DOUBLE_EQ(player->timeMs(), first + 100 * i);
        const auto picture = player->picture();
        EXPECT_NE(picture, before) << "picture " << i;
        EXPECT_TRUE(i < 10 ? isRed(*picture) : isBlue(*picture)) << "picture " << i;
        before = picture;
        if (const auto ms = player->msToNext()) player->advance(*ms);
    }
    EXPECT_TRUE(player->atEnd());
    EXPECT_TRUE(player->seek(first + 700));
    EXPECT_DOUBLE_EQ(player->timeMs(), first + 500);
    EXPECT_TRUE(isRed(*player->picture()));
    EXPECT_TRUE(player->seek(first + 1900));
    EXPECT_TRUE(isBlue(*player->picture())) << "from behind the end of what was decoded";
}

TEST(FlvPlayer, TakesColoursAsH264StatesThem)
{
    for (const char* name : {"avc.flv", "avc-709.flv", "avc-full.flv"}) {
        auto player = std::move(*FlvPlayer::open(bytesOf(name)));
        player->advance(300);
        ASSERT_NE(player->picture(), nullptr) << name;
        const std::uint32_t pixel = player->picture()->pixels[40 * 12 + 20];
        const int wanted[] = {0xE0, 0x20, 0x20};
        for (int i = 0; i < 3; ++i)
            EXPECT_NEAR(static_cast<int>(pixel >> (16 - 8 * i) & 0xFF), wanted[i], 3) << name << " " << i;
    }
}

TEST(FlvPlayer, TakesRoomForItsPicturesAndGivesItBack)
{
    guard::Guard watch;
    const guard::Turn turn(watch);
    const auto bytes = bytesOf("clip.flv");
    for (const bool hasRoom : {true, false}) {
        watch.setMostHeld(hasRoom ? 1U << 20U : 1000U);
        auto player = std::move(*FlvPlayer::open(bytes));
        player->advance(500);
        EXPECT_EQ(player->picture() != nullptr, hasRoom);
        EXPECT_EQ(watch.ledger()->held() > 40U * 24 * 4, hasRoom);
        player.reset();
        EXPECT_EQ(watch.ledger()->held(), 0U);
    }
}

TEST(FlvPlayer, SeeksToKeyFramesBothWays)
{
    auto player = std::move(*FlvPlayer::open(bytesOf("clip.flv")));
    EXPECT_TRUE(player->seek(1900));
    EXPECT_DOUBLE_EQ(player->timeMs(), 1550) << "key frames come every fifth picture";
    EXPECT_TRUE(isBlue(*player->picture()));
    EXPECT_TRUE(player->seek(700));
    EXPECT_DOUBLE_EQ(player->timeMs(), 550);
    EXPECT_TRUE(isRed(*player->picture()));
    EXPECT_FALSE(player->seek(player->endMs() + 1));
    EXPECT_DOUBLE_EQ(player->timeMs(), 550);
    EXPECT_TRUE(player->seek(-5));
    EXPECT_DOUBLE_EQ(player->timeMs(), 0);
}

TEST(FlvPlayer, HandsOutMessagesOnce)
{
    auto player = std::move(*FlvPlayer::open(bytesOf("clip.flv")));
    const auto messages = player->takeMessages();
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(std::string(messages[0].begin() + 3, messages[0].begin() + 13), "onMetaData");
    EXPECT_TRUE(player->takeMessages().empty());
}

TEST(FlvFile, SurvivesEveryTruncationAndFlippedBytes)
{
    for (const char* name : {"clip.flv", "screen.flv", "avc.flv"}) {
        const auto whole = bytesOf(name);
        for (std::size_t size = 0; size < whole->size(); size += 7) {
            const auto part =
                std::make_shared<std::vector<std::uint8_t>>(whole->begin(), whole->begin() + size);
            auto player = FlvPlayer::open(part);
            EXPECT_TRUE(size >= 9 || !player);
            if (!player) continue;
            (*player)->advance(1e9);
            (*player)->picture();
        }
        for (std::size_t at = 0; at < whole->size(); at += 11) {
            auto damaged = std::make_shared<std::vector<std::uint8_t>>(*whole);
            (*damaged)[at] ^= 0xFF;
            auto player = FlvPlayer::open(damaged);
            if (!player) continue;
            while ((*player)->msToNext()) {
                (*player)->advance(std::max(1.0, *(*player)->msToNext()));
                (*player)->picture();
            }
        }
    }
}

TEST(StreamPictures, FollowsNumbersForwardAndBack)
{
    const auto bytes = bytesOf("clip.flv");
    const FlvFile file = *FlvFile::parse(*bytes);
    ASSERT_EQ(file.video.size(), 20U);
    swf::VideoStream stream;
    stream.codec = 2;
    stream.width = 40;
    stream.height = 24;
    stream.frameCount = 20;
    for (std::size_t i = 0; i < file.video.size(); ++i)
        stream.frames.push_back({static_cast<std::uint16_t>(i), file.video[i].packet});
    StreamPictures pictures(stream);
    EXPECT_TRUE(isRed(*pictures.at(0)));
    EXPECT_TRUE(isBlue(*pictures.at(19)));
    EXPECT_TRUE(isRed(*pictures.at(4)));
    EXPECT_TRUE(isBlue(*pictures.at(500))) << "numbers behind the last show the last";
    swf::VideoStream unknown = stream;
    unknown.codec = 77;
    EXPECT_EQ(StreamPictures(unknown).at(3), nullptr);
}

TEST(VideoDecoder, DecodesScreenVideo)
{
    const auto bytes = bytesOf("screen.flv");
    const FlvFile file = *FlvFile::parse(*bytes);
    const auto decoder = VideoDecoder::open(VideoCodec::Screen, 40, 24);
    ASSERT_NE(decoder, nullptr);
    std::shared_ptr<const swf::Bitmap> last;
    for (const FlvFile::Video& video : file.video)
        if (auto picture = decoder->decode(video.packet)) last = picture;
    ASSERT_NE(last, nullptr);
    EXPECT_EQ(last->width, 40);
    EXPECT_EQ(last->height, 24);
}

using ByteList = std::vector<std::uint8_t>;

/// A key frame of VP6 of so many blocks of 16 pixels a side. What its arithmetic coder reads means something
/// whatever it is.
ByteList vp6KeyFrame(std::uint8_t rows, std::uint8_t columns, unsigned seed)
{
    constexpr std::uint8_t kMiddlingQuality = 30 << 1, kVersion = 6 << 3, kFiltered = 6;
    ByteList bytes{kMiddlingQuality, kVersion | kFiltered, rows, columns, rows, columns};
    for (unsigned i = 0; i < 600; ++i) {
        seed = seed * 1664525 + 1013904223;
        bytes.push_back(static_cast<std::uint8_t>(seed >> 24));
    }
    return bytes;
}

/// Colours, with an alpha picture behind them. @param offset of that, as it is stated
ByteList withAlpha(const ByteList& colors, const ByteList& alpha, std::size_t offset)
{
    ByteList packet;
    for (int shift = 16; shift >= 0; shift -= 8) packet.push_back(static_cast<std::uint8_t>(offset >> shift));
    packet.insert(packet.end(), colors.begin(), colors.end());
    packet.insert(packet.end(), alpha.begin(), alpha.end());
    return packet;
}

TEST(VideoDecoder, TakesAlphaPicturesAsTheyAre)
{
    const ByteList colors = vp6KeyFrame(2, 3, 1), same = vp6KeyFrame(2, 3, 2);
    const ByteList bigger = vp6KeyFrame(9, 12, 3), smaller = vp6KeyFrame(1, 1, 4);
    const std::size_t end = colors.size();
    struct Case {
        const char* name;
        ByteList packet;
        bool isWhole;
    };
    std::vector<Case> cases = {
        {"alike", withAlpha(colors, same, end), true},
        {"a bigger alpha", withAlpha(colors, bigger, end), false},
        {"a smaller alpha", withAlpha(colors, smaller, end), false},
        {"alpha within the colours", withAlpha(colors, same, 3), false},
        {"alpha at the very end", withAlpha(colors, {}, end), false},
        {"alpha behind the end", withAlpha(colors, same, 0xFFFFFF), false},
        {"alpha of size 0", withAlpha(colors, vp6KeyFrame(0, 0, 5), end), false},
    };
    const ByteList whole = cases.front().packet;
    for (std::size_t size = 0; size < whole.size(); size += size < 40 ? 1 : 37)
        cases.push_back(
            {"cut off", ByteList(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)), false});
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.name) + ", bytes: " + std::to_string(c.packet.size()));
        const auto decoder = VideoDecoder::open(VideoCodec::Vp6Alpha, 0, 0);
        ASSERT_NE(decoder, nullptr);
        const auto picture = decoder->decode(c.packet);
        EXPECT_TRUE(picture != nullptr || !c.isWhole);
        // After damage it goes on with what is whole.
        const auto next = decoder->decode(whole);
        ASSERT_NE(next, nullptr);
        EXPECT_EQ(next->width, 48);
        EXPECT_EQ(next->height, 32);
        for (const auto& shown : {picture, next}) {
            if (shown == nullptr) continue;
            ASSERT_EQ(shown->pixels.size(), static_cast<std::size_t>(shown->width * shown->height));
            EXPECT_FALSE(shown->opaque);
            EXPECT_TRUE(std::ranges::all_of(shown->pixels, [](std::uint32_t pixel) {
                const std::uint32_t alpha = pixel >> 24;
                return (pixel >> 16 & 0xFF) <= alpha && (pixel >> 8 & 0xFF) <= alpha &&
                       (pixel & 0xFF) <= alpha;
            }));
        }
    }
}

/// A key frame of Sorenson H.263 of two blocks of 16 pixels a side, each of one level: 64 and 80 in luma, no
/// colour; coded by a quantizer of 11.
ByteList twoLevels(bool asksForDeblocking)
{
    ByteList bytes;
    int used = 0;
    const auto put = [&](unsigned value, int bits) {
        for (int bit = bits - 1; bit >= 0; --bit, ++used) {
            if (used % 8 == 0) bytes.push_back(0);
            bytes.back() |= static_cast<std::uint8_t>((value >> bit & 1) << (7 - used % 8));
        }
    };
    put(1, 17); // where a picture starts
    put(0, 5 + 8 + 3);
    put(32, 8);
    put(16, 8);
    put(0, 2);
    put(asksForDeblocking ? 1 : 0, 1);
    put(11, 5);
    put(0, 1);
    for (const unsigned level : {64U, 80U}) {
        put(0b1'0011, 1 + 4); // nothing but the levels of its four blocks and of the two of colour
        for (int block = 0; block < 4; ++block) put(level, 8);
        put(0xFF, 8); // 128
        put(0xFF, 8);
    }
    put(0, 16);
    return bytes;
}

TEST(VideoDecoder, SmoothsSeamsWhereItIsAsked)
{
    const auto grays = [](bool asks, Deblocking deblocking) {
        const auto decoder = VideoDecoder::open(VideoCodec::SorensonH263, 32, 16);
        decoder->setDeblocking(deblocking);
        const auto picture = decoder->decode(twoLevels(asks));
        std::vector<int> found;
        for (std::size_t x = 13; picture && x < 19; ++x)
            found.push_back(static_cast<int>(picture->pixels[4 * 32 + x] & 0xFF));
        return found;
    };
    // 64 to 80 in luma, shown as 56 to 75.
    const std::vector<int> hard{56, 56, 56, 75, 75, 75}, soft{56, 58, 61, 70, 72, 75};
    EXPECT_EQ(grays(false, Deblocking::AsCoded), hard);
    EXPECT_EQ(grays(true, Deblocking::AsCoded), soft);
    EXPECT_EQ(grays(true, Deblocking::Off), hard);
    EXPECT_EQ(grays(false, Deblocking::On), soft);
}

TEST(Deblocking, LeavesEdgesOfWhatIsShown)
{
    // Left and right of a seam, and what becomes of the four samples beside it at a strength of 5.
    struct Case {
        int left, right;
        std::vector<int> wanted;
    };
    const Case cases[] = {{31, 16, {29, 27, 20, 18}},
                          {16, 31, {18, 21, 26, 29}},
                          {200, 60, {200, 200, 60, 60}},
                          {90, 90, {90, 90, 90, 90}}};
    for (const Case& c : cases) {
        for (const bool upright : {true, false}) {
            ByteList samples(256);
            for (int i = 0; i < 256; ++i)
                samples[static_cast<std::size_t>(i)] =
                    static_cast<std::uint8_t>((upright ? i % 16 : i / 16) < 8 ? c.left : c.right);
            smoothSeams({samples.data(), 16, 16, 16}, [](int, int) { return 11; });
            std::vector<int> found;
            for (int at = 6; at < 10; ++at)
                found.push_back(samples[static_cast<std::size_t>(upright ? 4 * 16 + at : at * 16 + 4)]);
            EXPECT_EQ(found, c.wanted) << c.left << " to " << c.right << (upright ? "" : ", level");
        }
    }
}

TEST(PlanarPixels, KeepsColoursWithinTheirFourPixelsAndTheirAlpha)
{
    const int older[] = {104597, 132201, 25675, 53279};
    const ByteList luma{81, 81, 145, 145, 16, 235}, u{90, 54, 128}, v{240, 34, 128};
    const PlanarRow row{luma.data(), u.data(), v.data(), nullptr};
    std::vector<std::uint32_t> pixels(6);
    makePixels(row, ColorMatrix::of({older[0], older[1], older[2], older[3]}, false), pixels);
    EXPECT_EQ(pixels, (std::vector<std::uint32_t>{0xFFFE0000, 0xFFFE0000, 0xFF00FF01, 0xFF00FF01, 0xFF000000,
                                                  0xFFFFFFFF}));
    const ByteList alpha{255, 100, 0, 16, 0, 255};
    makePixels({luma.data(), u.data(), v.data(), alpha.data()},
               ColorMatrix::of({older[0], older[1], older[2], older[3]}, true), pixels);
    EXPECT_EQ(pixels[1], 0x64640E0EU) << "of full range, and no more of it than its alpha";
    EXPECT_EQ(pixels[2], 0U);
    EXPECT_EQ(pixels[5], 0xFFEBEBEBU);
}

} // namespace
} // namespace flash::video
