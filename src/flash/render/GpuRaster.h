#pragma once

#include "flash/render/GpuLanes.h"
#include "flash/render/Surface.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

// Triangles in space, drawn as a graphics card would draw them.
namespace flash::render
{

enum class GpuCompare : std::uint8_t {
    Always,
    Never,
    Less,
    LessEqual,
    Equal,
    GreaterEqual,
    Greater,
    NotEqual
};
enum class GpuBlend : std::uint8_t {
    Zero,
    One,
    SourceColor,
    OneMinusSourceColor,
    SourceAlpha,
    OneMinusSourceAlpha,
    DestinationAlpha,
    OneMinusDestinationAlpha,
    DestinationColor,
    OneMinusDestinationColor,
};
enum class GpuStencilAction : std::uint8_t {
    Keep,
    Zero,
    Set,
    IncrementSaturate,
    IncrementWrap,
    DecrementSaturate,
    DecrementWrap,
    Invert,
};
/// Of triangles whose corners run clockwise or the other way as they are seen.
struct GpuStencil {
    GpuCompare compare = GpuCompare::Always;
    GpuStencilAction pass = GpuStencilAction::Keep, depthFails = GpuStencilAction::Keep,
                     fails = GpuStencilAction::Keep;
};

/// What is drawn on. Rows from the top; colours 0xAARRGGBB, not premultiplied by anything. Every pixel has
/// one of all, or four, which are places within it that edges may part.
struct GpuTarget {
    int width = 0, height = 0;
    std::size_t samples = 1; ///< 1 or 4
    std::span<std::uint32_t> colors;
    std::span<float> depths;          ///< may be none, as may
    std::span<std::uint8_t> stencils; ///< these
};

struct GpuState {
    GpuBlend source = GpuBlend::One, destination = GpuBlend::Zero;
    std::uint32_t colorMask = 0xFFFFFFFF; ///< channels that are written, 0xAARRGGBB
    GpuCompare depthCompare = GpuCompare::Less;
    bool writesDepth = true;
    bool cullsClockwise = false, cullsOthers = false;
    std::optional<IntRect> scissor;
    std::array<GpuStencil, 2> stencil{}; ///< of clockwise ones, of others
    std::uint8_t stencilReference = 0, stencilReadMask = 255, stencilWriteMask = 255;
};

/// Numbers of corners that a program reads as one attribute.
struct GpuStream {
    enum class Format : std::uint8_t { None, Float1, Float2, Float3, Float4, Bytes4 };
    Format format = Format::None;
    std::span<const std::uint32_t> words; ///< of the buffer, floats or four bytes each
    std::size_t stride = 0, offset = 0;   ///< words
};

struct GpuDraw {
    const GpuProgram* vertex = nullptr;
    const GpuProgram* fragment = nullptr;
    const GpuConstants* vertexConstants = nullptr;
    const GpuConstants* fragmentConstants = nullptr;
    std::span<const GpuSampler> samplers;
    std::array<GpuStream, GpuProgram::kAttributes> streams{};
    std::span<const std::uint16_t> indices; ///< three to a triangle
};

/// Corners that a stream has no numbers for are at 0, 0, 0, 1. Looks to the guard as it goes.
void drawGpuTriangles(const GpuDraw& draw, const GpuState& state, const GpuTarget& target);

} // namespace flash::render
