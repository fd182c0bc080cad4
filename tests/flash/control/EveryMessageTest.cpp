#include "flash/control/Messages.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>

namespace flash::control
{

namespace
{

template <class Variant, std::size_t... kinds>
std::vector<Variant> oneOfEach(std::index_sequence<kinds...>)
{
    std::vector<Variant> all;
    (all.push_back(Variant(std::in_place_index<kinds>)), ...);
    return all;
}

template <class Variant>
std::vector<Variant> oneOfEach()
{
    return oneOfEach<Variant>(std::make_index_sequence<std::variant_size_v<Variant>>());
}

base::Result<ToMovie> decodeAs(const ToMovie&, std::uint16_t kind, base::Bytes body)
{
    return decodeToMovie(kind, body);
}
base::Result<FromMovie> decodeAs(const FromMovie&, std::uint16_t kind, base::Bytes body)
{
    return decodeFromMovie(kind, body);
}

/// Every kind is read as it was written, and refused when a byte is missing or too many.
template <class Variant>
void checkKinds()
{
    for (const Variant& message : oneOfEach<Variant>()) {
        SCOPED_TRACE(message.index());
        std::vector<std::uint8_t> bytes;
        encode(message, bytes);
        const auto header = decodeHeader(bytes);
        ASSERT_TRUE(header) << header.error().what;
        ASSERT_EQ(header->kind, message.index());
        const base::Bytes body = base::Bytes(bytes).subspan(kHeaderBytes);
        const auto whole = decodeAs(message, header->kind, body);
        ASSERT_TRUE(whole) << whole.error().what;
        EXPECT_EQ(whole->index(), message.index());
        std::vector<std::uint8_t> again;
        encode(*whole, again);
        EXPECT_EQ(again, bytes);

        for (std::size_t length = 0; length < body.size(); ++length)
            EXPECT_FALSE(decodeAs(message, header->kind, body.first(length))) << length;
        std::vector<std::uint8_t> longer(body.begin(), body.end());
        longer.push_back(0);
        EXPECT_FALSE(decodeAs(message, header->kind, longer));
        for (std::size_t length = 0; length < kHeaderBytes; ++length)
            EXPECT_FALSE(decodeHeader(base::Bytes(bytes).first(length))) << length;
    }
}

/// Whatever the other side sends, it is a message that can be written again, or an error.
template <class Variant>
void checkNoise()
{
    std::mt19937 random(11);
    int decoded = 0;
    for (const Variant& message : oneOfEach<Variant>()) {
        std::vector<std::uint8_t> bytes;
        encode(message, bytes);
        for (int round = 0; round < 300; ++round) {
            std::vector<std::uint8_t> body(bytes.begin() + kHeaderBytes, bytes.end());
            for (int i = 0; i < 3 && !body.empty(); ++i)
                body[random() % body.size()] = static_cast<std::uint8_t>(random() % 4 == 0 ? 0xFF : random());
            const auto found = decodeAs(message, static_cast<std::uint16_t>(message.index()), body);
            if (!found) {
                EXPECT_FALSE(found.error().what.empty());
                continue;
            }
            ++decoded;
            std::vector<std::uint8_t> again;
            encode(*found, again);
            const auto twice = decodeAs(message, static_cast<std::uint16_t>(message.index()),
                                        base::Bytes(again).subspan(kHeaderBytes));
            EXPECT_TRUE(twice) << message.index();
        }
    }
    EXPECT_GT(decoded, 100);
}

} // namespace

TEST(EveryMessage, OfTheWindowIsReadWholeOrNotAtAll) { checkKinds<ToMovie>(); }
TEST(EveryMessage, OfTheMovieIsReadWholeOrNotAtAll) { checkKinds<FromMovie>(); }
TEST(EveryMessage, OfTheWindowMayBeNoise) { checkNoise<ToMovie>(); }
TEST(EveryMessage, OfTheMovieMayBeNoise) { checkNoise<FromMovie>(); }

TEST(EveryMessage, ListsAreAsLongAsTheyMayBeAndNoLonger)
{
    Menu menu{7, {}};
    for (std::size_t i = 0; i < kMaxListed + 5; ++i)
        menu.items.push_back({0, "item " + std::to_string(i), static_cast<std::uint8_t>(i % 2), 1});
    std::vector<std::uint8_t> bytes;
    encode(FromMovie(menu), bytes);
    const auto header = decodeHeader(bytes);
    ASSERT_TRUE(header);
    const base::Bytes body = base::Bytes(bytes).subspan(kHeaderBytes);
    const auto whole = decodeFromMovie(header->kind, body);
    ASSERT_TRUE(whole) << whole.error().what;
    const auto& read = std::get<Menu>(*whole);
    EXPECT_EQ(read.id, 7U);
    ASSERT_EQ(read.items.size(), kMaxListed) << "what is too much is left out";
    EXPECT_EQ(read.items.back().caption, "item 31");
    EXPECT_EQ(read.items.back().separatorBefore, 1);
    // Every cut is noticed, and so is a count that the bytes do not bear out.
    for (std::size_t length = 0; length < body.size(); ++length)
        EXPECT_FALSE(decodeFromMovie(header->kind, body.first(length))) << length;
    constexpr std::size_t kCountAt = 4;
    for (const std::uint32_t count : {0U, 31U, 33U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        std::vector<std::uint8_t> lies(body.begin(), body.end());
        std::memcpy(lies.data() + kCountAt, &count, sizeof count);
        EXPECT_FALSE(decodeFromMovie(header->kind, lies)) << count;
    }
}

} // namespace flash::control
