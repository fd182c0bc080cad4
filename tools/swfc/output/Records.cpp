#include "swfc/output/Records.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>

namespace swfc::output
{

void BitWriter::float32(double value) { u32(std::bit_cast<std::uint32_t>(static_cast<float>(value))); }

int bitsForSigned(std::int32_t value)
{
    const auto magnitude = static_cast<std::uint32_t>(value < 0 ? ~value : value);
    return bitsForUnsigned(magnitude) + 1;
}

int bitsForUnsigned(std::uint32_t value) { return static_cast<int>(std::bit_width(value)); }

Matrix operator*(const Matrix& l, const Matrix& r)
{
    return {l.a * r.a + l.c * r.b, l.b * r.a + l.d * r.b,          l.a * r.c + l.c * r.d,
            l.b * r.c + l.d * r.d, l.a * r.tx + l.c * r.ty + l.tx, l.b * r.tx + l.d * r.ty + l.ty};
}

void Bounds::include(Point p)
{
    xMin = std::min(xMin, p.x);
    xMax = std::max(xMax, p.x);
    yMin = std::min(yMin, p.y);
    yMax = std::max(yMax, p.y);
}

void Bounds::include(const Bounds& other)
{
    if (other.isEmpty()) return;
    include(Point{other.xMin, other.yMin});
    include(Point{other.xMax, other.yMax});
}

void Bounds::expand(double by)
{
    if (isEmpty()) return;
    xMin -= by;
    yMin -= by;
    xMax += by;
    yMax += by;
}

/// Saturates at what 29 bits hold, which every record can carry.
std::int32_t toTwips(double pixels)
{
    constexpr double kMax = 1 << 28;
    const double twips = std::round(pixels * kTwipsPerPixel);
    if (std::isnan(twips)) return 0;
    return static_cast<std::int32_t>(std::clamp(twips, -kMax, kMax));
}

void writeBounds(BitWriter& out, const Bounds& bounds)
{
    const Bounds used = bounds.isEmpty() ? Bounds{0, 0, 0, 0} : bounds;
    const std::int32_t values[] = {toTwips(used.xMin), toTwips(used.xMax), toTwips(used.yMin),
                                   toTwips(used.yMax)};
    int bits = 1;
    for (const std::int32_t value : values) bits = std::max(bits, bitsForSigned(value));
    out.align();
    out.bits(static_cast<std::uint32_t>(bits), 5);
    for (const std::int32_t value : values) out.signedBits(value, bits);
    out.align();
}

void writeMatrix(BitWriter& out, const Matrix& matrix)
{
    const auto fixed = [](double value) {
        constexpr double kMax = 16383; // what 31 bits of 16.16 hold
        if (std::isnan(value)) return std::int32_t{0};
        return static_cast<std::int32_t>(std::lround(std::clamp(value, -kMax, kMax) * 65536));
    };
    const auto pair = [&](std::int32_t first, std::int32_t second) {
        const int bits = std::max(bitsForSigned(first), bitsForSigned(second));
        out.bits(static_cast<std::uint32_t>(bits), 5);
        out.signedBits(first, bits);
        out.signedBits(second, bits);
    };
    out.align();
    const bool scaled = matrix.a != 1 || matrix.d != 1, turned = matrix.b != 0 || matrix.c != 0;
    out.bits(scaled ? 1 : 0, 1);
    if (scaled) pair(fixed(matrix.a), fixed(matrix.d));
    out.bits(turned ? 1 : 0, 1);
    if (turned) pair(fixed(matrix.b), fixed(matrix.c));
    const std::int32_t x = toTwips(matrix.tx), y = toTwips(matrix.ty);
    if (x == 0 && y == 0)
        out.bits(0, 5);
    else
        pair(x, y);
    out.align();
}

void writeColorTransform(BitWriter& out, const ColorTransform& transform)
{
    std::array<std::int32_t, 4> multiply{}, add{};
    int bits = 1;
    for (std::size_t i = 0; i < 4; ++i) {
        // The field for the number of bits has four bits itself.
        multiply[i] =
            static_cast<std::int32_t>(std::lround(std::clamp(transform.multiply[i], -60.0, 60.0) * 256));
        add[i] = static_cast<std::int32_t>(std::lround(std::clamp(transform.add[i], -255.0, 255.0)));
        bits = std::max({bits, bitsForSigned(multiply[i]), bitsForSigned(add[i])});
    }
    bits = std::min(bits, 15);
    const bool hasAdd = transform.add != ColorTransform{}.add;
    const bool hasMultiply = transform.multiply != ColorTransform{}.multiply;
    out.align();
    out.bits(hasAdd ? 1 : 0, 1);
    out.bits(hasMultiply ? 1 : 0, 1);
    out.bits(static_cast<std::uint32_t>(bits), 4);
    if (hasMultiply) {
        for (const std::int32_t value : multiply) out.signedBits(value, bits);
    }
    if (hasAdd) {
        for (const std::int32_t value : add) out.signedBits(value, bits);
    }
    out.align();
}

void writeRgb(BitWriter& out, Rgba color)
{
    out.u8(color.r);
    out.u8(color.g);
    out.u8(color.b);
}

void writeRgba(BitWriter& out, Rgba color)
{
    writeRgb(out, color);
    out.u8(color.a);
}

namespace
{

void writeStops(BitWriter& out, const Filter& filter)
{
    out.u8(static_cast<std::uint32_t>(filter.stops.size()));
    for (const Filter::Stop& stop : filter.stops) writeRgba(out, stop.color);
    for (const Filter::Stop& stop : filter.stops) out.u8(stop.ratio);
}

void writeFilter(BitWriter& out, const Filter& filter)
{
    using Kind = Filter::Kind;
    const auto blur = [&] {
        out.fixed16(filter.blurX);
        out.fixed16(filter.blurY);
    };
    const auto angle = [&] {
        out.fixed16(filter.angleDegrees * std::numbers::pi / 180);
        out.fixed16(filter.distance);
    };
    const auto flags = [&](bool hasOnTop) {
        const int passBits = hasOnTop ? 4 : 5;
        out.bits(filter.inner ? 1 : 0, 1);
        out.bits(filter.knockout ? 1 : 0, 1);
        out.bits(filter.hideObject ? 0 : 1, 1);
        if (hasOnTop) out.bits(filter.onTop ? 1 : 0, 1);
        out.bits(static_cast<std::uint32_t>(filter.passes), passBits);
        out.align();
    };
    out.u8(static_cast<std::uint32_t>(filter.kind));
    switch (filter.kind) {
    case Kind::DropShadow:
        writeRgba(out, filter.color);
        blur();
        angle();
        out.fixed8(filter.strength);
        flags(false);
        break;
    case Kind::Blur:
        blur();
        out.u8(static_cast<std::uint32_t>(filter.passes) << 3);
        break;
    case Kind::Glow:
        writeRgba(out, filter.color);
        blur();
        out.fixed8(filter.strength);
        flags(false);
        break;
    case Kind::Bevel:
        // The highlight stands first in files, whatever the format's description says.
        writeRgba(out, filter.highlight);
        writeRgba(out, filter.color);
        blur();
        angle();
        out.fixed8(filter.strength);
        flags(true);
        break;
    case Kind::GradientGlow:
    case Kind::GradientBevel:
        writeStops(out, filter);
        blur();
        angle();
        out.fixed8(filter.strength);
        flags(true);
        break;
    case Kind::Convolution:
        out.u8(static_cast<std::uint32_t>(filter.columns));
        out.u8(static_cast<std::uint32_t>(filter.rows));
        out.float32(filter.divisor);
        out.float32(filter.bias);
        for (const double value : filter.matrix) out.float32(value);
        writeRgba(out, filter.color);
        out.u8((filter.clamp ? 2U : 0U) | (filter.preserveAlpha ? 1U : 0U));
        break;
    case Kind::ColorMatrix:
        for (const double value : filter.matrix) out.float32(value);
        break;
    }
}

} // namespace

void writeFilters(BitWriter& out, const std::vector<Filter>& filters)
{
    out.u8(static_cast<std::uint32_t>(filters.size()));
    for (const Filter& filter : filters) writeFilter(out, filter);
}

void writeSoundCue(BitWriter& out, const SoundCue& cue)
{
    const bool hasLoops = cue.loops != 1, hasEnvelope = !cue.envelope.empty();
    out.u8((cue.stop ? 0x20U : 0U) | (cue.noMultiple ? 0x10U : 0U) | (hasEnvelope ? 8U : 0U) |
           (hasLoops ? 4U : 0U) | (cue.outPoint44 ? 2U : 0U) | (cue.inPoint44 ? 1U : 0U));
    if (cue.inPoint44) out.u32(*cue.inPoint44);
    if (cue.outPoint44) out.u32(*cue.outPoint44);
    if (hasLoops) out.u16(static_cast<std::uint32_t>(cue.loops));
    if (!hasEnvelope) return;
    out.u8(static_cast<std::uint32_t>(cue.envelope.size()));
    for (const SoundCue::Envelope& point : cue.envelope) {
        out.u32(point.position44);
        out.u16(point.left);
        out.u16(point.right);
    }
}

} // namespace swfc::output
