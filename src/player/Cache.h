#pragma once

#include <QString>

namespace player
{

/// Deletes files of the cache folder: 0 none, 1 converted and extracted movies and header copies, 2 all, 3
/// thumbnails; any other mode none. What cannot be deleted stays, and so do the copies of files that a
/// conversion replaced: they are all that is left of them.
/// @returns how many files were deleted
int CleanCache(const QString& cachePath, int mode);

} // namespace player
