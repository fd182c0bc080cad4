#pragma once

#include "flash/vm/String.h"

#include <cstdint>
#include <vector>

namespace flash::vm
{

/// Which properties an object has, with which flags, in which slots. Objects built the same way share one
/// immutable shape, found by following transitions from the empty one; that is what lets an inline cache
/// remember a slot. An object that deletes properties, changes flags or grows large gets a shape of its own,
/// which is changed in place.
class Shape final : public Cell
{
public:
    static constexpr std::uint32_t kMissing = 0xFFFF'FFFF;
    static constexpr std::uint32_t kMaxShared = 48; ///< properties

    struct Property {
        Name name;
        std::uint16_t flags = 0;
        std::uint32_t slot = 0;
    };

    Shape() = default; // the empty shared shape

    [[nodiscard]] bool isShared() const { return !m_own; }
    /// Properties in the order they were added. Removed ones may leave an entry with a null name.
    [[nodiscard]] const std::vector<Property>& properties() const { return m_properties; }
    /// @returns the position in properties(), or kMissing.
    [[nodiscard]] std::uint32_t find(Name name, bool caseSensitive) const;
    /// @returns whether a property was ever added whose name spells an array index.
    [[nodiscard]] bool hasIndexNames() const { return m_hasIndexNames; }
    /// Slots that an object of this shape needs.
    [[nodiscard]] std::uint32_t slotCount() const { return m_slotCount; }

    /// @returns the shape with one property more, in slot slotCount(); this one itself when it is not
    /// shared.
    Shape* withAdded(Heap& heap, Name name, std::uint16_t flags);
    /// @returns an unshared copy.
    Shape* ownCopy(Heap& heap) const;
    // For unshared shapes only.
    void setFlags(std::uint32_t position, std::uint16_t flags) { m_properties[position].flags = flags; }
    void remove(std::uint32_t position);

    // Inline caches remember shapes. One that changes in place outdates what they hold; one that does so
    // again and again is not worth remembering.
    enum class Change { Added, Altered };
    [[nodiscard]] bool isCacheable() const { return !m_own || m_outdated < kMaxOutdated; }
    void noteCachedSlot() const { m_slotCached = true; }
    void noteCachedMiss() const { m_missCached = true; }
    /// @returns whether a change in place outdates caches. They then hold nothing of this shape any more.
    bool outdates(Change change)
    {
        if (!m_own || !(m_missCached || (m_slotCached && change == Change::Altered))) return false;
        m_missCached = m_slotCached = false;
        ++m_outdated;
        return true;
    }

    void trace(Tracer& tracer) override;

private:
    void buildIndex() const;
    void addToIndex(std::uint32_t position) const;
    static constexpr std::size_t kIndexFrom = 8; // properties; below, a walk is faster than hashing
    static constexpr std::size_t kMaxTransitions = 64;
    static constexpr std::uint8_t kMaxOutdated = 32;

    std::vector<Property> m_properties;
    std::uint32_t m_slotCount = 0;
    std::uint32_t m_holes = 0;              // removed properties still in the list
    std::vector<std::uint32_t> m_freeSlots; // left behind by removals; unshared shapes only
    // Open addressing over folded names, made at the first look-up; positions in m_properties.
    mutable std::vector<std::uint32_t> m_buckets;
    bool m_own = false;
    bool m_hasIndexNames = false;
    mutable bool m_slotCached = false, m_missCached = false;
    std::uint8_t m_outdated = 0; // times
    struct Transition {
        Name name;
        std::uint16_t flags;
        Shape* to;
    };
    std::vector<Transition> m_transitions;
};

} // namespace flash::vm
