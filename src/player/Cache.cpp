#include "player/Cache.h"

#include <QDir>

namespace player
{

void CleanCache(const QString& cachePath, int mode)
{
    const QStringList patterns = mode == 1   ? QStringList{"*.swf", "*.exe", "*.tmp"}
                                 : mode == 2 ? QStringList{"*"}
                                 : mode == 3 ? QStringList{"*.jpg"}
                                             : QStringList();
    if (patterns.isEmpty() || cachePath.isEmpty()) return;
    QDir folder(cachePath);
    for (const QString& name : folder.entryList(patterns, QDir::Files | QDir::Hidden | QDir::System))
        folder.remove(name);
}

} // namespace player
