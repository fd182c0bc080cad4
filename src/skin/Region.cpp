#include "skin/Region.h"

namespace skin
{
namespace
{

/// Runs of pixels for which `belongs` holds, in the order that a region keeps its rectangles in: a run that
/// is the same as one in the row above grows that one, so that most regions stay short.
template <class Belongs>
QRegion regionOfRuns(const QImage& picture, Belongs belongs)
{
    const QImage image = picture.format() == QImage::Format_RGB32 || picture.format() == QImage::Format_ARGB32
                             ? picture
                             : picture.convertToFormat(QImage::Format_ARGB32);
    QRegion region;
    std::vector<QRect> band;     // runs of the rows from bandTop to the row before
    std::vector<QRect> finished; // sorted by row, then by column; bands of equal runs are one
    std::vector<QRect> row;
    for (int y = 0; y < image.height(); ++y) {
        row.clear();
        const auto* pixels = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < image.width();) {
            while (x < image.width() && !belongs(pixels[x])) ++x;
            if (x == image.width()) break;
            const int start = x;
            while (x < image.width() && belongs(pixels[x])) ++x;
            row.emplace_back(start, y, x - start, 1);
        }
        const bool same =
            row.size() == band.size() &&
            std::equal(row.begin(), row.end(), band.begin(), [](const QRect& a, const QRect& b) {
                return a.left() == b.left() && a.right() == b.right();
            });
        if (same) {
            for (QRect& run : band) run.setBottom(y);
        } else {
            finished.insert(finished.end(), band.begin(), band.end());
            band = row;
        }
    }
    finished.insert(finished.end(), band.begin(), band.end());
    region.setRects(finished.data(), static_cast<int>(finished.size()));
    return region;
}

auto hasColour(SkinColour key)
{
    const QRgb wanted = toColor(key).rgb();
    return [wanted](QRgb pixel) { return (pixel | 0xFF000000U) == wanted; };
}

} // namespace

QRegion GetSolidRegion(const QImage& picture, SkinColour key)
{
    return regionOfRuns(picture, [isKey = hasColour(key)](QRgb pixel) { return !isKey(pixel); });
}

QRegion GetHoleRegion(const QImage& picture, SkinColour key) { return regionOfRuns(picture, hasColour(key)); }

QRegion windowShape(QSize innerSize, const std::vector<MaskPlace>& masks)
{
    QRegion shape(QRect(QPoint(0, 0), innerSize));
    for (const MaskPlace& mask : masks) shape ^= mask.holes.translated(mask.absoluteLeft, mask.absoluteTop);
    return shape;
}

} // namespace skin
