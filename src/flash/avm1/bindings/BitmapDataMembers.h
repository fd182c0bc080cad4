#pragma once

#include "flash/avm1/interpreter/Vm.h"

// The members of BitmapData that work on many pixels at once. A bitmap is there and there are arguments
// enough when they are called.
namespace flash::avm1::bitmaps
{

/// What members answer on a bitmap that was disposed of, or when they are called with too little.
inline const Value kRefused = -1;

inline std::uint32_t color(Call& call, std::size_t index)
{
    return static_cast<std::uint32_t>(toInt32(call.vm, call.arg(index)));
}

// ---- from another bitmap ----
Value copyPixels(Call& call, swf::Bitmap& bitmap);
Value copyChannel(Call& call, swf::Bitmap& bitmap);
Value merge(Call& call, swf::Bitmap& bitmap);
Value threshold(Call& call, swf::Bitmap& bitmap);
Value paletteMap(Call& call, swf::Bitmap& bitmap);
Value pixelDissolve(Call& call, swf::Bitmap& bitmap);

// ---- filters, noise, drawing ----
Value applyFilter(Call& call, swf::Bitmap& bitmap);
Value generateFilterRect(Call& call, swf::Bitmap& bitmap);
Value noise(Call& call, swf::Bitmap& bitmap);
Value perlinNoise(Call& call, swf::Bitmap& bitmap);
Value draw(Call& call, swf::Bitmap& bitmap);

} // namespace flash::avm1::bitmaps
