#include "AbcBuilder.h"

#include "flash/avm2/abc/Abc.h"
#include "flash/avm2/classes/Library.h"

#include <gtest/gtest.h>

#include <random>

// What the typed registers must not change: results at the edges of the number types, values that stand for a
// local which is overwritten, what handlers find, which override is called.
namespace flash::avm2
{

namespace
{

using abc::Op;
using test::AbcBuilder;

class Printer final : public Host
{
public:
    void trace(std::u16string_view text) override { out += toUtf8(text) + '\n'; }
    void uncaught(std::u16string_view text) override
    {
        out += toUtf8(text).substr(0, toUtf8(text).find('\n'));
    }
    double realTimeMs() override { return m_ms += 1; }
    std::string out;

private:
    double m_ms = 0;
};

std::string run(const AbcBuilder::Bytes& bytes)
{
    Printer printer;
    Vm vm(printer, classes::library());
    vm.setLimits(20);
    const auto abc = abc::parseAbc(bytes);
    if (!abc) return abc.error().what;
    vm.guarded([&] {
        auto* domain = vm.heap().make<Domain>(vm.systemDomain());
        vm.movieDomain = domain;
        domain->load(vm, *abc)->runAllScripts(vm);
    });
    return printer.out;
}

constexpr std::uint8_t kOverride = 0x20; ///< beside the kind of a trait

/// A class Base with `var x:int` and `m()` giving 1, a class Derived whose `m()` gives 2, and what `use`
/// writes into a method of one Base parameter, called with a Derived. Local 1 is the parameter.
AbcBuilder classesUsedBy(void (*use)(AbcBuilder&))
{
    AbcBuilder b;
    const std::uint32_t base = b.qname("Base"), derived = b.qname("Derived"), run = b.qname("run");
    b.op(Op::getlocal_0).op(Op::pushscope);
    b.op(Op::findpropstrict, base)
        .op(Op::getlex, b.name("Object"))
        .op(Op::newclass, 0)
        .op(Op::initproperty, base);
    b.op(Op::findpropstrict, derived).op(Op::getlex, base).op(Op::newclass, 1).op(Op::initproperty, derived);
    b.op(Op::getlocal_0).op(Op::findpropstrict, derived).op(Op::constructprop, derived, 0);
    b.op(Op::callpropvoid, run, 1).op(Op::returnvoid);
    const std::uint32_t constructor = b.begin();
    b.op(Op::getlocal_0).op(Op::constructsuper, 0).op(Op::returnvoid);
    const std::uint32_t initializer = b.begin();
    b.op(Op::returnvoid);
    const std::uint32_t ofBase = b.begin();
    b.byte(1).op(Op::returnvalue);
    const std::uint32_t ofDerived = b.begin();
    b.byte(2).op(Op::returnvalue);
    const std::uint32_t method = b.begin({base});
    b.op(Op::getlocal_0).op(Op::pushscope);
    use(b);
    b.op(Op::returnvoid);
    b.classes.push_back({base,
                         b.name("Object"),
                         constructor,
                         initializer,
                         {{b.qname("x"), 0, b.name("int")}, {b.qname("m"), 1, ofBase}}});
    b.classes.push_back(
        {derived, base, constructor, initializer, {{b.qname("m"), kOverride | 1, ofDerived}}});
    b.globals = {{base, 4, 0}, {derived, 4, 1}, {run, 1, method}};
    return b;
}

} // namespace

TEST(RegisterForm, KeepsTheResultsOfTheLanguage)
{
    struct Case {
        const char* name;
        void (*write)(AbcBuilder&);
        const char* out;
    };
    const Case kCases[] = {
        {"a sum of ints is a number until it is converted",
         [](AbcBuilder& b) {
             b.op(Op::pushdouble, b.number(2147483647)).op(Op::convert_i).op(Op::setlocal_1);
             b.op(Op::getlocal_1).op(Op::getlocal_1).op(Op::add).trace();
             b.op(Op::getlocal_1).op(Op::getlocal_1).op(Op::add).op(Op::convert_i).trace();
         },
         "4294967294\n-2\n"},
        {"a product of ints loses what a number cannot hold",
         [](AbcBuilder& b) {
             b.op(Op::pushdouble, b.number(2147483647)).op(Op::convert_i).op(Op::setlocal_1);
             b.op(Op::getlocal_1).op(Op::getlocal_1).op(Op::multiply).op(Op::convert_i).trace();
             b.op(Op::getlocal_1).op(Op::getlocal_1).op(Op::multiply_i).trace();
         },
         "0\n1\n"},
        {"a shift to the right without sign is a uint",
         [](AbcBuilder& b) {
             b.byte(-1).op(Op::convert_i).byte(0).op(Op::urshift).op(Op::setlocal_1);
             b.op(Op::getlocal_1).trace();
             b.op(Op::getlocal_1).byte(0).op(Op::greaterthan).trace();
         },
         "4294967295\ntrue\n"},
        {"not-a-number is neither less nor not less",
         [](AbcBuilder& b) {
             b.op(Op::pushnan).op(Op::setlocal_1);
             b.op(Op::getlocal_1).byte(1).branch(Op::ifnlt, "a").op(Op::pushtrue).branch(Op::jump, "b");
             b.label("a").op(Op::label).op(Op::pushfalse).label("b").op(Op::label).trace();
             b.op(Op::getlocal_1).byte(1).op(Op::greaterequals).trace();
         },
         "false\nfalse\n"},
        {"a value on the stack outlives its local",
         [](AbcBuilder& b) {
             b.byte(1).op(Op::setlocal_1).op(Op::getlocal_1).op(Op::inclocal_i, 1).op(Op::getlocal_1);
             b.op(Op::subtract).trace();
         },
         "-1\n"},
        {"copies and exchanges keep their values apart",
         [](AbcBuilder& b) {
             b.byte(5)
                 .op(Op::increment_i)
                 .op(Op::dup)
                 .op(Op::increment_i)
                 .op(Op::swap)
                 .op(Op::subtract)
                 .trace();
         },
         "1\n"},
        {"a local may be of another type after a branch",
         [](AbcBuilder& b) {
             b.byte(7).op(Op::setlocal_1).op(Op::pushtrue).branch(Op::iffalse, "end");
             b.op(Op::pushstring, b.string("text")).op(Op::setlocal_1).label("end").op(Op::label);
             b.op(Op::getlocal_1).trace();
         },
         "text\n"},
        {"counting by numbers goes beyond ints",
         [](AbcBuilder& b) {
             b.op(Op::pushdouble, b.number(2147483647))
                 .op(Op::convert_i)
                 .op(Op::setlocal_1)
                 .op(Op::inclocal, 1);
             b.op(Op::getlocal_1).trace();
         },
         "2147483648\n"},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        AbcBuilder b;
        b.op(Op::getlocal_0).op(Op::pushscope);
        c.write(b);
        b.op(Op::returnvoid);
        EXPECT_EQ(run(b.build()), c.out);
    }
}

TEST(RegisterForm, LeavesHandlersTheLocalsAsTheyWere)
{
    AbcBuilder b;
    b.byte(1).op(Op::setlocal_1);
    const auto from = static_cast<std::uint32_t>(b.position());
    b.op(Op::inclocal_i, 1).op(Op::pushnull).op(Op::getproperty, b.name("x")).op(Op::setlocal_1);
    const auto to = static_cast<std::uint32_t>(b.position());
    b.op(Op::returnvoid);
    b.method().handlers.push_back({from, to, static_cast<std::uint32_t>(b.position())});
    b.op(Op::pop).op(Op::getlocal_1).trace().op(Op::returnvoid);
    EXPECT_EQ(run(b.build()), "2\n");
}

TEST(RegisterForm, CallsTheOverrideOfAKnownClass)
{
    const auto called = classesUsedBy(
        [](AbcBuilder& b) { b.op(Op::getlocal_1).op(Op::callproperty, b.name("m"), 0).trace(); });
    EXPECT_EQ(run(called.build()), "2\n");
}

TEST(RegisterForm, ConvertsWhatIsStoredIntoTypedSlots)
{
    const auto stored = classesUsedBy([](AbcBuilder& b) {
        b.op(Op::getlocal_1).op(Op::pushdouble, b.number(4294967298.5)).op(Op::setproperty, b.name("x"));
        b.op(Op::getlocal_1).op(Op::getproperty, b.name("x")).trace();
        b.op(Op::getlocal_1).op(Op::pushstring, b.string("12")).op(Op::setproperty, b.name("x"));
        b.op(Op::getlocal_1).op(Op::getproperty, b.name("x")).byte(1).op(Op::add_i).trace();
    });
    EXPECT_EQ(run(stored.build()), "2\n13\n");
}

TEST(RegisterForm, TellsOfNullWhereAClassIsKnown)
{
    const auto used = classesUsedBy([](AbcBuilder& b) {
        b.op(Op::pushnull).op(Op::coerce, b.qname("Base")).op(Op::setlocal_1);
        b.op(Op::getlocal_1).op(Op::getproperty, b.name("x")).trace();
    });
    EXPECT_EQ(run(used.build()),
              "TypeError: Error #1009: Cannot access a property or method of a null object reference.");
}

TEST(RegisterForm, StopsLoopsThatGoOnForTooLong)
{
    struct Case {
        const char* name;
        void (*write)(AbcBuilder&);
    };
    const Case kCases[] = {
        {"a step and its jump",
         [](AbcBuilder& b) {
             b.byte(0).op(Op::setlocal_1).label("again").op(Op::label);
             b.op(Op::declocal_i, 1).op(Op::getlocal_1).byte(100).branch(Op::iflt, "again");
         }},
        {"two jumps that take turns",
         [](AbcBuilder& b) {
             b.byte(0).op(Op::setlocal_1).label("again").op(Op::label);
             b.op(Op::getlocal_1).byte(1).op(Op::bitxor).op(Op::setlocal_1);
             b.op(Op::getlocal_1).branch(Op::iftrue, "again").op(Op::getlocal_1).byte(0);
             b.branch(Op::ifeq, "again");
         }},
        {"a jump within a loop",
         [](AbcBuilder& b) {
             b.label("outer").op(Op::label).byte(0).op(Op::setlocal_1).label("again").op(Op::label);
             b.op(Op::inclocal_i, 1).op(Op::getlocal_1).byte(10).branch(Op::iflt, "again");
             b.op(Op::pushtrue).branch(Op::iftrue, "outer");
         }},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        AbcBuilder b;
        b.op(Op::getlocal_0).op(Op::pushscope);
        c.write(b);
        b.op(Op::pushstring, b.string("past it")).trace().op(Op::returnvoid);
        EXPECT_EQ(run(b.build()).find("past it"), std::string::npos);
    }
}

TEST(RegisterForm, SurvivesDamagedCode)
{
    const auto whole =
        classesUsedBy([](AbcBuilder& b) {
            b.byte(0).op(Op::setlocal_2).label("again").op(Op::label);
            b.op(Op::getlocal_1).op(Op::getlocal_1).op(Op::getproperty, b.name("x")).op(Op::getlocal_2);
            b.op(Op::add_i).op(Op::setproperty, b.name("x")).op(Op::inclocal_i, 2);
            b.op(Op::getlocal_2).byte(20).branch(Op::iflt, "again");
            b.op(Op::getlocal_1).op(Op::getproperty, b.name("x")).trace();
        }).build();
    EXPECT_EQ(run(whole), "190\n");
    std::minstd_rand random(20261122);
    for (int i = 0; i < 1500; ++i) {
        auto damaged = whole;
        for (int k = 0; k < 1 + i % 4; ++k)
            damaged[damaged.size() / 2 + random() % (damaged.size() / 2)] =
                static_cast<std::uint8_t>(random());
        run(damaged); // ends, one way or another
    }
}

} // namespace flash::avm2
