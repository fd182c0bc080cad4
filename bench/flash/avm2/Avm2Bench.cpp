#include "AbcBuilder.h"

#include "flash/avm2/abc/Abc.h"
#include "flash/avm2/classes/Library.h"

#include <benchmark/benchmark.h>

#include <functional>

// Loops as compilers write them, typed as people type them. Each figure is the time of one turn of the loop,
// the loop's own included. N and 4N: what is linear shows the same figure for both.
namespace flash::avm2::test
{
namespace
{

using abc::Op;

/// A movie whose only class is `class C { var x:int; function m(a:int) { return a; } }` and whose function is
/// `function run(n:int, a:*)`: locals 2 is the turn, 3 and above are the benchmark's.
class Program
{
public:
    using Write = std::function<void(AbcBuilder&)>;
    Program(const Write& before, const Write& turn, std::uint32_t (*argument)(AbcBuilder&) = nullptr)
    {
        AbcBuilder b;
        const std::uint32_t integer = b.name("int"), cls = b.qname("C");
        b.op(Op::getlocal_0).op(Op::pushscope);
        b.op(Op::findpropstrict, cls).op(Op::getlex, b.name("Object")).op(Op::newclass, 0);
        b.op(Op::initproperty, cls).op(Op::returnvoid);
        const std::uint32_t constructor = b.begin();
        b.op(Op::getlocal_0).op(Op::constructsuper, 0).op(Op::returnvoid);
        const std::uint32_t initializer = b.begin();
        b.op(Op::returnvoid);
        const std::uint32_t method = b.begin({integer});
        b.op(Op::getlocal_0).op(Op::pushscope).op(Op::getlocal_1).op(Op::returnvalue);
        const std::uint32_t closure = b.begin({integer});
        b.op(Op::getlocal_1).op(Op::returnvalue);
        b.classes.push_back({cls,
                             b.name("Object"),
                             constructor,
                             initializer,
                             {{b.qname("x"), 0, integer}, {b.qname("m"), 1, method}}});
        const std::uint32_t run = b.begin({integer, argument != nullptr ? argument(b) : 0});
        b.op(Op::getlocal_0).op(Op::pushscope);
        b.byte(0).op(Op::setlocal, 3).op(Op::newfunction, closure).op(Op::setlocal, 4);
        b.op(Op::findpropstrict, cls).op(Op::constructprop, cls, 0).op(Op::coerce, cls).op(Op::setlocal, 5);
        before(b);
        b.byte(0).op(Op::setlocal, 7).branch(Op::jump, "test").label("again").op(Op::label);
        turn(b);
        b.op(Op::inclocal_i, 7).label("test").op(Op::getlocal, 7).op(Op::getlocal, 1);
        b.branch(Op::iflt, "again").op(Op::returnvoid);
        b.globals = {{cls, 4, 0}, {b.qname("run"), 1, run}};
        const auto abc = abc::parseAbc(b.build());
        vm.guarded([&] {
            auto* domain = vm.heap().make<Domain>(vm.systemDomain());
            vm.movieDomain = domain;
            Unit* unit = domain->load(vm, *abc);
            global = unit->script(vm, 0);
        });
    }
    bool call(double turns, Value argument)
    {
        return vm.guarded([&] { vm.callPublic(Value(global.get()), "run", {Value(turns), argument}); });
    }

