#include "Picture.h"

#include "base/Files.h"

#include <QBuffer>
#include <QImage>

namespace flashrun
{

base::Result<void> writePng(const QImage& picture, const std::filesystem::path& file)
{
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    if (!picture.convertToFormat(QImage::Format_RGB32).save(&buffer, "PNG")) {
        return base::fail(base::ErrorCode::IoFailure, file.string() + ": the picture cannot be encoded");
    }
    return base::replaceFile(file, base::Bytes(reinterpret_cast<const std::uint8_t*>(png.constData()),
                                               static_cast<std::size_t>(png.size())));
}

} // namespace flashrun
