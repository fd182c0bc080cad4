#pragma once

#include "flash/render/GpuRaster.h"

namespace flash::render
{

/// A corner as its program puts it out.
struct GpuCorner {
    std::array<float, 4> position{}; ///< x, y, z, w of the clipping space
    std::array<std::array<float, 4>, GpuProgram::kVaryings> varyings{};
};

/// Fills one triangle after the other with what the fragment program says.
class GpuPixels
{
public:
    GpuPixels(const GpuDraw& draw, const GpuState& state, const GpuTarget& target);
    /// In front of the eye, and not far outside of the picture.
    void triangle(const GpuCorner& a, const GpuCorner& b, const GpuCorner& c);

private:
    /// What changes evenly over the picture.
    struct Plane {
        double value = 0, dx = 0, dy = 0; ///< value at the middle of the picture's first pixel
    };
    struct Edge {
        std::int64_t value = 0, dx = 0, dy = 0; ///< not negative inside
    };
    struct Setup;
    /// Bits of lanes, for each sample.
    using Coverage = std::array<std::uint32_t, 4>;
    void rows(const Setup& setup, const IntRect& box);
    [[nodiscard]] Coverage coverage(const Setup& setup, const IntRect& box, int x, int y,
                                    const std::array<std::int64_t, 3>& edges) const;
    void block(const Setup& setup, int x, int y, Coverage covered);
    void shade(const Setup& setup, int x, int y);
    [[nodiscard]] Coverage test(const Setup& setup, int x, int y, Coverage covered);
    [[nodiscard]] bool passes(std::size_t face, std::size_t sample, float depth);
    [[nodiscard]] std::uint8_t stenciled(GpuStencilAction action, std::uint8_t now) const;
    void blend(int x, int y, const Coverage& covered);
    [[nodiscard]] std::uint32_t blended(const GpuColor& source, std::uint32_t below) const;
    /// The first sample of a lane's pixel.
    [[nodiscard]] std::size_t at(int x, int y, std::size_t lane) const;

    const GpuDraw& m_draw;
    const GpuState& m_state;
    const GpuTarget& m_target;
    IntRect m_clip;
    GpuLanes m_lanes;
    bool m_testsFirst, m_usesStencil;
    std::uint32_t m_cost; ///< of sixteen pixels, microseconds
};

} // namespace flash::render
