#pragma once

#include "flash/guard/Guard.h"
#include "flash/render/RenderCache.h"

#include <condition_variable>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>

namespace flash::render
{

/// Two halves of a frame, one above the other, drawn at the same time: the lower one by a thread of its own
/// with a cache of its own, so that the two have nothing in common but what neither changes. Belongs to the
/// thread that draws.
class Bands
{
public:
    /// @param cacheBytes the budget of the second cache
    Bands(SecondThread when, std::size_t cacheBytes);
    ~Bands();
    Bands(const Bands&) = delete;
    Bands& operator=(const Bands&) = delete;

    /// Whether the next frame is to be divided: those before it took long.
    [[nodiscard]] bool isWorthIt() const { return m_isHeavy; }
    /// Where to divide rows, so that both halves take about as long as each other.
    [[nodiscard]] int divide(int top, int bottom) const;
    [[nodiscard]] RenderCache& lowerCache() { return m_lowerCache; }

    /// Where work on a frame by one thread begins; exact where frames have lately taken long enough for it to
    /// matter.
    [[nodiscard]] FrameStart start() const;
    void noteFrame(const FrameStart& since);
    /// @param ms of processor time
    void noteFrame(double ms);
    /// Does both, the lower one on the other thread if it can be had, and returns when both are done.
    /// @throws whatever one of them throws; and what the guard of this thread throws while it waits
    void draw(const std::function<void()>& upper, const std::function<void()>& lower);
    /// Whether a thread has been started.
    [[nodiscard]] bool hasThread() const { return m_thread.joinable(); }

private:
    bool hasStarted();
    void work();
    bool waitFor(std::chrono::milliseconds time);
    void giveUp();

    bool m_always = false, m_isHeavy = false;
    double m_ms = 0;           ///< of a frame, smoothed
    double m_upperShare = 0.5; ///< of the rows
    double m_lowerMs = 0; ///< what the lower half of the frame at hand took; the worker's until it is done
    RenderCache m_lowerCache;
    guard::Guard m_guard; ///< of what the worker does: ends it when this thread's own says so

    std::thread m_thread;
    bool m_cannotStart = false;
    std::mutex m_mutex; ///< of all below
    std::condition_variable m_wake, m_done;
    const std::function<void()>* m_job = nullptr;
    bool m_isEnding = false;
    std::exception_ptr m_failure;
};

/// Of this thread, milliseconds.
double processorTimeMs();

} // namespace flash::render
