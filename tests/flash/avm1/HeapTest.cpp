#include "Machine.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace flash::avm1::test
{
namespace
{

using enum swf::ActionCode;

// The tests run in frames of their own, and the stack is cleared of what those left behind.
__attribute__((noinline)) void makeCycles(Machine& machine, int count)
{
    for (int i = 0; i < count; ++i) {
        Object* a = machine.vm.newObject();
        Object* b = machine.vm.newObject();
        a->define(machine.vm, "other", b);
        b->define(machine.vm, "other", a);
    }
}

TEST(Heap, FreesCyclesAndKeepsWhatIsRooted)
{
    Machine machine;
    machine.vm.collect();
    const std::size_t before = machine.vm.heap().liveCells();
    Root<Object> kept(machine.vm.heap(), machine.vm.newObject());
    kept->define(machine.vm, "child", machine.vm.newObject());
    makeCycles(machine, 1000);
    EXPECT_GT(machine.vm.heap().liveCells(), before + 2000);
    machine.vm.collect();
    // A few dead ones may still be mentioned on the stack.
    EXPECT_LT(machine.vm.heap().liveCells(), before + 50);
    EXPECT_TRUE(kept->get(machine.vm, machine.vm.name("child")).isObject());
}

TEST(Heap, ForgetsNamesThatNothingUses)
{
    Machine machine;
    machine.vm.collect();
    const std::size_t before = machine.vm.heap().liveCells();
    for (std::uint32_t i = 0; i < 10000; ++i) machine.vm.names().fromIndex(i);
    machine.vm.collect();
    EXPECT_LT(machine.vm.heap().liveCells(), before + 50);
}

TEST(Heap, TakesNoMoreMemoryForWhatIsDroppedAtOnce)
{
    Machine machine;
    std::size_t most = 0;
    for (int i = 0; i < 300'000; ++i) {
        machine.vm.newLiteral()->define(machine.vm, "x", Value(i));
        most = std::max(most, machine.vm.heap().bytesInUse());
        machine.vm.checkLoop();
    }
    EXPECT_GT(machine.vm.heap().collections(), 2U);
    EXPECT_LT(most, std::size_t{10} << 20);
}

struct Counted final : Native {
    static constexpr char kTag = 0;
    explicit Counted(int& count) : count(count) {}
    ~Counted() override { ++count; }
    [[nodiscard]] const void* tag() const override { return &kTag; }
    int& count;
};

TEST(Heap, CallsTheFinalizerOfANativeSide)
{
    int destroyed = 0;
    {
        Machine machine;
        for (int i = 0; i < 100; ++i) machine.vm.newObject()->attachNew<Counted>(destroyed);
        machine.vm.collect();
        EXPECT_GT(destroyed, 90);
    }
    EXPECT_EQ(destroyed, 100);
}

/// A script that allocates in every way there is, with a collection at every safe point.
TEST(Heap, SurvivesACollectionAtEverySafePoint)
{
    const auto run = [](bool stress) {
        Machine machine(7);
        if (stress) machine.vm.collectAlways();
        Assembler code;
        code.function("make", {"n"},
                      Assembler()
                          .push("v")
                          .get("n")
                          .push("t")
                          .push("text ")
                          .get("n")
                          .op(Add2)
                          .push(2)
                          .op(InitObject)
                          .op(Return));
        code.push("list").push(0).op(InitArray).op(SetVariable);
        code.push("i").push(0).op(SetVariable).label("again");
        code.get("i")
            .push(1)
            .push("make")
            .op(CallFunction)
            .push(1)
            .get("list")
            .push("push")
            .op(CallMethod)
            .op(Pop);
        code.push("i").get("i").op(Increment).op(SetVariable).get("i").push(20).op(Less2).jumpIf("again");
        // sortOn, join, split, a comparison function that allocates
        code.push("t").push(1).get("list").push("sortOn").op(CallMethod).op(Pop);
        code.get("list").push(3).op(GetMember).push("t").op(GetMember).trace();
        code.function("order", {"a", "b"},
                      Assembler()
                          .get("a")
                          .push("v")
                          .op(GetMember)
                          .push("")
                          .op(Add2)
                          .get("b")
                          .push("v")
                          .op(GetMember)
                          .push("")
                          .op(Add2)
                          .op(Less2)
                          .op(Return));
        code.get("order").push(1).get("list").push("sort").op(CallMethod).op(Pop);
        code.get("list").push(0).op(GetMember).push("t").op(GetMember).trace();
        code.push(",")
            .push(1)
            .push(",")
            .push(1)
            .get("list")
            .push("join")
            .op(CallMethod)
            .push("split")
            .op(CallMethod);
        code.push("length").op(GetMember).trace();
        return machine.run(code);
    };
    const std::string expected = run(false);
    EXPECT_NE(expected.find("text 11"), std::string::npos) << expected;
    EXPECT_EQ(run(true), expected);
}

} // namespace
} // namespace flash::avm1::test
