#include "flash/render/GpuTexture.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace flash::render
{

namespace
{

/// Repeated textures are tamed before: no more than one beyond an edge.
int wrapped(int at, int size, bool repeats)
{
    if (!repeats) return std::clamp(at, 0, size - 1);
    if (at < 0) return at + size;
    return at >= size ? at - size : at;
}

/// Of a small number.
int wholeBelow(float number)
{
    const int whole = static_cast<int>(number);
    return static_cast<float>(whole) > number ? whole - 1 : whole;
}

/// Numbers of a program may be anything.
float tamed(float coordinate, bool repeats)
{
    if (!std::isfinite(coordinate)) return 0;
    if (!repeats) return std::clamp(coordinate, -1.0F, 2.0F);
    // What is larger has no fraction.
    constexpr float kWhole = 8388608; // 2^23
    if (coordinate >= kWhole || coordinate <= -kWhole) return 0;
    return coordinate - static_cast<float>(wholeBelow(coordinate));
}

void mix(GpuColor& a, const GpuColor& b, float share) { a += (b - a) * share; }

void fromLevel(GpuColor& color, const GpuTexture::Level& level, float u, float v, const GpuSampling& how)
{
    if (level.pixels.empty()) {
        color = GpuColor{};
        return;
    }
    const float x = tamed(u, how.repeatsU) * static_cast<float>(level.width);
    const float y = tamed(v, how.repeatsV) * static_cast<float>(level.height);
    const auto column = [&](int at) { return wrapped(at, level.width, how.repeatsU); };
    const auto row = [&](int at) {
        return level.pixels.data() + static_cast<std::size_t>(wrapped(at, level.height, how.repeatsV)) *
                                         static_cast<std::size_t>(level.width);
    };
    if (how.filter == GpuFilter::Nearest) {
        spread(color, row(wholeBelow(y))[column(wholeBelow(x))]);
        return;
    }
    const int left = wholeBelow(x - 0.5F), top = wholeBelow(y - 0.5F);
    const float shareX = x - 0.5F - static_cast<float>(left), shareY = y - 0.5F - static_cast<float>(top);
    const std::uint32_t *const above = row(top), *const below = row(top + 1);
    const int first = column(left), second = column(left + 1);
    GpuColor other, belowColor;
    spread(color, above[first]);
    spread(other, above[second]);
    mix(color, other, shareX);
    spread(belowColor, below[first]);
    spread(other, below[second]);
    mix(belowColor, other, shareX);
    mix(color, belowColor, shareY);
}

} // namespace

GpuTexture::GpuTexture(int width, int height, int faces)
    : m_width(width), m_height(height), m_faces(static_cast<std::size_t>(faces))
{
    const int count = std::bit_width(static_cast<unsigned>(std::max(width, height)));
    for (auto& levels : m_faces) {
        for (int i = 0; i < count; ++i)
            levels.push_back({std::max(width >> i, 1), std::max(height >> i, 1), {}});
    }
}

GpuTexture::Level& GpuTexture::level(int face, int level)
{
    Level& result = m_faces[static_cast<std::size_t>(face)][static_cast<std::size_t>(level)];
    if (result.pixels.empty())
        result.pixels.resize(static_cast<std::size_t>(result.width) *
                             static_cast<std::size_t>(result.height));
    return result;
}

std::size_t GpuTexture::bytes() const
{
    std::size_t total = 0;
    for (const auto& levels : m_faces) {
        for (const Level& level : levels) total += level.pixels.size() * sizeof(std::uint32_t);
    }
    return total;
}

void GpuTexture::sampleFace(GpuColor& color, std::size_t face, float u, float v, float lod,
                            const GpuSampling& how) const
{
    const std::vector<Level>& levels = m_faces[face];
    const auto last = static_cast<float>(levels.size() - 1);
    const float wanted = std::isfinite(lod) ? std::clamp(lod + how.bias, 0.0F, last) : 0;
    if (how.mips == GpuMips::None || wanted <= 0) return fromLevel(color, levels.front(), u, v, how);
    if (how.mips == GpuMips::Nearest)
        return fromLevel(color, levels[static_cast<std::size_t>(wanted + 0.5F)], u, v, how);
    const auto lower = static_cast<std::size_t>(wanted);
    const std::size_t upper = std::min(lower + 1, levels.size() - 1);
    GpuColor smaller;
    fromLevel(color, levels[lower], u, v, how);
    fromLevel(smaller, levels[upper], u, v, how);
    mix(color, smaller, wanted - static_cast<float>(lower));
}

void GpuTexture::sample(GpuColor& color, float u, float v, float lod, const GpuSampling& how) const
{
    sampleFace(color, 0, u, v, lod, how);
}

void GpuTexture::sampleCube(GpuColor& color, float x, float y, float z, const GpuSampling& how) const
{
    color = GpuColor{};
    if (!isCube()) return;
    const float ax = std::abs(x), ay = std::abs(y), az = std::abs(z);
    // Faces come in pairs, the positive first; each has its own right and down.
    std::size_t face = 0;
    float right = 0, down = 0, depth = 1;
    if (ax >= ay && ax >= az) {
        face = x < 0 ? 1 : 0;
        right = x < 0 ? z : -z;
        down = -y;
        depth = ax;
    } else if (ay >= az) {
        face = y < 0 ? 3 : 2;
        right = x;
        down = y < 0 ? -z : z;
        depth = ay;
    } else {
        face = z < 0 ? 5 : 4;
        right = z < 0 ? -x : x;
        down = -y;
        depth = az;
    }
    if (!(depth > 0)) return;
    GpuSampling within = how;
    within.repeatsU = within.repeatsV = false;
    sampleFace(color, face, (right / depth + 1) / 2, (down / depth + 1) / 2, 0, within);
}

} // namespace flash::render
