#include "Machine.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <ctime>

// Script loops as movies write them. Each figure is the time of one turn of the loop; the empty loop (four
// variable accesses, an increment, a comparison and a jump) is what to subtract.
namespace flash::avm1::test
{
namespace
{

using enum swf::ActionCode;

constexpr int kTurns = 100000;

/// Runs `body` kTurns times inside of a function with its loop variable in a local or in a register.
void loop(benchmark::State& state, const Assembler& before, const Assembler& body, bool inRegister = false)
{
    Machine machine;
    machine.run(before);
    Assembler loop;
    if (inRegister) {
        loop.push(0).storeRegister(1).op(Pop);
        loop.label("again");
    } else {
        loop.push("i").push(0).op(DefineLocal);
        loop.label("again");
    }
    loop.append(body);
    if (inRegister)
        loop.pushRegister(1).op(Increment).storeRegister(1);
    else
        loop.push("i").get("i").op(Increment).op(SetVariable).get("i");
    loop.push(kTurns).op(Less2).jumpIf("again");
    Assembler define;
    if (inRegister)
        define.function2("run", 4, 0, {}, loop);
    else
        define.function("run", {}, loop);
    machine.run(define);
    const Value run = machine.root->get(machine.vm, machine.vm.name("run"));
    for ([[maybe_unused]] auto turn : state) {
        machine.vm.call(run, machine.root.get(), {});
        machine.vm.collectIfDue();
    }
    state.SetItemsProcessed(state.iterations() * kTurns);
    state.counters["ns/turn"] = benchmark::Counter(static_cast<double>(state.iterations()) * kTurns * 1e-9,
                                                   benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

Assembler object()
{
    Assembler code;
    code.push("o")
        .push("x")
        .push(1)
        .push("y")
        .push(2)
        .push("z")
        .push(3)
        .push(3)
        .op(InitObject)
        .op(SetVariable);
    code.push("a").push(1).push(2).push(3).push(4).push(4).op(InitArray).op(SetVariable);
    code.function("f", {"p"}, Assembler().get("p").op(Return));
    code.get("o")
        .push("m")
        .function2("", 3, 1, {{2, "p"}}, Assembler().pushRegister(2).op(Return))
        .op(SetMember);
    code.function("C", {}, Assembler().get("this").push("v").push(1).op(SetMember));
    return code;
}

void BM_EmptyLoop(benchmark::State& state) { loop(state, object(), Assembler()); }
void BM_EmptyLoopInRegisters(benchmark::State& state) { loop(state, object(), Assembler(), true); }
void BM_Arithmetic(benchmark::State& state)
{
    loop(state, object(), Assembler().pushRegister(1).push(3).op(Multiply).push(7).op(Add2).op(Pop), true);
}
void BM_GetMember(benchmark::State& state)
{
    loop(state, object(), Assembler().get("o").push("z").op(GetMember).op(Pop), true);
}
void BM_SetMember(benchmark::State& state)
{
    loop(state, object(), Assembler().get("o").push("z").pushRegister(1).op(SetMember), true);
}
void BM_ArrayElement(benchmark::State& state)
{
    loop(state, object(), Assembler().get("a").push(2).op(GetMember).op(Pop), true);
}
void BM_CallFunction(benchmark::State& state)
{
    loop(state, object(), Assembler().push(1).push(1).push("f").op(CallFunction).op(Pop), true);
}
void BM_CallMethod(benchmark::State& state)
{
    loop(state, object(), Assembler().push(1).push(1).get("o").push("m").op(CallMethod).op(Pop), true);
}
void BM_NewObject(benchmark::State& state)
{
    loop(state, object(), Assembler().push(0).push("C").op(NewObject).op(Pop), true);
}
void BM_BuildString(benchmark::State& state)
{
    Assembler before = object();
    before.push("s").push("").op(SetVariable);
    loop(state, before, Assembler().push("s").get("s").push("abc").op(Add2).op(SetVariable), true);
}

/// Time of the processor, so that what else the machine does is no pause.
std::chrono::nanoseconds threadTime()
{
    std::timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return std::chrono::seconds(now.tv_sec) + std::chrono::nanoseconds(now.tv_nsec);
}

/// Objects that nothing holds on to, beside as many that stay as the argument says: what the pauses for
/// collections are, and how much memory is in use at most. One turn is a million objects.
void BM_ShortLivedObjects(benchmark::State& state)
{
    constexpr int kObjects = 1'000'000;
    Machine machine;
    Heap& heap = machine.vm.heap();
    const auto make = [&machine] {
        Object* object = machine.vm.newLiteral();
        object->define(machine.vm, "x", Value(1));
        object->define(machine.vm, "y", Value(2));
        return object;
    };
    RootedValues kept(heap);
    for (std::int64_t i = 0; i < state.range(0); ++i) kept.push_back(make());
    heap.collect();
    std::chrono::nanoseconds longest{}, all{};
    std::size_t most = 0, pauses = 0;
    for ([[maybe_unused]] auto turn : state) {
        for (int i = 0; i < kObjects; ++i) {
            benchmark::DoNotOptimize(make());
            if (!heap.shouldCollect()) continue;
            most = std::max(most, heap.bytesInUse());
            const std::chrono::nanoseconds start = threadTime();
            heap.collect();
            const std::chrono::nanoseconds pause = threadTime() - start;
            longest = std::max(longest, pause);
            all += pause;
            ++pauses;
        }
    }
    using Milliseconds = std::chrono::duration<double, std::milli>;
    state.SetItemsProcessed(state.iterations() * kObjects);
    state.counters["longest ms"] = Milliseconds(longest).count();
    state.counters["mean ms"] =
        Milliseconds(all).count() / static_cast<double>(std::max<std::size_t>(pauses, 1));
    state.counters["MB"] = static_cast<double>(most) / (1 << 20);
}

BENCHMARK(BM_EmptyLoop);
BENCHMARK(BM_EmptyLoopInRegisters);
BENCHMARK(BM_Arithmetic);
BENCHMARK(BM_GetMember);
BENCHMARK(BM_SetMember);
BENCHMARK(BM_ArrayElement);
BENCHMARK(BM_CallFunction);
BENCHMARK(BM_CallMethod);
BENCHMARK(BM_NewObject);
BENCHMARK(BM_BuildString);
BENCHMARK(BM_ShortLivedObjects)->Arg(0)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace flash::avm1::test
