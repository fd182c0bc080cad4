#pragma once

#include "browser/BrowserState.h"

#include <QStringList>

namespace browser
{

struct FolderEntry {
    QString name;
    bool isFolder;
    qint64 rank = 0; ///< by which it comes before those of less, whatever the names
};

/// Every entry of a folder but the hidden ones, by name as the user's language orders them, numbers as
/// numbers; or the latest or largest first. The way up, "..", comes before all unless the folder is a root.
/// Empty when the folder cannot be read.
std::vector<FolderEntry> listFolder(const QString& folder, Order order = Order::Name);

/// Looks into a folder, no further than a look takes.
/// @param cachePath where thumbnails are kept, with its separator
FolderContent contentOf(const QString& folder, const QString& cachePath);

/// @returns the folder with a separator at its end; one that ends in ".." is replaced by its parent. Both
/// kinds of separators are understood. Empty stays empty.
QString normalisedFolder(const QString& folder);

/// The browser's items among the entries: all folders first, then movies and projectors as they come, told by
/// the last four characters of their names. A folder that is called like a movie is listed as both, on
/// purpose.
/// @param cachePath where thumbnails are kept, with its separator
std::vector<BrowseItem> itemsOf(const std::vector<FolderEntry>& entries, const QString& folder,
                                const QString& cachePath);

} // namespace browser
