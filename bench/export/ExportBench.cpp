#include "export/encode/Strip.h"
#include "export/encode/Worker.h"

#include <QGuiApplication>

#include <benchmark/benchmark.h>
#include <sys/mman.h>
#include <unistd.h>

// The sample film at 1920x1080 and 30 pictures a second: playing and drawing alone, and the whole way to
// H.264. The counter `realtime` says how many seconds of film are made in one.

namespace
{

constexpr double kFilmMs = 10'000;

exporter::Settings fullHd()
{
    exporter::Settings settings;
    settings.movie = ZORVEX_PROGRAM_DIR "/media/samples/film.swf";
    settings.end = exporter::End::Given;
    settings.toMs = kFilmMs;
    settings.size = {1920, 1080};
    settings.rate = {30, 1};
    settings.dateMs = 1e12;
    return settings;
}

void tellRate(benchmark::State& state)
{
    state.counters["realtime"] = benchmark::Counter(kFilmMs / 1000 * static_cast<double>(state.iterations()),
                                                    benchmark::Counter::kIsRate);
}

void PlayAndDraw(benchmark::State& state)
{
    for (auto _ : state) {
        auto strip = exporter::Strip::open(fullHd());
        if (!strip) return state.SkipWithError(strip.error().what.c_str());
        std::vector<flash::sound::StereoFrame> heard;
        bool isNew = false;
        do benchmark::DoNotOptimize(strip->picture(isNew).constBits());
        while (strip->next(heard));
    }
    tellRate(state);
}
BENCHMARK(PlayAndDraw)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();

void WriteMp4(benchmark::State& state)
{
    for (auto _ : state) {
        const int file = memfd_create("film", MFD_CLOEXEC);
        exporter::Progress unheard;
        const auto written = exporter::writeFilm(fullHd(), file, unheard);
        close(file);
        if (!written) return state.SkipWithError(written.error().what.c_str());
    }
    tellRate(state);
}
BENCHMARK(WriteMp4)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();

} // namespace

int main(int count, char** words)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(count, words);
    exporter::prepareEncoders();
    benchmark::Initialize(&count, words);
    benchmark::RunSpecifiedBenchmarks();
}
