#include "base/TextNumbers.h"

#include <gtest/gtest.h>

#include <cmath>

namespace base
{

TEST(TextNumbers, AreWholeOrNothing)
{
    EXPECT_EQ(numberFromText("12.5"), 12.5);
    EXPECT_EQ(numberFromText("-1e3"), -1000);
    for (const char* wrong : {"", " 1", "1 ", "1x", "+1", "0x10", "inf", "nan", "1e999", "--1", "1,5"})
        EXPECT_EQ(numberFromText(wrong), std::nullopt) << wrong;
}

TEST(TextNumbers, TimesAreWholeOrNothing)
{
    const auto noon = localTimeFromText("2001-02-03T12:00:00"),
               later = localTimeFromText("2001-02-03T12:00:07");
    ASSERT_TRUE(noon && later);
    EXPECT_EQ(*later - *noon, 7000);
    for (const char* wrong : {"", "2001-02-03", "2001-02-03T12:00", "2001-02-03T12:00:00Z", "noon"})
        EXPECT_EQ(localTimeFromText(wrong), std::nullopt) << wrong;
}

TEST(TextNumbers, OutOfRangeIsTooSmallOrTooLarge)
{
    const std::string zeros(400, '0');
    for (const std::string& small :
         {std::string("1e-400"), "0." + zeros + "1", "0." + zeros + "99e50", "-0." + zeros + "1",
          std::string("0.001e-99999999999999999999"), "00" + zeros + ".1e-500"})
        EXPECT_EQ(valueOutOfRange(small), 0) << small;
    for (const std::string& large :
         {std::string("1e400"), "1" + zeros, "1" + zeros + ".5", "12" + zeros + "e-50",
          std::string("-1E+400"), "0." + zeros + "1e800", std::string("1e99999999999999999999")})
        EXPECT_TRUE(std::isinf(valueOutOfRange(large))) << large;
}

} // namespace base
