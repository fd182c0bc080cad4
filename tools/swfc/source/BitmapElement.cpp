#include "swfc/source/MovieBuilder.h"

#include <QImage>

namespace swfc::source
{
namespace
{

using output::Tag;

constexpr int kMaxSide = 8191;

/// Premultiplied ARGB rows, as the lossless tag with alpha keeps them; without alpha the first byte is
/// unused.
std::vector<std::uint8_t> pixelRows(const QImage& image, bool alpha)
{
    const QImage argb =
        image.convertToFormat(alpha ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
    std::vector<std::uint8_t> rows;
    rows.reserve(static_cast<std::size_t>(argb.width()) * static_cast<std::size_t>(argb.height()) * 4);
    for (int y = 0; y < argb.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(argb.constScanLine(y));
        for (int x = 0; x < argb.width(); ++x) {
            rows.push_back(static_cast<std::uint8_t>(qAlpha(line[x])));
            rows.push_back(static_cast<std::uint8_t>(qRed(line[x])));
            rows.push_back(static_cast<std::uint8_t>(qGreen(line[x])));
            rows.push_back(static_cast<std::uint8_t>(qBlue(line[x])));
        }
    }
    return rows;
}

} // namespace

void MovieBuilder::bitmapElement(const Element& element)
{
    Attributes attributes(element, m_diagnostics);
    const auto id = define(attributes, CharacterKind::Bitmap);
    const auto content = readFile(attributes, "file");
    const bool hasMask = attributes.has("mask");
    const auto maskFile = hasMask ? readFile(attributes, "mask") : std::nullopt;
    if (!id || !content) return;
    const bool jpeg = content->size() > 2 && (*content)[0] == 0xFF && (*content)[1] == 0xD8;
    const QImage image = QImage::fromData(content->data(), static_cast<int>(content->size()));
    if (image.isNull() || image.width() > kMaxSide || image.height() > kMaxSide) {
        attributes.error("expected a PNG or JPEG picture of at most 8191 pixels a side");
        return;
    }
    m_bitmaps[*id] = {image.width(), image.height()};
    output::BitWriter out;
    out.u16(*id);
    if (jpeg && !hasMask) {
        out.append(*content);
        definitions().add(Tag::DefineBitsJpeg2, out);
        return;
    }
    if (jpeg) {
        const QImage mask =
            maskFile ? QImage::fromData(maskFile->data(), static_cast<int>(maskFile->size())) : QImage();
        if (mask.size() != image.size()) {
            attributes.error("expected a mask of the same size as the picture");
            return;
        }
        const QImage gray = mask.convertToFormat(QImage::Format_Grayscale8);
        std::vector<std::uint8_t> alpha;
        for (int y = 0; y < gray.height(); ++y)
            alpha.insert(alpha.end(), gray.constScanLine(y), gray.constScanLine(y) + gray.width());
        out.u32(static_cast<std::uint32_t>(content->size()));
        out.append(*content);
        out.append(output::deflated(alpha));
        definitions().add(Tag::DefineBitsJpeg3, out);
        return;
    }
    const bool alpha = image.hasAlphaChannel();
    constexpr int kFullColour = 5;
    out.u8(kFullColour);
    out.u16(static_cast<std::uint32_t>(image.width()));
    out.u16(static_cast<std::uint32_t>(image.height()));
    out.append(output::deflated(pixelRows(image, alpha)));
    definitions().add(alpha ? Tag::DefineBitsLossless2 : Tag::DefineBitsLossless, out);
}

} // namespace swfc::source
