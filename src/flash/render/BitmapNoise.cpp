#include "flash/render/BitmapOps.h"

#include <cmath>
#include <numbers>
#include <numeric>

namespace flash::render
{
namespace
{

/// The minimal standard generator (Park and Miller), which noise of the genuine player is made with.
class Generator
{
public:
    explicit Generator(std::int32_t seed)
        : m_state(seed <= 0 ? static_cast<std::uint32_t>(-static_cast<std::int64_t>(seed)) + 1
                            : static_cast<std::uint32_t>(seed))
    {
    }
    std::uint32_t next()
    {
        m_state = static_cast<std::uint32_t>(static_cast<std::uint64_t>(m_state) * 16807 % 2147483647);
        return m_state;
    }

private:
    std::uint32_t m_state;
};

/// Gradient noise on a lattice of 256 that repeats.
class Lattice
{
public:
    explicit Lattice(std::int32_t seed)
    {
        Generator random(seed);
        for (int i = 0; i < kSize; ++i) {
            const double angle = 2 * std::numbers::pi * static_cast<double>(random.next()) / 2147483647.0;
            m_gradients[static_cast<std::size_t>(i)] = {std::cos(angle), std::sin(angle)};
        }
        std::iota(m_order.begin(), m_order.end(), 0);
        for (std::size_t i = kSize - 1; i > 0; --i) std::swap(m_order[i], m_order[random.next() % (i + 1)]);
    }

    /// @param channel tells the four channels of a bitmap apart
    /// @param wrapX lattice cells after which the noise repeats, 0 for never
    [[nodiscard]] double at(double x, double y, int channel, int wrapX, int wrapY) const
    {
        if (!std::isfinite(x) || !std::isfinite(y)) return 0;
        const double floorX = std::floor(x), floorY = std::floor(y);
        const double fx = x - floorX, fy = y - floorY;
        const auto corner = [&](int dx, int dy) {
            const int cx = wrap(floorX + dx, wrapX), cy = wrap(floorY + dy, wrapY);
            const std::size_t index =
                static_cast<std::size_t>(m_order[static_cast<std::size_t>((cx + channel * 57) & 255)] + cy) &
                255;
            const swf::Point g = m_gradients[static_cast<std::size_t>(m_order[index])];
            return g.x * (fx - dx) + g.y * (fy - dy);
        };
        const double u = fade(fx), v = fade(fy);
        return std::lerp(std::lerp(corner(0, 0), corner(1, 0), u), std::lerp(corner(0, 1), corner(1, 1), u),
                         v);
    }

private:
    static constexpr int kSize = 256;
    static double fade(double t) { return t * t * (3 - 2 * t); }
    static int wrap(double cell, int period)
    {
        if (period > 0) cell -= std::floor(cell / period) * period;
        return static_cast<int>(std::fmod(std::fmod(cell, kSize) + kSize, kSize));
    }
    std::array<swf::Point, kSize> m_gradients{};
    std::array<int, kSize> m_order{};
};

std::uint32_t pack(const std::array<int, 4>& rgba)
{
    return static_cast<std::uint32_t>(rgba[3]) << 24 | static_cast<std::uint32_t>(rgba[0]) << 16 |
           static_cast<std::uint32_t>(rgba[1]) << 8 | static_cast<std::uint32_t>(rgba[2]);
}

} // namespace

void noise(swf::Bitmap& bitmap, const NoiseOptions& options)
{
    Generator random(options.seed);
    const int low = std::clamp(options.low, 0, 255), high = std::clamp(options.high, low, 255);
    const auto value = [&] {
        return low + static_cast<int>(random.next() % static_cast<unsigned>(high - low + 1));
    };
    for (int y = 0; y < bitmap.height; ++y) {
        for (int x = 0; x < bitmap.width; ++x) {
            std::array<int, 4> rgba{0, 0, 0, 255};
            if (options.gray) {
                rgba[0] = rgba[1] = rgba[2] = value();
            } else {
                for (std::size_t i = 0; i < 3; ++i)
                    if ((options.channels & 1 << i) != 0) rgba[i] = value();
            }
            if ((options.channels & 8) != 0) rgba[3] = value();
            setPixelAt(bitmap, x, y, pack(rgba));
        }
    }
}

void perlinNoise(swf::Bitmap& bitmap, const PerlinOptions& options)
{
    const bool usable = std::isnormal(options.baseX) && std::isnormal(options.baseY);
    if (options.octaves <= 0 || !usable) return;
    constexpr int kMaxOctaves = 16; // finer ones are below a pixel's 1/256 weight
    const int octaves = std::min(options.octaves, kMaxOctaves);
    const Lattice lattice(options.seed);
    for (int y = 0; y < bitmap.height && !(options.stops && options.stops()); ++y) {
        for (int x = 0; x < bitmap.width; ++x) {
            std::array<int, 4> rgba{0, 0, 0, 255};
            for (int channel = 0; channel < 4; ++channel) {
                const bool wanted = options.gray
                                        ? channel == 0 || (channel == 3 && (options.channels & 8) != 0)
                                        : (options.channels & 1 << channel) != 0;
                if (!wanted) continue;
                double sum = 0, weight = 1, frequency = 1;
                for (int octave = 0; octave < octaves; ++octave) {
                    const auto at = static_cast<std::size_t>(octave);
                    const swf::Point offset =
                        at < options.offsets.size() ? options.offsets[at] : swf::Point{};
                    const double stepX = frequency / options.baseX, stepY = frequency / options.baseY;
                    const auto cells = [&](int size, double step) {
                        return options.stitch
                                   ? std::max(1, static_cast<int>(std::min(size * std::fabs(step), 1e6)))
                                   : 0;
                    };
                    const double n = lattice.at((x + offset.x) * stepX, (y + offset.y) * stepY, channel,
                                                cells(bitmap.width, stepX), cells(bitmap.height, stepY));
                    sum += weight * (options.fractal ? n : std::fabs(n));
                    weight /= 2;
                    frequency *= 2;
                }
                const double level = options.fractal ? (sum + 1) / 2 * 255 : sum * 255;
                rgba[static_cast<std::size_t>(channel)] = static_cast<int>(std::clamp(level, 0.0, 255.0));
            }
            if (options.gray) rgba[1] = rgba[2] = rgba[0];
            setPixelAt(bitmap, x, y, pack(rgba));
        }
    }
}

} // namespace flash::render
