#pragma once

#include <QString>
#include <QStringList>

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

/// What a folder's tile tells of what is in it.
struct FolderContent {
    int mediaCount = 0;
    QStringList thumbnails; ///< of some of its movies, as far as there are any
};

/// What the items of each kind are ordered by: names up, the latest and the largest first.
enum class Order { Name, Date, Size };
/// In the words of the settings and of the page: "name", "date", "size". What is none of them is the first.
Order orderNamed(const QString& word);
QString wordOf(Order order);

/// Where the media browser stands. One for the program; a test makes its own. Folder and page come from the
/// settings and go back there, the rest is made by each scan.
struct BrowserState {
    QString folder;  ///< with its closing separator once it was scanned
    qint32 page = 0; ///< counted from 0; may be out of range until the page is shown
    qint32 totalPages = 0;
    QString query; ///< what all pages of the folder have in common
    std::vector<BrowseItem> items;
    Order order = Order::Name;
    bool skip = false; ///< the user has cancelled the making of thumbnails
};

} // namespace browser
