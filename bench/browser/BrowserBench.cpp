#include "browser/MediaBrowser.h"
#include "browser/Resample.h"
#include "browser/cDIBSection.h"
#include "media/CacheName.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <benchmark/benchmark.h>

namespace
{

enum class Way { Vector, Scalar };

void resample(benchmark::State& state, Way way)
{
    browser::cDIBSection source, target;
    source.Create(1920, 1080);
    source.RandomiseBits();
    target.Create(320, 180);
    const browser::PixelRows<const std::uint8_t> from{source.DIBSectionBitsPtr(), 1920, 1080,
                                                      static_cast<std::size_t>(source.BytesPerScanLine())};
    const browser::PixelRows<std::uint8_t> to{target.DIBSectionBitsPtr(), 320, 180,
                                              static_cast<std::size_t>(target.BytesPerScanLine())};
    for (auto _ : state)
        way == Way::Vector ? browser::resampleBilinear(from, to) : browser::resampleBilinearScalar(from, to);
}
BENCHMARK_CAPTURE(resample, vector_1920x1080_to_320x180, Way::Vector)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(resample, scalar_1920x1080_to_320x180, Way::Scalar)->Unit(benchmark::kMillisecond);

/// Scans a folder of that many movies whose thumbnails are all there, and builds the page's address.
void scan(benchmark::State& state)
{
    const QTemporaryDir folder;
    QDir(folder.path()).mkdir("movies");
    QDir(folder.path()).mkdir("cache");
    core::Application application;
    application.CachePath = folder.path() + "/cache/";
    for (int i = 0; i < state.range(0); ++i) {
        const QString movie = folder.filePath(QString("movies/Мой фильм номер %1.swf").arg(i));
        for (const QString& path : {movie, application.CachePath + media::CacheName(movie, ".jpg")}) {
            QFile file(path);
            if (!file.open(QFile::WriteOnly)) state.SkipWithError("cannot write");
        }
    }
    browser::NoBrowserHost host;
    browser::BrowserState browserState;
    browser::MediaBrowser media(application, host, browserState);
    for (auto _ : state) media.NewMediaBrowse(folder.filePath("movies"));
    if (static_cast<std::int64_t>(browserState.items.size()) != state.range(0) + 1)
        state.SkipWithError("not all found");
}
BENCHMARK(scan)->Arg(100)->Arg(10000)->Unit(benchmark::kMillisecond);

/// The thumbnails of a hundred movies, the same few again and again under other names.
/// Reports the median and the slowest, milliseconds.
void thumbnails(benchmark::State& state)
{
    QString folder = qEnvironmentVariable("ZORVEX_BENCH_MOVIES");
    if (folder.isEmpty()) folder = ZORVEX_PROGRAM_DIR "/media/samples";
    const QFileInfoList movies = QDir(folder).entryInfoList({"*.swf"}, QDir::Files);
    if (movies.isEmpty()) return state.SkipWithError("no movies to picture; build the target program");
    std::vector<double> times;
    for (auto _ : state) {
        const QTemporaryDir cache;
        core::Application application;
        application.AppPath = ZORVEX_PROGRAM_DIR "/";
        application.CachePath = cache.path() + "/";
        browser::NoBrowserHost host;
        browser::BrowserState browserState;
        browser::Thumbnails maker(application, host, browserState);
        maker.seed = 1;
        for (int i = 0; i < 100; ++i) {
            QElapsedTimer clock;
            clock.start();
            maker.MakeThumbnail(movies[i % movies.size()].filePath(),
                                application.CachePath + QString("%1.jpg").arg(i));
            times.push_back(static_cast<double>(clock.nsecsElapsed()) / 1e6);
        }
        if (QDir(cache.path()).entryList({"*.jpg"}).size() != 100) state.SkipWithError("not all were made");
    }
    std::sort(times.begin(), times.end());
    state.counters["median_ms"] = times[times.size() / 2];
    state.counters["slowest_ms"] = times.back();
}
BENCHMARK(thumbnails)->Unit(benchmark::kMillisecond)->Iterations(1);

/// The thumbnails of a folder of a hundred movies, so many at the same time, each in a process of its own.
void thumbnailsSideBySide(benchmark::State& state)
{
    QString folder = qEnvironmentVariable("ZORVEX_BENCH_MOVIES");
    if (folder.isEmpty()) folder = ZORVEX_PROGRAM_DIR "/media/samples";
    const QFileInfoList movies = QDir(folder).entryInfoList({"*.swf"}, QDir::Files);
    if (movies.isEmpty()) return state.SkipWithError("no movies to picture; build the target program");
    qputenv("ZORVEX_MOVIE_PROGRAM", ZORVEX_PROGRAM_DIR "/zorvex-movie");
    for (auto _ : state) {
        const QTemporaryDir cache;
        core::Application application;
        application.AppPath = ZORVEX_PROGRAM_DIR "/";
        application.CachePath = cache.path() + "/";
        browser::NoBrowserHost host;
        browser::BrowserState browserState;
        browser::Thumbnails maker(application, host, browserState);
        maker.seed = 1;
        maker.sideBySide = static_cast<int>(state.range(0));
        std::vector<browser::Thumbnails::Order> orders;
        for (int i = 0; i < 100; ++i)
            orders.push_back(
                {movies[i % movies.size()].filePath(), application.CachePath + QString("%1.jpg").arg(i)});
        maker.makeAll(orders);
        if (QDir(cache.path()).entryList({"*.jpg"}).size() != 100) state.SkipWithError("not all were made");
    }
    qunsetenv("ZORVEX_MOVIE_PROGRAM");
}
BENCHMARK(thumbnailsSideBySide)
    ->Arg(1)
    ->Arg(2)
    ->Arg(4)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1)
    ->UseRealTime();

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
