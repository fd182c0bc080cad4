#pragma once

#include "export/Report.h"
#include "export/Settings.h"
#include "media/MediaInfo.h"

#include <QPointer>
#include <QString>
#include <QTemporaryDir>

#include <memory>

class QWidget;

namespace core
{
class Application;
}
namespace flash
{
class FlashControl;
}
namespace exporter
{
class ProgressDialog;
}

namespace player
{

class PlayerHost;
class PlayerSettings;

/// The movie, or the picture of it that is on the screen, made into a file for elsewhere.
class FilmExport
{
public:
    /// All outlive this object.
    /// @param window where the dialogs lie above
    /// @param movie  that is shown
    FilmExport(core::Application& application, PlayerHost& host, QWidget& window,
               flash::FlashControl& control, PlayerSettings& settings, const media::MediaInfo& movie)
        : m_application(application), m_host(host), m_window(window), m_control(control),
          m_settings(settings), m_movie(movie)
    {
    }

    /// Asks what film is wanted and begins it; the player goes on meanwhile. One film at a time.
    void SaveVideo();
    /// What is on the screen, as a PNG file.
    void SaveFrame();
    /// The same to the clipboard.
    void CopyFrame();

private:
    [[nodiscard]] QString chooseFile(const QString& title, const QString& filter, const QString& suffix);
    void begin(const exporter::Settings& settings, std::shared_ptr<QTemporaryDir> folder);
    void ended(const QString& file, exporter::Exit exit, const QString& error, const QString& detail);
    void complain(const QString& title, const QString& text, const QString& detail);

    core::Application& m_application;
    PlayerHost& m_host;
    QWidget& m_window;
    flash::FlashControl& m_control;
    PlayerSettings& m_settings;
    const media::MediaInfo& m_movie;
    QPointer<exporter::ProgressDialog> m_progress;
};

} // namespace player
