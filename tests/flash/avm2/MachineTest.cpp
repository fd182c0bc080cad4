#include "AbcBuilder.h"

#include "flash/avm2/abc/Abc.h"
#include "flash/avm2/abc/Disassembly.h"
#include "flash/avm2/classes/Library.h"

#include <gtest/gtest.h>

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
        error = toUtf8(text).substr(0, toUtf8(text).find('\n'));
    }
    std::string out, error;
};

struct Outcome {
    std::string out, error;
};

Outcome run(const std::vector<std::uint8_t>& bytes, bool collectAlways = false)
{
    Printer printer;
    Vm vm(printer, classes::library());
    if (collectAlways) vm.collectAlways();
    auto abc = abc::parseAbc(bytes);
    if (!abc) return {{}, abc.error().what};
    vm.guarded([&] {
        auto* domain = vm.heap().make<Domain>(vm.systemDomain());
        vm.movieDomain = domain;
        domain->load(vm, *abc)->runAllScripts(vm);
    });
    return {printer.out, printer.error};
}

} // namespace

TEST(Abc, RefusesEveryShorterBlock)
{
    AbcBuilder builder;
    builder.number(1.5);
    builder.op(Op::pushstring, builder.string("text")).trace().op(Op::returnvoid);
    const auto whole = builder.build();
    ASSERT_TRUE(abc::parseAbc(whole));
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_FALSE(abc::parseAbc(std::span(whole).first(length))) << length;
}

TEST(Abc, RefusesCountsThatNoBlockCanHold)
{
    const std::vector<std::uint8_t> hostile = {16, 0, 46, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0x0F};
    EXPECT_FALSE(abc::parseAbc(hostile));
}

TEST(Abc, ListsItsInstructions)
{
    AbcBuilder builder;
    builder.op(Op::pushstring, builder.string("seen")).op(Op::pop).op(Op::returnvoid);
    const auto abc = abc::parseAbc(builder.build());
    ASSERT_TRUE(abc);
    EXPECT_NE(abc::disassemble(**abc).find("pushstring \"seen\""), std::string::npos);
}

TEST(Verifier, RefusesWhatWouldReachOutsideItsFrame)
{
    struct Case {
        const char* name;
        void (*write)(AbcBuilder&);
        int number;
    };
    const Case kCases[] = {
        {"pop of an empty stack", [](AbcBuilder& b) { b.op(Op::pop).op(Op::returnvoid); }, 1024},
        {"more values than stated",
         [](AbcBuilder& b) {
             b.method().maxStack = 1;
             b.byte(1).byte(2).op(Op::returnvoid);
         },
         1023},
        {"register beyond the frame",
         [](AbcBuilder& b) { b.op(Op::getlocal, 12).op(Op::pop).op(Op::returnvoid); }, 1025},
        {"text beyond the pool",
         [](AbcBuilder& b) { b.op(Op::pushstring, 99).op(Op::pop).op(Op::returnvoid); }, 1032},
        {"jump into an instruction",
         [](AbcBuilder& b) { b.op(Op::pushtrue).jump(Op::iftrue, 1).byte(1).op(Op::pop).op(Op::returnvoid); },
         1021},
        {"jump out of the code", [](AbcBuilder& b) { b.jump(Op::jump, 1000).op(Op::returnvoid); }, 1021},
        {"no end", [](AbcBuilder& b) { b.byte(1).op(Op::pop); }, 1020},
        {"unknown instruction", [](AbcBuilder& b) { b.raw({0xFE}).op(Op::returnvoid); }, 1011},
        {"scopes that are not there", [](AbcBuilder& b) { b.op(Op::popscope).op(Op::returnvoid); }, 1018},
        {"two depths at one place",
         [](AbcBuilder& b) { b.op(Op::pushtrue).jump(Op::iftrue, 2).byte(1).op(Op::returnvoid); }, 1030},
        {"handler beyond the code",
         [](AbcBuilder& b) {
             b.op(Op::returnvoid);
             b.method().handlers.push_back({0, 1, 50});
         },
         1054},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        AbcBuilder builder;
        c.write(builder);
        EXPECT_TRUE(
            run(builder.build()).error.starts_with("VerifyError: Error #" + std::to_string(c.number) + ":"))
            << run(builder.build()).error;
    }
}

