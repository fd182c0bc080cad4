#include "flash/render/BitmapRows.h"
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

constexpr double kPlaceOne = 1 << kPlaceBits;

std::int64_t toFixed(double value)
{
    constexpr double kMaxDistance = 1e9;
    if (std::isnan(value)) return 0;
    return static_cast<std::int64_t>(
        std::floor(std::clamp(value, -kMaxDistance, kMaxDistance) * kPlaceOne + 0.5));
}

class BitmapPaint : public Paint
{
public:
    BitmapPaint(const PixelSource& source, const swf::Matrix& fromDevice, Edges edges,
                const ColorTransform& color)
        // What lies beyond a bitmap is its border or its beginning: it has no holes.
        : Paint({.isOpaque = source.opaque && color.alphaMul == 256 && color.alphaAdd == 0}),
          m_source(source), m_fromDevice(fromDevice), m_edges(edges), m_color(color)
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
        const std::uint32_t* row = m_source.row(placeWithin(y + offsetY, m_source.height, m_edges));
        std::int64_t at = x + offsetX;
        while (count > 0) {
            const int column = placeWithin(at, m_source.width, m_edges);
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

// Scaled or turned.
class SampledPaint final : public BitmapPaint
{
public:
    SampledPaint(const PixelSource& source, const swf::Matrix& fromDevice, Edges edges, Smoothing smoothing,
                 const ColorTransform& color)
        : BitmapPaint(source, fromDevice, edges, color),
          m_loop(smoothing == Smoothing::On ? bitmapLoops().smooth : bitmapLoops().nearest),
          // From where whole numbers are corners of pixels to where they are their middles.
          m_shift(smoothing == Smoothing::On ? 0.5 : 0)
    {
    }

private:
    void read(int x, int y, std::size_t count, std::uint32_t* to) const override
    {
        // Places are counted from the borders of blocks on the device: they do not depend on where a row is
        // begun, on the clip that is.
        constexpr int kBlock = 256;
        while (count > 0) {
            const auto first = static_cast<std::size_t>(x & (kBlock - 1));
            const std::size_t block = std::min(count, kBlock - first);
            const swf::Point start = m_fromDevice.map(x - static_cast<int>(first) + 0.5, y + 0.5);
            const BitmapRow row{toFixed(start.x - m_shift), toFixed(start.y - m_shift),
                                toFixed(m_fromDevice.a), toFixed(m_fromDevice.b)};
            m_loop(m_source, m_edges, row.from(first), block, to);
            to += block;
            x += static_cast<int>(block);
            count -= block;
        }
    }

    BitmapLoop m_loop;
    double m_shift;
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
    return std::make_unique<SampledPaint>(source, fromDevice, edges, smoothing, color);
}

} // namespace flash::render
