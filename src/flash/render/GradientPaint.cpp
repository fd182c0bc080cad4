#include "flash/render/Paint.h"
#include "flash/render/Pixel.h"
#include "flash/render/Vectorize.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace flash::render
{
namespace
{

constexpr double kSquareRadius = 16384;
constexpr int kRampSize = 256;

double toLinear(double value)
{
    value /= 255;
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

double fromLinear(double value)
{
    return 255 * (value <= 0.0031308 ? value * 12.92 : 1.055 * std::pow(value, 1 / 2.4) - 0.055);
}

// Channel `part` of `whole` on the way.
std::uint8_t mixPlain(std::uint8_t from, std::uint8_t to, int part, int whole)
{
    return static_cast<std::uint8_t>((from * (whole - part) + to * part + whole / 2) / whole);
}

std::uint8_t mixLinear(std::uint8_t from, std::uint8_t to, int part, int whole)
{
    const double t = static_cast<double>(part) / whole;
    return static_cast<std::uint8_t>(
        std::lround(fromLinear(toLinear(from) + (toLinear(to) - toLinear(from)) * t)));
}

// Fills the entries after `from` up to `to`.
template <std::uint8_t (*Mix)(std::uint8_t, std::uint8_t, int, int)>
void fillBetween(std::array<swf::Rgba, kRampSize>& colors, const swf::Gradient::Stop& from,
                 const swf::Gradient::Stop& to)
{
    const int whole = to.ratio - from.ratio;
    const swf::Rgba a = from.color, b = to.color;
    for (int part = 1; part <= whole; ++part)
        colors[static_cast<std::size_t>(from.ratio + part)] = {
            Mix(a.r, b.r, part, whole), Mix(a.g, b.g, part, whole), Mix(a.b, b.b, part, whole),
            mixPlain(a.a, b.a, part, whole)};
}

// What is worked out side by side comes in whole groups of so many: some pixels more cost less than some one
// by one at the end, and most rows of a shape are short.
constexpr std::size_t kGroup = 8;
constexpr std::size_t wholeGroups(std::size_t count) { return (count + kGroup - 1) & ~(kGroup - 1); }

// Positions along the ramp, in entries, to whole entries that there are. Positions are bounded by the
// callers.
// @param count of whole groups, here and below
ZORVEX_VECTORIZE
void toEntries(const float* positions, std::size_t count, swf::Gradient::Spread spread, std::int32_t* entries)
{
    count &= ~(kGroup - 1);
    constexpr std::int32_t kLast = kRampSize - 1, kTwice = 2 * kRampSize - 1;
    switch (spread) {
    case swf::Gradient::Spread::Pad:
        for (std::size_t i = 0; i < count; ++i)
            entries[i] = std::min(std::max(static_cast<std::int32_t>(positions[i]), 0), kLast);
        return;
    case swf::Gradient::Spread::Reflect:
        for (std::size_t i = 0; i < count; ++i) {
            const std::int32_t at = static_cast<std::int32_t>(positions[i]) & kTwice;
            entries[i] = std::min(at, kTwice - at);
        }
        return;
    case swf::Gradient::Spread::Repeat:
        for (std::size_t i = 0; i < count; ++i) entries[i] = static_cast<std::int32_t>(positions[i]) & kLast;
        return;
    }
}

// Written four at a time, as they are read soon after: what was written in smaller pieces would have to reach
// memory first.
void lookUp(const std::uint32_t* ramp, const std::int32_t* entries, std::size_t count, std::uint32_t* to)
{
    using Pixels4 = std::uint32_t __attribute__((vector_size(16)));
    std::size_t i = 0;
    for (; i + 4 <= count; i += 4) {
        const Pixels4 four = {ramp[entries[i]], ramp[entries[i + 1]], ramp[entries[i + 2]],
                              ramp[entries[i + 3]]};
        std::memcpy(to + i, &four, sizeof four);
    }
    for (; i < count; ++i) to[i] = ramp[entries[i]];
}

// Between entries: each has its colour in its middle.
void lookUpBetween(const std::uint32_t* ramp, const float* positions, std::size_t count,
                   swf::Gradient::Spread spread, std::uint32_t* to)
{
    constexpr std::int32_t kLast = kRampSize - 1, kTwice = 2 * kRampSize - 1;
    const auto entry = [=](std::int32_t at) {
        switch (spread) {
        case swf::Gradient::Spread::Pad: break;
        case swf::Gradient::Spread::Reflect: at &= kTwice; return std::min(at, kTwice - at);
        case swf::Gradient::Spread::Repeat: break;
        }
        return std::min(std::max(at, 0), kLast);
    };
    for (std::size_t i = 0; i < count; ++i) {
        // Where a ramp begins anew its ends do not mix.
        float position = positions[i];
        if (spread == swf::Gradient::Spread::Repeat) position -= kRampSize * std::floor(position / kRampSize);
        const float at = position - 0.5F, whole = std::floor(at);
        const auto first = static_cast<std::int32_t>(whole);
        const auto part = static_cast<std::uint32_t>((at - whole) * 256), rest = 256 - part;
        const std::uint32_t from = ramp[entry(first)], next = ramp[entry(first + 1)];
        const std::uint32_t low = ((from & 0x00FF00FF) * rest + (next & 0x00FF00FF) * part + 0x00800080) >> 8;
        const std::uint32_t high =
            (from >> 8 & 0x00FF00FF) * rest + (next >> 8 & 0x00FF00FF) * part + 0x00800080;
        to[i] = (low & 0x00FF00FF) | (high & 0xFF00FF00);
    }
}

// Where in a pixel a gradient is looked at, from its upper left corner.
constexpr double kCentre = 0.5, kCorner = 0;
// The genuine player's radial ones lie off by a hair and are too large by less, as its fixed-point numbers
// make them; found from its pictures, where it decides about single pixels on the rings of the ramp.
constexpr double kRadialShift = 0.0012;
constexpr float kRadialSize = kRampSize * (1 - 1e-5F);

// Far beyond any number of repetitions that could be told apart.
constexpr float kMaxDistance = 1e6F;

class GradientPaint : public Paint
{
public:
    GradientPaint(const swf::Gradient& gradient, const GradientRamp& ramp, const swf::Matrix& fromDevice,
                  GradientSample sample, double shift = 0)
        : m_ramp(ramp), m_spread(gradient.spread), m_fromDevice(fromDevice),
          m_within(sample == GradientSample::Corner ? kCorner + shift : kCentre),
          m_between(sample == GradientSample::Centre)
    {
        std::uint32_t all = ~0U;
        for (const std::uint32_t color : ramp) all &= color;
        m_isOpaque = alphaOf(all) == 255;
    }
    [[nodiscard]] bool isOpaque() const override { return m_isOpaque; }
    void fetch(int x, int y, std::size_t count, std::uint32_t* to) const override
    {
        // Positions are worked out a block at a time, as numbers the compiler can do side by side.
        constexpr std::size_t kBlock = 32 * kGroup;
        float positions[kBlock];
        std::int32_t entries[kBlock];
        while (count > 0) {
            const std::size_t block = std::min(count, kBlock);
            const swf::Point start = m_fromDevice.map(x + m_within, y + m_within);
            place(start, wholeGroups(block), positions);
            if (m_between) {
                lookUpBetween(m_ramp.data(), positions, block, m_spread, to);
            } else {
                toEntries(positions, wholeGroups(block), m_spread, entries);
                lookUp(m_ramp.data(), entries, block, to);
            }
            to += block;
            x += static_cast<int>(block);
            count -= block;
        }
    }

protected:
    // The positions on the ramp, in entries, of pixels from `start` (in the gradient's unit circle) on.
    virtual void place(swf::Point start, std::size_t count, float* positions) const = 0;
    [[nodiscard]] std::uint32_t colorAt(int x, int y) const
    {
        std::uint32_t color = 0;
        fetch(x, y, 1, &color);
        return color;
    }
    [[nodiscard]] bool isBetween() const { return m_between; }
    [[nodiscard]] float stepX() const { return static_cast<float>(m_fromDevice.a); }
    [[nodiscard]] float stepY() const { return static_cast<float>(m_fromDevice.b); }

private:
    GradientRamp m_ramp;
    swf::Gradient::Spread m_spread;
    swf::Matrix m_fromDevice; ///< device pixels to the unit circle
    double m_within;          ///< where in a pixel it is looked at, from its corner
    bool m_between;           ///< colours go over into each other between entries
    bool m_isOpaque = false;
};

ZORVEX_VECTORIZE
void placeLinear(float start, float step, std::size_t count, float* positions)
{
    count &= ~(kGroup - 1);
    for (std::size_t i = 0; i < count; ++i) {
        const float at = start + step * static_cast<float>(static_cast<int>(i));
        positions[i] = std::floor(std::min(std::max(at, -kMaxDistance), kMaxDistance));
    }
}

ZORVEX_VECTORIZE
void placeRadial(float startX, float startY, float stepX, float stepY, std::size_t count, float* positions)
{
    count &= ~(kGroup - 1);
    for (std::size_t i = 0; i < count; ++i) {
        const float x = startX + stepX * static_cast<float>(static_cast<int>(i));
        const float y = startY + stepY * static_cast<float>(static_cast<int>(i));
        positions[i] = std::min(std::sqrt(x * x + y * y) * kRadialSize, kMaxDistance);
    }
}

// The ray from the focal point (f, 0) through (x, y) meets the unit circle; the position is how far along
// that way the point lies: t = (f dx + sqrt(dx dx + y y - f f y y)) / (1 - f f), dx being x - f.
ZORVEX_VECTORIZE
void placeFocal(float startX, float startY, float stepX, float stepY, float focal, std::size_t count,
                float* positions)
{
    count &= ~(kGroup - 1);
    const float inverse = 1 / (1 - focal * focal);
    for (std::size_t i = 0; i < count; ++i) {
        const float dx = startX + stepX * static_cast<float>(static_cast<int>(i)) - focal;
        const float y = startY + stepY * static_cast<float>(static_cast<int>(i));
        const float root = std::sqrt(std::max(dx * dx + y * y - focal * focal * y * y, 0.0F));
        const float at = (focal * dx + root) * inverse * kRampSize;
        positions[i] = std::min(std::max(at, 0.0F), kMaxDistance);
    }
}

class LinearPaint final : public GradientPaint
{
public:
    using GradientPaint::GradientPaint;
    // Skies and buttons: what runs straight down has one colour a row.
    [[nodiscard]] std::optional<std::uint32_t> rowColor(int y) const override
    {
        if (stepX() * (kRampSize / 2) != 0) return std::nullopt;
        return colorAt(0, y);
    }

private:
    void place(swf::Point start, std::size_t count, float* positions) const override
    {
        const auto first = static_cast<float>((start.x + 1) * (kRampSize / 2));
        const float step = stepX() * (kRampSize / 2);
        if (!isBetween()) return placeLinear(first, step, count, positions);
        for (std::size_t i = 0; i < count; ++i)
            positions[i] = std::clamp(first + step * static_cast<float>(i), -kMaxDistance, kMaxDistance);
    }
};

class RadialPaint final : public GradientPaint
{
public:
    RadialPaint(const swf::Gradient& gradient, const GradientRamp& ramp, const swf::Matrix& fromDevice,
                GradientSample sample)
        : GradientPaint(gradient, ramp, fromDevice, sample, kRadialShift)
    {
    }

private:
    void place(swf::Point start, std::size_t count, float* positions) const override
    {
        placeRadial(static_cast<float>(start.x), static_cast<float>(start.y), stepX(), stepY(), count,
                    positions);
    }
};

class FocalPaint final : public GradientPaint
{
public:
    FocalPaint(const swf::Gradient& gradient, const GradientRamp& ramp, const swf::Matrix& fromDevice,
               GradientSample sample)
        : GradientPaint(gradient, ramp, fromDevice, sample),
          // On the circle itself every point would be infinitely far along its way.
          m_focal(static_cast<float>(std::clamp(gradient.focalPoint, -0.98, 0.98)))
    {
    }

private:
    void place(swf::Point start, std::size_t count, float* positions) const override
    {
        placeFocal(static_cast<float>(start.x), static_cast<float>(start.y), stepX(), stepY(), m_focal, count,
                   positions);
    }
    float m_focal;
};

} // namespace

GradientRamp makeRamp(const swf::Gradient& gradient, const swf::ColorTransform& color)
{
    GradientRamp ramp;
    std::array<swf::Rgba, kRampSize> colors;
    // The genuine player fills with black where no colours are given. A stop that does not lie beyond its
    // predecessor comes one entry later, which still has the predecessor's colour. Before the first and after
    // the last one the colour stays.
    swf::Gradient::Stop previous;
    if (!gradient.stops.empty()) previous = gradient.stops.front();
    std::fill_n(colors.begin(), previous.ratio + 1, previous.color);
    for (std::size_t i = 1; i < gradient.stops.size() && previous.ratio < kRampSize - 1; ++i) {
        swf::Gradient::Stop stop = gradient.stops[i];
        if (stop.ratio <= previous.ratio) {
            colors[previous.ratio + 1U] = previous.color;
            previous = {static_cast<std::uint8_t>(previous.ratio + 1), stop.color};
            continue;
        }
        if (gradient.interpolation == swf::Gradient::Interpolation::Linear)
            fillBetween<mixLinear>(colors, previous, stop);
        else
            fillBetween<mixPlain>(colors, previous, stop);
        previous = stop;
    }
    std::fill(colors.begin() + std::min(previous.ratio + 1, kRampSize), colors.end(), previous.color);
    const bool plain = color.isIdentity();
    std::ranges::transform(colors, ramp.begin(),
                           [&](swf::Rgba c) { return premultiply(plain ? c : apply(color, c)); });
    return ramp;
}

std::unique_ptr<Paint> makeGradientPaint(swf::FillStyle::Kind kind, const swf::Gradient& gradient,
                                         const GradientRamp& ramp, const swf::Matrix& toDevice,
                                         GradientSample sample)
{
    if (!toDevice.isInvertible()) return nullptr;
    swf::Matrix fromDevice = toDevice.inverted();
    constexpr double f = 1 / kSquareRadius;
    fromDevice = {fromDevice.a * f, fromDevice.b * f,  fromDevice.c * f,
                  fromDevice.d * f, fromDevice.tx * f, fromDevice.ty * f};
    const bool focal = kind == swf::FillStyle::Kind::FocalGradient && gradient.focalPoint != 0;
    if (kind == swf::FillStyle::Kind::LinearGradient)
        return std::make_unique<LinearPaint>(gradient, ramp, fromDevice, sample);
    if (focal) return std::make_unique<FocalPaint>(gradient, ramp, fromDevice, sample);
    return std::make_unique<RadialPaint>(gradient, ramp, fromDevice, sample);
}

} // namespace flash::render
