#include "flash/swf/BodyReader.h"

#include <algorithm>

namespace flash::swf
{

base::Result<void> BodyReader::check() const
{
    if (!m_overrun) return {};
    return base::fail(base::ErrorCode::Truncated,
                      "ends early, after " + std::to_string(m_bytes.size()) + " bytes",
                      m_offset + m_bytes.size());
}

void BodyReader::seek(std::size_t position)
{
    if (m_overrun) return;
    if (position > m_bytes.size()) {
        fail();
        return;
    }
    m_bit = position << 3U;
}

double BodyReader::f32()
{
    const auto value = std::bit_cast<float>(u32());
    return std::isfinite(value) ? value : 0;
}

base::Bytes BodyReader::bytes(std::size_t count)
{
    if (m_overrun || count > remaining()) {
        fail();
        return {};
    }
    const base::Bytes found = m_bytes.subspan(position(), count);
    m_bit = (position() + count) << 3U;
    return found;
}

std::string BodyReader::string()
{
    if (m_overrun) return {};
    const base::Bytes ahead = m_bytes.subspan(position());
    const auto end = std::find(ahead.begin(), ahead.end(), std::uint8_t{0});
    std::string text(ahead.begin(), end);
    m_bit = (position() + text.size() + (end == ahead.end() ? 0 : 1)) << 3U;
    return text;
}

Rgba BodyReader::rgb()
{
    const base::Bytes c = bytes(3);
    return c.empty() ? Rgba{} : Rgba{c[0], c[1], c[2], 255};
}

Rgba BodyReader::rgba()
{
    const base::Bytes c = bytes(4);
    return c.empty() ? Rgba{} : Rgba{c[0], c[1], c[2], c[3]};
}

Rect BodyReader::rect()
{
    alignToByte();
    const unsigned width = bits(5);
    Rect found;
    found.xMin = clampCoordinate(signedBits(width));
    found.xMax = clampCoordinate(signedBits(width));
    found.yMin = clampCoordinate(signedBits(width));
    found.yMax = clampCoordinate(signedBits(width));
    return found;
}

Matrix BodyReader::matrix()
{
    alignToByte();
    Matrix found;
    if (flag()) {
        const unsigned width = bits(5);
        found.a = fixedBits(width);
        found.d = fixedBits(width);
    }
    if (flag()) {
        const unsigned width = bits(5);
        found.b = fixedBits(width);
        found.c = fixedBits(width);
    }
    const unsigned width = bits(5);
    found.tx = signedBits(width);
    found.ty = signedBits(width);
    return found;
}

ColorTransform BodyReader::colorTransform(bool withAlpha)
{
    alignToByte();
    const bool hasAddends = flag();
    const bool hasMultipliers = flag();
    const unsigned width = bits(4);
    const auto term = [&] { return static_cast<std::int16_t>(signedBits(width)); };
    ColorTransform found;
    if (hasMultipliers) {
        found.redMul = term();
        found.greenMul = term();
        found.blueMul = term();
        if (withAlpha) found.alphaMul = term();
    }
    if (hasAddends) {
        found.redAdd = term();
        found.greenAdd = term();
        found.blueAdd = term();
        if (withAlpha) found.alphaAdd = term();
    }
    return found;
}

} // namespace flash::swf
