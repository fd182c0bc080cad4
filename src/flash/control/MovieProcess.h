#pragma once

#include "flash/control/Channel.h"
#include "flash/control/FileBroker.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QSocketNotifier>
#include <QString>

#include <functional>
#include <memory>

namespace flash::control
{

/// A process that plays one movie, and this end of what connects it.
class MovieProcess
{
public:
    /// Starts one. Returns at once; what is sent waits until it has come up.
    /// @param program path of the executable
    /// @returns null when it cannot be started
    static std::unique_ptr<MovieProcess> start(const QString& program);
    /// Ends the process, whatever it does. One that is given a moment for it saves its shared objects.
    ~MovieProcess();
    /// Whether it was started so long ago that it must have come up.
    [[nodiscard]] bool hasWaited() const { return m_sinceStart.elapsed() > kComeUpMs; }
    /// Once, before the movie is sent: what the process may open. Where the system confines it to that, it
    /// opens them itself.
    void letOpen(const ReachableFiles& files);
    void setEndsGently(bool gently) { m_endsGently = gently; }
    MovieProcess(const MovieProcess&) = delete;
    MovieProcess& operator=(const MovieProcess&) = delete;

    /// Whether its end of the connection is open.
    [[nodiscard]] bool isThere() const;
    [[nodiscard]] Channel& channel() { return m_channel; }
    [[nodiscard]] qint64 processId() const { return m_process.processId(); }
    /// `ready` is called from the event loop when there is something to read or the process has ended.
    void listen(std::function<void()> ready);
    /// After the connection has ended: the exit status, waiting a moment for it; nothing when it was killed
    /// or crashed.
    std::optional<int> exitStatus();

    /// The executable that plays movies, beside the running program or where an installation puts it; empty
    /// when there is none. ZORVEX_MOVIE_PROGRAM names another; ZORVEX_ONE_PROCESS=1 asks for none.
    static QString program();

private:
    static constexpr qint64 kComeUpMs = 1000;
    explicit MovieProcess(int socket) : m_channel(socket, Channel::Descriptors::Refused)
    {
        m_sinceStart.start();
    }

    Channel m_channel;
    std::unique_ptr<FileBroker> m_broker; // outlives the process, which may save something at its end
    QProcess m_process;
    QElapsedTimer m_sinceStart;
    bool m_endsGently = false;
    std::unique_ptr<QSocketNotifier> m_readable;
};

/// Keeps one process ready, so that opening a movie waits for no start. One thread.
class SpareProcess
{
public:
    /// The one that all controls share; it ends with the last of those who hold it.
    static std::shared_ptr<SpareProcess> shared();

    /// @returns a process that was started before, or now; null when there is no way to.
    std::unique_ptr<MovieProcess> take();
    /// Starts one to be ready, if there is none.
    void prepare();

private:
    std::unique_ptr<MovieProcess> m_spare;
};

} // namespace flash::control