    Host host;
    Vm vm{host, classes::library()};
    Root<Object> global{vm.heap()};
};

void loop(
    benchmark::State& state, const Program::Write& turn, std::uint32_t (*argument)(AbcBuilder&) = nullptr,
    const std::function<Value(Vm&, int)>& make = {}, const Program::Write& before = [](AbcBuilder&) {})
{
    Program program(before, turn, argument);
    const auto turns = static_cast<int>(state.range(0));
    const Value given = make ? make(program.vm, turns) : Value::null();
    const Root<Object> kept(program.vm.heap(), given.asObject());
    for ([[maybe_unused]] auto round : state) {
        if (!program.call(turns, given)) state.SkipWithError("the script threw");
    }
    state.counters["ns/turn"] = benchmark::Counter(static_cast<double>(state.iterations()) * turns * 1e-9,
                                                   benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

std::uint32_t asArray(AbcBuilder& b) { return b.name("Array"); }
std::uint32_t asVector(AbcBuilder& b) { return b.vectorOf(b.name("int")); }
std::uint32_t asBytes(AbcBuilder& b) { return b.qname("Object"); }

Value numbers(Vm& vm, int count)
{
    const Value array(vm.newArray());
    std::uint32_t seed = 12345;
    for (int i = 0; i < count; ++i) {
        seed = seed * 1664525U + 1013904223U;
        vm.callPublic(array, "push", {Value(seed >> 8U)});
    }
    return array;
}

Value vector(Vm& vm, int count)
{
    return vm.construct(Value(vm.vectorOf(vm.classes().integer->instances)),
                        std::initializer_list<Value>{Value(count)});
}

Value bytes(Vm& vm, int count)
{
    const Value made = vm.construct(Value(vm.classes().byteArray), std::span<const Value>());
    vm.setPublic(made, "length", Value(count * 4));
    return made;
}

void BM_EmptyLoop(benchmark::State& state)
{
    loop(state, [](AbcBuilder&) {});
}
void BM_TypedArithmetic(benchmark::State& state)
{
    loop(
        state,
        [](AbcBuilder& b) {
            b.op(Op::getlocal_3)
                .op(Op::pushdouble, b.number(0.5))
                .op(Op::multiply)
                .op(Op::getlocal, 7)
                .op(Op::add);
            b.op(Op::convert_d).op(Op::setlocal_3);
        },
        nullptr, {}, [](AbcBuilder& b) { b.op(Op::pushnan).op(Op::setlocal_3); });
}
void sum(AbcBuilder& b)
{
    b.op(Op::getlocal_3).op(Op::getlocal_2).op(Op::getlocal, 7).op(Op::getproperty, AbcBuilder::kRuntimeName);
    b.op(Op::add).op(Op::convert_i).op(Op::setlocal_3);
}
void BM_ArraySum(benchmark::State& state) { loop(state, sum, asArray, numbers); }
void BM_VectorSum(benchmark::State& state) { loop(state, sum, asVector, vector); }
void BM_SealedProperty(benchmark::State& state)
{
    loop(state, [](AbcBuilder& b) {
        b.op(Op::getlocal, 5).op(Op::getlocal, 5).op(Op::getproperty, b.name("x")).op(Op::getlocal, 7);
        b.op(Op::add_i).op(Op::setproperty, b.name("x"));
    });
}
void BM_DynamicProperty(benchmark::State& state)
{
    loop(
        state,
        [](AbcBuilder& b) {
            b.op(Op::getlocal, 6).op(Op::getlocal, 6).op(Op::getproperty, b.name("x")).op(Op::getlocal, 7);
            b.op(Op::add).op(Op::setproperty, b.name("x"));
        },
        nullptr, {},
        [](AbcBuilder& b) {
            b.op(Op::pushstring, b.string("x")).byte(1).op(Op::newobject, 1).op(Op::setlocal, 6);
        });
}
void BM_MethodCall(benchmark::State& state)
{
    loop(state, [](AbcBuilder& b) {
        b.op(Op::getlocal, 5).op(Op::getlocal, 7).op(Op::callpropvoid, b.name("m"), 1);
    });
}
void BM_ClosureCall(benchmark::State& state)
{
    loop(state, [](AbcBuilder& b) {
        b.op(Op::getlocal, 4).op(Op::pushnull).op(Op::getlocal, 7).op(Op::call, 1).op(Op::pop);
    });
}
void BM_ReadInt(benchmark::State& state)
{
    loop(
        state,
        [](AbcBuilder& b) {
            b.op(Op::getlocal_3).op(Op::getlocal_2).op(Op::callproperty, b.name("readInt"), 0);
            b.op(Op::add).op(Op::convert_i).op(Op::setlocal_3);
        },
        asBytes, bytes,
        [](AbcBuilder& b) { b.op(Op::getlocal_2).byte(0).op(Op::setproperty, b.name("position")); });
}
void BM_Concatenation(benchmark::State& state)
{
    loop(
        state,
        [](AbcBuilder& b) {
            b.op(Op::getlocal, 6)
                .op(Op::pushstring, b.string("abc"))
                .op(Op::add)
                .op(Op::coerce_s)
                .op(Op::setlocal, 6);
        },
        nullptr, {}, [](AbcBuilder& b) { b.op(Op::pushstring, b.string("")).op(Op::setlocal, 6); });
}
void BM_NewObject(benchmark::State& state)
{
    loop(state, [](AbcBuilder& b) {
        b.op(Op::findpropstrict, b.name("C")).op(Op::constructprop, b.name("C"), 0).op(Op::setlocal, 6);
    });
}
/// Time in all, of a copy.
void BM_SortNumbers(benchmark::State& state)
{
    Program program(
        [](AbcBuilder& b) {
            b.op(Op::getlocal_2).op(Op::callproperty, b.name("concat"), 0).byte(16);
            b.op(Op::callpropvoid, b.name("sort"), 1);
        },
        [](AbcBuilder&) {}, asArray);
    const Value array = numbers(program.vm, static_cast<int>(state.range(0)));
    const Root<Object> kept(program.vm.heap(), array.asObject());
    for ([[maybe_unused]] auto round : state) {
        if (!program.call(1, array)) state.SkipWithError("the script threw");
    }
    state.SetComplexityN(state.range(0));
}

constexpr int kTurns = 250'000;
#define AVM2_LOOP(name) BENCHMARK(name)->Arg(kTurns)->Arg(4 * kTurns)
AVM2_LOOP(BM_EmptyLoop);
AVM2_LOOP(BM_TypedArithmetic);
AVM2_LOOP(BM_ArraySum);
AVM2_LOOP(BM_VectorSum);
AVM2_LOOP(BM_SealedProperty);
AVM2_LOOP(BM_DynamicProperty);
AVM2_LOOP(BM_MethodCall);
AVM2_LOOP(BM_ClosureCall);
AVM2_LOOP(BM_ReadInt);
AVM2_LOOP(BM_Concatenation);
AVM2_LOOP(BM_NewObject)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SortNumbers)->Arg(25'000)->Arg(100'000)->Unit(benchmark::kMillisecond);
#undef AVM2_LOOP

} // namespace
} // namespace flash::avm2::test
