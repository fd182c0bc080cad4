#include "flash/swf/Picture.h"

#include "flash/guard/Holding.h"

#include <QBuffer>
#include <QImage>
#include <QImageReader>

#include <algorithm>
#include <cstring>
#include <limits>

namespace flash::swf
{
namespace
{

bool startsWith(base::Bytes data, std::string_view signature)
{
    return data.size() >= signature.size() &&
           std::memcmp(data.data(), signature.data(), signature.size()) == 0;
}

base::Result<Bitmap> decodeWithQt(base::Bytes data, Budget& budget)
{
    if (data.size() > static_cast<std::size_t>(std::numeric_limits<int>::max()))
        return base::fail(base::ErrorCode::LimitReached, "picture of more than 2 GB");
    QByteArray bytes =
        QByteArray::fromRawData(reinterpret_cast<const char*>(data.data()), static_cast<int>(data.size()));
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    const QSize stated = reader.size();
    if (!stated.isValid())
        return base::fail(base::ErrorCode::Malformed,
                          "picture without a size: " + reader.errorString().toStdString());
    CHECK_RESULT(takePixels(budget, static_cast<std::uint64_t>(stated.width()),
                            static_cast<std::uint64_t>(stated.height())));
    const QImage image = reader.read().convertToFormat(QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return base::fail(base::ErrorCode::Malformed,
                          "damaged picture: " + reader.errorString().toStdString());
    Bitmap bitmap;
    bitmap.width = image.width();
    bitmap.height = image.height();
    bitmap.pixels.reserve(static_cast<std::size_t>(image.width()) * static_cast<std::size_t>(image.height()));
    for (int y = 0; y < image.height(); ++y) {
        const auto* row = reinterpret_cast<const std::uint32_t*>(image.constScanLine(y));
        bitmap.pixels.insert(bitmap.pixels.end(), row, row + image.width());
    }
    bitmap.opaque = std::all_of(bitmap.pixels.begin(), bitmap.pixels.end(),
                                [](std::uint32_t pixel) { return pixel >> 24U == 0xFFU; });
    return bitmap;
}

} // namespace

base::Result<void> takePixels(Budget& budget, std::uint64_t width, std::uint64_t height)
{
    if (width == 0 || height == 0) return base::fail(base::ErrorCode::Malformed, "picture without pixels");
    const std::uint64_t bytes = width * height * sizeof(std::uint32_t);
    // Asked for first, so that one monster does not cost the pictures behind it their share.
    if (width * height > kMaxPicturePixels || bytes > budget.left()) {
        if (width * height <= kMaxPicturePixels) budget.lack();
        return base::fail(base::ErrorCode::LimitReached, "picture of " + std::to_string(width) + " x " +
                                                             std::to_string(height) + " pixels is too big");
    }
    budget.take(bytes);
    return {};
}

bool isPngOrGif(base::Bytes data)
{
    return startsWith(data, "\x89PNG\r\n\x1A\n") || startsWith(data, "GIF87a") || startsWith(data, "GIF89a");
}

base::Result<Bitmap> decodeImage(base::Bytes tables, base::Bytes data, Budget& budget)
{
    return isPngOrGif(data) ? decodeWithQt(data, budget) : decodeJpeg(tables, data, budget);
}

base::Result<std::shared_ptr<const Bitmap>> decodePicture(base::Bytes file, const ParseLimits& limits)
{
    // A movie may load anything; what is none of the three kinds is not to be searched for JPEG segments.
    if (!isPngOrGif(file) && !startsWith(file, "\xFF\xD8") && !startsWith(file, "\xFF\xD9\xFF\xD8"))
        return base::fail(base::ErrorCode::Unsupported, "not a JPEG, PNG or GIF picture", 0);
    struct HeldBitmap : Bitmap {
        guard::Holding holding;
    };
    const std::uint64_t room = guard::roomToHold();
    Budget budget(std::min(limits.bitmapBytes, room));
    auto decoded = decodeImage({}, file, budget);
    if (!decoded) {
        if (budget.hasLacked() && room < limits.bitmapBytes) guard::refuseToHold();
        return tl::make_unexpected(std::move(decoded).error());
    }
    auto bitmap = std::make_shared<HeldBitmap>();
    static_cast<Bitmap&>(*bitmap) = std::move(*decoded);
    auto holding = guard::Holding::take(budget.taken());
    if (!holding)
        return base::fail(base::ErrorCode::LimitReached, "what is loaded together is more than may be held");
    bitmap->holding = std::move(*holding);
    return std::shared_ptr<const Bitmap>(std::move(bitmap));
}

} // namespace flash::swf
