#pragma once

#include "flash/render/Surface.h"
#include "flash/swf/Movie.h"

#include <array>
#include <functional>
#include <optional>

// Pixel operations that scripts ask for on bitmaps of their own. Colours are 0xAARRGGBB and not
// premultiplied, as scripts write them; the bitmaps hold premultiplied pixels. An opaque bitmap keeps an
// alpha of 255 whatever is written to it. Rectangles are cut to the bitmap; what is left of them decides.
namespace flash::render
{

std::uint32_t premultiplied(std::uint32_t color);
/// The colour that premultiplied() would turn into this pixel; 0 when it is wholly transparent.
std::uint32_t unmultiplied(std::uint32_t pixel);

inline IntRect boundsOf(const swf::Bitmap& bitmap) { return {0, 0, bitmap.width, bitmap.height}; }

/// The longest side that a script can ask for.
constexpr int kMaxBitmapSide = 2880;

swf::Bitmap newBitmap(int width, int height, bool isTransparent, std::uint32_t color);

/// The colour at a place that lies within the bitmap.
std::uint32_t pixelAt(const swf::Bitmap& bitmap, int x, int y);
void setPixelAt(swf::Bitmap& bitmap, int x, int y, std::uint32_t color);

void fillRect(swf::Bitmap& bitmap, const IntRect& rect, std::uint32_t color);
/// Replaces the connected area (by edges) of the colour at (x, y).
void floodFill(swf::Bitmap& bitmap, int x, int y, std::uint32_t color);
void transformColors(swf::Bitmap& bitmap, const IntRect& rect, const swf::ColorTransform& transform);
/// Moves the content; what is uncovered keeps its old pixels.
void scroll(swf::Bitmap& bitmap, int dx, int dy);

enum class CopyAlpha : std::uint8_t { Replace, Merge };
struct AlphaSource {
    const swf::Bitmap& bitmap;
    int x = 0, y = 0; ///< of the pixel that goes with the source rectangle's corner
};
/// Copies `from` of the source to (x, y). The source may be the target.
/// @param alpha whose alpha multiplies the source's; none: the source as it is
void copyPixels(swf::Bitmap& target, int x, int y, const swf::Bitmap& source, const IntRect& from,
                CopyAlpha mode, std::optional<AlphaSource> alpha = {});

/// Channels are bits: 1 red, 2 green, 4 blue, 8 alpha; a value with several bits names none.
void copyChannel(swf::Bitmap& target, int x, int y, const swf::Bitmap& source, const IntRect& from,
                 int sourceChannel, int targetChannel);
/// Each channel becomes (source * multiplier + target * (256 - multiplier)) / 256. Multipliers 0..256.
struct MergeFactors {
    int red = 0, green = 0, blue = 0, alpha = 0;
};
void merge(swf::Bitmap& target, int x, int y, const swf::Bitmap& source, const IntRect& from,
           const MergeFactors& factors);

enum class Comparison : std::uint8_t { Less, LessOrEqual, Greater, GreaterOrEqual, Equal, NotEqual };
struct ThresholdTest {
    Comparison comparison = Comparison::Equal;
    std::uint32_t threshold = 0, mask = 0xFFFFFFFF;
    std::uint32_t color = 0; ///< written where the test holds
    bool copySource = false; ///< elsewhere the source's pixel is copied
};
/// @returns how many pixels passed.
int threshold(swf::Bitmap& target, int x, int y, const swf::Bitmap& source, const IntRect& from,
              const ThresholdTest& test);

/// The smallest rectangle around the pixels with (colour & mask) == wanted, or (find == false) around the
/// others.
IntRect colorBounds(const swf::Bitmap& bitmap, std::uint32_t mask, std::uint32_t wanted, bool find);

/// Four tables of 256 (red, green, blue, alpha), whose entries are added up; a missing one keeps its channel.
using PaletteTable = std::optional<std::array<std::uint32_t, 256>>;
void paletteMap(swf::Bitmap& target, int x, int y, const swf::Bitmap& source, const IntRect& from,
                const std::array<PaletteTable, 4>& tables);

/// Whether a pixel has at least this alpha (0..255); none outside the bitmap has.
[[nodiscard]] bool isSolid(const swf::Bitmap& bitmap, int x, int y, std::uint32_t minAlpha);
[[nodiscard]] bool holdsSolid(const swf::Bitmap& bitmap, const IntRect& rect, std::uint32_t minAlpha);
/// A bitmap and the alpha from which its pixels count.
struct SolidPart {
    const swf::Bitmap& bitmap;
    std::uint32_t minAlpha = 1;
};
/// @param dx where the left edge of `b` is seen from that of `a`
[[nodiscard]] bool overlap(const SolidPart& a, const SolidPart& b, int dx, int dy);

/// What two bitmaps of one size differ in, channel by channel; where only the alpha differs, its difference
/// on white. @returns nothing for the same pictures
[[nodiscard]] std::optional<swf::Bitmap> difference(const swf::Bitmap& a, const swf::Bitmap& b);

/// Filters `from` of the source and lays the result over the target, with what the filter adds around it.
/// @returns false when that would be too large
bool applyFilter(swf::Bitmap& target, int x, int y, const swf::Bitmap& source, const IntRect& from,
                 const swf::Filter& filter);

struct NoiseOptions {
    std::int32_t seed = 0;
    int low = 0, high = 255;
    int channels = 7; ///< as copyChannel()
    bool gray = false;
};
void noise(swf::Bitmap& bitmap, const NoiseOptions& options);

struct PerlinOptions {
    double baseX = 0, baseY = 0;
    int octaves = 1;
    std::int32_t seed = 0;
    bool stitch = false, fractal = false;
    int channels = 7;
    bool gray = false;
    std::vector<swf::Point> offsets; ///< of each octave, pixels
    std::function<bool()> stops;     ///< asked before each row; true leaves the rest as it is
};
void perlinNoise(swf::Bitmap& bitmap, const PerlinOptions& options);

/// Writes `count` further pixels of the source rectangle to (x, y), in an order that depends on the seed and
/// visits each pixel once. @returns the seed to go on with.
std::int32_t pixelDissolve(swf::Bitmap& target, int x, int y, const swf::Bitmap& source, const IntRect& from,
                           std::int32_t seed, int count, std::uint32_t fill);

} // namespace flash::render
