#include "core/Files.h"

#include "base/FileNames.h"
#include "core/Application.h"

#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

namespace core
{
namespace
{

std::optional<struct stat> statusOf(const QString& path)
{
    struct stat status {
    };
    if (::stat(filePath(path).c_str(), &status) != 0) return {};
    return status;
}

} // namespace

QString fileName(const QByteArray& bytes)
{
    return QString::fromStdString(
        base::textOfPath(std::string_view(bytes.data(), static_cast<std::size_t>(bytes.size()))));
}

QString localFile(const QUrl& address)
{
    const QString path = address.toLocalFile();
    // Only bytes that are no UTF-8 stay escaped in an address; decoding puts this in their place.
    if (!path.contains(QChar::ReplacementCharacter)) return path;
    return fileName(QByteArray::fromPercentEncoding(address.path(QUrl::FullyEncoded).toUtf8()));
}

bool isFolder(const QString& path)
{
    const auto status = statusOf(path);
    return status && S_ISDIR(status->st_mode);
}

bool isAnything(const QString& path) { return statusOf(path).has_value(); }

bool isReadable(const QString& path) { return ::access(filePath(path).c_str(), R_OK) == 0; }

qint64 fileSize(const QString& path)
{
    const auto status = statusOf(path);
    return status ? status->st_size : 0;
}

QDateTime fileChanged(const QString& path)
{
    const auto status = statusOf(path);
    if (!status) return {};
    constexpr qint64 kMs = 1000, kNsInMs = 1000000;
    return QDateTime::fromMSecsSinceEpoch(status->st_mtim.tv_sec * kMs + status->st_mtim.tv_nsec / kNsInMs);
}

std::optional<int> whyNoFile(const QString& path)
{
    errno = 0;
    const auto status = statusOf(path);
    // A folder on the way that is a file, or links that lead in a circle: no such file is there.
    if (!status) return errno == ENOTDIR || errno == ELOOP ? ENOENT : errno;
    return S_ISREG(status->st_mode) ? std::nullopt : std::optional(ENOENT);
}

} // namespace core
