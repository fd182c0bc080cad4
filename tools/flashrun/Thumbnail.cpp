#include "Thumbnail.h"

#include "Picture.h"
#include "flash/Engine.h"
#include "flash/control/Confinement.h"

#include <QFileInfo>
#include <QImage>
#include <QUrl>

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <mutex>
#include <new>
#include <thread>

namespace flashrun
{

namespace
{

constexpr rlim_t kMaxBytes = rlim_t{1} << 30;
/// What scripts may fill, with the rest of the process; pictures and sounds need the other half.
constexpr long kMaxScriptKilobytes = 512L << 10;
/// Nothing before the title is as rich as this, and few titles are poorer.
constexpr double kRichDetail = 0.1;
/// Of the movie's own time: between two looks, and at most.
constexpr double kLookMs = 250, kLongestMs = 20'000;
constexpr double kStepMsWithoutRate = 50;
/// Of a picture that is judged.
constexpr int kJudgedSide = 64;

/// Hears nothing, and ends scripts that do not come to an end by themselves: the frame they are on is a
/// picture.
class ImpatientHost : public flash::stage::HostEvents
{
public:
    explicit ImpatientHost(double scriptSeconds) : m_patience(scriptSeconds) {}
    void frameBegins() { m_begin = std::chrono::steady_clock::now(); }
    bool endsScripts() override
    {
        rusage use{};
        ::getrusage(RUSAGE_SELF, &use);
        return use.ru_maxrss > kMaxScriptKilobytes || std::chrono::steady_clock::now() - m_begin > m_patience;
    }

private:
    const std::chrono::duration<double> m_patience;
    std::chrono::steady_clock::time_point m_begin = std::chrono::steady_clock::now();
};

/// The best picture so far, and the watch that writes it when the time is up while the movie is still busy.
class Best
{
public:
    Best(std::filesystem::path out, double seconds)
        : m_out(std::move(out)),
          m_end(std::chrono::steady_clock::now() + std::chrono::milliseconds(std::llround(1000 * seconds))),
          m_watch([this] { watch(); })
    {
    }
    Best(const Best&) = delete;
    Best& operator=(const Best&) = delete;
    ~Best()
    {
        {
            const std::lock_guard lock(m_mutex);
            m_isDone = true;
        }
        m_changed.notify_all();
        m_watch.join();
    }

    void offer(const QImage& picture, double worth)
    {
        const std::lock_guard lock(m_mutex);
        if (worth <= m_worth) return;
        m_worth = worth;
        m_picture = picture.copy();
    }
    [[nodiscard]] bool isRich() const { return m_worth >= kRichDetail; }
    /// Half of the time is left for a frame that takes long.
    [[nodiscard]] bool isLate() const
    {
        return std::chrono::steady_clock::now() - m_start > (m_end - m_start) / 2;
    }
    base::Result<void> write()
    {
        const std::lock_guard lock(m_mutex);
        if (m_picture.isNull())
            return base::fail(base::ErrorCode::LimitReached, "the movie showed nothing in time");
        return writePng(m_picture, m_out);
    }

private:
    void watch()
    {
        std::unique_lock lock(m_mutex);
        if (m_changed.wait_until(lock, m_end, [this] { return m_isDone; })) return;
        lock.unlock();
        const auto written = write();
        if (!written) std::fprintf(stderr, "flashrun: %s\n", written.error().what.c_str());
        // The movie's own thread is deep in a script or a picture and cannot be asked to stop.
        std::_Exit(written ? EXIT_SUCCESS : EXIT_FAILURE);
    }

