#include "flash/render/RampCache.h"

#include <cstdint>
#include <cstring>

namespace flash::render
{
namespace
{

std::size_t slotOf(const swf::Shape* shape, std::size_t layer, std::size_t fill,
                   const swf::ColorTransform& color)
{
    std::uint64_t channels[2];
    static_assert(sizeof channels == sizeof color);
    std::memcpy(channels, &color, sizeof channels);
    std::uint64_t hash = reinterpret_cast<std::uintptr_t>(shape);
    for (const std::uint64_t part : {std::uint64_t{layer}, std::uint64_t{fill}, channels[0], channels[1]})
        hash = (hash ^ part) * 0x9E3779B97F4A7C15U;
    // The upper bits depend on all of it.
    return static_cast<std::size_t>(hash >> 32) % TintedRamps::kSlots;
}

} // namespace

std::shared_ptr<const GradientRamp> TintedRamps::ramp(const std::shared_ptr<const swf::Shape>& shape,
                                                      std::size_t layer, std::size_t fill,
                                                      const swf::ColorTransform& color)
{
    Slot& slot = m_slots[slotOf(shape.get(), layer, fill, color)];
    // Another shape may come to lie at the address of a dead one.
    const bool isKnown = slot.ramp != nullptr && !slot.owner.owner_before(shape) &&
                         !shape.owner_before(slot.owner) && slot.layer == layer && slot.fill == fill &&
                         slot.color == color;
    if (!isKnown) {
        auto made =
            std::make_shared<const GradientRamp>(makeRamp(shape->layers[layer].fills[fill].gradient, color));
        slot = {shape, layer, fill, color, std::move(made)};
    }
    return slot.ramp;
}

} // namespace flash::render
