#pragma once

#include "flash/render/Paint.h"
#include "flash/swf/Shape.h"

#include <array>
#include <cstddef>
#include <memory>

namespace flash::render
{

/// Ramps of gradients under colour transforms, for instances that share one and for those that keep theirs
/// from frame to frame. In a table of fixed size: what fades has another transform in every frame, of which
/// none comes again.
class TintedRamps
{
public:
    /// @param layer,fill which of the shape's, both from 0
    std::shared_ptr<const GradientRamp> ramp(const std::shared_ptr<const swf::Shape>& shape,
                                             std::size_t layer, std::size_t fill,
                                             const swf::ColorTransform& color);

    static constexpr std::size_t kSlots = 256;

private:
    struct Slot {
        std::weak_ptr<const swf::Shape> owner;
        std::size_t layer = 0, fill = 0;
        swf::ColorTransform color;
        std::shared_ptr<const GradientRamp> ramp;
    };
    std::array<Slot, kSlots> m_slots;
};

} // namespace flash::render
