#pragma once

#include <QString>

namespace media
{

/// Maps a path to one flat file name for the cache folder: ":\" becomes "@", separators of either kind "#",
/// and the extension is appended. C:\Movies\intro.swf with ".tmp" gives C@Movies#intro.swf.tmp. Two paths
/// that flatten to the same name share it. A name that would be too long for the file system keeps its end,
/// and a digest stands for its start.
QString CacheName(const QString& path, const QString& extension);

} // namespace media
