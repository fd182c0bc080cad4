#include "browser/MediaBrowser.h"

#include "base/Failure.h"
#include "browser/BrowseQuery.h"
#include "browser/FolderScan.h"
#include "browser/Texts.h"
#include "browser/frmInfo.h"
#include "core/Files.h"
#include "media/CacheName.h"

#include <QDir>
#include <QScopedValueRollback>

namespace browser
{

MediaBrowser::MediaBrowser(core::Application& application, BrowserHost& host, BrowserState& state)
    : m_application(application), m_host(host), m_state(state), m_thumbnails(application, host, state)
{
    if (m_state.folder.isEmpty()) m_state.folder = application.AppPath;
}

void MediaBrowser::log(const QString& text)
{
    try {
        m_application.LogEvent(text);
    } catch (const base::Failure&) {
        // A journal that cannot be written is no reason not to look at movies.
    }
}

void MediaBrowser::BrowseMedia()
{
    log({});
    log(texts::kLogBrowse);
    m_host.SetStatus(texts::kReady);
    NewMediaBrowse(m_state.folder);
}

void MediaBrowser::NewMediaBrowse(const QString& folder)
{
    // Events are let through while thumbnails are made, and a movie may go on asking meanwhile.
    if (m_busy) return;
    const QScopedValueRollback busy(m_busy, true);
    log({});
    log(texts::kLogNewBrowse + core::HtmlEscape(folder) + ")");
    scan(folder);
    makeThumbnails();
    if (!m_host.hasEnded()) ShowBrowsePage();
}

void MediaBrowser::scan(const QString& folder)
{
    const QString wanted = normalisedFolder(folder);
    m_state.folder = core::isFolder(wanted) ? wanted : normalisedFolder(m_state.folder);
    m_state.items.clear();
    m_missing.clear();
    m_host.SetStatus(texts::kSearching);

    m_state.items =
        itemsOf(listFolder(m_state.folder, m_state.order), m_state.folder, m_application.CachePath);
    int mediaCount = 0;
    for (std::size_t i = 0; i < m_state.items.size(); ++i) {
        const BrowseItem& item = m_state.items[i];
        if (item.kind == ItemKind::Folder) continue;
        ++mediaCount;
        if (m_thumbnails.isWanted({m_state.folder + item.name, item.thumbnail})) m_missing.push_back(i);
    }
    const auto count = static_cast<qint32>(m_state.items.size());
    m_state.totalPages = (count + kItemsPerPage - 1) / kItemsPerPage;
    m_state.query = folderQuery(m_state.folder, cachePrefix(), mediaCount, m_state.totalPages);
}

void MediaBrowser::makeThumbnails()
{
    if (m_missing.empty()) return;
    std::vector<Thumbnails::Order> orders;
    for (const std::size_t i : m_missing) {
        const BrowseItem& item = m_state.items[i];
        orders.push_back({m_state.folder + item.name, item.thumbnail});
    }
    m_thumbnails.makeAll(orders);
}

QString MediaBrowser::cachePrefix() const
{
    return m_application.CachePath + media::CacheName(m_state.folder, {});
}

void MediaBrowser::ShowBrowsePage()
{
    if (m_state.query.isEmpty()) return NewMediaBrowse(m_state.folder); // nothing was scanned yet
    if (qint64{m_state.page} + 1 > m_state.totalPages) m_state.page = m_state.totalPages - 1;
    if (m_state.page < 0) m_state.page = 0;
    m_host.LoadFlash(m_application.GadgetsPath + "browse.swf" + m_state.query +
                         pageQuery(m_state, cachePrefix(), m_host.noAnimation()) + tilesQuery(),
                     texts::kBrowserTitle);
}

QString MediaBrowser::tilesQuery() const
{
    QString query;
    if (m_state.order != Order::Name) query += "&order=" + wordOf(m_state.order);
    if (const QString code = core::languageCode(); code != core::Language::kRussian) query += "&lang=" + code;
    for (qint32 slot = 1; slot <= kItemsPerPage; ++slot) {
        const auto index = static_cast<std::size_t>(m_state.page * kItemsPerPage + slot - 1);
        if (index >= m_state.items.size()) break;
        const BrowseItem& item = m_state.items[index];
        if (item.kind != ItemKind::Folder)
            query += signQuery(slot, m_thumbnails.hasFailed(m_state.folder + item.name));
        else if (item.name != "..")
            query += contentQuery(
                slot, contentOf(m_state.folder + item.name + QDir::separator(), m_application.CachePath));
    }
    return query;
}

void MediaBrowser::Properties(const media::MediaInfo& info)
{
    frmInfo window(m_host, m_application, m_thumbnails, info);
    m_host.ShowDialog(window);
}

} // namespace browser
