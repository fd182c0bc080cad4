#include "flash/avm2/interpreter/PropertyTable.h"

#include <bit>

namespace flash::avm2
{

namespace
{

std::size_t hashOf(Name name)
{
    const auto bits = reinterpret_cast<std::uintptr_t>(name.cell());
    return static_cast<std::size_t>((bits >> 4U) * 0x9E37'79B9'7F4A'7C15ULL >> 20U);
}

} // namespace

std::uint32_t PropertyTable::find(Name name) const
{
    if (m_buckets.empty()) {
        for (std::uint32_t i = 0; i < m_entries.size(); ++i) {
            if (m_entries[i].name == name) return i;
        }
        return kMissing;
    }
    const std::size_t mask = m_buckets.size() - 1;
    for (std::size_t at = hashOf(name) & mask; m_buckets[at] != 0; at = (at + 1) & mask) {
        if (m_entries[m_buckets[at] - 1].name == name) return m_buckets[at] - 1;
    }
    return kMissing;
}

std::uint32_t PropertyTable::set(Name name, Value value)
{
    if (const std::uint32_t known = find(name); known != kMissing) {
        m_entries[known].value = value;
        return known;
    }
    // Removed entries keep their places while loops may be walking; once they are most, they go.
    if (m_removed > 32 && m_removed > m_entries.size() / 2) {
        std::erase_if(m_entries, [](const Entry& entry) { return entry.name.isNull(); });
        m_removed = 0;
        m_buckets.clear();
    }
    m_entries.push_back({name, value, false});
    if (m_entries.size() >= kIndexFrom) {
        if (m_entries.size() * 2 > m_buckets.size()) {
            rebuild(std::bit_ceil(m_entries.size() * 4));
        } else {
            const std::size_t mask = m_buckets.size() - 1;
            std::size_t at = hashOf(name) & mask;
            while (m_buckets[at] != 0) at = (at + 1) & mask;
            m_buckets[at] = static_cast<std::uint32_t>(m_entries.size());
        }
    }
    return static_cast<std::uint32_t>(m_entries.size()) - 1;
}

void PropertyTable::rebuild(std::size_t buckets)
{
    m_buckets.assign(buckets, 0);
    const std::size_t mask = buckets - 1;
    for (std::uint32_t i = 0; i < m_entries.size(); ++i) {
        if (m_entries[i].name.isNull()) continue;
        std::size_t at = hashOf(m_entries[i].name) & mask;
        while (m_buckets[at] != 0) at = (at + 1) & mask;
        m_buckets[at] = i + 1;
    }
}

void PropertyTable::setHidden(Name name, bool hidden)
{
    if (const std::uint32_t at = find(name); at != kMissing) m_entries[at].isHidden = hidden;
}

bool PropertyTable::remove(Name name)
{
    const std::uint32_t at = find(name);
    if (at == kMissing) return false;
    m_entries[at].name = {};
    m_entries[at].value = {};
    ++m_removed;
    return true;
}

void PropertyTable::trace(Tracer& tracer)
{
    for (const Entry& entry : m_entries) {
        if (entry.name.isNull()) continue;
        tracer(entry.name);
        tracer(entry.value);
    }
    tracer.outside(m_entries.capacity() * sizeof(Entry) + m_buckets.capacity() * sizeof(std::uint32_t));
}

} // namespace flash::avm2
