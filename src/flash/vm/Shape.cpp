#include "flash/vm/Shape.h"

#include "flash/vm/Heap.h"

#include <bit>

namespace flash::vm
{

namespace
{

constexpr std::uint32_t kEmptyBucket = 0xFFFF'FFFF;

std::size_t hashOf(const Atom* folded)
{
    return reinterpret_cast<std::uintptr_t>(folded) / 16 * 0x9E37'79B9U;
}

} // namespace

std::uint32_t Shape::find(Name name, bool caseSensitive) const
{
    if (m_properties.size() < kIndexFrom) {
        for (std::uint32_t i = 0; i < m_properties.size(); ++i) {
            const Name candidate = m_properties[i].name;
            if (!candidate.isNull() && candidate.matches(name, caseSensitive)) return i;
        }
        return kMissing;
    }
    if (m_buckets.empty()) buildIndex();
    const std::size_t mask = m_buckets.size() - 1;
    for (std::size_t at = hashOf(name.folded().cell()) & mask; m_buckets[at] != kEmptyBucket;
         at = (at + 1) & mask) {
        const Name candidate = m_properties[m_buckets[at]].name;
        if (!candidate.isNull() && candidate.matches(name, caseSensitive)) return m_buckets[at];
    }
    return kMissing;
}

void Shape::buildIndex() const
{
    m_buckets.assign(std::bit_ceil(m_properties.size() * 2 + 2), kEmptyBucket);
    for (std::uint32_t i = 0; i < m_properties.size(); ++i) addToIndex(i);
}

void Shape::addToIndex(std::uint32_t position) const
{
    if (m_properties[position].name.isNull()) return;
    const std::size_t mask = m_buckets.size() - 1;
    std::size_t at = hashOf(m_properties[position].name.folded().cell()) & mask;
    while (m_buckets[at] != kEmptyBucket) at = (at + 1) & mask;
    m_buckets[at] = position;
}

Shape* Shape::withAdded(Heap& heap, Name name, std::uint16_t flags)
{
    const bool hasIndexNames = m_hasIndexNames || name.arrayIndex() != Atom::kNotIndex;
    if (m_own) {
        m_hasIndexNames = hasIndexNames;
        std::uint32_t slot = m_slotCount;
        if (m_freeSlots.empty()) {
            ++m_slotCount;
        } else {
            slot = m_freeSlots.back();
            m_freeSlots.pop_back();
        }
        m_properties.push_back({name, flags, slot});
        if (!m_buckets.empty()) {
            if (m_properties.size() * 3 > m_buckets.size() * 2)
                m_buckets.clear();
            else
                addToIndex(static_cast<std::uint32_t>(m_properties.size() - 1));
        }
        return this;
    }
    for (const Transition& transition : m_transitions) {
        if (transition.name == name && transition.flags == flags) return transition.to;
    }
    auto* next = heap.make<Shape>();
    next->m_properties.reserve(m_properties.size() + 1);
    next->m_properties = m_properties;
    next->m_properties.push_back({name, flags, m_slotCount});
    next->m_slotCount = m_slotCount + 1;
    next->m_hasIndexNames = hasIndexNames;
    if (m_transitions.size() >= kMaxTransitions) {
        // An object used as a dictionary: shapes below here would never be met twice.
        next->m_own = true;
    } else {
        m_transitions.push_back({name, flags, next});
        heap.noteExternalBytes(next->m_properties.size() * sizeof(Property));
    }
    return next;
}

Shape* Shape::ownCopy(Heap& heap) const
{
    auto* copy = heap.make<Shape>();
    copy->m_properties = m_properties;
    copy->m_slotCount = m_slotCount;
    copy->m_freeSlots = m_freeSlots;
    copy->m_holes = m_holes;
    copy->m_hasIndexNames = m_hasIndexNames;
    copy->m_own = true;
    return copy;
}

void Shape::remove(std::uint32_t position)
{
    m_freeSlots.push_back(m_properties[position].slot);
    m_properties[position].name = Name();
    ++m_holes;
    if (m_holes * 2 <= m_properties.size()) return;
    std::erase_if(m_properties, [](const Property& property) { return property.name.isNull(); });
    m_holes = 0;
    m_buckets.clear();
}

void Shape::trace(Tracer& tracer)
{
    for (const Property& property : m_properties) tracer(property.name.cell());
    tracer.outside(m_properties.capacity() * sizeof(Property) + m_buckets.capacity() * sizeof(std::uint32_t) +
                   m_transitions.capacity() * sizeof(Transition));
    // Transitions stay alive with the shape they start from: programs make the same objects again.
    for (const Transition& transition : m_transitions) {
        tracer(transition.name.cell());
        tracer(transition.to);
    }
}

} // namespace flash::vm
