#include "flash/guard/Holding.h"

#include "flash/guard/Guard.h"

#include <limits>
#include <utility>

namespace flash::guard
{

Holding::Holding(std::shared_ptr<Ledger> ledger, std::size_t bytes)
    : m_ledger(std::move(ledger)), m_bytes(bytes)
{
    m_ledger->m_held.fetch_add(bytes, std::memory_order_relaxed);
}

Holding::Holding(Holding&& other) noexcept
    : m_ledger(std::move(other.m_ledger)), m_bytes(std::exchange(other.m_bytes, 0))
{
}

Holding& Holding::operator=(Holding&& other) noexcept
{
    std::swap(m_ledger, other.m_ledger);
    std::swap(m_bytes, other.m_bytes);
    return *this;
}

Holding::~Holding()
{
    if (m_ledger) m_ledger->m_held.fetch_sub(m_bytes, std::memory_order_relaxed);
}

std::optional<Holding> Holding::take(std::uint64_t bytes)
{
    const Guard* guard = current();
    if (guard == nullptr) return Holding();
    if (bytes <= guard->ledger()->room()) return Holding(guard->ledger(), static_cast<std::size_t>(bytes));
    refuseToHold();
    return std::nullopt;
}

std::uint64_t roomToHold()
{
    const Guard* guard = current();
    return guard != nullptr ? guard->ledger()->room() : std::numeric_limits<std::uint64_t>::max();
}

void refuseToHold()
{
    refuse(Bound::Held, "The movie has loaded as much as it may hold at one time; what it loads now fails");
}

std::shared_ptr<const std::vector<std::uint8_t>> hold(std::vector<std::uint8_t> file)
{
    struct Held {
        Holding holding;
        std::vector<std::uint8_t> bytes;
    };
    auto holding = Holding::take(file.size());
    if (!holding) return nullptr;
    auto held = std::make_shared<Held>(Held{std::move(*holding), std::move(file)});
    return {held, &held->bytes};
}

} // namespace flash::guard
