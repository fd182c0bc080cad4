#include "platform/UserFolders.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace platform
{
namespace
{

struct Place {
    const char* variable;
    const char* belowHome;
};

Place placeOf(UserFolder folder)
{
    switch (folder) {
    case UserFolder::Settings: return {"XDG_CONFIG_HOME", ".config"};
    case UserFolder::Cache: return {"XDG_CACHE_HOME", ".cache"};
    case UserFolder::State: return {"XDG_STATE_HOME", ".local/state"};
    case UserFolder::Data: return {"XDG_DATA_HOME", ".local/share"};
    }
    return {"", ""};
}

} // namespace

QString userFolder(UserFolder folder)
{
    const Place place = placeOf(folder);
    const QString chosen = QFile::decodeName(qgetenv(place.variable));
    const QString path = QDir::isAbsolutePath(chosen) ? chosen : QDir::homePath() + '/' + place.belowHome;
    return QDir::cleanPath(path) + '/';
}

QString userMediaFolder()
{
    const QString videos = QStandardPaths::writableLocation(QStandardPaths::MoviesLocation);
    const bool isThere = !videos.isEmpty() && QFileInfo(videos).isDir();
    return QDir::cleanPath(isThere ? videos : QDir::homePath()) + '/';
}

} // namespace platform
