#include "flash/render/Filters.h"

#include "flash/guard/Guard.h"
#include "flash/render/Blur.h"
#include "flash/render/Displacement.h"
#include "flash/render/Pixel.h"
#include "flash/render/ShaderRun.h"
#include "flash/render/ShadowFilters.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <type_traits>

namespace flash::render
{
namespace
{

void apply(const swf::DisplacementMapFilter& filter, SurfaceView surface, double scale)
{
    if (const ShaderBinding* shader = shaderOf(filter.map)) {
        if (!shader->blends) applyShader(*shader, surface, scale);
        return;
    }
    displace(filter, surface, scale);
}

Growth blurGrowth(double blurX, double blurY, int passes, double scale)
{
    const int x = blurReach(scaledBlur(blurX, scale)) * blurPasses(passes),
              y = blurReach(scaledBlur(blurY, scale)) * blurPasses(passes);
    return {x, y, x, y};
}

// `growth`, moved by the distance; with `both`, into the opposite direction too.
Growth moved(const Growth& growth, double distance, double angle, double scale, bool both)
{
    const ShadowOffset offset = shadowOffset(distance, angle, scale);
    // What is moved is blurred before: its border must be there, too.
    const auto beyond = [](int reach, int by) { return reach + std::max(by, 0); };
    const Growth once{beyond(growth.left, -offset.x), beyond(growth.top, -offset.y),
                      beyond(growth.right, offset.x), beyond(growth.bottom, offset.y)};
    if (!both) return once;
    const Growth back{beyond(growth.left, offset.x), beyond(growth.top, offset.y),
                      beyond(growth.right, -offset.x), beyond(growth.bottom, -offset.y)};
    return {std::max(once.left, back.left), std::max(once.top, back.top), std::max(once.right, back.right),
            std::max(once.bottom, back.bottom)};
}

void apply(const swf::BlurFilter& filter, SurfaceView surface, double scale)
{
    Plane plane{surface.width, surface.height, 4, {}};
    plane.bytes.resize(plane.rowBytes() * static_cast<std::size_t>(surface.height));
    for (int y = 0; y < surface.height; ++y) std::memcpy(plane.row(y), surface.row(y), plane.rowBytes());
    boxBlur(plane, scaledBlur(filter.blurX, scale), scaledBlur(filter.blurY, scale), filter.passes);
    for (int y = 0; y < surface.height; ++y) std::memcpy(surface.row(y), plane.row(y), plane.rowBytes());
}

std::uint8_t toChannel(double value)
{
    if (!(value > 0)) return 0; // NaN too
    return static_cast<std::uint8_t>(std::lround(std::min(value, 255.0)));
}

void apply(const swf::ColorMatrixFilter& filter, SurfaceView surface, double)
{
    const auto& m = filter.matrix;
    for (int y = 0; y < surface.height; ++y) {
        std::uint32_t* row = surface.row(y);
        for (int x = 0; x < surface.width; ++x) {
            const swf::Rgba c = unpremultiply(row[x]);
            const auto channel = [&](std::size_t i) {
                return toChannel(m[i] * c.r + m[i + 1] * c.g + m[i + 2] * c.b + m[i + 3] * c.a + m[i + 4]);
            };
            row[x] = premultiply({channel(0), channel(5), channel(10), channel(15)});
        }
    }
}

// Colours count without regard to their alpha where alpha is preserved, and weighed by it where not.
void apply(const swf::ConvolutionFilter& filter, SurfaceView surface, double)
{
    const auto columns = static_cast<std::size_t>(std::max(filter.columns, 0));
    const auto rows = static_cast<std::size_t>(std::max(filter.rows, 0));
    if (columns == 0 || rows == 0 || filter.matrix.size() < columns * rows) return;
    const double divisor = filter.divisor == 0 ? 1 : filter.divisor;
    const auto channelsOf = [&](std::uint32_t pixel) {
        if (!filter.preserveAlpha) return pixel;
        const swf::Rgba c = unpremultiply(pixel);
        return packPixel(c.a, c.r, c.g, c.b);
    };
    const swf::Rgba d = filter.defaultColor;
    const std::uint32_t outside = filter.preserveAlpha ? packPixel(d.a, d.r, d.g, d.b) : premultiply(d);
    Surface source(surface.width, surface.height);
    for (int y = 0; y < surface.height; ++y)
        std::transform(surface.row(y), surface.row(y) + surface.width, source.row(y), channelsOf);
    const auto sourceAt = [&](int x, int y) {
        const bool inside = x >= 0 && x < surface.width && y >= 0 && y < surface.height;
        if (!inside && !filter.clamp) return outside;
        return source.pixel(std::clamp(x, 0, surface.width - 1), std::clamp(y, 0, surface.height - 1));
    };
    const int left = static_cast<int>(columns / 2), top = static_cast<int>(rows / 2);
    for (int y = 0; y < surface.height; ++y) {
        guard::check(
            static_cast<std::uint32_t>(1 + columns * rows * static_cast<std::size_t>(surface.width) / 64));
        for (int x = 0; x < surface.width; ++x) {
            double sums[4] = {}; // blue, green, red, alpha
            for (std::size_t j = 0; j < rows; ++j)
                for (std::size_t i = 0; i < columns; ++i) {
                    const std::uint32_t pixel =
                        sourceAt(x - left + static_cast<int>(i), y - top + static_cast<int>(j));
                    const double weight = filter.matrix[j * columns + i];
                    for (int c = 0; c < 4; ++c) sums[c] += weight * (pixel >> (8 * c) & 0xFF);
                }
            const auto channel = [&](int c) { return toChannel(sums[c] / divisor + filter.bias); };
            if (filter.preserveAlpha) {
                const auto alpha = static_cast<std::uint8_t>(alphaOf(source.pixel(x, y)));
                surface.row(y)[x] = premultiply({channel(2), channel(1), channel(0), alpha});
            } else {
                const std::uint8_t alpha = channel(3);
                surface.row(y)[x] = packPixel(alpha, std::min(channel(2), alpha), std::min(channel(1), alpha),
                                              std::min(channel(0), alpha));
            }
        }
    }
}

void apply(const swf::DropShadowFilter& filter, SurfaceView surface, double scale)
{
    applyShadow(filter, surface, scale);
}
void apply(const swf::GlowFilter& f, SurfaceView surface, double scale)
{
    applyShadow({.color = f.color,
                 .blurX = f.blurX,
                 .blurY = f.blurY,
                 .angle = 0,
                 .distance = 0,
                 .strength = f.strength,
                 .inner = f.inner,
                 .knockout = f.knockout,
                 .compositeSource = f.compositeSource,
                 .passes = f.passes},
                surface, scale);
}
void apply(const swf::BevelFilter& filter, SurfaceView surface, double scale)
{
    applyBevel(filter, surface, scale);
}
void apply(const swf::GradientFilter& filter, SurfaceView surface, double scale)
{
    applyGradient(filter, surface, scale);
}

Growth growthOf(const swf::BlurFilter& f, double scale)
{
    return blurGrowth(f.blurX, f.blurY, f.passes, scale);
}
Growth growthOf(const swf::GlowFilter& f, double scale)
{
    return f.inner ? Growth{} : blurGrowth(f.blurX, f.blurY, f.passes, scale);
}
Growth growthOf(const swf::DropShadowFilter& f, double scale)
{
    if (f.inner) return {};
    return moved(blurGrowth(f.blurX, f.blurY, f.passes, scale), f.distance, f.angle, scale, false);
}
Growth growthOf(const swf::BevelFilter& f, double scale)
{
    if (f.inner && !f.onTop) return {};
    return moved(blurGrowth(f.blurX, f.blurY, f.passes, scale), f.distance, f.angle, scale, true);
}
Growth growthOf(const swf::GradientFilter& f, double scale)
{
    if (f.inner && !f.onTop) return {};
    return moved(blurGrowth(f.blurX, f.blurY, f.passes, scale), f.distance, f.angle, scale, f.bevel);
}
Growth growthOf(const swf::ConvolutionFilter& f, double)
{
    if (f.preserveAlpha) return {};
    const int x = std::clamp(f.columns, 0, 255) / 2, y = std::clamp(f.rows, 0, 255) / 2;
    return {x, y, x, y};
}
Growth growthOf(const swf::ColorMatrixFilter&, double) { return {}; }
// What is moved beyond the edges is lost.
Growth growthOf(const swf::DisplacementMapFilter& f, double scale)
{
    const ShaderBinding* shader = shaderOf(f.map);
    return shader != nullptr ? shaderGrowth(*shader, scale) : Growth{};
}

} // namespace

Growth filterGrowth(const swf::Filter& filter, double scale)
{
    return std::visit([scale](const auto& f) { return growthOf(f, scale); }, filter);
}

Growth filterGrowth(std::span<const swf::Filter> filters, double scale)
{
    Growth sum;
    for (const swf::Filter& filter : filters) {
        const Growth g = filterGrowth(filter, scale);
        sum = {sum.left + g.left, sum.top + g.top, sum.right + g.right, sum.bottom + g.bottom};
    }
    return sum;
}

Growth filterReach(std::span<const swf::Filter> filters, double scale)
{
    Growth sum;
    for (swf::Filter filter : filters) {
        std::visit(
            [](auto& f) {
                if constexpr (requires { f.inner; }) f.inner = false;
                if constexpr (requires { f.preserveAlpha; }) f.preserveAlpha = false;
            },
            filter);
        const Growth g = filterGrowth(filter, scale);
        sum = {sum.left + g.right, sum.top + g.bottom, sum.right + g.left, sum.bottom + g.top};
    }
    return sum;
}

IntRect grown(const IntRect& rect, const Growth& growth)
{
    if (rect.isEmpty()) return {};
    // Rectangles come saturated at 2^30 and growths are small, so this cannot overflow.
    return {rect.left - growth.left, rect.top - growth.top, rect.right + growth.right,
            rect.bottom + growth.bottom};
}

void applyFilter(const swf::Filter& filter, SurfaceView surface, double scale)
{
    if (surface.width <= 0 || surface.height <= 0) return;
    std::visit([&](const auto& f) { apply(f, surface, scale); }, filter);
}

void applyFilters(std::span<const swf::Filter> filters, SurfaceView surface, double scale)
{
    if (!needsWhole(filters)) {
        for (const swf::Filter& filter : filters) applyFilter(filter, surface, scale);
        return;
    }
    // Each filter has the result of those before it, and no more.
    const Growth all = filterGrowth(filters, scale);
    IntRect own{all.left, all.top, surface.width - all.right, surface.height - all.bottom};
    for (const swf::Filter& filter : filters) {
        own = grown(own, filterGrowth(filter, scale));
        if (own.isEmpty()) return;
        applyFilter(filter, {surface.row(own.top) + own.left, own.width(), own.height(), surface.stride},
                    scale);
    }
}

bool needsWhole(std::span<const swf::Filter> filters)
{
    return std::ranges::any_of(filters, [](const swf::Filter& filter) {
        return std::holds_alternative<swf::DisplacementMapFilter>(filter);
    });
}

} // namespace flash::render
