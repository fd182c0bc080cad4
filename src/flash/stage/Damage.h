#pragma once

#include "flash/render/Surface.h"

#include <array>
#include <cstddef>
#include <span>

namespace flash::stage
{

/// Where a picture is to be drawn again: a region of few boxes, device pixels. What is added is always
/// covered; two boxes become one where that costs fewer pixels than drawing a further box does.
class Damage
{
public:
    static constexpr std::size_t kMaxBoxes = 8;

    /// What lies outside counts for nothing, from now on and of what is there.
    void setArea(const render::IntRect& area);
    void add(const render::IntRect& box);
    void clear() { m_count = 0; }
    [[nodiscard]] bool isEmpty() const { return m_count == 0; }
    /// They may overlap.
    [[nodiscard]] std::span<const render::IntRect> boxes() const { return {m_boxes.data(), m_count}; }
    /// The smallest box around all.
    [[nodiscard]] render::IntRect bounds() const;
    [[nodiscard]] bool contains(const render::IntRect& box) const;
    /// What one more box costs, in pixels: the walk over all that might show in it.
    void setBoxCost(long long pixels) { m_boxCost = pixels; }
    /// One box for all, where they leave little out between them: what lies across two is drawn twice.
    void settle();

private:
    void put(render::IntRect box);
    void remove(std::size_t index) { m_boxes[index] = m_boxes[--m_count]; }

    std::array<render::IntRect, kMaxBoxes + 1> m_boxes; // one more for the time of adding
    std::size_t m_count = 0;
    render::IntRect m_area;
    long long m_boxCost = 4096;
};

} // namespace flash::stage
