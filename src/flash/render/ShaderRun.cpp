#include "flash/render/ShaderRun.h"

#include "flash/guard/Guard.h"
#include "flash/render/Pixel.h"
#include "flash/render/ShaderLanes.h"
#include "flash/render/ShaderSampling.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>

namespace flash::render
{

class ShaderRun::Impl
{
public:
    explicit Impl(const ShaderBinding& binding)
        : m_binding(binding), m_program(*binding.program), m_floats(m_program.floatRegisters),
          m_wholes(std::max<std::size_t>(m_program.wholeRegisters, 1))
    {
        for (const ShaderParameter& p : m_program.parameters) {
            if (p.name == kShaderPlace && !p.isOutput && p.type == ShaderType::Float2) m_place = &p;
        }
        m_output = m_program.output();
        if (m_output != nullptr && !isFloat(m_output->type)) m_output = nullptr;
    }

    [[nodiscard]] std::size_t channels() const
    {
        return m_output == nullptr ? 0 : std::min<std::size_t>(m_output->size(), 4);
    }

    /// Up to kLanes pixels; their output is then in the registers.
    void run(swf::Point place, swf::Point step)
    {
        guard::check(static_cast<std::uint32_t>(1 + m_program.steps.size()));
        for (Quad<float>& reg : m_floats) reg = {};
        for (Quad<std::int32_t>& reg : m_wholes) reg = {};
        for (std::size_t i = 0; i < m_program.parameters.size(); ++i) {
            const ShaderParameter& p = m_program.parameters[i];
            if (!p.isOutput && i < m_binding.arguments.size()) fillIn(p, m_binding.arguments[i]);
        }
        if (m_place != nullptr) {
            for (std::size_t i = 0; i < kLanes; ++i) {
                const auto n = static_cast<double>(i);
                m_floats[m_place->reg][m_place->channels[0]][i] = static_cast<float>(place.x + step.x * n);
                m_floats[m_place->reg][m_place->channels[1]][i] = static_cast<float>(place.y + step.y * n);
            }
        }
        m_on.fill(1);
        m_allOn = true;
        m_held.clear();
        for (const ShaderStep& s : m_program.steps) execute(s);
    }
    [[nodiscard]] float result(std::size_t channel, std::size_t lane) const
    {
        return m_floats[m_output->reg][m_output->channels[channel]][lane];
    }

private:
    void fillIn(const ShaderParameter& p, const std::vector<double>& numbers)
    {
        for (std::size_t i = 0; i < p.size(); ++i) {
            const double value = i < numbers.size() ? numbers[i] : 0;
            const std::size_t reg = p.reg + i / p.width, channel = p.channels[i % p.width];
            if (p.isWhole)
                m_wholes[reg][channel].fill(isBool(p.type) ? static_cast<std::int32_t>(value != 0)
                                                           : wholeOf(static_cast<float>(value)));
            else
                m_floats[reg][channel].fill(static_cast<float>(value));
        }
    }

    template <class T>
    std::vector<Quad<T>>& file()
    {
        if constexpr (std::is_same_v<T, float>)
            return m_floats;
        else
            return m_wholes;
    }
    template <class T>
    void load(const ShaderOperand& from, std::size_t count, Quad<T>& to)
    {
        const Quad<T>& reg = file<T>()[from.reg];
        for (std::size_t c = 0; c < count; ++c) to[c] = reg[from.channels[c]];
    }
    template <class T>
    void store(const ShaderOperand& to, std::size_t count, const Quad<T>& from)
    {
        Quad<T>& reg = file<T>()[to.reg];
        for (std::size_t c = 0; c < count; ++c) {
            Lanes<T>& channel = reg[to.channels[c]];
            if (m_allOn) {
                channel = from[c];
            } else {
                for (std::size_t i = 0; i < kLanes; ++i) channel[i] = m_on[i] != 0 ? from[c][i] : channel[i];
            }
        }
    }

