#include "base/PercentCode.h"

#include <gtest/gtest.h>

namespace base
{

TEST(PercentCode, DecodesWholeEscapesOnly)
{
    struct Case {
        const char* name;
        std::string_view text, address, query;
    };
    constexpr Case kCases[] = {
        {"digits of either case", "a%4a%4Ab", "aJJb", "aJJb"},
        {"a plus is a space in a query alone", "1+2%2B3", "1+2+3", "1 2+3"},
        {"no digits", "%zz%4", "%zz%4", "%zz%4"},
        {"the second is no digit", "%4g1", "%4g1", "%4g1"},
        {"an escape is not read twice", "%2541", "%41", "%41"},
        {"a sign at the end", "50%", "50%", "50%"},
        {"bytes beyond ASCII are no digits", "%\xC1\xE1", "%\xC1\xE1", "%\xC1\xE1"},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(percentDecoded(c.text, Plus::Itself), c.address);
        EXPECT_EQ(percentDecoded(c.text, Plus::Space), c.query);
    }
}

} // namespace base