    const std::filesystem::path m_out;
    const std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now(), m_end;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    QImage m_picture;
    double m_worth = -1;
    bool m_isDone = false;
    std::thread m_watch; // the last member: it uses the others
};

/// A file manager gives a name, in which a question mark begins no query.
std::string addressOf(const std::string& movie)
{
    if (movie.starts_with("file:")) return movie;
    const QFileInfo file(QString::fromStdString(movie));
    return QUrl::fromLocalFile(file.absoluteFilePath()).toEncoded().toStdString();
}

/// A file manager shows what lies anywhere: the movie gets its own folder to read and the picture's to write.
/// What this system lacks of that is done without.
void confine(const Arguments& arguments)
{
    flash::control::confineEarly(kMaxBytes, {.limits = false, .nameSpaces = false});
    flash::control::ReachableFiles files;
    files.read = flash::control::systemFiles();
    const auto movie = flash::Engine::pathOf(addressOf(arguments.movie));
    files.read.push_back(movie.parent_path());
    if (!arguments.baseFolder.empty()) files.read.push_back(arguments.baseFolder);
    files.write.push_back(std::filesystem::absolute(arguments.out).parent_path());
    flash::control::confine(files);
}

void limitMemory()
{
#ifndef __SANITIZE_ADDRESS__ // reserves terabytes of addresses
    const rlimit most{kMaxBytes, kMaxBytes};
    ::setrlimit(RLIMIT_AS, &most);
#endif
    const auto giveUp = [] {
        constexpr char kText[] = "flashrun: the movie needs too much memory\n";
        [[maybe_unused]] const auto written = ::write(STDERR_FILENO, kText, sizeof(kText) - 1);
        std::_Exit(EXIT_FAILURE);
    };
    std::set_new_handler(giveUp);
    std::set_terminate(giveUp); // where memory is asked for in other ways than by new
}

} // namespace

double detail(const QImage& picture)
{
    const QImage small =
        picture.convertToFormat(QImage::Format_RGB32)
            .scaled(kJudgedSide, kJudgedSide, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    const auto differ = [](QRgb a, QRgb b) {
        constexpr int kVisible = 24; // of 255; gradients stay below it from pixel to pixel
        return std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)),
                         std::abs(qBlue(a) - qBlue(b))}) > kVisible;
    };
    int edges = 0;
    for (int y = 0; y + 1 < kJudgedSide; ++y)
        for (int x = 0; x + 1 < kJudgedSide; ++x) {
            const QRgb here = small.pixel(x, y);
            edges += differ(here, small.pixel(x + 1, y)) || differ(here, small.pixel(x, y + 1)) ? 1 : 0;
        }
    constexpr int kPairs = (kJudgedSide - 1) * (kJudgedSide - 1);
    return static_cast<double>(edges) / kPairs;
}

base::Result<void> thumbnail(const Arguments& arguments)
{
    limitMemory();
    confine(arguments);
    ImpatientHost host(arguments.seconds / 4);
    flash::Engine engine(host, {});
    Best best(arguments.out, arguments.seconds);
    // The movie's own shape is known only when it is open, and what it shows is fitted into the view.
    const QSize box(arguments.size, arguments.size);
    CHECK_RESULT(engine.open(addressOf(arguments.movie)));
    flash::stage::Stage& stage = engine.stage();
    const QSize fitted = QSize(stage.view().width(), stage.view().height())
                             .scaled(box, Qt::KeepAspectRatio)
                             .expandedTo({1, 1});
    stage.view().setSize(fitted.width(), fitted.height());

    QImage picture(fitted, QImage::Format_ARGB32_Premultiplied);
    const double frameMs = stage.frameRate() > 0 ? 1000 / stage.frameRate() : kStepMsWithoutRate;
    double nextLookMs = 0;
    for (double nowMs = 0; nowMs <= kLongestMs; nowMs += frameMs) {
        host.frameBegins();
        if (nowMs > 0) engine.advance(frameMs);
        if (nowMs < nextLookMs) continue;
        nextLookMs = nowMs + kLookMs;
        picture.fill(0);
        engine.render(picture, {picture.rect()});
        best.offer(picture, detail(picture));
        if (best.isRich() || best.isLate()) break;
    }
    return best.write();
}

} // namespace flashrun
