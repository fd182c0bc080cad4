#pragma once

#include "flash/render/Canvas.h"
#include "flash/swf/Geometry.h"
#include "flash/swf/Shape.h"

#include <array>
#include <cstdint>
#include <memory>

namespace flash::render
{

/// Colours along a gradient.
struct GradientRamp {
    std::array<std::uint32_t, 256> colors{}; ///< premultiplied, after the colour transform
    bool isOpaque = false;                   ///< all of them
    // What colours between the entries are mixed from.
    std::array<std::uint32_t, 256> plain{}; ///< not premultiplied, before the colour transform
    bool isLinear = false;                  ///< `plain` is: in parts of the light, not of what is seen
    swf::ColorTransform transform;
};

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
    /// Whether lay() may be called; else fetch() and composePixels() do the same.
    [[nodiscard]] bool canLay() const { return m_traits.canLay; }
    /// Lays the colours of these pixels over those at `to`.
    /// @param coverage 0..255; may be read, not used, for up to seven pixels beyond
    virtual void lay(int /*x*/, int /*y*/, const std::uint8_t* /*coverage*/, std::size_t /*count*/,
                     std::uint32_t* /*to*/) const
    {
    }
    /// Whether all pixels of a row have one colour, for which rowColor() may be called.
    [[nodiscard]] bool hasRowColors() const { return m_traits.hasRowColors; }
    [[nodiscard]] virtual std::uint32_t rowColor(int /*y*/) const { return 0; }
    /// Whether every pixel it writes is opaque.
    [[nodiscard]] bool isOpaque() const { return m_traits.isOpaque; }

protected:
    /// What is asked for every span, and so is no matter of virtual functions.
    struct Traits {
        bool isOpaque = false;
        bool hasRowColors = false;
        bool canLay = false;
    };
    Paint() = default;
    explicit Paint(Traits traits) : m_traits(traits) {}

private:
    Traits m_traits;
};

/// Where within a pixel a gradient is looked at: where edges are smoothed, at the first of its samples, the
/// upper left corner.
enum class GradientSample { Corner, Centre };

/// @param toDevice gradient square to device pixels
/// @returns null when the matrix cannot be inverted
std::unique_ptr<Paint> makeGradientPaint(swf::FillStyle::Kind kind, const swf::Gradient& gradient,
                                         std::shared_ptr<const GradientRamp> ramp,
                                         const swf::Matrix& toDevice,
                                         GradientSample sample = GradientSample::Corner);

enum class Edges { Clamp, Repeat };

/// @param toDevice bitmap pixels to device pixels
/// @returns null for an empty bitmap or a matrix that cannot be inverted
std::unique_ptr<Paint> makeBitmapPaint(const PixelSource& source, const swf::Matrix& toDevice, Edges edges,
                                       Smoothing smoothing, const swf::ColorTransform& color);

} // namespace flash::render
