#include "export/CommandLine.h"
#include "export/Formats.h"
#include "export/Report.h"
#include "export/encode/Tracks.h"
#include "export/encode/Worker.h"
#include "export/process/Target.h"
#include "flash/Engine.h"
#include "flash/control/Confinement.h"
#include "flash/control/FileBroker.h"

#include <QElapsedTimer>
#include <QGuiApplication>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <new>
#include <optional>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

// Two processes: this one holds the file's place and gives it its name at the end; the other one, which reads
// the movie, can do no more than read the movie's folder and write what was opened for it.

namespace
{

using exporter::Exit;

constexpr rlim_t kMemoryBytes = 4ULL << 30U;

int status(Exit exit) { return static_cast<int>(exit); }

int complain(const base::Error& error, Exit exit)
{
    std::fflush(stdout);
    std::fprintf(stderr, "zorvex-export: %s\n", error.what.c_str());
    return status(exit);
}

// ---- the process that works -------------------------------------------------------------------------------

/// Tells a window, or the user's terminal, a few times a second.
class Teller : public exporter::Progress
{
public:
    explicit Teller(bool reports) : m_reports(reports), m_isTerminal(!reports && isatty(STDERR_FILENO) == 1)
    {
        m_sinceTold.start();
    }

    void opened() override { m_isOpen = true; }
    void shown(const QImage& picture) override
    {
        constexpr qint64 kShowMs = 500;
        if (!m_reports || (m_hasShown && m_sinceShown.elapsed() < kShowMs)) return;
        m_hasShown = true;
        m_sinceShown.restart();
        say(exporter::report::Shown{picture});
    }
    void advanced(std::int64_t pictures, std::int64_t expected) override
    {
        constexpr qint64 kTellMs = 200;
        if (m_sinceTold.elapsed() < kTellMs) return;
        m_sinceTold.restart();
        if (m_reports) {
            say(exporter::report::Advanced{pictures, expected});
        } else if (m_isTerminal) {
            std::fprintf(stderr, "\r%lld / %lld ", static_cast<long long>(pictures),
                         static_cast<long long>(expected));
        }
    }
    void finished(const exporter::Written& written)
    {
        if (m_isTerminal) std::fputs("\r\033[K", stderr);
        if (m_reports) {
            say(exporter::report::Done{written.pictures, written.ms, written.isCutShort});
            return;
        }
        if (!written.endedBecause.empty())
            std::fprintf(stderr, "zorvex-export: the movie was ended: %s\n", written.endedBecause.c_str());
        if (written.isCutShort)
            std::fprintf(
                stderr,
                "zorvex-export: the movie has no end; %.0f s of it were written, --to says otherwise\n",
                written.ms / 1000);
    }
    [[nodiscard]] bool isOpen() const { return m_isOpen; }

private:
    static void say(const exporter::report::Line& line)
    {
        const QByteArray bytes = exporter::report::write(line);
        std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stdout);
        std::fflush(stdout);
    }

    bool m_reports, m_isTerminal, m_isOpen = false, m_hasShown = false;
    QElapsedTimer m_sinceTold, m_sinceShown;
};

/// All that the process which works may open by name.
flash::control::ReachableFiles reachableFiles(const exporter::Settings& settings,
                                              const exporter::Target& target)
{
    flash::control::ReachableFiles files;
    files.read = flash::control::systemFiles();
    files.read.push_back(flash::Engine::pathOf(settings.movie).parent_path());
    if (!settings.baseFolder.empty()) files.read.push_back(settings.baseFolder);
    if (!settings.input.empty()) files.read.push_back(settings.input);
    if (!target.folder().empty()) files.write.push_back(target.folder());
    return files;
}

/// @param broker to open files by, where the system does not confine them; or -1
void confineTo(const flash::control::ReachableFiles& files, int broker)
{
    flash::control::Means means = flash::control::usualMeans();
    means.limits = false; // those of a movie's own process: a film is a larger file
    flash::control::confineEarly(kMemoryBytes, means);
#ifndef __SANITIZE_ADDRESS__ // reserves terabytes of addresses
    const rlimit memory{kMemoryBytes, kMemoryBytes}, core{0, 0};
    ::setrlimit(RLIMIT_DATA, &memory);
    ::setrlimit(RLIMIT_CORE, &core);
#endif
    flash::control::confine(files, broker, means);
}

