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
    explicit Generator(std::int32_t seed) : m_state(usable(seed)) {}
    std::uint32_t next()
    {
        m_state = static_cast<std::uint32_t>(std::uint64_t{m_state} * 16807 % kModulus);
        return m_state;
    }

private:
    static constexpr std::int64_t kModulus = 2147483647;
    // Any seed but what the generator could not leave or reach.
    static std::uint32_t usable(std::int64_t seed)
    {
        if (seed <= 0) seed = -(seed % (kModulus - 1)) + 1;
        return static_cast<std::uint32_t>(std::min(seed, kModulus - 1));
    }

    std::uint32_t m_state;
};

/// Cells after which noise repeats, 0 for never.
struct Period {
    int across = 0, down = 0;
};

/// Gradient noise on a lattice of 256 that repeats, with gradients of its own for each of four channels.
/// @source the reference algorithm of the turbulence primitive, SVG 1.1, 15.24, which takes the same seed,
///         octaves and stitching
class Lattice
{
public:
    explicit Lattice(std::int32_t seed)
    {
        Generator random(seed);
        const auto coordinate = [&] {
            return (static_cast<double>(random.next() % (2 * kSize)) - kSize) / kSize;
        };
        for (auto& gradients : m_gradients) {
            for (std::size_t i = 0; i < kSize; ++i) {
                const double x = coordinate(), y = coordinate();
                const double length = std::hypot(x, y);
                gradients[i] = length > 0 ? swf::Point{x / length, y / length} : swf::Point{};
            }
        }
        std::iota(m_order.begin(), m_order.end(), std::size_t{0});
        for (std::size_t i = kSize - 1; i > 0; --i) std::swap(m_order[i], m_order[random.next() % kSize]);
    }

    [[nodiscard]] double at(std::size_t channel, double x, double y, Period period) const
    {
        if (!std::isfinite(x) || !std::isfinite(y)) return 0;
        const double left = std::floor(x), top = std::floor(y);
        const double fx = x - left, fy = y - top;
        const std::size_t column0 = m_order[wrapped(left, period.across)],
                          column1 = m_order[wrapped(left + 1, period.across)];
        const std::size_t row0 = wrapped(top, period.down), row1 = wrapped(top + 1, period.down);
        const auto corner = [&](std::size_t column, std::size_t row, double dx, double dy) {
            const swf::Point g = m_gradients[channel][m_order[(column + row) % kSize]];
            return g.x * dx + g.y * dy;
        };
        const double u = fade(fx), v = fade(fy);
        return std::lerp(
            std::lerp(corner(column0, row0, fx, fy), corner(column1, row0, fx - 1, fy), u),
            std::lerp(corner(column0, row1, fx, fy - 1), corner(column1, row1, fx - 1, fy - 1), u), v);
    }

private:
    static constexpr std::size_t kSize = 256;
    static double fade(double t) { return t * t * (3 - 2 * t); }
    static std::size_t wrapped(double cell, int period)
    {
        const auto within = [](double value, double size) {
            const double rest = std::fmod(value, size);
            return rest < 0 ? rest + size : rest;
        };
        if (period > 0) cell = within(cell, period);
        return static_cast<std::size_t>(within(cell, kSize)) % kSize;
    }

    std::array<std::array<swf::Point, kSize>, 4> m_gradients{};
    std::array<std::size_t, kSize> m_order{};
};

/// Where octaves are stitched, the sides of the picture are whole cells: of the two frequencies that make
/// them so, the nearer one.
double stitchedFrequency(double frequency, int size)
{
    const double cells = size * std::fabs(frequency);
    const double less = std::floor(cells), more = std::ceil(cells);
    const double taken = less > 0 && cells * cells < less * more ? less : more;
    return std::copysign(taken / size, frequency);
}

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
    swf::Point frequency{1 / options.baseX, 1 / options.baseY};
    Period period;
    if (options.stitch) {
        frequency = {stitchedFrequency(frequency.x, bitmap.width),
                     stitchedFrequency(frequency.y, bitmap.height)};
        constexpr double kManyCells = 1 << 12; // of the first octave: smaller ones are no smooth noise
        const auto cells = [&](int size, double step) {
            return static_cast<int>(std::min(std::round(size * std::fabs(step)), kManyCells));
        };
        period = {cells(bitmap.width, frequency.x), cells(bitmap.height, frequency.y)};
    }
    const Lattice lattice(options.seed);
    const auto levelAt = [&](std::size_t channel, int x, int y) {
        double sum = 0;
        for (int octave = 0; octave < octaves; ++octave) {
            const auto at = static_cast<std::size_t>(octave);
            const swf::Point offset = at < options.offsets.size() ? options.offsets[at] : swf::Point{};
            const int times = 1 << octave;
            const double n = lattice.at(channel, (x + offset.x) * frequency.x * times,
                                        (y + offset.y) * frequency.y * times,
                                        {period.across * times, period.down * times});
            sum += (options.fractal ? n : std::fabs(n)) / times;
        }
        const double level = options.fractal ? (sum * 255 + 255) / 2 : sum * 255;
        return static_cast<int>(std::clamp(level, 0.0, 255.0));
    };
    for (int y = 0; y < bitmap.height && !(options.stops && options.stops()); ++y) {
        for (int x = 0; x < bitmap.width; ++x) {
            std::array<int, 4> rgba{0, 0, 0, 255};
            for (std::size_t channel = 0; channel < rgba.size(); ++channel) {
                const bool isGiven =
                    options.gray && channel < 3 ? channel == 0 : (options.channels & 1 << channel) != 0;
                if (isGiven) rgba[channel] = levelAt(channel, x, y);
            }
            if (options.gray) rgba[1] = rgba[2] = rgba[0];
            setPixelAt(bitmap, x, y, pack(rgba));
        }
    }
}

} // namespace flash::render
