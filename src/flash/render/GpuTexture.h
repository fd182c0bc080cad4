#pragma once

#include "flash/render/GpuColor.h"
#include "flash/render/GpuProgram.h"

#include <cstdint>
#include <vector>

namespace flash::render
{

/// A texture with its levels, each half as large as the one before; of a cube six faces.
class GpuTexture
{
public:
    static constexpr int kMaxSide = 4096;
    struct Level {
        int width = 0, height = 0;
        std::vector<std::uint32_t> pixels; ///< 0xAARRGGBB, rows from the top; empty: black and transparent
    };
    /// @param faces 1, or 6 of a cube, whose sides are equal
    GpuTexture(int width, int height, int faces);
    [[nodiscard]] int width() const { return m_width; }
    [[nodiscard]] int height() const { return m_height; }
    [[nodiscard]] bool isCube() const { return m_faces.size() == 6; }
    [[nodiscard]] int levels() const { return static_cast<int>(m_faces.front().size()); }
    /// With its pixels made. @param level less than levels()
    [[nodiscard]] Level& level(int face, int level);
    [[nodiscard]] std::size_t bytes() const;

    /// @param lod the level wanted, 0 the largest
    void sample(GpuColor& color, float u, float v, float lod, const GpuSampling& how) const;
    void sampleCube(GpuColor& color, float x, float y, float z, const GpuSampling& how) const;

private:
    void sampleFace(GpuColor& color, std::size_t face, float u, float v, float lod,
                    const GpuSampling& how) const;
    int m_width, m_height;
    std::vector<std::vector<Level>> m_faces;
};

} // namespace flash::render