TEST(Verifier, DoesNotLookAtWhatIsNeverReached)
{
    AbcBuilder builder;
    builder.op(Op::returnvoid).raw({0xFE, 0xFF});
    EXPECT_EQ(run(builder.build()).error, "");
}

TEST(Interpreter, CountsInALoop)
{
    AbcBuilder b;
    b.byte(0).op(Op::setlocal, 1);
    b.jump(Op::jump, 3);
    b.op(Op::label).op(Op::inclocal_i, 1);
    b.op(Op::getlocal, 1).byte(100);
    b.jump(Op::iflt, -11);
    b.op(Op::getlocal, 1).trace().op(Op::returnvoid);
    const Outcome outcome = run(b.build());
    EXPECT_EQ(outcome.error, "");
    EXPECT_EQ(outcome.out, "100\n");
}

TEST(Interpreter, CatchesWhatItsRangeThrows)
{
    AbcBuilder b;
    const auto from = static_cast<std::uint32_t>(b.position());
    b.op(Op::pushnull).op(Op::getproperty, b.name("x")).op(Op::pop);
    const auto to = static_cast<std::uint32_t>(b.position());
    b.op(Op::returnvoid);
    b.method().handlers.push_back({from, to, static_cast<std::uint32_t>(b.position())});
    b.trace().op(Op::returnvoid);
    EXPECT_EQ(run(b.build()).out,
              "TypeError: Error #1009: Cannot access a property or method of a null object reference.\n");
}

TEST(Interpreter, ReportsWhatNobodyCatches)
{
    AbcBuilder b;
    const std::uint32_t name = b.name("nowhere");
    b.op(Op::findpropstrict, name).op(Op::pop).op(Op::returnvoid);
    EXPECT_EQ(run(b.build()).error, "ReferenceError: Error #1065: Variable nowhere is not defined.");
}

TEST(Interpreter, KeepsWhatItHoldsThroughCollections)
{
    // Arrays in arrays, joined in the end: everything on the way is garbage but for what is held.
    AbcBuilder b;
    b.op(Op::pushstring, b.string("a"))
        .op(Op::pushstring, b.string("b"))
        .op(Op::newarray, 2)
        .op(Op::setlocal, 1);
    for (int i = 0; i < 5; ++i) {
        b.op(Op::getlocal, 1)
            .op(Op::getlocal, 1)
            .op(Op::callproperty, b.name("concat"), 1)
            .op(Op::setlocal, 1);
    }
    b.op(Op::getlocal, 1)
        .op(Op::pushstring, b.string(""))
        .op(Op::callproperty, b.name("join"), 1)
        .trace()
        .op(Op::returnvoid);
    std::string expected;
    for (int i = 0; i < 32; ++i) expected += "ab";
    EXPECT_EQ(run(b.build(), true).out, expected + "\n");
}

TEST(Interpreter, EndsRecursionWithAnError)
{
    // A script that asks for itself by an accessor of its own would do; a function that applies itself does
    // the same.
    AbcBuilder b;
    const std::uint32_t f = b.name("f");
    b.op(Op::getlocal_0).op(Op::newfunction, 0).op(Op::setproperty, f);
    b.op(Op::getlocal_0).op(Op::callpropvoid, f, 0);
    b.op(Op::returnvoid);
    EXPECT_EQ(run(b.build()).error, "Error: Error #1023: Stack overflow occurred.");
}

TEST(Numbers, PrintAsScriptsPrintThem)
{
    struct Case {
        double number;
        const char* text;
    };
    constexpr Case kCases[] = {
        {0.1, "0.1"},           {1e21, "1e+21"}, {123456789012345680000.0, "123456789012345680000"},
        {0.000001, "0.000001"}, {-0.0, "0"},     {1.0 / 3, "0.3333333333333333"},
        {5e-324, "5e-324"},
    };
    for (const Case& c : kCases) EXPECT_EQ(toUtf8(numberText(c.number)), c.text);
}

} // namespace flash::avm2
