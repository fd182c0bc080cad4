#include "Program.h"

#include <QApplication>
#include <benchmark/benchmark.h>

// What the skins cost: 4 ms are a step of resizing that nobody feels, 150 ms a switch that seems at once.

namespace
{

/// @param index which of the skins that ship
void show(benchmark::State& state, bench::Program& program)
{
    player::Player& player = program.player();
    if (player.menus().isChecked("mnuMenuBar")) player.ToggleMenu();
    player.skinWindow().mnuSkinList_Click(static_cast<int>(state.range(0)));
    player.control().Stop();
    QApplication::processEvents();
    state.SetLabel(player.skinWindow().selectedSkin().toStdString());
}

/// A step of the window's edge: layout, shape and painting of the skin and the halted movie.
void resizeStep(benchmark::State& state)
{
    bench::Program program;
    show(state, program);
    player::Player& player = program.player();
    int step = 0;
    for (auto _ : state) {
        step = (step + 1) % 40;
        player.resize(700 + 2 * step, 500 + step);
        QApplication::processEvents();
    }
}
BENCHMARK(resizeStep)->DenseRange(0, 1)->Unit(benchmark::kMillisecond);

/// The same without painting: what the skin's expressions and statements cost.
void layOut(benchmark::State& state)
{
    bench::Program program;
    show(state, program);
    for (auto _ : state) program.player().UpdateSkin();
}
BENCHMARK(layOut)->DenseRange(0, 1)->Unit(benchmark::kMicrosecond);

/// From the choice in the menu to the new skin's first picture.
void switchSkins(benchmark::State& state)
{
    bench::Program program;
    show(state, program);
    for (auto _ : state) {
        program.player().skinWindow().mnuSkinList_Click(static_cast<int>(state.range(0)));
        QApplication::processEvents();
    }
}
BENCHMARK(switchSkins)->DenseRange(0, 1)->Unit(benchmark::kMillisecond);

} // namespace
