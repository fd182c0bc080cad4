#include "flash/render/Paint.h"
#include "flash/render/Pixel.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace flash::render
{
namespace
{

using swf::ColorTransform;

// Positions in the bitmap are 16.16 fixed point in 64 bits. Start and step are bounded so that 2^16 steps,
// more than any surface is wide, cannot overflow.
constexpr int kFractionBits = 16;
constexpr std::int64_t kOne = std::int64_t{1} << kFractionBits;

std::int64_t toFixed(double value)
{
    constexpr double kMaxDistance = 1e9;
    if (std::isnan(value)) return 0;
    return static_cast<std::int64_t>(std::floor(std::clamp(value, -kMaxDistance, kMaxDistance) * kOne + 0.5));
}

int wrap(std::int64_t at, int size)
{
    const std::int64_t rest = at % size;
    return static_cast<int>(rest < 0 ? rest + size : rest);
}

int place(std::int64_t at, int size, Edges edges)
{
    if (at >= 0 && at < size) return static_cast<int>(at);
    if (edges == Edges::Repeat) return wrap(at, size);
    return at < 0 ? 0 : size - 1;
}

// Each channel: from + (to - from) * part / 256.
std::uint32_t blend256(std::uint32_t from, std::uint32_t to, std::uint32_t part)
{
    const std::uint32_t rest = 256 - part;
    const std::uint32_t low = ((from & 0x00FF00FF) * rest + (to & 0x00FF00FF) * part + 0x00800080) >> 8;
    const std::uint32_t high = (from >> 8 & 0x00FF00FF) * rest + (to >> 8 & 0x00FF00FF) * part + 0x00800080;
    return (low & 0x00FF00FF) | (high & 0xFF00FF00);
}

class BitmapPaint : public Paint
{
public:
    BitmapPaint(const PixelSource& source, const swf::Matrix& fromDevice, Edges edges,
                const ColorTransform& color)
        : m_source(source), m_fromDevice(fromDevice), m_edges(edges), m_color(color)
    {
    }
    void fetch(int x, int y, std::size_t count, std::uint32_t* to) const final
    {
        read(x, y, count, to);
        if (!m_color.isIdentity()) transformPixels(to, count, m_color);
    }

protected:
    virtual void read(int x, int y, std::size_t count, std::uint32_t* to) const = 0;

    PixelSource m_source;
    swf::Matrix m_fromDevice;
    Edges m_edges;

private:
    ColorTransform m_color;
};

// Pixel for pixel, at a whole offset.
class CopyPaint final : public BitmapPaint
{
    using BitmapPaint::BitmapPaint;
    void read(int x, int y, std::size_t count, std::uint32_t* to) const override
    {
        const auto offsetX = static_cast<std::int64_t>(std::floor(m_fromDevice.tx + 0.5));
        const auto offsetY = static_cast<std::int64_t>(std::floor(m_fromDevice.ty + 0.5));
        const std::uint32_t* row = m_source.row(place(y + offsetY, m_source.height, m_edges));
        std::int64_t at = x + offsetX;
        while (count > 0) {
            const int column = place(at, m_source.width, m_edges);
            if (m_edges == Edges::Clamp && (at < 0 || at >= m_source.width)) {
                const std::size_t outside = at < 0 ? static_cast<std::size_t>(std::min<std::int64_t>(
                                                         -at, static_cast<std::int64_t>(count)))
                                                   : count;
                std::fill_n(to, outside, row[column]);
                to += outside;
                at += static_cast<std::int64_t>(outside);
                count -= outside;
                continue;
            }
            const std::size_t piece = std::min(count, static_cast<std::size_t>(m_source.width - column));
            std::memcpy(to, row + column, piece * sizeof(std::uint32_t));
            to += piece;
            at += static_cast<std::int64_t>(piece);
            count -= piece;
        }
    }
};

class NearestPaint final : public BitmapPaint
{
    using BitmapPaint::BitmapPaint;
    void read(int x, int y, std::size_t count, std::uint32_t* to) const override
    {
        const swf::Point start = m_fromDevice.map(x + 0.5, y + 0.5);
        std::int64_t u = toFixed(start.x), v = toFixed(start.y);
        const std::int64_t stepU = toFixed(m_fromDevice.a), stepV = toFixed(m_fromDevice.b);
        for (std::size_t i = 0; i < count; ++i, u += stepU, v += stepV)
            to[i] = m_source.row(place(v >> kFractionBits, m_source.height,
                                       m_edges))[place(u >> kFractionBits, m_source.width, m_edges)];
    }
};

// Weighs the four pixels around each point.
class SmoothPaint final : public BitmapPaint
{
    using BitmapPaint::BitmapPaint;
    void read(int x, int y, std::size_t count, std::uint32_t* to) const override
    {
        const swf::Point start = m_fromDevice.map(x + 0.5, y + 0.5);
        std::int64_t u = toFixed(start.x - 0.5), v = toFixed(start.y - 0.5);
        const std::int64_t stepU = toFixed(m_fromDevice.a), stepV = toFixed(m_fromDevice.b);
        const int width = m_source.width, height = m_source.height;
        for (std::size_t i = 0; i < count; ++i, u += stepU, v += stepV) {
            const std::int64_t column = u >> kFractionBits, row = v >> kFractionBits;
            const auto partX = static_cast<std::uint32_t>(u >> (kFractionBits - 8) & 0xFF);
            const auto partY = static_cast<std::uint32_t>(v >> (kFractionBits - 8) & 0xFF);
            const std::uint32_t* upper = m_source.row(place(row, height, m_edges));
            const std::uint32_t* lower = m_source.row(place(row + 1, height, m_edges));
            const int left = place(column, width, m_edges), right = place(column + 1, width, m_edges);
            to[i] = blend256(blend256(upper[left], upper[right], partX),
                             blend256(lower[left], lower[right], partX), partY);
        }
    }
};

bool isWhole(double value) { return std::abs(value - std::round(value)) < 1.0 / 512; }

bool keepsPixels(const swf::Matrix& m)
{
    constexpr double kTolerance = 1e-5; // over 4000 pixels less than a twentieth of one
    return std::abs(m.a - 1) < kTolerance && std::abs(m.d - 1) < kTolerance && std::abs(m.b) < kTolerance &&
           std::abs(m.c) < kTolerance && isWhole(m.tx) && isWhole(m.ty) && std::abs(m.tx) < 1e9 &&
           std::abs(m.ty) < 1e9;
}

} // namespace

PixelSource pixelSource(const swf::Bitmap& bitmap)
{
    const bool complete = bitmap.width > 0 && bitmap.height > 0 &&
                          bitmap.pixels.size() >= static_cast<std::size_t>(bitmap.width) *
                                                      static_cast<std::size_t>(bitmap.height);
    if (!complete) return {};
    return {bitmap.pixels.data(), bitmap.width, bitmap.height, bitmap.opaque};
}

PixelSource pixelSource(const Surface& surface)
{
    if (surface.isEmpty()) return {};
    return {surface.row(0), surface.width(), surface.height(), false};
}

void transformPixels(std::uint32_t* pixels, std::size_t count, const ColorTransform& color)
{
    const bool alphaOnly = ColorTransform{.alphaMul = color.alphaMul} == color;
    if (alphaOnly && color.alphaMul >= 0 && color.alphaMul <= 256) {
        const auto factor = static_cast<std::uint32_t>(color.alphaMul);
        for (std::size_t i = 0; i < count; ++i) pixels[i] = scale256(pixels[i], factor);
        return;
    }
    // What is wholly transparent stays so, whatever the transform adds.
    for (std::size_t i = 0; i < count; ++i)
        if (pixels[i] != 0) pixels[i] = premultiply(apply(color, unpremultiply(pixels[i])));
}

std::unique_ptr<Paint> makeBitmapPaint(const PixelSource& source, const swf::Matrix& toDevice, Edges edges,
                                       Smoothing smoothing, const ColorTransform& color)
{
    if (source.pixels == nullptr || !toDevice.isInvertible()) return nullptr;
    const swf::Matrix fromDevice = toDevice.inverted();
    if (keepsPixels(fromDevice)) return std::make_unique<CopyPaint>(source, fromDevice, edges, color);
    if (smoothing == Smoothing::On) return std::make_unique<SmoothPaint>(source, fromDevice, edges, color);
    return std::make_unique<NearestPaint>(source, fromDevice, edges, color);
}

} // namespace flash::render
