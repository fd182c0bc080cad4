#include "skin/SkinFiles.h"

#include "base/Files.h"
#include "base/TextCodes.h"
#include "core/Application.h"

#include <QDir>
#include <QFileInfo>
#include <QImageReader>

#include <algorithm>

namespace skin
{
namespace
{

constexpr qint64 kMaxImageBytes = 64LL << 20;
constexpr std::uint64_t kMaxScriptBytes = 16ULL << 20;

QString findEntry(const QDir& folder, const QString& name)
{
    if (QFileInfo::exists(folder.filePath(name))) return name;
    // System files are listed, hidden ones too: what a name means must not depend on its attributes.
    const QStringList entries = folder.entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    for (const QString& entry : entries)
        if (entry.compare(name, Qt::CaseInsensitive) == 0) return entry;
    return {};
}

} // namespace

QString findFile(const QString& folder, const QString& name)
{
    const QStringList parts = QString(name).replace('\\', '/').split('/', Qt::SkipEmptyParts);
    QString path = folder;
    for (const QString& part : parts) {
        if (part == "..") return {};
        if (part == ".") continue;
        const QString entry = findEntry(QDir(path), part);
        if (entry.isEmpty()) return {};
        path = QDir(path).filePath(entry);
    }
    const QFileInfo found(path);
    if (!found.isFile()) return {};
    // A link may stand for a file of the skin's own, not for one elsewhere.
    const QString root = QFileInfo(folder).canonicalFilePath();
    return found.canonicalFilePath().startsWith(root + '/') ? path : QString();
}

base::Result<QImage> loadImage(const QString& folder, const QString& name, qint64 mostPixels)
{
    const QString path = findFile(folder, name);
    if (path.isEmpty()) return base::fail(base::ErrorCode::NotFound, name.toStdString() + ": no such image");
    if (QFileInfo(path).size() > kMaxImageBytes)
        return base::fail(base::ErrorCode::LimitReached,
                          name.toStdString() + ": image file larger than 64 MiB");
    QImageReader reader(path);
    reader.setDecideFormatFromContent(true);
    constexpr const char* kKinds[] = {"bmp", "gif", "jpeg", "png"};
    const QByteArray kind = reader.format();
    if (!kind.isEmpty() &&
        std::none_of(std::begin(kKinds), std::end(kKinds), [&](const char* known) { return kind == known; }))
        return base::fail(base::ErrorCode::Unsupported,
                          name.toStdString() + ": neither BMP, GIF, JPEG nor PNG");
    const QSize size = reader.size();
    if (qint64{size.width()} * size.height() > std::min(mostPixels, kMaxPixels))
        return base::fail(base::ErrorCode::LimitReached, name.toStdString() + ": image of too many pixels");
    QImage image = reader.read();
    if (image.isNull())
        return base::fail(base::ErrorCode::Malformed,
                          name.toStdString() + ": " + reader.errorString().toStdString());
    // One of the two formats that paint fastest, and masks need one format to read.
    image.convertTo(image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
    image.setDevicePixelRatio(1);
    return image;
}

QString ReadTextFile(const QString& path)
{
    const auto bytes = base::readFile(core::filePath(path), kMaxScriptBytes);
    if (!bytes) return {};
    std::string_view text(reinterpret_cast<const char*>(bytes->data()), bytes->size());
    constexpr std::string_view kMark = "\xEF\xBB\xBF";
    if (text.substr(0, kMark.size()) == kMark) text.remove_prefix(kMark.size());
    const std::string utf8 = base::isUtf8(text) ? std::string(text) : base::utf8FromAnsi(text);
    QStringList lines = QString::fromStdString(utf8).replace("\r\n", "\n").replace('\r', '\n').split('\n');
    // What follows the last line's break is no line.
    if (lines.last().isEmpty()) lines.removeLast();
    QString result;
    for (const QString& line : lines) result += "\r\n" + line;
    return result;
}

} // namespace skin