    void execute(const ShaderStep& s)
    {
        switch (s.op) {
        case ShaderOp::Nop:
        case ShaderOp::Count: return;
        case ShaderOp::If:
            m_held.push_back(m_on);
            for (std::size_t i = 0; i < kLanes; ++i)
                m_on[i] &= static_cast<std::uint8_t>(m_wholes[s.source.reg][s.source.channels[0]][i] != 0);
            return noteOn();
        case ShaderOp::Else:
            for (std::size_t i = 0; i < kLanes; ++i)
                m_on[i] = static_cast<std::uint8_t>(m_held.back()[i] & (m_on[i] ^ 1U));
            return noteOn();
        case ShaderOp::EndIf:
            m_on = m_held.back();
            m_held.pop_back();
            return noteOn();
        default: break;
        }
        if (m_allOff) return;
        switch (s.op) {
        case ShaderOp::SampleNearest:
        case ShaderOp::SampleLinear: return sample(s);
        case ShaderOp::Load:
            if (s.target.isWhole)
                return loadConstant<std::int32_t>(s);
            else
                return loadConstant<float>(s);
        case ShaderOp::Select:
            if (s.target.isWhole)
                return select<std::int32_t>(s);
            else
                return select<float>(s);
        case ShaderOp::FloatToInt: return convert<float, std::int32_t>(s, [](float v) { return wholeOf(v); });
        case ShaderOp::FloatToBool:
            return convert<float, std::int32_t>(s, [](float v) { return v != 0 ? 1 : 0; });
        case ShaderOp::IntToFloat:
        case ShaderOp::BoolToFloat:
            return convert<std::int32_t, float>(s, [](std::int32_t v) { return static_cast<float>(v); });
        case ShaderOp::MatrixByMatrix:
        case ShaderOp::VectorByMatrix:
        case ShaderOp::MatrixByVector: return product(s);
        default: break;
        }
        if (s.target.isWhole)
            wholeStep(s);
        else
            floatStep(s);
    }
    void noteOn()
    {
        m_allOn = std::ranges::all_of(m_on, [](std::uint8_t on) { return on != 0; });
        m_allOff = std::ranges::none_of(m_on, [](std::uint8_t on) { return on != 0; });
    }

    void sample(const ShaderStep& s)
    {
        Quad<float> at, result{};
        load(s.source, 2, at);
        if (s.texture < m_binding.images.size()) {
            const ShaderImage& image = m_binding.images[s.texture];
            for (Lanes<float>* axis : {&at[0], &at[1]})
                for (float& place : *axis) place *= image.scale;
            for (std::size_t i = 0; i < kLanes; ++i) {
                if (m_on[i] == 0) continue;
                const Texel texel = s.op == ShaderOp::SampleLinear
                                        ? render::sampleLinear(image, at[0][i], at[1][i])
                                        : texelAt(image, floorOf(at[0][i]), floorOf(at[1][i]));
                for (std::size_t c = 0; c < 4; ++c) result[c][i] = texel[c];
            }
        }
        store(s.target, s.written, result);
    }
    template <class T>
    void loadConstant(const ShaderStep& s)
    {
        Quad<T> value;
        for (Lanes<T>& channel : value) channel.fill(std::bit_cast<T>(s.bits));
        store(s.target, s.written, value);
    }
    template <class T>
    void select(const ShaderStep& s)
    {
        Quad<T> yes, no;
        load(s.source, s.written, yes);
        load(s.other, s.written, no);
        const Lanes<std::int32_t>& condition = m_wholes[s.condition.reg][s.condition.channels[0]];
        for (std::size_t c = 0; c < s.written; ++c)
            for (std::size_t i = 0; i < kLanes; ++i) yes[c][i] = condition[i] != 0 ? yes[c][i] : no[c][i];
        store(s.target, s.written, yes);
    }
    template <class From, class To, class F>
    void convert(const ShaderStep& s, F f)
    {
        if (s.source.isWhole == std::is_same_v<From, float> || s.target.isWhole == std::is_same_v<To, float>)
            return;
        Quad<From> from;
        Quad<To> to;
        load(s.source, s.written, from);
        for (std::size_t c = 0; c < s.written; ++c)
            for (std::size_t i = 0; i < kLanes; ++i) to[c][i] = f(from[c][i]);
        store(s.target, s.written, to);
    }

