#include "media/Backups.h"

#include "base/Files.h"
#include "core/Application.h"

#include <QFileInfo>

namespace media
{
namespace
{

constexpr const char* kList = "backups.txt"; // UTF-8, a name a line
constexpr std::uint64_t kMaxListBytes = 16U << 20U;

QStringList listed(const QString& cachePath)
{
    const auto bytes = base::readFile(core::filePath(cachePath + kList), kMaxListBytes);
    if (!bytes) return {};
    const auto size = static_cast<qsizetype>(bytes->size());
    return QString::fromUtf8(reinterpret_cast<const char*>(bytes->data()), size)
        .split('\n', Qt::SkipEmptyParts);
}

} // namespace

QStringList backups(const QString& cachePath)
{
    QStringList names = listed(cachePath);
    names.removeIf([&cachePath](const QString& name) { return !QFileInfo::exists(cachePath + name); });
    if (!names.isEmpty()) names.append(kList);
    return names;
}

base::Result<void> noteBackup(const QString& cachePath, const QString& name)
{
    QStringList names = listed(cachePath);
    if (names.contains(name)) return {};
    names.removeIf([&cachePath](const QString& known) { return !QFileInfo::exists(cachePath + known); });
    names.append(name);
    const QByteArray text = (names.join('\n') + '\n').toUtf8();
    return base::replaceFile(core::filePath(cachePath + kList),
                             base::Bytes(reinterpret_cast<const std::uint8_t*>(text.constData()),
                                         static_cast<std::size_t>(text.size())));
}

} // namespace media
