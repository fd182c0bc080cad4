#include "flash/render/BitmapOps.h"

#include "flash/render/Pixel.h"

#include <cmath>

namespace flash::render
{
namespace
{

struct Channels {
    int r, g, b, a;
};
Channels split(std::uint32_t c)
{
    return {static_cast<int>(c >> 16 & 255), static_cast<int>(c >> 8 & 255), static_cast<int>(c & 255),
            static_cast<int>(c >> 24)};
}
std::uint32_t join(const Channels& c)
{
    return static_cast<std::uint32_t>(c.a) << 24 | static_cast<std::uint32_t>(c.r) << 16 |
           static_cast<std::uint32_t>(c.g) << 8 | static_cast<std::uint32_t>(c.b);
}

std::uint32_t* rowOf(swf::Bitmap& bitmap, int y)
{
    return bitmap.pixels.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(bitmap.width);
}
const std::uint32_t* rowOf(const swf::Bitmap& bitmap, int y)
{
    return bitmap.pixels.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(bitmap.width);
}

/// What is written: premultiplied, opaque where the bitmap is.
std::uint32_t pixelFor(const swf::Bitmap& bitmap, std::uint32_t color)
{
    return premultiplied(bitmap.opaque ? color | 0xFF000000U : color);
}

/// Where a copy reads and writes once both ends are cut to their bitmaps.
struct CopyArea {
    IntRect from;
    int x = 0, y = 0;
};
CopyArea cutCopy(const swf::Bitmap& target, int x, int y, const swf::Bitmap& source, const IntRect& wanted)
{
    CopyArea area{intersect(wanted, boundsOf(source)), 0, 0};
    // Widened: a far-off place must not wrap round into the bitmap.
    const long long dx = static_cast<long long>(x) - wanted.left, dy = static_cast<long long>(y) - wanted.top;
    const auto narrowed = [](long long v) {
        return static_cast<int>(std::clamp<long long>(v, -(1 << 24), 1 << 24));
    };
    const IntRect reachable{narrowed(-dx), narrowed(-dy), narrowed(target.width - dx),
                            narrowed(target.height - dy)};
    area.from = intersect(area.from, reachable);
    area.x = narrowed(area.from.left + dx);
    area.y = narrowed(area.from.top + dy);
    return area;
}

/// Calls work(target pixel, source pixel, source x, source y) for each pixel of a copy. A bitmap that is
/// copied onto itself is read from a snapshot.
template <class Work>
void forEachCopied(swf::Bitmap& target, int x, int y, const swf::Bitmap& source, const IntRect& wanted,
                   Work work)
{
    const CopyArea area = cutCopy(target, x, y, source, wanted);
    if (area.from.isEmpty()) return;
    std::optional<swf::Bitmap> snapshot;
    if (&target == &source) snapshot = source;
    const swf::Bitmap& reads = snapshot ? *snapshot : source;
    for (int row = 0; row < area.from.height(); ++row) {
        const std::uint32_t* in = rowOf(reads, area.from.top + row) + area.from.left;
        std::uint32_t* out = rowOf(target, area.y + row) + area.x;
        for (int i = 0; i < area.from.width(); ++i)
            work(out[i], in[i], area.from.left + i, area.from.top + row);
    }
}

/// Bits to shift for a channel's number, or -1.
int shiftOf(int channel)
{
    switch (channel) {
    case 1: return 16;
    case 2: return 8;
    case 4: return 0;
    case 8: return 24;
    default: return -1;
    }
}

/// What is left of a pixel under another one; rounded down, as the genuine player does.
std::uint32_t shownThrough(std::uint32_t pixel, std::uint32_t alpha)
{
    const auto scaled = [&](int shift) { return (pixel >> shift & 255) * (255 - alpha) / 255 << shift; };
    return scaled(24) | scaled(16) | scaled(8) | scaled(0);
}

bool passes(const ThresholdTest& test, std::uint32_t color)
{
    const std::uint32_t value = color & test.mask, limit = test.threshold & test.mask;
    switch (test.comparison) {
    case Comparison::Less: return value < limit;
    case Comparison::LessOrEqual: return value <= limit;
    case Comparison::Greater: return value > limit;
    case Comparison::GreaterOrEqual: return value >= limit;
    case Comparison::Equal: return value == limit;
    case Comparison::NotEqual: return value != limit;
    }
    return false;
}

} // namespace

std::uint32_t premultiplied(std::uint32_t color)
{
    const std::uint32_t alpha = color >> 24;
    if (alpha == 255) return color;
    const auto scaled = [&](int shift) { return ((color >> shift & 255) * alpha + 127) / 255 << shift; };
    return alpha << 24 | scaled(16) | scaled(8) | scaled(0);
}

std::uint32_t unmultiplied(std::uint32_t pixel)
{
    const std::uint32_t alpha = pixel >> 24;
    if (alpha == 255 || alpha == 0) return alpha == 0 ? 0 : pixel;
    // In 8.8 fixed point, as the genuine player has it to the last bit.
    const std::uint32_t factor = 0xFF00U / alpha;
    const auto scaled = [&](int shift) {
        return std::min<std::uint32_t>(255, ((pixel >> shift & 255) * factor + 127) >> 8) << shift;
    };
    return alpha << 24 | scaled(16) | scaled(8) | scaled(0);
}

std::uint32_t pixelAt(const swf::Bitmap& bitmap, int x, int y) { return unmultiplied(rowOf(bitmap, y)[x]); }

void setPixelAt(swf::Bitmap& bitmap, int x, int y, std::uint32_t color)
{
    rowOf(bitmap, y)[x] = pixelFor(bitmap, color);
}

void fillRect(swf::Bitmap& bitmap, const IntRect& rect, std::uint32_t color)
{
    const IntRect area = intersect(rect, boundsOf(bitmap));
    const std::uint32_t pixel = pixelFor(bitmap, color);
    for (int y = area.top; y < area.bottom; ++y)
        std::fill(rowOf(bitmap, y) + area.left, rowOf(bitmap, y) + area.right, pixel);
}

void floodFill(swf::Bitmap& bitmap, int x, int y, std::uint32_t color)
{
    if (x < 0 || y < 0 || x >= bitmap.width || y >= bitmap.height) return;
    const std::uint32_t old = rowOf(bitmap, y)[x], pixel = pixelFor(bitmap, color);
    if (old == pixel) return;
    std::vector<std::pair<int, int>> pending{{x, y}};
    while (!pending.empty()) {
        auto [left, row] = pending.back();
        pending.pop_back();
        std::uint32_t* line = rowOf(bitmap, row);
        if (line[left] != old) continue;
        int right = left;
        while (left > 0 && line[left - 1] == old) --left;
        while (right + 1 < bitmap.width && line[right + 1] == old) ++right;
        std::fill(line + left, line + right + 1, pixel);
        for (const int next : {row - 1, row + 1}) {
            if (next < 0 || next >= bitmap.height) continue;
            const std::uint32_t* other = rowOf(bitmap, next);
            for (int i = left; i <= right; ++i)
                if (other[i] == old && (i == left || other[i - 1] != old)) pending.emplace_back(i, next);
        }
    }
}

void transformColors(swf::Bitmap& bitmap, const IntRect& rect, const swf::ColorTransform& transform)
{
    const IntRect area = intersect(rect, boundsOf(bitmap));
    // Alpha alone is made less, never more.
    const bool onlyAlpha = swf::ColorTransform{.alphaMul = transform.alphaMul} == transform;
    if (onlyAlpha && transform.alphaMul >= 256) return;
    for (int y = area.top; y < area.bottom; ++y) {
        std::uint32_t* row = rowOf(bitmap, y);
        for (int x = area.left; x < area.right; ++x) {
            const Channels c = split(unmultiplied(row[x]));
            const swf::Rgba changed =
                swf::apply(transform, {static_cast<std::uint8_t>(c.r), static_cast<std::uint8_t>(c.g),
                                       static_cast<std::uint8_t>(c.b), static_cast<std::uint8_t>(c.a)});
            row[x] = pixelFor(bitmap, join({changed.r, changed.g, changed.b, changed.a}));
        }
    }
}

void scroll(swf::Bitmap& bitmap, int dx, int dy)
{
    copyPixels(bitmap, dx, dy, bitmap, boundsOf(bitmap), CopyAlpha::Replace);
}

namespace
{
// A pixel seen through the alpha of another one. The genuine player takes it apart before: its colour keeps
// to the rounded level, and its alpha is cut.
std::uint32_t withAlpha(std::uint32_t pixel, std::uint32_t alpha)
{
    swf::Rgba color = unpremultiply(pixel);
    // 255 stands for all of it on either side.
    const std::uint32_t factor = alpha + (alpha >> 7);
    color.a = static_cast<std::uint8_t>(color.a == 255 ? alpha : color.a * factor >> 8);
    return premultiply(color);
}
} // namespace

void copyPixels(swf::Bitmap& target, int x, int y, const swf::Bitmap& source, const IntRect& from,
                CopyAlpha mode, std::optional<AlphaSource> alpha)
{
    const bool merging = mode == CopyAlpha::Merge || target.opaque;
    // One without transparency has nothing to say, not even by its size.
    if (alpha && alpha->bitmap.opaque) alpha.reset();
    forEachCopied(target, x, y, source, from, [&](std::uint32_t& out, std::uint32_t in, int sx, int sy) {
        // A bitmap without an alpha of its own gives none, and does not bound the copy either.
        if (alpha && !alpha->bitmap.opaque) {
            const long long ax = static_cast<long long>(alpha->x) + sx - from.left;
            const long long ay = static_cast<long long>(alpha->y) + sy - from.top;
            if (ax < 0 || ay < 0 || ax >= alpha->bitmap.width || ay >= alpha->bitmap.height) return;
            in = withAlpha(in, rowOf(alpha->bitmap, static_cast<int>(ay))[ax] >> 24);
        }
        out = merging ? in + shownThrough(out, in >> 24) : in;
        if (target.opaque) out |= 0xFF000000U;
    });
}

void copyChannel(swf::Bitmap& target, int x, int y, const swf::Bitmap& source, const IntRect& from,
                 int sourceChannel, int targetChannel)
{
    const int read = shiftOf(sourceChannel), write = shiftOf(targetChannel);
    if (write < 0) return;
    forEachCopied(target, x, y, source, from, [&](std::uint32_t& out, std::uint32_t in, int, int) {
        const std::uint32_t value = read < 0 ? 0 : unmultiplied(in) >> read & 255;
        const std::uint32_t color = (unmultiplied(out) & ~(255U << write)) | value << write;
        out = pixelFor(target, color);
    });
}

void merge(swf::Bitmap& target, int x, int y, const swf::Bitmap& source, const IntRect& from,
           const MergeFactors& factors)
{
    forEachCopied(target, x, y, source, from, [&](std::uint32_t& out, std::uint32_t in, int, int) {
        const Channels s = split(unmultiplied(in)), t = split(unmultiplied(out));
        const auto mixed = [](int a, int b, int factor) { return (a * factor + b * (256 - factor)) / 256; };
        out = pixelFor(target, join({mixed(s.r, t.r, factors.red), mixed(s.g, t.g, factors.green),
                                     mixed(s.b, t.b, factors.blue), mixed(s.a, t.a, factors.alpha)}));
    });
}

int threshold(swf::Bitmap& target, int x, int y, const swf::Bitmap& source, const IntRect& from,
              const ThresholdTest& test)
{
    int count = 0;
    forEachCopied(target, x, y, source, from, [&](std::uint32_t& out, std::uint32_t in, int, int) {
        if (passes(test, unmultiplied(in))) {
            ++count;
            out = pixelFor(target, test.color);
        } else if (test.copySource) {
            out = target.opaque ? in | 0xFF000000U : in;
        }
    });
    return count;
}

IntRect colorBounds(const swf::Bitmap& bitmap, std::uint32_t mask, std::uint32_t wanted, bool find)
{
    IntRect found;
    for (int y = 0; y < bitmap.height; ++y) {
        for (int x = 0; x < bitmap.width; ++x) {
            if (((pixelAt(bitmap, x, y) & mask) == (wanted & mask)) == find)
                found = unite(found, {x, y, x + 1, y + 1});
        }
    }
    // The corner alone is how the genuine player says that there is nothing.
    if (found.right == 1 && found.bottom == 1) return {};
    return found;
}

void paletteMap(swf::Bitmap& target, int x, int y, const swf::Bitmap& source, const IntRect& from,
                const std::array<PaletteTable, 4>& tables)
{
    forEachCopied(target, x, y, source, from, [&](std::uint32_t& out, std::uint32_t in, int, int) {
        const std::uint32_t color = unmultiplied(in);
        constexpr int kShifts[] = {16, 8, 0, 24};
        std::uint32_t sum = 0;
        for (std::size_t i = 0; i < tables.size(); ++i) {
            const std::uint32_t value = color >> kShifts[i] & 255;
            sum += tables[i] ? (*tables[i])[value] : value << kShifts[i];
        }
        out = pixelFor(target, sum);
    });
}

namespace
{
// Of the shift registers with the longest period, by the number of their bits.
constexpr std::array<std::uint32_t, 29> kFeedback = {
    0,       0x1,      0x3,      0x6,      0xC,      0x14,      0x30,      0x60,      0xB8,     0x110,
    0x240,   0x500,    0xE08,    0x1C80,   0x3802,   0x6000,    0xD008,    0x12000,   0x20400,  0x72000,
    0x90000, 0x140000, 0x300000, 0x420000, 0xE10000, 0x1200000, 0x2000023, 0x4000013, 0x9000000};
} // namespace

std::int32_t pixelDissolve(swf::Bitmap& target, int x, int y, const swf::Bitmap& source, const IntRect& from,
                           std::int32_t seed, int count, std::uint32_t fill)
{
    const CopyArea area = cutCopy(target, x, y, source, from);
    if (area.from.isEmpty() || count <= 0) return seed;
    const auto width = static_cast<std::uint64_t>(area.from.width());
    const std::uint64_t total = width * static_cast<std::uint64_t>(area.from.height());
    // A shift register of as many bits as pixels need goes through all numbers but 0, which follows the last
    // of them.
    std::size_t bits = 0;
    while ((std::uint64_t{1} << bits) < total) ++bits;
    if (bits >= kFeedback.size()) return seed;
    const std::uint32_t last = static_cast<std::uint32_t>((std::uint64_t{1} << bits) - 1);
    const auto following = [last, feedback = kFeedback[bits]](std::uint32_t at) -> std::uint32_t {
        if (at == last) return 0;
        if (at == 0) at = last;
        return (at & 1) != 0 ? (at >> 1) ^ feedback : at >> 1;
    };
    const auto dissolve = [&](std::uint32_t pixel) {
        if (pixel >= total) return false;
        const int dx = static_cast<int>(pixel % width), dy = static_cast<int>(pixel / width);
        std::uint32_t& out = rowOf(target, area.y + dy)[area.x + dx];
        out = &target == &source ? pixelFor(target, fill)
                                 : rowOf(source, area.from.top + dy)[area.from.left + dx];
        if (target.opaque) out |= 0xFF000000U;
        return true;
    };
    std::uint32_t at = static_cast<std::uint32_t>(seed) & last;
    // The pixel it starts from comes on top of those that are counted.
    dissolve(at);
    int done = 0;
    for (std::uint64_t step = 0; step <= last && done < count; ++step) {
        at = following(at);
        if (dissolve(at)) ++done;
    }
    return static_cast<std::int32_t>(at);
}

} // namespace flash::render
