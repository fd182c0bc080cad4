#include "flash/render/GpuTexture.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace flash::render
{

namespace
{

using Texel = std::array<float, 4>;

Texel texelOf(const GpuTexture::Level& level, int x, int y)
{
    if (level.pixels.empty()) return {0, 0, 0, 0};
    const std::uint32_t pixel =
        level.pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(level.width) +
                     static_cast<std::size_t>(x)];
    constexpr float kUnit = 1.0F / 255;
    return {static_cast<float>(pixel >> 16U & 0xFFU) * kUnit, static_cast<float>(pixel >> 8U & 0xFFU) * kUnit,
            static_cast<float>(pixel & 0xFFU) * kUnit, static_cast<float>(pixel >> 24U) * kUnit};
}

int wrapped(int at, int size, bool repeats)
{
    if (!repeats) return std::clamp(at, 0, size - 1);
    const int rest = at % size;
    return rest < 0 ? rest + size : rest;
}

/// Numbers of a program may be anything.
float tamed(float coordinate, bool repeats)
{
    if (!std::isfinite(coordinate)) return 0;
    return repeats ? coordinate - std::floor(coordinate) : std::clamp(coordinate, -1.0F, 2.0F);
}

Texel mix(const Texel& a, const Texel& b, float share)
{
    Texel result;
    for (std::size_t i = 0; i < 4; ++i) result[i] = a[i] + (b[i] - a[i]) * share;
    return result;
}

Texel fromLevel(const GpuTexture::Level& level, float u, float v, const GpuSampling& how)
{
    const float x = tamed(u, how.repeatsU) * static_cast<float>(level.width);
    const float y = tamed(v, how.repeatsV) * static_cast<float>(level.height);
    const auto at = [&](int column, int row) {
        return texelOf(level, wrapped(column, level.width, how.repeatsU),
                       wrapped(row, level.height, how.repeatsV));
    };
    if (how.filter == GpuFilter::Nearest)
        return at(static_cast<int>(std::floor(x)), static_cast<int>(std::floor(y)));
    const float left = std::floor(x - 0.5F), top = std::floor(y - 0.5F);
    const float shareX = x - 0.5F - left, shareY = y - 0.5F - top;
    const int column = static_cast<int>(left), row = static_cast<int>(top);
    return mix(mix(at(column, row), at(column + 1, row), shareX),
               mix(at(column, row + 1), at(column + 1, row + 1), shareX), shareY);
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

std::array<float, 4> GpuTexture::sampleFace(std::size_t face, float u, float v, float lod,
                                            const GpuSampling& how) const
{
    const std::vector<Level>& levels = m_faces[face];
    const auto last = static_cast<float>(levels.size() - 1);
    const float wanted = std::isfinite(lod) ? std::clamp(lod + how.bias, 0.0F, last) : 0;
    if (how.mips == GpuMips::None || wanted <= 0) return fromLevel(levels.front(), u, v, how);
    if (how.mips == GpuMips::Nearest)
        return fromLevel(levels[static_cast<std::size_t>(wanted + 0.5F)], u, v, how);
    const auto lower = static_cast<std::size_t>(wanted);
    const std::size_t upper = std::min(lower + 1, levels.size() - 1);
    return mix(fromLevel(levels[lower], u, v, how), fromLevel(levels[upper], u, v, how),
               wanted - static_cast<float>(lower));
}

std::array<float, 4> GpuTexture::sample(float u, float v, float lod, const GpuSampling& how) const
{
    return sampleFace(0, u, v, lod, how);
}

std::array<float, 4> GpuTexture::sampleCube(float x, float y, float z, const GpuSampling& how) const
{
    if (!isCube()) return {0, 0, 0, 0};
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
    if (!(depth > 0)) return {0, 0, 0, 0};
    GpuSampling within = how;
    within.repeatsU = within.repeatsV = false;
    return sampleFace(face, (right / depth + 1) / 2, (down / depth + 1) / 2, 0, within);
}

} // namespace flash::render
