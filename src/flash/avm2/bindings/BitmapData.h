#pragma once

#include "flash/avm2/bindings/Display.h"
#include "flash/swf/Movie.h"

#include <memory>

namespace flash::avm2
{

/// A picture of a script. What shows it shares it: changes show at the next drawing.
class BitmapDataObject final : public Object
{
public:
    AVM2_NATIVE(Object)
    BitmapDataObject(Traits* traits, Object* proto) : Object(traits, proto) {}
    void trace(Tracer& tracer) override
    {
        Object::trace(tracer);
        if (bitmap) tracer.outside(bitmap->pixels.size() * sizeof(std::uint32_t));
    }
    std::shared_ptr<swf::Bitmap> bitmap; ///< null once disposed of, or before it is constructed
    int locks = 0;
};

/// A new one of the player's own class.
Value newBitmapData(Vm& vm, std::shared_ptr<swf::Bitmap> bitmap);
/// @throws 2015 for one that was disposed of
std::shared_ptr<swf::Bitmap> picture(Vm& vm, const BitmapDataObject& object);
/// Of `this`.
std::shared_ptr<swf::Bitmap> picture(Call& call);
/// An argument that is one, and not null.
std::shared_ptr<swf::Bitmap> pictureArg(Call& call, std::uint32_t index, const char* name);
/// What shows the bitmap is drawn again.
void pictureChanged(Call& call);
std::span<const NativeClass> bitmapDataClasses();

// Members that work on many pixels.
Value bitmapDraw(Call& call);
Value bitmapDrawWithQuality(Call& call);
Value bitmapApplyFilter(Call& call);
Value bitmapFilterRect(Call& call);
Value bitmapNoise(Call& call);
Value bitmapPerlinNoise(Call& call);
Value bitmapCopyPixels(Call& call);
Value bitmapCopyChannel(Call& call);
Value bitmapMerge(Call& call);
Value bitmapThreshold(Call& call);
Value bitmapPaletteMap(Call& call);
Value bitmapDissolve(Call& call);
Value bitmapHitTest(Call& call);
Value bitmapCompare(Call& call);
Value bitmapHistogram(Call& call);
Value bitmapEncode(Call& call);

} // namespace flash::avm2
