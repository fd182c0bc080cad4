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
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(utf16FromLooseUtf8(c.bytes), c.text);
    }
}

} // namespace
} // namespace base
