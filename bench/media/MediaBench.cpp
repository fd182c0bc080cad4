#include "base/Files.h"
#include "media/Compress.h"
#include "media/MediaFiles.h"
#include "media/MovieHeader.h"
#include "media/Projector.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <benchmark/benchmark.h>
#include <random>

namespace
{

std::vector<std::uint8_t> noise(std::size_t size)
{
    std::mt19937 random(1);
    std::vector<std::uint8_t> bytes(size);
    for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random());
    return bytes;
}

/// A movie of random bytes behind a proper frame header, so that it hardly compresses.
std::vector<std::uint8_t> movie(const char* signature, std::size_t size)
{
    std::vector<std::uint8_t> body{0x78, 0x00, 0x05, 0x5F, 0x00, 0x00, 0x0F,
                                   0xA0, 0x00, 0x00, 0x18, 0x2C, 0x01};
    const auto rest = noise(size);
    body.insert(body.end(), rest.begin(), rest.end());
    body.insert(body.end(), {0, 0});
    media::FileHeader header;
    header.version = 6;
    header.fileLength = static_cast<std::uint32_t>(body.size() + 8);
    if (signature[0] == 'C') body = media::CompressData(body, 9).value();
    const auto head = header.withSignature(signature);
    std::vector<std::uint8_t> file(head.size() + body.size());
    std::ranges::copy(body, std::ranges::copy(head, file.begin()).out);
    return file;
}

/// Identifies a file of `megabytes` from the disk. The compressed one makes its header copy anew each time.
void identify(benchmark::State& state, const char* signature)
{
    const QTemporaryDir folder;
    core::Application application;
    application.CachePath = folder.filePath("cache/");
    QDir(folder.path()).mkdir("cache");
    const QString path = folder.filePath("movie.swf");
    if (!base::replaceFile(core::filePath(path),
                           movie(signature, static_cast<std::size_t>(state.range(0)) << 20)))
        state.SkipWithError("cannot write");
    media::NoMediaHost host;
    media::MediaFiles media(application, host);
    for (auto _ : state) {
        QString file = path;
        const QString refusal = media.GetFlashInfo(file);
        if (!refusal.isEmpty()) state.SkipWithError("refused");
        state.PauseTiming();
        if (media.mediaInfo().HeaderPath != path) QFile::remove(media.mediaInfo().HeaderPath);
        state.ResumeTiming();
    }
}
BENCHMARK_CAPTURE(identify, plain, "FWS")->Arg(1)->Arg(16);
BENCHMARK_CAPTURE(identify, compressed, "CWS")->Arg(1)->Arg(16);

/// The backward search over an executable whose movie lies at its very start: the whole file is looked
/// through.
void searchProjector(benchmark::State& state)
{
    std::vector<std::uint8_t> file = movie("FWS", 1000);
    const auto rest = noise(static_cast<std::size_t>(state.range(0)) << 20);
    file.insert(file.end(), rest.begin(), rest.end());
    for (auto _ : state) benchmark::DoNotOptimize(media::findEmbeddedMovie(file));
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * file.size()));
}
BENCHMARK(searchProjector)->Arg(50);

/// Reading a projector, taking the movie out and writing it.
void extractProjector(benchmark::State& state)
{
    const QTemporaryDir folder;
    core::Application application;
    application.CachePath = folder.filePath("");
    std::vector<std::uint8_t> file = noise(static_cast<std::size_t>(state.range(0)) << 20);
    const auto inside = movie("FWS", 100'000);
    file.insert(file.end(), inside.begin(), inside.end());
    const QString path = folder.filePath("a.exe");
    if (!base::replaceFile(core::filePath(path), file)) state.SkipWithError("cannot write");
    media::NoMediaHost host;
    media::MediaFiles media(application, host);
    for (auto _ : state) {
        const QString extracted = media.ExtractEXE(path, media::ExtractTo::Cache);
        if (extracted.isEmpty()) state.SkipWithError("no movie");
        QFile::remove(extracted);
    }
}
BENCHMARK(extractProjector)->Arg(50)->Unit(benchmark::kMillisecond);

} // namespace
