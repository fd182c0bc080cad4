#pragma once

#include <cstddef>
#include <memory>

namespace flash::render
{

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

    class Impl;
    [[nodiscard]] Impl& impl() { return *m_impl; }

private:
    std::unique_ptr<Impl> m_impl;
};

} // namespace flash::render
