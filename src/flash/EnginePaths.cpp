#include "base/FileNames.h"
#include "flash/Engine.h"
#include "flash/net/LocalLoader.h"

#include <QByteArray>
#include <QCryptographicHash>

// Where movies lie, and where what they keep is kept.
namespace flash
{

namespace
{

/// A folder name of its own for each movie, made of its path so that two movies of one name do not meet.
std::string storageName(const std::filesystem::path& movie)
{
    const QByteArray path = QByteArray::fromStdString(movie.string());
    return QCryptographicHash::hash(path, QCryptographicHash::Sha1).toHex().toStdString();
}

} // namespace

std::filesystem::path Engine::pathOf(const std::string& address)
{
    const std::string file = address.substr(0, address.rfind('?'));
    const bool isUrl = file.size() > 5 && QByteArray::fromRawData(file.data(), 5).toLower() == "file:";
    std::error_code ignored;
    return std::filesystem::absolute(isUrl ? net::pathFromUrl(file) : base::pathNamed(file).string(),
                                     ignored);
}

std::filesystem::path Engine::storageOf(const std::filesystem::path& storageFolder,
                                        const std::filesystem::path& movie)
{
    return storageFolder / storageName(movie);
}

} // namespace flash
