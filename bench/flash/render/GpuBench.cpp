// A ball of textured, lit triangles, drawn as a graphics card would draw it.
#include "flash/render/GpuRaster.h"

#include <benchmark/benchmark.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <numbers>
#include <random>
#include <vector>

namespace
{

using namespace flash::render;

constexpr std::uint8_t kXyz = 7, kXyzw = 15;

GpuSource from(GpuFile file, std::uint16_t index, std::array<std::uint8_t, 4> swizzle = {0, 1, 2, 3})
{
    GpuSource source;
    source.file = file;
    source.index = index;
    source.swizzle = swizzle;
    return source;
}

GpuStep step(GpuOp op, GpuFile target, std::uint16_t index, std::uint8_t mask, GpuSource a, GpuSource b = {})
{
    GpuStep result;
    result.op = op;
    result.target = target;
    result.targetIndex = index;
    result.mask = mask;
    result.a = a;
    result.b = b;
    return result;
}

/// A place on the ball, which is its normal as well, by a matrix; the texture's place as it is.
GpuProgram vertexProgram()
{
    GpuProgram program;
    program.attributes = program.varyings = 3;
    program.steps = {
        step(GpuOp::M44, GpuFile::Output, 0, kXyzw, from(GpuFile::Attribute, 0), from(GpuFile::Constant, 0)),
        step(GpuOp::Mov, GpuFile::Varying, 0, kXyzw, from(GpuFile::Attribute, 1)),
        step(GpuOp::Mov, GpuFile::Varying, 1, kXyzw, from(GpuFile::Attribute, 0)),
    };
    return program;
}

/// The texture in a light from one side.
GpuProgram fragmentProgram()
{
    GpuProgram program;
    program.stage = GpuStage::Fragment;
    program.varyings = 3;
    program.samplers = 1;
    GpuStep sampled = step(GpuOp::Tex, GpuFile::Temporary, 0, kXyzw, from(GpuFile::Varying, 0));
    sampled.sampling = {GpuFilter::Linear, GpuMips::Linear, true, true, 0};
    program.steps = {
        sampled,
        step(GpuOp::Nrm, GpuFile::Temporary, 1, kXyz, from(GpuFile::Varying, 1)),
        step(GpuOp::Dp3, GpuFile::Temporary, 1, kXyzw, from(GpuFile::Temporary, 1),
             from(GpuFile::Constant, 0)),
        step(GpuOp::Sat, GpuFile::Temporary, 1, kXyzw, from(GpuFile::Temporary, 1)),
        step(GpuOp::Add, GpuFile::Temporary, 1, kXyzw, from(GpuFile::Temporary, 1),
             from(GpuFile::Constant, 1)),
        step(GpuOp::Mul, GpuFile::Output, 0, kXyzw, from(GpuFile::Temporary, 0), from(GpuFile::Temporary, 1)),
    };
    return program;
}

/// Corners of eight numbers, place and texture, on rings around the ball.
struct Ball {
    explicit Ball(int rings)
    {
        const auto put = [this](double number) {
            words.push_back(std::bit_cast<std::uint32_t>(static_cast<float>(number)));
        };
        for (int ring = 0; ring <= rings; ++ring) {
            for (int part = 0; part <= rings; ++part) {
                const double down = std::numbers::pi * ring / rings,
                             around = 2 * std::numbers::pi * part / rings;
                for (const double number :
                     {std::sin(down) * std::cos(around), std::cos(down), std::sin(down) * std::sin(around),
                      1.0, 4.0 * part / rings, 4.0 * ring / rings, 0.0, 0.0})
                    put(number);
            }
        }
        const auto at = [rings](int ring, int part) {
            return static_cast<std::uint16_t>(ring * (rings + 1) + part);
        };
        for (int ring = 0; ring < rings; ++ring) {
            for (int part = 0; part < rings; ++part) {
                for (const auto& [r, p] : {std::pair(ring, part),
                                           {ring, part + 1},
                                           {ring + 1, part},
                                           {ring + 1, part},
                                           {ring, part + 1},
                                           {ring + 1, part + 1}})
                    indices.push_back(at(r, p));
            }
        }
    }
    std::vector<std::uint32_t> words;
    std::vector<std::uint16_t> indices;
};

GpuTexture noiseTexture(int side)
{
    GpuTexture texture(side, side, 1);
    std::mt19937 random(42);
    for (int i = 0; i < texture.levels(); ++i) {
        for (std::uint32_t& pixel : texture.level(0, i).pixels)
            pixel = 0xFF000000U | static_cast<std::uint32_t>(random());
    }
    return texture;
}

void texturedBall(benchmark::State& state, std::size_t samples)
{
    const int width = static_cast<int>(state.range(0)), height = static_cast<int>(state.range(1));
    const Ball ball(48);
    GpuTexture texture = noiseTexture(256);
    const GpuProgram vertex = vertexProgram(), fragment = fragmentProgram();
    GpuConstants vertexConstants{}, fragmentConstants{};
    const float flat = static_cast<float>(height) / static_cast<float>(width);
    vertexConstants[0] = {0.95F * flat, 0, 0, 0};
    vertexConstants[1] = {0, 0.95F, 0, 0};
    vertexConstants[2] = {0, 0, 0.4F, 0.5F};
    vertexConstants[3] = {0, 0, 0, 1};
    fragmentConstants[0] = {0.5F, 0.5F, -0.7F, 0};
    fragmentConstants[1] = {0.2F, 0.2F, 0.2F, 0.2F};
    const GpuSampler sampler{&texture, fragment.steps.front().sampling};

    const std::size_t count = samples * static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    std::vector<std::uint32_t> colors(count);
    std::vector<float> depths(count);
    std::vector<std::uint8_t> stencils(count);
    const GpuTarget target{width, height, samples, colors, depths, stencils};
    GpuDraw draw;
    draw.vertex = &vertex;
    draw.fragment = &fragment;
    draw.vertexConstants = &vertexConstants;
    draw.fragmentConstants = &fragmentConstants;
    draw.samplers = {&sampler, 1};
    draw.streams[0] = {GpuStream::Format::Float4, ball.words, 8, 0};
    draw.streams[1] = {GpuStream::Format::Float4, ball.words, 8, 4};
    draw.indices = ball.indices;
    for (auto _ : state) {
        std::fill(depths.begin(), depths.end(), 1.0F);
        drawGpuTriangles(draw, {}, target);
        benchmark::ClobberMemory();
    }
    std::size_t drawn = 0;
    for (const std::uint32_t color : colors) drawn += color != 0 ? 1 : 0;
    if (drawn < count / 4) state.SkipWithError("the ball is not to be seen");
    state.counters["ns/pixel"] = benchmark::Counter(
        static_cast<double>(state.iterations()) * static_cast<double>(drawn / samples) * 1e-9,
        benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

#define FRAME_SIZES Args({550, 400})->Args({1280, 960})->Unit(benchmark::kMillisecond)
BENCHMARK_CAPTURE(texturedBall, oneSample, 1)->FRAME_SIZES;
BENCHMARK_CAPTURE(texturedBall, fourSamples, 4)->FRAME_SIZES;

} // namespace
