#include "player/Cache.h"

#include "media/Backups.h"

#include <QDir>

namespace player
{

int CleanCache(const QString& cachePath, int mode)
{
    const QStringList patterns = mode == 1   ? QStringList{"*.swf", "*.exe", "*.tmp"}
                                 : mode == 2 ? QStringList{"*"}
                                 : mode == 3 ? QStringList{"*.jpg"}
                                             : QStringList();
    if (patterns.isEmpty() || cachePath.isEmpty()) return 0;
    QDir folder(cachePath);
    const QStringList backups = media::backups(cachePath);
    int removed = 0;
    for (const QString& name : folder.entryList(patterns, QDir::Files | QDir::Hidden | QDir::System)) {
        if (!backups.contains(name) && folder.remove(name)) ++removed;
    }
    return removed;
}

} // namespace player
