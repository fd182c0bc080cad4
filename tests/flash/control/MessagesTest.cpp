#include "flash/control/Messages.h"
#include "flash/control/Channel.h"
#include "flash/control/PictureMemory.h"
#include "flash/control/SoundRing.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <limits>
#include <sys/socket.h>
#include <unistd.h>

namespace flash::control
{

namespace
{

std::vector<std::uint8_t> bytesOf(const ToMovie& message)
{
    std::vector<std::uint8_t> bytes;
    encode(message, bytes);
    return bytes;
}

base::Result<ToMovie> decodeWhole(const std::vector<std::uint8_t>& bytes)
{
    const auto header = decodeHeader(bytes);
    if (!header) return tl::make_unexpected(header.error());
    return decodeToMovie(header->kind, base::Bytes(bytes).subspan(kHeaderBytes));
}

Load sampleLoad()
{
    Load load;
    load.id = 7;
    load.layer = 2;
    load.address = "/films/Кино.swf?a=b";
    load.startDateMs = 1.5;
    load.storageFolder = "/data";
    return load;
}

/// Two connected channels; the second takes descriptors.
struct Connected {
    explicit Connected(std::pair<int, int> ends)
        : near(ends.first, Channel::Descriptors::Refused), far(ends.second, Channel::Descriptors::Taken)
    {
    }
    Connected() : Connected(*Channel::pair()) {}
    Channel near, far;
};

} // namespace

TEST(Messages, KeepEveryFieldOnTheWay)
{
    auto load = decodeWhole(bytesOf(sampleLoad()));
    ASSERT_TRUE(load) << load.error().what;
    Load expected = sampleLoad();
    EXPECT_EQ(std::get<Load>(*load).fields(), expected.fields());

    const auto key = decodeWhole(bytesOf(Key{1, 65, U'a', -1, U"aЯ\U0001F600"}));
    ASSERT_TRUE(key) << key.error().what;
    EXPECT_EQ(std::get<Key>(*key).typed, U"aЯ\U0001F600");
    EXPECT_EQ(std::get<Key>(*key).command, -1);

    EXPECT_TRUE(std::holds_alternative<Stop>(*decodeWhole(bytesOf(Stop{}))));
}

TEST(Messages, RefuseBodiesThatAreCutLengthenedOrUnknown)
{
    const auto whole = bytesOf(sampleLoad());
    const base::Bytes body = base::Bytes(whole).subspan(kHeaderBytes);
    for (std::size_t length = 0; length < body.size(); ++length)
        EXPECT_FALSE(decodeToMovie(0, body.first(length))) << length;
    std::vector<std::uint8_t> longer(body.begin(), body.end());
    longer.push_back(0);
    EXPECT_FALSE(decodeToMovie(0, longer));
    EXPECT_FALSE(decodeToMovie(static_cast<std::uint16_t>(std::variant_size_v<ToMovie>), {}));
    EXPECT_FALSE(decodeFromMovie(0xFFFF, {}));

    // A text that announces four gigabytes.
    std::vector<std::uint8_t> hostile(body.begin(), body.end());
    std::fill_n(hostile.begin() + 8, 4, std::uint8_t{0xFF});
    EXPECT_FALSE(decodeToMovie(0, hostile));

    std::vector<std::uint8_t> header = whole;
    std::fill_n(header.begin() + 2, 4, std::uint8_t{0xFF});
    EXPECT_FALSE(decodeHeader(header));
}

TEST(Messages, CutTextsThatAreTooLong)
{
    const auto cut = decodeWhole(bytesOf(SetVariable{"x", std::string(kMaxTextBytes + 5, 'y')}));
    ASSERT_TRUE(cut) << cut.error().what;
    EXPECT_EQ(std::get<SetVariable>(*cut).value.size(), kMaxTextBytes);
}

TEST(Messages, TellOfTheChangedPartsOfAPicture)
{
    const auto sent = [](const Picture& picture) {
        std::vector<std::uint8_t> bytes;
        encode(FromMovie(picture), bytes);
        return bytes;
    };
    const auto decoded = [](const std::vector<std::uint8_t>& bytes) {
        const auto header = decodeHeader(bytes);
        return decodeFromMovie(header->kind, base::Bytes(bytes).subspan(kHeaderBytes));
    };
    Picture picture{2, 7, {}};
    for (int i = 0; i < 8; ++i) picture.changed.push_back({10 * i, 20 * i, 5, 6});
    auto few = decoded(sent(picture));
    ASSERT_TRUE(few) << few.error().what;
    EXPECT_EQ(std::get<Picture>(*few).fields(), picture.fields());

    // A count of more than there may be, with and without the bytes for it.
    auto hostile = sent(picture);
    const std::size_t countAt = kHeaderBytes + 5;
    ASSERT_EQ(hostile[countAt], 8);
    hostile[countAt] = 9;
    EXPECT_FALSE(decoded(hostile));
    hostile[countAt] = kMaxListed + 1;
    hostile.resize(countAt + 4 + 16 * (kMaxListed + 1));
    EXPECT_FALSE(decoded(hostile));
    std::fill_n(hostile.begin() + countAt, 4, std::uint8_t{0xFF});
    EXPECT_FALSE(decoded(hostile));
}

TEST(Messages, PartsOutsideAPictureComeToNothing)
{
    constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min(),
                           kMost = std::numeric_limits<std::int32_t>::max();
    EXPECT_EQ(cutTo({kLeast, kLeast, kMost, kMost}, 40, 30), (Rectangle{0, 0, 0, 0}));
    EXPECT_EQ(cutTo({kMost, kMost, kMost, kMost}, 40, 30), (Rectangle{40, 30, 0, 0}));
    EXPECT_EQ(cutTo({-10, -10, kMost, kMost}, 40, 30), (Rectangle{0, 0, 40, 30}));
    EXPECT_EQ(cutTo({5, 5, -3, kLeast}, 40, 30), (Rectangle{5, 5, 0, 0}));
    EXPECT_EQ(cutTo({30, 20, 20, 20}, 40, 30), (Rectangle{30, 20, 10, 10}));
}

TEST(Channel, PutsMessagesTogetherHoweverTheyArrive)
{
    const auto ends = *Channel::pair();
    Channel far(ends.second, Channel::Descriptors::Taken);
    auto bytes = bytesOf(sampleLoad());
    const auto second = bytesOf(Play{});
    bytes.insert(bytes.end(), second.begin(), second.end());
    std::vector<std::uint16_t> kinds;
    for (const std::uint8_t byte : bytes) {
        ASSERT_EQ(write(ends.first, &byte, 1), 1);
        ASSERT_TRUE(far.receive());
        while (const auto body = far.next()) kinds.push_back(body->kind);
    }
    EXPECT_EQ(kinds, (std::vector<std::uint16_t>{0, 2}));

    const std::uint8_t nonsense[kHeaderBytes] = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
    ASSERT_EQ(write(ends.first, nonsense, sizeof nonsense), ssize_t{sizeof nonsense});
    EXPECT_FALSE(far.receive());
    close(ends.first);
}

TEST(Channel, NeverBlocksOnAnEndThatDoesNotRead)
{
    Connected both;
    const SetVariable large{"x", std::string(100'000, 'y')};
    for (int i = 0; i < 50; ++i) ASSERT_TRUE(both.near.send(ToMovie(large)));
    EXPECT_GT(both.near.waitingBytes(), 0U);
    int came = 0;
    while (came < 50) {
        ASSERT_TRUE(both.far.receive());
        while (both.far.next()) ++came;
        ASSERT_TRUE(both.near.flush());
    }
    EXPECT_EQ(both.near.waitingBytes(), 0U);
}

TEST(Channel, TellsWhenTheOtherEndHasGone)
{
    const auto ends = *Channel::pair();
    Channel left(ends.first, Channel::Descriptors::Refused);
    {
        Channel right(ends.second, Channel::Descriptors::Refused);
        right.send(ToMovie(Play{}));
    }
    while (left.receive()) {
    }
    EXPECT_TRUE(left.next()) << "what came whole before is there";
    EXPECT_FALSE(left.send(ToMovie(Play{})));
}

TEST(Channel, TakesMemoryAlongInOneDirectionOnly)
{
    constexpr auto kShown = QImage::Format_RGB32;
    Connected both;
    auto pictures = PictureMemory::create(33, 20);
    ASSERT_TRUE(pictures) << pictures.error().what;
    pictures->picture(2, kShown).fill(Qt::red);
    both.near.send(ToMovie(View{33, 20, 1}), pictures->descriptor());
    ASSERT_TRUE(both.far.receive());
    const auto attached = PictureMemory::attach(both.far.takeDescriptor(), 33, 20);
    ASSERT_TRUE(attached) << attached.error().what;
    EXPECT_EQ(attached->picture(2, kShown).pixelColor(32, 19), QColor(Qt::red));
    attached->picture(0, kShown).fill(Qt::blue);
    EXPECT_EQ(pictures->picture(0, kShown).pixelColor(5, 5), QColor(Qt::blue));

    both.far.send(FromMovie(Hello{}), pictures->descriptor());
    ASSERT_TRUE(both.near.receive());
    EXPECT_EQ(both.near.takeDescriptor(), -1);
}

TEST(PictureMemory, SaysWhoWaitsForAPictureAndOnlyThen)
{
    auto near = PictureMemory::create(33, 20);
    ASSERT_TRUE(near) << near.error().what;
    auto far = PictureMemory::attach(dup(near->descriptor()), 33, 20);
    ASSERT_TRUE(far) << far.error().what;
    for (int i = 0; i < PictureMemory::kPictures; ++i) {
        EXPECT_EQ(far->takeFree(), i);
        far->hold(i);
    }
    EXPECT_FALSE(near->giveBack(1)) << "nobody has asked in vain yet";
    EXPECT_EQ(far->takeFree(), 1);
    far->hold(1);
    EXPECT_EQ(far->takeFree(), -1);
    EXPECT_TRUE(near->giveBack(2));
    EXPECT_EQ(far->takeFree(), 2);
    far->hold(2);
    EXPECT_FALSE(near->giveBack(0)) << "it has got what it waited for";
}

TEST(SharedMemory, RefusesWhatIsNotWhatWasAgreedOn)
{
    auto pictures = PictureMemory::create(40, 30);
    ASSERT_TRUE(pictures);
    EXPECT_NE(ftruncate(pictures->descriptor(), 10), 0) << "its size is sealed";
    EXPECT_FALSE(PictureMemory::attach(dup(pictures->descriptor()), 41, 300));
    EXPECT_FALSE(PictureMemory::attach(-1, 40, 30));
    EXPECT_FALSE(PictureMemory::attach(open("/dev/null", O_RDONLY), 40, 30));
    EXPECT_FALSE(PictureMemory::create(0, 30));
    EXPECT_FALSE(PictureMemory::create(PictureMemory::kMaxEdge + 1, 30));
}

TEST(SoundRing, CarriesSoundInOrderAndFillsGapsWithSilence)
{
    auto reader = SoundRing::create();
    ASSERT_TRUE(reader);
    auto writer = SoundRing::attach(dup(reader->descriptor()));
    ASSERT_TRUE(writer) << writer.error().what;

    std::int16_t next = 1, expected = 1;
    // Far more than the ring holds, in pieces that do not divide it.
    for (int round = 0; round < 200; ++round) {
        std::vector<sound::StereoFrame> given(777);
        for (auto& frame : given) frame = {next, static_cast<std::int16_t>(-next)}, ++next;
        ASSERT_EQ(writer->write(given), given.size());
        std::vector<sound::StereoFrame> got(777);
        reader->read(got);
        for (const auto& frame : got) {
            ASSERT_EQ(frame.left, expected);
            ASSERT_EQ(frame.right, static_cast<std::int16_t>(-expected));
            ++expected;
        }
    }
    EXPECT_EQ(writer->taken(), 200U * 777U);

    std::vector<sound::StereoFrame> got(10, {5, 5});
    reader->read(got);
    EXPECT_EQ(got[0].left, 0);
    EXPECT_EQ(writer->taken(), 200U * 777U) << "silence is taken of nobody";

    const std::vector<sound::StereoFrame> much(SoundRing::kFrames + 100);
    EXPECT_EQ(writer->write(much), SoundRing::kFrames);
    EXPECT_EQ(writer->write(much), 0U);
}

TEST(SoundRing, AReaderIsNotLedAstrayByTheOtherEnd)
{
    auto reader = SoundRing::create();
    ASSERT_TRUE(reader);
    void* raw = nullptr;
    {
        auto other = SoundRing::attach(dup(reader->descriptor()));
        ASSERT_TRUE(other);
    }
    auto memory = SharedMemory::attach(dup(reader->descriptor()), 64 + SoundRing::kFrames * 4);
    ASSERT_TRUE(memory) << memory.error().what;
    raw = memory->bytes().data();
    for (const std::uint64_t claimed :
         {~std::uint64_t{0}, std::uint64_t{1} << 40U, std::uint64_t{SoundRing::kFrames} + 1}) {
        std::memcpy(raw, &claimed, sizeof claimed);
        std::vector<sound::StereoFrame> got(4000, {9, 9});
        reader->read(got);
        EXPECT_EQ(got.back().left, 0);
    }
}

} // namespace flash::control
