#include "flash/render/GpuLanes.h"

#include "flash/render/Vectorize.h"

#include <algorithm>
#include <cmath>

namespace flash::render
{

namespace
{

/// @param mask components that are wanted
template <class Work>
void each(unsigned mask, GpuRegister& to, const GpuRegister& a, Work work)
{
    for (std::size_t c = 0; c < 4; ++c) {
        if (!(mask >> c & 1U)) continue;
        for (std::size_t i = 0; i < kGpuLanes; ++i) to[c][i] = work(a[c][i]);
    }
}
template <class Work>
void each(unsigned mask, GpuRegister& to, const GpuRegister& a, const GpuRegister& b, Work work)
{
    for (std::size_t c = 0; c < 4; ++c) {
        if (!(mask >> c & 1U)) continue;
        for (std::size_t i = 0; i < kGpuLanes; ++i) to[c][i] = work(a[c][i], b[c][i]);
    }
}

/// Components of its sources that an instruction reads.
unsigned componentsRead(const GpuStep& step)
{
    constexpr unsigned kX = 1, kXyz = 7, kXyzw = 15;
    switch (step.op) {
    case GpuOp::Nrm:
    case GpuOp::Crs:
    case GpuOp::Dp3:
    case GpuOp::M33:
    case GpuOp::Tex: return kXyz;
    case GpuOp::Dp4:
    case GpuOp::M44:
    case GpuOp::M34: return kXyzw;
    case GpuOp::Kill: return kX;
    default: return step.mask;
    }
}

void dot(GpuLane& to, const GpuRegister& a, const GpuRegister& b, std::size_t components)
{
    to.fill(0);
    for (std::size_t c = 0; c < components; ++c) {
        for (std::size_t i = 0; i < kGpuLanes; ++i) to[i] += a[c][i] * b[c][i];
    }
}

void cross(GpuRegister& to, const GpuRegister& a, const GpuRegister& b)
{
    for (std::size_t c = 0; c < 3; ++c) {
        const std::size_t p = (c + 1) % 3, q = (c + 2) % 3;
        for (std::size_t i = 0; i < kGpuLanes; ++i) to[c][i] = a[p][i] * b[q][i] - a[q][i] * b[p][i];
    }
    to[3].fill(0);
}

void normalize(unsigned mask, GpuRegister& to, const GpuRegister& a)
{
    GpuLane length;
    dot(length, a, a, 3);
    for (float& number : length) number = std::sqrt(number);
    for (std::size_t c = 0; c < 3; ++c) {
        if (!(mask >> c & 1U)) continue;
        for (std::size_t i = 0; i < kGpuLanes; ++i) to[c][i] = length[i] > 0 ? a[c][i] / length[i] : 0;
    }
    to[3].fill(0);
}

/// How a value changes to the right, or downwards, within each four.
void slope(unsigned mask, GpuRegister& to, const GpuRegister& a, std::size_t distance)
{
    for (std::size_t c = 0; c < 4; ++c) {
        if (!(mask >> c & 1U)) continue;
        for (std::size_t i = 0; i < kGpuLanes; ++i) {
            const std::size_t low = i & ~distance;
            to[c][i] = a[c][low | distance] - a[c][low];
        }
    }
}

float sign(float x) { return x > 0 ? 1.0F : x < 0 ? -1.0F : 0.0F; }

} // namespace

GpuLanes::GpuLanes(const GpuProgram& program, const GpuConstants& constants,
                   std::span<const GpuSampler> samplers)
    : attributes{}, varyings{}, output{}, depth{}, m_program(program), m_constants(constants),
      m_samplers(samplers), m_temporaries{}
{
}

void GpuLanes::run()
{
    m_active = kAllGpuLanes;
    killed = 0;
    m_branches.clear();
    for (const GpuStep& next : m_program.steps) step(next);
}

const GpuRegister& GpuLanes::registerOf(GpuFile file, std::size_t index) const
{
    switch (file) {
    case GpuFile::Attribute: return attributes[index];
    case GpuFile::Varying: return varyings[index];
    default: return m_temporaries[index];
    }
}

void GpuLanes::fetch(const GpuSource& source, std::size_t row, unsigned mask, GpuRegister& to) const
{
    if (source.file != GpuFile::Constant) {
        const GpuRegister& from = registerOf(source.file, source.index + row);
        for (std::size_t c = 0; c < 4; ++c) {
            if (mask >> c & 1U) to[c] = from[source.swizzle[c]];
        }
        return;
    }
    if (!source.isIndirect) {
        const std::array<float, 4>& from = m_constants[source.index + row];
        for (std::size_t c = 0; c < 4; ++c) {
            if (mask >> c & 1U) to[c].fill(from[source.swizzle[c]]);
        }
        return;
    }
    for (std::size_t i = 0; i < kGpuLanes; ++i) {
        float chosen = 0;
        if (source.chooser == GpuFile::Constant)
            chosen = m_constants[source.chooserIndex][source.chooserComponent];
        else
            chosen = registerOf(source.chooser, source.chooserIndex)[source.chooserComponent][i];
        const float wanted = (std::isfinite(chosen) ? chosen : 0) + static_cast<float>(source.index + row);
        constexpr auto kLast = static_cast<float>(GpuProgram::kConstants - 1);
        const std::array<float, 4>& from =
            m_constants[static_cast<std::size_t>(std::clamp(wanted, 0.0F, kLast))];
        for (std::size_t c = 0; c < 4; ++c) to[c][i] = from[source.swizzle[c]];
    }
}

GpuRegister& GpuLanes::targetOf(const GpuStep& step)
{
    switch (step.target) {
    case GpuFile::Varying: return varyings[step.targetIndex];
    case GpuFile::Output: return output;
    default: return m_temporaries[step.targetIndex];
    }
}

void GpuLanes::store(const GpuStep& step, const GpuRegister& value)
{
    const auto put = [this](GpuLane& to, const GpuLane& from) {
        if (m_active == kAllGpuLanes) {
            to = from;
            return;
        }
        for (std::size_t i = 0; i < kGpuLanes; ++i) {
            if (m_active >> i & 1U) to[i] = from[i];
        }
    };
    if (step.target == GpuFile::Depth) return put(depth, value[0]);
    GpuRegister& to = targetOf(step);
    for (std::size_t c = 0; c < 4; ++c) {
        if (step.mask >> c & 1U) put(to[c], value[c]);
    }
}

void GpuLanes::texture(const GpuStep& step, const GpuRegister& at, GpuRegister& to) const
{
    const GpuSampler sampler = step.sampler < m_samplers.size() ? m_samplers[step.sampler] : GpuSampler{};
    if (sampler.texture == nullptr) {
        for (GpuLane& lane : to) lane.fill(0);
        return;
    }
    GpuRegister across, down;
    const bool usesMips = sampler.how.mips != GpuMips::None && !step.isCube;
    constexpr unsigned kUv = 3;
    if (usesMips) {
        slope(kUv, across, at, 1);
        slope(kUv, down, at, kGpuLanesAcross);
    }
    const auto width = static_cast<float>(sampler.texture->width());
    const auto height = static_cast<float>(sampler.texture->height());
    for (std::size_t i = 0; i < kGpuLanes; ++i) {
        GpuColor color;
        if (step.isCube) {
            sampler.texture->sampleCube(color, at[0][i], at[1][i], at[2][i], sampler.how);
        } else {
            float lod = 0;
            if (usesMips) {
                const auto squared = [&](const GpuRegister& slopes) {
                    const float u = slopes[0][i] * width, v = slopes[1][i] * height;
                    return u * u + v * v;
                };
                const float longest = std::max(squared(across), squared(down));
                lod = longest > 0 ? std::log2(longest) / 2 : 0;
            }
            sampler.texture->sample(color, at[0][i], at[1][i], lod, sampler.how);
        }
        for (std::size_t c = 0; c < 3; ++c) to[c][i] = color[2 - c]; // red first
        to[3][i] = color[3];
    }
}

void GpuLanes::branch(const GpuStep& step)
{
    if (step.op == GpuOp::EndIf) {
        m_active = m_branches.back().outer;
        m_branches.pop_back();
        return;
    }
    if (step.op == GpuOp::Else) {
        m_active = m_branches.back().outer & ~m_branches.back().taken;
        return;
    }
    GpuRegister a, b;
    fetch(step.a, 0, 1, a);
    fetch(step.b, 0, 1, b);
    std::uint32_t holds = 0;
    for (std::size_t i = 0; i < kGpuLanes; ++i) {
        const float x = a[0][i], y = b[0][i];
        const bool does = step.op == GpuOp::IfEqual      ? x == y
                          : step.op == GpuOp::IfNotEqual ? x != y
                          : step.op == GpuOp::IfGreater  ? x > y
                                                         : x < y;
        if (does) holds |= 1U << i;
    }
    m_branches.push_back({m_active, holds});
    m_active &= holds;
}

ZORVEX_VECTORIZE void GpuLanes::step(const GpuStep& step)
{
    if (step.op >= GpuOp::IfEqual && step.op <= GpuOp::EndIf) return branch(step);
    if (m_active == 0) return;
    const unsigned read = componentsRead(step), mask = step.mask;
    GpuRegister a, b, r;
    fetch(step.a, 0, read, a);
    switch (step.op) {
    case GpuOp::Mov: return store(step, a);
    case GpuOp::Add:
        fetch(step.b, 0, read, b);
        each(mask, r, a, b, [](float x, float y) { return x + y; });
        break;
    case GpuOp::Sub:
        fetch(step.b, 0, read, b);
        each(mask, r, a, b, [](float x, float y) { return x - y; });
        break;
    case GpuOp::Mul:
        fetch(step.b, 0, read, b);
        each(mask, r, a, b, [](float x, float y) { return x * y; });
        break;
    case GpuOp::Div:
        fetch(step.b, 0, read, b);
        each(mask, r, a, b, [](float x, float y) { return x / y; });
        break;
    case GpuOp::Rcp: each(mask, r, a, [](float x) { return 1 / x; }); break;
    case GpuOp::Min:
        fetch(step.b, 0, read, b);
        each(mask, r, a, b, [](float x, float y) { return y < x ? y : x; });
        break;
    case GpuOp::Max:
        fetch(step.b, 0, read, b);
        each(mask, r, a, b, [](float x, float y) { return y > x ? y : x; });
        break;
    case GpuOp::Frc: each(mask, r, a, [](float x) { return x - std::floor(x); }); break;
    case GpuOp::Sqt: each(mask, r, a, [](float x) { return std::sqrt(x); }); break;
    case GpuOp::Rsq: each(mask, r, a, [](float x) { return 1 / std::sqrt(x); }); break;
    case GpuOp::Pow:
        fetch(step.b, 0, read, b);
        each(mask, r, a, b, [](float x, float y) { return std::pow(x, y); });
        break;
    case GpuOp::Log: each(mask, r, a, [](float x) { return std::log2(x); }); break;
    case GpuOp::Exp: each(mask, r, a, [](float x) { return std::exp2(x); }); break;
    case GpuOp::Nrm: normalize(mask, r, a); break;
    case GpuOp::Sin: each(mask, r, a, [](float x) { return std::sin(x); }); break;
    case GpuOp::Cos: each(mask, r, a, [](float x) { return std::cos(x); }); break;
    case GpuOp::Crs:
        fetch(step.b, 0, read, b);
        cross(r, a, b);
        break;
    case GpuOp::Dp3:
    case GpuOp::Dp4:
        fetch(step.b, 0, read, b);
        dot(r[0], a, b, step.op == GpuOp::Dp3 ? 3 : 4);
        r[1] = r[2] = r[3] = r[0];
        break;
    case GpuOp::Abs: each(mask, r, a, [](float x) { return std::abs(x); }); break;
    case GpuOp::Neg: each(mask, r, a, [](float x) { return -x; }); break;
    case GpuOp::Sat: each(mask, r, a, [](float x) { return std::min(std::max(x, 0.0F), 1.0F); }); break;
    case GpuOp::M33:
    case GpuOp::M44:
    case GpuOp::M34: {
        const std::size_t rows = step.op == GpuOp::M44 ? 4 : 3;
        if (rows == 3) r[3].fill(0);
        for (std::size_t row = 0; row < rows; ++row) {
            fetch(step.b, row, read, b);
            dot(r[row], a, b, step.op == GpuOp::M33 ? 3 : 4);
        }
        break;
    }
    case GpuOp::Ddx: slope(mask, r, a, 1); break;
    case GpuOp::Ddy: slope(mask, r, a, kGpuLanesAcross); break;
    case GpuOp::Kill:
        for (std::size_t i = 0; i < kGpuLanes; ++i) {
            if (a[0][i] < 0) killed |= m_active & 1U << i;
        }
        return;
    case GpuOp::Tex: texture(step, a, r); break;
    case GpuOp::Sge:
        fetch(step.b, 0, read, b);
        each(mask, r, a, b, [](float x, float y) { return x >= y ? 1.0F : 0.0F; });
        break;
    case GpuOp::Slt:
        fetch(step.b, 0, read, b);
        each(mask, r, a, b, [](float x, float y) { return x < y ? 1.0F : 0.0F; });
        break;
    case GpuOp::Sgn: each(mask, r, a, sign); break;
    case GpuOp::Seq:
        fetch(step.b, 0, read, b);
        each(mask, r, a, b, [](float x, float y) { return x == y ? 1.0F : 0.0F; });
        break;
    case GpuOp::Sne:
        fetch(step.b, 0, read, b);
        each(mask, r, a, b, [](float x, float y) { return x != y ? 1.0F : 0.0F; });
        break;
    default: return;
    }
    store(step, r);
}

} // namespace flash::render
