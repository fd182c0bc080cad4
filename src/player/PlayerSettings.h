#pragma once

#include "settings/RecentList.h"
#include "settings/SettingsFile.h"

#include <QFileSystemWatcher>
#include <QTimer>

class QWidget;

namespace flash
{
class FlashControl;
}

namespace player
{

class Menus;
class Placement;
class Playback;
class PlayerHost;
class SkinWindow;
class Status;

/// How the settings reach what they set and come back from there, and the list of recent files.
class PlayerSettings
{
public:
    /// What the settings are read into and collected from.
    struct Places {
        QWidget& window;
        flash::FlashControl& control;
        Menus& menus;
        Playback& playback;
        Status& status;
        SkinWindow& skinWindow;
        Placement& placement;
    };
    /// All outlive this object.
    PlayerSettings(core::Application& application, PlayerHost& host, const Places& places);

    /// The settings that live nowhere else: icon set, the program's pages, what the start and the end do, the
    /// media browser's place. The others are the state of control, menus and playback.
    [[nodiscard]] settings::Options& options() { return m_options; }
    [[nodiscard]] const settings::Options& options() const { return m_options; }

    /// Reads settings.xml and gives every value to what it sets. Called once, before a file is opened.
    void LoadOpts();
    /// @returns false when settings.xml could not be written
    bool SaveOpts();
    /// Keeps what a SaveOpts() would write for an end that something stands in the way of.
    void keepForSuddenEnd();
    /// Shows the options dialog.
    void edit();

    void AddRecent(const QString& path);
    [[nodiscard]] const QStringList& recentPaths() const { return m_recent.paths(); }

private:
    void showRecent();
    /// Another window may have saved.
    void refresh();
    void watch();
    /// Collects the options from what they live in.
    void gather();
    void tellControl(); ///< what it does not tell itself

    core::Application& m_application;
    PlayerHost& m_host;
    const Places m_places;
    settings::SettingsFile m_file;
    settings::Options m_options;
    settings::RecentList m_recent;
    QFileSystemWatcher m_watcher;
    QTimer m_settling;       ///< a save comes in several steps
    bool m_isLoaded = false; ///< only then is there something to save
};

} // namespace player
