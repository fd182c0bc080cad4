#pragma once

#include "media/MediaInfo.h"

#include <QString>

#include <optional>

class QFileDialog;
class QWidget;

namespace core
{
class Application;
}

namespace player
{

class PlayerHost;
class PlayerSettings;

/// Gives the parts of a file dialog their words. @param accept on its button
void prepareDialog(QFileDialog& dialog, const QString& accept);

/// The dialogs that ask for a file or a folder, and what their answers do.
class MediaDialogs
{
public:
    /// All outlive this object.
    /// @param window where the dialogs lie above
    /// @param movie  of the movie that is shown
    MediaDialogs(core::Application& application, PlayerHost& host, QWidget& window,
                 const PlayerSettings& settings, const media::MediaInfo& movie)
        : m_application(application), m_host(host), m_window(window), m_settings(settings), m_movie(movie)
    {
    }

    /// @param folder where the dialog starts; empty: where the most recent file lies
    /// @returns whether a file was chosen
    bool OpenMedia(const QString& folder);
    void SaveMediaAs();
    /// @returns the folder chosen for browsing, nothing when the user declined
    std::optional<QString> chooseBrowserFolder(const QString& start);

private:
    [[nodiscard]] QString startFolder() const;
    void saveTo(const QString& target, const QString& filter);

    core::Application& m_application;
    PlayerHost& m_host;
    QWidget& m_window;
    const PlayerSettings& m_settings;
    const media::MediaInfo& m_movie;
};

} // namespace player
