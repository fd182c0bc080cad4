#include "Machine.h"

#include <gtest/gtest.h>

namespace flash::avm1::test
{
namespace
{

using enum swf::ActionCode;

TEST(Interpreter, RunsALoopWithBackwardJumps)
{
    Machine machine;
    Assembler code;
    code.push("i").push(0).op(SetVariable);
    code.label("again").push("i").get("i").op(Increment).op(SetVariable);
    code.get("i").push(5).op(Less2).jumpIf("again");
    code.get("i").trace();
    EXPECT_EQ(machine.run(code), "5");
}

TEST(Interpreter, CallsFunctionsWithArgumentsLocalsAndClosures)
{
    Machine machine;
    // counter(start) returns a function that counts on from there.
    Assembler inner;
    inner.push("n").get("n").op(Increment).op(SetVariable).get("n").op(Return);
    Assembler outer;
    outer.push("n").get("start").op(DefineLocal).function("", {}, inner).op(Return);
    Assembler code;
    code.function("counter", {"start"}, outer);
    code.push("a").push(10).push(1).push("counter").op(CallFunction).op(SetVariable);
    code.push("b").push(20).push(1).push("counter").op(CallFunction).op(SetVariable);
    for (const char* name : {"a", "a", "b"}) code.push(0).push(name).op(CallFunction).trace();
    code.get("n").trace();
    EXPECT_EQ(machine.run(code), "11|12|21|undefined");
}

TEST(Interpreter, PreloadsRegistersInTheirOrder)
{
    Machine machine;
    Assembler body;
    body.pushRegister(1).push("name").op(GetMember).trace();   // this
    body.pushRegister(2).push("length").op(GetMember).trace(); // arguments
    body.pushRegister(4).trace();                              // a parameter in a register
    body.get("arguments").op(TypeOf).trace();                  // in a register, so no variable
    Assembler code;
    code.push("o").push("name").push("me").push(1).op(InitObject).op(SetVariable);
    code.get("o").push("f").function2("", 5, 1 | 4, {{4, "p"}}, body).op(SetMember);
    code.push("first").push(1).get("o").push("f").op(CallMethod).op(Pop);
    EXPECT_EQ(machine.run(code), "me|1|first|undefined");
}

TEST(Interpreter, WithEndsWhereverItsBodyIsLeft)
{
    Machine machine;
    Assembler code;
    code.push("x").push("outside").op(SetVariable);
    code.push("o").push("x").push("inside").push(1).op(InitObject).op(SetVariable);
    Assembler body;
    body.get("x").trace();
    code.get("o").with(body).get("x").trace();
    // Jumping out of the body: the target lies right behind it (a `break`).
    Assembler leaving;
    leaving.get("x").trace().longOp(Jump, {4, 0}).ops({Pop, Pop, Pop, Pop});
    code.get("o").with(leaving).get("x").trace();
    EXPECT_EQ(machine.run(code), "inside|outside|inside|outside");
}

TEST(Interpreter, FinallyRunsOnEveryWayOut)
{
    struct Case {
        const char* name;
        Assembler body;
        const char* expected;
    };
    const Case kCases[] = {
        // Compilers end the body with a jump past what catches.
        {"falling through", Assembler().push("body").trace(),
         "body|caught undefined|finally|after|undefined"},
        {"a caught throw", Assembler().push("oops").op(Throw), "caught oops|finally|after|undefined"},
        {"a return", Assembler().push("r").op(Return), "finally|r"},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        Machine machine;
        Assembler caught;
        caught.push("caught ").get("e").op(Add2).trace();
        Assembler last;
        last.push("finally").trace();
        Assembler body;
        body.tryBlock(c.body, "e", &caught, &last).push("after").trace();
        Assembler code;
        code.function("f", {}, body).push(0).push("f").op(CallFunction).trace();
        EXPECT_EQ(machine.run(code), c.expected);
    }
}

TEST(Interpreter, ThrowCrossesCallsAndEndsTheBlockWhenNobodyCatches)
{
    Machine machine;
    Assembler thrower;
    thrower.push("deep").op(Throw);
    Assembler caught;
    caught.get("e").trace();
    Assembler body;
    body.push(0).push("f").op(CallFunction).push("not reached").trace();
    Assembler code;
    code.function("f", {}, thrower).tryBlock(body, "e", &caught, nullptr);
    code.push(0).push("f").op(CallFunction).push("nor here").trace();
    EXPECT_EQ(machine.run(code), "deep");
    EXPECT_EQ(machine.host.logged.size(), 1U);
    EXPECT_EQ(machine.run(Assembler().push("next block").trace()), "next block");
}

TEST(Interpreter, SuperReachesTheConstructorAndTheMethodAbove)
{
    Machine machine(7);
    Assembler code;
    code.function("A", {"x"}, Assembler().get("this").push("x").get("x").op(SetMember));
    code.get("A")
        .push("prototype")
        .op(GetMember)
        .push("name")
        .function("", {}, Assembler().push("A").op(Return))
        .op(SetMember);
    code.function("B", {}, Assembler().push(7).push(1).get("super").pushUndefined().op(CallMethod).op(Pop));
    code.get("B").get("A").op(Extends);
    Assembler name;
    name.push("B over ").push(0).get("super").push("name").op(CallMethod).op(Add2).op(Return);
    code.get("B").push("prototype").op(GetMember).push("name").function("", {}, name).op(SetMember);
    code.push("b").push(0).push("B").op(NewObject).op(SetVariable);
    code.push(0).get("b").push("name").op(CallMethod).trace();
    code.get("b").push("x").op(GetMember).trace();
    code.get("b").get("A").op(InstanceOf).trace();
    EXPECT_EQ(machine.run(code), "B over A|7|true");
}

TEST(Interpreter, ForInSeesPrototypesFirstAndTheLatestNameOfEach)
{
    Machine machine;
    Assembler code;
    code.push("o").push(0).op(InitObject).op(SetVariable);
    for (const char* name : {"a", "b", "c"}) code.get("o").push(name).push(1).op(SetMember);
    code.get("o").push("__proto__").push("p").push(1).push("a").push(2).push(2).op(InitObject).op(SetMember);
    code.get("o").op(Enumerate2);
    code.label("next").storeRegister(0).pushNull().op(Equals2).jumpIf("done").pushRegister(0).trace().jump(
        "next");
    code.label("done");
    EXPECT_EQ(machine.run(code), "p|c|b|a");
}

TEST(Interpreter, NamesFoldBeforeVersion7Only)
{
    for (const auto& [version, expected] : {std::pair(6, "1"), std::pair(7, "undefined")}) {
        Machine machine(version);
        EXPECT_EQ(machine.run(Assembler().push("Foo").push(1).op(SetVariable).get("fOO").trace()), expected);
    }
}

TEST(Interpreter, EndlessRecursionEndsTheScriptAndSaysWhy)
{
    Machine machine;
    Assembler body;
    body.push(0).push("f").op(CallFunction).op(Pop);
    Assembler code;
    code.function("f", {}, body).push(0).push("f").op(CallFunction).push("not reached").trace();
    EXPECT_EQ(machine.run(code), "");
    ASSERT_EQ(machine.host.logged.size(), 1U);
    EXPECT_EQ(machine.host.logged[0], "256 levels of recursion were exceeded in one action list.");
}

TEST(Interpreter, EndlessLoopIsStoppedByTheClock)
{
    Machine machine;
    machine.host.realStepMs = 1000;
    EXPECT_EQ(machine.run(Assembler().label("again").jump("again").push("after").trace()), "");
    EXPECT_EQ(machine.host.logged.size(), 1U);
}

TEST(Interpreter, KeepsToTheTimeThatTheMovieAllows)
{
    struct Case {
        const char* name;
        double timeoutMs, stoppedAtMs;
    };
    constexpr Case kCases[] = {
        {"what the movie says", 4000, 4000},
        {"zero is the usual", 0, Vm::kUsualTimeoutMs},
        {"more than anyone waits", 65535000, Vm::kMaxTimeoutMs},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        Machine machine;
        machine.host.realStepMs = 1000;
        machine.vm.setLimits(0, c.timeoutMs);
        machine.run(Assembler().label("again").jump("again"));
        EXPECT_TRUE(machine.vm.isDisabled());
        // One look at the clock when the script starts, which then shows 1000.
        EXPECT_EQ(machine.host.realMs, 1000 + c.stoppedAtMs);
    }
}

TEST(Interpreter, CachesNoticeWhatChangesBelowThem)
{
    Machine machine;
    // read() traces o.x through the same instruction each time.
    Assembler code;
    code.function("read", {}, Assembler().get("o").push("x").op(GetMember).trace());
    const auto read = [&] { code.push(0).push("read").op(CallFunction).op(Pop); };
    code.push("base").push("x").push("base").push(1).op(InitObject).op(SetVariable);
    code.push("mid").push(0).op(InitObject).op(SetVariable);
    code.push("o").push(0).op(InitObject).op(SetVariable);
    code.get("mid").push("__proto__").get("base").op(SetMember);
    code.get("o").push("__proto__").get("mid").op(SetMember);
    read();
    read();
    code.get("mid").push("x").push("mid").op(SetMember);
    read();
    code.get("o").push("x").push("own").op(SetMember);
    read();
    code.get("o").push("x").op(Delete).op(Pop);
    read();
    code.get("mid").push("x").op(Delete).op(Pop);
    read();
    code.get("o").push("__proto__").pushNull().op(SetMember);
    read();
    EXPECT_EQ(machine.run(code), "base|base|mid|own|mid|base|undefined");
}

TEST(Interpreter, DamagedCodeEndsQuietly)
{
    struct Case {
        const char* name;
        std::vector<std::uint8_t> bytes;
    };
    const Case kCases[] = {
        {"length beyond the end", {0x96, 0xFF, 0xFF, 0x00, 'a'}},
        {"a long action without a length", {0x96}},
        {"jump far outside", {0x99, 2, 0, 0xFF, 0x7F}},
        {"jump into itself", {0x99, 2, 0, 0xFC, 0xFF, 0x00}},
        {"call without operands", {0x3D, 0x52, 0x40, 0x53}},
        {"function body beyond the end", {0x9B, 5, 0, 0, 0, 0, 0xFF, 0xFF, 0x17}},
        {"try with nothing", {0x8F, 8, 0, 7, 0xFF, 0xFF, 0, 0, 0, 0, 0}},
        {"huge argument count", {0x96, 5, 0, 7, 0xFF, 0xFF, 0xFF, 0x7F, 0x42, 0x17}},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        Machine machine;
        machine.host.realStepMs = 1000;
        machine.run(c.bytes);
        EXPECT_TRUE(machine.vm.isDisabled() || machine.run(Assembler().push("alive").trace()) == "alive");
    }
}

TEST(Interpreter, RandomBytesDoNoHarm)
{
    Machine machine;
    machine.host.realStepMs = 1000;
    std::uint32_t seed = 12345;
    for (int round = 0; round < 3000; ++round) {
        std::vector<std::uint8_t> bytes(64);
        for (std::uint8_t& byte : bytes) {
            seed = seed * 1664525 + 1013904223;
            byte = static_cast<std::uint8_t>(seed >> 24);
            // Short lengths keep more of the actions well-formed.
            if ((seed & 0x300) == 0) byte &= 7;
        }
        machine.run(bytes);
    }
    EXPECT_TRUE(machine.vm.isDisabled() || machine.run(Assembler().push("alive").trace()) == "alive");
}

} // namespace
} // namespace flash::avm1::test
