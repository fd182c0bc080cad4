#include "browser/BrowseQuery.h"

#include "browser/Texts.h"
#include "media/UrlEncode.h"

#include <QUrl>

namespace browser
{
namespace
{

/// @returns "" when a plain reader of what URLEncode writes gets the text itself.
QString unlessPlain(const QString& parameter, const QString& text)
{
    if (QUrl::fromPercentEncoding(media::URLEncode(text).toUtf8()) == text) return {};
    return "&" + parameter + "=" + QString::fromLatin1(QUrl::toPercentEncoding(text));
}

QString kindNumber(ItemKind kind) { return media::URLEncode(QString::number(static_cast<int>(kind))); }

} // namespace

QString folderQuery(const QString& folder, const QString& cachePrefix, int mediaCount, qint32 totalPages)
{
    return "?Folder=" + media::URLEncode(folder) + "&Cache=" + media::URLEncode(cachePrefix) +
           "&Status=" + media::URLEncode(texts::kFound + QString::number(mediaCount)) +
           "&TotalPages=" + QString::number(totalPages);
}

QString signQuery(qint32 slot, bool hasFailed)
{
    return hasFailed ? QString("&shot%1_ItemFailed=1").arg(slot) : QString();
}

QString contentQuery(qint32 slot, const FolderContent& content)
{
    if (content.mediaCount == 0) return {};
    QString query = QString("&shot%1_ItemCount=%2").arg(slot).arg(content.mediaCount);
    if (!content.thumbnails.isEmpty())
        query += QString("&shot%1_ItemShots=").arg(slot) +
                 QString::fromLatin1(QUrl::toPercentEncoding(content.thumbnails.join('\n')));
    return query;
}

QString pageQuery(const BrowserState& state, const QString& cachePrefix, const QString& noAnimation)
{
    QString query = "&curPage=" + QString::number(state.page + 1) + "&noanim=" + noAnimation;
    QString second = unlessPlain("FolderText", state.folder) + unlessPlain("CacheText", cachePrefix);
    for (qint32 slot = 1; slot <= kItemsPerPage; ++slot) {
        const QString name = "shot" + QString::number(slot) + "_Item";
        const auto index = static_cast<std::size_t>(state.page * kItemsPerPage + slot - 1);
        if (index >= state.items.size()) {
            query += "&" + name + "Name=&" + name + "Type=" + kindNumber(ItemKind::EmptySlot);
            continue;
        }
        const BrowseItem& item = state.items[index];
        query +=
            "&" + name + "Name=" + media::URLEncode(item.name) + "&" + name + "Type=" + kindNumber(item.kind);
        second += unlessPlain(name + "Text", item.name);
        if (item.kind != ItemKind::Folder && item.thumbnail != cachePrefix + item.name + ".jpg")
            second += "&" + name + "Shot=" + QString::fromLatin1(QUrl::toPercentEncoding(item.thumbnail));
    }
    return query + second;
}

} // namespace browser
