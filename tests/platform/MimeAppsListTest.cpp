#include "platform/MimeAppsList.h"

#include <gtest/gtest.h>

namespace platform
{
namespace
{

TEST(MimeAppsList, PutsADefaultFirstAndTakesItBackByteForByte)
{
    struct Case {
        const char *name, *before, *with;
    };
    constexpr Case kCases[] = {
        {"no list", "", "[Default Applications]\nt/x=z;\n"},
        {"another group only, no line end", "[Added Associations]\nt/x=a;",
         "[Added Associations]\nt/x=a;\n[Default Applications]\nt/x=z;\n"},
        {"other types and comments", "# mine\n[Default Applications]\nt/y=b\n\n[Other]\nt/x=c\n",
         "# mine\n[Default Applications]\nt/x=z;\nt/y=b\n\n[Other]\nt/x=c\n"},
        {"a default before", "[Default Applications]\nt/x=a;b;\nt/y=b\n",
         "[Default Applications]\nt/x=z;a;b;\nt/y=b\n"},
        {"group at the end", "[Removed Associations]\nt/x=z;\n[Default Applications]\nt/xx=q\n",
         "[Removed Associations]\nt/x=z;\n[Default Applications]\nt/x=z;\nt/xx=q\n"},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        const std::string with = withDefaultApplication(c.before, "t/x", "z");
        EXPECT_EQ(with, c.with);
        EXPECT_EQ(withDefaultApplication(with, "t/x", "z"), with) << "twice";
        const std::string before = c.before;
        const std::string end = before.empty() || before.ends_with('\n') ? "" : "\n";
        EXPECT_EQ(withoutDefaultApplication(with, "t/x", "z"), before + end);
    }
}

TEST(MimeAppsList, MovesToTheFrontAndReadsWhatOthersWrite)
{
    EXPECT_EQ(withDefaultApplication("[Default Applications]\r\nt/x = a ;z\r\n", "t/x", "z"),
              "[Default Applications]\r\nt/x=z;a ;\n");
    EXPECT_EQ(withoutDefaultApplication("[Default Applications]\nt/x=a;\n", "t/x", "z"),
              "[Default Applications]\nt/x=a;\n");
    EXPECT_EQ(withoutDefaultApplication("t/x=z;\n", "t/x", "z"), "t/x=z;\n") << "outside of any group";
    EXPECT_TRUE(namesDefaultApplication("[Default Applications]\nt/x=a;\n", "t/x"));
    EXPECT_FALSE(namesDefaultApplication("[Added Associations]\nt/x=a;\n", "t/x"));
}

} // namespace
} // namespace platform
