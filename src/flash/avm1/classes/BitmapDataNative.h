#pragma once

#include "flash/avm1/interpreter/Vm.h"

#include <memory>

namespace flash::avm1
{

/// What makes an object a BitmapData. What shows the picture, or is filtered by it, shares it.
struct BitmapDataNative final : Native {
    static inline const char kTag = 0;
    explicit BitmapDataNative(std::shared_ptr<swf::Bitmap> picture) : bitmap(std::move(picture)) {}
    [[nodiscard]] const void* tag() const override { return &kTag; }
    void trace(Tracer& tracer) override
    {
        if (bitmap) tracer.outside(bitmap->pixels.size() * sizeof(std::uint32_t));
    }
    std::shared_ptr<swf::Bitmap> bitmap; ///< null once disposed of
};

} // namespace flash::avm1
