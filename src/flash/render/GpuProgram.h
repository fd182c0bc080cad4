#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

// Programs that movies bring for the corners and the pixels of triangles: read and checked once, run by
// GpuLanes.
namespace flash::render
{

enum class GpuStage : std::uint8_t { Vertex, Fragment };
/// Where a register lies; the numbers are those of the format.
enum class GpuFile : std::uint8_t { Attribute, Constant, Temporary, Output, Varying, Sampler, Depth };

enum class GpuOp : std::uint8_t {
    Mov = 0x00,
    Add,
    Sub,
    Mul,
    Div,
    Rcp,
    Min,
    Max,
    Frc,
    Sqt,
    Rsq,
    Pow,
    Log,
    Exp,
    Nrm,
    Sin,
    Cos = 0x10,
    Crs,
    Dp3,
    Dp4,
    Abs,
    Neg,
    Sat,
    M33,
    M44,
    M34,
    Ddx,
    Ddy,
    IfEqual,
    IfNotEqual,
    IfGreater,
    IfLess,
    Else = 0x20,
    EndIf,
    Kill = 0x27,
    Tex,
    Sge,
    Slt,
    Sgn,
    Seq,
    Sne,
};

struct GpuSource {
    GpuFile file = GpuFile::Temporary;
    std::uint16_t index = 0; ///< of an indirect one, what is added to the number found
    std::array<std::uint8_t, 4> swizzle{0, 1, 2, 3};
    // Constants may be chosen by a number of another register.
    bool isIndirect = false;
    GpuFile chooser = GpuFile::Temporary;
    std::uint16_t chooserIndex = 0;
    std::uint8_t chooserComponent = 0;
};

enum class GpuFilter : std::uint8_t { Nearest, Linear };
enum class GpuMips : std::uint8_t { None, Nearest, Linear };
/// How a texture is sampled.
struct GpuSampling {
    GpuFilter filter = GpuFilter::Nearest;
    GpuMips mips = GpuMips::None;
    bool repeatsU = false, repeatsV = false;
    float bias = 0; ///< levels
};

struct GpuStep {
    GpuOp op = GpuOp::Mov;
    GpuFile target = GpuFile::Temporary;
    std::uint16_t targetIndex = 0;
    std::uint8_t mask = 0; ///< a bit for each component, x lowest
    GpuSource a, b;
    // Of Tex:
    std::uint16_t sampler = 0;
    bool isCube = false, keepsState = false; ///< how it samples stays as the context has it
    GpuSampling sampling;
};

struct GpuProgram {
    static constexpr std::size_t kAttributes = 16, kConstants = 250, kTemporaries = 26, kVaryings = 10,
                                 kSamplers = 16;
    GpuStage stage = GpuStage::Vertex;
    std::vector<GpuStep> steps;
    // Bits of what it reads or writes.
    std::uint32_t attributes = 0, varyings = 0, samplers = 0;
    bool kills = false, writesDepth = false;
};

/// Why a program is none, by the player's numbers of errors.
struct GpuFault {
    int number = 0;
    std::string text;
};

/// @param bytes the token stream, header included
/// @returns what is wrong with it, or nothing
std::optional<GpuFault> parseGpuProgram(std::span<const std::uint8_t> bytes, GpuStage stage,
                                        GpuProgram& program);
/// A fragment may only read what the vertices give it. @returns what is wrong, or nothing
std::optional<GpuFault> checkGpuLinkage(const GpuProgram& vertex, const GpuProgram& fragment);

} // namespace flash::render
