#include "base/TextCodes.h"

#include <gtest/gtest.h>

namespace base
{
namespace
{

TEST(TextCodes, EveryAnsiByteButTheUndefinedOneSurvivesARoundTrip)
{
    for (int byte = 0; byte < 256; ++byte) {
        if (byte == 0x98) continue;
        const std::string one(1, static_cast<char>(byte));
        EXPECT_EQ(ansiFromUtf8(utf8FromAnsi(one)), one) << byte;
    }
    EXPECT_EQ(utf8FromAnsi("\xCF\xF0\xE8\xE2\xE5\xF2"), "Привет");
}

TEST(TextCodes, CharactersOutsideTheCodePageAreReplacedOnceEach)
{
    EXPECT_EQ(ansiFromUtf8("a😀é中b"), "a???b");
    EXPECT_EQ(ansiFromUtf8("a😀é中b", '\0'), "ab");
}

TEST(TextCodes, MalformedUtf8LosesNoNeighbours)
{
    struct Case {
        const char* name;
        std::string_view bytes;
        std::u16string_view expected;
    };
    constexpr Case kCases[] = {
        {"cut sequence at the end", "a\xD0", u"a\uFFFD"},
        {"stray continuation", "\x80z", u"\uFFFDz"},
        {"overlong slash", "\xC0\xAF", u"\uFFFD\uFFFD"},
        {"beyond the last plane", "\xF5\x80\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
        {"lead byte before ASCII", "\xE2z", u"\uFFFDz"},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(utf16FromUtf8(c.bytes), c.expected);
        EXPECT_FALSE(isUtf8(c.bytes));
    }
}

TEST(TextCodes, LoneSurrogatesAreKept)
{
    const std::u16string lone{u'a', 0xD800, u'b'};
    EXPECT_EQ(utf8FromUtf16(lone), "a\xED\xA0\x80"
                                   "b");
    EXPECT_EQ(utf16FromUtf8(utf8FromUtf16(lone)), lone);
    EXPECT_FALSE(isUtf8("\xED\xA0\x80"));
}

} // namespace
} // namespace base
