#include "browser/cDIBSection.h"

#include "browser/Resample.h"

#include <algorithm>
#include <random>

namespace browser
{
namespace
{

std::size_t lineBytes(int width) { return (3 * static_cast<std::size_t>(width) + 3) & ~std::size_t{3}; }

} // namespace

bool cDIBSection::CreateDIB(int width, int height, BitmapInfoHeader& header, std::vector<std::uint8_t>& bits)
{
    header = {};
    bits.clear();
    if (width < 1 || height < 1 || std::int64_t{width} * height > kMaxPixels) return false;
    header.biWidth = width;
    header.biHeight = height;
    const std::size_t bytes = lineBytes(width) * static_cast<std::size_t>(height);
    header.biSizeImage = static_cast<std::uint32_t>(bytes);
    bits.resize(bytes);
    return true;
}

bool cDIBSection::Create(int width, int height) { return CreateDIB(width, height, m_header, m_bits); }

bool cDIBSection::CreateFromPicture(const QImage& picture)
{
    if (!Create(picture.width(), picture.height())) return false;
    LoadPictureBlt(picture);
    return true;
}

void cDIBSection::ClearUp()
{
    m_header = {};
    m_bits.clear();
}

const std::uint8_t* cDIBSection::row(int y) const
{
    return m_bits.data() + lineBytes(Width()) * static_cast<std::size_t>(Height() - 1 - y);
}

void cDIBSection::LoadPictureBlt(const QImage& source, int x, int y, int width, int height,
                                 QPainter::CompositionMode operation)
{
    if (m_bits.empty()) return;
    QImage part = source;
    part.setDevicePixelRatio(1);
    const QSize size(width < 0 ? Width() : std::min(width, Width()),
                     height < 0 ? Height() : std::min(height, Height()));
    QImage whole = toImage();
    {
        QPainter painter(&whole);
        painter.setCompositionMode(operation);
        painter.drawImage(QPoint(0, 0), part, QRect(QPoint(x, y), size));
    }
    for (int line = 0; line < Height(); ++line) {
        std::copy_n(whole.constScanLine(line), 3 * static_cast<std::size_t>(Width()),
                    m_bits.data() + lineBytes(Width()) * static_cast<std::size_t>(Height() - 1 - line));
    }
}

void cDIBSection::PaintPicture(QPainter& target, int x, int y, int width, int height, int sourceX,
                               int sourceY, QPainter::CompositionMode operation) const
{
    if (m_bits.empty()) return;
    const QSize size(width < 0 ? Width() : width, height < 0 ? Height() : height);
    target.save();
    target.setCompositionMode(operation);
    target.drawImage(QPoint(x, y), toImage(), QRect(QPoint(sourceX, sourceY), size));
    target.restore();
}

QImage cDIBSection::toImage() const
{
    if (m_bits.empty()) return {};
    QImage image(Width(), Height(), QImage::Format_BGR888);
    for (int y = 0; y < Height(); ++y)
        std::copy_n(row(y), 3 * static_cast<std::size_t>(Width()), image.scanLine(y));
    return image;
}

void cDIBSection::RandomiseBits(std::uint32_t seed)
{
    std::minstd_rand random(seed);
    for (std::uint8_t& byte : m_bits) byte = static_cast<std::uint8_t>(random() >> 8U);
}

bool cDIBSection::Resample(const cDIBSection& source)
{
    if (m_bits.empty() || source.m_bits.empty()) return false;
    if (&source == this) return Resample(cDIBSection(source));
    resampleBilinear({source.m_bits.data(), source.Width(), source.Height(), lineBytes(source.Width())},
                     {m_bits.data(), Width(), Height(), lineBytes(Width())});
    return true;
}

} // namespace browser
