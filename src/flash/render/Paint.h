#pragma once

#include "flash/render/Canvas.h"
#include "flash/swf/Geometry.h"
#include "flash/swf/Shape.h"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>

namespace flash::render
{

/// Colours along a gradient, premultiplied, after the colour transform.
using GradientRamp = std::array<std::uint32_t, 256>;

GradientRamp makeRamp(const swf::Gradient& gradient, const swf::ColorTransform& color);

/// Pixels that a bitmap fill or a drawn bitmap reads. Borrowed.
struct PixelSource {
    const std::uint32_t* pixels = nullptr; ///< premultiplied
    int width = 0, height = 0;             ///< rows follow each other without gap
    bool opaque = false;
    [[nodiscard]] const std::uint32_t* row(int y) const
    {
        return pixels + static_cast<std::ptrdiff_t>(y) * width;
    }
};

PixelSource pixelSource(const swf::Bitmap& bitmap);
PixelSource pixelSource(const Surface& surface);

/// Applies a colour transform to premultiplied pixels.
void transformPixels(std::uint32_t* pixels, std::size_t count, const swf::ColorTransform& color);

/// Where the colours of a fill come from. A solid one is known beforehand; the others are asked for rows of
/// pixels.
class Paint
{
public:
    virtual ~Paint() = default;
    /// Writes the colours of pixels (x, y) to (x + count - 1, y), as seen at their centres.
    virtual void fetch(int x, int y, std::size_t count, std::uint32_t* to) const = 0;
    /// The one colour of all pixels of a row, where that can be told at once.
    [[nodiscard]] virtual std::optional<std::uint32_t> rowColor(int /*y*/) const { return std::nullopt; }
    /// Whether every pixel it writes is opaque.
    [[nodiscard]] virtual bool isOpaque() const { return false; }
};

/// Where within a pixel a gradient is looked at: where edges are smoothed, at the first of its samples, the
/// upper left corner.
enum class GradientSample { Corner, Centre };

/// @param toDevice gradient square to device pixels
/// @returns null when the matrix cannot be inverted
std::unique_ptr<Paint> makeGradientPaint(swf::FillStyle::Kind kind, const swf::Gradient& gradient,
                                         const GradientRamp& ramp, const swf::Matrix& toDevice,
                                         GradientSample sample = GradientSample::Corner);

enum class Edges { Clamp, Repeat };

/// @param toDevice bitmap pixels to device pixels
/// @returns null for an empty bitmap or a matrix that cannot be inverted
std::unique_ptr<Paint> makeBitmapPaint(const PixelSource& source, const swf::Matrix& toDevice, Edges edges,
                                       Smoothing smoothing, const swf::ColorTransform& color);

} // namespace flash::render
