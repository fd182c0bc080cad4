#include "flash/render/GpuRaster.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <random>

namespace flash::render
{
namespace
{

using File = GpuFile;
using Bytes = std::vector<std::uint8_t>;

constexpr std::uint32_t kXyzw = 0xE4, kXxxx = 0x00, kYyyy = 0x55;
constexpr std::uint32_t kAll = 0xF, kX = 1;

/// The bytes of a program.
class Writer
{
public:
    explicit Writer(GpuStage stage)
    {
        bytes = {0xA0, 1, 0, 0, 0, 0xA1, static_cast<std::uint8_t>(stage == GpuStage::Vertex ? 0 : 1)};
    }
    static std::uint64_t source(File file, std::uint32_t index, std::uint32_t swizzle = kXyzw)
    {
        return index | std::uint64_t{swizzle} << 24U | static_cast<std::uint64_t>(file) << 32U;
    }
    static std::uint64_t indirect(std::uint32_t chooser, std::uint32_t offset)
    {
        return chooser | std::uint64_t{offset} << 16U | std::uint64_t{kXyzw} << 24U |
               static_cast<std::uint64_t>(File::Constant) << 32U |
               static_cast<std::uint64_t>(File::Attribute) << 40U | std::uint64_t{1} << 63U;
    }
    Writer& step(GpuOp op, File to, std::uint32_t index, std::uint32_t mask, std::uint64_t a,
                 std::uint64_t b = 0)
    {
        put(static_cast<std::uint32_t>(op), 4);
        put(index | mask << 16U | static_cast<std::uint32_t>(to) << 24U, 4);
        put(a, 8);
        put(b, 8);
        return *this;
    }
    Writer& condition(GpuOp op, std::uint64_t a = 0, std::uint64_t b = 0)
    {
        put(static_cast<std::uint32_t>(op), 8);
        put(a, 8);
        put(b, 8);
        return *this;
    }
    Bytes bytes;

private:
    void put(std::uint64_t number, int count)
    {
        for (int i = 0; i < count; ++i) bytes.push_back(static_cast<std::uint8_t>(number >> 8 * i));
    }
};
constexpr auto source = &Writer::source;

/// Corners at va0, with va1 handed on to the pixels.
Writer throughVertex()
{
    return Writer(GpuStage::Vertex)
        .step(GpuOp::Mov, File::Output, 0, kAll, source(File::Attribute, 0, kXyzw))
        .step(GpuOp::Mov, File::Varying, 0, kAll, source(File::Attribute, 1, kXyzw));
}
Writer throughFragment()
{
    return Writer(GpuStage::Fragment)
        .step(GpuOp::Mov, File::Output, 0, kAll, source(File::Varying, 0, kXyzw));
}

/// A picture and what is drawn on it: corners of eight numbers, their place and their colour.
struct Scene {
    explicit Scene(int size, std::size_t samples = 1)
        : width(size), colors(samples * static_cast<std::size_t>(size * size), 0xFF000000U),
          depths(colors.size(), 1),
          stencils(colors.size(), 0), target{size, size, samples, colors, depths, stencils}
    {
        use(throughVertex(), throughFragment());
    }
    void use(const Writer& vertexBytes, const Writer& fragmentBytes)
    {
        ASSERT_FALSE(parseGpuProgram(vertexBytes.bytes, GpuStage::Vertex, vertex));
        ASSERT_FALSE(parseGpuProgram(fragmentBytes.bytes, GpuStage::Fragment, fragment));
        ASSERT_FALSE(checkGpuLinkage(vertex, fragment));
    }
    void draw(const std::vector<float>& corners, const std::vector<std::uint16_t>& indices)
    {
        std::vector<std::uint32_t> words;
        for (const float number : corners) words.push_back(std::bit_cast<std::uint32_t>(number));
        GpuDraw draw;
        draw.vertex = &vertex;
        draw.fragment = &fragment;
        draw.vertexConstants = draw.fragmentConstants = &constants;
        draw.samplers = samplers;
        draw.streams[0] = {GpuStream::Format::Float4, words, 8, 0};
        draw.streams[1] = {GpuStream::Format::Float4, words, 8, 4};
        draw.indices = indices;
        drawGpuTriangles(draw, state, target);
    }
    /// All of the picture in one colour.
    void cover(float z, std::array<float, 4> c)
    {
        std::vector<float> corners;
        for (const auto& [x, y] : {std::pair(-1, 1), {1, 1}, {1, -1}, {-1, -1}})
            corners.insert(corners.end(),
                           {static_cast<float>(x), static_cast<float>(y), z, 1, c[0], c[1], c[2], c[3]});
        draw(corners, {0, 1, 2, 0, 2, 3});
    }
    [[nodiscard]] std::uint32_t at(int x, int y) const
    {
        return colors[static_cast<std::size_t>(y * width + x)];
    }

