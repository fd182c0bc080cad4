#include "base/TextCode.h"

#include "base/TextCodes.h"

#include <gtest/gtest.h>

namespace base
{
namespace
{

TEST(TextCode, ReadsAndWritesTheSameText)
{
    struct Case {
        const char *name, *spelling;
        std::string_view bytes;
        const char* utf8;
    };
    constexpr Case kCases[] = {
        {"Cyrillic of Windows", "Windows-1251", "\xCF\xF0\xE8", "При"},
        {"Cyrillic of Unix", "koi8_r", "\xF0\xD2\xC9", "При"},
        {"Western", "Latin1", "\xE4\xFF", "äÿ"},
        {"Western of Windows", "cp1252", "\x80\xE9", "€é"},
        {"Japanese, of one and two bytes", "Shift_JIS", "a\x95\xD0\xB6", "a片ｶ"},
        {"Chinese", "GBK", "\xC4\xE3\x68", "你h"},
        {"Traditional Chinese", "Big5", "\xA7\x41", "你"},
        {"Korean", "euc-kr", "\xB0\xA1", "가"},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        const auto code = TextCode::named(c.spelling);
        ASSERT_NE(code, nullptr);
        EXPECT_EQ(code->utf8From(c.bytes), c.utf8);
        EXPECT_EQ(code->fromUtf8(c.utf8), c.bytes);
    }
    EXPECT_EQ(TextCode::named("klingon"), nullptr);
    EXPECT_EQ(TextCode::named(""), nullptr);
}

TEST(TextCode, KeepsEveryByteOfCodesWithoutPairs)
{
    for (const std::string_view name : {"windows-1251", "windows-1252", "iso-8859-1", "koi8-r"}) {
        SCOPED_TRACE(name);
        const auto code = TextCode::named(name);
        ASSERT_NE(code, nullptr);
        for (int byte = 0; byte < 256; ++byte) {
            const std::string one(1, static_cast<char>(byte));
            EXPECT_EQ(code->encode(code->decode(one)), one) << byte;
        }
    }
}

TEST(TextCode, TakesWhatIsCutShortForSingleBytes)
{
    const auto code = TextCode::named("gbk");
    ASSERT_NE(code, nullptr);
    EXPECT_EQ(code->decode("a\xC4").size(), 2U);
    EXPECT_EQ(code->decode("\xC4\x20").size(), 2U);
}

TEST(TextCodes, LooseUtf8GoesByTheFirstByteAlone)
{
    struct Case {
        const char* name;
        std::string_view bytes;
        std::u16string_view text;
    };
    constexpr Case kCases[] = {
        {"well-formed", "a\xC3\xA9\xE7\x89\x87", u"aé片"},
        {"a pair that is none", "a\xC1 b",
         u"a\xFFFD"
         u"b"},
        {"a byte that only continues", "a\x80z", u"a\u0080z"},
        {"too short for its first byte", "a\xE7\x89", u"a"},
        {"beyond all", "a\xFF", u"a"},
        {"beyond the basic plane", "\xF0\x9F\x98\x8B!", u"\xD83D\xDE0B!"},
        {"four bytes that are none", "\xF0zzz!", u"\xFFFD!"},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(utf16FromLooseUtf8(c.bytes), c.text);
    }
}

TEST(TextCodes, CarelessUtf8AddsWhateverFollows)
{
    EXPECT_EQ(utf16FromCarelessUtf8("\xC3\xA9\xE7\x89\x87"), u"é片");
    EXPECT_EQ(utf16FromCarelessUtf8("\xC4\xD6\xDC \xDF -"), u"\u0156\u06A0\u0760-");
    EXPECT_EQ(utf16FromCarelessUtf8("\x95\xD0\x89\xBC"), u"\u0095\u0409\u00BC");
    EXPECT_EQ(utf16FromCarelessUtf8("a\xE7\x89"), u"a") << "too short for its first byte";
}

TEST(TextCodes, CodesOfTwoBytesThatAreNoCharacterAreTwo)
{
    const auto latin = TextCode::named("iso-8859-1");
    ASSERT_NE(latin, nullptr);
    EXPECT_EQ(latin->textOf(0x41), u"A");
    EXPECT_EQ(latin->textOf(0x4142), u"AB");
    EXPECT_EQ(latin->textOf(0x4100), u"A");
    EXPECT_EQ(latin->textOf(0), u"");
    const auto gbk = TextCode::named("gbk");
    ASSERT_NE(gbk, nullptr);
    EXPECT_EQ(gbk->textOf(0xC6AC), u"片");
}

} // namespace
} // namespace base
