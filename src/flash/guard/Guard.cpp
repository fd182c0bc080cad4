#include "flash/guard/Guard.h"

#include "flash/guard/Holding.h"

#include <cstdio>
#include <utility>
#ifdef __linux__
#include <array>
#include <fcntl.h>
#include <unistd.h>
#endif

namespace flash::guard
{

namespace
{

// Which movie the thread works for is a property of the thread.
thread_local Guard* t_current = nullptr;

// A signal that ends the process reaches nothing but this.
std::atomic<bool> g_allInterrupted = false;

constexpr std::uint32_t kStepsBetweenLooks = 500;

} // namespace

std::size_t residentBytes()
{
#ifdef __linux__
    // Kept open: it is read again and again, and the system writes it anew each time.
    static const int file = ::open("/proc/self/statm", O_RDONLY | O_CLOEXEC);
    std::array<char, 128> text{};
    const ssize_t length = file < 0 ? -1 : ::pread(file, text.data(), text.size() - 1, 0);
    unsigned long all = 0, resident = 0;
    const bool isRead = length > 0 && std::sscanf(text.data(), "%lu %lu", &all, &resident) == 2;
    return isRead ? resident * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE)) : 0;
#else
    return 0;
#endif
}

Guard* current() { return t_current; }

void interruptAll() noexcept { g_allInterrupted.store(true, std::memory_order_relaxed); }

Guard::Guard(ResidentBytes measure) : m_measure(measure), m_ledger(std::make_shared<Ledger>(kMaxHeldBytes)) {}
Guard::~Guard() = default;

bool Guard::isInterrupted() const noexcept
{
    return m_interrupted.load(std::memory_order_relaxed) || g_allInterrupted.load(std::memory_order_relaxed);
}

void Guard::setMostHeld(std::size_t bytes) { m_ledger = std::make_shared<Ledger>(bytes); }

void Guard::renew()
{
    setMostHeld(m_ledger->most());
    settle();
    m_refused = 0;
    m_bytesBefore = m_measure();
    m_scriptTime = {};
    restartClock();
}

void Guard::lookAround()
{
    if (m_ending) return;
    if (isInterrupted()) throw MovieEnded(MovieEnded::Cause::Interrupted, "it was interrupted");
    // Memory is taken by working: a movie that mostly waits need not be measured at every frame, which costs
    // more than many a frame does.
    constexpr std::chrono::milliseconds kWorkBetweenMeasures{20};
    constexpr std::chrono::seconds kLongestBetweenMeasures{1};
    const Clock::time_point now = Clock::now();
    if (m_workedBefore + (now - m_workingSince) < kWorkBetweenMeasures &&
        now - m_measuredAt < kLongestBetweenMeasures)
        return;
    m_measuredAt = m_workingSince = now;
    m_workedBefore = {};
    if (m_measure() > m_bytesBefore + kMaxGrowthBytes)
        throw MovieEnded(MovieEnded::Cause::Memory, "it needs too much memory");
}

void Guard::look()
{
    m_stepsLeft = kStepsBetweenLooks;
    if (m_ending) return;
    lookAround();
    if (m_work == Work::Drawing) {
        if (elapsed() > kDrawTime)
            throw MovieEnded(MovieEnded::Cause::Time, "drawing a frame takes too long");
        return;
    }
    // Scripts ask the user when their own time is up, before this.
    if (elapsed() > std::max(kLongestFrameTime, m_scriptTime + (kLongestFrameTime - kFrameTime)))
        throw MovieEnded(MovieEnded::Cause::Time, "a frame takes too long");
}

void Guard::refuse(Bound bound, std::string_view text)
{
    const std::uint32_t bit = 1U << static_cast<unsigned>(bound);
    if ((m_refused & bit) != 0) return;
    m_refused |= bit;
    if (m_report) m_report(bound, text);
}

Turn::Turn(Guard& guard, Work work)
    : m_guard(guard), m_outer(std::exchange(t_current, &guard)), m_outerWork(guard.m_work)
{
    if (m_guard.m_turns++ == 0) {
        m_guard.restartClock();
        m_guard.m_workingSince = m_guard.m_start;
    }
    m_guard.m_work = work;
}

Turn::~Turn()
{
    if (--m_guard.m_turns == 0) m_guard.m_workedBefore += Guard::Clock::now() - m_guard.m_workingSince;
    m_guard.m_work = m_outerWork;
    t_current = m_outer;
}

} // namespace flash::guard
