#include "flash/render/Displacement.h"

#include "flash/guard/Guard.h"
#include "flash/render/BitmapOps.h"
#include "flash/render/Pixel.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace flash::render
{
namespace
{

using Mode = swf::DisplacementMapFilter::Mode;

std::optional<unsigned> shiftOf(int channel)
{
    switch (channel) {
    case 1: return 16;
    case 2: return 8;
    case 4: return 0;
    case 8: return 24;
    default: return {};
    }
}

/// The pixels as they were, beyond their edges as the mode has it.
class Source
{
public:
    Source(SurfaceView surface, const swf::DisplacementMapFilter& filter)
        : m_pixels(surface.width, surface.height), m_mode(filter.mode), m_color(premultiply(filter.color))
    {
        for (int y = 0; y < surface.height; ++y) std::copy_n(surface.row(y), surface.width, m_pixels.row(y));
    }
    [[nodiscard]] std::uint32_t at(int x, int y) const { return m_pixels.pixel(x, y); }

    /// At a place in pixels, whose centres lie on whole numbers.
    /// @param unmoved what Mode::Ignore has for places outside
    [[nodiscard]] std::uint32_t near(double x, double y, std::uint32_t unmoved) const
    {
        constexpr double kParts = 256; // of the way between two pixels
        const auto column = static_cast<std::int64_t>(std::floor(x * kParts + 0.5)),
                   row = static_cast<std::int64_t>(std::floor(y * kParts + 0.5));
        const std::int64_t left = column >> 8U, top = row >> 8U;
        const int width = m_pixels.width(), height = m_pixels.height();
        if (m_mode == Mode::Ignore || m_mode == Mode::Color) {
            if (column < 0 || row < 0 || left >= width || top >= height)
                return m_mode == Mode::Ignore ? unmoved : m_color;
        }
        const auto partX = static_cast<std::uint32_t>(column & 0xFF),
                   partY = static_cast<std::uint32_t>(row & 0xFF);
        const int x0 = placed(left, width), x1 = placed(left + 1, width);
        const int y0 = placed(top, height), y1 = placed(top + 1, height);
        return between(between(at(x0, y0), at(x1, y0), partX), between(at(x0, y1), at(x1, y1), partX), partY);
    }

private:
    [[nodiscard]] int placed(std::int64_t at, int size) const
    {
        if (m_mode != Mode::Wrap) return static_cast<int>(std::clamp<std::int64_t>(at, 0, size - 1));
        const std::int64_t rest = at % size;
        return static_cast<int>(rest < 0 ? rest + size : rest);
    }
    static std::uint32_t between(std::uint32_t from, std::uint32_t to, std::uint32_t part)
    {
        const std::uint32_t rest = 256 - part;
        const std::uint32_t low = ((from & 0x00FF00FF) * rest + (to & 0x00FF00FF) * part) >> 8;
        const std::uint32_t high = (from >> 8 & 0x00FF00FF) * rest + (to >> 8 & 0x00FF00FF) * part;
        return (low & 0x00FF00FF) | (high & 0xFF00FF00);
    }

    Surface m_pixels;
    Mode m_mode;
    std::uint32_t m_color;
};

} // namespace

void displace(const swf::DisplacementMapFilter& filter, SurfaceView surface, double scale)
{
    if (filter.map == nullptr || surface.width <= 0 || surface.height <= 0 || !(scale > 0)) return;
    const swf::Bitmap& map = *filter.map;
    const auto shiftX = shiftOf(filter.componentX), shiftY = shiftOf(filter.componentY);
    if (map.pixels.size() < static_cast<std::size_t>(map.width) * static_cast<std::size_t>(map.height))
        return;
    const auto amount = [scale](double pixels) { return std::isfinite(pixels) ? pixels * scale / 256 : 0.0; };
    const double amountX = amount(filter.scaleX), amountY = amount(filter.scaleY);
    const Source source(surface, filter);
    for (int y = 0; y < surface.height; ++y) {
        guard::check(static_cast<std::uint32_t>(1 + surface.width / 64));
        // The map is as coarse on the device as it is on the stage.
        const double mapY = std::floor(y / scale) - filter.mapY;
        if (!(mapY >= 0 && mapY < map.height)) continue;
        std::uint32_t* row = surface.row(y);
        for (int x = 0; x < surface.width; ++x) {
            const double mapX = std::floor(x / scale) - filter.mapX;
            if (!(mapX >= 0 && mapX < map.width)) continue;
            const std::uint32_t color = pixelAt(map, static_cast<int>(mapX), static_cast<int>(mapY));
            const auto away = [color](std::optional<unsigned> shift, double by) {
                constexpr double kNeutral = 128;
                return shift ? (static_cast<double>(color >> *shift & 0xFF) - kNeutral) * by : 0.0;
            };
            row[x] = source.near(x + away(shiftX, amountX), y + away(shiftY, amountY), row[x]);
        }
    }
}

} // namespace flash::render