    int width;
    std::vector<std::uint32_t> colors;
    std::vector<float> depths;
    std::vector<std::uint8_t> stencils;
    GpuTarget target;
    GpuState state;
    GpuProgram vertex, fragment;
    GpuConstants constants{};
    std::array<GpuSampler, 1> samplers{};
};

TEST(GpuProgram, RefusesWhatIsNone)
{
    GpuProgram program;
    const auto numberOf = [&](const Bytes& bytes, GpuStage stage = GpuStage::Fragment) {
        const auto fault = parseGpuProgram(bytes, stage, program);
        return fault ? fault->number : 0;
    };
    const Bytes good = throughFragment().bytes;
    EXPECT_EQ(numberOf(good), 0);
    EXPECT_EQ(numberOf({}), 3615);
    for (std::size_t length = 0; length < good.size(); ++length)
        EXPECT_NE(numberOf(Bytes(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(length))), 0);
    const auto changed = [&](std::size_t at, std::uint8_t byte) {
        Bytes bytes = good;
        bytes[at] = byte;
        return bytes;
    };
    EXPECT_EQ(numberOf(changed(0, 0xA2)), 3616);
    EXPECT_EQ(numberOf(changed(1, 9)), 3617);
    EXPECT_EQ(numberOf(good, GpuStage::Vertex), 3619);
    EXPECT_EQ(numberOf(changed(7, 0x99)), 3620) << "no instruction";
    EXPECT_EQ(numberOf(changed(7 + 8, 200)), 3637) << "a varying that there is not";
    EXPECT_EQ(numberOf(changed(7 + 12, 0)), 3636) << "pixels do not read attributes";
    EXPECT_EQ(numberOf(Writer(GpuStage::Fragment)
                           .step(GpuOp::Mov, File::Temporary, 0, kAll, source(File::Varying, 0, kXyzw))
                           .bytes),
              3632)
        << "nothing comes out";
    EXPECT_EQ(numberOf(throughFragment().condition(GpuOp::Else).bytes), 3628);
    EXPECT_EQ(numberOf(throughFragment()
                           .condition(GpuOp::IfLess, source(File::Varying, 0, kXyzw),
                                      source(File::Varying, 0, kXyzw))
                           .bytes),
              3627);
    // Rows of a matrix are registers one after another: the last must be there as well.
    EXPECT_EQ(numberOf(Writer(GpuStage::Vertex)
                           .step(GpuOp::M44, File::Output, 0, kAll, source(File::Attribute, 0, kXyzw),
                                 source(File::Constant, GpuProgram::kConstants - 3, kXyzw))
                           .bytes,
                       GpuStage::Vertex),
              3637);
    GpuProgram plain;
    ASSERT_FALSE(
        parseGpuProgram(Writer(GpuStage::Vertex)
                            .step(GpuOp::Mov, File::Output, 0, kAll, source(File::Attribute, 0, kXyzw))
                            .bytes,
                        GpuStage::Vertex, plain));
    ASSERT_EQ(numberOf(good), 0);
    EXPECT_TRUE(checkGpuLinkage(plain, program)) << "v0 comes from nowhere";
}

TEST(GpuLanes, Computes)
{
    // Conditions within each other, components chosen and masked, a kill, the usual functions.
    const Writer writer =
        Writer(GpuStage::Fragment)
            .step(GpuOp::Mov, File::Temporary, 0, kAll, source(File::Constant, 0, kXyzw))
            .condition(GpuOp::IfGreater, source(File::Varying, 0, kXxxx), source(File::Constant, 0, kYyyy))
            .step(GpuOp::Add, File::Temporary, 0, kX, source(File::Temporary, 0, kXyzw),
                  source(File::Varying, 0, kXxxx))
            .condition(GpuOp::IfEqual, source(File::Varying, 0, kXxxx), source(File::Constant, 0, 0xFF))
            .step(GpuOp::Mov, File::Temporary, 0, 2, source(File::Constant, 0, 0xFF))
            .condition(GpuOp::EndIf)
            .condition(GpuOp::Else)
            .step(GpuOp::Neg, File::Temporary, 0, kX, source(File::Varying, 0, kXxxx))
            .condition(GpuOp::EndIf)
            .step(GpuOp::Kill, File::Attribute, 0, 0, source(File::Temporary, 0, kXxxx))
            .step(GpuOp::Ddx, File::Temporary, 1, kX, source(File::Varying, 0, kXxxx))
            .step(GpuOp::Mov, File::Temporary, 0, 8, source(File::Temporary, 1, kXxxx))
            .step(GpuOp::Mov, File::Output, 0, kAll, source(File::Temporary, 0, kXyzw));
    GpuProgram program;
    ASSERT_FALSE(parseGpuProgram(writer.bytes, GpuStage::Fragment, program));
    GpuConstants constants{};
    constants[0] = {10, 4, 30, 7};
    GpuLanes lanes(program, constants, {});
    for (std::size_t i = 0; i < kGpuLanes; ++i) lanes.varyings[0][0][i] = static_cast<float>(i);
    lanes.run();
    for (std::size_t i = 0; i < kGpuLanes; ++i) {
        const auto x = static_cast<float>(i);
        EXPECT_EQ(lanes.output[0][i], x > 4 ? 10 + x : -x) << i;
        EXPECT_EQ(lanes.output[1][i], i == 7 ? 7 : 4) << i;
        EXPECT_EQ(lanes.output[2][i], 30) << i;
        EXPECT_EQ(lanes.output[3][i], 1) << "the slope, " << i;
        EXPECT_EQ(lanes.killed >> i & 1U, i > 0 && i <= 4 ? 1U : 0U) << i;
    }
}

TEST(GpuLanes, ChoosesConstantsWithinBounds)
{
    GpuProgram program;
    ASSERT_FALSE(parseGpuProgram(
        Writer(GpuStage::Vertex).step(GpuOp::Mov, File::Output, 0, kAll, Writer::indirect(0, 2)).bytes,
        GpuStage::Vertex, program));
    GpuConstants constants{};
    for (std::size_t i = 0; i < constants.size(); ++i) constants[i].fill(static_cast<float>(i));
    GpuLanes lanes(program, constants, {});
    const std::array<float, 6> chosen = {0, 3.9F, -50, 1e30F, std::nanf(""), -1e30F};
    for (std::size_t i = 0; i < chosen.size(); ++i) lanes.attributes[0][0][i] = chosen[i];
    lanes.run();
    const std::array<float, 6> expected = {2, 5, 0, GpuProgram::kConstants - 1, 2, 0};
    for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_EQ(lanes.output[0][i], expected[i]) << i;
}

TEST(GpuTriangles, MeetWithoutGapsAndOverlaps)
{
    // Every pixel gets the same light from a fan of any shape: none is left out, none is drawn twice.
    std::mt19937 random(7);
    std::uniform_real_distribution<float> place(-0.9F, 0.9F);
    for (int round = 0; round < 20; ++round) {
        Scene scene(61);
        scene.state.destination = GpuBlend::One;
        const float c = 0.25F;
        std::vector<float> corners = {place(random), place(random), 0.5F, 1, c, c, c, c};
        std::vector<std::uint16_t> indices;
        constexpr int kAround = 9;
        for (int i = 0; i < kAround; ++i) {
            const double angle = 2 * 3.14159265 * i / kAround;
            corners.insert(corners.end(), {static_cast<float>(3 * std::cos(angle)),
                                           static_cast<float>(3 * std::sin(angle)), 0.5F, 1, c, c, c, c});
            indices.insert(indices.end(), {0, static_cast<std::uint16_t>(1 + i),
                                           static_cast<std::uint16_t>(1 + (i + 1) % kAround)});
        }
        scene.state.depthCompare = GpuCompare::Always;
        scene.draw(corners, indices);
        for (const std::uint32_t color : scene.colors) ASSERT_EQ(color & 0xFFFFFFU, 0x404040U) << round;
    }
}

TEST(GpuTriangles, AreCutWhereTheyPassTheEye)
{
    // A floor that runs from behind the eye to far away, in perspective: its colour says how deep it is.
    Scene scene(64);
    const float n = 0.1F;
    std::vector<float> corners;
    for (const auto& [x, w] :
         {std::pair(-200.0F, -50.0F), {200.0F, -50.0F}, {200.0F, 50.0F}, {-200.0F, 50.0F}})
        corners.insert(corners.end(), {x, -1, w - n, w, w / 50, 0, 0, 1});
    scene.draw(corners, {0, 1, 2, 0, 2, 3});
    EXPECT_EQ(scene.at(32, 10) & 0xFFFFFFU, 0U) << "the sky";
    for (int y = 33; y < 64; ++y) {
        const double below = (y + 0.5) / 32 - 1; // of the horizon; the floor is one below the eye
        EXPECT_NEAR(scene.at(32, y) >> 16U & 0xFFU, 255 / below / 50, 1.01) << y;
    }
}

TEST(GpuTriangles, ObeyDepthStencilAndMasks)
{
    Scene scene(16);
    scene.cover(0.5F, {1, 0, 0, 1});
    scene.cover(0.7F, {0, 1, 0, 1});
    EXPECT_EQ(scene.at(3, 3), 0xFFFF0000U) << "what is behind stays behind";
    scene.state.scissor = IntRect{8, 0, 16, 16};
    scene.cover(0.3F, {0, 0, 1, 1});
    EXPECT_EQ(scene.at(7, 3), 0xFFFF0000U);
    EXPECT_EQ(scene.at(8, 3), 0xFF0000FFU);
    scene.state.scissor.reset();
    // Marks the right half, and draws where there is no mark.
    scene.state.depthCompare = GpuCompare::Less;
    scene.state.stencil[0] = scene.state.stencil[1] = {.pass = GpuStencilAction::Set};
    scene.state.stencilReference = 5;
    scene.cover(0.2F, {0, 0, 0, 1});
    EXPECT_EQ(scene.stencils[0], 5);
    scene.state.stencil[0] =
        scene.state.stencil[1] = {.compare = GpuCompare::NotEqual, .fails = GpuStencilAction::Invert};
    scene.cover(0.1F, {1, 1, 1, 1});
    EXPECT_EQ(scene.at(0, 0), 0xFF000000U);
    EXPECT_EQ(scene.stencils[0], 250);
    scene.state.colorMask = 0xFF00U;
    scene.cover(0.1F, {1, 1, 1, 1});
    EXPECT_EQ(scene.at(0, 0), 0xFF00FF00U);
    scene.state.cullsClockwise = true;
    scene.state.colorMask = 0xFFFFFFFFU;
    scene.cover(0, {1, 1, 1, 1});
    EXPECT_EQ(scene.at(0, 0), 0xFF00FF00U) << "seen from the side that is left out";
}

TEST(GpuTriangles, AreSmoothByFourPlacesOfAPixel)
{
    Scene scene(8, 4);
    // The left half of the fourth column of pixels: two of the four places lie in it.
    const float edge = 2 * 3.5F / 8 - 1;
    scene.draw({-1,   1,  0, 1, 1, 1, 1, 1, edge, 1,  0, 1, 1, 1, 1, 1,
                edge, -1, 0, 1, 1, 1, 1, 1, -1,   -1, 0, 1, 1, 1, 1, 1},
               {0, 1, 2, 0, 2, 3});
    const auto lit = [&](int column) {
        int count = 0;
        for (std::size_t s = 0; s < 4; ++s)
            count += scene.colors[4 * static_cast<std::size_t>(8 * 3 + column) + s] == 0xFFFFFFFFU ? 1 : 0;
        return count;
    };
    EXPECT_EQ(lit(2), 4);
    EXPECT_EQ(lit(3), 2);
    EXPECT_EQ(lit(4), 0);
}

TEST(GpuTexture, IsSampledAsTold)
{
    GpuTexture texture(2, 2, 1);
    texture.level(0, 0).pixels = {0xFF000000U, 0xFFFF0000U, 0xFF00FF00U, 0xFF0000FFU};
    texture.level(0, 1).pixels = {0xFFFFFFFFU};
    GpuSampling how;
    constexpr int kRed = 2;
    const auto red = [&](float u, float v, float lod = 0) {
        GpuColor color;
        texture.sample(color, u, v, lod, how);
        return color[kRed];
    };
    EXPECT_EQ(red(0.9F, 0.1F), 1);
    EXPECT_EQ(red(1.1F, 0.1F), 1) << "the last goes on";
    how.repeatsU = true;
    EXPECT_EQ(red(1.1F, 0.1F), 0) << "begins again";
    EXPECT_EQ(red(-0.1F, 0.1F), 1);
    how.filter = GpuFilter::Linear;
    EXPECT_FLOAT_EQ(red(0.5F, 0.25F), 0.5F);
    EXPECT_FLOAT_EQ(red(0, 0.25F), 0.5F) << "between the last and the first";
    how.mips = GpuMips::Linear;
    EXPECT_FLOAT_EQ(red(0.75F, 0.75F, 0.5F), 0.5F) << "between two levels";
    EXPECT_FLOAT_EQ(red(0.75F, 0.75F, 99), 1);
    for (const float number : {std::nanf(""), INFINITY, -INFINITY, 1e30F, -1e30F})
        EXPECT_TRUE(std::isfinite(red(number, number, number)));
    GpuTexture cube(1, 1, 6);
    for (int face = 0; face < 6; ++face)
        cube.level(face, 0).pixels = {0xFF000000U | static_cast<unsigned>(face) << 16U};
    const auto face = [&](float x, float y, float z) {
        GpuColor color;
        cube.sampleCube(color, x, y, z, {});
        return std::lround(color[kRed] * 255);
    };
    EXPECT_EQ(face(2, 1, -1), 0);
    EXPECT_EQ(face(-2, 1, -1), 1);
    EXPECT_EQ(face(0, 3, 1), 2);
    EXPECT_EQ(face(0, -3, 1), 3);
    EXPECT_EQ(face(1, 1, 4), 4);
    EXPECT_EQ(face(1, 1, -4), 5);
}

TEST(GpuTriangles, TakeAnyNumbers)
{
    std::mt19937 random(11);
    const std::array<float, 8> odd = {0, 1, -1, 1e-9F, -1e30F, INFINITY, std::nanf(""), 0.5F};
    for (int round = 0; round < 300; ++round) {
        Scene scene(20, round % 2 == 0 ? 1 : 4);
        std::vector<float> corners;
        for (int i = 0; i < 3 * 8; ++i) corners.push_back(odd[random() % odd.size()]);
        scene.draw(corners, {0, 1, 2, 2, 1, 0, 60000, 1, 2});
    }
}

} // namespace
} // namespace flash::render
