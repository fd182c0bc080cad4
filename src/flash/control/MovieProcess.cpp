#include "flash/control/MovieProcess.h"

#include "flash/control/FarEnd.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace flash::control
{

namespace
{

constexpr int kEndWaitMs = 500, kGentleEndMs = 200;

} // namespace

QString MovieProcess::program()
{
    if (qEnvironmentVariableIntValue("ZORVEX_ONE_PROCESS") == 1) return {};
    if (const QString given = qEnvironmentVariable("ZORVEX_MOVIE_PROGRAM"); !given.isEmpty()) return given;
    // Asked before there is an application, too.
    const QDir folder = QFileInfo(QFile::symLinkTarget(QStringLiteral("/proc/self/exe"))).dir();
    for (const char* place :
         {"zorvex-movie", "../libexec/zorvex/zorvex-movie", "../lib/zorvex/zorvex-movie"}) {
        const QString path = folder.filePath(QLatin1String(place));
        if (QFileInfo(path).isExecutable()) return QDir::cleanPath(path);
    }
    return {};
}

std::unique_ptr<MovieProcess> MovieProcess::start(const QString& program)
{
    const auto ends = Channel::pair();
    if (!ends) return nullptr;
    const auto [near, far] = *ends;
    std::unique_ptr<MovieProcess> started(new MovieProcess(near));
    QProcess& process = started->m_process;
    process.setProgram(program);
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    int farBroker = -1;
    if (const Means means = usualMeans(); means.calls && !confinesFiles(means)) {
        const auto [nearBroker, other] = FileBroker::pair();
        farBroker = other;
        if (nearBroker >= 0) started->m_broker = std::make_unique<FileBroker>(nearBroker);
    }
    process.setChildProcessModifier([far = far, farBroker] {
        // First out of the way of the numbers that they are to have.
        constexpr int kAbove = 10;
        const int socket = fcntl(far, F_DUPFD_CLOEXEC, kAbove);
        const int broker = farBroker < 0 ? -1 : fcntl(farBroker, F_DUPFD_CLOEXEC, kAbove);
        dup2(socket, kMovieSocket);
        if (broker >= 0)
            dup2(broker, kBrokerSocket);
        else
            close(kBrokerSocket);
    });
    process.start();
    const bool running = process.waitForStarted(2000);
    close(far);
    if (farBroker >= 0) close(farBroker);
    return running ? std::move(started) : nullptr;
}

void MovieProcess::letOpen(const ReachableFiles& files)
{
    if (m_broker) m_broker->serve(files, static_cast<pid_t>(m_process.processId()));
}

MovieProcess::~MovieProcess()
{
    m_readable.reset();
    if (m_process.state() == QProcess::NotRunning) return;
    // A movie whose window goes away still saves what it keeps, if it does so at once.
    if (m_endsGently) {
        m_channel.shutDown();
        if (m_process.waitForFinished(kGentleEndMs)) return;
    }
    m_process.kill();
    m_process.waitForFinished(kEndWaitMs);
}

bool MovieProcess::isThere() const
{
    pollfd socket{m_channel.descriptor(), 0, 0};
    return poll(&socket, 1, 0) >= 0 && (socket.revents & (POLLHUP | POLLERR)) == 0;
}

void MovieProcess::listen(std::function<void()> ready)
{
    m_readable = std::make_unique<QSocketNotifier>(m_channel.descriptor(), QSocketNotifier::Read);
    QObject::connect(m_readable.get(), &QSocketNotifier::activated, m_readable.get(),
                     [ready = std::move(ready)] { ready(); });
}

std::optional<int> MovieProcess::exitStatus()
{
    if (m_process.state() != QProcess::NotRunning && !m_process.waitForFinished(kEndWaitMs))
        return std::nullopt;
    if (m_process.exitStatus() != QProcess::NormalExit) return std::nullopt;
    return m_process.exitCode();
}

std::shared_ptr<SpareProcess> SpareProcess::shared()
{
    static std::weak_ptr<SpareProcess> common;
    auto spare = common.lock();
    if (spare == nullptr) common = spare = std::make_shared<SpareProcess>();
    return spare;
}

std::unique_ptr<MovieProcess> SpareProcess::take()
{
    if (m_spare) {
        // One that ended while it waited is of no use.
        if (m_spare->isThere()) return std::move(m_spare);
        m_spare.reset();
    }
    const QString program = MovieProcess::program();
    return program.isEmpty() ? nullptr : MovieProcess::start(program);
}

void SpareProcess::prepare()
{
    if (m_spare) return;
    if (const QString program = MovieProcess::program(); !program.isEmpty())
        m_spare = MovieProcess::start(program);
}

} // namespace flash::control