    /// Element (row, column) of a matrix that begins at a register.
    Lanes<float>& element(std::size_t reg, std::size_t side, std::size_t row, std::size_t column)
    {
        return side == 2 ? m_floats[reg][column * 2 + row] : m_floats[reg + column][row];
    }
    void product(const ShaderStep& s)
    {
        const std::size_t side = s.read;
        if (s.op == ShaderOp::MatrixByMatrix) {
            std::array<Quad<float>, 4> made{};
            for (std::size_t column = 0; column < side; ++column)
                for (std::size_t row = 0; row < side; ++row)
                    for (std::size_t k = 0; k < side; ++k) {
                        const Lanes<float>&a = element(s.target.reg, side, row, k),
                              &b = element(s.source.reg, side, k, column);
                        for (std::size_t i = 0; i < kLanes; ++i) made[column][row][i] += a[i] * b[i];
                    }
            for (std::size_t column = 0; column < side; ++column)
                for (std::size_t row = 0; row < side; ++row) {
                    Lanes<float>& to = element(s.target.reg, side, row, column);
                    for (std::size_t i = 0; i < kLanes; ++i)
                        if (m_on[i] != 0) to[i] = made[column][row][i];
                }
            return;
        }
        Quad<float> vector, made{};
        load(s.target, side, vector);
        const bool isRow = s.op == ShaderOp::VectorByMatrix;
        for (std::size_t n = 0; n < side; ++n)
            for (std::size_t k = 0; k < side; ++k) {
                const Lanes<float>& m = element(s.source.reg, side, isRow ? k : n, isRow ? n : k);
                for (std::size_t i = 0; i < kLanes; ++i) made[n][i] += m[i] * vector[k][i];
            }
        store(s.target, side, made);
    }

    /// What compares leaves its answer in the first of the whole registers.
    template <class T>
    bool compare(const ShaderStep& s, const Quad<T>& a, const Quad<T>& b)
    {
        Quad<std::int32_t> answer{};
        const auto with = [&](auto f) {
            for (std::size_t c = 0; c < s.read; ++c)
                for (std::size_t i = 0; i < kLanes; ++i) answer[c][i] = f(a[c][i], b[c][i]) ? 1 : 0;
        };
        std::size_t written = std::max(s.written, std::uint8_t{1});
        switch (s.op) {
        case ShaderOp::Equal: with([](T x, T y) { return x == y; }); break;
        case ShaderOp::NotEqual: with([](T x, T y) { return x != y; }); break;
        case ShaderOp::Less: with([](T x, T y) { return x < y; }); break;
        case ShaderOp::LessOrEqual: with([](T x, T y) { return x <= y; }); break;
        case ShaderOp::VectorEqual:
        case ShaderOp::VectorNotEqual:
            with([](T x, T y) { return x == y; });
            for (std::size_t i = 0; i < kLanes; ++i) {
                std::int32_t all = 1;
                for (std::size_t c = 0; c < s.read; ++c) all &= answer[c][i];
                answer[0][i] = s.op == ShaderOp::VectorEqual ? all : 1 - all;
            }
            written = 1;
            break;
        default: return false;
        }
        store<std::int32_t>({.reg = 0, .isWhole = true, .channels = {0, 1, 2, 3}}, written, answer);
        return true;
    }

