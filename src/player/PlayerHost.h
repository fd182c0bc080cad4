#pragma once

#include "core/Text.h"

#include <QString>

#include <functional>

class QDialog;

namespace base
{
class Failure;
}

namespace player
{

/// What the parts of the player ask of the whole. The player implements it; a part names what else it works
/// with when it is made.
class PlayerHost
{
public:
    virtual ~PlayerHost() = default;

    /// Runs a procedure under the program's usual handler: a failure is reported and the program goes on.
    virtual void handled(core::Text place, const std::function<void()>& procedure) = 0;
    virtual void ReportError(const base::Failure& error, const QString& place, const QString& detail) = 0;
    /// Writes an error to the journal as ReportError() does, and shows nothing.
    virtual void noteError(const base::Failure& error, const QString& place) = 0;
    /// Where what is kept between runs lies, with its closing separator.
    [[nodiscard]] virtual QString settingsFolder() const = 0;
    /// Where no exception may pass. What cannot be logged is lost.
    virtual void logQuietly(const QString& text) = 0;
    /// Whether the program is on its way out; dialogs return into it.
    [[nodiscard]] virtual bool hasEnded() const = 0;
    /// Shows a dialog above the window, and waits for it.
    virtual void ShowDialog(QDialog& dialog) = 0;

    virtual void LoadFlash(const QString& path, const QString& caption) = 0;
    virtual void SetStatus(const QString& text) = 0;
    [[nodiscard]] virtual QString StatusText() const = 0;
    virtual void setUpdateTimerEnabled(bool enabled) = 0;
    /// @returns false when the settings could not be written
    virtual bool SaveOpts() = 0;
    /// The user has changed options: what is on the screen follows.
    virtual void optionsChanged() = 0;
    /// Keeps what SaveOpts() would write for an end that something stands in the way of.
    virtual void keepForSuddenEnd() = 0;
};

/// What the beginning and the end of the window consist of.
class LifecycleHost : public PlayerHost
{
public:
    virtual void LoadOpts() = 0;
    virtual void EnumSkins() = 0;
    virtual void CreateSkin() = 0;
    virtual void UpdateSkin() = 0;
    virtual void AssignMenus() = 0;
    virtual void SetVisual() = 0;
    virtual void SetCaption(const QString& text) = 0;
    virtual void openFiles(const QStringList& paths) = 0;
    virtual void CloseMedia(const QString& message) = 0;
    virtual void BrowseMedia() = 0;
    [[nodiscard]] virtual bool isFullScreen() const = 0;
    virtual void setMediaInfoEnabled(bool enabled) = 0;
    virtual void refreshMovieCommands() = 0;
    /// @returns which file could not be opened; empty when none was, or it was told
    [[nodiscard]] virtual QString takeFailedFile() = 0;
    /// Shows the program to the desktop's controls for players.
    virtual void joinDesktop() = 0;
};

} // namespace player
