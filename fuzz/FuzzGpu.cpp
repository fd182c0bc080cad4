#include "flash/render/GpuRaster.h"

#include <array>
#include <bit>

// Programs of vertices and fragments: parsed, and a triangle drawn with them. The first byte says how long
// the first of the two is, in instructions.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace flash::render;
    if (size < 1) return 0;
    const std::span<const std::uint8_t> bytes(data + 1, size - 1);
    constexpr std::size_t kHeader = 7, kStep = 24;
    const std::size_t first = std::min(bytes.size(), kHeader + kStep * data[0]);
    GpuProgram vertex, fragment;
    if (parseGpuProgram(bytes.first(first), GpuStage::Vertex, vertex)) return 0;
    if (parseGpuProgram(bytes.subspan(first), GpuStage::Fragment, fragment)) return 0;
    if (checkGpuLinkage(vertex, fragment)) return 0;
    GpuConstants constants{};
    for (std::size_t i = 0; i < constants.size(); ++i)
        constants[i] = {static_cast<float>(i), -0.5F, 1, 1e30F};
    constexpr int kSide = 24;
    std::array<std::uint32_t, std::size_t{4} * kSide * kSide> colors{};
    std::array<float, std::size_t{4} * kSide * kSide> depths{};
    depths.fill(1);
    GpuTexture texture(4, 2, 1), cube(2, 2, 6);
    texture.level(0, 0).pixels[3] = 0xFF123456;
    const std::array<GpuSampler, 2> samplers = {
        {{&texture, {GpuFilter::Linear, GpuMips::Linear, true, false, 0}}, {&cube, {}}}};
    std::array<std::uint32_t, 24> words{};
    for (std::size_t i = 0; i < words.size(); ++i)
        words[i] = std::bit_cast<std::uint32_t>(static_cast<float>(i % 7) / 3 - 1);
    GpuDraw draw{&vertex, &fragment, &constants, &constants, samplers, {}, {}};
    draw.streams.fill({GpuStream::Format::Float4, words, 8, 0});
    draw.streams[1] = {GpuStream::Format::Bytes4, words, 8, 20};
    constexpr std::array<std::uint16_t, 6> kIndices = {0, 1, 2, 2, 0, 9};
    draw.indices = kIndices;
    GpuState state;
    state.destination = GpuBlend::OneMinusSourceAlpha;
    drawGpuTriangles(draw, state, {kSide, kSide, 4, colors, depths, {}});
    drawGpuTriangles(draw, {}, {kSide, kSide, 1, colors, {}, {}});
    return 0;
}
