#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace flash::render
{

/// Whether frames are drawn by two threads, one above the other: when they take long, or always.
enum class SecondThread : std::uint8_t { Never, WhenHeavy, Always };

class Bands;

/// When drawing began: by the processor's time for this thread (exact), or by a clock, which unlike that is
/// no call of the system.
struct FrameStart {
    double ms = 0;
    bool isExact = false;
};

/// Outlines flattened for a scale, and gradient ramps, kept from frame to frame. One per stage; not to be
/// shared between threads. Entries of shapes that no longer exist are dropped, and the least recently used
/// ones when the budget is spent.
class RenderCache
{
public:
    static constexpr std::size_t kDefaultBudgetBytes = std::size_t{64} << 20;

    explicit RenderCache(std::size_t budgetBytes = kDefaultBudgetBytes);
    ~RenderCache();
    RenderCache(RenderCache&&) noexcept;
    RenderCache& operator=(RenderCache&&) noexcept;

    [[nodiscard]] std::size_t usedBytes() const;

    /// Never, at first. Pixels are the same whichever it is. See Canvas::beginFrame().
    void setSecondThread(SecondThread when);
    [[nodiscard]] SecondThread secondThread() const { return m_secondThread; }
    /// Null unless a second thread may be used.
    [[nodiscard]] Bands* bands() { return m_bands.get(); }

    class Impl;
    [[nodiscard]] Impl& impl() { return *m_impl; }

private:
    std::unique_ptr<Impl> m_impl;
    std::size_t m_budget = 0;
    SecondThread m_secondThread = SecondThread::Never;
    std::unique_ptr<Bands> m_bands;
};

} // namespace flash::render
