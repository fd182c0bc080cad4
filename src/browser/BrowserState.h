#pragma once

#include <QString>

#include <vector>

namespace browser
{

/// What an item is, by the numbers that the page knows.
enum class ItemKind { Movie = 1, Projector = 2, Folder = 3, EmptySlot = 4 };

struct BrowseItem {
    QString name; ///< as the folder lists it, without path
    ItemKind kind = ItemKind::Movie;
    QString thumbnail; ///< where its picture is or will be; empty for folders
};

/// Where the media browser stands. One for the program; a test makes its own. Folder and page come from the
/// settings and go back there, the rest is made by each scan.
struct BrowserState {
    QString folder;  ///< with its closing separator once it was scanned
    qint32 page = 0; ///< counted from 0; may be out of range until the page is shown
    qint32 totalPages = 0;
    QString query; ///< what all pages of the folder have in common
    std::vector<BrowseItem> items;
    bool skip = false; ///< the user has cancelled the making of thumbnails
};

} // namespace browser
