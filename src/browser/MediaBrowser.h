#pragma once

#include "browser/BrowserHost.h"
#include "browser/BrowserState.h"
#include "browser/Thumbnails.h"
#include "core/Application.h"
#include "media/MediaInfo.h"

namespace browser
{

/// Shows the movies of one folder as pages of eight thumbnails: scans the folder, has missing thumbnails
/// made, and hands a page of items to the program's own Flash page. That one answers with page commands,
/// which end in the procedures here. Errors are ignored statement by statement: what cannot be done is left
/// out.
class MediaBrowser
{
public:
    /// All are borrowed. @param state lives for the whole run
    MediaBrowser(core::Application& application, BrowserHost& host, BrowserState& state);

    [[nodiscard]] BrowserState& state() { return m_state; }
    [[nodiscard]] const BrowserState& state() const { return m_state; }

    /// Opens the browser where it was left.
    void BrowseMedia();
    /// Scans a folder, makes its missing thumbnails and shows the current page. A folder that does not exist
    /// leaves the one before. A call while one is at work does nothing.
    void NewMediaBrowse(const QString& folder);
    /// Brings the current page into range and shows it.
    void ShowBrowsePage();
    /// The information window on the movie that is loaded.
    void Properties(const media::MediaInfo& info);

    /// Whether it is at work, and lets events through meanwhile.
    [[nodiscard]] bool isBusy() const { return m_busy; }
    [[nodiscard]] Thumbnails& thumbnails() { return m_thumbnails; }

private:
    void scan(const QString& folder);
    void makeThumbnails();
    [[nodiscard]] QString cachePrefix() const;
    /// What the tiles of the current page show beside their names.
    [[nodiscard]] QString tilesQuery() const;
    void log(const QString& text);

    core::Application& m_application;
    BrowserHost& m_host;
    BrowserState& m_state;
    Thumbnails m_thumbnails;
    std::vector<std::size_t> m_missing; ///< items without a thumbnail
    bool m_busy = false;
};

} // namespace browser
