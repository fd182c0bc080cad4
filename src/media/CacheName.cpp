#include "media/CacheName.h"

#include <QCryptographicHash>

namespace media
{
namespace
{

/// File systems take 255 bytes; a temporary file beside the target needs 12 of them.
constexpr int kLongestBytes = 240;

QString shortened(const QString& name)
{
    const QByteArray whole = name.toUtf8();
    const QByteArray digest = QCryptographicHash::hash(whole, QCryptographicHash::Sha1).toHex().left(16);
    qsizetype first = whole.size() - (kLongestBytes - digest.size());
    while ((whole[first] & 0xC0) == 0x80) ++first; // not in the middle of a character
    return QString::fromUtf8(digest + whole.mid(first));
}

} // namespace

QString CacheName(const QString& path, const QString& extension)
{
    QString name = path;
    // One after the other over the whole text, in this order: the result depends on it.
    name.replace(":\\", "@").replace("\\\\", "#").replace("//", "#").replace("\\", "#").replace("/", "#");
    name += extension;
    return name.toUtf8().size() > kLongestBytes ? shortened(name) : name;
}

} // namespace media
