#include "flash/render/Bands.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <ctime>
#include <system_error>
#include <utility>

namespace flash::render
{
namespace
{

// A thread is woken in some hundredths of a millisecond, and outlines that cross the border are converted
// twice: what takes little gains nothing.
constexpr double kHeavyMs = 5, kLightMs = 3;
// Below, frames are not timed exactly. One that then takes long must exceed it.
constexpr double kTinyMs = 0.5;
// How much of a new measurement counts.
constexpr double kNew = 0.25;

double clockMs()
{
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

} // namespace

double processorTimeMs()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

Bands::Bands(SecondThread when, std::size_t cacheBytes)
    : m_always(when == SecondThread::Always), m_isHeavy(m_always), m_lowerCache(cacheBytes)
{
}

Bands::~Bands()
{
    if (!m_thread.joinable()) return;
    {
        const std::scoped_lock lock(m_mutex);
        m_isEnding = true;
    }
    m_wake.notify_one();
    m_thread.join();
}

int Bands::divide(int top, int bottom) const
{
    return top + static_cast<int>(std::lround((bottom - top) * m_upperShare));
}

FrameStart Bands::start() const
{
    if (m_ms > kTinyMs) return {processorTimeMs(), true};
    return {clockMs(), false};
}

void Bands::noteFrame(const FrameStart& since)
{
    // The clock went on while other programs ran: much of it is only a reason to look closer from now on.
    noteFrame(since.isExact ? processorTimeMs() - since.ms : std::min(clockMs() - since.ms, kLightMs));
}

void Bands::noteFrame(double ms)
{
    m_ms += kNew * (ms - m_ms);
    if (!m_always) m_isHeavy = m_ms > (m_isHeavy ? kLightMs : kHeavyMs);
}

bool Bands::hasStarted()
{
    if (m_thread.joinable()) return true;
    if (m_cannotStart) return false;
    try {
        m_thread = std::thread([this] { work(); });
    } catch (const std::system_error&) {
        m_cannotStart = true; // one does it all, as without
    }
    return m_thread.joinable();
}

void Bands::work()
{
    std::unique_lock lock(m_mutex);
    while (true) {
        m_wake.wait(lock, [this] { return m_isEnding || m_job != nullptr; });
        if (m_isEnding) return;
        lock.unlock();
        std::exception_ptr failure;
        const double start = processorTimeMs();
        try {
            const guard::Turn turn(m_guard, guard::Guard::Work::Drawing);
            (*m_job)();
        } catch (...) {
            failure = std::current_exception();
        }
        lock.lock();
        m_lowerMs = processorTimeMs() - start;
        m_failure = std::move(failure);
        m_job = nullptr;
        m_done.notify_one();
    }
}

bool Bands::waitFor(std::chrono::milliseconds time)
{
    std::unique_lock lock(m_mutex);
    return m_done.wait_for(lock, time, [this] { return m_job == nullptr; });
}

// What the worker draws onto and reads must not go before it has stopped.
void Bands::giveUp()
{
    m_guard.interrupt(guard::Guard::Until::NextMovie);
    std::unique_lock lock(m_mutex);
    m_done.wait(lock, [this] { return m_job == nullptr; });
    m_failure = nullptr;
    m_guard.settle();
}

void Bands::draw(const std::function<void()>& upper, const std::function<void()>& lower)
{
    const double start = processorTimeMs();
    if (!hasStarted()) {
        upper();
        lower();
        noteFrame(processorTimeMs() - start);
        return;
    }
    {
        const std::scoped_lock lock(m_mutex);
        m_job = &lower;
    }
    m_wake.notify_one();
    double upperMs = 0;
    try {
        upper();
        upperMs = processorTimeMs() - start;
        constexpr std::chrono::milliseconds kBetweenLooks{5};
        constexpr std::uint32_t kMany = 1U << 30U; // steps: enough for a look at once
        while (!waitFor(kBetweenLooks)) guard::check(kMany);
    } catch (...) {
        giveUp();
        throw;
    }
    if (m_failure) std::rethrow_exception(std::exchange(m_failure, nullptr));
    noteFrame(upperMs + m_lowerMs);
    // As if all rows of a half took the same; next time it is nearer.
    constexpr double kLeast = 0.1, kSome = 0.01;
    const double upperCost = (upperMs + kSome) / m_upperShare,
                 lowerCost = (m_lowerMs + kSome) / (1 - m_upperShare);
    const double even = lowerCost / (upperCost + lowerCost);
    m_upperShare = std::clamp(m_upperShare + kNew * (even - m_upperShare), kLeast, 1 - kLeast);
}

} // namespace flash::render
