#include "flash/render/BitmapOps.h"
#include "flash/render/Filters.h"

// Operations on whole bitmaps: hits, differences, filters.
namespace flash::render
{

swf::Bitmap newBitmap(int width, int height, bool isTransparent, std::uint32_t color)
{
    swf::Bitmap bitmap{width, height, !isTransparent, {}};
    bitmap.pixels.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    fillRect(bitmap, boundsOf(bitmap), color);
    return bitmap;
}

bool isSolid(const swf::Bitmap& bitmap, int x, int y, std::uint32_t minAlpha)
{
    const bool isInside = x >= 0 && y >= 0 && x < bitmap.width && y < bitmap.height;
    return isInside && (pixelAt(bitmap, x, y) >> 24U) >= minAlpha;
}

bool holdsSolid(const swf::Bitmap& bitmap, const IntRect& rect, std::uint32_t minAlpha)
{
    const IntRect area = intersect(rect, boundsOf(bitmap));
    for (int y = area.top; y < area.bottom; ++y)
        for (int x = area.left; x < area.right; ++x)
            if (isSolid(bitmap, x, y, minAlpha)) return true;
    return false;
}

bool overlap(const SolidPart& a, const SolidPart& b, int dx, int dy)
{
    for (int y = 0; y < a.bitmap.height; ++y)
        for (int x = 0; x < a.bitmap.width; ++x)
            if (isSolid(a.bitmap, x, y, a.minAlpha) && isSolid(b.bitmap, x - dx, y - dy, b.minAlpha))
                return true;
    return false;
}

std::optional<swf::Bitmap> difference(const swf::Bitmap& first, const swf::Bitmap& second)
{
    swf::Bitmap result = newBitmap(first.width, first.height, true, 0);
    bool isSame = true;
    for (int y = 0; y < first.height; ++y) {
        for (int x = 0; x < first.width; ++x) {
            const std::uint32_t a = pixelAt(first, x, y), b = pixelAt(second, x, y);
            if (a == b) continue;
            isSame = false;
            const auto channel = [&](int shift) { return ((a >> shift) - (b >> shift)) & 0xFF; };
            // Where the colours are the same the difference in alpha is shown, in white.
            const bool isSameColor = ((a ^ b) & 0xFFFFFF) == 0;
            setPixelAt(result, x, y,
                       isSameColor ? channel(24) << 24 | 0xFFFFFF
                                   : 0xFF000000 | channel(16) << 16 | channel(8) << 8 | channel(0));
        }
    }
    if (isSame) return {};
    return result;
}

bool applyFilter(swf::Bitmap& target, int x, int y, const swf::Bitmap& source, const IntRect& from,
                 const swf::Filter& filter)
{
    // Filtered on a sheet with room for what the filter adds, then laid in place as a whole.
    const Growth growth = filterGrowth(filter);
    const IntRect area = grown({0, 0, from.width(), from.height()}, growth);
    if (area.width() > 2 * kMaxBitmapSide || area.height() > 2 * kMaxBitmapSide) return false;
    swf::Bitmap sheet{area.width(), area.height(), false, {}};
    sheet.pixels.resize(static_cast<std::size_t>(area.width()) * static_cast<std::size_t>(area.height()));
    copyPixels(sheet, growth.left, growth.top, source, from, CopyAlpha::Replace);
    applyFilter(filter, {sheet.pixels.data(), sheet.width, sheet.height, sheet.width});
    copyPixels(target, x - growth.left, y - growth.top, sheet, boundsOf(sheet), CopyAlpha::Replace);
    return true;
}

} // namespace flash::render
