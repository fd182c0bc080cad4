#include "platform/TerminationSignal.h"

#include <QSocketNotifier>

#include <atomic>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace platform
{
namespace
{

// A signal handler reaches nothing but this: the writing end of a pipe that the event loop reads.
std::atomic<int> g_wakeUp{-1};

void wakeUp(int)
{
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = ::write(g_wakeUp.load(), &byte, 1);
}

} // namespace

class TerminationSignal::Private
{
public:
    explicit Private(std::function<void()> requested)
    {
        if (::pipe2(m_pipe, O_CLOEXEC | O_NONBLOCK) != 0) return;
        m_notifier = std::make_unique<QSocketNotifier>(m_pipe[0], QSocketNotifier::Read);
        QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(),
                         [this, requested = std::move(requested)] {
                             m_notifier->setEnabled(false);
                             requested();
                         });
        g_wakeUp = m_pipe[1];
        struct sigaction action {
        };
        action.sa_handler = wakeUp;
        action.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND);
        for (const int signal : {SIGTERM, SIGINT, SIGHUP}) ::sigaction(signal, &action, nullptr);
    }
    ~Private()
    {
        for (const int signal : {SIGTERM, SIGINT, SIGHUP}) std::signal(signal, SIG_DFL);
        g_wakeUp = -1;
        m_notifier.reset();
        for (const int end : m_pipe)
            if (end >= 0) ::close(end);
    }
    Private(const Private&) = delete;
    Private& operator=(const Private&) = delete;

private:
    int m_pipe[2] = {-1, -1};
    std::unique_ptr<QSocketNotifier> m_notifier;
};

TerminationSignal::TerminationSignal(std::function<void()> requested)
    : d(std::make_unique<Private>(std::move(requested)))
{
}
TerminationSignal::~TerminationSignal() = default;

} // namespace platform
