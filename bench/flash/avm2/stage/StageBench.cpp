#include "flash/Engine.h"
#include "flash/stage/Stage.h"

#include <QGuiApplication>
#include <QImage>
#include <QRect>
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <string>
#include <vector>

// A frame of a movie at 550x400: its scripts, its display list, its picture. One thread, simulated time. The
// ratio is to filling the picture once by memset, measured in the same run. N and 4N: what is linear takes
// four times as long, counted as ns for each of the N.
namespace
{

constexpr int kWidth = 550, kHeight = 400;

class Counting final : public flash::stage::HostEvents
{
public:
    void logLine(std::string_view text) override { log += std::string(text) + "\n"; }
    std::string log;
};

double memsetSeconds()
{
    std::vector<unsigned char> picture(static_cast<std::size_t>(kWidth) * kHeight * 4);
    constexpr int kRounds = 200;
    double best = 1;
    for (int i = 0; i < kRounds; ++i) {
        const auto start = std::chrono::steady_clock::now();
        std::memset(picture.data(), i, picture.size());
        benchmark::DoNotOptimize(picture.data());
        benchmark::ClobberMemory();
        best =
            std::min(best, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    return best;
}

void frames(benchmark::State& state, const char* movie)
{
    int argc = 1;
    char name[] = "bench";
    char* argv[] = {name, nullptr};
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    Counting host;
    flash::Engine engine(host, {});
    engine.stage().view().setSize(kWidth, kHeight);
    const std::string address =
        std::string(STAGE_MOVIES "/") + movie + ".swf?n=" + std::to_string(state.range(0));
    if (const auto opened = engine.open(address); !opened) {
        state.SkipWithError(opened.error().what.c_str());
        return;
    }
    QImage image(kWidth, kHeight, QImage::Format_ARGB32_Premultiplied);
    const double frameMs = engine.stage().frameMs();
    const auto oneFrame = [&] {
        engine.advance(frameMs);
        if (const auto dirty = engine.dirtyRects(); !dirty.empty()) engine.render(image, dirty);
    };
    for (int i = 0; i < 3; ++i) oneFrame();
    for ([[maybe_unused]] auto round : state) oneFrame();
    if (!host.log.empty()) state.SkipWithError(host.log.c_str());
    const auto count = static_cast<double>(state.iterations());
    state.counters["ns/each"] = benchmark::Counter(count * static_cast<double>(state.range(0)) * 1e-9,
                                                   benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
    state.counters["memsets"] = benchmark::Counter(count * memsetSeconds(),
                                                   benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

/// Bitmaps of 16x16 in sprites of their own, which move and turn back at the edges.
void BM_BitmapSprites(benchmark::State& state) { frames(state, "sprites"); }
/// The same as squares of one picture of the stage's size, which is cleared for every frame.
void BM_CopyPixels(benchmark::State& state) { frames(state, "copypixels"); }
/// Curved outlines with two fills, which turn as they move.
void BM_VectorSprites(benchmark::State& state) { frames(state, "vectors"); }
/// N events in a frame, from ten levels down, each heard on every level on its way up.
void BM_BubblingEvents(benchmark::State& state) { frames(state, "events"); }
/// N objects which hear of every frame, of which a hundredth comes and goes in each.
void BM_FrameListeners(benchmark::State& state) { frames(state, "listeners"); }
/// N timers, each of which ticks once in a frame.
void BM_Timers(benchmark::State& state) { frames(state, "timers"); }

#define STAGE_BENCH(name, count) BENCHMARK(name)->Arg(count)->Arg(4 * (count))->Unit(benchmark::kMillisecond)
STAGE_BENCH(BM_BitmapSprites, 2000);
STAGE_BENCH(BM_CopyPixels, 1000);
STAGE_BENCH(BM_VectorSprites, 500);
STAGE_BENCH(BM_BubblingEvents, 1000);
STAGE_BENCH(BM_FrameListeners, 2000);
STAGE_BENCH(BM_Timers, 200);
#undef STAGE_BENCH

} // namespace
