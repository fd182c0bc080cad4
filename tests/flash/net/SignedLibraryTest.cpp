#include "flash/net/SignedLibrary.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{

using Buffer = std::vector<std::uint8_t>;

Buffer value(std::uint8_t tag, const Buffer& body)
{
    Buffer made{tag, 0x82, static_cast<std::uint8_t>(body.size() >> 8U),
                static_cast<std::uint8_t>(body.size())};
    made.insert(made.end(), body.begin(), body.end());
    return made;
}
Buffer operator+(Buffer a, const Buffer& b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

/// "abc" as it is signed.
Buffer library()
{
    const Buffer signedData{0x06, 9, 0x2A, 0x86, 0x48, 0x86, 0xF7, 0x0D, 1, 7, 2};
    const Buffer plainData{0x06, 9, 0x2A, 0x86, 0x48, 0x86, 0xF7, 0x0D, 1, 7, 1};
    const Buffer content = value(0x30, plainData + value(0xA0, value(0x04, {'a', 'b', 'c'})));
    const Buffer parts = Buffer{0x02, 1, 1} + value(0x31, {}) + content + value(0xA0, {1, 2, 3});
    return value(0x30, signedData + value(0xA0, value(0x30, parts)));
}
constexpr const char* kDigest = "BA7816BF8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";

} // namespace

TEST(SignedLibrary, GivesWhatTheDigestVouchesFor)
{
    const Buffer file = library(), plain{'a', 'b', 'c'};
    for (const Buffer* given : {&file, &plain}) {
        const auto content = flash::net::signedContent(*given, kDigest);
        ASSERT_TRUE(content) << content.error().what;
        EXPECT_EQ(std::string(content->begin(), content->end()), "abc");
    }
    EXPECT_FALSE(flash::net::signedContent(file, std::string(64, '0')));
    EXPECT_FALSE(flash::net::signedContent({}, kDigest));
}

TEST(SignedLibrary, RefusesWhatIsCutOrStatesTooMuch)
{
    const Buffer file = library();
    // What follows the content, from the signatures on, is not looked at; the lengths around it are.
    for (std::size_t i = 0; i < file.size(); ++i)
        EXPECT_FALSE(flash::net::signedContent(base::Bytes(file).first(i), kDigest)) << i;
    for (const std::size_t at : {1U, 2U, 3U}) {
        Buffer hostile = file;
        hostile[at] = 0xFF;
        EXPECT_FALSE(flash::net::signedContent(hostile, kDigest)) << at;
    }
}
