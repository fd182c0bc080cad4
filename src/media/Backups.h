#pragma once

#include "base/Result.h"

#include <QStringList>

namespace media
{

// The cache holds what can be made anew, but for the copies of files that a conversion replaced. They lie
// among the rest under names like the rest's; a list in the cache tells which they are.

/// @returns the names in the cache folder of the copies that are there, and of the list itself; empty when
///          there are none
QStringList backups(const QString& cachePath);

/// Notes that a file of the cache is such a copy. To be called before it is written.
base::Result<void> noteBackup(const QString& cachePath, const QString& name);

} // namespace media
