#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

// How much of what it loaded a movie holds at one time. Whatever keeps a piece of that in memory keeps a
// Holding with it, wherever the piece goes and however long it stays.
namespace flash::guard
{

/// The account of one movie with all that it loads.
class Ledger
{
public:
    explicit Ledger(std::size_t most) : m_most(most) {}
    [[nodiscard]] std::size_t most() const { return m_most; }
    [[nodiscard]] std::size_t held() const { return m_held.load(std::memory_order_relaxed); }
    [[nodiscard]] std::size_t room() const
    {
        const std::size_t now = held();
        return now < m_most ? m_most - now : 0;
    }

private:
    friend class Holding;
    const std::size_t m_most;
    std::atomic<std::size_t> m_held = 0; // the last holder may be on the sound device's thread
};

/// Some bytes of a ledger, given back at the end of its life.
class Holding
{
public:
    Holding() = default;
    Holding(Holding&& other) noexcept;
    Holding& operator=(Holding&& other) noexcept;
    ~Holding();

    /// Counts for the movie whose turn it is; for nobody where there is none.
    /// @returns nothing when that would be more than the movie may hold: the caller lets go of it, and the
    ///          host has been told
    [[nodiscard]] static std::optional<Holding> take(std::uint64_t bytes);

private:
    Holding(std::shared_ptr<Ledger> ledger, std::size_t bytes);
    std::shared_ptr<Ledger> m_ledger;
    std::size_t m_bytes = 0;
};

/// What the movie whose turn it is may hold beyond what it does; without end where there is none.
[[nodiscard]] std::uint64_t roomToHold();
/// Something was not even begun, because it is more than roomToHold(): tells the host.
void refuseToHold();

/// A file that is kept. @returns null when there is no room for it
[[nodiscard]] std::shared_ptr<const std::vector<std::uint8_t>> hold(std::vector<std::uint8_t> file);

} // namespace flash::guard
