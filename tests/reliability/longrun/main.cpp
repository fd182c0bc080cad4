// Plays for hours of simulated time, or opens movies by the thousand, and watches what that costs.
//   long_run play HOURS MOVIE ...      the movies one after the other, clicked at and drawn now and then
//   long_run open COUNT MOVIE ...      COUNT times one of the movies in turn, in the whole player, off screen
// The player plays each in the process that ZORVEX_MOVIE_PROGRAM names.
// Prints memory, open files and processes on the way. Exit status 1: they grow.

#include "bench/player/Program.h"
#include "flash/Engine.h"
#include "flash/stage/Stage.h"
#include "platform/ProcessMemory.h"

#include <QApplication>
#include <QImage>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <malloc.h>
#include <span>
#include <string>

namespace
{

constexpr double kMegabyte = 1024.0 * 1024.0;
/// What the second half of a run may hold more of than the first, at most.
constexpr double kMaxGrowthMegabytes = 2;
constexpr int kSamples = 10;

/// What the process holds: bytes in use of the heap, bytes of memory, open files, threads.
struct Cost {
    double heapMegabytes = 0, memoryMegabytes = 0;
    long files = 0, threads = 0, children = 0;

    static Cost now()
    {
        platform::returnFreeMemory();
        const auto info = mallinfo2();
        const auto entries = [](const char* folder) {
            return static_cast<long>(std::distance(std::filesystem::directory_iterator(folder), {}));
        };
        return {static_cast<double>(info.uordblks + info.hblkhd) / kMegabyte,
                static_cast<double>(platform::residentBytes()) / kMegabyte, entries("/proc/self/fd"),
                entries("/proc/self/task"), childProcesses()};
    }
    /// Those that have ended and were not asked for count as well.
    static long childProcesses()
    {
        long count = 0;
        for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
            std::ifstream list(task.path() / "children");
            count += static_cast<long>(std::distance(std::istream_iterator<long>(list), {}));
        }
        return count;
    }
    void print(const std::string& when) const
    {
        std::printf("  %-22s heap %7.2f MB  memory %7.1f MB  files %ld  threads %ld  processes %ld\n",
                    when.c_str(), heapMegabytes, memoryMegabytes, files, threads, children);
        std::fflush(stdout);
    }
};

/// The most that was held at once, in each half of a run: what comes and goes is not what grows.
class Watch
{
public:
    void note(const std::string& when)
    {
        const Cost cost = Cost::now();
        cost.print(when);
        Cost& half = m_halves[m_count++ < kSamples / 2 ? 0 : 1];
        half = {std::max(half.heapMegabytes, cost.heapMegabytes),
                std::max(half.memoryMegabytes, cost.memoryMegabytes), std::max(half.files, cost.files),
                std::max(half.threads, cost.threads), std::max(half.children, cost.children)};
    }
    [[nodiscard]] bool isFlat() const
    {
        const auto& [first, second] = m_halves;
        const bool flat = second.heapMegabytes - first.heapMegabytes < kMaxGrowthMegabytes &&
                          second.files <= first.files && second.threads <= first.threads &&
                          second.children <= first.children;
        std::printf("  %s: heap %+.2f MB, memory %+.1f MB, files %+ld from the first half to the second\n",
                    flat ? "flat" : "GROWS", second.heapMegabytes - first.heapMegabytes,
                    second.memoryMegabytes - first.memoryMegabytes, second.files - first.files);
        return flat;
    }

private:
    std::array<Cost, 2> m_halves;
    int m_count = 0;
};

bool playFor(double hours, const std::string& movie)
{
    constexpr double kMsAnHour = 3'600'000, kStepMs = 10'000;
    constexpr int kWidth = 320, kHeight = 240;
    flash::stage::HostEvents host;
    flash::Engine engine(host, {});
    engine.stage().view().setSize(kWidth, kHeight);
    if (const auto opened = engine.open(movie); !opened) {
        std::printf("%s: %s\n", movie.c_str(), opened.error().what.c_str());
        return false;
    }
    std::printf("%s, %g h\n", movie.c_str(), hours);
    QImage image(kWidth, kHeight, QImage::Format_ARGB32_Premultiplied);
    const long steps =
        std::max<long>(static_cast<long>(hours * kMsAnHour / kStepMs) / kSamples, 1) * kSamples;
    Watch watch;
    unsigned seed = 1;
    for (long step = 1; step <= steps; ++step) {
        // A longer pause would be caught up with in part only.
        const double frameMs = std::max(engine.stage().frameMs(), 1.0);
        for (double played = 0; played < kStepMs; played += frameMs) engine.advance(frameMs);
        engine.render(image, {image.rect()});
        seed = seed * 1664525U + 1013904223U;
        const double x = seed >> 8U & 0xFFU, y = seed >> 16U & 0xFFU;
        engine.stage().pointer().move(x, y);
        engine.stage().pointer().press(x, y);
        engine.stage().pointer().release(x, y);
        if (step % (steps / kSamples) != 0) continue;
        char when[32];
        std::snprintf(when, sizeof(when), "after %.2f h", static_cast<double>(step) * kStepMs / kMsAnHour);
        watch.note(when);
    }
    return watch.isFlat();
}

bool openManyTimes(long count, std::span<char*> movies)
{
    bench::Program program;
    player::Player& player = program.player();
    Watch watch;
    for (long number = 1; number <= count; ++number) {
        const char* movie = movies[static_cast<std::size_t>(number) % movies.size()];
        player.LoadFlash(QString::fromLocal8Bit(movie), {});
        player.findChild<flash::FlashControl*>()->advance(200);
        QApplication::processEvents(QEventLoop::AllEvents, 5);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        if (number % std::max<long>(count / kSamples, 1) != 0) continue;
        watch.note(std::to_string(number) + " opened");
    }
    return watch.isFlat();
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 4 || (std::strcmp(argv[1], "play") != 0 && std::strcmp(argv[1], "open") != 0)) {
        std::fputs("long_run play HOURS MOVIE ...\nlong_run open COUNT MOVIE ...\n", stderr);
        return 2;
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    int none = 1;
    const QApplication application(none, argv);
    const std::span movies(argv + 3, static_cast<std::size_t>(argc - 3));
    if (std::strcmp(argv[1], "open") == 0) return openManyTimes(std::atol(argv[2]), movies) ? 0 : 1;
    bool flat = true;
    for (const char* movie : movies) flat = playFor(std::atof(argv[2]), movie) && flat;
    return flat ? 0 : 1;
}
