#pragma once

#include "flash/render/Mask.h"
#include "flash/swf/Geometry.h"
#include "flash/swf/Shape.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace flash::render
{

/// Letters that were drawn lately, found with one look at memory: between the frames of a small movie all of
/// it has left the processor's caches, and each look costs as much as drawing a letter. In a table of fixed
/// size, in front of the one that owns them.
class LetterSlots
{
public:
    /// @param matrix as for RenderCache::Impl::findLetter()
    /// @returns null when it is not here
    [[nodiscard]] const Mask* find(const std::shared_ptr<const swf::Shape>& outline,
                                   const swf::Matrix& matrix) const;
    /// @param mask borrowed, until clear()
    void keep(const std::shared_ptr<const swf::Shape>& outline, const swf::Matrix& matrix, const Mask* mask);
    void clear();

    static constexpr std::size_t kSlots = 1024;

private:
    // A line of the processor's caches.
    struct alignas(64) Slot {
        // Keeps the shape's counts, and so its identity, when the shape is gone.
        std::weak_ptr<const swf::Shape> owner;
        const Mask* mask = nullptr;
        double a = 0, b = 0, c = 0, d = 0;
        std::uint8_t x = 0, y = 0; ///< subpixels
    };
    static_assert(sizeof(Slot) == 64);
    static Slot slotFor(const swf::Matrix& matrix);
    static std::size_t indexOf(const swf::Shape* outline, const Slot& slot);

    std::array<Slot, kSlots> m_slots;
    bool m_isEmpty = true;
};

} // namespace flash::render
