#pragma once

#include "browser/BrowserState.h"

namespace browser
{

/// Items on a page of the media browser.
inline constexpr qint32 kItemsPerPage = 8;

// The query of browse.swf, the page that draws the browser:
//   Folder       the folder, with its closing separator
//   Cache        what stands before an item's name in the path of its thumbnail; ".jpg" stands behind it
//   Status       a line for the user
//   TotalPages, curPage   as numbers, curPage counted from 1
//   noanim       "True": nothing moves
//   shot1_ItemName .. shot8_ItemName, shot1_ItemType ..   name and kind: "1" movie, "2" projector, "3"
//   folder,
//                "4" nothing
// All texts go through URLEncode, which knows the letters of windows-1251 only and spells some of them its
// own way. What a reader of plain UTF-8 escapes would not get back whole is told a second time behind all
// this, in plain UTF-8 escapes, so that the page's root has it as a variable: FolderText, CacheText,
// shotN_ItemText. The page prefers these. A thumbnail that lies elsewhere than Cache + name + ".jpg" (a name
// too long for the cache) is told by shotN_ItemShot, its whole path. shotN_ItemFailed=1 says that a movie
// gave no picture; shotN_ItemCount how many movies a folder has, and shotN_ItemShots the thumbnails of some,
// one a line. order=date and order=size say what the items are ordered by
// when it is not their names. The page answers by fscommand:
// MeowSel with folder and name of a movie, MeowSearch with folder and name of a folder, or with nothing, to
// look again; MeowBrowse to choose a folder; MeowOrder with another order; MeowFirstPage, MeowBackPage,
// MeowNextPage, MeowLastPage.

/// The part that all pages of a folder have in common.
/// @param cachePrefix the cache folder and the folder's own name in it
QString folderQuery(const QString& folder, const QString& cachePrefix, int mediaCount, qint32 totalPages);

/// Says of a movie whether it gave a picture. @param slot counted from 1
QString signQuery(qint32 slot, bool hasFailed);
/// Says what is in a folder. @param slot counted from 1
QString contentQuery(qint32 slot, const FolderContent& content);
/// The part that follows it for one page. @param page counted from 0
QString pageQuery(const BrowserState& state, const QString& cachePrefix, const QString& noAnimation);

} // namespace browser