    void wholeStep(const ShaderStep& s)
    {
        using T = std::int32_t;
        const std::size_t n = std::max(s.written, s.read);
        Quad<T> a{}, b{};
        load(s.target, n, a);
        load(s.source, n, b);
        if (compare(s, a, b)) return;
        const auto u = [](T v) { return static_cast<std::uint32_t>(v); };
        const auto with = [&](auto f) { each<T>(n, a, b, f); };
        switch (s.op) {
        case ShaderOp::Add: with([u](T x, T y) { return static_cast<T>(u(x) + u(y)); }); break;
        case ShaderOp::Subtract: with([u](T x, T y) { return static_cast<T>(u(x) - u(y)); }); break;
        case ShaderOp::Multiply: with([u](T x, T y) { return static_cast<T>(u(x) * u(y)); }); break;
        case ShaderOp::Divide:
            with([](T x, T y) { return y == 0 ? 0 : static_cast<T>(std::int64_t{x} / y); });
            break;
        case ShaderOp::Modulo:
            with([](T x, T y) { return y == 0 ? 0 : static_cast<T>(std::int64_t{x} % y); });
            break;
        case ShaderOp::Min: with([](T x, T y) { return std::min(x, y); }); break;
        case ShaderOp::Max: with([](T x, T y) { return std::max(x, y); }); break;
        case ShaderOp::Abs: with([u](T, T y) { return y < 0 ? static_cast<T>(0U - u(y)) : y; }); break;
        case ShaderOp::Sign: with([](T, T y) { return (y > 0 ? 1 : 0) - (y < 0 ? 1 : 0); }); break;
        case ShaderOp::Move: with([](T, T y) { return y; }); break;
        case ShaderOp::Not: with([](T, T y) { return y == 0 ? 1 : 0; }); break;
        case ShaderOp::And: with([](T x, T y) { return x != 0 && y != 0 ? 1 : 0; }); break;
        case ShaderOp::Or: with([](T x, T y) { return x != 0 || y != 0 ? 1 : 0; }); break;
        case ShaderOp::Xor: with([](T x, T y) { return (x != 0) != (y != 0) ? 1 : 0; }); break;
        case ShaderOp::IntToBool: with([](T, T y) { return y != 0 ? 1 : 0; }); break;
        case ShaderOp::BoolToInt: with([](T, T y) { return y; }); break;
        case ShaderOp::Any:
        case ShaderOp::All:
            for (std::size_t i = 0; i < kLanes; ++i) {
                std::size_t set = 0;
                for (std::size_t c = 0; c < s.read; ++c) set += b[c][i] != 0 ? 1 : 0;
                a[0][i] = (s.op == ShaderOp::Any ? set > 0 : set == s.read) ? 1 : 0;
            }
            break;
        default: return; // only fractions have it
        }
        store(s.target, s.written, a);
    }

    static Lanes<float> dot(const Quad<float>& a, const Quad<float>& b, std::size_t n)
    {
        Lanes<float> sum{};
        for (std::size_t c = 0; c < n; ++c)
            for (std::size_t i = 0; i < kLanes; ++i) sum[i] += a[c][i] * b[c][i];
        return sum;
    }
    void floatStep(const ShaderStep& s)
    {
        using T = float;
        const std::size_t n = std::max(s.written, s.read);
        Quad<T> a{}, b{};
        load(s.target, n, a);
        load(s.source, n, b);
        if (compare(s, a, b)) return;
        const auto with = [&](auto f) { each<T>(n, a, b, f); };
        switch (s.op) {
        case ShaderOp::Add: with([](T x, T y) { return x + y; }); break;
        case ShaderOp::Subtract: with([](T x, T y) { return x - y; }); break;
        case ShaderOp::Multiply: with([](T x, T y) { return x * y; }); break;
        case ShaderOp::Reciprocal: with([](T, T y) { return 1 / y; }); break;
        case ShaderOp::Divide: with([](T x, T y) { return x / y; }); break;
        case ShaderOp::Atan2: with([](T x, T y) { return std::atan2(x, y); }); break;
        case ShaderOp::Power: with([](T x, T y) { return std::pow(x, y); }); break;
        case ShaderOp::Modulo: with([](T x, T y) { return x - y * std::floor(x / y); }); break;
        case ShaderOp::Min: with([](T x, T y) { return std::min(x, y); }); break;
        case ShaderOp::Max: with([](T x, T y) { return std::max(x, y); }); break;
        case ShaderOp::Step: with([](T x, T y) { return y < x ? 0.0F : 1.0F; }); break;
        case ShaderOp::Sin: with([](T, T y) { return std::sin(y); }); break;
        case ShaderOp::Cos: with([](T, T y) { return std::cos(y); }); break;
        case ShaderOp::Tan: with([](T, T y) { return std::tan(y); }); break;
        case ShaderOp::Asin: with([](T, T y) { return std::asin(y); }); break;
        case ShaderOp::Acos: with([](T, T y) { return std::acos(y); }); break;
        case ShaderOp::Atan: with([](T, T y) { return std::atan(y); }); break;
        case ShaderOp::Exp: with([](T, T y) { return std::exp(y); }); break;
        case ShaderOp::Exp2: with([](T, T y) { return std::exp2(y); }); break;
        case ShaderOp::Log: with([](T, T y) { return std::log(y); }); break;
        case ShaderOp::Log2: with([](T, T y) { return std::log2(y); }); break;
        case ShaderOp::Sqrt: with([](T, T y) { return std::sqrt(y); }); break;
        case ShaderOp::InverseSqrt: with([](T, T y) { return 1 / std::sqrt(y); }); break;
        case ShaderOp::Abs: with([](T, T y) { return std::abs(y); }); break;
        case ShaderOp::Sign:
            with([](T, T y) { return static_cast<T>((y > 0 ? 1 : 0) - (y < 0 ? 1 : 0)); });
            break;
        case ShaderOp::Floor: with([](T, T y) { return std::floor(y); }); break;
        case ShaderOp::Ceil: with([](T, T y) { return std::ceil(y); }); break;
        case ShaderOp::Fraction: with([](T, T y) { return y - std::floor(y); }); break;
        case ShaderOp::Move: with([](T, T y) { return y; }); break;
        case ShaderOp::Normalize: {
            const Lanes<T> square = dot(b, b, s.read);
            for (std::size_t c = 0; c < n; ++c)
                for (std::size_t i = 0; i < kLanes; ++i) a[c][i] = b[c][i] / std::sqrt(square[i]);
            break;
        }
        case ShaderOp::Length: a[0] = root(dot(b, b, s.read)); break;
        case ShaderOp::Distance:
            with([](T x, T y) { return x - y; });
            a[0] = root(dot(a, a, s.read));
            break;
        case ShaderOp::Dot: a[0] = dot(a, b, s.read); break;
        case ShaderOp::Cross:
            for (std::size_t i = 0; i < kLanes; ++i) {
                const T x = a[1][i] * b[2][i] - a[2][i] * b[1][i], y = a[2][i] * b[0][i] - a[0][i] * b[2][i],
                        z = a[0][i] * b[1][i] - a[1][i] * b[0][i];
                a[0][i] = x;
                a[1][i] = y;
                a[2][i] = z;
            }
            break;
        default: return; // only whole numbers have it
        }
        store(s.target, s.written, a);
    }
    static Lanes<float> root(Lanes<float> lanes)
    {
        for (float& lane : lanes) lane = std::sqrt(lane);
        return lanes;
    }

