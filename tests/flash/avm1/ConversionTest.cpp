#include "Machine.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace flash::avm1::test
{
namespace
{

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

std::string narrow(std::u16string_view text) { return base::utf8FromUtf16(text); }

TEST(Numbers, AreWrittenWithFifteenDigits)
{
    struct Case {
        double number;
        const char* text;
    };
    const Case kCases[] = {
        {0.1 + 0.2, "0.3"},
        {1e21, "1e+21"},
        {123456789012345, "123456789012345"},
        {1234567890123456, "1.23456789012346e+15"},
        {1e15, "1e+15"},
        {0.00001, "0.00001"},
        {0.000001, "1e-6"},
        {-1.5, "-1.5"},
        {-0.0, "0"},
        {1.0 / 3, "0.333333333333333"},
        {99999999999999.99, "100000000000000"},
        {kNaN, "NaN"},
        {-kInfinity, "-Infinity"},
        {std::numeric_limits<double>::max(), "1.79769313486231e+308"},
        {5e-324, "4.94065645841247e-324"},
    };
    for (const Case& c : kCases) EXPECT_EQ(narrow(formatNumber(c.number)), c.text);
    EXPECT_EQ(narrow(formatNumber(-255, 16)), "-ff");
}

TEST(Numbers, AreReadByTheRulesOfTheVersion)
{
    struct Case {
        const char16_t* text;
        double in4, in5, in6;
    };
    const Case kCases[] = {
        {u"12", 12, 12, 12},          {u" 12", 12, 12, 12},
        {u"12x", 12, kNaN, kNaN},     {u"", 0, kNaN, kNaN},
        {u"0x10", 0, kNaN, 16},       {u"010", 10, 10, 8},
        {u"-010", -10, -10, -8},      {u"089", 89, 89, 89},
        {u"1e3", 1000, 1000, 1000},   {u"1e", 1, kNaN, kNaN},
        {u".5", 0.5, 0.5, 0.5},       {u"-", 0, kNaN, kNaN},
        {u"0xFFFFFFFF", 0, kNaN, -1}, {u"1e999", kInfinity, kInfinity, kInfinity},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(narrow(c.text));
        const double expected[] = {c.in4, c.in5, c.in6};
        for (int version = 4; version <= 6; ++version) {
            const double found = parseNumber(c.text, version);
            const double wanted = expected[version - 4];
            EXPECT_TRUE(found == wanted || (std::isnan(found) && std::isnan(wanted)))
                << version << ": " << found;
        }
    }
}

TEST(Conversion, FollowsTheVersionOfTheMovie)
{
    Machine machine;
    Vm& vm = machine.vm;
    struct Case {
        const char* name;
        int version;
        Value value;
        const char* text;
        const char* number;
        bool truth;
    };
    const Case kCases[] = {
        {"undefined in 6", 6, Value(), "", "0", false},
        {"undefined in 7", 7, Value(), "undefined", "NaN", false},
        {"null in 6", 6, Value::null(), "null", "0", false},
        {"null in 7", 7, Value::null(), "null", "NaN", false},
        {"true in 4", 4, Value(true), "1", "1", true},
        {"true in 5", 5, Value(true), "true", "1", true},
        {"a word in 6", 6, Value(vm.string("word")), "word", "NaN", false},
        {"a word in 7", 7, Value(vm.string("word")), "word", "NaN", true},
        {"the text 0 in 6", 6, Value(vm.string("0")), "0", "0", false},
        {"the text 0 in 7", 7, Value(vm.string("0")), "0", "0", true},
        {"not-a-number", 7, Value(kNaN), "NaN", "NaN", false},
        {"an object", 7, Value(vm.newObject()), "[object Object]", "NaN", true},
        {"a bare object", 7, Value(vm.newObject(nullptr)), "[type Object]", "NaN", true},
        {"an array", 7, Value(vm.newArray(std::array{Value(1), Value()})), "1,undefined", "NaN", true},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        const Vm::VersionScope version(vm, c.version);
        EXPECT_EQ(narrow(toText(vm, c.value)), c.text);
        EXPECT_EQ(narrow(formatNumber(toNumber(vm, c.value))), c.number);
        EXPECT_EQ(toBoolean(vm, c.value), c.truth);
    }
}

TEST(Conversion, WrapsIntegersModuloTwoToThe32)
{
    EXPECT_EQ(toInt32(4294967296.0), 0);
    EXPECT_EQ(toInt32(2147483648.0), -2147483647 - 1);
    EXPECT_EQ(toInt32(-1.9), -1);
    EXPECT_EQ(toInt32(-4294967297.0), -1);
    EXPECT_EQ(toInt32(kNaN), 0);
    EXPECT_EQ(toInt32(kInfinity), 0);
    EXPECT_EQ(toInt32(1e300), 0);
}

TEST(Strings, StayLinearWhenBuiltPieceByPiece)
{
    Machine machine;
    Vm& vm = machine.vm;
    String* text = vm.string("");
    String* piece = vm.string("abcdefgh");
    for (int i = 0; i < 200000; ++i) text = vm.heap().make<String>(text, piece);
    EXPECT_EQ(text->view().size(), 1600000U);
    EXPECT_EQ(text->view().substr(1599992), u"abcdefgh");
}

} // namespace
} // namespace flash::avm1::test
