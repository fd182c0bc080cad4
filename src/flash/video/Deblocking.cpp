#include "flash/video/Deblocking.h"

#include <algorithm>
#include <cstdlib>

namespace flash::video
{
namespace
{

constexpr int kBlock = 8;

/// By the quantizer.
constexpr int kStrengths[] = {0, 1, 1, 2, 2, 3, 3, 4,  4,  4,  5,  5,  6,  6,  7,  7,
                              7, 8, 8, 8, 9, 9, 9, 10, 10, 10, 11, 11, 11, 12, 12, 12};

/// Small steps are seams and evened out whole, larger ones ever less: they are edges of what is shown.
int ramp(int step, int strength)
{
    const int size = std::abs(step);
    const int kept = std::max(0, size - std::max(0, 2 * (size - strength)));
    return step < 0 ? -kept : kept;
}

std::uint8_t cut(int sample) { return static_cast<std::uint8_t>(std::clamp(sample, 0, 255)); }

/// @param first behind the seam; `across` leads over it. All quotients are rounded down.
void smoothAcross(std::uint8_t* first, std::ptrdiff_t across, int strength)
{
    const int a = first[-2 * across], b = first[-across], c = first[0], d = first[across];
    const int inner = ramp((a - 4 * b + 4 * c - d) >> 3, strength);
    const int most = std::abs(inner >> 1);
    const int outer = std::clamp((a - d) >> 2, -most, most);
    first[-2 * across] = cut(a - outer);
    first[-across] = cut(b + inner);
    first[0] = cut(c - inner);
    first[across] = cut(d + outer);
}

int strengthAt(const Quantizers& quantizers, int x, int y)
{
    return kStrengths[std::clamp(quantizers(x, y), 0, static_cast<int>(std::size(kStrengths)) - 1)];
}

} // namespace

void smoothSeams(const Plane& plane, const Quantizers& quantizers)
{
    for (int y = kBlock; y + 1 < plane.height; y += kBlock) {
        for (int x = 0; x < plane.width; x += kBlock) {
            const int strength = strengthAt(quantizers, x, y);
            const int end = std::min(x + kBlock, plane.width);
            for (int at = x; at < end; ++at)
                smoothAcross(plane.samples + y * plane.stride + at, plane.stride, strength);
        }
    }
    for (int y = 0; y < plane.height; y += kBlock) {
        for (int x = kBlock; x + 1 < plane.width; x += kBlock) {
            const int strength = strengthAt(quantizers, x, y);
            const int end = std::min(y + kBlock, plane.height);
            for (int at = y; at < end; ++at) smoothAcross(plane.samples + at * plane.stride + x, 1, strength);
        }
    }
}

} // namespace flash::video
