#include "flash/render/Shader.h"

#include "flash/render/ShaderRun.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <random>

namespace flash::render
{
namespace
{

using Op = ShaderOp;

// Register numbers from here on are whole.
constexpr int kWhole = 0x8000;
// Nibbles of a mask: which channels are written, and how many are read.
constexpr int kR = 0x80, kG = 0x40, kB = 0x20, kA = 0x10, kRg = 0xC1, kRgb = 0xE2, kRgba = 0xF3;
constexpr int kXxxx = 0x00, kYyyy = 0x55, kZwxx = 0xB0, kXyzw = 0x1B, kWzyx = 0xE4;

/// The bytes of a kernel. Its place is r0.rg, its output r1 unless told otherwise.
class Kernel
{
public:
    Kernel()
    {
        put({0xA5, 1, 0, 0, 0, 0xA4, 4, 0, 'T', 'e', 's', 't'});
        parameter(1, ShaderType::Float2, 0, 0xC, "_OutCoord");
    }
    static Kernel withOutput()
    {
        Kernel made;
        made.parameter(2, ShaderType::Float4, 1, 0xF, "dst");
        return made;
    }
    Kernel& parameter(int direction, ShaderType type, int reg, int mask, std::string_view name)
    {
        put({0xA1, direction, static_cast<int>(type), reg & 255, reg >> 8, mask});
        return text(name);
    }
    Kernel& texture(int index, int channels, std::string_view name)
    {
        put({0xA3, index, channels});
        return text(name);
    }
    Kernel& metadata(int code, ShaderType type, std::string_view key)
    {
        put({code, static_cast<int>(type)});
        return text(key);
    }
    Kernel& text(std::string_view text)
    {
        m_bytes.insert(m_bytes.end(), text.begin(), text.end());
        return put({0});
    }
    Kernel& number(float value)
    {
        const auto bits = std::bit_cast<std::uint32_t>(value);
        for (int shift = 24; shift >= 0; shift -= 8) put({static_cast<int>(bits >> shift & 255)});
        return *this;
    }
    Kernel& step(Op op, int target, int mask, int source, int swizzle, int texture = 0)
    {
        return put({static_cast<int>(op), target & 255, target >> 8, mask, source & 255, source >> 8, swizzle,
                    texture});
    }
    Kernel& load(int target, int mask, float value)
    {
        return put({static_cast<int>(Op::Load), target & 255, target >> 8, mask}).number(value);
    }
    Kernel& put(std::initializer_list<int> bytes)
    {
        for (const int byte : bytes) m_bytes.push_back(static_cast<std::uint8_t>(byte));
        return *this;
    }
    [[nodiscard]] const std::vector<std::uint8_t>& bytes() const { return m_bytes; }
    [[nodiscard]] ShaderBinding binding() const
    {
        auto parsed = parseShader(m_bytes);
        EXPECT_TRUE(parsed) << (parsed ? "" : parsed.error().what);
        ShaderBinding made;
        if (parsed) made.program = std::make_shared<const ShaderProgram>(std::move(*parsed));
        return made;
    }

private:
    std::vector<std::uint8_t> m_bytes;
};

std::vector<float> numbers(const ShaderBinding& binding, std::size_t count, swf::Point at = {0.5, 0.5})
{
    ShaderRun run(binding);
    std::vector<float> made(count * static_cast<std::size_t>(run.channels()));
    run.row(at, {1, 0}, count, made.data());
    return made;
}
std::array<float, 4> first(const Kernel& kernel)
{
    const auto made = numbers(kernel.binding(), 1);
    return {made.at(0), made.at(1), made.at(2), made.at(3)};
}
using Four = std::array<float, 4>;

TEST(Shader, TellsWhatItTakes)
{
    Kernel kernel;
    kernel.metadata(0xA0, ShaderType::String, "vendor").text("We");
    kernel.metadata(0xA0, ShaderType::Int, "version").put({2, 0});
    kernel.texture(0, 4, "src");
    kernel.parameter(1, ShaderType::Float2, 2, 0x6, "size");
    kernel.metadata(0xA2, ShaderType::Float2, "maxValue").number(100).number(100.5F);
    kernel.parameter(1, ShaderType::Bool, kWhole | 3, 0x1, "flag");
    kernel.parameter(1, ShaderType::Matrix3, 4, 3, "turn");
    kernel.parameter(2, ShaderType::Float3, 1, 0xE, "dst");
    const auto program = parseShader(kernel.bytes());
    ASSERT_TRUE(program) << program.error().what;
    EXPECT_EQ(program->name, "Test");
    ASSERT_EQ(program->metadata.size(), 2U);
    EXPECT_EQ(program->metadata[0].text, "We");
    EXPECT_EQ(program->metadata[1].numbers, std::vector<double>{2});
    ASSERT_EQ(program->textures.size(), 1U);
    EXPECT_EQ(program->textures[0].name, "src");
    ASSERT_EQ(program->parameters.size(), 5U);
    EXPECT_EQ(program->parameters[1].metadata.at(0).numbers, (std::vector<double>{100, 100.5}));
    EXPECT_EQ(program->parameters[1].channels[1], 2);
    EXPECT_TRUE(program->parameters[2].isWhole);
    EXPECT_EQ(program->floatRegisters, 7); // the matrix has three
    EXPECT_EQ(program->wholeRegisters, 4);
    EXPECT_EQ(program->output()->name, "dst");
}

TEST(Shader, ReadsAndWritesTheChannelsThatAStepNames)
{
    auto kernel = Kernel::withOutput();
    for (int i = 0; i < 4; ++i) kernel.load(2, 0x80 >> i, static_cast<float>(i + 1));
    EXPECT_EQ(first(Kernel(kernel).step(Op::Move, 1, kRgba, 2, kWzyx)), (Four{4, 3, 2, 1}));
    // Channels are read in the order of the swizzle and written without gaps: b and a to g and b.
    EXPECT_EQ(first(Kernel(kernel).step(Op::Move, 1, 0x61, 2, kZwxx)), (Four{0, 3, 4, 0}));
    // A register that is read and written in another order.
    EXPECT_EQ(first(Kernel(kernel).step(Op::Move, 2, kRgba, 2, kWzyx).step(Op::Move, 1, kRgba, 2, kXyzw)),
              (Four{4, 3, 2, 1}));
    EXPECT_EQ(first(Kernel(kernel).step(Op::Move, 1, kRgba, 2, kXyzw).step(Op::Subtract, 1, kRgba, 2, kYyyy)),
              (Four{-1, 0, 1, 2}));
}

TEST(Shader, Calculates)
{
    struct Case {
        Op op;
        float target, source, result;
    };
    const Case cases[] = {
        {Op::Add, 3, -4, -1},
        {Op::Multiply, 3, -4, -12},
        {Op::Reciprocal, 3, -4, -0.25F},
        {Op::Divide, 3, -4, -0.75F},
        {Op::Power, 3, 4, 81},
        {Op::Modulo, -1, 4, 3}, // with the sign of the divisor
        {Op::Min, 3, -4, -4},
        {Op::Max, 3, -4, 3},
        {Op::Step, 3, 2, 0},
        {Op::Step, 3, 3, 1},
        {Op::Atan2, 1, 1, std::atan2(1.0F, 1.0F)},
        {Op::Exp2, 0, 3, 8},
        {Op::Log2, 0, 8, 3},
        {Op::InverseSqrt, 0, 4, 0.5F},
        {Op::Abs, 0, -4, 4},
        {Op::Sign, 0, -4, -1},
        {Op::Floor, 0, -0.5F, -1},
        {Op::Ceil, 0, 0.5F, 1},
        {Op::Fraction, 0, -0.25F, 0.75F},
        {Op::Distance, 3, -4, 7},
        {Op::Dot, 3, -4, -12},
    };
    for (const Case& c : cases) {
        auto kernel = Kernel::withOutput();
        kernel.load(1, kR, c.target).load(2, kR, c.source).step(c.op, 1, kR, 2, kXxxx);
        EXPECT_FLOAT_EQ(first(kernel)[0], c.result) << static_cast<int>(c.op);
    }
}

TEST(Shader, WorksOnVectors)
{
    auto kernel = Kernel::withOutput();
    kernel.load(2, kR, 3).load(2, kG, 4).load(3, kR, 1).load(3, kG, 2).load(3, kB, 2);
    EXPECT_EQ(first(Kernel(kernel).step(Op::Length, 1, kA | 1, 2, kXyzw))[3], 5);
    EXPECT_FLOAT_EQ(first(Kernel(kernel).step(Op::Normalize, 1, kRg, 2, kXyzw))[1], 0.8F);
    // The answer is one number, though the mask names both that are read.
    EXPECT_EQ(first(Kernel(kernel).load(1, kG, 9).step(Op::Distance, 1, kRg, 2, kXyzw))[1], 9);
    EXPECT_EQ(first(Kernel(kernel).step(Op::Move, 1, kRgb, 2, kXyzw).step(Op::Cross, 1, kRgb, 3, kXyzw)),
              (Four{8, -6, 2, 0}));
}

TEST(Shader, MultipliesMatrices)
{
    // Columns (1, 2) and (3, 4), in one register.
    auto kernel = Kernel::withOutput();
    for (int i = 0; i < 4; ++i) kernel.load(2, 0x80 >> i, static_cast<float>(i + 1));
    kernel.load(1, kR, 5).load(1, kG, 6);
    EXPECT_EQ(first(Kernel(kernel).step(Op::MatrixByVector, 1, 0xC4, 2, kXxxx)), (Four{23, 34, 0, 0}));
    EXPECT_EQ(first(Kernel(kernel).step(Op::VectorByMatrix, 1, 0xC4, 2, kXxxx)), (Four{17, 39, 0, 0}));
    EXPECT_EQ(
        first(Kernel(kernel).step(Op::Move, 1, 0x04, 2, kXxxx).step(Op::MatrixByMatrix, 1, 0x04, 2, kXxxx)),
        (Four{7, 10, 15, 22}));
    // One of three columns has a register for each; a parameter fills them column by column.
    auto larger = Kernel::withOutput();
    larger.parameter(1, ShaderType::Matrix3, 2, 3, "m");
    larger.load(1, kR, 1).load(1, kG, 10).load(1, kB, 100).step(Op::VectorByMatrix, 1, 0xE8, 2, kXxxx);
    ShaderBinding binding = larger.binding();
    binding.arguments = {{}, {}, {1, 2, 3, 4, 5, 6, 7, 8, 9}};
    EXPECT_EQ(numbers(binding, 1), (std::vector<float>{321, 654, 987, 0}));
}

TEST(Shader, DecidesForEachPixelByItself)
{
    // 1 left of 70, else 2; beyond 130 the inner condition makes it 3.
    auto kernel = Kernel::withOutput();
    kernel.load(2, kR, 70).load(2, kG, 130).load(1, kR, 2);
    kernel.step(Op::Move, 3, kR, 0, kXxxx).step(Op::Less, 3, kR, 2, kXxxx);
    kernel.step(Op::If, 0, 0, kWhole, kXxxx).load(1, kR, 1).step(Op::Else, 0, 0, 0, 0);
    kernel.step(Op::Less, 2, kG, 3, kXxxx); // 130 < place
    kernel.step(Op::If, 0, 0, kWhole, kXxxx).load(1, kR, 3).step(Op::EndIf, 0, 0, 0, 0);
    kernel.step(Op::EndIf, 0, 0, 0, 0).load(1, kG, 7);
    const auto made = numbers(kernel.binding(), 200);
    for (std::size_t x = 0; x < 200; ++x) {
        ASSERT_EQ(made[x * 4], x < 70 ? 1 : x < 130 ? 2 : 3) << x;
        ASSERT_EQ(made[x * 4 + 1], 7) << x;
    }
}

TEST(Shader, SelectsWithoutBranching)
{
    auto kernel = Kernel::withOutput();
    kernel.load(2, kR, 1.5F).load(2, kG, 10).load(2, kB, 20);
    kernel.step(Op::Move, 3, kR, 0, kXxxx).step(Op::LessOrEqual, 3, kR, 2, kXxxx);
    kernel.step(Op::Select, 1, kR, kWhole, kXxxx).put({2, 0, 0x55, 0, 2, 0, 0xAA, 0});
    const auto made = numbers(kernel.binding(), 3);
    EXPECT_EQ(made[0], 10);
    EXPECT_EQ(made[4], 10);
    EXPECT_EQ(made[8], 20);
}

TEST(Shader, SamplesPicturesAndNumbers)
{
    for (const Op op : {Op::SampleNearest, Op::SampleLinear}) {
        auto kernel = Kernel::withOutput();
        kernel.texture(0, 1, "src").step(op, 1, kRgba, 0, kXyzw);
        ShaderBinding binding = kernel.binding();
        binding.images.push_back(
            {.width = 2, .height = 1, .channels = 1, .bitmap = nullptr, .numbers = {2, 4}, .surface = {}});
        // In the middle of a pixel both agree; the edges go on for ever.
        EXPECT_EQ(numbers(binding, 3), (std::vector<float>{2, 0, 0, 0, 4, 0, 0, 0, 4, 0, 0, 0}));
        EXPECT_EQ(numbers(binding, 1, {1, 0.5})[0], op == Op::SampleLinear ? 3 : 4);
        EXPECT_EQ(numbers(binding, 1, {-0.5, 1e30})[0], 2);
        EXPECT_EQ(numbers(binding, 1, {std::nan(""), -1e30})[0], 2);
    }
    auto kernel = Kernel::withOutput();
    kernel.texture(0, 4, "src").step(Op::SampleNearest, 1, kRgba, 0, kXyzw);
    ShaderBinding binding = kernel.binding();
    binding.images.emplace_back();
    binding.images[0].width = binding.images[0].height = 1;
    binding.images[0].bitmap =
        std::make_shared<swf::Bitmap>(swf::Bitmap{1, 1, false, std::vector<std::uint32_t>{0x80402010}});
    std::uint32_t pixels[2]{};
    ShaderRun(binding).row({0.5, 0.5}, {1, 0}, 2, pixels);
    EXPECT_EQ(pixels[0], 0x80402010U);
    EXPECT_EQ(pixels[1], 0x80402010U);
    // Outside of what is filtered there is nothing.
    binding.images[0] = {};
    binding.images[0].width = binding.images[0].height = 1;
    std::uint32_t filtered = 0xFFFFFFFF;
    binding.images[0].surface = {&filtered, 1, 1, 1};
    ShaderRun(binding).row({0.5, 0.5}, {1, 0}, 2, pixels);
    EXPECT_EQ(pixels[0], 0xFFFFFFFFU);
    EXPECT_EQ(pixels[1], 0U);
}

TEST(Shader, KeepsColoursInRange)
{
    auto kernel = Kernel::withOutput();
    kernel.load(1, kR, 7).load(1, kG, -1).load(1, kB, 0.5F).load(1, kA, 1);
    std::uint32_t pixel = 0;
    const ShaderBinding binding = kernel.binding();
    ShaderRun(binding).row({0.5, 0.5}, {1, 0}, 1, &pixel);
    EXPECT_EQ(pixel, 0xFFFF0080U);
}

TEST(Shader, FiltersWhatLiesWithinItsMargins)
{
    // Each pixel takes the one to its left; the place counts from the corner of what is filtered.
    auto kernel = Kernel::withOutput();
    kernel.texture(0, 4, "src").load(2, kR, 1).step(Op::Subtract, 0, kR, 2, kXxxx);
    kernel.step(Op::SampleNearest, 1, kRgba, 0, kXyzw);
    ShaderBinding binding = kernel.binding();
    binding.margins = {.left = 1, .top = 0, .right = 1, .bottom = 0};
    swf::DisplacementMapFilter filter;
    filter.map = shaderBitmap(std::make_shared<const ShaderBinding>(binding));
    EXPECT_EQ(filterGrowth(filter, 2).right, 2);
    Surface surface(4, 1);
    surface.row(0)[1] = 0xFF112233;
    surface.row(0)[2] = 0xFF445566;
    applyFilter(filter, surface.view());
    EXPECT_EQ(surface.pixel(1, 0), 0U);
    EXPECT_EQ(surface.pixel(2, 0), 0xFF112233U);
    EXPECT_EQ(surface.pixel(3, 0), 0xFF445566U);
    EXPECT_EQ(shaderOf(std::make_shared<swf::Bitmap>()), nullptr);
}

Kernel rich()
{
    auto kernel = Kernel::withOutput();
    kernel.metadata(0xA0, ShaderType::String, "vendor").text("We").texture(0, 4, "src");
    kernel.parameter(1, ShaderType::Matrix3, 4, 3, "m")
        .metadata(0xA2, ShaderType::Float, "minValue")
        .number(1);
    kernel.step(Op::SampleLinear, 1, kRgba, 0, kXyzw).step(Op::VectorByMatrix, 1, 0xE8, 4, kXxxx);
    kernel.step(Op::MatrixByMatrix, 4, 0x08, 4, kXxxx).step(Op::Less, 1, kR, 0, kXxxx);
    kernel.step(Op::If, 0, 0, kWhole, kXxxx).load(1, kR, 1).step(Op::Else, 0, 0, 0, 0);
    kernel.step(Op::Select, 1, kR, kWhole, kXxxx).put({2, 0, 0x55, 0, 2, 0, 0xAA, 0});
    return kernel.step(Op::FloatToInt, kWhole | 1, kR, 1, kXxxx).step(Op::EndIf, 0, 0, 0, 0);
}

TEST(Shader, RefusesWhatIsCutShort)
{
    const auto whole = rich().bytes();
    ASSERT_TRUE(parseShader(whole));
    int refused = 0;
    for (std::size_t length = 0; length < whole.size(); ++length) {
        // What ends between two items, outside of conditions, is a kernel of its own.
        const auto part = parseShader(base::Bytes(whole).first(length));
        if (!part) ++refused;
    }
    EXPECT_GT(refused, static_cast<int>(whole.size() * 3 / 4));
}

TEST(Shader, RefusesWhatIsDamaged)
{
    const auto refused = [](const Kernel& kernel) { return !parseShader(kernel.bytes()); };
    EXPECT_TRUE(refused(Kernel().step(Op::EndIf, 0, 0, 0, 0)));
    EXPECT_TRUE(refused(Kernel().step(Op::Else, 0, 0, 0, 0)));
    EXPECT_TRUE(refused(Kernel().step(Op::If, 0, 0, kWhole, 0)));
    EXPECT_TRUE(refused(Kernel().step(Op::If, 0, 0, 0, 0).step(Op::EndIf, 0, 0, 0, 0)));
    EXPECT_TRUE(refused(Kernel().step(Op::MatrixByVector, 1, kRg, 2, 0)));
    EXPECT_TRUE(refused(Kernel().step(Op::Add, 1, kR, kWhole, 0)));
    EXPECT_TRUE(refused(Kernel().step(Op::Add, 0x7FFF, kR, 0, 0)));
    EXPECT_TRUE(refused(Kernel().step(Op::Move, 1023, 0x0C, 2, 0))); // its other columns are beyond
    EXPECT_TRUE(refused(Kernel().put({0x7F, 0, 0, 0, 0, 0, 0, 0})));
    EXPECT_TRUE(refused(Kernel().parameter(1, ShaderType::Float2, 2, 0xF, "wide")));
    EXPECT_TRUE(refused(Kernel().parameter(1, ShaderType::Int, 2, 0x8, "i")));
    EXPECT_TRUE(refused(Kernel().texture(0, 5, "t")));

    // Whatever still parses also runs to its end.
    std::mt19937 random(7); // NOLINT: the same in every run
    const auto whole = rich().bytes();
    int ran = 0;
    for (int i = 0; i < 3000; ++i) {
        auto bytes = whole;
        for (int n = 0; n < 1 + i % 3; ++n)
            bytes[12 + random() % (bytes.size() - 12)] = static_cast<std::uint8_t>(random());
        auto parsed = parseShader(bytes);
        if (!parsed) continue;
        ShaderBinding binding;
        binding.program = std::make_shared<const ShaderProgram>(std::move(*parsed));
        binding.images.resize(1);
        binding.arguments.assign(binding.program->parameters.size(), {1, 2});
        numbers(binding, 3);
        ++ran;
    }
    EXPECT_GT(ran, 300);
}

} // namespace
} // namespace flash::render
