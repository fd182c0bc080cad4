#pragma once

#include "flash/avm2/interpreter/Value.h"

#include <vector>

namespace flash::avm2
{

/// The dynamic properties of an object, in the order they were made. A position stays the same as long as its
/// property lives, so that callers may remember it and just check that the name is still there.
class PropertyTable
{
public:
    static constexpr std::uint32_t kMissing = 0xFFFF'FFFF;
    struct Entry {
        Name name; ///< null: removed
        Value value;
        bool isHidden = false; ///< not walked over by for-in
    };

    [[nodiscard]] std::uint32_t find(Name name) const;
    [[nodiscard]] std::uint32_t size() const { return static_cast<std::uint32_t>(m_entries.size()); }
    [[nodiscard]] std::uint32_t liveCount() const { return size() - m_removed; }
    Entry& at(std::uint32_t position) { return m_entries[position]; }
    [[nodiscard]] bool holds(std::uint32_t position, Name name) const
    {
        return position < m_entries.size() && m_entries[position].name == name;
    }
    /// @returns the position.
    std::uint32_t set(Name name, Value value);
    void setHidden(Name name, bool hidden);
    bool remove(Name name);
    void trace(Tracer& tracer);

private:
    void rebuild(std::size_t buckets);
    static constexpr std::size_t kIndexFrom = 9;
    TracedList<Entry> m_entries;
    std::vector<std::uint32_t> m_buckets; // positions + 1, open addressing; 0 is free
    std::uint32_t m_removed = 0;
};

} // namespace flash::avm2

template <>
class std::allocator<flash::avm2::PropertyTable::Entry>;
