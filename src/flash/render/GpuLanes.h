#pragma once

#include "flash/render/GpuProgram.h"
#include "flash/render/GpuTexture.h"

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace flash::render
{

/// So many corners or pixels run at once. Pixels are two rows of eight: each is one of four that lie
/// together, whose differences say how steep a value is.
constexpr std::size_t kGpuLanes = 16, kGpuLanesAcross = 8;
constexpr std::uint32_t kAllGpuLanes = (1U << kGpuLanes) - 1; ///< a bit for each
using GpuLane = std::array<float, kGpuLanes>;
using GpuRegister = std::array<GpuLane, 4>;
using GpuConstants = std::array<std::array<float, 4>, GpuProgram::kConstants>;

/// What a program samples.
struct GpuSampler {
    const GpuTexture* texture = nullptr; ///< none: black and transparent
    GpuSampling how;
};

/// Runs one program, sixteen of what it is for at a time.
class GpuLanes
{
public:
    GpuLanes(const GpuProgram& program, const GpuConstants& constants, std::span<const GpuSampler> samplers);

    std::array<GpuRegister, GpuProgram::kAttributes> attributes;
    std::array<GpuRegister, GpuProgram::kVaryings> varyings; ///< vertices write, fragments read them
    GpuRegister output;
    GpuLane depth;
    std::uint32_t killed = 0; ///< a bit for each lane

    void run();

private:
    void step(const GpuStep& step);
    /// @param mask components that are read
    void fetch(const GpuSource& source, std::size_t row, unsigned mask, GpuRegister& to) const;
    [[nodiscard]] const GpuRegister& registerOf(GpuFile file, std::size_t index) const;
    [[nodiscard]] GpuRegister& targetOf(const GpuStep& step);
    void store(const GpuStep& step, const GpuRegister& value);
    void texture(const GpuStep& step, const GpuRegister& at, GpuRegister& to) const;
    void branch(const GpuStep& step);

    const GpuProgram& m_program;
    const GpuConstants& m_constants;
    std::span<const GpuSampler> m_samplers;
    std::array<GpuRegister, GpuProgram::kTemporaries> m_temporaries;
    std::uint32_t m_active = kAllGpuLanes; ///< lanes that conditions leave
    struct Branch {
        std::uint32_t outer, taken;
    };
    std::vector<Branch> m_branches;
};

} // namespace flash::render
