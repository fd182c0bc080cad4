#include "flash/render/Blur.h"

#include "flash/guard/Guard.h"
#include "flash/render/Vectorize.h"

#include <algorithm>
#include <cmath>

namespace flash::render
{
namespace
{

constexpr double kMaxExtent = 4096;

// The genuine player keeps five bits of an extent below its highest one, and cuts the others: whole 32nds of
// a pixel below two, quarters from eight on. Recordings show that up to ten pixels; whole ones are kept.
double cutExtent(double extent)
{
    constexpr double kSlack = 1e-9; // for what products leave of whole numbers
    const double step = std::min(std::exp2(std::floor(std::log2(extent)) - 5), 1.0);
    return std::floor(extent / step + kSlack) * step;
}

// A box as whole pixels to either side of the middle one and the part, of 256, of the next one.
struct Box {
    explicit Box(double extent)
        : whole(static_cast<int>((extent - 1) / 2)),
          part(static_cast<std::uint32_t>(((extent - 1) / 2 - whole) * 256)),
          factor(1.0F / static_cast<float>(256 * (2 * whole + 1) + 2 * static_cast<int>(part)))
    {
    }
    int whole;
    std::uint32_t part;
    float factor; ///< one by the sum of all weights
};

// Means are cut, not rounded; what the product leaves of whole numbers must not count as less.
constexpr float kSlack = 0.001F;

// The bytes of a row from sums over whole pixels and the two neighbours that count in part.
ZORVEX_VECTORIZE
void meanRow(std::uint8_t* to, const std::uint32_t* sums, const std::uint8_t* before,
             const std::uint8_t* after, std::size_t count, std::uint32_t part, float factor)
{
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t sum = sums[i] * 256 + part * (std::uint32_t{before[i]} + after[i]);
        to[i] = static_cast<std::uint8_t>(
            static_cast<std::int32_t>(static_cast<float>(static_cast<std::int32_t>(sum)) * factor + kSlack));
    }
}

ZORVEX_VECTORIZE
void slideSums(std::uint32_t* sums, const std::uint8_t* entering, const std::uint8_t* leaving,
               std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i) sums[i] += std::uint32_t{entering[i]} - leaving[i];
}

void blurColumns(const Plane& from, Plane& to, const Box& box)
{
    const std::size_t count = from.rowBytes();
    const std::vector<std::uint8_t> nothing(count);
    const auto rowOf = [&](int y) { return y >= 0 && y < from.height ? from.row(y) : nothing.data(); };
    std::vector<std::uint32_t> sums(count);
    for (int y = 0; y < std::min(box.whole, from.height); ++y)
        slideSums(sums.data(), from.row(y), nothing.data(), count);
    for (int y = 0; y < from.height; ++y) {
        slideSums(sums.data(), rowOf(y + box.whole), rowOf(y - box.whole - 1), count);
        meanRow(to.row(y), sums.data(), rowOf(y - box.whole - 1), rowOf(y + box.whole + 1), count, box.part,
                box.factor);
    }
}

template <int kChannels>
void blurRows(const Plane& from, Plane& to, const Box& box)
{
    // A copy of the row with room on both sides saves the checks for its ends.
    const auto margin = static_cast<std::size_t>(box.whole + 1) * kChannels;
    const std::size_t count = from.rowBytes();
    std::vector<std::uint8_t> padded(count + 2 * margin);
    for (int y = 0; y < from.height; ++y) {
        std::copy_n(from.row(y), count, padded.data() + margin);
        std::uint8_t* out = to.row(y);
        std::uint32_t sums[kChannels] = {};
        for (std::size_t i = 0; i < margin - kChannels; ++i) sums[i % kChannels] += padded[margin + i];
        for (std::size_t i = 0; i < count; i += kChannels) {
            for (std::size_t c = 0; c < kChannels; ++c) {
                const std::uint32_t before = padded[i + c];
                sums[c] += padded[i + c + 2 * margin - kChannels] - before;
                const std::uint32_t sum = sums[c] * 256 + box.part * (before + padded[i + c + 2 * margin]);
                out[i + c] = static_cast<std::uint8_t>(
                    static_cast<std::int32_t>(static_cast<float>(sum) * box.factor + kSlack));
            }
        }
    }
}

} // namespace

double scaledBlur(double extent, double scale) { return extent > 1 ? (extent - 1) * scale + 1 : extent; }

double blurExtent(double extent) { return extent > 1 ? std::min(extent, kMaxExtent) : 1; }

int blurPasses(int passes)
{
    // The files' fields have four or five bits.
    constexpr int kMaxPasses = 31;
    return std::clamp(passes, 0, kMaxPasses);
}

int blurReach(double extent) { return static_cast<int>(std::ceil((blurExtent(extent) - 1) / 2)); }

void boxBlur(Plane& plane, double extentX, double extentY, int passes)
{
    if (plane.bytes.empty()) return;
    passes = blurPasses(passes);
    const Box across(cutExtent(blurExtent(extentX))), down(cutExtent(blurExtent(extentY)));
    Plane other{plane.width, plane.height, plane.channels, std::vector<std::uint8_t>(plane.bytes.size())};
    constexpr std::size_t kBytesPerStep = 512;
    for (int pass = 0; pass < passes; ++pass) {
        guard::check(static_cast<std::uint32_t>(1 + plane.bytes.size() / kBytesPerStep));
        if (across.whole > 0 || across.part > 0) {
            if (plane.channels == 4)
                blurRows<4>(plane, other, across);
            else
                blurRows<1>(plane, other, across);
            std::swap(plane.bytes, other.bytes);
        }
        if (down.whole > 0 || down.part > 0) {
            blurColumns(plane, other, down);
            std::swap(plane.bytes, other.bytes);
        }
    }
}

} // namespace flash::render