int work(const exporter::CommandLine& line, const exporter::Target& target, int broker, int count,
         char** words)
{
    std::set_new_handler([] {
        constexpr char kText[] = "zorvex-export: the film needs more memory than it may have\n";
        [[maybe_unused]] const auto written = ::write(STDERR_FILENO, kText, sizeof kText - 1);
        _exit(status(Exit::CannotPlay));
    });
    // Texts are drawn and measured with the machine's fonts, which only a graphical program gets; a display
    // is not needed for them.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    const QGuiApplication application(count, words);
    exporter::prepareEncoders();
    const exporter::Settings& settings = line.settings;
    confineTo(reachableFiles(settings, target), broker);

    Teller teller(line.reports);
    const auto written = !target.folder().empty() ? writePictures(settings, target.folder(), teller)
                         : settings.isOnePicture  ? writePicture(settings, target.descriptor(), teller)
                                                  : writeFilm(settings, target.descriptor(), teller);
    if (!written) return complain(written.error(), teller.isOpen() ? Exit::CannotWrite : Exit::CannotPlay);
    teller.finished(*written);
    return status(Exit::Done);
}

// ---- the process that holds the place ---------------------------------------------------------------------

std::atomic<pid_t> g_worker{0};
std::atomic<bool> g_isCancelled{false};

extern "C" void cancel(int)
{
    g_isCancelled = true;
    if (const pid_t worker = g_worker; worker > 0) ::kill(worker, SIGKILL);
}

int waitFor(pid_t worker)
{
    int result = 0;
    while (::waitpid(worker, &result, 0) < 0)
        if (errno != EINTR) return status(Exit::CannotPlay);
    if (g_isCancelled) return status(Exit::Cancelled);
    if (WIFEXITED(result)) return WEXITSTATUS(result);
    std::fputs("zorvex-export: the process that played the movie has crashed\n", stderr);
    return status(Exit::CannotPlay);
}

int listFormats()
{
    for (const exporter::FormatInfo& info : exporter::formats()) {
        const auto pictures = exporter::pictureEncoder(info.format),
                   sound = exporter::soundEncoder(info.format);
        const std::string lacks = !pictures ? pictures.error().what : !sound ? sound.error().what : "";
        std::printf("%s\t%s\t%s\n", info.extension, info.name, lacks.empty() ? "yes" : lacks.c_str());
    }
    return status(Exit::Done);
}

} // namespace

int main(int count, char** words)
{
    const std::vector<std::string> given(words + std::min(count, 1), words + count);
    const auto line = exporter::parse(given);
    if (!line) {
        std::fprintf(stderr, "zorvex-export: %s\nSee zorvex-export --help.\n", line.error().what.c_str());
        return status(Exit::WrongUsage);
    }
    if (line->what == exporter::CommandLine::What::Help) {
        std::fputs(exporter::kHelp, stdout);
        return status(Exit::Done);
    }
    if (line->what == exporter::CommandLine::What::Formats) return listFormats();

    // The window that asked for the film may end: then nobody waits for it.
    if (line->reports) ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    auto target = exporter::Target::create(line->settings);
    if (!target) return complain(target.error(), Exit::CannotWrite);
    struct sigaction cancelling {
    };
    cancelling.sa_handler = cancel;
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) ::sigaction(signal, &cancelling, nullptr);

    std::pair<int, int> broker{-1, -1};
    if (!flash::control::confinesFiles(flash::control::usualMeans()))
        broker = flash::control::FileBroker::pair();
    const pid_t worker = ::fork();
    if (worker < 0)
        return complain({base::ErrorCode::IoFailure, "no process can be started", {}}, Exit::CannotPlay);
    if (worker == 0) {
        for (const int signal : {SIGINT, SIGTERM, SIGHUP}) ::signal(signal, SIG_DFL);
        ::signal(SIGXFSZ, SIG_IGN); // a file that may not grow is an error of writing
        if (broker.first >= 0) ::close(broker.first);
        const int result = work(*line, *target, broker.second, count, words);
        std::fflush(stdout);
        _exit(result); // the target is the other process's
    }
    g_worker = worker;
    if (g_isCancelled) ::kill(worker, SIGKILL); // before its number was known
    std::optional<flash::control::FileBroker> opener;
    if (broker.first >= 0) {
        ::close(broker.second);
        opener.emplace(broker.first);
        opener->serve(reachableFiles(line->settings, *target), worker);
    }
    const int result = waitFor(worker);
    if (result != status(Exit::Done)) return result;
    const auto kept = target->commit();
    return kept ? result : complain(kept.error(), Exit::CannotWrite);
}
