#include "Program.h"

#include <QApplication>
#include <benchmark/benchmark.h>

// What the player itself costs while a movie plays.

namespace
{

/// One tick of the status timer, the skin's statement and the labels' new texts included; painting is the
/// window system's and comes later. The frame moves on, so that the texts do change.
void tick(benchmark::State& state)
{
    bench::Program program;
    player::Player& player = program.player();
    state.SetLabel(player.skinWindow().isShown() ? "with the skin" : "WITHOUT A SKIN");
    const int frames = std::max(player.control().TotalFrames(), 1);
    int frame = 0;
    for (auto _ : state) {
        state.PauseTiming();
        player.control().GotoFrame(frame = (frame + 1) % frames);
        state.ResumeTiming();
        player.timer().tmrUpdate_Timer();
    }
}
BENCHMARK(tick)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