    const ShaderBinding& m_binding;
    const ShaderProgram& m_program;
    const ShaderParameter* m_place = nullptr;
    const ShaderParameter* m_output = nullptr;
    std::vector<Quad<float>> m_floats;
    std::vector<Quad<std::int32_t>> m_wholes;
    On m_on{};
    std::vector<On> m_held; ///< of the conditions around
    bool m_allOn = true, m_allOff = false;
};

ShaderRun::ShaderRun(const ShaderBinding& binding) : m_impl(std::make_unique<Impl>(binding)) {}
ShaderRun::~ShaderRun() = default;
int ShaderRun::channels() const { return static_cast<int>(m_impl->channels()); }

void ShaderRun::row(swf::Point place, swf::Point step, std::size_t count, float* to)
{
    const std::size_t channels = m_impl->channels();
    for (std::size_t done = 0; done < count; done += kLanes) {
        const auto n = static_cast<double>(done);
        m_impl->run({place.x + step.x * n, place.y + step.y * n}, step);
        for (std::size_t i = 0; i < std::min(kLanes, count - done); ++i)
            for (std::size_t c = 0; c < channels; ++c) *to++ = m_impl->result(c, i);
    }
}
void ShaderRun::row(swf::Point place, swf::Point step, std::size_t count, std::uint32_t* to)
{
    const std::size_t channels = m_impl->channels();
    for (std::size_t done = 0; done < count; done += kLanes) {
        const auto n = static_cast<double>(done);
        m_impl->run({place.x + step.x * n, place.y + step.y * n}, step);
        for (std::size_t i = 0; i < std::min(kLanes, count - done); ++i) {
            const auto channel = [&](std::size_t c) {
                return c < channels ? channelOf(m_impl->result(c, i)) : 0;
            };
            const std::uint32_t alpha = channels == 4 ? channel(3) : channels == 0 ? 0 : 255;
            // No colour of a pixel is stronger than its alpha.
            *to++ = alpha << 24U | std::min(channel(0), alpha) << 16U | std::min(channel(1), alpha) << 8U |
                    std::min(channel(2), alpha);
        }
    }
}

} // namespace flash::render
