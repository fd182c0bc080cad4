#include "flash/render/LetterSlots.h"

#include "flash/render/Spans.h"

#include <bit>

namespace flash::render
{

// Of what a letter lies at, nothing of whose it is.
LetterSlots::Slot LetterSlots::slotFor(const swf::Matrix& m)
{
    Slot slot;
    slot.a = m.a;
    slot.b = m.b;
    slot.c = m.c;
    slot.d = m.d;
    slot.x = static_cast<std::uint8_t>(m.tx * kSubpixels);
    slot.y = static_cast<std::uint8_t>(m.ty * kSubpixels);
    return slot;
}

std::size_t LetterSlots::indexOf(const swf::Shape* outline, const Slot& slot)
{
    const std::uint64_t numbers[] = {
        std::bit_cast<std::uint64_t>(slot.a), std::bit_cast<std::uint64_t>(slot.b),
        std::bit_cast<std::uint64_t>(slot.c), std::bit_cast<std::uint64_t>(slot.d),
        static_cast<std::uint64_t>(slot.x) << 8 | slot.y};
    std::uint64_t hash = reinterpret_cast<std::uintptr_t>(outline);
    for (const std::uint64_t number : numbers) {
        // The upper bits depend on all of it, and are to count for the next.
        hash = (std::rotl(hash, 32) ^ number) * 0x9E3779B97F4A7C15U;
    }
    return static_cast<std::size_t>(hash >> 32) % kSlots;
}

const Mask* LetterSlots::find(const std::shared_ptr<const swf::Shape>& outline,
                              const swf::Matrix& matrix) const
{
    const Slot wanted = slotFor(matrix);
    const Slot& slot = m_slots[indexOf(outline.get(), wanted)];
    const bool isIt = slot.mask != nullptr && slot.a == wanted.a && slot.b == wanted.b &&
                      slot.c == wanted.c && slot.d == wanted.d && slot.x == wanted.x && slot.y == wanted.y &&
                      !slot.owner.owner_before(outline) && !outline.owner_before(slot.owner);
    return isIt ? slot.mask : nullptr;
}

void LetterSlots::keep(const std::shared_ptr<const swf::Shape>& outline, const swf::Matrix& matrix,
                       const Mask* mask)
{
    Slot kept = slotFor(matrix);
    kept.owner = outline;
    kept.mask = mask;
    m_slots[indexOf(outline.get(), kept)] = std::move(kept);
    m_isEmpty = false;
}

void LetterSlots::clear()
{
    if (m_isEmpty) return;
    m_slots.fill({});
    m_isEmpty = true;
}

} // namespace flash::render
