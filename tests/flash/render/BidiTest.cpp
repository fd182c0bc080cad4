#include "flash/render/Bidi.h"
#include "flash/render/LetterForms.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace flash::render
{
namespace
{

using testing::ElementsAre;

/// As the standard's examples are written: capitals for Hebrew letters, digits as they are, and what steers:
/// [ a stretch to the right, ] one to the left (both end with ^), { an isolate to the left, } its end.
std::u16string written(std::string_view text)
{
    std::u16string result;
    for (const char c : text) {
        if (c >= 'A' && c <= 'Z')
            result += static_cast<char16_t>(0x05D0 + (c - 'A'));
        else
            result += c == '['   ? u'\u202A'
                      : c == ']' ? u'\u202B'
                      : c == '^' ? u'\u202C'
                      : c == '{' ? u'\u2067'
                      : c == '}' ? u'\u2069'
                                 : static_cast<char16_t>(c);
    }
    return result;
}

/// What is read from left to right; what steers is left out.
std::string seen(std::string_view text, std::uint8_t base = 0)
{
    const auto levels = bidiLevels(written(text), base);
    EXPECT_EQ(levels.size(), text.size());
    std::string result;
    for (const std::size_t at : visualOrder(levels))
        if (std::string_view("[]^{}").find(text[at]) == std::string_view::npos) result += text[at];
    return result;
}

TEST(Bidi, WordsThatRunToTheLeftStandAmongOthers)
{
    EXPECT_EQ(seen("plain text"), "plain text");
    EXPECT_EQ(seen("car is THE CAR in hebrew"), "car is RAC EHT in hebrew");
    EXPECT_EQ(seen("CAR means car.", 1), ".means car RAC");
    EXPECT_EQ(seen("he said THE VALUES ARE 123, 456, OK"), "he said KO ,456 ,123 ERA SEULAV EHT");
    EXPECT_EQ(seen("IT IS 1+1", 1), "1+1 SI TI");
    EXPECT_EQ(seen("COSTS 20%", 1), "20% STSOC") << "a sign beside a number goes with it";
}

TEST(Bidi, BracketsGoWithWhatTheyAreAbout)
{
    EXPECT_EQ(seen("AB(CD)EF x"), "FE)DC(BA x");
    EXPECT_EQ(seen("x (AB) y"), "x (BA) y");
    EXPECT_EQ(seen("AB (c)", 1), ")c( BA") << "drawn mirrored, they stand around the letter";
}

TEST(Bidi, StretchesAndIsolatesHaveAnOrderOfTheirOwn)
{
    EXPECT_EQ(seen("a ]b C^ d"), "a C b d");
    EXPECT_EQ(seen("AB{12 c}3"), "3c 12BA");
    // What is open at the end, or ends without having begun, changes nothing else.
    EXPECT_EQ(seen("}ab^ {CD"), "ab DC");
    const std::u16string deep(2000, u'\u202B');
    for (const std::uint8_t level : bidiLevels(deep + u"a", 0)) EXPECT_LE(level, 126);
}

TEST(Bidi, LevelsTellHowDeepApartIs)
{
    EXPECT_THAT(bidiLevels(written("a AB 1"), 0), ElementsAre(0, 0, 1, 1, 1, 2));
    EXPECT_THAT(bidiLevels(written("A b \nC "), 1), ElementsAre(1, 1, 2, 1, 1, 1, 1));
    EXPECT_THAT(bidiLevels(u"", 1), ElementsAre());
}

TEST(LetterForms, ArabicLettersJoin)
{
    const auto formsOf = [](std::u16string_view text) {
        std::vector<char32_t> forms;
        for (const LetterForm& form : joinedForms(text)) forms.push_back(form.form);
        return forms;
    };
    EXPECT_THAT(formsOf(u"\u0628"), ElementsAre(0xFE8F));
    EXPECT_THAT(formsOf(u"\u0628\u0628\u0628"), ElementsAre(0xFE91, 0xFE92, 0xFE90));
    // A mark above a letter does not part it from the next; an alef joins on one side only.
    EXPECT_THAT(formsOf(u"\u0628\u064E\u0628"), ElementsAre(0xFE91, 0xFE90));
    EXPECT_THAT(formsOf(u"\u0627\u0628"), ElementsAre(0xFE8D, 0xFE8F));
    EXPECT_THAT(formsOf(u"\u0628\u0644\u0627 \u0644\u0627"), ElementsAre(0xFE91, 0xFEFC, 0xFEFB));
    EXPECT_FALSE(hasJoiningLetters(u"abc \u05D0"));
}

TEST(LetterForms, LigaturesAndColumns)
{
    EXPECT_EQ(ligatureAt(u"ffix", Ligatures::Common).length, 3U);
    EXPECT_EQ(ligatureAt(u"fix", Ligatures::Common).form, 0xFB01U);
    EXPECT_EQ(ligatureAt(u"st", Ligatures::Common).length, 0U);
    EXPECT_EQ(ligatureAt(u"st", Ligatures::Rare).length, 2U);
    EXPECT_EQ(ligatureAt(u"fi", Ligatures::None).length, 0U);
    EXPECT_EQ(columnForm(0x300C), 0xFE41U);
    EXPECT_EQ(columnForm(U'a'), U'a');
    EXPECT_TRUE(standsInColumns(0x6F22));
    EXPECT_FALSE(standsInColumns(U'a'));
    EXPECT_FALSE(standsInColumns(0x30FC));
}

} // namespace
} // namespace flash::render
