#include "platform/TerminationSignal.h"

#include <QSocketNotifier>

#include <atomic>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace platform
{
namespace
{

// A signal handler reaches nothing but this: the writing end of a pipe that the event loop reads.
std::atomic<int> g_wakeUp{-1};
std::atomic<bool> g_requested{false};
std::atomic<void (*)() noexcept> g_atOnce{nullptr};
// What the last word is spoken on. Stays to the very end of the process, as the timer does.
constexpr std::size_t kStackBytes = 64 * 1024;
alignas(16) char g_stack[kStackBytes];

/// The signal handler takes what lies here; the program replaces it. Neither touches what the other holds.
std::atomic<LastWord*> g_lastWord{nullptr};

// Only what a signal handler may call.
void put(int file, const std::string& text)
{
    if (file < 0) return;
    for (std::size_t done = 0; done < text.size();) {
        const ssize_t count = ::write(file, text.data() + done, text.size() - done);
        if (count <= 0) break;
        done += static_cast<std::size_t>(count);
    }
}

void speakLastWord(int)
{
    // Named as base::replaceFile() names its own, so that what a second death leaves is swept.
    static char temporary[4096 + 16];
    if (const LastWord* word = g_lastWord.exchange(nullptr); word != nullptr && word->file.size() < 4096) {
        word->file.copy(temporary, word->file.size());
        std::memcpy(temporary + word->file.size(), ".~ending.tmp", sizeof(".~ending.tmp"));
        struct stat before {
        };
        const mode_t mode = ::stat(word->file.c_str(), &before) == 0 ? before.st_mode & 07777 : 0644;
        const int file = ::open(temporary, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, mode);
        put(file, word->content);
        if (file >= 0 && ::fsync(file) == 0) ::rename(temporary, word->file.c_str());
        if (!word->journal.empty())
            put(::open(word->journal.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC), word->line);
    }
    ::_exit(0);
}

void wakeUp(int)
{
    g_requested = true;
    if (auto* const atOnce = g_atOnce.load()) atOnce();
    if (g_lastWord.load() != nullptr) {
        struct itimerval after {
        };
        after.it_value.tv_usec = kLastWordAfterMs * 1000;
        ::setitimer(ITIMER_REAL, &after, nullptr);
    }
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = ::write(g_wakeUp.load(), &byte, 1);
}

} // namespace

class TerminationSignal::Private
{
public:
    Private(std::function<void()> requested, void (*atOnce)() noexcept)
    {
        if (::pipe2(m_pipe, O_CLOEXEC | O_NONBLOCK) != 0) return;
        m_notifier = std::make_unique<QSocketNotifier>(m_pipe[0], QSocketNotifier::Read);
        QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(),
                         [this, requested = std::move(requested)] {
                             m_notifier->setEnabled(false);
                             requested();
                         });
        g_requested = false;
        g_atOnce = atOnce;
        g_wakeUp = m_pipe[1];
        struct sigaction action {
        };
        action.sa_handler = wakeUp;
        action.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND);
        for (const int signal : {SIGTERM, SIGINT, SIGHUP}) ::sigaction(signal, &action, nullptr);
        // On a stack of its own: the program's may be what has come to its end.
        const stack_t stack{g_stack, 0, sizeof g_stack};
        ::sigaltstack(&stack, nullptr);
        struct sigaction last {
        };
        last.sa_handler = speakLastWord;
        last.sa_flags = SA_ONSTACK;
        ::sigaction(SIGALRM, &last, nullptr);
    }
    ~Private()
    {
        for (const int signal : {SIGTERM, SIGINT, SIGHUP}) std::signal(signal, SIG_DFL);
        // The timer stays: what is left of the program's end may hang as well.
        delete g_lastWord.exchange(nullptr);
        g_wakeUp = -1;
        g_atOnce = nullptr;
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

void setLastWord(LastWord word) { delete g_lastWord.exchange(new LastWord(std::move(word))); }

bool isTerminationRequested() { return g_requested; }

TerminationSignal::TerminationSignal(std::function<void()> requested, void (*atOnce)() noexcept)
    : d(std::make_unique<Private>(std::move(requested), atOnce))
{
}
TerminationSignal::~TerminationSignal() = default;

} // namespace platform
