// What scripts do most: counting loops, calls, growing strings, properties of the host. Each figure is also
// given per operation (items per second).

#include "script/ScriptControl.h"

#include <benchmark/benchmark.h>

namespace
{

void runProcedure(benchmark::State& state, std::u16string_view code, std::int64_t operations,
                  script::Dispatch* object = nullptr)
{
    script::ScriptControl control;
    control.setTimeout(std::chrono::milliseconds(0));
    if (object) control.addObject(u"Player", *object, true);
    if (!control.addCode(code)) state.SkipWithError("the script does not compile");
    for (auto _ : state) {
        if (!control.run(u"Bench")) state.SkipWithError("the script fails");
    }
    state.SetItemsProcessed(state.iterations() * operations);
}

void integerLoop(benchmark::State& state)
{
    runProcedure(state,
                 u"Sub Bench : Dim i, s : s = 0\n"
                 u"For i = 1 To 10000000 : s = (s + i * 3) Mod 1000003 : Next\n"
                 u"End Sub",
                 10'000'000);
}
BENCHMARK(integerLoop)->Unit(benchmark::kMillisecond);

void globalLoop(benchmark::State& state)
{
    runProcedure(state,
                 u"Dim i, s : s = 0\n"
                 u"Sub Bench : For i = 1 To 1000000 : s = (s + i * 3) Mod 1000003 : Next : End Sub",
                 1'000'000);
}
BENCHMARK(globalLoop)->Unit(benchmark::kMillisecond);

void undeclaredLoop(benchmark::State& state)
{
    runProcedure(state,
                 u"Sub Bench : s = 0\n"
                 u"For i = 1 To 1000000 : s = (s + i * 3) Mod 1000003 : Next\n"
                 u"End Sub",
                 1'000'000);
}
BENCHMARK(undeclaredLoop)->Unit(benchmark::kMillisecond);

void fibonacci27(benchmark::State& state)
{
    runProcedure(state,
                 u"Function Fib(n)\n"
                 u"If n < 2 Then Fib = n Else Fib = Fib(n - 1) + Fib(n - 2)\n"
                 u"End Function\n"
                 u"Sub Bench : x = Fib(27) : End Sub",
                 832'040); // calls
}
BENCHMARK(fibonacci27)->Unit(benchmark::kMillisecond);

// Twice the pieces must take about twice the time.
void stringBuilding(benchmark::State& state)
{
    const std::string count = std::to_string(state.range(0));
    runProcedure(state,
                 u"Sub Bench : Dim i, s : s = \"\"\n"
                 u"For i = 1 To " +
                     std::u16string(count.begin(), count.end()) +
                     u" : s = s & \"piece \" & i : Next\n"
                     u"End Sub",
                 state.range(0));
}
BENCHMARK(stringBuilding)->Arg(100'000)->Arg(200'000)->Arg(400'000)->Unit(benchmark::kMillisecond);

void arrayElements(benchmark::State& state)
{
    runProcedure(state,
                 u"Sub Bench : Dim i, a(999), s\n"
                 u"For i = 0 To 99999 : a(i Mod 1000) = i : s = a(i Mod 1000) : Next\n"
                 u"End Sub",
                 100'000);
}
BENCHMARK(arrayElements)->Unit(benchmark::kMillisecond);

void hostProperties(benchmark::State& state)
{
    int volume = 0;
    const auto player = script::make<script::HostObject>(u"Player");
    player->property(
        u"Volume", [&]() -> script::Result<script::Value> { return script::Value::longInteger(volume); },
        [&](const script::Value& value) -> script::Result<void> {
            volume = value.whole();
            return {};
        });
    runProcedure(state,
                 u"Sub Bench : Dim i : Player.Volume = 0\n"
                 u"For i = 1 To 100000 : Player.Volume = Player.Volume + 1 : Next\n"
                 u"End Sub",
                 100'000, player.get());
}
BENCHMARK(hostProperties)->Unit(benchmark::kMillisecond);

void classProperties(benchmark::State& state)
{
    runProcedure(state,
                 u"Class Box\n"
                 u"Private m\n"
                 u"Public Property Get V : V = m : End Property\n"
                 u"Public Property Let V(x) : m = x : End Property\n"
                 u"End Class\n"
                 u"Sub Bench : Dim i, b : Set b = New Box : b.V = 0\n"
                 u"For i = 1 To 100000 : b.V = b.V + 1 : Next\n"
                 u"End Sub",
                 100'000);
}
BENCHMARK(classProperties)->Unit(benchmark::kMillisecond);

void functionCalls(benchmark::State& state)
{
    runProcedure(state,
                 u"Function Same(n) : Same = n : End Function\n"
                 u"Sub Bench : Dim i, s\n"
                 u"For i = 1 To 1000000 : s = Same(i) : Next\n"
                 u"End Sub",
                 1'000'000);
}
BENCHMARK(functionCalls)->Unit(benchmark::kMillisecond);

// Ten times the entries must take about ten times as long.
void dictionaryAdd(benchmark::State& state)
{
    const std::string count = std::to_string(state.range(0));
    runProcedure(state,
                 u"Sub Bench : Dim d, i : Set d = CreateObject(\"Scripting.Dictionary\")\n"
                 u"For i = 1 To " +
                     std::u16string(count.begin(), count.end()) +
                     u" : d.Add \"key\" & i, i : Next\n"
                     u"End Sub",
                 state.range(0));
}
BENCHMARK(dictionaryAdd)->Arg(10'000)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

void dictionaryLookUp(benchmark::State& state)
{
    const std::string digits = std::to_string(state.range(0));
    const std::u16string count(digits.begin(), digits.end());
    runProcedure(state,
                 u"Dim d, i : Set d = CreateObject(\"Scripting.Dictionary\")\n"
                 u"For i = 1 To " +
                     count + u" : d.Add \"key\" & i, i : Next\n" +
                     u"Sub Bench : Dim i, s\n"
                     u"For i = 1 To " +
                     count + u" : s = d(\"key\" & i) : Next\n" + u"End Sub",
                 state.range(0));
}
BENCHMARK(dictionaryLookUp)->Arg(10'000)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

// What of the figures below is the making of the keys: the same loop and the same texts, without a
// dictionary.
void dictionaryKeysAlone(benchmark::State& state)
{
    const std::string count = std::to_string(state.range(0));
    runProcedure(state,
                 u"Sub Bench : Dim i, s\n"
                 u"For i = 1 To " +
                     std::u16string(count.begin(), count.end()) +
                     u" : s = \"key\" & i : Next\n"
                     u"End Sub",
                 state.range(0));
}
BENCHMARK(dictionaryKeysAlone)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

// Keys in no order, so that neither the table nor the entries nor the texts are where the processor looks
// ahead.
void dictionaryLookUpAnywhere(benchmark::State& state)
{
    const std::string digits = std::to_string(state.range(0));
    const std::u16string count(digits.begin(), digits.end());
    runProcedure(state,
                 u"Dim d, i : Set d = CreateObject(\"Scripting.Dictionary\")\n"
                 u"For i = 0 To " +
                     count + u" - 1 : d.Add \"key\" & i, i : Next\n" +
                     u"Sub Bench : Dim i, k, s : k = 1\n"
                     u"For i = 1 To " +
                     count + u" : k = (k * 2003 + 7) Mod " + count + u" : s = d(\"key\" & k) : Next\n" +
                     u"End Sub",
                 state.range(0));
}
BENCHMARK(dictionaryLookUpAnywhere)->Arg(10'000)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

} // namespace
